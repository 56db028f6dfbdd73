// QBaseDbManager: the owner of every file opened by name.
//
// File names are compared exactly as given; callers pass the names they
// got from the file dialogs and the recent-file list, which agree.
#include <algorithm>
#include <new>
#include <string>

#include "core/boundary.h"
#include "project/qbase_db_impl.h"
#include "qb.h"

struct QBaseDbManager::Entry {
  QBaseDbImpl* state;
  std::wstring path;  // empty for adopted handles
};

QBaseDbManager::QBaseDbManager() : listener_(nullptr), context_(nullptr), lastStatus_(0) {}

QBaseDbManager::~QBaseDbManager() {
  for (Entry* e : entries_) {
    QBaseDbImpl* s = e->state;
    if (s->handle >= 0 && qbclosedatabase(s->handle) != QB_OK) qbreleasefile(s->handle);
    // Shares that outlive the manager keep a state without a file.
    s->handle = -1;
    s->quickRead = s->quickUpdate = 0;
    s->owner = nullptr;
    if (s->refCount <= 0) delete s;
    delete e;
  }
  entries_.clear();
}

QBaseDbManager& QBaseDbManager::instance() {
  static QBaseDbManager manager;
  return manager;
}

QBaseDbManager::Entry* QBaseDbManager::entryOf(const QBaseDbImpl* state) const {
  for (Entry* e : entries_)
    if (e->state == state) return e;
  return nullptr;
}

void QBaseDbManager::tell(Event event, const QBaseDbImpl* state) {
  if (!listener_) return;
  const Entry* e = entryOf(state);
  listener_(event, state->handle, e ? e->path.c_str() : L"", context_);
}

void QBaseDbManager::setListener(Listener listener, void* context) {
  listener_ = listener;
  context_ = context;
}

QBaseDb QBaseDbManager::adopt(short handle) {
  if (handle < 0) {
    lastStatus_ = QBERR_BADHANDLE;
    return QBaseDb();
  }
  QBaseDbImpl* state = QBaseDbImpl::Create(handle, this);
  Entry* e = state ? new (std::nothrow) Entry{state, std::wstring()} : nullptr;
  // A handle the manager cannot keep is released here, never leaked.
  const bool added = e && qt::NoThrow<bool>("QBaseDbManager::adopt", false, [&] {
    entries_.push_back(e);
    return true;
  });
  if (!added) {
    delete e;
    delete state;
    qbreleasefile(handle);
    lastStatus_ = QBERR_NOMEM;
    return QBaseDb();
  }
  lastStatus_ = QB_OK;
  return QBaseDb(state);
}

// A handle just opened by name: kept, and findable by that name.
QBaseDb QBaseDbManager::adoptOpened(short handle, short mode, const wchar_t* path, const char* where) {
  QBaseDb db = adopt(handle);
  // Opened for update, it is writable from the start.
  if (db.isValidDb() && mode == QB_MODE_UPDATE) db.impl_->writable = 1;
  // Without memory for its name the file stays open, just not findable by name.
  qt::NoThrowVoid(where, [&] {
    if (Entry* e = entryOf(db.impl_)) e->path = path;
  });
  return db;
}

QBaseDb QBaseDbManager::openFile(const wchar_t* path, short mode) {
  if (!path || !*path) {
    lastStatus_ = QBERR_BADARG;
    return QBaseDb();
  }
  QBaseDb open = find(path);
  if (open.isValidDb()) {
    if (mode == QB_MODE_QUICKUPDATE || mode == QB_MODE_UPDATE) open.setWritable();
    lastStatus_ = QB_OK;
    return open;
  }
  const short handle = qbinitfilew(path, -1);
  if (handle < 0) {
    lastStatus_ = handle;
    return QBaseDb();
  }
  const short status = qbopenfile(handle, mode);
  if (status != QB_OK) {
    qbreleasefile(handle);
    lastStatus_ = status;
    return QBaseDb();
  }
  return adoptOpened(handle, mode, path, "QBaseDbManager::openFile");
}

QBaseDb QBaseDbManager::createFile(const wchar_t* path, short hddq, short mode) {
  if (!path || !*path) {
    lastStatus_ = QBERR_BADARG;
    return QBaseDb();
  }
  const short handle = qbinitfilew(path, hddq);
  short status = handle < 0 ? handle : qbcreatefile(handle);
  if (status == QB_OK) status = qbopenfile(handle, mode);
  if (status != QB_OK) {
    if (handle >= 0) qbreleasefile(handle);
    lastStatus_ = status;
    return QBaseDb();
  }
  return adoptOpened(handle, mode, path, "QBaseDbManager::createFile");
}

QBaseDb QBaseDbManager::find(const wchar_t* path) const {
  if (!path || !*path) return QBaseDb();
  for (const Entry* e : entries_) {
    // A closed file's state lingers until its last share goes; it is not
    // the file any more.
    if (e->state->handle >= 0 && e->path == path) return QBaseDb(e->state);
  }
  return QBaseDb();
}

int QBaseDbManager::openCount() const {
  return static_cast<int>(std::count_if(entries_.begin(), entries_.end(),
                                        [](const Entry* e) { return e->state->handle >= 0; }));
}

void QBaseDbManager::removeMe(QBaseDbImpl* state) {
  tell(Removing, state);
  if (state->handle >= 0 && qbclosedatabase(state->handle) != QB_OK) qbreleasefile(state->handle);
  state->handle = -1;
  Entry* e = entryOf(state);
  if (e) {
    entries_.erase(std::find(entries_.begin(), entries_.end(), e));
    delete e;
  }
  delete state;
}

namespace {

// A file open for reading only, outside any quick mode, opened again for
// update on the same handle.
void ReopenForUpdate(short handle) {
  if (handle < 0 || qbgetopenmode(handle) != QB_MODE_READ) return;
  if (qbclosefile(handle) != QB_OK) return;
  if (qbopenfile(handle, QB_MODE_UPDATE) != QB_OK) qbopenfile(handle, QB_MODE_READ);
}

}  // namespace

void QBaseDbManager::changingToWrite(QBaseDbImpl* state) {
  tell(BecomingWritable, state);
  ReopenForUpdate(state->handle);
  state->writable = 1;
}

void QBaseDbManager::quickModeStarting(QBaseDbImpl* state, int type) {
  tell(type == QBaseDb::QuickMode::Update ? QuickUpdateStarting : QuickReadStarting, state);
  if (type == QBaseDb::QuickMode::Update && state->writable) ReopenForUpdate(state->handle);
}

void QBaseDbManager::closing(QBaseDbImpl* state, bool release) { tell(release ? Releasing : Closing, state); }
