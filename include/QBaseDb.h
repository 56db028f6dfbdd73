// QBaseDb: a value-type handle on one open project database.
//
// Copies share one reference-counted state, so a file opened once can be
// passed around freely; a default QBaseDb is invalid. Every record,
// attribute and stream operation is forwarded to the record engine (qb.h)
// with the file's handle, and the status of the last call is kept for
// errorStatus(). QuickMode is a scope guard for the engine's quick-read and
// quick-update modes; Iterator / ConstIterator walk all records of a file,
// or the member records of one owner, inside such a scope.
//
// Files opened by name belong to the database manager, QBaseDbManager;
// handles from elsewhere are wrapped without it and their files are left
// to whoever gave the handle.
//
// A QBaseDb and everything sharing its state belong to one thread.
#ifndef QUILTOOL_QBASEDB_H
#define QUILTOOL_QBASEDB_H

#include <vector>

#include "quiltool_export.h"
#include "ustr.h"

class QBaseDbImpl;
class QBaseDbManager;

class QT_API QBaseDb {
 public:
  class QuickMode;
  class IteratorBase;
  class Iterator;
  class ConstIterator;

  QBaseDb();
  QBaseDb(const QBaseDb& other);
  QBaseDb(QBaseDb&& other) noexcept;
  QBaseDb& operator=(const QBaseDb& other);
  QBaseDb& operator=(QBaseDb&& other) noexcept;
  ~QBaseDb();

  // A handle opened elsewhere; its file stays open when the last copy goes.
  static QBaseDb WrapNakedHandleInTemporary(short handle, bool writable);
  // A database read from a stream file or buffer; empty on failure.
  static QBaseDb ReadStream(const wchar_t* path);
  static QBaseDb ReadStreamBuf(const unsigned char* data, long size);
  // A new in-memory database with this one's content; empty on failure.
  QBaseDb createStreamDb() const;
  // The serialised database as Base64 in one line; empty when there is none.
  ustr createStreamAsBase64() const;

  // --- state ---
  bool isValidDb() const;
  // Same engine handle (the states may differ).
  bool equals(const QBaseDb& other) const;
  short errorStatus() const;
  // The engine's error code for the file; clears errorStatus().
  short getLastError();
  bool isQuickReadMode() const;
  bool isQuickUpdateMode() const;
  bool isWritable() const;
  void setWritable();
  short getHqbFile() const;
  ustr getFileName() const;
  // Buffers of 260 characters.
  short getFileName(char* buffer) const;
  short getFileName(wchar_t* buffer) const;

  // --- files ---
  short openFile(short mode);
  short createFile();
  short closeFile();
  short fileIsOpen() const;
  short switchFile(const wchar_t* path);
  short writeStream(const wchar_t* path) const;
  char* createStreamBuf(long* size) const;
  static char* releaseStreamBuf(char* buffer);
  short getDdq() const;
  short beginQuickRead();
  short beginQuickUpdate();
  short endQuick();
  short closeDatabase();
  short releaseFile();

  // --- records (record buffers are released with releaseRec) ---
  long getNRecs() const;
  char* firstRec() const;
  char* nextRec(const char* rec) const;
  char* prevRec(const char* rec) const;
  char* firstMember(const char* ownerId) const;
  char* nextMember(const char* rec) const;
  char* findRec(const char* set, const void* id, short keyLen) const;
  short existRec(const char* set, const void* id) const;
  short seek(const char* set, const void* id) const;
  char* createRec(const char* set, const void* id) const;
  short saveRec(const char* rec);
  // size < 1 saves the record and drops its attached block.
  short saveRecWithAhm(const char* rec, const void* data, long size);
  short deleteRec(const char* set, const void* id);
  short resetRec(char* rec) const;
  static char* copyRec(char* rec);
  static char* releaseRec(char* rec);
  short getID(const char* set, char* rec, void* id) const;
  short setId(char* rec, const char* set, const void* id) const;
  short objIDtosz(const void* id, char* text) const;
  short objIdFromSz(void* id, const char* text) const;
  void* getAhm(const char* rec, long* size) const;

  // --- attributes ---
  void* findAtt(const char* rec, short att, short* size) const;
  void* copyAtt(const char* rec, short att, void* buffer, short* size) const;
  void* copyFirstAtt(const char* rec, short* att, void* buffer, short* size) const;
  void* copyNextAtt(const char* rec, short* att, void* buffer, short* size) const;
  short insertAtt(char** rec, short att, const void* data, short size) const;
  short removeAtt(char** rec, short att) const;
  short deleteAtt(const char* set, const void* id, short att);
  wchar_t* copyWsz(const char* rec, short att, wchar_t* buffer, int size, int flags) const;
  short insertWsz(char** rec, short att, const wchar_t* text, int len) const;

  // --- filters ---
  short setFilter(short kind, const char* set, const void* id, int len);
  short resetFilter();

  // --- composite operations ---
  short deleteAllRecs(const char* ownerId);
  // Ids (as text) of the owner's members in set; at most `limit` of them
  // when limit > 0.
  std::vector<astr_pre<32> > getObjIdsForOwner(const char* set, short limit, const char* ownerId) const;
  short deleteRecsForOwner(const char* set, short limit, const char* ownerId);
  // The first counter from start (at least 1) whose id, zero-padded to
  // width digits, is free in set; -1 when none is below 32767.
  short findNextFreeObjIdCounter(const char* set, int width, char* outId, short start) const;

 private:
  friend class QBaseDbManager;
  friend struct QBaseDbAccess;
  explicit QBaseDb(short handle);
  explicit QBaseDb(QBaseDbImpl* shared);
  short keep(short status) const;

  QBaseDbImpl* impl_;
};

class QT_API QBaseDb::QuickMode {
 public:
  enum Type { Read = 0, Update = 1 };

  QuickMode();
  QuickMode(const QBaseDb& db, Type type, bool beginNow);
  ~QuickMode();
  QuickMode(const QuickMode&) = delete;
  QuickMode& operator=(const QuickMode&) = delete;

  // Refused while the scope is active.
  bool set(const QBaseDb& db, Type type, bool beginNow);
  // False when the mode is already on for the file (an outer scope owns it).
  bool begin();
  bool end();
  bool isActive() const { return active_ != 0; }
  Type type() const { return type_; }

 private:
  QBaseDb db_;
  Type type_;
  unsigned char active_;
};

class QT_API QBaseDb::IteratorBase {
 public:
  // All records of the file.
  IteratorBase(const QBaseDb& db, QBaseDb::QuickMode::Type type, bool beginNow);
  // The member records of the owner with this id.
  IteratorBase(const QBaseDb& db, const char* ownerId, QBaseDb::QuickMode::Type type, bool beginNow);
  virtual ~IteratorBase();
  IteratorBase(const IteratorBase&) = delete;
  IteratorBase& operator=(const IteratorBase&) = delete;

  // From a copy of `from`, or from the first record (member).
  void start(char* from = nullptr);
  void next();
  bool done() const { return current_ == nullptr; }
  char* operator*() const { return current_; }

 protected:
  QBaseDb db_;
  char* current_;
  char* ownerId_;
  QBaseDb::QuickMode mode_;
};

// Walks inside a quick update: the records may be changed and saved.
class QT_API QBaseDb::Iterator : public QBaseDb::IteratorBase {
 public:
  explicit Iterator(const QBaseDb& db, bool beginNow = true);
  Iterator(const QBaseDb& db, const char* ownerId, bool beginNow = true);
  // The current record; insertAtt may move it, so it is passed by address.
  char** get() { return &current_; }
};

// Walks inside a quick read.
class QT_API QBaseDb::ConstIterator : public QBaseDb::IteratorBase {
 public:
  explicit ConstIterator(const QBaseDb& db, bool beginNow = true);
  ConstIterator(const QBaseDb& db, const char* ownerId, bool beginNow = true);
  char* const* get() const { return &current_; }
};

// The library-wide manager of files opened by name: it owns their shared
// states, hands out QBaseDb shares of them and closes a file when its last
// share goes.
class QT_API QBaseDbManager {
 public:
  // What the manager tells its listener, before it happens.
  enum Event {
    QuickReadStarting = 0,
    QuickUpdateStarting = 1,
    Closing = 2,
    Releasing = 3,
    BecomingWritable = 4,
    Removing = 5,  // the last share went; the file is closed next
  };
  typedef void (*Listener)(Event event, short handle, const wchar_t* path, void* context);

  QBaseDbManager();
  // Closes what is still open; surviving shares become free-standing
  // states without a file.
  ~QBaseDbManager();
  QBaseDbManager(const QBaseDbManager&) = delete;
  QBaseDbManager& operator=(const QBaseDbManager&) = delete;

  static QBaseDbManager& instance();

  // A share of the file, opening it in mode (QB_MODE_*) when it is not
  // open yet; an open file asked for in a writable mode is made writable.
  // Empty on failure, with the engine's status in lastStatus().
  QBaseDb openFile(const wchar_t* path, short mode);
  // Creates the file with the dictionary hddq and opens it in mode.
  QBaseDb createFile(const wchar_t* path, short hddq, short mode);
  // The open file of that name, empty when there is none.
  QBaseDb find(const wchar_t* path) const;
  // Takes over a handle whose file nobody else closes (streams).
  QBaseDb adopt(short handle);
  int openCount() const;
  short lastStatus() const { return lastStatus_; }
  void setListener(Listener listener, void* context);

  // Called by the shared states.
  void removeMe(QBaseDbImpl* state);
  void changingToWrite(QBaseDbImpl* state);
  void quickModeStarting(QBaseDbImpl* state, int type);
  void closing(QBaseDbImpl* state, bool release);

 private:
  struct Entry;
  Entry* entryOf(const QBaseDbImpl* state) const;
  QBaseDb adoptOpened(short handle, short mode, const wchar_t* path, const char* where);
  void tell(Event event, const QBaseDbImpl* state);

  std::vector<Entry*> entries_;
  Listener listener_;
  void* context_;
  short lastStatus_;
};

#endif
