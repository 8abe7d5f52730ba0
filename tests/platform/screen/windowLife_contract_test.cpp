#include "tests/platform/screen/windowTest.h"

// From a new window to its end.

namespace {

using windowLife = windowTest;

TEST_F(windowLife, MakesAHiddenWindowThatNobodyOwns)
{
    const windowId window = Make();
    EXPECT_EQ(System->Object(window), nullptr);
    EXPECT_EQ(System->DPI(window), 96u);
    EXPECT_NE(System->Focus(), window);
    EXPECT_FALSE(Has(window, msgShowWindow));
}

TEST_F(windowLife, MakesAWindowThatFollowsTheScaleOfItsMonitor)
{
    uint32_t error = 0;
    const windowId window = System->Create({.Style = StyleFramed, .PerMonitor = true}, error);
    ASSERT_NE(window, 0u) << error;
    EXPECT_GE(System->DPI(window), 96u);
    const windowEdges client{100, 120, 400, 300};
    ASSERT_TRUE(Place(window, client));
    System->Show(window, windowShow::Activate);
    EXPECT_TRUE(Until([&] { return System->Focus() == window && ClientOf(window) == client; }));
    // Who comes next does not inherit that.
    EXPECT_EQ(System->DPI(Make()), 96u);
}

TEST_F(windowLife, TellsTheReceiverOfTheCreationBeforeCreateReturns)
{
    const windowId window = Make();
    EXPECT_EQ(Count(window, msgCreate), 1u);
}

TEST_F(windowLife, GivesEachWindowAnIdOfItsOwn)
{
    const windowId first = Make();
    const windowId second = Make(stylePopup, first);
    EXPECT_NE(first, second);
}

TEST_F(windowLife, KeepsTheStyleThatWasAskedFor)
{
    for (const uint32_t style : {StyleFramed, uint32_t{styleSystemMenu}, uint32_t{stylePopup}}) {
        const windowId window = Make(style);
        EXPECT_EQ(System->Style(window) & style, style);
    }
}

TEST_F(windowLife, ChangesTheStyle)
{
    const windowId window = Make();
    System->SetStyle(window, System->Style(window) & ~uint32_t{styleMaximiseBox});
    EXPECT_EQ(System->Style(window) & styleMaximiseBox, 0u);
    EXPECT_EQ(System->Style(window) & styleSystemMenu, uint32_t{styleSystemMenu});
}

TEST_F(windowLife, KeepsAPointerForItsOwner)
{
    const windowId first = Make();
    const windowId second = Make();
    int one = 0;
    int other = 0;
    System->SetObject(first, &one);
    System->SetObject(second, &other);
    EXPECT_EQ(System->Object(first), &one);
    EXPECT_EQ(System->Object(second), &other);
    System->SetObject(first, nullptr);
    EXPECT_EQ(System->Object(first), nullptr);
}

TEST_F(windowLife, TakesAnyTitle)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    for (const char* title : {"", "Skyreckoning", "µ é ° \xF0\x9F\x9B\xB0", "cut \xC3"})
        System->SetTitle(window, title);
    Pump();
}

TEST_F(windowLife, EndsWithDestroy)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    int object = 0;
    System->SetObject(window, &object);
    Heard.clear();
    System->Destroy(window);
    EXPECT_EQ(System->Object(window), nullptr);
    windowEdges area{};
    EXPECT_FALSE(System->ClientArea(window, area));
    EXPECT_FALSE(Has(window, msgClose));
    EXPECT_NE(System->Focus(), window);
}

TEST_F(windowLife, EndsWithItsOwner)
{
    const windowId owner = OpenAt({100, 100, 500, 400});
    const windowId dialog = OpenAt({150, 150, 350, 300}, styleSystemMenu, owner);
    const windowId popup = OpenAt({200, 200, 300, 250}, stylePopup, dialog);
    System->Destroy(owner);
    windowEdges area{};
    for (const windowId window : {owner, dialog, popup})
        EXPECT_FALSE(System->ClientArea(window, area)) << window;
}

TEST_F(windowLife, GivesTheFocusBackToTheOwner)
{
    const windowId owner = OpenAt({100, 100, 500, 400});
    const windowId dialog = OpenAt({150, 150, 350, 300}, styleSystemMenu, owner);
    Heard.clear();
    System->Destroy(dialog);
    EXPECT_TRUE(Until([&] { return System->Focus() == owner; }));
    EXPECT_TRUE(Until([&] { return Has(owner, msgSetFocus); }));
}

TEST_F(windowLife, MayEndInItsOwnMessage)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Answer = [&](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgApp)
            return std::nullopt;
        System->Destroy(message.Window);
        return 5;
    };
    EXPECT_EQ(System->Send(window, msgApp, 0, 0), 5);
    windowEdges area{};
    EXPECT_FALSE(System->ClientArea(window, area));
    Pump();
}

TEST_F(windowLife, ForgetsAllWindowsAtTheEndOfTheSystemAndSaysNothing)
{
    OpenAt({100, 100, 400, 300});
    Make(stylePopup);
    Heard.clear();
    System.reset();
    EXPECT_TRUE(Heard.empty());
}

TEST_F(windowLife, ClosesAsTheSystemDoesWhenTheReceiverLeavesItThat)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    ASSERT_TRUE(System->Post(window, msgSysCommand, commandClose, 0));
    EXPECT_TRUE(Until([&] { return Has(window, msgClose); }));
    windowEdges area{};
    EXPECT_TRUE(Until([&] { return !System->ClientArea(window, area); }));
}

TEST_F(windowLife, StaysOpenWhenTheReceiverWantsThat)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Answer = [](const windowMessage& message) {
        return message.Number == msgClose ? std::optional<int64_t>(0) : std::nullopt;
    };
    ASSERT_TRUE(System->Post(window, msgSysCommand, commandClose, 0));
    ASSERT_TRUE(Until([&] { return Has(window, msgClose); }));
    Pump();
    windowEdges area{};
    EXPECT_TRUE(System->ClientArea(window, area));
}

class windowGone : public windowTest, public testing::WithParamInterface<windowId>
{
protected:
    // 0 stands for none, 1 for one that was destroyed.
    windowId Gone()
    {
        if (GetParam() != 1)
            return GetParam();
        const windowId window = OpenAt({100, 100, 400, 300});
        System->Destroy(window);
        Pump();
        return window;
    }
};

TEST_P(windowGone, IsHarmlessToAsk)
{
    const windowId window = Gone();
    windowEdges edges{};
    windowArea area;
    EXPECT_EQ(System->Object(window), nullptr);
    EXPECT_EQ(System->Style(window), 0u);
    EXPECT_EQ(System->FrameOf(window, {1, 2, 3, 4}, 96), (windowEdges{1, 2, 3, 4}));
    EXPECT_FALSE(System->ClientArea(window, edges));
    EXPECT_FALSE(System->WorkAreaOf(window, area));
    EXPECT_EQ(System->DPI(window), 96u);
}

TEST_P(windowGone, IsHarmlessToChange)
{
    const windowId window = Gone();
    const windowId other = OpenAt({500, 100, 700, 300});
    int object = 0;
    System->SetObject(window, &object);
    System->SetStyle(window, StyleFramed);
    System->SetSizeRange(window, {10, 10}, {20, 20});
    System->SetTitle(window, "gone");
    EXPECT_FALSE(System->Place(window, windowOrder::Topmost, {0, 0, 100, 100}, 0));
    System->Show(window, windowShow::Activate);
    System->Raise(window);
    System->Enable(window, false);
    System->SetFocus(window);
    System->SetCapture(window);
    EXPECT_NE(System->Capture(), 1u);
    System->AskGestures(window);
    System->Destroy(window);
    Pump();
    EXPECT_EQ(System->Focus(), other);
    EXPECT_EQ(System->Object(window), nullptr);
}

TEST_P(windowGone, HearsNothing)
{
    const windowId window = Gone();
    Heard.clear();
    EXPECT_FALSE(System->Post(window, msgApp, 1, 2));
    EXPECT_EQ(System->Send(window, msgApp, 1, 2), 0);
    System->AskPaint(window);
    System->PaintNow(window);
    System->PaintDone(window);
    System->Dispatch({.Window = window, .Number = msgApp});
    System->Default({.Window = window, .Number = msgClose});
    Pump();
    EXPECT_EQ(Count(window, msgApp) + Count(window, msgPaint), 0u);
}

INSTANTIATE_TEST_SUITE_P(Ids, windowGone, testing::Values(windowId{0}, windowId{1}, windowId{0x7FFFFFF0}));

}  // namespace
