// Names, labels and display texts of the twenty parameters, at the bounds
// where their conversions switch, as a host reads them.
#include <cstring>

#include "SorvaneHost.h"

using namespace sorvane_test;

namespace {
const std::string kDeg = "\u00B0";

struct Texts {
    const char* name;
    const char* label;
    const char* display;  // after construction (program 0 loaded)
};

const Texts kInitial[kNumParams] = {
    {"Rotate", "Degrees", "0.0°"},         {"Tilt", "Degrees", "0.0°"},
    {"Tumble", "Degrees", "0.0°"},         {"Zoom", "Percentage", "0.0%"},
    {"Zoom Method", "Selection", "Dominance"}, {"XY", "Microphones", "XY"},
    {"Width", "Degrees", "30.0°"},         {"Pattern", "Omni", "Cardioid"},
    {"RearVerb", "dB", "Off"},             {"HiVerb", "dB", "Off"},
    {"Ctr. Pattern", "Omni", "Cardioid"},  {"Ctr. Gain", "dB", "0.00dB"},
    {"Sub. Gain", "dB", "0.00dB"},         {"Sub. Xover", "Hz", "120Hz"},
    {"Sur. Mode", "Microphones", "XY"},    {"Sur. Pattern", "Omni", "Cardioid"},
    {"Sur. Width", "Degrees", "60.0°"},    {"Sur. Gain", "dB", "0.00dB"},
    {"Dec. Mode", "Speakers", "Stereo"},   {"Ch. Order", "Output", "5.1"},
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

TEST_F(SorvaneTest, GetParameterGivesBackTheValueUnchanged) {
    for (float v : {0.0f, 0.1234567f, 1.0f, 1.5f, -0.25f}) {
        fx().setParameter(kZoom, v);
        EXPECT_EQ(bitsOf(fx().getParameter(kZoom)), bitsOf(v));
    }
}

TEST_F(SorvaneTest, AnglesCountFromPlusToMinus180WithAnExactCentre) {
    fx().setParameter(kRotate, 0.0f);
    EXPECT_EQ(fx().parameterDisplay(kRotate), "180.0" + kDeg);
    fx().setParameter(kRotate, 1.0f);
    EXPECT_EQ(fx().parameterDisplay(kRotate), "-180.0" + kDeg);
    fx().setParameter(kTilt, 0.25f);
    EXPECT_EQ(fx().parameterDisplay(kTilt), "90.0" + kDeg);
    fx().setParameter(kTumble, 0.5f);
    EXPECT_EQ(fx().parameterDisplay(kTumble), "0.0" + kDeg);
    // The degree sign is UTF-8, two bytes.
    const std::string text = fx().parameterDisplay(kRotate);
    EXPECT_EQ(text.substr(text.size() - 2), std::string("\xC2\xB0"));
}

TEST_F(SorvaneTest, ZoomAndWidthsScaleWithoutClamping) {
    fx().setParameter(kZoom, 0.0f);
    EXPECT_EQ(fx().parameterDisplay(kZoom), "-100.0%");
    fx().setParameter(kZoom, 1.0f);
    EXPECT_EQ(fx().parameterDisplay(kZoom), "100.0%");
    fx().setParameter(kFrontWidth, floatFromBits(0x3EAAAAAB));
    EXPECT_EQ(fx().parameterDisplay(kFrontWidth), "30.0" + kDeg);
    fx().setParameter(kSurroundWidth, floatFromBits(0x3F1C71C7));
    EXPECT_EQ(fx().parameterDisplay(kSurroundWidth), "55.0" + kDeg);
    fx().setParameter(kFrontWidth, 2.0f);
    EXPECT_EQ(fx().parameterDisplay(kFrontWidth), "180.0" + kDeg);
}

TEST_F(SorvaneTest, ZoomMethodBoundsInSinglePrecision) {
    const std::pair<float, const char*> cases[] = {
        {0.0f, "Dominance"}, {0.2f, "Dominance"}, {0.21f, "Press"}, {0.5f, "Press"},
        {0.51f, "Push"},     {0.8f, "Push"},      {0.81f, "Focus"}, {1.0f, "Focus"},
        {-3.0f, "Dominance"}};
    for (auto [v, word] : cases) {
        fx().setParameter(kZoomMethod, v);
        EXPECT_EQ(fx().parameterDisplay(kZoomMethod), word) << v;
    }
    // Above 1.0 the method stays as it was.
    fx().setParameter(kZoomMethod, 0.3f);
    fx().setParameter(kZoomMethod, 1.5f);
    EXPECT_EQ(fx().parameterDisplay(kZoomMethod), "Press");
    EXPECT_EQ(fx().getParameter(kZoomMethod), 1.5f);
}

TEST_F(SorvaneTest, FrontModeNamesItself) {
    fx().setParameter(kFrontMode, 0.7f);
    EXPECT_EQ(fx().parameterName(kFrontMode), "MS");
    EXPECT_EQ(fx().parameterDisplay(kFrontMode), "MS");
    fx().setParameter(kFrontMode, 0.5f);
    EXPECT_EQ(fx().parameterName(kFrontMode), "XY");
    fx().setParameter(kFrontMode, 0.3f);
    EXPECT_EQ(fx().parameterName(kFrontMode), "XY");
    // The surround mode keeps its fixed name.
    fx().setParameter(kSurroundMode, 0.51f);
    EXPECT_EQ(fx().parameterName(kSurroundMode), "Sur. Mode");
    EXPECT_EQ(fx().parameterDisplay(kSurroundMode), "MS");
}

TEST_F(SorvaneTest, PatternWords) {
    const std::pair<float, const char*> cases[] = {
        {0.0f, "Fig-of-8"},    {0.125f, "Fig-of-8"},  {0.126f, "Hyper-Card."},
        {0.375f, "Hyper-Card."}, {0.376f, "Cardioid"}, {0.625f, "Cardioid"},
        {0.626f, "Sub-Card."}, {0.875f, "Sub-Card."}, {0.876f, "Omni."},
        {1.0f, "Omni."}};
    for (VstInt32 index : {kFrontPattern, kCentrePattern, kSurroundPattern})
        for (auto [v, word] : cases) {
            fx().setParameter(index, v);
            EXPECT_EQ(fx().parameterDisplay(index), word) << index << " " << v;
        }
}

TEST_F(SorvaneTest, AmbienceIsOffOnlyAtExactlyZero) {
    for (VstInt32 index : {kRearVerb, kHiVerb}) {
        fx().setParameter(index, 0.0f);
        EXPECT_EQ(fx().parameterDisplay(index), "Off");
        fx().setParameter(index, -0.0f);
        EXPECT_EQ(fx().parameterDisplay(index), "Off");
        fx().setParameter(index, 1e-7f);
        EXPECT_EQ(fx().parameterDisplay(index), "-36.00dB");
        fx().setParameter(index, 0.5f);
        EXPECT_EQ(fx().parameterDisplay(index), "-18.00dB");
        fx().setParameter(index, 1.0f);
        EXPECT_EQ(fx().parameterDisplay(index), "0.00dB");
        // Below the switch-off level a value shows "Off" though it is not 0.
        fx().setParameter(index, -0.5f);
        EXPECT_EQ(fx().parameterDisplay(index), "Off");
    }
}

TEST_F(SorvaneTest, GainsSpanMinus18To6dB) {
    for (VstInt32 index : {kCentreGain, kSubGain, kSurroundGain}) {
        fx().setParameter(index, 0.0f);
        EXPECT_EQ(fx().parameterDisplay(index), "-18.00dB");
        fx().setParameter(index, 0.75f);
        EXPECT_EQ(fx().parameterDisplay(index), "0.00dB");
        fx().setParameter(index, 1.0f);
        EXPECT_EQ(fx().parameterDisplay(index), "6.00dB");
    }
}

TEST_F(SorvaneTest, CrossoverIsWholeHertzComputedInSinglePrecision) {
    const std::pair<float, const char*> cases[] = {
        {floatFromBits(0x3EE8BA2F), "120Hz"}, {0.0f, "20Hz"}, {1.0f, "240Hz"},
        // In double precision these would truncate one hertz lower.
        {0.45f, "119Hz"}, {0.7f, "174Hz"}, {0.9f, "218Hz"}};
    for (auto [v, text] : cases) {
        fx().setParameter(kSubCrossover, v);
        EXPECT_EQ(fx().parameterDisplay(kSubCrossover), text) << v;
    }
}

TEST_F(SorvaneTest, LayoutBoundsAndDisplayUpdates) {
    const std::pair<float, const char*> cases[] = {
        {0.125f, "Stereo"}, {0.126f, "2.1"}, {0.375f, "2.1"}, {0.376f, "Quad"},
        {0.625f, "Quad"},   {0.626f, "5.0"}, {0.875f, "5.0"}, {0.9f, "5.1"},
        {2.0f, "5.1"},      {0.0f, "Stereo"}, {0.0f, "Stereo"}};
    int updates = fx().displayUpdates();
    for (auto [v, word] : cases) {
        fx().setParameter(kDecodeMode, v);
        EXPECT_EQ(fx().parameterDisplay(kDecodeMode), word) << v;
        // Every layout change asks the host to refresh, also one to the same layout.
        EXPECT_EQ(fx().displayUpdates(), ++updates) << v;
    }
    fx().setParameter(kRotate, 0.1f);
    EXPECT_EQ(fx().displayUpdates(), updates);
}

TEST_F(SorvaneTest, ChannelOrderWords) {
    fx().setParameter(kChannelOrder, 0.5f);
    EXPECT_EQ(fx().parameterDisplay(kChannelOrder), "Natural");
    fx().setParameter(kChannelOrder, 0.51f);
    EXPECT_EQ(fx().parameterDisplay(kChannelOrder), "5.1");
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
