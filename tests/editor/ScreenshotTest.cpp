// The editor in every layout, with each fixed 5.x matrix, suspended and at 200 %, saved as PNG
// for people to look at (docs/screenshots holds the reviewed copies).
#include "EditorSession.h"

namespace editor_test {
namespace {

class Screenshots : public EditorSession {};

TEST_F(Screenshots, EveryLayoutAndTheHellerDecodersAreSaved) {
    struct Shot {
        const char* file;
        float layout;
        VstInt32 program;
    };
    const Shot shots[] = {{"editor-stereo.png", kStereo, 0},      {"editor-2.1.png", kTwoOne, 0},
                          {"editor-quad.png", kQuad, 0},          {"editor-5.0.png", kFive, 0},
                          {"editor-5.1.png", kFiveOne, 0},        {"editor-5.0-heller1.png", kFive, 3},
                          {"editor-5.1-heller2.png", kFiveOne, 4}};
    openEditor();
    for (const Shot& shot : shots) {
        chooseLayoutProgram(shot.layout, shot.program);
        settle();
        const Image image = capture();
        ASSERT_EQ(image.width, 578);
        ASSERT_EQ(image.height, 502);
        EXPECT_TRUE(image.savePng(screenshotDir() + "/" + shot.file)) << shot.file;
    }
    chooseLayoutProgram(kStereo, 0);
    fx().suspend();
    settle();
    EXPECT_TRUE(capture().savePng(screenshotDir() + "/editor-suspended.png"));
    fx().resume();
    // At 200 %, as a host on a HiDPI screen shows it.
    closeEditor();
    fx().setEditorScaleFactor(2.0f);
    openEditor();
    EXPECT_TRUE(capture().savePng(screenshotDir() + "/editor-200.png"));
}

}  // namespace
}  // namespace editor_test
