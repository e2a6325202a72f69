// The per-frame pipeline: stage skipping, the copy into the speaker slots and
// the working feeds that survive between frames.
#include <limits>

#include "DspTestHelpers.h"

// Channel tables, traced with the full engine. Every working feed is marked
// and each layout's decoders are given unknown front/surround modes and an
// unknown 5.x type, with the ambience on: they must write nothing, so each
// slot shows which feed it carries. Only mono's centre and the sub are
// computed, and they differ from every mark.
TEST(Pipeline, ChannelTables) {
    // Feeds: 1 L, 2 R, 3 C, 4 LFE, 5 Ls, 6 Rs; 0 a written zero.
    struct Row {
        int mode, ownCount, own[6], six[6];
    };
    const Row rows[] = {
        {1, 1, {3}, {0, 0, 3, 0, 0, 0}},
        {2, 2, {1, 2}, {1, 2, 0, 0, 0, 0}},
        {3, 3, {1, 2, 4}, {1, 2, 0, 4, 0, 0}},
        {4, 4, {1, 2, 6, 6}, {1, 2, 0, 0, 5, 6}},  // both rear slots carry Rs in quad's own order
        {5, 5, {1, 2, 3, 5, 6}, {1, 2, 3, 0, 5, 6}},
        {6, 6, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
    };
    for (const Row& row : rows) {
        for (int order : {0, 1}) {
            Decoder d;
            d.decodeMode = row.mode;
            d.channelOrder = order;
            d.frontMode = d.surroundMode = 7;
            d.fiveDecoderType = 9;
            d.rearVerbGain = d.hiVerbGain = 0;
            d.leftFeed = 1, d.rightFeed = 2, d.centreFeed = 3, d.subFeed = 4;
            d.leftSurroundFeed = 5, d.rightSurroundFeed = 6;
            for (double& s : d.speakerFeeds) s = -1;
            Frame f{0.3, 0.2, 0.1, 0.4};
            const int n = process(d, f);
            const double feed[7] = {0,         d.leftFeed,         d.rightFeed,        d.centreFeed,
                                    d.subFeed, d.leftSurroundFeed, d.rightSurroundFeed};
            for (int i : {1, 2, 5, 6}) EXPECT_EQ(feed[i], i) << "feed written by mode " << row.mode;
            ASSERT_EQ(n, order == 0 ? row.ownCount : 6) << row.mode;
            const int* want = order == 0 ? row.own : row.six;
            for (int i = 0; i < 6; ++i)
                EXPECT_EQ(d.speakerFeeds[i], i < n ? feed[want[i]] : -1)
                    << row.mode << " order " << order << " slot " << i;
        }
    }
}

// An unknown layout or channel order writes no slot; a known layout in an
// unknown order still decodes, and its crossover advances.
TEST(Pipeline, UnknownLayoutOrChannelOrderWritesNoSlot) {
    for (auto [mode, order] : {std::pair{0, 1}, {7, 0}, {-3, 1}, {3, 2}, {6, -1}}) {
        Decoder d;
        d.decodeMode = mode;
        d.channelOrder = order;
        for (double& s : d.speakerFeeds) s = 42;
        Frame f{1, 0, 0, 0};
        EXPECT_EQ(process(d, f), 0) << mode << " " << order;
        for (double s : d.speakerFeeds) EXPECT_EQ(s, 42);
        EXPECT_EQ(d.subFeed > 0, mode == 3 || mode == 6) << "crossover run by mode " << mode;
    }
}

// A stage at -0.0 is off, a NaN one runs. An infinite component tells them
// apart: any stage that runs turns it into NaN, even one turning by nothing.
TEST(Pipeline, NegativeZeroSkipsAStageAndNaNRunsIt) {
    for (auto stage : {&Decoder::rotateAngle, &Decoder::tiltAngle, &Decoder::tumbleAngle, &Decoder::zoomAmount}) {
        for (double value : {-0.0, std::numeric_limits<double>::quiet_NaN()}) {
            Decoder d;
            d.decodeMode = 0;
            d.*stage = value;
            Frame f{0.5, INFINITY, -INFINITY, INFINITY};
            process(d, f);
            const bool ran = std::isnan(f.W) || std::isnan(f.X) || std::isnan(f.Y) || std::isnan(f.Z);
            EXPECT_EQ(ran, std::isnan(value)) << value;
        }
    }
}
