// A bounded queue of parameter changes from any number of threads to the
// editor's thread. Hosts automate from their audio thread, which must never
// wait or allocate: push claims a slot with one compare-and-swap in a fixed
// ring and gives up when the ring is full. Only the editor's thread pops,
// in the order the slots were claimed.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

class ParameterQueue {
public:
    static constexpr std::size_t kCapacity = 1024;  // a power of two

    struct Change {
        int32_t index;
        float value;
    };

    ParameterQueue() {
        for (std::size_t i = 0; i < kCapacity; ++i)
            slots[i].sequence.store(i, std::memory_order_relaxed);
    }
    ParameterQueue(const ParameterQueue&) = delete;
    ParameterQueue& operator=(const ParameterQueue&) = delete;

    // Any thread. False when the ring is full; the change is then lost and
    // overflowed() tells the editor to read everything afresh.
    bool push(int32_t index, float value) {
        std::size_t position = tail.load(std::memory_order_relaxed);
        for (;;) {
            Slot& slot = slots[position & (kCapacity - 1)];
            const std::size_t sequence = slot.sequence.load(std::memory_order_acquire);
            const auto lag = static_cast<std::ptrdiff_t>(sequence - position);
            if (lag == 0) {
                if (tail.compare_exchange_weak(position, position + 1, std::memory_order_relaxed)) {
                    slot.change = {index, value};
                    slot.sequence.store(position + 1, std::memory_order_release);
                    return true;
                }
            } else if (lag < 0) {
                lost.store(true, std::memory_order_relaxed);
                return false;
            } else {
                position = tail.load(std::memory_order_relaxed);
            }
        }
    }

    // Editor thread only. False when nothing (more) is ready; a slot still
    // being written by its producer waits for the next call.
    bool pop(Change& change) {
        Slot& slot = slots[head & (kCapacity - 1)];
        if (slot.sequence.load(std::memory_order_acquire) != head + 1) return false;
        change = slot.change;
        slot.sequence.store(head + kCapacity, std::memory_order_release);
        ++head;
        return true;
    }

    // Editor thread only: whether a push was refused since the last call.
    bool overflowed() { return lost.exchange(false, std::memory_order_relaxed); }

    // Editor thread only: drops whatever is ready.
    void discard() {
        Change ignored;
        while (pop(ignored)) {
        }
        overflowed();
    }

private:
    static_assert((kCapacity & (kCapacity - 1)) == 0);
    static_assert(std::atomic<std::size_t>::is_always_lock_free);

    struct Slot {
        std::atomic<std::size_t> sequence;
        Change change;
    };

    Slot slots[kCapacity];
    alignas(64) std::atomic<std::size_t> tail{0};
    alignas(64) std::size_t head = 0;
    std::atomic<bool> lost{false};
};
