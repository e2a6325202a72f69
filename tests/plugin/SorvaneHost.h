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
#include "SorvaneProtocol.h"

namespace sorvane_test {

// Values of kDecodeMode that select each layout.
constexpr float kStereo = sorvane::layoutValue(sorvane::kStereoLayout);
constexpr float kTwoOne = sorvane::layoutValue(sorvane::kTwoOneLayout);
constexpr float kQuad = sorvane::layoutValue(sorvane::kQuadLayout);
constexpr float kFive = sorvane::layoutValue(sorvane::kFiveLayout);
constexpr float kFiveOne = sorvane::layoutValue(sorvane::kFiveOneLayout);

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
