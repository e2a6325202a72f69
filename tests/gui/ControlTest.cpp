// Controls as the user drives them through the frame: values, the
// listener's calls, the edit brackets reaching the editor, and which switch
// position a click stands for.
#include <gtest/gtest.h>

#include "Tolerances.h"

#include "CAnimKnob.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "Probes.h"

namespace {

// No strips: what a gesture does to a value does not depend on the pictures.
class ControlsInAFrame : public ::testing::Test {
protected:
    ControlsInAFrame() {
        frame->addView(knob);
        frame->addView(modes);
    }
    ~ControlsInAFrame() override { forgetAll(knob, modes, frame); }
    void drag(double x, double fromY, double toY, CButtonState modifiers = 0) {
        CPoint p(x, fromY);
        frame->onMouseDown(p, kLButton | modifiers);
        for (double y = fromY; y != toY;) {
            y += toY > fromY ? 1 : -1;
            CPoint q(x, y);
            frame->onMouseMoved(q, kLButton | modifiers);
        }
        CPoint q(x, toY);
        frame->onMouseUp(q, modifiers);
    }
    void click(double x, double y) {
        CPoint p(x, y);
        frame->onMouseDown(p, kLButton);
        frame->onMouseUp(p, 0);
    }

    RecordingListener listener;
    RecordingEditor editor;
    CFrame* frame = new CFrame(CRect(0, 0, 578, 502), nullptr, &editor);
    CAnimKnob* knob = new CAnimKnob(CRect(24, 50, 88, 114), &listener, 6, 281, 64, nullptr);
    CHorizontalSwitch* modes = new CHorizontalSwitch(CRect(414, 188, 478, 252), &listener, 18, 5, 64, 5, nullptr);
};

}  // namespace

TEST_F(ControlsInAFrame, ValueIsClampedAndProgrammaticChangesAreNotReported) {
    for (auto [set, kept] : {std::pair{0.25f, 0.25f}, {1.5f, 1.0f}, {-3.0f, 0.0f}}) {
        knob->setValue(set);
        EXPECT_EQ(knob->getValue(), kept) << set;
    }
    EXPECT_TRUE(knob->isDirty());
    EXPECT_TRUE(listener.changes.empty()) << "setValue is the host's path, not the user's";
    knob->valueChanged();
    EXPECT_EQ(listener.changes, std::vector<CControl*>{knob});
}

TEST_F(ControlsInAFrame, DragUpRaisesTheKnobAndBracketsTheGesture) {
    knob->setValue(0.5f);
    drag(56, 100, 60);  // 40 pixels of a 200-pixel range
    EXPECT_NEAR(knob->getValue(), 0.7f, kPixelStepRounding);
    EXPECT_EQ(listener.changes.size(), 40u) << "one report per moved pixel";
    EXPECT_NEAR(listener.values.back(), 0.7f, kPixelStepRounding);
    EXPECT_EQ(listener.events, (std::vector<std::string>{"begin", "end"}));
    EXPECT_EQ(editor.edits, (std::vector<std::string>{"begin 6", "end 6"}));

    drag(56, 60, 200);  // far past the bottom: clamped at 0
    EXPECT_EQ(knob->getValue(), 0.0f);
}

TEST_F(ControlsInAFrame, WheelStepsTheKnobUnderThePointer) {
    knob->setValue(0.5f);
    CPoint over(40, 80);
    EXPECT_TRUE(frame->onWheel(over, 1.0f, 0));
    EXPECT_NEAR(knob->getValue(), 0.55f, kFloatRounding);
    EXPECT_TRUE(frame->onWheel(over, -2.0f, kShift));
    EXPECT_NEAR(knob->getValue(), 0.54f, kFloatRounding);
    EXPECT_EQ(listener.changes.size(), 2u);
    EXPECT_EQ(editor.edits.size(), 4u);
    CPoint nowhere(300, 480);
    EXPECT_FALSE(frame->onWheel(nowhere, 1.0f, 0));
}

TEST_F(ControlsInAFrame, ClickSelectsTheSwitchPositionUnderIt) {
    // Five columns of 12.8 pixels from x 414; each click reports once, in one edit.
    for (auto [x, position] : {std::pair{414.0, 0}, {426.7, 0}, {426.8, 1}, {453.5, 3}, {477.9, 4}}) {
        listener.changes.clear();
        editor.edits.clear();
        click(x, 220);
        EXPECT_FLOAT_EQ(modes->getValue(), position / 4.0f) << x;
        EXPECT_EQ(modes->getFrameIndex(), position) << x;
        EXPECT_EQ(listener.changes, std::vector<CControl*>{modes}) << x;
        EXPECT_EQ(editor.edits, (std::vector<std::string>{"begin 18", "end 18"})) << x;
    }
}

TEST_F(ControlsInAFrame, PressesFallThroughViewsThatDoNotTakeThem) {
    // A label lying over the knob (like the dimming overlays) does not block it.
    auto* overlay = new CTextLabel(CRect(0, 0, 578, 502), "Currently Suspended", nullptr, 1);
    frame->addView(overlay);
    overlay->forget();
    knob->setValue(0.5f);
    drag(56, 100, 90);
    EXPECT_NEAR(knob->getValue(), 0.55f, kPixelStepRounding);
    // A press outside every control is nobody's.
    CPoint empty(300, 480);
    EXPECT_EQ(frame->onMouseDown(empty, kLButton), kMouseEventNotHandled);
}

TEST_F(ControlsInAFrame, ListenerMayRemoveTheControlDuringItsReport) {
    struct Remover : CControlListener {
        void valueChanged(CControl* control) override { control->getFrame()->removeView(control, true); }
    } remover;
    auto* doomed = new CHorizontalSwitch(CRect(100, 400, 164, 464), &remover, 5, 2, 64, 2, nullptr);
    frame->addView(doomed);
    doomed->forget();
    click(150, 430);
    EXPECT_EQ(frame->getNbViews(), 2) << "removed, and released once the click was over";
}

TEST_F(ControlsInAFrame, ModifierClickCanBeTakenByTheListener) {
    struct Taker : RecordingListener {
        int32_t controlModifierClicked(CControl*, CButtonState) override { return 1; }
    } taker;
    knob->setListener(&taker);
    knob->setValue(0.5f);
    drag(56, 100, 60, kControl);
    EXPECT_EQ(knob->getValue(), 0.5f);
    EXPECT_TRUE(taker.changes.empty());
    drag(56, 100, 60, kShift);  // Shift alone is fine-tuning, ten times finer, not a modifier click
    EXPECT_NEAR(knob->getValue(), 0.52f, kPixelStepRounding);
}
