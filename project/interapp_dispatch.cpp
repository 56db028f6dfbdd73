// The bridge functions that choose a module: by the kind of project file
// and by application id.
#include "FileNames.h"
#include "InterApp.h"
#include "core/boundary.h"
#include "gwframe.h"

namespace {

enum class ProjectKind { None, Hpv, Qne, Qnr };

ProjectKind KindOfProject(const wchar_t* projectPath) {
  wchar_t extension[32];
  if (gwfileextension(projectPath, extension, 32) != 0) return ProjectKind::None;
  if (qn_wcsicmp(extension, L"epj") == 0) return ProjectKind::Hpv;
  if (qn_wcsicmp(extension, L"qep") == 0) return ProjectKind::Qne;
  if (qn_wcsicmp(extension, L"qrd") == 0) return ProjectKind::Qnr;
  return ProjectKind::None;
}

}  // namespace

int InterApp::ConnectDbToProject(void* db, const wchar_t* a, const wchar_t* projectPath, int mode) {
  switch (KindOfProject(projectPath)) {
    case ProjectKind::Hpv: return HPV::ConnectDbToProject(db, a, projectPath, mode);
    case ProjectKind::Qne: return QNE::ConnectDbToProject(db, a, projectPath, mode);
    case ProjectKind::Qnr: return QNR::ConnectDbToProject(db, a, projectPath, mode);
    default: return -1;
  }
}

ustr InterApp::GetProjectName(const wchar_t* projectPath) {
  return qt::NoThrow("InterApp::GetProjectName", ustr(), [&] {
    switch (KindOfProject(projectPath)) {
      case ProjectKind::Hpv: return HPV::GetProjectName(projectPath);
      case ProjectKind::Qne: return QNE::GetProjectName(projectPath);
      case ProjectKind::Qnr: return QNR::GetProjectName(projectPath);
      default: return ustr();
    }
  });
}

int InterApp::SetPrjData(const wchar_t* projectPath, const ProjectWizard::Data& data) {
  switch (KindOfProject(projectPath)) {
    case ProjectKind::Hpv: return HPV::SetPrjData(projectPath, data);
    case ProjectKind::Qne: return QNE::SetPrjData(projectPath, data);
    case ProjectKind::Qnr: return QNR::SetPrjData(projectPath, data);
    default: return -1;
  }
}

int InterApp::ReadStoreysFromProjectFile(const wchar_t* projectPath, std::vector<StoreyData_t>& storeys) {
  switch (KindOfProject(projectPath)) {
    case ProjectKind::Hpv: return HPV::ReadStoreysFromProjectFile(projectPath, storeys);
    case ProjectKind::Qnr: return QNR::ReadStoreysFromProjectFile(projectPath, storeys);
    default: return -1;  // the electrical module keeps no storeys
  }
}

bool InterApp::ReadModelDwgs(const QBaseDb& db, std::vector<ustr>& dwgs, bool flag) {
  return qt::NoThrow("InterApp::ReadModelDwgs", false, [&] {
    if (!db.isValidDb()) return false;
    const ustr fileName = db.getFileName();
    switch (KindOfProject(fileName.c_str())) {
      case ProjectKind::Hpv: return HPV::ReadModelDwgs(db, dwgs, flag);
      case ProjectKind::Qne: return QNE::ReadModelDwgs(db, dwgs, flag);
      default: return false;  // room projects keep no model drawings
    }
  });
}

bool InterApp::GetProjectInfoOptions(Lng::AppID app, void* db, ProjectInfo::Options& options) {
  switch (app) {
    case Lng::APP_HPV: return HPV::GetProjectInfoOptions(db, options);
    case Lng::APP_QNE: return QNE::GetProjectInfoOptions(db, options);
    default: return false;
  }
}

bool InterApp::IsDrawingConnectedToProject(Lng::AppID app, void* db) {
  switch (app) {
    case Lng::APP_HPV: return HPV::IsDrawingConnectedToProject(db);
    case Lng::APP_QNE: return QNE::IsDrawingConnectedToProject(db);
    case Lng::APP_QNSD: return QNSD::IsDrawingConnectedToProject(db);
    case Lng::APP_QNCS: return QNCS::IsDrawingConnectedToProject(db);
    default: return false;
  }
}

Lng::AppID InterApp::GetDrawingAppId(void* db) {
  for (Lng::AppID app : {Lng::APP_HPV, Lng::APP_QNE, Lng::APP_QNSD, Lng::APP_QNCS}) {
    if (IsDrawingConnectedToProject(app, db)) return app;
  }
  return Lng::APP_NONE;
}

Lng::AppID InterApp::GetCommandData(const wchar_t* command, wchar_t* out, int outLen) {
  typedef bool (*Claim)(const wchar_t*, wchar_t*, int);
  static const struct {
    Lng::AppID app;
    Claim claims;
  } kModules[] = {
      {Lng::APP_HPV, &HPV::IsMyCommand},   {Lng::APP_QNE, &QNE::IsMyCommand},   {Lng::APP_QNC, &QNC::IsMyCommand},
      {Lng::APP_QNR, &QNR::IsMyCommand},   {Lng::APP_QNH, &QNH::IsMyCommand},   {Lng::APP_QNSD, &QNSD::IsMyCommand},
      {Lng::APP_QNCS, &QNCS::IsMyCommand}, {Lng::APP_QNU, &QNU::IsMyCommand},   {Lng::APP_QNPP, &QNPP::IsMyCommand},
  };
  for (const auto& module : kModules) {
    if (module.claims(command, out, outLen)) return module.app;
  }
  return Lng::APP_NONE;
}

bool InterApp::IsMyCommand(const wchar_t* command, wchar_t* out, int outLen) {
  return GetCommandData(command, out, outLen) != Lng::APP_NONE;
}
