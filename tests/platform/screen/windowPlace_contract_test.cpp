#include "tests/platform/screen/windowTest.h"

// Where windows are, how large, and in which order.

namespace {

class windowPlace : public windowTest
{
protected:
    static constexpr uint32_t Keep = placeKeepOrder | placeNoActivate;

    std::vector<uint32_t> PlaceMessages(windowId window) const
    {
        return Order(window, {msgPosChanging, msgMove, msgSize});
    }

    void ExpectAboveItsOwner(uint32_t style)
    {
        const windowId owner = OpenAt({100, 100, 500, 400});
        const windowId owned = OpenAt({150, 150, 350, 300}, style, owner);
        System->Raise(owner);
        ASSERT_TRUE(Until([&] { return System->Focus() == owner; }));
        ASSERT_TRUE(Point(owned, 30, 40));
        EXPECT_EQ(PressedAt(owned, 30, 40), owned);
    }

    // Whom a press there reaches, of two windows.
    windowId PressedAt(windowId window, int32_t x, int32_t y)
    {
        const windowEdges client = ClientOf(window);
        Heard.clear();
        screenMove(client.Left + x, client.Top + y);
        Click();
        windowId pressed = 0;
        Until([&] {
            for (const windowMessage& each : Heard) {
                if (each.Number == msgLeftUp)
                    pressed = each.Window;
            }
            return pressed != 0;
        });
        return pressed;
    }
};

TEST_F(windowPlace, PutsTheClientAreaWhereItWasAskedFor)
{
    struct placeRow {
        uint32_t Style;
        windowEdges Client;
    };
    constexpr placeRow Rows[] = {
        {StyleFramed, {100, 120, 400, 300}}, {styleSystemMenu, {200, 150, 500, 350}},
        {stylePopup, {300, 200, 310, 210}},  {StyleFramed, {-50, 60, 250, 260}},
        {stylePopup, {40, 50, 41, 51}},
    };
    for (const placeRow& row : Rows) {
        const windowId window = MakeAt(row.Client, row.Style);
        EXPECT_EQ(ClientOf(window), row.Client) << "hidden";
        System->Show(window, windowShow::Activate);
        Until([&] { return ClientOf(window) == row.Client; });
        EXPECT_EQ(ClientOf(window), row.Client) << "shown";
        windowEdges moved = row.Client;
        moved.Left += 30;
        moved.Right += 40;
        moved.Top += 50;
        moved.Bottom += 60;
        EXPECT_TRUE(Place(window, moved));
        Until([&] { return ClientOf(window) == moved; });
        EXPECT_EQ(ClientOf(window), moved);
        System->Destroy(window);
    }
}

TEST_F(windowPlace, HasNoFrameAroundAPopup)
{
    const windowId popup = Make(stylePopup);
    EXPECT_EQ(System->FrameOf(popup, {1, 2, 300, 400}, 96), (windowEdges{1, 2, 300, 400}));
}

TEST_F(windowPlace, HasAFrameThatHoldsTheClientArea)
{
    const windowEdges frame = System->FrameOf(Make(), {100, 100, 300, 300}, 96);
    EXPECT_LE(frame.Left, 100);
    EXPECT_LE(frame.Top, 100);
    EXPECT_GE(frame.Right, 300);
    EXPECT_GE(frame.Bottom, 300);
}

TEST_F(windowPlace, TellsOfAMoveAndAResizeBeforePlaceReturns)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Heard.clear();
    ASSERT_TRUE(Place(window, {150, 160, 550, 460}));
    EXPECT_EQ(PlaceMessages(window), (std::vector<uint32_t>{msgPosChanging, msgMove, msgSize}));
    EXPECT_EQ(LastPoint(window, msgMove), windowPoint(150, 160));
    EXPECT_EQ(Last(window, msgSize).First, uint64_t{sizedRestored});
    EXPECT_EQ(LastPoint(window, msgSize), windowPoint(400, 300));
}

TEST_F(windowPlace, TellsWhatHasChangedAndNothingElse)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    Heard.clear();
    Place(window, {110, 100, 410, 300});
    EXPECT_EQ(PlaceMessages(window), (std::vector<uint32_t>{msgPosChanging, msgMove}));
    Heard.clear();
    Place(window, {110, 100, 410, 310});
    EXPECT_EQ(PlaceMessages(window), (std::vector<uint32_t>{msgPosChanging, msgSize}));
    Pump();
    EXPECT_EQ(Count(window, msgMove), 0u);
    EXPECT_EQ(Count(window, msgSize), 1u);
}

TEST_F(windowPlace, TellsOfTheSizeOfAHiddenWindow)
{
    const windowId window = Make();
    Heard.clear();
    Place(window, {100, 100, 400, 300});
    EXPECT_EQ(LastPoint(window, msgSize), windowPoint(300, 200));
    EXPECT_EQ(LastPoint(window, msgMove), windowPoint(100, 100));
}

TEST_F(windowPlace, TakesNegativePlaces)
{
    const windowId window = OpenAt({100, 100, 400, 300}, stylePopup);
    Heard.clear();
    Place(window, {-40, -30, 260, 170});
    const int64_t place = Last(window, msgMove).Second;
    EXPECT_EQ(windowPointX(place), -40);
    EXPECT_EQ(windowPointY(place), -30);
}

TEST_F(windowPlace, LetsTheReceiverCorrectThePlace)
{
    const windowId window = OpenAt({100, 100, 400, 300}, stylePopup);
    Answer = [](const windowMessage& message) -> std::optional<int64_t> {
        if (message.Number != msgPosChanging)
            return std::nullopt;
        auto* placing = reinterpret_cast<windowPlacing*>(static_cast<intptr_t>(message.Second));
        placing->X += 7;
        placing->Width += 9;
        return 0;
    };
    Place(window, {200, 200, 500, 400});
    EXPECT_EQ(ClientOf(window), (windowEdges{207, 200, 516, 400}));
}

TEST_F(windowPlace, KeepsWhatTheFlagsSay)
{
    const windowId window = OpenAt({100, 100, 400, 300}, stylePopup);
    System->Place(window, windowOrder::Keep, {200, 210, 250, 260}, Keep | placeKeepSize);
    EXPECT_EQ(ClientOf(window), (windowEdges{200, 210, 500, 410}));
    System->Place(window, windowOrder::Keep, {0, 0, 50, 60}, Keep | placeKeepPosition);
    EXPECT_EQ(ClientOf(window), (windowEdges{200, 210, 250, 270}));
}

TEST_F(windowPlace, TellsWhetherAWindowIsShown)
{
    const windowId window = MakeAt({100, 100, 400, 300});
    System->Show(window, windowShow::Activate);
    ASSERT_EQ(Count(window, msgShowWindow), 1u);
    EXPECT_EQ(Last(window, msgShowWindow).First, 1u);
    Pump();
    System->Show(window, windowShow::Hide);
    ASSERT_EQ(Count(window, msgShowWindow), 2u);
    EXPECT_EQ(Last(window, msgShowWindow).First, 0u);
    Pump();
    System->Show(window, windowShow::Hide);
    EXPECT_EQ(Count(window, msgShowWindow), 2u);
    EXPECT_EQ(ClientOf(window), (windowEdges{100, 100, 400, 300}));
}

TEST_F(windowPlace, LeavesTheFocusAloneWhenShownWithoutActivation)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    const windowId other = MakeAt({150, 350, 450, 500});
    System->Show(other, windowShow::NoActivate);
    ASSERT_TRUE(Point(other, 20, 20));
    EXPECT_EQ(System->Focus(), window);
    EXPECT_FALSE(Has(other, msgSetFocus));
}

TEST_F(windowPlace, GoesToTheNextWindowWhenTheActiveOneIsHidden)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({450, 100, 700, 300});
    System->Show(second, windowShow::Hide);
    EXPECT_TRUE(Until([&] { return System->Focus() == first; }));
}

TEST_F(windowPlace, MaximisesAndComesBack)
{
    const windowEdges client{100, 100, 400, 300};
    const windowId window = OpenAt(client);
    Heard.clear();
    System->Show(window, windowShow::Maximise);
    ASSERT_TRUE(Until([&] { return Last(window, msgSize).First == sizedMaximised; }));
    EXPECT_EQ(ClientOf(window).Right - ClientOf(window).Left, windowPointX(Last(window, msgSize).Second));
    const windowArea area = System->DesktopWorkArea();
    EXPECT_NEAR(ClientOf(window).Left, area.Left, 10);
    EXPECT_NEAR(ClientOf(window).Right, area.Right, 10);
    EXPECT_NEAR(ClientOf(window).Bottom, area.Bottom, 10);

    Heard.clear();
    System->Show(window, windowShow::Restore);
    EXPECT_TRUE(Until([&] { return Has(window, msgSize) && ClientOf(window) == client; }));
    EXPECT_EQ(Last(window, msgSize).First, uint64_t{sizedRestored});
    EXPECT_EQ(LastPoint(window, msgSize), windowPoint(300, 200));
    EXPECT_EQ(LastPoint(window, msgMove), windowPoint(100, 100));
}

TEST_F(windowPlace, MinimisesAndComesBack)
{
    const windowEdges client{100, 100, 400, 300};
    const windowId window = OpenAt(client);
    Heard.clear();
    System->Show(window, windowShow::Minimise);
    ASSERT_TRUE(Until([&] { return Last(window, msgSize).First == sizedMinimised; }));
    ASSERT_TRUE(Until([&] { return System->Focus() != window; }));
    Heard.clear();
    System->Show(window, windowShow::Restore);
    EXPECT_TRUE(Until([&] { return Has(window, msgSize) && ClientOf(window) == client; }));
    EXPECT_EQ(Last(window, msgSize).First, uint64_t{sizedRestored});
    EXPECT_TRUE(Until([&] { return System->Focus() == window; }));
}

TEST_F(windowPlace, ComesBackMaximisedFromTheTaskbar)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    System->Show(window, windowShow::Maximise);
    ASSERT_TRUE(Until([&] { return Last(window, msgSize).First == sizedMaximised; }));
    const windowEdges large = ClientOf(window);
    System->Show(window, windowShow::Minimise);
    ASSERT_TRUE(Until([&] { return Last(window, msgSize).First == sizedMinimised; }));
    System->Show(window, windowShow::Restore);
    EXPECT_TRUE(Until([&] { return Last(window, msgSize).First == sizedMaximised; }));
    EXPECT_TRUE(Until([&] { return ClientOf(window) == large; }));
}

TEST_F(windowPlace, ObeysTheCommandsOfTheSystemMenu)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    struct commandRow {
        uint64_t Command;
        uint64_t Size;
    };
    constexpr commandRow Rows[] = {
        {commandMaximise, sizedMaximised},
        {commandRestore, sizedRestored},
        {commandMinimise, sizedMinimised},
        {commandRestore, sizedRestored},
    };
    for (const commandRow& row : Rows) {
        Heard.clear();
        ASSERT_TRUE(System->Post(window, msgSysCommand, row.Command, 0));
        EXPECT_TRUE(Until([&] { return Has(window, msgSize) && Last(window, msgSize).First == row.Size; }))
            << std::hex << row.Command;
    }
}

TEST_F(windowPlace, LiesAboveWhatWasRaisedBefore)
{
    const windowId first = OpenAt({100, 100, 400, 300});
    const windowId second = OpenAt({100, 100, 400, 300});
    ASSERT_TRUE(Point(second, 50, 60));
    EXPECT_EQ(PressedAt(first, 50, 60), second);
    System->Raise(first);
    EXPECT_TRUE(Until([&] { return System->Focus() == first; }));
    ASSERT_TRUE(Point(first, 50, 60));
    EXPECT_EQ(PressedAt(first, 50, 60), first);
}

TEST_F(windowPlace, StaysAboveAllWhenItIsTopmost)
{
    const windowId top = OpenAt({100, 100, 400, 300}, stylePopup);
    const windowId other = OpenAt({100, 100, 400, 300});
    constexpr uint32_t InPlace = placeKeepSize | placeKeepPosition | placeNoActivate;
    ASSERT_TRUE(System->Place(top, windowOrder::Topmost, {}, InPlace));
    System->Raise(other);
    ASSERT_TRUE(Point(top, 50, 60));
    EXPECT_EQ(PressedAt(other, 50, 60), top);
    ASSERT_TRUE(System->Place(top, windowOrder::NotTopmost, {}, InPlace));
    System->Raise(other);
    ASSERT_TRUE(Point(other, 50, 60));
    EXPECT_EQ(PressedAt(other, 50, 60), other);
}

TEST_F(windowPlace, StaysAboveItsOwnerAsAPopup)
{
    ExpectAboveItsOwner(stylePopup);
}

TEST_F(windowPlace, StaysAboveItsOwnerWithAFrame)
{
    if (!screenKeepsFramesAboveOwners())
        GTEST_SKIP() << "this system keeps only popups above their owners";
    ExpectAboveItsOwner(styleSystemMenu);
}

TEST_F(windowPlace, KnowsTheMonitorThatAWindowIsOn)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    windowArea area;
    ASSERT_TRUE(System->WorkAreaOf(window, area));
    EXPECT_LE(area.Left, 100);
    EXPECT_GE(area.Right, 400);
    Place(window, {-20000, -20000, -19700, -19800});
    EXPECT_TRUE(Until([&] { return !System->WorkAreaOf(window, area); }));
}

}  // namespace
