// The module bridge at a glance: one line per function that calls a sibling
// module's export. Included several times with different definitions of the
// two row macros (no include guard on purpose): the bridge generates its
// functions and their address caches from it, the list of exports per
// module comes from it, and the tests and fixture modules are generated
// from it too, so a row cannot be forgotten by any of them.
//
// QT_BRIDGE(namespace, result type, function, (parameters), (arguments),
//           module, export, fall-back, result)
//   module    row of the module table (project/interapp_modules.h)
//   fall-back what the function answers while the module or export is missing
//   result    Same           the export's own result
//             TrueAfterCall  true once the export was called, whatever it answered
//             NonZero        the export answers int; the result is int != 0
//
// QT_BRIDGE_EXPORT(module, export's result type, export, (parameters), (arguments))
//   exports that the hand-written functions of interapp_special.cpp call:
//   two-module look-ups, the storey functions that find their module
//   themselves, the functions with a missing-export flag, and those that
//   change what they hand on.
//
// QT_NOTHING is the fall-back of functions that return nothing.

// clang-format off
// ---- InterApp::QNC, common module ----------------------------------------------------------------------------------
QT_BRIDGE(QNC, bool,  AcedRestoreStatusBar,             (), (),                                                          QNCommon, AcedRestoreStatusBarQNC,             false,      TrueAfterCall)
QT_BRIDGE(QNC, bool,  AcedSetStatusBarProgressMeter,    (const wchar_t* label, int min, int max), (label, min, max),     QNCommon, AcedSetStatusBarProgressMeterQNC,    false,      Same)
QT_BRIDGE(QNC, bool,  AcedSetStatusBarProgressMeterPos, (int pos), (pos),                                                QNCommon, AcedSetStatusBarProgressMeterPosQNC, false,      Same)
QT_BRIDGE(QNC, ustr,  GetAcadLanguage,                  (), (),                                                          QNCommon, GetAcadLanguageQNC,                  ustr(),     Same)
QT_BRIDGE(QNC, bool,  GetAcadLayoutsFromDwg,            (const wchar_t* dwgPath, std::vector<ustr>& layouts), (dwgPath, layouts), QNCommon, GetAcadLayoutsFromDwgQNC, false,   Same)
QT_BRIDGE(QNC, ustr,  GetAcadName,                      (), (),                                                          QNCommon, GetAcadNameQNC,                      ustr(),     Same)
QT_BRIDGE(QNC, ustr,  GetAcadVersion,                   (), (),                                                          QNCommon, GetAcadVersionQNC,                   ustr(),     Same)
QT_BRIDGE(QNC, ustr,  GetCurDwgFilePathName,            (), (),                                                          QNCommon, GetCurDwgFilePathNameQNC,            ustr(),     Same)
QT_BRIDGE(QNC, bool,  GetEntitiesInLayout,              (void* db, const wchar_t* layout, void* ids, bool flag), (db, layout, ids, flag), QNCommon, GetEntitiesInLayoutQNC, false, Same)
QT_BRIDGE(QNC, bool,  GetEntitiesInLayouts,             (void* db, void* ids), (db, ids),                                QNCommon, GetEntitiesInLayoutsQNC,             false,      Same)
QT_BRIDGE(QNC, void,  GetLayoutViewportsData,           (void* db, const wchar_t* layout, void* a, void* b, void* c, void* d), (db, layout, a, b, c, d), QNCommon, GetLayoutViewportsDataQNC, QT_NOTHING, Same)
QT_BRIDGE(QNC, bool,  IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QNCommon, IsMyCommandQNC,       false,      Same)
QT_BRIDGE(QNC, bool,  IsTransmitToolRunning,            (), (),                                                          QNCommon, IsTransmitToolRunningQNC,            false,      Same)
QT_BRIDGE(QNC, bool,  MaskDimtexts,                     (bool mask), (mask),                                             QNCommon, MaskDimtextsQNC,                     false,      TrueAfterCall)
QT_BRIDGE(QNC, int,   RunProjectWizard,                 (Lng::AppID app, ustr& projectPath, bool* flag), (app, projectPath, flag), QNCommon, RunProjectWizardQNC,  0,          Same)
QT_BRIDGE(QNC, bool,  SaveDatabase,                     (void* db, const wchar_t* path), (db, path),                     QNCommon, SaveDatabaseQNC,                     false,      Same)
QT_BRIDGE(QNC, bool,  SetTopDrawOrder,                  (const void* entity), (entity),                                  QNCommon, SetTopDrawOrderQNC,                  false,      Same)
QT_BRIDGE(QNC, void*, SetWorkingDatabase,               (void* db), (db),                                                QNCommon, SetWorkingDatabaseQNC,               nullptr,    Same)
QT_BRIDGE(QNC, bool,  ZoomTo,                           (void* db, const ObjPosInDwg& pos, bool a, bool b), (db, pos, a, b), QNCommon, ZoomToQNC,                   false,      Same)

// ---- InterApp::HPV, main module and its libraries ------------------------------------------------------------------
QT_BRIDGE(HPV, bool,  BuildVoidModelForReport,          (void* db, int kind, gm_model* model), (db, kind, model),        QnHpv,    BuildVoidModelForReportHPV,          false,      Same)
QT_BRIDGE(HPV, int,   CheckSelectionAreaName,           (const wchar_t* name), (name),                                   QnHpv,    CheckSelectionAreaNameHPV,           0,          Same)
QT_BRIDGE(HPV, int,   ConnectDbToProject,               (void* db, const wchar_t* a, const wchar_t* projectPath, int mode), (db, a, projectPath, mode), QnHpv, ConnectDbToProjectHPV, -1,   Same)
QT_BRIDGE(HPV, void,  CreateActuatorEdgePic,            (long id, gm_model* model), (id, model),                         QuilUtil, Util_CreateActuatorEdgePic,          QT_NOTHING, Same)
QT_BRIDGE(HPV, void,  CreateConnNodeDefSymbolEdgePic,   (long id, gm_model* model), (id, model),                         QuilUtil, Util_CreateConnNodeDefSymbolEdgePic, QT_NOTHING, Same)
QT_BRIDGE(HPV, void,  CreateDimTextPreviewPic,          (gm_model* model, short a, int b, int c), (model, a, b, c),      QuilUtil, Util_CreateDimTextPreviewPic,        QT_NOTHING, Same)
QT_BRIDGE(HPV, void,  CreateSymbolPic,                  (const wchar_t* symbol, gm_model* model, bool flag), (symbol, model, flag), QuilUtil, Util_CreateSymbolPic,  QT_NOTHING, Same)
QT_BRIDGE(HPV, bool,  GetAreasNamesFromDwg,             (const wchar_t* dwgPath, std::vector<ustr>& names), (dwgPath, names), QnHpv, GetAreasNamesFromDwgHPV,       false,      Same)
QT_BRIDGE(HPV, void,  GetClippedArea,                   (void* db, SelectionArea::Object& area), (db, area),             QnHpv,    GetClippedAreaHPV,                   QT_NOTHING, Same)
QT_BRIDGE(HPV, ustr,  GetCurPrjFilePathName,            (), (),                                                          QnHpv,    GetCurPrjFilePathNameHPV,            ustr(),     Same)
QT_BRIDGE(HPV, astr,  GetCurPrjMarketAreaCode,          (), (),                                                          QuilEPJ,  GetCurPrjMarketAreaCodeEPJ,          astr(),     Same)
QT_BRIDGE(HPV, short, GetDwgFloorId,                    (void* db), (db),                                                QnHpv,    GetDwgFloorIdHPV,                    0,          Same)
QT_BRIDGE(HPV, bool,  GetElectricalConnectionData,      (const void* entity, std::vector<InterApp::HPV::ElectricalConnectionData>& data), (entity, data), QnHpv, GetElectricalConnectionDataHPV, false, Same)
QT_BRIDGE(HPV, bool,  GetObjectGeometry,                (const void* entity, gm_model& model, double (&point)[3]), (entity, model, point), QnHpv, GetObjectGeometryHPV, false,     Same)
QT_BRIDGE(HPV, bool,  GetOtherDrawingList,              (void* db, const wchar_t* name, OtherDwg::Type type, std::vector<ustr>& list, bool flag), (db, name, type, list, flag), QnHpv, GetOtherDrawingListHPV, false, Same)
QT_BRIDGE(HPV, int,   GetPrjCharSet,                    (int a, const QBaseDb& db), (a, db),                             QuilUtil, GetPrjCharSetHPV,                    -1,         Same)
QT_BRIDGE(HPV, ustr,  GetProjectForOtherDrawing,        (void* db), (db),                                                QnHpv,    GetProjectForOtherDrawingHPV,        ustr(),     Same)
QT_BRIDGE(HPV, bool,  GetProjectInfoOptions,            (void* db, ProjectInfo::Options& options), (db, options),        QnHpv,    GetProjectInfoOptionsHPV,            false,      Same)
QT_BRIDGE(HPV, ustr,  GetProjectName,                   (const wchar_t* projectPath), (projectPath),                     QnHpv,    GetProjectNameHPV,                   ustr(),     Same)
QT_BRIDGE(HPV, QnVariant, GetPropertyValue,             (const void* entity, int property, const void* a, bool b, int c), (entity, property, a, b, c), QnHpv, GetPropertyValueHPV, QnVariant(), Same)
QT_BRIDGE(HPV, bool,  GetStoreyVariableUIName,          (int variable, ustr& name), (variable, name),                    QuilSer,  GetStoreyVariableUINameHPV,          false,      Same)
QT_BRIDGE(HPV, bool,  GetSystem,                        (const wchar_t* projectPath, short systemId, InterApp::HPV::SystemData_t& system), (projectPath, systemId, system), QnHpv, GetSystemHPV, false, Same)
QT_BRIDGE(HPV, void,  GetSystems,                       (const wchar_t* projectPath, short a, std::vector<InterApp::HPV::SystemData_t>& systems), (projectPath, a, systems), QnHpv, GetSystemsHPV, QT_NOTHING, Same)
QT_BRIDGE(HPV, bool,  HandleSystems,                    (HWND parent, InterApp::HPV::SystemCommand command, const wchar_t* projectPath, short a, const std::vector<short>* ids), (parent, command, projectPath, a, ids), QnHpv, HandleSystemsHPV, false, Same)
QT_BRIDGE(HPV, void,  HpvCreateRevisionCloud,           (RevisionCloudOptions& options), (options),                      QnHpv,    HpvCreateRevisionCloudHPV,           QT_NOTHING, Same)
QT_BRIDGE(HPV, bool,  IsAvailableReportAttribute,       (int attribute), (attribute),                                    QuilEPJ,  IsAvailableReportAttributeHPV,       false,      Same)
QT_BRIDGE(HPV, bool,  IsDrawingConnectedToProject,      (void* db), (db),                                                QnHpv,    IsDrawingConnectedToProjectHPV,      false,      Same)
QT_BRIDGE(HPV, bool,  IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QnHpv, IsMyCommandHPV,          false,      Same)
QT_BRIDGE(HPV, int,   ObjectSelectionDataAccessor,      (int request, void* a, void* b, int c), (request, a, b, c),      QuilSer,  ObjectSelectionDataAccessorHPV,      -1,         Same)
QT_BRIDGE(HPV, bool,  ReadModelDwgs,                    (const QBaseDb& db, std::vector<ustr>& dwgs, bool flag), (db, dwgs, flag), QuilSer, ReadModelDwgsHPV,        false,      Same)
QT_BRIDGE(HPV, int,   ReadStoreysFromProjectFile,       (const wchar_t* projectPath, std::vector<InterApp::StoreyData_t>& storeys), (projectPath, storeys), QuilEPJ, ReadStoreysFromProjectFileHPV, -1, Same)
QT_BRIDGE(HPV, astr,  SelectObject,                     (const wchar_t* prompt), (prompt),                               QnHpv,    SelectObjectHPV,                     astr(),     Same)
QT_BRIDGE(HPV, short, SetEdgeLineColor,                 (void* model, short a, short b), (model, a, b),                  QnHpv,    SetEdgeLineColorHPV,                 0,          Same)
QT_BRIDGE(HPV, bool,  SetOtherDrawingList,              (void* db, const wchar_t* name, OtherDwg::Type type, const std::vector<ustr>& list, bool flag), (db, name, type, list, flag), QnHpv, SetOtherDrawingListHPV, false, Same)
QT_BRIDGE(HPV, int,   SetPrjData,                       (const wchar_t* projectPath, const ProjectWizard::Data& data), (projectPath, data), QnHpv, SetPrjDataHPV,  -1,         Same)
QT_BRIDGE(HPV, bool,  SetProjectForOtherDrawing,        (void* db, const wchar_t* projectPath), (db, projectPath),       QnHpv,    SetProjectForOtherDrawingDbHPV,      false,      Same)
QT_BRIDGE(HPV, bool,  SetProjectForOtherDrawing,        (const wchar_t* dwgPath, const wchar_t* projectPath), (dwgPath, projectPath), QnHpv, SetProjectForOtherDrawingNameHPV, false, Same)
QT_BRIDGE(HPV, bool,  UnlinkHpvMsyObjects,              (const DwgObjectId& a, const DwgObjectId& b), (a, b),            QnHpv,    UnlinkHpvMsyObjectsHPV,              false,      Same)
QT_BRIDGE(HPV, void,  UpdateTraits,                     (const void* entity), (entity),                                  QnHpv,    UpdateTraitsHPV,                     QT_NOTHING, Same)
QT_BRIDGE(HPV, bool,  getAllTextStyles_,                (TextStyles& styles), (styles),                                  QnHpv,    getAllTextStyles,                    false,      NonZero)

// ---- InterApp::QNE, electrical module and its user interface -------------------------------------------------------
QT_BRIDGE(QNE, int,   ConnectDbToProject,               (void* db, const wchar_t* a, const wchar_t* projectPath, int mode), (db, a, projectPath, mode), Qne, ConnectDbToProjectQNE, -1,     Same)
QT_BRIDGE(QNE, bool,  CreateRevisionCloud,              (Lng::AppID app), (app),                                         Qne,      qneCreateRevisionCloud,              false,      Same)
QT_BRIDGE(QNE, bool,  CreateRevisionMark,               (Lng::AppID app), (app),                                         Qne,      qneCreateRevisionMark,               false,      Same)
QT_BRIDGE(QNE, bool,  ExplodeEntity,                    (void* entity, void* out, bool a, bool b), (entity, out, a, b),  Qne,      qneExplodeEntity,                    false,      Same)
QT_BRIDGE(QNE, bool,  GetCreatorAppAndTypeId,           (const void* entity, Lng::AppID& app, short& typeId), (entity, app, typeId), Qne, qneGetCreatorAppAndTypeId,     false,      Same)
QT_BRIDGE(QNE, ustr,  GetDeviceId,                      (const void* entity), (entity),                                  Qne,      qneGetDeviceId,                      ustr(),     Same)
QT_BRIDGE(QNE, bool,  GetDeviceIdFormat,                (void* db, long a, InterApp::QNE::DeviceIdFormat& format), (db, a, format), Qne, qneGetDeviceIdFormat,         false,      Same)
QT_BRIDGE(QNE, bool,  GetHostAreasNamesFromDwg,         (const wchar_t* dwgPath, std::vector<ustr>& names), (dwgPath, names), Qne,   GetHostAreasNamesFromDwgQNE,         false,      Same)
QT_BRIDGE(QNE, int,   GetLayerSettings,                 (void* db, const wchar_t* a, int b, const wchar_t* c, const wchar_t* d, InterApp::QNE::LayerData& data), (db, a, b, c, d, data), Qne, GetLayerSettingsQNE, -1, Same)
QT_BRIDGE(QNE, void*, GetProject,                       (void* db), (db),                                                Qne,      qneGetProject,                       nullptr,    Same)
QT_BRIDGE(QNE, bool,  GetProjectInfoOptions,            (void* db, ProjectInfo::Options& options), (db, options),        Qne,      qneGetProjectInfoOptions,            false,      Same)
QT_BRIDGE(QNE, ustr,  GetProjectName,                   (const wchar_t* projectPath), (projectPath),                     Qne,      GetProjectNameQNE,                   ustr(),     Same)
QT_BRIDGE(QNE, bool,  GetPropertyValue,                 (const void* entity, short property, QnVariant& value, const void* a), (entity, property, value, a), Qne, qneGetPropertyValue, false, Same)
QT_BRIDGE(QNE, bool,  GetStoreyVariableUIName,          (int variable, ustr& name), (variable, name),                    QneUi,    GetStoreyVariableUINameQNE,          false,      Same)
QT_BRIDGE(QNE, bool,  GetSwbAreasNamesFromDwg,          (const wchar_t* dwgPath, std::vector<ustr>& names), (dwgPath, names), Qne,   GetSwbAreasNamesFromDwgQNE,          false,      Same)
QT_BRIDGE(QNE, ustr,  GetUserVariableUIName,            (int variable), (variable),                                      QneUi,    GetUserVariableUINameQNE,            ustr(),     Same)
QT_BRIDGE(QNE, double, GetWorldScale,                   (void* db), (db),                                                Qne,      qneGetWorldScale,                    1.0,        Same)
QT_BRIDGE(QNE, bool,  IsDrawingConnectedToProject,      (void* db), (db),                                                Qne,      IsDrawingConnectedToProjectQNE,      false,      Same)
QT_BRIDGE(QNE, bool,  IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), Qne, IsMyCommandQNE,            false,      Same)
QT_BRIDGE(QNE, bool,  IsSchematicDrawing,               (void* db), (db),                                                Qne,      IsSchematicDrawingQNE,               false,      Same)
QT_BRIDGE(QNE, bool,  ReadModelDwgs,                    (const QBaseDb& db, std::vector<ustr>& dwgs, bool flag), (db, dwgs, flag), QneUi, ReadModelDwgsQNEUI,        false,      Same)
QT_BRIDGE(QNE, void,  RunPropertyDlg,                   (const void* entity, bool flag), (entity, flag),                 Qne,      qneRunPropertyDlg,                   QT_NOTHING, Same)
QT_BRIDGE(QNE, int,   SetPrjData,                       (const wchar_t* projectPath, const ProjectWizard::Data& data), (projectPath, data), Qne, SetPrjDataQNE,      -1,         Same)
QT_BRIDGE(QNE, bool,  SetPropertyValue,                 (const void* entity, short property, const QnVariant& value), (entity, property, value), Qne, qneSetPropertyValue, false,  Same)
QT_BRIDGE(QNE, void,  SetSkipNextWarningMsgWhenOpeningDrawing, (bool skip), (skip),                                      Qne,      set_skipNextWarningMsgWhenOpeningDrawingQNE, QT_NOTHING, Same)
QT_BRIDGE(QNE, int,   qlg_readWsz_defw,                 (wchar_t* buffer, long textId, short bufferLen, const wchar_t* defaultText), (buffer, textId, bufferLen, defaultText), QneUi, qlg_readWsz_defw_export, 0, Same)

// ---- InterApp::QNR, room module and its project files --------------------------------------------------------------
QT_BRIDGE(QNR, int,   ConnectDbToProject,               (void* db, const wchar_t* a, const wchar_t* projectPath, int mode), (db, a, projectPath, mode), Qnr, ConnectDbToProjectQNR, -1,     Same)
QT_BRIDGE(QNR, ustr,  GetProjectName,                   (const wchar_t* projectPath), (projectPath),                     Qnr,      GetProjectNameQNR,                   ustr(),     Same)
QT_BRIDGE(QNR, bool,  IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), Qnr, IsMyCommandQNR,            false,      Same)
QT_BRIDGE(QNR, bool,  ReadSiteInfoFromFile,             (const wchar_t* projectPath, ProjectInfo::SiteInfo& site, ProjectInfo::BuildingInfo& building), (projectPath, site, building), QuilQRP, ReadSiteInfoFromFileQRP, false, Same)
QT_BRIDGE(QNR, int,   ReadStoreysFromProjectFile,       (const wchar_t* projectPath, std::vector<InterApp::StoreyData_t>& storeys), (projectPath, storeys), QuilQRP, ReadStoreysFromProjectFileQRP, -1, Same)
QT_BRIDGE(QNR, int,   SetPrjData,                       (const wchar_t* projectPath, const ProjectWizard::Data& data), (projectPath, data), Qnr, SetPrjDataQNR,      -1,         Same)
QT_BRIDGE(QNR, void,  SetSkipNextWarningMsgWhenOpeningDrawing, (bool skip), (skip),                                      Qnr,      set_skipNextWarningMsgWhenOpeningDrawingQNR, QT_NOTHING, Same)

// ---- InterApp::QNSD, schematics module and its user interface ------------------------------------------------------
QT_BRIDGE(QNSD, bool, CanStartCommand,                  (), (),                                                          QnSd,     CanStartCommandQNSD,                 false,      Same)
QT_BRIDGE(QNSD, bool, ChangeHpvLinkHandle,              (const DwgObjectId& id, const char* oldHandle, const char* newHandle), (id, oldHandle, newHandle), QnSd, ChangeHpvLinkHandleQNSD, false, Same)
QT_BRIDGE(QNSD, bool, CreatePartDataMap,                (MsyLink::PartDataMap& map, const std::vector<ustr>& dwgs, const std::set<ustr_pre<32>>& parts), (map, dwgs, parts), QnSd, CreatePartDataMapQNSD, false, Same)
QT_BRIDGE(QNSD, bool, GetPageNamesFromDwg,              (const wchar_t* dwgPath, std::vector<ustr>& names), (dwgPath, names), QnSd,  GetPageNamesFromDwgQNSD,             false,      Same)
QT_BRIDGE(QNSD, bool, GetProperties,                    (const std::vector<ustr>& dwgs, std::set<MsyLink::PropDef_t>& properties), (dwgs, properties), QnSd, GetPropertiesQNSD, false, Same)
QT_BRIDGE(QNSD, bool, IsDrawingConnectedToProject,      (void* db), (db),                                                QnSd,     IsDrawingConnectedToProjectQNSD,     false,      Same)
QT_BRIDGE(QNSD, bool, IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QnSd, IsMyCommandQNSD,          false,      Same)
QT_BRIDGE(QNSD, bool, LinkHpvObject,                    (const wchar_t* dwgPath, const char* handle, const DwgObjectId& id), (dwgPath, handle, id), QnSd, LinkHpvObjectQNSD, false,  Same)
QT_BRIDGE(QNSD, astr, SelectObject,                     (const wchar_t* prompt), (prompt),                               QnSd,     SelectObjectQNSD,                    astr(),     Same)
QT_BRIDGE(QNSD, bool, SetDatasetLocationAbsolute,       (void* db, bool absolute), (db, absolute),                       QnSd,     SetDatasetLocationAbsoluteQNSD,      false,      Same)
QT_BRIDGE(QNSD, bool, SetHpvLinkDwgObjId,               (const void* entity, const DwgObjectId& id), (entity, id),       QnSd,     SetHpvLinkDwgObjIdQNSD,              false,      Same)
QT_BRIDGE(QNSD, void, SetSkipNextWarningMsgWhenOpeningDrawing, (bool skip), (skip),                                      QnSd,     set_skipNextWarningMsgWhenOpeningDrawingQNSD, QT_NOTHING, Same)
QT_BRIDGE(QNSD, bool, UpdateObject,                     (void* entity, MsyLink::PartDataMap::ObjDataExt_t& data, const std::vector<MsyLink::PropLink_t>& links), (entity, data, links), QnSd, UpdateObjectQNSD, false, Same)
QT_BRIDGE(QNSD, bool, UpdateObjects,                    (const std::vector<ustr>& dwgs), (dwgs),                         QnSd,     UpdateObjectsQNSD,                   false,      Same)

// ---- InterApp::QNCS, circuit-designer module ------------------------------------------------------------------------
QT_BRIDGE(QNCS, bool, GetLayerInfo,                     (void* db, long id, const std::map<ustr_pre<32>, ustr_pre<32>>& values, wchar_t* outText1, wchar_t* outText2, short& outValue1, short& outValue2), (db, id, values, outText1, outText2, outValue1, outValue2), QnCs, getLayerInfoQNCS, false, Same)
QT_BRIDGE(QNCS, bool, GetPageNamesFromDwg,              (const wchar_t* dwgPath, std::vector<ustr>& names), (dwgPath, names), QnCs,  GetPageNamesFromDwgQNCS,             false,      Same)
QT_BRIDGE(QNCS, bool, IsDrawingConnectedToProject,      (void* db), (db),                                                QnCs,     IsDrawingConnectedToProjectQNCS,     false,      Same)
QT_BRIDGE(QNCS, bool, IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QnCs, IsMyCommandQNCS,          false,      Same)
QT_BRIDGE(QNCS, int,  ObjectSelectionDataAccessor,      (int request, void* a, void* b, int c), (request, a, b, c),      QnCs,     ObjectSelectionDataAccessorQNCS,     -1,         Same)
QT_BRIDGE(QNCS, void, SetSkipNextWarningMsgWhenOpeningDrawing, (bool skip), (skip),                                      QnCs,     set_skipNextWarningMsgWhenOpeningDrawingQNCS, QT_NOTHING, Same)
QT_BRIDGE(QNCS, bool, ZoomTo,                           (const wchar_t* dwgPath, const std::vector<ustr>& handles, bool flag), (dwgPath, handles, flag), QnCs, ZoomToQNCS, false,  Same)

// ---- InterApp::QNH, QNU, QNPP: heat exchanger, utilities, properties palette ---------------------------------------
QT_BRIDGE(QNH,  bool, IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QNHeatEx, IsMyCommandQNH,       false,      Same)
QT_BRIDGE(QNU,  bool, IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QNUtilities, IsMyCommandQNU,    false,      Same)
QT_BRIDGE(QNPP, bool, IsMyCommand,                      (const wchar_t* command, wchar_t* out, int outLen), (command, out, outLen), QUILQNPropertiesPalette, IsMyCommandQNPP, false, Same)

// ---- Exports of the hand-written functions (interapp_special.cpp) --------------------------------------------------
QT_BRIDGE_EXPORT(QNCommon, bool,  GetReportDataQNC,                  (void* db, InterApp::ReportCallback* callback, int kind), (db, callback, kind))
QT_BRIDGE_EXPORT(QuilUtil, ustr,  Qlg_textUserVarDef,                (short app, int textId, const wchar_t* text), (app, textId, text))
QT_BRIDGE_EXPORT(QuilUtil, int,   Reg_GetWindowPos,                  (HKEY key, const wchar_t* name, HWND window, RECT* rect, int* show, bool flag), (key, name, window, rect, show, flag))
QT_BRIDGE_EXPORT(QuilUtil, int,   Reg_SetWindowPosOnly,              (HKEY key, const wchar_t* name, HWND window, bool flag), (key, name, window, flag))
QT_BRIDGE_EXPORT(QuilUtil, int,   Reg_SetWindowPos,                  (HKEY key, const wchar_t* name, HWND window), (key, name, window))
QT_BRIDGE_EXPORT(Qne,      int,   ObjectSelectionDataAccessorQNE,    (int request, void* a, void* b, int c), (request, a, b, c))
QT_BRIDGE_EXPORT(QneUi,    int,   ObjectSelectionDataAccessorQNEUI,  (int request, void* a, void* b, int c), (request, a, b, c))
QT_BRIDGE_EXPORT(QneUi,    int,   GetPropertyNameQNEUI,              (void* entity, short property, wchar_t* buffer, int bufferLen), (entity, property, buffer, bufferLen))
QT_BRIDGE_EXPORT(Qnr,      short, qrmif_storey_get_properties,       (const wchar_t* storey, wchar_t* name, double* const a, double* b, double* const c, double* d), (storey, name, a, b, c, d))
QT_BRIDGE_EXPORT(Qnr,      short, qrmif_storey_get_properties_ex,    (const void* storey, wchar_t* name, double* const a, double* b, double* const c, double* d, double* const e), (storey, name, a, b, c, d, e))
QT_BRIDGE_EXPORT(QnSd,     int,   ObjectSelectionDataAccessorQNSD,   (int request, void* a, void* b, int c), (request, a, b, c))
QT_BRIDGE_EXPORT(QnSdUi,   int,   ObjectSelectionDataAccessorQNSDUI, (int request, void* a, void* b, int c), (request, a, b, c))
// clang-format on
