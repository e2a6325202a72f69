// The engine caches sines, cosines and gains; its output must stay
// bit-identical to evaluating every formula afresh at each frame, with
// fields changed between any two frames.
#include <random>

#include "DspTestHelpers.h"
#include "ReferenceDecoder.h"

namespace {

class Fuzzer {
public:
    explicit Fuzzer(unsigned seed) : rng(seed) {}

    // Either an ordinary value in range, an exact special value, or a repeat.
    double pick(double lo, double hi) {
        switch (std::uniform_int_distribution<int>(0, 9)(rng)) {
        case 0: return 0.0;
        case 1: return -0.0;
        case 2: return lo;
        case 3: return hi;
        case 4: return std::uniform_int_distribution<int>(0, 1)(rng) ? NAN : (lo + hi) / 2;
        default: return std::uniform_real_distribution<double>(lo, hi)(rng);
        }
    }
    int selector(int lo, int hi) { return std::uniform_int_distribution<int>(lo - 1, hi + 1)(rng); }
    bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(rng) < p; }
    double sample() { return std::uniform_real_distribution<double>(-1, 1)(rng); }

    void mutate(Decoder& d, ReferenceDecoder& r) {
        switch (std::uniform_int_distribution<int>(0, 21)(rng)) {
        case 0: r.rotateAngle = d.rotateAngle = pick(-180, 180); break;
        case 1: r.tiltAngle = d.tiltAngle = pick(-180, 180); break;
        case 2: r.tumbleAngle = d.tumbleAngle = pick(-180, 180); break;
        case 3: r.zoomAmount = d.zoomAmount = pick(-100, 100); break;
        case 4: r.zoomMethod = d.zoomMethod = selector(0, 3); break;
        case 5: r.decodeMode = d.decodeMode = selector(1, 6); break;
        case 6: r.channelOrder = d.channelOrder = selector(0, 1); break;
        case 7: r.fiveDecoderType = d.fiveDecoderType = selector(0, 2); break;
        case 8: r.frontWidth = d.frontWidth = pick(0, 90); break;
        case 9: r.frontPattern = d.frontPattern = pick(0, 1); break;
        case 10: r.frontMode = d.frontMode = selector(0, 1); break;
        case 11: r.rearVerbGain = d.rearVerbGain = pick(-100, 0); break;
        case 12: r.hiVerbGain = d.hiVerbGain = pick(-100, 0); break;
        case 13: r.centrePattern = d.centrePattern = pick(0, 1); break;
        case 14: r.centreGain = d.centreGain = pick(-36, 0); break;
        case 15: r.subGain = d.subGain = pick(-18, 6); break;
        case 16: r.surroundMode = d.surroundMode = selector(0, 1); break;
        case 17: r.surroundPattern = d.surroundPattern = pick(0, 1); break;
        case 18: r.surroundWidth = d.surroundWidth = pick(0, 90); break;
        case 19: r.surroundGain = d.surroundGain = pick(-18, 6); break;
        case 20:
            r.sampleRate = d.sampleRate = std::uniform_int_distribution<int>(8000, 192000)(rng);
            d.filterCoefs();
            r.design();
            break;
        default:
            r.crossoverFrequency = d.crossoverFrequency = std::uniform_int_distribution<int>(20, 240)(rng);
            d.filterCoefs();
            r.design();
            break;
        }
    }

private:
    std::mt19937 rng;
};

}  // namespace

// For every layout, zoom method and 5.x type: first a long stretch with every
// stage active and the fields constant, then random fields changed between
// frames, out-of-range selectors, NaN and -0.0 included.
TEST(CacheIdentity, EveryLayoutAndStageThenFieldsChangedBetweenFrames) {
    unsigned seed = 0;
    for (int mode = 1; mode <= 6; ++mode) {
        for (int method = 0; method < 4; ++method) {
            for (int type = 0; type < 3; ++type) {
                Fuzzer fuzz(++seed);
                Decoder d;
                ReferenceDecoder r;
                d.decodeMode = r.decodeMode = mode, d.channelOrder = r.channelOrder = method % 2;
                d.zoomMethod = r.zoomMethod = method, d.zoomAmount = r.zoomAmount = -42.5;
                d.fiveDecoderType = r.fiveDecoderType = type, d.frontMode = r.frontMode = type % 2;
                d.surroundMode = r.surroundMode = (type + 1) % 2;
                d.rotateAngle = r.rotateAngle = 17.5, d.tiltAngle = r.tiltAngle = -33.25;
                d.tumbleAngle = r.tumbleAngle = 101;
                d.rearVerbGain = r.rearVerbGain = -12, d.hiVerbGain = r.hiVerbGain = -7.5;
                d.centreGain = r.centreGain = -4, d.surroundGain = r.surroundGain = 2.5, d.subGain = r.subGain = -9;
                for (int frame = 0; frame < 2200; ++frame) {
                    if (frame >= 500 && fuzz.chance(0.05)) fuzz.mutate(d, r);
                    double a[4], b[4];
                    for (int i = 0; i < 4; ++i) a[i] = b[i] = fuzz.sample();
                    const int n = d.processDecoder(a[0], a[1], a[2], a[3]);
                    ASSERT_EQ(n, r.process(b[0], b[1], b[2], b[3])) << "seed " << seed << " frame " << frame;
                    for (int i = 0; i < 4; ++i)
                        ASSERT_PRED2(identical, a[i], b[i]) << "signal " << i << " seed " << seed << " frame " << frame;
                    for (int i = 0; i < n; ++i)
                        ASSERT_PRED2(identical, d.speakerFeeds[i], r.feeds[i])
                            << "slot " << i << " seed " << seed << " frame " << frame << " mode " << d.decodeMode;
                }
            }
        }
    }
}
