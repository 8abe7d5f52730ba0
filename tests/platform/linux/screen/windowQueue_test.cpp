#include "platform/linux/screen/windowQueue.h"

#include "tests/await.h"

#include <atomic>
#include <thread>
#include <vector>

#include <poll.h>

#include <gtest/gtest.h>

namespace {

constexpr windowId Window = 7;
constexpr windowId Other = 8;

class queueOfWindows : public testing::Test
{
protected:
    void SetUp() override
    {
        Queue.Admit(Window);
        Queue.Admit(Other);
    }

    bool IsReadable() const
    {
        pollfd source{Queue.Descriptor(), POLLIN, 0};
        return poll(&source, 1, 0) == 1;
    }

    static windowQueued input(uint32_t number, uint64_t first, int64_t second)
    {
        return {{.Window = Window, .Number = number, .First = first, .Second = second}, windowOrigin::Input};
    }

    std::vector<int64_t> Rest()
    {
        std::vector<int64_t> seconds;
        windowQueued item;
        while (Queue.Take(item))
            seconds.push_back(item.Message.Second);
        return seconds;
    }

    windowQueue Queue;
};

int64_t answer(const windowMessage& message)
{
    return message.Second * 2;
}

TEST_F(queueOfWindows, KeepsWhatIsPostedAndWhatComesFromTheDisplayInOneOrder)
{
    Queue.Post({.Window = Window, .Number = msgApp, .Second = 1});
    Queue.Append(input(msgKeyDown, 65, 2));
    Queue.Post({.Window = Window, .Number = msgApp, .Second = 3});
    EXPECT_EQ(Rest(), (std::vector<int64_t>{1, 2, 3}));
}

TEST_F(queueOfWindows, KeepsOnlyTheLastOfMovesThatFollowEachOther)
{
    Queue.Append(input(msgMouseMove, 0, 1));
    Queue.Append(input(msgMouseMove, 0, 2));
    Queue.Append(input(msgLeftDown, keysLeft, 3));
    Queue.Append(input(msgMouseMove, keysLeft, 4));
    Queue.Append(input(msgMouseMove, keysLeft | keysShift, 5));
    EXPECT_EQ(Rest(), (std::vector<int64_t>{2, 3, 4, 5}));
}

TEST_F(queueOfWindows, KeepsEachRepetitionOfAKey)
{
    Queue.Append(input(msgKeyDown, 65, 1));
    Queue.Append(input(msgKeyDown, 65, 1));
    EXPECT_EQ(Rest(), (std::vector<int64_t>{1, 1}));
}

TEST_F(queueOfWindows, KeepsMovesThatSomebodyPosts)
{
    Queue.Post({.Window = Window, .Number = msgMouseMove, .Second = 1});
    Queue.Post({.Window = Window, .Number = msgMouseMove, .Second = 2});
    EXPECT_EQ(Rest(), (std::vector<int64_t>{1, 2}));
}

TEST_F(queueOfWindows, IsFullOfWhatIsPostedAndNeverOfInput)
{
    for (size_t n = 0; n < windowQueue::PostLimit; ++n)
        ASSERT_TRUE(Queue.Post({.Window = Window, .Number = msgApp}));
    EXPECT_FALSE(Queue.Post({.Window = Other, .Number = msgApp}));
    Queue.Append(input(msgKeyDown, 65, 0));
    Queue.Append(input(msgKeyUp, 65, 0));
    EXPECT_EQ(Rest().size(), windowQueue::PostLimit + 2);
    EXPECT_TRUE(Queue.Post({.Window = Window, .Number = msgApp}));
}

TEST_F(queueOfWindows, HasRoomAgainForWhatWasDroppedWithItsWindow)
{
    for (size_t n = 0; n < windowQueue::PostLimit; ++n)
        ASSERT_TRUE(Queue.Post({.Window = n % 2 == 0 ? Window : Other, .Number = msgApp}));
    Queue.Forget(Other);
    EXPECT_TRUE(Queue.Post({.Window = Window, .Number = msgApp}));
    EXPECT_FALSE(Queue.Post({.Window = Other, .Number = msgApp}));
    EXPECT_EQ(Rest().size(), windowQueue::PostLimit / 2 + 1);
}

TEST_F(queueOfWindows, IsReadableUntilItIsCalmed)
{
    EXPECT_FALSE(IsReadable());
    Queue.Post({.Window = Window, .Number = msgApp});
    Queue.Post({.Window = Window, .Number = msgApp});
    EXPECT_TRUE(IsReadable());
    Queue.Calm();
    EXPECT_FALSE(IsReadable());
    Queue.Wake();
    EXPECT_TRUE(IsReadable());
}

TEST_F(queueOfWindows, GivesEachSenderItsOwnResult)
{
    constexpr int64_t Threads = 4;
    constexpr int64_t Each = 500;
    std::atomic<int64_t> right = 0;
    std::atomic<int64_t> ended = 0;
    std::vector<std::jthread> senders;
    for (int64_t thread = 0; thread < Threads; ++thread) {
        senders.emplace_back([&, thread] {
            for (int64_t n = 0; n < Each; ++n) {
                const int64_t second = thread * Each + n;
                const bool isRight =
                    Queue.Send({.Window = Window, .Number = msgApp, .Second = second}) == second * 2;
                right += isRight ? 1 : 0;
            }
            ++ended;
        });
    }
    EXPECT_TRUE(await([&] {
        Queue.RunSent(answer);
        return ended == Threads;
    }));
    EXPECT_EQ(right, Threads * Each);
}

TEST_F(queueOfWindows, FreesSendersWhenItCloses)
{
    std::atomic<int64_t> result = -1;
    const std::jthread sender([&] { result = Queue.Send({.Window = Window, .Second = 5}); });
    EXPECT_TRUE(await([&] { return IsReadable(); }));
    Queue.Close();
    EXPECT_TRUE(await([&] { return result == 0; }));
    EXPECT_EQ(Queue.Send({.Window = Window, .Second = 5}), 0);
}

TEST_F(queueOfWindows, LosesNoPostWhileWindowsComeAndGo)
{
    constexpr int Posts = 2000;
    std::atomic<int> accepted = 0;
    std::atomic<bool> isDone = false;
    const std::jthread poster([&] {
        for (int n = 0; n < Posts; ++n)
            accepted += Queue.Post({.Window = Window, .Number = msgApp}) ? 1 : 0;
        isDone = true;
    });
    int taken = 0;
    windowQueued item;
    for (windowId passing = 100; !isDone; ++passing) {
        Queue.Admit(passing);
        Queue.Post({.Window = passing, .Number = msgApp});
        Queue.Forget(passing);
        while (Queue.Take(item))
            ++taken;
    }
    while (Queue.Take(item))
        ++taken;
    EXPECT_EQ(taken, accepted);
}

}  // namespace
