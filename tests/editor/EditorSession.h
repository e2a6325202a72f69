// The editor as a person meets it: Sorvane.so loaded through the host
// library, its editor opened in the host's X11 window, mouse input played
// by xdotool, and what is on screen read back from the X server.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CPoint.h"
#include "CRect.h"
#include "EditorWindow.h"
#include "PanelTables.h"
#include "Plugin.h"
#include "SorvaneProtocol.h"

struct _XDisplay;

namespace editor_test {

using sorvane::kFiveLayout, sorvane::kFiveOneLayout, sorvane::kQuadLayout, sorvane::kStereoLayout,
    sorvane::kTwoOneLayout, sorvane::layoutValue;
constexpr float kStereo = sorvane::layoutValue(sorvane::kStereoLayout);
constexpr float kTwoOne = sorvane::layoutValue(sorvane::kTwoOneLayout);
constexpr float kQuad = sorvane::layoutValue(sorvane::kQuadLayout);
constexpr float kFive = sorvane::layoutValue(sorvane::kFiveLayout);
constexpr float kFiveOne = sorvane::layoutValue(sorvane::kFiveOneLayout);
// Programs 3 and 4 of the 5.0 and 5.1 tables are the two fixed matrices.
constexpr VstInt32 kHeller1Program = 3, kHeller2Program = 4;

// The window's pixels as 0xRRGGBB.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;

    uint32_t at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
    // Mean of red, green and blue over an area, 0..255.
    double brightness(const CRect& area) const;
    bool operator==(const Image&) const = default;
    bool savePng(const std::string& path) const;
};

// A window's pixels as the X server holds them.
Image captureWindow(_XDisplay* display, unsigned long window, int width, int height);

// How many pixels of an area differ between two images of the same size.
int differingPixels(const Image& a, const Image& b, const CRect& area);

class EditorSession : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    vsthost::Plugin& fx() { return *plugin; }
    void openEditor();
    void closeEditor();
    // A few idle ticks, so queued input and redraws reach the screen.
    void settle(int ticks = 3);
    Image capture();

    // Mouse input through xdotool, in window pixels.
    void click(const CPoint& at);
    void drag(const CPoint& at, int dy);
    // The parameter of the control under (x, y), from the edit gesture a
    // click starts at the host; -1 when nothing there takes a click.
    int tagAt(const CPoint& at);

    // Whether the value label of index, where the layout's panel or a fixed
    // panel has it, shows the effect's display text.
    ::testing::AssertionResult labelShows(const Image& screen, VstInt32 index, int layout = sorvane::kStereoLayout);
    // Whether the layout's controls, and no others, answer at the places of
    // all layouts' controls.
    ::testing::AssertionResult showsControlsOf(int layout);

    // Sets a program of the layout given, as a host's program menu does.
    void chooseLayoutProgram(float layout, VstInt32 program);

    std::unique_ptr<vsthost::Plugin> plugin;
    std::unique_ptr<vsthost::EditorWindow> window;
    _XDisplay* display = nullptr;
};

// Where the editor puts its pieces: the panels' tables laid out for the
// embedded artwork.
const panels::ArtSizes& artSizes();
// The places of the column of tag, in a fixed panel or the layout's panel.
panels::ColumnPlaces placeOf(VstInt32 tag, int layout = sorvane::kStereoLayout);
// Where a click finds a control: a knob's centre, a switch's first position.
CPoint probePoint(const panels::ColumnPlaces& place);
// Where a click selects a switch's position (0 ..).
CPoint positionPoint(const panels::ColumnPlaces& place, int position);
// The position a switch on screen shows lit, by where it is bluest.
int litPosition(const Image& screen, const panels::ColumnPlaces& place);

// Where the screenshots of a run go (created on demand).
std::string screenshotDir();

}  // namespace editor_test
