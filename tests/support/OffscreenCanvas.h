// An off-screen ARGB image that views are drawn into, read back pixel by
// pixel as premultiplied ARGB.
#pragma once

#include <cairo.h>

#include <cstdint>
#include <cstring>

#include "CDrawContext.h"

class OffscreenCanvas {
public:
    OffscreenCanvas(int width, int height)
        : width(width), height(height), image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)) {}
    ~OffscreenCanvas() { cairo_surface_destroy(image); }
    OffscreenCanvas(const OffscreenCanvas&) = delete;
    OffscreenCanvas& operator=(const OffscreenCanvas&) = delete;

    // Clears the image to transparent, then lets `draw` paint through a context.
    template <typename Draw>
    void render(Draw&& draw) {
        cairo_t* cr = cairo_create(image);
        cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
        {
            CDrawContext context(cr);
            draw(&context);
        }
        cairo_destroy(cr);
        cairo_surface_flush(image);
    }

    uint32_t at(int x, int y) const {
        uint32_t pixel;
        std::memcpy(&pixel, cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image) + 4 * x, 4);
        return pixel;
    }

    const int width, height;
    cairo_surface_t* const image;
};
