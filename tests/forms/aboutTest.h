// A form that tells of the program, and a user who looks at it.
#pragma once

#include "forms/uiAbout.h"

#include "tests/toolkit/toolkitTest.h"

#include <functional>
#include <string>
#include <vector>

class aboutTest : public toolkitTest
{
protected:
    // In the order of the column.
    enum : size_t {
        Title,
        Version,
        Note,
        Link,
        Mail
    };

    void SetUp() override
    {
        toolkitTest::SetUp();
        Main = new ctrlForm(nullptr, 100, 100, 800, 600, 0);
        Main->Show();
        Toolkit().PumpPending();
    }

    uiAbout* About() const
    {
        return new uiAbout(Main, "Skyreckoning", "1.0.5.5", "The web page", uiAboutWeb, uiAboutMail,
                           "A note");
    }

    static ctrlWindow* Box() { return Toolkit().WindowList().back(); }

    static std::vector<ctrlWindow*> Column()
    {
        std::vector<ctrlWindow*> column;
        for (ctrlWindow* child = Box()->FirstChild(); child; child = child->NextSibling())
            column.insert(column.begin(), child);
        return column;
    }

    static void Click(size_t index)
    {
        const ctrlWindow* button = Column().at(index);
        fakeMouseClick(Box()->X() + button->X() + 3, Box()->Y() + button->Y() + 3);
    }

    // Looks at the open form, and closes it.
    static void Look(uiAbout* about, const std::function<void()>& look)
    {
        bool looked = false;
        fakeOnCall("windowWait", 1, [&] {
            looked = true;
            look();
            fakeUserCloses(Box()->Handle());
        });
        EXPECT_EQ(about->Modal(true), -1);
        EXPECT_TRUE(looked);
    }

    // The pictures that are drawn when the form paints itself.
    static std::vector<std::string> Pictures()
    {
        Box()->Invalidate(true);
        std::vector<std::string> lines = Drawn({"bitmap"});
        std::erase_if(lines,
                      [](const std::string& line) { return line.find(" of pixels ") == std::string::npos; });
        return lines;
    }

    ctrlForm* Main = nullptr;
};
