#include "EditorSession.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cairo.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>

#include "CBitmap.h"
#include "CDrawContext.h"
#include "CTextLabel.h"

namespace editor_test {

double Image::brightness(const CRect& area) const {
    double sum = 0;
    int count = 0;
    for (int y = int(area.top); y < int(area.bottom); ++y)
        for (int x = int(area.left); x < int(area.right); ++x) {
            const uint32_t p = at(x, y);
            sum += ((p >> 16) & 0xff) + ((p >> 8) & 0xff) + (p & 0xff);
            ++count;
        }
    return count ? sum / (3.0 * count) : 0.0;
}

bool Image::savePng(const std::string& path) const {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    auto* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) reinterpret_cast<uint32_t*>(data + y * stride)[x] = at(x, y);
    cairo_surface_mark_dirty(surface);
    const bool ok = cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return ok;
}

int differingPixels(const Image& a, const Image& b, const CRect& area) {
    int count = 0;
    for (int y = int(area.top); y < int(area.bottom); ++y)
        for (int x = int(area.left); x < int(area.right); ++x)
            if (a.at(x, y) != b.at(x, y)) ++count;
    return count;
}

void EditorSession::SetUp() {
    std::string error;
    plugin = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    ASSERT_TRUE(plugin) << error;
    fx().open();
    fx().setSampleRate(48000.0f);
    fx().setBlockSize(256);
    fx().resume();
    display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr) << "these tests need an X server (run them under xvfb-run)";
}

void EditorSession::TearDown() {
    window.reset();
    if (display) XCloseDisplay(display);
    plugin.reset();
}

void EditorSession::openEditor() {
    std::string error;
    window = vsthost::EditorWindow::open(fx(), error);
    ASSERT_TRUE(window) << error;
    ASSERT_TRUE(window->openAnswer()) << "the editor answers effEditOpen with 1";
    settle();
}

void EditorSession::closeEditor() { window.reset(); }

void EditorSession::settle(int ticks) {
    for (int i = 0; i < ticks; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        if (window) window->idle();
    }
    // The plug-in draws on its own connection; let the server catch up.
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
}

Image captureWindow(Display* display, unsigned long window, int width, int height) {
    Image image;
    XSync(display, False);
    XImage* x = XGetImage(display, window, 0, 0, unsigned(width), unsigned(height), AllPlanes, ZPixmap);
    if (!x) return image;
    image.width = width;
    image.height = height;
    image.pixels.reserve(size_t(width) * size_t(height));
    for (int y = 0; y < height; ++y)
        for (int x0 = 0; x0 < width; ++x0) image.pixels.push_back(uint32_t(XGetPixel(x, x0, y)) & 0xffffff);
    XDestroyImage(x);
    return image;
}

Image EditorSession::capture() {
    return window ? captureWindow(display, window->windowId(), window->width(), window->height()) : Image{};
}

namespace {
void run(const std::string& command) {
    const int status = std::system(command.c_str());
    ASSERT_EQ(status, 0) << command;
}
}  // namespace

void EditorSession::click(const CPoint& at) {
    const std::string id = std::to_string(window->windowId());
    run("xdotool mousemove --sync --window " + id + " " + std::to_string(int(at.x)) + " " + std::to_string(int(at.y)) +
        " click 1");
    settle();
}

void EditorSession::drag(const CPoint& at, int dy) {
    const int x = int(at.x), y = int(at.y);
    const std::string id = std::to_string(window->windowId());
    // Small steps, as a hand moves; each is one motion event.
    std::string command =
        "xdotool mousemove --sync --window " + id + " " + std::to_string(x) + " " + std::to_string(y) + " mousedown 1";
    const int steps = 8;
    for (int i = 1; i <= steps; ++i)
        command += " mousemove --window " + id + " " + std::to_string(x) + " " + std::to_string(y + dy * i / steps) +
                   " sleep 0.01";
    command += " mouseup 1";
    run(command);
    settle();
}

int EditorSession::tagAt(const CPoint& at) {
    const size_t before = fx().log().beginEdits().size();
    click(at);
    const auto edits = fx().log().beginEdits();
    if (edits.size() == before) return -1;
    EXPECT_EQ(edits.size(), before + 1) << "one click, one gesture";
    return edits.back();
}

namespace {
// A value label as the editor draws it (white on grey, black frame), with
// the given text, rendered off-screen by the toolkit at its place.
Image expectedValueLabel(const CRect& area, const std::string& text) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 578, 502);
    cairo_t* cr = cairo_create(surface);
    {
        CDrawContext context(cr);
        auto* label = new CTextLabel(area, nullptr, nullptr, 1);
        label->setHoriAlign(kCenterText);
        label->setFont(kNormalFontVerySmall);
        label->setFontColor(kWhiteCColor);
        label->setBackColor(CColor(94, 102, 106, 255));
        label->setFrameColor(kBlackCColor);
        label->setText(text.c_str());
        context.saveGlobalState();
        context.setClipRect(area);
        label->draw(&context);
        context.restoreGlobalState();
        label->forget();
    }
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    Image image;
    image.width = 578;
    image.height = 502;
    const auto* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < 502; ++y)
        for (int x = 0; x < 578; ++x)
            image.pixels.push_back(reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xffffff);
    cairo_surface_destroy(surface);
    return image;
}
}  // namespace

::testing::AssertionResult EditorSession::labelShows(const Image& screen, VstInt32 index, int layout) {
    const CRect area = placeOf(index, layout).value;
    const std::string text = fx().parameterDisplay(index);
    const Image expected = expectedValueLabel(area, text);
    // Inside the one-pixel frame, whose edge blends with what lies beneath.
    CRect inner = area;
    inner.inset(1, 1);
    const int differing = differingPixels(screen, expected, inner);
    if (differing == 0) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "label of parameter " << index << " does not show \"" << text << "\" ("
                                         << differing << " pixels differ)";
}

const panels::ArtSizes& artSizes() {
    static const panels::ArtSizes sizes = [] {
        panels::ArtSizes read{};
        for (int art = 0; art < panels::kArtCount; ++art) {
            const CBitmap bitmap(panels::kArtFiles[art]);
            read[art] = {bitmap.getWidth(), bitmap.getHeight()};
        }
        return read;
    }();
    return sizes;
}

panels::ColumnPlaces placeOf(VstInt32 tag, int layout) {
    std::vector<const panels::Panel*> shown(std::begin(panels::kFixedPanels), std::end(panels::kFixedPanels));
    shown.push_back(panels::layoutPanel(layout));
    for (const panels::Panel* panel : shown)
        for (const panels::ColumnPlaces& place : panels::placesOf(*panel, artSizes()).columns)
            if (place.column.tag == tag) return place;
    ADD_FAILURE() << "no column of parameter " << tag << " in layout " << layout;
    return {};
}

int litPosition(const Image& screen, const panels::ColumnPlaces& place) {
    const CRect& c = place.control;
    const int positions = panels::switchPositions(place.column.strip);
    std::vector<double> blue(std::size_t(positions), 0.0);
    for (int y = int(c.top); y < int(c.bottom); ++y)
        for (int x = int(c.left); x < int(c.right); ++x) {
            const uint32_t p = screen.at(x, y);
            blue[std::size_t((x - int(c.left)) * positions / int(c.getWidth()))] +=
                double(p & 0xff) - double((p >> 16) & 0xff);
        }
    return int(std::max_element(blue.begin(), blue.end()) - blue.begin());
}

CPoint probePoint(const panels::ColumnPlaces& place) {
    const CRect& c = place.control;
    const double x = place.column.kind == panels::Control::Knob ? (c.left + c.right) / 2 : c.left + c.getWidth() / 4;
    return CPoint(x, (c.top + c.bottom) / 2);
}

CPoint positionPoint(const panels::ColumnPlaces& place, int position) {
    const CRect& c = place.control;
    const int positions = panels::switchPositions(place.column.strip);
    return CPoint(c.left + (position + 0.5) * c.getWidth() / positions, (c.top + c.bottom) / 2);
}

::testing::AssertionResult EditorSession::showsControlsOf(int layout) {
    std::map<std::pair<double, double>, int> expected;  // probe point: tag, -1 for none
    for (int shown = kStereoLayout; shown <= kFiveOneLayout; ++shown)
        for (const auto& place : panels::placesOf(*panels::layoutPanel(shown), artSizes()).columns) {
            const CPoint p = probePoint(place);
            int& tag = expected.try_emplace({p.x, p.y}, -1).first->second;
            if (shown == layout) tag = place.column.tag;
        }
    std::ostringstream wrong;
    for (const auto& [point, tag] : expected)
        if (const int found = tagAt(CPoint(point.first, point.second)); found != tag)
            wrong << " at (" << point.first << ", " << point.second << ") " << found << " instead of " << tag;
    if (wrong.str().empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "parameters answering:" << wrong.str();
}

void EditorSession::chooseLayoutProgram(float layout, VstInt32 program) {
    fx().setParameter(kDecodeMode, layout);
    fx().setProgram(program);
}

std::string screenshotDir() {
    const std::string dir = SORVANE_SCREENSHOT_DIR;
    std::filesystem::create_directories(dir);
    return dir;
}

}  // namespace editor_test
