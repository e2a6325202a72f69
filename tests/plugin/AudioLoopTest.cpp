// The audio callbacks against the engine driven directly: same numbers to the
// bit, feeds fitted to the host's outputs, inputs read by count, pointers
// walked in place. Zero and negative frame counts the validator checks
// (validate_sorvane).
#include <xmmintrin.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <tuple>

#include "Decoder.h"
#include "SorvaneHost.h"

using namespace sorvane_test;
using vsthost::AudioBuffer;
using vsthost::SpeakerArrangement;

namespace {

// Deterministic noise in [-1, 1), exact in float and in double.
AudioBuffer<double> noise(std::size_t channels, std::size_t frames, std::uint32_t seed) {
    AudioBuffer<double> buffer(channels, frames);
    for (std::size_t c = 0; c < channels; ++c)
        for (std::size_t i = 0; i < frames; ++i) {
            seed = seed * 1664525u + 1013904223u;
            buffer[c][i] = static_cast<float>(static_cast<double>(seed >> 8) / 8388608.0 - 1.0);
        }
    return buffer;
}

// Engine output for a block: per frame the feeds it produced, the rest 0.
AudioBuffer<double> engineBlock(Decoder& d, const AudioBuffer<double>& in, std::size_t outputs, bool useZ = true) {
    AudioBuffer<double> out(outputs, in.frames());
    for (std::size_t i = 0; i < in.frames(); ++i) {
        double W = in[0][i], X = in[1][i], Y = in[2][i], Z = useZ ? in[3][i] : 0.0;
        const int produced = d.processDecoder(W, X, Y, Z);
        for (std::size_t c = 0; c < outputs; ++c) out[c][i] = static_cast<int>(c) < produced ? d.speakerFeeds[c] : 0.0;
    }
    return out;
}

void expectSameBits(const AudioBuffer<double>& got, const AudioBuffer<double>& want, const std::string& what) {
    ASSERT_EQ(got.channels(), want.channels());
    for (std::size_t c = 0; c < got.channels(); ++c)
        for (std::size_t i = 0; i < got.frames(); ++i)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(got[c][i]), std::bit_cast<std::uint64_t>(want[c][i]))
                << what << " channel " << c << " frame " << i << ": " << got[c][i] << " vs " << want[c][i];
}

// Runs the input through the callback of the given precision in blocks, into
// outputs first filled with 7 so unwritten samples show.
template <typename Sample>
AudioBuffer<Sample> run(vsthost::Plugin& fx, const AudioBuffer<double>& in, std::size_t outputs,
                        const std::vector<int>& blocks) {
    AudioBuffer<Sample> input(in.channels(), in.frames()), out(outputs, in.frames());
    for (std::size_t c = 0; c < in.channels(); ++c)
        for (std::size_t i = 0; i < in.frames(); ++i) input[c][i] = static_cast<Sample>(in[c][i]);
    out.fill(Sample(7));
    auto inPtrs = input.pointers();
    auto outPtrs = out.pointers();
    for (int frames : blocks) {
        if constexpr (sizeof(Sample) == sizeof(double))
            fx.processDoubleRaw(inPtrs.data(), outPtrs.data(), frames);
        else
            fx.processFloatRaw(inPtrs.data(), outPtrs.data(), frames);
    }
    return out;
}

// The engine as program 0 of a layout leaves it: its widths are 30 and 55 degrees.
Decoder engineAfterProgramZero(int layout) {
    Decoder engine;
    engine.decodeMode = layout;
    engine.frontWidth = 30.0;
    engine.surroundWidth = 55.0;
    return engine;
}

}  // namespace

// Hosts set the effect up in many ways; each must still give the engine's
// numbers, with outputs beyond the feeds cleared and feeds beyond the
// outputs dropped.
TEST(SorvaneAudio, HostSetupsGiveTheEnginesNumbers) {
    // The engine's settings for a host's setup, and how the host runs it.
    struct Expected {
        int layout, channelOrder, fiveDecoderType, sampleRate;
        std::size_t outputs;
        std::vector<int> blocks;
    };
    const std::tuple<const char*, std::function<void(vsthost::Plugin&)>, Expected> setups[] = {
        {"5.0, the second fixed matrix",
         [](vsthost::Plugin& fx) {
             fx.setParameter(kDecodeMode, kFive);
             fx.setProgram(4);
         },
         {sorvane::kFiveLayout, 1, 2, 44100, 6, {200}}},
        {"stereo in its own order, two feeds on six outputs",
         [](vsthost::Plugin& fx) { fx.setParameter(kChannelOrder, 0.0f); },
         {sorvane::kStereoLayout, 0, 0, 44100, 6, {200}}},
        {"5.1 on two outputs",
         [](vsthost::Plugin& fx) {
             fx.setParameter(kDecodeMode, kFiveOne);
             SpeakerArrangement input(kSpeakerArr40Music, 4), output(kSpeakerArrStereo, 2);
             EXPECT_TRUE(fx.setSpeakerArrangement(input, output));
         },
         {sorvane::kFiveOneLayout, 1, 0, 44100, 2, {100, 100}}},
        {"2.1 at 48000.7 Hz, truncated to whole hertz",
         [](vsthost::Plugin& fx) {
             fx.setParameter(kDecodeMode, kTwoOne);
             fx.setSampleRate(48000.7f);
         },
         {sorvane::kTwoOneLayout, 1, 0, 48000, 6, {200}}},
    };
    const auto in = noise(4, 200, 5);
    for (const auto& [what, host, expected] : setups) {
        auto fx = loadSorvane();
        ASSERT_TRUE(fx);
        host(*fx);
        Decoder engine = engineAfterProgramZero(expected.layout);
        engine.channelOrder = expected.channelOrder;
        engine.fiveDecoderType = expected.fiveDecoderType;
        engine.sampleRate = expected.sampleRate;
        engine.filterCoefs();
        const auto got = run<double>(*fx, in, expected.outputs, expected.blocks);
        expectSameBits(got, engineBlock(engine, in, expected.outputs), what);
        for (double s : got[0]) ASSERT_NE(s, 7.0) << what;
    }
}

TEST(SorvaneAudio, ThreeInputsMeanASilentZ) {
    auto fx = loadSorvane();
    ASSERT_TRUE(fx);
    fx->setParameter(kTilt, 0.375f);  // 45 degrees: brings Z into the horizontal feeds
    fx->setParameter(kDecodeMode, kQuad);
    SpeakerArrangement input(kSpeakerArr30Cine, 3), output(kSpeakerArr51, 6);
    EXPECT_FALSE(fx->setSpeakerArrangement(input, output));  // refused, counts kept

    const auto in = noise(4, 96, 11);
    AudioBuffer<double> threeChannels(3, 96), out(6, 96);
    for (int c = 0; c < 3; ++c) threeChannels[c] = in[c];
    fx->processDouble(threeChannels.pointers(), out.pointers(), 96);

    Decoder engine = engineAfterProgramZero(sorvane::kQuadLayout);
    engine.tiltAngle = 45.0;
    engine.surroundPattern = 0.75;  // quad's first program: sub-cardioid surrounds
    Decoder withZ = engine;
    expectSameBits(out, engineBlock(engine, in, 6, false), "three inputs");
    // The fourth channel would have mattered had it been given.
    EXPECT_NE(engineBlock(withZ, in, 6)[0], out[0]);
}

TEST(SorvaneAudio, OtherInputCountsReadNothingAndFeedSilence) {
    for (VstInt32 count : {2, 5}) {
        auto fx = loadSorvane();
        ASSERT_TRUE(fx);
        fx->setParameter(kDecodeMode, kTwoOne);
        const auto first = noise(4, 50, 21);
        run<double>(*fx, first, 6, {50});  // leaves history in the crossover

        SpeakerArrangement input(kSpeakerArr31Cine, count), output(kSpeakerArr51, 6);
        fx->setSpeakerArrangement(input, output);
        AudioBuffer<double> in = noise(5, 40, 4);
        auto inPtrs = in.pointers();
        const auto before = inPtrs;
        AudioBuffer<double> out(6, 40);
        auto outPtrs = out.pointers();
        fx->processDoubleRaw(inPtrs.data(), outPtrs.data(), 40);
        EXPECT_EQ(inPtrs, before) << count;

        Decoder engine = engineAfterProgramZero(sorvane::kTwoOneLayout);
        engineBlock(engine, first, 6);
        const auto want = engineBlock(engine, AudioBuffer<double>(4, 40), 6);
        expectSameBits(out, want, "inputs " + std::to_string(count));
        EXPECT_NE(out[3][0], 0.0);  // the LFE tail of the first block
    }
}

// Hosts may pass one pointer array for inputs and outputs; inputs without an
// output of their own must still move past each block.
TEST(SorvaneAudio, OnePointerArrayForBothGivesTheSameNumbers) {
    const auto in = noise(4, 64, 13);
    AudioBuffer<double> outputs[2] = {AudioBuffer<double>(4, 64), AudioBuffer<double>(4, 64)};
    for (bool shared : {false, true}) {
        auto fx = loadSorvane();
        ASSERT_TRUE(fx);
        fx->setParameter(kTilt, 0.375f);  // brings Z into the feeds
        SpeakerArrangement input(kSpeakerArr40Music, 4), output(kSpeakerArrStereo, 2);
        ASSERT_TRUE(fx->setSpeakerArrangement(input, output));
        AudioBuffer<double> channels = in;
        auto inPtrs = channels.pointers();
        auto outPtrs = outputs[shared].pointers();
        // Two blocks on the same walked arrays: the second reads where the first left off.
        for (int block = 0; block < 2; ++block)
            fx->processDoubleRaw(inPtrs.data(), shared ? inPtrs.data() : outPtrs.data(), 32);
        if (shared) outputs[shared] = channels;
    }
    for (int c = 0; c < 2; ++c) EXPECT_EQ(outputs[1][c], outputs[0][c]) << c;
}

TEST(SorvaneAudio, PointersAdvanceJustPastTheBlock) {
    auto fx = loadSorvane();
    ASSERT_TRUE(fx);
    AudioBuffer<float> in(4, 64), out(6, 64);
    auto inPtrs = in.pointers();
    auto outPtrs = out.pointers();
    fx->processFloatRaw(inPtrs.data(), outPtrs.data(), 40);
    for (int c = 0; c < 4; ++c) EXPECT_EQ(inPtrs[c], in[c].data() + 40);
    for (int c = 0; c < 6; ++c) EXPECT_EQ(outPtrs[c], out[c].data() + 40);
    fx->processFloatRaw(inPtrs.data(), outPtrs.data(), 24);
    for (int c = 0; c < 6; ++c) EXPECT_EQ(outPtrs[c], out[c].data() + 64);

    // Three inputs and two outputs: only the entries used move.
    SpeakerArrangement input(kSpeakerArr30Cine, 3), output(kSpeakerArrStereo, 2);
    fx->setSpeakerArrangement(input, output);
    inPtrs = in.pointers();
    outPtrs = out.pointers();
    fx->processFloatRaw(inPtrs.data(), outPtrs.data(), 10);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(inPtrs[c], in[c].data() + 10);
    EXPECT_EQ(inPtrs[3], in[3].data());
    for (int c = 0; c < 2; ++c) EXPECT_EQ(outPtrs[c], out[c].data() + 10);
    for (int c = 2; c < 6; ++c) EXPECT_EQ(outPtrs[c], out[c].data());
}

TEST(SorvaneAudio, SuspendClearsTheFilters) {
    auto fx = loadSorvane();
    ASSERT_TRUE(fx);
    fx->setParameter(kDecodeMode, kFiveOne);
    const auto a = noise(4, 80, 2), b = noise(4, 80, 8);
    fx->resume();
    run<double>(*fx, a, 6, {80});
    fx->suspend();
    fx->resume();
    const auto got = run<double>(*fx, b, 6, {80});

    Decoder engine = engineAfterProgramZero(sorvane::kFiveOneLayout);
    engineBlock(engine, a, 6);
    Decoder continued = engine;
    engine.clearFilter();
    expectSameBits(got, engineBlock(engine, b, 6), "after suspend");
    // Without the suspend the history would have carried on.
    EXPECT_NE(engineBlock(continued, b, 6)[3], got[3]);
}

TEST(SorvaneAudio, FiltersStayFiniteAtAnyRate) {
    for (float rate : {0.0f, 0.5f, 100.0f, 250.0f, 480.0f, -44100.0f, 1e12f, NAN}) {
        for (float layout : {kTwoOne, kFiveOne}) {
            auto fx = loadSorvane();
            ASSERT_TRUE(fx);
            fx->setParameter(kDecodeMode, layout);
            fx->setParameter(kSubCrossover, 1.0f);
            fx->setSampleRate(rate);
            const auto in = noise(4, 20000, 77);
            const auto out = run<double>(*fx, in, 6, {20000});
            double peak = 0;
            for (std::size_t c = 0; c < 6; ++c)
                for (double s : out[c]) {
                    ASSERT_TRUE(std::isfinite(s)) << "rate " << rate;
                    peak = std::max(peak, std::fabs(s));
                }
            EXPECT_LT(peak, 100.0) << "rate " << rate;
            EXPECT_EQ(fx->parameterDisplay(kSubCrossover), "240Hz");
        }
    }
}

TEST(SorvaneAudio, NoSubnormalsAndTheHostsFloatModeComesBack) {
    auto fx = loadSorvane();
    ASSERT_TRUE(fx);
    fx->setParameter(kDecodeMode, kTwoOne);
    const unsigned modeBefore = _mm_getcsr();
    AudioBuffer<double> impulse(4, 100000);
    impulse[0][0] = 1.0;  // then a silence the crossover would decay into subnormals in
    auto expectNoSubnormals = [&](const auto& out) {
        EXPECT_EQ(_mm_getcsr(), modeBefore);
        for (std::size_t c = 0; c < 6; ++c)
            for (auto s : out[c]) ASSERT_NE(std::fpclassify(s), FP_SUBNORMAL);
    };
    expectNoSubnormals(run<double>(*fx, impulse, 6, {100000}));
    fx->suspend();
    fx->resume();
    expectNoSubnormals(run<float>(*fx, impulse, 6, {100000}));
}
