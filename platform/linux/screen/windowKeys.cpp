#include "platform/linux/screen/windowKeys.h"

#include "foundations/text/utfConvert.h"
#include "platform/linux/screen/windowKeyTable.h"
#include "platform/windowMessages.h"

#include <xkbcommon/xkbcommon-x11.h>

// The header has a member that is a word of the language. One compiler warns of the cure, the other does not
// know that warning.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wkeyword-macro"
#define explicit explicitOf
#include <xcb/xkb.h>
#undef explicit
#pragma GCC diagnostic pop

#include <cstdlib>
#include <vector>

namespace {

constexpr xkb_keycode_t KernelOffset = 8;
constexpr uint32_t ControlCharacters = 32;
constexpr uint32_t DeleteCharacter = 127;

constexpr uint16_t EventParts =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr uint16_t MapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                              XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS |
                              XCB_XKB_MAP_PART_KEY_ACTIONS | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                              XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

const char* composeLocale()
{
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0')
            return value;
    }
    return "C";
}

}  // namespace

windowKeys::~windowKeys()
{
    xkb_compose_state_unref(ComposeState);
    xkb_compose_table_unref(ComposeTable);
    xkb_state_unref(State);
    xkb_keymap_unref(Keymap);
    xkb_context_unref(Context);
}

void windowKeys::Open(xcb_connection_t* connection)
{
    Connection = connection;
    if (xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &FirstEvent,
                                    nullptr) == 0)
        return;
    Context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    Device = xkb_x11_get_core_keyboard_device_id(connection);
    if (Context == nullptr || Device < 0)
        return;
    xcb_xkb_select_events(connection, static_cast<xcb_xkb_device_spec_t>(Device), EventParts, 0, EventParts,
                          MapParts, MapParts, nullptr);
    // A key that is held repeats without going up in between.
    std::free(xcb_xkb_per_client_flags_reply(
        connection,
        xcb_xkb_per_client_flags(connection, static_cast<xcb_xkb_device_spec_t>(Device),
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                 XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0),
        nullptr));
    ComposeTable = xkb_compose_table_new_from_locale(Context, composeLocale(), XKB_COMPOSE_COMPILE_NO_FLAGS);
    if (ComposeTable != nullptr)
        ComposeState = xkb_compose_state_new(ComposeTable, XKB_COMPOSE_STATE_NO_FLAGS);
    ReadKeymap();
}

bool windowKeys::Heed(const xcb_generic_event_t& event)
{
    if (FirstEvent == 0 || (event.response_type & 0x7F) != FirstEvent)
        return false;
    if (event.pad0 != XCB_XKB_STATE_NOTIFY) {
        IsStale = true;
        return true;
    }
    const auto& change = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    if (State != nullptr && change.deviceID == Device)
        xkb_state_update_mask(State, change.baseMods, change.latchedMods, change.lockedMods,
                              static_cast<xkb_layout_index_t>(change.baseGroup),
                              static_cast<xkb_layout_index_t>(change.latchedGroup), change.lockedGroup);
    return true;
}

uint32_t windowKeys::Press(xcb_keycode_t code, std::u16string& text)
{
    if (IsStale)
        ReadKeymap();
    if (State == nullptr)
        return keyUnknown;
    const uint32_t key = KeyOf(code);
    Down[code] = key;
    TextOf(code, key, text);
    return key;
}

uint32_t windowKeys::Release(xcb_keycode_t code)
{
    const uint32_t key = Down[code] != 0 ? Down[code] : KeyOf(code);
    Down[code] = 0;
    return key;
}

void windowKeys::ReadKeymap()
{
    IsStale = false;
    xkb_keymap* const keymap =
        xkb_x11_keymap_new_from_device(Context, Connection, Device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    xkb_state* const state =
        keymap == nullptr ? nullptr : xkb_x11_state_new_from_device(keymap, Connection, Device);
    if (state == nullptr) {
        xkb_keymap_unref(keymap);
        return;
    }
    xkb_state_unref(State);
    xkb_keymap_unref(Keymap);
    Keymap = keymap;
    State = state;
}

uint32_t windowKeys::KeyOf(xcb_keycode_t code) const
{
    if (State == nullptr)
        return keyUnknown;
    const xkb_layout_index_t layout = xkb_state_key_get_layout(State, code);
    std::vector<xkb_keysym_t> symbols;
    if (layout != XKB_LAYOUT_INVALID) {
        const xkb_level_index_t levels = xkb_keymap_num_levels_for_key(Keymap, code, layout);
        for (xkb_level_index_t level = 0; level < levels; ++level) {
            const xkb_keysym_t* found = nullptr;
            const int count = xkb_keymap_key_get_syms_by_level(Keymap, code, layout, level, &found);
            symbols.push_back(count == 1 ? *found : xkb_keysym_t{XKB_KEY_NoSymbol});
        }
    }
    const uint32_t place = code >= KernelOffset ? code - KernelOffset : 0;
    return windowKeyOf(symbols, xkb_state_key_get_one_sym(State, code), place);
}

void windowKeys::TextOf(xcb_keycode_t code, uint32_t key, std::u16string& text)
{
    const bool isControl = IsDown(XKB_MOD_NAME_CTRL);
    const bool isAlt = IsDown(XKB_MOD_NAME_ALT);
    if (isControl && !isAlt) {
        if (const uint32_t character = windowControlCharacter(key); character != 0) {
            text += static_cast<char16_t>(character);
            return;
        }
    }
    // Backwards too.
    if (key == keyTab && !isControl && !isAlt) {
        text += u'\t';
        return;
    }
    const std::string made = Compose(code);
    // With these keys held, a key is a command and no text.
    const auto first = made.empty() ? 0u : static_cast<uint32_t>(static_cast<unsigned char>(made[0]));
    if (isAlt || first == DeleteCharacter || (isControl && first >= ControlCharacters))
        return;
    utfAppend16From8(text, made.data(), made.size());
}

bool windowKeys::IsDown(const char* modifier) const
{
    return xkb_state_mod_name_is_active(State, modifier, XKB_STATE_MODS_EFFECTIVE) > 0;
}

std::string windowKeys::Compose(xcb_keycode_t code)
{
    char text[64] = {};
    if (ComposeState != nullptr) {
        xkb_compose_state_feed(ComposeState, xkb_state_key_get_one_sym(State, code));
        switch (xkb_compose_state_get_status(ComposeState)) {
        case XKB_COMPOSE_COMPOSING:
            return {};
        case XKB_COMPOSE_CANCELLED:
            xkb_compose_state_reset(ComposeState);
            return {};
        case XKB_COMPOSE_COMPOSED:
            xkb_compose_state_get_utf8(ComposeState, text, sizeof text);
            xkb_compose_state_reset(ComposeState);
            return text;
        case XKB_COMPOSE_NOTHING:
            break;
        }
    }
    const int length = xkb_state_key_get_utf8(State, code, text, sizeof text);
    return length > 0 ? std::string(text) : std::string();
}
