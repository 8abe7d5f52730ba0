// What other threads may do with windows while the interface thread paints them.
#include "tests/await.h"
#include "tests/toolkit/toolkitTest.h"

#include <atomic>
#include <thread>

namespace {

class named : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    void Paint() override
    {
        ctrlWindow::Paint();
        Text(PaintRect, Name().c_str(), textLeft);
    }
};

class ctrlThreadsTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Window = new named(nullptr, 100, 100, 400, 300, ctrlFramed);
        Panel = new named(Window, 0, 0, 200, 200, 0);
        Label = new named(Panel, 10, 10, 100, 20, 0);
        for (ctrlWindow* one : {Label, Panel, Window})
            one->Show();
        Toolkit().PumpPending();
    }

    // Runs the work on some threads, and `meanwhile` again and again on this one until all have ended.
    template <typename work, typename idle>
    static void Run(unsigned threads, const work& workOf, const idle& meanwhile)
    {
        std::atomic<unsigned> ended{0};
        std::vector<std::thread> workers;
        for (unsigned i = 0; i < threads; ++i) {
            workers.emplace_back([&, i] {
                workOf(i);
                ++ended;
            });
        }
        while (ended < threads) {
            meanwhile();
            Toolkit().PumpPending();
            fakeClearDraws();
            fakeClearCalls();
        }
        for (std::thread& worker : workers)
            worker.join();
        Toolkit().PumpPending();
    }

    named* Window = nullptr;
    named* Panel = nullptr;
    named* Label = nullptr;
};

TEST_F(ctrlThreadsTest, WorkersNameControlsWhileTheyAreDrawn)
{
    Run(
        3,
        [this](unsigned thread) {
            for (int i = 0; i < 300; ++i) {
                const std::string text = "Worker " + std::to_string(thread) + " at step " + std::to_string(i);
                (i % 2 ? static_cast<ctrlWindow*>(Label) : Window)->Caption(text);
                EXPECT_FALSE(Label->Name().empty());
            }
        },
        [] {});
    EXPECT_EQ(fakeWindowOf(Window->Handle())->Title, Window->Name());
    EXPECT_FALSE(Label->HasState(stateDirty));
}

TEST_F(ctrlThreadsTest, WorkersMarkControlsWhileOthersComeAndGo)
{
    int step = 0;
    named* guest = nullptr;
    Run(
        3,
        [this](unsigned thread) {
            for (int i = 0; i < 1000; ++i) {
                if (thread == 0)
                    Label->Invalidate(true);
                else if (thread == 1)
                    Panel->Invalidate(i % 2 == 0);
                else
                    Window->Invalidate(true);
            }
        },
        [&] {
            ++step;
            if (guest) {
                guest->Destroy();
                guest = nullptr;
                return;
            }
            guest = new named(step % 4 < 2 ? Panel : Window, step % 150, 5, 50, 50, 0);
            guest->Transparency(step % 3 == 0 ? 0.5F : 0.0F);
            guest->Show();
            guest->Move(step % 120, 7, 60, 40);
            Panel->ChildOrder(Label, static_cast<unsigned>(step % 2));
        });
    EXPECT_FALSE(Label->HasState(stateDirty | stateDirtyBelow));
    EXPECT_FALSE(Panel->HasState(stateDirty | stateDirtyBelow));
    EXPECT_FALSE(Window->HasState(stateDirty | stateDirtyBelow));
}

TEST_F(ctrlThreadsTest, WorkersMarkATranslucentControlWhileItMoves)
{
    Label->Transparency(0.5F);
    int step = 0;
    Run(
        2,
        [this](unsigned) {
            for (int i = 0; i < 1000; ++i)
                Label->Invalidate(true);
        },
        [&] {
            ++step;
            Label->Move(step % 100, step % 50, static_cast<uint32_t>(50 + step % 9), 20);
        });
    EXPECT_FALSE(Label->HasState(stateDirty));
}

TEST_F(ctrlThreadsTest, NoMarkOfAWorkerIsLost)
{
    // Each round a worker marks the label at any moment of a paint, and the next paint must draw it.
    std::atomic<int> round{0};
    std::atomic<int> marked{0};
    std::thread worker([&] {
        for (int i = 1; i <= 300; ++i) {
            if (!await([&] { return round == i; }))
                return;
            Label->Invalidate(true);
            marked = i;
        }
    });
    for (int i = 1; i <= 300; ++i) {
        round = i;
        Panel->Invalidate(true);
        ASSERT_TRUE(await([&] {
            Toolkit().PumpPending();
            return marked == i;
        }));
        Toolkit().PumpPending();
        EXPECT_FALSE(Label->HasState(stateDirty)) << i;
        fakeClearDraws();
    }
    worker.join();
}

TEST_F(ctrlThreadsTest, WorkersShowHideAndStyleWhatIsPainted)
{
    Run(
        3,
        [this](unsigned thread) {
            for (int i = 0; i < 200; ++i) {
                if (thread == 0) {
                    Label->Hide();
                    Label->Show();
                } else if (thread == 1) {
                    Label->StyleSet(128);
                    Label->StyleClear(128);
                } else {
                    Panel->Show();
                    EXPECT_TRUE(Panel->HasState(stateVisible));
                }
            }
        },
        [] {});
    EXPECT_TRUE(Label->HasState(stateVisible));
}

}  // namespace
