// "Headphones" as a host meets it: the layout's speaker feeds, heard through
// the head's responses at the layout's speaker positions, on the first two
// outputs; checked against a direct convolution written here, sample by
// sample, of what "Speakers" gives for the same input.
#include <cmath>
#include <random>
#include <vector>

#include "HeadResponses.h"
#include "SorvaneHost.h"

using namespace sorvane_test;

namespace {

constexpr int kRate = 48000;
constexpr long kFrames = 6000;
using Channels = std::vector<std::vector<float>>;

// Noise from a fixed seed on all four inputs (or a 1 kHz tone from the
// front), through a fresh instance in `layout`'s own channel order;
// "Output" is set at `switchAt` when one is given.
Channels render(float layout, float output, int block, float smoothing = 0.0f, long switchAt = -1, bool tone = false) {
    auto fx = loadSorvane();
    fx->setSampleRate(kRate);
    fx->setBlockSize(block);
    fx->setParameter(kDecodeMode, layout);
    fx->setParameter(kChannelOrder, 0.0f);
    fx->setParameter(kSmoothing, smoothing);
    fx->setParameter(kOutput, switchAt < 0 ? output : 0.0f);
    fx->setParameter(kRearVerb, 0.8f);  // the ambience goes to the ears too
    fx->resume();
    std::mt19937 random(7);
    std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
    std::vector<float> source(4 * kFrames);
    for (float& v : source) v = noise(random);
    vsthost::AudioBuffer<float> in(4, block), out(6, block);
    Channels result(6);
    for (long at = 0; at < kFrames; at += block) {
        const int n = static_cast<int>(std::min<long>(block, kFrames - at));
        if (at == switchAt) fx->setParameter(kOutput, output);
        for (int c = 0; c < 4; ++c)
            for (int f = 0; f < n; ++f) in[c][f] = source[c * kFrames + at + f];
        if (tone)
            for (int f = 0; f < n; ++f) {
                const float s = float(std::sin(2 * 3.141592653589793 * 1000 * double(at + f) / kRate));
                in[0][f] = 0.7071f * s, in[1][f] = s, in[2][f] = in[3][f] = 0.0f;
            }
        fx->processFloat(in.pointers(), out.pointers(), n);
        for (int c = 0; c < 6; ++c) result[c].insert(result[c].end(), out[c].begin(), out[c].begin() + n);
    }
    return result;
}

// What each slot of the layout's own order is: its pair and side, the centre or the sub.
struct Speaker {
    int pair;    // kPairFront30 .. kPairRear135, -1 for the centre or the sub
    int side;    // +1 left, -1 right
    bool sub = false;
};

// The two ears by direct convolution of each speaker's feed with its responses.
Channels expectedEars(const Channels& feeds, const std::vector<Speaker>& speakers) {
    const auto responses = sorvane::loadHeadResponses(kRate);
    Channels ears(2, std::vector<float>(kFrames));
    std::vector<double> left(kFrames), right(kFrames);
    const auto convolve = [&](const std::vector<double>& x, const std::vector<float>& h, double sign) {
        for (long n = 0; n < kFrames; ++n) {
            double sum = 0;
            for (long k = 0; k < static_cast<long>(h.size()) && k <= n; ++k) sum += h[k] * x[n - k];
            left[n] += sum;
            right[n] += sign * sum;
        }
    };
    for (std::size_t s = 0; s < speakers.size(); ++s) {
        const Speaker& sp = speakers[s];
        std::vector<double> x(feeds[s].begin(), feeds[s].end());
        if (sp.sub) {
            for (long n = 0; n < kFrames; ++n) left[n] += x[n], right[n] += x[n];
        } else if (sp.pair < 0) {
            convolve(x, responses->response[sorvane::kCentreInput], 1.0);
        } else {
            // Through the pair's mid to both ears, through its side to the
            // speaker's own ear and, inverted, to the other.
            convolve(x, responses->response[2 * sp.pair], 1.0);
            for (double& v : x) v *= sp.side;
            convolve(x, responses->response[2 * sp.pair + 1], -1.0);
        }
    }
    for (long n = 0; n < kFrames; ++n) ears[0][n] = float(left[n]), ears[1][n] = float(right[n]);
    return ears;
}

}  // namespace

// Every layout: the ears equal the direct convolution at any block size,
// outputs past the ears are silent.
TEST(Headphones, TheEarsAreTheSpeakerFeedsThroughTheHeadsResponses) {
    using sorvane::kPairFront30, sorvane::kPairFront45, sorvane::kPairSurround110, sorvane::kPairRear135;
    const struct {
        float layout;
        std::vector<Speaker> speakers;  // in the layout's own order
    } layouts[] = {
        {kStereo, {{kPairFront30, 1}, {kPairFront30, -1}}},
        {kTwoOne, {{kPairFront30, 1}, {kPairFront30, -1}, {-1, 0, true}}},
        {kQuad, {{kPairFront45, 1}, {kPairFront45, -1}, {kPairRear135, 1}, {kPairRear135, -1}}},
        {kFiveOne,
         {{kPairFront30, 1}, {kPairFront30, -1}, {-1, 0}, {-1, 0, true}, {kPairSurround110, 1}, {kPairSurround110, -1}}},
    };
    // Single-precision convolution of a few hundred taps against a double one.
    constexpr double kTolerance = 2e-5;
    for (const auto& [layout, speakers] : layouts) {
        const Channels feeds = render(layout, 0.0f, 512);
        const Channels expected = expectedEars(feeds, speakers);
        double peak = 0;
        for (float v : expected[0]) peak = std::max(peak, double(std::fabs(v)));
        ASSERT_GT(peak, 0.05) << "layout " << layout;
        for (int block : {1, 37, 512, 4096}) {
            const Channels ears = render(layout, 1.0f, block);
            for (int c = 0; c < 6; ++c)
                for (long n = 0; n < kFrames; ++n) {
                    const double want = c < 2 ? expected[c][n] : 0.0;
                    ASSERT_NEAR(ears[c][n], want, c < 2 ? kTolerance * peak : 0.0)
                        << "layout " << layout << ", block " << block << ", output " << c << ", frame " << n;
                }
        }
    }
}

// With "Smoothing" on, Speakers to Headphones fades: no sample-to-sample step
// of the left output is much larger than the tone's own (a cut would step by
// the tone's whole level), and the fade ends in the ears exactly.
TEST(Headphones, SwitchingFadesBetweenSpeakersAndEars) {
    const Channels faded = render(kStereo, 1.0f, 256, 1.0f, 2048, true), ears = render(kStereo, 1.0f, 256, 1.0f, -1, true);
    double step = 0, steady = 0;
    for (long n = 1; n < kFrames; ++n) {
        double& worst = n >= 2048 && n < 2048 + 2400 ? step : steady;
        worst = std::max(worst, double(std::fabs(faded[0][n] - faded[0][n - 1])));
    }
    EXPECT_LE(step, 1.25 * steady);
    for (long n = 4448 + 600; n < kFrames; ++n) ASSERT_NEAR(faded[0][n], ears[0][n], 1e-6) << n;
}

// A NaN in the input leaves the ears finite again from the next block.
TEST(Headphones, AfterANanTheEarsAreFiniteFromTheNextBlock) {
    auto fx = loadSorvane();
    fx->setParameter(kOutput, 1.0f);
    fx->resume();
    vsthost::AudioBuffer<float> in(4, 512), out(6, 512);
    for (int block = 0; block < 4; ++block) {
        for (int c = 0; c < 4; ++c)
            for (int f = 0; f < 512; ++f) in[c][f] = block == 0 && f == 100 ? NAN : 0.1f * std::sin(0.05f * f + c);
        fx->processFloat(in.pointers(), out.pointers(), 512);
        for (int f = 0; block > 0 && f < 512; ++f) ASSERT_TRUE(std::isfinite(out[0][f])) << block << " " << f;
    }
}
