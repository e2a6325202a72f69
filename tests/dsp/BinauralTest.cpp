// The headphone stage: the convolver against a direct convolution, and where its responses come from.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>

#include "BinauralConvolver.h"

using namespace sorvane;

namespace {

// Single-precision transforms of 2P points, summed over a few partitions, against the peak.
constexpr double kTransformRounding = 1e-5;

// Left and right ear of `frames` frames, by the definition, in double; `heard(i, n)` says whether input i is not null at n.
// Frame n takes inputs up to n only: a convolver that added latency would miss by the signal's size.
template <class Heard>
std::vector<double> directEars(const HeadResponses& set, const std::vector<std::vector<float>>& in, Heard heard, int frames) {
    std::vector<double> ears(2 * size_t(frames));
    for (int i = 0; i < kBinauralInputs; ++i)
        for (int n = 0; n < frames; ++n)
            for (size_t t = 0; t <= size_t(n) && t < set.response[i].size(); ++t) {
                if (!heard(i, n - int(t))) continue;
                const double y = double(set.response[i][t]) * in[i][n - t];
                ears[2 * n] += y;
                ears[2 * n + 1] += isSideInput(i) ? -y : y;
            }
    return ears;
}

TEST(BinauralConvolver, EqualsDirectConvolutionAtAnyCallSizeWithInputsComingAndGoing) {
    constexpr int kFrames = 6000;
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> u(-1, 1);
    HeadResponses set;
    for (auto& r : set.response) {
        r.resize(700);  // more than one partition at either block size
        for (float& x : r) x = u(rng) * 0.1f;
    }
    std::vector<std::vector<float>> in(kBinauralInputs, std::vector<float>(kFrames));
    for (auto& v : in)
        for (float& x : v) x = u(rng);
    for (int maxBlock : {512, 64}) {
        for (int pattern : {1, 37, 512, 4096, 0}) {  // 0: a random mix of call sizes
            std::vector<int> calls, callStart(kFrames);
            for (int n = 0; n < kFrames; n += calls.back()) {
                calls.push_back(std::min(pattern ? pattern : std::uniform_int_distribution<int>(1, 1500)(rng), kFrames - n));
                std::fill_n(callStart.begin() + n, calls.back(), n);
            }
            // Inputs drop to null for whole calls, the pairs in turn, some for longer than a response.
            const auto heard = [&](int i, int n) { return n >= 0 && (i == kCentreInput || (callStart[n] / 1300 + i) % 4 != 0); };
            const std::vector<double> expected = directEars(set, in, heard, kFrames);
            BinauralConvolver convolver;
            convolver.prepare(set, maxBlock);
            for (int pass = 0; pass < 2; ++pass, convolver.clear()) {
                std::vector<float> left(kFrames), right(kFrames);
                for (int c = 0, n = 0; n < kFrames; n += calls[c++]) {
                    const float* inputs[kBinauralInputs];
                    for (int i = 0; i < kBinauralInputs; ++i) inputs[i] = heard(i, n) ? in[i].data() + n : nullptr;
                    convolver.process(inputs, calls[c], left.data() + n, right.data() + n);
                }
                double peak = 0, worst = 0;
                for (int n = 0; n < kFrames; ++n) {
                    peak = std::max(peak, std::abs(expected[2 * n]));
                    worst = std::max({worst, std::abs(left[n] - expected[2 * n]), std::abs(right[n] - expected[2 * n + 1])});
                }
                EXPECT_LE(worst, kTransformRounding * peak) << "maxBlock " << maxBlock << " calls " << pattern << " pass " << pass;
            }
        }
    }
}

// A pair's left speaker alone feeds its mid and side alike: its near ear hears mid + side, the far one mid - side.
double nearToFar(const HeadResponses& set, int pair) {
    double near = 0, far = 0;
    for (size_t t = 0; t < set.response[2 * pair].size(); ++t) {
        const double mid = set.response[2 * pair][t], side = set.response[2 * pair + 1][t];
        near += (mid + side) * (mid + side);
        far += (mid - side) * (mid - side);
    }
    return near / far;
}

bool blames(const HeadResponses& set, const std::string& file) { return set.problem.rfind("cannot read " + file + ": ", 0) == 0; }

struct HeadResponsesFiles : ::testing::Test {
    const std::filesystem::path dir =
        std::filesystem::path(::testing::TempDir()) / ("binaural-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    const std::string text = dir / "notes.sofa", cut = dir / "cut.sofa", missing = dir / "missing.sofa";
    void SetUp() override {
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir / "sorvane");
        std::ofstream(text) << "not responses\n";
        std::filesystem::copy_file(kDefaultHeadResponsesPath, cut);
        std::filesystem::resize_file(cut, 100000);  // a download cut short
        unsetenv("SORVANE_SOFA");
        setenv("XDG_CONFIG_HOME", dir.c_str(), 1);  // no user file unless a test puts one there
    }
};

TEST_F(HeadResponsesFiles, DefaultFileIsAHeadScaledToAUnitCentre) {
    const auto set = loadHeadResponses(48000);
    EXPECT_EQ(set->source, kDefaultHeadResponsesPath);
    EXPECT_EQ(set->problem, "");
    EXPECT_EQ(set->response[kCentreInput].size(), 512u);
    const std::vector<float>& centre = set->response[kCentreInput];
    EXPECT_NEAR(std::inner_product(centre.begin(), centre.end(), centre.begin(), 0.0), 1, kTransformRounding);
    for (int p = 0; p < kPairCount; ++p) EXPECT_GT(nearToFar(*set, p), 2) << kPairDegrees[p];
    EXPECT_EQ(loadHeadResponses(48000), set);  // cached
    EXPECT_EQ(loadHeadResponses(44100)->response[0].size(), 470u);
}

TEST_F(HeadResponsesFiles, UnusableFilesFallBackKeepingTheFirstProblem) {
    for (const std::string& bad : {text, cut, missing}) {
        const auto set = loadHeadResponses(48000, bad);
        EXPECT_EQ(set->source, kDefaultHeadResponsesPath);
        EXPECT_TRUE(blames(*set, bad)) << set->problem;
    }
    setenv("SORVANE_SOFA", cut.c_str(), 1);
    EXPECT_TRUE(blames(*loadHeadResponses(48000, text), text));
    EXPECT_TRUE(blames(*loadHeadResponses(48000), cut));
    // A file rewritten is read again; the user's file comes before the default.
    std::filesystem::copy_file(kDefaultHeadResponsesPath, text, std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(loadHeadResponses(48000, text)->source, text);
    unsetenv("SORVANE_SOFA");
    std::filesystem::copy_file(text, dir / "sorvane" / "hrtf.sofa");
    EXPECT_EQ(loadHeadResponses(48000)->source, dir / "sorvane" / "hrtf.sofa");
}

TEST_F(HeadResponsesFiles, NoUsableFileGivesConstantPowerPanning) {
    setenv("SORVANE_SOFA", cut.c_str(), 1);
    // No file can be resampled to 1 kHz, not even the default; no rate at all reads no file.
    for (const auto& set : {loadHeadResponses(1000, text), loadHeadResponses(0, text)}) {
        EXPECT_EQ(set->source, "");
        EXPECT_NE(set->problem, "");
        EXPECT_FLOAT_EQ(set->response[kCentreInput].at(0), 1.0f);  // as loud as a file's centre
        for (int p = 0; p < kPairCount; ++p) {
            const double mid = set->response[2 * p].at(0), side = set->response[2 * p + 1].at(0);
            EXPECT_NEAR((mid + side) * (mid + side) + (mid - side) * (mid - side), 2, kTransformRounding);  // constant power
            EXPECT_GT(mid + side, mid - side);
        }
    }
    EXPECT_TRUE(blames(*loadHeadResponses(1000, text), text));
}

}  // namespace
