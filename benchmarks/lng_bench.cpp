// Language texts at scale: ten module files of 50,000 texts each (English
// and German), loaded by Lng::init and looked up by Lng::text.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "Lng.h"
#include "Registry.h"
#include "settings/lng_apptable.h"
#include "settings/lng_internal.h"
#include "settings/qlg_reader.h"

namespace {

const int kTexts = 50000;

const std::string& Folder() {
  static const std::string folder = [] {
    const std::string dir = (std::filesystem::temp_directory_path() / ("qt-lng-bench-" + std::to_string(::getpid()))).string();
    std::filesystem::create_directories(dir);
    return dir;
  }();
  return folder;
}

void Write(const std::string& path, const std::string& text) {
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) std::abort();
  std::fwrite(text.data(), 1, text.size(), f);
  std::fclose(f);
}

// Text ids spread as the suite's are: dense runs with gaps.
int TextId(int i) { return 1000 + (i / 100) * 137 + (i % 100); }

void MakeFiles() {
  static bool made = false;
  if (made) return;
  made = true;
  Write(Folder() + "/QuilQlg.ddq", "qlgdef 1\nsource 1512\nlanguage 1512 en \"English\"\nlanguage 1513 de \"German\"\n");
  for (int row = 0; row < qt::kAppRows; ++row) {
    if (!qt::kAppTable[row].languageFile) continue;
    std::string text = "qlg 1\nmodule M" + std::to_string(row) + "\n";
    text.reserve(static_cast<size_t>(kTexts) * 110);
    for (int i = 0; i < kTexts; ++i) {
      const std::string n = std::to_string(TextId(i));
      text += "\ntext " + n + "\n\t1512 \"Text number " + n + " of the module, in English\"\n\t1513 \"Text Nummer " + n +
              " des Moduls, auf Deutsch \xC3\xA4\xC3\xB6\xC3\xBC\"\n";
    }
    std::string name;
    for (const wchar_t* p = qt::kAppTable[row].languageFile; *p; ++p) name += static_cast<char>(*p);
    Write(Folder() + "/" + name, text);
  }
  const std::string folder = Folder();
  const std::wstring wide(folder.begin(), folder.end());
  qt_lng_set_folder(wide.c_str());
}

std::vector<int> RandomIds() {
  std::mt19937 random(42);
  std::vector<int> ids(4096);
  for (int& id : ids) id = TextId(static_cast<int>(random() % kTexts));
  return ids;
}

void BM_LngInitTenFiles(benchmark::State& state) {
  MakeFiles();
  short language = 1512;
  for (auto _ : state) {
    // Switching languages makes every call reload all ten files.
    language = language == 1512 ? 1513 : 1512;
    Lng::init(language);
  }
  state.counters["texts"] = benchmark::Counter(10.0 * kTexts * 2);
  if (qt_lng_reader(1)->textCount() != 2u * kTexts) state.SkipWithError("files did not load");
}
BENCHMARK(BM_LngInitTenFiles)->Unit(benchmark::kMillisecond);

// The whole call as modules make it, the developer-switch read included.
void BM_LngText(benchmark::State& state) {
  MakeFiles();
  Lng::init(1513);
  const std::vector<int> ids = RandomIds();
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(Lng::text(Lng::APP_HPV, ids[i++ & 4095], L"default"));
  }
}
BENCHMARK(BM_LngText);

// One text asked again and again, as a window asks for its captions: the
// call's own cost, without the memory latency of 4096 texts spread over
// a 10 MB table that BM_LngText pays on a machine whose caches are busy.
void BM_LngTextSameText(benchmark::State& state) {
  MakeFiles();
  Lng::init(1513);
  const int id = RandomIds()[0];
  for (auto _ : state) {
    benchmark::DoNotOptimize(Lng::text(Lng::APP_HPV, id, L"default"));
  }
}
BENCHMARK(BM_LngTextSameText);

// The lookup alone: one hash probe in the active language's table.
void BM_ReaderFind(benchmark::State& state) {
  MakeFiles();
  Lng::init(1513);
  const CQlg* reader = qt_lng_reader(1);
  const std::vector<int> ids = RandomIds();
  size_t i = 0, length = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(reader->find(ids[i++ & 4095], &length));
  }
}
BENCHMARK(BM_ReaderFind);

// The developer switch that Lng::text reads from the settings on every
// call, read the same way.
void BM_ShowStringIdsSwitch(benchmark::State& state) {
  wchar_t no[] = L"no";
  for (auto _ : state) {
    benchmark::DoNotOptimize(Registry::GetStringAtt(nullptr, L"Developer/ShowStringIDs", no));
  }
}
BENCHMARK(BM_ShowStringIdsSwitch);

}  // namespace

int main(int argc, char** argv) {
  // A settings store of the benchmark's own, like the tests'.
  const std::string store = Folder() + "/store";
  std::filesystem::create_directories(store + "/hkcu");
  std::filesystem::create_directories(store + "/hklm");
  setenv("QUILTOOL_HKCU_DIR", (store + "/hkcu").c_str(), 1);
  setenv("QUILTOOL_HKLM_DIR", (store + "/hklm").c_str(), 1);
  RegInt_Init(L"QuilToolBench", L"Lng", L"1");

  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  qt_lng_set_folder(nullptr);
  std::filesystem::remove_all(Folder());
  return 0;
}
