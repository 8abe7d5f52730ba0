#include "tests/platform/screen/windowTest.h"

#include <string>

// What stands beside the windows: the clipboard, cursors, monitors and touch.

namespace {

class windowBeside : public windowTest
{
protected:
    void SetUp() override
    {
        windowTest::SetUp();
        Window = OpenAt({100, 100, 400, 300});
    }

    void ExpectKept(const std::string& text)
    {
        ASSERT_TRUE(System->SetClipboardText(Window, text));
        Pump();
        const std::optional<std::string> back = System->ClipboardText(Window);
        ASSERT_TRUE(back.has_value());
        // A comparison that fails would print megabytes.
        EXPECT_TRUE(*back == text) << back->size() << " bytes instead of " << text.size();
    }

    windowId Window = 0;
};

TEST_F(windowBeside, KeepsTextOnTheClipboard)
{
    for (const char* text :
         {"x", "Skyreckoning", "µ é ° Ω", "\xF0\x9F\x9B\xB0 two units", "lines\r\nand\ttabs\n"})
        ExpectKept(text);
}

TEST_F(windowBeside, KeepsALargeTextOnTheClipboard)
{
    constexpr size_t Size = 3'000'000;
    std::string text;
    for (size_t line = 0; text.size() < Size; ++line)
        text += "line " + std::to_string(line) + " µ\n";
    ExpectKept(text);
}

TEST_F(windowBeside, ReadsTheClipboardFromAnyWindow)
{
    ASSERT_TRUE(System->SetClipboardText(Window, "kept"));
    const windowId other = OpenAt({450, 100, 700, 300});
    EXPECT_EQ(System->ClipboardText(other), "kept");
}

TEST_F(windowBeside, HasAllCursorsOfTheSystem)
{
    for (unsigned which = 0; which <= static_cast<unsigned>(windowCursor::SizeRising); ++which) {
        const cursorId cursor = System->SystemCursor(static_cast<windowCursor>(which));
        EXPECT_NE(cursor, 0u) << which;
        System->SetCursor(cursor);
    }
}

TEST_F(windowBeside, MakesCursors)
{
    windowCursorShape shape;
    shape.HotX = 16;
    shape.HotY = 27;
    for (size_t row = 0; row < 32; ++row) {
        shape.And[row] = ~(1u << row);
        shape.Xor[row] = 1u << row;
    }
    const cursorId cursor = System->MakeCursor(shape);
    ASSERT_NE(cursor, 0u);
    System->SetCursor(cursor);
    ASSERT_TRUE(Point(Window, 10, 10));
    System->SetCursor(System->SystemCursor(windowCursor::Arrow));
    System->DestroyCursor(cursor);
    Pump();
}

TEST_F(windowBeside, GivesAWindowAnIconAndTakesItAway)
{
    windowIconShape shape;
    shape.Width = 33;
    shape.Height = 16;
    for (uint32_t i = 0; i < shape.Width * shape.Height; ++i)
        shape.Pixels.push_back(0x80000000U | i);
    const iconId icon = System->MakeIcon(shape);
    ASSERT_NE(icon, 0u);
    const iconId other = System->MakeIcon({1, 1, {0xFFFFFFFF}});
    EXPECT_NE(other, icon);
    System->SetIcon(Window, icon);
    System->SetIcon(Window, other);
    System->SetIcon(Window, 0);
    System->DestroyIcon(icon);
    System->DestroyIcon(other);
    System->DestroyIcon(0);
    Pump();
}

TEST_F(windowBeside, MakesNoIconOfAShapeThatIsNone)
{
    EXPECT_EQ(System->MakeIcon({}), 0u);
    EXPECT_EQ(System->MakeIcon({2, 2, {1, 2, 3}}), 0u);
    EXPECT_EQ(System->MakeIcon({257, 1, std::vector<uint32_t>(257)}), 0u);
    EXPECT_EQ(System->MakeIcon({0, 1, {}}), 0u);
}

TEST_F(windowBeside, TakesNoCursorForNone)
{
    System->SetCursor(0);
    System->DestroyCursor(0);
    Pump();
}

TEST_F(windowBeside, KnowsTheMonitors)
{
    const windowArea desktop = System->DesktopWorkArea();
    ASSERT_GT(desktop.Right, desktop.Left);
    ASSERT_GT(desktop.Bottom, desktop.Top);
    windowArea area;
    ASSERT_TRUE(System->WorkAreaAt(desktop.Left + 10, desktop.Top + 10, area));
    EXPECT_EQ(area.Left, desktop.Left);
    EXPECT_EQ(area.Bottom, desktop.Bottom);
    EXPECT_FALSE(System->WorkAreaAt(-20000, -20000, area));
}

TEST_F(windowBeside, KnowsTheDesktopBeforeAnyWindow)
{
    System.reset();
    System = windowSystemMake("Skyreckoning contract of the desktop",
                              [](const windowMessage&) { return int64_t{0}; });
    const windowArea desktop = System->DesktopWorkArea();
    EXPECT_GT(desktop.Right, desktop.Left);
}

TEST_F(windowBeside, TakesNoGestureForOne)
{
    System->AskGestures(Window);
    windowGesture gesture;
    EXPECT_FALSE(System->GestureRead(0, gesture));
    System->GestureClose(0);
    Pump();
}

}  // namespace
