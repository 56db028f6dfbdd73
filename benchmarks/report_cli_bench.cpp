// The whole `quiltool report` run (lock, read every record into the grid,
// restore the layout, build the XML Spreadsheet 2003 file in memory and
// write it) against the sqlite3 shell writing the same file's records as
// CSV, each as a whole process. The sample has QUILTOOL_BENCH_RECORDS
// records (default 1,000,000); it is made once, in a temporary folder.
// Peak memory is the child's maximum resident set.
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string Folder() {
  static std::string folder = [] {
    char pattern[] = "/tmp/quiltool-report-bench.XXXXXX";
    const char* made = mkdtemp(pattern);
    return std::string(made ? made : "/tmp");
  }();
  return folder;
}

std::string Tool() {
  char self[4096];
  const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
  std::string path = n > 0 ? std::string(self, static_cast<size_t>(n)) : std::string();
  return path.substr(0, path.rfind('/') + 1) + "quiltool";
}

long Records() {
  const char* env = std::getenv("QUILTOOL_BENCH_RECORDS");
  return env ? std::atol(env) : 1000000;
}

std::string Sample() {
  static std::string path = [] {
    const std::string p = Folder() + "/plant.qep";
    const std::string command = Tool() + " db sample " + p + " --records " + std::to_string(Records()) + " >/dev/null";
    return std::system(command.c_str()) == 0 ? p : std::string();
  }();
  return path;
}

// Runs a shell command as a child and answers its exit status and the peak
// resident memory of the children so far, in MiB.
int RunChild(const std::string& command, double* peakMiB) {
  const int status = std::system(command.c_str());
  struct rusage usage;
  getrusage(RUSAGE_CHILDREN, &usage);
  *peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
  return status;
}

void BM_QuiltoolReportToXmlSpreadsheet(benchmark::State& state) {
  const std::string sample = Sample();
  if (sample.empty()) {
    state.SkipWithError("the sample could not be made");
    return;
  }
  const std::string out = Folder() + "/plant.xml";
  double peak = 0;
  for (auto _ : state) {
    std::remove(out.c_str());
    if (RunChild(Tool() + " report " + sample + " --out " + out + " >/dev/null 2>&1", &peak) != 0) {
      state.SkipWithError("quiltool report failed");
      return;
    }
  }
  state.counters["records"] = static_cast<double>(Records());
  state.counters["peak_MiB"] = peak;
}

void BM_Sqlite3ShellToCsv(benchmark::State& state) {
  const std::string sample = Sample();
  if (sample.empty() || std::system("command -v sqlite3 >/dev/null 2>&1") != 0) {
    state.SkipWithError("no sample or no sqlite3 shell");
    return;
  }
  const std::string out = Folder() + "/plant.csv";
  double peak = 0;
  for (auto _ : state) {
    if (RunChild("sqlite3 -csv " + sample + " 'SELECT id, set_no, owner, data FROM qb_recs' >" + out, &peak) != 0) {
      state.SkipWithError("sqlite3 failed");
      return;
    }
  }
  state.counters["records"] = static_cast<double>(Records());
}

BENCHMARK(BM_QuiltoolReportToXmlSpreadsheet)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);
BENCHMARK(BM_Sqlite3ShellToCsv)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::system(("rm -rf " + Folder()).c_str());
  return 0;
}
