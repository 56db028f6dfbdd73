// Numbers of the report window's dialog template and controls; the menu
// items and buttons use SimpleReportOuputDlg::Command numbers.
#ifndef QUILTOOL_REPORTS_REPORT_RESOURCE_H
#define QUILTOOL_REPORTS_REPORT_RESOURCE_H

#define IDD_REPORT_OUTPUT 4100
#define IDC_REPORT_LIST 4101
#define IDC_REPORT_ZOOM_LABEL 4102
#define IDC_REPORT_ZOOM 4103
#define IDC_REPORT_COPY 40104
#define IDC_REPORT_SAVE_TEXT 40101
#define IDC_REPORT_SAVE_EXCEL 40102
#define IDC_REPORT_ZOOM_APPLY 40105

#endif
