// A word-for-word evaluation of the decoding formulas, recomputing every sine,
// cosine and power at each frame. It is the oracle the engine's cached
// pipeline must match bit for bit, and the "literal" line of the benchmark;
// it lives beside the engine so both can reach it, and the engine never uses it.
#pragma once

#include <cmath>

#include "EngineSelectors.h"
#include "FixedMatrices.h"

struct ReferenceDecoder {
    double rotateAngle = 0, tiltAngle = 0, tumbleAngle = 0, zoomAmount = 0;
    int zoomMethod = 0, decodeMode = 2, channelOrder = 1, fiveDecoderType = 0;
    double frontWidth = 45.0, frontPattern = 0.5;
    int frontMode = 0;
    double rearVerbGain = -100.0, hiVerbGain = -100.0;
    double centrePattern = 0.5, centreGain = 0, subGain = 0;
    int surroundMode = 0;
    double surroundPattern = 0.5, surroundWidth = 60.0, surroundGain = 0;
    int sampleRate = 44100, crossoverFrequency = 120;

    double feeds[6] = {};
    double L = 0, R = 0, C = 0, LFE = 0, Ls = 0, Rs = 0;
    double lp[3] = {}, hp[3] = {}, fb[3] = {};
    double lpState[4] = {}, hpState[4][4] = {};

    static constexpr double pi = 3.141592653589793;
    static constexpr double r2 = 1.4142135623730951;

    ReferenceDecoder() { design(); }

    static double rad(double deg) { return deg / 180.0 * pi; }
    static double g(double dB) { return pow(10.0, dB / 20.0); }

    void design() {
        double K = tan((double)crossoverFrequency * pi / (double)sampleRate);
        for (double& v : lpState) v = 0;
        for (auto& s : hpState)
            for (double& v : s) v = 0;
        double d = K * K + 2 * K + 1;
        fb[0] = 1.0;
        fb[1] = 2 * (K * K - 1) / d;
        fb[2] = (K * K - 2 * K + 1) / d;
        lp[0] = K * K / d;
        lp[1] = 2 * K * K / d;
        lp[2] = K * K / d;
        hp[0] = 1 / d;
        hp[1] = -2 / d;
        hp[2] = 1 / d;
    }

    static double step(const double* b, const double* a, double* s, double x) {
        double y = b[0] * x + b[1] * s[0] + b[2] * s[1] - a[1] * s[2] - a[2] * s[3];
        s[1] = s[0];
        s[0] = x;
        s[3] = s[2];
        s[2] = y;
        return y;
    }

    void front(double W, double X, double Y) {
        double p = frontPattern, w = rad(frontWidth);
        if (frontMode == 1) {
            double M = r2 * p * W + (1 - p) * X;
            L = M * cos(w) + sin(w) * Y;
            R = M * cos(w) - sin(w) * Y;
        } else if (frontMode == 0) {
            L = r2 * p * W + (1 - p) * (cos(w) * X + sin(w) * Y);
            R = r2 * p * W + (1 - p) * (cos(w) * X - sin(w) * Y);
        }
    }

    void surround(double W, double X, double Y) {
        double p = surroundPattern, w = rad(surroundWidth);
        if (surroundMode == 1) {
            double M = r2 * p * W - (1 - p) * X;
            Ls = (M * cos(w) + sin(w) * Y) * g(surroundGain);
            Rs = (M * cos(w) - sin(w) * Y) * g(surroundGain);
        } else if (surroundMode == 0) {
            Ls = (r2 * p * W + (1 - p) * (sin(w) * Y - cos(w) * X)) * g(surroundGain);
            Rs = (r2 * p * W + (1 - p) * (-cos(w) * X - sin(w) * Y)) * g(surroundGain);
        }
    }

    void centre(double W, double X) { C = (centrePattern * r2 * W + (1 - centrePattern) * X) * g(centreGain); }

    void ambience(double W, double X, double Y, double Z) {
        if (rearVerbGain > sorvane::kAmbienceThreshold) {
            double Lv = g(rearVerbGain);
            if (frontMode == 1) {
                double M = 0.5 * r2 * W - 0.5 * X;
                L += (0.8191520442889917 * Y + M * 0.5735764363510462) * Lv;
                R += (M * 0.5735764363510462 - 0.8191520442889917 * Y) * Lv;
            } else if (frontMode == 0) {
                L += (0.7071067811865476 * W + (-0.5735764363510462 * X + 0.8191520442889917 * Y) * 0.5) * Lv;
                R += (0.7071067811865476 * W + (-0.5735764363510462 * X - 0.8191520442889917 * Y) * 0.5) * Lv;
            }
        }
        if (hiVerbGain > sorvane::kAmbienceThreshold) {
            double H = g(hiVerbGain);
            if (frontMode == 1) {
                double M = 0.5 * r2 * W + 0.5 * Z;
                L += (0.49999999999999994 * Y + M * 0.8660254037844387) * H;
                R += (M * 0.8660254037844387 - 0.49999999999999994 * Y) * H;
            } else if (frontMode == 0) {
                L += (0.7071067811865476 * W + (0.8660254037844387 * Z + 0.49999999999999994 * Y) * 0.5) * H;
                R += (0.7071067811865476 * W + (0.8660254037844387 * Z - 0.49999999999999994 * Y) * 0.5) * H;
            }
        }
    }

    void crossover(double& W, double& X, double& Y, double& Z) {
        LFE = step(lp, fb, lpState, r2 * W) * g(subGain);
        W = -step(hp, fb, hpState[0], W);
        X = -step(hp, fb, hpState[1], X);
        Y = -step(hp, fb, hpState[2], Y);
        Z = -step(hp, fb, hpState[3], Z);
    }

    void matrix(const sorvane::FixedMatrix& m, double W, double X, double Y) {
        double* feed[] = {&L, &R, &C, &Ls, &Rs};
        const sorvane::MatrixRow* rows[] = {&m.left, &m.right, &m.centre, &m.leftSurround, &m.rightSurround};
        for (int i = 0; i < 5; ++i) *feed[i] = (rows[i]->w * W + rows[i]->x * X + rows[i]->y * Y) * m.gain;
    }

    void five(double W, double X, double Y) {
        if (fiveDecoderType == sorvane::kFixedMatrix2) {
            matrix(sorvane::kHeller2, W, X, Y);
        } else if (fiveDecoderType == sorvane::kFixedMatrix1) {
            matrix(sorvane::kHeller1, W, X, Y);
        } else if (fiveDecoderType == sorvane::kVirtualMicrophones) {
            centre(W, X);
            front(W, X, Y);
            surround(W, X, Y);
        }
    }

    int process(double& W, double& X, double& Y, double& Z) {
        if (rotateAngle != 0) {
            double x = X, y = Y;
            X = cos(rad(rotateAngle)) * x - sin(rad(rotateAngle)) * y;
            Y = sin(rad(rotateAngle)) * x + cos(rad(rotateAngle)) * y;
        }
        if (tiltAngle != 0) {
            double y = Y, z = Z;
            Y = cos(rad(tiltAngle)) * y - sin(rad(tiltAngle)) * z;
            Z = sin(rad(tiltAngle)) * y + cos(rad(tiltAngle)) * z;
        }
        if (tumbleAngle != 0) {
            double x = X, z = Z;
            X = cos(rad(tumbleAngle)) * x - sin(rad(tumbleAngle)) * z;
            Z = sin(rad(tumbleAngle)) * x + cos(rad(tumbleAngle)) * z;
        }
        if (zoomAmount != 0) {
            double z = zoomAmount;
            if (zoomMethod == 0) {
                double l = pow(10.0, z * 0.24 / 20.0), il = 1.0 / l;
                double w = W, x = X;
                W = 0.5 * (l + il) * w + 0.35355339059327373 * (l - il) * x;
                X = 0.5 * (l + il) * x + 0.7071067811865475 * (l - il) * w;
            } else if (zoomMethod == 1 || zoomMethod == 2) {
                double a = z * 0.9 / 180.0 * pi, s = sin(a), c = cos(a);
                X = fabs(s) * r2 * s * W + c * c * X;
                Y = (zoomMethod == 1 ? c : c * c) * Y;
                Z = (zoomMethod == 1 ? c : c * c) * Z;
            } else if (zoomMethod == 3) {
                double a = z * 0.9 / 180.0 * pi, s = sin(a);
                double w = W, x = X;
                W = (s / (1 + fabs(s))) * 0.7071067811865475 * x + w / (1 + fabs(s));
                X = (s / (1 + fabs(s))) * r2 * w + x / (1 + fabs(s));
                Y = sqrt((1 - fabs(s)) / (1 + fabs(s))) * Y;
                Z = sqrt((1 - fabs(s)) / (1 + fabs(s))) * Z;
            }
        }
        using namespace sorvane;
        switch (decodeMode) {
        case kMonoLayout: centre(W, X); break;
        case kStereoLayout:
            front(W, X, Y);
            if (frontMode == 0 || frontMode == 1) ambience(W, X, Y, Z);
            break;
        case kTwoOneLayout:
            crossover(W, X, Y, Z);
            front(W, X, Y);
            if (frontMode == 0 || frontMode == 1) ambience(W, X, Y, Z);
            break;
        case kQuadLayout:
            front(W, X, Y);
            surround(W, X, Y);
            break;
        case kFiveLayout: five(W, X, Y); break;
        case kFiveOneLayout:
            crossover(W, X, Y, Z);
            five(W, X, Y);
            break;
        default: return 0;
        }
        static const int own[7][6] = {{}, {2}, {0, 1}, {0, 1, 3}, {0, 1, 5, 5}, {0, 1, 2, 4, 5}, {0, 1, 2, 3, 4, 5}};
        static const int counts[7] = {0, 1, 2, 3, 4, 5, 6};
        static const bool present[7][6] = {{},
                                           {0, 0, 1, 0, 0, 0},
                                           {1, 1, 0, 0, 0, 0},
                                           {1, 1, 0, 1, 0, 0},
                                           {1, 1, 0, 0, 1, 1},
                                           {1, 1, 1, 0, 1, 1},
                                           {1, 1, 1, 1, 1, 1}};
        const double all[6] = {L, R, C, LFE, Ls, Rs};
        if (channelOrder == 0) {
            for (int i = 0; i < counts[decodeMode]; ++i) feeds[i] = all[own[decodeMode][i]];
            return counts[decodeMode];
        }
        if (channelOrder != 1) return 0;
        for (int i = 0; i < 6; ++i) feeds[i] = present[decodeMode][i] ? all[i] : 0.0;
        return 6;
    }
};
