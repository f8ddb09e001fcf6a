// The picture of the spline tool against the limit that a user sets: a picture must be there within
// a millisecond, so that a drag is smooth whatever the window adds to it.
//
// The peer draws the same plot by evaluating the table once for each column of pixels, and nothing
// else: what any picture of the curve needs. "ratio" is the picture divided by that; "limit" is the
// picture divided by one millisecond.

#include <random>

#include <benchmark/benchmark.h>

#include <quillaven/editor/spline_dialog_internal.h>

#include "benchmarks/compare.h"

namespace {

constexpr int kWidth = 600;
constexpr int kHeight = 400;

// A seeded table of n points from 0 to 8.
CSpline MakeTable(int n, bool linear) {
  std::mt19937 random(static_cast<unsigned int>(n));
  std::uniform_real_distribution<double> height(0, 100);
  CSpline table;
  table.TableLinear(linear);
  table.MaxX(8);
  table.MinY(0);
  table.MaxY(100);
  for (int i = 0; i < n; ++i) table.Add(8.0 * i / (n - 1), height(random));
  return table;
}

// The tool with a plot of 600 x 400 pixels, and everything shown.
void Open(CSplineDialog &dialog, CSpline const &table) {
  dialog.Table(table);
  dialog.Place(CSplineDialog::kMinX, {60, 460, 110, 490});
  dialog.Place(CSplineDialog::kMaxY, {5, 40, 55, 70});
  dialog.Place(CSplineDialog::kMaxX, {610, 460, 60 + kWidth, 490});
  dialog.Place(CSplineDialog::kMinY, {5, 410, 55, 40 + kHeight});
  dialog.OnInitDialog();
  dialog.Press(CSplineDialog::kTicks);
  dialog.Press(CSplineDialog::kGrid);
}

// Every column, from end to end of the table.
float EvaluateColumns(CSpline &table) {
  float sum = 0;
  int const columns = kWidth - 2 * PlotScale::kMargin;
  for (int p = 0; p < columns; ++p)
    sum += table.Evaluate(8.0F * static_cast<float>(p) / static_cast<float>(columns - 1));
  return sum;
}

void Paint(benchmark::State &state, bool linear) {
  CSplineDialog dialog;
  Open(dialog, MakeTable(static_cast<int>(state.range(0)), linear));
  CSpline table = dialog.Table();
  auto const paint = [&] {
    CDrawing drawing;
    dialog.OnPaint(drawing);
    benchmark::DoNotOptimize(drawing.Operations().data());
  };
  paint();  // a curve exists from here on
  Compare(state, 1, paint, [&] { benchmark::DoNotOptimize(EvaluateColumns(table)); });
  state.counters["limit"] = state.counters["ns"] / 1e6;
}

void BM_PaintLinear(benchmark::State &state) {
  Paint(state, true);
}
void BM_PaintSpline(benchmark::State &state) {
  Paint(state, false);
}

}  // namespace

BENCHMARK(BM_PaintLinear)->Arg(10)->Arg(100)->Apply(Turns);
BENCHMARK(BM_PaintSpline)->Arg(10)->Arg(100)->Apply(Turns);
