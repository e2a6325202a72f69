// The queue that carries parameter changes from host threads to the
// editor's thread: nothing lost while there is room, each sender's order
// kept, and a full queue says so instead of blocking.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ParameterQueue.h"

TEST(ParameterQueue, KeepsEverySendersOrderUnderConcurrency) {
    auto queue = std::make_unique<ParameterQueue>();
    constexpr int kSenders = 4, kEach = 5000;
    std::atomic<int> started{0};
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; ++sender)
        senders.emplace_back([&, sender] {
            ++started;
            for (int i = 0; i < kEach; ++i)
                while (!queue->push(sender, static_cast<float>(i))) std::this_thread::yield();
        });
    std::vector<int> next(kSenders, 0);
    int received = 0;
    while (received < kSenders * kEach) {
        int32_t index;
        float value;
        if (!queue->pop(index, value)) {
            std::this_thread::yield();
            continue;
        }
        ASSERT_GE(index, 0);
        ASSERT_LT(index, kSenders);
        ASSERT_EQ(value, static_cast<float>(next[index])) << "sender " << index;
        ++next[index];
        ++received;
    }
    for (auto& thread : senders) thread.join();
    int32_t index;
    float value;
    EXPECT_FALSE(queue->pop(index, value));
}

TEST(ParameterQueue, FullQueueRefusesAndRecoversAfterReading) {
    auto queue = std::make_unique<ParameterQueue>();
    for (size_t i = 0; i < ParameterQueue::kCapacity; ++i) ASSERT_TRUE(queue->push(1, float(i)));
    EXPECT_FALSE(queue->push(1, -1.0f));
    int32_t index;
    float value;
    ASSERT_TRUE(queue->pop(index, value));
    EXPECT_EQ(value, 0.0f);
    EXPECT_TRUE(queue->push(2, 7.0f));
    for (size_t i = 1; i < ParameterQueue::kCapacity; ++i) {
        ASSERT_TRUE(queue->pop(index, value));
        EXPECT_EQ(value, float(i));
    }
    ASSERT_TRUE(queue->pop(index, value));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(value, 7.0f);
}
