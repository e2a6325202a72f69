// Hosts automate from their audio thread while the editor idles on its
// own: such changes wait for the editor's next idle and then show the
// effect's values, however many arrive and however they interleave with
// changes made on the editor's own thread.
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "EditorSession.h"

namespace editor_test {
namespace {

class OtherThreads : public EditorSession {};

TEST_F(OtherThreads, ChangeFromAnotherThreadShowsAtTheNextIdle) {
    openEditor();
    const Image stereo = capture();
    std::thread([this] { fx().setParameter(kDecodeMode, kQuad); }).join();
    // Nothing of it on screen until the editor's thread idles.
    EXPECT_EQ(capture(), stereo);
    settle();
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

TEST_F(OtherThreads, AutomationStormWhileIdlingEndsInTheFinalState) {
    openEditor();
    std::atomic<bool> done{false};
    std::thread automation([this, &done] {
        std::mt19937 random(7);
        std::uniform_real_distribution<float> value(0.0f, 1.0f);
        for (int i = 0; i < 30000; ++i) fx().setParameter(VstInt32(i % kNumParams), value(random));
        // The last word: quad with known surround settings.
        fx().setParameter(kDecodeMode, kQuad);
        fx().setParameter(kSurroundWidth, 0.7f);
        fx().setParameter(kSurroundGain, 0.25f);
        done = true;
    });
    while (!done) window->runFor(std::chrono::milliseconds(5));
    automation.join();
    settle();
    const Image screen = capture();
    for (VstInt32 i : {kSurroundWidth, kSurroundGain, kDecodeMode, kRotate, kTilt, kTumble})
        EXPECT_TRUE(labelShows(screen, i, kQuadLayout));
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

// A suspend, then a resume, each the last change another thread sends
// before an idle: "Currently Suspended" comes with the first idle after the
// suspend and goes with the first after the resume.
TEST_F(OtherThreads, SuspendAndResumeFromAnotherThreadShowAtTheNextIdle) {
    const CRect upperEditor(0, 0, 578, 200);  // above the overlay's centred text
    auto oneIdle = [this] {
        window->idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));  // for the server to draw it
    };
    openEditor();
    const Image running = capture();
    const float rotate = fx().getParameter(kRotate);
    std::thread([this] {
        fx().setParameter(kRotate, 0.25f);
        fx().suspend();
    }).join();
    EXPECT_EQ(capture(), running);
    oneIdle();
    const Image suspended = capture();
    EXPECT_LT(suspended.brightness(upperEditor), running.brightness(upperEditor) - 10) << "dimmed by the overlay";

    std::thread([this, rotate] {
        fx().setParameter(kRotate, rotate);
        fx().resume();
    }).join();
    EXPECT_EQ(capture(), suspended);
    oneIdle();
    EXPECT_EQ(capture(), running);
}

TEST_F(OtherThreads, QueuedChangesNeverOvertakeNewerDirectOnes) {
    openEditor();
    std::thread([this] {
        fx().setParameter(kRotate, 0.1f);
        fx().setParameter(kDecodeMode, kFive);
        fx().suspend();
    }).join();
    // Newer changes on the editor's own thread before its next idle.
    fx().setParameter(kRotate, 0.9f);
    fx().setParameter(kDecodeMode, kQuad);
    fx().resume();
    settle();
    const Image shown = capture();
    // A freshly opened editor shows the effect as it is.
    closeEditor();
    openEditor();
    settle();
    EXPECT_EQ(shown, capture());
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

}  // namespace
}  // namespace editor_test
