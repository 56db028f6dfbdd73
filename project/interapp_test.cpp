// The bridge functions with their own rules, the dispatchers, the module
// table and user-variable texts, against the stand-in sibling modules.
#include <cwchar>
#include <type_traits>
#include <vector>

#include "InterApp.h"
#include "Lng.h"
#include "QBaseDb.h"
#include "project/interapp_platform.h"
#include "project/interapp_test_support.h"
#include "project/qb_test_fixture.h"
#include "project/siblings/sibling_record.h"

namespace {

using bridge_test::Siblings;
using bridge_test::Variant;
using qt::bridge::MissingFlagValue;
namespace platform = qt::interapp::platform;
namespace bridge = qt::bridge;

int Code(const char* exportName) { return sibling::NameCode(exportName); }

// Counts what the bridge asks of the system, and can hide loaded modules.
struct CountingCalls {
  static int lookups;
  static int exportLookups;
  static bool hideModules;
  platform::CallsOverride calls;

  CountingCalls() {
    lookups = exportLookups = 0;
    hideModules = false;
    calls->loadedModule = [](const wchar_t* name, bool wide) -> void* {
      ++lookups;
      return hideModules ? nullptr : platform::SystemCalls().loadedModule(name, wide);
    };
    calls->findExport = [](void* module, const char* name) {
      ++exportLookups;
      return platform::SystemCalls().findExport(module, name);
    };
  }
};
int CountingCalls::lookups = 0;
int CountingCalls::exportLookups = 0;
bool CountingCalls::hideModules = false;

bool IsLoaded(bridge::ModuleId module) {
  const bridge::ModuleFile& file = bridge::ModuleFileOf(module);
  return platform::SystemCalls().loadedModule(file.fileName, file.wideName) != nullptr;
}

TEST(InterAppModules, InitNeitherLoadsNorKeepsModules) {
  Siblings siblings;
  bool wasLoaded[bridge::kModuleCount];
  for (int m = 0; m < bridge::kModuleCount; ++m) wasLoaded[m] = IsLoaded(static_cast<bridge::ModuleId>(m));
  InterApp::init();
  for (int m = 0; m < bridge::kModuleCount; ++m) {
    EXPECT_EQ(IsLoaded(static_cast<bridge::ModuleId>(m)), wasLoaded[m]) << m;
  }

  siblings.Load(bridge::QnHpv);
  siblings.Release(bridge::QnHpv);
  if (IsLoaded(bridge::QnHpv)) GTEST_SKIP() << "this build never unloads a released module";

  siblings.Load(bridge::QnHpv);
  InterApp::init();
  InterApp::init();
  EXPECT_NE(bridge::ModuleHandle(bridge::QnHpv), nullptr);
  // With its owner's one reference given back, the module is gone: init took none.
  siblings.Release(bridge::QnHpv);
  EXPECT_FALSE(IsLoaded(bridge::QnHpv));
}

TEST(InterAppModules, EightBitAndWideRowsAreBothFound) {
  Siblings siblings;
  siblings.Load(bridge::QuilUtil);  // 8-bit row
  siblings.Load(bridge::QuilQRP);   // wide row with a .dll name
  InterApp::init();
  EXPECT_NE(bridge::ModuleHandle(bridge::QuilUtil), nullptr);
  EXPECT_NE(bridge::ModuleHandle(bridge::QuilQRP), nullptr);
}

TEST(InterAppCaches, MissingExportIsLookedUpAgainOnEveryCallAndFoundOnceThere) {
  Siblings siblings;
  CountingCalls counting;
  siblings.Load(bridge::QNCommon, Variant::Bare);
  InterApp::init();
  EXPECT_EQ(InterApp::QNC::GetAcadName(), L"");
  EXPECT_EQ(InterApp::QNC::GetAcadName(), L"");
  EXPECT_EQ(CountingCalls::exportLookups, 2);

  siblings.Release(bridge::QNCommon);
  siblings.Load(bridge::QNCommon, Variant::Full);
  InterApp::init();
  EXPECT_EQ(InterApp::QNC::GetAcadName(), L"GetAcadNameQNC");
  EXPECT_EQ(InterApp::QNC::GetAcadName(), L"GetAcadNameQNC");
  EXPECT_EQ(CountingCalls::exportLookups, 3);
}

TEST(InterAppCaches, FoundExportSurvivesASecondInitThatNoLongerSeesItsModule) {
  Siblings siblings;
  CountingCalls counting;
  siblings.Load(bridge::QNCommon);
  InterApp::init();
  ASSERT_EQ(InterApp::QNC::GetAcadVersion(), L"GetAcadVersionQNC");
  CountingCalls::hideModules = true;
  InterApp::init();
  EXPECT_EQ(bridge::ModuleHandle(bridge::QNCommon), nullptr);
  EXPECT_EQ(InterApp::QNC::GetAcadVersion(), L"GetAcadVersionQNC");
  EXPECT_EQ(InterApp::QNC::GetAcadLanguage(), L"");  // never found: falls back
  EXPECT_EQ(CountingCalls::exportLookups, 1);
}

TEST(InterAppFlags, EachFlaggedFunctionNotesItsMissingExportOnly) {
  Siblings siblings;
  const wchar_t* name = L"Window/Test";
  RECT rect = {};
  int show = 0;
  ustr text;
  EXPECT_FALSE(InterApp::HPV::Reg_GetWindowPos_(nullptr, name, nullptr, &rect, &show, false));
  EXPECT_EQ(MissingFlagValue(bridge::RegGetWindowPosMissing), 1);
  EXPECT_EQ(MissingFlagValue(bridge::RegSetWindowPosMissing), 0);
  EXPECT_FALSE(InterApp::HPV::Reg_SetWindowPosOnly_(nullptr, name, nullptr, true));
  EXPECT_FALSE(InterApp::HPV::Reg_SetWindowPos_(nullptr, name, nullptr));
  EXPECT_EQ(MissingFlagValue(bridge::RegSetWindowPosOnlyMissing), 1);
  EXPECT_EQ(MissingFlagValue(bridge::RegSetWindowPosMissing), 1);
  EXPECT_EQ(MissingFlagValue(bridge::TextUserVarDefMissing), 0);

  // A module without the export sets the flag too.
  siblings.Load(bridge::QuilUtil, Variant::Bare);
  InterApp::init();
  EXPECT_FALSE(InterApp::HPV::Qlg_textUserVarDef_(99, -3, L"Var", text));
  EXPECT_EQ(MissingFlagValue(bridge::TextUserVarDefMissing), 1);

  // Found later, the export answers and the flag stays as it was.
  siblings.Release(bridge::QuilUtil);
  siblings.Load(bridge::QuilUtil);
  InterApp::init();
  siblings.SetAnswer(bridge::QuilUtil, "Reg_SetWindowPos", 0);
  EXPECT_FALSE(InterApp::HPV::Reg_SetWindowPos_(nullptr, name, nullptr));
  siblings.SetAnswer(bridge::QuilUtil, "Reg_SetWindowPos", 2);
  EXPECT_TRUE(InterApp::HPV::Reg_SetWindowPos_(nullptr, name, nullptr));
  EXPECT_TRUE(InterApp::HPV::Reg_GetWindowPos_(HKEY_CURRENT_USER, name, nullptr, &rect, &show, true));
  EXPECT_EQ(siblings.LastCall(bridge::QuilUtil),
            (sibling::Describe<HKEY, const wchar_t*, HWND, RECT*, int*, bool>("Reg_GetWindowPos", HKEY_CURRENT_USER,
                                                                              name, nullptr, &rect, &show, true)));
  EXPECT_EQ(MissingFlagValue(bridge::RegSetWindowPosMissing), 1);
}

TEST(InterAppSpecial, UserVariableTextIsAssignedFromTheUtilityLibrary) {
  Siblings siblings;
  siblings.Load(bridge::QuilUtil);
  InterApp::init();
  siblings.SetText(bridge::QuilUtil, "Qlg_textUserVarDef", L"Airflow");
  ustr result = L"before";
  const wchar_t* text = L"Variable";
  ASSERT_TRUE(InterApp::HPV::Qlg_textUserVarDef_(99, -7, text, result));
  EXPECT_EQ(result, L"Airflow");
  EXPECT_EQ(siblings.LastCall(bridge::QuilUtil),
            (sibling::Describe<short, int, const wchar_t*>("Qlg_textUserVarDef", 99, -7, text)));

  // Through the language texts: negative ids of the main module only.
  EXPECT_EQ(Lng::text(Lng::APP_HPV, -7, L"Var"), L"Airflow");
  EXPECT_EQ(siblings.LastCall(bridge::QuilUtil).rfind("Qlg_textUserVarDef 99 -7 ", 0), 0u);
  const int calls = siblings.CallCount(bridge::QuilUtil);
  EXPECT_EQ(Lng::text(Lng::APP_HPV, 7, L"Name"), L"Name");
  EXPECT_EQ(Lng::text(Lng::APP_QNE, -7, L"Var"), L"Var");
  EXPECT_EQ(siblings.CallCount(bridge::QuilUtil), calls);
}

TEST(InterAppSpecial, TwoModuleBridgesTryTheExtensionThenItsUserInterfaceLibrary) {
  struct Pair {
    bridge::ModuleId extension, library;
    const char *extensionExport, *libraryExport;
    int (*function)(int, void*, void*, int);
  };
  const Pair pairs[] = {
      {bridge::Qne, bridge::QneUi, "ObjectSelectionDataAccessorQNE", "ObjectSelectionDataAccessorQNEUI",
       &InterApp::QNE::ObjectSelectionDataAccessor},
      {bridge::QnSd, bridge::QnSdUi, "ObjectSelectionDataAccessorQNSD", "ObjectSelectionDataAccessorQNSDUI",
       &InterApp::QNSD::ObjectSelectionDataAccessor},
  };
  void* a = &a;
  for (const Pair& pair : pairs) {
    SCOPED_TRACE(pair.extensionExport);
    {
      // Neither present, then an extension without the export and no library.
      Siblings siblings;
      InterApp::init();
      EXPECT_EQ(pair.function(1, a, nullptr, 2), -1);
      siblings.Load(pair.extension, Variant::Bare);
      InterApp::init();
      EXPECT_EQ(pair.function(1, a, nullptr, 2), -1);
    }
    {
      Siblings siblings;
      siblings.Load(pair.extension);
      siblings.Load(pair.library);
      InterApp::init();
      EXPECT_EQ(pair.function(1, a, nullptr, 2), Code(pair.extensionExport));
      EXPECT_EQ(siblings.CallCount(pair.library), 0);
    }
    {
      // The library answers when the extension lacks the export, and keeps
      // answering once found: both names share one cache.
      Siblings siblings;
      siblings.Load(pair.extension, Variant::Bare);
      siblings.Load(pair.library);
      InterApp::init();
      EXPECT_EQ(pair.function(3, a, a, 4), Code(pair.libraryExport));
      EXPECT_EQ(siblings.LastCall(pair.library),
                (sibling::Describe<int, void*, void*, int>(pair.libraryExport, 3, a, a, 4)));
      siblings.Release(pair.extension);
      siblings.Load(pair.extension);
      InterApp::init();
      EXPECT_EQ(pair.function(3, a, a, 4), Code(pair.libraryExport));
    }
  }
}

TEST(InterAppSpecial, StoreyFunctionsFindTheRoomModuleThemselvesOnEveryCall) {
  Siblings siblings;
  CountingCalls counting;
  wchar_t name[64] = {};
  double x = 0, y = 0, z = 0, w = 0, v = 0;
  EXPECT_EQ(InterApp::QNR::GetStoreyProperties(L"EG", name, &x, &y, &z, &w), -1);

  siblings.Load(bridge::Qnr);  // no init: these ask for themselves
  siblings.SetAnswer(bridge::Qnr, "qrmif_storey_get_properties", -2);
  EXPECT_EQ(InterApp::QNR::GetStoreyProperties(L"EG", name, &x, &y, &z, &w), -2);
  EXPECT_EQ(InterApp::QNR::GetStoreyProperties(L"EG", name, &x, &y, &z, &w), -2);
  EXPECT_EQ(CountingCalls::lookups, 3);
  EXPECT_EQ(CountingCalls::exportLookups, 1);
  // A 16-bit status widens with its sign.
  siblings.SetAnswer(bridge::Qnr, "qrmif_storey_get_properties_ex", 0xFFFE);
  const int dummy = 0;
  EXPECT_EQ(InterApp::QNR::GetStoreyPropertiesEx(&dummy, name, &x, &y, &z, &w, &v), -2);
  EXPECT_EQ(siblings.LastCall(bridge::Qnr),
            (sibling::Describe<const void*, wchar_t*, double*, double*, double*, double*, double*>(
                "qrmif_storey_get_properties_ex", &dummy, name, &x, &y, &z, &w, &v)));
}

TEST(InterAppSpecial, PropertyNameComesFromTheUserInterfaceElseFromTheLanguageText) {
  ustr name = L"unchanged";
  {
    Siblings siblings;
    InterApp::init();
    EXPECT_FALSE(InterApp::QNE::mePropertyName(nullptr, 5, 4711, L"Flow", name));
    EXPECT_EQ(name, L"unchanged");
  }
  Siblings siblings;
  siblings.Load(bridge::QneUi);
  InterApp::init();
  siblings.SetText(bridge::QneUi, "GetPropertyNameQNEUI", L"Volume flow");
  siblings.SetAnswer(bridge::QneUi, "GetPropertyNameQNEUI", 0);
  EXPECT_TRUE(InterApp::QNE::mePropertyName(nullptr, 5, 4711, L"Flow", name));
  EXPECT_EQ(name, L"Volume flow");
  const std::string asked = sibling::Describe<void*, short>("GetPropertyNameQNEUI", nullptr, 5) + " *";
  EXPECT_EQ(siblings.LastCall(bridge::QneUi).rfind(asked, 0), 0u)
      << siblings.LastCall(bridge::QneUi);
  EXPECT_NE(siblings.LastCall(bridge::QneUi).find(" 128"), std::string::npos);

  // The interface declines: the module's language text, asked with the
  // same buffer size.
  siblings.SetAnswer(bridge::QneUi, "GetPropertyNameQNEUI", 1);
  siblings.SetText(bridge::QneUi, "qlg_readWsz_defw_export", L"Volumenstrom");
  siblings.SetAnswer(bridge::QneUi, "qlg_readWsz_defw_export", 12);
  EXPECT_TRUE(InterApp::QNE::mePropertyName(nullptr, 5, 4711, L"Flow", name));
  EXPECT_EQ(name, L"Volumenstrom");
  EXPECT_NE(siblings.LastCall(bridge::QneUi).find(" 4711 128 *"), std::string::npos)
      << siblings.LastCall(bridge::QneUi);

  // An empty language text.
  siblings.SetText(bridge::QneUi, "qlg_readWsz_defw_export", L"");
  siblings.SetAnswer(bridge::QneUi, "qlg_readWsz_defw_export", 0);
  name = L"kept";
  EXPECT_FALSE(InterApp::QNE::mePropertyName(nullptr, 5, 4711, L"Flow", name));
  EXPECT_EQ(name, L"kept");
}

TEST(InterAppSpecial, ReportDataExportGetsACopyOfTheCallback) {
  Siblings siblings;
  siblings.Load(bridge::QNCommon);
  InterApp::init();
  const InterApp::ReportCallback callback = [](ObjectSelection::Dlg::CbMsgId, unsigned long long, long long) {
    return 0LL;
  };
  EXPECT_TRUE(InterApp::QNC::GetReportData(nullptr, callback, 3));
  const std::string call = siblings.LastCall(bridge::QNCommon);
  char mine[32];
  snprintf(mine, sizeof mine, "%p", static_cast<const void*>(&callback));
  EXPECT_EQ(call.rfind(sibling::Describe<void*>("GetReportDataQNC", nullptr) + " *", 0), 0u) << call;
  EXPECT_EQ(call.find(mine), std::string::npos) << "the caller's own object was handed on";
  EXPECT_EQ(call.substr(call.size() - 2), " 3");
}

TEST(InterAppSpecial, ZoomToWithoutDatabaseAndDrawCrossCallTheOneExport) {
  Siblings siblings;
  siblings.Load(bridge::QNCommon);
  InterApp::init();
  ObjPosInDwg pos = {};
  void* db = &pos;
  ASSERT_TRUE(InterApp::QNC::ZoomTo(pos, true, false));
  EXPECT_EQ(siblings.LastCall(bridge::QNCommon),
            (sibling::Describe<void*, const ObjPosInDwg&, bool, bool>("ZoomToQNC", nullptr, pos, true, false)));
  ASSERT_TRUE(InterApp::QNC::DrawCross(db, pos));
  EXPECT_EQ(siblings.LastCall(bridge::QNCommon),
            (sibling::Describe<void*, const ObjPosInDwg&, bool, bool>("ZoomToQNC", db, pos, false, true)));
}

TEST(InterAppDispatch, ProjectFilesGoToTheirModuleByExtensionWithoutCase) {
  Siblings siblings;
  siblings.LoadAll();
  InterApp::init();
  ProjectWizard::Data data = {};
  std::vector<InterApp::StoreyData_t> storeys;
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", L"C:\\p\\Plant.EPJ", 1), Code("ConnectDbToProjectHPV"));
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", L"/p/plant.qep", 1), Code("ConnectDbToProjectQNE"));
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", L"plant.Qrd", 1), Code("ConnectDbToProjectQNR"));
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", L"plant.epj.bak", 1), -1);
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", L"epj", 1), -1);
  EXPECT_EQ(InterApp::ConnectDbToProject(nullptr, L"a", nullptr, 1), -1);
  EXPECT_EQ(InterApp::SetPrjData(L"x.qep", data), Code("SetPrjDataQNE"));
  EXPECT_EQ(InterApp::SetPrjData(L"x.dwg", data), -1);
  EXPECT_EQ(InterApp::GetProjectName(L"x.QRD"), L"GetProjectNameQNR");
  EXPECT_EQ(InterApp::GetProjectName(L"x.txt"), L"");
  // Storeys: the main module's project library and the room module's, not the electrical one.
  EXPECT_EQ(InterApp::ReadStoreysFromProjectFile(L"x.epj", storeys), Code("ReadStoreysFromProjectFileHPV"));
  EXPECT_EQ(InterApp::ReadStoreysFromProjectFile(L"x.qrd", storeys), Code("ReadStoreysFromProjectFileQRP"));
  const int electricalCalls = siblings.CallCount(bridge::Qne) + siblings.CallCount(bridge::QneUi);
  EXPECT_EQ(InterApp::ReadStoreysFromProjectFile(L"x.qep", storeys), -1);
  EXPECT_EQ(siblings.CallCount(bridge::Qne) + siblings.CallCount(bridge::QneUi), electricalCalls);
}

TEST(InterAppDispatch, ModelDrawingsByTheDatabasesFileKind) {
  qt_test::TempDir dir;
  Siblings siblings;
  siblings.LoadAll();
  InterApp::init();
  std::vector<ustr> dwgs;
  EXPECT_FALSE(InterApp::ReadModelDwgs(QBaseDb(), dwgs, true));
  const struct {
    const char* file;
    bool answered;
    bridge::ModuleId module;
  } cases[] = {{"plant.EPJ", true, bridge::QuilSer}, {"plant.qep", true, bridge::QneUi}, {"plant.qrd", false, bridge::Qnr}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    ASSERT_TRUE(qb_test::CreatePanelFile(dir.wfile(c.file)));
    QBaseDb db = QBaseDbManager::instance().openFile(dir.wfile(c.file).c_str(), QB_MODE_READ);
    ASSERT_TRUE(db.isValidDb());
    const int before = siblings.CallCount(c.module);
    EXPECT_EQ(InterApp::ReadModelDwgs(db, dwgs, true), c.answered);
    EXPECT_EQ(siblings.CallCount(c.module), before + (c.answered ? 1 : 0));
  }
}

TEST(InterAppDispatch, ApplicationIdsChooseTheModule) {
  Siblings siblings;
  siblings.LoadAll();
  InterApp::init();
  ProjectInfo::Options options = {};
  int db = 0;
  EXPECT_TRUE(InterApp::GetProjectInfoOptions(Lng::APP_QNE, &db, options));
  EXPECT_EQ(siblings.LastCall(bridge::Qne).rfind("qneGetProjectInfoOptions", 0), 0u);
  EXPECT_FALSE(InterApp::GetProjectInfoOptions(Lng::APP_QNR, &db, options));

  const char* connected[] = {"IsDrawingConnectedToProjectHPV", "IsDrawingConnectedToProjectQNE",
                             "IsDrawingConnectedToProjectQNSD", "IsDrawingConnectedToProjectQNCS"};
  const bridge::ModuleId modules[] = {bridge::QnHpv, bridge::Qne, bridge::QnSd, bridge::QnCs};
  const Lng::AppID ids[] = {Lng::APP_HPV, Lng::APP_QNE, Lng::APP_QNSD, Lng::APP_QNCS};
  for (int i = 0; i < 4; ++i) siblings.SetAnswer(modules[i], connected[i], 0);
  EXPECT_EQ(InterApp::GetDrawingAppId(&db), Lng::APP_NONE);
  for (int i = 3; i >= 0; --i) {
    // The first in order that answers true wins.
    siblings.SetAnswer(modules[i], connected[i], 1);
    EXPECT_EQ(InterApp::GetDrawingAppId(&db), ids[i]);
    EXPECT_TRUE(InterApp::IsDrawingConnectedToProject(ids[i], &db));
  }
  for (Lng::AppID other : {Lng::APP_QNC, Lng::APP_QNR, Lng::APP_QNH, Lng::APP_QNU, Lng::APP_QNPP, Lng::APP_NONE}) {
    EXPECT_FALSE(InterApp::IsDrawingConnectedToProject(other, &db)) << other;
  }
}

TEST(InterAppDispatch, CommandsGoToTheFirstModuleThatClaimsThem) {
  Siblings siblings;
  siblings.LoadAll();
  InterApp::init();
  const struct {
    bridge::ModuleId module;
    const char* exportName;
  } claimers[] = {{bridge::QnHpv, "IsMyCommandHPV"},   {bridge::Qne, "IsMyCommandQNE"},
                  {bridge::QNCommon, "IsMyCommandQNC"}, {bridge::Qnr, "IsMyCommandQNR"},
                  {bridge::QNHeatEx, "IsMyCommandQNH"}, {bridge::QnSd, "IsMyCommandQNSD"},
                  {bridge::QnCs, "IsMyCommandQNCS"},    {bridge::QNUtilities, "IsMyCommandQNU"},
                  {bridge::QUILQNPropertiesPalette, "IsMyCommandQNPP"}};
  for (const auto& c : claimers) siblings.SetAnswer(c.module, c.exportName, 0);
  wchar_t out[64] = {};
  EXPECT_EQ(InterApp::GetCommandData(L"QLINE", out, 64), Lng::APP_NONE);
  EXPECT_FALSE(InterApp::IsMyCommand(L"QLINE", out, 64));

  siblings.SetAnswer(bridge::QUILQNPropertiesPalette, "IsMyCommandQNPP", 1);
  siblings.SetText(bridge::QUILQNPropertiesPalette, "IsMyCommandQNPP", L"palette");
  EXPECT_EQ(InterApp::GetCommandData(L"QLINE", out, 64), Lng::APP_QNPP);
  EXPECT_STREQ(out, L"palette");

  siblings.SetAnswer(bridge::QNCommon, "IsMyCommandQNC", 1);
  EXPECT_EQ(InterApp::GetCommandData(L"QLINE", out, 64), Lng::APP_QNC);
  siblings.SetAnswer(bridge::QnHpv, "IsMyCommandHPV", 1);
  EXPECT_EQ(InterApp::GetCommandData(L"QLINE", out, 64), Lng::APP_HPV);
  EXPECT_TRUE(InterApp::IsMyCommand(L"QLINE", out, 64));
}

TEST(InterAppSpecial, ConversionsOfTheExportsAnswers) {
  Siblings siblings;
  siblings.LoadAll();
  InterApp::init();
  TextStyles styles;
  siblings.SetAnswer(bridge::QnHpv, "getAllTextStyles", 0);
  EXPECT_FALSE(InterApp::HPV::getAllTextStyles_(styles));
  siblings.SetAnswer(bridge::QnHpv, "getAllTextStyles", -5);
  EXPECT_TRUE(InterApp::HPV::getAllTextStyles_(styles));
  siblings.SetAnswer(bridge::QNCommon, "MaskDimtextsQNC", 0);
  EXPECT_TRUE(InterApp::QNC::MaskDimtexts(true));
  EXPECT_DOUBLE_EQ(InterApp::QNE::GetWorldScale(nullptr), Code("qneGetWorldScale") + 0.5);
}

TEST(InterAppSpecial, WorldScaleIsOneWithoutTheElectricalModule) {
  Siblings siblings;
  InterApp::init();
  EXPECT_EQ(InterApp::QNE::GetWorldScale(nullptr), 1.0);
}

}  // namespace

namespace {

// The records cross module boundaries by pointer: their layout must be
// the plain one every compiler of the suite lays out alike.
template <class... T>
constexpr bool AllStandardLayout() {
  return (std::is_standard_layout<T>::value && ...);
}
static_assert(AllStandardLayout<DwgObjectId, ObjPosInDwg, SelectionArea::Object, MsyLink::PropDef_t,
                                MsyLink::PropLink_t, MsyLink::PartDataMap, MsyLink::PartDataMap::ObjDataExt_t,
                                ProjectInfo::Options, ProjectInfo::SiteInfo, ProjectInfo::BuildingInfo,
                                ProjectWizard::Data, RevisionCloudOptions, TextStyles, InterApp::StoreyData_t,
                                InterApp::HPV::SystemData_t, InterApp::HPV::ElectricalConnectionData,
                                InterApp::QNE::DeviceIdFormat, InterApp::QNE::LayerData>(),
              "a record passed through the bridge is not standard-layout");

}  // namespace
