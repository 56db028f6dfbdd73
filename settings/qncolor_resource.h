// Control ids of the color dialog (qncolor_win.rc); tests drive the
// dialog through them.
#ifndef QUILTOOL_SETTINGS_QNCOLOR_RESOURCE_H
#define QUILTOOL_SETTINGS_QNCOLOR_RESOURCE_H

#define IDC_QNCOLOR_LABEL 4601
#define IDC_QNCOLOR_NUMBER 4602
#define IDC_QNCOLOR_SWATCH 4603
#define IDC_QNCOLOR_NAME 4604

#endif
