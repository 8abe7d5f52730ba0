#include "platform/win32/screen/windowSystem.h"

#include <array>
#include <iterator>

// What stands beside the windows: cursors, monitors and touch.

namespace {

struct cursorRow {
    windowCursor Which;
    WORD Resource;
};

constexpr cursorRow Cursors[] = {
    {windowCursor::No, 32648},             // IDC_NO
    {windowCursor::Hand, 32649},           // IDC_HAND
    {windowCursor::SizeAll, 32646},        // IDC_SIZEALL
    {windowCursor::SizeUpDown, 32645},     // IDC_SIZENS
    {windowCursor::SizeLeftRight, 32644},  // IDC_SIZEWE
    {windowCursor::Arrow, 32512},          // IDC_ARROW
    {windowCursor::Text, 32513},           // IDC_IBEAM
    {windowCursor::SizeFalling, 32642},    // IDC_SIZENWSE
    {windowCursor::SizeRising, 32643},     // IDC_SIZENESW
};

constexpr size_t CursorSide = 32;
using cursorBytes = std::array<uint8_t, CursorSide * sizeof(uint32_t)>;

// Rows of bits, the leftmost pixel in the highest bit of the first byte.
cursorBytes bytesOf(const uint32_t (&rows)[CursorSide])
{
    cursorBytes bytes{};
    size_t at = 0;
    for (const uint32_t row : rows) {
        for (const unsigned shift : {24u, 16u, 8u, 0u})
            bytes[at++] = static_cast<uint8_t>(row >> shift);
    }
    return bytes;
}

windowArea areaOf(const RECT& rect)
{
    return {rect.left, rect.top, rect.right, rect.bottom};
}

bool workAreaOf(HMONITOR monitor, windowArea& area)
{
    MONITORINFO information = {};
    information.cbSize = sizeof information;
    if (!monitor || GetMonitorInfoW(monitor, &information) == FALSE)
        return false;
    area = areaOf(information.rcWork);
    return true;
}

HGESTUREINFO gestureOf(int64_t second)
{
    return reinterpret_cast<HGESTUREINFO>(second);
}

}  // namespace

cursorId systemWindows::SystemCursor(windowCursor which)
{
    for (const cursorRow& row : Cursors) {
        if (row.Which == which)
            return reinterpret_cast<cursorId>(LoadImageW(nullptr, MAKEINTRESOURCEW(row.Resource),
                                                         IMAGE_CURSOR, 0, 0, LR_SHARED | LR_DEFAULTSIZE));
    }
    return 0;
}

cursorId systemWindows::MakeCursor(const windowCursorShape& shape)
{
    const cursorBytes mask = bytesOf(shape.And);
    const cursorBytes image = bytesOf(shape.Xor);
    return reinterpret_cast<cursorId>(CreateCursor(Instance, static_cast<int>(shape.HotX),
                                                   static_cast<int>(shape.HotY), CursorSide, CursorSide,
                                                   mask.data(), image.data()));
}

void systemWindows::DestroyCursor(cursorId cursor)
{
    ::DestroyCursor(reinterpret_cast<HCURSOR>(cursor));
}

void systemWindows::SetCursor(cursorId cursor)
{
    ::SetCursor(reinterpret_cast<HCURSOR>(cursor));
}

iconId systemWindows::ProgramIcon()
{
    return reinterpret_cast<iconId>(
        LoadImageW(GetModuleHandleW(nullptr), L"MAINICON", IMAGE_ICON, 0, 0, LR_DEFAULTSIZE | LR_SHARED));
}

iconId systemWindows::MakeIcon(const windowIconShape& shape)
{
    if (!shape.IsValid())
        return 0;
    const auto width = static_cast<int>(shape.Width);
    const auto height = static_cast<int>(shape.Height);
    // The mask is not looked at where pixels have an alpha; it must be there.
    const std::vector<uint8_t> mask(size_t{shape.Width + 15} / 16 * 2 * shape.Height);
    ICONINFO parts = {};
    parts.fIcon = TRUE;
    parts.hbmColor = CreateBitmap(width, height, 1, 32, shape.Pixels.data());
    parts.hbmMask = CreateBitmap(width, height, 1, 1, mask.data());
    const auto icon = reinterpret_cast<iconId>(CreateIconIndirect(&parts));
    DeleteObject(parts.hbmColor);
    DeleteObject(parts.hbmMask);
    return icon;
}

void systemWindows::DestroyIcon(iconId icon)
{
    ::DestroyIcon(reinterpret_cast<HICON>(icon));
}

void systemWindows::SetIcon(windowId window, iconId icon)
{
    SendMessageW(systemWindow(window), WM_SETICON, ICON_BIG, static_cast<LPARAM>(icon));
}

bool systemWindows::WorkAreaOf(windowId window, windowArea& area)
{
    return workAreaOf(MonitorFromWindow(systemWindow(window), MONITOR_DEFAULTTONULL), area);
}

bool systemWindows::WorkAreaAt(int32_t x, int32_t y, windowArea& area)
{
    return workAreaOf(MonitorFromPoint({x, y}, MONITOR_DEFAULTTONULL), area);
}

windowArea systemWindows::DesktopWorkArea()
{
    RECT area = {};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return areaOf(area);
}

void systemWindows::AskGestures(windowId window)
{
    GESTURECONFIG all = {};
    all.dwWant = GC_ALLGESTURES;
    SetGestureConfig(systemWindow(window), 0, 1, &all, sizeof all);
}

bool systemWindows::GestureRead(int64_t second, windowGesture& gesture)
{
    GESTUREINFO information = {};
    information.cbSize = sizeof information;
    if (GetGestureInfo(gestureOf(second), &information) == FALSE)
        return false;
    gesture.Kind = static_cast<windowGestureKind>(information.dwID);
    gesture.First = information.dwFlags == GF_BEGIN;
    gesture.Id = information.dwInstanceID;
    gesture.X = information.ptsLocation.x;
    gesture.Y = information.ptsLocation.y;
    return true;
}

void systemWindows::GestureClose(int64_t second)
{
    CloseGestureInfoHandle(gestureOf(second));
}
