#include "tests/platform/screen/screenInput.h"

#include <array>
#include <set>
#include <string>
#include <windows.h>

namespace {

struct buttonRow {
    DWORD Down;
    DWORD Up;
};

// By screenButton.
constexpr std::array<buttonRow, 3> Buttons{{
    {MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP},
    {MOUSEEVENTF_MIDDLEDOWN, MOUSEEVENTF_MIDDLEUP},
    {MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP},
}};

std::set<screenButton> ButtonsDown;
std::set<uint32_t> KeysDown;

void sendMouse(DWORD flags, LONG x = 0, LONG y = 0, DWORD data = 0)
{
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = x;
    input.mi.dy = y;
    input.mi.mouseData = data;
    input.mi.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

void sendKey(WORD key, WORD character, DWORD flags)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = character;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

void sendVirtualKey(uint32_t key, DWORD flags)
{
    const UINT code = MapVirtualKeyW(key, MAPVK_VK_TO_VSC);
    sendKey(static_cast<WORD>(key), static_cast<WORD>(code), flags);
}

// The mouse takes 65,536ths of the screen; the middle of a pixel survives the rounding.
LONG shareOf(int32_t pixel, int size)
{
    return static_cast<LONG>((pixel * int64_t{65536} + 32768) / size);
}

bool isMouseAt(int32_t x, int32_t y)
{
    POINT mouse = {};
    GetCursorPos(&mouse);
    return mouse.x == x && mouse.y == y;
}

void takeDriverEvents()
{
    constexpr DWORD PauseMs = 4;
    Sleep(PauseMs);
    MSG ignored;
    PeekMessageW(&ignored, nullptr, WM_APP, WM_APP, PM_NOREMOVE);
}

}  // namespace

void screenReset()
{
    for (const screenButton button : std::set(ButtonsDown))
        screenRelease(button);
    for (const uint32_t key : std::set(KeysDown))
        screenKeyUp(key);
    screenMove(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
}

void screenMove(int32_t x, int32_t y)
{
    // Under Wine an older place of the display's own pointer comes in now and then, and takes the mouse back.
    constexpr int Calm = 4;
    for (int still = 0; still < Calm; ++still) {
        if (isMouseAt(x, y) && still > 0) {
            takeDriverEvents();
            continue;
        }
        still = 0;
        SetCursorPos(x, y);
        sendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, shareOf(x, GetSystemMetrics(SM_CXSCREEN)),
                  shareOf(y, GetSystemMetrics(SM_CYSCREEN)));
        takeDriverEvents();
    }
}

void screenPress(screenButton button)
{
    ButtonsDown.insert(button);
    sendMouse(Buttons[static_cast<size_t>(button)].Down);
}

void screenRelease(screenButton button)
{
    ButtonsDown.erase(button);
    sendMouse(Buttons[static_cast<size_t>(button)].Up);
}

void screenWheel(int32_t notches)
{
    sendMouse(MOUSEEVENTF_WHEEL, 0, 0, static_cast<DWORD>(notches * WHEEL_DELTA));
}

void screenKeyDown(uint32_t key)
{
    KeysDown.insert(key);
    sendVirtualKey(key, 0);
}

void screenKeyUp(uint32_t key)
{
    KeysDown.erase(key);
    sendVirtualKey(key, KEYEVENTF_KEYUP);
}

void screenType(char32_t character)
{
    std::u16string units;
    if (character >= 0x10000) {
        units += static_cast<char16_t>(0xD7C0 + (character >> 10));
        units += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
        units += static_cast<char16_t>(character);
    }
    for (const char16_t unit : units) {
        sendKey(0, unit, KEYEVENTF_UNICODE);
        sendKey(0, unit, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
    }
}

bool screenKeepsFramesAboveOwners()
{
    // Wine does not, Windows does.
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
}
