#include "HeadTracker.h"

#include <arpa/inet.h>
#include <lo/lo.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string_view>
#include <utility>

namespace sorvane {

namespace {

// A UDP socket bound to `port` on the loopback (or every) address of one
// family, without address or port reuse: -1 when the port is taken.
int bindSocket(int family, int port, bool everywhere) {
    const int fd = ::socket(family, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    int bound = -1;
    if (family == AF_INET) {
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_port = htons(static_cast<std::uint16_t>(port));
        a.sin_addr.s_addr = htonl(everywhere ? INADDR_ANY : INADDR_LOOPBACK);
        bound = ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    } else {
        const int only = 1;  // IPv4 has a socket of its own
        ::setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &only, sizeof only);
        sockaddr_in6 a{};
        a.sin6_family = AF_INET6;
        a.sin6_port = htons(static_cast<std::uint16_t>(port));
        a.sin6_addr = everywhere ? in6addr_any : in6addr_loopback;
        bound = ::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a);
    }
    if (bound != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

bool ipv6Available() {
    const int fd = ::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    ::close(fd);
    return true;
}

// The message's arguments as numbers, if it has `count` of them and each is one.
bool numbers(lo_message m, int count, double* out) {
    if (lo_message_get_argc(m) != count) return false;
    const char* types = lo_message_get_types(m);
    lo_arg** argv = lo_message_get_argv(m);
    for (int i = 0; i < count; ++i) {
        const char t = types[i];
        if (t != LO_INT32 && t != LO_FLOAT && t != LO_DOUBLE && t != LO_INT64) return false;
        out[i] = static_cast<double>(lo_hires_val(static_cast<lo_type>(t), argv[i]));
        if (!std::isfinite(out[i])) return false;
    }
    return true;
}

// Every tracker whose thread runs: a host that unloads the library without
// closing an effect first must not leave a thread running in code that is
// about to be unmapped, so the library's own teardown stops them all.
class RunningTrackers {
public:
    void add(HeadTracker* tracker) {
        std::lock_guard lock(mutex);
        trackers.push_back(tracker);
    }
    void remove(HeadTracker* tracker) {
        std::lock_guard lock(mutex);
        std::erase(trackers, tracker);
    }
    ~RunningTrackers() {
        std::vector<HeadTracker*> left;
        {
            std::lock_guard lock(mutex);
            left.swap(trackers);
        }
        for (HeadTracker* tracker : left) tracker->stop();
    }

private:
    std::mutex mutex;
    std::vector<HeadTracker*> trackers;
};

RunningTrackers& runningTrackers() {
    static RunningTrackers running;
    return running;
}

std::uint32_t bigEndianWord(const char* p) {
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    return std::uint32_t{b[0]} << 24 | std::uint32_t{b[1]} << 16 | std::uint32_t{b[2]} << 8 | b[3];
}

}  // namespace

HeadTracker::HeadTracker(OrientationMailbox& mailbox) : mailbox(mailbox), packet(65536) {}

HeadTracker::~HeadTracker() { stop(); }

bool HeadTracker::allInterfaces() {
    const char* all = std::getenv("SORVANE_OSC_ALL_INTERFACES");
    return all && std::string_view(all) == "1";
}

void HeadTracker::start() {
    if (thread.joinable()) return;
    wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    quit.store(false);
    thread = std::thread([this] { loop(); });
    runningTrackers().add(this);
}

void HeadTracker::stop() {
    if (!thread.joinable()) return;
    runningTrackers().remove(this);
    quit.store(true);
    const std::uint64_t one = 1;
    if (wakeFd >= 0 && ::write(wakeFd, &one, sizeof one) < 0) {
        // Without the wake-up the thread still sees `quit` within kLookMilliseconds.
    }
    thread.join();
    if (wakeFd >= 0) ::close(wakeFd);
    wakeFd = -1;
}

void HeadTracker::preferPort(int port) {
    preferred.store(port >= 1024 && port <= 65535 ? port : 0, std::memory_order_relaxed);
}

int HeadTracker::portToKeep() const {
    if (const int last = lastPort.load(std::memory_order_relaxed)) return last;
    return preferred.load(std::memory_order_relaxed);
}

namespace {

// A port is free when every family's socket can be bound to it: both, or -1 each.
std::pair<int, int> bindPort(int port) {
    const bool everywhere = HeadTracker::allInterfaces();
    const int v4 = bindSocket(AF_INET, port, everywhere);
    if (v4 < 0) return {-1, -1};
    if (!ipv6Available()) return {v4, -1};
    const int v6 = bindSocket(AF_INET6, port, everywhere);
    if (v6 < 0) {
        ::close(v4);
        return {-1, -1};
    }
    return {v4, v6};
}

}  // namespace

int HeadTracker::firstFreePort() {
    for (int port = kFirstPort; port <= kLastPort; ++port)
        if (const auto [v4, v6] = bindPort(port); v4 >= 0) {
            ::close(v4);
            if (v6 >= 0) ::close(v6);
            return port;
        }
    return 0;
}

bool HeadTracker::claim(int port) {
    const auto [v4, v6] = bindPort(port);
    if (v4 < 0) return false;
    sockets[0] = v4;
    sockets[1] = v6;
    portNow.store(port, std::memory_order_release);
    lastPort.store(port, std::memory_order_relaxed);
    stateNow.store(State::Listening, std::memory_order_release);
    return true;
}

bool HeadTracker::open() {
    const int wish = preferred.load(std::memory_order_relaxed);
    preferredTried = wish;
    if (wish && claim(wish)) return true;
    for (int port = kFirstPort; port <= kLastPort; ++port)
        if (port != wish && claim(port)) return true;
    // Without a single socket, something other than busy ports stands in the way.
    const int probe = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe >= 0) ::close(probe);
    stateNow.store(probe >= 0 ? State::NoFreePort : State::NoSocket, std::memory_order_release);
    return false;
}

void HeadTracker::close() {
    for (int& fd : sockets)
        if (fd >= 0) {
            ::close(fd);
            fd = -1;
        }
    portNow.store(0, std::memory_order_release);
    stateNow.store(State::Off, std::memory_order_release);
}

void HeadTracker::loop() {
    using Clock = std::chrono::steady_clock;
    Clock::time_point nextTry{};
    while (!quit.load()) {
        const bool on = wanted.load(std::memory_order_relaxed);
        if (!on && sockets[0] >= 0) close();
        // A saved session's port, given while listening elsewhere: moved to if it is free, once.
        const int wish = preferred.load(std::memory_order_relaxed);
        if (on && sockets[0] >= 0 && wish && wish != portNow.load() && wish != preferredTried) {
            preferredTried = wish;
            const int v4 = sockets[0], v6 = sockets[1];
            if (claim(wish)) {
                ::close(v4);
                if (v6 >= 0) ::close(v6);
            }
        }
        // Busy ports may come free: tried again every second.
        if (on && sockets[0] < 0 && Clock::now() >= nextTry) {
            if (!open()) nextTry = Clock::now() + std::chrono::seconds(1);
        }
        pollfd fds[3] = {{wakeFd, POLLIN, 0}, {sockets[0], POLLIN, 0}, {sockets[1], POLLIN, 0}};
        if (::poll(fds, 3, kLookMilliseconds) > 0 && (fds[1].revents | fds[2].revents) & POLLIN) receive();
    }
    close();
}

void HeadTracker::receive() {
    // Every datagram waiting, up to a bound, so a flood cannot keep the thread from looking at its flags.
    static constexpr int kMostAtOnce = 256;
    for (int fd : sockets) {
        if (fd < 0) continue;
        for (int n = 0; n < kMostAtOnce; ++n) {
            const ssize_t size = ::recv(fd, packet.data(), packet.size(), 0);
            if (size < 0) break;
            handle(packet.data(), static_cast<std::size_t>(size), 0);
        }
    }
}

void HeadTracker::handle(char* data, std::size_t size, int depth) {
    static constexpr std::string_view kBundle{"#bundle", 8};
    if (size >= 16 && std::string_view(data, 8) == kBundle) {
        // A bundle: a time tag, then elements each led by its size; opened a few levels deep at most.
        for (std::size_t at = 16; depth < 4 && at + 4 <= size;) {
            const std::uint32_t length = bigEndianWord(data + at);
            if (length > size - at - 4) break;
            handle(data + at + 4, length, depth + 1);
            at += 4 + length;
        }
        return;
    }
    int result = 0;
    lo_message m = size > 0 ? lo_message_deserialise(data, size, &result) : nullptr;
    if (!m) {
        ignoredCount.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    const std::string_view path = lo_get_path(data, static_cast<ssize_t>(size));
    double v[4];
    bool used = true;
    if ((path == "/ypr" || path == "/SceneRotator/ypr") && numbers(m, 3, v)) {
        take(orientationOfYawPitchRoll(v[0], v[1], v[2]));
    } else if ((path == "/quaternion" || path == "/quaternions" || path == "/SceneRotator/quaternions") &&
               numbers(m, 4, v)) {
        Quaternion q{v[0], v[1], v[2], v[3]};
        used = normalise(q);
        if (used) take(q);
    } else if (path == "/reset" && lo_message_get_argc(m) == 0) {
        straightAhead = raw;
        mailbox.post(Quaternion{});
    } else {
        used = false;
    }
    lo_message_free(m);
    (used ? acceptedCount : ignoredCount).fetch_add(1, std::memory_order_relaxed);
}

void HeadTracker::take(const Quaternion& orientation) {
    raw = orientation;
    Quaternion relative = conjugate(straightAhead) * raw;
    normalise(relative);
    mailbox.post(relative);
}

}  // namespace sorvane
