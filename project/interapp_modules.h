// The sibling modules the bridge looks for, and the exports it resolves in
// each: the one list that the bridge, its tests and `quiltool modules` share.
#ifndef QUILTOOL_PROJECT_INTERAPP_MODULES_H
#define QUILTOOL_PROJECT_INTERAPP_MODULES_H

#include <vector>

namespace qt {
namespace bridge {

// The module table in its fixed order; the value is the row's index.
enum ModuleId {
  QnHpv,
  QuilUtil,
  QuilSer,
  QuilEPJ,
  Qne,
  QneUi,
  QNCommon,
  QNCommonUi,
  Qnr,
  QuilQRP,
  QNHeatEx,
  QNUtilities,
  QnSd,
  QnSdUi,
  QnCs,
  QUILQNPropertiesPalette,
  kModuleCount
};

struct ModuleFile {
  const wchar_t* fileName;  // the same file name on every target
  bool wideName;            // looked up by wide name (else by 8-bit name)
};

// Row `module` of the table; module must be in 0..kModuleCount-1.
const ModuleFile& ModuleFileOf(int module);

// Every export name the bridge resolves in `module`, in the order the
// bridge lists them, each once. Empty for a module no bridge uses.
std::vector<const char*> ExportsIn(int module);

}  // namespace bridge
}  // namespace qt

#endif
