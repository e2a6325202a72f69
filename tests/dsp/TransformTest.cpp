// Rotations and the four zoom methods, checked against geometry and against
// their own inverses rather than against the formulas they implement.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "Decoder.h"
#include "Tolerances.h"

namespace {

constexpr double kPi = 3.141592653589793;

// Encodes a plane wave from (azimuth, elevation) in degrees, W 3 dB down.
void encode(double az, double el, double& W, double& X, double& Y, double& Z) {
    const double a = az * kPi / 180, e = el * kPi / 180;
    W = 1 / std::sqrt(2.0);
    X = std::cos(a) * std::cos(e);
    Y = std::sin(a) * std::cos(e);
    Z = std::sin(e);
}

// Runs only the transforms: an unknown layout stops the pipeline after zoom.
void transform(Decoder& d, double& W, double& X, double& Y, double& Z) {
    d.decodeMode = 0;
    d.processDecoder(W, X, Y, Z);
}

}  // namespace

TEST(Transforms, RotationMovesSourcesAsTheControlsSay) {
    struct Case {
        double rotate, tilt, tumble, fromAz, fromEl, toAz, toEl;
    };
    const Case cases[] = {
        {90, 0, 0, 0, 0, 90, 0},                                 // rotate: front towards the left
        {180, 0, 0, 0, 0, 180, 0},                               // front to back
        {-45, 0, 0, 30, 20, -15, 20}, {0, 90, 0, 90, 0, 0, 90},  // tilt: left towards above
        {0, 0, 90, 0, 0, 0, 90},                                 // tumble: front towards above
    };
    for (const Case& c : cases) {
        Decoder d;
        d.rotateAngle = c.rotate;
        d.tiltAngle = c.tilt;
        d.tumbleAngle = c.tumble;
        double W, X, Y, Z, eW, eX, eY, eZ;
        encode(c.fromAz, c.fromEl, W, X, Y, Z);
        encode(c.toAz, c.toEl, eW, eX, eY, eZ);
        transform(d, W, X, Y, Z);
        EXPECT_EQ(W, eW);
        EXPECT_NEAR(X, eX, kDoubleRounding);
        EXPECT_NEAR(Y, eY, kDoubleRounding);
        EXPECT_NEAR(Z, eZ, kDoubleRounding);
    }
}

TEST(Transforms, TiltAndTumbleLeaveTheOtherAxesExactly) {
    Decoder d;
    d.tiltAngle = 33;
    double W = 0.3, X = 0.7, Y = 0.2, Z = -0.5;
    transform(d, W, X, Y, Z);
    EXPECT_EQ(W, 0.3);
    EXPECT_EQ(X, 0.7);

    Decoder t;
    t.tumbleAngle = -71;
    W = 0.3, X = 0.7, Y = 0.2, Z = -0.5;
    transform(t, W, X, Y, Z);
    EXPECT_EQ(W, 0.3);
    EXPECT_EQ(Y, 0.2);
}

TEST(Transforms, OpposedAnglesUndoEachOther) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> angle(-180, 180), sample(-1, 1);
    for (int i = 0; i < 200; ++i) {
        Decoder there, back;
        there.rotateAngle = angle(rng);
        there.tiltAngle = angle(rng);
        there.tumbleAngle = angle(rng);
        double W = sample(rng), X = sample(rng), Y = sample(rng), Z = sample(rng);
        const double W0 = W, X0 = X, Y0 = Y, Z0 = Z;
        transform(there, W, X, Y, Z);
        // Undo in reverse order: tumble, tilt, rotate, each negated.
        back.tumbleAngle = -there.tumbleAngle;
        transform(back, W, X, Y, Z);
        back.tumbleAngle = 0;
        back.tiltAngle = -there.tiltAngle;
        transform(back, W, X, Y, Z);
        back.tiltAngle = 0;
        back.rotateAngle = -there.rotateAngle;
        transform(back, W, X, Y, Z);
        EXPECT_EQ(W, W0);
        EXPECT_NEAR(X, X0, kTrigRounding);
        EXPECT_NEAR(Y, Y0, kTrigRounding);
        EXPECT_NEAR(Z, Z0, kTrigRounding);
    }
}

TEST(Zoom, DominanceAtFullAmountIsA24dBBoost) {
    Decoder d;
    d.zoomAmount = 100;
    double W = 1, X = 0, Y = 0.25, Z = -0.5;
    transform(d, W, X, Y, Z);
    const double up = std::pow(10.0, 1.2), down = std::pow(10.0, -1.2);
    EXPECT_NEAR(W, 0.5 * (up + down), kAmplifiedRounding);
    EXPECT_NEAR(X, 0.7071067811865475 * (up - down), kAmplifiedRounding);
    EXPECT_EQ(Y, 0.25);
    EXPECT_EQ(Z, -0.5);

    // At half the amount a front source grows and a rear one shrinks by 12 dB.
    d.zoomAmount = 50;
    double fW, fX, fY, fZ, bW, bX, bY, bZ;
    encode(0, 0, fW, fX, fY, fZ);
    encode(180, 0, bW, bX, bY, bZ);
    transform(d, fW, fX, fY, fZ);
    transform(d, bW, bX, bY, bZ);
    EXPECT_NEAR(fW * std::sqrt(2.0), std::pow(10.0, 0.6), kAccumulatedRounding);
    EXPECT_NEAR(bW * std::sqrt(2.0), std::pow(10.0, -0.6), kAccumulatedRounding);
}

TEST(Zoom, DominanceOfOppositeAmountsIsTheInverseBoost) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> amount(-100, 100), sample(-1, 1);
    for (int i = 0; i < 100; ++i) {
        Decoder d;
        const double z = amount(rng);
        double W = sample(rng), X = sample(rng), Y = sample(rng), Z = sample(rng);
        const double W0 = W, X0 = X;
        d.zoomAmount = z;
        transform(d, W, X, Y, Z);
        d.zoomAmount = -z;
        transform(d, W, X, Y, Z);
        EXPECT_NEAR(W, W0, kAccumulatedRounding);
        EXPECT_NEAR(X, X0, kAccumulatedRounding);
    }
}

TEST(Zoom, PressAndPushAtHalfAmount) {
    const double c = std::cos(kPi / 4), s = std::sin(kPi / 4);
    for (int method : {1, 2}) {
        Decoder d;
        d.zoomMethod = method;
        d.zoomAmount = 50;
        double W = 0.5, X = 0.2, Y = 1, Z = -1;
        transform(d, W, X, Y, Z);
        EXPECT_EQ(W, 0.5);
        EXPECT_NEAR(X, s * std::sqrt(2.0) * s * 0.5 + c * c * 0.2, kDoubleRounding);
        const double yz = method == 1 ? c : 0.5;  // Push halves Y and Z
        EXPECT_NEAR(Y, yz, kDoubleRounding);
        EXPECT_NEAR(Z, -yz, kDoubleRounding);
    }
}

TEST(Zoom, NegativePressPushesToTheBack) {
    Decoder d;
    d.zoomMethod = 1;
    d.zoomAmount = -100;
    double W = 1, X = 0, Y = 0.3, Z = 0.3;
    transform(d, W, X, Y, Z);
    EXPECT_NEAR(X, -std::sqrt(2.0), kDoubleRounding);
    EXPECT_NEAR(Y, 0.0, kCancellationResidue);
}

TEST(Zoom, FocusAtFullAmountCollapsesToTheFront) {
    Decoder d;
    d.zoomMethod = 3;
    d.zoomAmount = 100;
    double W = 0.4, X = 0.2, Y = 0.7, Z = -0.6;
    transform(d, W, X, Y, Z);
    EXPECT_NEAR(W, (0.4 + 0.7071067811865475 * 0.2) / 2, kDoubleRounding);
    EXPECT_NEAR(X, (0.2 + std::sqrt(2.0) * 0.4) / 2, kDoubleRounding);
    EXPECT_EQ(Y, 0.0);
    EXPECT_EQ(Z, 0.0);
}

TEST(Zoom, UnknownMethodOrZeroAmountLeavesTheFrame) {
    for (auto [method, amount] : {std::pair{4, 60.0}, std::pair{-1, 60.0}, std::pair{3, -0.0}}) {
        Decoder d;
        d.zoomMethod = method;
        d.zoomAmount = amount;
        double W = 0.4, X = 0.2, Y = 0.7, Z = -0.6;
        transform(d, W, X, Y, Z);
        EXPECT_EQ(W, 0.4);
        EXPECT_EQ(X, 0.2);
        EXPECT_EQ(Y, 0.7);
        EXPECT_EQ(Z, -0.6);
    }
}
