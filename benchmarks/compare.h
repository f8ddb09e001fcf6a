// An operation against its peer, in one run.
//
//   Compare(state, kCells, [&] { Assign(raster, 1); }, [&] { std::fill(first, last, 1); });

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>

// Processor time, the system's share for files included: what other programs do at the same time
// does not count.
template <class Work>
double SecondsOf(Work work) {
  std::clock_t const start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// The mean time of a run over a turn of some milliseconds, in which the first run only brings the
// data of its own back into the caches.
template <class Run>
double SecondsInTurn(Run run) {
  constexpr double kTurn = 0.02;
  run();
  double sum = 0;
  int runs = 0;
  for (; sum < kTurn; ++runs) sum += SecondsOf(run);
  return sum / runs;
}

// Runs both turn by turn, so that a busy machine slows both. The time reported is that of `work`;
// "ratio" is work to peer, by the medians of their turns, "ns" and "peer_ns" are nanoseconds for each
// of their steps.
template <class Work, class Peer>
void Compare(benchmark::State &state, double steps, double peerSteps, Work work, Peer peer) {
  std::vector<double> works;
  std::vector<double> peers;
  for (auto _ : state) {
    peers.push_back(SecondsInTurn(peer));
    works.push_back(SecondsInTurn(work));
    state.SetIterationTime(works.back());
  }
  auto const median = [](std::vector<double> &times) {
    auto const middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  };
  double const workTime = median(works);
  double const peerTime = median(peers);
  state.counters["ratio"] = workTime / peerTime;
  state.counters["ns"] = workTime * 1e9 / steps;
  state.counters["peer_ns"] = peerTime * 1e9 / peerSteps;
}

template <class Work, class Peer>
void Compare(benchmark::State &state, double steps, Work work, Peer peer) {
  Compare(state, steps, steps, work, peer);
}

// With QUILLAVEN_BENCHMARK_ONCE set, one turn over less, to see that everything runs.
inline bool RunsOnce() {
  return std::getenv("QUILLAVEN_BENCHMARK_ONCE") != nullptr;
}
inline int Sized(int whole) {
  return RunsOnce() ? whole / 10 : whole;
}
inline void TakeTurns(benchmark::internal::Benchmark *pair, int turns) {
  pair->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(RunsOnce() ? 1 : turns);
}
inline void Turns(benchmark::internal::Benchmark *pair) {
  TakeTurns(pair, 11);
}
