// What the toolkit puts on the screen, checked pixel by pixel in an
// off-screen image: film-strip frames, switch positions, labels, and the
// frame's background and stacking order.
#include <gtest/gtest.h>

#include <cstring>

#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CDrawContext.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "OffscreenCanvas.h"
#include "Probes.h"

namespace {

// An off-screen image of the whole editor: cleared, then what the frame redraws of `area`.
struct Canvas : OffscreenCanvas {
    Canvas() : OffscreenCanvas(578, 502) {}
    void render(CFrame* frame, const CRect& area = CRect(0, 0, 578, 502)) {
        OffscreenCanvas::render([&](CDrawContext* context) { frame->drawRect(context, area); });
    }
};

uint32_t argb(int a, int r, int g, int b) {
    return (uint32_t(a) << 24) | (uint32_t(r) << 16) | (uint32_t(g) << 8) | uint32_t(b);
}
int alpha(uint32_t p) { return p >> 24; }
int red(uint32_t p) { return (p >> 16) & 255; }
int green(uint32_t p) { return (p >> 8) & 255; }
int blue(uint32_t p) { return p & 255; }

// Whether the 64 x 64 block at (x, y) equals frame n of strip exactly.
bool showsFrame(const Canvas& canvas, int x, int y, CBitmap& strip, int n) {
    cairo_surface_t* pixels = strip.getSurface();
    const unsigned char* data = cairo_image_surface_get_data(pixels);
    const int stride = cairo_image_surface_get_stride(pixels);
    for (int row = 0; row < 64; ++row)
        for (int column = 0; column < 64; ++column) {
            uint32_t expected;
            std::memcpy(&expected, data + (n * 64 + row) * stride + 4 * column, 4);
            if (canvas.at(x + column, y + row) != expected) return false;
        }
    return true;
}

CFrame* frameOf(const CColor& background = CColor(0, 0, 0, 0)) {
    auto* frame = new CFrame(CRect(0, 0, 578, 502), nullptr, nullptr);
    frame->setBackgroundColor(background);
    return frame;
}

}  // namespace

TEST(Drawing, KnobsAndSwitchesShowTheStripFrameTheirValueNames) {
    auto* knobStrip = new CBitmap("red_blue_knob.png");
    auto* switchStrip = new CBitmap("mode4_knob.png");
    CFrame* frame = frameOf();
    auto* knob = new CAnimKnob(CRect(414, 50, 478, 114), nullptr, 3, 281, knobStrip->getHeight() / 281, knobStrip);
    auto* zoomType =
        new CHorizontalSwitch(CRect(24, 50, 88, 114), nullptr, 4, 4, switchStrip->getHeight() / 4, 4, switchStrip);
    frame->addView(knob);
    frame->addView(zoomType);
    Canvas canvas;
    // The nearest of the 281 frames, told apart from its neighbour.
    for (auto [value, index] :
         {std::pair{0.0f, 0}, {0.0017f, 0}, {0.0018f, 1}, {0.25f, 70}, {0.3f, 84}, {0.9982f, 279}, {1.0f, 280}}) {
        knob->setValue(value);
        canvas.render(frame);
        EXPECT_TRUE(showsFrame(canvas, 414, 50, *knobStrip, index)) << value;
        EXPECT_FALSE(showsFrame(canvas, 414, 50, *knobStrip, index == 0 ? 1 : index - 1)) << value;
    }
    for (int position = 0; position < 4; ++position) {
        zoomType->setValue(position / 3.0f);
        canvas.render(frame);
        for (int n = 0; n < 4; ++n)
            EXPECT_EQ(showsFrame(canvas, 24, 50, *switchStrip, n), n == position) << position << " " << n;
    }
    forgetAll(knob, zoomType, knobStrip, switchStrip, frame);
}

TEST(Drawing, LabelsShowTheirTextInTheFontColourOverTheirBackAndFrame) {
    CFrame* frame = frameOf();
    auto* value = new CTextLabel(CRect(24, 393, 88, 408), nullptr, nullptr, 1);
    value->setFont(kNormalFontVerySmall);
    value->setFontColor(CColor(255, 255, 255, 255));
    value->setBackColor(CColor(94, 102, 106, 255));
    value->setFrameColor(kBlackCColor);
    // A caption with clear back and frame colours.
    auto* caption = new CTextLabel(CRect(24, 32, 88, 47), "Rotate", nullptr, 0);
    caption->setBackColor(CColor(0, 0, 0, 0));
    caption->setFrameColor(CColor(0, 0, 0, 0));
    caption->setFontColor(CColor(82, 116, 193, 255));
    frame->addView(value);
    frame->addView(caption);
    Canvas canvas;
    // Glyph pixels are antialiased: count those in `area` that pass `test`.
    auto count = [&](const CRect& area, auto test) {
        int n = 0;
        for (int x = area.left; x < area.right; ++x)
            for (int y = area.top; y < area.bottom; ++y) n += test(canvas.at(x, y));
        return n;
    };
    auto white = [](uint32_t p) { return red(p) > 200 && green(p) > 200 && blue(p) > 200; };
    auto opaque = [](uint32_t p) { return alpha(p) >= 128; };
    auto bluish = [](uint32_t p) { return alpha(p) >= 128 && blue(p) > green(p) && green(p) > red(p); };
    const CRect valueInside(25, 394, 87, 407), captionArea(24, 32, 88, 47);

    canvas.render(frame);
    EXPECT_EQ(canvas.at(24, 393), argb(255, 0, 0, 0)) << "frame corner";
    EXPECT_EQ(canvas.at(87, 407), argb(255, 0, 0, 0));
    EXPECT_EQ(canvas.at(26, 400), argb(255, 94, 102, 106)) << "inside, no text yet";
    EXPECT_EQ(canvas.at(89, 400), 0u) << "nothing outside the label";
    // Coverage varies at the glyph edges; the hue is the font colour's throughout,
    // and nothing else is drawn: no back colour or frame.
    EXPECT_GT(count(captionArea, bluish), 10);
    EXPECT_EQ(count(captionArea, opaque), count(captionArea, bluish));

    value->setText("Cardioid");
    canvas.render(frame);
    EXPECT_GT(count(valueInside, white), 10) << "the text is drawn in the font colour";
    value->setText(nullptr);
    canvas.render(frame);
    EXPECT_EQ(count(valueInside, white), 0) << "no text left";
    forgetAll(value, caption, frame);
}

TEST(Drawing, FrameFillsItsColourAndStacksViewsInOrder) {
    CFrame* frame = frameOf(CColor(23, 25, 26, 255));
    auto* under = new CTextLabel(CRect(10, 10, 60, 60));
    under->setBackColor(CColor(200, 0, 0, 255));
    auto* over = new CTextLabel(CRect(40, 40, 100, 100));
    over->setBackColor(CColor(0, 0, 200, 255));
    over->setFrameColor(CColor(0, 0, 200, 255));
    frame->addView(under);
    frame->addView(over);
    Canvas canvas;
    canvas.render(frame);
    EXPECT_EQ(canvas.at(300, 300), argb(255, 23, 25, 26));
    EXPECT_EQ(canvas.at(20, 20), argb(255, 200, 0, 0));
    EXPECT_EQ(canvas.at(50, 50), argb(255, 0, 0, 200)) << "added later, drawn on top";

    // A partial redraw touches only its rectangle.
    under->setBackColor(CColor(0, 200, 0, 255));
    canvas.render(frame, CRect(10, 10, 30, 30));
    EXPECT_EQ(canvas.at(15, 15), argb(255, 0, 200, 0));
    EXPECT_EQ(canvas.at(35, 35), 0u) << "outside the update rectangle";
    EXPECT_EQ(canvas.at(300, 300), 0u);
    forgetAll(under, over, frame);
}
