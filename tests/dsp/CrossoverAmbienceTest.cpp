// The sub crossover and the two ambience paths.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Decoder.h"
#include "Tolerances.h"

namespace {

constexpr double kPi = 3.141592653589793;
const double kSqrt2 = std::sqrt(2.0);

double prewarped(int frequency, int rate) { return std::tan(frequency * kPi / rate); }

// One frame of the 2.1 layout; returns the high-passed W handed back.
double subFrame(Decoder& d, double w, double x = 0, double y = 0, double z = 0) {
    d.processDecoder(w, x, y, z);
    return w;
}

double mic(double p, double ax, double ay, double az, double sx, double sy, double sz) {
    return p + (1 - p) * (ax * sx + ay * sy + az * sz);
}

}  // namespace

TEST(Crossover, ImpulseStartsAtTheBilinearCoefficients) {
    Decoder d;
    d.decodeMode = 3;
    const double K = prewarped(120, 44100), den = K * K + 2 * K + 1;
    const double w = subFrame(d, 1.0);
    EXPECT_NEAR(d.subFeed, kSqrt2 * K * K / den, kSmallValueRounding);
    EXPECT_NEAR(w, -1 / den, kDoubleRounding);
}

// Low band plus inverted high band of a second-order Linkwitz-Riley pair is
// the first-order allpass (1 - s) / (1 + s): the speakers and the sub add up
// to a flat magnitude. Checked against that allpass run as its own recursion.
TEST(Crossover, BandsSumToAnAllpass) {
    for (auto [rate, freq] : {std::pair{44100, 120}, std::pair{48000, 80}, std::pair{96000, 240}}) {
        Decoder d;
        d.decodeMode = 6;
        d.sampleRate = rate;
        d.crossoverFrequency = freq;
        d.filterCoefs();
        const double K = prewarped(freq, rate);
        const double b0 = (K - 1) / (K + 1), b1 = 1.0, a1 = (K - 1) / (K + 1);
        double x1 = 0, y1 = 0, energy = 0;
        for (int n = 0; n < 4000; ++n) {
            const double x = n == 0 ? 1.0 : 0.0;
            const double allpass = b0 * x + b1 * x1 - a1 * y1;
            x1 = x;
            y1 = allpass;
            const double highBand = subFrame(d, x);
            const double sum = d.subFeed / kSqrt2 + highBand;
            ASSERT_NEAR(sum, allpass, kAccumulatedRounding) << rate << " Hz, frame " << n;
            energy += sum * sum;
        }
        EXPECT_NEAR(energy, 1.0, kTruncatedTail);
    }
}

TEST(Crossover, ConstantInputSettles) {
    Decoder d;
    d.decodeMode = 3;
    double w = 0;
    for (int n = 0; n < 20000; ++n) w = subFrame(d, 1.0);
    EXPECT_NEAR(d.subFeed, kSqrt2, kSettledFilter);  // coefficient rounding
    EXPECT_NEAR(w, 0.0, kAccumulatedRounding);
}

TEST(Crossover, SubGainScalesTheLowBand) {
    Decoder a, b;
    a.decodeMode = b.decodeMode = 6;
    b.subGain = -12;
    for (int n = 0; n < 50; ++n) {
        subFrame(a, std::sin(n * 0.01));
        subFrame(b, std::sin(n * 0.01));
        EXPECT_NEAR(b.subFeed, a.subFeed * std::pow(10.0, -0.6), kDoubleRounding);
    }
}

TEST(Crossover, HistoryClearsOnSuspendAndRedesignButNotOnLayoutChange) {
    Decoder d;
    d.decodeMode = 3;
    subFrame(d, 1.0, 0.5, 0.25, 0.125);
    EXPECT_NE(d.highPassState[3][0], 0.0);
    d.decodeMode = 2;
    subFrame(d, 1.0);
    EXPECT_NE(d.lowPassState[0], 0.0) << "a layout without crossover leaves the history alone";

    d.clearFilter();
    for (double v : d.lowPassState) EXPECT_EQ(v, 0.0);
    for (auto& s : d.highPassState)
        for (double v : s) EXPECT_EQ(v, 0.0);

    // After clearing, the next impulse starts again from the first coefficient.
    d.decodeMode = 3;
    subFrame(d, 1.0, 0.5, 0.25, 0.125);
    d.crossoverFrequency = 200;
    d.filterCoefs();
    for (double v : d.lowPassState) EXPECT_EQ(v, 0.0);
    const double K = prewarped(200, 44100);
    subFrame(d, 1.0);
    EXPECT_NEAR(d.subFeed, kSqrt2 * K * K / (K * K + 2 * K + 1), kSmallValueRounding);
}

TEST(Crossover, SubLayoutsHandBackHighPassedSignals) {
    Decoder d;
    d.decodeMode = 6;
    const double K = prewarped(120, 44100), den = K * K + 2 * K + 1;
    double W = 1, X = 2, Y = -3, Z = 4;
    d.processDecoder(W, X, Y, Z);
    EXPECT_NEAR(W, -1 / den, kDoubleRounding);
    EXPECT_NEAR(X, -2 / den, kDoubleRounding);
    EXPECT_NEAR(Y, 3 / den, kDoubleRounding);
    EXPECT_NEAR(Z, -4 / den, kDoubleRounding);
}

TEST(Ambience, XYPathsAreCardioidsBehindAndAbove) {
    const double c125 = std::cos(125 * kPi / 180), s125 = std::sin(125 * kPi / 180);
    const double c60 = std::cos(60 * kPi / 180), s60 = std::sin(60 * kPi / 180);
    for (double az = -180; az < 180; az += 45) {
        for (double el : {-30.0, 0.0, 60.0}) {
            const double sx = std::cos(az * kPi / 180) * std::cos(el * kPi / 180);
            const double sy = std::sin(az * kPi / 180) * std::cos(el * kPi / 180);
            const double sz = std::sin(el * kPi / 180);
            Decoder dry, rear, high;
            rear.rearVerbGain = -6;
            high.hiVerbGain = 0;
            double f[3][4];
            for (auto& v : f) {
                v[0] = 1 / kSqrt2;
                v[1] = sx;
                v[2] = sy;
                v[3] = sz;
            }
            dry.processDecoder(f[0][0], f[0][1], f[0][2], f[0][3]);
            rear.processDecoder(f[1][0], f[1][1], f[1][2], f[1][3]);
            high.processDecoder(f[2][0], f[2][1], f[2][2], f[2][3]);
            const double L = std::pow(10.0, -6 / 20.0);
            EXPECT_NEAR(rear.leftFeed - dry.leftFeed, mic(0.5, c125, s125, 0, sx, sy, sz) * L, kTrigRounding);
            EXPECT_NEAR(rear.rightFeed - dry.rightFeed, mic(0.5, c125, -s125, 0, sx, sy, sz) * L, kTrigRounding);
            EXPECT_NEAR(high.leftFeed - dry.leftFeed, mic(0.5, 0, c60, s60, sx, sy, sz), kTrigRounding);
            EXPECT_NEAR(high.rightFeed - dry.rightFeed, mic(0.5, 0, -c60, s60, sx, sy, sz), kTrigRounding);
        }
    }
}

TEST(Ambience, MidSidePathsFaceTheirDirection) {
    Decoder d;
    d.frontMode = 1;
    d.rearVerbGain = 0;
    // A source straight behind reaches both sides equally through the rear
    // cardioid, a source in front not at all.
    double W = 1 / kSqrt2, X = -1, Y = 0, Z = 0;
    d.leftFeed = d.rightFeed = 0;
    d.rearVerb(W, X, Y, Z);
    EXPECT_NEAR(d.leftFeed, std::sin(35 * kPi / 180), kDoubleRounding);
    EXPECT_EQ(d.leftFeed, d.rightFeed);
    X = 1;
    d.leftFeed = d.rightFeed = 0;
    d.rearVerb(W, X, Y, Z);
    EXPECT_NEAR(d.leftFeed, 0.0, kCancellationResidue);

    d.hiVerbGain = 0;
    W = 1 / kSqrt2, X = 0, Y = 0, Z = 1;  // straight above
    d.leftFeed = d.rightFeed = 0;
    d.hiVerb(W, X, Y, Z);
    EXPECT_NEAR(d.leftFeed, std::cos(30 * kPi / 180), kDoubleRounding);
    EXPECT_EQ(d.leftFeed, d.rightFeed);
}

TEST(Ambience, SwitchedByLevelAlone) {
    auto leftWith = [](double rear, double hi, int mode) {
        Decoder d;
        d.frontMode = mode;
        d.decodeMode = 2;
        d.rearVerbGain = rear;
        d.hiVerbGain = hi;
        double W = 0.3, X = -0.8, Y = 0.5, Z = 0.4;
        d.processDecoder(W, X, Y, Z);
        return d.leftFeed;
    };
    const double dry = leftWith(-100, -100, 0);
    EXPECT_EQ(leftWith(-40.0, -40.0, 0), dry);
    EXPECT_EQ(leftWith(NAN, NAN, 0), dry);
    const double justOn = leftWith(-39.99, -100, 0) - dry;
    const double full = leftWith(0, -100, 0) - dry;
    EXPECT_NEAR(justOn / full, std::pow(10.0, -39.99 / 20), kAccumulatedRounding);
    // An unknown front mode adds nothing, even at full level.
    Decoder d;
    d.frontMode = 2;
    d.rearVerbGain = d.hiVerbGain = 0;
    d.leftFeed = d.rightFeed = 0.25;
    double W = 1, X = 1, Y = 1, Z = 1;
    d.rearVerb(W, X, Y, Z);
    d.hiVerb(W, X, Y, Z);
    EXPECT_EQ(d.leftFeed, 0.25);
    EXPECT_EQ(d.rightFeed, 0.25);
}

TEST(Ambience, OnlyTheTwoSpeakerFrontLayoutsAddIt) {
    for (int mode = 2; mode <= 6; ++mode) {
        Decoder dry, wet;
        dry.decodeMode = wet.decodeMode = mode;
        wet.rearVerbGain = wet.hiVerbGain = 0;
        double a[4] = {0.3, -0.8, 0.5, 0.4}, b[4] = {0.3, -0.8, 0.5, 0.4};
        dry.processDecoder(a[0], a[1], a[2], a[3]);
        wet.processDecoder(b[0], b[1], b[2], b[3]);
        if (mode <= 3)
            EXPECT_NE(dry.leftFeed, wet.leftFeed) << mode;
        else
            EXPECT_EQ(dry.leftFeed, wet.leftFeed) << mode;
    }
}
