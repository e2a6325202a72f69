// Names, labels and display texts of the twenty parameters, at the bounds
// where their conversions switch, as a host reads them.
#include <cmath>
#include <utility>
#include <vector>

#include "SorvaneHost.h"

using namespace sorvane_test;

namespace {
struct Texts {
    const char* name;
    const char* label;
    const char* display;  // after construction (program 0 loaded)
};

const Texts kInitial[kNumParams] = {
    {"Rotate", "Degrees", "0.0°"},
    {"Tilt", "Degrees", "0.0°"},
    {"Tumble", "Degrees", "0.0°"},
    {"Zoom", "Percentage", "0.0%"},
    {"Zoom Method", "Selection", "Dominance"},
    {"XY", "Microphones", "XY"},
    {"Width", "Degrees", "30.0°"},
    {"Pattern", "Omni", "Cardioid"},
    {"RearVerb", "dB", "Off"},
    {"HiVerb", "dB", "Off"},
    {"Ctr. Pattern", "Omni", "Cardioid"},
    {"Ctr. Gain", "dB", "0.00dB"},
    {"Sub. Gain", "dB", "0.00dB"},
    {"Sub. Xover", "Hz", "120Hz"},
    {"Sur. Mode", "Microphones", "XY"},
    {"Sur. Pattern", "Omni", "Cardioid"},
    {"Sur. Width", "Degrees", "60.0°"},
    {"Sur. Gain", "dB", "0.00dB"},
    {"Dec. Mode", "Speakers", "Stereo"},
    {"Ch. Order", "Output", "5.1"},
    {"Input", "Format", "B-Format"},
    {"Smoothing", "Switch", "On"},
    {"Output", "Monitor", "Speakers"},
    {"Tracking", "Head", "Off"},
};
}  // namespace

TEST_F(SorvaneTest, TextsAndValuesAfterConstruction) {
    for (VstInt32 i = 0; i < kNumParams; ++i) {
        EXPECT_EQ(fx().parameterName(i), kInitial[i].name) << i;
        EXPECT_EQ(fx().parameterLabel(i), kInitial[i].label) << i;
        EXPECT_EQ(fx().parameterDisplay(i), kInitial[i].display) << i;
        // The three widths and the crossover are checked bit by bit below.
        if (i == kFrontWidth || i == kSubCrossover || i == kSurroundWidth) continue;
        EXPECT_EQ(fx().getParameter(i), sorvane::kParameters[i].defaultValue) << i;
    }
    // Program 0 brought its front width; the others are the initial values.
    EXPECT_EQ(bitsOf(fx().getParameter(kFrontWidth)), 0x3EAAAAABu);
    EXPECT_EQ(bitsOf(fx().getParameter(kSubCrossover)), 0x3EE8BA2Fu);
    EXPECT_EQ(bitsOf(fx().getParameter(kSurroundWidth)), 0x3F2AAAABu);
    EXPECT_EQ(fx().getParameter(kBitMode), 32.0f);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 0.0f);
}

namespace {

// What a host shows after each value, applied in order to one instance: the
// bounds where each conversion switches, in single precision as the effect
// computes them. Choices above 1 keep what they were.
struct Shown {
    VstInt32 index;
    std::vector<std::pair<float, const char*>> steps;  // value, text
};
const Shown kShown[] = {
    // The input dialect takes the nearest of its three positions (0, 0.5, 1).
    {kInput, {{0.24f, "B-Format"}, {0.26f, "AmbiX"}, {0.74f, "AmbiX"}, {0.76f, "N3D"}, {std::nanf(""), "B-Format"}}},
    {kRotate, {{0.0f, "180.0°"}, {1.0f, "-180.0°"}}},
    {kTilt, {{0.25f, "90.0°"}}},
    {kTumble, {{0.5f, "0.0°"}}},
    {kZoom, {{0.0f, "-100.0%"}, {1.0f, "100.0%"}}},
    {kFrontWidth, {{floatFromBits(0x3EAAAAAB), "30.0°"}, {2.0f, "180.0°"}}},
    {kSurroundWidth, {{floatFromBits(0x3F1C71C7), "55.0°"}}},
    {kZoomMethod,
     {{0.0f, "Dominance"},
      {0.2f, "Dominance"},
      {0.21f, "Press"},
      {0.5f, "Press"},
      {0.51f, "Push"},
      {0.8f, "Push"},
      {0.81f, "Focus"},
      {1.0f, "Focus"},
      {-3.0f, "Dominance"},
      {0.3f, "Press"},
      {1.5f, "Press"}}},
    {kFrontMode, {{0.7f, "MS"}, {0.5f, "XY"}}},
    {kSurroundMode, {{0.51f, "MS"}}},
    {kFrontPattern, {{0.0f, "Fig-of-8"}, {0.125f, "Fig-of-8"}, {0.376f, "Cardioid"}, {0.875f, "Sub-Card."}}},
    {kCentrePattern, {{0.126f, "Hyper-Card."}, {0.625f, "Cardioid"}, {0.876f, "Omni."}}},
    {kSurroundPattern, {{0.375f, "Hyper-Card."}, {0.626f, "Sub-Card."}, {1.0f, "Omni."}}},
    // Ambience is off at exactly 0 and wherever the level falls below the switch.
    {kRearVerb, {{0.0f, "Off"}, {1e-7f, "-36.00dB"}, {1.0f, "0.00dB"}}},
    {kHiVerb, {{-0.0f, "Off"}, {0.5f, "-18.00dB"}, {-0.5f, "Off"}}},
    {kCentreGain, {{0.0f, "-18.00dB"}}},
    {kSubGain, {{0.75f, "0.00dB"}}},
    {kSurroundGain, {{1.0f, "6.00dB"}}},
    // In double precision 0.45, 0.7 and 0.9 would truncate one hertz lower.
    {kSubCrossover,
     {{floatFromBits(0x3EE8BA2F), "120Hz"},
      {0.0f, "20Hz"},
      {1.0f, "240Hz"},
      {0.45f, "119Hz"},
      {0.7f, "174Hz"},
      {0.9f, "218Hz"}}},
    {kChannelOrder, {{0.5f, "Natural"}, {0.51f, "5.1"}}},
    // Last, as a new layout loads its table's program.
    {kDecodeMode,
     {{0.125f, "Stereo"},
      {0.126f, "2.1"},
      {0.375f, "2.1"},
      {0.376f, "Quad"},
      {0.625f, "Quad"},
      {0.626f, "5.0"},
      {0.875f, "5.0"},
      {0.9f, "5.1"},
      {2.0f, "5.1"},
      {0.0f, "Stereo"},
      {0.0f, "Stereo"}}},
};

}  // namespace

TEST_F(SorvaneTest, DisplaysFollowEachConversionToItsBounds) {
    int updates = fx().displayUpdates();
    for (const auto& [index, steps] : kShown)
        for (const auto& [value, text] : steps) {
            fx().setParameter(index, value);
            EXPECT_EQ(fx().parameterDisplay(index), text) << index << " at " << value;
            // Every layout change asks the host to refresh, also one to the same layout.
            if (index == kDecodeMode) ++updates;
            EXPECT_EQ(fx().displayUpdates(), updates) << index << " at " << value;
        }
    // The front pair is named after its mode; the surround mode keeps its name.
    fx().setParameter(kFrontMode, 0.7f);
    EXPECT_EQ(fx().parameterName(kFrontMode), "MS");
    EXPECT_EQ(fx().parameterName(kSurroundMode), "Sur. Mode");
    EXPECT_EQ(fx().getParameter(kZoomMethod), 1.5f) << "the stored value is kept as given";
}

TEST_F(SorvaneTest, IndicesOutsideTheRangeWriteNothingAndChangeNothing) {
    for (VstInt32 index : {-1, static_cast<VstInt32>(kNumParams), 100, 103}) {
        for (VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
            std::string text(64, '#');
            fx().dispatch(opcode, index, 0, text.data());
            EXPECT_EQ(text, std::string(64, '#')) << index << " " << opcode;
        }
        fx().setParameter(index, 0.9f);
    }
    for (VstInt32 i = 0; i < kNumParams; ++i) EXPECT_EQ(fx().parameterDisplay(i), kInitial[i].display);
}
