// The state that all copies of one QBaseDb share. Callers never see it.
#ifndef QUILTOOL_PROJECT_QBASE_DB_IMPL_H
#define QUILTOOL_PROJECT_QBASE_DB_IMPL_H

#include "QBaseDb.h"

class QBaseDbImpl {
 public:
  short handle;            // engine file handle, negative: no file
  QBaseDbManager* owner;   // the manager that registered the file, or null
  unsigned char quickRead;
  unsigned char quickUpdate;
  unsigned char writable;
  short lastStatus;        // of the last engine call, 0 = success
  int refCount;            // QBaseDb objects (and scopes) sharing it

  // A state for an engine handle, its flags taken from the file's open
  // mode; null when memory runs out.
  static QBaseDbImpl* Create(short handle, QBaseDbManager* owner);
  // The one library-wide empty state; never freed.
  static QBaseDbImpl* Empty();
  bool isEmpty() const { return this == Empty(); }
  // Follows the engine's open mode: 0 quick read, 1 quick update (and
  // writable); other modes leave the quick flags clear.
  void mirrorOpenMode(short mode);
  // The empty state is shared by every default QBaseDb, so nothing done
  // through one of them may show in another: it keeps status -1.
  void setStatus(short status) {
    if (!isEmpty()) lastStatus = status;
  }
  static void Share(QBaseDbImpl* state) { ++state->refCount; }
  static void Release(QBaseDbImpl* state);
};

// Misuse seen by the shared states, kept for a debugger and for tests.
struct QBaseDbDiagnostics {
  bool releasedNullState;
  bool releasedOpenManagedState;
  bool shareCountBelowZero;
};
QBaseDbDiagnostics& QBaseDbDiagnosticFlags();

#endif
