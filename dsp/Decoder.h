// The sound-field decoding engine: one B-format frame in, speaker feeds out.
//
// W carries the omnidirectional component 3 dB down (every virtual microphone
// weights it by sqrt 2); X points to the front, Y to the left, Z up. The shell
// writes the public fields directly and calls processDecoder once per frame.
//
// Sines, cosines and decibel gains are cached, keyed on the exact bits of the
// field values they come from, so a field written between two frames takes
// effect at the next frame and every output is bit-identical to evaluating
// the formulas afresh.
//
// processBlock runs the same pipeline over a whole block of frames at once,
// with the fields as they are when it is called; for every frame its outputs
// are bit-identical to calling processDecoder frame by frame.
#pragma once

#include "BlockKernels.h"
#include "EngineSelectors.h"

namespace sorvane {
struct FixedMatrix;
}

// Planar buffers of one block: the working feeds L, R, C, LFE, Ls, Rs (the
// caller's memory, each as long as the block), and after processBlock the
// samples of each speaker slot it filled: one of the feeds, or null where
// the slot is a written zero.
struct BlockFeeds {
    double* feed[6];
    const double* slot[6];
};

class Decoder {
public:
    // Settings (degrees, dB, Hz, selectors), in the order the shell knows them.
    double rotateAngle;
    double tiltAngle;
    double tumbleAngle;
    double zoomAmount;
    int zoomMethod;       // 0 Dominance, 1 Press, 2 Push, 3 Focus
    int decodeMode;       // a layout, kMonoLayout .. kFiveOneLayout (EngineSelectors.h)
    int channelOrder;     // 0 the layout's own order, 1 six slots in 5.1 order
    int fiveDecoderType;  // kVirtualMicrophones, kFixedMatrix1 or kFixedMatrix2
    double frontWidth;
    double frontPattern;  // 0 figure-of-eight, 0.5 cardioid, 1 omni
    int frontMode;        // 0 XY, 1 MS
    double rearVerbGain;  // added only while above kAmbienceThreshold
    double hiVerbGain;    // added only while above kAmbienceThreshold
    double centrePattern;
    double centreGain;
    double subGain;
    int surroundMode;  // 0 XY, 1 MS
    double surroundPattern;
    double surroundWidth;
    double surroundGain;
    int sampleRate;
    int crossoverFrequency;

    double speakerFeeds[6];

    // Crossover: second-order Linkwitz-Riley pair, direct form I.
    double lowPassCoefs[3];
    double highPassCoefs[3];
    double feedbackCoefs[3];     // a0 (unused), a1, a2, shared by both filters
    double lowPassState[4];      // x1, x2, y1, y2
    double highPassState[4][4];  // W, X, Y, Z, each x1, x2, y1, y2

    // Working feeds: they keep their values from one frame to the next.
    double leftFeed;
    double rightFeed;
    double centreFeed;
    double subFeed;
    double leftSurroundFeed;
    double rightSurroundFeed;

    Decoder();

    void filterCoefs();
    void clearFilter();
    double degRad(double deg);

    // Transforms, decodes and copies the feeds; returns the slots written.
    int processDecoder(double& W, double& X, double& Y, double& Z);
    // The same for `frames` planar frames, transformed in place; returns the
    // slots filled, as processDecoder would for each frame, and leaves every
    // field and feed as the last of those calls would.
    int processBlock(double* W, double* X, double* Y, double* Z, int frames, BlockFeeds& feeds);
    // processBlock in its two halves, for a caller that turns the field
    // between them: the rotations and zoom in place, then the decoding of
    // the transformed frames into the feeds.
    void transformBlock(double* W, double* X, double* Y, double* Z, int frames);
    int decodeTransformed(double* W, double* X, double* Y, double* Z, int frames, BlockFeeds& feeds);
    // The instruction set the block path runs on; the widest available by default.
    void useVectorPath(VectorPath path);
    // The loops of that path, for the caller's own block copies.
    const BlockKernels& blockLoops() const { return *kernels; }

    void dominanceZoom(double& W, double& X, double& Y, double& Z);
    void pressZoom(double& W, double& X, double& Y, double& Z);
    void pushZoom(double& W, double& X, double& Y, double& Z);
    void focusZoom(double& W, double& X, double& Y, double& Z);

    void monoDecoder(double& W, double& X, double& Y, double& Z);
    void stereoDecoder(double& W, double& X, double& Y, double& Z);
    void twoOneDecoder(double& W, double& X, double& Y, double& Z);
    void quadDecoder(double& W, double& X, double& Y, double& Z);
    void fiveDecoder(double& W, double& X, double& Y, double& Z);
    void fiveOneDecoder(double& W, double& X, double& Y, double& Z);
    void centreMic(double& W, double& X);
    void xyDecode(double& W, double& X, double& Y, double& Z);
    void msDecode(double& W, double& X, double& Y, double& Z);
    void xySurDecode(double& W, double& X, double& Y, double& Z);
    void msSurDecode(double& W, double& X, double& Y, double& Z);
    void heller1(double& W, double& X, double& Y, double& Z);
    void heller2(double& W, double& X, double& Y, double& Z);

    void filterLF(double& W);
    void filterHF(double& W, double& X, double& Y, double& Z);
    void rearVerb(double& W, double& X, double& Y, double& Z);
    void hiVerb(double& W, double& X, double& Y, double& Z);

private:
    // Derived values, each remembering the exact field bits it was made from.
    struct PlaneRotation {
        double angle, s, c;
    };
    struct Zoom {
        double amount;
        double domA, domB, domC;  // Dominance: 0.5(l+1/l), (l-1/l)/sqrt 8, (l-1/l)/sqrt 2
        double pressX, c, c2;     // Press/Push: |s| sqrt2 s, cos, cos^2
        double focusD, focusW, focusX, focusYZ;
    };
    struct Pair {
        double pattern, width, gain;
        double sp, q, cw, sw, g;
    };
    struct Centre {
        double pattern, gain;
        double cp, q, g;
    };
    struct Level {
        double dB, g;
    };

    void refreshRotation(PlaneRotation& r, double angle);
    void rotatePair(PlaneRotation& r, double angle, double& a, double& b);
    void refreshZoom();
    void refreshFront();
    void refreshSurround();
    void refreshCentre();
    static void refreshLevel(Level& l, double dB);
    void frontPair(double& W, double& X, double& Y);
    void surroundPair(double& W, double& X, double& Y);
    void fixedMatrix(const sorvane::FixedMatrix& m, double W, double X, double Y);
    void ambience(double& W, double& X, double& Y, double& Z);
    static double biquad(const double* b, const double* a, double* state, double x);

    // Block path stages; decodeBlock returns a bit per working feed it wrote.
    unsigned decodeBlock(double* W, double* X, double* Y, double* Z, int frames, double* const* feed);
    // Each writes its feeds over the block and returns their bits (0: none written).
    unsigned frontBlock(const double* W, const double* X, const double* Y, int frames, double* const* feed);
    unsigned surroundBlock(const double* W, const double* X, const double* Y, int frames, double* const* feed);
    unsigned centreBlock(const double* W, const double* X, int frames, double* const* feed);
    void ambienceBlock(const double* W, const double* X, const double* Y, const double* Z, int frames,
                       double* const* feed);
    // Which working feed each speaker slot carries (-1: a written zero), and how many slots.
    int slotSources(int source[6]) const;
    double& workingFeed(int index);

    const BlockKernels* kernels;

    PlaneRotation rotateCache, tiltCache, tumbleCache;
    Zoom zoomCache;
    Pair frontCache, surroundCache;
    Centre centreCache;
    Level rearCache, hiCache, subCache;
};
