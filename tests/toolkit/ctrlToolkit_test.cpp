#include "tests/toolkit/toolkitTest.h"

#include "tests/await.h"

#include <atomic>
#include <memory>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ctrlToolkitTest : public toolkitTest
{
protected:
    static ctrlWindow* Shown()
    {
        auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
        window->Show();
        Drawn();
        return window;
    }

    // Pumps until all of it is done, as the program's loop does.
    template <typename condition>
    static bool PumpUntil(const condition& isTrue)
    {
        return await([&] {
            Toolkit().PumpPending();
            return isTrue();
        });
    }
};

// --- Pumps

TEST_F(ctrlToolkitTest, APaintThatWaitedFor50MillisecondsGoesBeforeThePostedClosures)
{
    ctrlWindow* window = Shown();
    std::vector<size_t> paints;
    for (int i = 0; i < 3; ++i) {
        Toolkit().Post(
            [&paints] {
                paints.push_back(fakeDrawCount("fill"));
                fakeClockMove(25'000'000);
            },
            true);
    }
    window->Invalidate(true);
    Drawn();
    EXPECT_THAT(paints, ElementsAre(0U, 0U, 1U));
    EXPECT_EQ(fakeCallCount("windowPaintNow"), 1U);
}

TEST_F(ctrlToolkitTest, AHiddenWindowIsNotSwept)
{
    ctrlWindow* window = Shown();
    window->Invalidate(true);
    window->Hide();
    fakeClockMove(50'000'000);
    Drawn();
    EXPECT_EQ(fakeCallCount("windowPaintNow"), 0U);
}

TEST_F(ctrlToolkitTest, PumpOneHandlesOneMessageAndTellsWhenThereIsNone)
{
    Shown();
    int ran = 0;
    Toolkit().Post([&ran] { ++ran; }, true);
    Toolkit().Post([&ran] { ++ran; }, true);
    EXPECT_TRUE(Toolkit().PumpOne(false));
    EXPECT_EQ(ran, 1);
    EXPECT_TRUE(Toolkit().PumpOne(true));
    EXPECT_EQ(ran, 2);
    EXPECT_FALSE(Toolkit().PumpOne(false));
}

TEST_F(ctrlToolkitTest, TheLoopEndsWithTheProgramTheLastWindowOrTheSystem)
{
    ctrlWindow* window = Shown();
    fakeProgramEnds();
    EXPECT_FALSE(Toolkit().PumpOne(true));
    fakeFail("windowWait");
    EXPECT_FALSE(Toolkit().PumpOne(true));
    window->Destroy();
    EXPECT_TRUE(Toolkit().PumpOne(true));
    EXPECT_FALSE(Toolkit().HasWindows());
    EXPECT_FALSE(Toolkit().PumpOne(true)) << "without a window it does not wait";
}

TEST_F(ctrlToolkitTest, ASystemThatIsGoneEndsThePump)
{
    Shown();
    Toolkit().Post([] { FAIL(); }, true);
    fakeFail("windowPeek");
    EXPECT_FALSE(Toolkit().PumpPending());
    fakeReset();
    delete Toolkit().WindowList().front();
}

TEST_F(ctrlToolkitTest, TheTimerStopsWithTheLastWindow)
{
    ctrlWindow* first = Shown();
    ctrlWindow* second = Shown();
    std::atomic<int> ticks{0};
    Toolkit().Timer.OnTick = [&ticks] { ++ticks; };
    Toolkit().Timer.Start();
    first->Destroy();
    Toolkit().PumpPending();
    Toolkit().Timer.Signal();
    EXPECT_TRUE(await([&ticks] { return ticks > 0; }));
    second->Destroy();
    Toolkit().PumpPending();
    const int before = ticks;
    Toolkit().Timer.Signal();
    letOthersRun();
    EXPECT_EQ(ticks, before);
    Toolkit().Timer.OnTick = nullptr;
    Toolkit().Timer.Wait(0);
}

TEST_F(ctrlToolkitTest, WhoLosesTheTimerIsTold)
{
    Shown();
    std::vector<int> lost;
    std::atomic<int> ticks{0};
    Toolkit().TimerTake(
        60'000, [] {}, [&lost] { lost.push_back(1); });
    Toolkit().TimerTake(
        50'000, [&ticks] { ++ticks; }, [&lost] { lost.push_back(2); });
    EXPECT_EQ(lost, std::vector<int>({1}));
    EXPECT_EQ(Toolkit().Timer.Period, 50'000U);
    Toolkit().Timer.Signal();
    EXPECT_TRUE(await([&ticks] { return ticks > 0; }));
    Toolkit().TimerStop();
    EXPECT_EQ(lost, std::vector<int>({1, 2}));
    Toolkit().TimerStop();
    EXPECT_EQ(lost.size(), 2U);
    Toolkit().TimerTake(
        60'000, [] {}, [&lost] { lost.push_back(3); });
    delete Toolkit().WindowList().front();
    EXPECT_EQ(lost.back(), 3) << "with the last window";
}

TEST_F(ctrlToolkitTest, TheWorkAreaIsReadOnce)
{
    Shown();
    EXPECT_EQ(Toolkit().WorkArea.Right, 1920);
    EXPECT_EQ(Toolkit().WorkArea.Bottom, 1040);
}

// --- Closures

TEST_F(ctrlToolkitTest, OnTheInterfaceThreadAClosureRunsAtOnceOrLaterAsAsked)
{
    Shown();
    std::string order;
    Toolkit().Post([&order] { order += 'a'; }, true);
    Toolkit().Post([&order] { order += 'b'; }, false);
    EXPECT_EQ(order, "b");
    Toolkit().PumpPending();
    EXPECT_EQ(order, "ba");
    Toolkit().Post(nullptr, false);
    Toolkit().Post(nullptr, true);
    Toolkit().PumpPending();
}

TEST_F(ctrlToolkitTest, WithoutAWindowAClosureRunsOnTheCallersThread)
{
    for (const bool async : {false, true}) {
        std::thread::id ran;
        std::thread worker([&ran, async] {
            EXPECT_TRUE(Toolkit().IsInterfaceThread());
            Toolkit().Post([&ran] { ran = std::this_thread::get_id(); }, async);
        });
        const std::thread::id id = worker.get_id();
        worker.join();
        EXPECT_EQ(ran, id);
    }
}

TEST_F(ctrlToolkitTest, AWorkerWaitsForItsClosureWhichRunsOnTheInterfaceThread)
{
    Shown();
    EXPECT_TRUE(Toolkit().IsInterfaceThread());
    std::thread::id ran;
    std::atomic<bool> done{false};
    std::thread worker([&] {
        EXPECT_FALSE(Toolkit().IsInterfaceThread());
        Toolkit().Post([&ran] { ran = std::this_thread::get_id(); }, false);
        EXPECT_NE(ran, std::thread::id());
        done = true;
    });
    EXPECT_TRUE(PumpUntil([&done] { return done.load(); }));
    worker.join();
    EXPECT_EQ(ran, std::this_thread::get_id());
}

TEST_F(ctrlToolkitTest, TheClosureIsFreedWhenItHasRun)
{
    Shown();
    const auto held = std::make_shared<int>(0);
    for (const bool async : {true, false})
        Toolkit().Post([held] {}, async);
    EXPECT_EQ(held.use_count(), 2);
    Toolkit().PumpPending();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(ctrlToolkitTest, ClosuresOfManyThreadsKeepTheOrderOfEachAndNoneIsLost)
{
    constexpr int threads = 4;
    constexpr int each = 500;
    Shown();
    std::vector<std::vector<int>> seen(threads);
    std::atomic<int> ended{0};
    std::vector<std::thread> workers;
    for (size_t thread = 0; thread < threads; ++thread) {
        workers.emplace_back([&, thread] {
            for (int i = 0; i < each; ++i) {
                const bool async = i % 50 != 49;
                Toolkit().Post([&seen, thread, i] { seen[thread].push_back(i); }, async);
                // What is waited for overtakes, so the posted ones before it are let through.
                if (!async) {
                    EXPECT_TRUE(await([] { return fakeQueueLength() == 0; }));
                }
            }
            ++ended;
        });
    }
    EXPECT_TRUE(PumpUntil([&] { return ended == threads; }));
    for (std::thread& worker : workers)
        worker.join();
    Toolkit().PumpPending();
    for (const std::vector<int>& one : seen) {
        ASSERT_EQ(one.size(), size_t{each});
        int last = -1;
        for (const int i : one) {
            if (i % 50 == 49)
                continue;
            EXPECT_GT(i, last);
            last = i;
        }
    }
}

TEST_F(ctrlToolkitTest, ClosuresKeepTheirOrderWhenTheFirstWindowGoes)
{
    ctrlWindow* first = Shown();
    Shown();
    std::vector<int> seen;
    for (int i = 0; i < 3; ++i)
        Toolkit().Post([&seen, i] { seen.push_back(i); }, true);
    delete first;
    for (int i = 3; i < 6; ++i)
        Toolkit().Post([&seen, i] { seen.push_back(i); }, true);
    Toolkit().PumpPending();
    EXPECT_THAT(seen, ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(ctrlToolkitTest, WorkersLoseNoClosureWhileFirstWindowsComeAndGo)
{
    constexpr int threads = 3;
    constexpr int each = 300;
    Shown();
    std::vector<std::vector<int>> seen(threads);
    std::atomic<int> ended{0};
    std::vector<std::thread> workers;
    for (size_t thread = 0; thread < threads; ++thread) {
        workers.emplace_back([&, thread] {
            for (int i = 0; i < each; ++i)
                Toolkit().Post([&seen, thread, i] { seen[thread].push_back(i); }, i % 10 != 0);
            ++ended;
        });
    }
    while (ended < threads) {
        Shown();
        delete Toolkit().WindowList().front();
        Toolkit().PumpPending();
    }
    for (std::thread& worker : workers)
        worker.join();
    Toolkit().PumpPending();
    for (const std::vector<int>& one : seen) {
        EXPECT_EQ(one.size(), size_t{each});
        int last = 0;
        for (const int i : one) {
            if (i % 10 == 0)
                continue;
            EXPECT_GT(i, last) << "posted ones in their order";
            last = i;
        }
    }
}

TEST_F(ctrlToolkitTest, AClosurePostedWhileItsWindowGoesIsHandedToTheNext)
{
    ctrlWindow* first = Shown();
    Shown();
    bool ran = false;
    fakeOnCall("windowPost", 1, [first] { delete first; });
    Toolkit().Post([&ran] { ran = true; }, true);
    Toolkit().PumpPending();
    EXPECT_TRUE(ran);
}

TEST_F(ctrlToolkitTest, AClosureForAWindowThatIsJustGoingIsPostedToTheNext)
{
    ctrlWindow* first = Shown();
    Shown();
    bool ran = false;
    // As it is in the middle of its destructor, when the system has it no more.
    fakeOnCall("windowPost", 1, [first] { Toolkit().Remove(first); });
    fakeFail("windowPost");
    Toolkit().Post([&ran] { ran = true; }, true);
    Toolkit().PumpPending();
    EXPECT_TRUE(ran);
    delete first;
}

TEST_F(ctrlToolkitTest, AClosureSentWhileItsWindowGoesIsHandedToTheNext)
{
    ctrlWindow* first = Shown();
    Shown();
    bool ran = false;
    std::atomic<int> step{0};
    fakeOnCall("windowSend", 1, [&step] {
        step = 1;
        EXPECT_TRUE(await([&step] { return step == 2; }));
    });
    std::thread worker([&] {
        Toolkit().Post([&ran] { ran = true; }, false);
        step = 3;
    });
    EXPECT_TRUE(await([&step] { return step == 1; }));
    delete first;
    step = 2;
    EXPECT_TRUE(PumpUntil([&step] { return step == 3; }));
    worker.join();
    EXPECT_TRUE(ran);
}

TEST_F(ctrlToolkitTest, AClosureThatTheQueueRefusesIsDroppedAlone)
{
    Shown();
    const auto held = std::make_shared<int>(0);
    std::string order;
    Toolkit().Post([&order] { order += 'a'; }, true);
    fakeFail("windowPost");
    Toolkit().Post([&order, held] { order += 'b'; }, true);
    EXPECT_EQ(held.use_count(), 1);
    Toolkit().Post([&order] { order += 'c'; }, true);
    Toolkit().PumpPending();
    EXPECT_EQ(order, "ac");
}

TEST_F(ctrlToolkitTest, ARefusedClosureThatRanAlreadyLeavesNoOtherBehind)
{
    Shown();
    std::string order;
    // While the first is being refused, another is posted and its message runs the first.
    fakeOnCall("windowPost", 1, [&order] {
        Toolkit().Post([&order] { order += 'b'; }, true);
        Toolkit().PumpPending();
    });
    fakeFail("windowPost", {.Skip = 1});
    Toolkit().Post([&order] { order += 'a'; }, true);
    EXPECT_EQ(order, "a");
    Toolkit().Post([&order] { order += 'c'; }, true);
    Toolkit().PumpPending();
    EXPECT_EQ(order, "abc");
}

TEST_F(ctrlToolkitTest, WithTheLastWindowTheClosuresOnTheirWayAreFreed)
{
    ctrlWindow* window = Shown();
    const auto held = std::make_shared<int>(0);
    Toolkit().Post([held] { FAIL(); }, true);
    delete window;
    EXPECT_EQ(held.use_count(), 1);
    Toolkit().PumpPending();
}

TEST_F(ctrlToolkitTest, AClosureMayDeleteTheWindowThatBroughtIt)
{
    ctrlWindow* window = Shown();
    Shown();
    bool after = false;
    Toolkit().Post([window] { delete window; }, true);
    Toolkit().Post([&after] { after = true; }, true);
    Toolkit().PumpPending();
    EXPECT_TRUE(after);
}

// --- From workers

TEST_F(ctrlToolkitTest, WorkersShowAndHideByTheInterfaceThread)
{
    ctrlWindow* window = Shown();
    std::thread([window] { window->Hide(); }).join();
    EXPECT_TRUE(window->HasState(stateVisible));
    Toolkit().PumpPending();
    EXPECT_FALSE(window->HasState(stateVisible));
    std::thread([window] { window->Show(); }).join();
    EXPECT_FALSE(window->HasState(stateVisible));
    Toolkit().PumpPending();
    EXPECT_TRUE(window->HasState(stateVisible));
}

TEST_F(ctrlToolkitTest, AWorkersRequestForAControlThatWentMeanwhileIsDropped)
{
    ctrlWindow* window = Shown();
    auto* child = new ctrlWindow(window, 0, 0, 10, 10, 0);
    std::thread([child] {
        child->Show();
        child->Hide();
    }).join();
    child->Destroy();
    Toolkit().PumpPending();
}

TEST_F(ctrlToolkitTest, ACaptionIsStoredAtOnceAndShownLater)
{
    ctrlWindow* window = Shown();
    std::thread([window] { window->Caption("Name"); }).join();
    EXPECT_EQ(window->Name(), "Name");
    EXPECT_EQ(fakeWindowOf(window->Handle())->Title, "Untitled");
    Toolkit().PumpPending();
    EXPECT_EQ(fakeWindowOf(window->Handle())->Title, "Name");
    fakeClearCalls();
    window->Caption("Name");
    EXPECT_THAT(fakeCalls(), IsEmpty()) << "an equal one is nothing";
}

TEST_F(ctrlToolkitTest, ACaptionForAWindowThatWentGoesNowhere)
{
    ctrlWindow* window = Shown();
    Shown();
    window->Caption("Name");
    delete window;
    Toolkit().PumpPending();
    EXPECT_EQ(fakeWindowOf(fakeWindows().front())->Title, "Untitled");
}

}  // namespace
