// Speaker-feed decoders, checked against the virtual-microphone response a
// source at a known direction must produce.
#include <gtest/gtest.h>

#include <cmath>

#include "Decoder.h"
#include "Tolerances.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct Source {
    double W, X, Y, Z;
};

// A horizontal plane wave of unit amplitude from azimuth az (degrees).
Source from(double az) {
    const double a = az * kPi / 180;
    return {1 / std::sqrt(2.0), std::cos(a), std::sin(a), 0};
}

// What a first-order microphone of pattern p aimed at `aim` hears of a unit
// plane wave from `az`: p + (1 - p) cos(angle between them).
double mic(double p, double aim, double az) { return p + (1 - p) * std::cos((az - aim) * kPi / 180); }

int decode(Decoder& d, Source s) { return d.processDecoder(s.W, s.X, s.Y, s.Z); }

}  // namespace

TEST(Decoders, XYPairFollowsTheMicrophoneEquation) {
    for (double pattern : {0.0, 0.25, 0.5, 1.0}) {
        for (double width : {30.0, 45.0, 90.0}) {
            for (double az = -180; az < 180; az += 22.5) {
                Decoder d;
                d.frontPattern = pattern;
                d.frontWidth = width;
                decode(d, from(az));
                EXPECT_NEAR(d.speakerFeeds[0], mic(pattern, width, az), kTrigRounding)
                    << pattern << " " << width << " " << az;
                EXPECT_NEAR(d.speakerFeeds[1], mic(pattern, -width, az), kTrigRounding);
            }
        }
    }
}

TEST(Decoders, MidSideWidthBalancesMidAgainstSide) {
    Decoder d;
    d.frontMode = 1;
    d.frontPattern = 0.5;
    const Source s = from(40);
    const double mid = mic(0.5, 0, 40), side = std::sin(40 * kPi / 180);

    d.frontWidth = 0;
    decode(d, s);
    EXPECT_EQ(d.speakerFeeds[0], d.speakerFeeds[1]);
    EXPECT_NEAR(d.speakerFeeds[0], mid, kDoubleRounding);

    d.frontWidth = 90;
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], side + mid * std::cos(kPi / 2), kCancellationResidue);
    EXPECT_NEAR(d.speakerFeeds[1], -side + mid * std::cos(kPi / 2), kCancellationResidue);

    d.frontWidth = 30;
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], mid * std::cos(kPi / 6) + side * 0.5, kDoubleRounding);
}

TEST(Decoders, SurroundPairsPointBackwardsWithTheirGain) {
    for (double az = -180; az < 180; az += 30) {
        Decoder d;
        d.decodeMode = 4;
        d.surroundPattern = 0.3;
        d.surroundWidth = 60;
        d.surroundGain = -6;
        decode(d, from(az));
        const double G = std::pow(10.0, -6 / 20.0);
        EXPECT_NEAR(d.speakerFeeds[4], mic(0.3, 120, az) * G, kTrigRounding) << az;
        EXPECT_NEAR(d.speakerFeeds[5], mic(0.3, -120, az) * G, kTrigRounding) << az;

        d.surroundMode = 1;  // rear-facing mid plus side
        decode(d, from(az));
        const double mid = mic(0.3, 180, az), side = std::sin(az * kPi / 180);
        const double c = std::cos(kPi / 3), s = std::sin(kPi / 3);
        EXPECT_NEAR(d.speakerFeeds[4], (mid * c + s * side) * G, kTrigRounding) << az;
        EXPECT_NEAR(d.speakerFeeds[5], (mid * c - s * side) * G, kTrigRounding) << az;
    }
}

TEST(Decoders, CentreMicrophoneFacesForwardWithItsGain) {
    Decoder d;
    d.decodeMode = 5;
    d.centrePattern = 0.7;
    d.centreGain = 3;
    for (double az : {0.0, 90.0, 180.0}) {
        decode(d, from(az));
        EXPECT_NEAR(d.speakerFeeds[2], mic(0.7, 0, az) * std::pow(10.0, 3 / 20.0), kTrigRounding);
        double W = from(az).W, X = from(az).X;
        d.centreMic(W, X);
        EXPECT_EQ(d.centreFeed, d.speakerFeeds[2]);
        double Y = 0, Z = 0;
        d.monoDecoder(W, X, Y, Z);
        EXPECT_EQ(d.centreFeed, d.speakerFeeds[2]);
    }
}

// The fixed matrices are measured designs, not microphones: they are nearly
// mirror images left to right, favour the front speakers for a front source
// and the surround speakers for a rear one, and ignore every microphone
// setting and Z.
TEST(Decoders, FixedMatricesAreNearlySymmetricAndIgnoreTheMicrophones) {
    constexpr double kMeasuredAsymmetry = 1e-4;  // the designs' own left/right differences
    for (int type : {1, 2}) {
        Decoder d, tweaked;
        d.decodeMode = tweaked.decodeMode = 5;
        d.fiveDecoderType = tweaked.fiveDecoderType = type;
        tweaked.frontPattern = 0;
        tweaked.surroundGain = 12;
        tweaked.centreGain = -20;
        for (double az = -180; az < 180; az += 15) {
            Source s = from(az), mirrored = from(-az), withZ = from(az);
            withZ.Z = 5;
            decode(d, mirrored);
            const double left = d.speakerFeeds[0], leftSurround = d.speakerFeeds[4];
            decode(d, s);
            EXPECT_NEAR(d.speakerFeeds[1], left, kMeasuredAsymmetry) << type << " " << az;
            EXPECT_NEAR(d.speakerFeeds[5], leftSurround, kMeasuredAsymmetry) << type << " " << az;
            decode(tweaked, withZ);
            for (int slot = 0; slot < 6; ++slot) EXPECT_EQ(tweaked.speakerFeeds[slot], d.speakerFeeds[slot]);
        }
        decode(d, from(0));
        EXPECT_GT(d.speakerFeeds[0], d.speakerFeeds[4]) << type;
        decode(d, from(180));
        EXPECT_LT(d.speakerFeeds[0], d.speakerFeeds[4]) << type;
    }
    // A non-finite Y reaches the second matrix's centre through its 0*Y term.
    Decoder d;
    d.decodeMode = 5;
    d.fiveDecoderType = 2;
    decode(d, {0, 0, INFINITY, 0});
    EXPECT_TRUE(std::isnan(d.speakerFeeds[2]));
}

TEST(Decoders, FiveSpeakerVirtualMicrophones) {
    Decoder d;
    d.decodeMode = 5;
    const Source s = from(100);
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], mic(0.5, 45, 100), kTrigRounding);
    EXPECT_NEAR(d.speakerFeeds[2], mic(0.5, 0, 100), kTrigRounding);
    EXPECT_EQ(d.speakerFeeds[3], 0.0);
    EXPECT_NEAR(d.speakerFeeds[4], mic(0.5, 120, 100), kTrigRounding);
}

TEST(Decoders, UnknownFrontModeKeepsLastFeeds) {
    Decoder d;
    decode(d, from(30));
    const double left = d.speakerFeeds[0], right = d.speakerFeeds[1];
    d.frontMode = 2;
    d.rearVerbGain = 0;
    d.hiVerbGain = 0;
    decode(d, from(-150));
    EXPECT_EQ(d.speakerFeeds[0], left);
    EXPECT_EQ(d.speakerFeeds[1], right);
}
