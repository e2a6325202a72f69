// Open, close and open again as hosts do: the panel of the effect's layout
// with its controls loaded from the effect each time; no display connection
// until open, and none left after close.
#include <filesystem>

#include "EditorSession.h"

#include <X11/Xlib.h>

#include "CloseRequest.h"

namespace editor_test {
namespace {

class Lifecycle : public EditorSession {};

int openDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

TEST_F(Lifecycle, OpensOnTheEffectsLayoutWithItsValuesEachTime) {
    fx().setParameter(kDecodeMode, kQuad);
    fx().setParameter(kSurroundWidth, 0.35f);
    openEditor();
    EXPECT_TRUE(labelShows(capture(), kSurroundWidth, kQuadLayout));
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
    for (VstInt32 fixed : {kRotate, kZoom}) EXPECT_EQ(tagAt(probePoint(placeOf(fixed))), fixed);
    closeEditor();

    // Changes while closed are the effect's alone; the next open shows them.
    fx().setParameter(kDecodeMode, kFiveOne);
    fx().setParameter(kSubCrossover, 0.8f);
    openEditor();
    EXPECT_TRUE(labelShows(capture(), kSubCrossover, kFiveOneLayout));
    EXPECT_TRUE(labelShows(capture(), kDecodeMode));
    EXPECT_TRUE(showsControlsOf(kFiveOneLayout));
}

TEST_F(Lifecycle, CreatingOpensNoDisplayAndCloseReleasesIt) {
    const int atStart = openDescriptors();
    std::string error;
    auto second = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    ASSERT_TRUE(second) << error;
    second->open();
    EXPECT_EQ(openDescriptors(), atStart) << "creating an editor must not connect to the display";
    second.reset();

    for (int cycle = 0; cycle < 10; ++cycle) {
        openEditor();
        // The host's and the editor's own connections.
        EXPECT_EQ(openDescriptors(), atStart + 2);
        closeEditor();
        EXPECT_EQ(openDescriptors(), atStart);
    }
    // A second open without a close replaces the editor instead of adding one.
    openEditor();
    EXPECT_TRUE(fx().openEditor(reinterpret_cast<void*>(window->windowId())));
    EXPECT_EQ(openDescriptors(), atStart + 2);
}

TEST_F(Lifecycle, ClosingTheWindowClosesTheEditor) {
    openEditor();
    const unsigned long id = window->windowId();
    requestClose(display, id);
    XSync(display, False);
    EXPECT_FALSE(window->runFor(std::chrono::milliseconds(300)));
    EXPECT_FALSE(window->isOpen());
    // The editor is closed: the plug-in takes changes without a window.
    fx().setParameter(kDecodeMode, kFive);
    fx().suspend();
    EXPECT_EQ(fx().parameterDisplay(kDecodeMode), "5.0");
    openEditor();
    EXPECT_TRUE(showsControlsOf(kFiveLayout));
}

}  // namespace
}  // namespace editor_test
