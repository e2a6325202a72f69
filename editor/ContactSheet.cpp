// Lays out the real editor in every layout (and with a fixed 5.x matrix),
// every artwork PNG and the polar plot of each layout on one image, so a
// person can judge the look and the fit. The editor draws off-screen, fed by
// a stand-in for the effect, so the sheet needs neither the plug-in nor a
// display.
// Usage: sorvane_contact_sheet OUTPUT.png
#include <cairo.h>

#include <cstdio>
#include <vector>

#include "CBitmap.h"
#include "CDrawContext.h"
#include "CFrame.h"
#include "EditorLink.h"
#include "MyEditor.h"
#include "PanelTables.h"
#include "Resources.h"
#include "SorvaneProtocol.h"
#include "polarPlot.h"

using namespace sorvane;

namespace {

// Keeps the values the editor shows, starting from the defaults, and answers
// with the protocol's display texts; changes go on to the editor as the
// effect's own do.
class PreviewLink : public EditorLink {
public:
    PreviewLink() {
        for (int i = 0; i < kNumParams; ++i) values[i] = kParameters[i].defaultValue;
    }
    MyEditor* editor = nullptr;

    void setParameter(std::int32_t index, float value) {
        if (isParameter(index)) values[index] = value;
        if (editor) editor->setParameter(index, value);
    }
    float getParameter(std::int32_t index) override {
        if (isParameter(index)) return values[index];
        if (index == kBitMode) return 32.0f;
        if (index == kFiveDecoderType) return static_cast<float>(fiveDecoderType);
        return 0.0f;
    }
    void getParameterDisplay(std::int32_t index, char* text) override {
        if (!isParameter(index)) return;
        const Kind kind = kParameters[index].kind;
        formatDisplay(kind, realValue(kind, values[index]), selectorValue(kind, values[index], 0), text);
    }
    void setParameterAutomated(std::int32_t index, float value) override { setParameter(index, value); }
    bool beginEdit(std::int32_t) override { return false; }
    bool endEdit(std::int32_t) override { return false; }
    void chooseFiveDecoder(int type) {
        fiveDecoderType = type;
        setParameter(kFiveDecoderType, fiveDecoderTypeMessage(type));
    }

private:
    float values[kNumParams] = {};
    int fiveDecoderType = kVirtualMicrophones;
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
double stripRow(cairo_t* cr, panels::Art strip, double x, double y) {
    const char* name = panels::kArtFiles[strip];
    CBitmap bitmap(name);
    const Resource* resource = findResource(name);
    const bool knob = strip < panels::kMode2Switch;
    const int frames = knob ? panels::kKnobFrames : panels::switchPositions(strip);
    const double cellWidth = bitmap.getWidth(), cellHeight = bitmap.getHeight() / frames;
    std::vector<int> shown;
    if (knob)
        shown = {0, 35, 70, 105, 140, 175, 210, 245, 280};
    else
        for (int i = 0; i < frames; ++i) shown.push_back(i);
    char line[160];
    std::snprintf(line, sizeof line, "%s  %g x %g, %d frames, %zu bytes", name, bitmap.getWidth(), bitmap.getHeight(),
                  frames, resource ? resource->size : 0);
    note(cr, line, x, y + 12);
    CDrawContext context(cr);
    double cx = x;
    for (int i : shown) {
        // Frames lower than a knob's sit on the same middle line.
        const double top = y + 18 + (64 - cellHeight) / 2;
        bitmap.draw(&context, CRect(cx, top, cx + cellWidth, top + cellHeight), CPoint(0, i * cellHeight));
        std::snprintf(line, sizeof line, "%d", i);
        note(cr, line, cx + cellWidth / 2 - 6, y + 94);
        cx += cellWidth + 8;
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
    const int width = 1228, height = 2970;
    cairo_surface_t* sheet = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cr = cairo_create(sheet);
    cairo_set_source_rgb(cr, 0.055, 0.06, 0.065);
    cairo_paint(cr);

    heading(cr, "Sorvane editor artwork", 24, 34, 20);
    note(cr, "The editor (578 x 502) in each layout, at the default values", 24, 56);
    {
        struct Shown {
            const char* name;
            int layout, fiveDecoderType;
        };
        const Shown shown[] = {
            {"Stereo", kStereoLayout, kVirtualMicrophones}, {"2.1", kTwoOneLayout, kVirtualMicrophones},
            {"Quad", kQuadLayout, kVirtualMicrophones},     {"5.0", kFiveLayout, kVirtualMicrophones},
            {"5.1", kFiveOneLayout, kVirtualMicrophones},   {"5.1, fixed matrix 2", kFiveOneLayout, kFixedMatrix2}};
        PreviewLink effect;
        MyEditor editorOfSheet(&effect);
        MyEditor* editor = effect.editor = &editorOfSheet;
        editor->open(nullptr);  // no parent window: off-screen
        for (std::size_t i = 0; i < std::size(shown); ++i) {
            effect.setParameter(kDecodeMode, layoutValue(shown[i].layout));
            if (shown[i].fiveDecoderType != kVirtualMicrophones) effect.chooseFiveDecoder(shown[i].fiveDecoderType);
            const double x = 24 + 602 * static_cast<double>(i % 2), top = 70 + 530 * static_cast<double>(i / 2);
            note(cr, shown[i].name, x, top + 10);
            drawFrameAt(cr, editor->getFrame(), x, top + 18);
        }
        editor->close();
    }

    double y = 1670;
    heading(cr, "Polar plot per layout", 24, y);
    struct Layout {
        const char* name;
        int mode, type, frontMode;
        double frontPattern;
    } layouts[] = {{"none (0)", 0, 0, 0, 0.5},     {"stereo XY", 2, 0, 0, 0.5},   {"2.1 MS fig-8", 3, 0, 1, 0.0},
                   {"quad", 4, 0, 0, 0.5},         {"5.0", 5, 0, 0, 0.5},         {"5.1 hyper", 6, 0, 0, 0.25},
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
    for (int knob = panels::k360Knob; knob < panels::kMode2Switch; ++knob) y = stripRow(cr, panels::Art(knob), 24, y);

    double switchY = y + 10;
    heading(cr, "Switch strips (one frame per position)", 24, switchY);
    double sy = switchY + 6;
    for (int toggle = panels::kMode2Switch; toggle < panels::kTransformsArt; ++toggle)
        sy = stripRow(cr, panels::Art(toggle), 24, sy);

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
