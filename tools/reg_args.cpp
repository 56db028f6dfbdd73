#include "reg_args.h"

#include "cmd_reg_file.h"
#include "reg_values.h"

namespace qt_regtool {

namespace {

bool LooksLikeOption(const std::string& a) {
  if (a.size() < 2) return false;
  if (a[0] == '-') return true;
  if (a[0] != '/') return false;
  if (Lower(a).compare(0, 5, "/reg:") == 0) return true;
  return a.size() <= 3 && a.find_first_of("/.", 1) == std::string::npos;
}

}  // namespace

bool IsHelp(const std::string& arg) {
  const std::string a = Lower(arg);
  return a == "/?" || a == "-?" || a == "/h" || a == "-h" || a == "--help";
}

Parsed ParseArgs(const std::vector<std::string>& in, const std::set<std::string>& withValue,
                 const std::set<std::string>& plain, Args* out, std::string* error) {
  for (size_t i = 0; i < in.size(); ++i) {
    const std::string& a = in[i];
    if (IsHelp(a)) return Parsed::kHelp;
    if (!LooksLikeOption(a)) {
      out->positional.push_back(a);
      continue;
    }
    const std::string name = "/" + Lower(a.substr(1));
    if (withValue.count(name)) {
      if (out->has(name.c_str())) return *error = "option " + name + " given twice", Parsed::kBad;
      if (i + 1 >= in.size()) return *error = "option " + name + " needs a value", Parsed::kBad;
      out->values[name] = in[++i];
    } else if (plain.count(name)) {
      if (out->has(name.c_str())) return *error = "option " + name + " given twice", Parsed::kBad;
      out->flags.insert(name);
    } else {
      return *error = "unknown option '" + a + "'", Parsed::kBad;
    }
  }
  return Parsed::kArgs;
}

bool KeyArg(const std::string& arg, HKEY* root, std::wstring* path) {
  return qt_regfile::SplitKeyName(FromUtf8(arg), root, path);
}

}  // namespace qt_regtool
