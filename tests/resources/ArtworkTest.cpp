// The embedded artwork: every file the editor names is there and decodes,
// the strips have the frame counts the controls read them with, and with
// these sizes the editor's own panel tables put every control, caption and
// value label inside its panel, and the panels inside the 578 x 502 editor
// without overlaps.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "PanelTables.h"
#include "Resources.h"

using namespace panels;

namespace {

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
        size = {double(cairo_image_surface_get_width(image)), double(cairo_image_surface_get_height(image))};
    cairo_surface_destroy(image);
    return size;
}

ArtSizes decodedSizes() {
    ArtSizes sizes;
    for (int art = 0; art < kArtCount; ++art) sizes[art] = decode(kArtFiles[art]);
    return sizes;
}

bool inside(const CRect& inner, const CRect& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}
bool overlap(const CRect& a, const CRect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}
::testing::AssertionResult apart(const std::vector<CRect>& areas) {
    for (std::size_t i = 0; i < areas.size(); ++i)
        for (std::size_t j = i + 1; j < areas.size(); ++j)
            if (overlap(areas[i], areas[j])) return ::testing::AssertionFailure() << i << " overlaps " << j;
    return ::testing::AssertionSuccess();
}

// Each column inside its panel's area, caption over control over value
// label, and the neighbours of each kind apart.
void expectColumnsFit(const Panel& panel, const PanelPlaces& places) {
    const std::size_t mainColumns = panel.main.first.size() + panel.main.second.size();
    std::vector<CRect> controls, captions, values;
    for (std::size_t i = 0; i < places.columns.size(); ++i) {
        const ColumnPlaces& c = places.columns[i];
        const CRect& area = i < mainColumns ? places.background : places.background2;
        for (const CRect& piece : {c.control, c.caption, c.value})
            EXPECT_TRUE(inside(piece, area)) << panel.title << ", parameter " << c.column.tag;
        EXPECT_LE(c.caption.bottom, c.control.top) << panel.title << ", parameter " << c.column.tag;
        EXPECT_LE(c.control.bottom, c.value.top) << panel.title << ", parameter " << c.column.tag;
        controls.push_back(c.control);
        captions.push_back(c.caption);
        values.push_back(c.value);
    }
    EXPECT_TRUE(inside(places.title, hasUpperRow(panel) ? places.background2 : places.background)) << panel.title;
    for (const auto& row : {controls, captions, values}) EXPECT_TRUE(apart(row)) << panel.title;
}

}  // namespace

TEST(Resources, EveryNamedFileIsEmbeddedAndDecodesAndNoOtherNameIsFound) {
    EXPECT_EQ(resourceCount(), std::size_t(kArtCount));
    for (const char* name : kArtFiles) {
        const Resource* resource = findResource(name);
        ASSERT_NE(resource, nullptr) << name;
        EXPECT_STREQ(resource->name, name);
        const Size size = decode(name);
        EXPECT_GT(size.width, 0) << name;
        EXPECT_GT(size.height, 0) << name;
    }
    for (const char* unknown : {"missing.png", "360_knob", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(findResource(unknown), nullptr) << (unknown ? unknown : "null");
}

TEST(Artwork, StripsHoldWholeSquareFrames) {
    const ArtSizes sizes = decodedSizes();
    for (Art knob : {k360Knob, kRedKnob, kBlueKnob, kRedBlueKnob, kBlueRedKnob}) {
        EXPECT_EQ(sizes[knob].height, sizes[knob].width * kKnobFrames) << kArtFiles[knob];
        EXPECT_EQ(sizes[knob].width, sizes[kRedBlueKnob].width) << kArtFiles[knob] << ": knobs share one size";
    }
    for (Art toggle : {kMode2Switch, kMode2bSwitch, kMode4Switch, kMode5Switch})
        EXPECT_EQ(sizes[toggle].height, switchPositions(toggle) * sizes[toggle].width) << kArtFiles[toggle];
    // Captions and value labels step by the knob width, controls by the switch width.
    EXPECT_EQ(sizes[kMode2Switch].width, sizes[kRedBlueKnob].width);
}

TEST(Artwork, EveryPanelFitsTheEditorAndHoldsItsColumns) {
    const ArtSizes sizes = decodedSizes();
    const CRect editor(0, 0, 578, 502);
    std::vector<CRect> fixedAreas = {plotArea(sizes), nameArea(sizes)};
    for (const Panel* panel : kFixedPanels) {
        const PanelPlaces places = placesOf(*panel, sizes);
        expectColumnsFit(*panel, places);
        fixedAreas.push_back(places.background);
    }
    // The stereo panel's literal top is where the others' computed one lies.
    EXPECT_EQ(placesOf(kStereoPanel, sizes).background, placesOf(kQuadPanel, sizes).background);
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout) {
        const Panel& panel = *layoutPanel(layout);
        const PanelPlaces places = placesOf(panel, sizes);
        expectColumnsFit(panel, places);
        std::vector<CRect> areas = fixedAreas;
        areas.push_back(places.background);
        if (hasUpperRow(panel)) areas.push_back(places.background2);
        for (const CRect& area : areas) EXPECT_TRUE(inside(area, editor)) << panel.title;
        EXPECT_TRUE(apart(areas)) << panel.title;
    }
    // The name panel leaves room for the two text lines at x 24..184.
    EXPECT_TRUE(inside(CRect(24, 438, 184, 453), nameArea(sizes)));
    EXPECT_TRUE(inside(CRect(24, 463, 184, 478), nameArea(sizes)));
}
