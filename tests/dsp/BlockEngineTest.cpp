// The block path against the per-frame pipeline, on every vector path the
// build contains and this CPU runs: every layout, stage, zoom method and
// channel order (selectors out of range included), blocks of random length
// from 0 to 4096 with fields changed between them. Outputs, the frame
// transformed in place and the engine's state must match to the bit; two
// NaNs count as equal, since which NaN comes out is no part of the sound.
#include <random>
#include <string>
#include <vector>

#include "DspTestHelpers.h"

namespace {

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
    int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
    // Ordinary values mostly, sometimes the exact values the stages test for.
    double pick(double lo, double hi) {
        const double special[] = {0.0, -0.0, lo, hi, NAN};
        const int kind = uniform(0, 9);
        return kind < 5 ? special[kind] : std::uniform_real_distribution<double>(lo, hi)(rng);
    }
    double angle(bool active) {
        const double v = pick(-180, 180);
        return active ? (v == 0 ? 90.0 : v) : (uniform(0, 1) ? 0.0 : -0.0);
    }

    // The settings a combination leaves open, drawn afresh.
    void randomiseSettings() {
        set(&Decoder::fiveDecoderType, uniform(-1, 3));
        set(&Decoder::frontMode, uniform(-1, 2));
        set(&Decoder::surroundMode, uniform(-1, 2));
        for (auto field : {&Decoder::frontWidth, &Decoder::surroundWidth}) set(field, pick(0, 90));
        for (auto field : {&Decoder::frontPattern, &Decoder::surroundPattern, &Decoder::centrePattern})
            set(field, pick(0, 1));
        for (auto field : {&Decoder::surroundGain, &Decoder::centreGain, &Decoder::subGain}) set(field, pick(-18, 6));
        // Ambience around its threshold: off, exactly at it, just above, on.
        const double levels[] = {-100.0, -40.0, -39.99, -12.0, 0.0, NAN};
        set(&Decoder::rearVerbGain, levels[uniform(0, 5)]);
        set(&Decoder::hiVerbGain, levels[uniform(0, 5)]);
    }

    // One field changed, as a host's automation would between two blocks.
    void changeOneField() {
        switch (uniform(0, 4)) {
        case 0: set(&Decoder::rotateAngle, pick(-180, 180)); break;
        case 1: set(&Decoder::zoomAmount, pick(-100, 100)); break;
        case 2: set(&Decoder::frontWidth, pick(0, 90)); break;
        case 3: set(&Decoder::rearVerbGain, pick(-60, 0)); break;
        default: redesignCrossover(uniform(8000, 192000), uniform(20, 240)); break;
        }
    }

    int blockLength() {
        const int kind = uniform(0, 19);
        return kind == 0 ? 0 : kind < 5 ? uniform(1, 8) : kind < 18 ? uniform(9, 300) : uniform(301, 4096);
    }

    // Runs one block through both engines; false at the first difference.
    bool runBlock(int frames, bool specialSamples, const std::string& what) {
        std::vector<double> in[4], transformed[4], feed[6];
        for (int c = 0; c < 4; ++c) {
            for (int f = 0; f < frames; ++f) in[c].push_back(sample(specialSamples));
            transformed[c] = in[c];
        }
        BlockFeeds block;
        for (int i = 0; i < 6; ++i) block.feed[i] = (feed[i] = std::vector<double>(frames, 123.0)).data();
        const int slots = blockwise.processBlock(transformed[0].data(), transformed[1].data(), transformed[2].data(),
                                                 transformed[3].data(), frames, block);

        // The first difference fails the test with where it was found.
        auto same = [&](const double* got, const double* want, int count, const std::string& where) {
            for (int i = 0; i < count; ++i) {
                if (identical(got[i], want[i])) continue;
                ADD_FAILURE() << what << ", " << where << " " << i << ": " << got[i] << " vs " << want[i];
                return false;
            }
            return true;
        };
        for (int f = 0; f < frames; ++f) {
            double frame[4] = {in[0][f], in[1][f], in[2][f], in[3][f]};
            const int produced = framewise.processDecoder(frame[0], frame[1], frame[2], frame[3]);
            EXPECT_EQ(slots, produced) << what;
            if (slots != produced) return false;
            const double got[4] = {transformed[0][f], transformed[1][f], transformed[2][f], transformed[3][f]};
            double slot[6];
            for (int s = 0; s < produced; ++s) slot[s] = block.slot[s] ? block.slot[s][f] : 0.0;
            const std::string at = "at frame " + std::to_string(f) + ", ";
            if (!same(got, frame, 4, at + "signal") || !same(slot, framewise.speakerFeeds, produced, at + "slot"))
                return false;
        }
        // What the next block starts from: working feeds, slots, filter history.
        const Decoder &a = framewise, &b = blockwise;
        for (auto feed : {&Decoder::leftFeed, &Decoder::rightFeed, &Decoder::centreFeed, &Decoder::subFeed,
                          &Decoder::leftSurroundFeed, &Decoder::rightSurroundFeed})
            if (!same(&(b.*feed), &(a.*feed), 1, "working feed after the block")) return false;
        for (int c = 0; c < 4; ++c)
            if (!same(b.highPassState[c], a.highPassState[c], 4, "high-pass history")) return false;
        return same(b.speakerFeeds, a.speakerFeeds, 6, "slot after the block") &&
               same(b.lowPassState, a.lowPassState, 4, "low-pass history");
    }

    // After a block of non-finite samples, as the plug-in does.
    void clearFilters() {
        framewise.clearFilter();
        blockwise.clearFilter();
    }

private:
    double sample(bool special) {
        const double specials[] = {NAN, INFINITY, -INFINITY, -0.0, 1e-310, -1e300};
        if (special && uniform(0, 15) == 0) return specials[uniform(0, 5)];
        return std::uniform_real_distribution<double>(-1, 1)(rng);
    }

    std::mt19937 rng;
    Decoder framewise, blockwise;
};

}  // namespace

TEST(BlockEngine, EveryPathMatchesTheFramewisePipelineInEveryState) {
#if defined(__x86_64__)
    // On a CPU with AVX2 the build must hold that path, or it would go untested.
    if (__builtin_cpu_supports("avx2")) {
        EXPECT_TRUE(vectorPathAvailable(VectorPath::avx2));
    }
#endif
    EXPECT_TRUE(vectorPathAvailable(bestVectorPath()));

    for (VectorPath path : {VectorPath::baseline, VectorPath::avx2}) {
        if (!vectorPathAvailable(path)) continue;
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
                        twins.set(&Decoder::rotateAngle, twins.angle(stages & 1));
                        twins.set(&Decoder::tiltAngle, twins.angle(stages & 2));
                        twins.set(&Decoder::tumbleAngle, twins.angle(stages & 4));
                        twins.set(&Decoder::zoomAmount, twins.pick(-100, 100));
                        twins.randomiseSettings();
                        // Now and then a rate of 0, which leaves the crossover undefined (NaN).
                        const bool noRate = twins.uniform(0, 19) == 0;
                        if (noRate) twins.redesignCrossover(0, 120);

                        const std::string what = std::string(vectorPathName(path)) + ", mode " + std::to_string(mode) +
                                                 ", order " + std::to_string(order) + ", zoom method " +
                                                 std::to_string(zoomMethod) + ", stages " + std::to_string(stages);
                        for (int round = 0; round < 2; ++round, ++block) {
                            const bool special = block % 16 == 0;
                            ASSERT_TRUE(twins.runBlock(twins.blockLength(), special, what));
                            if (special) twins.clearFilters();
                            twins.changeOneField();
                        }
                        if (noRate) twins.redesignCrossover(44100, 120);
                    }
    }
}
