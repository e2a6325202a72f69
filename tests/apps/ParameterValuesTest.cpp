// Values typed in the units of a parameter's display, resolved through a
// scratch instance of the plug-in, must land where the display says.
#include <gtest/gtest.h>

#include <memory>

#include "ParameterValues.h"
#include "Plugin.h"

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

TEST_F(ParameterValues, NumbersInDisplayUnits) {
    EXPECT_EQ(shown("Rotate=0"), "0.0\u00b0");
    EXPECT_EQ(last.value, 0.5f) << "zero rotation must be the exact middle";
    EXPECT_EQ(shown("Rotate=180"), "180.0\u00b0");
    EXPECT_EQ(shown("rotate=-37.5"), "-37.5\u00b0");
    EXPECT_EQ(shown("Width=30"), "30.0\u00b0");
    EXPECT_EQ(shown("Sur. Width=55°"), "55.0\u00b0");
    EXPECT_EQ(shown("Zoom=-100%"), "-100.0%");
    EXPECT_EQ(shown("Ctr. Gain=-18dB"), "-18.00dB");
    EXPECT_EQ(shown("Sub. Gain=6"), "6.00dB");
    EXPECT_EQ(shown("Sub. Xover=120Hz"), "120Hz");
    EXPECT_EQ(shown("Sub. Xover=20"), "20Hz");
    EXPECT_EQ(shown("HiVerb=-36"), "-36.00dB");
}

TEST_F(ParameterValues, WordsTheDisplayShows) {
    EXPECT_EQ(shown("Zoom Method=Push"), "Push");
    EXPECT_EQ(shown("Pattern=cardioid"), "Cardioid");
    EXPECT_EQ(last.value, 0.5f);
    EXPECT_EQ(shown("Pattern=Omni"), "Omni.");
    EXPECT_EQ(shown("RearVerb=Off"), "Off");
    EXPECT_EQ(last.value, 0.0f);
    EXPECT_EQ(shown("Dec. Mode=Quad"), "Quad");
    EXPECT_EQ(shown("Ch. Order=Natural"), "Natural");
    // The front pair's parameter is named after its value.
    EXPECT_EQ(shown("XY=MS"), "MS");
    EXPECT_EQ(shown("MS=XY"), "XY");
}

TEST_F(ParameterValues, NormalisedAndByNumber) {
    EXPECT_EQ(shown("Width=0.25n"), "22.5\u00b0");
    EXPECT_EQ(last.value, 0.25f);
    EXPECT_EQ(shown("6=1n"), "90.0\u00b0");
}

TEST_F(ParameterValues, RefusalsExplainThemselves) {
    EXPECT_NE(shown("Width=91").find("out of range (0 to 90"), std::string::npos) << shown("Width=91");
    EXPECT_NE(shown("Zoom=-101").find("out of range"), std::string::npos);
    EXPECT_NE(shown("Pattern=Shotgun").find("\"Fig-of-8\""), std::string::npos) << shown("Pattern=Shotgun");
    EXPECT_NE(shown("Width=-0.1n").find("between 0 and 1"), std::string::npos);
    EXPECT_NE(shown("Nope=1").find("Sur. Gain"), std::string::npos);
    EXPECT_NE(shown("Width").find("NAME=VALUE"), std::string::npos);
}
