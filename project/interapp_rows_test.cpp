// Every row of the bridge table, called with its module absent, loaded but
// not yet seen by init, and present: the rows are generated from the same
// table as the bridge, so none can be left out.
#include <algorithm>
#include <cstdint>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>

#include "InterApp.h"
#include "project/interapp_test_support.h"
#include "project/siblings/sibling_record.h"

namespace {

using bridge_test::Siblings;
using qt::bridge::ModuleId;

enum class Result { Same, TrueAfterCall, NonZero };
enum class Expect { FallBack, Export };

// Arguments that the export must receive unchanged: referenced objects and
// texts live in distinct slots per position, numbers differ per position.
const int kSlots = 8;

template <class P>
P SampleArgument(int position) {
  if constexpr (std::is_reference<P>::value) {
    typedef typename std::remove_cv<typename std::remove_reference<P>::type>::type Object;
    static Object objects[kSlots];
    return objects[position];
  } else if constexpr (std::is_same<P, const wchar_t*>::value) {
    static const wchar_t* const texts[kSlots] = {L"text 0", L"text 1", L"text 2", L"text 3",
                                                  L"text 4", L"text 5", L"text 6", L"text 7"};
    return texts[position];
  } else if constexpr (std::is_same<P, const char*>::value) {
    static const char* const texts[kSlots] = {"a0", "a1", "a2", "a3", "a4", "a5", "a6", "a7"};
    return texts[position];
  } else if constexpr (std::is_same<P, wchar_t*>::value) {
    static wchar_t buffers[kSlots][256];
    return buffers[position];
  } else if constexpr (std::is_pointer<P>::value) {
    // Never looked into on either side.
    return reinterpret_cast<P>(static_cast<uintptr_t>(0x10000 + 0x100 * position));
  } else if constexpr (std::is_same<P, bool>::value) {
    return position % 2 == 0;
  } else if constexpr (std::is_enum<P>::value) {
    return static_cast<P>(position + 1);
  } else {
    return static_cast<P>(100 + position);
  }
}

template <class... P, size_t... I>
std::tuple<P...> SampleArguments(std::index_sequence<I...>) {
  return std::tuple<P...>(SampleArgument<P>(static_cast<int>(I))...);
}

struct Row;

struct Probe {
  Siblings* siblings;
  Expect expect;
};

struct Row {
  const char* function;
  ModuleId module;
  const char* exportName;
  Result result;
  void (*drive)(const Row& row, Probe& probe);
};

template <class Ret, class... P, class FallBack>
void Check(const Row& row, Probe& probe, Ret (*function)(P...), FallBack fallBack) {
  std::tuple<P...> arguments = SampleArguments<P...>(std::index_sequence_for<P...>());
  Siblings& siblings = *probe.siblings;
  const int callsBefore = siblings.CallCount(row.module);
  if (probe.expect == Expect::Export && row.result == Result::TrueAfterCall) {
    siblings.SetAnswer(row.module, row.exportName, 0);  // true whatever the export answers
  }

  if constexpr (std::is_void<Ret>::value) {
    std::apply(function, arguments);
  } else {
    const Ret got = std::apply(function, arguments);
    if (probe.expect == Expect::FallBack) {
      EXPECT_TRUE(got == fallBack()) << row.function << " did not answer its fall-back";
    } else if (row.result == Result::Same) {
      EXPECT_TRUE(got == sibling::DefaultAnswer<Ret>(row.exportName))
          << row.function << " did not hand on what " << row.exportName << " answered";
    } else if constexpr (std::is_same<Ret, bool>::value) {
      EXPECT_TRUE(got) << row.function;
    } else {
      ADD_FAILURE() << row.function << ": only true or false can come of an export's answer";
    }
  }

  if (probe.expect == Expect::FallBack) {
    EXPECT_EQ(siblings.CallCount(row.module), callsBefore) << row.function << " reached " << row.exportName;
  } else {
    EXPECT_EQ(siblings.CallCount(row.module), callsBefore + 1) << row.function;
    const std::string expected =
        std::apply([&](auto&... a) { return sibling::Describe<P...>(row.exportName, a...); }, arguments);
    EXPECT_EQ(siblings.LastCall(row.module), expected) << row.function << " changed its arguments";
  }
}

#define QT_NOTHING
#define QT_BRIDGE(ns, Ret, name, params, args, module, exportName, fallback, result)          \
  {"InterApp::" #ns "::" #name, qt::bridge::module, #exportName, Result::result,             \
   [](const Row& row, Probe& probe) {                                                         \
     typedef Ret(*Function) params;                                                           \
     Check(row, probe, static_cast<Function>(&InterApp::ns::name), []() -> Ret { return fallback; }); \
   }},
#define QT_BRIDGE_EXPORT(module, Ret, exportName, params, args)
const Row kRows[] = {
#include "project/interapp_rows.h"
};
#undef QT_BRIDGE
#undef QT_BRIDGE_EXPORT

void DriveAll(Probe probe) {
  for (const Row& row : kRows) row.drive(row, probe);
}

TEST(InterAppRows, EveryRowFallsBackUntilInitSeesItsModuleThenCallsItsExport) {
  Siblings siblings;
  // Nothing loaded.
  InterApp::init();
  DriveAll({&siblings, Expect::FallBack});

  // Loaded, but init has not looked since.
  siblings.LoadAll();
  DriveAll({&siblings, Expect::FallBack});

  InterApp::init();
  DriveAll({&siblings, Expect::Export});
  // Resolved once, called again without another look.
  DriveAll({&siblings, Expect::Export});
}

TEST(InterAppRows, EveryRowFallsBackBeforeInitEvenWithItsModuleLoaded) {
  Siblings siblings;
  siblings.LoadAll();
  DriveAll({&siblings, Expect::FallBack});
}

TEST(InterAppRows, TableNamesEveryExportOnceAndInItsModule) {
  std::set<std::string> seen;
  size_t total = 0;
  for (int m = 0; m < qt::bridge::kModuleCount; ++m) {
    for (const char* name : qt::bridge::ExportsIn(m)) {
      EXPECT_TRUE(seen.insert(name).second) << name << " listed twice";
      ++total;
    }
  }
  for (const Row& row : kRows) {
    const std::vector<const char*> names = qt::bridge::ExportsIn(row.module);
    EXPECT_NE(std::find_if(names.begin(), names.end(), [&](const char* n) { return std::string(n) == row.exportName; }),
              names.end())
        << row.exportName;
  }
  // The rows plus the exports of the hand-written functions; one module is
  // recorded without any.
  EXPECT_EQ(total, sizeof kRows / sizeof kRows[0] + 12);
  EXPECT_TRUE(qt::bridge::ExportsIn(qt::bridge::QNCommonUi).empty());
}

}  // namespace
