// The per-frame pipeline: stage skipping, the copy into the speaker slots and
// the working feeds that survive between frames.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Decoder.h"
#include "Tolerances.h"

namespace {

struct Frame {
    double W, X, Y, Z;
};

int run(Decoder& d, Frame f) { return d.processDecoder(f.W, f.X, f.Y, f.Z); }

// Puts a recognisable value in every working feed so the copy can be traced.
void markFeeds(Decoder& d) {
    d.leftFeed = 1;
    d.rightFeed = 2;
    d.centreFeed = 3;
    d.subFeed = 4;
    d.leftSurroundFeed = 5;
    d.rightSurroundFeed = 6;
}

}  // namespace

// Channel tables, traced with the full engine: each layout's decoder is made
// to write nothing (unknown front/surround modes, unknown 5.x type) so the
// marked working feeds show where every slot comes from.
TEST(Pipeline, ChannelTables) {
    struct Row {
        int mode;
        int own[6];
        int ownCount;
        double six[6];
    };
    const Row rows[] = {
        {2, {1, 2}, 2, {1, 2, 0, 0, 0, 0}},
        {4, {1, 2, 6, 6}, 4, {1, 2, 0, 0, 5, 6}},
        {5, {1, 2, 3, 5, 6}, 5, {1, 2, 3, 0, 5, 6}},
    };
    for (const Row& row : rows) {
        for (int order = 0; order < 2; ++order) {
            Decoder d;
            d.decodeMode = row.mode;
            d.frontMode = 7;
            d.surroundMode = 7;
            d.fiveDecoderType = 9;
            d.channelOrder = order;
            markFeeds(d);
            for (double& s : d.speakerFeeds) s = -1;
            const int n = run(d, {0.3, 0.2, 0.1, 0.4});
            if (order == 0) {
                ASSERT_EQ(n, row.ownCount) << row.mode;
                for (int i = 0; i < n; ++i) EXPECT_EQ(d.speakerFeeds[i], row.own[i]) << row.mode << " slot " << i;
                for (int i = n; i < 6; ++i) EXPECT_EQ(d.speakerFeeds[i], -1) << "slot beyond count written";
            } else {
                ASSERT_EQ(n, 6);
                for (int i = 0; i < 6; ++i) EXPECT_EQ(d.speakerFeeds[i], row.six[i]) << row.mode << " slot " << i;
            }
        }
    }
}

TEST(Pipeline, MonoAndSubLayoutsPlaceTheirFeeds) {
    Decoder d;
    d.decodeMode = 1;
    d.channelOrder = 0;
    EXPECT_EQ(run(d, {1, 1, 0, 0}), 1);
    EXPECT_DOUBLE_EQ(d.speakerFeeds[0], d.centreFeed);
    EXPECT_DOUBLE_EQ(d.speakerFeeds[0], 0.5 * std::sqrt(2.0) + 0.5);

    d.channelOrder = 1;
    markFeeds(d);
    EXPECT_EQ(run(d, {1, 1, 0, 0}), 6);
    const double six[6] = {0, 0, d.centreFeed, 0, 0, 0};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(d.speakerFeeds[i], six[i]) << i;

    for (int mode : {3, 6}) {
        Decoder s;
        s.decodeMode = mode;
        s.channelOrder = 0;
        const int n = run(s, {1, 0, 0, 0});
        EXPECT_EQ(n, mode == 3 ? 3 : 6);
        EXPECT_EQ(s.speakerFeeds[mode == 3 ? 2 : 3], s.subFeed);
        EXPECT_GT(s.subFeed, 0.0);
        s.channelOrder = 1;
        run(s, {1, 0, 0, 0});
        EXPECT_EQ(s.speakerFeeds[3], s.subFeed);
        EXPECT_EQ(s.speakerFeeds[2], mode == 3 ? 0.0 : s.centreFeed);
    }
}

TEST(Pipeline, UnknownLayoutStillTransformsButDecodesNothing) {
    for (int mode : {0, 7, -3}) {
        Decoder d;
        d.decodeMode = mode;
        d.rotateAngle = 90;
        for (double& s : d.speakerFeeds) s = 42;
        double W = 1, X = 1, Y = 0, Z = 0;
        EXPECT_EQ(d.processDecoder(W, X, Y, Z), 0);
        EXPECT_NEAR(X, 0.0, kDoubleRounding);
        EXPECT_DOUBLE_EQ(Y, 1.0);
        for (double s : d.speakerFeeds) EXPECT_EQ(s, 42);
    }
}

TEST(Pipeline, UnknownChannelOrderDecodesButCopiesNothing) {
    Decoder d;
    d.decodeMode = 3;
    d.channelOrder = 2;
    for (double& s : d.speakerFeeds) s = 42;
    EXPECT_EQ(run(d, {1, 0, 0, 0}), 0);
    for (double s : d.speakerFeeds) EXPECT_EQ(s, 42);
    // The crossover still advanced.
    EXPECT_NE(d.lowPassState[0], 0.0);
    EXPECT_GT(d.subFeed, 0.0);
}

TEST(Pipeline, NegativeZeroSkipsAStageAndNaNRunsIt) {
    Decoder d;
    d.rotateAngle = -0.0;
    d.decodeMode = 0;
    double W = 0, X = 1, Y = 0, Z = 0;
    d.processDecoder(W, X, Y, Z);
    EXPECT_EQ(X, 1.0);
    EXPECT_EQ(Y, 0.0);

    d.rotateAngle = std::numeric_limits<double>::quiet_NaN();
    d.processDecoder(W, X, Y, Z);
    EXPECT_TRUE(std::isnan(X));
    EXPECT_TRUE(std::isnan(Y));
    EXPECT_EQ(W, 0.0);
}

TEST(Pipeline, FeedsNotWrittenKeepTheirValues) {
    Decoder d;
    d.decodeMode = 5;
    d.fiveDecoderType = 3;
    markFeeds(d);
    run(d, {1, 1, 1, 1});
    EXPECT_EQ(d.leftFeed, 1);
    EXPECT_EQ(d.centreFeed, 3);
    EXPECT_EQ(d.rightSurroundFeed, 6);

    // A layout change clears nothing: quad leaves the centre as it was.
    d.decodeMode = 4;
    d.fiveDecoderType = 0;
    run(d, {1, 1, 1, 1});
    EXPECT_EQ(d.centreFeed, 3);
    EXPECT_NE(d.leftFeed, 1);
}
