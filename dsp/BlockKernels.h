// The loops of the block path. Each runs one stage of the per-frame pipeline
// over a block of planar frames (one array per signal), with exactly the
// arithmetic processDecoder does for each frame, so the compiler can work on
// several frames at once without changing a bit of any of them.
//
// The same source is compiled once per instruction set the build can target
// (SSE2, the floor of every x86-64 CPU, and AVX2 without FMA); the engine
// picks one set per process, from what the CPU has.
#pragma once

enum class VectorPath {
    baseline,  // SSE2 on x86-64; the compiler's plain vectors elsewhere
    avx2,      // four doubles per instruction, chosen where the CPU has AVX2
};

struct BlockKernels {
    // Plane rotation of the pair (a, b) by cosine c and sine s.
    void (*rotate)(double* a, double* b, double c, double s, int frames);
    // Dominance: W and X mixed by the boost's three factors.
    void (*dominance)(double* W, double* X, double a, double b, double c, int frames);
    // Press and Push: X from W and X; Y and Z scaled by yz (cos, or cos squared).
    void (*press)(const double* W, double* X, double* Y, double* Z, double pressX, double c2, double yz, int frames);
    void (*focus)(double* W, double* X, double* Y, double* Z, double fw, double fx, double fd, double fyz, int frames);
    // The sub crossover: LFE from the low-passed omni, W X Y Z replaced by
    // their inverted high-passed versions. The histories are read and
    // written back (x1, x2, y1, y2 each).
    void (*crossover)(double* W, double* X, double* Y, double* Z, double* lfe, const double* lowCoefs,
                      const double* highCoefs, const double* feedbackCoefs, double* lowState, double (*highState)[4],
                      double subGain, int frames);

    // Virtual microphones: sp = sqrt 2 times the pattern, q = 1 - pattern,
    // cw and sw the width's cosine and sine, g the linear gain.
    void (*centre)(const double* W, const double* X, double* C, double cp, double q, double g, int frames);
    void (*xyFront)(const double* W, const double* X, const double* Y, double* L, double* R, double sp, double q,
                    double cw, double sw, int frames);
    void (*msFront)(const double* W, const double* X, const double* Y, double* L, double* R, double sp, double q,
                    double cw, double sw, int frames);
    void (*xySurround)(const double* W, const double* X, const double* Y, double* Ls, double* Rs, double sp, double q,
                       double cw, double sw, double g, int frames);
    void (*msSurround)(const double* W, const double* X, const double* Y, double* Ls, double* Rs, double sp, double q,
                       double cw, double sw, double g, int frames);
    // The two fixed five-speaker matrices.
    void (*heller1)(const double* W, const double* X, const double* Y, double* L, double* R, double* C, double* Ls,
                    double* Rs, int frames);
    void (*heller2)(const double* W, const double* X, const double* Y, double* L, double* R, double* C, double* Ls,
                    double* Rs, int frames);
    // Ambience added onto the front pair at linear level g.
    void (*msRear)(const double* W, const double* X, const double* Y, double* L, double* R, double g, int frames);
    void (*xyRear)(const double* W, const double* X, const double* Y, double* L, double* R, double g, int frames);
    void (*msHeight)(const double* W, const double* Y, const double* Z, double* L, double* R, double g, int frames);
    void (*xyHeight)(const double* W, const double* Y, const double* Z, double* L, double* R, double g, int frames);

    // Block copies for the audio callbacks.
    void (*fill)(double* out, double value, int frames);
    void (*silence)(float* out, int frames);
    void (*copy)(const double* in, double* out, int frames);
    void (*widen)(const float* in, double* out, int frames);
    void (*narrow)(const double* in, float* out, int frames);
};

// The kernels of a path; a path the build or the CPU lacks gives the baseline.
const BlockKernels& blockKernels(VectorPath path);
// Whether the build contains the path and this CPU can run it.
bool vectorPathAvailable(VectorPath path);
// The widest available path, decided once per process.
VectorPath bestVectorPath();
const char* vectorPathName(VectorPath path);
