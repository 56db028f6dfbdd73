// The grid's model on 100,000 rows: a three-key sort with per-column
// directions against std::sort of a plain struct vector with the same keys,
// the row finders, and the memory a number or a text cell costs.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "QnListView2.h"

// Counting allocator: bytes live on the heap, as malloc sizes them.
namespace {
std::atomic<long long> g_liveBytes(0);
}
void* operator new(std::size_t size) {
  void* p = std::malloc(size ? size : 1);
  if (!p) throw std::bad_alloc();
  g_liveBytes += static_cast<long long>(malloc_usable_size(p));
  return p;
}
// GCC takes the free() in a replaced operator delete for a mismatch.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept {
  if (!p) return;
  g_liveBytes -= static_cast<long long>(malloc_usable_size(p));
  std::free(p);
}
#pragma GCC diagnostic pop
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }

namespace {

const int kRows = 100000;

struct Source {
  int a;
  double b;
  std::wstring c;
};

std::vector<Source> MakeSource() {
  std::mt19937 random(42);
  std::vector<Source> rows(kRows);
  wchar_t text[11] = {};
  for (Source& s : rows) {
    s.a = static_cast<int>(random() % 100);
    s.b = static_cast<double>(random() % 1000) / 8;
    for (int i = 0; i < 10; ++i) text[i] = static_cast<wchar_t>(L'A' + random() % 26);
    s.c = text;
  }
  return rows;
}

// Ten columns: the three keys, then an int, a short, a float, a colour
// index, a text, an unsigned and the original position.
void Fill(QnListView2& view, const std::vector<Source>& source) {
  for (int c = 0; c < 10; ++c) view.AddColumn(L"c", 50);
  for (int r = 0; r < kRows; ++r) {
    const Source& s = source[static_cast<size_t>(r)];
    view.AddRow(r);
    view.SetRowId(r, r);
    view.SetCell(r, 0, s.a);
    view.SetCell(r, 1, s.b, 3);
    view.SetCell(r, 2, ustr(s.c.c_str()));
    view.SetCell(r, 3, r * 3);
    view.SetCell(r, 4, static_cast<short>(r % 300));
    view.SetCell(r, 5, static_cast<float>(r) / 7, 2);
    view.SetCell(r, 6, QnListView2::ColorIndex(static_cast<short>(r % 256)));
    view.SetCell(r, 7, ustr(L"row text"));
    view.SetCell(r, 8, static_cast<unsigned int>(r));
    view.SetCell(r, 9, r);
  }
}

void BM_GridSortThreeKeys(benchmark::State& state) {
  const std::vector<Source> source = MakeSource();
  QnListView2 view;
  Fill(view, source);
  const std::vector<QnListView2::SortType> types = {QnListView2::SortAscending, QnListView2::SortDescending,
                                                    QnListView2::SortAscending};
  const std::vector<int> columns = {0, 1, 2};
  for (auto _ : state) {
    state.PauseTiming();
    view.SortRows(QnListView2::SortAscending, 9);  // back to the unsorted order
    state.ResumeTiming();
    if (!view.SortRows(types, columns)) state.SkipWithError("sort failed");
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}

void BM_PlainStructSortThreeKeys(benchmark::State& state) {
  const std::vector<Source> source = MakeSource();
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<Source> rows(source);
    state.ResumeTiming();
    std::sort(rows.begin(), rows.end(), [](const Source& x, const Source& y) {
      if (x.a != y.a) return x.a < y.a;
      if (x.b != y.b) return x.b > y.b;
      return x.c < y.c;
    });
    benchmark::DoNotOptimize(rows.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
}

void BM_GridFindByLParam(benchmark::State& state) {
  QnListView2 view;
  for (int r = 0; r < kRows; ++r) view.AddRow(1000003LL * r);
  view.FindRowIndex(0);  // the index is built once, outside the timing
  std::mt19937 random(7);
  long long found = 0;
  for (auto _ : state) found += view.FindRowIndex(1000003LL * static_cast<long long>(random() % kRows));
  benchmark::DoNotOptimize(found);
}

void BM_GridFindByRowId(benchmark::State& state) {
  QnListView2 view;
  for (int r = 0; r < kRows; ++r) view.SetRowId(view.AddRow(r), 7LL * r);
  view.FindRowIndexByRowId(0);
  std::mt19937 random(7);
  long long found = 0;
  for (auto _ : state) found += view.FindRowIndexByRowId(7LL * static_cast<long long>(random() % kRows));
  benchmark::DoNotOptimize(found);
}

// Heap bytes of rows x columns cells of one kind, less the same rows
// without columns: what the cells themselves cost.
template <class SetOne>
double BytesPerCell(SetOne setOne) {
  const int rows = 20000, columns = 10;
  long long bare = 0, full = 0;
  {
    const long long before = g_liveBytes;
    QnListView2 view;
    for (int r = 0; r < rows; ++r) view.AddRow(r);
    bare = g_liveBytes - before;
  }
  {
    const long long before = g_liveBytes;
    QnListView2 view;
    for (int c = 0; c < columns; ++c) view.AddColumn(L"c", 10);
    for (int r = 0; r < rows; ++r) {
      view.AddRow(r);
      for (int c = 0; c < columns; ++c) setOne(view, r, c);
    }
    full = g_liveBytes - before;
  }
  return static_cast<double>(full - bare) / (static_cast<double>(rows) * columns);
}

void BM_GridCellMemory(benchmark::State& state) {
  double number = 0, text = 0;
  for (auto _ : state) {
    number = BytesPerCell([](QnListView2& v, int r, int c) { v.SetCell(r, c, r * 10 + c); });
    const ustr ten(L"0123456789");
    text = BytesPerCell([&](QnListView2& v, int r, int c) { v.SetCell(r, c, ten); });
  }
  state.counters["bytes_per_number_cell"] = number;
  state.counters["bytes_per_text10_cell"] = text;
}

}  // namespace

BENCHMARK(BM_GridSortThreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainStructSortThreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridFindByLParam);
BENCHMARK(BM_GridFindByRowId);
BENCHMARK(BM_GridCellMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
