// Smoothing as a host meets it: automation sent once per block, a 1 kHz
// tone in, and the energy the moving control spreads away from the tone.
#include <cmath>
#include <functional>
#include <vector>

#include "SorvaneHost.h"
#include "Zipper.h"

using namespace sorvane_test;

namespace {

constexpr int kRate = 48000;
constexpr double kPi = 3.141592653589793;

using Channels = std::vector<std::vector<double>>;
using Automation = std::function<void(vsthost::Plugin&, long frame)>;  // at each block's first frame

// Renders `frames` frames of a 1 kHz tone from the front (or 45 degrees to
// the left) through a new instance in stereo with its first program, in
// blocks of `block` frames through the double callback.
Channels render(long frames, int block, float smoothing, const Automation& automate, bool fromLeft = false,
                float layout = kStereo) {
    auto fx = loadSorvane();
    fx->setSampleRate(kRate);
    fx->setBlockSize(block);
    fx->setParameter(kDecodeMode, layout);
    fx->setParameter(kSmoothing, smoothing);
    automate(*fx, 0);
    fx->resume();
    vsthost::AudioBuffer<double> in(4, block), out(6, block);
    Channels result(6);
    for (long at = 0; at < frames; at += block) {
        const int n = static_cast<int>(std::min<long>(block, frames - at));
        if (at > 0) automate(*fx, at);
        for (int f = 0; f < n; ++f) {
            const double s = std::sin(2 * kPi * 1000 * static_cast<double>(at + f) / kRate);
            in[0][f] = 0.7071 * s;
            in[1][f] = (fromLeft ? 0.7071 : 1.0) * s;
            in[2][f] = fromLeft ? 0.7071 * s : 0.0;
        }
        fx->processDouble(in.pointers(), out.pointers(), n);
        for (int c = 0; c < 6; ++c) result[c].insert(result[c].end(), out[c].begin(), out[c].begin() + n);
    }
    return result;
}

// A parameter held for 1 s at `from`, swept linearly to `to` over `seconds`,
// then held for 1 s; the host sets it at each block's first frame.
struct Sweep {
    int index;
    float from, to;
    double seconds;
    long frames() const { return static_cast<long>((2 + seconds) * kRate); }
    void operator()(vsthost::Plugin& fx, long frame) const {
        const double t = std::clamp((frame / double(kRate) - 1) / seconds, 0.0, 1.0);
        fx.setParameter(index, static_cast<float>(from + (to - from) * t));
    }
};

}  // namespace

// Nothing moving: "On" gives "Off"'s samples, and a glide that has arrived
// leaves the engine exactly where "Off" puts it at once.
TEST(Smoothing, StillOrArrivedItIsBitIdenticalToOff) {
    const Automation turn = [](vsthost::Plugin& fx, long frame) {
        fx.setParameter(kZoom, 0.6f);
        if (frame >= 9600) fx.setParameter(kRotate, 0.3f);
        if (frame >= 9600) fx.setParameter(kRearVerb, 0.8f);
    };
    const Channels on = render(24000, 512, 1.0f, turn), off = render(24000, 512, 0.0f, turn);
    const long arrived = 9728 + long(0.05 * kRate) + 64;  // the change's block start, the glide and its last cell
    for (int c = 0; c < 2; ++c)
        for (long f = 0; f < 24000; ++f)
            if (f < 9728 || f >= arrived) {
                ASSERT_EQ(on[c][f], off[c][f]) << c << " " << f;
            }
    EXPECT_NE(on[0][arrived - 1000], off[0][arrived - 1000]) << "the glide took its time";
}

// The same changes at the same frames give the same output whatever blocks
// the host cuts, also while a new value arrives mid-glide, in 2.1, whose
// crossover glides too, and across the fades of discrete changes.
TEST(Smoothing, OutputDoesNotDependOnTheBlockSize) {
    const Automation moves = [](vsthost::Plugin& fx, long frame) {
        if (frame == 4096) fx.setParameter(kRotate, 0.1f), fx.setParameter(kSubCrossover, 0.9f);
        if (frame == 5120) fx.setParameter(kRotate, 0.9f), fx.setParameter(kZoom, 0.2f);  // mid-glide
        if (frame == 8192) fx.setParameter(kSubCrossover, 0.0f), fx.setParameter(kSubGain, 1.0f);
        if (frame == 9216) fx.setParameter(kFrontMode, 1.0f), fx.setParameter(kInput, 0.5f);  // fades
        if (frame == 12288) fx.setParameter(kDecodeMode, kFiveOne);
    };
    const Channels reference = render(16384, 1024, 1.0f, moves, true, kTwoOne);
    for (int block : {1, 64, 512}) EXPECT_EQ(render(16384, block, 1.0f, moves, true, kTwoOne), reference) << block;
}

// The crossover glides from 20 to 240 Hz with its history kept: no click,
// which would show as a bend in the output far sharper than the tone's own.
TEST(Smoothing, TheCrossoverGlidesWithoutAClick) {
    const Automation sweep = [](vsthost::Plugin& fx, long frame) {
        fx.setParameter(kSubCrossover, frame < 4096 ? 0.0f : 1.0f);
    };
    const Channels out = render(12288, 512, 1.0f, sweep, false, kTwoOne);
    for (int c : {0, 1, 3}) {  // L, R and the sub, in 5.1 order
        double moving = 0, settled = 0;
        for (long f = 4098; f < 12288; ++f) {
            const double bend = std::fabs(out[c][f] - 2 * out[c][f - 1] + out[c][f - 2]);
            (f < 8192 ? moving : settled) = std::max(f < 8192 ? moving : settled, bend);
        }
        EXPECT_LE(moving, 1.5 * settled) << "channel " << c;
    }
}

// A discrete change fades in: from XY to MS the pair's levels change, but no
// step between two samples is larger than the tone's own.
TEST(Smoothing, DiscreteChangesFadeWithoutAStep) {
    const Automation toMs = [](vsthost::Plugin& fx, long frame) {
        fx.setParameter(kFrontMode, frame < 4096 ? 0.0f : 1.0f);
    };
    for (float smoothing : {1.0f, 0.0f}) {
        const Channels out = render(12288, 512, smoothing, toMs, true);
        double change = 0, steady = 0;
        for (int c = 0; c < 2; ++c)
            for (long f = 1; f < 12288; ++f)
                (f >= 4096 && f < 4096 + 2464 ? change : steady) =
                    std::max(f >= 4096 && f < 4096 + 2464 ? change : steady, std::fabs(out[c][f] - out[c][f - 1]));
        if (smoothing > 0)
            EXPECT_LE(change, 1.05 * steady);
        else
            EXPECT_GT(change, 1.2 * steady) << "without smoothing the change is a step";
    }
}

// Automated once per block, a sweep comes out at most 1 dB less clean than
// the same sweep set before every single frame with nothing smoothed.
TEST(Smoothing, SweepsAreAsCleanAsSampleAccurateAutomation) {
    const struct {
        Sweep sweep;
        bool fromLeft;
    } cases[] = {
        {{kRotate, 0.5f, 0.25f, 2.0}, false},   // rotate 0 to 90 degrees: an automated pan
        {{kRotate, 0.5f, 0.25f, 0.25}, false},  // a head turn
        {{kZoom, 0.5f, 0.9f, 2.0}, true},       // Focus zoom 0 to 80 %
        {{kZoom, 0.5f, 0.9f, 0.25}, true},
    };
    for (const auto& [sweep, fromLeft] : cases) {
        const Automation automate = [&, sweep](vsthost::Plugin& fx, long frame) {
            if (sweep.index == kZoom) fx.setParameter(kZoomMethod, 1.0f);  // Focus
            sweep(fx, frame);
        };
        const double ideal = zipper::worstDb(render(sweep.frames(), 1, 0.0f, automate, fromLeft), kRate);
        for (int block : {64, 512})
            EXPECT_LE(zipper::worstDb(render(sweep.frames(), block, 1.0f, automate, fromLeft), kRate), ideal + 1.0)
                << "parameter " << sweep.index << " over " << sweep.seconds << " s, block " << block
                << "; sample-accurate: " << ideal << " dB";
    }
}

// A state the host loads sounds at once, however far it lies from where the
// instance was; a host's stray value beyond a control's range glides neither
// there nor back.
TEST(Smoothing, LoadedStatesAndStrayValuesApplyAtOnce) {
    auto source = loadSorvane();
    source->setParameter(kRotate, 0.2f);
    void* data = nullptr;
    const auto size = source->getChunk(&data, false);
    const std::vector<unsigned char> bank(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);

    const auto loadAt = [&bank](long when) {
        return [&bank, when](vsthost::Plugin& fx, long frame) {
            if (frame == when) fx.setChunk(const_cast<unsigned char*>(bank.data()), VstInt32(bank.size()), false);
        };
    };
    const Automation load = loadAt(2048), fresh = loadAt(0);
    const Channels loaded = render(4096, 512, 1.0f, load), direct = render(4096, 512, 1.0f, fresh);
    for (int c = 0; c < 2; ++c)
        for (long f = 2048; f < 4096; ++f) ASSERT_EQ(loaded[c][f], direct[c][f]) << c << " " << f;

    const Automation stray = [](vsthost::Plugin& fx, long frame) {
        if (frame == 2048 || frame == 2560) fx.setParameter(kSubGain, frame == 2048 ? 1e6f : 0.5f);
    };
    const Channels on = render(4096, 512, 1.0f, stray, false, kTwoOne), off = render(4096, 512, 0.0f, stray, false, kTwoOne);
    for (int c = 0; c < 6; ++c)
        for (long f = 2560; f < 4096; ++f) ASSERT_EQ(on[c][f], off[c][f]) << c << " " << f;
}
