#include "HeadphoneStage.h"

#include <algorithm>
#include <cmath>

#include "EngineSelectors.h"

namespace sorvane {

namespace {

// What each of the six slots carries, by layout and channel order.
enum Role { kNone, kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround };

// The layout's own order, by decodeMode (kMonoLayout .. kFiveOneLayout). Quad's
// two rear slots both carry the right surround feed, as its speakers get it.
constexpr Role kNaturalRoles[kFiveOneLayout + 1][HeadphoneStage::kSlots] = {
    {},
    {kCentre},
    {kLeft, kRight},
    {kLeft, kRight, kSub},
    {kLeft, kRight, kLeftSurround, kRightSurround},
    {kLeft, kRight, kCentre, kLeftSurround, kRightSurround},
    {kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround},
};
constexpr Role kFiveOneRoles[HeadphoneStage::kSlots] = {kLeft, kRight, kCentre, kSub, kLeftSurround, kRightSurround};

}  // namespace

void HeadphoneStage::prepare(int sampleRate, int maxBlock) {
    loaded = loadHeadResponses(sampleRate);
    // Longer host blocks are taken in pieces: a host's wild block size
    // never sizes the memory.
    room = std::clamp(maxBlock, kMinRoom, kMaxRoom);
    convolver.prepare(*loaded, room);
    bus.assign(static_cast<std::size_t>(kBinauralInputs) * static_cast<std::size_t>(room), 0.0f);
}

void HeadphoneStage::render(const float* const* slots, int layout, int channelOrder, int frames, float* left,
                            float* right) {
    if (layout < kMonoLayout || layout > kFiveOneLayout) layout = kStereoLayout;
    const Role* roles = channelOrder == 1 ? kFiveOneRoles : kNaturalRoles[layout];
    const float* of[kRightSurround + 1] = {};
    for (int s = 0; s < kSlots; ++s)
        if (roles[s] != kNone) of[roles[s]] = slots[s];

    const bool quad = layout == kQuadLayout;
    const int frontPair = quad ? kPairFront45 : kPairFront30, surroundPair = quad ? kPairRear135 : kPairSurround110;
    const float* inputs[kBinauralInputs] = {};
    const auto channel = [&](int input) { return bus.data() + static_cast<std::size_t>(input) * room; };
    // A pair as its sum (mid) and difference (side); a missing side reads silence.
    const auto pair = [&](int p, const float* l, const float* r) {
        if (!l && !r) return;
        float* mid = channel(2 * p);
        float* side = channel(2 * p + 1);
        if (l && r) {
            for (int f = 0; f < frames; ++f) {
                mid[f] = l[f] + r[f];
                side[f] = l[f] - r[f];
            }
        } else {
            const float* x = l ? l : r;
            const float sign = l ? 1.0f : -1.0f;
            for (int f = 0; f < frames; ++f) {
                mid[f] = x[f];
                side[f] = sign * x[f];
            }
        }
        inputs[2 * p] = mid;
        inputs[2 * p + 1] = side;
    };
    pair(frontPair, of[kLeft], of[kRight]);
    pair(surroundPair, of[kLeftSurround], of[kRightSurround]);
    inputs[kCentreInput] = of[kCentre];

    convolver.process(inputs, frames, left, right);
    if (const float* sub = of[kSub])
        for (int f = 0; f < frames; ++f) {
            left[f] += sub[f];
            right[f] += sub[f];
        }
    // A NaN or infinity would stay in the convolution's history for good;
    // the ears start afresh after the call that carried one.
    bool finite = true;
    for (int f = 0; f < frames; ++f) finite &= std::isfinite(left[f]) && std::isfinite(right[f]);
    if (!finite) convolver.clear();
}

}  // namespace sorvane
