// Values typed in the units of a parameter's display, resolved through a
// scratch instance of the plug-in, must land where the display says.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "ParameterValues.h"
#include "Plugin.h"
#include "SorvaneProtocol.h"

using sorvane::kCentred;

namespace {

class ParameterValues : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        plugin = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
        probe = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
        ASSERT_TRUE(plugin && probe) << error;
    }

    // Resolves NAME=VALUE, applies it to the plug-in and reads its display back.
    std::string shown(const std::string& setting) {
        ParameterSetting s;
        std::string error;
        if (!parseSetting(*plugin, *probe, setting, s, error)) return "error: " + error;
        plugin->setParameter(s.index, s.value);
        last = s;
        return plugin->parameterDisplay(s.index);
    }

    std::unique_ptr<vsthost::Plugin> plugin, probe;
    ParameterSetting last;
};

}  // namespace

// NAME=VALUE as typed, and what the plug-in then shows: numbers in display
// units, the words the display shows (any case), normalised values and
// parameter numbers. The front pair's parameter is named after its value.
TEST_F(ParameterValues, ValuesLandWhereTheDisplaySays) {
    const std::pair<std::string, const char*> settings[] = {
        {"Rotate=180", "180.0°"},
        {"rotate=-37.5", "-37.5°"},
        {"Width=30", "30.0°"},
        {"Sur. Width=55°", "55.0°"},
        {"Zoom=-100%", "-100.0%"},
        {"Ctr. Gain=-18dB", "-18.00dB"},
        {"Sub. Gain=6", "6.00dB"},
        {"Sub. Xover=120Hz", "120Hz"},
        {"Sub. Xover=20", "20Hz"},
        {"HiVerb=-36", "-36.00dB"},
        {"Zoom Method=Push", "Push"},
        {"Pattern=Omni", "Omni."},
        {"Dec. Mode=Quad", "Quad"},
        {"Ch. Order=Natural", "Natural"},
        {"XY=MS", "MS"},
        {"MS=XY", "XY"},
        {"Width=0.25n", "22.5°"},
        {std::to_string(kFrontWidth) + "=1n", "90.0°"},
    };
    for (const auto& [setting, display] : settings) EXPECT_EQ(shown(setting), display) << setting;
    // Where the exact value matters: the middle, a pattern word, "Off".
    for (auto [setting, value] : {std::pair{"Rotate=0", kCentred},
                                  {"Pattern=cardioid", kCentred},
                                  {"RearVerb=Off", 0.0f},
                                  {"Width=0.25n", 0.25f}}) {
        shown(setting);
        EXPECT_EQ(last.value, value) << setting;
    }
}

// A number is taken as asked: no other value in 0 .. 1 gives an engine value
// nearer to it (the one the LV2 edition takes for the same number on a port).
TEST_F(ParameterValues, NumbersTakeTheNearestValue) {
    const struct {
        const char* setting;
        double asked;
    } asks[] = {{"Rotate=30", 30},         {"Zoom=12.3", 12.3f},  {"Width=33.3", 33.3f}, {"HiVerb=-20.7", -20.7f},
                {"Sub. Gain=-6.1", -6.1f}, {"Sub. Xover=99", 99}, {"Pattern=0.3", 0.3f}};
    for (const auto& ask : asks) {
        shown(ask.setting);
        const sorvane::Kind kind = sorvane::kParameters[last.index].kind;
        const auto field = [&](float v) {
            return kind == sorvane::Kind::Crossover ? sorvane::crossoverHz(v) : sorvane::realValue(kind, v);
        };
        const double miss = std::fabs(field(last.value) - ask.asked);
        for (float neighbour : {std::nextafter(last.value, 0.0f), std::nextafter(last.value, 1.0f)})
            EXPECT_LE(miss, std::fabs(field(neighbour) - ask.asked)) << ask.setting;
        EXPECT_LT(miss, 1e-4) << ask.setting;
    }
}

TEST_F(ParameterValues, RefusalsExplainThemselves) {
    const std::pair<const char*, const char*> refusals[] = {
        {"Width=91", "out of range (0 to 90"}, {"Zoom=-101", "out of range"}, {"Pattern=Shotgun", "\"Fig-of-8\""},
        {"Width=-0.1n", "between 0 and 1"},    {"Nope=1", "Sur. Gain"},       {"Width", "NAME=VALUE"},
    };
    for (auto [setting, reason] : refusals) EXPECT_NE(shown(setting).find(reason), std::string::npos) << shown(setting);
}
