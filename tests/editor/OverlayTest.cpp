// The dimming overlays: "Currently Suspended" over the whole editor while
// the effect is suspended, and the Heller labels over the 5.x panels while
// a fixed matrix decodes.
#include "EditorSession.h"

namespace editor_test {
namespace {

class Overlays : public EditorSession {};

// Above the overlay's centred text, which would brighten a second layer.
const CRect kUpperEditor(0, 0, 578, 200);
// The 5.x panels' areas: the main one and the upper one.
CRect mainPanel() { return panels::placesOf(panels::kFivePanel, artSizes()).background; }
CRect upperPanel() { return panels::placesOf(panels::kFivePanel, artSizes()).background2; }

TEST_F(Overlays, TwoSuspendsDimTwiceAndOneResumeLiftsOnlyTheLatest) {
    openEditor();
    const Image normal = capture();
    fx().suspend();
    settle();
    const Image once = capture();
    EXPECT_LT(once.brightness(kUpperEditor), normal.brightness(kUpperEditor) - 10);
    fx().suspend();
    settle();
    const Image twice = capture();
    // A second layer of the same dark colour: a smaller step down.
    EXPECT_LT(twice.brightness(kUpperEditor), once.brightness(kUpperEditor) - 1);

    fx().resume();
    settle();
    EXPECT_EQ(capture(), once);
    // Nothing left for a second resume to lift: the first overlay stays.
    fx().resume();
    settle();
    EXPECT_EQ(capture(), once);
    // Until the editor is closed; a new one starts clear.
    closeEditor();
    openEditor();
    EXPECT_EQ(capture(), normal);
}

TEST_F(Overlays, HellerProgramsDarkenTheFivePanelsAndNameTheMatrix) {
    for (float layout : {kFive, kFiveOne}) {
        chooseLayoutProgram(layout, 0);
        openEditor();
        const Image microphones = capture();
        chooseLayoutProgram(layout, kHeller1Program);
        settle();
        const Image heller1 = capture();
        chooseLayoutProgram(layout, kHeller2Program);
        settle();
        const Image heller2 = capture();

        for (const CRect& panel : {mainPanel(), upperPanel()})
            EXPECT_LT(heller1.brightness(panel), microphones.brightness(panel) - 5);
        // The name is on the main panel only: the upper areas match.
        EXPECT_GT(differingPixels(heller1, heller2, mainPanel()), 100);
        EXPECT_EQ(differingPixels(heller1, heller2, upperPanel()), 0);
        // The controls underneath still answer.
        EXPECT_EQ(tagAt(probePoint(placeOf(kFrontWidth, kFiveLayout))), kFrontWidth);

        // Back to virtual microphones: the plain panel again.
        chooseLayoutProgram(layout, 0);
        settle();
        EXPECT_EQ(differingPixels(capture(), microphones, mainPanel()), 0);
        EXPECT_EQ(differingPixels(capture(), microphones, upperPanel()), 0);
        closeEditor();
    }
}

TEST_F(Overlays, LeavingTheFiveLayoutsTakesTheHellerLabelsAway) {
    fx().setParameter(kDecodeMode, kStereo);
    openEditor();
    const Image stereo = capture();
    chooseLayoutProgram(kFiveOne, kHeller2Program);
    settle();
    fx().setParameter(kDecodeMode, kStereo);
    fx().setProgram(0);
    settle();
    EXPECT_EQ(differingPixels(capture(), stereo, mainPanel()), 0);
    EXPECT_TRUE(showsControlsOf(kStereoLayout));
}

}  // namespace
}  // namespace editor_test
