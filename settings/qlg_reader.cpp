#include "settings/qlg_reader.h"

#include <cstdint>
#include <new>
#include <vector>

#include "core/boundary.h"
#include "core/fs.h"
#include "settings/qlg_format.h"
#include "settings/qlg_utf8.h"

namespace {

// Open addressing with linear probing over a power-of-two table that is
// never more than half full.
class TextTable {
 public:
  struct Slot {
    int32_t id;
    uint32_t used;
    uint32_t offset;
    uint32_t length;
  };

  void build(const std::vector<Slot>& entries) {
    size_t capacity = 16;
    while (capacity < entries.size() * 2) capacity *= 2;
    slots_.assign(capacity, Slot{0, 0, 0, 0});
    mask_ = capacity - 1;
    for (const Slot& e : entries) {
      size_t i = hash(e.id) & mask_;
      while (slots_[i].used) i = (i + 1) & mask_;
      slots_[i] = e;
      slots_[i].used = 1;
    }
  }

  const Slot* find(int32_t id) const {
    if (slots_.empty()) return nullptr;
    for (size_t i = hash(id) & mask_;; i = (i + 1) & mask_) {
      const Slot& s = slots_[i];
      if (!s.used) return nullptr;
      if (s.id == id) return &s;
    }
  }

 private:
  static size_t hash(int32_t id) {
    // Fibonacci hashing spreads the dense runs of text numbers.
    return static_cast<size_t>((static_cast<uint64_t>(static_cast<uint32_t>(id)) * 0x9E3779B97F4A7C15ull) >> 32);
  }
  std::vector<Slot> slots_;
  size_t mask_ = 0;
};

struct LanguageTexts {
  int languageId;
  TextTable table;
};

}  // namespace

struct CQlg::Impl {
  short active = 0;
  // Every text, each followed by a terminator.
  std::unique_ptr<wchar_t[]> pool;
  size_t poolSize = 0;
  std::vector<LanguageTexts> languages;
  const TextTable* activeTable = nullptr;
  size_t count = 0;
  std::string lastError;

  void selectActive() {
    activeTable = nullptr;
    for (const LanguageTexts& l : languages) {
      if (l.languageId == active) activeTable = &l.table;
    }
  }
};

namespace {

// Collects translations into the pool, per language, as the parser hands
// them over.
class Loader : public qt::qlg::QlgHandler {
 public:
  // pool has room for `capacity` units: a file's texts never need more
  // than one unit per byte of the file.
  Loader(const qt::qlg::Definition& def, wchar_t* pool, size_t capacity, size_t expectedTexts)
      : def_(def), pool_(pool), capacity_(capacity), perLanguage_(def.languages.size()) {
    for (auto& v : perLanguage_) v.reserve(expectedTexts);
  }

  void onText(int textId, int) override { textId_ = textId; }
  void onTranslation(int languageId, const char* utf8, size_t length, int) override {
    size_t index = 0;
    while (def_.languages[index].id != languageId) ++index;  // the parser has checked it is defined
    if (used_ + length + 1 > capacity_) return;  // cannot happen; see the constructor
    const size_t offset = used_;
    const size_t units = qt::qlg::Utf8ToWideInto(utf8, length, pool_ + used_);
    used_ += units;
    pool_[used_++] = L'\0';  // lets find() hand out terminated texts
    perLanguage_[index].push_back(
        TextTable::Slot{textId_, 1, static_cast<uint32_t>(offset), static_cast<uint32_t>(units)});
    ++count_;
  }

  std::vector<std::vector<TextTable::Slot>>& perLanguage() { return perLanguage_; }
  size_t used() const { return used_; }
  size_t count() const { return count_; }

 private:
  const qt::qlg::Definition& def_;
  wchar_t* pool_;
  size_t capacity_;
  size_t used_ = 0;
  std::vector<std::vector<TextTable::Slot>> perLanguage_;
  int textId_ = 0;
  size_t count_ = 0;
};

// The path as UTF-8, for messages.
std::string PathForMessages(const wchar_t* path) {
  return path ? qt::qlg::WideToUtf8(path, std::char_traits<wchar_t>::length(path)) : std::string();
}

// Null and empty names are no files; the seam takes neither.
qt::fs::FsError ReadNamed(const wchar_t* path, std::string* bytes) {
  return path && *path ? qt::fs::ReadWholeFile(path, bytes) : qt::fs::FsError::kInvalidName;
}

bool Load(const wchar_t* definitionPath, const wchar_t* languageFilePath, CQlg::Impl* into) {
  const std::string defName = PathForMessages(definitionPath);
  const std::string fileName = PathForMessages(languageFilePath);
  std::string bytes;
  qt::fs::FsError read = ReadNamed(definitionPath, &bytes);
  if (read != qt::fs::FsError::kOk) {
    into->lastError = defName + ": cannot read the file: " + qt::fs::FsErrorText(read);
    return false;
  }
  qt::qlg::Definition def;
  qt::qlg::ParseError error;
  if (!qt::qlg::ParseDefinition(bytes.data(), bytes.size(), defName, &def, &error)) {
    into->lastError = error.describe();
    return false;
  }
  read = ReadNamed(languageFilePath, &bytes);
  if (read != qt::fs::FsError::kOk) {
    into->lastError = fileName + ": cannot read the file: " + qt::fs::FsErrorText(read);
    return false;
  }
  if (bytes.size() >= UINT32_MAX) {
    into->lastError = fileName + ": too large";
    return false;
  }
  // Wide text takes at most one unit per UTF-8 byte, and the quotes around
  // each text pay for its terminator. Not zero-filled: pages never written
  // are never touched.
  std::unique_ptr<wchar_t[]> pool(new wchar_t[bytes.size() + 1]);
  // A translation line takes a dozen bytes at the least.
  Loader loader(def, pool.get(), bytes.size() + 1, bytes.size() / 64);
  if (!qt::qlg::ParseQlg(bytes.data(), bytes.size(), fileName, def, loader, &error)) {
    into->lastError = error.describe();
    return false;
  }
  into->pool.swap(pool);
  into->poolSize = loader.used();
  for (size_t i = 0; i < def.languages.size(); ++i) {
    if (loader.perLanguage()[i].empty()) continue;
    into->languages.push_back(LanguageTexts{def.languages[i].id, TextTable()});
    into->languages.back().table.build(loader.perLanguage()[i]);
  }
  into->count = loader.count();
  return true;
}

}  // namespace

CQlg::CQlg() : impl_(new Impl) {}

CQlg::~CQlg() {}

void CQlg::clear() {
  impl_->pool.reset();
  impl_->poolSize = 0;
  impl_->languages.clear();
  impl_->activeTable = nullptr;
  impl_->count = 0;
}

bool CQlg::init(const wchar_t* definitionPath, const wchar_t* languageFilePath) {
  clear();
  impl_->lastError.clear();
  // A failed load is reported through lastError rather than thrown, so the
  // caller can still fall back to the default texts.
  const bool ok = qt::NoThrowWith<bool>(
      "CQlg::init",
      [&](bool outOfMemory) {
        qt::NoThrowVoid("CQlg::init", [&] {
          impl_->lastError = PathForMessages(languageFilePath) + (outOfMemory ? ": out of memory" : ": unreadable");
        });
        return false;
      },
      [&] { return Load(definitionPath, languageFilePath, impl_.get()); });
  if (!ok) clear();
  impl_->selectActive();
  return ok;
}

bool CQlg::setActiveLanguage(short languageId) {
  impl_->active = languageId;
  impl_->selectActive();
  return impl_->activeTable != nullptr;
}

short CQlg::activeLanguageId() const { return impl_->active; }

const wchar_t* CQlg::find(long textId, size_t* length) const {
  if (!impl_->activeTable || textId < INT32_MIN || textId > INT32_MAX) return nullptr;
  const TextTable::Slot* slot = impl_->activeTable->find(static_cast<int32_t>(textId));
  if (!slot) return nullptr;
  if (length) *length = slot->length;
  return impl_->pool.get() + slot->offset;
}

bool CQlg::getText(long textId, CWsz& out, const wchar_t* defaultText) const {
  size_t length = 0;
  const wchar_t* text = find(textId, &length);
  if (text) {
    out.assign(text, length);
    return true;
  }
  out = defaultText;
  return false;
}

size_t CQlg::textCount() const { return impl_->count; }

const std::string& CQlg::lastError() const { return impl_->lastError; }
