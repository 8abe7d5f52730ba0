// Thousands of random steps on a tree of windows: made, shown, moved, posted to, run modally, destroyed, also
// in the middle of their own handlers.
#pragma once

#include "toolkit/ctrlToolkit.h"
#include "toolkit/ctrlWindow.h"

#include <functional>
#include <random>
#include <set>
#include <utility>
#include <vector>

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
    // `user` plays the person at the screen; `spoil` lets the system fail.
    storm(unsigned seed, std::function<void(storm&)> user, std::function<void()> spoil)
        : Random(seed), User(std::move(user)), Spoil(std::move(spoil))
    {}

    unsigned Below(unsigned most) { return static_cast<unsigned>(Random() % most); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    int32_t Place() { return static_cast<int32_t>(Below(300)) - 50; }

    leaf* Any()
    {
        if (All.empty())
            return nullptr;
        return All[Below(static_cast<unsigned>(All.size()))];
    }

    // What a handler may do in the middle of anything.
    void Disturb()
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

    // What the tree promises at any moment between two messages.
    static void Check();

    // And when nothing waits any more: all that can be seen was drawn.
    static void CheckDrawn();

    // In the order of their making: a seed gives the same storm wherever the heap puts them.
    std::vector<leaf*> All;
    int Depth = 0;
    int Runs = 0;  // modal ones
    std::mt19937 Random;
    static constexpr size_t ControlsMost = 60;

private:
    static void Destroy(leaf* one)
    {
        // A native window that is not shown by a run may go at any time; the first one stays, so that there
        // is an interface thread.
        if (one && one->Handle() != Toolkit().WindowList().front()->Handle())
            one->Destroy();
    }
    void Make();
    void Run();
    void Blow(const ctrlLife& run, unsigned left);
    static void CheckControl(const ctrlWindow* control, std::set<const ctrlWindow*>& seen);
    static bool HasMarks(const ctrlWindow* control);
    static void CheckMarks(const ctrlWindow* window);
    static void CheckCapture(const ctrlWindow* window);

    std::function<void(storm&)> User;
    std::function<void()> Spoil;
};
