// Names, labels and display texts of the twenty parameters, at the bounds
// where their conversions switch, as a host reads them.
#include <cstring>

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
};
}  // namespace

TEST_F(SorvaneTest, NamesLabelsAndDisplaysAfterConstruction) {
    for (VstInt32 i = 0; i < kNumParams; ++i) {
        EXPECT_EQ(fx().parameterName(i), kInitial[i].name) << i;
        EXPECT_EQ(fx().parameterLabel(i), kInitial[i].label) << i;
        EXPECT_EQ(fx().parameterDisplay(i), kInitial[i].display) << i;
    }
}

TEST_F(SorvaneTest, StoredValuesAfterConstruction) {
    // Everything but the three widths and the crossover checked bit by bit below.
    for (VstInt32 i = 0; i < kNumParams; ++i) {
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
    float value;
    const char* text;
};
const float kWidth30 = floatFromBits(0x3EAAAAAB), kWidth55 = floatFromBits(0x3F1C71C7);
const Shown kShown[] = {
    {kRotate, 0.0f, "180.0°"},
    {kRotate, 1.0f, "-180.0°"},
    {kTilt, 0.25f, "90.0°"},
    {kTumble, 0.5f, "0.0°"},
    {kZoom, 0.0f, "-100.0%"},
    {kZoom, 1.0f, "100.0%"},
    {kFrontWidth, kWidth30, "30.0°"},
    {kSurroundWidth, kWidth55, "55.0°"},
    {kFrontWidth, 2.0f, "180.0°"},
    {kZoomMethod, 0.0f, "Dominance"},
    {kZoomMethod, 0.2f, "Dominance"},
    {kZoomMethod, 0.21f, "Press"},
    {kZoomMethod, 0.5f, "Press"},
    {kZoomMethod, 0.51f, "Push"},
    {kZoomMethod, 0.8f, "Push"},
    {kZoomMethod, 0.81f, "Focus"},
    {kZoomMethod, 1.0f, "Focus"},
    {kZoomMethod, -3.0f, "Dominance"},
    {kZoomMethod, 0.3f, "Press"},
    {kZoomMethod, 1.5f, "Press"},
    {kFrontMode, 0.7f, "MS"},
    {kFrontMode, 0.5f, "XY"},
    {kSurroundMode, 0.51f, "MS"},
    {kFrontPattern, 0.0f, "Fig-of-8"},
    {kFrontPattern, 0.125f, "Fig-of-8"},
    {kCentrePattern, 0.126f, "Hyper-Card."},
    {kSurroundPattern, 0.375f, "Hyper-Card."},
    {kFrontPattern, 0.376f, "Cardioid"},
    {kCentrePattern, 0.625f, "Cardioid"},
    {kSurroundPattern, 0.626f, "Sub-Card."},
    {kFrontPattern, 0.875f, "Sub-Card."},
    {kCentrePattern, 0.876f, "Omni."},
    {kSurroundPattern, 1.0f, "Omni."},
    // Ambience is off at exactly 0 and wherever the level falls below the switch.
    {kRearVerb, 0.0f, "Off"},
    {kHiVerb, -0.0f, "Off"},
    {kRearVerb, 1e-7f, "-36.00dB"},
    {kHiVerb, 0.5f, "-18.00dB"},
    {kRearVerb, 1.0f, "0.00dB"},
    {kHiVerb, -0.5f, "Off"},
    {kCentreGain, 0.0f, "-18.00dB"},
    {kSubGain, 0.75f, "0.00dB"},
    {kSurroundGain, 1.0f, "6.00dB"},
    // In double precision 0.45, 0.7 and 0.9 would truncate one hertz lower.
    {kSubCrossover, floatFromBits(0x3EE8BA2F), "120Hz"},
    {kSubCrossover, 0.0f, "20Hz"},
    {kSubCrossover, 1.0f, "240Hz"},
    {kSubCrossover, 0.45f, "119Hz"},
    {kSubCrossover, 0.7f, "174Hz"},
    {kSubCrossover, 0.9f, "218Hz"},
    {kChannelOrder, 0.5f, "Natural"},
    {kChannelOrder, 0.51f, "5.1"},
    {kDecodeMode, 0.125f, "Stereo"},
    {kDecodeMode, 0.126f, "2.1"},
    {kDecodeMode, 0.375f, "2.1"},
    {kDecodeMode, 0.376f, "Quad"},
    {kDecodeMode, 0.625f, "Quad"},
    {kDecodeMode, 0.626f, "5.0"},
    {kDecodeMode, 0.875f, "5.0"},
    {kDecodeMode, 0.9f, "5.1"},
    {kDecodeMode, 2.0f, "5.1"},
    {kDecodeMode, 0.0f, "Stereo"},
    {kDecodeMode, 0.0f, "Stereo"},
};

}  // namespace

TEST_F(SorvaneTest, DisplaysFollowEachConversionToItsBounds) {
    int updates = fx().displayUpdates();
    for (const Shown& shown : kShown) {
        fx().setParameter(shown.index, shown.value);
        EXPECT_EQ(fx().parameterDisplay(shown.index), shown.text) << shown.index << " at " << shown.value;
        // Every layout change asks the host to refresh, also one to the same layout.
        if (shown.index == kDecodeMode) ++updates;
        EXPECT_EQ(fx().displayUpdates(), updates) << shown.index << " at " << shown.value;
    }
    // The front pair is named after its mode; the surround mode keeps its name.
    fx().setParameter(kFrontMode, 0.7f);
    EXPECT_EQ(fx().parameterName(kFrontMode), "MS");
    EXPECT_EQ(fx().parameterName(kSurroundMode), "Sur. Mode");
    EXPECT_EQ(fx().getParameter(kZoomMethod), 1.5f) << "the stored value is kept as given";
}

TEST_F(SorvaneTest, IndicesOutsideTheRangeWriteNothingAndChangeNothing) {
    for (VstInt32 index : {-1, 20, 100, 103}) {
        for (VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
            char text[64];
            std::memset(text, '#', sizeof text);
            fx().dispatch(opcode, index, 0, text);
            EXPECT_EQ(text[0], '#') << index << " " << opcode;
        }
        fx().setParameter(index, 0.9f);
    }
    for (VstInt32 i = 0; i < kNumParams; ++i) EXPECT_EQ(fx().parameterDisplay(i), kInitial[i].display);
}
