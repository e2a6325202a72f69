#include "CBitmap.h"

#include <cairo.h>

#include <cmath>
#include <cstring>
#include <string>

#include "CDrawContext.h"
#include "Resources.h"

namespace {

uint32_t bigEndian32(const unsigned char* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

struct PngReader {
    const unsigned char* data;
    std::size_t size;
    std::size_t position;
};

cairo_status_t readPng(void* closure, unsigned char* out, unsigned int length) {
    auto* reader = static_cast<PngReader*>(closure);
    if (reader->size - reader->position < length) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(out, reader->data + reader->position, length);
    reader->position += length;
    return CAIRO_STATUS_SUCCESS;
}

}  // namespace

CBitmap::CBitmap(const CResourceDescription& description) {
    const Resource* resource = description.name ? findResource(description.name) : nullptr;
    static const unsigned char signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    // Signature, then the IHDR chunk: length, type, width, height.
    if (!resource || resource->size < 24 || std::memcmp(resource->data, signature, 8) != 0 ||
        std::memcmp(resource->data + 12, "IHDR", 4) != 0)
        return;
    data = resource->data;
    size = resource->size;
    width = static_cast<int>(bigEndian32(data + 16));
    height = static_cast<int>(bigEndian32(data + 20));

    const std::string name(description.name);
    const std::string stem = name.size() > 4 ? name.substr(0, name.size() - 4) : name;
    const double scales[] = {1.5, 2.0};
    const char* suffixes[] = {"@1.5x.png", "@2x.png"};
    for (int i = 0; i < 2; ++i) {
        larger[i].scale = scales[i];
        if (const Resource* drawn = findResource((stem + suffixes[i]).c_str())) {
            larger[i].data = drawn->data;
            larger[i].size = drawn->size;
        }
    }
}

CBitmap::~CBitmap() {
    if (surface) cairo_surface_destroy(surface);
    for (Drawn& drawn : larger)
        if (drawn.surface) cairo_surface_destroy(drawn.surface);
}

cairo_surface_t* CBitmap::decode(Drawn& drawn) {
    if (!drawn.surface && drawn.data) {
        PngReader reader{drawn.data, drawn.size, 0};
        drawn.surface = cairo_image_surface_create_from_png_stream(readPng, &reader);
        if (cairo_surface_status(drawn.surface) != CAIRO_STATUS_SUCCESS) {
            cairo_surface_destroy(drawn.surface);
            drawn.surface = nullptr;
            drawn.data = nullptr;
        }
    }
    return drawn.surface;
}

cairo_surface_t* CBitmap::getSurface() {
    if (!surface && data) {
        Drawn plain{1.0, data, size, nullptr};
        surface = decode(plain);
        if (!surface) {
            data = nullptr;
            width = height = 0;
        }
    }
    return surface;
}

CBitmap::Drawn* CBitmap::drawnFor(double scale) {
    if (scale <= 1.0) return nullptr;
    Drawn* chosen = nullptr;
    for (Drawn& drawn : larger) {
        if (!drawn.data) continue;
        chosen = &drawn;
        if (drawn.scale >= scale - 1e-6) break;  // the smallest set at least as large
    }
    return chosen && decode(*chosen) ? chosen : nullptr;
}

// The set's pixels put on whole device pixels, resampled only when the
// context's scale is not the one the set was drawn at.
void CBitmap::drawScaled(CDrawContext* context, Drawn& drawn, const CRect& rect, const CPoint& offset) {
    cairo_t* cr = context->getCairo();
    const double scale = context->getScale();
    // Where a tall strip continues in a further column.
    const double columnHeight = cairo_image_surface_get_height(drawn.surface) / drawn.scale;
    const double column = std::floor(offset.y / columnHeight + 1e-9);
    const double x = (offset.x + column * width) * drawn.scale, y = (offset.y - column * columnHeight) * drawn.scale;
    double left = rect.left, top = rect.top, right = rect.right, bottom = rect.bottom;
    cairo_user_to_device(cr, &left, &top);
    cairo_user_to_device(cr, &right, &bottom);
    left = std::round(left), top = std::round(top), right = std::round(right), bottom = std::round(bottom);
    cairo_save(cr);
    cairo_identity_matrix(cr);
    cairo_rectangle(cr, left, top, right - left, bottom - top);
    cairo_clip(cr);
    cairo_translate(cr, left, top);
    const bool oneToOne = std::fabs(scale - drawn.scale) < 1e-6;
    if (!oneToOne) cairo_scale(cr, scale / drawn.scale, scale / drawn.scale);
    cairo_set_source_surface(cr, drawn.surface, -std::round(x), -std::round(y));
    cairo_pattern_set_filter(cairo_get_source(cr), oneToOne ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
    cairo_paint(cr);
    cairo_restore(cr);
}

void CBitmap::draw(CDrawContext* context, const CRect& rect, const CPoint& offset) {
    if (!context) return;
    if (Drawn* drawn = drawnFor(context->getScale())) {
        drawScaled(context, *drawn, rect, offset);
        return;
    }
    cairo_surface_t* pixels = getSurface();
    if (!pixels) return;
    cairo_t* cr = context->getCairo();
    cairo_save(cr);
    cairo_rectangle(cr, rect.left, rect.top, rect.getWidth(), rect.getHeight());
    cairo_clip(cr);
    cairo_set_source_surface(cr, pixels, rect.left - offset.x, rect.top - offset.y);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
    cairo_paint(cr);
    cairo_restore(cr);
}
