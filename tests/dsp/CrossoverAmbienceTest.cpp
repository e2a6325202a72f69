// The sub crossover and the two ambience paths.
#include "DspTestHelpers.h"

namespace {

double prewarped(int frequency, int rate) { return std::tan(frequency * kPi / rate); }

// One frame of W alone; returns the high-passed W handed back.
double subFrame(Decoder& d, double w) {
    Frame f{w, 0, 0, 0};
    process(d, f);
    return f.W;
}

}  // namespace

// The first frame of an impulse gives the bilinear coefficients: the low band
// K^2/d times the sub gain (W weighted by sqrt 2), every channel handed back
// at -1/d of its input, inverted. So it must from a fresh start, after the
// history is cleared (suspend) and after a redesign.
TEST(Crossover, ImpulseStartsAtTheBilinearCoefficients) {
    for (int mode : {3, 6}) {
        for (int start = 0; start < 3; ++start) {
            Decoder d;
            d.decodeMode = mode;
            d.subGain = -12;
            Frame f{1, 0.5, 0.25, 0.125};
            if (start > 0) process(d, f);  // history in every filter
            if (start == 1) d.clearFilter();
            d.crossoverFrequency = start == 2 ? 200 : 120;
            if (start == 2) d.filterCoefs();
            const double K = prewarped(d.crossoverFrequency, 44100), den = K * K + 2 * K + 1;
            f = {1, 2, -3, 4};
            process(d, f);
            EXPECT_NEAR(d.subFeed, kSqrt2 * K * K / den * std::pow(10.0, -0.6), kSmallValueRounding);
            const double in[4] = {1, 2, -3, 4}, out[4] = {f.W, f.X, f.Y, f.Z};
            for (int c = 0; c < 4; ++c) EXPECT_NEAR(out[c], -in[c] / den, kDoubleRounding) << mode << start << c;
        }
    }
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

// Each ambience pair adds to the front feeds what its own microphones hear:
// the rear pair cardioids 125 degrees off the front, the high pair cardioids
// 60 degrees above the horizon to either side. In MS form the mid cardioid
// faces straight back or straight up, balanced against the sideways
// figure-of-eight at 55 and 30 degrees.
TEST(Ambience, PairsAreCardioidsBehindAndAbove) {
    const double rearGain = std::pow(10.0, -6 / 20.0);
    const double c55 = std::cos(55 * kPi / 180), s55 = std::sin(55 * kPi / 180);
    const double c30 = std::cos(30 * kPi / 180), s30 = std::sin(30 * kPi / 180);
    for (int mode : {0, 1}) {
        for (double az = -180; az < 180; az += 45) {
            for (double el : {-30.0, 0.0, 60.0}) {
                const Frame s = planeWave(az, el);
                Decoder dry, rear, high;
                Frame f[3] = {s, s, s};
                for (Decoder* d : {&dry, &rear, &high}) d->frontMode = mode;
                rear.rearVerbGain = -6;
                high.hiVerbGain = 0;
                process(dry, f[0]);
                process(rear, f[1]);
                process(high, f[2]);
                const double backMid = mic(0.5, planeWave(180), s), upMid = mic(0.5, planeWave(0, 90), s);
                const double want[4] = {
                    mode == 0 ? mic(0.5, planeWave(125), s) : backMid * c55 + s55 * s.Y,
                    mode == 0 ? mic(0.5, planeWave(-125), s) : backMid * c55 - s55 * s.Y,
                    mode == 0 ? mic(0.5, planeWave(90, 60), s) : upMid * c30 + s30 * s.Y,
                    mode == 0 ? mic(0.5, planeWave(-90, 60), s) : upMid * c30 - s30 * s.Y,
                };
                EXPECT_NEAR(rear.leftFeed - dry.leftFeed, want[0] * rearGain, kTrigRounding) << mode << az << el;
                EXPECT_NEAR(rear.rightFeed - dry.rightFeed, want[1] * rearGain, kTrigRounding) << mode << az << el;
                EXPECT_NEAR(high.leftFeed - dry.leftFeed, want[2], kTrigRounding) << mode << az << el;
                EXPECT_NEAR(high.rightFeed - dry.rightFeed, want[3], kTrigRounding) << mode << az << el;
            }
        }
    }
}

// Ambience is added only above -40 dB (NaN is off), at its level, and only by
// the two layouts with nothing but a front pair: stereo and 2.1.
TEST(Ambience, SwitchedByLevelAndLayout) {
    auto leftWith = [](double rear, double hi, int layout = 2) {
        Decoder d;
        d.decodeMode = layout;
        d.rearVerbGain = rear;
        d.hiVerbGain = hi;
        Frame f{0.3, -0.8, 0.5, 0.4};
        process(d, f);
        return d.leftFeed;
    };
    const double dry = leftWith(-100, -100);
    EXPECT_EQ(leftWith(-40.0, -40.0), dry);
    EXPECT_EQ(leftWith(NAN, NAN), dry);
    const double justOn = leftWith(-39.99, -100) - dry;
    const double full = leftWith(0, -100) - dry;
    EXPECT_NEAR(justOn / full, std::pow(10.0, -39.99 / 20), kAccumulatedRounding);
    for (int layout = 2; layout <= 6; ++layout)
        EXPECT_EQ(leftWith(0, 0, layout) != leftWith(-100, -100, layout), layout <= 3) << layout;
}
