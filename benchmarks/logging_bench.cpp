// The log's file sink, which flushes every piece so that the log survives a
// crash, against spdlog's file sink flushing every message, in one run.
// Both write to a file in the temporary folder; spdlog gets its plainest
// pattern ("%v") so that neither side formats a time stamp.
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "Logging.h"
#include "ustr.h"

#ifdef QT_HAVE_SPDLOG
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

namespace {

std::string& TempDir() {
  static std::string dir;
  return dir;
}

std::string TempFile(const char* name) {
  if (TempDir().empty()) {
    char pattern[] = "/tmp/quiltool-bench-XXXXXX";
    if (!mkdtemp(pattern)) std::abort();
    TempDir() = pattern;
  }
  return TempDir() + "/" + name;
}

void QuilToolTextPiece(benchmark::State& state) {
  const std::string path = TempFile("quiltool.log");
  {
    Logging log;
    log.Init(qn_ansi_to_wide(path.c_str()).c_str(), nullptr, false);
    for (auto _ : state) log << L"pipe segment 12 checked\n";
  }
  state.SetItemsProcessed(state.iterations());
  std::remove(path.c_str());
}
BENCHMARK(QuilToolTextPiece);

// A typical line: five pieces, each flushed.
void QuilToolMixedLine(benchmark::State& state) {
  const std::string path = TempFile("quiltool-mixed.log");
  {
    Logging log;
    log.Init(qn_ansi_to_wide(path.c_str()).c_str(), nullptr, false);
    int row = 0;
    for (auto _ : state) log << L"row " << ++row << L" flow " << 1.25 << L"\n";
  }
  state.SetItemsProcessed(state.iterations() * 5);
  std::remove(path.c_str());
}
BENCHMARK(QuilToolMixedLine);

#ifdef QT_HAVE_SPDLOG
std::shared_ptr<spdlog::logger> FlushingLogger(const std::string& path) {
  auto sink = std::make_shared<spdlog::sinks::basic_file_sink_st>(path, true);
  auto logger = std::make_shared<spdlog::logger>("bench", sink);
  logger->set_pattern("%v");
  logger->flush_on(spdlog::level::trace);
  return logger;
}

void SpdlogTextMessage(benchmark::State& state) {
  const std::string path = TempFile("spdlog.log");
  {
    auto logger = FlushingLogger(path);
    for (auto _ : state) logger->info("pipe segment 12 checked");
  }
  state.SetItemsProcessed(state.iterations());
  std::remove(path.c_str());
}
BENCHMARK(SpdlogTextMessage);

void SpdlogMixedLine(benchmark::State& state) {
  const std::string path = TempFile("spdlog-mixed.log");
  {
    auto logger = FlushingLogger(path);
    int row = 0;
    for (auto _ : state) logger->info("row {} flow {}", ++row, 1.25);
  }
  state.SetItemsProcessed(state.iterations());
  std::remove(path.c_str());
}
BENCHMARK(SpdlogMixedLine);
#endif

// Prints the usual table, then how the two loggers compare.
// With repetitions, the medians are compared.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  explicit RatioReporter(OutputOptions options) : ConsoleReporter(options) {}
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      const auto it = run.counters.find("items_per_second");
      if (it != run.counters.end()) rates_[run.run_name.function_name] = it->second.value;
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    Ratio("QuilToolTextPiece", "SpdlogTextMessage", "pieces/s per flushed spdlog message/s");
    Ratio("QuilToolMixedLine", "SpdlogMixedLine", "pieces/s per flushed spdlog message/s, 5-piece lines");
  }

 private:
  void Ratio(const std::string& ours, const std::string& peer, const char* what) {
    if (!rates_.count(ours) || !rates_.count(peer) || rates_[peer] <= 0) return;
    std::printf("ratio %s / %s = %.2f (%s)\n", ours.c_str(), peer.c_str(), rates_[ours] / rates_[peer], what);
  }
  std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter(isatty(STDOUT_FILENO) ? benchmark::ConsoleReporter::OO_Defaults
                                               : benchmark::ConsoleReporter::OO_Tabular);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  if (!TempDir().empty()) rmdir(TempDir().c_str());
  return 0;
}
