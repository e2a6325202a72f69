// The layout panel follows parameter 18 from the host: the controls of that
// layout answer at their places and those of the others are gone; the value
// labels show the effect's texts; changes for controls that are not on
// screen leave the screen alone.
#include "EditorSession.h"

namespace editor_test {
namespace {

class LayoutPanels : public EditorSession {};

TEST_F(LayoutPanels, HostLayoutChangeShowsThatLayoutsControlsOnly) {
    openEditor();
    const std::pair<float, const std::vector<int>*> layouts[] = {
        {kQuad, &kQuadControls},   {kFiveOne, &kFiveOneControls}, {kTwoOne, &kTwoOneControls},
        {kFive, &kFiveControls},   {kStereo, &kStereoControls}};
    for (auto [value, expected] : layouts) {
        fx().setParameter(kDecodeMode, value);
        settle();
        EXPECT_EQ(probeLayoutRows(), *expected) << "layout value " << value;
    }
}

TEST_F(LayoutPanels, EditorKeepsItsOwnLayoutBands) {
    openEditor();
    // 0.15 decodes 2.1 in the effect but stays in the editor's stereo band.
    fx().setParameter(kDecodeMode, 0.15f);
    settle();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "2.1");
    EXPECT_EQ(probeLayoutRows(), kStereoControls);
    // Above 1 the effect decodes 5.1 and the editor keeps (rebuilds) its panel.
    fx().setParameter(kDecodeMode, 1.5f);
    settle();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "5.1");
    EXPECT_EQ(probeLayoutRows(), kStereoControls);
}

TEST_F(LayoutPanels, ValueLabelsShowTheEffectsDisplayTexts) {
    fx().setParameter(kDecodeMode, kFiveOne);
    const float values[20] = {0.1f, 0.7f, 0.25f, 0.8f, 0.67f, 1.0f, 0.3f, 0.125f, 0.f,   0.f,
                              0.9f, 0.75f, 0.2f, 0.4545455f, 1.0f, 0.0f, 0.6f, 0.95f, 1.f, 0.f};
    for (VstInt32 i = 0; i < 20; ++i)
        if (i != kDecodeMode && i != kRearVerb && i != kHiVerb) fx().setParameter(i, values[i]);
    openEditor();
    const Image screen = capture();
    EXPECT_TRUE(labelShows(screen, kRotate, transformValue(0)));
    EXPECT_TRUE(labelShows(screen, kTilt, transformValue(1)));
    EXPECT_TRUE(labelShows(screen, kTumble, transformValue(2)));
    EXPECT_TRUE(labelShows(screen, kZoomMethod, zoomValue(0)));
    EXPECT_TRUE(labelShows(screen, kZoom, zoomValue(1)));
    EXPECT_TRUE(labelShows(screen, kDecodeMode, settingsValue(0)));
    EXPECT_TRUE(labelShows(screen, kChannelOrder, settingsValue(1)));
    const VstInt32 mainRow[7] = {kFrontMode,     kFrontWidth,      kFrontPattern, kSurroundMode,
                                 kSurroundWidth, kSurroundPattern, kSurroundGain};
    for (int column = 0; column < 7; ++column)
        EXPECT_TRUE(labelShows(screen, mainRow[column], mainValue(column)));
    const VstInt32 upperRow[4] = {kCentrePattern, kCentreGain, kSubGain, kSubCrossover};
    for (int column = 0; column < 4; ++column)
        EXPECT_TRUE(labelShows(screen, upperRow[column], upperValue(61 + 76 * column)));

    // A change from the host reaches the knob's label at once.
    fx().setParameter(kCentreGain, 0.5f);
    settle();
    const Image changed = capture();
    EXPECT_EQ(fx().parameterDisplay(kCentreGain), "-6.00dB");
    EXPECT_TRUE(labelShows(changed, kCentreGain, upperValue(137)));
    EXPECT_FALSE(labelShows(screen, kCentreGain, upperValue(137)));
}

TEST_F(LayoutPanels, ChangesForControlsNotOnScreenLeaveTheScreenAlone) {
    openEditor();
    const Image stereo = capture();
    // Centre and surround settings are neither drawn in the stereo plot nor
    // shown by stereo controls.
    for (VstInt32 i : {kCentrePattern, kCentreGain, kSurroundMode, kSurroundPattern,
                       kSurroundWidth, kSurroundGain})
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
    const CRect plotArea(264, 12, 390, 138);
    fx().setParameter(kFrontWidth, 0.8f);
    settle();
    const Image wider = capture();
    EXPECT_GT(differingPixels(quad, wider, plotArea), 0);
    EXPECT_TRUE(labelShows(wider, kFrontWidth, mainValue(1)));
    // The values set while their controls were away arrive with the 5.0 panel.
    fx().setParameter(kDecodeMode, kFive);
    settle();
    EXPECT_TRUE(labelShows(capture(), kCentreGain, upperValue(213)));
}

}  // namespace
}  // namespace editor_test
