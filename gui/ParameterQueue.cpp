#include "ParameterQueue.h"

// Each slot's sequence tells whose turn it is: equal to a push position when
// free for that push, one more once filled, a lap further once read.
ParameterQueue::ParameterQueue() {
    for (std::size_t i = 0; i < kCapacity; ++i) slots[i].sequence.store(i, std::memory_order_relaxed);
}

bool ParameterQueue::push(int32_t index, float value) {
    std::size_t position = pushPosition.load(std::memory_order_relaxed);
    Slot* slot;
    for (;;) {
        slot = &slots[position & (kCapacity - 1)];
        const std::size_t sequence = slot->sequence.load(std::memory_order_acquire);
        const auto lag = static_cast<std::ptrdiff_t>(sequence - position);
        if (lag == 0) {
            if (pushPosition.compare_exchange_weak(position, position + 1, std::memory_order_relaxed))
                break;
        } else if (lag < 0) {
            return false;  // the slot still holds an unread change: full
        } else {
            position = pushPosition.load(std::memory_order_relaxed);
        }
    }
    slot->index = index;
    slot->value = value;
    slot->sequence.store(position + 1, std::memory_order_release);
    return true;
}

bool ParameterQueue::pop(int32_t& index, float& value) {
    std::size_t position = popPosition.load(std::memory_order_relaxed);
    Slot* slot;
    for (;;) {
        slot = &slots[position & (kCapacity - 1)];
        const std::size_t sequence = slot->sequence.load(std::memory_order_acquire);
        const auto lag = static_cast<std::ptrdiff_t>(sequence - (position + 1));
        if (lag == 0) {
            if (popPosition.compare_exchange_weak(position, position + 1, std::memory_order_relaxed))
                break;
        } else if (lag < 0) {
            return false;  // empty
        } else {
            position = popPosition.load(std::memory_order_relaxed);
        }
    }
    index = slot->index;
    value = slot->value;
    slot->sequence.store(position + kCapacity, std::memory_order_release);
    return true;
}
