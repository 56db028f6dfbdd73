// QBaseDb: shared states, value semantics, state queries and forwarding.
#include <cstring>
#include <new>

#include "core/boundary.h"
#include "gwframe.h"
#include "project/qb_base64.h"
#include "project/qbase_db_impl.h"
#include "project/qbase_db_internal.h"
#include "qb.h"

namespace {

QBaseDbDiagnostics g_diagnostics = {false, false, false};

}  // namespace

QBaseDbDiagnostics& QBaseDbDiagnosticFlags() { return g_diagnostics; }

QBaseDbImpl* QBaseDbImpl::Empty() {
  // Plain data without a destructor: shares released while the process
  // ends still find it.
  static QBaseDbImpl empty = {-1, nullptr, 0, 0, 0, -1, 0};
  return &empty;
}

QBaseDbImpl* QBaseDbImpl::Create(short handle, QBaseDbManager* owner) {
  QBaseDbImpl* s = new (std::nothrow) QBaseDbImpl{handle, owner, 0, 0, 0, 0, 0};
  if (s) s->mirrorOpenMode(qbgetopenmode(handle));
  return s;
}

void QBaseDbImpl::mirrorOpenMode(short mode) {
  quickRead = mode == QB_MODE_QUICKREAD;
  quickUpdate = mode == QB_MODE_QUICKUPDATE;
  if (mode == QB_MODE_QUICKUPDATE) writable = 1;
}

void QBaseDbImpl::Release(QBaseDbImpl* state) {
  if (!state) {
    g_diagnostics.releasedNullState = true;
    return;
  }
  --state->refCount;
  if (state->refCount < 0) {
    g_diagnostics.shareCountBelowZero = true;
    return;
  }
  if (state->refCount > 0 || state->isEmpty()) return;
  if (state->owner) {
    // Files opened by name are meant to be closed before they are let go;
    // the manager closes them anyway.
    if (state->handle >= 0) g_diagnostics.releasedOpenManagedState = true;
    state->owner->removeMe(state);
  } else {
    // A free-standing handle's file belongs to whoever gave the handle.
    delete state;
  }
}

// --- value semantics ---

QBaseDb::QBaseDb() : impl_(QBaseDbImpl::Empty()) { QBaseDbImpl::Share(impl_); }

QBaseDb::QBaseDb(short handle) : impl_(QBaseDbImpl::Create(handle, nullptr)) {
  if (!impl_) impl_ = QBaseDbImpl::Empty();
  QBaseDbImpl::Share(impl_);
}

QBaseDb::QBaseDb(QBaseDbImpl* shared) : impl_(shared ? shared : QBaseDbImpl::Empty()) { QBaseDbImpl::Share(impl_); }

QBaseDb::QBaseDb(const QBaseDb& other) : impl_(other.impl_) { QBaseDbImpl::Share(impl_); }

QBaseDb::QBaseDb(QBaseDb&& other) noexcept : impl_(other.impl_) {
  other.impl_ = QBaseDbImpl::Empty();
  QBaseDbImpl::Share(other.impl_);
}

QBaseDb& QBaseDb::operator=(const QBaseDb& other) {
  if (this == &other) return *this;
  QBaseDbImpl::Release(impl_);
  impl_ = other.impl_;
  QBaseDbImpl::Share(impl_);
  return *this;
}

QBaseDb& QBaseDb::operator=(QBaseDb&& other) noexcept {
  if (this == &other) return *this;
  QBaseDbImpl::Release(impl_);
  impl_ = other.impl_;
  other.impl_ = QBaseDbImpl::Empty();
  QBaseDbImpl::Share(other.impl_);
  return *this;
}

QBaseDb::~QBaseDb() { QBaseDbImpl::Release(impl_); }

QBaseDb QBaseDb::WrapNakedHandleInTemporary(short handle, bool writable) {
  QBaseDb db(handle);
  if (writable) db.setWritable();
  return db;
}

short QBaseDb::keep(short status) const {
  impl_->setStatus(status);
  return status;
}

// --- streams ---

QBaseDb QBaseDb::ReadStream(const wchar_t* path) {
  const short handle = qbreadstreamw(path);
  return handle < 0 ? QBaseDb() : QBaseDbManager::instance().adopt(handle);
}

QBaseDb QBaseDb::ReadStreamBuf(const unsigned char* data, long size) {
  const short handle = qbreadstreambuf(data, size);
  return handle < 0 ? QBaseDb() : QBaseDbManager::instance().adopt(handle);
}

QBaseDb QBaseDb::createStreamDb() const {
  long size = 0;
  char* buffer = createStreamBuf(&size);
  if (!buffer) return QBaseDb();
  QBaseDb db = ReadStreamBuf(reinterpret_cast<const unsigned char*>(buffer), size);
  releaseStreamBuf(buffer);
  return db;
}

ustr QBaseDb::createStreamAsBase64() const {
  if (impl_->handle < 0) return ustr();
  long size = 0;
  char* buffer = qbcreatestreambuf(impl_->handle, &size);
  if (!buffer) return ustr();
  ustr text = qt::NoThrow("QBaseDb::createStreamAsBase64", ustr(), [&] {
    const std::string base64 = qb::Base64Encode(reinterpret_cast<const unsigned char*>(buffer), static_cast<size_t>(size));
    return ustr(std::wstring(base64.begin(), base64.end()));
  });
  qbreleasestreambuf(buffer);
  return text;
}

// --- state ---

bool QBaseDb::isValidDb() const { return impl_->handle >= 0; }
bool QBaseDb::equals(const QBaseDb& other) const { return impl_->handle == other.impl_->handle; }
short QBaseDb::errorStatus() const { return impl_->lastStatus; }

short QBaseDb::getLastError() {
  impl_->setStatus(0);
  return qbgetlasterror(impl_->handle);
}

bool QBaseDb::isQuickReadMode() const { return impl_->quickRead != 0; }
bool QBaseDb::isQuickUpdateMode() const { return impl_->quickUpdate != 0; }
bool QBaseDb::isWritable() const { return !impl_->quickRead && impl_->writable; }

void QBaseDb::setWritable() {
  if (impl_->isEmpty()) return;
  if (impl_->owner)
    impl_->owner->changingToWrite(impl_);
  else
    impl_->writable = 1;
}

short QBaseDb::getHqbFile() const { return impl_->handle; }

ustr QBaseDb::getFileName() const {
  wchar_t buffer[260];
  buffer[0] = L'\0';
  qbgetfilenamew(impl_->handle, buffer, 260);
  return qt::NoThrow("QBaseDb::getFileName", ustr(), [&] { return ustr(buffer); });
}

short QBaseDb::getFileName(wchar_t* buffer) const {
  if (buffer) buffer[0] = L'\0';
  return qbgetfilenamew(impl_->handle, buffer, 260);
}

short QBaseDb::getFileName(char* buffer) const {
  if (!buffer) return qbgetfilenamew(impl_->handle, nullptr, 0);
  buffer[0] = '\0';
  wchar_t wide[260];
  const short status = getFileName(wide);
  if (status == QB_OK) {
    // The converter answers empty text only when memory ran out.
    const std::string narrow = qn_wide_to_ansi(wide);
    if (narrow.empty() && wide[0]) return QBERR_NOMEM;
    QN_strcpy_s(buffer, 260, narrow.c_str());
  }
  return status;
}

// --- files ---

short QBaseDb::openFile(short mode) {
  const short status = keep(qbopenfile(impl_->handle, mode));
  // The engine's quick modes begin with the open modes 0 and 1.
  if (status == QB_OK && !impl_->isEmpty()) impl_->mirrorOpenMode(mode);
  return status;
}

short QBaseDb::createFile() { return keep(qbcreatefile(impl_->handle)); }

short QBaseDb::closeFile() {
  const short status = keep(qbclosefile(impl_->handle));
  if (status == QB_OK && !impl_->isEmpty()) impl_->quickRead = impl_->quickUpdate = 0;
  return status;
}

short QBaseDb::fileIsOpen() const { return keep(qbfileisopen(impl_->handle)); }

short QBaseDb::switchFile(const wchar_t* path) {
  qbsetwarningmode(impl_->handle, 0);
  return keep(qbswitchfilew(impl_->handle, path));
}

short QBaseDb::writeStream(const wchar_t* path) const { return keep(qbwritestreamw(impl_->handle, path)); }

char* QBaseDb::createStreamBuf(long* size) const {
  keep(0);
  return qbcreatestreambuf(impl_->handle, size);
}

char* QBaseDb::releaseStreamBuf(char* buffer) { return qbreleasestreambuf(buffer); }

short QBaseDb::getDdq() const { return qbgetddq(impl_->handle); }

short QBaseDb::beginQuickRead() {
  if (impl_->quickRead || impl_->quickUpdate) return -1;
  if (impl_->owner) impl_->owner->quickModeStarting(impl_, QuickMode::Read);
  const short status = impl_->handle < 0 ? impl_->handle : qbbeginquickread(impl_->handle);
  keep(status);
  if (status == QB_OK) impl_->quickRead = 1;
  return status;
}

short QBaseDb::beginQuickUpdate() {
  if (impl_->quickUpdate) return -1;
  if (impl_->owner) impl_->owner->quickModeStarting(impl_, QuickMode::Update);
  const short status = impl_->handle < 0 ? impl_->handle : qbbeginquickupdate(impl_->handle);
  keep(status);
  if (status == QB_OK) impl_->quickUpdate = 1;
  return status;
}

short QBaseDb::endQuick() {
  if (!impl_->quickRead && !impl_->quickUpdate) return -1;
  const short status = keep(qbendquick(impl_->handle));
  impl_->quickRead = impl_->quickUpdate = 0;
  return status;
}

short QBaseDb::closeDatabase() {
  if (impl_->owner) impl_->owner->closing(impl_, false);
  const short status = impl_->handle >= 0 ? qbclosedatabase(impl_->handle) : static_cast<short>(QB_OK);
  keep(status);
  if (status == QB_OK && !impl_->isEmpty()) {
    impl_->handle = -1;
    impl_->quickRead = impl_->quickUpdate = 0;
  }
  return status;
}

short QBaseDb::releaseFile() {
  if (impl_->owner) impl_->owner->closing(impl_, true);
  const short status = impl_->handle >= 0 ? qbreleasefile(impl_->handle) : static_cast<short>(QB_OK);
  keep(status);
  if (!impl_->isEmpty()) {
    impl_->handle = -1;
    impl_->quickRead = impl_->quickUpdate = 0;
  }
  return status;
}

// --- records ---

long QBaseDb::getNRecs() const { return qbgetnrecs(impl_->handle); }

char* QBaseDb::firstRec() const {
  keep(0);
  return qbfirstrec(impl_->handle);
}

char* QBaseDb::nextRec(const char* rec) const {
  keep(0);
  return qbnextrec(impl_->handle, rec);
}

char* QBaseDb::prevRec(const char* rec) const {
  keep(0);
  return qbprevrec(impl_->handle, rec);
}

char* QBaseDb::firstMember(const char* ownerId) const {
  keep(0);
  return qbfirstmember(impl_->handle, ownerId);
}

char* QBaseDb::nextMember(const char* rec) const {
  keep(0);
  return qbnextmember(impl_->handle, rec);
}

char* QBaseDb::findRec(const char* set, const void* id, short keyLen) const {
  keep(0);
  return qbfindrec(impl_->handle, set, id, keyLen);
}

short QBaseDb::existRec(const char* set, const void* id) const { return keep(qbexistrec(impl_->handle, set, id)); }
short QBaseDb::seek(const char* set, const void* id) const { return keep(qbseek(impl_->handle, set, id)); }

char* QBaseDb::createRec(const char* set, const void* id) const {
  keep(0);
  return qbcreaterec(impl_->handle, set, id);
}

short QBaseDb::saveRec(const char* rec) { return keep(qbsaverec(impl_->handle, rec)); }
short QBaseDb::deleteRec(const char* set, const void* id) { return keep(qbdeleterec(impl_->handle, set, id)); }
short QBaseDb::resetRec(char* rec) const { return keep(qbresetrec(impl_->handle, rec)); }
char* QBaseDb::copyRec(char* rec) { return rec ? qbcopyrec(rec) : nullptr; }

char* QBaseDb::releaseRec(char* rec) {
  if (rec) qbreleaserec(rec);
  return nullptr;
}

short QBaseDb::getID(const char* set, char* rec, void* id) const { return keep(qbgetID(impl_->handle, set, rec, id)); }

short QBaseDb::setId(char* rec, const char* set, const void* id) const {
  return keep(qbsetID(impl_->handle, rec, set, id));
}

short QBaseDb::objIDtosz(const void* id, char* text) const { return keep(qbobjIDtosz(impl_->handle, id, text)); }
short QBaseDb::objIdFromSz(void* id, const char* text) const { return keep(qbobjIDfromsz(impl_->handle, id, text)); }
void* QBaseDb::getAhm(const char* rec, long* size) const { return qbgetahm(impl_->handle, rec, size); }

// --- attributes ---

void* QBaseDb::findAtt(const char* rec, short att, short* size) const {
  return qbfindatt(impl_->handle, rec, att, size);
}

void* QBaseDb::copyAtt(const char* rec, short att, void* buffer, short* size) const {
  return qbcopyatt(impl_->handle, rec, att, buffer, size);
}

void* QBaseDb::copyFirstAtt(const char* rec, short* att, void* buffer, short* size) const {
  return qbcopyfirstatt(impl_->handle, rec, att, buffer, size);
}

void* QBaseDb::copyNextAtt(const char* rec, short* att, void* buffer, short* size) const {
  return qbcopynextatt(impl_->handle, rec, att, buffer, size);
}

short QBaseDb::insertAtt(char** rec, short att, const void* data, short size) const {
  return keep(qbinsertatt(impl_->handle, rec, att, data, size));
}

short QBaseDb::removeAtt(char** rec, short att) const { return keep(qbremoveatt(impl_->handle, rec, att)); }

short QBaseDb::deleteAtt(const char* set, const void* id, short att) {
  return keep(qbdeleteatt(impl_->handle, set, id, att));
}

wchar_t* QBaseDb::copyWsz(const char* rec, short att, wchar_t* buffer, int size, int flags) const {
  return qbcopywsz(impl_->handle, rec, att, buffer, size, flags);
}

short QBaseDb::insertWsz(char** rec, short att, const wchar_t* text, int len) const {
  return keep(qbinsertwsz(impl_->handle, rec, att, text, len));
}

short QBaseDb::setFilter(short kind, const char* set, const void* id, int len) {
  return keep(qbsetfilter(impl_->handle, kind, set, id, len));
}

short QBaseDb::resetFilter() { return keep(qbresetfilter(impl_->handle)); }

// --- test access ---

struct QBaseDbAccess {
  static QBaseDbImpl* state(const QBaseDb& db) { return db.impl_; }
};

QtQBaseDbDiagnostics qt_qbasedb_diagnostics() {
  const QBaseDbDiagnostics& d = g_diagnostics;
  return QtQBaseDbDiagnostics{d.releasedNullState, d.releasedOpenManagedState, d.shareCountBelowZero};
}

void qt_qbasedb_reset_diagnostics() { g_diagnostics = QBaseDbDiagnostics{false, false, false}; }
const void* qt_qbasedb_state(const QBaseDb& db) { return QBaseDbAccess::state(db); }
const void* qt_qbasedb_empty_state() { return QBaseDbImpl::Empty(); }
int qt_qbasedb_share_count(const QBaseDb& db) { return QBaseDbAccess::state(db)->refCount; }

void qt_qbasedb_release_state(const void* state) {
  QBaseDbImpl::Release(static_cast<QBaseDbImpl*>(const_cast<void*>(state)));
}

void qt_qbasedb_share_state(const void* state) {
  QBaseDbImpl::Share(static_cast<QBaseDbImpl*>(const_cast<void*>(state)));
}

ustr qt_qb_base64(const unsigned char* data, size_t size) {
  const std::string text = qb::Base64Encode(data, size);
  return ustr(std::wstring(text.begin(), text.end()));
}
