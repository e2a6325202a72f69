// The editor as a person meets it: Sorvane.so loaded through the host
// library, its editor opened in the host's X11 window, mouse input played
// by xdotool, and what is on screen read back from the X server.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CRect.h"
#include "EditorWindow.h"
#include "Plugin.h"
#include "SorvaneProtocol.h"

struct _XDisplay;

namespace editor_test {

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
    void click(int x, int y);
    void drag(int x, int y, int dy);
    // The parameter of the control under (x, y), from the edit gesture a
    // click starts at the host; -1 when nothing there takes a click.
    int tagAt(int x, int y);

    // Whether the value label at area shows the effect's display text of index.
    ::testing::AssertionResult labelShows(const Image& screen, VstInt32 index, const CRect& area);
    // The parameters of the controls at the probe points of the layout rows
    // (main row, then the upper row), -1 where nothing answers.
    std::vector<int> probeLayoutRows();

    // Sets a program of the layout given, as a host's program menu does.
    void chooseLayoutProgram(float layout, VstInt32 program);

    std::unique_ptr<vsthost::Plugin> plugin;
    std::unique_ptr<vsthost::EditorWindow> window;
    _XDisplay* display = nullptr;
};

// Probe points: the centres of the seven main-row columns and of the four
// upper-row columns the layouts use (switches probed on their left half).
inline const int kMainRowX[7] = {40, 132, 208, 278, 370, 446, 522};
constexpr int kMainRowY = 358;
inline const int kUpperRowX[4] = {93, 169, 245, 321};
constexpr int kUpperRowY = 220;

// What the probes find in each layout: main row, then upper row.
inline const std::vector<int> kStereoControls = {5, 6, 7, -1, 8, 9, -1, -1, -1, -1, -1};
inline const std::vector<int> kTwoOneControls = {5, 6, 7, -1, 8, 9, -1, -1, 12, 13, -1};
inline const std::vector<int> kQuadControls = {5, 6, 7, 14, 16, 15, 17, -1, -1, -1, -1};
inline const std::vector<int> kFiveControls = {5, 6, 7, 14, 16, 15, 17, -1, 10, 11, -1};
inline const std::vector<int> kFiveOneControls = {5, 6, 7, 14, 16, 15, 17, 10, 11, 12, 13};

// Value-label rectangles: main row columns (a wider gap after the third),
// upper rows, fixed panels.
inline CRect mainValue(int column) {
    const double left = 24 + 76 * column + (column >= 3 ? 10 : 0);
    return CRect(left, 393, left + 64, 408);
}
inline CRect upperValue(double left) { return CRect(left, 255, left + 64, 270); }
inline CRect transformValue(int column) { return CRect(24 + 76 * column, 117, 88 + 76 * column, 132); }
inline CRect zoomValue(int column) { return CRect(414 + 76 * column, 117, 478 + 76 * column, 132); }
inline CRect settingsValue(int column) { return CRect(414 + 76 * column, 255, 478 + 76 * column, 270); }

// A value label as the editor draws it (white on grey, black frame), with
// the given text, rendered off-screen by the toolkit at its place.
Image expectedValueLabel(const CRect& area, const std::string& text);

// Where the screenshots of a run go (created on demand).
std::string screenshotDir();

}  // namespace editor_test
