// The dimming overlays: "Currently Suspended" over the whole editor while
// the effect is suspended, and the Heller labels over the 5.x panels while
// a fixed matrix decodes.
#include "EditorSession.h"

namespace editor_test {
namespace {

class Overlays : public EditorSession {};

// Above the overlay's centred text, which would brighten a second layer.
const CRect kUpperEditor(0, 0, 578, 200);
const CRect kMainPanel(12, 288, 566, 414);
const CRect kUpperPanel(49, 150, 365, 276);

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

        for (const CRect& panel : {kMainPanel, kUpperPanel})
            EXPECT_LT(heller1.brightness(panel), microphones.brightness(panel) - 5);
        // The name is on the main panel only: the upper areas match.
        EXPECT_GT(differingPixels(heller1, heller2, kMainPanel), 100);
        EXPECT_EQ(differingPixels(heller1, heller2, kUpperPanel), 0);
        // The controls underneath still answer.
        EXPECT_EQ(tagAt(132, kMainRowY), kFrontWidth);

        // Back to virtual microphones: the plain panel again.
        chooseLayoutProgram(layout, 0);
        settle();
        EXPECT_EQ(differingPixels(capture(), microphones, kMainPanel), 0);
        EXPECT_EQ(differingPixels(capture(), microphones, kUpperPanel), 0);
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
    EXPECT_EQ(differingPixels(capture(), stereo, kMainPanel), 0);
    EXPECT_EQ(probeLayoutRows(), kStereoControls);
}

}  // namespace
}  // namespace editor_test
