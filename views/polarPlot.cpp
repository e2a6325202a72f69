#include "polarPlot.h"

#include <cmath>

#include "CDrawContext.h"

namespace {

constexpr double kPi = 3.141592653589793;
double radians(double degrees) { return degrees / 180.0 * kPi; }

const CColor kLeftColour(255, 0, 0, 255);
const CColor kRightColour(0, 0, 255, 255);
const CColor kCentreColour(255, 215, 0, 255);
const CColor kLeftSurroundColour(0, 255, 0, 255);
const CColor kRightSurroundColour(139, 69, 19, 255);

}  // namespace

polarPlot::polarPlot(const CRect& size)
    : CView(size),
      frontMode(0),
      frontPattern(0.5),
      frontWidth(45.0),
      centrePattern(0.5),
      centreGain(0),
      surroundMode(0),
      surroundPattern(0.5),
      surroundWidth(60.0),
      surroundGain(0),
      decodeMode(0),
      previousDecodeMode(0),
      fiveDecoderType(0) {}

polarPlot::~polarPlot() = default;

void polarPlot::draw(CDrawContext* context) {
    circle(context);
    switch (decodeMode) {
    case 2:
    case 3:
        leftMicPattern(context);
        rightMicPattern(context);
        break;
    case 4:
        leftMicPattern(context);
        rightMicPattern(context);
        lsMicPattern(context);
        rsMicPattern(context);
        break;
    case 5:
    case 6:
        if (fiveDecoderType == 2) {
            heller2Pattern(context);
        } else if (fiveDecoderType == 1) {
            heller1Pattern(context);
        } else if (fiveDecoderType == 0) {
            leftMicPattern(context);
            rightMicPattern(context);
            centreMicPattern(context);
            lsMicPattern(context);
            rsMicPattern(context);
        }
        break;
    default: break;
    }
    setDirty(false);
}

void polarPlot::circle(CDrawContext* context) {
    const double h = size.getHeight();
    const CPoint centre = size.getCenter();
    const double radius = h * 0.5 * 0.82;
    context->setLineWidth(3.0);
    context->setFrameColor(CColor(120, 120, 120, 125));
    context->drawEllipse(CRect(centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius),
                         kDrawStroked);
}

double polarPlot::radiusOf(double m) {
    lastRadius = std::fabs(m) * size.getHeight() * 0.5 * 0.8;
    return lastRadius;
}

void polarPlot::plotPoint(CDrawContext* context, double r, double phi, double k, bool mirrored, const CColor& colour) {
    const CPoint centre = size.getCenter();
    const double a = radians(phi);
    double x, y;
    if (mirrored) {
        x = centre.x + std::sin(a) * k * r;
        y = centre.y - std::cos(a) * k * r;
    } else {
        x = centre.x - k * r * std::sin(a);
        y = centre.y - k * r * std::cos(a);
    }
    context->beginDraw();
    context->drawPoint(CPoint(std::trunc(x), std::trunc(y)), colour);
    context->endDraw();
}

void polarPlot::leftMicPattern(CDrawContext* context) {
    const double p = frontPattern, w = radians(frontWidth);
    for (int phi = 0; phi < 360; ++phi) {
        const double a = radians(phi);
        // Any other mode computes nothing: the point keeps the last radius.
        double r = lastRadius;
        if (frontMode == 0)
            r = radiusOf((1 - p) * std::cos(radians(phi - frontWidth)) + p);
        else if (frontMode == 1)
            r = radiusOf(std::sin(w) * std::sin(a) + ((1 - p) * std::cos(a) + p) * std::cos(w));
        plotPoint(context, r, phi, 1.0, false, kLeftColour);
    }
}

void polarPlot::rightMicPattern(CDrawContext* context) {
    const double p = frontPattern, w = radians(frontWidth);
    for (int phi = 0; phi < 360; ++phi) {
        const double a = radians(phi);
        // Any other mode computes nothing: the point keeps the last radius.
        double r = lastRadius;
        if (frontMode == 0)
            r = radiusOf((1 - p) * std::cos(radians(phi + frontWidth)) + p);
        else if (frontMode == 1)
            r = radiusOf(((1 - p) * std::cos(a) + p) * std::cos(w) - std::sin(w) * std::sin(a));
        plotPoint(context, r, phi, 1.0, false, kRightColour);
    }
}

void polarPlot::centreMicPattern(CDrawContext* context) {
    const double p = centrePattern;
    const double k = std::pow(10.0, centreGain / 20.0 / 20.0);
    for (int phi = 0; phi < 360; ++phi) {
        const double r = radiusOf((1 - p) * std::cos(radians(phi)) + p);
        plotPoint(context, r, phi, k, false, kCentreColour);
    }
}

void polarPlot::lsMicPattern(CDrawContext* context) {
    const double p = surroundPattern, w = radians(surroundWidth);
    const double k = std::pow(10.0, surroundGain / 20.0 / 20.0);
    for (int s = -180; s < 180; ++s) {
        const double a = radians(s);
        // Any other mode computes nothing: the point keeps the last radius.
        double r = lastRadius;
        if (surroundMode == 0)
            r = radiusOf((1 - p) * std::cos(radians(s - surroundWidth)) + p);
        else if (surroundMode == 1)
            r = radiusOf(((1 - p) * std::cos(a) + p) * std::cos(w) + std::sin(w) * std::sin(a));
        plotPoint(context, r, s + 180, k, true, kLeftSurroundColour);
    }
}

void polarPlot::rsMicPattern(CDrawContext* context) {
    const double p = surroundPattern, w = radians(surroundWidth);
    const double k = std::pow(10.0, surroundGain / 20.0 / 20.0);
    for (int s = -180; s < 180; ++s) {
        const double a = radians(s);
        // Any other mode computes nothing: the point keeps the last radius.
        double r = lastRadius;
        if (surroundMode == 0)
            r = radiusOf((1 - p) * std::cos(radians(s + surroundWidth)) + p);
        else if (surroundMode == 1)
            r = radiusOf(((1 - p) * std::cos(a) + p) * std::cos(w) - std::sin(w) * std::sin(a));
        plotPoint(context, r, s + 180, k, true, kRightSurroundColour);
    }
}

void polarPlot::matrixCurve(CDrawContext* context, double constant, double cosine, double sine, double factor,
                            const CColor& colour) {
    for (int phi = 0; phi < 360; ++phi) {
        const double a = radians(phi);
        const double m = (constant + cosine * std::cos(a) + sine * std::sin(a)) * factor;
        plotPoint(context, radiusOf(m), phi, 1.0, false, colour);
    }
}

// The first fixed five-speaker matrix: left, right, left surround, right surround, centre.
void polarPlot::heller1Pattern(CDrawContext* context) {
    matrixCurve(context, 0.19944063435985465, 0.24760232, 0.18790454, 1.4017195157709, kLeftColour);
    matrixCurve(context, 0.19943401584038276, 0.24758662, -0.18792311, 1.4017195157709, kRightColour);
    matrixCurve(context, 0.3178256608187023, -0.23381746, 0.31911519, 1.40171951577099, kLeftSurroundColour);
    matrixCurve(context, 0.3178154714099854, -0.23380219, -0.31911386, 1.4017195157709, kRightSurroundColour);
    matrixCurve(context, -0.034515791178024585, -0.02756928, 1.724e-05, 1.4017195157709, kCentreColour);
}

// The second fixed matrix, same order.
void polarPlot::heller2Pattern(CDrawContext* context) {
    matrixCurve(context, 0.1515062828562195, 0.19218459, 0.20409261, 1.38921598327229, kLeftColour);
    matrixCurve(context, 0.1515075273641544, 0.19218379, -0.20409362, 1.38921598327229, kRightColour);
    matrixCurve(context, 0.31316166934280953, -0.27006948, 0.30405695, 1.38921598327229, kLeftSurroundColour);
    matrixCurve(context, 0.3131611602259271, -0.27006941, -0.30405595, 1.38921598327229, kRightSurroundColour);
    matrixCurve(context, 0.07066336560392555, 0.1557705, 0, 1.38921598327229, kCentreColour);
}
