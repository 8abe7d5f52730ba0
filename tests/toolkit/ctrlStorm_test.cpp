// Thousands of random steps on a tree of windows, and after each the promises that the tree always keeps.
#include "tests/toolkit/toolkitTest.h"

#include <algorithm>
#include <random>
#include <set>

namespace {

constexpr unsigned steps = 10'000;
constexpr size_t controlsMost = 60;

class storm;

class leaf : public ctrlWindow
{
public:
    leaf(storm& owner, ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
         uint32_t flags);
    ~leaf() override;
    void Paint() override
    {
        ctrlWindow::Paint();
        Text(PaintRect, Name().c_str(), textLeft);
        if (PaintRect.Width() % 3 == 0)
            ClipPush(PaintRect);  // left for the base to pop
    }
    void Layout() override;
    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Focused(bool on) override;
    void Moved() override;
    void StateChanged() override;

private:
    storm& Storm;
};

class storm
{
public:
    explicit storm(unsigned seed) : Random(seed) {}

    unsigned Below(unsigned most) { return static_cast<unsigned>(Random() % most); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    int32_t Place() { return static_cast<int32_t>(Below(300)) - 50; }

    leaf* Any()
    {
        if (All.empty())
            return nullptr;
        return *std::next(All.begin(), Below(static_cast<unsigned>(All.size())));
    }

    // What a handler may do in the middle of anything; but the system is not asked to hide what it is just
    // about to show.
    void Disturb(bool hides = true)
    {
        leaf* one = Any();
        if (!one || Depth > 2 || !Chance(4))
            return;
        ++Depth;
        switch (Below(7)) {
        case 0:
            Destroy(one);
            break;
        case 1:
            one->Invalidate(true);
            break;
        case 2:
            one->Move(Place(), Place(), 10 + Below(90), 10 + Below(90));
            break;
        case 3:
            if (hides)
                one->Hide();
            break;
        case 4:
            one->Enable(Chance(70));
            break;
        case 5:
            one->Focus();
            break;
        default:
            one->CaptureTake();
            break;
        }
        --Depth;
    }

    void Step();
    static void Check();

    std::set<leaf*> All;
    int Depth = 0;
    int Runs = 0;  // modal ones
    std::mt19937 Random;

private:
    static void Destroy(leaf* one)
    {
        // A native window that is not shown by a run may go at any time; the first one stays, so that there
        // is an interface thread.
        if (one && one->Handle() != Toolkit().WindowList().front()->Handle())
            one->Destroy();
    }
    void Make();
    void User();
    void Run();
    void Blow(const ctrlLife& run, unsigned left);
    static void CheckControl(const ctrlWindow* control, std::set<const ctrlWindow*>& seen);
};

leaf::leaf(storm& owner, ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
           uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags), Storm(owner)
{
    Storm.All.insert(this);
    OnNotify = [&owner](unsigned) {
        owner.Disturb();
        return false;
    };
}

leaf::~leaf()
{
    Storm.All.erase(this);
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
    Storm.Disturb(false);
}

void storm::Make()
{
    if (All.size() >= controlsMost)
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

void storm::User()
{
    leaf* one = Any();
    const windowId handle = one->Root()->Handle();
    switch (Below(9)) {
    case 0:
        fakeMouseClick(Place() + 50, Place() + 50);
        break;
    case 1:
        fakeMouseMove(Place() + 50, Place() + 50);
        break;
    case 2:
        fakeMouseWheel(120);
        break;
    case 3:
        fakeKeyPress(keyTab);
        break;
    case 4:
        fakeType("a");
        break;
    case 5:
        fakeUserMaximises(handle);
        break;
    case 6:
        fakeUserMinimises(handle);
        break;
    case 7:
        fakeUserRestores(handle);
        break;
    default:
        if (handle != Toolkit().WindowList().front()->Handle())
            fakeUserCloses(handle);
        break;
    }
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
        User();
        break;
    default:
        if (Chance(5))
            Run();
        else if (Chance(10))
            fakeEndGives(drawTargetLost);
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

void storm::Check()
{
    std::set<const ctrlWindow*> seen;
    std::set<windowId> handles;
    for (const ctrlWindow* window : Toolkit().WindowList()) {
        ASSERT_TRUE(handles.insert(window->Handle()).second);
        const auto fake = fakeWindowOf(window->Handle());
        ASSERT_TRUE(fake);
        ASSERT_EQ(fake->Visible, window->HasState(stateVisible));
        CheckControl(window, seen);
    }
    const ctrlWindow* focused = Toolkit().Focused;
    ASSERT_TRUE(!focused || seen.count(focused));
    const windowId captor = Toolkit().Windows().Capture();
    ASSERT_TRUE(!captor || handles.count(captor));
    ASSERT_FALSE(Toolkit().Pending.UnderWay);
}

class ctrlStormTest : public toolkitTest, public testing::WithParamInterface<unsigned>
{
protected:
    storm Storm{GetParam()};
};

TEST_P(ctrlStormTest, TheTreeStandsThroughAnything)
{
    auto* first = new leaf(Storm, nullptr, 20, 40, 400, 300, ctrlFramed);
    first->FrameStyle(frameMaximise | frameMinimise | frameResize, 0);
    first->Show();
    size_t most = 0;
    for (unsigned step = 0; step < steps; ++step) {
        Storm.Step();
        if (Storm.Chance(40))
            Toolkit().PumpPending();
        if (step % 50 == 0)
            fakeClockMove(30'000'000);
        fakeClearCalls();
        fakeClearDraws();
        most = std::max(most, Storm.All.size());
        ASSERT_NO_FATAL_FAILURE(storm::Check()) << step;
    }
    EXPECT_GT(most, 20U) << "there was something to blow at";

    // When all is still, all that can be seen has been drawn.
    for (int i = 0; i < 20; ++i) {
        fakeClockMove(100'000'000);
        Toolkit().PumpPending();
    }
    while (Toolkit().HasWindows())
        delete Toolkit().WindowList().front();
    EXPECT_TRUE(Storm.All.empty());
}

INSTANTIATE_TEST_SUITE_P(Seeds, ctrlStormTest, testing::Range(1U, 4U));

}  // namespace
