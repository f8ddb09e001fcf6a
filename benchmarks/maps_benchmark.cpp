// Drawing and filling typed maps: nanoseconds for each cell, which have limits of their own (10 for
// a cell that is drawn, 30 for one that is painted), beside what the memory alone costs.

#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/raster/raster_operations.h>

namespace {

constexpr int kSide = 1000;
constexpr double kCells = static_cast<double>(kSide) * kSide;

void CountCells(benchmark::State &state) {
  state.counters["per_cell"] =
      benchmark::Counter(kCells * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

CMultiScaleFloatMatrix RandomShares(int width) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(kSide, kSide, width);
  std::mt19937 random(1);
  std::uniform_real_distribution<float> share(0.0F, 1.0F);
  for (int row = 0; row < kSide; ++row)
    for (int col = 0; col < kSide; ++col) raster.At(row, col) = share(random);
  return raster;
}

// A whole-map draw through a regular scale of 11 classes: limit 10 ns a cell.
void BM_GetCellColor(benchmark::State &state) {
  CMultiScaleFloatMatrix raster = RandomShares(static_cast<int>(state.range(0)));
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  CBaseMap &shown = map;
  for (auto _ : state) {
    unsigned long sum = 0;
    for (int row = 0; row < kSide; ++row)
      for (int col = 0; col < kSide; ++col) sum += shown.GetCellColor(row, col);
    benchmark::DoNotOptimize(sum);
  }
  CountCells(state);
}

// The physical limit beside it: reading each cell.
void BM_ReadCells(benchmark::State &state) {
  CMultiScaleFloatMatrix const raster = RandomShares(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    float sum = 0;
    for (int row = 0; row < kSide; ++row)
      for (int col = 0; col < kSide; ++col) sum += raster.At(row, col);
    benchmark::DoNotOptimize(sum);
  }
  CountCells(state);
}

// A solid map filled from its middle, with one class and the other in turn: limit 30 ns a cell.
void BM_FillArea(benchmark::State &state) {
  CMultiScaleByteMatrix raster;
  raster.Redim(kSide, kSide, 1);
  AssignMultiScaleByteMatrix(raster, 0);
  CByteMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr);
  std::vector<std::string> names{"0", "1"};
  std::vector<unsigned long> colors{0, 1};
  map.m_Legend.SetBaseMapLegend(&map, 0, 0, names, colors);
  for (auto _ : state) {
    map.m_nSelectedItem = 1 - map.m_nSelectedItem;
    map.FillArea(kSide / 2, kSide / 2);
  }
  CountCells(state);
}

// The same with floats on a regular scale, whose classes cost more to find.
void BM_FillAreaOfFloats(benchmark::State &state) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(kSide, kSide, 1);
  AssignMultiScaleFloatMatrix(raster, 0.0F);
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  map.m_LegendNames[0] = "1";
  map.m_LegendNames[10] = "0";
  for (auto _ : state) {
    map.m_nSelectedItem = map.m_nSelectedItem == 0 ? 10 : 0;
    map.FillArea(kSide / 2, kSide / 2);
  }
  CountCells(state);
}

}  // namespace

BENCHMARK(BM_GetCellColor)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadCells)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FillArea)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FillAreaOfFloats)->Unit(benchmark::kMillisecond);
