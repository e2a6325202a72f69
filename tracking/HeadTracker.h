// The head tracker's receiver: UDP OSC messages on a port of the instance's
// own, turned into the head's orientation for the audio thread.
//
// One thread of ours lives from the host's resume (LV2: activate) to its
// suspend (deactivate). While tracking is wanted it holds the socket open
// and reads what arrives; while it is not, it only looks every
// kLookMilliseconds whether it has become so. The audio thread and hosts'
// parameter calls just say whether tracking is wanted and read the state:
// they never wait on this thread, and it never waits on them.
//
// The port: the one the instance had before (a saved session), else the
// first free of kFirstPort .. kLastPort. Sockets are bound without reuse,
// so a port another instance or program holds is never shared, and only on
// the loopback interface (IPv4 and IPv6), unless the environment variable
// SORVANE_OSC_ALL_INTERFACES is set to 1: then a tracker elsewhere on the
// network is heard too.
//
// Messages (angles in degrees, integer or float arguments):
//   /ypr yaw pitch roll               /SceneRotator/ypr yaw pitch roll
//   /quaternion w x y z               /quaternions w x y z
//   /SceneRotator/quaternions w x y z
//   /reset                            the present orientation becomes straight ahead
// Bundles are opened; anything else is ignored and counted.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include "HeadOrientation.h"
#include "TrackingState.h"

namespace sorvane {

class HeadTracker {
public:
    static constexpr int kFirstPort = 7770;
    static constexpr int kLastPort = 7799;
    static constexpr int kLookMilliseconds = 50;

    using State = TrackingState;

    explicit HeadTracker(OrientationMailbox& mailbox);
    ~HeadTracker();
    HeadTracker(const HeadTracker&) = delete;
    HeadTracker& operator=(const HeadTracker&) = delete;

    // Outside the audio callbacks: the thread's life. stop() joins it; both may be called twice.
    void start();
    void stop();
    bool running() const { return thread.joinable(); }

    // From any thread, the audio thread included.
    void want(bool on) { wanted.store(on, std::memory_order_relaxed); }
    // The port a saved session listened on, tried first (0: none).
    void preferPort(int port);
    State state() const { return stateNow.load(std::memory_order_acquire); }
    int port() const { return portNow.load(std::memory_order_acquire); }
    // The port to save with the instance: where it listens or last listened, else the one it was given.
    int portToKeep() const;
    std::uint64_t accepted() const { return acceptedCount.load(std::memory_order_relaxed); }
    std::uint64_t ignored() const { return ignoredCount.load(std::memory_order_relaxed); }

    // Whether this process would listen on all interfaces.
    static bool allInterfaces();
    // The port a new instance would listen on now, 0 if every one is taken.
    static int firstFreePort();

private:
    void loop();
    // Binds `port` (every family) and listens there; false, with nothing changed, if it is taken.
    bool claim(int port);
    // The preferred port, else the first free of the range.
    bool open();
    void close();
    void receive();
    void handle(char* data, std::size_t size, int depth);
    void take(const Quaternion& raw);

    OrientationMailbox& mailbox;
    std::thread thread;
    int wakeFd = -1;  // written by stop() to end the thread's wait at once
    std::atomic<bool> quit{false};
    std::atomic<bool> wanted{false};
    std::atomic<int> preferred{0};
    std::atomic<State> stateNow{State::Off};
    std::atomic<int> portNow{0};
    std::atomic<int> lastPort{0};
    std::atomic<std::uint64_t> acceptedCount{0}, ignoredCount{0};

    // The receiving thread's own.
    int sockets[2] = {-1, -1};  // IPv4, IPv6
    int preferredTried = 0;
    Quaternion raw, straightAhead;
    std::vector<char> packet;  // the largest datagram UDP carries
};

}  // namespace sorvane
