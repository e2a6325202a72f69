#include "polarPlot.h"

#include <cmath>

#include "CDrawContext.h"
#include "EngineSelectors.h"
#include "FixedMatrices.h"

using namespace sorvane;

namespace {

constexpr double kPi = 3.141592653589793;
double radians(double degrees) { return degrees / 180.0 * kPi; }

// W's weight in a plane wave, 1/sqrt 2 rounded down: the curves' constant
// terms were once written out as each row's W weight times this, and these
// are their exact bits.
constexpr double kPlaneWaveW = 0.7071067811865475;
static_assert(kHeller1.left.w * kPlaneWaveW == 0.19944063435985465 &&
              kHeller1.right.w * kPlaneWaveW == 0.19943401584038276 &&
              kHeller1.leftSurround.w * kPlaneWaveW == 0.3178256608187023 &&
              kHeller1.rightSurround.w * kPlaneWaveW == 0.3178154714099854 &&
              kHeller1.centre.w * kPlaneWaveW == -0.034515791178024585 &&
              kHeller2.left.w * kPlaneWaveW == 0.1515062828562195 &&
              kHeller2.right.w * kPlaneWaveW == 0.1515075273641544 &&
              kHeller2.leftSurround.w * kPlaneWaveW == 0.31316166934280953 &&
              kHeller2.rightSurround.w * kPlaneWaveW == 0.3131611602259271 &&
              kHeller2.centre.w * kPlaneWaveW == 0.07066336560392555);

// The first matrix's curves have always been drawn at its gain as first typed
// here, short of the last digit (the left surround's with another last
// digit): some 5e-14 of the radius off the engine's kHeller1.gain, too little
// to move a drawn point at plot heights of 20 to 1000 pixels. Kept so the
// drawing stays exactly as it was.
constexpr double kHeller1DrawnGain = 1.4017195157709;
constexpr double kHeller1DrawnGainLeftSurround = 1.40171951577099;

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
    case kStereoLayout:
    case kTwoOneLayout:
        leftMicPattern(context);
        rightMicPattern(context);
        break;
    case kQuadLayout:
        leftMicPattern(context);
        rightMicPattern(context);
        lsMicPattern(context);
        rsMicPattern(context);
        break;
    case kFiveLayout:
    case kFiveOneLayout:
        if (fiveDecoderType == kFixedMatrix2) {
            heller2Pattern(context);
        } else if (fiveDecoderType == kFixedMatrix1) {
            heller1Pattern(context);
        } else if (fiveDecoderType == kVirtualMicrophones) {
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

void polarPlot::matrixCurve(CDrawContext* context, const MatrixRow& row, double scale, const CColor& colour) {
    // A plane wave from angle a arrives as W = 1/sqrt 2 (the omni 3 dB down),
    // X = cos a, Y = sin a.
    const double constant = row.w * kPlaneWaveW;
    for (int phi = 0; phi < 360; ++phi) {
        const double a = radians(phi);
        const double m = (constant + row.x * std::cos(a) + row.y * std::sin(a)) * scale;
        plotPoint(context, radiusOf(m), phi, 1.0, false, colour);
    }
}

// The first fixed five-speaker matrix: left, right, left surround, right surround, centre.
void polarPlot::heller1Pattern(CDrawContext* context) {
    const FixedMatrix& m = kHeller1;
    matrixCurve(context, m.left, kHeller1DrawnGain, kLeftColour);
    matrixCurve(context, m.right, kHeller1DrawnGain, kRightColour);
    matrixCurve(context, m.leftSurround, kHeller1DrawnGainLeftSurround, kLeftSurroundColour);
    matrixCurve(context, m.rightSurround, kHeller1DrawnGain, kRightSurroundColour);
    matrixCurve(context, m.centre, kHeller1DrawnGain, kCentreColour);
}

// The second fixed matrix, same order, at its own gain.
void polarPlot::heller2Pattern(CDrawContext* context) {
    const FixedMatrix& m = kHeller2;
    matrixCurve(context, m.left, m.gain, kLeftColour);
    matrixCurve(context, m.right, m.gain, kRightColour);
    matrixCurve(context, m.leftSurround, m.gain, kLeftSurroundColour);
    matrixCurve(context, m.rightSurround, m.gain, kRightSurroundColour);
    matrixCurve(context, m.centre, m.gain, kCentreColour);
}
