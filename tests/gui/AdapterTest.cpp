// The editor adapter as a host reaches it: through a test effect's AEffect
// record and dispatcher. A probe editor builds a small off-screen frame the
// way the product's editor does (frame made in open, one forget at close).
#include <gtest/gtest.h>

#include "Tolerances.h"

#include <utility>
#include <vector>

#include "AEffGUIEditor.h"
#include "AudioEffectX.h"
#include "CAnimKnob.h"
#include "CFrame.h"
#include "VstAbi.h"

namespace {

std::vector<std::pair<VstInt32, VstInt32>> hostCalls;  // opcode, index

VstIntPtr recordingHost(AEffect*, VstInt32 opcode, VstInt32 index, VstIntPtr, void*, float) {
    hostCalls.push_back({opcode, index});
    return opcode == audioMasterVersion ? 2400 : 1;
}

class ProbeEffect : public AudioEffectX {
public:
    ProbeEffect() : AudioEffectX(recordingHost, 1, 20) {}
    void processReplacing(float**, float**, VstInt32) override {}
};

class KeyTaker : public CView {
public:
    using CView::CView;
    int32_t onKeyDown(CKeyCode& key) override { return key.character == 'k' ? 1 : -1; }
};

class ProbeEditor : public AEffGUIEditor {
public:
    // Registered as the effect's editor; a control's edit brackets go to the effect, as the product's do.
    explicit ProbeEditor(AudioEffect* effect) : effect(effect) {
        rect = {0, 0, 502, 578};
        effect->setEditor(this);
    }
    bool beginEdit(int32_t index) override { return effect->beginEdit(index); }
    bool endEdit(int32_t index) override { return effect->endEdit(index); }
    bool open(void* ptr) override {
        auto* newFrame = new CFrame(CRect(0, 0, 578, 502), ptr, this);
        knob = new CAnimKnob(CRect(24, 50, 88, 114), nullptr, 3, 281, 64, nullptr);
        for (CView* view : std::initializer_list<CView*>{knob, new KeyTaker(CRect(200, 200, 300, 300))}) {
            newFrame->addView(view);
            newFrame->remember();
            view->forget();
        }
        frame = newFrame;
        return true;
    }
    void doIdleStuff() override {
        ++idles;
        idle();  // a nested idle must not run again
        AEffGUIEditor::doIdleStuff();
    }
    AudioEffect* effect;
    CAnimKnob* knob = nullptr;
    int idles = 0;
};

class Adapter : public ::testing::Test {
protected:
    void SetUp() override {
        hostCalls.clear();
        effect = new ProbeEffect();
        editor = new ProbeEditor(effect);
        record = effect->getAeffect();
    }
    void TearDown() override { delete effect; }  // deletes the editor with it
    VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0) {
        return record->dispatcher(record, opcode, index, value, ptr, opt);
    }

    ProbeEffect* effect = nullptr;
    ProbeEditor* editor = nullptr;
    AEffect* record = nullptr;
};

}  // namespace

TEST_F(Adapter, RegistersReportsItsRectangleAndOpensIdlesAndClosesTheFrame) {
    EXPECT_TRUE(record->flags & effFlagsHasEditor);
    ERect* rect = nullptr;
    EXPECT_EQ(dispatch(effEditGetRect, 0, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->right - rect->left, 578);
    EXPECT_EQ(rect->bottom - rect->top, 502);
    EXPECT_EQ(dispatch(effSetEditKnobMode, 0, 2), 1) << "every knob mode is taken";
    EXPECT_FALSE(editor->isOpen());
    dispatch(effEditIdle);
    EXPECT_EQ(editor->idles, 1) << "idle without a frame is harmless";
    EXPECT_EQ(dispatch(effEditOpen), 1);
    EXPECT_TRUE(editor->isOpen());
    EXPECT_NE(editor->getFrame(), nullptr);
    dispatch(effEditIdle);
    EXPECT_EQ(editor->idles, 2) << "the nested idle was refused";
    dispatch(effEditClose);
    EXPECT_FALSE(editor->isOpen());
    EXPECT_EQ(editor->getFrame(), nullptr);
    EXPECT_EQ(dispatch(effEditOpen), 1) << "reopening builds anew";
    EXPECT_TRUE(editor->isOpen());
}

TEST_F(Adapter, ControlGesturesReachTheHostAsOneEdit) {
    dispatch(effEditOpen);
    CFrame* frame = editor->getFrame();
    CPoint press(50, 100), up(50, 80);
    frame->onMouseDown(press, kLButton);
    frame->onMouseMoved(up, kLButton);
    frame->onMouseUp(up, 0);
    EXPECT_NEAR(editor->knob->getValue(), 0.1f, kFloatRounding);
    std::erase_if(hostCalls,
                  [](auto call) { return call.first != audioMasterBeginEdit && call.first != audioMasterEndEdit; });
    EXPECT_EQ(hostCalls, (decltype(hostCalls){{audioMasterBeginEdit, 3}, {audioMasterEndEdit, 3}}));
}

TEST_F(Adapter, KeysAndWheelGoToTheViewUnderThePointer) {
    VstKeyCode key{};
    EXPECT_FALSE(editor->onKeyDown(key)) << "closed: the host keeps its keys";
    EXPECT_FALSE(editor->onWheel(1.0f));
    dispatch(effEditOpen);
    CFrame* frame = editor->getFrame();
    CPoint overKeys(250, 250);
    frame->onMouseMoved(overKeys, 0);
    EXPECT_EQ(dispatch(effEditKeyDown, 'k'), 1);
    EXPECT_EQ(dispatch(effEditKeyDown, 'x'), 0);
    CPoint overKnob(40, 60);
    frame->onMouseMoved(overKnob, 0);
    EXPECT_EQ(dispatch(effEditKeyDown, 'k'), 0);
    EXPECT_TRUE(editor->onWheel(2.0f));
    EXPECT_NEAR(editor->knob->getValue(), 0.1f, kFloatRounding);
}
