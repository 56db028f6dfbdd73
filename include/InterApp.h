// InterApp: calls into the suite's sibling modules by exported name.
//
// The library never links against a sibling module, and any of them may be
// missing from an installation. InterApp::init records which of the sixteen
// module files are loaded in the process; each function below then finds
// its export by name on first use, keeps the address for the life of the
// process, and calls it with the arguments unchanged. When the module or
// the export is missing, the function returns its neutral value instead
// (false, -1, 0, null, an empty string or QnVariant, or nothing;
// QNE::GetWorldScale answers 1.0) without a message. Nothing here loads or
// releases a module.
//
// Until init has run, every function answers its neutral value, even for a
// loaded module; a module loaded later stays unknown until init runs again.
// The bridge belongs to the host's main thread: init must run before any
// other thread calls in.
//
// The records passed through are in InterAppRecords.h. docs/module-bridge.md
// lists the module files, their exports and how Linux finds them.
#ifndef QUILTOOL_INTERAPP_H
#define QUILTOOL_INTERAPP_H

#include <functional>
#include <map>
#include <set>
#include <vector>

#include "InterAppRecords.h"
#include "LngAppID.h"
#include "QBaseDb.h"
#include "QnVariant.h"
#include "gm_model.h"
#include "qn_wintypes.h"
#include "quiltool_export.h"
#include "ustr.h"

namespace InterApp {

// What GetReportData reports to: a message, its wParam and lParam; the
// answer goes back to the reporting module.
typedef std::function<long long(ObjectSelection::Dlg::CbMsgId, unsigned long long, long long)> ReportCallback;

// Looks up which sibling modules are loaded now. Run again to see modules
// loaded since; addresses already found stay as they are.
QT_API void init();

// Common module, "QNCommon_r24x64.arx".
namespace QNC {
// True after a call, whatever the export answered.
QT_API bool AcedRestoreStatusBar();
QT_API bool AcedSetStatusBarProgressMeter(const wchar_t* label, int min, int max);
QT_API bool AcedSetStatusBarProgressMeterPos(int pos);
QT_API ustr GetAcadLanguage();
QT_API bool GetAcadLayoutsFromDwg(const wchar_t* dwgPath, std::vector<ustr>& layouts);
QT_API ustr GetAcadName();
QT_API ustr GetAcadVersion();
QT_API ustr GetCurDwgFilePathName();
QT_API bool GetEntitiesInLayout(void* db, const wchar_t* layout, void* ids, bool flag);
QT_API bool GetEntitiesInLayouts(void* db, void* ids);
QT_API void GetLayoutViewportsData(void* db, const wchar_t* layout, void* a, void* b, void* c, void* d);
// The export is given a pointer to a copy of callback, valid during the call.
QT_API bool GetReportData(void* db, ReportCallback callback, int kind);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API bool IsTransmitToolRunning();
// True after a call, whatever the export answered.
QT_API bool MaskDimtexts(bool mask);
QT_API int RunProjectWizard(Lng::AppID app, ustr& projectPath, bool* flag);
QT_API bool SaveDatabase(void* db, const wchar_t* path);
QT_API bool SetTopDrawOrder(const void* entity);
QT_API void* SetWorkingDatabase(void* db);
QT_API bool ZoomTo(void* db, const ObjPosInDwg& pos, bool a, bool b);
// ZoomTo in the current drawing (a null database).
QT_API bool ZoomTo(const ObjPosInDwg& pos, bool a, bool b);
// ZoomTo(db, pos, false, true).
QT_API bool DrawCross(void* db, const ObjPosInDwg& pos);
}  // namespace QNC

// Main module, "QnHpv_r24x64.arx", and its libraries "QuilUtil_r24x64.dll",
// "QuilSer_r24x64.dll" and "QuilEPJ_r24x64.dll".
namespace HPV {
QT_API bool BuildVoidModelForReport(void* db, int kind, gm_model* model);
QT_API int CheckSelectionAreaName(const wchar_t* name);
QT_API int ConnectDbToProject(void* db, const wchar_t* a, const wchar_t* projectPath, int mode);
QT_API void CreateActuatorEdgePic(long id, gm_model* model);
QT_API void CreateConnNodeDefSymbolEdgePic(long id, gm_model* model);
QT_API void CreateDimTextPreviewPic(gm_model* model, short a, int b, int c);
QT_API void CreateSymbolPic(const wchar_t* symbol, gm_model* model, bool flag);
QT_API bool GetAreasNamesFromDwg(const wchar_t* dwgPath, std::vector<ustr>& names);
QT_API void GetClippedArea(void* db, SelectionArea::Object& area);
QT_API ustr GetCurPrjFilePathName();
QT_API astr GetCurPrjMarketAreaCode();
QT_API short GetDwgFloorId(void* db);
QT_API bool GetElectricalConnectionData(const void* entity, std::vector<ElectricalConnectionData>& data);
QT_API bool GetObjectGeometry(const void* entity, gm_model& model, double (&point)[3]);
QT_API bool GetOtherDrawingList(void* db, const wchar_t* name, OtherDwg::Type type, std::vector<ustr>& list, bool flag);
QT_API int GetPrjCharSet(int a, const QBaseDb& db);
QT_API ustr GetProjectForOtherDrawing(void* db);
QT_API bool GetProjectInfoOptions(void* db, ProjectInfo::Options& options);
QT_API ustr GetProjectName(const wchar_t* projectPath);
QT_API QnVariant GetPropertyValue(const void* entity, int property, const void* a, bool b, int c);
QT_API bool GetStoreyVariableUIName(int variable, ustr& name);
QT_API bool GetSystem(const wchar_t* projectPath, short systemId, SystemData_t& system);
QT_API void GetSystems(const wchar_t* projectPath, short a, std::vector<SystemData_t>& systems);
QT_API bool HandleSystems(HWND parent, SystemCommand command, const wchar_t* projectPath, short a,
                          const std::vector<short>* ids);
QT_API void HpvCreateRevisionCloud(RevisionCloudOptions& options);
QT_API bool IsAvailableReportAttribute(int attribute);
QT_API bool IsDrawingConnectedToProject(void* db);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API int ObjectSelectionDataAccessor(int request, void* a, void* b, int c);
// The name of a user-defined variable (a negative text id) for text; true
// and result set when "QuilUtil_r24x64.dll" answered.
QT_API bool Qlg_textUserVarDef_(short app, int textId, const wchar_t* text, ustr& result);
QT_API bool ReadModelDwgs(const QBaseDb& db, std::vector<ustr>& dwgs, bool flag);
QT_API int ReadStoreysFromProjectFile(const wchar_t* projectPath, std::vector<StoreyData_t>& storeys);
QT_API bool Reg_GetWindowPos_(HKEY key, const wchar_t* name, HWND window, RECT* rect, int* show, bool flag);
QT_API bool Reg_SetWindowPosOnly_(HKEY key, const wchar_t* name, HWND window, bool flag);
QT_API bool Reg_SetWindowPos_(HKEY key, const wchar_t* name, HWND window);
QT_API astr SelectObject(const wchar_t* prompt);
QT_API short SetEdgeLineColor(void* model, short a, short b);
QT_API bool SetOtherDrawingList(void* db, const wchar_t* name, OtherDwg::Type type, const std::vector<ustr>& list,
                                bool flag);
QT_API int SetPrjData(const wchar_t* projectPath, const ProjectWizard::Data& data);
QT_API bool SetProjectForOtherDrawing(void* db, const wchar_t* projectPath);
QT_API bool SetProjectForOtherDrawing(const wchar_t* dwgPath, const wchar_t* projectPath);
QT_API bool UnlinkHpvMsyObjects(const DwgObjectId& a, const DwgObjectId& b);
QT_API void UpdateTraits(const void* entity);
QT_API bool getAllTextStyles_(TextStyles& styles);

}  // namespace HPV

// Electrical module, "Qne_r24x64.arx", and its user interface "QneUi_r24x64.dll".
namespace QNE {
QT_API int ConnectDbToProject(void* db, const wchar_t* a, const wchar_t* projectPath, int mode);
QT_API bool CreateRevisionCloud(Lng::AppID app);
QT_API bool CreateRevisionMark(Lng::AppID app);
QT_API bool ExplodeEntity(void* entity, void* out, bool a, bool b);
QT_API bool GetCreatorAppAndTypeId(const void* entity, Lng::AppID& app, short& typeId);
QT_API ustr GetDeviceId(const void* entity);
QT_API bool GetDeviceIdFormat(void* db, long a, DeviceIdFormat& format);
QT_API bool GetHostAreasNamesFromDwg(const wchar_t* dwgPath, std::vector<ustr>& names);
QT_API int GetLayerSettings(void* db, const wchar_t* a, int b, const wchar_t* c, const wchar_t* d, LayerData& data);
QT_API void* GetProject(void* db);
QT_API bool GetProjectInfoOptions(void* db, ProjectInfo::Options& options);
QT_API ustr GetProjectName(const wchar_t* projectPath);
QT_API bool GetPropertyValue(const void* entity, short property, QnVariant& value, const void* a);
QT_API bool GetStoreyVariableUIName(int variable, ustr& name);
QT_API bool GetSwbAreasNamesFromDwg(const wchar_t* dwgPath, std::vector<ustr>& names);
QT_API ustr GetUserVariableUIName(int variable);
// 1.0 when the module or its export is missing.
QT_API double GetWorldScale(void* db);
QT_API bool IsDrawingConnectedToProject(void* db);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API bool IsSchematicDrawing(void* db);
// Asks the module, else its user interface library.
QT_API int ObjectSelectionDataAccessor(int request, void* a, void* b, int c);
QT_API bool ReadModelDwgs(const QBaseDb& db, std::vector<ustr>& dwgs, bool flag);
QT_API void RunPropertyDlg(const void* entity, bool flag);
QT_API int SetPrjData(const wchar_t* projectPath, const ProjectWizard::Data& data);
QT_API bool SetPropertyValue(const void* entity, short property, const QnVariant& value);
QT_API void SetSkipNextWarningMsgWhenOpeningDrawing(bool skip);
QT_API int qlg_readWsz_defw(wchar_t* buffer, long textId, short bufferLen, const wchar_t* defaultText);
// The property's name from the user interface library, else the module's
// language text textId; false when neither gives a text.
QT_API bool mePropertyName(void* entity, short property, int textId, const wchar_t* defaultText, ustr& name);
}  // namespace QNE

// Room module, "Qnr_r24x64.arx", and its project files "QuilQRP_r24x64.dll".
namespace QNR {
QT_API int ConnectDbToProject(void* db, const wchar_t* a, const wchar_t* projectPath, int mode);
QT_API ustr GetProjectName(const wchar_t* projectPath);
// These two look for the room module on every call, init or not.
QT_API int GetStoreyProperties(const wchar_t* storey, wchar_t* name, double* const a, double* b, double* const c,
                               double* d);
QT_API int GetStoreyPropertiesEx(const void* storey, wchar_t* name, double* const a, double* b, double* const c,
                                 double* d, double* const e);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API bool ReadSiteInfoFromFile(const wchar_t* projectPath, ProjectInfo::SiteInfo& site,
                                 ProjectInfo::BuildingInfo& building);
QT_API int ReadStoreysFromProjectFile(const wchar_t* projectPath, std::vector<StoreyData_t>& storeys);
QT_API int SetPrjData(const wchar_t* projectPath, const ProjectWizard::Data& data);
QT_API void SetSkipNextWarningMsgWhenOpeningDrawing(bool skip);
}  // namespace QNR

// Schematics module, "QnSd_r24x64.arx", and its user interface "QnSdUi_r24x64.dll".
namespace QNSD {
QT_API bool CanStartCommand();
QT_API bool ChangeHpvLinkHandle(const DwgObjectId& id, const char* oldHandle, const char* newHandle);
QT_API bool CreatePartDataMap(MsyLink::PartDataMap& map, const std::vector<ustr>& dwgs,
                              const std::set<ustr_pre<32>>& parts);
QT_API bool GetPageNamesFromDwg(const wchar_t* dwgPath, std::vector<ustr>& names);
QT_API bool GetProperties(const std::vector<ustr>& dwgs, std::set<MsyLink::PropDef_t>& properties);
QT_API bool IsDrawingConnectedToProject(void* db);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API bool LinkHpvObject(const wchar_t* dwgPath, const char* handle, const DwgObjectId& id);
// Asks the module, else its user interface library.
QT_API int ObjectSelectionDataAccessor(int request, void* a, void* b, int c);
QT_API astr SelectObject(const wchar_t* prompt);
QT_API bool SetDatasetLocationAbsolute(void* db, bool absolute);
QT_API bool SetHpvLinkDwgObjId(const void* entity, const DwgObjectId& id);
QT_API void SetSkipNextWarningMsgWhenOpeningDrawing(bool skip);
QT_API bool UpdateObject(void* entity, MsyLink::PartDataMap::ObjDataExt_t& data,
                         const std::vector<MsyLink::PropLink_t>& links);
QT_API bool UpdateObjects(const std::vector<ustr>& dwgs);
}  // namespace QNSD

// Circuit-designer module, "QnCs_r24x64.arx".
namespace QNCS {
QT_API bool GetLayerInfo(void* db, long id, const std::map<ustr_pre<32>, ustr_pre<32>>& values, wchar_t* outText1,
                         wchar_t* outText2, short& outValue1, short& outValue2);
QT_API bool GetPageNamesFromDwg(const wchar_t* dwgPath, std::vector<ustr>& names);
QT_API bool IsDrawingConnectedToProject(void* db);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
QT_API int ObjectSelectionDataAccessor(int request, void* a, void* b, int c);
QT_API void SetSkipNextWarningMsgWhenOpeningDrawing(bool skip);
QT_API bool ZoomTo(const wchar_t* dwgPath, const std::vector<ustr>& handles, bool flag);
}  // namespace QNCS

// Heat-exchanger module, "QNHeatEx_r24x64.arx".
namespace QNH {
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
}

// Utilities module, "QNUtilities_r24x64.arx".
namespace QNU {
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
}

// Properties palette, "QUILQNPropertiesPalette_r24x64.arx".
namespace QNPP {
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);
}

// Dispatch by project file kind: the extension of projectPath, without
// regard to case, "epj" main module, "qep" electrical, "qrd" room.
QT_API int ConnectDbToProject(void* db, const wchar_t* a, const wchar_t* projectPath, int mode);
QT_API ustr GetProjectName(const wchar_t* projectPath);
QT_API int SetPrjData(const wchar_t* projectPath, const ProjectWizard::Data& data);
// "epj" and "qrd" only: the electrical module keeps no storeys.
QT_API int ReadStoreysFromProjectFile(const wchar_t* projectPath, std::vector<StoreyData_t>& storeys);
// By the database's file name; "epj" and "qep" only. False for an invalid db.
QT_API bool ReadModelDwgs(const QBaseDb& db, std::vector<ustr>& dwgs, bool flag);

// Dispatch by application id (main module 1, electrical 2).
QT_API bool GetProjectInfoOptions(Lng::AppID app, void* db, ProjectInfo::Options& options);
// 1, 2, 6 and 7 keep drawings connected to projects; other ids answer false.
QT_API bool IsDrawingConnectedToProject(Lng::AppID app, void* db);
// The first of 1, 2, 6, 7 whose drawing db is; APP_NONE when none.
QT_API Lng::AppID GetDrawingAppId(void* db);
// The first module, in id order 1 to 9, that claims the command; APP_NONE
// when none does. out receives what that module wrote.
QT_API Lng::AppID GetCommandData(const wchar_t* command, wchar_t* out, int outLen);
QT_API bool IsMyCommand(const wchar_t* command, wchar_t* out, int outLen);

}  // namespace InterApp

#endif
