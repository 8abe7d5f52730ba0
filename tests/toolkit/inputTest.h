// A window with controls that write down what they are told.
#pragma once

#include "tests/toolkit/toolkitTest.h"

#include <utility>

// Writes down what it is told.
class listener : public ctrlWindow
{
public:
    listener(std::vector<std::string>& told, const char* name, ctrlWindow* parent, int32_t x, int32_t y,
             uint32_t width, uint32_t height, uint32_t flags = 0)
        : ctrlWindow(parent, x, y, width, height, flags), Told(told)
    {
        Caption(name);
    }
    void MouseEvent(MouseEv event, unsigned keys, int delta) override
    {
        constexpr const char* names[] = {"move",       "wheel",   "left",       "leftup",
                                         "leftdouble", "middle",  "middleup",   "middledouble",
                                         "right",      "rightup", "rightdouble"};
        Told.push_back(Name() + " " + names[static_cast<unsigned>(event)] + " " +
                       std::to_string(Toolkit().MouseX) + "," + std::to_string(Toolkit().MouseY) +
                       (keys ? " keys " + std::to_string(keys) : "") +
                       (delta ? " by " + std::to_string(delta) : ""));
        if (Base)
            ctrlWindow::MouseEvent(event, keys, delta);
    }
    void Focused(bool on) override
    {
        ctrlWindow::Focused(on);
        Told.push_back(Name() + (on ? " focus" : " blur"));
    }
    bool KeyEvent(KeyEv event, uint32_t key) override
    {
        constexpr const char* names[] = {"char", "down", "up"};
        Told.push_back(Name() + " " + names[static_cast<unsigned>(event)] + " " + std::to_string(key));
        return Takes || ctrlWindow::KeyEvent(event, key);
    }
    void Activated(bool active) override
    {
        ctrlWindow::Activated(active);
        Told.push_back(Name() + (active ? " active" : " inactive"));
    }
    void GestureBegin() override { Told.push_back(Name() + " begin"); }
    void GestureEnd() override { Told.push_back(Name() + " end"); }
    void GesturePan(bool first, uint32_t id) override
    {
        Told.push_back(Name() + (first ? " first " : " pan ") + std::to_string(id) + " at " +
                       std::to_string(Toolkit().MouseX) + "," + std::to_string(Toolkit().MouseY));
    }

    bool Base = true;
    bool Takes = false;

private:
    std::vector<std::string>& Told;
};

// A window at 100, 100 with a panel of two controls that overlap; the older lies on top.
class inputTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new listener(Told, "main", nullptr, 100, 100, 200, 100);
        Panel = new listener(Told, "panel", Main, 10, 10, 100, 80);
        Upper = new listener(Told, "upper", Panel, 0, 0, 30, 30);
        Lower = new listener(Told, "lower", Panel, 20, 20, 30, 30);
        for (ctrlWindow* one : {Upper, Lower, Panel, Main})
            one->Show();
        Toolkit().Windows().SetFocus(Main->Handle());
        Toolkit().PumpPending();
        Told.clear();
    }

    // What was told while all that waits was handled.
    std::vector<std::string> Heard()
    {
        Toolkit().PumpPending();
        return std::exchange(Told, {});
    }

    std::vector<std::string> Told;
    listener* Main = nullptr;
    listener* Panel = nullptr;
    listener* Upper = nullptr;
    listener* Lower = nullptr;
};
