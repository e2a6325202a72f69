// The effect paired with a probe editor in place of the real one: what the
// effect tells its editor, what the frame forwards from the host, and the
// editor's route back to the host. The effect is reached only through the
// exported entry and its record, as a host reaches it.
#include <gtest/gtest.h>

#include <vector>

#include "AEffEditor.h"
#include "AudioEffectX.h"
#include "EditorLink.h"
#include "SorvaneProtocol.h"

extern "C" AEffect* VSTPluginMain(audioMasterCallback audioMaster);

using namespace sorvane;

namespace {

struct Message {
    VstInt32 index;
    float value;
    bool operator==(const Message&) const = default;
};

struct ProbeLog {
    std::vector<Message> messages;
    VstKeyCode lastKey{};
    void* openedWith = nullptr;
    int idles = 0, closes = 0, knobMode = -1;
    bool destroyed = false;
    AudioEffectX* effect = nullptr;
} probe;

class ProbeEditor : public AEffEditor {
public:
    explicit ProbeEditor(AudioEffect* effect) : AEffEditor(effect) {}
    ~ProbeEditor() override { probe.destroyed = true; }
    bool getRect(ERect** r) override {
        *r = &rect;
        return true;
    }
    bool open(void* ptr) override {
        probe.openedWith = ptr;
        return true;
    }
    void close() override { ++probe.closes; }
    void idle() override { ++probe.idles; }
    bool onKeyDown(VstKeyCode& key) override {
        probe.lastKey = key;
        return true;
    }
    bool onKeyUp(VstKeyCode& key) override {
        probe.lastKey = key;
        return false;
    }
    bool setKnobMode(VstInt32 mode) override {
        probe.knobMode = mode;
        return true;
    }
    void setParameter(VstInt32 index, float value) override { probe.messages.push_back({index, value}); }

    ERect rect{0, 0, 502, 578};
};

struct HostLog {
    std::vector<Message> automation;
    std::vector<VstInt32> begins, ends;
    int displayUpdates = 0;
} host;

VstIntPtr hostCallback(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float opt) {
    switch (opcode) {
    case audioMasterVersion: return 2400;
    case audioMasterAutomate: host.automation.push_back({index, opt}); return 0;
    case audioMasterUpdateDisplay: ++host.displayUpdates; return 1;
    case audioMasterBeginEdit: host.begins.push_back(index); return 1;
    case audioMasterEndEdit: host.ends.push_back(index); return 1;
    default: return 0;
    }
}

class EditorMessages : public ::testing::Test {
protected:
    void SetUp() override {
        probe = ProbeLog{};
        host = HostLog{};
        effect = VSTPluginMain(hostCallback);
        ASSERT_NE(effect, nullptr);
    }
    void TearDown() override {
        if (effect) dispatch(effClose);
    }
    VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0) {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    AEffect* effect = nullptr;
};

}  // namespace

// The effect's constructor asks for its editor here.
AEffEditor* createEditor(AudioEffectX* effect, sorvane::EditorLink&) {
    probe.effect = effect;
    return new ProbeEditor(effect);
}

TEST_F(EditorMessages, ConstructionResumesThenLoadsProgramZeroIntoTheEditor) {
    EXPECT_EQ(effect->flags, 4657);
    const std::vector<Message> expected = {{kEditorResume, 0.0f}, {kFrontMode, 0.0f}, {kFrontWidth, 1.0f / 3.0f},
                                           {kFrontPattern, 0.5f}, {kRearVerb, 0.0f},  {kHiVerb, 0.0f}};
    EXPECT_EQ(probe.messages, expected);
    EXPECT_EQ(host.automation.size(), 0u);
}

// Raw values, parameter or not, and suspend and resume (greying the editor
// and restoring it) in the order they came.
TEST_F(EditorMessages, ChangesAndSuspendReachTheEditorAsTheyCome) {
    probe.messages.clear();
    effect->setParameter(effect, kRotate, 0.3f);
    effect->setParameter(effect, 150, 0.7f);  // no parameter
    dispatch(effMainsChanged, 0, 0);
    dispatch(effMainsChanged, 0, 1);
    effect->setParameter(effect, kZoom, 1.5f);
    const std::vector<Message> expected = {
        {kRotate, 0.3f}, {150, 0.7f}, {kEditorSuspend, 0.0f}, {kEditorResume, 0.0f}, {kZoom, 1.5f}};
    EXPECT_EQ(probe.messages, expected);
}

TEST_F(EditorMessages, FiveSpeakerProgramsTellTheEditorTheDecoderType) {
    effect->setParameter(effect, kDecodeMode, layoutValue(kFiveLayout));  // program 0 loaded
    probe.messages.clear();
    dispatch(effSetProgram, 0, 3);
    EXPECT_EQ(probe.messages, (std::vector<Message>{{kFiveDecoderType, fiveDecoderTypeMessage(kFixedMatrix1)}}));

    effect->setParameter(effect, kDecodeMode, layoutValue(kFiveOneLayout));  // reloads program 3
    probe.messages.clear();
    dispatch(effSetProgram, 0, 4);
    const std::vector<Message> expected = {{kSubGain, kUnityGain},
                                           {kSubCrossover, kDefaultCrossover},
                                           {kFiveDecoderType, fiveDecoderTypeMessage(kFixedMatrix2)}};
    EXPECT_EQ(probe.messages, expected);
    EXPECT_EQ(effect->getParameter(effect, kFiveDecoderType), kFixedMatrix2);
}

TEST_F(EditorMessages, LayoutChangeGoesToTheEditorBeforeTheNewProgram) {
    probe.messages.clear();
    effect->setParameter(effect, kDecodeMode, layoutValue(kQuadLayout));  // program 0
    ASSERT_GE(probe.messages.size(), 8u);
    EXPECT_EQ(probe.messages[0], (Message{kDecodeMode, layoutValue(kQuadLayout)}));
    const VstInt32 order[] = {kFrontMode,     kFrontWidth,      kFrontPattern, kSurroundMode,
                              kSurroundWidth, kSurroundPattern, kSurroundGain};  // width before pattern
    for (int i = 0; i < 7; ++i) EXPECT_EQ(probe.messages[1 + i].index, order[i]);
    EXPECT_EQ(host.displayUpdates, 1);
}

TEST_F(EditorMessages, UserChangesReachTheHostAsAutomation) {
    ASSERT_NE(probe.effect, nullptr);
    EXPECT_TRUE(probe.effect->beginEdit(kZoom));
    probe.effect->setParameterAutomated(kZoom, 0.25f);
    EXPECT_TRUE(probe.effect->endEdit(kZoom));
    EXPECT_EQ(host.automation, (std::vector<Message>{{kZoom, 0.25f}}));
    EXPECT_EQ(host.begins, (std::vector<VstInt32>{kZoom}));
    EXPECT_EQ(host.ends, (std::vector<VstInt32>{kZoom}));
    EXPECT_EQ(effect->getParameter(effect, kZoom), 0.25f);
    char text[64] = {};
    probe.effect->getParameterDisplay(kZoom, text);
    EXPECT_STREQ(text, "-50.0%");
    EXPECT_EQ(probe.effect->getParameter(kBitMode), 32.0f);
}

TEST_F(EditorMessages, TheFrameForwardsTheHostsEditorRequests) {
    ERect* rect = nullptr;
    EXPECT_EQ(dispatch(effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->right - rect->left, 578);
    EXPECT_EQ(rect->bottom - rect->top, 502);
    void* window = reinterpret_cast<void*>(0x4a00007);
    EXPECT_EQ(dispatch(effEditOpen, 0, 0, window), 1);
    EXPECT_EQ(probe.openedWith, window);
    dispatch(effEditIdle);
    dispatch(effEditIdle);
    EXPECT_EQ(probe.idles, 2);
    EXPECT_EQ(dispatch(effEditKeyDown, 'q', VKEY_LEFT, nullptr, 9.0f), 1);
    EXPECT_EQ(probe.lastKey.character, 'q');
    EXPECT_EQ(probe.lastKey.virt, VKEY_LEFT);
    EXPECT_EQ(probe.lastKey.modifier, MODIFIER_SHIFT | MODIFIER_CONTROL);
    EXPECT_EQ(dispatch(effEditKeyUp, 'r', VKEY_F1, nullptr, 2.0f), 0);
    EXPECT_EQ(probe.lastKey.character, 'r');
    EXPECT_EQ(probe.lastKey.virt, VKEY_F1);
    EXPECT_EQ(probe.lastKey.modifier, MODIFIER_ALTERNATE);
    EXPECT_EQ(dispatch(effSetEditKnobMode, 0, 2), 1);
    EXPECT_EQ(probe.knobMode, 2);
    EXPECT_EQ(dispatch(effEditClose), 0);
    EXPECT_EQ(probe.closes, 1);
    // The editor goes with the effect.
    EXPECT_EQ(dispatch(effClose), 1);
    effect = nullptr;
    EXPECT_TRUE(probe.destroyed);
}

TEST_F(EditorMessages, RestoredStateReachesTheEditorLayoutFirst) {
    effect->setParameter(effect, kDecodeMode, 1.0f);  // 5.1
    dispatch(effSetProgram, 0, 3);                    // its first fixed matrix
    effect->setParameter(effect, kRotate, 0.25f);
    void* data = nullptr;
    const VstIntPtr size = dispatch(effGetChunk, 0, 0, &data);
    ASSERT_GT(size, 0);
    std::vector<unsigned char> saved(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);
    effect->setParameter(effect, kDecodeMode, 0.0f);
    effect->setParameter(effect, kRotate, 0.5f);

    probe.messages.clear();
    EXPECT_EQ(dispatch(effSetChunk, 0, size, saved.data()), 1);
    ASSERT_EQ(probe.messages.size(), static_cast<std::size_t>(kNumParams + 1));
    EXPECT_EQ(probe.messages.front(), (Message{kDecodeMode, 1.0f}));
    EXPECT_EQ(probe.messages[1 + kRotate], (Message{kRotate, 0.25f}));
    EXPECT_EQ(probe.messages.back(), (Message{kFiveDecoderType, 0.5f}));
}
