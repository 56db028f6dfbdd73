// File handles, open modes, quick modes and streams of the record engine.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "project/qb_engine.h"
#include "core/fs.h"
#include "project/qb_stream.h"
#include "project/qb_text.h"

using namespace qb;

namespace {

void ForgetPositions(File* f) {
  f->seekOn = false;
  f->seekKey.clear();
  f->ahm.clear();
  f->ahm.shrink_to_fit();
}

short OpenBackend(File* f, short mode) {
  if (mode < QB_MODE_QUICKREAD || mode > QB_MODE_UPDATE) return QBERR_BADARG;
  if (f->backend) return QBERR_ALREADYOPEN;
  // A stream's database lived in memory only; once closed it is gone.
  if (f->memory || f->path.empty()) return QBERR_NOFILE;
  const bool writable = mode == QB_MODE_QUICKUPDATE || mode == QB_MODE_UPDATE;
  std::unique_ptr<Backend> b = NewEmbeddedBackend();
  short s = b->Open(WideToUtf8(f->path.c_str()), writable, f->timeoutMs);
  if (s != QB_OK) return s;
  auto dict = std::make_shared<Dictionary>();
  s = b->LoadDictionary(dict.get());
  if (s == QB_OK && mode == QB_MODE_QUICKREAD) s = b->BeginRead();
  if (s == QB_OK && mode == QB_MODE_QUICKUPDATE) s = b->BeginWrite();
  if (s != QB_OK) return s;
  f->backend = std::move(b);
  f->dict = dict;
  f->mode = mode;
  f->writable = writable;
  ForgetPositions(f);
  return QB_OK;
}

// keep: commit an open quick update (else it is rolled back).
short CloseBackend(File* f, bool keep) {
  if (!f->backend) return QBERR_NOTOPEN;
  short s = QB_OK;
  if (f->mode == QB_MODE_QUICKUPDATE && keep)
    s = f->backend->Commit();
  else
    f->backend->Rollback();
  f->backend->Close();
  f->backend.reset();
  f->dict.reset();
  f->mode = -1;
  f->filterOn = false;
  ForgetPositions(f);
  return s;
}

short OpenStream(const std::string& bytes, const wchar_t* path) {
  std::string image;
  short s = UnwrapStream(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), &image);
  if (s != QB_OK) return s;
  std::unique_ptr<Backend> b = NewEmbeddedBackend();
  s = b->OpenImage(image);
  auto dict = std::make_shared<Dictionary>();
  if (s == QB_OK) s = b->LoadDictionary(dict.get());
  auto f = std::make_unique<File>();
  f->backend = std::move(b);
  f->dict = dict;
  // A checksum only says that the stream arrived as it was sent, not that
  // what was sent is sound: the full check finds records out of key order
  // and indexes that disagree with their tables, and a stream that the
  // engine would not write again byte for byte carries something it does
  // not understand.
  if (s == QB_OK) {
    std::vector<std::string> problems;
    s = CheckFile(f.get(), &problems);
    if (s == QB_OK && !problems.empty()) s = QBERR_CORRUPT;
  }
  if (s == QB_OK) {
    std::string again;
    s = f->backend->Serialize(&again);
    if (s == QB_OK && WrapStream(again) != bytes) s = QBERR_CORRUPT;
  }
  // Whatever fails inside a stream that passed its checksum is still a
  // stream that is not a database of ours.
  if (s != QB_OK) return s == QBERR_NOMEM ? s : static_cast<short>(QBERR_BADSTREAM);
  if (path) f->path = path;
  f->memory = true;
  f->mode = QB_MODE_UPDATE;
  f->writable = true;
  return AddFile(std::move(f));
}

short Serialize(short hfile, std::string* stream) {
  File* f;
  short s = OpenFileOf(hfile, &f);
  if (s != QB_OK) return s;
  std::string image;
  s = f->backend->Serialize(&image);
  if (s == QB_OK) *stream = WrapStream(image);
  return s;
}

}  // namespace

short qbinitfilew(const wchar_t* path, short hddq) {
  return Guarded(-1, [&]() -> short {
    if (!path) return QBERR_BADARG;
    auto f = std::make_unique<File>();
    f->path = path;
    if (hddq >= 0) {
      std::shared_ptr<Dictionary> d = FindDictionary(hddq, nullptr);
      if (!d) return QBERR_BADHANDLE;
      // A copy: the dictionary may go on changing for other files.
      f->createDict = std::make_shared<Dictionary>(*d);
    }
    return AddFile(std::move(f));
  });
}

short qbopenfile(short hfile, short mode) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    return f ? OpenBackend(f, mode) : static_cast<short>(QBERR_BADHANDLE);
  });
}

short qbcreatefile(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    if (f->backend) return QBERR_ALREADYOPEN;
    if (f->memory || f->path.empty()) return QBERR_BADARG;
    if (!f->createDict || f->createDict->Validate(nullptr) != QB_OK) return QBERR_BADDDQ;
    // Never over an existing file: it may be somebody's project.
    if (qt::fs::Exists(f->path)) return QBERR_EXISTS;
    std::unique_ptr<Backend> b = NewEmbeddedBackend();
    const short s = b->Create(WideToUtf8(f->path.c_str()), *f->createDict);
    if (s != QB_OK) {
      qt::fs::Remove(f->path);
      qt::fs::Remove(f->path + L"-journal");
    }
    return s;
  });
}

short qbclosefile(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    return f ? CloseBackend(f, true) : static_cast<short>(QBERR_BADHANDLE);
  });
}

short qbfileisopen(short hfile) {
  return Guarded(hfile, [&]() -> short {
    const File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    return f->backend ? 1 : 0;
  });
}

short qbsetwarningmode(short hfile, short mode) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    const short previous = f->warnings ? 1 : 0;
    f->warnings = mode != 0;
    return previous;
  });
}

short qbswitchfilew(short hfile, const wchar_t* path) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    if (!path || !*path) return QBERR_BADARG;
    const short mode = f->backend ? f->mode : -1;
    const short closed = f->backend ? CloseBackend(f, true) : static_cast<short>(QB_OK);
    f->path = path;
    f->memory = false;
    if (closed != QB_OK) return closed;
    if (mode >= 0) return OpenBackend(f, mode);
    if (f->warnings && !qt::fs::Exists(path)) return QBWARN_NEWFILE;
    return QB_OK;
  });
}

short qbgetopenmode(short hfile) {
  return Guarded(hfile, [&]() -> short {
    const File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    return f->backend ? f->mode : static_cast<short>(QBERR_NOTOPEN);
  });
}

short qbgetfilenamew(short hfile, wchar_t* buffer, int size) {
  return Guarded(hfile, [&]() -> short {
    const File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    if (!buffer || size < 1) return QBERR_BADARG;
    const size_t n = f->path.size() < static_cast<size_t>(size) ? f->path.size() : static_cast<size_t>(size) - 1;
    std::wmemcpy(buffer, f->path.data(), n);
    buffer[n] = L'\0';
    return n == f->path.size() ? static_cast<short>(QB_OK) : static_cast<short>(QBERR_BUFSIZE);
  });
}

short qbclosedatabase(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    // A commit that fails leaves the handle, so that the caller hears of it
    // and can still release it.
    const short s = f->backend ? CloseBackend(f, true) : static_cast<short>(QB_OK);
    if (s == QB_OK) RemoveFile(hfile);
    return s;
  });
}

short qbreleasefile(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    if (f->backend) CloseBackend(f, false);
    RemoveFile(hfile);
    return QB_OK;
  });
}

short qbsettimeout(short hfile, long milliseconds) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    if (milliseconds < 0) return QBERR_BADARG;
    f->timeoutMs = milliseconds;
    if (f->backend) f->backend->SetTimeout(milliseconds);
    return QB_OK;
  });
}

short qbgetddq(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f = FindFile(hfile);
    if (!f) return QBERR_BADHANDLE;
    std::shared_ptr<Dictionary> d = f->dict ? f->dict : f->createDict;
    if (!d) return QBERR_NOTOPEN;
    // One handle per dictionary while it is registered, however often asked.
    if (f->ddqHandle >= 0 && FindDictionary(f->ddqHandle, nullptr) == d) return f->ddqHandle;
    const short h = RegisterDictionary(d, true, hfile);
    if (h >= 0) f->ddqHandle = h;
    return h;
  });
}

short qbwritestreamw(short hfile, const wchar_t* path) {
  return Guarded(hfile, [&]() -> short {
    if (!path || !*path) return FindFile(hfile) ? static_cast<short>(QBERR_BADARG) : static_cast<short>(QBERR_BADHANDLE);
    std::string stream;
    const short s = Serialize(hfile, &stream);
    if (s != QB_OK) return s;
    return qt::fs::ReplaceWholeFile(path, stream) == qt::fs::FsError::kOk ? static_cast<short>(QB_OK)
                                                                           : static_cast<short>(QBERR_IO);
  });
}

short qbreadstreamw(const wchar_t* path) {
  return Guarded(-1, [&]() -> short {
    if (!path) return QBERR_BADARG;
    std::string bytes;
    const qt::fs::FsError e = qt::fs::ReadWholeFile(path, &bytes);
    if (e == qt::fs::FsError::kNotFound) return QBERR_NOFILE;
    if (e == qt::fs::FsError::kTooLarge) return QBERR_NOMEM;
    if (e != qt::fs::FsError::kOk) return QBERR_IO;
    return OpenStream(bytes, path);
  });
}

short qbreadstreambuf(const unsigned char* data, long size) {
  return Guarded(-1, [&]() -> short {
    if (!data || size < 0) return QBERR_BADARG;
    return OpenStream(std::string(reinterpret_cast<const char*>(data), static_cast<size_t>(size)), nullptr);
  });
}

char* qbcreatestreambuf(short hfile, long* size) {
  return GuardedPtr<char>(hfile, [&](short* status) -> char* {
    if (!size) {
      *status = FindFile(hfile) ? QBERR_BADARG : QBERR_BADHANDLE;
      return nullptr;
    }
    *size = 0;
    std::string stream;
    *status = Serialize(hfile, &stream);
    if (*status != QB_OK) return nullptr;
    if (stream.size() > static_cast<size_t>(LONG_MAX)) {
      *status = QBERR_NOMEM;
      return nullptr;
    }
    char* buffer = static_cast<char*>(std::malloc(stream.size()));
    if (!buffer) {
      *status = QBERR_NOMEM;
      return nullptr;
    }
    std::memcpy(buffer, stream.data(), stream.size());
    *size = static_cast<long>(stream.size());
    return buffer;
  });
}

char* qbreleasestreambuf(char* buffer) {
  std::free(buffer);
  return nullptr;
}

short qbbeginquickread(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    short s = OpenFileOf(hfile, &f);
    if (s != QB_OK) return s;
    if (f->mode != QB_MODE_READ && f->mode != QB_MODE_UPDATE) return QBERR_QUICKMODE;
    s = f->backend->BeginRead();
    if (s == QB_OK) f->mode = QB_MODE_QUICKREAD;
    return s;
  });
}

short qbbeginquickupdate(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    short s = OpenFileOf(hfile, &f);
    if (s != QB_OK) return s;
    if (f->mode == QB_MODE_READ) return QBERR_READONLY;
    if (f->mode != QB_MODE_UPDATE) return QBERR_QUICKMODE;
    s = f->backend->BeginWrite();
    if (s == QB_OK) f->mode = QB_MODE_QUICKUPDATE;
    return s;
  });
}

short qbendquick(short hfile) {
  return Guarded(hfile, [&]() -> short {
    File* f;
    short s = OpenFileOf(hfile, &f);
    if (s != QB_OK) return s;
    if (f->mode != QB_MODE_QUICKREAD && f->mode != QB_MODE_QUICKUPDATE) return QBERR_QUICKMODE;
    // A commit that fails has been rolled back: the file holds its last
    // committed state and the mode is over either way.
    const bool wasUpdate = f->mode == QB_MODE_QUICKUPDATE;
    s = f->backend->Commit();
    f->mode = f->writable ? QB_MODE_UPDATE : QB_MODE_READ;
    return wasUpdate ? s : static_cast<short>(QB_OK);
  });
}
