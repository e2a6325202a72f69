#include "Palette.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace artwork {

void setColour(cairo_t* cr, const Rgb& c, double alpha) { cairo_set_source_rgba(cr, c.r, c.g, c.b, alpha); }

void roundedRect(cairo_t* cr, double x, double y, double w, double h, double radius) {
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + w - radius, y + radius, radius, -M_PI / 2, 0);
    cairo_arc(cr, x + w - radius, y + h - radius, radius, 0, M_PI / 2);
    cairo_arc(cr, x + radius, y + h - radius, radius, M_PI / 2, M_PI);
    cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
}

void drawPanel(cairo_t* cr, double w, double h, bool titled) {
    const double radius = 6;
    // The frame's colour behind the corners, so the panel sits flush on it.
    setColour(cr, kFrameBack);
    cairo_paint(cr);

    cairo_pattern_t* body = cairo_pattern_create_linear(0, 0, 0, h);
    cairo_pattern_add_color_stop_rgb(body, 0, kPanelTop.r, kPanelTop.g, kPanelTop.b);
    cairo_pattern_add_color_stop_rgb(body, 1, kPanelBottom.r, kPanelBottom.g, kPanelBottom.b);
    roundedRect(cr, 0.5, 0.5, w - 1, h - 1, radius);
    cairo_set_source(cr, body);
    cairo_fill_preserve(cr);
    cairo_pattern_destroy(body);
    setColour(cr, kPanelEdge);
    cairo_set_line_width(cr, 1);
    cairo_stroke(cr);

    if (titled) {
        cairo_save(cr);
        roundedRect(cr, 1, 1, w - 2, h - 2, radius - 0.5);
        cairo_clip(cr);
        setColour(cr, kTitleBack);
        cairo_rectangle(cr, 1, 1, w - 2, kTitleBand - 1);
        cairo_fill(cr);
        cairo_restore(cr);
        // A groove under the band: a dark line and a faint light one.
        setColour(cr, {0, 0, 0}, 0.45);
        cairo_rectangle(cr, 1, kTitleBand, w - 2, 1);
        cairo_fill(cr);
        setColour(cr, {1, 1, 1}, 0.05);
        cairo_rectangle(cr, 1, kTitleBand + 1, w - 2, 1);
        cairo_fill(cr);
    } else {
        // A faint light edge along the top.
        setColour(cr, {1, 1, 1}, 0.05);
        cairo_rectangle(cr, radius, 1, w - 2 * radius, 1);
        cairo_fill(cr);
    }
}

void centredText(cairo_t* cr, const char* text, double x, double y, double size, bool bold, double angle) {
    cairo_save(cr);
    cairo_select_font_face(cr, kFace, CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, size);
    cairo_translate(cr, x, y);
    cairo_rotate(cr, angle);
    cairo_text_extents_t e;
    cairo_text_extents(cr, text, &e);
    cairo_move_to(cr, -e.x_bearing - e.width / 2, -e.y_bearing - e.height / 2);
    cairo_show_text(cr, text);
    cairo_restore(cr);
}

bool writePng(cairo_surface_t* surface, const char* dir, const char* name) {
    std::string path = std::string(dir) + "/" + name;
    cairo_surface_flush(surface);
    if (cairo_surface_write_to_png(surface, path.c_str()) != CAIRO_STATUS_SUCCESS) {
        std::fprintf(stderr, "sorvane_artwork: cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}

Canvas makeCanvas(int w, int h, double scale) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(std::lround(w * scale)),
                                                          static_cast<int>(std::lround(h * scale)));
    cairo_t* cr = cairo_create(surface);
    if (scale != 1.0) cairo_scale(cr, scale, scale);
    return {surface, cr};
}

bool finish(Canvas canvas, const char* dir, const char* name, double scale) {
    cairo_destroy(canvas.cr);
    std::string file = name;
    if (scale != 1.0) {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, "@%gx.png", scale);
        file = file.substr(0, file.size() - 4) + suffix;
    }
    bool ok = cairo_surface_status(canvas.surface) == CAIRO_STATUS_SUCCESS && writePng(canvas.surface, dir, file.c_str());
    cairo_surface_destroy(canvas.surface);
    return ok;
}

int framesPerColumn(int frames, int frameHeight, double scale) {
    const int most = static_cast<int>(kTallestPicture / std::lround(frameHeight * scale));
    const int columns = (frames + most - 1) / most;
    return (frames + columns - 1) / columns;
}

}  // namespace artwork
