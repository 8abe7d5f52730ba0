#include "tests/platform/screen/windowTest.h"

// Who has the keys and the mouse, and who may not.

namespace {

using windowFocus = windowTest;

TEST_F(windowFocus, ComesToAWindowThatIsShown)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    EXPECT_EQ(System->Focus(), window);
    ASSERT_TRUE(Has(window, msgActivate));
    EXPECT_NE(Last(window, msgActivate).First & 0xFFFF, 0u);
    EXPECT_EQ(Order(window, {msgActivate, msgSetFocus, msgKillFocus}),
              (std::vector<uint32_t>{msgActivate, msgSetFocus}));
}

TEST_F(windowFocus, MovesToAnotherWindow)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({450, 100, 700, 300});
    for (const windowId next : {first, second, first}) {
        const windowId before = next == first ? second : first;
        Heard.clear();
        System->SetFocus(next);
        EXPECT_TRUE(Until([&] { return System->Focus() == next && Has(next, msgSetFocus); }));
        Pump();
        EXPECT_EQ(Order(before, {msgActivate, msgKillFocus, msgSetFocus}),
                  (std::vector<uint32_t>{msgActivate, msgKillFocus}));
        EXPECT_EQ(Last(before, msgActivate).First & 0xFFFF, 0u);
        EXPECT_EQ(Order(next, {msgActivate, msgKillFocus, msgSetFocus}),
                  (std::vector<uint32_t>{msgActivate, msgSetFocus}));
    }
}

TEST_F(windowFocus, SaysNothingToWhoHasItAlready)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Heard.clear();
    System->SetFocus(window);
    System->Raise(window);
    Pump();
    EXPECT_TRUE(Order(window, {msgActivate, msgSetFocus, msgKillFocus}).empty());
}

TEST_F(windowFocus, FollowsAPress)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({450, 100, 700, 300});
    ASSERT_TRUE(Point(first, 20, 30));
    Click();
    EXPECT_TRUE(Until([&] { return System->Focus() == first && Has(first, msgLeftUp); }));
    ASSERT_TRUE(Point(second, 20, 30));
    Click();
    EXPECT_TRUE(Until([&] { return System->Focus() == second && Has(second, msgLeftUp); }));
}

TEST_F(windowFocus, IsNotForADisabledWindow)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({450, 100, 700, 300});
    System->Enable(first, false);
    Heard.clear();
    System->SetFocus(first);
    Pump();
    EXPECT_EQ(System->Focus(), second);
    EXPECT_FALSE(Has(first, msgSetFocus));
}

TEST_F(windowFocus, LeavesAWindowThatIsDisabled)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Heard.clear();
    System->Enable(window, false);
    EXPECT_NE(System->Focus(), window);
    EXPECT_TRUE(Until([&] { return Has(window, msgKillFocus); }));
}

TEST_F(windowFocus, TellsAWindowThatItIsDisabledAndEnabled)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Heard.clear();
    System->Enable(window, false);
    ASSERT_EQ(Count(window, msgEnable), 1u);
    EXPECT_EQ(Last(window, msgEnable).First, 0u);
    System->Enable(window, false);
    EXPECT_EQ(Count(window, msgEnable), 1u);
    System->Enable(window, true);
    ASSERT_EQ(Count(window, msgEnable), 2u);
    EXPECT_EQ(Last(window, msgEnable).First, 1u);
}

TEST_F(windowFocus, ComesBackToAWindowThatIsEnabledAgain)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->Enable(window, false);
    Pump();
    System->Enable(window, true);
    System->SetFocus(window);
    EXPECT_TRUE(Until([&] { return System->Focus() == window; }));
}

TEST_F(windowFocus, HearsNothingWhileDisabled)
{
    const windowId deaf = OpenAt({100, 100, 400, 300});
    ASSERT_TRUE(Point(deaf, 30, 30));
    const windowId other = OpenAt({450, 100, 700, 300});
    System->Enable(deaf, false);
    Pump();
    Heard.clear();
    screenMove(ClientOf(deaf).Left + 20, ClientOf(deaf).Top + 20);
    Click();
    Click(screenButton::Right);
    screenWheel(1);
    // What comes after shows that all of it has come.
    ASSERT_TRUE(Point(other, 20, 30));
    Click();
    ASSERT_TRUE(Until([&] { return Has(other, msgLeftUp); }));
    ASSERT_TRUE(Listens(other));
    screenType('x');
    ASSERT_TRUE(Until([&] { return Has(other, msgChar); }));
    EXPECT_TRUE(Order(deaf, {msgMouseMove, msgLeftDown, msgLeftUp, msgRightDown, msgRightUp, msgMouseWheel,
                             msgKeyDown, msgChar, msgSetFocus})
                    .empty());
}

TEST_F(windowFocus, GivesTheCaptureAndTakesIt)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({450, 100, 700, 300});
    EXPECT_EQ(System->Capture(), 0u);
    System->SetCapture(first);
    EXPECT_EQ(System->Capture(), first);
    EXPECT_FALSE(Has(first, msgCaptureChanged));
    System->SetCapture(second);
    EXPECT_EQ(System->Capture(), second);
    EXPECT_EQ(Count(first, msgCaptureChanged), 1u);
    System->ReleaseCapture();
    EXPECT_EQ(System->Capture(), 0u);
    EXPECT_EQ(Count(second, msgCaptureChanged), 1u);
    System->ReleaseCapture();
    Pump();
    EXPECT_EQ(Count(first, msgCaptureChanged), 1u);
    EXPECT_EQ(Count(second, msgCaptureChanged), 1u);
}

TEST_F(windowFocus, LosesTheCaptureWithTheWindow)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    System->SetCapture(first);
    System->Destroy(first);
    EXPECT_EQ(System->Capture(), 0u);
}

TEST_F(windowFocus, LosesTheCaptureWhenDisabled)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->SetCapture(window);
    System->Enable(window, false);
    EXPECT_EQ(System->Capture(), 0u);
    EXPECT_TRUE(Has(window, msgCaptureChanged));
}

}  // namespace
