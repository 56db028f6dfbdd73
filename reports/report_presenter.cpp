#include "reports/report_presenter.h"

namespace {

QnReportPresenter* g_presenter = nullptr;

}  // namespace

namespace qt {
namespace report {

QnReportPresenter* InstalledPresenter() { return g_presenter; }

}  // namespace report
}  // namespace qt

QnReportPresenter* qn_set_report_presenter(QnReportPresenter* presenter) {
  QnReportPresenter* previous = g_presenter;
  g_presenter = presenter;
  return previous;
}
