// Test access to QBaseDb's shared states. Not for callers.
#ifndef QUILTOOL_PROJECT_QBASE_DB_INTERNAL_H
#define QUILTOOL_PROJECT_QBASE_DB_INTERNAL_H

#include "QBaseDb.h"

struct QtQBaseDbDiagnostics {
  bool releasedNullState;
  bool releasedOpenManagedState;
  bool shareCountBelowZero;
};

QtQBaseDbDiagnostics qt_qbasedb_diagnostics();
void qt_qbasedb_reset_diagnostics();
// Identity and share count of the state a QBaseDb shares.
const void* qt_qbasedb_state(const QBaseDb& db);
const void* qt_qbasedb_empty_state();
int qt_qbasedb_share_count(const QBaseDb& db);
// The Base64 the streams use, on any bytes.
ustr qt_qb_base64(const unsigned char* data, size_t size);
// Releases a state as a QBaseDb going away would (null included), and
// shares one as a new copy would.
void qt_qbasedb_release_state(const void* state);
void qt_qbasedb_share_state(const void* state);

#endif
