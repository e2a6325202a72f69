// The editor at the screen's scale, as a Linux host meets it: the factor
// sent through effVendorSpecific, the desktop's Xft.dpi on the root window,
// the user's switch in the settings strip, and the window's size following.
#include <cmath>
#include <cstdint>
#include <utility>

#include "EditorSession.h"

// Last: Xlib's macros would clash with names in the headers above.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace editor_test {
namespace {

using Size = std::pair<int, int>;
Size at(double scale) { return {int(std::lround(578 * scale)), int(std::lround(502 * scale))}; }
CPoint scaled(const CPoint& p, double scale) { return CPoint(p.x * scale, p.y * scale); }

// The stereo editor at 100 % as the build before the scale drew it, but for
// the Tracking and Scale places (x 330 .. 464, y 428 .. 484), empty then.
constexpr std::uint64_t kPixelsBeforeScaling = 4672255069787379248ull;
std::uint64_t pixelsBesideTheScaleSwitch(const Image& screen) {
    std::uint64_t hash = 14695981039346656037ull;  // FNV-1a
    for (int y = 0; y < screen.height; ++y)
        for (int x = 0; x < screen.width; ++x)
            if (x < 330 || x >= 464 || y < 428 || y >= 484) hash = (hash ^ screen.at(x, y)) * 1099511628211ull;
    return hash;
}

class Scale : public EditorSession {
protected:
    void TearDown() override {
        if (display) setDesktopDpi(nullptr);
        EditorSession::TearDown();
    }
    // As a desktop sets its scale: Xft.dpi in the root window's resources; null removes them.
    void setDesktopDpi(const char* dpi) {
        const Window root = DefaultRootWindow(display);
        if (dpi) {
            const std::string resources = std::string("Xft.antialias:\t1\nXft.dpi:\t") + dpi + "\n";
            XChangeProperty(display, root, XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(resources.data()), int(resources.size()));
        } else {
            XDeleteProperty(display, root, XA_RESOURCE_MANAGER);
        }
        XSync(display, False);
    }
    Size editorSize() {
        ERect rect{};
        return fx().editorRect(rect) ? Size{rect.right - rect.left, rect.bottom - rect.top} : Size{};
    }
    Size shownSize() {
        XWindowAttributes attributes{};
        Window root, parent, *children = nullptr;
        unsigned count = 0;
        XQueryTree(display, window->windowId(), &root, &parent, &children, &count);
        if (count == 1) XGetWindowAttributes(display, children[0], &attributes);
        if (children) XFree(children);
        return {attributes.width, attributes.height};
    }
};

TEST_F(Scale, TheHostsFactorWinsOverTheDesktopsAndUnusableFactorsAreIgnored) {
    EXPECT_EQ(editorSize(), at(1));
    setDesktopDpi("144");
    EXPECT_EQ(editorSize(), at(1.5));
    for (float unusable : {NAN, 0.0f, 0.75f, 4.5f, INFINITY, -2.0f}) {
        EXPECT_EQ(fx().setEditorScaleFactor(unusable), 1);
        EXPECT_EQ(editorSize(), at(1.5)) << unusable;
    }
    fx().setEditorScaleFactor(2.0f);
    EXPECT_EQ(editorSize(), at(2));
    // Never larger than the screen (Xvfb's is 1600 x 1200).
    fx().setEditorScaleFactor(4.0f);
    EXPECT_EQ(editorSize(), at(1200 / 502.0));
}

// Window and editor at each scale; the controls answer where they are drawn,
// from the top left to the settings strip, and the artwork is drawn for the
// scale, not enlarged (an enlarged 1x picture has uniform 2 x 2 blocks).
TEST_F(Scale, WindowAndControlsFollowTheScaleAndTwiceIsDrawnSharp) {
    for (float factor : {1.0f, 1.5f, 2.0f}) {
        fx().setEditorScaleFactor(factor);
        openEditor();
        if (factor == 1.0f) {
            EXPECT_EQ(pixelsBesideTheScaleSwitch(capture()), kPixelsBeforeScaling);
        }
        EXPECT_EQ(Size(window->width(), window->height()), at(factor));
        EXPECT_EQ(shownSize(), at(factor));
        EXPECT_EQ(tagAt(scaled(probePoint(placeOf(kRotate)), factor)), kRotate) << factor;
        EXPECT_EQ(tagAt(scaled(positionPoint(placeOf(kSmoothing), 1), factor)), kSmoothing) << factor;
        const float before = fx().getParameter(kTilt);
        drag(scaled(probePoint(placeOf(kTilt)), factor), -30);
        EXPECT_GT(fx().getParameter(kTilt), before) << factor;
        if (factor == 2.0f) {
            const Image screen = capture();
            int sharpBlocks = 0;
            for (int y = 0; y + 1 < screen.height; y += 2)
                for (int x = 0; x + 1 < screen.width; x += 2)
                    sharpBlocks += screen.at(x, y) != screen.at(x + 1, y + 1) || screen.at(x, y) != screen.at(x + 1, y);
            EXPECT_GT(sharpBlocks, screen.width * screen.height / 4 / 12);
        }
        closeEditor();
    }
}

// The user's switch overrides the host, resizes the open window (unless the
// host refuses) and travels with the session's chunk, not with presets.
TEST_F(Scale, TheUsersChoiceResizesTheWindowAndSurvivesTheSession) {
    const double switchY = 455;  // the Scale place's switch, at x 400 .. 464
    fx().setEditorScaleFactor(1.5f);
    openEditor();
    window->acceptResizing(false);
    click(scaled(CPoint(424, switchY), 1.5));  // "100 %", refused
    EXPECT_EQ(Size(window->width(), window->height()), at(1.5));
    window->acceptResizing(true);
    click(scaled(CPoint(456, switchY), 1.5));  // "200 %"
    EXPECT_EQ(Size(window->width(), window->height()), at(2));
    EXPECT_EQ(shownSize(), at(2));
    EXPECT_TRUE(fx().log().beginEdits().empty()) << "the size is no parameter";
    closeEditor();

    std::string error;
    auto other = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    ASSERT_TRUE(other) << error;
    other->open();
    const auto restoreInOther = [&](VstInt32 isPreset) {
        void* data = nullptr;
        const VstIntPtr size = fx().dispatch(effGetChunk, isPreset, 0, &data);
        EXPECT_EQ(other->dispatch(effSetChunk, isPreset, size, data), 1);
        ERect* rect = nullptr;
        other->dispatch(effEditGetRect, 0, 0, &rect);
        return rect ? Size(rect->right, rect->bottom) : Size{};
    };
    EXPECT_EQ(restoreInOther(1), at(1)) << "a preset leaves the size alone";
    EXPECT_EQ(restoreInOther(0), at(2));
}

}  // namespace
}  // namespace editor_test
