// The five program tables, chosen by layout, edited live, renamed per layout.
#include <tuple>

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
    // Three microphone programs in every layout, then two of each layout's own.
    const char* const shared[] = {" XY Microphones", " MS Microphones", " Blumlein Fig8s"};
    const std::tuple<float, std::string, std::string, std::string> layouts[] = {
        {kStereo, "Stereo", "Stereo XY with 'Verb", "Stereo MS with 'Verb"},
        {kTwoOne, "2.1", "2.1 XY with 'Verb", "2.1 MS with 'Verb"},
        {kQuad, "Quad", "Quad XY with MS", "Quad MS with XY"},
        {kFive, "5.0", "5.0 Heller et. al. 1", "5.0 Heller et. al. 2"},
        {kFiveOne, "5.1", "5.1 Heller et. al. 1", "5.1 Heller et. al. 2"},
    };
    EXPECT_EQ(fx().programName(), "Stereo XY Microphones");
    for (const auto& [layout, prefix, fourth, fifth] : layouts) {
        const std::string names[] = {prefix + shared[0], prefix + shared[1], prefix + shared[2], fourth, fifth};
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
    for (VstInt32 i : {kRearVerb, kHiVerb, kFrontMode, kFrontWidth})
        EXPECT_EQ(fx().getParameter(i), stereoThree[i]) << i;
    EXPECT_EQ(fx().programName(), "Stereo XY with 'Verb");
}

// Programs 3 and 4 of 5.0 and 5.1 select the fixed matrices and leave the
// microphones as they were; 5.1's also bring their sub's gain and crossover.
TEST_F(SorvaneTest, HellerProgramsSelectTheFixedDecoders) {
    for (float layout : {kFiveOne, kFive}) {
        SCOPED_TRACE(layout);
        fx().setParameter(kDecodeMode, layout);
        EXPECT_EQ(fx().getParameter(kFiveDecoderType), 0.0f);
        for (VstInt32 i : {kFrontWidth, kFrontPattern, kCentreGain, kSurroundGain, kSubGain, kSubCrossover})
            fx().setParameter(i, 0.05f * i);
        const auto edited = allValues(fx());
        auto expected = edited;
        for (VstInt32 program : {3, 4}) {
            fx().setProgram(program);
            EXPECT_EQ(fx().getParameter(kFiveDecoderType), program - 2.0f);
            if (layout == kFiveOne) {
                EXPECT_EQ(fx().parameterDisplay(kSubGain), "0.00dB");
                EXPECT_EQ(fx().parameterDisplay(kSubCrossover), "120Hz");
                expected[kSubGain] = fx().getParameter(kSubGain);
                expected[kSubCrossover] = fx().getParameter(kSubCrossover);
            }
            EXPECT_EQ(allValues(fx()), expected) << program;
        }
        // Numbers past the five programs select nothing.
        fx().setProgram(fx().numPrograms());
        EXPECT_EQ(allValues(fx()), expected);
        EXPECT_EQ(fx().getParameter(kFiveDecoderType), 2.0f);
        // Program 0 was current during the edits, so it kept them.
        fx().setProgram(0);
        EXPECT_EQ(fx().getParameter(kFiveDecoderType), 0.0f);
        EXPECT_EQ(allValues(fx()), edited);
    }
}
