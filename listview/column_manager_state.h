// What a column manager keeps besides the list it manages.
#ifndef QUILTOOL_LISTVIEW_COLUMN_MANAGER_STATE_H
#define QUILTOOL_LISTVIEW_COLUMN_MANAGER_STATE_H

#include <string>
#include <vector>

#include "QNListViewColumnManager.h"

struct QNListViewColumnManager::State {
  struct Column {
    bool hidden = false;
    bool hideable = true;
    bool enabled = true;
    int rememberedWidth = 0;
  };

  HWND window = nullptr;
  Lng::AppID appId = Lng::APP_HPV;
  int attachFlags = 0;
  ustr registryKey;
  bool allowSaving = true;
  bool allowAutoScaling = true;
  bool autoSize = false;
  bool sortableHeader = false;
  int minWidth = 0;
  int flags = 0;
  Callback callback = nullptr;
  std::string xmlError;
  // Set while the manager changes the list itself, so that the
  // notifications those changes cause are not taken for the user's.
  int applying = 0;
  int menuColumn = -1;  // the column the header menu was opened on
  std::vector<Column> columns;

  // The entry of a column, grown to the list's count first.
  Column* at(QNListViewColumnManager& self, int column);
  const Column* at(const QNListViewColumnManager& self, int column) const;
  long long tell(QNListViewColumnManager& self, CbMsgId message) {
    return callback ? callback(message, &self) : 0;
  }
};

namespace qt {
namespace listview {

// Marks the manager busy for the life of the object.
class Applying {
 public:
  explicit Applying(QNListViewColumnManager::State& state) : state_(state) { ++state_.applying; }
  ~Applying() { --state_.applying; }

 private:
  QNListViewColumnManager::State& state_;
};

}  // namespace listview
}  // namespace qt

#endif
