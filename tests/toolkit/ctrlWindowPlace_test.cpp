#include "tests/toolkit/toolkitTest.h"

using testing::ElementsAre;

namespace {

class ctrlWindowPlaceTest : public toolkitTest
{
protected:
    static std::vector<int32_t> Place(const ctrlWindow* window)
    {
        return {window->X(), window->Y(), static_cast<int32_t>(window->Width()),
                static_cast<int32_t>(window->Height())};
    }
    static std::vector<int32_t> Client(const ctrlWindow* window)
    {
        const windowEdges client = fakeWindowOf(window->Handle())->Client;
        return {client.Left, client.Top, client.Right - client.Left, client.Bottom - client.Top};
    }
};

// --- How windows are made

struct createRow {
    uint32_t Flags;
    bool Owned;
    const char* Call;
};

TEST_F(ctrlWindowPlaceTest, StylesFollowFromTheFlags)
{
    auto* owner = new ctrlWindow(nullptr, 0, 0, 10, 10, 0);
    auto* child = new ctrlWindow(owner, 0, 0, 10, 10, 0);
    const createRow rows[] = {
        {0, false, "style 0x80000000 extended 0x4 owner 0"},
        {ctrlFramed, false, "style 0x80000 extended 0x40004 owner 0"},
        {ctrlTool, false, "style 0x80000000 extended 0x8c owner 0"},
        {ctrlFloating, false, "style 0x80000000 extended 0x4 owner 0"},
        {ctrlFramed | ctrlPerMonitor, false, "style 0x80000 extended 0x40004 owner 0 perMonitor"},
        {ctrlFloating | ctrlFramed, true, "style 0x80000 extended 0x4 owner 1"},
        {ctrlFloating | ctrlTool | ctrlPerMonitor, true, "style 0x80000000 extended 0x8c owner 1 perMonitor"},
    };
    windowId id = 2;
    for (const createRow& row : rows) {
        auto* window = new ctrlWindow(row.Owned ? child : nullptr, 5, 5, 20, 20, row.Flags);
        EXPECT_EQ(fakeCallCount("windowCreate " + std::to_string(id) + " " + row.Call), 1U) << row.Call;
        EXPECT_EQ(window->HasFlag(ctrlFloating), row.Owned);
        ++id;
    }
}

TEST_F(ctrlWindowPlaceTest, AChildHasNoHandleAndNoFlagsOfWindows)
{
    auto* window = new ctrlWindow(nullptr, 0, 0, 100, 100, 0);
    auto* child = new ctrlWindow(window, ctrlPerMonitor | ctrlFramed | ctrlMeasure);
    EXPECT_EQ(child->Handle(), 0U);
    EXPECT_FALSE(child->HasFlag(ctrlPerMonitor | ctrlFramed));
    EXPECT_TRUE(child->HasFlag(ctrlMeasure));
    EXPECT_THAT(Place(child), ElementsAre(0, 0, 10, 10));
    EXPECT_EQ(child->Name(), "Untitled");
    auto* younger = new ctrlWindow(window, 0);
    EXPECT_EQ(window->FirstChild(), younger) << "the newest comes first";
    EXPECT_EQ(younger->NextSibling(), child);
    EXPECT_EQ(child->Root(), window);
}

TEST_F(ctrlWindowPlaceTest, TheClientAreaStandsWhereItWasAskedForWithinAFrame)
{
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed);
    EXPECT_EQ(fakeCallCount("windowPlace 1 92,169,408,358 flags 52"), 1U);
    EXPECT_THAT(Client(window), ElementsAre(100, 200, 300, 150));
    EXPECT_THAT(Place(window), ElementsAre(100, 200, 300, 150));
    EXPECT_FALSE(window->HasState(stateVisible | stateClosing));
    EXPECT_TRUE(window->HasState(stateNeverShown));
    EXPECT_FALSE(Toolkit().Pending.UnderWay);
    EXPECT_EQ(fakeCallCount("windowAskGestures 1"), 1U);
}

TEST_F(ctrlWindowPlaceTest, AFrameThatCameOutSmallerIsGrownByTheDifference)
{
    // The system gives the first try a smaller client area than was asked for.
    fakeOnCall("windowPeek", 1,
               [] { Toolkit().Windows().Send(1, msgSize, sizedRestored, windowPoint(290, 145)); });
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed);
    EXPECT_EQ(fakeCallCount("windowPlace 1 92,169,418,363 flags 22"), 1U);
    EXPECT_EQ(Toolkit().Pending.UnderWay, false);
    static_cast<void>(window);
}

// --- Moves

TEST_F(ctrlWindowPlaceTest, AMoveGivesTheSystemAFrame)
{
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed);
    fakeClearCalls();
    window->Move(10, 50, 200, 100);
    EXPECT_EQ(fakeCallCount("windowPlace 1 2,19,218,158 flags 20"), 1U);
    EXPECT_THAT(Place(window), ElementsAre(10, 50, 200, 100));
    window->Move(10, 50, 200, 100);
    EXPECT_EQ(fakeCallCount("windowPlace"), 1U) << "as it stands";
    window->Move(10, 50, 200, 100, true);
    EXPECT_EQ(fakeCallCount("windowPlace"), 2U) << "by force";
}

TEST_F(ctrlWindowPlaceTest, AFrameIsMeasuredAgainWhenTheMoveChangedTheMonitor)
{
    fakeScreenDPI(144);
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed | ctrlPerMonitor);
    EXPECT_EQ(fakeCallCount("windowPlace 1 88,153,412,362 flags 52"), 1U);
    fakeClearCalls();
    // The DPI is read before the place and behind it.
    fakeOnCall("windowDPI", 2, [window] {
        fakeWindowDPI(window->Handle(), 96);
        windowMessage message;
        Toolkit().Windows().Peek(message);
    });
    window->Move(2000, 200, 300, 150);
    EXPECT_EQ(fakeCallCount("windowPlace 1 1988,153,2312,362 flags 52"), 1U);
    EXPECT_EQ(fakeCallCount("windowPlace 1 1992,169,2308,358 flags 52"), 1U);
    EXPECT_THAT(Client(window), ElementsAre(2000, 200, 300, 150));
}

TEST_F(ctrlWindowPlaceTest, TheSystemCannotCorrectAMoveOfTheToolkits)
{
    auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, 0);
    window->Move(-5000, 10, 300, 150);
    EXPECT_THAT(Client(window), ElementsAre(-5000, 10, 300, 150));
    EXPECT_FALSE(Toolkit().Pending.UnderWay);
}

TEST_F(ctrlWindowPlaceTest, SizesStayInTheirRanges)
{
    auto* window = new ctrlWindow(nullptr, 0, 0, 300, 300, 0);
    auto* child = new ctrlWindow(window, 0, 0, 50, 50, 0);
    for (ctrlWindow* one : {window, child}) {
        one->WidthRange(60, 100);
        one->HeightRange(70, 0);
        EXPECT_EQ(one->Width(), one == window ? 100U : 60U) << "a range takes effect at once";
        EXPECT_EQ(one->Height(), one == window ? 300U : 70U);
        one->Width(10);
        one->Height(10);
        EXPECT_EQ(one->Width(), 60U);
        EXPECT_EQ(one->Height(), 70U);
        one->Move(0, 0, 500, 500);
        EXPECT_EQ(one->Width(), 100U);
        EXPECT_EQ(one->Height(), 500U) << "0 is no limit";
    }
    EXPECT_EQ(fakeWindowOf(window->Handle())->Least.Height, 70);
    EXPECT_EQ(fakeWindowOf(window->Handle())->Most.Width, 100);
}

struct followRow {
    uint32_t Style;
    std::vector<int32_t> Place;
};

TEST_F(ctrlWindowPlaceTest, ChildrenFollowTheEdgesByTheirStyles)
{
    const followRow rows[] = {
        {0, {10, 20, 30, 40}},
        {styleFollowWidth, {10, 20, 80, 40}},
        {styleFollowHeight, {10, 20, 30, 10}},
        {styleFollowX, {60, 20, 30, 40}},
        {styleFollowY, {10, -10, 30, 40}},
        {styleFollowWidth | styleFollowX, {10, 20, 80, 40}},
        {styleFollowHeight | styleFollowY, {10, 20, 30, 10}},
        {styleFollowX | styleFollowY, {60, -10, 30, 40}},
        {styleFollowWidth | styleFollowHeight, {10, 20, 80, 10}},
    };
    auto* window = new ctrlWindow(nullptr, 0, 0, 200, 100, 0);
    for (const followRow& row : rows) {
        window->Move(0, 0, 200, 100);
        auto* child = new ctrlWindow(window, 10, 20, 30, 40, 0);
        child->StyleSet(row.Style);
        window->Move(0, 0, 250, 70);
        EXPECT_EQ(Place(child), row.Place) << row.Style;
        child->Destroy();
    }
}

TEST_F(ctrlWindowPlaceTest, AMinimisedWindowMovesNoChildren)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    auto* child = new ctrlWindow(window, 10, 20, 30, 40, 0);
    child->StyleSet(styleFollowWidth | styleFollowY);
    window->Show();
    fakeUserMinimises(window->Handle());
    Toolkit().PumpPending();
    EXPECT_TRUE(window->HasState(stateMinimised));
    window->Resize(210, 110);
    EXPECT_THAT(Place(child), ElementsAre(10, 20, 30, 40));
    window->Resize(200, 100);
    fakeUserRestores(window->Handle());
    Toolkit().PumpPending();
    EXPECT_FALSE(window->HasState(stateMinimised));
    EXPECT_THAT(Place(child), ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(Place(window), ElementsAre(100, 100, 200, 100));
}

TEST_F(ctrlWindowPlaceTest, AResizeIsNoticed)
{
    auto* window = new ctrlWindow(nullptr, 0, 0, 200, 100, 0);
    auto* child = new ctrlWindow(window, 10, 20, 30, 40, 0);
    std::vector<unsigned> codes;
    child->OnNotify = [&codes](unsigned code) {
        codes.push_back(code);
        return false;
    };
    child->Move(11, 20, 30, 40);
    EXPECT_TRUE(codes.empty());
    child->Move(11, 20, 31, 40);
    EXPECT_THAT(codes, ElementsAre(notifyResized));
}

// --- Frames

struct frameRow {
    uint8_t Set, Clear;
    uint8_t Bits;
    uint32_t Style;
};

TEST_F(ctrlWindowPlaceTest, FrameBitsSwitchTheFramesButtonsAndBorder)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    constexpr frameRow rows[] = {
        {frameClosable, 0, 1, 0x80000},
        {frameMaximise, 0, 3, 0x90000},
        {frameMaximiseToo, frameMaximise, 5, 0x90000},
        {0, frameMaximiseToo, 1, 0x80000},
        {frameMinimise | frameSpare, 0, 25, 0xA0000},
        {frameMinimise, frameMinimise, 25, 0xA0000},  // in both masks: ignored
        {frameMaximise | frameResize, frameMaximise, 57, 0xE0000},
        {0, frameResize | frameMinimise | frameSpare, 1, 0x80000},
    };
    for (const frameRow& row : rows) {
        window->FrameStyle(row.Set, row.Clear);
        EXPECT_EQ(window->Frame(), row.Bits);
        EXPECT_EQ(fakeWindowOf(window->Handle())->Style, row.Style) << unsigned{row.Bits};
    }
}

TEST_F(ctrlWindowPlaceTest, AChangedBorderPlacesTheFrameAgain)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, ctrlFramed);
    fakeClearCalls();
    window->FrameStyle(frameMinimise, 0);
    EXPECT_EQ(fakeCallCount("windowPlace"), 0U);
    window->FrameStyle(frameResize, 0);
    window->FrameStyle(frameResize, 0);
    EXPECT_EQ(fakeCallCount("windowPlace 1"), 1U);
    auto* popup = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    fakeClearCalls();
    popup->FrameStyle(frameResize, 0);
    EXPECT_EQ(fakeCallCount("windowSetStyle"), 0U) << "there is no frame";
}

TEST_F(ctrlWindowPlaceTest, AlwaysOnTopIsAskedOfTheSystem)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    window->StyleSet(styleAlwaysOnTop);
    Toolkit().PumpPending();
    EXPECT_TRUE(fakeWindowOf(window->Handle())->Topmost);
    window->StyleClear(styleAlwaysOnTop);
    Toolkit().PumpPending();
    EXPECT_FALSE(fakeWindowOf(window->Handle())->Topmost);
}

TEST_F(ctrlWindowPlaceTest, StyleBitsOfSubclassesRepaintWhereTheFlagSaysSo)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    auto* plain = new ctrlWindow(window, 0, 0, 10, 10, 0);
    auto* painted = new ctrlWindow(window, 20, 0, 10, 10, ctrlStyleRepaint);
    for (ctrlWindow* one : {plain, painted, window})
        one->Show();
    Drawn();
    plain->StyleSet(128);
    painted->StyleSet(styleFollowX);
    EXPECT_TRUE(Drawn().empty());
    painted->StyleSet(128);
    EXPECT_EQ(Drawn({"fill"}).size(), 1U);
    painted->StyleSet(128);
    EXPECT_TRUE(Drawn().empty());
    painted->StyleClear(128);
    EXPECT_EQ(Drawn({"fill"}).size(), 1U);
}

}  // namespace
