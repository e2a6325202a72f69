// The polar plot: over a grey reference circle, the horizontal pickup
// pattern of every virtual microphone of the current speaker layout, one
// colour per speaker, or the response of a fixed five-speaker matrix. It
// holds its own copies of the settings it draws; the editor writes them and
// marks the view dirty. Each curve is 360 separate points, one per degree.
#pragma once

#include "CView.h"

class CDrawContext;
struct CColor;
namespace sorvane {
struct MatrixRow;
}

class polarPlot : public CView {
public:
    explicit polarPlot(const CRect& size);
    ~polarPlot() override;

    void draw(CDrawContext* context) override;

    void circle(CDrawContext* context);
    void leftMicPattern(CDrawContext* context);
    void rightMicPattern(CDrawContext* context);
    void lsMicPattern(CDrawContext* context);
    void rsMicPattern(CDrawContext* context);
    void centreMicPattern(CDrawContext* context);
    void heller1Pattern(CDrawContext* context);
    void heller2Pattern(CDrawContext* context);

    int frontMode;
    double frontPattern;
    double frontWidth;
    double centrePattern;
    double centreGain;
    int surroundMode;
    double surroundPattern;
    double surroundWidth;
    double surroundGain;
    int decodeMode;
    int previousDecodeMode;
    int fiveDecoderType;

private:
    // The drawn radius of pattern value m (its magnitude: negative lobes
    // point the same way); remembered for a point that computes no value.
    double radiusOf(double m);
    // One point at radius r and drawing angle phi (degrees from the front),
    // scaled by k; mirrored puts it top to bottom (the surround placement).
    void plotPoint(CDrawContext* context, double r, double phi, double k, bool mirrored, const CColor& colour);
    // One speaker's feed of a fixed matrix for a plane wave from each degree, times scale.
    void matrixCurve(CDrawContext* context, const sorvane::MatrixRow& row, double scale, const CColor& colour);

    double lastRadius = 0;
};
