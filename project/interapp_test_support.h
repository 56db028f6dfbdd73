// The stand-in sibling modules, as the bridge tests load and steer them.
#ifndef QUILTOOL_PROJECT_INTERAPP_TEST_SUPPORT_H
#define QUILTOOL_PROJECT_INTERAPP_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "module_loader_platform.h"
#include "project/interapp_bridge.h"
#include "qt_test.h"

namespace bridge_test {

namespace loader = qt_test::module_loader::platform;

enum class Variant { Full, Bare };

// Forgets everything the bridge learnt, as a freshly loaded library, and
// holds the modules a test loads until the test ends.
class Siblings {
 public:
  Siblings() { Forget(); }
  ~Siblings() {
    Forget();
    for (void*& module : modules_) {
      if (module) loader::Release(module);
      module = nullptr;
    }
  }

  static void Forget() {
    qt::bridge::ForgetModulesForTest();
    qt::bridge::ForgetRowCachesForTest();
    qt::bridge::ForgetSpecialCachesForTest();
  }

  static std::wstring PathOf(qt::bridge::ModuleId module, Variant variant) {
    const std::wstring self = qt_test::Widen(qt_test::SelfPath());
    const wchar_t sep = loader::Separator();
    const std::wstring folder = self.substr(0, self.find_last_of(L"\\/") + 1);
    return folder + L"siblings" + sep + (variant == Variant::Full ? L"full" : L"bare") + sep +
           qt::bridge::ModuleFileOf(module).fileName;
  }

  void Load(qt::bridge::ModuleId module, Variant variant = Variant::Full) {
    ASSERT_EQ(modules_[module], nullptr) << "loaded twice";
    modules_[module] = loader::Load(PathOf(module, variant));
    ASSERT_NE(modules_[module], nullptr) << qt_test::Narrow(PathOf(module, variant));
    // Where a released module stays mapped (sanitizer builds), it keeps
    // what an earlier test left in it.
    typedef void (*Reset)();
    Control<Reset>(module, "SiblingReset")();
  }
  void LoadAll() {
    for (int m = 0; m < qt::bridge::kModuleCount; ++m) Load(static_cast<qt::bridge::ModuleId>(m));
  }
  void Release(qt::bridge::ModuleId module) {
    if (modules_[module]) loader::Release(modules_[module]);
    modules_[module] = nullptr;
  }
  bool IsLoaded(qt::bridge::ModuleId module) const { return modules_[module] != nullptr; }

  // The module's record of the last call it took, "" before any.
  std::string LastCall(qt::bridge::ModuleId module) const {
    typedef const char* (*Last)();
    return Control<Last>(module, "SiblingLastCall")();
  }
  int CallCount(qt::bridge::ModuleId module) const {
    typedef int (*Count)();
    return IsLoaded(module) ? Control<Count>(module, "SiblingCallCount")() : 0;
  }
  void SetAnswer(qt::bridge::ModuleId module, const char* exportName, long long answer) {
    typedef void (*Set)(const char*, long long);
    Control<Set>(module, "SiblingSetAnswer")(exportName, answer);
  }
  void SetText(qt::bridge::ModuleId module, const char* exportName, const wchar_t* text) {
    typedef void (*Set)(const char*, const wchar_t*);
    Control<Set>(module, "SiblingSetText")(exportName, text);
  }

 private:
  template <class F>
  F Control(qt::bridge::ModuleId module, const char* name) const {
    void* const address = modules_[module] ? loader::Find(modules_[module], name) : nullptr;
    if (!address) {
      ADD_FAILURE() << "no control " << name << " in module " << module;
      std::abort();
    }
    return reinterpret_cast<F>(address);
  }

  void* modules_[qt::bridge::kModuleCount] = {};
};

}  // namespace bridge_test

#endif
