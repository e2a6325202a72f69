// Knob film strips: 281 frames of 64 x 64 stacked vertically, frame i
// showing the value i / 280. Ordinary knobs sweep 300 degrees from seven to
// five o'clock; the direction knob turns all the way round, pointing where
// the sound field's front is turned (value 0.5 straight up).
#include <cmath>

#include "Artwork.h"
#include "Palette.h"

namespace artwork {
namespace {

enum class Kind { kRed, kBlue, kRedBlue, kBlueRed, kDirection };

constexpr double kSweep = 300.0;
constexpr double kCentre = kCell / 2.0;
constexpr double kTrackRadius = 26.0;
constexpr double kBodyRadius = 19.0;

double radians(double degrees) { return degrees / 180.0 * M_PI; }
// Clockwise degrees from straight up, as cairo measures from +x.
double cairoAngle(double clockwiseFromUp) { return radians(clockwiseFromUp - 90.0); }

void arc(cairo_t* cr, double from, double to, const Rgb& colour, double alpha, double width) {
    if (to < from) std::swap(from, to);
    cairo_new_path(cr);
    cairo_arc(cr, kCentre, kCentre, kTrackRadius, cairoAngle(from), cairoAngle(to));
    setColour(cr, colour, alpha);
    cairo_set_line_width(cr, width);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cr);
}

void body(cairo_t* cr) {
    // Soft shadow, then a brushed-looking dome lit from above.
    cairo_arc(cr, kCentre, kCentre + 1.5, kBodyRadius + 1, 0, 2 * M_PI);
    setColour(cr, {0, 0, 0}, 0.45);
    cairo_fill(cr);
    cairo_pattern_t* dome = cairo_pattern_create_linear(0, kCentre - kBodyRadius, 0, kCentre + kBodyRadius);
    cairo_pattern_add_color_stop_rgb(dome, 0, 0.36, 0.38, 0.40);
    cairo_pattern_add_color_stop_rgb(dome, 1, 0.16, 0.17, 0.18);
    cairo_arc(cr, kCentre, kCentre, kBodyRadius, 0, 2 * M_PI);
    cairo_set_source(cr, dome);
    cairo_fill_preserve(cr);
    cairo_pattern_destroy(dome);
    setColour(cr, {0.05, 0.05, 0.06});
    cairo_set_line_width(cr, 1);
    cairo_stroke(cr);
    cairo_arc(cr, kCentre, kCentre, kBodyRadius - 3, 0, 2 * M_PI);
    cairo_pattern_t* cap = cairo_pattern_create_linear(0, kCentre - kBodyRadius, 0, kCentre + kBodyRadius);
    cairo_pattern_add_color_stop_rgb(cap, 0, 0.27, 0.29, 0.31);
    cairo_pattern_add_color_stop_rgb(cap, 1, 0.20, 0.21, 0.23);
    cairo_set_source(cr, cap);
    cairo_fill(cr);
    cairo_pattern_destroy(cap);
}

void pointer(cairo_t* cr, double angle, const Rgb& colour) {
    double s = std::sin(radians(angle)), c = std::cos(radians(angle));
    cairo_move_to(cr, kCentre + 6 * s, kCentre - 6 * c);
    cairo_line_to(cr, kCentre + (kBodyRadius - 3) * s, kCentre - (kBodyRadius - 3) * c);
    setColour(cr, colour);
    cairo_set_line_width(cr, 2.5);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(cr);
}

void tick(cairo_t* cr, double angle, double inner, double outer, double alpha) {
    double s = std::sin(radians(angle)), c = std::cos(radians(angle));
    cairo_move_to(cr, kCentre + inner * s, kCentre - inner * c);
    cairo_line_to(cr, kCentre + outer * s, kCentre - outer * c);
    setColour(cr, kDimText, alpha);
    cairo_set_line_width(cr, 1.2);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cr);
}

void drawFrame(cairo_t* cr, Kind kind, double value) {
    const double start = -kSweep / 2;
    if (kind == Kind::kDirection) {
        double angle = 360.0 * value - 180.0;
        arc(cr, 0, 360, kGroove, 1.0, 4);
        for (int quarter = 0; quarter < 4; ++quarter) tick(cr, quarter * 90.0, 29.5, 32, 0.9);
        // Light trail from the front to where the front is turned.
        arc(cr, 0, angle, kBlue, 0.55, 4);
        body(cr);
        pointer(cr, angle, kText);
        double s = std::sin(radians(angle)), c = std::cos(radians(angle));
        cairo_arc(cr, kCentre + kTrackRadius * s, kCentre - kTrackRadius * c, 3.2, 0, 2 * M_PI);
        setColour(cr, kBrightBlue);
        cairo_fill(cr);
        return;
    }
    double angle = start + kSweep * value;
    arc(cr, start, -start, kGroove, 1.0, 4);
    tick(cr, start, 29.5, 32, 0.9);
    tick(cr, -start, 29.5, 32, 0.9);
    switch (kind) {
    case Kind::kRed:
    case Kind::kBlue: {
        const Rgb& colour = kind == Kind::kRed ? kRed : kBlue;
        arc(cr, start, -start, colour, 0.16, 4);
        arc(cr, start, angle, colour, 1.0, 4);
        break;
    }
    case Kind::kRedBlue:
    case Kind::kBlueRed: {
        // Centre-zero: a faint hint of each side's colour, the value from the top.
        const Rgb& low = kind == Kind::kRedBlue ? kRed : kBlue;
        const Rgb& high = kind == Kind::kRedBlue ? kBlue : kRed;
        arc(cr, start, 0, low, 0.16, 4);
        arc(cr, 0, -start, high, 0.16, 4);
        arc(cr, 0, angle, angle < 0 ? low : high, 1.0, 4);
        tick(cr, 0, 29.5, 32, 0.9);
        break;
    }
    case Kind::kDirection: break;
    }
    body(cr);
    pointer(cr, angle, kText);
}

bool drawStrip(const char* dir, const char* name, Kind kind, double scale) {
    const int rows = framesPerColumn(kKnobFrames, kCell, scale);
    const int columns = (kKnobFrames + rows - 1) / rows;
    Canvas canvas = makeCanvas(kCell * columns, kCell * rows, scale);
    for (int i = 0; i < kKnobFrames; ++i) {
        cairo_save(canvas.cr);
        cairo_translate(canvas.cr, double(i / rows) * kCell, double(i % rows) * kCell);
        drawFrame(canvas.cr, kind, double(i) / (kKnobFrames - 1));
        cairo_restore(canvas.cr);
    }
    return finish(canvas, dir, name, scale);
}

}  // namespace

bool drawKnobStrips(const char* dir) {
    bool ok = true;
    for (double scale : kScales) {
        ok = drawStrip(dir, "360_knob.png", Kind::kDirection, scale) && ok;
        ok = drawStrip(dir, "red_knob.png", Kind::kRed, scale) && ok;
        ok = drawStrip(dir, "blue_knob.png", Kind::kBlue, scale) && ok;
        ok = drawStrip(dir, "red_blue_knob.png", Kind::kRedBlue, scale) && ok;
        ok = drawStrip(dir, "blue_red_knob.png", Kind::kBlueRed, scale) && ok;
    }
    return ok;
}

}  // namespace artwork
