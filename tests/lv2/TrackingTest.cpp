// The LV2 edition follows a head tracker as the VST edition does: its
// tracking_port output tells where it listens, and oscsend turns the field.
#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include "Interaural.h"
#include "Lv2Host.h"

using namespace lv2_test;

TEST(Lv2Tracking, ReportsItsPortAndTurnsTheFieldAgainstTheHead) {
    Bundle bundle;
    Instance lv2(bundle, 48000);
    lv2.set(kOutput, 1.0f);
    lv2.set(kTracking, 1.0f);
    // A noise from the front, 4096 frames over and over.
    AudioBuffer<float> in(4, 4096);
    std::mt19937 random(11);
    std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
    for (std::size_t f = 0; f < 4096; ++f) {
        in[1][f] = noise(random);
        in[0][f] = 0.7071f * in[1][f];
    }
    const auto heard = [&](const AudioBuffer<float>& out) {
        return sorvane_test::interaural([&out](long t, int c) { return out[c][t]; }, 4096);
    };
    // run() only says "OSC"; the tracker's thread finds a port soon after.
    for (int i = 0; i < 200 && !(lv2.get(ports::kTrackingStatePort) >= 1.0f); ++i) {
        lv2.process(in, {256});
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const int port = static_cast<int>(lv2.get(ports::kTrackingStatePort));
    ASSERT_GE(port, 7770);
    EXPECT_LT(std::fabs(heard(lv2.process(in, {256})).level), 1.0);

    const std::string send = "oscsend 127.0.0.1 " + std::to_string(port) + " /ypr fff 90 0 0";
    ASSERT_EQ(std::system(send.c_str()), 0);
    double level = 0;
    for (int i = 0; i < 200 && level > -3.0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        lv2.process(in, {256});  // the glide
        level = heard(lv2.process(in, {256})).level;
    }
    EXPECT_LT(level, -3.0) << "a head turned left hears the front on the right";

    // "Off" closes the port: the tracker's thread sees it within its look.
    lv2.set(kTracking, 0.0f);
    for (int i = 0; i < 200 && lv2.get(ports::kTrackingStatePort) != 0.0f; ++i) {
        lv2.process(in, {256});
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(lv2.get(ports::kTrackingStatePort), 0.0f);
    EXPECT_LT(std::fabs(heard(lv2.process(in, {256})).level), 1.0) << "and the field straight ahead again";
}
