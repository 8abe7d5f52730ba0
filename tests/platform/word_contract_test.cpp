#include "platform/word.h"

#include "tests/platform/contract.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using wordContract = contractTest;

// Sleeps as callers do: until the word is no longer `value`.
void SleepWhile(const std::atomic<uint32_t>& word, uint32_t value)
{
    while (word == value)
        wordWait(word, value);
}

TEST_F(wordContract, DoesNotSleepWhenTheWordHoldsAnotherValue)
{
    const std::atomic<uint32_t> word{7};
    wordWait(word, 8);
}

TEST_F(wordContract, TakesAWakeThatNobodyWaitsFor)
{
    const std::atomic<uint32_t> word{0};
    wordWake(word);
    wordWake(word);
}

TEST_F(wordContract, NeverMissesAChangeThatIsFollowedByAWake)
{
    constexpr uint32_t Turns = 5000;
    std::atomic<uint32_t> word{0};
    // Each side lets the word grow by one when it is the other's turn no more.
    std::thread other([&word] {
        for (uint32_t turn = 0; turn < Turns; turn++) {
            SleepWhile(word, 2 * turn);
            word = 2 * turn + 2;
            wordWake(word);
        }
    });
    for (uint32_t turn = 0; turn < Turns; turn++) {
        word = 2 * turn + 1;
        wordWake(word);
        SleepWhile(word, 2 * turn + 1);
    }
    other.join();
    EXPECT_EQ(word, 2 * Turns);
}

TEST_F(wordContract, WakesOneSleeperAtATime)
{
    constexpr unsigned Sleepers = 4;
    std::atomic<uint32_t> permits{0};
    std::atomic<unsigned> through{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < Sleepers; i++) {
        threads.emplace_back([&] {
            uint32_t seen = permits;
            while (seen == 0 || !permits.compare_exchange_weak(seen, seen - 1)) {
                SleepWhile(permits, 0);
                seen = permits;
            }
            ++through;
        });
    }
    for (unsigned woken = 1; woken <= Sleepers; woken++) {
        ++permits;
        wordWake(permits);
        EXPECT_TRUE(contractAwait([&] { return through == woken; }));
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(wordContract, UsesOnlyTheAddressToWake)
{
    auto word = std::make_unique<std::atomic<uint32_t>>(0);
    const std::atomic<uint32_t>& gone = *word;
    word.reset();
    wordWake(gone);
}

}  // namespace
