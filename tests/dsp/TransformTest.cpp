// Rotations and the four zoom methods, checked against geometry, their own
// inverses and what they do to sources ahead, aside and behind.
#include <random>

#include "DspTestHelpers.h"

namespace {

// Runs only the transforms: an unknown layout stops the pipeline after zoom.
Frame transform(Frame f, double rotate, double tilt, double tumble, int zoomMethod = 0, double zoom = 0) {
    Decoder d;
    d.decodeMode = 0;
    d.rotateAngle = rotate;
    d.tiltAngle = tilt;
    d.tumbleAngle = tumble;
    d.zoomMethod = zoomMethod;
    d.zoomAmount = zoom;
    process(d, f);
    return f;
}

void expectNear(const Frame& got, const Frame& want, double tolerance, int row) {
    EXPECT_NEAR(got.W, want.W, tolerance) << "row " << row;
    EXPECT_NEAR(got.X, want.X, tolerance) << "row " << row;
    EXPECT_NEAR(got.Y, want.Y, tolerance) << "row " << row;
    EXPECT_NEAR(got.Z, want.Z, tolerance) << "row " << row;
}

}  // namespace

// Rotate turns front towards the left, tilt left towards above, tumble front
// towards above; each leaves its own axis and W alone.
TEST(Transforms, RotationMovesSourcesAsTheControlsSay) {
    struct Case {
        double rotate, tilt, tumble, fromAz, fromEl, toAz, toEl;
    };
    const Case cases[] = {
        {90, 0, 0, 0, 0, 90, 0},       // rotate: front to the left
        {90, 0, 0, 90, 0, 180, 0},     // left to the back
        {-45, 0, 0, 30, 20, -15, 20},  // height kept
        {0, 90, 0, 90, 0, 0, 90},      // tilt: left to above
        {0, 90, 0, 0, 30, -30, 0},     // raised front to the right, depth kept
        {0, 0, 90, 0, 0, 0, 90},       // tumble: front to above
        {0, 0, 90, 90, 30, 120, 0},    // raised left to the back left, width kept
        {90, 90, 90, 0, 0, 180, 0},    // in that order: front to the left, above, then behind
    };
    for (const Case& c : cases) {
        const Frame got = transform(planeWave(c.fromAz, c.fromEl), c.rotate, c.tilt, c.tumble);
        EXPECT_EQ(got.W, 1 / kSqrt2);
        expectNear(got, planeWave(c.toAz, c.toEl), kDoubleRounding, &c - cases);
    }
}

TEST(Transforms, OpposedAnglesUndoEachOther) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> angle(-180, 180), sample(-1, 1);
    for (int i = 0; i < 200; ++i) {
        const double rotate = angle(rng), tilt = angle(rng), tumble = angle(rng);
        const Frame start{sample(rng), sample(rng), sample(rng), sample(rng)};
        // Undone in reverse order: tumble, tilt, rotate, each negated.
        const Frame there = transform(start, rotate, tilt, tumble);
        const Frame back = transform(transform(transform(there, 0, 0, -tumble), 0, -tilt, 0), -rotate, 0, 0);
        EXPECT_EQ(back.W, start.W);
        expectNear(back, start, kTrigRounding, i);
    }
}

// Closed forms of each method for a source ahead, one behind and one to the
// left, given a Z component as well, which every method treats as it does Y.
TEST(Zoom, ClosedForms) {
    const Frame ahead = planeWave(0), behind = planeWave(180), left{1 / kSqrt2, 0, 1, -1};
    const double r = 1 / kSqrt2, up24 = std::pow(10.0, 1.2), up12 = std::pow(10.0, 0.6), c45 = std::cos(kPi / 4);
    struct Row {
        int method;
        double amount;
        Frame in, out;
        double tolerance;
    };
    const Row rows[] = {
        // Dominance: amount x 0.24 dB more of a source ahead, as much less of one behind.
        {0, 100, ahead, {r * up24, up24, 0, 0}, kAmplifiedRounding},
        {0, 100, behind, {r / up24, -1 / up24, 0, 0}, kDoubleRounding},
        {0, -50, {r, 1, 0.25, -0.5}, {r / up12, 1 / up12, 0.25, -0.5}, kDoubleRounding},
        {0, -50, behind, {r * up12, -up12, 0, 0}, kAmplifiedRounding},
        // Press and Push keep a source ahead and draw the others towards it.
        {1, 50, ahead, ahead, kDoubleRounding},
        {2, 50, ahead, ahead, kDoubleRounding},
        {1, 50, left, {r, 0.5, c45, -c45}, kDoubleRounding},
        {2, 50, left, {r, 0.5, 0.5, -0.5}, kDoubleRounding},
        // At full amount backwards every source ends straight behind.
        {1, -100, {1, 0, 0.3, 0.3}, {1, -kSqrt2, 0, 0}, kCancellationResidue},
        // Focus at full amount keeps a source ahead, halves one aside into it and silences one behind.
        {3, 100, ahead, ahead, kDoubleRounding},
        {3, 100, left, {r / 2, 0.5, 0, 0}, kDoubleRounding},
        {3, 100, behind, {0, 0, 0, 0}, kCancellationResidue},
        // An unknown method leaves the frame.
        {4, 60, left, left, 0},
        {-1, 60, left, left, 0},
    };
    for (const Row& row : rows)
        expectNear(transform(row.in, 0, 0, 0, row.method, row.amount), row.out, row.tolerance, &row - rows);
}
