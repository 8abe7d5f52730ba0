#include "tests/toolkit/inputTest.h"

#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ctrlWindowMouseTest : public inputTest
{
};

// --- Mouse

TEST_F(ctrlWindowMouseTest, TheDeepestControlUnderTheMouseHearsItInItsOwnCoordinates)
{
    fakeMouseMove(101, 102);
    fakeMouseMove(180, 150);
    fakeMouseMove(115, 116);
    EXPECT_THAT(Heard(), ElementsAre("main move 1,2", "panel move 70,40", "upper move 5,6"));
}

TEST_F(ctrlWindowMouseTest, OfOverlappingControlsTheLaterInTheListHearsIt)
{
    fakeMouseMove(135, 135);
    EXPECT_THAT(Heard(), ElementsAre("upper move 25,25"));
    Panel->ChildOrder(Upper, 0);
    fakeMouseMove(136, 135);
    EXPECT_THAT(Heard(), ElementsAre("lower move 6,5"));
}

TEST_F(ctrlWindowMouseTest, HiddenAndDisabledControlsLetItThrough)
{
    Upper->Hide();
    Told.clear();
    fakeMouseMove(135, 135);
    EXPECT_THAT(Heard(), ElementsAre("lower move 5,5"));
    Lower->Enable(false);
    fakeMouseMove(136, 135);
    EXPECT_THAT(Heard(), ElementsAre("panel move 26,25"));
    Panel->Enable(false);
    fakeMouseMove(135, 135);
    EXPECT_THAT(Heard(), ElementsAre("main move 35,35"));
}

TEST_F(ctrlWindowMouseTest, ADisabledWindowRoutesNothing)
{
    Main->Enable(false);
    Toolkit().Windows().Send(Main->Handle(), msgLeftDown, keysLeft, windowPoint(5, 5));
    EXPECT_THAT(Told, IsEmpty());
}

TEST_F(ctrlWindowMouseTest, AMoveToWhereTheMouseIsAlreadyIsDropped)
{
    fakeMouseMove(115, 116);
    fakeMouseMove(115, 116);
    EXPECT_THAT(Heard(), ElementsAre("upper move 5,6"));
    fakeMouseMove(116, 116);
    fakeMouseMove(115, 116);
    EXPECT_EQ(Heard().size(), 2U);

    auto* other = new listener(Told, "other", nullptr, 100, 100, 200, 100);
    other->Show();
    Told.clear();
    fakeMouseMove(115, 116);
    EXPECT_THAT(Heard(), ElementsAre("other move 15,16")) << "another window";
}

TEST_F(ctrlWindowMouseTest, EveryButtonHasItsEvents)
{
    constexpr std::pair<uint32_t, const char*> rows[] = {
        {msgLeftDown, "left"},     {msgLeftUp, "leftup"},     {msgLeftDouble, "leftdouble"},
        {msgRightDown, "right"},   {msgRightUp, "rightup"},   {msgRightDouble, "rightdouble"},
        {msgMiddleDown, "middle"}, {msgMiddleUp, "middleup"}, {msgMiddleDouble, "middledouble"},
        {msgMouseMove, "move"},
    };
    Toolkit().Windows().Send(Main->Handle(), msgMouseMove, 0, windowPoint(-3, -3));
    Told.clear();
    for (const auto& [number, name] : rows) {
        EXPECT_EQ(Toolkit().Windows().Send(Main->Handle(), number, keysShift, windowPoint(-1, -2)), 0);
        EXPECT_THAT(std::exchange(Told, {}), ElementsAre("main " + std::string(name) + " -1,-2 keys 4"));
    }
}

TEST_F(ctrlWindowMouseTest, TheWheelTellsItsPlaceOnTheScreenAndItsTurn)
{
    fakeMouseMove(115, 116);
    fakeMouseWheel(-240);
    EXPECT_THAT(Heard(), ElementsAre("upper move 5,6", "upper wheel 5,6 by -240"));
}

TEST_F(ctrlWindowMouseTest, TheWheelGoesToTheWindowThatHoldsTheCapture)
{
    auto* popup = new listener(Told, "popup", Main, 400, 400, 50, 50, ctrlFloating);
    popup->Show();
    popup->CaptureTake();
    Told.clear();
    Toolkit().Windows().Send(Main->Handle(), msgMouseWheel, 120 << 16, windowPoint(410, 420));
    EXPECT_THAT(Told, ElementsAre("popup wheel 10,20 by 120"));
}

TEST_F(ctrlWindowMouseTest, ClicksAreNotices)
{
    std::vector<unsigned> codes;
    Upper->OnNotify = [&codes](unsigned code) {
        codes.push_back(code);
        return true;
    };
    int doubles = 0;
    Upper->OnDoubleClick = [&doubles] { ++doubles; };
    fakeMouseClick(115, 116);
    fakeMouseDouble();
    fakeMouseRelease();
    fakeMouseClick(115, 116, fakeButton::Right);
    fakeMouseClick(115, 116, fakeButton::Middle);
    Toolkit().PumpPending();
    EXPECT_THAT(codes, ElementsAre(notifyClick, notifyRightClick));
    EXPECT_EQ(doubles, 1);
}

TEST_F(ctrlWindowMouseTest, ADoubleClickRestoresAMinimisedWindow)
{
    fakeUserMinimises(Main->Handle());
    Toolkit().PumpPending();
    ASSERT_TRUE(Main->HasState(stateMinimised));
    Told.clear();
    Toolkit().Windows().Send(Main->Handle(), msgLeftDouble, keysLeft, windowPoint(5, 5));
    EXPECT_FALSE(Main->HasState(stateMinimised));
    for (const std::string& line : Told)
        EXPECT_THAT(line, testing::Not(testing::HasSubstr("leftdouble")));
}

// --- Capture

TEST_F(ctrlWindowMouseTest, TheHolderHearsTheMouseEverywhereInItsOwnCoordinates)
{
    Upper->Base = false;
    Upper->CaptureTake();
    EXPECT_TRUE(Upper->CaptureHeld());
    EXPECT_EQ(Toolkit().Windows().Capture(), Main->Handle());
    fakeMouseMove(105, 190);
    fakeMouseMove(500, 600);
    EXPECT_THAT(Heard(), ElementsAre("upper move -5,80", "upper move 390,490"));
}

TEST_F(ctrlWindowMouseTest, AWindowThatHoldsTheCaptureItselfLetsItsControlsHearTheMouse)
{
    Main->CaptureTake();
    fakeMouseMove(115, 116);
    fakeMouseMove(500, 600);
    EXPECT_THAT(Heard(), ElementsAre("upper move 5,6", "main move 400,500"));
}

TEST_F(ctrlWindowMouseTest, AMoveIsTheEndOfTheCaptureUnlessAControlSaysOtherwise)
{
    Upper->CaptureTake();
    fakeMouseMove(115, 116);
    Heard();
    EXPECT_FALSE(Upper->CaptureHeld());
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
    EXPECT_EQ(fakeCallCount("windowReleaseCapture"), 1U);
}

TEST_F(ctrlWindowMouseTest, APressComesAfterAMoveToWhoeverDoesNotKnowOfTheMouse)
{
    fakeMouseMove(150, 150);
    Heard();
    Upper->CaptureTake();
    fakeMouseMove(151, 150);
    Heard();
    fakeMousePress();
    fakeMouseRelease();
    fakeMousePress();
    EXPECT_THAT(Heard(), ElementsAre("lower move 21,20", "lower left 21,20 keys 1", "lower leftup 21,20",
                                     "lower left 21,20 keys 1"))
        << "the holder alone had heard that the mouse moved";
    fakeMouseRelease();
    Heard();
    Lower->Hide();
    Heard();
    fakeMousePress(fakeButton::Right);
    EXPECT_THAT(Heard(), ElementsAre("panel move 41,40", "panel right 41,40 keys 2"))
        << "what lies there is another control now";
}

TEST_F(ctrlWindowMouseTest, APressGoesToTheHolderWithoutAMove)
{
    fakeMouseMove(115, 116);
    Heard();
    Lower->CaptureTake();
    fakeMousePress();
    EXPECT_THAT(Heard(), ElementsAre("lower left -15,-14 keys 1"));
}

TEST_F(ctrlWindowMouseTest, OnlyWhoIsVisibleAndEnabledTakesTheCapture)
{
    Panel->Hide();
    Upper->CaptureTake();
    EXPECT_FALSE(Upper->CaptureHeld());
    Panel->Show();
    Panel->Enable(false);
    Upper->CaptureTake();
    EXPECT_FALSE(Upper->CaptureHeld());
    Panel->Enable(true);
    Upper->CaptureTake();
    Upper->CaptureTake();
    EXPECT_TRUE(Upper->CaptureHeld());
    EXPECT_EQ(fakeCallCount("windowSetCapture"), 1U);
    Lower->CaptureRelease();
    EXPECT_TRUE(Upper->CaptureHeld()) << "it is not another's to release";
}

TEST_F(ctrlWindowMouseTest, HidingDisablingAndCancellingReleaseTheCapture)
{
    const std::function<void()> ways[] = {
        [this] { Upper->Hide(); },
        [this] { Panel->Hide(); },
        [this] { Upper->Enable(false); },
        [this] { Panel->Enable(false); },
        [this] { Toolkit().Windows().Send(Main->Handle(), msgCancelMode, 0, 0); },
        [this] { Toolkit().Windows().ReleaseCapture(); },
    };
    for (const auto& way : ways) {
        Upper->CaptureTake();
        ASSERT_TRUE(Upper->CaptureHeld());
        way();
        EXPECT_FALSE(Upper->CaptureHeld());
        EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
        for (ctrlWindow* one : {Upper, Panel}) {
            one->Show();
            one->Enable(true);
        }
    }
}

TEST_F(ctrlWindowMouseTest, AKeeperTakesTheCaptureThatADescendantLetsGo)
{
    auto* keeper = new listener(Told, "keeper", Main, 120, 10, 60, 60, ctrlCaptureKeep);
    auto* middle = new listener(Told, "middle", keeper, 0, 0, 50, 50);
    auto* inner = new listener(Told, "inner", middle, 0, 0, 30, 30);
    for (ctrlWindow* one : {inner, middle, keeper})
        one->Show();
    inner->CaptureTake();
    inner->CaptureRelease();
    EXPECT_TRUE(keeper->CaptureHeld());
    keeper->CaptureRelease();
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);

    inner->CaptureTake();
    inner->Destroy();
    EXPECT_FALSE(keeper->CaptureHeld()) << "not of one that goes";
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);

    middle->CaptureTake();
    keeper->Hide();
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U) << "a hidden one keeps nothing";
}

// --- Gestures

TEST_F(ctrlWindowMouseTest, AGestureBelongsToTheControlThatItBeganOn)
{
    const auto gesture = [](windowGestureKind kind, int32_t x, int32_t y, bool first = false) {
        fakeGesture({.Kind = kind, .First = first, .Id = 77, .X = x, .Y = y});
    };
    gesture(windowGestureKind::Pan, 115, 116);
    gesture(windowGestureKind::Begin, 115, 116);
    gesture(windowGestureKind::Pan, 120, 130, true);
    gesture(windowGestureKind::Pan, 190, 190);
    gesture(windowGestureKind::Zoom, 190, 190);
    gesture(windowGestureKind::End, 190, 190);
    gesture(windowGestureKind::Pan, 190, 190);
    gesture(windowGestureKind::End, 190, 190);
    EXPECT_THAT(Heard(),
                ElementsAre("upper begin", "upper first 4 at 10,20", "upper pan 4 at 80,80", "upper end"));
    EXPECT_EQ(fakeGesturesOpen(), 0U);
    EXPECT_EQ(fakeCallCount("windowGestureClose"), 8U);
}

TEST_F(ctrlWindowMouseTest, AGestureOnBareGroundIsTheWindows)
{
    Panel->Enable(false);
    fakeGesture({.Kind = windowGestureKind::Begin, .X = 115, .Y = 116});
    EXPECT_THAT(Heard(), ElementsAre("main begin"));
}

// --- Cursors

TEST_F(ctrlWindowMouseTest, ACursorIsSetWhenItChanges)
{
    fakeMouseMove(115, 116);
    Heard();
    fakeClearCalls();
    fakeMouseMove(116, 116);
    Heard();
    EXPECT_EQ(fakeCallCount("windowSetCursor"), 0U);
    ctrlWindow::Cursor(cursorHand);
    ctrlWindow::Cursor(cursorHand);
    EXPECT_EQ(fakeCallCount("windowSetCursor"), 1U);
    fakeMouseMove(115, 116);
    Heard();
    EXPECT_EQ(fakeCallCount("windowSetCursor"), 2U) << "a move sets the arrow";
}

struct frameRow {
    uint64_t Hit;
    uint8_t Cursor;
};

TEST_F(ctrlWindowMouseTest, OnAFrameTheCursorShowsWhatADragWillDo)
{
    auto* framed = new listener(Told, "framed", nullptr, 400, 100, 100, 100, ctrlFramed);
    constexpr frameRow rows[] = {
        {hitTopLeft, cursorSizeFalling},
        {hitBottomRight, cursorSizeFalling},
        {hitTopRight, cursorSizeRising},
        {hitBottomLeft, cursorSizeRising},
        {hitTop, cursorSizeUpDown},
        {hitBottom, cursorSizeUpDown},
        {hitLeft, cursorSizeLeftRight},
        {hitRight, cursorSizeLeftRight},
        {2, cursorArrow},
        {0, cursorArrow},
        {hitClient, cursorHand},
    };
    for (const frameRow& row : rows) {
        ctrlWindow::Cursor(cursorHand);
        Toolkit().Windows().Send(framed->Handle(), msgFrameMove, row.Hit, 0);
        EXPECT_EQ(Toolkit().CursorId, row.Cursor) << row.Hit;
        ctrlWindow::Cursor(cursorHand);
        Toolkit().Windows().Send(Main->Handle(), msgFrameMove, row.Hit, 0);
        EXPECT_EQ(Toolkit().CursorId, cursorHand) << "without a frame";
    }
}

}  // namespace
