// The application table: one row per module of the suite, searched front to
// back (the first match wins, so the order is part of the behaviour).
#include "settings/lng_apptable.h"

#include "gwframe.h"
#include "core/boundary.h"

namespace qt {

const AppRow kAppTable[kAppRows] = {
    {Lng::APP_NONE, L"", nullptr, L"Quillon", L"Quillon"},
    {Lng::APP_HPV, L"HPV", L"QuilQlg.qlg", L"Quillon V&P", L"Quillon Ventilation & Piping"},
    {Lng::APP_QNE, L"QNE", L"Qne.qlg", L"Quillon-E", L"Quillon Electrical"},
    {Lng::APP_QNC, L"QNC", L"QNCommon.qlg", L"Quillon Common", L"Quillon Common"},
    {Lng::APP_QNR, L"QNR", L"QRP.qlg", L"Quillon-R", L"Quillon Room"},
    {Lng::APP_QNH, L"QNH", L"QNHeatEx.qlg", L"Heat Exchanger", L"Quillon Heat Exchanger"},
    {Lng::APP_QNSD, L"QNSD", L"QnSd.qlg", L"Quillon Schematics", L"Quillon Schematics"},
    {Lng::APP_QNCS, L"QNCS", L"QnCs.qlg", L"Quillon-CD", L"Quillon Circuit Designer"},
    {Lng::APP_QNU, L"QNU", nullptr, L"QNUtilities", L"Quillon Utilities"},
    {Lng::APP_HVAC, L"HVAC", L"QuilHvac.qlg", L"Quillon V&P", L"Quillon Ventilation & Piping"},
    {Lng::APP_QPD, L"QPD", L"QuilQpd.qlg", L"Quillon V&P", L"Quillon Ventilation & Piping"},
    {Lng::APP_PMV, L"PMV", L"QuilPMV.qlg", L"Quillon V&P", L"Quillon Ventilation & Piping"},
    {Lng::APP_QNSS, L"QNSS", nullptr, L"Quillon V&P", L"Quillon Ventilation & Piping"},
    {Lng::APP_QNPP, L"QNPP", nullptr, L"PropertiesPalette", L"Quillon Properties Palette"},
};

int AppRowIndex(Lng::AppID id) {
  for (int i = 0; i < kAppRows; ++i) {
    if (kAppTable[i].id == id) return i;
  }
  return -1;
}

}  // namespace qt

Lng::AppID Lng::GetAppId(const wchar_t* tag) {
  const wchar_t* wanted = tag ? tag : L"";
  for (const qt::AppRow& row : qt::kAppTable) {
    if (qn_wcsicmp(row.tag, wanted) == 0) return row.id;
  }
  return Lng::APP_UNKNOWN;
}

ustr Lng::GetAppName(Lng::AppID id, bool shortName) {
  return qt::NoThrow<ustr>("Lng::GetAppName", ustr(), [&]() -> ustr {
    const int i = qt::AppRowIndex(id);
    if (i < 0) return ustr();
    return shortName ? qt::kAppTable[i].shortName : qt::kAppTable[i].longName;
  });
}

ustr Lng::GetAppTag(Lng::AppID id) {
  return qt::NoThrow<ustr>("Lng::GetAppTag", ustr(), [&]() -> ustr {
    const int i = qt::AppRowIndex(id);
    return i < 0 ? ustr() : ustr(qt::kAppTable[i].tag);
  });
}
