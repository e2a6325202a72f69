// The block path: the per-frame pipeline of Decoder.cpp run stage by stage
// over a whole block. The fields are read once per block and every stage
// that processDecoder would run for them runs as one loop over all frames,
// with the same derived values and the same arithmetic per frame.
#include "Decoder.h"

using namespace sorvane;

namespace {

// Working feeds, numbered as the slots of the 5.1 order.
enum Feed { kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround, kFeedCount };
constexpr int kSilent = -1;
constexpr unsigned bit(int feed) { return 1u << feed; }

struct SlotOrder {
    int count;
    int source[6];
};

// By decodeMode (kMonoLayout .. kFiveOneLayout, 1 .. 6): the layout's own
// order, with both quad rear slots carrying the right surround feed as the
// per-frame copy does ...
static_assert(kMonoLayout == 1 && kFiveOneLayout == 6, "the tables below are indexed by layout");
constexpr SlotOrder kNaturalOrder[kFiveOneLayout + 1] = {
    {0, {}},
    {1, {kCentre}},
    {2, {kLeft, kRight}},
    {3, {kLeft, kRight, kSub}},
    {4, {kLeft, kRight, kRightSurround, kRightSurround}},
    {5, {kLeft, kRight, kCentre, kLeftSurround, kRightSurround}},
    {6, {kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround}},
};
// ... and the six slots of the 5.1 order, the layout's missing speakers silent.
constexpr SlotOrder kFiveOneOrder[kFiveOneLayout + 1] = {
    {0, {}},
    {6, {kSilent, kSilent, kCentre, kSilent, kSilent, kSilent}},
    {6, {kLeft, kRight, kSilent, kSilent, kSilent, kSilent}},
    {6, {kLeft, kRight, kSilent, kSub, kSilent, kSilent}},
    {6, {kLeft, kRight, kSilent, kSilent, kLeftSurround, kRightSurround}},
    {6, {kLeft, kRight, kCentre, kSilent, kLeftSurround, kRightSurround}},
    {6, {kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround}},
};

}  // namespace

void Decoder::useVectorPath(VectorPath path) { kernels = &blockKernels(path); }

int Decoder::processBlock(double* W, double* X, double* Y, double* Z, int frames, BlockFeeds& feeds) {
    if (frames > 0) transformBlock(W, X, Y, Z, frames);
    return decodeTransformed(W, X, Y, Z, frames, feeds);
}

int Decoder::decodeTransformed(double* W, double* X, double* Y, double* Z, int frames, BlockFeeds& feeds) {
    int source[6];
    const int slots = slotSources(source);
    const bool decodes = decodeMode >= kMonoLayout && decodeMode <= kFiveOneLayout;

    if (frames > 0) {
        if (decodes) {
            const unsigned written = decodeBlock(W, X, Y, Z, frames, feeds.feed);
            unsigned copied = 0;
            for (int s = 0; s < slots; ++s)
                if (source[s] != kSilent) copied |= bit(source[s]);
            // A feed the decoder left alone holds its value through the block;
            // a written one ends the block with its last frame.
            for (int i = 0; i < kFeedCount; ++i) {
                double& held = workingFeed(i);
                if (written & bit(i))
                    held = feeds.feed[i][frames - 1];
                else if (copied & bit(i))
                    kernels->fill(feeds.feed[i], held, frames);
            }
            for (int s = 0; s < slots; ++s) speakerFeeds[s] = source[s] == kSilent ? 0.0 : workingFeed(source[s]);
        }
    }
    for (int s = 0; s < 6; ++s) feeds.slot[s] = s < slots && source[s] != kSilent ? feeds.feed[source[s]] : nullptr;
    return slots;
}

int Decoder::slotSources(int source[6]) const {
    if (decodeMode < kMonoLayout || decodeMode > kFiveOneLayout) return 0;
    const SlotOrder* table = channelOrder == 0 ? kNaturalOrder : channelOrder == 1 ? kFiveOneOrder : nullptr;
    if (!table) return 0;
    const SlotOrder& order = table[decodeMode];
    for (int s = 0; s < order.count; ++s) source[s] = order.source[s];
    return order.count;
}

double& Decoder::workingFeed(int index) {
    switch (index) {
    case kLeft: return leftFeed;
    case kRight: return rightFeed;
    case kCentre: return centreFeed;
    case kSub: return subFeed;
    case kLeftSurround: return leftSurroundFeed;
    default: return rightSurroundFeed;
    }
}

void Decoder::transformBlock(double* W, double* X, double* Y, double* Z, int frames) {
    const BlockKernels& k = *kernels;
    if (const double angle = rotateAngle; angle != 0) {
        refreshRotation(rotateCache, angle);
        k.rotate(X, Y, rotateCache.c, rotateCache.s, frames);
    }
    if (const double angle = tiltAngle; angle != 0) {
        refreshRotation(tiltCache, angle);
        k.rotate(Y, Z, tiltCache.c, tiltCache.s, frames);
    }
    if (const double angle = tumbleAngle; angle != 0) {
        refreshRotation(tumbleCache, angle);
        k.rotate(X, Z, tumbleCache.c, tumbleCache.s, frames);
    }

    if (zoomAmount == 0 || zoomMethod < 0 || zoomMethod > 3) return;
    refreshZoom();
    const Zoom& z = zoomCache;
    switch (zoomMethod) {
    case 0: k.dominance(W, X, z.domA, z.domB, z.domC, frames); break;
    case 1: k.press(W, X, Y, Z, z.pressX, z.c2, z.c, frames); break;
    case 2: k.press(W, X, Y, Z, z.pressX, z.c2, z.c2, frames); break;
    default: k.focus(W, X, Y, Z, z.focusW, z.focusX, z.focusD, z.focusYZ, frames); break;
    }
}

unsigned Decoder::decodeBlock(double* W, double* X, double* Y, double* Z, int frames, double* const* feed) {
    const BlockKernels& k = *kernels;
    const int mode = decodeMode;
    unsigned written = 0;

    // 2.1 and 5.1: the LFE from the omni, the rest from the high band.
    if (mode == kTwoOneLayout || mode == kFiveOneLayout) {
        refreshLevel(subCache, subGain);
        k.crossover(W, X, Y, Z, feed[kSub], lowPassCoefs, highPassCoefs, feedbackCoefs, lowPassState, highPassState,
                    subCache.g, frames);
        written |= bit(kSub);
    }

    switch (mode) {
    case kMonoLayout: written |= centreBlock(W, X, frames, feed); break;
    case kStereoLayout:
    case kTwoOneLayout:
        written |= frontBlock(W, X, Y, frames, feed);
        ambienceBlock(W, X, Y, Z, frames, feed);
        break;
    case kQuadLayout:
        written |= frontBlock(W, X, Y, frames, feed);
        written |= surroundBlock(W, X, Y, frames, feed);
        break;
    default: {  // 5.0 and 5.1
        const int type = fiveDecoderType;
        const unsigned matrix = bit(kLeft) | bit(kRight) | bit(kCentre) | bit(kLeftSurround) | bit(kRightSurround);
        if (type == kFixedMatrix2) {
            k.heller2(W, X, Y, feed[kLeft], feed[kRight], feed[kCentre], feed[kLeftSurround], feed[kRightSurround],
                      frames);
            written |= matrix;
        } else if (type == kFixedMatrix1) {
            k.heller1(W, X, Y, feed[kLeft], feed[kRight], feed[kCentre], feed[kLeftSurround], feed[kRightSurround],
                      frames);
            written |= matrix;
        } else if (type == kVirtualMicrophones) {
            written |= centreBlock(W, X, frames, feed);
            written |= frontBlock(W, X, Y, frames, feed);
            written |= surroundBlock(W, X, Y, frames, feed);
        }
        break;
    }
    }
    return written;
}

unsigned Decoder::centreBlock(const double* W, const double* X, int frames, double* const* feed) {
    refreshCentre();
    kernels->centre(W, X, feed[kCentre], centreCache.cp, centreCache.q, centreCache.g, frames);
    return bit(kCentre);
}

unsigned Decoder::frontBlock(const double* W, const double* X, const double* Y, int frames, double* const* feed) {
    const int mode = frontMode;
    if (mode != 0 && mode != 1) return 0;
    refreshFront();
    const Pair& p = frontCache;
    const auto pair = mode == 1 ? kernels->msFront : kernels->xyFront;
    pair(W, X, Y, feed[kLeft], feed[kRight], p.sp, p.q, p.cw, p.sw, frames);
    return bit(kLeft) | bit(kRight);
}

unsigned Decoder::surroundBlock(const double* W, const double* X, const double* Y, int frames, double* const* feed) {
    const int mode = surroundMode;
    if (mode != 0 && mode != 1) return 0;
    refreshSurround();
    const Pair& p = surroundCache;
    const auto pair = mode == 1 ? kernels->msSurround : kernels->xySurround;
    pair(W, X, Y, feed[kLeftSurround], feed[kRightSurround], p.sp, p.q, p.cw, p.sw, p.g, frames);
    return bit(kLeftSurround) | bit(kRightSurround);
}

// The ambience joins only a front pair written in this block, in its form.
void Decoder::ambienceBlock(const double* W, const double* X, const double* Y, const double* Z, int frames,
                            double* const* feed) {
    const int mode = frontMode;
    if (mode != 0 && mode != 1) return;
    if (rearVerbGain > kAmbienceThreshold) {
        refreshLevel(rearCache, rearVerbGain);
        (mode == 1 ? kernels->msRear : kernels->xyRear)(W, X, Y, feed[kLeft], feed[kRight], rearCache.g, frames);
    }
    if (hiVerbGain > kAmbienceThreshold) {
        refreshLevel(hiCache, hiVerbGain);
        (mode == 1 ? kernels->msHeight : kernels->xyHeight)(W, Y, Z, feed[kLeft], feed[kRight], hiCache.g, frames);
    }
}
