// The layout panel follows parameter 18 from the host: the controls of that
// layout answer at their places and those of the others are gone; the value
// labels show the effect's texts; changes for controls that are not on
// screen leave the screen alone; the input switch and its label follow the
// host, and change nothing else.
#include "EditorSession.h"

namespace editor_test {
namespace {

class LayoutPanels : public EditorSession {};

TEST_F(LayoutPanels, HostLayoutChangeShowsThatLayoutsControlsOnly) {
    openEditor();
    for (int layout : {kQuadLayout, kFiveOneLayout, kTwoOneLayout, kFiveLayout, kStereoLayout}) {
        fx().setParameter(kDecodeMode, layoutValue(layout));
        settle();
        EXPECT_TRUE(showsControlsOf(layout)) << "layout " << layout;
    }
}

TEST_F(LayoutPanels, EditorKeepsItsOwnLayoutBands) {
    openEditor();
    // 0.15 decodes 2.1 in the effect but stays in the editor's stereo band.
    fx().setParameter(kDecodeMode, 0.15f);
    settle();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "2.1");
    EXPECT_TRUE(showsControlsOf(kStereoLayout));
    // Above 1 the effect decodes 5.1 and the editor keeps (rebuilds) its panel.
    fx().setParameter(kDecodeMode, 1.5f);
    settle();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "5.1");
    EXPECT_TRUE(showsControlsOf(kStereoLayout));
}

TEST_F(LayoutPanels, ValueLabelsShowTheEffectsDisplayTexts) {
    fx().setParameter(kDecodeMode, kFiveOne);
    const float values[kNumParams] = {0.1f,  0.7f, 0.25f,      0.8f, 0.67f, 1.0f, 0.3f,  0.125f, 0.f, 0.f, 0.9f,
                                      0.75f, 0.2f, 0.4545455f, 1.0f, 0.0f,  0.6f, 0.95f, 1.f,    0.f, 0.5f};
    for (VstInt32 i = 0; i < kNumParams; ++i)
        if (i != kDecodeMode && i != kRearVerb && i != kHiVerb) fx().setParameter(i, values[i]);
    openEditor();
    const Image screen = capture();
    std::vector<const panels::Panel*> shown(std::begin(panels::kFixedPanels), std::end(panels::kFixedPanels));
    shown.push_back(&panels::kFiveOnePanel);
    for (const panels::Panel* panel : shown)
        panels::forEachColumn(
            *panel, [&](const panels::Column& column) { EXPECT_TRUE(labelShows(screen, column.tag, kFiveOneLayout)); });

    // A change from the host reaches the knob's label at once.
    fx().setParameter(kCentreGain, 0.5f);
    settle();
    const Image changed = capture();
    EXPECT_EQ(fx().parameterDisplay(kCentreGain), "-6.00dB");
    EXPECT_TRUE(labelShows(changed, kCentreGain, kFiveOneLayout));
    EXPECT_FALSE(labelShows(screen, kCentreGain, kFiveOneLayout));
}

TEST_F(LayoutPanels, ChangesForControlsNotOnScreenLeaveTheScreenAlone) {
    openEditor();
    const Image stereo = capture();
    // Centre and surround settings are neither drawn in the stereo plot nor
    // shown by stereo controls.
    for (VstInt32 i : {kCentrePattern, kCentreGain, kSurroundMode, kSurroundPattern, kSurroundWidth, kSurroundGain})
        fx().setParameter(i, 0.9f);
    settle();
    EXPECT_EQ(capture(), stereo);

    fx().setParameter(kDecodeMode, kQuad);
    settle();
    const Image quad = capture();
    // Ambience, centre and sub-woofer have no control in quad; the centre
    // gain's guard passes there (the surround-width knob is on screen) and
    // still changes nothing visible.
    for (VstInt32 i : {kRearVerb, kHiVerb, kCentrePattern, kCentreGain, kSubGain, kSubCrossover})
        fx().setParameter(i, 0.3f);
    settle();
    EXPECT_EQ(capture(), quad);

    // A control on screen: its label and the plot change, nothing else.
    fx().setParameter(kFrontWidth, 0.8f);
    settle();
    const Image wider = capture();
    EXPECT_GT(differingPixels(quad, wider, panels::plotArea(artSizes())), 0);
    EXPECT_TRUE(labelShows(wider, kFrontWidth, kQuadLayout));
    // The values set while their controls were away arrive with the 5.0 panel.
    fx().setParameter(kDecodeMode, kFive);
    settle();
    EXPECT_TRUE(labelShows(capture(), kCentreGain, kFiveLayout));
}

TEST_F(LayoutPanels, HostInputChangesShowTheNearestPositionAndNothingElse) {
    openEditor();
    const Image before = capture();
    const panels::ColumnPlaces input = placeOf(kInput);
    EXPECT_EQ(litPosition(before, input), 0);
    EXPECT_TRUE(labelShows(before, kInput));
    const CRect column(input.control.left, input.control.top, input.control.right, input.value.bottom);
    const CRect editor(0, 0, 578, 502);
    // Positions lie at 0, 0.5 and 1; a value between them shows the nearest.
    for (const auto& [value, position] : {std::pair{1.0f, 2}, {0.3f, 1}, {0.2f, 0}, {0.76f, 2}, {0.5f, 1}, {0.0f, 0}}) {
        fx().setParameter(kInput, value);
        settle();
        const Image screen = capture();
        EXPECT_EQ(fx().parameterDisplay(kInput), sorvane::kInputWords[position]) << value;
        EXPECT_EQ(litPosition(screen, input), position) << value;
        EXPECT_TRUE(labelShows(screen, kInput)) << value;
        EXPECT_EQ(differingPixels(before, screen, editor), differingPixels(before, screen, column)) << value;
    }
    EXPECT_EQ(capture(), before);
}

}  // namespace
}  // namespace editor_test
