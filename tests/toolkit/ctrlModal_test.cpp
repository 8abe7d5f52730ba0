#include "tests/toolkit/toolkitTest.h"

#include <thread>
#include <utility>

using testing::ElementsAre;

namespace {

class ctrlModalTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new ctrlWindow(nullptr, 100, 100, 400, 300, ctrlFramed);
        Main->FrameStyle(frameClosable, 0);
        Main->Show();
        Drawn();
    }

    static ctrlWindow* Dialog(ctrlWindow* owner, uint32_t more = 0)
    {
        auto* dialog = new ctrlWindow(owner, 200, 200, 100, 50, ctrlFloating | ctrlFramed | more);
        dialog->FrameStyle(frameClosable, 0);
        return dialog;
    }

    // Runs a closure in the pump of the run that comes.
    static void Later(std::function<void()> closure) { Toolkit().Post(std::move(closure), true); }

    static bool EnabledBySystem(const ctrlWindow* window) { return fakeWindowOf(window->Handle())->Enabled; }

    ctrlWindow* Main = nullptr;
};

TEST_F(ctrlModalTest, GivesTheResultThatEndsTheRun)
{
    ctrlWindow* dialog = Dialog(Main);
    const windowId handle = dialog->Handle();
    Later([dialog] { dialog->ModalResult(7); });
    EXPECT_EQ(dialog->Modal(true), 7);
    EXPECT_FALSE(fakeWindowOf(handle)) << "it deletes itself";
}

TEST_F(ctrlModalTest, AKeptWindowIsHiddenAndCanRunAgain)
{
    ctrlWindow* dialog = Dialog(Main, ctrlKeep);
    for (const int32_t result : {3, 4}) {
        Later([dialog, result] {
            EXPECT_TRUE(dialog->HasState(stateVisible));
            dialog->ModalResult(result);
        });
        EXPECT_EQ(dialog->Modal(true), result);
        EXPECT_FALSE(dialog->HasState(stateVisible));
        EXPECT_FALSE(dialog->HasState(stateModal));
    }
}

TEST_F(ctrlModalTest, WithoutAResetAResultThatStandsEndsItAtOnce)
{
    ctrlWindow* dialog = Dialog(Main, ctrlKeep);
    dialog->ModalResult(9);
    EXPECT_EQ(dialog->Modal(false), 9);
    EXPECT_EQ(dialog->Modal(false), 9);
}

TEST_F(ctrlModalTest, TheOtherWindowsAreDisabledAsLongAsItRuns)
{
    auto* other = new ctrlWindow(nullptr, 600, 100, 50, 50, 0);
    other->Show();
    auto* hidden = new ctrlWindow(nullptr, 600, 200, 50, 50, 0);
    ctrlWindow* dialog = Dialog(Main);
    Later([&] {
        Later([&] {
            EXPECT_FALSE(Main->IsEnabled());
            EXPECT_FALSE(EnabledBySystem(Main));
            EXPECT_FALSE(EnabledBySystem(other));
            EXPECT_TRUE(EnabledBySystem(hidden));
            EXPECT_TRUE(EnabledBySystem(dialog));
            dialog->ModalResult(1);
        });
    });
    dialog->Modal(true);
    Toolkit().PumpPending();
    EXPECT_TRUE(EnabledBySystem(Main));
    EXPECT_TRUE(EnabledBySystem(other));
    EXPECT_TRUE(Main->IsEnabled());
}

TEST_F(ctrlModalTest, ItIsTopmostAsLongAsItRunsAndItsOwnersRootIsRaisedBehindIt)
{
    auto* panel = new ctrlWindow(Main, 0, 0, 100, 100, 0);
    panel->Show();
    ctrlWindow* dialog = Dialog(panel, ctrlKeep);
    Later([dialog] {
        EXPECT_TRUE(fakeWindowOf(dialog->Handle())->Topmost);
        dialog->ModalResult(1);
    });
    fakeClearCalls();
    dialog->Modal(true);
    EXPECT_FALSE(fakeWindowOf(dialog->Handle())->Topmost);
    EXPECT_EQ(fakeCallCount("windowPlace 2 0,0,0,0 flags 3 topmost"), 1U);
    EXPECT_EQ(fakeCallCount("windowPlace 2 0,0,0,0 flags 3 notTopmost"), 1U);
    EXPECT_EQ(fakeCallCount("windowRaise 1"), 1U);
}

TEST_F(ctrlModalTest, ItIsPaintedBeforeItWaits)
{
    ctrlWindow* dialog = Dialog(Main);
    bool painted = false;
    dialog->OnNotify = [&painted, dialog](unsigned code) {
        if (code == notifyPainted && !std::exchange(painted, true))
            Later([dialog] { dialog->ModalResult(1); });
        return false;
    };
    EXPECT_EQ(dialog->Modal(true), 1);
    EXPECT_TRUE(painted);
}

TEST_F(ctrlModalTest, TheFirstTabStopGetsTheFocus)
{
    ctrlWindow* dialog = Dialog(Main);
    auto* second = new ctrlWindow(dialog, 0, 0, 10, 10, 0);
    auto* first = new ctrlWindow(dialog, 20, 0, 10, 10, 0);
    auto* label = new ctrlWindow(dialog, 40, 0, 10, 10, 0);
    second->TabOrder(2);
    first->TabOrder(1);
    for (ctrlWindow* one : {first, second, label}) {
        one->StyleSet(styleFocusable);
        one->Show();
    }
    ctrlWindow* focused = nullptr;
    fakeOnCall("windowWait", 1, [&focused, dialog] {
        focused = Toolkit().Focused;
        dialog->ModalResult(1);
    });
    dialog->Modal(true);
    EXPECT_EQ(focused, first);
}

TEST_F(ctrlModalTest, TheUserEndsItByClosing)
{
    ctrlWindow* dialog = Dialog(Main);
    fakeOnCall("windowWait", 1, [dialog] { fakeUserCloses(dialog->Handle()); });
    EXPECT_EQ(dialog->Modal(true), -1);

    ctrlWindow* kept = Dialog(Main, ctrlKeep);
    fakeOnCall("windowWait", 1, [kept] { fakeUserCloses(kept->Handle()); });
    EXPECT_EQ(kept->Modal(true), -1);
    EXPECT_FALSE(kept->HasState(stateVisible));
}

TEST_F(ctrlModalTest, WithoutTheFrameBitTheUserCannotCloseIt)
{
    ctrlWindow* dialog = Dialog(Main);
    dialog->FrameStyle(0, frameClosable);
    fakeOnCall("windowWait", 1, [dialog] {
        fakeUserCloses(dialog->Handle());
        Later([dialog] { dialog->ModalResult(5); });
    });
    EXPECT_EQ(dialog->Modal(true), 5);
}

TEST_F(ctrlModalTest, TheEndOfTheProgramEndsIt)
{
    ctrlWindow* dialog = Dialog(Main);
    fakeOnCall("windowWait", 1, [] { fakeProgramEnds(); });
    EXPECT_EQ(dialog->Modal(true), -1);

    ctrlWindow* another = Dialog(Main);
    fakeFail("windowWait");
    EXPECT_EQ(another->Modal(true), -1) << "and so does a system that is gone";
}

TEST_F(ctrlModalTest, AControlThatIsDeletedAsTheSystemGoesEndsItsRun)
{
    auto* panel = new ctrlWindow(Main, 0, 0, 100, 100, 0);
    fakeOnCall("windowWait", 1, [panel] { delete panel; });
    fakeFail("windowWait");
    EXPECT_EQ(panel->Modal(true), -1);
}

TEST_F(ctrlModalTest, AWorkersResultWakesIt)
{
    ctrlWindow* dialog = Dialog(Main);
    std::thread worker;
    fakeOnCall("windowWait", 1, [&worker, dialog] {
        worker = std::thread([dialog] { Toolkit().Post([dialog] { dialog->ModalResult(2); }, false); });
    });
    EXPECT_EQ(dialog->Modal(true), 2);
    worker.join();
}

TEST_F(ctrlModalTest, RunsNest)
{
    ctrlWindow* outer = Dialog(Main);
    std::string order;
    Later([&] {
        ctrlWindow* inner = Dialog(outer);
        Later([&, inner] {
            EXPECT_FALSE(outer->IsEnabled());
            inner->ModalResult(1);
        });
        EXPECT_EQ(inner->Modal(true), 1);
        order += "inner ";
        EXPECT_TRUE(outer->IsEnabled());
        outer->ModalResult(2);
    });
    EXPECT_EQ(outer->Modal(true), 2);
    EXPECT_EQ(order, "inner ");
}

TEST_F(ctrlModalTest, AnOuterRunThatIsEndedFirstWaitsForTheInnerOne)
{
    ctrlWindow* outer = Dialog(Main);
    std::string order;
    Later([&] {
        ctrlWindow* inner = Dialog(outer);
        Later([&, inner] {
            outer->ModalResult(2);
            Later([&, inner] { inner->ModalResult(1); });
        });
        EXPECT_EQ(inner->Modal(true), 1);
        order += "inner ";
    });
    EXPECT_EQ(outer->Modal(true), 2);
    order += "outer";
    EXPECT_EQ(order, "inner outer");
}

// --- Ends in the middle

TEST_F(ctrlModalTest, AWindowDestroyedWhileItRunsEndsWithMinusOne)
{
    for (const uint32_t more : {uint32_t{0}, uint32_t{ctrlKeep}}) {
        ctrlWindow* dialog = Dialog(Main, more);
        const ctrlLife life(dialog);
        Later([dialog] { dialog->Destroy(); });
        EXPECT_EQ(dialog->Modal(true), -1);
        Toolkit().PumpPending();
        EXPECT_FALSE(life) << "a kept one too";
    }
}

TEST_F(ctrlModalTest, AnOwnerDestroyedWhileItRunsWaitsForItsEnd)
{
    ctrlWindow* dialog = Dialog(Main);
    const ctrlLife main(Main);
    Later([this] { Main->Destroy(); });
    EXPECT_EQ(dialog->Modal(true), -1);
    EXPECT_TRUE(main);
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(ctrlModalTest, AnOwnerOfTheControlThatOwnsItWaitsToo)
{
    auto* panel = new ctrlWindow(Main, 0, 0, 100, 100, 0);
    panel->Show();
    ctrlWindow* dialog = Dialog(panel);
    const ctrlLife main(Main);
    Later([this] { Main->Destroy(); });
    EXPECT_EQ(dialog->Modal(true), -1);
    EXPECT_TRUE(main);
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
}

TEST_F(ctrlModalTest, AnOwnerClosedFromOutsideWhileItRunsWaitsToo)
{
    ctrlWindow* dialog = Dialog(Main);
    const ctrlLife main(Main);
    Later([&] {
        Toolkit().Windows().Send(Main->Handle(), msgClose, 0, 0);
        EXPECT_TRUE(main);
    });
    EXPECT_EQ(dialog->Modal(true), -1);
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
}

TEST_F(ctrlModalTest, AWindowClosedFromOutsideWhileItRunsWaitsForTheEnd)
{
    ctrlWindow* dialog = Dialog(Main);
    const ctrlLife life(dialog);
    Later([&] {
        Toolkit().Windows().Send(dialog->Handle(), msgClose, 0, 0);
        EXPECT_TRUE(life);
        Later([dialog] { dialog->ModalResult(6); });
    });
    EXPECT_EQ(dialog->Modal(true), 6);
    EXPECT_FALSE(life);
}

TEST_F(ctrlModalTest, ADestroyThatWaitsForARunDoesNotStopAPumpWithinIt)
{
    ctrlWindow* outer = Dialog(Main);
    const ctrlLife life(outer);
    Later([&] {
        outer->Destroy();
        // Its making pumps until the queue is empty.
        delete new ctrlWindow(nullptr, 0, 0, 10, 10, 0);
        EXPECT_TRUE(life);
        EXPECT_EQ(fakeQueueLength(), 0U);
    });
    EXPECT_EQ(outer->Modal(true), -1);
    EXPECT_FALSE(life);
}

TEST_F(ctrlModalTest, AnOuterRunDestroyedFromAnInnerOneOfAnotherOwnerEndsWhenThatHasEnded)
{
    ctrlWindow* outer = Dialog(Main);
    const ctrlLife life(outer);
    Later([&] {
        ctrlWindow* inner = Dialog(Main);
        Later([&, inner] {
            outer->Destroy();
            Later([inner] { inner->ModalResult(3); });
        });
        EXPECT_EQ(inner->Modal(true), 3);
        EXPECT_TRUE(life);
    });
    EXPECT_EQ(outer->Modal(true), -1);
    EXPECT_FALSE(life);
}

TEST_F(ctrlModalTest, AnOwnerAndItsNestedRunsUnwindFromTheInside)
{
    ctrlWindow* outer = Dialog(Main);
    const ctrlLife main(Main);
    std::vector<int32_t> results;
    Later([&] {
        ctrlWindow* inner = Dialog(outer);
        Later([&] { Main->Destroy(); });
        results.push_back(inner->Modal(true));
        EXPECT_TRUE(main);
    });
    results.push_back(outer->Modal(true));
    EXPECT_THAT(results, ElementsAre(-1, -1));
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
}

}  // namespace
