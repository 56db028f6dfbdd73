// The key operations of the settings store on Linux, in the order of
// regstore.h, over the SQLite file of each root (sqlite_store_posix.h).
// Handles are Key objects of this process; a key is a row of its store.
#include "settings/regstore.h"

#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_set>

#include "core/boundary.h"
#include "settings/sqlite_store_posix.h"
#include "ustr.h"

namespace qt_reg {

namespace {

using namespace sqlite_store;

const unsigned kKeyMagic = 0x4B455921;

struct Key {
  unsigned magic = kKeyMagic;
  Store* store = nullptr;
  sqlite3_int64 id = 0;
  DWORD access = 0;
  unsigned generation = 0;
  // The last value read in a read group: asking a value's size and then
  // its data is one read of the store, as both see the same snapshot.
  unsigned long cachedIn = 0;
  std::string cachedFold;
  DWORD cachedType = 0;
  std::vector<BYTE> cachedData;
};

struct State {
  std::mutex mutex;
  int readDepth = 0;
  Store user{false};
  Store machine{true};
  std::unordered_set<Key*> keys;
};

State& Global();

// A child forked while another thread is inside the store would find the
// lock taken forever; holding it across fork rules that out.
void LockBeforeFork() { Global().mutex.lock(); }
void UnlockInParent() { Global().mutex.unlock(); }
void ForgetInChild() {
  State& g = Global();
  g.user.forgetAfterFork();
  g.machine.forgetAfterFork();
  g.mutex.unlock();
}

State& Global() {
  // Never destroyed, as handles may still be closed from other static
  // destructors; but the files are closed at exit, which checkpoints and
  // removes a WAL journal.
  static State* state = new State();
  static struct AtExit {
    AtExit() { pthread_atfork(LockBeforeFork, UnlockInParent, ForgetInChild); }
    ~AtExit() {
      std::lock_guard<std::mutex> lock(state->mutex);
      state->user.close();
      state->machine.close();
    }
  } atExit;
  return *state;
}

// What a handle stands for: a store, a key id in it (0 is the root) and the
// rights it was opened with.
struct Target {
  Store* store = nullptr;
  sqlite3_int64 id = 0;
  DWORD access = 0;
};

long Resolve(HKEY handle, Target* t) {
  State& g = Global();
  if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE) {
    t->store = handle == HKEY_CURRENT_USER ? &g.user : &g.machine;
    t->store->refresh();
    t->id = 0;
    t->access = kKeyAllAccess;
    return kOk;
  }
  Key* key = reinterpret_cast<Key*>(handle);
  if (!handle || g.keys.find(key) == g.keys.end() || key->magic != kKeyMagic) return kInvalidHandle;
  key->store->refresh();
  // A key of a store file that was replaced or removed is gone, as a
  // deleted key is; its id might name another key in the file now there.
  if (key->id != 0 && key->generation != key->store->generation()) return kKeyDeleted;
  t->store = key->store;
  t->id = key->id;
  t->access = key->access;
  return kOk;
}

// Splits a key path at "\"; as in the registry a leading separator is an
// error, while repeated and trailing ones are passed over.
long ParsePath(const wchar_t* path, std::vector<std::wstring>* parts) {
  parts->clear();
  if (!path) return kOk;
  if (*path == L'\\') return kBadPathname;
  std::wstring current;
  for (const wchar_t* p = path;; ++p) {
    if (*p == L'\\' || *p == 0) {
      if (!current.empty()) {
        if (current.size() > kMaxKeyNameLength) return kInvalidParameter;
        parts->push_back(current);
        current.clear();
      }
      if (*p == 0) return kOk;
    } else {
      current += *p;
    }
  }
}

long FindChild(Store& store, sqlite3_int64 parent, const std::string& fold, sqlite3_int64* id) {
  Query q(store.statement(kFindChild));
  q.bind(1, parent).bind(2, fold);
  const int rc = q.step();
  if (rc == SQLITE_ROW) {
    *id = q.integer(0);
    return kOk;
  }
  return rc == SQLITE_DONE ? kFileNotFound : store.fail(rc);
}

long KeyExists(Store& store, sqlite3_int64 id) {
  if (id == 0) return kOk;
  Query q(store.statement(kKeyExists));
  q.bind(1, id);
  const int rc = q.step();
  if (rc == SQLITE_ROW) return kOk;
  return rc == SQLITE_DONE ? kKeyDeleted : store.fail(rc);
}

// The lookups of a reader: from the cache when it may answer, else from
// SQL inside the caller's read group, keeping the answer.
long ReadChild(Store& store, sqlite3_int64 parent, const std::string& fold, sqlite3_int64* id) {
  const std::string key = ReadCache::Key('C', parent, fold);
  if (const CachedRead* hit = store.cached(key)) {
    if (hit->rc == kOk) *id = hit->id;
    return hit->rc;
  }
  store.joinRead(Global().readDepth);
  CachedRead answer;
  sqlite3_int64 found = 0;
  answer.rc = FindChild(store, parent, fold, &found);
  answer.id = found;
  const long rc = answer.rc;
  if (rc == kOk) *id = found;
  store.keep(key, std::move(answer));
  return rc;
}

long ReadKeyExists(Store& store, sqlite3_int64 id) {
  if (id == 0) return kOk;
  const std::string key = ReadCache::Key('K', id, std::string());
  if (const CachedRead* hit = store.cached(key)) return hit->rc;
  store.joinRead(Global().readDepth);
  CachedRead answer;
  answer.rc = KeyExists(store, id);
  const long rc = answer.rc;
  store.keep(key, std::move(answer));
  return rc;
}

// Readers pass cached; a writer inside its transaction must see the file.
long Walk(Store& store, sqlite3_int64 from, const std::vector<std::wstring>& parts, bool cached, sqlite3_int64* id) {
  sqlite3_int64 at = from;
  if (parts.empty()) {
    const long rc = cached ? ReadKeyExists(store, at) : KeyExists(store, at);
    if (rc != kOk) return rc;
  }
  for (const std::wstring& part : parts) {
    const std::string fold = Fold(part);
    const long rc = cached ? ReadChild(store, at, fold, &at) : FindChild(store, at, fold, &at);
    if (rc != kOk) return rc;
  }
  *id = at;
  return kOk;
}

HKEY NewHandle(Store* store, sqlite3_int64 id, DWORD access) {
  // Owned here until the handle table has taken it: that insert can run
  // out of memory too.
  std::unique_ptr<Key> key(new Key());
  key->store = store;
  key->id = id;
  key->access = access;
  key->generation = store->generation();
  Global().keys.insert(key.get());
  return reinterpret_cast<HKEY>(key.release());
}

long GetValueRow(Store& store, sqlite3_int64 id, const std::string& fold, DWORD* type, std::vector<BYTE>* data) {
  Query q(store.statement(kGetValue));
  q.bind(1, id).bind(2, fold);
  const int rc = q.step();
  if (rc == SQLITE_DONE) return kFileNotFound;
  if (rc != SQLITE_ROW) return store.fail(rc);
  *type = static_cast<DWORD>(q.integer(0));
  q.blob(1, data);
  return kOk;
}

// The value of a handle's key, from a store that may not exist yet.
long LoadValue(HKEY key, const wchar_t* name, DWORD* type, std::vector<BYTE>* data) {
  Target t;
  long rc = Resolve(key, &t);
  if (rc != kOk) return rc;
  if (!(t.access & kKeyQueryValue)) return kAccessDenied;
  const std::wstring n(name ? name : L"");
  if (n.size() > kMaxValueNameLength) return kFileNotFound;
  const std::string fold = Fold(n);
  State& g = Global();
  Key* k = (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) ? nullptr : reinterpret_cast<Key*>(key);
  if (k && g.readDepth > 0 && k->cachedIn == g_snapshot && k->cachedFold == fold) {
    *type = k->cachedType;
    *data = k->cachedData;
    return kOk;
  }
  rc = t.store->open(false);
  if (rc != kOk) return rc;
  const std::string cacheKey = ReadCache::Key('V', t.id, fold);
  if (const CachedRead* hit = t.store->cached(cacheKey)) {
    rc = hit->rc;
    if (rc == kOk) {
      *type = hit->type;
      *data = hit->data;
    }
  } else {
    t.store->joinRead(g.readDepth);
    CachedRead answer;
    answer.rc = GetValueRow(*t.store, t.id, fold, &answer.type, &answer.data);
    rc = answer.rc;
    if (rc == kOk) {
      *type = answer.type;
      *data = answer.data;
    }
    t.store->keep(cacheKey, std::move(answer));
  }
  if (rc == kOk && k && g.readDepth > 0) {
    k->cachedIn = g_snapshot;
    k->cachedFold = fold;
    k->cachedType = *type;
    k->cachedData = *data;
  }
  return rc;
}

// What a call answers when its body threw.
long StoreFailure(bool outOfMemory) { return outOfMemory ? kNotEnoughMemory : kRegistryIoFailed; }

// A call on a handle: no exception escapes, other threads wait, and a
// handle that stands for nothing never reaches the body.
template <typename Body>
long OnKey(const char* where, HKEY handle, Body body) {
  return qt::NoThrowWith<long>(where, StoreFailure, [&]() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    Target t;
    const long rc = Resolve(handle, &t);
    return rc == kOk ? body(t) : rc;
  });
}

// A change to a store. A read group's snapshot is left first, as the write
// must see the file as it is now; other processes caching the store learn
// of the change through the guard, which has to be in place before the
// first statement.
template <typename Body>
long Write(Store& store, bool create, Body body) {
  const long rc = store.openForWrite(create);
  store.endRead();
  if (rc != kOk) return rc;
  WriteGuard guard(store);
  if (guard.rc() != kOk) return guard.rc();
  return body(store);
}

// A change of several statements, kept whole or not at all.
template <typename Body>
long WriteAll(Store& store, bool create, Body body) {
  return Write(store, create, [&](Store& s) -> long {
    long rc = s.begin();
    if (rc != kOk) return rc;
    rc = body(s);
    if (rc == kOk) rc = s.commit();
    if (rc != kOk) s.rollback();
    return rc;
  });
}

}  // namespace

long OpenKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  return OnKey(__func__, parent, [&](Target& t) -> long {
    std::vector<std::wstring> parts;
    long rc = ParsePath(subKey, &parts);
    if (rc != kOk) return rc;
    rc = t.store->open(false);
    if (rc == kFileNotFound && parts.empty() && t.id == 0) {
      // The root of a store not yet written exists, empty.
      *key = NewHandle(t.store, 0, access);
      return kOk;
    }
    if (rc != kOk) return rc;
    if ((access & (kKeySetValue | kKeyCreateSubKey)) && t.store->readOnly()) return kAccessDenied;
    sqlite3_int64 id = 0;
    rc = Walk(*t.store, t.id, parts, true, &id);
    if (rc != kOk) return rc;
    *key = NewHandle(t.store, id, access);
    return kOk;
  });
}

long CreateKey(HKEY parent, const wchar_t* subKey, DWORD access, HKEY* key) {
  if (!key) return kInvalidParameter;
  *key = nullptr;
  return OnKey(__func__, parent, [&](Target& t) -> long {
    std::vector<std::wstring> parts;
    const long parsed = ParsePath(subKey, &parts);
    if (parsed != kOk) return parsed;
    sqlite3_int64 at = t.id;
    const long written = WriteAll(*t.store, true, [&](Store& s) -> long {
      long rc = KeyExists(s, at);
      for (size_t i = 0; rc == kOk && i < parts.size(); ++i) {
        rc = FindChild(s, at, Fold(parts[i]), &at);
        if (rc != kFileNotFound) continue;
        Query q(s.statement(kInsertKey));
        q.bind(1, at).bind(2, Utf8(parts[i])).bind(3, Fold(parts[i]));
        const int step = q.step();
        rc = step == SQLITE_DONE ? kOk : s.fail(step);
        if (rc == kOk) at = s.lastInsertId();
      }
      return rc;
    });
    if (written != kOk) return written;
    *key = NewHandle(t.store, at, access);
    return kOk;
  });
}

long CloseKey(HKEY key) {
  return qt::NoThrowWith<long>(__func__, StoreFailure, [&]() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) return kOk;
    State& g = Global();
    Key* k = reinterpret_cast<Key*>(key);
    auto it = g.keys.find(k);
    if (!key || it == g.keys.end()) return kInvalidHandle;
    g.keys.erase(it);
    k->magic = 0;
    delete k;
    return kOk;
  });
}

long FlushKey(HKEY key) {
  // Every change is committed durably before it returns.
  return OnKey(__func__, key, [](Target&) -> long { return kOk; });
}

long QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size) {
  if (data && !size) return kInvalidParameter;
  return qt::NoThrowWith<long>(__func__, StoreFailure, [&]() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    DWORD valueType = 0;
    std::vector<BYTE> bytes;
    const long rc = LoadValue(key, name, &valueType, &bytes);
    if (rc != kOk) return rc;
    if (type) *type = valueType;
    if (!size) return kOk;
    const DWORD needed = static_cast<DWORD>(bytes.size());
    if (data && *size < needed) {
      *size = needed;
      return kMoreData;
    }
    if (data && needed) std::memcpy(data, bytes.data(), needed);
    *size = needed;
    return kOk;
  });
}

long SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* data, DWORD size) {
  if (!data && size) return kInvalidParameter;
  return OnKey(__func__, key, [&](Target& t) -> long {
    if (!(t.access & kKeySetValue)) return kAccessDenied;
    const std::wstring n(name ? name : L"");
    if (n.size() > kMaxValueNameLength) return kInvalidParameter;
    // One statement: its own transaction, so none is begun.
    return Write(*t.store, true, [&](Store& s) -> long {
      Query q(s.statement(kSetValue));
      q.bind(1, t.id).bind(2, Utf8(n)).bind(3, Fold(n)).bind(4, static_cast<sqlite3_int64>(type)).bindBlob(5, data, size);
      const int step = q.step();
      if (step != SQLITE_DONE) return s.fail(step);
      return s.changes() > 0 ? kOk : kKeyDeleted;
    });
  });
}

long DeleteValue(HKEY key, const wchar_t* name) {
  return OnKey(__func__, key, [&](Target& t) -> long {
    if (!(t.access & kKeySetValue)) return kAccessDenied;
    // Nothing to delete in a store not yet written: it is not made for this.
    return Write(*t.store, false, [&](Store& s) -> long {
      Query q(s.statement(kDeleteValue));
      q.bind(1, t.id).bind(2, Fold(name ? name : L""));
      const int step = q.step();
      if (step != SQLITE_DONE) return s.fail(step);
      return s.changes() > 0 ? kOk : kFileNotFound;
    });
  });
}

long DeleteKey(HKEY key, const wchar_t* subKey) {
  return OnKey(__func__, key, [&](Target& t) -> long {
    std::vector<std::wstring> parts;
    const long parsed = ParsePath(subKey, &parts);
    if (parsed != kOk) return parsed;
    return WriteAll(*t.store, false, [&](Store& s) -> long {
      sqlite3_int64 id = 0;
      long rc = Walk(s, t.id, parts, false, &id);
      // A root cannot go, nor a key that still has subkeys.
      if (rc == kOk && id == 0) rc = kAccessDenied;
      if (rc == kOk) {
        Query q(s.statement(kHasChildren));
        q.bind(1, id);
        const int step = q.step();
        rc = step == SQLITE_ROW ? kAccessDenied : step == SQLITE_DONE ? kOk : s.fail(step);
      }
      for (Statement st : {kDeleteValues, kDeleteKeyRow}) {
        if (rc != kOk) break;
        Query q(s.statement(st));
        q.bind(1, id);
        const int step = q.step();
        if (step != SQLITE_DONE) rc = s.fail(step);
      }
      return rc;
    });
  });
}

long QueryInfo(HKEY key, DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* values, DWORD* maxValueNameLength) {
  return OnKey(__func__, key, [&](Target& t) -> long {
    if (!(t.access & kKeyQueryValue)) return kAccessDenied;
    DWORD counts[2] = {0, 0}, longest[2] = {0, 0};
    long rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kOk) rc = KeyExists(*t.store, t.id);
    if (rc == kOk) {
      const Statement lists[2] = {kChildNames, kValueNames};
      for (int i = 0; i < 2 && rc == kOk; ++i) {
        Query q(t.store->statement(lists[i]));
        q.bind(1, t.id);
        int step;
        while ((step = q.step()) == SQLITE_ROW) {
          ++counts[i];
          const DWORD length = static_cast<DWORD>(Utf16Length(q.text(0).c_str()));
          if (length > longest[i]) longest[i] = length;
        }
        if (step != SQLITE_DONE) rc = t.store->fail(step);
      }
    } else if (rc == kFileNotFound && t.id == 0) {
      rc = kOk;  // the empty root of a store not yet written
    }
    if (rc != kOk) return rc;
    if (subKeys) *subKeys = counts[0];
    if (maxSubKeyLength) *maxSubKeyLength = longest[0];
    if (values) *values = counts[1];
    if (maxValueNameLength) *maxValueNameLength = longest[1];
    return kOk;
  });
}

long EnumKey(HKEY key, DWORD index, std::wstring* name) {
  if (!name) return kInvalidParameter;
  return OnKey(__func__, key, [&](Target& t) -> long {
    if (!(t.access & kKeyEnumerateSubKeys)) return kAccessDenied;
    long rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kFileNotFound && t.id == 0) return kNoMoreItems;
    if (rc != kOk) return rc;
    Query q(t.store->statement(kNthChild));
    q.bind(1, t.id).bind(2, static_cast<sqlite3_int64>(index));
    const int step = q.step();
    if (step == SQLITE_DONE) return kNoMoreItems;
    if (step != SQLITE_ROW) return t.store->fail(step);
    *name = q.text(0);
    return kOk;
  });
}

long EnumValue(HKEY key, DWORD index, std::wstring* name, DWORD* type, std::vector<BYTE>* data) {
  if (!name) return kInvalidParameter;
  return OnKey(__func__, key, [&](Target& t) -> long {
    if (!(t.access & kKeyQueryValue)) return kAccessDenied;
    long rc = t.store->open(false);
    if (rc == kOk) t.store->joinRead(Global().readDepth);
    if (rc == kFileNotFound && t.id == 0) return kNoMoreItems;
    if (rc != kOk) return rc;
    Query q(t.store->statement(kNthValue));
    q.bind(1, t.id).bind(2, static_cast<sqlite3_int64>(index));
    const int step = q.step();
    if (step == SQLITE_DONE) return kNoMoreItems;
    if (step != SQLITE_ROW) return t.store->fail(step);
    *name = q.text(0);
    if (type) *type = static_cast<DWORD>(q.integer(1));
    if (data) q.blob(2, data);
    return kOk;
  });
}

void BeginRead() {
  qt::NoThrowWith<long>(__func__, StoreFailure, []() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    ++Global().readDepth;
    return kOk;
  });
}

void EndRead() {
  qt::NoThrowWith<long>(__func__, StoreFailure, []() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    State& g = Global();
    if (g.readDepth > 0 && --g.readDepth == 0) {
      g.user.endRead();
      g.machine.endRead();
    }
    return kOk;
  });
}

// %NAME% replaced by the environment variable, unknown names kept as they
// stand, as Windows expands REG_EXPAND_SZ text.
std::wstring ExpandEnvironmentText(const std::wstring& text) {
  std::wstring out;
  size_t i = 0;
  while (i < text.size()) {
    const size_t open = text.find(L'%', i);
    if (open == std::wstring::npos) break;
    const size_t close = text.find(L'%', open + 1);
    if (close == std::wstring::npos) break;
    out.append(text, i, open - i);
    const std::wstring name = text.substr(open + 1, close - open - 1);
    const char* value = name.empty() ? nullptr : std::getenv(Utf8(name).c_str());
    if (value) {
      out += qn_ansi_to_wide(value);
      i = close + 1;
    } else {
      out.append(text, open, close - open);
      i = close;
    }
  }
  out.append(text, i, std::wstring::npos);
  return out;
}

namespace {

Store* RootStore(HKEY root) {
  if (root == HKEY_CURRENT_USER) return &Global().user;
  if (root == HKEY_LOCAL_MACHINE) return &Global().machine;
  return nullptr;
}

}  // namespace

long BeginWrite(HKEY root) {
  return qt::NoThrowWith<long>(__func__, StoreFailure, [&]() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    Store* store = RootStore(root);
    if (!store) return kInvalidHandle;
    store->refresh();
    return store->beginGroup();
  });
}

long EndWrite(HKEY root, bool keep) {
  return qt::NoThrowWith<long>(__func__, StoreFailure, [&]() -> long {
    std::lock_guard<std::mutex> lock(Global().mutex);
    Store* store = RootStore(root);
    return store ? store->endGroup(keep) : kInvalidHandle;
  });
}

std::string StoreProblem(HKEY root) {
  try {
    std::lock_guard<std::mutex> lock(Global().mutex);
    if (Store* store = RootStore(root)) return store->problem();
  } catch (...) {
  }
  return std::string();
}

bool UserStoreMark(uint64_t* counter, uint64_t* epoch, UnlockedCheck* check) {
  try {
    std::lock_guard<std::mutex> lock(Global().mutex);
    Store& store = Global().user;
    store.refresh();
    if (!store.mark(counter, epoch)) return false;
    if (check) *check = store.unlockedCheck();
    return true;
  } catch (...) {
  }
  return false;
}

std::string StoreFile(HKEY root) {
  try {
    std::lock_guard<std::mutex> lock(Global().mutex);
    if (root == HKEY_CURRENT_USER) return Global().user.file();
    if (root == HKEY_LOCAL_MACHINE) return Global().machine.file();
  } catch (...) {
  }
  return std::string();
}

}  // namespace qt_reg
