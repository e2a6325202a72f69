// Switch strips: one frame per position, stacked vertically. Each frame
// shows every position as a column of equal width (the columns match the
// click areas of the switch), the chosen one lit in blue. The panels'
// switches have 64 x 64 frames: two positions carry their marks upright, the
// narrow columns of four and five carry them turned to read upwards. The
// settings along the name panel have low, wide frames with short upright
// marks; their value labels spell the choice out.
#include <cairo.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "Artwork.h"
#include "Palette.h"

namespace artwork {
namespace {

// A frame's size, the recess its positions lie in, how far the light keeps
// from a column's sides, and how its marks fit: their largest size and the
// room left free beside an upright mark or along a turned one.
struct Housing {
    int width, height;
    double top, bottom;
    bool upright;
    double lightInset, markSize, markMargin;
};
// Upright marks sit in a squat housing; turned marks need the full height.
constexpr Housing kUprightHousing{kCell, kCell, 8, 56, true, 2, 11, 6};
constexpr Housing kTurnedHousing{kCell, kCell, 3, 61, false, 1.5, 10, 8};
// A setting's switch is all housing, its columns narrow.
constexpr Housing kSettingHousing{kSettingWidth, kSettingHeight, 0, kSettingHeight, true, 1.5, 9, 3};

double fittedSize(cairo_t* cr, const char* text, double size, double room, bool bold) {
    cairo_select_font_face(cr, kFace, CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, size);
    cairo_text_extents_t e;
    cairo_text_extents(cr, text, &e);
    return e.width > room ? size * room / e.width : size;
}

void drawFrame(cairo_t* cr, const std::vector<const char*>& marks, std::size_t chosen, const Housing& housing) {
    const double n = double(marks.size());
    const double column = double(housing.width) / n;
    const bool upright = housing.upright;
    const double top = housing.top, bottom = housing.bottom;
    // Housing: a dark recess with a thin edge.
    roundedRect(cr, 0.5, top + 0.5, housing.width - 1, bottom - top - 1, 4);
    setColour(cr, kGroove);
    cairo_fill_preserve(cr);
    setColour(cr, kPanelEdge);
    cairo_set_line_width(cr, 1);
    cairo_stroke(cr);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        double x = i * column;
        if (i > 0) {
            setColour(cr, kPanelEdge, 0.7);
            cairo_rectangle(cr, x, top + 4, 1, bottom - top - 8);
            cairo_fill(cr);
        }
        if (i == chosen) {
            cairo_pattern_t* lit = cairo_pattern_create_linear(0, top, 0, bottom);
            cairo_pattern_add_color_stop_rgb(lit, 0, kBrightBlue.r, kBrightBlue.g, kBrightBlue.b);
            cairo_pattern_add_color_stop_rgb(lit, 1, kBlue.r * 0.8, kBlue.g * 0.8, kBlue.b * 0.8);
            const double inset = housing.lightInset;
            roundedRect(cr, x + inset, top + 2, column - 2 * inset, bottom - top - 4, 2.5);
            cairo_set_source(cr, lit);
            cairo_fill(cr);
            cairo_pattern_destroy(lit);
        }
        setColour(cr, i == chosen ? kText : kDimText);
        double cx = x + column / 2, cy = (top + bottom) / 2;
        if (upright) {
            double size = fittedSize(cr, marks[i], housing.markSize, column - housing.markMargin, true);
            centredText(cr, marks[i], cx, cy, size, true);
        } else {
            double size = fittedSize(cr, marks[i], housing.markSize, bottom - top - housing.markMargin, i == chosen);
            centredText(cr, marks[i], cx, cy, size, i == chosen, -M_PI / 2);
        }
    }
}

bool drawStrip(const char* dir, const char* name, const std::vector<const char*>& marks, const Housing& housing,
               double scale) {
    const int frames = static_cast<int>(marks.size());
    Canvas canvas = makeCanvas(housing.width, housing.height * frames, scale);
    for (int i = 0; i < frames; ++i) {
        cairo_save(canvas.cr);
        cairo_translate(canvas.cr, 0, double(i) * housing.height);
        drawFrame(canvas.cr, marks, std::size_t(i), housing);
        cairo_restore(canvas.cr);
    }
    return finish(canvas, dir, name, scale);
}

}  // namespace

bool drawSwitchStrips(const char* dir) {
    bool ok = true;
    for (double scale : kScales) {
        ok = drawStrip(dir, "mode2_knob.png", {"XY", "MS"}, kUprightHousing, scale) && ok;
        ok = drawStrip(dir, "mode2b_knob.png", {"Nat.", "5.1"}, kUprightHousing, scale) && ok;
        ok = drawStrip(dir, "mode4_knob.png", {"Dominance", "Press", "Push", "Focus"}, kTurnedHousing, scale) && ok;
        ok = drawStrip(dir, "mode5_knob.png", {"Stereo", "2.1", "Quad", "5.0", "5.1"}, kTurnedHousing, scale) && ok;
        // The settings along the name panel.
        ok = drawStrip(dir, "input_switch.png", {"B", "AX", "N3D"}, kSettingHousing, scale) && ok;
        ok = drawStrip(dir, "onoff_switch.png", {"Off", "On"}, kSettingHousing, scale) && ok;
        // The editor's size: automatic, then 100, 150 and 200 %.
        ok = drawStrip(dir, "scale_switch.png", {"A", "1", "1.5", "2"}, kSettingHousing, scale) && ok;
    }
    return ok;
}

}  // namespace artwork
