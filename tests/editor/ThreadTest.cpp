// Hosts automate from their audio thread while the editor idles on its
// own: such changes wait for the editor's next idle and then show the
// effect's values, however many arrive and however they interleave with
// changes made on the editor's own thread.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>

#include "AudioBuffer.h"
#include "EditorSession.h"
#include "RealtimeHooks.h"
#include "TrackingPort.h"

namespace editor_test {
namespace {

class OtherThreads : public EditorSession {};

TEST_F(OtherThreads, ChangeFromAnotherThreadShowsAtTheNextIdle) {
    openEditor();
    const Image stereo = capture();
    std::thread([this] { fx().setParameter(kDecodeMode, kQuad); }).join();
    // Nothing of it on screen until the editor's thread idles.
    EXPECT_EQ(capture(), stereo);
    settle();
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

TEST_F(OtherThreads, AutomationStormWhileIdlingEndsInTheFinalState) {
    openEditor();
    std::atomic<bool> done{false};
    std::thread automation([this, &done] {
        std::mt19937 random(7);
        std::uniform_real_distribution<float> value(0.0f, 1.0f);
        for (int i = 0; i < 30000; ++i) fx().setParameter(VstInt32(i % kNumParams), value(random));
        // The last word: quad with known surround settings.
        fx().setParameter(kDecodeMode, kQuad);
        fx().setParameter(kSurroundWidth, 0.7f);
        fx().setParameter(kSurroundGain, 0.25f);
        done = true;
    });
    while (!done) window->runFor(std::chrono::milliseconds(5));
    automation.join();
    settle();
    const Image screen = capture();
    for (VstInt32 i : {kSurroundWidth, kSurroundGain, kDecodeMode, kRotate, kTilt, kTumble})
        EXPECT_TRUE(labelShows(screen, i, kQuadLayout));
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

// A suspend, then a resume, each the last change another thread sends
// before an idle: "Currently Suspended" comes with the first idle after the
// suspend and goes with the first after the resume.
TEST_F(OtherThreads, SuspendAndResumeFromAnotherThreadShowAtTheNextIdle) {
    const CRect upperEditor(0, 0, 578, 200);  // above the overlay's centred text
    auto oneIdle = [this] {
        window->idle();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));  // for the server to draw it
    };
    openEditor();
    const Image running = capture();
    const float rotate = fx().getParameter(kRotate);
    std::thread([this] {
        fx().setParameter(kRotate, 0.25f);
        fx().suspend();
    }).join();
    EXPECT_EQ(capture(), running);
    oneIdle();
    const Image suspended = capture();
    EXPECT_LT(suspended.brightness(upperEditor), running.brightness(upperEditor) - 10) << "dimmed by the overlay";

    std::thread([this, rotate] {
        fx().setParameter(kRotate, rotate);
        fx().resume();
    }).join();
    EXPECT_EQ(capture(), suspended);
    oneIdle();
    EXPECT_EQ(capture(), running);
}

TEST_F(OtherThreads, QueuedChangesNeverOvertakeNewerDirectOnes) {
    openEditor();
    std::thread([this] {
        fx().setParameter(kRotate, 0.1f);
        fx().setParameter(kDecodeMode, kFive);
        fx().suspend();
    }).join();
    // Newer changes on the editor's own thread before its next idle.
    fx().setParameter(kRotate, 0.9f);
    fx().setParameter(kDecodeMode, kQuad);
    fx().resume();
    settle();
    const Image shown = capture();
    // A freshly opened editor shows the effect as it is.
    closeEditor();
    openEditor();
    settle();
    EXPECT_EQ(shown, capture());
    EXPECT_TRUE(showsControlsOf(kQuadLayout));
}

}  // namespace
}  // namespace editor_test

namespace editor_test {
namespace {

// An OSC packet of the kinds a tracker, a broken bridge or line noise sends:
// orientations (finite or not) with the right or wrong types and counts,
// unknown addresses, bundles, truncations, flipped bytes and random bytes.
std::string stormPacket(std::mt19937& random) {
    const auto padded = [](std::string s) { return s.append(4 - s.size() % 4, '\0'); };
    static const char* const kPaths[] = {"/ypr", "/quaternion", "/quaternions", "/SceneRotator/ypr",
                                         "/SceneRotator/quaternions", "/reset", "/nonsense"};
    static const char* const kTypes[] = {",fff", ",ffff", ",", ",iii", ",s", ",ff", ",fffffff"};
    std::string packet = padded(kPaths[random() % 7]) + padded(kTypes[random() % 7]);
    const float special[] = {NAN, INFINITY, 0.0f, 1e38f};
    for (int i = 0; i < 4; ++i) {
        const float v = random() % 8 ? float(random() % 1440) - 720.0f : special[random() % 4];
        const auto bits = std::bit_cast<std::uint32_t>(v);
        for (int b = 24; b >= 0; b -= 8) packet.push_back(static_cast<char>(bits >> b));
    }
    switch (random() % 6) {
    case 0: packet.resize(random() % packet.size()); break;
    case 1: packet[random() % packet.size()] = static_cast<char>(random()); break;
    case 2: packet = padded("#bundle") + std::string(8, '\0') + std::string{0, 0, 0, char(packet.size())} + packet; break;
    case 3: packet.assign(random() % 64, static_cast<char>(random())); break;
    default: break;
    }
    return packet;
}

// Tracker packets at thousands a second while the audio thread runs and the
// editor opens and closes, then the effect closed with packets still coming:
// nothing crashes or leaks, and the audio callbacks never allocate, lock or
// sleep for it.
TEST_F(OtherThreads, OscStormWhileAudioRunsAndTheEditorComesAndGoesAndTheEffectCloses) {
    fx().setParameter(kOutput, 1.0f);
    fx().setParameter(kTracking, 1.0f);
    const int port = sorvane_test::listeningPort(fx());
    ASSERT_GE(port, 7770) << fx().parameterDisplay(kTracking);

    std::atomic<bool> audioOn{true}, stormOn{true}, finite{true};
    std::atomic<long> blocks{0}, unsafeCalls{0}, sent{0};
    std::thread audio([&] {
        vsthost::AudioBuffer<float> in(4, 256), out(6, 256);
        for (int c = 0; c < 4; ++c)
            for (int f = 0; f < 256; ++f) in[c][f] = 0.3f * std::sin(0.02f * f * (c + 1));
        while (audioOn) {
            float* ins[4] = {in[0].data(), in[1].data(), in[2].data(), in[3].data()};
            float* outs[6];
            for (int c = 0; c < 6; ++c) outs[c] = out[c].data();
            validate::realtime::start();
            fx().processFloatRaw(ins, outs, 256);
            unsafeCalls += validate::realtime::stop().total();
            for (int c = 0; c < 2; ++c)
                for (float v : out[c]) finite = finite && std::isfinite(v);
            ++blocks;
        }
    });
    std::thread storm([&] {
        const int fd = ::socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(static_cast<std::uint16_t>(port));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        std::mt19937 random(5);
        for (long n = 0; stormOn; ++n) {
            const std::string packet = stormPacket(random);
            if (::sendto(fd, packet.data(), packet.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to) >= 0) ++sent;
            if (n % 8 == 7) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ::close(fd);
    });

    const auto started = std::chrono::steady_clock::now();
    for (int round = 0; round < 4; ++round) {
        openEditor();
        settle();
        if (round == 0) {
            EXPECT_TRUE(labelShows(capture(), kTracking)) << "the editor shows the port";
        }
        closeEditor();
    }
    while (std::chrono::steady_clock::now() - started < std::chrono::seconds(2))
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    audioOn = false;
    audio.join();
    plugin.reset();  // closed, its tracker joined, while packets keep arriving
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    stormOn = false;
    storm.join();

    EXPECT_GT(blocks.load(), 20);
    EXPECT_GT(sent.load(), 2000) << "packets in about two seconds";
    EXPECT_TRUE(finite.load());
    if (validate::realtime::available()) {
        EXPECT_EQ(unsafeCalls.load(), 0) << "allocations, locks or sleeps in process";
    }
}

}  // namespace
}  // namespace editor_test
