#include "Decoder.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "FixedMatrices.h"

using namespace sorvane;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kSqrt2 = 1.4142135623730951;

// Cache keys compare bits, not values: -0.0 and 0.0 give different sines of
// nothing, but NaN must still match NaN so a NaN field does not recompute
// every frame.
inline bool sameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

inline double gain(double dB) { return std::pow(10.0, dB / 20.0); }

}  // namespace

Decoder::Decoder() {
    rotateAngle = 0;
    tiltAngle = 0;
    tumbleAngle = 0;
    zoomAmount = 0;
    zoomMethod = 0;
    frontWidth = 45.0;
    frontPattern = 0.5;
    frontMode = 0;
    rearVerbGain = -100.0;
    hiVerbGain = -100.0;
    surroundMode = 0;
    surroundPattern = 0.5;
    surroundWidth = 60.0;
    surroundGain = 0;
    crossoverFrequency = 120;
    centrePattern = 0.5;
    centreGain = 0;
    subGain = 0;
    sampleRate = 44100;
    filterCoefs();
    decodeMode = 2;
    channelOrder = 1;
    fiveDecoderType = 0;
    leftFeed = 0;
    rightFeed = 0;
    centreFeed = 0;
    subFeed = 0;
    leftSurroundFeed = 0;
    rightSurroundFeed = 0;

    // Seed every cache from the current fields so each key is always valid.
    rotateCache.angle = tiltCache.angle = tumbleCache.angle = 0.0;
    rotateCache.s = tiltCache.s = tumbleCache.s = std::sin(degRad(0.0));
    rotateCache.c = tiltCache.c = tumbleCache.c = std::cos(degRad(0.0));
    zoomCache.amount = 1.0;
    refreshZoom();
    frontCache.pattern = surroundCache.pattern = centreCache.pattern = std::nan("");
    refreshFront();
    refreshSurround();
    refreshCentre();
    rearCache.dB = hiCache.dB = subCache.dB = 1.0;
    refreshLevel(rearCache, rearVerbGain);
    refreshLevel(hiCache, hiVerbGain);
    refreshLevel(subCache, subGain);

    kernels = &blockKernels(bestVectorPath());
}

double Decoder::degRad(double deg) { return deg / 180.0 * kPi; }

// ---------------------------------------------------------------------------
// Pipeline

int Decoder::processDecoder(double& W, double& X, double& Y, double& Z) {
    if (rotateAngle != 0) rotatePair(rotateCache, rotateAngle, X, Y);
    if (tiltAngle != 0) rotatePair(tiltCache, tiltAngle, Y, Z);
    if (tumbleAngle != 0) rotatePair(tumbleCache, tumbleAngle, X, Z);

    if (zoomAmount != 0) {
        switch (zoomMethod) {
        case 0: dominanceZoom(W, X, Y, Z); break;
        case 1: pressZoom(W, X, Y, Z); break;
        case 2: pushZoom(W, X, Y, Z); break;
        case 3: focusZoom(W, X, Y, Z); break;
        default: break;
        }
    }

    switch (decodeMode) {
    case kMonoLayout: monoDecoder(W, X, Y, Z); break;
    case kStereoLayout: stereoDecoder(W, X, Y, Z); break;
    case kTwoOneLayout: twoOneDecoder(W, X, Y, Z); break;
    case kQuadLayout: quadDecoder(W, X, Y, Z); break;
    case kFiveLayout: fiveDecoder(W, X, Y, Z); break;
    case kFiveOneLayout: fiveOneDecoder(W, X, Y, Z); break;
    default: return 0;
    }

    double* out = speakerFeeds;
    if (channelOrder == 0) {
        switch (decodeMode) {
        case kMonoLayout: out[0] = centreFeed; return 1;
        case kStereoLayout:
            out[0] = leftFeed;
            out[1] = rightFeed;
            return 2;
        case kTwoOneLayout:
            out[0] = leftFeed;
            out[1] = rightFeed;
            out[2] = subFeed;
            return 3;
        case kQuadLayout:
            // Both rear slots carry the right surround feed in the layout's
            // own quad order; hosts were built against this, keep it.
            out[0] = leftFeed;
            out[1] = rightFeed;
            out[2] = rightSurroundFeed;
            out[3] = rightSurroundFeed;
            return 4;
        case kFiveLayout:
            out[0] = leftFeed;
            out[1] = rightFeed;
            out[2] = centreFeed;
            out[3] = leftSurroundFeed;
            out[4] = rightSurroundFeed;
            return 5;
        default:
            out[0] = leftFeed;
            out[1] = rightFeed;
            out[2] = centreFeed;
            out[3] = subFeed;
            out[4] = leftSurroundFeed;
            out[5] = rightSurroundFeed;
            return 6;
        }
    }
    if (channelOrder != 1) return 0;

    // 5.1 order: L, R, C, LFE, Ls, Rs, with the layout's missing speakers 0.
    const bool hasFront = decodeMode != kMonoLayout;
    const bool hasCentre = decodeMode == kMonoLayout || decodeMode >= kFiveLayout;
    const bool hasSub = decodeMode == kTwoOneLayout || decodeMode == kFiveOneLayout;
    const bool hasSurround = decodeMode >= kQuadLayout;
    out[0] = hasFront ? leftFeed : 0.0;
    out[1] = hasFront ? rightFeed : 0.0;
    out[2] = hasCentre ? centreFeed : 0.0;
    out[3] = hasSub ? subFeed : 0.0;
    out[4] = hasSurround ? leftSurroundFeed : 0.0;
    out[5] = hasSurround ? rightSurroundFeed : 0.0;
    return 6;
}

// ---------------------------------------------------------------------------
// Transforms

void Decoder::refreshRotation(PlaneRotation& r, double angle) {
    if (sameBits(r.angle, angle)) return;
    r.angle = angle;
    r.s = std::sin(degRad(angle));
    r.c = std::cos(degRad(angle));
}

void Decoder::rotatePair(PlaneRotation& r, double angle, double& a, double& b) {
    refreshRotation(r, angle);
    const double a0 = a;
    const double b0 = b;
    a = r.c * a0 - r.s * b0;
    b = r.s * a0 + r.c * b0;
}

void Decoder::refreshZoom() {
    Zoom& z = zoomCache;
    if (sameBits(z.amount, zoomAmount)) return;
    z.amount = zoomAmount;

    const double lambda = std::pow(10.0, zoomAmount * 0.24 / 20.0);
    const double inverse = 1.0 / lambda;
    z.domA = 0.5 * (lambda + inverse);
    z.domB = 0.35355339059327373 * (lambda - inverse);
    z.domC = 0.7071067811865475 * (lambda - inverse);

    const double alpha = zoomAmount * 0.9 / 180.0 * kPi;
    const double s = std::sin(alpha);
    const double c = std::cos(alpha);
    z.pressX = std::fabs(s) * kSqrt2 * s;
    z.c = c;
    z.c2 = c * c;
    z.focusD = 1 + std::fabs(s);
    z.focusW = s / z.focusD * 0.7071067811865475;
    z.focusX = s / z.focusD * kSqrt2;
    z.focusYZ = std::sqrt((1 - std::fabs(s)) / z.focusD);
}

void Decoder::dominanceZoom(double& W, double& X, double&, double&) {
    refreshZoom();
    const double w = W;
    const double x = X;
    W = zoomCache.domA * w + zoomCache.domB * x;
    X = zoomCache.domA * x + zoomCache.domC * w;
}

void Decoder::pressZoom(double& W, double& X, double& Y, double& Z) {
    refreshZoom();
    X = zoomCache.pressX * W + zoomCache.c2 * X;
    Y = zoomCache.c * Y;
    Z = zoomCache.c * Z;
}

void Decoder::pushZoom(double& W, double& X, double& Y, double& Z) {
    refreshZoom();
    X = zoomCache.pressX * W + zoomCache.c2 * X;
    Y = zoomCache.c2 * Y;
    Z = zoomCache.c2 * Z;
}

void Decoder::focusZoom(double& W, double& X, double& Y, double& Z) {
    refreshZoom();
    const double w = W;
    const double x = X;
    W = zoomCache.focusW * x + w / zoomCache.focusD;
    X = zoomCache.focusX * w + x / zoomCache.focusD;
    Y = zoomCache.focusYZ * Y;
    Z = zoomCache.focusYZ * Z;
}

// ---------------------------------------------------------------------------
// Virtual microphones

void Decoder::refreshFront() {
    Pair& p = frontCache;
    if (sameBits(p.pattern, frontPattern) && sameBits(p.width, frontWidth)) return;
    p.pattern = frontPattern;
    p.width = frontWidth;
    p.sp = kSqrt2 * frontPattern;
    p.q = 1 - frontPattern;
    p.cw = std::cos(degRad(frontWidth));
    p.sw = std::sin(degRad(frontWidth));
}

void Decoder::refreshSurround() {
    Pair& p = surroundCache;
    if (sameBits(p.pattern, surroundPattern) && sameBits(p.width, surroundWidth) && sameBits(p.gain, surroundGain))
        return;
    p.pattern = surroundPattern;
    p.width = surroundWidth;
    p.gain = surroundGain;
    p.sp = kSqrt2 * surroundPattern;
    p.q = 1 - surroundPattern;
    p.cw = std::cos(degRad(surroundWidth));
    p.sw = std::sin(degRad(surroundWidth));
    p.g = gain(surroundGain);
}

void Decoder::refreshCentre() {
    Centre& c = centreCache;
    if (sameBits(c.pattern, centrePattern) && sameBits(c.gain, centreGain)) return;
    c.pattern = centrePattern;
    c.gain = centreGain;
    c.cp = centrePattern * kSqrt2;
    c.q = 1 - centrePattern;
    c.g = gain(centreGain);
}

void Decoder::refreshLevel(Level& l, double dB) {
    if (sameBits(l.dB, dB)) return;
    l.dB = dB;
    l.g = gain(dB);
}

void Decoder::centreMic(double& W, double& X) {
    refreshCentre();
    centreFeed = (centreCache.cp * W + centreCache.q * X) * centreCache.g;
}

void Decoder::monoDecoder(double& W, double& X, double&, double&) { centreMic(W, X); }

void Decoder::xyDecode(double& W, double& X, double& Y, double&) {
    refreshFront();
    const Pair& p = frontCache;
    leftFeed = p.sp * W + p.q * (p.cw * X + p.sw * Y);
    rightFeed = p.sp * W + p.q * (p.cw * X - p.sw * Y);
}

void Decoder::msDecode(double& W, double& X, double& Y, double&) {
    refreshFront();
    const Pair& p = frontCache;
    const double mid = p.sp * W + p.q * X;
    leftFeed = mid * p.cw + p.sw * Y;
    rightFeed = mid * p.cw - p.sw * Y;
}

void Decoder::xySurDecode(double& W, double& X, double& Y, double&) {
    refreshSurround();
    const Pair& p = surroundCache;
    leftSurroundFeed = (p.sp * W + p.q * (p.sw * Y - p.cw * X)) * p.g;
    rightSurroundFeed = (p.sp * W + p.q * (-p.cw * X - p.sw * Y)) * p.g;
}

void Decoder::msSurDecode(double& W, double& X, double& Y, double&) {
    refreshSurround();
    const Pair& p = surroundCache;
    const double mid = p.sp * W - p.q * X;
    leftSurroundFeed = (mid * p.cw + p.sw * Y) * p.g;
    rightSurroundFeed = (mid * p.cw - p.sw * Y) * p.g;
}

void Decoder::frontPair(double& W, double& X, double& Y) {
    double unusedZ = 0;
    if (frontMode == 1)
        msDecode(W, X, Y, unusedZ);
    else if (frontMode == 0)
        xyDecode(W, X, Y, unusedZ);
}

void Decoder::surroundPair(double& W, double& X, double& Y) {
    double unusedZ = 0;
    if (surroundMode == 1)
        msSurDecode(W, X, Y, unusedZ);
    else if (surroundMode == 0)
        xySurDecode(W, X, Y, unusedZ);
}

// Fixed five-speaker matrices (FixedMatrices.h).
void Decoder::fixedMatrix(const FixedMatrix& m, double W, double X, double Y) {
    const auto feed = [&](const MatrixRow& r) { return (r.w * W + r.x * X + r.y * Y) * m.gain; };
    leftFeed = feed(m.left);
    rightFeed = feed(m.right);
    centreFeed = feed(m.centre);
    leftSurroundFeed = feed(m.leftSurround);
    rightSurroundFeed = feed(m.rightSurround);
}

void Decoder::heller1(double& W, double& X, double& Y, double&) { fixedMatrix(kHeller1, W, X, Y); }
void Decoder::heller2(double& W, double& X, double& Y, double&) { fixedMatrix(kHeller2, W, X, Y); }

// ---------------------------------------------------------------------------
// Layout decoders

void Decoder::ambience(double& W, double& X, double& Y, double& Z) {
    if (rearVerbGain > kAmbienceThreshold) rearVerb(W, X, Y, Z);
    if (hiVerbGain > kAmbienceThreshold) hiVerb(W, X, Y, Z);
}

void Decoder::stereoDecoder(double& W, double& X, double& Y, double& Z) {
    frontPair(W, X, Y);
    ambience(W, X, Y, Z);
}

void Decoder::twoOneDecoder(double& W, double& X, double& Y, double& Z) {
    filterLF(W);
    filterHF(W, X, Y, Z);
    frontPair(W, X, Y);
    ambience(W, X, Y, Z);
}

void Decoder::quadDecoder(double& W, double& X, double& Y, double&) {
    frontPair(W, X, Y);
    surroundPair(W, X, Y);
}

void Decoder::fiveDecoder(double& W, double& X, double& Y, double& Z) {
    if (fiveDecoderType == kFixedMatrix2) {
        heller2(W, X, Y, Z);
    } else if (fiveDecoderType == kFixedMatrix1) {
        heller1(W, X, Y, Z);
    } else if (fiveDecoderType == kVirtualMicrophones) {
        centreMic(W, X);
        frontPair(W, X, Y);
        surroundPair(W, X, Y);
    }
}

void Decoder::fiveOneDecoder(double& W, double& X, double& Y, double& Z) {
    filterLF(W);
    filterHF(W, X, Y, Z);
    fiveDecoder(W, X, Y, Z);
}

// ---------------------------------------------------------------------------
// Crossover

void Decoder::filterCoefs() {
    const double K = std::tan(static_cast<double>(crossoverFrequency) * kPi / static_cast<double>(sampleRate));
    clearFilter();
    const double d = K * K + 2 * K + 1;
    feedbackCoefs[0] = 1.0;
    feedbackCoefs[1] = 2 * (K * K - 1) / d;
    feedbackCoefs[2] = (K * K - 2 * K + 1) / d;
    lowPassCoefs[0] = K * K / d;
    lowPassCoefs[1] = 2 * K * K / d;
    lowPassCoefs[2] = K * K / d;
    highPassCoefs[0] = 1 / d;
    highPassCoefs[1] = -2 / d;
    highPassCoefs[2] = 1 / d;
}

void Decoder::clearFilter() {
    for (double& v : lowPassState) v = 0;
    for (auto& history : highPassState)
        for (double& v : history) v = 0;
}

// Direct form I; the history keeps inputs and outputs as they are.
double Decoder::biquad(const double* b, const double* a, double* state, double x) {
    const double y = b[0] * x + b[1] * state[0] + b[2] * state[1] - a[1] * state[2] - a[2] * state[3];
    state[1] = state[0];
    state[0] = x;
    state[3] = state[2];
    state[2] = y;
    return y;
}

void Decoder::filterLF(double& W) {
    refreshLevel(subCache, subGain);
    const double y = biquad(lowPassCoefs, feedbackCoefs, lowPassState, kSqrt2 * W);
    subFeed = y * subCache.g;
}

// The high band is inverted: second-order Linkwitz-Riley bands are in
// antiphase, and the main speakers must sum in phase with the LFE.
void Decoder::filterHF(double& W, double& X, double& Y, double& Z) {
    W = -biquad(highPassCoefs, feedbackCoefs, highPassState[0], W);
    X = -biquad(highPassCoefs, feedbackCoefs, highPassState[1], X);
    Y = -biquad(highPassCoefs, feedbackCoefs, highPassState[2], Y);
    Z = -biquad(highPassCoefs, feedbackCoefs, highPassState[3], Z);
}

// ---------------------------------------------------------------------------
// Ambience: rear-facing (125 degrees off the front) and upward-facing
// (60 degrees above the horizon) pairs, in the front pair's XY or MS form.

void Decoder::rearVerb(double& W, double& X, double& Y, double&) {
    refreshLevel(rearCache, rearVerbGain);
    const double L = rearCache.g;
    if (frontMode == 1) {
        const double M = 0.5 * kSqrt2 * W - 0.5 * X;
        leftFeed += (0.8191520442889917 * Y + M * 0.5735764363510462) * L;
        rightFeed += (M * 0.5735764363510462 - 0.8191520442889917 * Y) * L;
    } else if (frontMode == 0) {
        leftFeed += (0.7071067811865476 * W + (-0.5735764363510462 * X + 0.8191520442889917 * Y) * 0.5) * L;
        rightFeed += (0.7071067811865476 * W + (-0.5735764363510462 * X - 0.8191520442889917 * Y) * 0.5) * L;
    }
}

void Decoder::hiVerb(double& W, double&, double& Y, double& Z) {
    refreshLevel(hiCache, hiVerbGain);
    const double H = hiCache.g;
    if (frontMode == 1) {
        const double M = 0.5 * kSqrt2 * W + 0.5 * Z;
        leftFeed += (0.49999999999999994 * Y + M * 0.8660254037844387) * H;
        rightFeed += (M * 0.8660254037844387 - 0.49999999999999994 * Y) * H;
    } else if (frontMode == 0) {
        leftFeed += (0.7071067811865476 * W + (0.8660254037844387 * Z + 0.49999999999999994 * Y) * 0.5) * H;
        rightFeed += (0.7071067811865476 * W + (0.8660254037844387 * Z - 0.49999999999999994 * Y) * 0.5) * H;
    }
}
