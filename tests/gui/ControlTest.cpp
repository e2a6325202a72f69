// Controls as the user drives them through the frame: values, the
// listener's calls, the edit brackets reaching the editor, and which strip
// frame or switch position a value or a click stands for.
#include <gtest/gtest.h>

#include "Tolerances.h"

#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "Probes.h"

namespace {

class ControlsInAFrame : public ::testing::Test {
protected:
    void SetUp() override {
        frame = new CFrame(CRect(0, 0, 578, 502), nullptr, &editor);
        strip = new CBitmap("red_knob.png");
        switchStrip = new CBitmap("mode5_knob.png");
        knob = new CAnimKnob(CRect(24, 50, 88, 114), &listener, 6, 281, strip->getHeight() / 281, strip);
        modes = new CHorizontalSwitch(CRect(414, 188, 478, 252), &listener, 18, 5, switchStrip->getHeight() / 5, 5,
                                      switchStrip);
        frame->addView(knob);
        frame->addView(modes);
    }
    void TearDown() override {
        knob->forget();
        modes->forget();
        strip->forget();
        switchStrip->forget();
        frame->forget();
    }
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
    CFrame* frame = nullptr;
    CBitmap* strip = nullptr;
    CBitmap* switchStrip = nullptr;
    CAnimKnob* knob = nullptr;
    CHorizontalSwitch* modes = nullptr;
};

}  // namespace

TEST(Controls, ValueIsClampedAndProgrammaticChangesAreNotReported) {
    RecordingListener listener;
    auto* control = new CControl(CRect(0, 0, 10, 10), &listener, 7);
    EXPECT_EQ(control->getTag(), 7);
    EXPECT_EQ(control->getValue(), 0.0f);
    control->setValue(0.25f);
    EXPECT_EQ(control->getValue(), 0.25f);
    EXPECT_TRUE(control->isDirty());
    control->setValue(1.5f);
    EXPECT_EQ(control->getValue(), 1.0f);
    control->setValue(-3.0f);
    EXPECT_EQ(control->getValue(), 0.0f);
    EXPECT_TRUE(listener.changes.empty()) << "setValue is the host's path, not the user's";
    control->valueChanged();
    ASSERT_EQ(listener.changes.size(), 1u);
    EXPECT_EQ(listener.changes[0], control);
    control->forget();
}

TEST(Controls, KnobShowsTheRoundedFrameOfItsValue) {
    CBitmap strip("blue_knob.png");
    CAnimKnob knob(CRect(0, 0, 64, 64), nullptr, 0, 281, strip.getHeight() / 281, &strip);
    const std::pair<float, int> cases[] = {{0.0f, 0},    {1.0f, 280},  {0.5f, 140},   {0.25f, 70},
                                           {0.0017f, 0}, {0.0018f, 1}, {0.9982f, 279}};
    for (auto [value, frameIndex] : cases) {
        knob.setValue(value);
        EXPECT_EQ(knob.getFrameIndex(), frameIndex) << value;
    }
}

TEST(Controls, SwitchPositionFollowsTheClickColumn) {
    CHorizontalSwitch zoomType(CRect(414, 50, 478, 114), nullptr, 4, 4, 64, 4, nullptr);
    EXPECT_EQ(zoomType.positionAt(414), 0);
    EXPECT_EQ(zoomType.positionAt(429.9), 0);
    EXPECT_EQ(zoomType.positionAt(430), 1);
    EXPECT_EQ(zoomType.positionAt(462), 3);
    EXPECT_EQ(zoomType.positionAt(477.9), 3);
    EXPECT_EQ(zoomType.positionAt(600), 3) << "clamped to the last position";
    EXPECT_EQ(zoomType.positionAt(0), 0);
    zoomType.setValue(2.0f / 3.0f);
    EXPECT_EQ(zoomType.getFrameIndex(), 2);
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
    // Five columns of 12.8 pixels from x 414.
    click(414 + 12.8 * 3 + 1, 220);
    EXPECT_FLOAT_EQ(modes->getValue(), 0.75f);
    EXPECT_EQ(modes->getFrameIndex(), 3);
    click(414 + 1, 220);
    EXPECT_FLOAT_EQ(modes->getValue(), 0.0f);
    click(477, 220);
    EXPECT_FLOAT_EQ(modes->getValue(), 1.0f);
    ASSERT_EQ(listener.changes.size(), 3u) << "each click reports once";
    EXPECT_EQ(listener.changes[0], modes);
    EXPECT_EQ(editor.edits,
              (std::vector<std::string>{"begin 18", "end 18", "begin 18", "end 18", "begin 18", "end 18"}));
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

TEST(Labels, TextAndLookAreKept) {
    CTextLabel label(CRect(24, 393, 88, 408));
    EXPECT_STREQ(label.getText(), "");
    label.setText("-18.00dB");
    EXPECT_STREQ(label.getText(), "-18.00dB");
    label.setText(nullptr);
    EXPECT_STREQ(label.getText(), "");
    CTextLabel caption(CRect(0, 0, 64, 15), "Width", nullptr, 1);
    EXPECT_STREQ(caption.getText(), "Width");
    EXPECT_EQ(caption.getStyle(), 1);
    EXPECT_EQ(caption.getHoriAlign(), kCenterText);
    caption.setHoriAlign(kLeftText);
    caption.setFont(kNormalFontVerySmall);
    caption.setFontColor(CColor(82, 116, 193, 255));
    EXPECT_EQ(caption.getHoriAlign(), kLeftText);
    EXPECT_EQ(caption.getFont(), kNormalFontVerySmall);
    EXPECT_EQ(caption.getFontColor(), CColor(82, 116, 193, 255));
}
