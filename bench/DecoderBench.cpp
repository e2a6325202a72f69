// Frames per second of the engine for every layout, plain and with every
// transform and zoom active: the block path on each vector path this CPU
// runs, the frame-by-frame pipeline, the literal per-frame evaluation and the
// floor (a fixed 4 x 6 matrix per frame). Ends with a table of ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Decoder.h"
#include "ReferenceDecoder.h"

namespace {

constexpr int kFrames = 4096;
// What the plug-in hands the engine per call: its scratch piece.
constexpr int kBlockFrames = 256;

struct Layout {
    const char* name;
    int mode;
    int fiveType;
};
const Layout kLayouts[] = {
    {"mono", 1, 0}, {"stereo", 2, 0},      {"2.1", 3, 0},         {"quad", 4, 0},
    {"5.0", 5, 0},  {"5.0-heller1", 5, 1}, {"5.0-heller2", 5, 2}, {"5.1", 6, 0},
};
// -1: nothing active; 0..3: rotate, tilt, tumble and that zoom method.
const int kStages[] = {-1, 0, 1, 2, 3};
const char* stageName(int s) {
    static const char* names[] = {"plain", "dominance", "press", "push", "focus"};
    return names[s + 1];
}

const std::vector<double>& input() {
    static const std::vector<double> frames = [] {
        std::vector<double> v(kFrames * 4);
        std::mt19937 rng(1);
        std::uniform_real_distribution<double> d(-1, 1);
        for (double& x : v) x = d(rng);
        return v;
    }();
    return frames;
}

template <class Engine>
void configure(Engine& e, const Layout& l, int stage) {
    e.decodeMode = l.mode;
    e.fiveDecoderType = l.fiveType;
    e.rearVerbGain = -12;  // ambience on where the layout has it
    e.hiVerbGain = -12;
    if (stage >= 0) {
        e.rotateAngle = 30;
        e.tiltAngle = -20;
        e.tumbleAngle = 10;
        e.zoomAmount = 40;
        e.zoomMethod = stage;
    }
}

// The first speaker slot of either engine, so the work cannot be optimised away.
double firstFeed(const Decoder& d) { return d.speakerFeeds[0]; }
double firstFeed(const ReferenceDecoder& d) { return d.feeds[0]; }
int step(Decoder& d, double& W, double& X, double& Y, double& Z) { return d.processDecoder(W, X, Y, Z); }
int step(ReferenceDecoder& d, double& W, double& X, double& Y, double& Z) { return d.process(W, X, Y, Z); }

template <class Engine>
void frames(benchmark::State& state, Layout l, int stage) {
    Engine d;
    configure(d, l, stage);
    const double* in = input().data();
    double sink = 0;
    for (auto _ : state) {
        for (int f = 0; f < kFrames; ++f) {
            double W = in[4 * f], X = in[4 * f + 1], Y = in[4 * f + 2], Z = in[4 * f + 3];
            step(d, W, X, Y, Z);
            sink += firstFeed(d);
        }
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(state.iterations() * kFrames);
}

// The block path as the plug-in runs it: each block's input copied into
// planar scratch, transformed in place, feeds written per slot.
void blocks(benchmark::State& state, Layout l, int stage, VectorPath path) {
    Decoder d;
    d.useVectorPath(path);
    configure(d, l, stage);
    std::vector<double> planar(4 * kFrames);
    for (int f = 0; f < kFrames; ++f)
        for (int c = 0; c < 4; ++c) planar[c * kFrames + f] = input()[4 * f + c];
    std::vector<double> signal(4 * kBlockFrames), feed(6 * kBlockFrames);
    BlockFeeds feeds;
    for (int i = 0; i < 6; ++i) feeds.feed[i] = feed.data() + i * kBlockFrames;
    double sink = 0;
    for (auto _ : state) {
        for (int start = 0; start < kFrames; start += kBlockFrames) {
            for (int c = 0; c < 4; ++c)
                std::copy_n(planar.data() + c * kFrames + start, kBlockFrames, signal.data() + c * kBlockFrames);
            const int slots =
                d.processBlock(signal.data(), signal.data() + kBlockFrames, signal.data() + 2 * kBlockFrames,
                               signal.data() + 3 * kBlockFrames, kBlockFrames, feeds);
            if (slots > 0 && feeds.slot[0]) sink += feeds.slot[0][kBlockFrames - 1];
        }
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(state.iterations() * kFrames);
}

const VectorPath kPaths[] = {VectorPath::baseline, VectorPath::avx2};

// The least any decoder must do: six outputs from four inputs per frame.
void floorMatrix(benchmark::State& state) {
    double m[6][4];
    for (int o = 0; o < 6; ++o)
        for (int i = 0; i < 4; ++i) m[o][i] = 0.1 * (o + 1) - 0.05 * i;
    benchmark::DoNotOptimize(m);
    const double* in = input().data();
    double out[6];
    double sink = 0;
    for (auto _ : state) {
        for (int f = 0; f < kFrames; ++f) {
            const double* x = in + 4 * f;
            for (int o = 0; o < 6; ++o) out[o] = m[o][0] * x[0] + m[o][1] * x[1] + m[o][2] * x[2] + m[o][3] * x[3];
            benchmark::DoNotOptimize(out);
            sink += out[0];
        }
        benchmark::DoNotOptimize(sink);
    }
    state.SetItemsProcessed(state.iterations() * kFrames);
}

// Console output as usual, plus the rates kept for the ratio table.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> rate;
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            auto it = r.counters.find("items_per_second");
            if (it != r.counters.end()) rate[r.benchmark_name()] = it->second.value;
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::RegisterBenchmark("floor/4x6-matrix", floorMatrix);
    for (const Layout& l : kLayouts) {
        for (int s : kStages) {
            const std::string key = std::string(l.name) + "/" + stageName(s);
            benchmark::RegisterBenchmark(("cached/" + key).c_str(), frames<Decoder>, l, s);
            benchmark::RegisterBenchmark(("literal/" + key).c_str(), frames<ReferenceDecoder>, l, s);
            for (VectorPath p : kPaths)
                if (vectorPathAvailable(p))
                    benchmark::RegisterBenchmark((std::string("block-") + vectorPathName(p) + "/" + key).c_str(),
                                                 blocks, l, s, p);
        }
    }
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const double floorRate = reporter.rate["floor/4x6-matrix"];
    if (floorRate <= 0) return 0;
    // Speed-ups are rate ratios; "x floor" is time per frame over the floor's.
    std::printf("\n%-24s %12s %10s %10s", "configuration", "frame f/s", "frame/lit", "x floor");
    for (VectorPath p : kPaths)
        if (vectorPathAvailable(p))
            std::printf(" %9s %8s", (std::string(vectorPathName(p)) + "/frame").c_str(), "x floor");
    std::printf("\n");
    for (const Layout& l : kLayouts) {
        for (int s : kStages) {
            const std::string key = std::string(l.name) + "/" + stageName(s);
            const double c = reporter.rate["cached/" + key], lit = reporter.rate["literal/" + key];
            if (c <= 0 || lit <= 0) continue;
            std::printf("%-24s %12.4g %9.1fx %9.2fx", key.c_str(), c, c / lit, floorRate / c);
            for (VectorPath p : kPaths) {
                const double b = reporter.rate[std::string("block-") + vectorPathName(p) + "/" + key];
                if (b > 0) std::printf(" %8.1fx %7.2fx", b / c, floorRate / b);
            }
            std::printf("\n");
        }
    }
    std::printf("floor (4x6 matrix): %.4g frames/s\n", floorRate);
    return 0;
}
