#include "tests/platform/screen/windowTest.h"

// The mouse, from the hand of a user to the receiver.

namespace {

class windowMouse : public windowTest
{
protected:
    void SetUp() override
    {
        windowTest::SetUp();
        Window = OpenAt({100, 100, 400, 300});
        ASSERT_TRUE(Point(Window, 50, 60));
        Heard.clear();
    }

    bool Hears(uint32_t number, size_t times = 1)
    {
        return Until([=, this] { return Count(Window, number) >= times; });
    }

    windowId Window = 0;
};

TEST_F(windowMouse, TellsWhereItIs)
{
    screenMove(123, 145);
    ASSERT_TRUE(Until([&] { return LastPoint(Window, msgMouseMove) == windowPoint(23, 45); }));
    EXPECT_EQ(Last(Window, msgMouseMove).First, 0u);
    EXPECT_EQ(Last(Window, msgMouseMove).ScreenX, 123);
    EXPECT_EQ(Last(Window, msgMouseMove).ScreenY, 145);
}

struct buttonRow {
    const char* Name;
    screenButton Button;
    uint32_t Down;
    uint32_t Up;
    uint32_t Double;
    uint32_t Key;
};

void PrintTo(const buttonRow& row, std::ostream* stream)
{
    *stream << row.Name;
}

class windowButton : public windowMouse, public testing::WithParamInterface<buttonRow>
{
};

TEST_P(windowButton, IsPressedAndReleased)
{
    const buttonRow& row = GetParam();
    screenPress(row.Button);
    ASSERT_TRUE(Hears(row.Down));
    EXPECT_EQ(LastPoint(Window, row.Down), windowPoint(50, 60));
    EXPECT_EQ(Last(Window, row.Down).First, uint64_t{row.Key});
    screenRelease(row.Button);
    ASSERT_TRUE(Hears(row.Up));
    EXPECT_EQ(LastPoint(Window, row.Up), windowPoint(50, 60));
    EXPECT_EQ(Last(Window, row.Up).First, 0u);
}

TEST_P(windowButton, MakesADoubleClickOfTwoQuickPresses)
{
    const buttonRow& row = GetParam();
    Click(row.Button);
    Click(row.Button);
    ASSERT_TRUE(Hears(row.Up, 2));
    EXPECT_EQ(Order(Window, {row.Down, row.Up, row.Double}),
              (std::vector<uint32_t>{row.Down, row.Up, row.Double, row.Up}));
    EXPECT_EQ(Last(Window, row.Double).First, uint64_t{row.Key});
}

TEST_P(windowButton, BeginsAnewAfterADoubleClick)
{
    const buttonRow& row = GetParam();
    for (int click = 0; click < 3; ++click)
        Click(row.Button);
    ASSERT_TRUE(Hears(row.Up, 3));
    EXPECT_EQ(Order(Window, {row.Down, row.Double}), (std::vector<uint32_t>{row.Down, row.Double, row.Down}));
}

TEST_P(windowButton, MakesNoDoubleClickAtAnotherPlace)
{
    const buttonRow& row = GetParam();
    Click(row.Button);
    screenMove(100 + 90, 100 + 60);
    Click(row.Button);
    ASSERT_TRUE(Hears(row.Up, 2));
    EXPECT_EQ(Count(Window, row.Double), 0u);
    EXPECT_EQ(Count(Window, row.Down), 2u);
}

INSTANTIATE_TEST_SUITE_P(Buttons, windowButton,
                         testing::Values(buttonRow{"Left", screenButton::Left, msgLeftDown, msgLeftUp,
                                                   msgLeftDouble, keysLeft},
                                         buttonRow{"Middle", screenButton::Middle, msgMiddleDown, msgMiddleUp,
                                                   msgMiddleDouble, keysMiddle},
                                         buttonRow{"Right", screenButton::Right, msgRightDown, msgRightUp,
                                                   msgRightDouble, keysRight}),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(windowMouse, MakesNoDoubleClickOfTwoButtons)
{
    Click(screenButton::Left);
    Click(screenButton::Right);
    ASSERT_TRUE(Hears(msgRightUp));
    EXPECT_EQ(Count(Window, msgRightDouble), 0u);
    EXPECT_EQ(Count(Window, msgRightDown), 1u);
}

TEST_F(windowMouse, TellsWhichButtonsAreDownMeanwhile)
{
    screenPress(screenButton::Left);
    screenPress(screenButton::Right);
    ASSERT_TRUE(Hears(msgRightDown));
    EXPECT_EQ(Last(Window, msgRightDown).First, uint64_t{keysLeft | keysRight});
    screenRelease(screenButton::Left);
    ASSERT_TRUE(Hears(msgLeftUp));
    EXPECT_EQ(Last(Window, msgLeftUp).First, uint64_t{keysRight});
    screenRelease(screenButton::Right);
    ASSERT_TRUE(Hears(msgRightUp));
}

TEST_F(windowMouse, TellsOfShiftAndControl)
{
    screenKeyDown(keyShift);
    screenKeyDown(keyControl);
    Click();
    screenKeyUp(keyControl);
    screenKeyUp(keyShift);
    ASSERT_TRUE(Hears(msgLeftUp));
    EXPECT_EQ(Last(Window, msgLeftDown).First, uint64_t{keysLeft | keysShift | keysControl});
    EXPECT_EQ(Last(Window, msgLeftUp).First, uint64_t{keysShift | keysControl});
}

TEST_F(windowMouse, TurnsItsWheelInBothDirections)
{
    for (const int32_t notches : {1, -1}) {
        Heard.clear();
        screenWheel(notches);
        ASSERT_TRUE(Hears(msgMouseWheel));
        const windowMessage wheel = Last(Window, msgMouseWheel);
        EXPECT_EQ(static_cast<int16_t>(wheel.First >> 16), notches * 120);
        EXPECT_EQ(wheel.First & 0xFFFF, 0u);
        EXPECT_EQ(LastPoint(Window, msgMouseWheel), windowPoint(150, 160));
    }
}

TEST_F(windowMouse, IsHeardBeyondTheWindowWhileItDrags)
{
    screenPress(screenButton::Left);
    ASSERT_TRUE(Hears(msgLeftDown));
    System->SetCapture(Window);
    screenMove(600, 50);
    ASSERT_TRUE(Until([&] { return LastPoint(Window, msgMouseMove) == windowPoint(500, -50); }));
    EXPECT_EQ(Last(Window, msgMouseMove).First, uint64_t{keysLeft});
    screenMove(40, 500);
    ASSERT_TRUE(Until([&] { return LastPoint(Window, msgMouseMove) == windowPoint(-60, 400); }));
    screenRelease(screenButton::Left);
    ASSERT_TRUE(Hears(msgLeftUp));
    EXPECT_EQ(LastPoint(Window, msgLeftUp), windowPoint(-60, 400));
    EXPECT_EQ(System->Capture(), Window);
    System->ReleaseCapture();
}

TEST_F(windowMouse, IsHeardByTheHolderAlsoOverAnotherWindow)
{
    const windowId other = OpenAt({450, 100, 700, 300});
    ASSERT_TRUE(Point(Window, 50, 60));
    screenPress(screenButton::Left);
    ASSERT_TRUE(Hears(msgLeftDown));
    System->SetCapture(Window);
    Heard.clear();
    screenMove(500, 150);
    ASSERT_TRUE(Until([&] { return LastPoint(Window, msgMouseMove) == windowPoint(400, 50); }));
    screenRelease(screenButton::Left);
    ASSERT_TRUE(Hears(msgLeftUp));
    System->ReleaseCapture();
    EXPECT_TRUE(Order(other, {msgMouseMove, msgLeftUp}).empty());
    EXPECT_TRUE(Point(other, 20, 20));
}

TEST_F(windowMouse, IsHeardByAPopupAlsoOutsideOfIt)
{
    const windowId popup = OpenAt({150, 320, 250, 420}, stylePopup, Window);
    ASSERT_TRUE(Point(popup, 20, 20));
    System->SetCapture(popup);
    Heard.clear();
    screenMove(160, 180);
    ASSERT_TRUE(Until([&] { return LastPoint(popup, msgMouseMove) == windowPoint(10, -140); }));
    Click();
    ASSERT_TRUE(Until([&] { return Has(popup, msgLeftUp); }));
    EXPECT_EQ(LastPoint(popup, msgLeftDown), windowPoint(10, -140));
    EXPECT_TRUE(Order(Window, {msgMouseMove, msgLeftDown, msgLeftUp}).empty());
    System->ReleaseCapture();
}

TEST_F(windowMouse, TouchesOnlyTheWindowOnTop)
{
    const windowId popup = OpenAt({150, 150, 250, 250}, stylePopup, Window);
    ASSERT_TRUE(Point(popup, 20, 20));
    Heard.clear();
    Click();
    ASSERT_TRUE(Until([&] { return Has(popup, msgLeftUp); }));
    EXPECT_TRUE(Order(Window, {msgLeftDown, msgLeftUp}).empty());
    System->Show(popup, windowShow::Hide);
    EXPECT_TRUE(Point(Window, 70, 75));
}

TEST_F(windowMouse, GoesThroughADisabledWindowToNobody)
{
    const windowId popup = OpenAt({150, 150, 250, 250}, stylePopup, Window);
    ASSERT_TRUE(Point(popup, 20, 20));
    System->Enable(popup, false);
    Pump();
    Heard.clear();
    screenMove(180, 180);
    Click();
    ASSERT_TRUE(Point(Window, 5, 5));
    EXPECT_TRUE(Order(popup, {msgMouseMove, msgLeftDown}).empty());
    EXPECT_FALSE(Has(Window, msgLeftDown));
}

}  // namespace
