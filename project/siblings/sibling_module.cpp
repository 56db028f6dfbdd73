// A stand-in for one of the suite's sibling modules, built under the
// module's own file name for the bridge tests. It exports the functions the
// bridge calls in that module (none in the bare build), records each call
// and answers DefaultAnswer unless the test asked for another answer.
//
// QT_SIBLING_OF_<module> names the module; QT_SIBLING_BARE leaves out every
// export but the test's controls.
#include <cwchar>
#include <map>
#include <string>

#include "InterApp.h"
#include "project/siblings/sibling_record.h"

#if defined(_WIN32)
#define QT_SIBLING_EXPORT extern "C" __declspec(dllexport)
#else
#define QT_SIBLING_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

struct State {
  std::string lastCall;
  int calls = 0;
  std::map<std::string, long long> answers;
  std::map<std::string, std::wstring> texts;
  bool quiet = false;  // answer without recording, for timing the bridge itself
};

State& Module() {
  static State state;
  return state;
}

const std::wstring* TextFor(const char* name) {
  const auto found = Module().texts.find(name);
  return found == Module().texts.end() ? nullptr : &found->second;
}

// Text the test set for an export goes to its wide output arguments.
template <class P, class A>
void Fill(A& argument, const std::wstring* text) {
  if (!text) return;
  if constexpr (std::is_same<P, wchar_t*>::value) {
    if (argument) std::wcscpy(argument, text->c_str());
  } else if constexpr (std::is_same<P, ustr&>::value) {
    argument = text->c_str();
  }
}

template <class F>
struct Handler;

template <class R, class... P>
struct Handler<R (*)(P...)> {
  const char* name;

  R operator()(P... arguments) const {
    State& state = Module();
    if (state.quiet) {
      if constexpr (std::is_void<R>::value) {
        return;
      } else {
        return sibling::DefaultAnswer<R>(name);
      }
    }
    state.lastCall = sibling::Describe<P...>(name, arguments...);
    ++state.calls;
    const std::wstring* text = TextFor(name);
    (void)text;
    int unused[] = {0, (Fill<P>(arguments, text), 0)...};
    (void)unused;
    return Answer();
  }

  R Answer() const {
    if constexpr (std::is_void<R>::value) {
      return;
    } else {
      if constexpr (std::is_arithmetic<R>::value) {
        const auto answer = Module().answers.find(name);
        if (answer != Module().answers.end()) return static_cast<R>(answer->second);
      } else if constexpr (std::is_same<R, ustr>::value) {
        if (const std::wstring* text = TextFor(name)) return ustr(text->c_str());
      }
      return sibling::DefaultAnswer<R>(name);
    }
  }
};

}  // namespace

// The test's controls.
QT_SIBLING_EXPORT const char* SiblingLastCall() { return Module().lastCall.c_str(); }
QT_SIBLING_EXPORT int SiblingCallCount() { return Module().calls; }
QT_SIBLING_EXPORT void SiblingSetAnswer(const char* exportName, long long answer) {
  Module().answers[exportName] = answer;
}
QT_SIBLING_EXPORT void SiblingSetText(const char* exportName, const wchar_t* text) {
  Module().texts[exportName] = text;
}
QT_SIBLING_EXPORT void SiblingReset() { Module() = State(); }
QT_SIBLING_EXPORT void SiblingQuiet(int quiet) { Module().quiet = quiet != 0; }

#if !defined(QT_SIBLING_BARE)

// Only the rows of this module become exports.
#include "project/siblings/sibling_this_module.h"

#define QT_EXPORT_RESULT_Same(Ret) Ret
#define QT_EXPORT_RESULT_TrueAfterCall(Ret) Ret
#define QT_EXPORT_RESULT_NonZero(Ret) int

#define QT_SIBLING_DEFINE(Ret, exportName, params, args) \
  QT_SIBLING_EXPORT Ret exportName params { return Handler<decltype(&exportName)>{#exportName} args; }

#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result) \
  QT_SIBLING_ROW_##module(QT_SIBLING_DEFINE(QT_EXPORT_RESULT_##result(Ret), exportName, params, args))
#define QT_BRIDGE_EXPORT(module, Ret, exportName, params, args) \
  QT_SIBLING_ROW_##module(QT_SIBLING_DEFINE(Ret, exportName, params, args))
#include "project/interapp_rows.h"

#endif
