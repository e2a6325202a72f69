// The five program tables, chosen by layout, edited live, renamed per layout.
#include "SorvaneHost.h"

using namespace sorvane_test;

namespace {
std::vector<float> allValues(vsthost::Plugin& fx) {
    std::vector<float> values;
    for (VstInt32 i = 0; i < kNumParams; ++i) values.push_back(fx.getParameter(i));
    return values;
}
}  // namespace

TEST_F(SorvaneTest, ProgramNamesOfEveryLayout) {
    const std::pair<float, std::vector<std::string>> layouts[] = {
        {kStereo,
         {"Stereo XY Microphones", "Stereo MS Microphones", "Stereo Blumlein Fig8s", "Stereo XY with 'Verb",
          "Stereo MS with 'Verb"}},
        {kTwoOne,
         {"2.1 XY Microphones", "2.1 MS Microphones", "2.1 Blumlein Fig8s", "2.1 XY with 'Verb", "2.1 MS with 'Verb"}},
        {kQuad,
         {"Quad XY Microphones", "Quad MS Microphones", "Quad Blumlein Fig8s", "Quad XY with MS", "Quad MS with XY"}},
        {kFive,
         {"5.0 XY Microphones", "5.0 MS Microphones", "5.0 Blumlein Fig8s", "5.0 Heller et. al. 1",
          "5.0 Heller et. al. 2"}},
        {kFiveOne,
         {"5.1 XY Microphones", "5.1 MS Microphones", "5.1 Blumlein Fig8s", "5.1 Heller et. al. 1",
          "5.1 Heller et. al. 2"}},
    };
    EXPECT_EQ(fx().programName(), "Stereo XY Microphones");
    EXPECT_EQ(fx().programNameIndexed(3), "Stereo XY with 'Verb");
    for (const auto& [layout, names] : layouts) {
        fx().setParameter(kDecodeMode, layout);
        for (VstInt32 i = 0; i < 5; ++i) {
            char text[64] = {};
            // The category is ignored and the answer is 1.
            EXPECT_EQ(fx().programNameIndexedAnswer(i, 7, text), 1);
            EXPECT_EQ(std::string(text), names[i]);
            fx().setProgram(i);
            EXPECT_EQ(fx().programName(), names[i]);
        }
    }
}

// What a program shows once loaded, in the layout it belongs to; a layout's
// programs leave the parameters of other layouts as they were.
TEST_F(SorvaneTest, ProgramsLoadTheirValues) {
    struct Loaded {
        float layout;
        VstInt32 program, index;
        const char* text;
    };
    const Loaded loaded[] = {
        {kStereo, 3, kRearVerb, "-9.00dB"},       {kStereo, 3, kHiVerb, "-27.00dB"},
        {kStereo, 3, kFrontWidth, "30.0°"},       {kStereo, 2, kFrontWidth, "45.0°"},
        {kStereo, 2, kFrontPattern, "Fig-of-8"},  {kStereo, 2, kRearVerb, "Off"},
        {kStereo, 4, kFrontMode, "MS"},           {kFive, 2, kCentrePattern, "Fig-of-8"},
        {kFive, 2, kCentreGain, "0.00dB"},        {kFive, 2, kSurroundWidth, "45.0°"},
        {kFive, 2, kSurroundPattern, "Fig-of-8"}, {kFiveOne, 1, kSurroundMode, "MS"},
        {kFiveOne, 1, kSurroundWidth, "55.0°"},   {kFiveOne, 1, kSubCrossover, "120Hz"},
        {kFiveOne, 1, kRearVerb, "-9.00dB"},  // left by the last stereo program
    };
    for (const Loaded& l : loaded) {
        fx().setParameter(kDecodeMode, l.layout);
        fx().setProgram(l.program);
        EXPECT_EQ(fx().parameterDisplay(l.index), l.text) << l.layout << " " << l.program << " " << l.index;
    }
}

TEST_F(SorvaneTest, EditsLandInTheCurrentProgramOnly) {
    fx().setParameter(kDecodeMode, kTwoOne);
    fx().setProgram(1);
    fx().setParameter(kFrontWidth, 0.8f);
    fx().setProgram(0);
    EXPECT_EQ(bitsOf(fx().getParameter(kFrontWidth)), 0x3EAAAAABu);
    fx().setProgram(1);
    EXPECT_EQ(fx().getParameter(kFrontWidth), 0.8f);
    EXPECT_EQ(fx().parameterDisplay(kFrontWidth), "72.0\u00B0");
    // The same program number of the stereo table kept its factory width.
    fx().setParameter(kDecodeMode, kStereo);
    EXPECT_EQ(fx().program(), 1);
    EXPECT_EQ(fx().parameterDisplay(kFrontWidth), "30.0\u00B0");
    // Transforms are not part of a program.
    fx().setParameter(kRotate, 0.25f);
    fx().setProgram(0);
    fx().setProgram(1);
    EXPECT_EQ(fx().getParameter(kRotate), 0.25f);
}

TEST_F(SorvaneTest, RenamingTouchesOneLayoutsProgram) {
    fx().setProgram(2);
    fx().setProgramName("My Blumlein");
    EXPECT_EQ(fx().programName(), "My Blumlein");
    fx().setParameter(kDecodeMode, kQuad);
    EXPECT_EQ(fx().programName(), "Quad Blumlein Fig8s");
    fx().setParameter(kDecodeMode, kFiveOne);
    EXPECT_EQ(fx().programName(), "5.1 Blumlein Fig8s");
    fx().setParameter(kDecodeMode, kStereo);
    EXPECT_EQ(fx().programName(), "My Blumlein");
    EXPECT_EQ(fx().programNameIndexed(1), "Stereo MS Microphones");
    // A name as long as the host's room (23 characters) is kept whole.
    const std::string longest(kVstMaxProgNameLen - 1, 'n');
    fx().setProgramName(longest);
    EXPECT_EQ(fx().programName(), longest);
}

TEST_F(SorvaneTest, LayoutChangeReloadsTheProgramNumberFromTheNewTable) {
    fx().setProgram(3);
    const auto stereoThree = allValues(fx());
    fx().setParameter(kDecodeMode, 0.6f);
    EXPECT_EQ(fx().program(), 3);
    EXPECT_EQ(fx().programName(), "Quad XY with MS");
    EXPECT_EQ(fx().parameterDisplay(kSurroundMode), "MS");
    EXPECT_EQ(fx().parameterDisplay(kSurroundWidth), "55.0\u00B0");
    // The factory leaves this program's surround pattern empty (zero).
    EXPECT_EQ(fx().parameterDisplay(kSurroundPattern), "Fig-of-8");
    // Back in stereo, program 3 is as it was: the quad load wrote into its own record.
    fx().setParameter(kDecodeMode, kStereo);
    auto again = allValues(fx());
    EXPECT_EQ(again[kRearVerb], stereoThree[kRearVerb]);
    EXPECT_EQ(again[kHiVerb], stereoThree[kHiVerb]);
    EXPECT_EQ(again[kFrontMode], stereoThree[kFrontMode]);
    EXPECT_EQ(again[kFrontWidth], stereoThree[kFrontWidth]);
    EXPECT_EQ(fx().programName(), "Stereo XY with 'Verb");
}

TEST_F(SorvaneTest, HellerProgramsSelectTheFixedDecoders) {
    fx().setParameter(kDecodeMode, kFiveOne);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 0.0f);
    fx().setParameter(kFrontWidth, 0.9f);
    fx().setParameter(kSurroundGain, 0.1f);
    fx().setParameter(kSubGain, 0.2f);
    fx().setParameter(kSubCrossover, 1.0f);
    fx().setProgram(4);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 2.0f);
    EXPECT_EQ(fx().parameterDisplay(kSubGain), "0.00dB");
    EXPECT_EQ(fx().parameterDisplay(kSubCrossover), "120Hz");
    EXPECT_EQ(fx().getParameter(kFrontWidth), 0.9f);
    EXPECT_EQ(fx().getParameter(kSurroundGain), 0.1f);
    fx().setProgram(3);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 1.0f);
    // Program 0 was current when the width was turned, so it kept the edit.
    fx().setProgram(0);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 0.0f);
    EXPECT_EQ(fx().getParameter(kFrontWidth), 0.9f);
    EXPECT_EQ(fx().getParameter(kSurroundGain), 0.1f);
}

TEST_F(SorvaneTest, FiveZeroHellerChangesNoParameter) {
    fx().setParameter(kDecodeMode, kFive);
    fx().setParameter(kCentreGain, 0.3f);
    fx().setParameter(kFrontPattern, 0.9f);
    const auto before = allValues(fx());
    const std::string displayBefore = fx().parameterDisplay(kCentreGain);
    fx().setProgram(3);
    EXPECT_EQ(allValues(fx()), before);
    EXPECT_EQ(fx().parameterDisplay(kCentreGain), displayBefore);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 1.0f);
    fx().setProgram(4);
    EXPECT_EQ(allValues(fx()), before);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 2.0f);
    // Numbers past the five programs select no decoder.
    fx().setProgram(fx().numPrograms());
    EXPECT_EQ(allValues(fx()), before);
    EXPECT_EQ(fx().getParameter(kFiveDecoderType), 2.0f);
}
