#include "tests/await.h"
#include "tests/platform/screen/windowTest.h"

#include <atomic>
#include <thread>

// Messages that are posted and sent, from any thread, and the one that comes last.

namespace {

class windowQueue : public windowTest
{
protected:
    void SetUp() override
    {
        windowTest::SetUp();
        Window = OpenAt({100, 100, 400, 300});
        Heard.clear();
    }

    // What the closures of the suite carry, in the order in which they came.
    std::vector<uint64_t> Carried() const
    {
        std::vector<uint64_t> all;
        for (const windowMessage& each : Heard) {
            if (each.Number == msgApp)
                all.push_back(each.First);
        }
        return all;
    }

    windowId Window = 0;
};

TEST_F(windowQueue, TakesPostedMessagesInOrder)
{
    for (uint64_t number = 0; number < 100; ++number)
        ASSERT_TRUE(System->Post(Window, msgApp, number, -static_cast<int64_t>(number)));
    EXPECT_TRUE(Carried().empty());
    Pump();
    ASSERT_EQ(Carried().size(), 100u);
    for (uint64_t number = 0; number < 100; ++number)
        EXPECT_EQ(Carried()[number], number);
    EXPECT_EQ(Last(Window, msgApp).Second, -99);
}

TEST_F(windowQueue, HandsParametersOnWhole)
{
    constexpr uint64_t First = 0xFEDCBA9876543210;
    constexpr int64_t Second = -0x123456789ABCDEF0;
    ASSERT_TRUE(System->Post(Window, msgApp, First, Second));
    Pump();
    EXPECT_EQ(Last(Window, msgApp).First, First);
    EXPECT_EQ(Last(Window, msgApp).Second, Second);
}

TEST_F(windowQueue, KeepsTheOrderOfEachOfManyThreads)
{
    constexpr uint64_t Threads = 4;
    constexpr uint64_t Each = 1000;
    {
        std::vector<std::jthread> threads;
        for (uint64_t thread = 0; thread < Threads; ++thread) {
            threads.emplace_back([this, thread] {
                for (uint64_t number = 0; number < Each; ++number)
                    System->Post(Window, msgApp, thread << 32 | number, 0);
            });
        }
        EXPECT_TRUE(Until([&] { return Count(Window, msgApp) == Threads * Each; }));
    }
    uint64_t next[Threads] = {};
    for (const uint64_t carried : Carried())
        EXPECT_EQ(carried & 0xFFFFFFFF, next[carried >> 32]++);
}

TEST_F(windowQueue, WakesAWaitByAPost)
{
    const std::jthread poster([this] {
        letOthersRun();
        System->Post(Window, msgApp, 7, 0);
    });
    windowMessage message;
    while (message.Number != msgApp)
        ASSERT_EQ(System->Wait(message), windowTake::Taken);
    EXPECT_EQ(message.Window, Window);
    EXPECT_EQ(message.First, 7u);
}

TEST_F(windowQueue, HasNothingWhenAllIsTaken)
{
    Pump();
    windowMessage message;
    EXPECT_EQ(System->Peek(message), windowTake::None);
}

TEST_F(windowQueue, CallsTheReceiverAtOnceWhenTheInterfaceThreadSends)
{
    System->Post(Window, msgApp, 1, 0);
    Answer = [](const windowMessage& message) {
        return message.Number == msgApp ? std::optional<int64_t>(message.Second * 2) : std::nullopt;
    };
    EXPECT_EQ(System->Send(Window, msgApp, 2, 21), 42);
    EXPECT_EQ(Carried(), (std::vector<uint64_t>{2}));
    Pump();
    EXPECT_EQ(Carried(), (std::vector<uint64_t>{2, 1}));
}

TEST_F(windowQueue, LetsASenderWaitForItsResult)
{
    const std::thread::id mine = std::this_thread::get_id();
    bool ranHere = false;
    Answer = [&](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgApp)
            return std::nullopt;
        ranHere = std::this_thread::get_id() == mine;
        return 1234;
    };
    std::atomic<bool> isBack = false;
    std::atomic<int64_t> result = 0;
    const std::jthread sender([&] {
        result = System->Send(Window, msgApp, 0, 0);
        isBack = true;
    });
    letOthersRun();
    EXPECT_FALSE(isBack);
    EXPECT_TRUE(Until([&] { return isBack.load(); }));
    EXPECT_EQ(result, 1234);
    EXPECT_TRUE(ranHere);
}

TEST_F(windowQueue, LetsWhatIsSentOvertakeWhatIsPosted)
{
    constexpr uint64_t Posted = 5000;
    constexpr uint64_t Sent = 1'000'000;
    for (uint64_t number = 0; number < Posted; ++number)
        ASSERT_TRUE(System->Post(Window, msgApp, number, 0));
    std::atomic<bool> starts = false;
    const std::jthread sender([&] {
        starts = true;
        System->Send(Window, msgApp, Sent, 0);
    });
    ASSERT_TRUE(await([&] { return starts.load(); }));
    letOthersRun();
    EXPECT_TRUE(Until([&] { return Count(Window, msgApp) == Posted + 1; }));
    EXPECT_NE(Carried().back(), Sent);
}

TEST_F(windowQueue, HandlesWhatIsSentWhileItWaits)
{
    std::atomic<bool> isBack = false;
    const std::jthread sender([&] {
        System->Send(Window, msgApp, 1, 0);
        isBack = true;
        System->Post(Window, msgApp, 2, 0);
    });
    windowMessage message;
    while (message.Number != msgApp)
        ASSERT_EQ(System->Wait(message), windowTake::Taken);
    EXPECT_TRUE(isBack);
    EXPECT_EQ(message.First, 2u);
    EXPECT_EQ(Carried(), (std::vector<uint64_t>{1}));
}

TEST_F(windowQueue, FreesWhoSendsToAWindowThatGoes)
{
    std::atomic<bool> starts = false;
    std::atomic<int64_t> result = -1;
    const windowId other = Make();
    const std::jthread sender([&] {
        starts = true;
        result = System->Send(other, msgApp, 0, 0);
    });
    ASSERT_TRUE(await([&] { return starts.load(); }));
    letOthersRun();
    System->Destroy(other);
    EXPECT_TRUE(Until([&] { return result != -1; }));
    EXPECT_EQ(result, 0);
}

TEST_F(windowQueue, DropsWhatWaitsForAWindowThatGoes)
{
    const windowId other = Make();
    ASSERT_TRUE(System->Post(other, msgApp, 1, 0));
    ASSERT_TRUE(System->Post(Window, msgApp, 2, 0));
    System->Destroy(other);
    Pump();
    EXPECT_EQ(Carried(), (std::vector<uint64_t>{2}));
}

TEST_F(windowQueue, TellsWhenItIsFull)
{
    constexpr uint64_t More = 20'000;
    uint64_t taken = 0;
    while (taken < More && System->Post(Window, msgApp, taken, 0))
        ++taken;
    Pump();
    ASSERT_EQ(Carried().size(), taken);
    EXPECT_EQ(Carried().back(), taken - 1);
    EXPECT_TRUE(System->Post(Window, msgApp, 0, 0));
    EXPECT_GE(taken, 1000u);
    if (taken == More)
        GTEST_SKIP() << "the queue of this system has no bound";
}

TEST_F(windowQueue, PaintsWhenNothingElseWaits)
{
    Pump();
    Heard.clear();
    System->AskPaint(Window);
    for (uint64_t number = 0; number < 20; ++number)
        ASSERT_TRUE(System->Post(Window, msgApp, number, 0));
    Answer = [this](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number == msgApp && message.First == 19)
            System->Post(Window, msgApp, 20, 0);
        return std::nullopt;
    };
    Pump();
    ASSERT_EQ(Count(Window, msgPaint), 1u);
    const std::vector<uint32_t> order = Order(Window, {msgApp, msgPaint});
    ASSERT_EQ(order.size(), 22u);
    EXPECT_EQ(order.back(), uint32_t{msgPaint});
}

TEST_F(windowQueue, MakesOnePaintOfManyRequests)
{
    Pump();
    Heard.clear();
    for (int request = 0; request < 5; ++request)
        System->AskPaint(Window);
    Pump();
    EXPECT_EQ(Count(Window, msgPaint), 1u);
}

TEST_F(windowQueue, PaintsNoMoreThanWasAskedFor)
{
    Pump();
    Heard.clear();
    System->PaintNow(Window);
    Pump();
    EXPECT_EQ(Count(Window, msgPaint), 0u);
}

TEST_F(windowQueue, PaintsNowWhatWasAskedFor)
{
    Pump();
    System->Post(Window, msgApp, 1, 0);
    System->AskPaint(Window);
    Heard.clear();
    System->PaintNow(Window);
    EXPECT_EQ(Order(Window, {msgApp, msgPaint}), (std::vector<uint32_t>{msgPaint}));
    Pump();
    EXPECT_EQ(Order(Window, {msgApp, msgPaint}), (std::vector<uint32_t>{msgPaint, msgApp}));
}

TEST_F(windowQueue, PaintsNoMoreWhenItIsDone)
{
    Pump();
    Heard.clear();
    System->AskPaint(Window);
    System->PaintDone(Window);
    Pump();
    EXPECT_EQ(Count(Window, msgPaint), 0u);
}

TEST_F(windowQueue, GoesOnAskingUntilItIsPainted)
{
    Pump();
    Heard.clear();
    int left = 3;
    Answer = [&](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number == msgPaint && --left > 0)
            return 0;
        return std::nullopt;
    };
    System->AskPaint(Window);
    Pump();
    EXPECT_EQ(Count(Window, msgPaint), 3u);
}

TEST_F(windowQueue, TakesARequestThatIsMadeWhileItPaints)
{
    Pump();
    Heard.clear();
    Answer = [this](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgPaint)
            return std::nullopt;
        System->PaintDone(Window);
        if (Count(Window, msgPaint) == 1)
            System->AskPaint(Window);
        return 0;
    };
    System->AskPaint(Window);
    Pump();
    EXPECT_EQ(Count(Window, msgPaint), 2u);
}

TEST_F(windowQueue, WakesAWaitByARequestToPaint)
{
    Pump();
    const std::jthread asker([this] {
        letOthersRun();
        System->AskPaint(Window);
    });
    windowMessage message;
    while (message.Number != msgPaint)
        ASSERT_EQ(System->Wait(message), windowTake::Taken);
    EXPECT_EQ(message.Window, Window);
}

TEST_F(windowQueue, AsksAWindowThatIsShownToPaint)
{
    const windowId other = MakeAt({450, 100, 650, 300});
    Pump();
    EXPECT_FALSE(Has(other, msgPaint));
    System->Show(other, windowShow::Activate);
    EXPECT_TRUE(Until([&] { return Has(other, msgPaint); }));
    System->Show(other, windowShow::Hide);
    Pump();
    Heard.clear();
    System->Show(other, windowShow::NoActivate);
    EXPECT_TRUE(Until([&] { return Has(other, msgPaint); }));
}

TEST_F(windowQueue, PaintsNothingThatIsHidden)
{
    const windowId other = MakeAt({450, 100, 650, 300});
    System->AskPaint(other);
    System->PaintNow(other);
    Pump();
    EXPECT_FALSE(Has(other, msgPaint));
}

}  // namespace
