// Every dispatcher request a host may send, with the effect's answers.
#include <cstring>
#include <string>
#include <utility>

#include "SorvaneHost.h"

using namespace sorvane_test;

TEST_F(SorvaneTest, IdentityAnswers) {
    using Answer = std::pair<VstIntPtr, std::string>;
    auto answer = [&](VstInt32 opcode) {
        char text[256] = {};
        return Answer{fx().dispatch(opcode, 0, 0, text), text};
    };
    EXPECT_EQ(answer(effGetEffectName), Answer(1, "Sorvane"));
    EXPECT_EQ(answer(effGetVendorString), Answer(1, "Tamberlyn"));
    EXPECT_EQ(answer(effGetProductString), Answer(1, "Sorvane"));
    EXPECT_EQ(fx().vendorVersion(), 1000);
    EXPECT_EQ(fx().vstVersion(), 2400);
    EXPECT_EQ(fx().plugCategory(), 5);
    EXPECT_EQ(fx().identify(), 0x4E764566);  // "NvEf"
    EXPECT_EQ(fx().currentMidiProgram(), -1);
    EXPECT_EQ(fx().dispatch(effOpen), 0);
}

TEST_F(SorvaneTest, DeclinedRequestsAnswerZero) {
    EXPECT_EQ(fx().string2parameter(kRotate, "0.5"), false);
    EXPECT_EQ(fx().getParameter(kRotate), 0.5f);
    unsigned char properties[256] = {};
    EXPECT_EQ(fx().inputProperties(0, properties), 0);
    EXPECT_EQ(fx().outputProperties(0, properties), 0);
    EXPECT_EQ(fx().parameterProperties(0, properties), 0);
    EXPECT_EQ(fx().setBypass(true), 0);
    EXPECT_EQ(fx().tailSize(), 0);
    EXPECT_EQ(fx().numMidiInputChannels(), 0);
    EXPECT_EQ(fx().numMidiOutputChannels(), 0);
    for (const char* capability : {"receiveVstMidiEvent", "bypass", "sendVstEvents", "offline", ""})
        EXPECT_EQ(fx().canDo(capability), 0) << capability;
    // Double precision is offered by its own callback, not by this request.
    EXPECT_EQ(fx().setProcessPrecision(kVstProcessPrecision64), 0);
    EXPECT_EQ(fx().setProcessPrecision(kVstProcessPrecision32), 0);
    EXPECT_EQ(fx().getParameter(kBitMode), 32.0f);
}

// Any index may be automated; every other request we do not list is declined.
TEST_F(SorvaneTest, AutomatableIndicesAndUnlistedOpcodes) {
    for (VstInt32 index :
         std::initializer_list<VstInt32>{kRotate, kFrontPattern, kChannelOrder, kNumParams, kBitMode, -1})
        EXPECT_EQ(fx().dispatch(effCanBeAutomated, index), 1);
    for (VstInt32 opcode : {9,  16, 17, 18, 20, 21, 25, 28, 30, 31, 32, 36, 37, 38, 39, 40, 41, 43, 46,   50,
                            53, 54, 55, 57, 62, 64, 65, 66, 67, 68, 70, 71, 72, 73, 74, 75, 76, 80, 1000, -1})
        EXPECT_EQ(fx().dispatch(opcode, 1, 1, nullptr, 1.0f), 0) << "opcode " << opcode;
}

TEST_F(SorvaneTest, NullTextsAndRecordsAnswerZeroWithoutHarm) {
    for (VstInt32 opcode : {effSetProgramName, effGetProgramName, effGetParamLabel, effGetParamDisplay, effGetParamName,
                            effEditGetRect, effGetProgramNameIndexed, effGetInputProperties, effGetOutputProperties,
                            effSetSpeakerArrangement, effGetEffectName, effGetVendorString, effGetProductString,
                            effCanDo, effGetParameterProperties, effGetSpeakerArrangement})
        EXPECT_EQ(fx().dispatch(opcode, 0, 0, nullptr), 0) << "opcode " << opcode;
    // Only one of the two arrangement records given.
    vsthost::SpeakerArrangement arrangement(kSpeakerArr31Cine, 4);
    EXPECT_EQ(fx().dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(arrangement.get()), nullptr), 0);
    EXPECT_EQ(fx().dispatch(effSetSpeakerArrangement, 0, 0, arrangement.get()), 0);
    EXPECT_EQ(fx().programName(), "Stereo XY Microphones");
}

TEST_F(SorvaneTest, ClosedEditorGivesItsSizeAndIgnoresWindowRequests) {
    // No display is involved until the host opens the editor.
    ERect* rect = nullptr;
    ASSERT_EQ(fx().dispatch(effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->left, 0);
    EXPECT_EQ(rect->top, 0);
    EXPECT_EQ(rect->right - rect->left, 578);
    EXPECT_EQ(rect->bottom - rect->top, 502);
    EXPECT_EQ(fx().dispatch(effEditIdle), 0);
    EXPECT_EQ(fx().dispatch(effEditClose), 0);
    EXPECT_EQ(fx().editorKeyDown('a', VKEY_LEFT, MODIFIER_SHIFT), 0);
    EXPECT_EQ(fx().editorKeyUp('a', VKEY_LEFT, MODIFIER_SHIFT), 0);
    EXPECT_EQ(fx().setEditorKnobMode(2), 1);
    // Parameter changes and suspend/resume reach a closed editor harmlessly.
    fx().setParameter(kDecodeMode, kFiveOne);
    fx().suspend();
    fx().resume();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "5.1");
}

TEST_F(SorvaneTest, ProgramChangeBelowCountOnlyComparedAsSigned) {
    fx().setProgram(3);
    EXPECT_EQ(fx().program(), 3);
    fx().setProgram(5);
    EXPECT_EQ(fx().program(), 3);
    fx().setProgram(VstIntPtr(1) << 40);
    EXPECT_EQ(fx().program(), 3);
    EXPECT_EQ(fx().programName(), "Stereo XY with 'Verb");
    // A negative number is below the count: it becomes the program number,
    // names nothing and loads nothing.
    const float width = fx().getParameter(kFrontWidth);
    fx().setProgram(-1);
    EXPECT_EQ(fx().program(), -1);
    char name[64];
    std::memset(name, '#', sizeof name);
    fx().dispatch(effGetProgramName, 0, 0, name);
    EXPECT_EQ(name[0], '#');
    fx().setParameter(kFrontWidth, 0.9f);  // no record to edit, still applied
    EXPECT_EQ(fx().parameterDisplay(kFrontWidth), "81.0\u00B0");
    fx().setProgram(3);
    EXPECT_EQ(fx().getParameter(kFrontWidth), width);
}
