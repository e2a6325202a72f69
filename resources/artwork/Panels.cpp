// Panel backgrounds. Sizes follow the editor's fixed positions: transforms
// 240 wide at x 12, plot 126 square at x 264, zoom and settings 164 wide at
// x 402, the mode panel 554 wide at the bottom, the second mode area 316
// wide at x 49 (centred on the 2.1 and 5.0 rows, 12 pixels round the 5.1
// row), all 126 high; the name panel 554 x 64 along the bottom edge.
#include <cairo.h>

#include <cmath>
#include <utility>

#include "Artwork.h"
#include "Palette.h"

namespace artwork {
namespace {

bool drawPanelFile(const char* dir, const char* name, int w, int h, bool titled, double scale) {
    Canvas canvas = makeCanvas(w, h, scale);
    drawPanel(canvas.cr, w, h, titled);
    return finish(canvas, dir, name, scale);
}

// The polar plot's grid: rings at quarter steps of full scale (the plot
// draws a value of 1 at 0.8 of the half-height) and spokes every 30 degrees.
bool drawPlot(const char* dir, double scale) {
    const int size = kPanelHeight;
    Canvas canvas = makeCanvas(size, size, scale);
    cairo_t* cr = canvas.cr;
    drawPanel(cr, size, size, false);
    const double c = size / 2.0, full = size * 0.5 * 0.8;
    cairo_arc(cr, c, c, full * 1.08, 0, 2 * M_PI);
    setColour(cr, kGroove, 0.55);
    cairo_fill(cr);
    cairo_set_line_width(cr, 1);
    for (int ring = 1; ring <= 4; ++ring) {
        cairo_arc(cr, c, c, full * ring / 4.0, 0, 2 * M_PI);
        setColour(cr, {1, 1, 1}, ring == 4 ? 0.10 : 0.06);
        cairo_stroke(cr);
    }
    for (int spoke = 0; spoke < 12; ++spoke) {
        double a = spoke * M_PI / 6;
        cairo_move_to(cr, c + std::sin(a) * full * 0.25, c - std::cos(a) * full * 0.25);
        cairo_line_to(cr, c + std::sin(a) * full, c - std::cos(a) * full);
        setColour(cr, {1, 1, 1}, spoke % 3 == 0 ? 0.10 : 0.05);
        cairo_stroke(cr);
    }
    // Orientation marks in the corners' spare room: front up, left on the left.
    setColour(cr, kBlue);
    centredText(cr, "F", c, 6.5, 8, true);
    centredText(cr, "B", c, size - 6.5, 8, true);
    centredText(cr, "L", 6.5, c, 8, true);
    centredText(cr, "R", size - 6.5, c, 8, true);
    return finish(canvas, dir, "plot.png", scale);
}

// The name panel: its left part (x 12..112 of the editor) stays plain for the
// bit-mode and version lines the editor writes there, the middle (x 120..464)
// for the settings' captions, switches and value labels; the product's mark
// stands at the right end, the emblem over the word.
bool drawName(const char* dir, double scale) {
    const int w = 554, h = 64;
    Canvas canvas = makeCanvas(w, h, scale);
    cairo_t* cr = canvas.cr;
    drawPanel(cr, w, h, false);

    // Emblem: a sphere of four components, the omni ring and three axes.
    const double ex = 503, ey = 21, r = 12;
    cairo_set_line_width(cr, 1.4);
    cairo_arc(cr, ex, ey, r, 0, 2 * M_PI);
    setColour(cr, kBlue);
    cairo_stroke(cr);
    for (const auto& [sx, sy] : {std::pair{1.0, 0.38}, std::pair{0.38, 1.0}}) {
        cairo_save(cr);
        cairo_translate(cr, ex, ey);
        cairo_scale(cr, sx, sy);
        cairo_arc(cr, 0, 0, r, 0, 2 * M_PI);
        cairo_restore(cr);
        setColour(cr, kBlue, 0.7);
        cairo_stroke(cr);
    }
    cairo_arc(cr, ex, ey, 2.2, 0, 2 * M_PI);
    setColour(cr, kText);
    cairo_fill(cr);

    // Word mark, letter-spaced and centred under the emblem.
    cairo_select_font_face(cr, kFace, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(cr, 12);
    const char* word = "SORVANE";
    const double spacing = 2.5;
    double markWidth = -spacing;
    for (const char* p = word; *p; ++p) {
        const char letter[2] = {*p, 0};
        cairo_text_extents_t e;
        cairo_text_extents(cr, letter, &e);
        markWidth += e.x_advance + spacing;
    }
    double x = ex - markWidth / 2;
    setColour(cr, kText);
    for (const char* p = word; *p; ++p) {
        const char letter[2] = {*p, 0};
        cairo_text_extents_t e;
        cairo_text_extents(cr, letter, &e);
        cairo_move_to(cr, x, 52);
        cairo_show_text(cr, letter);
        x += e.x_advance + spacing;
    }
    return finish(canvas, dir, "my_name.png", scale);
}

}  // namespace

bool drawPanels(const char* dir) {
    bool ok = true;
    for (double scale : kScales) {
        ok = drawPanelFile(dir, "transforms.png", 240, kPanelHeight, true, scale) && ok;
        ok = drawPanelFile(dir, "zoom.png", 164, kPanelHeight, true, scale) && ok;
        ok = drawPanelFile(dir, "controls.png", 554, kPanelHeight, true, scale) && ok;
        ok = drawPanelFile(dir, "controls2.png", 316, kPanelHeight, true, scale) && ok;
        ok = drawPlot(dir, scale) && ok;
        ok = drawName(dir, scale) && ok;
    }
    return ok;
}

}  // namespace artwork
