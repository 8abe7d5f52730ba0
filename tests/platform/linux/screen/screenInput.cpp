#include "tests/platform/screen/screenInput.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace {

struct keyRow {
    uint32_t Key;
    xcb_keysym_t Symbol;
};

constexpr keyRow Keys[] = {
    {keyBackspace, 0xFF08}, {keyTab, 0xFF09},      {keyEnter, 0xFF0D},    {keyShift, 0xFFE1},
    {keyControl, 0xFFE3},   {keyAlt, 0xFFE9},      {keyEscape, 0xFF1B},   {keySpace, ' '},
    {keyPageUp, 0xFF55},    {keyPageDown, 0xFF56}, {keyEnd, 0xFF57},      {keyHome, 0xFF50},
    {keyLeft, 0xFF51},      {keyUp, 0xFF52},       {keyRight, 0xFF53},    {keyDown, 0xFF54},
    {keyInsert, 0xFF63},    {keyDelete, 0xFFFF},   {keyMultiply, 0xFFAA}, {keyAdd, 0xFFAB},
    {keySubtract, 0xFFAD},  {keyDivide, 0xFFAF},
};

xcb_keysym_t symbolOf(uint32_t key)
{
    constexpr xcb_keysym_t FirstFunction = 0xFFBE;
    if (key >= keyF1 && key < keyF1 + 12)
        return FirstFunction + key - keyF1;
    for (const keyRow& row : Keys) {
        if (row.Key == key)
            return row.Symbol;
    }
    // Letters lie on their keys as small ones.
    return key >= 'A' && key <= 'Z' ? key - 'A' + 'a' : key;
}

xcb_keysym_t symbolOfCharacter(char32_t character)
{
    constexpr xcb_keysym_t Unicode = 0x01000000;
    return character < 0x100 ? character : Unicode | character;
}

struct freeing {
    void operator()(void* block) const { std::free(block); }
};

// A connection of the tests' own, as another program has one.
class keyboardAndMouse
{
public:
    keyboardAndMouse() : Connection(xcb_connect(nullptr, nullptr)) { ReadKeys(); }
    ~keyboardAndMouse() { xcb_disconnect(Connection); }
    keyboardAndMouse(const keyboardAndMouse&) = delete;
    keyboardAndMouse& operator=(const keyboardAndMouse&) = delete;

    // Waits until the server has it, so that the program can find it.
    void Send(uint8_t type, uint8_t detail, int32_t x = 0, int32_t y = 0)
    {
        xcb_test_fake_input(Connection, type, detail, XCB_CURRENT_TIME, XCB_NONE, static_cast<int16_t>(x),
                            static_cast<int16_t>(y), 0);
        Finish();
    }

    // The key that has this symbol, by itself or with shift; a spare one learns it when there is none.
    struct keyOf {
        uint8_t Code;
        bool Shift;
    };
    keyOf Find(xcb_keysym_t symbol)
    {
        for (const bool shift : {false, true}) {
            for (size_t key = 0; key < Spare.size(); ++key) {
                if (Symbols[key * Width + (shift ? 1 : 0)] == symbol)
                    return {static_cast<uint8_t>(First + key), shift};
            }
        }
        return {Teach(symbol), false};
    }

private:
    void Finish()
    {
        const auto cookie = xcb_get_input_focus(Connection);
        std::unique_ptr<xcb_get_input_focus_reply_t, freeing>(
            xcb_get_input_focus_reply(Connection, cookie, nullptr));
    }

    void ReadKeys()
    {
        const xcb_setup_t* setup = xcb_get_setup(Connection);
        First = setup->min_keycode;
        const size_t count = size_t{setup->max_keycode} - First + 1;
        const auto cookie = xcb_get_keyboard_mapping(Connection, First, static_cast<uint8_t>(count));
        const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, freeing> reply(
            xcb_get_keyboard_mapping_reply(Connection, cookie, nullptr));
        Width = reply->keysyms_per_keycode;
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
        Symbols.assign(symbols, symbols + count * Width);
        Spare.assign(count, true);
        for (size_t at = 0; at < Symbols.size(); ++at)
            Spare[at / Width] = Spare[at / Width] && Symbols[at] == 0;
    }

    uint8_t Teach(xcb_keysym_t symbol)
    {
        for (size_t key = Spare.size(); key-- > 0;) {
            if (!Spare[key])
                continue;
            Spare[key] = false;
            const auto code = static_cast<uint8_t>(First + key);
            std::vector<xcb_keysym_t> both(Width, symbol);
            std::copy(both.begin(), both.end(), Symbols.begin() + static_cast<ptrdiff_t>(key * Width));
            xcb_change_keyboard_mapping(Connection, 1, code, static_cast<uint8_t>(Width), both.data());
            Finish();
            return code;
        }
        return 0;
    }

    xcb_connection_t* Connection;
    uint8_t First = 0;
    size_t Width = 0;
    std::vector<xcb_keysym_t> Symbols;
    std::vector<bool> Spare;
};

keyboardAndMouse& User()
{
    static keyboardAndMouse only;
    return only;
}

std::set<screenButton> ButtonsDown;
std::set<uint32_t> KeysDown;

constexpr uint8_t WheelUp = 4;
constexpr uint8_t WheelDown = 5;

uint8_t numberOf(screenButton button)
{
    return static_cast<uint8_t>(static_cast<uint8_t>(button) + 1);
}

}  // namespace

void screenReset()
{
    for (const screenButton button : std::set(ButtonsDown))
        screenRelease(button);
    for (const uint32_t key : std::set(KeysDown))
        screenKeyUp(key);
    screenMove(1279, 1023);
}

void screenMove(int32_t x, int32_t y)
{
    User().Send(XCB_MOTION_NOTIFY, 0, x, y);
}

void screenPress(screenButton button)
{
    ButtonsDown.insert(button);
    User().Send(XCB_BUTTON_PRESS, numberOf(button));
}

void screenRelease(screenButton button)
{
    ButtonsDown.erase(button);
    User().Send(XCB_BUTTON_RELEASE, numberOf(button));
}

void screenWheel(int32_t notches)
{
    const uint8_t button = notches > 0 ? WheelUp : WheelDown;
    for (int32_t notch = 0; notch < std::abs(notches); ++notch) {
        User().Send(XCB_BUTTON_PRESS, button);
        User().Send(XCB_BUTTON_RELEASE, button);
    }
}

void screenKeyDown(uint32_t key)
{
    KeysDown.insert(key);
    User().Send(XCB_KEY_PRESS, User().Find(symbolOf(key)).Code);
}

void screenKeyUp(uint32_t key)
{
    KeysDown.erase(key);
    User().Send(XCB_KEY_RELEASE, User().Find(symbolOf(key)).Code);
}

void screenType(char32_t character)
{
    const auto key = User().Find(symbolOfCharacter(character));
    const uint8_t shift = User().Find(symbolOf(keyShift)).Code;
    if (key.Shift)
        User().Send(XCB_KEY_PRESS, shift);
    User().Send(XCB_KEY_PRESS, key.Code);
    User().Send(XCB_KEY_RELEASE, key.Code);
    if (key.Shift)
        User().Send(XCB_KEY_RELEASE, shift);
}

bool screenKeepsFramesAboveOwners()
{
    return true;
}
