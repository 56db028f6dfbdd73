// The table of `quiltool report`: a project database's records in a grid
// model, one row per record and one column per attribute.
#ifndef QUILTOOL_TOOLS_REPORT_TABLE_H
#define QUILTOOL_TOOLS_REPORT_TABLE_H

#include <functional>
#include <string>

#include "QBaseDb.h"
#include "QnListView2.h"

namespace qt_tool {

// Told before each set and every few records; answering false stops the
// walk (the user cancelled).
struct WalkProgress {
  std::function<bool(int set, int sets, const char* name)> set;
  std::function<bool(long record, long records)> record;
};

// Columns: "Id" (LParam 0), for all sets "Set" (LParam 1), then one column
// per attribute named after it. With one set a column's LParam is the
// attribute's number plus 16; for all sets, attributes of the same name
// and type share one column whose LParam is derived from that name, so a
// saved layout still fits after attributes were added. Row LParams are the
// record ids (ids of up to 8 characters packed into the number; the row's
// 8-bit tag always holds the id).
// Answers 0, 1 with a message (unknown set, walk failed) or 4 when the
// walk was stopped.
int FillReportTable(const QBaseDb& db, const std::string& set, QnListView2& grid, const WalkProgress& progress,
                    std::string* message);

long long PackedId(const char* id);

}  // namespace qt_tool

#endif
