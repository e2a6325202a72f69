// The embedded artwork: every file the editor names is there and decodes,
// the strips have the frame counts the controls read them with, and the
// sizes place every panel inside the 578 x 502 editor without overlaps.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "Resources.h"

namespace {

struct Size {
    int width = 0, height = 0;
};

cairo_status_t readFrom(void* closure, unsigned char* out, unsigned int length) {
    auto* cursor = static_cast<std::pair<const Resource*, std::size_t>*>(closure);
    if (cursor->first->size - cursor->second < length) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(out, cursor->first->data + cursor->second, length);
    cursor->second += length;
    return CAIRO_STATUS_SUCCESS;
}

// Decodes the PNG fully, as the editor will when it draws it.
Size decode(const char* name) {
    const Resource* resource = findResource(name);
    if (!resource) return {};
    std::pair<const Resource*, std::size_t> cursor{resource, 0};
    cairo_surface_t* image = cairo_image_surface_create_from_png_stream(readFrom, &cursor);
    Size size;
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS)
        size = {cairo_image_surface_get_width(image), cairo_image_surface_get_height(image)};
    cairo_surface_destroy(image);
    return size;
}

const char* const kNames[] = {"360_knob.png",  "red_knob.png",      "blue_knob.png",
                              "red_blue_knob.png", "blue_red_knob.png", "mode2_knob.png",
                              "mode2b_knob.png", "mode4_knob.png",   "mode5_knob.png",
                              "transforms.png", "zoom.png",          "controls.png",
                              "controls2.png",  "plot.png",          "my_name.png"};

struct Rect {
    double left, top, right, bottom;
    bool inside(const Rect& outer) const {
        return left >= outer.left && top >= outer.top && right <= outer.right && bottom <= outer.bottom;
    }
    bool overlaps(const Rect& o) const {
        return left < o.right && o.left < right && top < o.bottom && o.top < bottom;
    }
};

class ArtworkLayout : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : kNames) sizes[name] = decode(name);
    }
    double W(const char* name) { return sizes[name].width; }
    double H(const char* name) { return sizes[name].height; }
    std::map<std::string, Size> sizes;
};

}  // namespace

TEST(Resources, EveryNamedFileIsEmbeddedAndDecodes) {
    EXPECT_EQ(resourceCount(), std::size(kNames));
    for (const char* name : kNames) {
        const Resource* resource = findResource(name);
        ASSERT_NE(resource, nullptr) << name;
        EXPECT_STREQ(resource->name, name);
        Size size = decode(name);
        EXPECT_GT(size.width, 0) << name;
        EXPECT_GT(size.height, 0) << name;
    }
}

TEST(Resources, UnknownNamesAreNotFound) {
    EXPECT_EQ(findResource("missing.png"), nullptr);
    EXPECT_EQ(findResource("360_knob"), nullptr);
    EXPECT_EQ(findResource(""), nullptr);
    EXPECT_EQ(findResource(nullptr), nullptr);
}

TEST_F(ArtworkLayout, StripsHoldWholeSquareFrames) {
    for (const char* knob : {"360_knob.png", "red_knob.png", "blue_knob.png", "red_blue_knob.png",
                             "blue_red_knob.png"}) {
        EXPECT_EQ(H(knob), W(knob) * 281) << knob;
        EXPECT_EQ(W(knob), W("red_blue_knob.png")) << knob << ": knobs share one size";
    }
    EXPECT_EQ(H("mode2_knob.png"), 2 * W("mode2_knob.png"));
    EXPECT_EQ(H("mode2b_knob.png"), 2 * W("mode2b_knob.png"));
    EXPECT_EQ(H("mode4_knob.png"), 4 * W("mode4_knob.png"));
    EXPECT_EQ(H("mode5_knob.png"), 5 * W("mode5_knob.png"));
    // Captions and value labels use the knob width as their step, controls the switch width.
    EXPECT_EQ(W("mode2_knob.png"), W("red_blue_knob.png"));
}

// The fixed places of the editor, computed from the bitmap sizes as the editor does.
TEST_F(ArtworkLayout, PanelsFitTheEditorWithoutOverlapping) {
    const Rect editor{0, 0, 578, 502};
    const double Hc = H("controls.png");
    std::vector<std::pair<const char*, Rect>> panels = {
        {"transforms", {12, 12, 12 + W("transforms.png"), 12 + H("transforms.png")}},
        {"zoom", {402, 12, 402 + W("zoom.png"), 12 + H("zoom.png")}},
        {"plot", {264, 12, 264 + W("plot.png"), 12 + H("plot.png")}},
        {"settings", {402, 150, 402 + W("zoom.png"), 150 + H("zoom.png")}},
        {"mode", {12, 2 * Hc + 36, 12 + W("controls.png"), 3 * Hc + 36}},
        {"mode2", {49, 150, 49 + W("controls2.png"), 150 + H("controls2.png")}},
        {"name", {12, 426, 12 + W("my_name.png"), 426 + H("my_name.png")}},
    };
    // The stereo panel uses the literal top 288; the others compute it.
    EXPECT_EQ(2 * Hc + 36, 288);
    for (size_t i = 0; i < panels.size(); ++i) {
        EXPECT_TRUE(panels[i].second.inside(editor)) << panels[i].first;
        for (size_t j = i + 1; j < panels.size(); ++j)
            EXPECT_FALSE(panels[i].second.overlaps(panels[j].second))
                << panels[i].first << " overlaps " << panels[j].first;
    }
}

TEST_F(ArtworkLayout, ControlRowsStayInsideTheirPanels) {
    const double Wm = W("mode2_knob.png"), Hm = H("mode2_knob.png"), Wrb = W("red_blue_knob.png");
    const double cell = H("red_blue_knob.png") / 281;
    const Rect mode{12, 288, 12 + W("controls.png"), 288 + H("controls.png")};
    const Rect mode2{49, 150, 49 + W("controls2.png"), 150 + H("controls2.png")};
    // Quad/5.x main row: three columns, a gap of Wm + 22, four more.
    double x = 24;
    for (int column = 0; column < 7; ++column) {
        EXPECT_TRUE((Rect{x, 326, x + Wm, 326 + Hm / 2}.inside(mode))) << "column " << column;
        EXPECT_TRUE((Rect{x, 393, x + Wrb, 408}.inside(mode))) << "value " << column;
        x += column == 2 ? Wm + 22 : Wm + 12;
    }
    // Stereo: the fourth column comes 2 Wm + 34 after the third.
    EXPECT_TRUE((Rect{24 + 2 * (Wm + 12) + 2 * Wm + 34 + Wm + 12, 326,
                      24 + 2 * (Wm + 12) + 2 * Wm + 34 + 2 * Wm + 12, 326 + Hm / 2}
                     .inside(mode)));
    // Second rows: 2.1 and 5.0 from Wm + 73, 5.1 from 61 with four columns.
    for (double start : {Wm + 73, 61.0}) {
        int columns = start == 61.0 ? 4 : 2;
        for (int column = 0; column < columns; ++column) {
            double left = start + column * (Wm + 12);
            EXPECT_TRUE((Rect{left, 188, left + Wm, 188 + Hm / 2}.inside(mode2))) << start;
            EXPECT_TRUE((Rect{left, 255, left + Wrb, 270}.inside(mode2))) << start;
        }
    }
    // Knobs end above their value labels in every row.
    EXPECT_LE(50 + cell, 117);
    EXPECT_LE(326 + Hm / 2, 393);
    EXPECT_LE(188 + H("mode5_knob.png") / 5, 255);
    // Transform knobs, zoom and settings controls inside their panels.
    const Rect transforms{12, 12, 12 + W("transforms.png"), 12 + H("transforms.png")};
    EXPECT_TRUE((Rect{24 + 2 * (Wrb + 12), 50, 24 + 2 * (Wrb + 12) + Wrb, 50 + cell}.inside(transforms)));
    const Rect zoom{402, 12, 402 + W("zoom.png"), 12 + H("zoom.png")};
    double zoomKnob = 414 + W("mode4_knob.png") + 12;
    EXPECT_TRUE((Rect{zoomKnob, 50, zoomKnob + Wrb, 50 + cell}.inside(zoom)));
    const Rect settings{402, 150, 402 + W("zoom.png"), 150 + H("zoom.png")};
    double order = 414 + W("mode5_knob.png") + 12;
    EXPECT_TRUE((Rect{order, 188, order + W("mode5_knob.png"), 188 + H("mode5_knob.png") / 5}.inside(settings)));
    // The name panel leaves room for the two text lines at x 24..184.
    const Rect name{12, 426, 12 + W("my_name.png"), 426 + H("my_name.png")};
    EXPECT_TRUE((Rect{24, 438, 184, 453}.inside(name)));
    EXPECT_TRUE((Rect{24, 463, 184, 478}.inside(name)));
}
