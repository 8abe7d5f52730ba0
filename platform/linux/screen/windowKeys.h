// The keyboard: which keys events are about and which text they make, in the layout of the moment.
#pragma once

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>
#include <string>

class windowKeys
{
public:
    windowKeys() = default;
    ~windowKeys();
    windowKeys(const windowKeys&) = delete;
    windowKeys& operator=(const windowKeys&) = delete;

    // Without the extension there is no keyboard: all keys are unknown and make no text.
    void Open(xcb_connection_t* connection);

    // True when the event was about the keyboard itself.
    bool Heed(const xcb_generic_event_t& event);

    // A key went down, or repeats: its virtual number and, in UTF-16, the text that it makes.
    uint32_t Press(xcb_keycode_t code, std::u16string& text);

    // The number that it went down with.
    uint32_t Release(xcb_keycode_t code);

private:
    void ReadKeymap();
    uint32_t KeyOf(xcb_keycode_t code) const;
    void TextOf(xcb_keycode_t code, uint32_t key, std::u16string& text);
    bool IsDown(const char* modifier) const;
    std::string Compose(xcb_keycode_t code);

    xcb_connection_t* Connection = nullptr;
    xkb_context* Context = nullptr;
    xkb_keymap* Keymap = nullptr;
    xkb_state* State = nullptr;
    xkb_compose_table* ComposeTable = nullptr;
    xkb_compose_state* ComposeState = nullptr;
    int32_t Device = -1;
    uint8_t FirstEvent = 0;
    bool IsStale = false;  // the layout changed, and is read when the next key needs it
    std::array<uint32_t, 256> Down{};
};
