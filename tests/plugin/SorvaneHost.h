// Loads the built Sorvane.so through the host library, as a DAW does, and
// holds the numbering a host knows the plug-in by.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <string>

#include "AudioBuffer.h"
#include "Plugin.h"

namespace sorvane_test {

enum Param : VstInt32 {
    kRotate, kTilt, kTumble, kZoom, kZoomMethod, kFrontMode, kFrontWidth, kFrontPattern,
    kRearVerb, kHiVerb, kCentrePattern, kCentreGain, kSubGain, kSubCrossover, kSurroundMode,
    kSurroundPattern, kSurroundWidth, kSurroundGain, kDecodeMode, kChannelOrder, kNumParams
};
constexpr VstInt32 kBitMode = 102;
constexpr VstInt32 kFiveDecoderType = 103;

// Values of kDecodeMode that select each layout.
constexpr float kStereo = 0.0f, kTwoOne = 0.25f, kQuad = 0.5f, kFive = 0.75f, kFiveOne = 1.0f;

inline float floatFromBits(std::uint32_t bits) { return std::bit_cast<float>(bits); }
inline std::uint32_t bitsOf(float value) { return std::bit_cast<std::uint32_t>(value); }

inline std::unique_ptr<vsthost::Plugin> loadSorvane() {
    std::string error;
    auto plugin = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    EXPECT_TRUE(plugin) << error;
    return plugin;
}

class SorvaneTest : public ::testing::Test {
protected:
    void SetUp() override {
        plugin = loadSorvane();
        ASSERT_TRUE(plugin);
    }
    vsthost::Plugin& fx() { return *plugin; }
    std::unique_ptr<vsthost::Plugin> plugin;
};

}  // namespace sorvane_test
