// QBaseDb::QuickMode and the record iterators.
#include <cstdlib>
#include <cstring>

#include "project/qbase_db_impl.h"
#include "qb.h"

// --- QuickMode ---

QBaseDb::QuickMode::QuickMode() : db_(), type_(Read), active_(0) {}

QBaseDb::QuickMode::QuickMode(const QBaseDb& db, Type type, bool beginNow) : db_(), type_(Read), active_(0) {
  set(db, type, beginNow);
}

QBaseDb::QuickMode::~QuickMode() { end(); }

bool QBaseDb::QuickMode::set(const QBaseDb& db, Type type, bool beginNow) {
  if (active_) return false;
  db_ = db;
  type_ = type;
  return beginNow ? begin() : true;
}

bool QBaseDb::QuickMode::begin() {
  const QBaseDbImpl* s = db_.impl_;
  if (active_ || s->handle < 0 || s->quickUpdate) return false;
  // An outer scope owns the mode: nesting is refused, not counted, so the
  // outer scope's end is the one that ends it.
  if (type_ == Read && s->quickRead) return false;
  short status;
  if (type_ == Read)
    status = db_.beginQuickRead();
  else if (type_ == Update)
    status = db_.beginQuickUpdate();
  else
    return false;
  active_ = status == QB_OK;
  return active_ != 0;
}

bool QBaseDb::QuickMode::end() {
  if (!active_) return false;
  active_ = 0;
  const QBaseDbImpl* s = db_.impl_;
  if (s->handle < 0) return false;
  if ((type_ == Update && !s->quickUpdate) || (type_ == Read && !s->quickRead)) return false;
  return db_.endQuick() == QB_OK;
}

// --- iterators ---

QBaseDb::IteratorBase::IteratorBase(const QBaseDb& db, QBaseDb::QuickMode::Type type, bool beginNow)
    : db_(db), current_(nullptr), ownerId_(nullptr), mode_(db, type, beginNow) {}

QBaseDb::IteratorBase::IteratorBase(const QBaseDb& db, const char* ownerId, QBaseDb::QuickMode::Type type,
                                    bool beginNow)
    : db_(db), current_(nullptr), ownerId_(nullptr), mode_(db, type, beginNow) {
  if (!ownerId) return;
  const short length = ddq_getIDinfo(qbgetddq(db_.impl_->handle), nullptr);
  if (length < 1) return;
  ownerId_ = static_cast<char*>(std::malloc(static_cast<size_t>(length) + 2));
  if (!ownerId_) return;
  // The id fills at most `length` characters: copy that and one more, but
  // nothing past the caller's terminator.
  size_t n = 0;
  while (n < static_cast<size_t>(length) + 1 && ownerId[n]) {
    ownerId_[n] = ownerId[n];
    ++n;
  }
  std::memset(ownerId_ + n, 0, static_cast<size_t>(length) + 2 - n);
}

QBaseDb::IteratorBase::~IteratorBase() {
  QBaseDb::releaseRec(current_);
  current_ = nullptr;
  std::free(ownerId_);
  ownerId_ = nullptr;
  mode_.end();
}

void QBaseDb::IteratorBase::start(char* from) {
  current_ = QBaseDb::releaseRec(current_);
  if (from)
    current_ = QBaseDb::copyRec(from);
  else if (ownerId_ && *ownerId_)
    current_ = db_.firstMember(ownerId_);
  else
    current_ = db_.firstRec();
}

void QBaseDb::IteratorBase::next() {
  if (!current_) return;
  char* following = (ownerId_ && *ownerId_) ? db_.nextMember(current_) : db_.nextRec(current_);
  QBaseDb::releaseRec(current_);
  current_ = following;
}

QBaseDb::Iterator::Iterator(const QBaseDb& db, bool beginNow) : IteratorBase(db, QuickMode::Update, beginNow) {}

QBaseDb::Iterator::Iterator(const QBaseDb& db, const char* ownerId, bool beginNow)
    : IteratorBase(db, ownerId, QuickMode::Update, beginNow) {}

QBaseDb::ConstIterator::ConstIterator(const QBaseDb& db, bool beginNow) : IteratorBase(db, QuickMode::Read, beginNow) {}

QBaseDb::ConstIterator::ConstIterator(const QBaseDb& db, const char* ownerId, bool beginNow)
    : IteratorBase(db, ownerId, QuickMode::Read, beginNow) {}
