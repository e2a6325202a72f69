#include "CBitmap.h"

#include <cairo.h>

#include <cstring>

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
}

CBitmap::~CBitmap() {
    if (surface) cairo_surface_destroy(surface);
}

cairo_surface_t* CBitmap::getSurface() {
    if (!surface && data) {
        PngReader reader{data, size, 0};
        surface = cairo_image_surface_create_from_png_stream(readPng, &reader);
        if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
            cairo_surface_destroy(surface);
            surface = nullptr;
            data = nullptr;
            width = height = 0;
        }
    }
    return surface;
}

void CBitmap::draw(CDrawContext* context, const CRect& rect, const CPoint& offset) {
    cairo_surface_t* pixels = getSurface();
    if (!pixels || !context) return;
    cairo_t* cr = context->getCairo();
    cairo_save(cr);
    cairo_rectangle(cr, rect.left, rect.top, rect.getWidth(), rect.getHeight());
    cairo_clip(cr);
    cairo_set_source_surface(cr, pixels, rect.left - offset.x, rect.top - offset.y);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_NEAREST);
    cairo_paint(cr);
    cairo_restore(cr);
}
