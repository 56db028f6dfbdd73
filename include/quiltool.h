// The whole exported interface of the QuilTool library.
#ifndef QUILTOOL_H
#define QUILTOOL_H

#include "quiltool_export.h"
#include "qn_wintypes.h"
#include "ustr.h"
#include "LngAppID.h"
#include "gwframe.h"
#include "qn_presenter.h"
#include "Registry.h"
#include "Lng.h"

#endif
