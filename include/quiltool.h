// The whole exported interface of the QuilTool library.
#ifndef QUILTOOL_H
#define QUILTOOL_H

#include "quiltool_export.h"
#include "qn_wintypes.h"
#include "ustr.h"
#include "qn_utf.h"
#include "LngAppID.h"
#include "gwframe.h"
#include "gwarray.h"
#include "FileNames.h"
#include "qn_presenter.h"
#include "qn_clipboard.h"
#include "Registry.h"
#include "Lng.h"
#include "CountryData.h"
#include "qn_window_presenter.h"
#include "QnColor.h"
#include "QnVariant.h"
#include "ValueValidator.h"
#include "gm_model.h"
#include "QnListView2.h"
#include "Logging.h"
#include "gwflock.h"
#include "FileSharingServiceManager.h"
#include "FileLocker.h"
#include "qb.h"
#include "QBaseDb.h"
#include "InterAppRecords.h"
#include "InterApp.h"
#include "MsExcel.h"

#endif
