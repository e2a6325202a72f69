// The block path's loops, compiled once per instruction set: the build defines
// SORVANE_KERNEL_TABLE (the name of the table this copy exports) and, for the
// wider sets, the target flags. Everything else here is private to the copy,
// so no function compiled for AVX2 can stand in for its SSE2 twin.
//
// Every formula is written once, for a type V that is either one double (the
// frames left over at the end of a block) or a vector of several frames, so
// the leftover frames get the very same operations in the same order.
#include "BlockKernels.h"
#include "FixedMatrices.h"

#ifndef SORVANE_KERNEL_TABLE
#error "SORVANE_KERNEL_TABLE names the kernel table this copy defines"
#endif

namespace {

#if defined(__AVX__)
using Lanes = double __attribute__((vector_size(32)));
#else
using Lanes = double __attribute__((vector_size(16)));
#endif
constexpr int kLanes = sizeof(Lanes) / sizeof(double);

// The crossover's four high-pass channels run side by side, as many to a
// register as the instruction set holds.
using ChannelGroup = Lanes;
constexpr int kGroups = 4 / kLanes;

constexpr double kSqrt2 = 1.4142135623730951;

template <class V>
inline V load(const double* p) {
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
inline void store(double* p, V v) {
    __builtin_memcpy(p, &v, sizeof v);
}

// Runs body<Lanes>(f) for whole vectors of frames, then body<double>(f) for
// the rest.
template <class Body>
inline void forFrames(int frames, Body body) {
    int f = 0;
    for (; f + kLanes <= frames; f += kLanes) body.template operator()<Lanes>(f);
    for (; f < frames; ++f) body.template operator()<double>(f);
}

// ---------------------------------------------------------------------------
// Transforms and zoom

void rotate(double* __restrict a, double* __restrict b, double c, double s, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V a0 = load<V>(a + f), b0 = load<V>(b + f);
        store(a + f, c * a0 - s * b0);
        store(b + f, s * a0 + c * b0);
    });
}

void dominance(double* __restrict W, double* __restrict X, double a, double b, double c, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f);
        store(W + f, a * w + b * x);
        store(X + f, a * x + c * w);
    });
}

void press(const double* __restrict W, double* __restrict X, double* __restrict Y, double* __restrict Z, double pressX,
           double c2, double yz, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        store(X + f, pressX * load<V>(W + f) + c2 * load<V>(X + f));
        store(Y + f, yz * load<V>(Y + f));
        store(Z + f, yz * load<V>(Z + f));
    });
}

void focus(double* __restrict W, double* __restrict X, double* __restrict Y, double* __restrict Z, double fw, double fx,
           double fd, double fyz, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f);
        store(W + f, fw * x + w / fd);
        store(X + f, fx * w + x / fd);
        store(Y + f, fyz * load<V>(Y + f));
        store(Z + f, fyz * load<V>(Z + f));
    });
}

// ---------------------------------------------------------------------------
// Crossover: the recursion runs across time, so the frames go one by one; the
// four high-pass channels and the low-pass run side by side instead.

void crossover(double* __restrict W, double* __restrict X, double* __restrict Y, double* __restrict Z,
               double* __restrict lfe, const double* lowCoefs, const double* highCoefs, const double* feedbackCoefs,
               double* lowState, double (*highState)[4], double subGain, int frames) {
    const double a1 = feedbackCoefs[1], a2 = feedbackCoefs[2];
    const double lb0 = lowCoefs[0], lb1 = lowCoefs[1], lb2 = lowCoefs[2];
    const double hb0 = highCoefs[0], hb1 = highCoefs[1], hb2 = highCoefs[2];

    double lx1 = lowState[0], lx2 = lowState[1], ly1 = lowState[2], ly2 = lowState[3];
    ChannelGroup x1[kGroups], x2[kGroups], y1[kGroups], y2[kGroups];
    for (int c = 0; c < 4; ++c) {
        x1[c / kLanes][c % kLanes] = highState[c][0];
        x2[c / kLanes][c % kLanes] = highState[c][1];
        y1[c / kLanes][c % kLanes] = highState[c][2];
        y2[c / kLanes][c % kLanes] = highState[c][3];
    }

    for (int f = 0; f < frames; ++f) {
        // Low-pass of the omni at full level, from W before it is high-passed.
        const double lx = kSqrt2 * W[f];
        const double ly = lb0 * lx + lb1 * lx1 + lb2 * lx2 - a1 * ly1 - a2 * ly2;
        lx2 = lx1;
        lx1 = lx;
        ly2 = ly1;
        ly1 = ly;
        lfe[f] = ly * subGain;

        // Built and taken apart by name: the compiler keeps these in registers.
        ChannelGroup x[kGroups];
#if defined(__AVX__)
        x[0] = ChannelGroup{W[f], X[f], Y[f], Z[f]};
#else
        x[0] = ChannelGroup{W[f], X[f]};
        x[1] = ChannelGroup{Y[f], Z[f]};
#endif
        ChannelGroup y[kGroups];
        for (int g = 0; g < kGroups; ++g) {
            y[g] = hb0 * x[g] + hb1 * x1[g] + hb2 * x2[g] - a1 * y1[g] - a2 * y2[g];
            x2[g] = x1[g];
            x1[g] = x[g];
            y2[g] = y1[g];
            y1[g] = y[g];
        }
        W[f] = -y[0][0];
        X[f] = -y[0][1];
#if defined(__AVX__)
        Y[f] = -y[0][2];
        Z[f] = -y[0][3];
#else
        Y[f] = -y[1][0];
        Z[f] = -y[1][1];
#endif
    }

    lowState[0] = lx1;
    lowState[1] = lx2;
    lowState[2] = ly1;
    lowState[3] = ly2;
    for (int c = 0; c < 4; ++c) {
        highState[c][0] = x1[c / kLanes][c % kLanes];
        highState[c][1] = x2[c / kLanes][c % kLanes];
        highState[c][2] = y1[c / kLanes][c % kLanes];
        highState[c][3] = y2[c / kLanes][c % kLanes];
    }
}

// ---------------------------------------------------------------------------
// Virtual microphones and matrices

void centre(const double* __restrict W, const double* __restrict X, double* __restrict C, double cp, double q, double g,
            int frames) {
    forFrames(frames, [&]<class V>(int f) { store(C + f, (cp * load<V>(W + f) + q * load<V>(X + f)) * g); });
}

void xyFront(const double* __restrict W, const double* __restrict X, const double* __restrict Y, double* __restrict L,
             double* __restrict R, double sp, double q, double cw, double sw, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f), y = load<V>(Y + f);
        store(L + f, sp * w + q * (cw * x + sw * y));
        store(R + f, sp * w + q * (cw * x - sw * y));
    });
}

void msFront(const double* __restrict W, const double* __restrict X, const double* __restrict Y, double* __restrict L,
             double* __restrict R, double sp, double q, double cw, double sw, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V y = load<V>(Y + f);
        const V mid = sp * load<V>(W + f) + q * load<V>(X + f);
        store(L + f, mid * cw + sw * y);
        store(R + f, mid * cw - sw * y);
    });
}

void xySurround(const double* __restrict W, const double* __restrict X, const double* __restrict Y,
                double* __restrict Ls, double* __restrict Rs, double sp, double q, double cw, double sw, double g,
                int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f), y = load<V>(Y + f);
        store(Ls + f, (sp * w + q * (sw * y - cw * x)) * g);
        store(Rs + f, (sp * w + q * (-cw * x - sw * y)) * g);
    });
}

void msSurround(const double* __restrict W, const double* __restrict X, const double* __restrict Y,
                double* __restrict Ls, double* __restrict Rs, double sp, double q, double cw, double sw, double g,
                int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V y = load<V>(Y + f);
        const V mid = sp * load<V>(W + f) - q * load<V>(X + f);
        store(Ls + f, (mid * cw + sw * y) * g);
        store(Rs + f, (mid * cw - sw * y) * g);
    });
}

// A fixed five-speaker matrix (FixedMatrices.h) over the block.
template <const sorvane::FixedMatrix& m>
void fixedMatrix(const double* __restrict W, const double* __restrict X, const double* __restrict Y,
                 double* __restrict L, double* __restrict R, double* __restrict C, double* __restrict Ls,
                 double* __restrict Rs, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f), y = load<V>(Y + f);
        const auto feed = [&](const sorvane::MatrixRow& r) { return (r.w * w + r.x * x + r.y * y) * m.gain; };
        store(L + f, feed(m.left));
        store(R + f, feed(m.right));
        store(C + f, feed(m.centre));
        store(Ls + f, feed(m.leftSurround));
        store(Rs + f, feed(m.rightSurround));
    });
}

constexpr auto heller1 = fixedMatrix<sorvane::kHeller1>;
constexpr auto heller2 = fixedMatrix<sorvane::kHeller2>;

// ---------------------------------------------------------------------------
// Ambience, added onto the front pair

void msRear(const double* __restrict W, const double* __restrict X, const double* __restrict Y, double* __restrict L,
            double* __restrict R, double g, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V y = load<V>(Y + f);
        const V M = 0.5 * kSqrt2 * load<V>(W + f) - 0.5 * load<V>(X + f);
        store(L + f, load<V>(L + f) + (0.8191520442889917 * y + M * 0.5735764363510462) * g);
        store(R + f, load<V>(R + f) + (M * 0.5735764363510462 - 0.8191520442889917 * y) * g);
    });
}

void xyRear(const double* __restrict W, const double* __restrict X, const double* __restrict Y, double* __restrict L,
            double* __restrict R, double g, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), x = load<V>(X + f), y = load<V>(Y + f);
        store(L + f,
              load<V>(L + f) + (0.7071067811865476 * w + (-0.5735764363510462 * x + 0.8191520442889917 * y) * 0.5) * g);
        store(R + f,
              load<V>(R + f) + (0.7071067811865476 * w + (-0.5735764363510462 * x - 0.8191520442889917 * y) * 0.5) * g);
    });
}

void msHeight(const double* __restrict W, const double* __restrict Y, const double* __restrict Z, double* __restrict L,
              double* __restrict R, double g, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V y = load<V>(Y + f);
        const V M = 0.5 * kSqrt2 * load<V>(W + f) + 0.5 * load<V>(Z + f);
        store(L + f, load<V>(L + f) + (0.49999999999999994 * y + M * 0.8660254037844387) * g);
        store(R + f, load<V>(R + f) + (M * 0.8660254037844387 - 0.49999999999999994 * y) * g);
    });
}

void xyHeight(const double* __restrict W, const double* __restrict Y, const double* __restrict Z, double* __restrict L,
              double* __restrict R, double g, int frames) {
    forFrames(frames, [&]<class V>(int f) {
        const V w = load<V>(W + f), y = load<V>(Y + f), z = load<V>(Z + f);
        store(L + f,
              load<V>(L + f) + (0.7071067811865476 * w + (0.8660254037844387 * z + 0.49999999999999994 * y) * 0.5) * g);
        store(R + f,
              load<V>(R + f) + (0.7071067811865476 * w + (0.8660254037844387 * z - 0.49999999999999994 * y) * 0.5) * g);
    });
}

// ---------------------------------------------------------------------------
// Copies

// Plain loops: the build lets the compiler vectorise these itself, and keeps
// short blocks off the string instructions a memset would use.
void fill(double* __restrict out, double value, int frames) {
    for (int f = 0; f < frames; ++f) out[f] = value;
}

void silence(float* __restrict out, int frames) {
    for (int f = 0; f < frames; ++f) out[f] = 0.0f;
}

void copy(const double* __restrict in, double* __restrict out, int frames) {
    for (int f = 0; f < frames; ++f) out[f] = in[f];
}

void widen(const float* __restrict in, double* __restrict out, int frames) {
    for (int f = 0; f < frames; ++f) out[f] = static_cast<double>(in[f]);
}

void narrow(const double* __restrict in, float* __restrict out, int frames) {
    for (int f = 0; f < frames; ++f) out[f] = static_cast<float>(in[f]);
}

}  // namespace

extern const BlockKernels SORVANE_KERNEL_TABLE;
const BlockKernels SORVANE_KERNEL_TABLE = {
    rotate,  dominance, press,  focus,    crossover, centre, xyFront, msFront, xySurround, msSurround, heller1,
    heller2, msRear,    xyRear, msHeight, xyHeight,  fill,   silence, copy,    widen,      narrow,
};
