// What smoothing costs the shared processor (the block runner both editions
// run), 5.1 with rotate, tilt and a Focus zoom at 48 kHz in blocks of 512:
// still with smoothing off and on, gliding (a new rotation every block, so
// the second engine never rests) and fading (the front pair switched between
// XY and MS every block, so a copy with the old settings always runs too).
// Then head tracking on headphones: the ears alone, the field turned against
// a head that keeps still, and against one that turns, a new orientation
// every block as a tracker at about 100 updates a second sends.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "Processor.h"

namespace {

constexpr int kBlock = 512;

enum class Motion { Still, Gliding, Fading, Ears, HeadStill, HeadTurning };

void run(benchmark::State& state, float smoothing, Motion motion) {
    sorvane::Processor processor;
    processor.setSampleRate(48000.0f);
    processor.setNormalised(kDecodeMode, 1.0f);
    processor.setNormalised(kSmoothing, smoothing);
    processor.setNormalised(kRotate, 0.4f);
    processor.setNormalised(kTilt, 0.55f);
    processor.setNormalised(kZoomMethod, 1.0f);
    processor.setNormalised(kZoom, 0.7f);
    const bool ears = motion == Motion::Ears || motion == Motion::HeadStill || motion == Motion::HeadTurning;
    if (ears) {
        processor.prepareHeadphones(kBlock);
        processor.setNormalised(kOutput, 1.0f);
        processor.setNormalised(kTracking, motion == Motion::Ears ? 0.0f : 1.0f);
        processor.headMailbox().post(sorvane::orientationOfYawPitchRoll(30, 10, 0));
    }
    double yaw = 30;
    std::mt19937 random(3);
    std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
    std::vector<std::vector<float>> in(4, std::vector<float>(kBlock)), out(6, std::vector<float>(kBlock));
    for (auto& channel : in)
        for (float& s : channel) s = noise(random);
    const float* inputs[4] = {in[0].data(), in[1].data(), in[2].data(), in[3].data()};
    float* outputs[6];
    for (int c = 0; c < 6; ++c) outputs[c] = out[c].data();
    float rotate = 0.4f;
    bool ms = false;
    for (auto _ : state) {
        if (motion == Motion::Gliding)
            processor.setNormalised(kRotate, rotate = rotate > 0.6f ? 0.4f : rotate + 0.001f);
        if (motion == Motion::Fading) processor.setNormalised(kFrontMode, (ms = !ms) ? 1.0f : 0.0f);
        if (motion == Motion::HeadTurning)
            processor.headMailbox().post(sorvane::orientationOfYawPitchRoll(yaw = yaw > 60 ? 30 : yaw + 0.5, 10, 0));
        processor.process(inputs, 4, outputs, 6, kBlock);
        benchmark::DoNotOptimize(out[0][0]);
    }
    state.SetItemsProcessed(state.iterations() * kBlock);
}

void StillOff(benchmark::State& state) { run(state, 0.0f, Motion::Still); }
void StillOn(benchmark::State& state) { run(state, 1.0f, Motion::Still); }
void Gliding(benchmark::State& state) { run(state, 1.0f, Motion::Gliding); }
void Fading(benchmark::State& state) { run(state, 1.0f, Motion::Fading); }
void EarsAlone(benchmark::State& state) { run(state, 1.0f, Motion::Ears); }
void HeadStill(benchmark::State& state) { run(state, 1.0f, Motion::HeadStill); }
void HeadTurning(benchmark::State& state) { run(state, 1.0f, Motion::HeadTurning); }
BENCHMARK(StillOff);
BENCHMARK(StillOn);
BENCHMARK(Gliding);
BENCHMARK(Fading);
BENCHMARK(EarsAlone);
BENCHMARK(HeadStill);
BENCHMARK(HeadTurning);

}  // namespace

BENCHMARK_MAIN();
