// A form that asks, and a user who answers while the box is open.
#pragma once

#include "forms/uiMessage.h"

#include "tests/toolkit/toolkitTest.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

class messageTest : public toolkitTest
{
protected:
    using Buttons = uiMessage::Buttons;
    static constexpr windowArea Work{0, 0, 1920, 1040};

    void SetUp() override
    {
        toolkitTest::SetUp();
        uiMessage::LabelFile({});
        Main = new ctrlForm(nullptr, 100, 100, 400, 300, 0);
        Main->Show();
        Toolkit().PumpPending();
    }

    // The box that was opened last. It is laid out by the time its run first waits.
    static ctrlWindow* Box() { return Toolkit().WindowList().back(); }

    // Its buttons, in the order of the row.
    static std::vector<ctrlWindow*> Row()
    {
        std::vector<ctrlWindow*> row;
        for (ctrlWindow* child = Box()->FirstChild(); child; child = child->NextSibling())
            row.push_back(child);
        std::reverse(row.begin(), row.end());
        return row;
    }

    static std::vector<std::string> Labels()
    {
        std::vector<std::string> labels;
        for (const ctrlWindow* button : Row())
            labels.push_back(button->Name());
        return labels;
    }

    // The frame and all buttons can be seen and pressed.
    static void ExpectWithin(const windowArea& work)
    {
        const windowEdges frame = fakeWindowOf(Box()->Handle())->Frame;
        EXPECT_GE(frame.Left, work.Left);
        EXPECT_GE(frame.Top, work.Top);
        EXPECT_LE(frame.Right, work.Right);
        EXPECT_LE(frame.Bottom, work.Bottom);
        for (const ctrlWindow* button : Row()) {
            EXPECT_GE(button->X(), 0);
            EXPECT_GE(button->Y(), 0);
            EXPECT_LE(button->X() + static_cast<int32_t>(button->Width()),
                      static_cast<int32_t>(Box()->Width()));
            EXPECT_LE(button->Y() + static_cast<int32_t>(button->Height()),
                      static_cast<int32_t>(Box()->Height()));
        }
    }

    static void Click(const ctrlWindow* button)
    {
        fakeMouseClick(Box()->X() + button->X() + static_cast<int32_t>(button->Width()) / 2,
                       Box()->Y() + button->Y() + static_cast<int32_t>(button->Height()) / 2);
    }

    // What the user does when the next run waits.
    static void WhileOpen(std::function<void()> closure) { fakeOnCall("windowWait", 1, std::move(closure)); }

    static void AnswerWith(size_t index)
    {
        WhileOpen([index] { Click(Row().at(index)); });
    }

    // Asks, looks at the open box, and presses its first button.
    void Look(const std::string& text, const std::vector<Buttons>& buttons, const std::function<void()>& look)
    {
        bool looked = false;
        WhileOpen([&] {
            looked = true;
            look();
            Click(Row().at(0));
        });
        uiMessage::Execute(Main, "Title", text, buttons);
        EXPECT_TRUE(looked);
    }

    ctrlForm* Main = nullptr;
};
