// The storage behind the record engine. Everything the qb* functions know
// about records, buffers, dictionaries and modes lives above this seam;
// below it a backend keeps rows of (id, set number, owner id, attribute
// bytes) and attached blocks, in transactions. The embedded backend keeps
// one SQLite file per database; a server backend would implement the same
// class.
#ifndef QUILTOOL_PROJECT_QB_BACKEND_H
#define QUILTOOL_PROJECT_QB_BACKEND_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "project/qb_dictionary.h"

namespace qb {

// One stored record. The views stay valid until the next call on the
// backend that produced them.
struct Row {
  std::string_view id;
  int setNo = 0;
  std::string_view data;   // the attribute area of a record buffer
  std::string_view owner;  // empty: no owner (walks fill it only when asked)
  bool wantOwner = false;  // set by the caller of Step
};

// Which records a walk or a count visits. Walks go in id order.
struct Walk {
  enum Kind { kAll, kSet, kOwner };
  Kind kind = kAll;
  int setNo = 0;       // kSet: required; kOwner: 0 for any set
  std::string owner;   // kOwner
  std::string prefix;  // kAll/kSet: ids starting with it ("" for all)
  bool operator==(const Walk& o) const {
    return kind == o.kind && setNo == o.setNo && owner == o.owner && prefix == o.prefix;
  }
};

class Backend {
 public:
  virtual ~Backend() {}

  // --- files; statuses are QB_OK or QBERR_* ---
  // Makes a new database at path holding the dictionary; leaves it closed.
  virtual short Create(const std::string& utf8Path, const Dictionary& dict) = 0;
  virtual short Open(const std::string& utf8Path, bool writable, long timeoutMs) = 0;
  // An in-memory, writable database from a stream image (the bytes are copied).
  virtual short OpenImage(const std::string& image) = 0;
  virtual short LoadDictionary(Dictionary* dict) = 0;
  virtual void SetTimeout(long timeoutMs) = 0;
  // Ends any transaction by rolling it back.
  virtual void Close() = 0;

  // --- transactions ---
  virtual short BeginRead() = 0;
  virtual short BeginWrite() = 0;
  // On failure the transaction is rolled back.
  virtual short Commit() = 0;
  virtual void Rollback() = 0;
  virtual bool InTransaction() const = 0;
  // A group of writes that succeeds or fails as one, inside or outside a
  // transaction: Begin, then End(true) to keep or End(false) to undo.
  virtual short BeginGroup() = 0;
  virtual short EndGroup(bool keep) = 0;

  // --- records ---
  virtual short Get(std::string_view id, Row* row) = 0;  // QBERR_NOTFOUND
  // The set number of the record with this id, 0 when there is none.
  virtual short Lookup(std::string_view id, int* setNo) = 0;
  // fresh: insert only (QBERR_EXISTS when a record of the set has the id);
  // else insert or replace. QBERR_DUPLICATE when another set has the id.
  virtual short Put(std::string_view id, int setNo, std::string_view owner, std::string_view data,
                    bool fresh) = 0;
  virtual short Delete(std::string_view id) = 0;  // also drops its attached block
  virtual short HasMembers(std::string_view ownerId, bool* any) = 0;
  // The first record of the walk after `from` (or at it when inclusive; from
  // the start or end when from is null), going forward or back.
  // QBERR_NOTFOUND at the end.
  virtual short Step(const Walk& walk, bool forward, const std::string_view* from, bool inclusive,
                     Row* row) = 0;
  virtual short Count(const Walk& walk, long* count) = 0;

  // --- attached blocks ---
  virtual short GetAhm(std::string_view id, std::string* data, bool* found) = 0;
  virtual short PutAhm(std::string_view id, std::string_view data) = 0;
  virtual short DeleteAhm(std::string_view id) = 0;

  // --- whole database ---
  // The database as a self-contained image, the same bytes for the same
  // content however it came about.
  virtual short Serialize(std::string* image) = 0;
  // Problems of the storage itself (and attached blocks without a record).
  virtual short CheckStorage(std::vector<std::string>* problems) = 0;
};

std::unique_ptr<Backend> NewEmbeddedBackend();

}  // namespace qb

#endif
