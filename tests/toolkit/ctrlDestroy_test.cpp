#include "tests/toolkit/toolkitTest.h"

#include <array>
#include <regex>
#include <utility>

namespace {

// Calls back in each override that the toolkit may be in the middle of.
class touchy : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    ~touchy() override
    {
        if (OnEnd)
            OnEnd();
    }
    void Layout() override { Call(OnLayout); }
    void Moved() override { Call(OnMoved); }
    void StateChanged() override { Call(OnState); }
    void Paint() override
    {
        ctrlWindow::Paint();
        Call(OnPaint);
    }
    void Focused(bool on) override
    {
        const ctrlLife life(this);
        ctrlWindow::Focused(on);
        if (life)
            Call(OnFocused);
    }
    bool KeyEvent(KeyEv event, uint32_t key) override
    {
        const ctrlLife life(this);
        Call(OnKey);
        return life ? ctrlWindow::KeyEvent(event, key) : true;
    }
    void MouseEvent(MouseEv event, unsigned keys, int delta) override
    {
        const ctrlLife life(this);
        Call(OnMouse);
        if (life)
            ctrlWindow::MouseEvent(event, keys, delta);
    }
    void Activated(bool active) override
    {
        ctrlWindow::Activated(active);
        Call(OnActivated);
    }
    void GestureBegin() override { Call(OnGesture); }
    void GesturePan(bool, uint32_t) override { Call(OnGesture); }
    void GestureEnd() override { Call(OnGesture); }

    std::function<void()> OnLayout, OnMoved, OnState, OnPaint, OnFocused, OnKey, OnMouse, OnActivated,
        OnGesture, OnEnd;

private:
    // By a copy, for the call may delete this control.
    static void Call(const std::function<void()>& closure)
    {
        const std::function<void()> copy = closure;
        if (copy)
            copy();
    }
};

class ctrlDestroyTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new touchy(nullptr, 100, 100, 200, 100, ctrlFramed);
        Child = new touchy(Main, 0, 0, 50, 50, 0);
        Sibling = new touchy(Main, 100, 0, 50, 50, 0);
        for (touchy* one : {Child, Sibling}) {
            one->StyleSet(styleFocusable);
            one->Show();
        }
        Main->Show();
        Drawn();
    }

    std::array<touchy*, 3> All() const { return {Main, Child, Sibling}; }

    touchy* Main = nullptr;
    touchy* Child = nullptr;
    touchy* Sibling = nullptr;
};

TEST_F(ctrlDestroyTest, ANativeWindowGoesByThePumpAndAChildAtOnce)
{
    const ctrlLife main(Main);
    const ctrlLife child(Child);
    Child->Destroy();
    EXPECT_FALSE(child);
    Main->Destroy();
    EXPECT_TRUE(main);
    EXPECT_TRUE(Main->HasState(stateClosing));
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
}

TEST_F(ctrlDestroyTest, TheSecondCallIsNothing)
{
    fakeClearCalls();
    Main->Destroy();
    Main->Destroy();
    EXPECT_EQ(fakeCallCount("windowPost 1 16"), 1U);
}

TEST_F(ctrlDestroyTest, AFullQueueIsPumpedUntilThePostGoesThrough)
{
    bool ran = false;
    Toolkit().Post([&ran] { ran = true; }, true);
    fakeFail("windowPost", {.Times = 2});
    Main->Destroy();
    EXPECT_TRUE(ran);
    EXPECT_EQ(fakeCallCount("windowPost 1 16"), 3U);
    Toolkit().PumpPending();
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(ctrlDestroyTest, TheParentTakesItsTreeAndItsOwnedWindowsAlong)
{
    auto* owned = new touchy(Main, 300, 300, 50, 50, ctrlFloating);
    auto* deeper = new touchy(owned, 300, 300, 50, 50, ctrlFloating);
    auto* ofChild = new touchy(Child, 300, 300, 50, 50, ctrlFloating);
    int ended = 0;
    for (touchy* one : {Main, Child, Sibling, owned, deeper, ofChild})
        one->OnEnd = [&ended] { ++ended; };
    Main->Destroy();
    Toolkit().PumpPending();
    EXPECT_EQ(ended, 6);
}

TEST_F(ctrlDestroyTest, WithoutASystemAnOwnerStillTakesItsWindowsAlong)
{
    constexpr unsigned forLong = 1000;
    fakeFail("windowPeek", {.Times = forLong});
    for (const bool postFailsToo : {false, true}) {
        if (postFailsToo)
            fakeFail("windowPost", {.Times = forLong});
        auto* owner = new touchy(nullptr, 300, 300, 50, 50, 0);
        auto* owned = new touchy(owner, 300, 300, 50, 50, ctrlFloating);
        new touchy(owned, 300, 300, 50, 50, ctrlFloating);
        new touchy(owner, 300, 300, 50, 50, ctrlFloating);
        delete owner;
        EXPECT_EQ(Toolkit().WindowList().size(), 1U);
        EXPECT_FALSE(Toolkit().PumpPending()) << "it did not ask until the system came back";
    }
}

TEST_F(ctrlDestroyTest, TheUserClosesAFrameThatAllowsIt)
{
    const ctrlLife main(Main);
    fakeUserCloses(Main->Handle());
    Toolkit().PumpPending();
    EXPECT_TRUE(main);
    Main->FrameStyle(frameClosable, 0);
    fakeUserCloses(Main->Handle());
    Toolkit().PumpPending();
    EXPECT_FALSE(main);
}

TEST_F(ctrlDestroyTest, AKeptWindowIsHiddenByClosing)
{
    auto* kept = new ctrlWindow(nullptr, 0, 0, 50, 50, ctrlFramed | ctrlKeep);
    kept->FrameStyle(frameClosable, 0);
    kept->Show();
    const ctrlLife life(kept);
    fakeUserCloses(kept->Handle());
    Toolkit().PumpPending();
    EXPECT_TRUE(life);
    EXPECT_FALSE(kept->HasState(stateVisible));
}

// --- In a handler

struct moment {
    const char* Name;
    std::function<void()> touchy::*Handler;
    void (*Raise)(touchy& control);
};

const moment moments[] = {
    {"Layout", &touchy::OnLayout, [](touchy& control) { control.InvalidateLayout(); }},
    {"Moved", &touchy::OnMoved,
     [](touchy& control) {
         control.Move(control.X() + 1, control.Y(), control.Width() + 1, control.Height());
     }},
    {"StateChanged", &touchy::OnState,
     [](touchy& control) {
         const ctrlLife life(&control);
         control.Hide();
         if (life)
             control.Show();
     }},
    {"Paint", &touchy::OnPaint, [](touchy& control) { control.Invalidate(true); }},
    {"Focused", &touchy::OnFocused,
     [](touchy& control) {
         const ctrlLife life(&control);
         control.Focus();
         if (life)
             fakeUserLeaves();
     }},
    {"Key", &touchy::OnKey,
     [](touchy& control) {
         control.Focus();
         fakeKeyPress('A', "a");
     }},
    {"Mouse", &touchy::OnMouse,
     [](touchy& control) {
         int32_t x = 5, y = static_cast<int32_t>(control.Height()) - 5;
         windowArea area;
         control.ScreenPoint(x, y, area);
         fakeMouseClick(x, y);
         fakeMouseWheel(120);
     }},
    {"Gesture", &touchy::OnGesture,
     [](touchy& control) {
         int32_t x = 5, y = static_cast<int32_t>(control.Height()) - 5;
         windowArea area;
         control.ScreenPoint(x, y, area);
         for (const auto kind : {windowGestureKind::Begin, windowGestureKind::Pan, windowGestureKind::End})
             fakeGesture({.Kind = kind, .X = x, .Y = y});
     }},
};

const std::pair<const char*, unsigned> notices[] = {
    {"painted", notifyPainted}, {"clicked", notifyClick}, {"resized", notifyResized}, {"tab", notifyTab}};

class ctrlDestroyInTest : public ctrlDestroyTest
{
protected:
    // `raise` gets a closure that destroys the victim, and brings about that it is called.
    template <typename begin>
    static void Try(touchy& victim, const begin& raise)
    {
        const ctrlLife life(&victim);
        raise([life] {
            if (life)
                life.Window()->Destroy();
        });
        Toolkit().PumpPending();
        fakeClockMove(50'000'000);
        Toolkit().PumpPending();
        EXPECT_FALSE(life);
    }

    void Again()
    {
        while (Toolkit().HasWindows())
            delete Toolkit().WindowList().front();
        TearDown();
        SetUp();
    }
};

TEST_F(ctrlDestroyInTest, EachHandlerOfEachControlAnyOfThemMayBeDestroyed)
{
    for (const moment& one : moments) {
        for (size_t control = 0; control < 3; ++control) {
            for (size_t victim = 0; victim < 3; ++victim) {
                SCOPED_TRACE(one.Name);
                touchy& touched = *All()[control];
                Try(*All()[victim], [&](std::function<void()> destroy) {
                    touched.*one.Handler = std::move(destroy);
                    one.Raise(touched);
                });
                Again();
            }
        }
    }
}

TEST_F(ctrlDestroyInTest, EachNoticeOfEachControlAnyOfThemMayBeDestroyed)
{
    for (const auto& [name, code] : notices) {
        for (size_t control = 0; control < 3; ++control) {
            for (size_t victim = 0; victim < 3; ++victim) {
                SCOPED_TRACE(name);
                touchy& touched = *All()[control];
                Try(*All()[victim], [&, awaited = code](std::function<void()> destroy) {
                    touched.OnNotify = [destroy = std::move(destroy), awaited](unsigned given) {
                        if (given == awaited)
                            destroy();
                        return false;
                    };
                    const ctrlLife life(&touched);
                    touched.Invalidate(true);
                    touched.Focus();
                    Toolkit().PumpPending();
                    if (life)
                        fakeKeyPress(keyTab);
                    if (life)
                        touched.Move(touched.X(), touched.Y(), touched.Width() + 1, touched.Height());
                    Toolkit().PumpPending();
                    int32_t x = 5, y = &touched == Main ? 80 : 5;
                    windowArea area;
                    if (life && touched.ScreenPoint(x, y, area))
                        fakeMouseClick(x, y);
                });
                Again();
            }
        }
    }
}

TEST_F(ctrlDestroyInTest, WhenTheWindowLosesTheUserAnyControlMayBeDestroyed)
{
    for (size_t victim = 0; victim < 3; ++victim) {
        Try(*All()[victim], [this](std::function<void()> destroy) {
            ASSERT_TRUE(Main->IsActive());
            Main->OnActivated = std::move(destroy);
            fakeUserLeaves();
        });
        Again();
    }
}

TEST_F(ctrlDestroyTest, AHandlerMayReplaceItself)
{
    int calls = 0;
    Child->OnNotify = [&](unsigned) {
        Child->OnNotify = nullptr;
        ++calls;
        return true;
    };
    EXPECT_TRUE(Child->Notify(100));
    EXPECT_FALSE(Child->Notify(100));
    EXPECT_EQ(calls, 1);
}

TEST_F(ctrlDestroyTest, AChildMayGoInItsDoubleClick)
{
    const ctrlLife life(Child);
    Child->OnDoubleClick = [this] { Child->Destroy(); };
    fakeMouseMove(Main->X() + 5, Main->Y() + 5);
    fakeMouseDouble();
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
}

// --- In a message or a pump

TEST_F(ctrlDestroyTest, AWindowClosedInItsOwnMessageGoesBehindIt)
{
    const ctrlLife life(Main);
    Main->OnMoved = [&] {
        Main->OnMoved = nullptr;
        Toolkit().Windows().Send(Main->Handle(), msgClose, 0, 0);
        EXPECT_TRUE(life);
        Toolkit().Windows().Send(Main->Handle(), msgClose, 0, 0);
    };
    Main->Move(10, 10, 200, 100);
    EXPECT_FALSE(life);
}

TEST_F(ctrlDestroyTest, AMessageWithinAMessageDoesNotFreeItForDeletion)
{
    const ctrlLife life(Main);
    Main->OnMoved = [&] {
        Main->OnMoved = nullptr;
        Main->Destroy();
        Toolkit().Windows().Send(Main->Handle(), msgSetCursor, 0, 0);
        Toolkit().PumpPending();
        EXPECT_TRUE(life);
    };
    Toolkit().Windows().Send(Main->Handle(), msgMove, 0, windowPoint(50, 50));
    EXPECT_FALSE(life);
}

TEST_F(ctrlDestroyTest, AnOwnerDoesNotGoWhileAWindowThatItOwnsIsGoing)
{
    auto* owned = new touchy(Main, 300, 300, 50, 50, ctrlFloating);
    auto* deeper = new touchy(owned, 300, 300, 50, 50, ctrlFloating);
    std::string order;
    Main->OnEnd = [&order] { order += "main "; };
    owned->OnEnd = [&order] { order += "owned "; };
    deeper->OnEnd = [&order] { order += "deeper "; };
    owned->Destroy();
    Main->Destroy();  // comes in the pump of the end of `owned`
    Toolkit().PumpPending();
    Toolkit().PumpPending();
    EXPECT_EQ(order, "owned deeper main ");
}

TEST_F(ctrlDestroyTest, AWindowDoesNotGoWhileAControlInItIsGoing)
{
    auto* owned = new touchy(Child, 300, 300, 50, 50, ctrlFloating);
    std::string order;
    Main->OnEnd = [&order] { order += "main "; };
    Child->OnEnd = [&order] { order += "child "; };
    owned->OnEnd = [&order] { order += "owned "; };
    Main->Destroy();
    Toolkit().Post([this] { Child->Destroy(); }, true);
    Toolkit().Windows().Post(Main->Handle(), msgClose, 0, 0);
    Toolkit().PumpPending();
    EXPECT_EQ(order, "main child owned ");
}

TEST_F(ctrlDestroyTest, AControlThatIsGoingHoldsItsWindow)
{
    auto* owned = new touchy(Child, 300, 300, 50, 50, ctrlFloating);
    std::string order;
    Main->OnEnd = [&order] { order += "main "; };
    Child->OnEnd = [&order] { order += "child "; };
    owned->OnEnd = [&order] { order += "owned "; };
    Toolkit().Post([this] { Child->Destroy(); }, true);
    Main->Destroy();  // comes in the pump of the end of the child
    Toolkit().PumpPending();
    EXPECT_EQ(order, "child owned main ");
}

TEST_F(ctrlDestroyTest, AnOwnerDoesNotGoWhileAWindowIsMadeForIt)
{
    const ctrlLife life(Main);
    Main->Destroy();
    fakeClearCalls();
    auto* owned = new touchy(Main, 300, 300, 50, 50, ctrlFloating);
    EXPECT_TRUE(life);
    bool ended = false;
    owned->OnEnd = [&ended] { ended = true; };
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
    EXPECT_TRUE(ended);
}

TEST_F(ctrlDestroyTest, NobodyRemembersAControlThatWent)
{
    Child->Focus();
    Child->CaptureTake();
    fakeGesture({.Kind = windowGestureKind::Begin, .X = Main->X() + 5, .Y = Main->Y() + 5});
    Toolkit().PumpPending();
    EXPECT_EQ(Toolkit().Focused, Child);
    EXPECT_TRUE(Child->CaptureHeld());
    Child->Destroy();
    EXPECT_EQ(Toolkit().Focused, nullptr);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
    for (const auto kind : {windowGestureKind::Pan, windowGestureKind::End})
        fakeGesture({.Kind = kind, .X = Main->X() + 5, .Y = Main->Y() + 5});
    fakeKeyPress('A', "a");
    fakeMouseMove(Main->X() + 7, Main->Y() + 7);
    Toolkit().PumpPending();
    EXPECT_EQ(fakeGesturesOpen(), 0U);
}

// Its owned windows go by the pump, and what is heard there may turn to the window itself.
TEST_F(ctrlDestroyTest, AWindowThatGetsTheFocusWhileItGoesIsNotRemembered)
{
    auto* owned = new touchy(Main, 300, 300, 50, 50, ctrlFloating);
    owned->Show();
    owned->Focus();
    unsigned turns = 0;
    owned->OnEnd = [this, &turns] {
        fakeMouseMove(Main->X() + 60, Main->Y() + 5);
        Toolkit().Windows().SetFocus(Main->Handle());
        EXPECT_EQ(Toolkit().Focused, Main);
        Main->CaptureTake();
        Toolkit().PumpPending();
        ++turns;
    };
    delete Main;
    EXPECT_EQ(turns, 1U);
    EXPECT_EQ(Toolkit().Focused, nullptr);
    EXPECT_EQ(Toolkit().LastMove.Window, nullptr);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
}

// As a list that has dropped down does, whose choice ends the control that it belongs to.
TEST_F(ctrlDestroyTest, AControlMayGoInAMessageOfAWindowThatItOwns)
{
    auto* owned = new touchy(Child, 300, 300, 50, 50, ctrlFloating);
    owned->Show();
    Drawn();
    const ctrlLife child(Child);
    const ctrlLife popup(owned);
    owned->OnMouse = [this, &child] {
        Child->Destroy();
        EXPECT_TRUE(child) << "until the message is over";
    };
    fakeMouseMove(Main->X() + 310, Main->Y() + 310);
    fakeMouseMove(owned->X() + 5, owned->Y() + 5);
    Toolkit().PumpPending();
    EXPECT_FALSE(child);
    EXPECT_FALSE(popup);
}

// A control that waits for its own windows to go is in its parent's list while others are painted.
TEST_F(ctrlDestroyTest, TheWindowIsPaintedOnceWhileAControlInItGoes)
{
    auto* owned = new touchy(Child, 300, 300, 50, 50, ctrlFloating);
    owned->Show();
    Drawn();
    unsigned paints = 0;
    Main->OnPaint = [&paints] { ASSERT_LT(++paints, 10U); };
    Main->Invalidate(true);
    Child->Destroy();
    Toolkit().PumpPending();
    EXPECT_GT(paints, 0U);
}

TEST_F(ctrlDestroyTest, AWindowThatTheSystemRefusesLivesWithoutAHandle)
{
    fakeFail("windowCreate");
    auto* window = new ctrlWindow(nullptr, 1, 2, 30, 40, ctrlFramed);
    EXPECT_EQ(window->Handle(), 0U);
    EXPECT_EQ(window->Width(), 30U);
    const std::string told = fakeDebugText();
    const std::regex text("ctrlWindow::ctrlWindow - Cannot create window in call from "
                          "[0-9A-F]{16}! - Error 1158 \\(00000486\\)\r\n");
    EXPECT_TRUE(std::regex_match(told, text)) << told;
    auto* inner = new ctrlWindow(window, 0, 0, 5, 5, 0);
    inner->Show();
    window->Show();
    window->Caption("A");
    window->Focus();
    window->CaptureTake();
    window->Move(5, 5, 50, 50);
    window->Centre();
    window->Enable(false);
    window->Hide();
    Toolkit().PumpPending();
    window->Destroy();
    Toolkit().PumpPending();
}

}  // namespace
