// What other threads changed while the editor waited for its next idle:
// which parameters changed, and the latest suspend or resume. Hosts automate
// from any thread, the audio thread among them, so marking a change never
// waits, locks or allocates: one atomic OR, or one compare-and-swap loop.
//
// The values themselves are not kept: at the idle the editor reads each
// changed parameter back from the effect, which stored it before telling
// the editor. However direct and queued changes interleave, and however
// many arrive, the display ends at the effect's current values.
#pragma once

#include <atomic>
#include <cstdint>

class PendingChanges {
public:
    // Bits 0 .. 30 stand for parameters (or other values the editor reads back).
    static constexpr int kSlots = 31;

    // Any thread.
    void markChanged(int slot) {
        if (slot >= 0 && slot < kSlots) changed.fetch_or(1u << slot, std::memory_order_release);
    }
    // Editor thread: the slots marked since the last call.
    std::uint32_t takeChanged() { return changed.exchange(0, std::memory_order_acquire); }

    // Any thread: a suspend (true) or resume (false). The newest wins, also
    // against one already applied on the editor's thread; returns its stamp.
    std::uint64_t markRunState(bool suspended) {
        const std::uint64_t mine = (clock.fetch_add(1, std::memory_order_relaxed) + 1) << 1 | (suspended ? 1 : 0);
        std::uint64_t current = runState.load(std::memory_order_relaxed);
        while (current < mine && !runState.compare_exchange_weak(current, mine, std::memory_order_release)) {}
        return mine;
    }
    // Editor thread: true with the state when one newer than `applied` is waiting.
    bool takeRunState(std::uint64_t& applied, bool& suspended) {
        const std::uint64_t latest = runState.load(std::memory_order_acquire);
        if (latest == applied) return false;
        applied = latest;
        suspended = latest & 1;
        return true;
    }

    // Editor thread, with no other thread marking: forget everything.
    void discard() {
        changed.store(0, std::memory_order_relaxed);
        runState.store(0, std::memory_order_relaxed);
    }

private:
    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
    std::atomic<std::uint32_t> changed{0};
    std::atomic<std::uint64_t> clock{0};
    std::atomic<std::uint64_t> runState{0};  // stamp << 1 | suspended
};
