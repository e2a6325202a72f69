// Cost per frame of the headphone stage on the default head responses at
// 48 kHz: a 5.x layout's five inputs at host blocks of 512 and 64 frames, and
// stereo's two (one pair's mid and side) at 512.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "BinauralConvolver.h"

namespace {

using namespace sorvane;

void headphones(benchmark::State& state, std::vector<int> active) {
    const int block = int(state.range(0));
    BinauralConvolver convolver;
    convolver.prepare(*loadHeadResponses(48000), block);
    std::vector<std::vector<float>> feeds(kBinauralInputs, std::vector<float>(size_t(block)));
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> u(-1, 1);
    const float* inputs[kBinauralInputs] = {};
    for (int i : active) {
        for (float& x : feeds[size_t(i)]) x = u(rng);
        inputs[i] = feeds[size_t(i)].data();
    }
    std::vector<float> left(static_cast<size_t>(block)), right(static_cast<size_t>(block));
    for (auto _ : state) {
        convolver.process(inputs, block, left.data(), right.data());
        benchmark::DoNotOptimize(left.data());
        benchmark::ClobberMemory();
    }
    // Seconds per frame: shown as e.g. "12.3n" for 12.3 ns.
    state.counters["per_frame"] =
        benchmark::Counter(block, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// 5.x: front pair (mid, side), surround pair (mid, side) and the centre.
BENCHMARK_CAPTURE(headphones, five_inputs, std::vector<int>{2 * kPairFront30, 2 * kPairFront30 + 1, 2 * kPairSurround110,
                                                             2 * kPairSurround110 + 1, kCentreInput})
    ->Arg(512)->Arg(64);
BENCHMARK_CAPTURE(headphones, stereo, std::vector<int>{2 * kPairFront30, 2 * kPairFront30 + 1})->Arg(512);

}  // namespace

BENCHMARK_MAIN();
