#include "platform/window.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <windows.h>

// What the system itself has of our windows and cursors.

namespace {

std::unique_ptr<windowSystem> System;

int64_t leaveToTheSystem(const windowMessage& message)
{
    return System->Default(message);
}

class windowWin32 : public testing::Test
{
protected:
    void SetUp() override { System = windowSystemMake("Skyreckoning window_test", leaveToTheSystem); }
    void TearDown() override { System.reset(); }

    HWND Make(const windowCreate& create)
    {
        uint32_t error = 0;
        return reinterpret_cast<HWND>(System->Create(create, error));
    }
};

TEST_F(windowWin32, HasAClassThatPaintsWholeAndKnowsDoubleClicks)
{
    HWND window = Make({.Style = styleSystemMenu});
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(GetClassLongPtrW(window, GCL_STYLE), 11u);
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HBRBACKGROUND), 0u);
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HCURSOR), 0u);
    std::array<wchar_t, 64> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    EXPECT_EQ(std::wstring(name.data()), L"Skyreckoning window_test");
}

TEST_F(windowWin32, IsUntitledUntilItHasATitle)
{
    HWND window = Make({.Style = styleSystemMenu});
    std::array<wchar_t, 64> title{};
    GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
    EXPECT_EQ(std::wstring(title.data()), L"Untitled");
    System->SetTitle(reinterpret_cast<windowId>(window), "µ \xF0\x9F\x9B\xB0");
    GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
    EXPECT_EQ(std::wstring(title.data()), L"µ \xD83D\xDEF0");
}

TEST_F(windowWin32, LeavesTheScaleOfTheThreadAsItWas)
{
    const DPI_AWARENESS_CONTEXT before = GetThreadDpiAwarenessContext();
    HWND window = Make({.Style = styleSystemMenu, .PerMonitor = true});
    EXPECT_TRUE(AreDpiAwarenessContextsEqual(GetThreadDpiAwarenessContext(), before));
    EXPECT_EQ(GetAwarenessFromDpiAwarenessContext(GetWindowDpiAwarenessContext(window)),
              DPI_AWARENESS_PER_MONITOR_AWARE);
}

TEST_F(windowWin32, EndsItsClassWithItself)
{
    Make({.Style = styleSystemMenu});
    System.reset();
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(nullptr), L"Skyreckoning window_test", &description));
}

TEST_F(windowWin32, TellsWhyAWindowCannotBeMade)
{
    uint32_t error = 0;
    EXPECT_EQ(System->Create({.Style = styleSystemMenu, .Owner = 0x7FFFFFF0}, error), 0u);
    EXPECT_EQ(error, uint32_t{ERROR_INVALID_WINDOW_HANDLE});
}

TEST_F(windowWin32, MakesCursorsRowByRowFromTheLeft)
{
    windowCursorShape shape;
    shape.HotX = 16;
    shape.HotY = 27;
    for (uint32_t row = 0; row < 32; ++row) {
        shape.And[row] = 0xFFFFFFFF;
        shape.Xor[row] = 0;
    }
    shape.And[0] = 0x80FF0001;
    shape.Xor[0] = 0x12345678;
    const cursorId cursor = System->MakeCursor(shape);
    ICONINFO information = {};
    ASSERT_TRUE(GetIconInfo(reinterpret_cast<HICON>(cursor), &information));
    EXPECT_EQ(information.xHotspot, 16u);
    EXPECT_EQ(information.yHotspot, 27u);
    std::array<uint8_t, 2 * 32 * 4> bits{};
    GetBitmapBits(information.hbmMask, static_cast<LONG>(bits.size()), bits.data());
    EXPECT_EQ((std::array<uint8_t, 4>{bits[0], bits[1], bits[2], bits[3]}),
              (std::array<uint8_t, 4>{0x80, 0xFF, 0x00, 0x01}));
    EXPECT_EQ((std::array<uint8_t, 4>{bits[128], bits[129], bits[130], bits[131]}),
              (std::array<uint8_t, 4>{0x12, 0x34, 0x56, 0x78}));
    DeleteObject(information.hbmMask);
    DeleteObject(information.hbmColor);
    System->DestroyCursor(cursor);
}

TEST_F(windowWin32, SharesTheCursorsOfTheSystem)
{
    EXPECT_EQ(System->SystemCursor(windowCursor::Text),
              reinterpret_cast<cursorId>(LoadCursorW(nullptr, MAKEINTRESOURCEW(32513))));
}

TEST_F(windowWin32, KeepsTheClipboardInTheFormOfTheSystem)
{
    HWND window = Make({.Style = styleSystemMenu});
    ASSERT_TRUE(System->SetClipboardText(reinterpret_cast<windowId>(window), "µ°"));
    ASSERT_TRUE(OpenClipboard(window));
    HANDLE memory = GetClipboardData(CF_UNICODETEXT);
    ASSERT_NE(memory, nullptr);
    const auto* text = static_cast<const wchar_t*>(GlobalLock(memory));
    EXPECT_EQ(std::wstring(text), L"µ°");
    GlobalUnlock(memory);
    CloseClipboard();
}

}  // namespace
