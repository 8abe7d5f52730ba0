#include "tests/toolkit/storm/storm.h"

#include "tests/await.h"

#include <gtest/gtest.h>

#include <string>

leaf::leaf(storm& owner, ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
           uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags), Storm(owner)
{
    Storm.All.push_back(this);
    OnNotify = [&owner](unsigned) {
        owner.Disturb();
        return false;
    };
}

leaf::~leaf()
{
    std::erase(Storm.All, this);
}

void leaf::Layout()
{
    Storm.Disturb();
}

void leaf::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const ctrlLife life(this);
    Storm.Disturb();
    if (life)
        ctrlWindow::MouseEvent(event, keys, delta);
}

void leaf::Focused(bool on)
{
    const ctrlLife life(this);
    Storm.Disturb();
    if (life)
        ctrlWindow::Focused(on);
}

void leaf::Moved()
{
    Storm.Disturb();
}

void leaf::StateChanged()
{
    Storm.Disturb();
}

void storm::Make()
{
    if (All.size() >= ControlsMost)
        return;
    leaf* parent = Any();
    if (parent->HasState(stateClosing))
        return;
    constexpr uint32_t flags[] = {0,
                                  0,
                                  0,
                                  ctrlCaptureKeep,
                                  ctrlMeasure,
                                  ctrlFloating,
                                  ctrlFloating | ctrlFramed,
                                  ctrlFloating | ctrlPerMonitor | ctrlFramed};
    const uint32_t chosen = flags[Below(static_cast<unsigned>(std::size(flags)))];
    // The making of a window pumps, and a control may go meanwhile; the first window stays.
    leaf* above = chosen & ctrlFloating ? static_cast<leaf*>(Toolkit().WindowList().front()) : parent;
    auto* made = new leaf(*this, above, Place(), Place(), 5 + Below(100), 5 + Below(100), chosen);
    constexpr uint32_t styles[] = {styleFocusable, styleFollowWidth, styleFollowX | styleFollowY,
                                   styleFollowHeight};
    made->StyleSet(styles[Below(static_cast<unsigned>(std::size(styles)))]);
    made->TabOrder(Below(4));
    made->FrameStyle(frameClosable | frameMaximise | frameResize, 0);
    if (Chance(10))
        made->Transparency(0.5F);
    if (Chance(80))
        made->Show();
}

// Goes on for some steps in the pump of the run that comes.
void storm::Blow(const ctrlLife& run, unsigned left)
{
    Toolkit().Post(
        [this, run, left] {
            if (!run)
                return;
            Step();
            if (!run)
                return;
            if (left > 0)
                Blow(run, left - 1);
            else
                run.Window()->ModalResult(1);
        },
        true);
}

void storm::Run()
{
    if (Runs >= 3)
        return;
    auto* dialog = new leaf(*this, Toolkit().WindowList().front(), Place(), Place(), 100, 80,
                            ctrlFloating | ctrlFramed | (Chance(30) ? uint32_t{ctrlKeep} : 0U));
    const ctrlLife life(dialog);
    ++Runs;
    Blow(life, 5 + Below(20));
    dialog->Modal(true);
    --Runs;
    if (life)
        life.Window()->Destroy();
}

void storm::Step()
{
    leaf* one = Any();
    switch (Below(15)) {
    case 0:
    case 1:
        Make();
        break;
    case 2:
        Destroy(one);
        break;
    case 3:
        one->Show();
        break;
    case 4:
        if (one->Parent())
            one->Hide();
        break;
    case 5:
        one->Move(Place(), Place(), Below(150), Below(150));
        break;
    case 6:
        one->InvalidateTree(Chance(50));
        break;
    case 7:
        Toolkit().Post([this] { Disturb(); }, true);
        break;
    case 8:
        one->Enable(Chance(60));
        break;
    case 9:
        one->Focus();
        break;
    case 10:
        Chance(60) ? one->CaptureTake() : one->CaptureRelease();
        break;
    case 11:
        if (one->Parent())
            one->Parent()->ChildOrder(one, Below(5));
        break;
    case 12:
        one->Caption(std::to_string(Below(1000)));
        break;
    case 13:
        User(*this);
        break;
    default:
        if (Chance(5))
            Run();
        else if (Chance(10))
            Spoil();
        else
            one->TabNext();
        break;
    }
}

void storm::CheckControl(const ctrlWindow* control, std::set<const ctrlWindow*>& seen)
{
    ASSERT_TRUE(seen.insert(control).second) << "twice in the tree";
    if (!control->Handle()) {
        ASSERT_TRUE(control->Root()->Handle());
    }
    for (const ctrlWindow* child = control->FirstChild(); child; child = child->NextSibling()) {
        ASSERT_EQ(child->Parent(), control);
        ASSERT_EQ(child->Handle(), 0U);
        CheckControl(child, seen);
    }
}

// Whether something in it is to be drawn and can be seen.
bool storm::HasMarks(const ctrlWindow* control)
{
    if (!control->HasState(stateVisible) || control->HasState(stateClosing))
        return false;
    if (control->HasState(stateDirty | stateDirtyBelow))
        return true;
    const auto areaOf = [](const ctrlWindow* one, int32_t x, int32_t y) {
        return rect{x, y, x + static_cast<int32_t>(one->Width()), y + static_cast<int32_t>(one->Height())};
    };
    for (const ctrlWindow* child = control->FirstChild(); child; child = child->NextSibling()) {
        if (rectMeet(areaOf(child, child->X(), child->Y()), areaOf(control, 0, 0)) && HasMarks(child))
            return true;
    }
    return false;
}

// What waits to be drawn has been asked for, or will be at once by the thread that marks it.
void storm::CheckMarks(const ctrlWindow* window)
{
    ASSERT_TRUE(await([&] { return window->HasState(statePaintAsked) || !HasMarks(window); }))
        << "nobody asked for its paint";
}

// Who holds the capture lives, and can be seen and used.
void storm::CheckCapture(const ctrlWindow* window)
{
    // This looks into the holder, wherever that is.
    if (!window->CaptureHeldBelow())
        return;
    size_t holders = 0;
    const std::function<void(const ctrlWindow*)> search = [&](const ctrlWindow* control) {
        if (control->CaptureHeld()) {
            ++holders;
            ASSERT_TRUE(control->IsVisible() && control->IsEnabled());
        }
        for (const ctrlWindow* child = control->FirstChild(); child; child = child->NextSibling())
            search(child);
    };
    search(window);
    ASSERT_EQ(holders, 1U);
}

void storm::CheckDrawn()
{
    for (const ctrlWindow* window : Toolkit().WindowList()) {
        if (window->HasState(stateMinimised))
            continue;
        ASSERT_FALSE(HasMarks(window));
    }
}

void storm::Check()
{
    std::set<const ctrlWindow*> seen;
    std::set<windowId> handles;
    for (const ctrlWindow* window : Toolkit().WindowList()) {
        ASSERT_TRUE(handles.insert(window->Handle()).second);
        CheckControl(window, seen);
        CheckMarks(window);
        CheckCapture(window);
    }
    const ctrlWindow* focused = Toolkit().Focused;
    ASSERT_TRUE(!focused || seen.count(focused));
    const windowId captor = Toolkit().Windows().Capture();
    ASSERT_TRUE(!captor || handles.count(captor));
    ASSERT_FALSE(Toolkit().Pending.UnderWay);
}
