// Lays out every artwork PNG, the polar plot of each layout and two
// mock-ups of the whole editor (stereo and 5.1 panels at the editor's fixed
// positions) on one image, so a person can judge the look and the fit.
// Usage: sorvane_contact_sheet OUTPUT.png
#include <cairo.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CDrawContext.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "Resources.h"
#include "polarPlot.h"

namespace {

const CColor kBlue(82, 116, 193, 255);
const CColor kGrey(94, 102, 106, 255);
const CColor kClear(0, 0, 0, 0);
const CColor kSheetBack(23, 25, 26, 255);

// Builds editor-like frames off-screen from the bitmaps' own sizes.
class MockEditor {
public:
    MockEditor() : frame(new CFrame(CRect(0, 0, 578, 502), nullptr, nullptr)) {
        frame->setBackgroundColor(CColor(23, 25, 26, 255));
    }
    ~MockEditor() {
        frame->forget();
        for (CBitmap* b : bitmaps) b->forget();
    }
    MockEditor(const MockEditor&) = delete;
    MockEditor& operator=(const MockEditor&) = delete;
    CFrame* get() { return frame; }

    CBitmap* bitmap(const char* name) {
        CBitmap* b = new CBitmap(name);
        bitmaps.push_back(b);
        return b;
    }
    void background(const char* name, double x, double y) {
        CBitmap* b = bitmap(name);
        add(new CView(CRect(x, y, x + b->getWidth(), y + b->getHeight())))->setBackground(b);
    }
    void title(const char* text, const CRect& r) { label(text, r, kNormalFontBig); }
    void caption(const char* text, double x, double y) {
        label(text, CRect(x, y, x + 64, y + 15), kNormalFontSmall);
    }
    void value(const char* text, double x, double y) {
        auto* v = static_cast<CTextLabel*>(add(new CTextLabel(CRect(x, y, x + 64, y + 15), nullptr, nullptr, 1)));
        v->setHoriAlign(kCenterText);
        v->setFont(kNormalFontVerySmall);
        v->setFontColor(kWhiteCColor);
        v->setBackColor(kGrey);
        v->setFrameColor(kBlackCColor);
        v->setText(text);
    }
    void knob(const char* strip, double x, double y, float v) {
        CBitmap* b = bitmap(strip);
        auto* k = new CAnimKnob(CRect(x, y, x + 64, y + 64), nullptr, 0, 281, b->getHeight() / 281, b);
        k->setValue(v);
        add(k);
    }
    void toggle(const char* strip, int positions, double x, double y, float v) {
        CBitmap* b = bitmap(strip);
        auto* s = new CHorizontalSwitch(CRect(x, y, x + 64, y + 64), nullptr, 0, positions,
                                        b->getHeight() / positions, positions, b);
        s->setValue(v);
        add(s);
    }
    polarPlot* plot(double x, double y) {
        CBitmap* b = bitmap("plot.png");
        CRect r(x, y, x + b->getWidth(), y + b->getHeight());
        add(new CView(r))->setBackground(b);
        return static_cast<polarPlot*>(add(new polarPlot(r)));
    }
    void text(const char* t, const CRect& r) {
        auto* l = static_cast<CTextLabel*>(add(new CTextLabel(r, t, nullptr, 0)));
        l->setFont(kNormalFontSmall);
        l->setFontColor(kBlue);
        l->setHoriAlign(kLeftText);
        l->setBackColor(kClear);
        l->setFrameColor(kClear);
    }

    void fixedPanels() {
        background("transforms.png", 12, 12);
        const char* names[3] = {"Rotate", "Tilt", "Tumble"};
        const char* values[3] = {"0.0°", "-45.0°", "90.0°"};
        const float settings[3] = {0.5f, 0.625f, 0.25f};
        for (int i = 0; i < 3; ++i) {
            knob("360_knob.png", 24 + i * 76, 50, settings[i]);
            caption(names[i], 24 + i * 76, 32);
            value(values[i], 24 + i * 76, 117);
        }
        title("Transforms", CRect(12, 12, 252, 32));

        background("zoom.png", 402, 12);
        toggle("mode4_knob.png", 4, 414, 50, 0.0f);
        knob("red_blue_knob.png", 490, 50, 0.625f);
        caption("Zoom Type", 414, 32);
        caption("Zoom", 490, 32);
        title("Zooming", CRect(402, 12, 566, 32));
        value("Dominance", 414, 117);
        value("25.0%", 490, 117);

        background("zoom.png", 402, 150);
        caption("Decoding", 414, 170);
        caption("Channels", 490, 170);
        title("Settings", CRect(402, 150, 566, 170));

        background("my_name.png", 12, 426);
        text("Version: 1.0.0.0", CRect(24, 463, 184, 478));
        text("Bit Mode: 32", CRect(24, 438, 184, 453));
    }

    void stereoPanel() {
        fixedPanels();
        toggle("mode5_knob.png", 5, 414, 188, 0.0f);
        toggle("mode2b_knob.png", 2, 490, 188, 1.0f);
        value("Stereo", 414, 255);
        value("5.1", 490, 255);
        polarPlot* p = plot(264, 12);
        p->decodeMode = 2;
        background("controls.png", 12, 288);
        title("Stereo Decoding & Reverb", CRect(12, 288, 566, 308));
        const double xs[5] = {24, 100, 176, 338, 414};
        const char* captions[5] = {"Mode", "Width", "Pattern", "RearVerb", "HiVerb"};
        const char* values[5] = {"XY", "45.0°", "Cardioid", "-18.00dB", "Off"};
        toggle("mode2_knob.png", 2, xs[0], 326, 0.0f);
        knob("red_knob.png", xs[1], 326, 0.5f);
        knob("blue_knob.png", xs[2], 326, 0.5f);
        knob("red_knob.png", xs[3], 326, 0.5f);
        knob("blue_knob.png", xs[4], 326, 0.0f);
        for (int i = 0; i < 5; ++i) {
            caption(captions[i], xs[i], 308);
            value(values[i], xs[i], 393);
        }
    }

    void fiveOnePanel() {
        fixedPanels();
        toggle("mode5_knob.png", 5, 414, 188, 1.0f);
        toggle("mode2b_knob.png", 2, 490, 188, 1.0f);
        value("5.1", 414, 255);
        value("5.1", 490, 255);
        polarPlot* p = plot(264, 12);
        p->decodeMode = 6;
        background("controls.png", 12, 288);
        background("controls2.png", 49, 150);
        const double xs[7] = {24, 100, 176, 262, 338, 414, 490};
        const char* captions[7] = {"Mode", "Width", "Pattern", "SurMode", "SurWidth", "SurPattern", "SurGain"};
        const char* values[7] = {"MS", "54.0°", "Hyper-Card.", "XY", "60.0°", "Cardioid", "0.00dB"};
        toggle("mode2_knob.png", 2, xs[0], 326, 1.0f);
        knob("red_knob.png", xs[1], 326, 0.6f);
        knob("blue_knob.png", xs[2], 326, 0.3f);
        toggle("mode2_knob.png", 2, xs[3], 326, 0.0f);
        knob("red_knob.png", xs[4], 326, 0.6667f);
        knob("blue_knob.png", xs[5], 326, 0.5f);
        knob("blue_red_knob.png", xs[6], 326, 0.75f);
        for (int i = 0; i < 7; ++i) {
            caption(captions[i], xs[i], 308);
            value(values[i], xs[i], 393);
        }
        const double xs2[4] = {61, 137, 213, 289};
        const char* captions2[4] = {"CtrPattern", "CtrGain", "SubGain", "xOver"};
        const char* values2[4] = {"Cardioid", "-6.00dB", "0.00dB", "120Hz"};
        knob("blue_knob.png", xs2[0], 188, 0.5f);
        knob("blue_red_knob.png", xs2[1], 188, 0.5f);
        knob("blue_red_knob.png", xs2[2], 188, 0.75f);
        knob("blue_knob.png", xs2[3], 188, 0.4545f);
        for (int i = 0; i < 4; ++i) {
            caption(captions2[i], xs2[i], 170);
            value(values2[i], xs2[i], 255);
        }
        title("5.1 Decoding", CRect(49, 150, 365, 170));
    }

private:
    CView* add(CView* view) {
        frame->addView(view);
        view->forget();
        return view;
    }
    void label(const char* text, const CRect& r, CFontRef font) {
        auto* l = static_cast<CTextLabel*>(add(new CTextLabel(r, nullptr, nullptr, 1)));
        l->setFont(font);
        l->setFontColor(kBlue);
        l->setBackColor(kClear);
        l->setFrameColor(kClear);
        l->setText(text);
    }

    CFrame* frame;
    std::vector<CBitmap*> bitmaps;
};

// Writes a heading in the sheet's own style.
void heading(cairo_t* cr, const char* text, double x, double y, double size = 14) {
    cairo_select_font_face(cr, "DejaVu Sans Condensed", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(cr, size);
    cairo_set_source_rgb(cr, 82 / 255.0, 116 / 255.0, 193 / 255.0);
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, text);
}

void note(cairo_t* cr, const char* text, double x, double y) {
    cairo_select_font_face(cr, "DejaVu Sans Condensed", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, 11);
    cairo_set_source_rgb(cr, 0.62, 0.65, 0.68);
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, text);
}

void drawFrameAt(cairo_t* cr, CFrame* frame, double x, double y) {
    cairo_save(cr);
    cairo_translate(cr, x, y);
    CDrawContext context(cr);
    frame->drawRect(&context, frame->getViewSize());
    cairo_restore(cr);
}

// Some frames of a strip side by side, each with its frame number.
double stripRow(cairo_t* cr, const char* name, double x, double y) {
    CBitmap bitmap(name);
    const Resource* resource = findResource(name);
    const int frames = bitmap.getHeight() >= 281 * 64 ? 281 : static_cast<int>(bitmap.getHeight() / 64);
    std::vector<int> shown;
    if (frames == 281)
        shown = {0, 35, 70, 105, 140, 175, 210, 245, 280};
    else
        for (int i = 0; i < frames; ++i) shown.push_back(i);
    char line[160];
    std::snprintf(line, sizeof line, "%s  %g x %g, %d frames, %zu bytes", name, bitmap.getWidth(),
                  bitmap.getHeight(), frames, resource ? resource->size : 0);
    note(cr, line, x, y + 12);
    CDrawContext context(cr);
    double cx = x;
    for (int i : shown) {
        bitmap.draw(&context, CRect(cx, y + 18, cx + 64, y + 82), CPoint(0, i * 64.0));
        std::snprintf(line, sizeof line, "%d", i);
        note(cr, line, cx + 26, y + 94);
        cx += 72;
    }
    return y + 104;
}

double pictureWithNote(cairo_t* cr, const char* name, double x, double y) {
    CBitmap bitmap(name);
    char line[160];
    std::snprintf(line, sizeof line, "%s  %g x %g", name, bitmap.getWidth(), bitmap.getHeight());
    note(cr, line, x, y + 12);
    CDrawContext context(cr);
    bitmap.draw(&context, CRect(x, y + 18, x + bitmap.getWidth(), y + 18 + bitmap.getHeight()));
    return y + 18 + bitmap.getHeight() + 10;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: sorvane_contact_sheet OUTPUT.png\n");
        return 2;
    }
    const int width = 1228, height = 1900;
    cairo_surface_t* sheet = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cr = cairo_create(sheet);
    cairo_set_source_rgb(cr, 0.055, 0.06, 0.065);
    cairo_paint(cr);

    heading(cr, "Sorvane editor artwork", 24, 34, 20);
    note(cr, "Editor mock-ups at the fixed panel positions (578 x 502): stereo and 5.1 panels", 24, 56);
    {
        MockEditor stereo;
        stereo.stereoPanel();
        drawFrameAt(cr, stereo.get(), 24, 70);
        MockEditor fiveOne;
        fiveOne.fiveOnePanel();
        drawFrameAt(cr, fiveOne.get(), 626, 70);
    }

    double y = 600;
    heading(cr, "Polar plot per layout", 24, y);
    struct Layout {
        const char* name;
        int mode, type, frontMode;
        double frontPattern;
    } layouts[] = {{"none (0)", 0, 0, 0, 0.5},   {"stereo XY", 2, 0, 0, 0.5},
                   {"2.1 MS fig-8", 3, 0, 1, 0.0}, {"quad", 4, 0, 0, 0.5},
                   {"5.0", 5, 0, 0, 0.5},       {"5.1 hyper", 6, 0, 0, 0.25},
                   {"5.x Heller 1", 5, 1, 0, 0.5}, {"5.x Heller 2", 6, 2, 0, 0.5}};
    double x = 24;
    for (const Layout& layout : layouts) {
        CFrame* frame = new CFrame(CRect(0, 0, 126, 126), nullptr, nullptr);
        CView* back = new CView(CRect(0, 0, 126, 126));
        CBitmap* b = new CBitmap("plot.png");
        back->setBackground(b);
        b->forget();
        frame->addView(back);
        back->forget();
        polarPlot* plot = new polarPlot(CRect(0, 0, 126, 126));
        plot->decodeMode = layout.mode;
        plot->fiveDecoderType = layout.type;
        plot->frontMode = layout.frontMode;
        plot->frontPattern = layout.frontPattern;
        frame->addView(plot);
        plot->forget();
        drawFrameAt(cr, frame, x, y + 12);
        note(cr, layout.name, x, y + 154);
        frame->forget();
        x += 148;
    }

    y += 176;
    heading(cr, "Knob strips (281 frames of 64 x 64; frames shown by number)", 24, y);
    y += 6;
    for (const char* name : {"360_knob.png", "red_knob.png", "blue_knob.png", "red_blue_knob.png",
                             "blue_red_knob.png"})
        y = stripRow(cr, name, 24, y);

    double switchY = y + 10;
    heading(cr, "Switch strips (one frame per position)", 24, switchY);
    double sy = switchY + 6;
    for (const char* name : {"mode2_knob.png", "mode2b_knob.png", "mode4_knob.png", "mode5_knob.png"})
        sy = stripRow(cr, name, 24, sy);

    heading(cr, "Panels", 420, switchY);
    double py = switchY + 6;
    py = pictureWithNote(cr, "controls.png", 420, py);
    double row = py;
    py = pictureWithNote(cr, "transforms.png", 420, row);
    pictureWithNote(cr, "zoom.png", 672, row);
    pictureWithNote(cr, "plot.png", 848, row);
    py = pictureWithNote(cr, "controls2.png", 420, py);
    py = pictureWithNote(cr, "my_name.png", 420, py);

    cairo_destroy(cr);
    cairo_status_t status = cairo_surface_write_to_png(sheet, argv[1]);
    cairo_surface_destroy(sheet);
    if (status != CAIRO_STATUS_SUCCESS) {
        std::fprintf(stderr, "sorvane_contact_sheet: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
