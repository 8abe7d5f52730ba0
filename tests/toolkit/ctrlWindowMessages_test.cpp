#include "tests/toolkit/toolkitTest.h"

#include <thread>

using testing::ElementsAre;

namespace {

class told : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    void Moved() override { ++Moves; }
    void StateChanged() override { ++States; }
    void Activated(bool active) override
    {
        ctrlWindow::Activated(active);
        ++Activations;
    }
    int Moves = 0;
    int States = 0;
    int Activations = 0;
};

class ctrlWindowMessagesTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Framed = new told(nullptr, 100, 100, 200, 100, ctrlFramed);
        Popup = new told(nullptr, 400, 100, 200, 100, 0);
        for (told* one : {Framed, Popup})
            one->Show();
        Drawn();
        fakeClearCalls();
        for (told* one : {Framed, Popup})
            one->Moves = one->States = one->Activations = 0;
    }

    static int64_t Send(const ctrlWindow* window, uint32_t number, uint64_t first = 0, int64_t second = 0)
    {
        return Toolkit().Windows().Send(window->Handle(), number, first, second);
    }

    // How often messages of this number were left to the system since it was last asked.
    static size_t Defaults(uint32_t number)
    {
        size_t count = 0;
        for (const std::string& call : fakeCalls())
            count += call.starts_with("windowDefault ") && call.ends_with(" " + std::to_string(number));
        fakeClearCalls();
        return count;
    }

    told* Framed = nullptr;
    told* Popup = nullptr;
};

struct answerRow {
    uint32_t Number;
    int64_t Framed;
    bool FramedDefault;
    int64_t Popup;
    bool PopupDefault;
};

// The fake system answers 0 to all of these.
TEST_F(ctrlWindowMessagesTest, EachHasItsAnswerAndIsLeftToTheSystemOrNot)
{
    constexpr answerRow rows[] = {
        {msgEnable, 0, false, 0, false},
        {msgChildActivate, 0, false, 0, false},
        {msgStyleChanging, 0, false, 0, false},
        {msgStyleChanged, 0, false, 0, false},
        {msgSyncPaint, 0, false, 0, false},
        {msgEnterSizeMove, 0, false, 0, false},
        {msgExitSizeMove, 0, false, 0, false},
        {msgDPIChanged, 0, false, 0, false},
        {msgPaint, 0, false, 0, false},
        {msgPaintIcon, 1, false, 1, false},
        {msgEraseBackground, 1, false, 1, false},
        {msgSetCursor, 1, false, 1, false},
        {msgMouseActivate, 1, false, 1, false},
        {msgMoving, 1, false, 1, false},
        {msgSetFocus, 0, false, 0, false},
        {msgKillFocus, 0, false, 0, false},
        {msgCancelMode, 0, false, 0, false},
        {msgCaptureChanged, 0, false, 0, false},
        {msgFrameSize, 0, true, 0, false},
        {msgFramePaint, 0, true, 0, false},
        {msgFrameLeftDown, 0, true, 0, false},
        {msgFrameHit, 0, true, hitClient, false},
        {msgFrameMove, 0, true, 0, false},
        {msgKeyUp, 0, true, 0, true},
        {msgChar, 0, true, 0, true},
        {msgSysCommand, 0, true, 0, true},
        {msgActivate, 0, true, 0, true},
        {msgPosChanged, 0, true, 0, true},
        {0x7FFF, 0, true, 0, true},
        {msgMouseMove, 0, false, 0, false},
        {msgLeftDown, 0, false, 0, false},
        {msgMouseWheel, 0, false, 0, false},
    };
    for (const answerRow& row : rows) {
        Defaults(row.Number);
        EXPECT_EQ(Send(Framed, row.Number), row.Framed) << row.Number;
        EXPECT_EQ(Defaults(row.Number), row.FramedDefault ? 1U : 0U) << row.Number;
        EXPECT_EQ(Send(Popup, row.Number), row.Popup) << row.Number;
        EXPECT_EQ(Defaults(row.Number), row.PopupDefault ? 1U : 0U) << row.Number;
    }
}

TEST_F(ctrlWindowMessagesTest, AMoveIsStoredAsSignedNumbersAndTold)
{
    EXPECT_EQ(Send(Framed, msgMove, 0, windowPoint(-5, -300)), 0);
    EXPECT_EQ(Framed->X(), -5);
    EXPECT_EQ(Framed->Y(), -300);
    EXPECT_EQ(Framed->Moves, 1);
    EXPECT_EQ(Defaults(msgMove), 1U);
}

TEST_F(ctrlWindowMessagesTest, ASizeIsTakenByItsKind)
{
    Send(Framed, msgSize, sizedRestored, windowPoint(300, 150));
    EXPECT_EQ(Framed->Width(), 300U);
    EXPECT_EQ(Framed->Height(), 150U);
    EXPECT_EQ(Framed->States, 1);
    EXPECT_TRUE(Framed->HasState(stateLayout));

    Send(Framed, msgSize, sizedMinimised, windowPoint(0, 0));
    EXPECT_TRUE(Framed->HasState(stateMinimised));
    EXPECT_EQ(Framed->Width(), 300U) << "a minimised window keeps its size";
    EXPECT_EQ(Framed->States, 2);

    Send(Framed, msgSize, sizedMaximised, windowPoint(1000, 900));
    EXPECT_TRUE(Framed->HasState(stateMaximised));
    EXPECT_FALSE(Framed->HasState(stateMinimised));
    EXPECT_EQ(Framed->Width(), 1000U);
    EXPECT_EQ(Framed->States, 3);

    Send(Framed, msgSize, sizedRestored, windowPoint(300, 150));
    EXPECT_FALSE(Framed->HasState(stateMaximised | stateMinimised));
    EXPECT_EQ(Framed->States, 4);

    for (const unsigned other : {3U, 4U, 99U})
        Send(Framed, msgSize, other, windowPoint(1, 1));
    EXPECT_EQ(Framed->Width(), 300U);
    EXPECT_EQ(Framed->States, 4);
    EXPECT_EQ(Defaults(msgSize), 0U);
}

TEST_F(ctrlWindowMessagesTest, AnActivationIsToldWhenItIsAChange)
{
    const bool active = Framed->IsActive();
    Send(Framed, msgActivate, active ? 0 : 1);
    Send(Framed, msgActivate, active ? 0x10000 : 2);
    EXPECT_EQ(Framed->Activations, 1);
    EXPECT_EQ(Framed->IsActive(), !active);
    EXPECT_EQ(Defaults(msgActivate), 2U);
}

TEST_F(ctrlWindowMessagesTest, ShowingAndHidingAreTold)
{
    Send(Framed, msgShowWindow, 0);
    EXPECT_FALSE(Framed->HasState(stateVisible));
    Send(Framed, msgShowWindow, 1);
    EXPECT_TRUE(Framed->HasState(stateVisible));
    EXPECT_EQ(Framed->States, 2);
    EXPECT_EQ(Defaults(msgShowWindow), 2U);
}

TEST_F(ctrlWindowMessagesTest, AKeyThatIsUsedIsNotLeftToTheSystem)
{
    EXPECT_EQ(Send(Framed, msgKeyDown, keyTab), 0);
    EXPECT_EQ(Defaults(msgKeyDown), 0U);
    Send(Framed, msgKeyDown, 'A');
    EXPECT_EQ(Defaults(msgKeyDown), 1U);
}

TEST_F(ctrlWindowMessagesTest, TheLargestSizeIsLimitedWhereOneIsSet)
{
    windowSizeLimits limits{};
    limits.MaximisedSize = {1936, 1056};
    Send(Framed, msgSizeLimits, 0, reinterpret_cast<intptr_t>(&limits));
    EXPECT_EQ(limits.MaximisedSize.Width, 1936);
    Framed->WidthRange(0, 500);
    Send(Framed, msgSizeLimits, 0, reinterpret_cast<intptr_t>(&limits));
    EXPECT_EQ(limits.MaximisedSize.Width, 516) << "of the client area, with the frame";
    EXPECT_EQ(limits.MaximisedSize.Height, 1056);
    Framed->HeightRange(0, 400);
    limits.MaximisedSize = {300, 300};
    Send(Framed, msgSizeLimits, 0, reinterpret_cast<intptr_t>(&limits));
    EXPECT_EQ(limits.MaximisedSize.Width, 300);
    EXPECT_EQ(limits.MaximisedSize.Height, 300);
    EXPECT_EQ(Defaults(msgSizeLimits), 0U);
}

TEST_F(ctrlWindowMessagesTest, AFrameThatTheToolkitAsksForIsNotCorrected)
{
    windowPlacing placing{};
    placing.X = 1;
    placing.Width = 2;
    Send(Framed, msgPosChanging, 0, reinterpret_cast<intptr_t>(&placing));
    EXPECT_EQ(placing.X, 1);
    EXPECT_EQ(placing.Width, 2);

    Toolkit().Pending = {{10, 20, 110, 220}, true};
    Send(Framed, msgPosChanging, 0, reinterpret_cast<intptr_t>(&placing));
    EXPECT_EQ(placing.X, 10);
    EXPECT_EQ(placing.Y, 20);
    EXPECT_EQ(placing.Width, 100);
    EXPECT_EQ(placing.Height, 200);

    windowPlacing kept{};
    kept.Flags = placeKeepPosition | placeKeepSize;
    Send(Framed, msgPosChanging, 0, reinterpret_cast<intptr_t>(&kept));
    EXPECT_EQ(kept.X, 0);
    EXPECT_EQ(kept.Width, 0);
    Toolkit().Pending.UnderWay = false;
    EXPECT_EQ(Defaults(msgPosChanging), 3U);
}

TEST_F(ctrlWindowMessagesTest, OnAnotherMonitorTheWindowKeepsItsSize)
{
    windowExtent extent{1, 1};
    EXPECT_EQ(Send(Framed, msgScaledSize, 144, reinterpret_cast<intptr_t>(&extent)), 1);
    EXPECT_EQ(extent.Width, 200);
    EXPECT_EQ(extent.Height, 100);
    EXPECT_TRUE(Framed->HasState(stateLayout));
    Toolkit().Pending = {{10, 20, 110, 220}, true};
    Send(Framed, msgScaledSize, 144, reinterpret_cast<intptr_t>(&extent));
    EXPECT_EQ(extent.Width, 100);
    EXPECT_EQ(extent.Height, 200);
    Toolkit().Pending.UnderWay = false;
}

// --- Dragged frames: the frame is 16 wider and 39 higher than the client area of 100 to 300 by 50 to 150.

struct sizingRow {
    uint64_t Edge;
    windowEdges Dragged;
    windowEdges Kept;
};

TEST_F(ctrlWindowMessagesTest, ADraggedEdgeStopsAtTheLimits)
{
    Framed->WidthRange(100, 300);
    Framed->HeightRange(50, 150);
    constexpr windowEdges small{500, 500, 510, 510};
    constexpr windowEdges large{100, 100, 900, 900};
    // 116 by 89 at least, 316 by 189 at most.
    constexpr sizingRow rows[] = {
        {edgeLeft, small, {394, 500, 510, 589}},         {edgeTopLeft, small, {394, 421, 510, 510}},
        {edgeBottomLeft, small, {394, 500, 510, 589}},   {edgeTop, small, {500, 421, 616, 510}},
        {edgeTopRight, small, {500, 421, 616, 510}},     {edgeRight, small, {500, 500, 616, 589}},
        {edgeBottom, small, {500, 500, 616, 589}},       {edgeBottomRight, small, {500, 500, 616, 589}},
        {edgeTopLeft, large, {584, 711, 900, 900}},      {edgeBottomRight, large, {100, 100, 416, 289}},
        {edgeRight, {0, 0, 200, 150}, {0, 0, 200, 150}},
    };
    for (const sizingRow& row : rows) {
        windowEdges edges = row.Dragged;
        Send(Framed, msgSizing, row.Edge, reinterpret_cast<intptr_t>(&edges));
        EXPECT_THAT((std::vector<int32_t>{edges.Left, edges.Top, edges.Right, edges.Bottom}),
                    ElementsAre(row.Kept.Left, row.Kept.Top, row.Kept.Right, row.Kept.Bottom))
            << row.Edge;
    }
    EXPECT_EQ(Defaults(msgSizing), std::size(rows));
}

TEST_F(ctrlWindowMessagesTest, TheUserDragsAFrame)
{
    Framed->FrameStyle(frameResize, 0);
    Framed->WidthRange(100, 300);
    const windowEdges before = fakeWindowOf(Framed->Handle())->Frame;
    fakeUserResizes(Framed->Handle(), edgeLeft, 1000, 200);
    Toolkit().PumpPending();
    EXPECT_EQ(Framed->Width(), 300U);
    EXPECT_EQ(Framed->Height(), 161U);
    EXPECT_EQ(fakeWindowOf(Framed->Handle())->Frame.Right, before.Right);
    fakeUserMoves(Framed->Handle(), 50, 60);
    Toolkit().PumpPending();
    EXPECT_EQ(Framed->X(), 58);
    EXPECT_EQ(Framed->Y(), 91);
}

TEST_F(ctrlWindowMessagesTest, AMessageForAWindowThatNobodyOwnsIsTheSystems)
{
    uint32_t error = 0;
    const windowId bare = Toolkit().Windows().Create({}, error);
    fakeClearCalls();
    Toolkit().Windows().Send(bare, msgSetCursor, 0, 0);
    EXPECT_EQ(Defaults(msgSetCursor), 1U);
    Toolkit().Windows().Destroy(bare);
}

TEST_F(ctrlWindowMessagesTest, AnEnableByTheToolkitComesLater)
{
    auto* child = new told(Framed, 0, 0, 10, 10, 0);
    child->Show();
    Drawn();
    Framed->Enable(false);
    EXPECT_TRUE(fakeWindowOf(Framed->Handle())->Enabled);
    EXPECT_FALSE(child->IsEnabled());
    EXPECT_EQ(Drawn({"fill"}).size(), 2U) << "all of it is drawn again";
    EXPECT_FALSE(fakeWindowOf(Framed->Handle())->Enabled);
    Framed->Enable(false);
    EXPECT_EQ(fakeCallCount("windowEnable"), 1U);
}

}  // namespace
