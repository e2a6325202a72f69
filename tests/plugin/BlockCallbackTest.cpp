// Both audio callbacks of Sorvane.so, as a host drives them: parameters
// automated between blocks of random length (0 included), in every layout,
// against the engine run frame by frame with the same fields. The double
// callback must give the engine's samples to the bit, the float callback
// the same samples rounded once to single precision.
#include <cmath>
#include <cstdint>
#include <numeric>
#include <random>

#include "Decoder.h"
#include "EngineFields.h"
#include "SorvaneHost.h"

using namespace sorvane_test;
using sorvane::kParameters;

namespace {

// The engine field behind each parameter, as the plug-in converts it.
void mirror(vsthost::Plugin& fx, Decoder& engine, int index) {
    const float v = fx.getParameter(index);
    const EngineField& f = kEngineFields[index];
    if (f.real)
        engine.*f.real = sorvane::realValue(kParameters[index].kind, v);
    else
        engine.*f.selector = sorvane::selectorValue(kParameters[index].kind, v, engine.*f.selector);
}

constexpr int kRate = 48000;
constexpr int kOutputs = 6;

}  // namespace

TEST(SorvaneBlocks, BothCallbacksMatchTheFramewiseEngineUnderAutomation) {
    std::mt19937 rng(5);
    auto uniform = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    const float layouts[] = {kStereo, kTwoOne, kQuad, kFive, kFiveOne};

    for (float layout : layouts) {
        auto doubleHost = loadSorvane(), floatHost = loadSorvane();
        ASSERT_TRUE(doubleHost && floatHost);
        Decoder engine;
        for (auto* fx : {doubleHost.get(), floatHost.get()}) {
            fx->setSampleRate(kRate);
            fx->setParameter(kSmoothing, 0.0f);  // every change at once, as the engine takes it
            fx->setParameter(kDecodeMode, layout);
            // A layout change reloads a program; start both sides from clear filters.
            fx->suspend();
            fx->resume();
        }
        for (int i = 0; i < sorvane::kFirstSetting; ++i) mirror(*doubleHost, engine, i);
        engine.fiveDecoderType = static_cast<int>(doubleHost->getParameter(kFiveDecoderType));
        engine.sampleRate = kRate;
        engine.filterCoefs();

        // Blocks of random length; one run of buffers, walked by the callbacks.
        std::vector<int> blocks(24);
        for (int& b : blocks) b = std::vector{0, uniform(1, 16), uniform(17, 700), uniform(701, 4096)}[uniform(0, 3)];
        const int total = std::accumulate(blocks.begin(), blocks.end(), 0);
        vsthost::AudioBuffer<double> in(4, total), doubleOut(kOutputs, total);
        vsthost::AudioBuffer<float> floatIn(4, total), floatOut(kOutputs, total);
        for (int c = 0; c < 4; ++c)
            for (int f = 0; f < total; ++f)
                floatIn[c][f] = static_cast<float>(in[c][f] = std::uniform_real_distribution<float>(-1, 1)(rng));
        auto doubleIns = in.pointers(), doubleOuts = doubleOut.pointers();
        auto floatIns = floatIn.pointers(), floatOuts = floatOut.pointers();

        int start = 0;
        for (int frames : blocks) {
            doubleHost->processDoubleRaw(doubleIns.data(), doubleOuts.data(), frames);
            floatHost->processFloatRaw(floatIns.data(), floatOuts.data(), frames);
            for (int f = start; f < start + frames; ++f) {
                double W = in[0][f], X = in[1][f], Y = in[2][f], Z = in[3][f];
                const int produced = engine.processDecoder(W, X, Y, Z);
                for (int c = 0; c < kOutputs; ++c) {
                    const double want = c < produced ? engine.speakerFeeds[c] : 0.0;
                    const bool same =
                        std::bit_cast<std::uint64_t>(doubleOut[c][f]) == std::bit_cast<std::uint64_t>(want) &&
                        bitsOf(floatOut[c][f]) == bitsOf(static_cast<float>(want));
                    ASSERT_TRUE(same) << "layout " << layout << ", output " << c << ", frame " << f << ": "
                                      << doubleOut[c][f] << " and " << floatOut[c][f] << " for " << want;
                }
            }
            start += frames;

            // Automation between blocks: any parameter but the layout.
            const int index = uniform(0, sorvane::kFirstSetting - 1);
            if (index == kDecodeMode) continue;
            const float values[] = {0.0f, 0.5f, 1.0f, std::uniform_real_distribution<float>(0, 1)(rng)};
            const float value = values[uniform(0, 3)];
            doubleHost->setParameter(index, value);
            floatHost->setParameter(index, value);
            mirror(*doubleHost, engine, index);
            if (index == kSubCrossover) engine.filterCoefs();
        }
    }
}
