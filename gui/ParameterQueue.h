// A bounded lock-free queue of parameter changes (index, value): any number
// of threads push, the editor's thread pops in the order they were pushed.
// Hosts automate from their audio thread, which must neither block nor
// touch views; the editor applies what they sent at its next idle.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

class ParameterQueue {
public:
    static constexpr std::size_t kCapacity = 1024;  // a power of two

    ParameterQueue();
    // False when the queue is full (the change is not queued).
    bool push(int32_t index, float value);
    // The oldest change, if any.
    bool pop(int32_t& index, float& value);

private:
    struct Slot {
        std::atomic<std::size_t> sequence;
        int32_t index;
        float value;
    };
    Slot slots[kCapacity];
    alignas(64) std::atomic<std::size_t> pushPosition{0};
    alignas(64) std::atomic<std::size_t> popPosition{0};
};
