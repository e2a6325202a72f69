// Colours, sizes and drawing helpers shared by the artwork routines. The
// sizes are chosen so that every panel fits the 578 x 502 editor at its
// fixed place: knob and switch cells of 64 x 64, panels 126 high with a
// 20-pixel title band, and the settings' switches in the 64-high name panel
// 64 x 22 under a caption and over a value label.
#pragma once

#include <cairo.h>

namespace artwork {

struct Rgb {
    double r, g, b;
};

constexpr int kCell = 64;          // one knob or switch frame
constexpr int kKnobFrames = 281;   // frames of a knob strip
constexpr int kPanelHeight = 126;  // every panel but the name panel
constexpr int kTitleBand = 20;
constexpr int kSettingWidth = 64;  // one frame of a setting's switch
constexpr int kSettingHeight = 22;

constexpr Rgb kFrameBack{23 / 255.0, 25 / 255.0, 26 / 255.0};
constexpr Rgb kPanelTop{42 / 255.0, 46 / 255.0, 49 / 255.0};
constexpr Rgb kPanelBottom{33 / 255.0, 36 / 255.0, 38 / 255.0};
constexpr Rgb kPanelEdge{60 / 255.0, 65 / 255.0, 68 / 255.0};
constexpr Rgb kTitleBack{29 / 255.0, 32 / 255.0, 34 / 255.0};
constexpr Rgb kGroove{17 / 255.0, 19 / 255.0, 20 / 255.0};
constexpr Rgb kBlue{82 / 255.0, 116 / 255.0, 193 / 255.0};
constexpr Rgb kBrightBlue{110 / 255.0, 150 / 255.0, 230 / 255.0};
constexpr Rgb kRed{206 / 255.0, 76 / 255.0, 66 / 255.0};
constexpr Rgb kText{226 / 255.0, 229 / 255.0, 232 / 255.0};
constexpr Rgb kDimText{140 / 255.0, 147 / 255.0, 152 / 255.0};

constexpr const char* kFace = "DejaVu Sans Condensed";

void setColour(cairo_t* cr, const Rgb& c, double alpha = 1.0);
void roundedRect(cairo_t* cr, double x, double y, double w, double h, double radius);
// A dark panel of w x h with rounded corners; titled panels get the band
// their title label is drawn in.
void drawPanel(cairo_t* cr, double w, double h, bool titled);
// Text centred on (x, y); rotated by angle radians about that point.
void centredText(cairo_t* cr, const char* text, double x, double y, double size, bool bold, double angle = 0.0);
// Writes surface to dir/name; false on failure.
bool writePng(cairo_surface_t* surface, const char* dir, const char* name);

// Every picture is also drawn for HiDPI screens at twice its size, into
// "name@2x.png", from the same drawing code at the larger size, never by
// enlarging the 1x picture. Scales between take it smaller: a set at 1.5
// as well would double the plug-in's size (281-frame knob strips) for
// pictures no sharper than the 2x ones reduced.
inline constexpr double kScales[] = {1.0, 2.0};
// A picture of w x h editor pixels at a scale: its surface, and a context
// that draws in editor pixels.
struct Canvas {
    cairo_surface_t* surface;
    cairo_t* cr;
};
Canvas makeCanvas(int w, int h, double scale);
// Writes the canvas as name (or name's variant for the scale) and frees it.
bool finish(Canvas canvas, const char* dir, const char* name, double scale);
// Cairo's pictures are at most this many pixels high: a strip taller at a
// scale continues in further columns of whole frames.
inline constexpr int kTallestPicture = 32767;
int framesPerColumn(int frames, int frameHeight, double scale);

}  // namespace artwork
