#include "tests/toolkit/toolkitTest.h"

using testing::ElementsAre;

namespace {

class ctrlWindowShowTest : public toolkitTest
{
protected:
    static std::vector<int32_t> Place(const ctrlWindow* window)
    {
        return {window->X(), window->Y(), static_cast<int32_t>(window->Width()),
                static_cast<int32_t>(window->Height())};
    }
};

// --- Showing

TEST_F(ctrlWindowShowTest, AFrameIsActivatedByItsShowAndAPopupIsNot)
{
    auto* framed = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    auto* popup = new ctrlWindow(framed, 200, 200, 50, 50, ctrlFloating);
    framed->Show();
    popup->Show();
    EXPECT_EQ(fakeCallCount("windowShow 1 5"), 1U);
    EXPECT_EQ(fakeCallCount("windowShow 2 8"), 1U);
    EXPECT_EQ(fakeWindowActive(), framed->Handle());
}

TEST_F(ctrlWindowShowTest, AShownWindowIsRaisedAndAMinimisedOneRestored)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    window->Show();
    fakeClearCalls();
    window->Show();
    EXPECT_EQ(fakeCallCount("windowRaise 1"), 1U);
    fakeUserMinimises(window->Handle());
    Toolkit().PumpPending();
    window->Show();
    EXPECT_EQ(fakeCallCount("windowShow 1 9"), 1U);
    EXPECT_FALSE(window->HasState(stateMinimised));
    EXPECT_EQ(fakeCallCount("windowShow 1 5"), 0U);
}

TEST_F(ctrlWindowShowTest, AWindowThatAHandlerHidesWhileItIsShownIsHidden)
{
    class shy : public ctrlWindow
    {
    public:
        using ctrlWindow::ctrlWindow;
        void StateChanged() override { Hide(); }
    };
    auto* window = new shy(nullptr, 100, 100, 200, 100, ctrlFramed);
    window->Show();
    EXPECT_FALSE(window->HasState(stateVisible));
    EXPECT_FALSE(fakeWindowOf(window->Handle())->Visible);
}

TEST_F(ctrlWindowShowTest, AWindowOffEveryMonitorIsCentredWhenItIsShown)
{
    auto* window = new ctrlWindow(nullptr, 5000, 5000, 200, 100, 0);
    window->Show();
    EXPECT_THAT(Place(window), ElementsAre(860, 470, 200, 100));
}

TEST_F(ctrlWindowShowTest, AHiddenMaximisedWindowIsRestoredFirst)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    window->Show();
    fakeUserMaximises(window->Handle());
    Toolkit().PumpPending();
    ASSERT_TRUE(window->HasState(stateMaximised));
    fakeClearCalls();
    window->Hide();
    EXPECT_THAT(Place(window), ElementsAre(100, 100, 200, 100));
    EXPECT_EQ(fakeCallCount("windowShow 1 9"), 1U);
    EXPECT_EQ(fakeCallCount("windowShow 1 0"), 1U);
    window->Hide();
    EXPECT_EQ(fakeCallCount("windowShow 1 0"), 1U);
}

TEST_F(ctrlWindowShowTest, TheFirstShowMaximisesWhereTheStyleSaysSo)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    window->StyleSet(styleMaximiseFirst);
    window->Show();
    EXPECT_TRUE(window->HasState(stateMaximised));
    EXPECT_EQ(window->Width(), 1920U);
    EXPECT_EQ(fakeCallCount("windowShow 1 5"), 1U);
    EXPECT_EQ(fakeCallCount("windowShow 1 3"), 1U);
    EXPECT_FALSE(window->HasState(stateNeverShown));
    window->Hide();
    window->Show();
    EXPECT_FALSE(window->HasState(stateMaximised)) << "the first one alone";
    EXPECT_THAT(Place(window), ElementsAre(100, 100, 200, 100));
}

// --- On the screen

TEST_F(ctrlWindowShowTest, CentresInTheParentOrOnItsMonitor)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    window->Centre();
    EXPECT_THAT(Place(window), ElementsAre(860, 470, 200, 100));
    auto* child = new ctrlWindow(window, 0, 0, 50, 20, 0);
    child->Centre();
    EXPECT_THAT(Place(child), ElementsAre(75, 40, 50, 20));
    window->Move(100, 100, 200, 100);
    auto* floating = new ctrlWindow(window, 0, 0, 100, 50, ctrlFloating);
    floating->Centre();
    EXPECT_THAT(Place(floating), ElementsAre(150, 125, 100, 50));
    window->Move(0, 0, 40, 40);
    floating->Centre();
    EXPECT_THAT(Place(floating), ElementsAre(0, 0, 100, 50)) << "on the monitor of its parent all the same";
}

TEST_F(ctrlWindowShowTest, CentresOnTheMonitorThatItIsOn)
{
    fakeMonitors({{0, 0, 1000, 800}, {1000, 0, 3000, 1000}});
    auto* window = new ctrlWindow(nullptr, 1500, 100, 200, 100, 0);
    window->Centre();
    EXPECT_THAT(Place(window), ElementsAre(1900, 450, 200, 100));
}

TEST_F(ctrlWindowShowTest, APointIsTurnedIntoTheScreensWithItsMonitorsWorkArea)
{
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed);
    auto* panel = new ctrlWindow(window, 10, 20, 50, 50, 0);
    auto* child = new ctrlWindow(panel, 1, 2, 5, 5, 0);
    int32_t x = 3, y = 4;
    windowArea area;
    EXPECT_TRUE(child->ScreenPoint(x, y, area));
    EXPECT_EQ(x, 114);
    EXPECT_EQ(y, 226);
    EXPECT_EQ(area.Right, 1919);
    EXPECT_EQ(area.Bottom, 1039);

    x = 5000;
    EXPECT_FALSE(child->ScreenPoint(x, y, area));
    // No monitor tells of the point, but the desktop has it.
    x = 0, y = 0;
    fakeFail("windowWorkAreaAt");
    EXPECT_TRUE(child->ScreenPoint(x, y, area));
    EXPECT_EQ(area.Bottom, 1039);

    auto* floating = new ctrlWindow(child, 700, 600, 50, 50, ctrlFloating);
    x = 1, y = 1;
    EXPECT_TRUE(floating->ScreenPoint(x, y, area));
    EXPECT_EQ(x, 701) << "it stands on the screen, and not in its parent";
}

TEST_F(ctrlWindowShowTest, VisibleAndEnabledIsWhoseAncestorsAreUpToAFloatingWindow)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* panel = new ctrlWindow(window, 0, 0, 50, 50, 0);
    auto* child = new ctrlWindow(panel, 0, 0, 5, 5, 0);
    auto* floating = new ctrlWindow(panel, 300, 300, 50, 50, ctrlFloating);
    for (ctrlWindow* one : {child, panel, floating})
        one->Show();
    EXPECT_FALSE(child->IsVisible());
    EXPECT_TRUE(floating->IsVisible());
    window->Show();
    EXPECT_TRUE(child->IsVisible());
    panel->Enable(false);
    EXPECT_FALSE(child->IsEnabled());
    EXPECT_TRUE(window->IsEnabled());
    EXPECT_TRUE(floating->IsEnabled());
    panel->Hide();
    EXPECT_FALSE(child->IsVisible());
    EXPECT_TRUE(floating->IsVisible());
}

}  // namespace
