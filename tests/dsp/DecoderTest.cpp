// Speaker-feed decoders, checked against the virtual-microphone response a
// source at a known direction must produce.
#include <gtest/gtest.h>

#include <cmath>

#include "Decoder.h"

namespace {

constexpr double kPi = 3.141592653589793;

struct Source { double W, X, Y, Z; };

// A horizontal plane wave of unit amplitude from azimuth az (degrees).
Source from(double az) {
    const double a = az * kPi / 180;
    return {1 / std::sqrt(2.0), std::cos(a), std::sin(a), 0};
}

// What a first-order microphone of pattern p aimed at `aim` hears of a unit
// plane wave from `az`: p + (1 - p) cos(angle between them).
double mic(double p, double aim, double az) {
    return p + (1 - p) * std::cos((az - aim) * kPi / 180);
}

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
                EXPECT_NEAR(d.speakerFeeds[0], mic(pattern, width, az), 1e-14) << pattern << " " << width << " " << az;
                EXPECT_NEAR(d.speakerFeeds[1], mic(pattern, -width, az), 1e-14);
            }
        }
    }
}

TEST(Decoders, FrontSourceOnCardioidPairIsCentred) {
    Decoder d;
    decode(d, from(0));
    EXPECT_EQ(d.speakerFeeds[0], d.speakerFeeds[1]);
    EXPECT_NEAR(d.speakerFeeds[0], 0.5 + 0.5 * std::cos(kPi / 4), 1e-15);
    // A source on the left is louder on the left.
    decode(d, from(60));
    EXPECT_GT(d.speakerFeeds[0], d.speakerFeeds[1]);
}

TEST(Decoders, CrossedFigureOfEights) {
    Decoder d;
    d.frontPattern = 0;
    double W = 0, X = 1, Y = 0, Z = 0;
    d.xyDecode(W, X, Y, Z);
    EXPECT_NEAR(d.leftFeed, 0.7071067811865476, 1e-15);
    EXPECT_NEAR(d.rightFeed, 0.7071067811865476, 1e-15);
    X = 0, Y = 1;
    d.xyDecode(W, X, Y, Z);
    EXPECT_NEAR(d.leftFeed, 0.7071067811865475, 1e-15);
    EXPECT_NEAR(d.rightFeed, -0.7071067811865475, 1e-15);
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
    EXPECT_NEAR(d.speakerFeeds[0], mid, 1e-15);

    d.frontWidth = 90;
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], side + mid * std::cos(kPi / 2), 1e-16);
    EXPECT_NEAR(d.speakerFeeds[1], -side + mid * std::cos(kPi / 2), 1e-16);

    d.frontWidth = 30;
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], mid * std::cos(kPi / 6) + side * 0.5, 1e-15);
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
        EXPECT_NEAR(d.speakerFeeds[4], mic(0.3, 120, az) * G, 1e-14) << az;
        EXPECT_NEAR(d.speakerFeeds[5], mic(0.3, -120, az) * G, 1e-14) << az;

        d.surroundMode = 1;  // rear-facing mid plus side
        decode(d, from(az));
        const double mid = mic(0.3, 180, az), side = std::sin(az * kPi / 180);
        const double c = std::cos(kPi / 3), s = std::sin(kPi / 3);
        EXPECT_NEAR(d.speakerFeeds[4], (mid * c + s * side) * G, 1e-14) << az;
        EXPECT_NEAR(d.speakerFeeds[5], (mid * c - s * side) * G, 1e-14) << az;
    }
}

TEST(Decoders, CentreMicrophoneFacesForwardWithItsGain) {
    Decoder d;
    d.decodeMode = 5;
    d.centrePattern = 0.7;
    d.centreGain = 3;
    for (double az : {0.0, 90.0, 180.0}) {
        decode(d, from(az));
        EXPECT_NEAR(d.speakerFeeds[2], mic(0.7, 0, az) * std::pow(10.0, 3 / 20.0), 1e-14);
        double W = from(az).W, X = from(az).X;
        d.centreMic(W, X);
        EXPECT_EQ(d.centreFeed, d.speakerFeeds[2]);
        double Y = 0, Z = 0;
        d.monoDecoder(W, X, Y, Z);
        EXPECT_EQ(d.centreFeed, d.speakerFeeds[2]);
    }
}

TEST(Decoders, FixedMatricesUseTheirCoefficients) {
    Decoder d;
    d.decodeMode = 5;
    d.channelOrder = 0;
    d.fiveDecoderType = 1;
    decode(d, {1, 0, 0, 0});
    EXPECT_DOUBLE_EQ(d.speakerFeeds[2], -0.0488127 * 1.40171951577097);
    EXPECT_LT(d.speakerFeeds[2], 0.0);
    decode(d, {0, 0, 1, 0});
    EXPECT_DOUBLE_EQ(d.speakerFeeds[1], -0.18792311 * 1.40171951577097);
    EXPECT_DOUBLE_EQ(d.speakerFeeds[3], 0.31911519 * 1.40171951577097);

    d.fiveDecoderType = 2;
    decode(d, {0, 1, 0, 0});
    EXPECT_DOUBLE_EQ(d.speakerFeeds[0], 0.19218459 * 1.38921598327229);
    EXPECT_DOUBLE_EQ(d.speakerFeeds[2], 0.1557705 * 1.38921598327229);
    EXPECT_DOUBLE_EQ(d.speakerFeeds[4], -0.27006941 * 1.38921598327229);
    // The matrices ignore every microphone setting and Z.
    d.frontPattern = 0;
    d.surroundGain = 12;
    d.centreGain = -20;
    const double before = d.speakerFeeds[0];
    decode(d, {0, 1, 0, 5});
    EXPECT_EQ(d.speakerFeeds[0], before);

    // A non-finite Y reaches the second matrix's centre through its 0*Y term.
    decode(d, {0, 0, INFINITY, 0});
    EXPECT_TRUE(std::isnan(d.speakerFeeds[2]));
}

TEST(Decoders, FiveSpeakerVirtualMicrophones) {
    Decoder d;
    d.decodeMode = 5;
    const Source s = from(100);
    decode(d, s);
    EXPECT_NEAR(d.speakerFeeds[0], mic(0.5, 45, 100), 1e-14);
    EXPECT_NEAR(d.speakerFeeds[2], mic(0.5, 0, 100), 1e-14);
    EXPECT_EQ(d.speakerFeeds[3], 0.0);
    EXPECT_NEAR(d.speakerFeeds[4], mic(0.5, 120, 100), 1e-14);
    // No ambience in five-speaker layouts, whatever the levels.
    d.rearVerbGain = 0;
    d.hiVerbGain = 0;
    const double left = d.speakerFeeds[0];
    decode(d, s);
    EXPECT_EQ(d.speakerFeeds[0], left);
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
