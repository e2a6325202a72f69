// Head tracking as a user meets it: `oscsend` (liblo-tools) plays the head
// tracker, sending to the port the instance shows, while a source plays from
// the front on headphones.
#include <dlfcn.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "Interaural.h"
#include "SorvaneHost.h"
#include "TrackingPort.h"

using namespace sorvane_test;

namespace {

constexpr int kRate = 48000, kBlock = 256;

// An instance on headphones in stereo with "Tracking" on "OSC", resumed.
std::unique_ptr<vsthost::Plugin> trackingInstance(float output = 1.0f, float tracking = 1.0f) {
    auto fx = loadSorvane();
    fx->setSampleRate(kRate);
    fx->setBlockSize(kBlock);
    fx->setParameter(kOutput, output);
    fx->setParameter(kTracking, tracking);
    fx->resume();
    return fx;
}

void oscsend(int port, const std::string& message) {
    const std::string command = "oscsend 127.0.0.1 " + std::to_string(port) + " " + message;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

// A noise from the front, the same 4096 frames over and over: once the head
// keeps still, every 4096 frames of the ears are the same.
class FrontSource {
public:
    FrontSource() : noise(4096) {
        std::mt19937 random(11);
        std::uniform_real_distribution<float> value(-0.5f, 0.5f);
        for (float& v : noise) v = value(random);
    }
    // `frames` frames of `fx` (a multiple of the block), both ears kept.
    std::vector<float> play(vsthost::Plugin& fx, long frames) {
        vsthost::AudioBuffer<float> in(4, kBlock), out(6, kBlock);
        std::vector<float> ears;
        for (long at = 0; at < frames; at += kBlock) {
            for (int f = 0; f < kBlock; ++f, ++position) {
                const float s = noise[position % noise.size()];
                in[0][f] = 0.7071f * s, in[1][f] = s, in[2][f] = in[3][f] = 0.0f;
            }
            fx.processFloat(in.pointers(), out.pointers(), kBlock);
            for (int f = 0; f < kBlock; ++f) ears.insert(ears.end(), {out[0][f], out[1][f]});
        }
        return ears;
    }
    // Where the source is heard once the head keeps still again: a message
    // reaches the tracker's thread some time after oscsend returns, so the
    // ears are played until they differ from the last still head's (for up
    // to two seconds), then until they stop changing. Counts the blocks on
    // the way that were like neither the old still head's nor the new one's.
    Interaural heard(vsthost::Plugin& fx) {
        std::vector<float> last = play(fx, 4096), next;
        for (int tries = 0; tries < 400 && last == steady; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            last = play(fx, 4096);
        }
        std::vector<std::vector<float>> moving{last};
        for (int tries = 0; tries < 100 && (next = play(fx, 4096)) != last; ++tries) moving.push_back(last = next);
        const auto block = [](const std::vector<float>& ears, int b) {
            return std::vector<float>(ears.begin() + 2 * kBlock * b, ears.begin() + 2 * kBlock * (b + 1));
        };
        betweenBlocks = 0;
        for (const auto& chunk : moving)
            for (int b = 0; b < 4096 / kBlock && !steady.empty(); ++b)
                betweenBlocks += block(chunk, b) != block(steady, b) && block(chunk, b) != block(last, b);
        steady = last;
        return interaural([this](long t, int c) { return steady[2 * t + c]; }, 4096);
    }
    int betweenBlocks = 0;  // of the last change, blocks neither before nor after it
    std::vector<float> steady;  // the ears of the last still head

private:
    std::vector<float> noise;
    std::size_t position = 0;
};

}  // namespace

TEST(Tracking, AHeadTurnedLeftHearsTheFrontOnTheRightUntilReset) {
    auto fx = trackingInstance();
    const int port = listeningPort(*fx);
    ASSERT_GE(port, 7770) << fx->parameterDisplay(kTracking);
    FrontSource source;
    EXPECT_LT(std::fabs(source.heard(*fx).level), 1.0);

    oscsend(port, "/ypr fff 90 0 0");  // the head turned a quarter to the left
    const Interaural turned = source.heard(*fx);
    const std::vector<float> yprEars = source.steady;
    EXPECT_LT(turned.level, -3.0) << "the right ear is louder";
    EXPECT_LT(turned.time, -3.0) << "the right ear leads";
    EXPECT_GE(source.betweenBlocks, 8) << "the turn glides over 50 ms (9.4 blocks), no step";

    oscsend(port, "/reset");
    EXPECT_LT(std::fabs(source.heard(*fx).level), 1.0) << "straight ahead is where the head now looks";

    // The same turn as a quaternion, on the addresses bridges send (after
    // /reset at yaw 90, "straight ahead" is the quarter turn itself).
    oscsend(port, "/ypr fff 0 0 0");
    EXPECT_GT(source.heard(*fx).level, 3.0) << "back to yaw 0 is a turn to the right, relative to the reset";
    oscsend(port, "/SceneRotator/ypr iii 90 0 0");
    EXPECT_LT(std::fabs(source.heard(*fx).level), 1.0);
    oscsend(port, "/reset");
    oscsend(port, "/ypr fff 0 0 0");
    oscsend(port, "/reset");
    oscsend(port, "/quaternion ffff 0.70710678 0 0 0.70710678");
    source.heard(*fx);
    ASSERT_EQ(source.steady.size(), yprEars.size());
    for (std::size_t i = 0; i < yprEars.size(); ++i) ASSERT_NEAR(source.steady[i], yprEars[i], 1e-5) << i;

    // The nose lifted a quarter: the front is heard centred again, never on one side.
    oscsend(port, "/quaternions ffff 0.70710678 0 -0.70710678 0");
    EXPECT_LT(std::fabs(source.heard(*fx).level), 1.0);
    // Without smoothing the turn is taken at the next block: only the responses' own tail lies between.
    fx->setParameter(kSmoothing, 0.0f);
    oscsend(port, "/ypr fff 90 0 0");
    EXPECT_LT(source.heard(*fx).level, -3.0);
    EXPECT_LE(source.betweenBlocks, 3);
}

// "Off", and "OSC" on speakers, sound as before whatever a tracker sends.
TEST(Tracking, OffOrOnSpeakersTheTrackerChangesNoBit) {
    auto off = trackingInstance(0.0f, 0.0f);
    auto speakers = trackingInstance(0.0f, 1.0f);
    const int port = listeningPort(*speakers);
    ASSERT_GE(port, 7770);
    EXPECT_EQ(off->parameterDisplay(kTracking), "Off");
    oscsend(port, "/ypr fff 90 30 10");
    FrontSource a, b;
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(a.play(*off, 1024), b.play(*speakers, 1024)) << round;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

// Each instance its own port, and the same one again when the session reopens.
TEST(Tracking, TwoInstancesKeepTheirOwnPortsAcrossASaveAndReopen) {
    std::vector<unsigned char> saved[2];
    int ports[2] = {};
    {
        auto first = trackingInstance();
        ports[0] = listeningPort(*first);
        auto second = trackingInstance();
        ports[1] = listeningPort(*second);
        ASSERT_TRUE(ports[0] >= 7770 && ports[1] >= 7770 && ports[0] != ports[1]) << ports[0] << " " << ports[1];
        for (auto [fx, i] : {std::pair{first.get(), 0}, std::pair{second.get(), 1}}) {
            void* data = nullptr;
            const auto size = fx->getChunk(&data, false);
            saved[i].assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);
        }
    }
    // Reopened the other way round: the second would otherwise take the first
    // free port, the first's. It even listens there already when its session
    // loads (hosts load before or after a resume), and moves.
    auto second = loadSorvane(), first = loadSorvane();
    second->setParameter(kTracking, 1.0f);
    second->resume();
    ASSERT_GE(listeningPort(*second), 7770);
    for (auto [fx, i] : {std::pair{second.get(), 1}, std::pair{first.get(), 0}}) {
        ASSERT_EQ(fx->setChunk(saved[i].data(), static_cast<VstInt32>(saved[i].size()), false), 1);
        fx->resume();
        int port = 0;
        for (int tries = 0; tries < 100 && (port = listeningPort(*fx)) != ports[i]; ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_EQ(port, ports[i]) << "instance " << i;
    }
}

// A host that unloads the library without closing the effect first: the
// receiver's thread, and its code, must be gone by then, not crash later.
TEST(Tracking, UnloadingTheLibraryStopsTheReceiverOfAnEffectLeftOpen) {
    static AEffect* leftOpen = nullptr;  // reachable: the effect is the host's to leak
    void* library = dlopen(SORVANE_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(library) << dlerror();
    const auto entry = reinterpret_cast<AEffect* (*)(audioMasterCallback)>(dlsym(library, "VSTPluginMain"));
    leftOpen = entry([](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) -> VstIntPtr {
        return opcode == audioMasterVersion ? 2400 : 0;
    });
    leftOpen->setParameter(leftOpen, kTracking, 1.0f);
    leftOpen->dispatcher(leftOpen, effMainsChanged, 0, 1, nullptr, 0.0f);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // listening, its thread polling
    ASSERT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(SORVANE_PLUGIN_PATH, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the library is gone";
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // a thread left behind would crash by now
}
