// A window for controls, with a user whose mouse counts from the corner of a control.
#pragma once

#include "tests/await.h"
#include "tests/toolkit/toolkitTest.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

class controlTest : public toolkitTest
{
protected:
    static constexpr int32_t MainX = 100;
    static constexpr int32_t MainY = 100;

    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new ctrlWindow(nullptr, MainX, MainY, 400, 300, 0);
        Main->Show();
        Toolkit().Windows().SetFocus(Main->Handle());
        Toolkit().PumpPending();
    }

    // Shows a control at a place of the window, and lets it paint.
    template <class control>
    static control* Placed(control* one, int32_t x, int32_t y, uint32_t width, uint32_t height)
    {
        one->Move(x, y, width, height);
        one->Show();
        Toolkit().PumpPending();
        return one;
    }

    static void MoveTo(const ctrlWindow* control, int32_t x, int32_t y)
    {
        for (const ctrlWindow* at = control; at; at = at->Handle() ? nullptr : at->Parent()) {
            x += at->X();
            y += at->Y();
        }
        fakeMouseMove(x, y);
        Toolkit().PumpPending();
    }
    static void Press()
    {
        fakeMousePress();
        Toolkit().PumpPending();
    }
    static void Release()
    {
        fakeMouseRelease();
        Toolkit().PumpPending();
    }
    static void Click(const ctrlWindow* control, int32_t x, int32_t y)
    {
        MoveTo(control, x, y);
        Press();
        Release();
    }
    static void Wheel(int32_t turn)
    {
        fakeMouseWheel(turn);
        Toolkit().PumpPending();
    }

    // Lets the shared timer tick until it is so, or gives up.
    static bool Tick(const std::function<bool()>& isSo)
    {
        return await([&isSo] {
            Toolkit().Timer.Signal();
            Toolkit().PumpPending();
            return isSo();
        });
    }

    // A handler that counts.
    static std::function<void()> Count(int& count)
    {
        return [&count] { ++count; };
    }

    ctrlWindow* Main = nullptr;
};
