// A PNG picture from the product's embedded resources, found by file name.
// The size is read from the PNG header at once; the pixels are decoded on
// first use, so an editor that is opened and closed without being shown
// never pays for its 281-frame strips. An unknown name gives a 0 x 0 bitmap
// that draws nothing.
#pragma once

#include <cstddef>

#include "CBaseObject.h"
#include "CPoint.h"
#include "CRect.h"

typedef struct _cairo_surface cairo_surface_t;
class CDrawContext;

struct CResourceDescription {
    CResourceDescription(const char* name) : name(name) {}
    const char* name;
};

class CBitmap : public CBaseObject {
public:
    explicit CBitmap(const CResourceDescription& description);
    ~CBitmap() override;

    double getWidth() const { return width; }
    double getHeight() const { return height; }

    // Draws the part of the picture that starts at offset into rect.
    void draw(CDrawContext* context, const CRect& rect, const CPoint& offset = CPoint(0, 0));

    // The decoded pixels, or null when there are none.
    cairo_surface_t* getSurface();

private:
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    int width = 0;
    int height = 0;
    cairo_surface_t* surface = nullptr;
};
