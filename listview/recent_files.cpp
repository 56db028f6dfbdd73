// The recent-file list: its entries, their registry values and the
// sub-menu built from them.
#include "QnRecentFileListManager.h"

#include <algorithm>
#include <cstdio>

#include "Registry.h"
#include "core/boundary.h"
#include "core/fs.h"
#include "gwframe.h"
#include "listview/recent_files_list.h"
#include "listview/recent_menu_platform.h"
#include "settings/lng_internal.h"

namespace rm = qt::recent_menu::platform;

namespace {

const int kDefaultMaxFiles = 11;
const int kMenuChars = 50;

ustr ItemPath(const ustr& key, int i) {
  ustr path;
  path.format(L"%s\\Item%02d", key.c_str(), i);
  return path;
}

}  // namespace

struct QnRecentFileListManager::State {
  std::vector<ustr> paths;
  int maxFiles = kDefaultMaxFiles;
  ustr key;
  HWND window = nullptr;
  HINSTANCE instance = nullptr;
  HMENU menu = nullptr;
  HMENU popup = nullptr;
  int firstCommand = 0;
  HWND tip = nullptr;
  std::vector<QnMenuItem> items;

  void rebuild() {
    items = qt::recent_files::MenuItems(paths, firstCommand, qt_lng_text(Lng::APP_HPV, 44278, L"Empty"),
                                        [](const ustr& p) { return rm::CompactPath(p, kMenuChars); });
    HMENU built = rm::FillPopupMenu(popup, items);
    if (built) popup = built;
  }
};

QnRecentFileListManager::QnRecentFileListManager() : state_(new State) {}

QnRecentFileListManager::~QnRecentFileListManager() {
  rm::DestroyToolTip(state_->tip);
  delete state_;
}

bool QnRecentFileListManager::Attach(HWND window, HINSTANCE instance, HMENU menu, int position, bool after,
                                     int firstCommand) {
  return qt::NoThrow<bool>("QnRecentFileListManager::Attach", false, [&] {
    state_->window = window;
    state_->instance = instance;
    state_->menu = menu;
    CreatePopupMenu(firstCommand);
    if (window && !state_->tip) state_->tip = rm::CreateToolTip(window, instance);
    return menu ? InsertPopupMenu(menu, position, after, 0) : true;
  });
}

void QnRecentFileListManager::Detach() {
  rm::DestroyToolTip(state_->tip);
  state_->tip = nullptr;
  state_->window = nullptr;
  state_->menu = nullptr;
}

HMENU QnRecentFileListManager::CreatePopupMenu(int firstCommand) {
  return qt::NoThrow<HMENU>("QnRecentFileListManager::CreatePopupMenu", nullptr, [&] {
    state_->firstCommand = firstCommand;
    state_->rebuild();
    return state_->popup;
  });
}

bool QnRecentFileListManager::InsertPopupMenu(HMENU menu, int position, bool after, UINT flags) {
  return qt::NoThrow<bool>("QnRecentFileListManager::InsertPopupMenu", false, [&] {
    const ustr title = qt_lng_text(Lng::APP_HPV, 44276, L"Recent files");
    if (!menu || rm::MenuHasItem(menu, title.c_str())) return false;
    if (!state_->popup) state_->rebuild();
    return rm::InsertSubMenu(menu, position, after, flags, state_->popup, title.c_str());
  });
}

std::vector<QnMenuItem> QnRecentFileListManager::GetMenuItems() const {
  return qt::NoThrow<std::vector<QnMenuItem>>("QnRecentFileListManager::GetMenuItems", std::vector<QnMenuItem>(),
                                              [&] { return state_->items; });
}

bool QnRecentFileListManager::LoadFromRegistry(const wchar_t* key) {
  return qt::NoThrow<bool>("QnRecentFileListManager::LoadFromRegistry", false, [&] {
    state_->key = key;
    state_->paths.clear();
    if (state_->key.empty() || state_->maxFiles <= 0) return false;
    for (int i = 0; i < state_->maxFiles; ++i) {
      ustr path = ReadFileNameFromRegistry(ItemPath(state_->key, i).c_str());
      if (path.empty()) break;
      state_->paths.push_back(path);
    }
    state_->rebuild();
    return true;
  });
}

bool QnRecentFileListManager::SaveToRegistry() {
  return qt::NoThrow<bool>("QnRecentFileListManager::SaveToRegistry", false, [&] {
    if (state_->key.empty()) return false;
    bool ok = true;
    for (size_t i = 0; i < state_->paths.size(); ++i) {
      ok = WriteFileNameToRegistry(ItemPath(state_->key, static_cast<int>(i)).c_str(), state_->paths[i].c_str()) && ok;
    }
    // Entries past the end would come back on the next load.
    for (int i = static_cast<int>(state_->paths.size()); i < std::max(state_->maxFiles, kDefaultMaxFiles); ++i) {
      Registry::DeleteAtt(HKEY_CURRENT_USER, ItemPath(state_->key, i).c_str());
    }
    return ok;
  });
}

ustr QnRecentFileListManager::ReadFileNameFromRegistry(const wchar_t* valuePath) {
  return qt::NoThrow<ustr>("QnRecentFileListManager::ReadFileNameFromRegistry", ustr(), [&] {
    return valuePath ? Registry::GetStringAtt(HKEY_CURRENT_USER, valuePath, ustr()) : ustr();
  });
}

bool QnRecentFileListManager::WriteFileNameToRegistry(const wchar_t* valuePath, const wchar_t* path) {
  return qt::NoThrow<bool>("QnRecentFileListManager::WriteFileNameToRegistry", false, [&] {
    return valuePath && path && Registry::SetStringAtt(HKEY_CURRENT_USER, valuePath, path);
  });
}

ustr QnRecentFileListManager::GetFilePathNameAt(int index) const {
  return qt::NoThrow<ustr>("QnRecentFileListManager::GetFilePathNameAt", ustr(), [&] {
    return index >= 0 && index < static_cast<int>(state_->paths.size()) ? state_->paths[index] : ustr();
  });
}

int QnRecentFileListManager::GetFileCount() const { return static_cast<int>(state_->paths.size()); }

bool QnRecentFileListManager::SetLastUsed(const wchar_t* path) {
  return qt::NoThrow<bool>("QnRecentFileListManager::SetLastUsed", false, [&] {
    if (!path || !*path) return false;
    const ustr p(path);
    if (qt::fs::Exists(p.str())) {
      qt::recent_files::MoveToFront(state_->paths, p, state_->maxFiles);
      state_->rebuild();
      return true;
    }
    // The path goes in by replacement: a translated text is not trusted
    // as a format.
    ustr question = qt_lng_text(Lng::APP_HPV, 44277,
                                L"The file or folder \"%s\" cannot be opened. Do you want to remove the "
                                L"reference(s) to it from the Recent list(s)?");
    question.replace(L"%s", path);
    if (gwyesnomsg(state_->window, question.c_str()) == IDYES) {
      qt::recent_files::RemovePath(state_->paths, p);
      state_->rebuild();
    }
    return false;
  });
}

ustr QnRecentFileListManager::SetLastUsed(int command) {
  return GetFilePathNameAt(command - state_->firstCommand);
}

void QnRecentFileListManager::SetMaxFileCount(int count) {
  qt::NoThrowVoid("QnRecentFileListManager::SetMaxFileCount", [&] {
    state_->maxFiles = std::max(count, 0);
    if (static_cast<int>(state_->paths.size()) > state_->maxFiles) {
      state_->paths.resize(static_cast<size_t>(state_->maxFiles));
      state_->rebuild();
    }
  });
}

int QnRecentFileListManager::GetMaxFileCount() const { return state_->maxFiles; }

void QnRecentFileListManager::OnMenuSelect(UINT item, UINT flags, HMENU menu) {
  qt::NoThrowVoid("QnRecentFileListManager::OnMenuSelect", [&] {
    const int index = static_cast<int>(item) - state_->firstCommand;
    if (rm::MenuClosed(flags, menu) || !menu || menu != state_->popup || index < 0 ||
        index >= static_cast<int>(state_->paths.size())) {
      ShowToolTip(false);
      return;
    }
    UpdateToolTipText(state_->paths[index].c_str());
    SetToolTipPosition(menu, item);
    ShowToolTip(true);
  });
}

void QnRecentFileListManager::ShowToolTip(bool show) { rm::ShowToolTip(state_->tip, state_->window, show); }

void QnRecentFileListManager::UpdateToolTipText(const wchar_t* text) {
  rm::SetToolTipText(state_->tip, state_->window, text ? text : L"");
}

void QnRecentFileListManager::SetToolTipPosition(HMENU menu, UINT item) {
  rm::PlaceToolTip(state_->tip, state_->window, menu, item);
}

HWND QnRecentFileListManager::GetToolTipWindow() const { return state_->tip; }
