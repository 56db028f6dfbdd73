// The file-sharing manager: picks the service for a path and hands the
// operations on to it.
#include <algorithm>
#include <new>
#include <vector>

#include "FileSharingServiceManager.h"
#include "Lng.h"
#include "core/boundary.h"
#include "files/file_sharing_platform.h"
#include "files/sharing_service.h"

namespace qt {
namespace files {

namespace {
std::vector<SharingServiceFactory>& Factories() {
  static std::vector<SharingServiceFactory> factories;
  return factories;
}
}  // namespace

SharingService::~SharingService() {}

void RegisterSharingService(SharingServiceFactory factory) {
  if (factory) Factories().push_back(factory);
}

void UnregisterSharingService(SharingServiceFactory factory) {
  auto& f = Factories();
  f.erase(std::remove(f.begin(), f.end(), factory), f.end());
}

std::unique_ptr<SharingService> ChooseService(const ustr& file) {
  const auto& factories = Factories();
  for (auto it = factories.rbegin(); it != factories.rend(); ++it) {
    if (SharingService* service = (*it)(file)) return std::unique_ptr<SharingService>(service);
  }
  return NewFileSystemService();
}

}  // namespace files
}  // namespace qt

FileSharingServiceManager::FileSharingServiceManager() {}
FileSharingServiceManager::~FileSharingServiceManager() {}
FileSharingServiceManager::FileSharingServiceManager(FileSharingServiceManager&& other) noexcept
    : m_service(std::move(other.m_service)), m_probe(std::move(other.m_probe)) {}
FileSharingServiceManager& FileSharingServiceManager::operator=(FileSharingServiceManager&& other) noexcept {
  m_service = std::move(other.m_service);
  m_probe = std::move(other.m_probe);
  return *this;
}

bool FileSharingServiceManager::IsInitialized() const { return m_service != nullptr; }

bool FileSharingServiceManager::Init(const wchar_t* file) {
  return qt::NoThrow<bool>("FileSharingServiceManager::Init", false, [&]() -> bool {
    const ustr name(file);
    std::unique_ptr<qt::files::SharingService> service = qt::files::ChooseService(name);
    const bool found = service->Init(name);
    // A service that cannot find the file is not kept: the next call
    // chooses again.
    if (found) m_service = std::move(service);
    return found;
  });
}

ustr FileSharingServiceManager::GetServiceName() const {
  return qt::NoThrow<ustr>("FileSharingServiceManager::GetServiceName", ustr(),
                           [&] { return m_service ? m_service->Name() : ustr(); });
}

qt::files::SharingService& FileSharingServiceManager::ServiceFor(const wchar_t* file) const {
  if (m_service) return *m_service;
  m_probe = qt::files::ChooseService(ustr(file));
  return *m_probe;
}

bool FileSharingServiceManager::FileExists(const wchar_t* file) const {
  return qt::NoThrow<bool>("FileSharingServiceManager::FileExists", false, [&]() -> bool {
    return file && ServiceFor(file).FileExists(file);
  });
}

int FileSharingServiceManager::GetFileLockState(const wchar_t* file, ustr* owner) const {
  return qt::NoThrow<int>("FileSharingServiceManager::GetFileLockState", LockStateUnknown, [&]() -> int {
    return file ? ServiceFor(file).LockState(file, owner) : LockStateUnknown;
  });
}

ustr FileSharingServiceManager::GetFileLockStatusText(const wchar_t* file) const {
  const int state = GetFileLockState(file);
  if (state != LockStateLockedByMe && state != LockStateLockedByOther) return ustr();
  return Lng::text(Lng::APP_QNC, 60296, L"Locked");  // answers empty text when memory runs out
}

bool FileSharingServiceManager::SyncFile(const wchar_t* file, bool force) {
  return qt::NoThrow<bool>("FileSharingServiceManager::SyncFile", false, [&]() -> bool {
    return file && ServiceFor(file).Sync(file, force);
  });
}

bool FileSharingServiceManager::LockFile(const wchar_t* file) {
  return qt::NoThrow<bool>("FileSharingServiceManager::LockFile", false, [&]() -> bool {
    return file && ServiceFor(file).Lock(file);
  });
}

bool FileSharingServiceManager::UnlockFile(const wchar_t* file) {
  return qt::NoThrow<bool>("FileSharingServiceManager::UnlockFile", false, [&]() -> bool {
    return file && ServiceFor(file).Unlock(file);
  });
}

ustr FileSharingServiceManager::GetRelativeFilePathName(const wchar_t* file) const {
  return qt::NoThrow<ustr>("FileSharingServiceManager::GetRelativeFilePathName", ustr(), [&]() -> ustr {
    return file ? ServiceFor(file).RelativeName(file) : ustr();
  });
}

ustr FileSharingServiceManager::GetFullFilePathName(const wchar_t* file) const {
  return qt::NoThrow<ustr>("FileSharingServiceManager::GetFullFilePathName", ustr(), [&]() -> ustr {
    return file ? ServiceFor(file).FullName(file) : ustr();
  });
}

ustr FileSharingServiceManager::LockFileName(const wchar_t* file) {
  return qt::NoThrow<ustr>("FileSharingServiceManager::LockFileName", ustr(), [&]() -> ustr {
  const ustr name(file);
  size_t dot = ustr::npos;
  for (size_t i = name.length(); i > 0; --i) {
    const wchar_t c = name.c_str()[i - 1];
    if (qt::file_sharing::platform::IsSeparator(c)) break;
    if (c == L'.') {
      dot = i - 1;
      break;
    }
  }
  if (dot != ustr::npos) {
    const ustr ext = name.mid(dot + 1);
    const wchar_t* replacement = nullptr;
    if (ext.equalsNoCase(L"epj")) replacement = L".lkh";
    else if (ext.equalsNoCase(L"qep") || ext.equalsNoCase(L"qsd")) replacement = L".lck";
    else if (ext.equalsNoCase(L"qrd")) replacement = L".lrd";
    if (replacement) return name.left(dot) + replacement;
  }
  return name + L"~";
  });
}

ustr FileSharingServiceManager::GetFileOwner(const wchar_t* file) {
  return qt::NoThrow<ustr>("FileSharingServiceManager::GetFileOwner", ustr(), [&]() -> ustr {
    std::wstring owner;
    if (!file || !qt::file_sharing::platform::FileOwnerName(file, &owner)) return ustr();
    return ustr(owner);
  });
}
