// The embedded artwork: every file the editor names is there and decodes,
// the strips have the frame counts the controls read them with and each
// switch frame lights its own position, and with these sizes the editor's
// own panel tables put every control, caption and value label inside its
// panel, and the panels inside the 578 x 502 editor without overlaps; the
// name panel keeps its text lines and the settings strip's five places
// apart and plain.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
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

// A picture's pixels as 0xAARRGGBB (premultiplied, as cairo keeps them).
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;
    std::uint32_t at(int x, int y) const { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
};

// Decodes the PNG fully, as the editor will when it draws it.
Picture decodePicture(const char* name) {
    const Resource* resource = findResource(name);
    if (!resource) return {};
    std::pair<const Resource*, std::size_t> cursor{resource, 0};
    cairo_surface_t* image = cairo_image_surface_create_from_png_stream(readFrom, &cursor);
    Picture picture;
    if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
        picture.width = cairo_image_surface_get_width(image);
        picture.height = cairo_image_surface_get_height(image);
        const unsigned char* data = cairo_image_surface_get_data(image);
        const int stride = cairo_image_surface_get_stride(image);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                picture.pixels.push_back(reinterpret_cast<const std::uint32_t*>(data + y * stride)[x]);
    }
    cairo_surface_destroy(image);
    return picture;
}
Size decode(const char* name) {
    const Picture picture = decodePicture(name);
    return {double(picture.width), double(picture.height)};
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
    const char* name = panel.title ? panel.title : "name panel";
    const std::size_t mainColumns = panel.main.first.size() + panel.main.second.size();
    std::vector<CRect> controls, captions, values;
    for (std::size_t i = 0; i < places.columns.size(); ++i) {
        const ColumnPlaces& c = places.columns[i];
        const CRect& area = i < mainColumns ? places.background : places.background2;
        for (const CRect& piece : {c.control, c.caption, c.value})
            EXPECT_TRUE(inside(piece, area)) << name << ", parameter " << c.column.tag;
        EXPECT_LE(c.caption.bottom, c.control.top) << name << ", parameter " << c.column.tag;
        EXPECT_LE(c.control.bottom, c.value.top) << name << ", parameter " << c.column.tag;
        controls.push_back(c.control);
        captions.push_back(c.caption);
        values.push_back(c.value);
    }
    if (panel.title) {
        EXPECT_TRUE(inside(places.title, hasUpperRow(panel) ? places.background2 : places.background)) << name;
    }
    for (const auto& row : {controls, captions, values}) EXPECT_TRUE(apart(row)) << name;
}

}  // namespace

// Each picture also drawn at twice its size: the same pixels'
// worth, a too-tall strip in side-by-side columns of the scaled width.
TEST(Resources, EveryNamedFileIsEmbeddedAtEveryScaleAndDecodesAndNoOtherNameIsFound) {
    EXPECT_EQ(resourceCount(), std::size_t(2 * kArtCount));
    for (const std::string name : kArtFiles) {
        const Resource* resource = findResource(name.c_str());
        ASSERT_NE(resource, nullptr) << name;
        EXPECT_EQ(resource->name, name);
        const Size size = decode(name.c_str());
        EXPECT_GT(size.width, 0) << name;
        EXPECT_GT(size.height, 0) << name;
        {
            const std::string scaledName = name.substr(0, name.size() - 4) + "@2x.png";
            const Size scaled = decode(scaledName.c_str()), expected{2.0 * size.width, 2.0 * size.height};
            const double columns = scaled.width / expected.width;
            EXPECT_EQ(columns, std::floor(columns)) << scaledName;
            EXPECT_TRUE(columns == 1 ? scaled.height == expected.height
                                     : columns * scaled.height >= expected.height &&
                                           (columns - 1) * scaled.height < expected.height && scaled.height <= 32767)
                << scaledName << " " << scaled.width << " x " << scaled.height;
        }
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
    // The settings' switches are low and wide, whole frames.
    const double cell = sizes[kInputSwitch].height / switchPositions(kInputSwitch);
    EXPECT_EQ(cell, std::floor(cell));
    EXPECT_LT(cell, sizes[kInputSwitch].width / 2);
}

// Frame p of a switch strip, drawn where a click selects position p, has
// its blue light over the p-th of its equal columns and nowhere else.
TEST(Artwork, EachSwitchFrameLightsThePositionItStandsFor) {
    for (Art toggle :
         {kMode2Switch, kMode2bSwitch, kMode4Switch, kMode5Switch, kInputSwitch, kOnOffSwitch, kScaleSwitch}) {
        const Picture strip = decodePicture(kArtFiles[toggle]);
        const int positions = switchPositions(toggle);
        ASSERT_GT(strip.height, 0) << kArtFiles[toggle];
        const int cell = strip.height / positions;
        for (int frame = 0; frame < positions; ++frame) {
            std::vector<double> blue(std::size_t(positions), 0.0);  // how much bluer than red, per column
            for (int y = frame * cell; y < (frame + 1) * cell; ++y)
                for (int x = 0; x < strip.width; ++x) {
                    const std::uint32_t p = strip.at(x, y);
                    blue[std::size_t(x * positions / strip.width)] += double(p & 0xff) - double((p >> 16) & 0xff);
                }
            for (int column = 0; column < positions; ++column) {
                if (column == frame) continue;
                EXPECT_LT(blue[std::size_t(column)], blue[std::size_t(frame)] / 4)
                    << kArtFiles[toggle] << ", frame " << frame << ", column " << column;
            }
        }
    }
}

TEST(Artwork, EveryPanelFitsTheEditorAndHoldsItsColumns) {
    const ArtSizes sizes = decodedSizes();
    const CRect editor(0, 0, 578, 502);
    std::vector<CRect> fixedAreas = {plotArea(sizes)};
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
}

// The name panel's picture is plain wherever the editor writes or puts a
// control: under the text lines and under every piece of the settings
// strip's five places, built or not, which stand apart from the lines and
// from each other, left to right, caption over switch over value label.
TEST(Artwork, NamePanelKeepsItsTextLinesAndAllFiveSettingPlacesClear) {
    const ArtSizes sizes = decodedSizes();
    const CRect panel = placesOf(kNamePanel, sizes).background;
    const Picture picture = decodePicture(kArtFiles[kNameArt]);
    ASSERT_EQ(picture.width, int(panel.getWidth()));
    // The panel's own shading runs top to bottom only: a plain area has
    // rows of one colour.
    auto plain = [&](const CRect& area) {
        const int left = int(area.left - panel.left);
        for (int y = int(area.top - panel.top); y < int(area.bottom - panel.top); ++y)
            for (int x = left; x < int(area.right - panel.left); ++x)
                if (picture.at(x, y) != picture.at(left, y))
                    return ::testing::AssertionFailure()
                           << "drawn on at (" << x + panel.left << ", " << y + panel.top << ")";
        return ::testing::AssertionSuccess();
    };
    const NameLines lines = nameLines();
    std::vector<CRect> pieces = {lines.bitMode, lines.version};
    for (int place = 0; place < int(std::size(kStripPlaces)); ++place) {
        const PiecePlaces at = stripPlace(place, sizes);
        EXPECT_TRUE(at.caption.bottom <= at.control.top && at.control.bottom <= at.value.top) << kStripPlaces[place];
        EXPECT_EQ(at.control.getHeight() * switchPositions(kInputSwitch), sizes[kInputSwitch].height);
        for (const CRect& piece : {at.caption, at.control, at.value}) pieces.push_back(piece);
    }
    for (const CRect& piece : pieces) {
        EXPECT_TRUE(inside(piece, panel));
        EXPECT_TRUE(plain(piece));
    }
    EXPECT_TRUE(apart(pieces));
    // The columns built so far stand at their places.
    for (const ColumnPlaces& built : placesOf(kNamePanel, sizes).columns)
        EXPECT_EQ(built.control, stripPlace(stripPlaceOf(built.column), sizes).control) << built.column.caption;
}
