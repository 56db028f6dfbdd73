// The presenter a host installed for the report window and its save-file
// dialog (qn_set_report_presenter), or null.
#ifndef QUILTOOL_REPORTS_REPORT_PRESENTER_H
#define QUILTOOL_REPORTS_REPORT_PRESENTER_H

#include "SimpleReport.h"

namespace qt {
namespace report {

QnReportPresenter* InstalledPresenter();

}  // namespace report
}  // namespace qt

#endif
