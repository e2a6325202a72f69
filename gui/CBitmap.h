// A PNG picture from the product's embedded resources, found by file name.
// The size is read from the PNG header at once; the pixels are decoded on
// first use, so an editor that is opened and closed without being shown
// never pays for its 281-frame strips. An unknown name gives a 0 x 0 bitmap
// that draws nothing.
//
// The artwork may also come drawn at 1.5 and 2 times its size
// ("name@1.5x.png", "name@2x.png"). A context at a scale draws from the set
// drawn for it, one picture pixel to one device pixel; at scales between, or
// where a set is missing, from the next larger set, smoothly resampled. Sizes and offsets stay in frame pixels whatever
// the scale. A strip too tall for one picture at a scale continues in further
// columns to the right, each column a whole number of frames.
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

    // The decoded pixels at scale 1, or null when there are none.
    cairo_surface_t* getSurface();

private:
    // The picture drawn at one scale, decoded on first use.
    struct Drawn {
        double scale = 1.0;
        const unsigned char* data = nullptr;
        std::size_t size = 0;
        cairo_surface_t* surface = nullptr;
    };
    static cairo_surface_t* decode(Drawn& drawn);
    // The set to draw from at a context's scale, null for the 1x picture.
    Drawn* drawnFor(double scale);
    void drawScaled(CDrawContext* context, Drawn& drawn, const CRect& rect, const CPoint& offset);

    const unsigned char* data = nullptr;
    std::size_t size = 0;
    int width = 0;
    int height = 0;
    cairo_surface_t* surface = nullptr;
    Drawn larger[2];  // @1.5x and @2x, data null where there is none
};
