// Rasters at two scales against what one would write by hand: plain tables with an index, a dense
// vector, std::fill, memcpy, and one virtual call for each stored value.
//
// Each benchmark runs an operation and its peer; "ratio" is the time of the operation divided by
// that of the peer, "ns" and "peer_ns" are nanoseconds for each read or stored value.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>

#include "benchmarks/compare.h"

namespace {

constexpr int kSide = 4000;
constexpr int kWidth = 8;
constexpr int kReads = 1 << 22;

float ValueOf(int row, int col) {
  return static_cast<float>((row * 31 + col * 17) % 1000);
}

// A tenth of the blocks fine, at random.
CMultiScaleFloatMatrix MakeTwoScales() {
  CMultiScaleFloatMatrix raster;
  raster.Redim(kSide, kSide, kWidth);
  std::mt19937 random(1);
  std::bernoulli_distribution fine(0.1);
  for (int row = 0; row < kSide; row += kWidth)
    for (int col = 0; col < kSide; col += kWidth)
      if (fine(random)) raster.FineCell(row, col, true);
  for (int row = 0; row < kSide; ++row)
    for (int col = 0; col < kSide; ++col) raster.At(row, col) = ValueOf(row, col);
  return raster;
}

// One value for each block, and W x W more for each fine one; the coarse table keeps its cell.
std::uint64_t StoredValues(CMultiScaleFloatMatrix const &raster) {
  int const width = raster.W();
  std::uint64_t stored = 0;
  for (int row = 0; row < raster.NRows(); row += width)
    for (int col = 0; col < raster.NCols(); col += width)
      stored += width > 1 && raster.FineCell(row, col)
                    ? static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(width)
                    : 1;
  return stored;
}

CMultiScaleFloatMatrix MakeOneScale() {
  CMultiScaleFloatMatrix raster;
  raster.Redim(kSide, kSide, 1);
  for (int row = 0; row < kSide; ++row)
    for (int col = 0; col < kSide; ++col) raster.At(row, col) = ValueOf(row, col);
  return raster;
}

// What one would write by hand for one raster: a table of the blocks that says where each block's
// fine values begin, and the values of coarse and fine blocks in one vector each.
struct HandTables {
  int cols = 0;
  int width = 0;
  int shift = 0;
  std::vector<int> slots;  // per block: 0 if coarse, else 1 + number of the fine block
  std::vector<float> coarse;
  std::vector<float> fine;

  explicit HandTables(CMultiScaleFloatMatrix const &raster)
      : cols((raster.NCols() + raster.W() - 1) / raster.W()), width(raster.W()) {
    while ((1 << shift) < width) ++shift;
    int fineBlocks = 0;
    for (int row = 0; row < raster.NRows(); row += width) {
      for (int col = 0; col < raster.NCols(); col += width) {
        bool const isFine = raster.FineCell(row, col);
        slots.push_back(isFine ? ++fineBlocks : 0);
        coarse.push_back(raster.At(row, col));
        for (int i = 0; isFine && i < width * width; ++i)
          fine.push_back(raster.At(row + i / width, col + i % width));
      }
    }
  }

  // For blocks of any width, as in the raster.
  float ByDivision(int row, int col) const {
    int const block = row / width * cols + col / width;
    int const slot = slots[static_cast<std::size_t>(block)];
    if (slot == 0) return coarse[static_cast<std::size_t>(block)];
    int const cell = ((slot - 1) * width + row % width) * width + col % width;
    return fine[static_cast<std::size_t>(cell)];
  }

  // For blocks whose width is a power of two, which the raster does not ask for.
  float ByShift(int row, int col) const {
    int const block = (row >> shift) * cols + (col >> shift);
    int const slot = slots[static_cast<std::size_t>(block)];
    if (slot == 0) return coarse[static_cast<std::size_t>(block)];
    int const mask = width - 1;
    int const cell = ((((slot - 1) << shift) + (row & mask)) << shift) + (col & mask);
    return fine[static_cast<std::size_t>(cell)];
  }
};

struct Dense {
  int cols;
  std::vector<float> cells;

  explicit Dense(CMultiScaleFloatMatrix const &raster) : cols(raster.NCols()) {
    for (int row = 0; row < raster.NRows(); ++row)
      for (int col = 0; col < cols; ++col) cells.push_back(raster.At(row, col));
  }
  float At(int row, int col) const {
    return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) +
                 static_cast<std::size_t>(col)];
  }
};

// Reads at random cells; the generator is a multiplication and an addition.
template <class Read>
float ReadAtRandom(Read read) {
  std::uint64_t state = 12345;
  float sum = 0;
  for (int i = 0; i < kReads; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    int const row = static_cast<int>(((state >> 48) * kSide) >> 16);
    int const col = static_cast<int>((((state >> 32) & 0xffff) * kSide) >> 16);
    sum += read(row, col);
  }
  return sum;
}

template <class Read>
float ReadInRows(Read read) {
  float sum = 0;
  for (int row = 0; row < kSide; ++row)
    for (int col = 0; col < kSide; ++col) sum += read(row, col);
  return sum;
}

template <class Pass, class Work, class Peer>
void CompareReads(benchmark::State &state, double steps, Pass pass, Work work, Peer peer) {
  Compare(
      state, steps, [&] { benchmark::DoNotOptimize(pass(work)); },
      [&] { benchmark::DoNotOptimize(pass(peer)); });
}

auto const kInRows = [](auto read) { return ReadInRows(read); };
auto const kAtRandom = [](auto read) { return ReadAtRandom(read); };
constexpr double kCells = static_cast<double>(kSide) * kSide;

void BM_AtRandomVersusTablesByDivision(benchmark::State &state) {
  auto const raster = MakeTwoScales();
  HandTables const tables(raster);
  CompareReads(
      state, kReads, kAtRandom, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return tables.ByDivision(row, col); });
}

void BM_AtRandomVersusTablesByShift(benchmark::State &state) {
  auto const raster = MakeTwoScales();
  HandTables const tables(raster);
  CompareReads(
      state, kReads, kAtRandom, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return tables.ByShift(row, col); });
}

void BM_AtInRowsVersusTablesByDivision(benchmark::State &state) {
  auto const raster = MakeTwoScales();
  HandTables const tables(raster);
  CompareReads(
      state, kCells, kInRows, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return tables.ByDivision(row, col); });
}

void BM_AtInRowsVersusTablesByShift(benchmark::State &state) {
  auto const raster = MakeTwoScales();
  HandTables const tables(raster);
  CompareReads(
      state, kCells, kInRows, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return tables.ByShift(row, col); });
}

void BM_AtRandomVersusDenseAtOneScale(benchmark::State &state) {
  auto const raster = MakeOneScale();
  Dense const dense(raster);
  CompareReads(
      state, kReads, kAtRandom, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return dense.At(row, col); });
}

void BM_AtInRowsVersusDenseAtOneScale(benchmark::State &state) {
  auto const raster = MakeOneScale();
  Dense const dense(raster);
  CompareReads(
      state, kCells, kInRows, [&](int row, int col) { return raster.At(row, col); },
      [&](int row, int col) { return dense.At(row, col); });
}

template <class Make>
void CompareAssign(benchmark::State &state, Make make) {
  auto raster = make();
  auto const stored = static_cast<std::size_t>(StoredValues(raster));
  std::vector<float> cells(stored);
  Compare(
      state, static_cast<double>(stored),
      [&] {
        AssignMultiScaleFloatMatrix(raster, 2.0f);
        benchmark::ClobberMemory();
      },
      [&] {
        std::fill(cells.begin(), cells.end(), 2.0f);
        benchmark::ClobberMemory();
      });
}

void BM_AssignVersusFill(benchmark::State &state) {
  CompareAssign(state, MakeTwoScales);
}
void BM_AssignVersusFillAtOneScale(benchmark::State &state) {
  CompareAssign(state, MakeOneScale);
}

template <class Make>
void CompareCopy(benchmark::State &state, Make make) {
  auto const source = make();
  auto target = make();
  auto const stored = static_cast<std::size_t>(StoredValues(source));
  std::vector<float> const from(stored, 1.0f);
  std::vector<float> to(stored);
  Compare(
      state, static_cast<double>(stored),
      [&] {
        CopyMultiScaleFloatMatrix(target, source);
        benchmark::ClobberMemory();
      },
      [&] {
        std::memcpy(to.data(), from.data(), stored * sizeof(float));
        benchmark::ClobberMemory();
      });
}

void BM_CopyVersusMemcpy(benchmark::State &state) {
  CompareCopy(state, MakeTwoScales);
}
void BM_CopyVersusMemcpyAtOneScale(benchmark::State &state) {
  CompareCopy(state, MakeOneScale);
}

class CSlope : public CFloatMapFunc {
 public:
  float Eval(int row, int col) override { return m_fStep * static_cast<float>(row + col); }

 private:
  float m_fStep = 0.5f;
};

// A second class, so that the compiler cannot call the one class it sees directly.
class CPlane : public CFloatMapFunc {
 public:
  float Eval(int row, int col) override { return static_cast<float>(row - col); }
};

template <class Make>
void CompareEval(benchmark::State &state, Make make) {
  auto raster = make();
  auto const stored = static_cast<std::size_t>(StoredValues(raster));
  std::vector<float> cells(stored);
  CSlope slope;
  CPlane plane;
  CFloatMapFunc *function = stored > 0 ? static_cast<CFloatMapFunc *>(&slope) : &plane;
  benchmark::DoNotOptimize(function);
  Compare(
      state, static_cast<double>(stored),
      [&] {
        MultiScaleFloatMatrixEvalMapFunc(raster, *function);
        benchmark::ClobberMemory();
      },
      [&] {
        int step = 0;
        for (float &cell : cells) cell = function->Eval(step++, 1);
        benchmark::ClobberMemory();
      });
}

void BM_EvalVersusVirtualCalls(benchmark::State &state) {
  CompareEval(state, MakeTwoScales);
}
void BM_EvalVersusVirtualCallsAtOneScale(benchmark::State &state) {
  CompareEval(state, MakeOneScale);
}

// "ratio" is the memory of the raster to that of its stored values and 4 bytes for each block.
void BM_Memory(benchmark::State &state) {
  auto const raster = MakeTwoScales();
  std::uint64_t bytes = 0;
  for (auto _ : state) benchmark::DoNotOptimize(bytes = CRasterAccess::BytesOwned(raster));
  constexpr double kBlocks = kCells / (kWidth * kWidth);
  double const limit = 4.0 * static_cast<double>(StoredValues(raster)) + 4.0 * kBlocks;
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["ratio"] = static_cast<double>(bytes) / limit;
}

}  // namespace

BENCHMARK(BM_AtRandomVersusTablesByDivision)->Apply(Turns);
BENCHMARK(BM_AtRandomVersusTablesByShift)->Apply(Turns);
BENCHMARK(BM_AtInRowsVersusTablesByDivision)->Apply(Turns);
BENCHMARK(BM_AtInRowsVersusTablesByShift)->Apply(Turns);
BENCHMARK(BM_AtRandomVersusDenseAtOneScale)->Apply(Turns);
BENCHMARK(BM_AtInRowsVersusDenseAtOneScale)->Apply(Turns);
BENCHMARK(BM_AssignVersusFill)->Apply(Turns);
BENCHMARK(BM_AssignVersusFillAtOneScale)->Apply(Turns);
BENCHMARK(BM_CopyVersusMemcpy)->Apply(Turns);
BENCHMARK(BM_CopyVersusMemcpyAtOneScale)->Apply(Turns);
BENCHMARK(BM_EvalVersusVirtualCalls)->Apply(Turns);
BENCHMARK(BM_EvalVersusVirtualCallsAtOneScale)->Apply(Turns);
BENCHMARK(BM_Memory);
