// A window with room for edits, and a user who is quick to write tests with.
#pragma once

#include "tests/toolkit/toolkitTest.h"
#include "toolkit/ctrlEdit.h"

// The window's client area begins at 100, 100 of the screen; edits stand at 10, 10 in it.
class editTest : public toolkitTest
{
protected:
    static constexpr int32_t WindowAt = 100;
    static constexpr int32_t EditAt = 10;

    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new ctrlWindow(nullptr, WindowAt, WindowAt, 400, 200, 0);
        Main->Show();
        Toolkit().Windows().SetFocus(Main->Handle());
        Toolkit().PumpPending();
    }

    // Points are in the edit.
    static void MoveTo(int32_t x, int32_t y = 10)
    {
        fakeMouseMove(WindowAt + EditAt + x, WindowAt + EditAt + y);
        Toolkit().PumpPending();
    }
    static void Click(int32_t x, int32_t y = 10)
    {
        MoveTo(x, y);
        fakeMousePress();
        fakeMouseRelease();
        Toolkit().PumpPending();
    }
    static void Press(uint32_t key, std::string_view characters = {})
    {
        fakeKeyPress(key, characters);
        Toolkit().PumpPending();
    }
    static void Type(std::string_view text)
    {
        fakeType(text);
        Toolkit().PumpPending();
    }
    static void With(uint32_t modifier, uint32_t key, std::string_view characters = {})
    {
        fakeKeyDown(modifier);
        fakeKeyPress(key, characters);
        fakeKeyUp(modifier);
        Toolkit().PumpPending();
    }
    static void Turn(int32_t delta)
    {
        fakeMouseWheel(delta);
        Toolkit().PumpPending();
    }

    // Shows an edit at its place and counts its commits.
    template <class Edit>
    Edit* Placed(Edit* edit)
    {
        edit->Move(EditAt, EditAt, edit->Width(), edit->Height());
        edit->OnChange = [this] { ++Changes; };
        edit->Show();
        Toolkit().PumpPending();
        return edit;
    }

    ctrlWindow* Main = nullptr;
    int Changes = 0;
};
