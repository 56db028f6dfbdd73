// A bridge call whose export is already resolved, against calling the same
// export through a plain function pointer. The export is the stand-in
// common module's, built by the tests into bin/siblings/full/, answering
// without recording so that the call itself is what is timed.
#include <benchmark/benchmark.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "InterApp.h"

namespace {

void* CommonModule() {
  static void* module = [] {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) std::abort();
    std::string path(self, static_cast<size_t>(n));
    path = path.substr(0, path.rfind('/')) + "/siblings/full/QNCommon_r24x64.arx";
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
      std::fprintf(stderr, "%s: %s (build the tests first)\n", path.c_str(), dlerror());
      std::abort();
    }
    reinterpret_cast<void (*)(int)>(dlsym(handle, "SiblingQuiet"))(1);
    InterApp::init();
    return handle;
  }();
  return module;
}

void BridgeNoArguments(benchmark::State& state) {
  CommonModule();
  for (auto _ : state) benchmark::DoNotOptimize(InterApp::QNC::IsTransmitToolRunning());
}
BENCHMARK(BridgeNoArguments);

void PointerNoArguments(benchmark::State& state) {
  typedef bool (*Export)();
  Export volatile call = reinterpret_cast<Export>(dlsym(CommonModule(), "IsTransmitToolRunningQNC"));
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(PointerNoArguments);

void BridgeFourArguments(benchmark::State& state) {
  CommonModule();
  int ids = 0;
  for (auto _ : state) benchmark::DoNotOptimize(InterApp::QNC::GetEntitiesInLayout(&ids, L"Layout1", &ids, true));
}
BENCHMARK(BridgeFourArguments);

void PointerFourArguments(benchmark::State& state) {
  typedef bool (*Export)(void*, const wchar_t*, void*, bool);
  Export volatile call = reinterpret_cast<Export>(dlsym(CommonModule(), "GetEntitiesInLayoutQNC"));
  int ids = 0;
  for (auto _ : state) benchmark::DoNotOptimize(call(&ids, L"Layout1", &ids, true));
}
BENCHMARK(PointerFourArguments);

void BridgeText(benchmark::State& state) {
  CommonModule();
  for (auto _ : state) benchmark::DoNotOptimize(InterApp::QNC::GetAcadVersion());
}
BENCHMARK(BridgeText);

void PointerText(benchmark::State& state) {
  typedef ustr (*Export)();
  Export volatile call = reinterpret_cast<Export>(dlsym(CommonModule(), "GetAcadVersionQNC"));
  for (auto _ : state) benchmark::DoNotOptimize(call());
}
BENCHMARK(PointerText);

}  // namespace

BENCHMARK_MAIN();
