// Settings reads and acknowledged writes per second against the Linux store.
// Targets on the reference machine: GetIntAtt at least 100,000 reads/s,
// SetStringAtt at least 5,000 writes/s. The store lives in a temporary
// folder; QUILTOOL_STORE_SYNC=full in the environment measures writes that
// are flushed to the disk one by one.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "Registry.h"

namespace {

class TempStore {
 public:
  TempStore() {
    char pattern[] = "/tmp/quiltool-bench-XXXXXX";
    if (mkdtemp(pattern)) dir_ = pattern;
    setenv("QUILTOOL_HKCU_DIR", (dir_ + "/hkcu").c_str(), 1);
    setenv("QUILTOOL_HKLM_DIR", (dir_ + "/hklm").c_str(), 1);
    RegInt_Init(L"Bench", L"Registry", L"1");
  }
  ~TempStore() {
    std::error_code ec;
    if (!dir_.empty()) std::filesystem::remove_all(dir_, ec);
  }

 private:
  std::string dir_;
};

void EnsureStore() {
  static TempStore store;
}

void BM_GetIntAtt(benchmark::State& state) {
  EnsureStore();
  for (int i = 0; i < 64; ++i) Registry::SetIntAtt(nullptr, (L"Grid/Column" + std::to_wstring(i)).c_str(), i);
  int i = 0, sum = 0;
  for (auto _ : state) {
    static const wchar_t* const paths[4] = {L"Grid/Column1", L"Grid/Column17", L"Grid/Column42", L"Grid/Missing"};
    sum += Registry::GetIntAtt(nullptr, paths[i++ & 3], 0);
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetIntAtt)->UseRealTime();

void BM_SetStringAtt(benchmark::State& state) {
  EnsureStore();
  // Every write changes the stored text: SQLite skips rewriting a row with
  // identical contents, which would measure nothing.
  static int i = 0;
  for (auto _ : state) {
    const std::wstring path = L"Recent/Item" + std::to_wstring(i % 100);
    const std::wstring text = L"C:\\Projects\\Plant room " + std::to_wstring(i) + L"\\ducts.qep";
    if (!Registry::SetStringAtt(nullptr, path.c_str(), text.c_str())) {
      state.SkipWithError("write failed");
      break;
    }
    ++i;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SetStringAtt)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
