// A host's threads at once: one processes audio while two others automate
// parameters and change programs. Nothing may crash or produce non-finite
// audio, and afterwards the effect holds the last values each thread set.
#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include "SorvaneHost.h"

using namespace sorvane_test;

TEST(Threads, AudioKeepsRunningWhileTwoThreadsAutomate) {
    auto plugin = loadSorvane();
    ASSERT_TRUE(plugin);
    plugin->setSampleRate(48000);
    plugin->setBlockSize(256);
    plugin->resume();

    std::atomic<bool> stop{false};
    std::atomic<long> blocks{0};
    std::atomic<bool> finite{true};
    std::thread audio([&] {
        vsthost::AudioBuffer<float> in(4, 256), out(6, 256);
        for (int c = 0; c < 4; ++c)
            for (int f = 0; f < 256; ++f) in[c][f] = 0.5f * std::sin(0.01f * f * (c + 1));
        std::vector<float*> ins(4), outs(6);
        while (!stop) {
            for (int c = 0; c < 4; ++c) ins[c] = in[c].data();
            for (int c = 0; c < 6; ++c) outs[c] = out[c].data();
            plugin->processFloatRaw(ins.data(), outs.data(), 256);
            for (int c = 0; c < 6; ++c)
                for (int f = 0; f < 256; ++f)
                    if (!std::isfinite(out[c][f])) finite = false;
            ++blocks;
        }
    });

    // Each automation thread owns its own parameters, so the last value of
    // each is known; one of them also changes layouts and programs.
    auto automate = [&](std::vector<VstInt32> params, unsigned seed, float* last, bool programs) {
        std::mt19937 rng(seed);
        std::uniform_real_distribution<float> value(0, 1);
        for (int i = 0; i < 400; ++i) {
            for (std::size_t k = 0; k < params.size(); ++k) plugin->setParameter(params[k], last[k] = value(rng));
            if (programs && i % 25 == 0) plugin->setProgram(i / 25 % 5);
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    };
    const std::vector<VstInt32> transforms = {kRotate, kTilt, kTumble, kZoom, kZoomMethod, kChannelOrder};
    const std::vector<VstInt32> layout = {kDecodeMode};
    std::vector<float> lastTransforms(transforms.size()), lastLayout(1);
    std::thread first(automate, transforms, 1u, lastTransforms.data(), false);
    std::thread second(automate, layout, 2u, lastLayout.data(), true);
    first.join();
    second.join();
    stop = true;
    audio.join();

    EXPECT_GT(blocks.load(), 10);
    EXPECT_TRUE(finite.load());
    for (std::size_t k = 0; k < transforms.size(); ++k)
        EXPECT_EQ(plugin->getParameter(transforms[k]), lastTransforms[k]);
    EXPECT_EQ(plugin->getParameter(kDecodeMode), lastLayout[0]);
}
