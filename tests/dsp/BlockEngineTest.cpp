// The block path against the per-frame pipeline, on every vector path the
// build contains and this CPU runs: every layout, stage, zoom method and
// channel order (selectors out of range included), blocks of random length
// from 0 to 4096 with the fields changed between them. Outputs, the frame
// transformed in place and the engine's state must match to the bit; two
// NaNs count as equal, since which NaN comes out is no part of the sound.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "Decoder.h"

namespace {

bool identical(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Two engines given the same fields: one run frame by frame, one by blocks.
class Twins {
public:
    Twins(VectorPath path, unsigned seed) : rng(seed) {
        blockwise.useVectorPath(path);
        for (Decoder* d : {&framewise, &blockwise})
            for (double& v : d->speakerFeeds) v = 0;
    }

    template <class T>
    void set(T Decoder::*field, T value) {
        framewise.*field = value;
        blockwise.*field = value;
    }
    void redesignCrossover(int rate, int frequency) {
        set(&Decoder::sampleRate, rate);
        set(&Decoder::crossoverFrequency, frequency);
        framewise.filterCoefs();
        blockwise.filterCoefs();
    }

    // Ordinary values mostly, sometimes the exact values the stages test for.
    double pick(double lo, double hi) {
        switch (uniform(0, 9)) {
            case 0: return 0.0;
            case 1: return -0.0;
            case 2: return lo;
            case 3: return hi;
            case 4: return NAN;
            default: return std::uniform_real_distribution<double>(lo, hi)(rng);
        }
    }
    double nonZero(double lo, double hi) {
        const double v = pick(lo, hi);
        return v == 0 ? hi : v;
    }
    int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }

    // The settings a combination leaves open, drawn afresh.
    void randomiseSettings() {
        set(&Decoder::fiveDecoderType, uniform(-1, 3));
        set(&Decoder::frontMode, uniform(-1, 2));
        set(&Decoder::surroundMode, uniform(-1, 2));
        set(&Decoder::frontWidth, pick(0, 90));
        set(&Decoder::frontPattern, pick(0, 1));
        set(&Decoder::surroundWidth, pick(0, 90));
        set(&Decoder::surroundPattern, pick(0, 1));
        set(&Decoder::surroundGain, pick(-18, 6));
        set(&Decoder::centrePattern, pick(0, 1));
        set(&Decoder::centreGain, pick(-18, 6));
        set(&Decoder::subGain, pick(-18, 6));
        // Ambience around its threshold: off, exactly at it, just above, on.
        const double levels[] = {-100.0, -40.0, -39.99, -12.0, 0.0, NAN};
        set(&Decoder::rearVerbGain, levels[uniform(0, 5)]);
        set(&Decoder::hiVerbGain, levels[uniform(0, 5)]);
    }

    // One field changed, as a host's automation would between two blocks.
    void changeOneField() {
        switch (uniform(0, 7)) {
            case 0: set(&Decoder::rotateAngle, pick(-180, 180)); break;
            case 1: set(&Decoder::zoomAmount, pick(-100, 100)); break;
            case 2: set(&Decoder::frontWidth, pick(0, 90)); break;
            case 3: set(&Decoder::surroundGain, pick(-18, 6)); break;
            case 4: set(&Decoder::rearVerbGain, pick(-60, 0)); break;
            case 5: set(&Decoder::subGain, pick(-18, 6)); break;
            case 6: set(&Decoder::frontMode, uniform(0, 1)); break;
            default: redesignCrossover(uniform(8000, 192000), uniform(20, 240)); break;
        }
    }

    int blockLength() {
        const int kind = uniform(0, 19);
        if (kind == 0) return 0;
        if (kind < 5) return uniform(1, 8);
        if (kind < 18) return uniform(9, 300);
        return uniform(301, 4096);
    }

    // Runs one block through both engines; false after the first mismatch.
    bool runBlock(int frames, bool specialSamples, const std::string& what) {
        std::vector<double> in[4], transformed[4], feed[6];
        for (auto& channel : in) {
            channel.resize(frames);
            for (double& v : channel) v = sample(specialSamples);
        }
        for (int c = 0; c < 4; ++c) transformed[c] = in[c];
        for (auto& f : feed) f.assign(frames, 123.0);
        BlockFeeds block;
        for (int i = 0; i < 6; ++i) block.feed[i] = feed[i].data();
        const int slots = blockwise.processBlock(transformed[0].data(), transformed[1].data(), transformed[2].data(),
                                                 transformed[3].data(), frames, block);

        for (int f = 0; f < frames; ++f) {
            double frame[4] = {in[0][f], in[1][f], in[2][f], in[3][f]};
            const int produced = framewise.processDecoder(frame[0], frame[1], frame[2], frame[3]);
            EXPECT_EQ(slots, produced) << what;
            if (slots != produced) return false;
            for (int c = 0; c < 4; ++c) {
                EXPECT_PRED2(identical, transformed[c][f], frame[c]) << what << ", signal " << c << ", frame " << f;
                if (!identical(transformed[c][f], frame[c])) return false;
            }
            for (int s = 0; s < produced; ++s) {
                const double got = block.slot[s] ? block.slot[s][f] : 0.0;
                EXPECT_PRED2(identical, got, framewise.speakerFeeds[s]) << what << ", slot " << s << ", frame " << f;
                if (!identical(got, framewise.speakerFeeds[s])) return false;
            }
        }
        return sameState(what);
    }

    bool sameState(const std::string& what) {
        const Decoder& a = framewise;
        const Decoder& b = blockwise;
        const double state[][2] = {
            {a.leftFeed, b.leftFeed}, {a.rightFeed, b.rightFeed}, {a.centreFeed, b.centreFeed},
            {a.subFeed, b.subFeed}, {a.leftSurroundFeed, b.leftSurroundFeed},
            {a.rightSurroundFeed, b.rightSurroundFeed},
        };
        bool same = true;
        for (const auto& s : state) same = same && identical(s[0], s[1]);
        for (int i = 0; i < 6; ++i) same = same && identical(a.speakerFeeds[i], b.speakerFeeds[i]);
        for (int i = 0; i < 4; ++i) {
            same = same && identical(a.lowPassState[i], b.lowPassState[i]);
            for (int c = 0; c < 4; ++c) same = same && identical(a.highPassState[c][i], b.highPassState[c][i]);
        }
        EXPECT_TRUE(same) << what << ": feeds, slots or filter history differ after the block";
        return same;
    }

    // After a block of non-finite samples, as the plug-in does.
    void clearFilters() {
        framewise.clearFilter();
        blockwise.clearFilter();
    }

private:
    double sample(bool special) {
        if (special && uniform(0, 15) == 0) {
            const double specials[] = {NAN, INFINITY, -INFINITY, -0.0, 1e-310, -1e300};
            return specials[uniform(0, 5)];
        }
        return std::uniform_real_distribution<double>(-1, 1)(rng);
    }

    std::mt19937 rng;
    Decoder framewise, blockwise;
};

std::vector<VectorPath> pathsToTest() {
    std::vector<VectorPath> paths;
    for (VectorPath p : {VectorPath::baseline, VectorPath::avx2})
        if (vectorPathAvailable(p)) paths.push_back(p);
    return paths;
}

}  // namespace

TEST(BlockEngine, EveryPathMatchesTheFramewisePipelineInEveryState) {
    for (VectorPath path : pathsToTest()) {
        Twins twins(path, 12);
        int block = 0;
        for (int mode = 0; mode <= 7; ++mode)
            for (int order = 0; order <= 2; ++order)
                for (int zoomMethod = -1; zoomMethod <= 4; ++zoomMethod)
                    for (int stages = 0; stages < 8; ++stages) {
                        twins.set(&Decoder::decodeMode, mode);
                        twins.set(&Decoder::channelOrder, order);
                        twins.set(&Decoder::zoomMethod, zoomMethod);
                        // An inactive stage is 0 or -0.0; an active one any angle, NaN included.
                        const double off = twins.uniform(0, 1) ? 0.0 : -0.0;
                        twins.set(&Decoder::rotateAngle, stages & 1 ? twins.nonZero(-180, 180) : off);
                        twins.set(&Decoder::tiltAngle, stages & 2 ? twins.nonZero(-180, 180) : off);
                        twins.set(&Decoder::tumbleAngle, stages & 4 ? twins.nonZero(-180, 180) : off);
                        twins.set(&Decoder::zoomAmount, twins.pick(-100, 100));
                        twins.randomiseSettings();
                        // Now and then a rate of 0, which leaves the crossover undefined (NaN).
                        const bool noRate = twins.uniform(0, 19) == 0;
                        if (noRate) twins.redesignCrossover(0, 120);

                        const std::string what = std::string(vectorPathName(path)) + ", mode " +
                                                 std::to_string(mode) + ", order " + std::to_string(order) +
                                                 ", zoom method " + std::to_string(zoomMethod) + ", stages " +
                                                 std::to_string(stages);
                        for (int round = 0; round < 2; ++round, ++block) {
                            const bool special = block % 16 == 0;
                            ASSERT_TRUE(twins.runBlock(twins.blockLength(), special, what + ", block " +
                                                                                       std::to_string(round)));
                            if (special) twins.clearFilters();
                            twins.changeOneField();
                        }
                        if (noRate) twins.redesignCrossover(44100, 120);
                    }
    }
}

TEST(BlockEngine, TheWidestPathTheCpuRunsIsChosen) {
    const VectorPath best = bestVectorPath();
    EXPECT_TRUE(vectorPathAvailable(best));
    if (vectorPathAvailable(VectorPath::avx2)) {
        EXPECT_EQ(best, VectorPath::avx2);
    }
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) {
        EXPECT_TRUE(vectorPathAvailable(VectorPath::avx2));
    }
#endif
}
