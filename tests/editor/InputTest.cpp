// A person's hand on the controls: a knob drag and switch clicks arrive at
// the host as automation, one gesture bracketed by begin and end edit, and
// change the effect's value; the layout switch rebuilds the panel; the
// input switch in the name panel sets each of its three positions.
#include <cmath>

#include "EditorSession.h"

namespace editor_test {
namespace {

class MouseInput : public EditorSession {};

TEST_F(MouseInput, KnobDragIsOneGestureOfAutomation) {
    openEditor();
    const float before = fx().getParameter(kFrontWidth);
    fx().log().clear();
    drag(probePoint(placeOf(kFrontWidth)), -40);  // up by 40 pixels: a fifth of the range

    EXPECT_EQ(fx().log().beginEdits(), std::vector<VstInt32>{kFrontWidth});
    EXPECT_EQ(fx().log().endEdits(), std::vector<VstInt32>{kFrontWidth});
    const auto automation = fx().automation();
    ASSERT_FALSE(automation.empty());
    float previous = before;
    for (const auto& change : automation) {
        EXPECT_EQ(change.index, kFrontWidth);
        EXPECT_GT(change.value, previous) << "an upward drag only raises the value";
        previous = change.value;
    }
    EXPECT_EQ(fx().getParameter(kFrontWidth), automation.back().value);
    EXPECT_NEAR(fx().getParameter(kFrontWidth) - before, 0.2f, 0.02f);
    EXPECT_TRUE(labelShows(capture(), kFrontWidth));
}

TEST_F(MouseInput, SwitchClickSetsTheFrontModeAndRedrawsThePlot) {
    openEditor();
    ASSERT_EQ(fx().getParameter(kFrontMode), 0.0f);
    const Image xy = capture();
    fx().log().clear();
    click(probePoint(placeOf(kFrontMode)).offset(placeOf(kFrontMode).control.getWidth() / 2, 0));  // MS

    EXPECT_EQ(fx().automation(), (std::vector<vsthost::Automation>{{kFrontMode, 1.0f}}));
    EXPECT_EQ(fx().log().beginEdits(), std::vector<VstInt32>{kFrontMode});
    EXPECT_EQ(fx().log().endEdits(), std::vector<VstInt32>{kFrontMode});
    EXPECT_EQ(fx().getParameter(kFrontMode), 1.0f);
    const Image ms = capture();
    EXPECT_GT(differingPixels(xy, ms, panels::plotArea(artSizes())), 0) << "the plot shows MS";
    EXPECT_TRUE(labelShows(ms, kFrontMode));
}

TEST_F(MouseInput, LayoutSwitchClickRebuildsThePanel) {
    openEditor();
    fx().log().clear();
    // The decoding switch's fifth and last position is 5.1.
    const CRect& layouts = placeOf(kDecodeMode).control;
    click(CPoint(layouts.left + 4 * layouts.getWidth() / 5 + 6, probePoint(placeOf(kDecodeMode)).y));

    EXPECT_EQ(fx().automation(), (std::vector<vsthost::Automation>{{kDecodeMode, 1.0f}}));
    EXPECT_EQ(fx().log().beginEdits(), std::vector<VstInt32>{kDecodeMode});
    EXPECT_EQ(fx().getParameter(kDecodeMode), 1.0f);
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "5.1");
    EXPECT_GE(fx().displayUpdates(), 1);
    const Image screen = capture();
    EXPECT_TRUE(labelShows(screen, kDecodeMode));
    EXPECT_TRUE(labelShows(screen, kSubCrossover, kFiveOneLayout));
    EXPECT_TRUE(showsControlsOf(kFiveOneLayout));
}

TEST_F(MouseInput, InputSwitchClickSetsThatPosition) {
    openEditor();
    const panels::ColumnPlaces input = placeOf(kInput);
    for (int position : {2, 0, 1}) {
        fx().log().clear();
        click(positionPoint(input, position));
        const float value = sorvane::positionValue(position, sorvane::kInputFormats);
        EXPECT_EQ(fx().automation(), (std::vector<vsthost::Automation>{{kInput, value}}));
        EXPECT_EQ(fx().log().beginEdits(), std::vector<VstInt32>{kInput});
        EXPECT_EQ(fx().log().endEdits(), std::vector<VstInt32>{kInput});
        EXPECT_EQ(fx().getParameter(kInput), value);
        EXPECT_EQ(fx().parameterDisplay(kInput), sorvane::kInputWords[position]);
        const Image screen = capture();
        EXPECT_EQ(litPosition(screen, input), position);
        EXPECT_TRUE(labelShows(screen, kInput));
    }
}

}  // namespace
}  // namespace editor_test
