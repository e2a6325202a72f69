// A frame in a real X server (run under Xvfb): it opens a child window of a
// host-like parent, draws into it, turns xdotool's pointer gestures into
// control changes on idle, and leaves nothing behind when it goes.
// gtest first: Xlib's None and Bool macros would break its headers.
#include <gtest/gtest.h>

#include "Tolerances.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dirent.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "Probes.h"

namespace {

// The host's side: its own connection and a top-level window to parent the editor.
class HostWindow {
public:
    HostWindow() {
        display = XOpenDisplay(nullptr);
        if (!display) return;
        window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 578, 502, 0, 0, 0);
        XSelectInput(display, window, StructureNotifyMask);
        XMapWindow(display, window);
        XEvent event;
        do XNextEvent(display, &event);
        while (event.type != MapNotify);
    }
    ~HostWindow() {
        if (!display) return;
        if (window) XDestroyWindow(display, window);
        XCloseDisplay(display);
    }
    void* parent() const { return reinterpret_cast<void*>(window); }
    unsigned int childCount() {
        Window root, parentOfWindow, *children = nullptr;
        unsigned int count = 0;
        XQueryTree(display, window, &root, &parentOfWindow, &children, &count);
        if (children) XFree(children);
        return count;
    }
    bool viewable(unsigned long child) {
        XWindowAttributes attributes;
        return XGetWindowAttributes(display, child, &attributes) && attributes.map_state == IsViewable;
    }
    // One pixel of a window as the server holds it (0xRRGGBB).
    unsigned long pixel(unsigned long child, int x, int y) {
        XImage* image = XGetImage(display, child, x, y, 1, 1, AllPlanes, ZPixmap);
        if (!image) return ~0ul;
        unsigned long value = XGetPixel(image, 0, 0) & 0xffffff;
        XDestroyImage(image);
        return value;
    }

    Display* display = nullptr;
    Window window = 0;
};

void xdotool(unsigned long window, const std::string& actions) {
    std::string command = "xdotool " + actions;
    std::string id = std::to_string(window);
    for (size_t at; (at = command.find("@W")) != std::string::npos;) command.replace(at, 2, id);
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

// Idles the frame as a host would, until done() holds or half a second passed.
template <typename Done>
bool idleUntil(CFrame* frame, Done done) {
    for (int i = 0; i < 50; ++i) {
        frame->idle();
        if (done()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

int openFileCount() {
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir)) ++count;
        closedir(dir);
    }
    return count;
}

class FrameWindow : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(host.display, nullptr) << "needs an X server (xvfb-run)"; }
    HostWindow host;
};

}  // namespace

TEST_F(FrameWindow, DragsAndClicksReachTheControlsOnIdle) {
    RecordingEditor editor;
    auto* frame = new CFrame(CRect(0, 0, 578, 502), host.parent(), &editor);
    ASSERT_NE(frame->getWindowId(), 0u);
    frame->setBackgroundColor(CColor(23, 25, 26, 255));
    auto* strip = new CBitmap("360_knob.png");
    auto* knob = new CAnimKnob(CRect(24, 50, 88, 114), nullptr, 0, 281, strip->getHeight() / 281, strip);
    auto* switchStrip = new CBitmap("mode5_knob.png");
    auto* modes =
        new CHorizontalSwitch(CRect(414, 188, 478, 252), nullptr, 18, 5, switchStrip->getHeight() / 5, 5, switchStrip);
    for (CView* view : std::initializer_list<CView*>{knob, modes}) {
        frame->addView(view);
        frame->remember();  // the editor's habit
    }
    knob->setValue(0.5f);
    const unsigned long w = frame->getWindowId();
    ASSERT_TRUE(idleUntil(frame, [&] { return host.viewable(w); }));
    EXPECT_EQ(host.childCount(), 1u);
    EXPECT_TRUE(idleUntil(frame, [&] { return host.pixel(w, 300, 480) == 0x17191a; }))
        << "the background colour reaches the window";

    xdotool(w,
            "mousemove --window @W 56 100 mousedown 1 mousemove --window @W 56 75 "
            "mousemove --window @W 56 50 mouseup 1");
    EXPECT_TRUE(idleUntil(frame, [&] { return editor.edits.size() == 2; }));
    EXPECT_NEAR(knob->getValue(), 0.75f, kPixelStepRounding) << "50 pixels up of 200";
    EXPECT_EQ(editor.edits, (std::vector<std::string>{"begin 0", "end 0"}));

    xdotool(w,
            "keydown shift mousemove --window @W 56 100 mousedown 1 mousemove --window @W 56 60 "
            "mouseup 1 keyup shift");
    EXPECT_TRUE(idleUntil(frame, [&] { return editor.edits.size() == 4; }));
    EXPECT_NEAR(knob->getValue(), 0.77f, kPixelStepRounding) << "Shift: 40 pixels of 2000";

    xdotool(w, "mousemove --window @W 56 80 click 4");
    EXPECT_TRUE(idleUntil(frame, [&] { return editor.edits.size() == 6; }));
    EXPECT_NEAR(knob->getValue(), 0.82f, kPixelStepRounding) << "one wheel notch up";

    xdotool(w, "mousemove --window @W 460 220 click 1");  // fourth of five columns
    EXPECT_TRUE(idleUntil(frame, [&] { return editor.edits.size() == 8; }));
    EXPECT_EQ(editor.edits.back(), "end 18");
    EXPECT_FLOAT_EQ(modes->getValue(), 0.75f);

    // The owner's one forget of the frame closes the window despite the claims.
    forgetAll(knob, modes, strip, switchStrip, frame);
    XSync(host.display, False);
    EXPECT_EQ(host.childCount(), 0u);
}

TEST_F(FrameWindow, ManyOpenCloseCyclesLeakNoWindowsOrConnections) {
    auto openAndClose = [&](int cycles) {
        for (int cycle = 0; cycle < cycles; ++cycle) {
            auto* frame = new CFrame(CRect(0, 0, 578, 502), host.parent(), nullptr);
            auto* bitmap = new CBitmap("controls.png");
            auto* panel = new CView(CRect(12, 288, 566, 414));
            panel->setBackground(bitmap);
            frame->addView(panel);
            frame->remember();
            frame->idle();
            forgetAll(bitmap, panel, frame);
        }
        XSync(host.display, False);
        EXPECT_EQ(host.childCount(), 0u);
    };
    openAndClose(1);  // once first, so lazily opened files (fonts, locale) are not counted
    const int filesBefore = openFileCount();
    openAndClose(150);
    EXPECT_EQ(openFileCount(), filesBefore);
}

TEST_F(FrameWindow, ParentsThatDoNotExistOrVanishAreSurvived) {
    auto* orphan = new CFrame(CRect(0, 0, 578, 502), reinterpret_cast<void*>(0x7ffffff0ul), nullptr);
    EXPECT_EQ(orphan->getWindowId(), 0u);
    EXPECT_FALSE(orphan->isOpen());
    orphan->idle();
    orphan->forget();

    auto* frame = new CFrame(CRect(0, 0, 578, 502), host.parent(), nullptr);
    ASSERT_NE(frame->getWindowId(), 0u);
    frame->idle();
    // The host destroys its window while the editor is still open.
    XDestroyWindow(host.display, host.window);
    XSync(host.display, False);
    host.window = 0;
    EXPECT_TRUE(idleUntil(frame, [&] { return !frame->isOpen(); }));
    frame->setDirty(true);
    frame->idle();
    frame->forget();
}
