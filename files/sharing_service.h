// The seam between the file-sharing manager and the services it chooses
// from. A connector to a document-management system implements
// SharingService and registers a factory that claims the paths it manages;
// whatever no connector claims is served by the file system.
#ifndef QUILTOOL_FILES_SHARING_SERVICE_H
#define QUILTOOL_FILES_SHARING_SERVICE_H

#include <memory>

#include "ustr.h"

namespace qt {
namespace files {

class SharingService {
 public:
  virtual ~SharingService();
  virtual ustr Name() const = 0;
  // Makes the service ready for `file`; false when the file is not found.
  virtual bool Init(const ustr& file) = 0;
  virtual bool FileExists(const ustr& file) = 0;
  // A FileSharingServiceManager::LockState; `owner` may be null.
  virtual int LockState(const ustr& file, ustr* owner) = 0;
  virtual bool Sync(const ustr& file, bool force) = 0;
  virtual bool Lock(const ustr& file) = 0;
  virtual bool Unlock(const ustr& file) = 0;
  virtual ustr RelativeName(const ustr& file) = 0;
  // The name under which the service knows the file (for the file system:
  // the absolute path).
  virtual ustr FullName(const ustr& file) = 0;
};

// A factory returns its service when it manages `file`, else null.
typedef SharingService* (*SharingServiceFactory)(const ustr& file);

// Later registrations are asked first. For connectors and tests.
void RegisterSharingService(SharingServiceFactory factory);
void UnregisterSharingService(SharingServiceFactory factory);

// The service for a file: the first factory that claims it, else the file
// system.
std::unique_ptr<SharingService> ChooseService(const ustr& file);
std::unique_ptr<SharingService> NewFileSystemService();

}  // namespace files
}  // namespace qt

#endif
