#include "platform/thread.h"
#include "tests/fakes/fakeWindows.h"
#include "tests/fakes/fakes.h"
#include "tests/platform/screen/windowTest.h"

#include <gmock/gmock.h>

#include <thread>

// What only the scripted windows can show: failures, other monitors and scales, and what was asked of them.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class windowScript : public windowTest
{
protected:
    windowEdges FrameNow(windowId window) { return fakeWindowOf(window)->Frame; }
};

TEST_F(windowScript, NumbersWindowsFromOne)
{
    EXPECT_EQ(Make(), 1u);
    EXPECT_EQ(Make(), 2u);
    System->Destroy(2);
    EXPECT_EQ(Make(), 3u);
    EXPECT_THAT(fakeWindows(), ElementsAre(1, 3));
}

TEST_F(windowScript, RecordsCallsInOrder)
{
    fakeClearCalls();
    uint32_t error = 0;
    System->Create({.Style = styleSystemMenu, .StyleExtended = styleTaskbar, .PerMonitor = true}, error);
    System->SetTitle(1, "Sky");
    System->Place(1, windowOrder::Topmost, {92, 69, 708, 608}, placeNoActivate);
    System->Show(1, windowShow::Activate);
    System->AskPaint(1);
    System->Post(1, msgClose, 0, 0);
    EXPECT_THAT(fakeCalls(),
                ElementsAre("windowCreate 1 style 0x80000 extended 0x40000 owner 0 perMonitor",
                            "windowDefault 1 1", "windowSetTitle 1 Sky",
                            "windowPlace 1 92,69,708,608 flags 16 topmost", "windowDefault 1 70",
                            "windowDefault 1 3", "windowDefault 1 5", "windowShow 1 5", "windowDefault 1 24",
                            "windowDefault 1 6", "windowDefault 1 7", "windowAskPaint 1", "windowPost 1 16"));
}

TEST_F(windowScript, HasFramesOfTheirScale)
{
    const windowId window = Make();
    EXPECT_EQ(System->FrameOf(window, {100, 100, 300, 200}, 96), (windowEdges{92, 69, 308, 208}));
    EXPECT_EQ(System->FrameOf(window, {100, 100, 300, 200}, 144), (windowEdges{88, 53, 312, 212}));
}

TEST_F(windowScript, LetsCreationFail)
{
    fakeFail("windowCreate");
    uint32_t error = 0;
    EXPECT_EQ(System->Create({}, error), 0u);
    EXPECT_EQ(error, fakeCreateError);
    EXPECT_EQ(Make(), 1u);
}

TEST_F(windowScript, LetsPostsFail)
{
    const windowId window = Make();
    fakeFail("windowPost", {.Skip = 1, .Times = 2});
    for (const bool works : {true, false, false, true})
        EXPECT_EQ(System->Post(window, msgApp, 0, 0), works);
}

TEST_F(windowScript, HoldsTenThousandPosts)
{
    const windowId window = Make();
    for (int post = 0; post < 10'000; ++post)
        ASSERT_TRUE(System->Post(window, msgApp, 0, 0));
    EXPECT_FALSE(System->Post(window, msgApp, 0, 0));
    windowMessage message;
    ASSERT_EQ(System->Peek(message), windowTake::Taken);
    EXPECT_TRUE(System->Post(window, msgApp, 0, 0));
    EXPECT_FALSE(System->Post(window, msgApp, 0, 0));
}

TEST_F(windowScript, FailsWhenTheDisplayIsLost)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->Post(window, msgApp, 0, 0);
    fakeDisplayLost();
    windowMessage message;
    EXPECT_EQ(System->Peek(message), windowTake::Failed);
    EXPECT_EQ(System->Wait(message), windowTake::Failed);
    uint32_t error = 0;
    EXPECT_EQ(System->Create({}, error), 0u);
}

TEST_F(windowScript, EndsAWaitWhenTheProgramIsToEnd)
{
    const windowId window = Make();
    System->Post(window, msgApp, 0, 0);
    fakeProgramEnds();
    windowMessage message;
    EXPECT_EQ(System->Wait(message), windowTake::Taken);
    EXPECT_EQ(System->Wait(message), windowTake::None);
}

TEST_F(windowScript, ClosesAndChangesStateForTheUser)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    fakeUserMaximises(window);
    Pump();
    EXPECT_TRUE(fakeWindowOf(window)->Maximised);
    EXPECT_EQ(ClientOf(window), (windowEdges{0, 23, 1920, 1040}));
    fakeUserMinimises(window);
    Pump();
    EXPECT_TRUE(fakeWindowOf(window)->Minimised);
    fakeUserRestores(window);
    Pump();
    EXPECT_TRUE(fakeWindowOf(window)->Maximised);
    fakeUserRestores(window);
    Pump();
    EXPECT_EQ(ClientOf(window), (windowEdges{100, 100, 400, 300}));
    fakeUserCloses(window);
    Pump();
    EXPECT_THAT(fakeWindows(), IsEmpty());
}

TEST_F(windowScript, LetsTheReceiverLimitAMaximisedWindow)
{
    const windowId window = OpenAt({100, 100, 400, 300}, stylePopup);
    Answer = [](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgSizeLimits)
            return std::nullopt;
        reinterpret_cast<windowSizeLimits*>(static_cast<intptr_t>(message.Second))->MaximumTrack = {640, 480};
        return 0;
    };
    System->Show(window, windowShow::Maximise);
    EXPECT_EQ(ClientOf(window), (windowEdges{0, 0, 640, 480}));
}

TEST_F(windowScript, DragsEdgesForTheUserAndLetsTheReceiverCorrectThem)
{
    const windowId window = OpenAt({100, 100, 400, 300}, stylePopup);
    Answer = [](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgSizing)
            return std::nullopt;
        EXPECT_EQ(message.First, uint64_t{edgeTopLeft});
        auto* edges = reinterpret_cast<windowEdges*>(static_cast<intptr_t>(message.Second));
        EXPECT_EQ(*edges, (windowEdges{350, 290, 400, 300}));
        edges->Left = edges->Right - 120;
        return 1;
    };
    Heard.clear();
    fakeUserResizes(window, edgeTopLeft, 50, 10);
    Pump();
    EXPECT_EQ(FrameNow(window), (windowEdges{280, 290, 400, 300}));
    EXPECT_THAT(Order(window, {msgEnterSizeMove, msgSizing, msgMove, msgSize, msgExitSizeMove}),
                ElementsAre(msgEnterSizeMove, msgSizing, msgMove, msgSize, msgExitSizeMove));
}

TEST_F(windowScript, MovesAFrameForTheUser)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    fakeUserMoves(window, -10, 20);
    Pump();
    EXPECT_EQ(FrameNow(window), (windowEdges{-10, 20, 306, 259}));
    EXPECT_EQ(LastPoint(window, msgMove), windowPoint(-2, 51));
}

TEST_F(windowScript, KeepsTheUserFromTheFrameOfADisabledWindow)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->Enable(window, false);
    fakeUserCloses(window);
    fakeUserMoves(window, 0, 0);
    Pump();
    EXPECT_EQ(FrameNow(window), (windowEdges{92, 69, 408, 308}));
}

TEST_F(windowScript, RaisesTheDialogWhenItsOwnerIsPressed)
{
    const windowId owner = OpenAt({100, 100, 400, 300});
    const windowId dialog = OpenAt({500, 100, 600, 200}, styleSystemMenu, owner);
    System->Enable(owner, false);
    fakeUserLeaves();
    Pump();
    EXPECT_EQ(System->Focus(), 0u);
    fakeMouseClick(150, 150);
    Pump();
    EXPECT_EQ(System->Focus(), dialog);
    EXPECT_FALSE(Has(owner, msgLeftDown));
}

TEST_F(windowScript, TakesTheCaptureWhenTheUserLeaves)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->SetCapture(window);
    Heard.clear();
    fakeUserLeaves();
    Pump();
    EXPECT_THAT(Order(window, {msgCancelMode, msgCaptureChanged, msgActivate, msgKillFocus}),
                ElementsAre(msgCancelMode, msgCaptureChanged, msgActivate, msgKillFocus));
    fakeUserActivates(window);
    Pump();
    EXPECT_EQ(System->Focus(), window);
}

TEST_F(windowScript, ChangesTheScaleOfAWindowThatFollowsItsMonitor)
{
    uint32_t error = 0;
    const windowId follows = System->Create({.Style = stylePopup, .PerMonitor = true}, error);
    const windowId other = Make(stylePopup);
    Place(follows, {100, 100, 300, 200});
    for (const windowId window : {follows, other})
        fakeWindowDPI(window, 144);
    Pump();
    EXPECT_EQ(System->DPI(follows), 144u);
    EXPECT_EQ(System->DPI(other), 96u);
    EXPECT_THAT(Order(follows, {msgScaledSize, msgDPIChanged}), ElementsAre(msgScaledSize, msgDPIChanged));
    EXPECT_EQ(ClientOf(follows), (windowEdges{100, 100, 400, 250}));
    EXPECT_FALSE(Has(other, msgDPIChanged));
}

TEST_F(windowScript, KeepsTheSizeThatTheReceiverWantsAtANewScale)
{
    uint32_t error = 0;
    const windowId window = System->Create({.Style = stylePopup, .PerMonitor = true}, error);
    Place(window, {100, 100, 300, 200});
    Answer = [](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgScaledSize)
            return std::nullopt;
        *reinterpret_cast<windowExtent*>(static_cast<intptr_t>(message.Second)) = {200, 100};
        return 1;
    };
    fakeWindowDPI(window, 192);
    Pump();
    EXPECT_EQ(ClientOf(window), (windowEdges{100, 100, 300, 200}));
}

TEST_F(windowScript, GivesNewWindowsTheScaleOfTheScreen)
{
    fakeScreenDPI(120);
    uint32_t error = 0;
    EXPECT_EQ(System->DPI(System->Create({.PerMonitor = true}, error)), 120u);
    EXPECT_EQ(System->DPI(System->Create({}, error)), 96u);
}

TEST_F(windowScript, KnowsSeveralMonitors)
{
    fakeMonitors({{0, 0, 1000, 760}, {1000, 0, 2000, 800}});
    const windowId window = OpenAt({900, 100, 1200, 300}, stylePopup);
    windowArea area;
    ASSERT_TRUE(System->WorkAreaOf(window, area));
    EXPECT_EQ(area.Left, 1000);
    ASSERT_TRUE(System->WorkAreaAt(999, 10, area));
    EXPECT_EQ(area.Left, 0);
    EXPECT_FALSE(System->WorkAreaAt(10, 790, area));
    EXPECT_EQ(System->DesktopWorkArea().Bottom, 760);
}

TEST_F(windowScript, TellsGesturesToWhoAskedForThem)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    const windowGesture pan{.Kind = windowGestureKind::Pan, .First = true, .Id = 9, .X = 120, .Y = 130};
    fakeGesture(pan);
    Pump();
    EXPECT_FALSE(Has(window, msgGesture));
    System->AskGestures(window);
    windowGesture read;
    Answer = [&](const windowMessage& message) -> std::optional<int64_t> {
        const bool isRead = message.Number != msgGesture || System->GestureRead(message.Second, read);
        EXPECT_TRUE(isRead);
        return std::nullopt;
    };
    fakeGesture(pan);
    Pump();
    EXPECT_EQ(read.Kind, windowGestureKind::Pan);
    EXPECT_TRUE(read.First);
    EXPECT_EQ(read.Id, 9u);
    EXPECT_EQ(read.Y, 130);
    EXPECT_EQ(fakeGesturesOpen(), 0u);
}

TEST_F(windowScript, CountsGesturesThatAreNotClosed)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->AskGestures(window);
    Answer = [](const windowMessage& message) {
        return message.Number == msgGesture ? std::optional<int64_t>(0) : std::nullopt;
    };
    fakeGesture({.X = 120, .Y = 130});
    Pump();
    EXPECT_EQ(fakeGesturesOpen(), 1u);
    System->GestureClose(Last(window, msgGesture).Second);
    EXPECT_EQ(fakeGesturesOpen(), 0u);
}

TEST_F(windowScript, KeepsAlertsCursorsAndTheClipboard)
{
    System->Alert("Title", "Text");
    EXPECT_THAT(fakeAlerts(), ElementsAre(testing::Pair("Title", "Text")));
    const cursorId cursor = System->MakeCursor({.HotX = 3, .HotY = 4});
    System->SetCursor(cursor);
    EXPECT_EQ(fakeCursor(), cursor);
    EXPECT_EQ(fakeCursorsMade(), 1u);
    EXPECT_EQ(fakeCursorShape(cursor)->HotY, 4u);
    System->DestroyCursor(cursor);
    EXPECT_EQ(fakeCursorsMade(), 0u);
    fakeClipboard("from elsewhere");
    EXPECT_EQ(System->ClipboardText(0), "from elsewhere");
    System->SetClipboardText(0, "ours");
    EXPECT_EQ(fakeClipboardText(), "ours");
}

TEST_F(windowScript, RunsClosuresInsideCalls)
{
    const windowId window = Make();
    fakeOnCall("windowWait", 1, [&] { System->Post(window, msgApp, 4, 0); });
    windowMessage message;
    EXPECT_EQ(System->Wait(message), windowTake::Taken);
    EXPECT_EQ(message.First, 4u);
}

TEST_F(windowScript, TellsTheTimeOfTheClockThatTestsMove)
{
    const windowId window = Make();
    fakeClockMove(250'000'000);
    System->Post(window, msgApp, 0, 0);
    Pump();
    EXPECT_EQ(Last(window, msgApp).Time, 1250u);
}

TEST_F(windowScript, IsNewAfterAReset)
{
    OpenAt({100, 100, 400, 300});
    fakeReset();
    EXPECT_THAT(fakeWindows(), IsEmpty());
    EXPECT_EQ(System->Focus(), 0u);
    EXPECT_EQ(Make(), 1u);
}

using windowScriptDeathTest = windowScript;

TEST_F(windowScriptDeathTest, EndsTheProgramWhenAnotherThreadTouchesAWindow)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const windowId window = Make();
    EXPECT_DEATH(std::jthread([&] { System->Show(window, windowShow::Activate); }).join(),
                 "interface thread");
}

}  // namespace
