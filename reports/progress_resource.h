// Resource numbers of the progress dialogs: one template per bar count
// (kTemplateBase + count), and per bar i its label, bar and percentage.
#ifndef QUILTOOL_REPORTS_PROGRESS_RESOURCE_H
#define QUILTOOL_REPORTS_PROGRESS_RESOURCE_H

#define IDD_PROGRESS_BASE 99
#define IDC_PROGRESS_LABEL 100
#define IDC_PROGRESS_BAR 110
#define IDC_PROGRESS_PERCENT 120
#define IDC_PROGRESS_HEADER 130

#endif
