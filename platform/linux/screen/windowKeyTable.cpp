#include "platform/linux/screen/windowKeyTable.h"

#include "platform/windowMessages.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <iterator>

namespace {

struct keyRow {
    xkb_keysym_t Symbol;
    uint32_t Key;
};

// The numbers from 186 on are those of the punctuation of an American keyboard.
constexpr keyRow Symbols[] = {
    {XKB_KEY_BackSpace, keyBackspace},
    {XKB_KEY_Tab, keyTab},
    {XKB_KEY_ISO_Left_Tab, keyTab},
    {XKB_KEY_Return, keyEnter},
    {XKB_KEY_KP_Enter, keyEnter},
    {XKB_KEY_Shift_L, keyShift},
    {XKB_KEY_Shift_R, keyShift},
    {XKB_KEY_Control_L, keyControl},
    {XKB_KEY_Control_R, keyControl},
    {XKB_KEY_Alt_L, keyAlt},
    {XKB_KEY_Alt_R, keyAlt},
    {XKB_KEY_Meta_L, keyAlt},
    {XKB_KEY_Meta_R, keyAlt},
    {XKB_KEY_ISO_Level3_Shift, keyAlt},
    {XKB_KEY_Pause, keyPause},
    {XKB_KEY_Caps_Lock, keyCapsLock},
    {XKB_KEY_Escape, keyEscape},
    {XKB_KEY_space, keySpace},
    {XKB_KEY_KP_Space, keySpace},
    {XKB_KEY_Prior, keyPageUp},
    {XKB_KEY_KP_Prior, keyPageUp},
    {XKB_KEY_Next, keyPageDown},
    {XKB_KEY_KP_Next, keyPageDown},
    {XKB_KEY_End, keyEnd},
    {XKB_KEY_KP_End, keyEnd},
    {XKB_KEY_Home, keyHome},
    {XKB_KEY_KP_Home, keyHome},
    {XKB_KEY_Left, keyLeft},
    {XKB_KEY_KP_Left, keyLeft},
    {XKB_KEY_Up, keyUp},
    {XKB_KEY_KP_Up, keyUp},
    {XKB_KEY_Right, keyRight},
    {XKB_KEY_KP_Right, keyRight},
    {XKB_KEY_Down, keyDown},
    {XKB_KEY_KP_Down, keyDown},
    {XKB_KEY_KP_Begin, 12},
    {XKB_KEY_Print, keyPrintScreen},
    {XKB_KEY_Sys_Req, keyPrintScreen},
    {XKB_KEY_Break, keyPause},
    {XKB_KEY_Insert, keyInsert},
    {XKB_KEY_KP_Insert, keyInsert},
    {XKB_KEY_Delete, keyDelete},
    {XKB_KEY_KP_Delete, keyDelete},
    {XKB_KEY_Super_L, keyMeta},
    {XKB_KEY_Super_R, keyMeta},
    {XKB_KEY_Menu, keyMenu},
    {XKB_KEY_KP_Multiply, keyMultiply},
    {XKB_KEY_KP_Add, keyAdd},
    {XKB_KEY_KP_Subtract, keySubtract},
    {XKB_KEY_KP_Decimal, keyDecimal},
    {XKB_KEY_KP_Separator, keyDecimal},
    {XKB_KEY_KP_Divide, keyDivide},
    {XKB_KEY_Num_Lock, keyNumLock},
    {XKB_KEY_Scroll_Lock, keyScrollLock},
    {XKB_KEY_semicolon, 186},
    {XKB_KEY_equal, 187},
    {XKB_KEY_plus, 187},
    {XKB_KEY_comma, 188},
    {XKB_KEY_minus, 189},
    {XKB_KEY_period, 190},
    {XKB_KEY_slash, 191},
    {XKB_KEY_grave, 192},
    {XKB_KEY_bracketleft, 219},
    {XKB_KEY_backslash, 220},
    {XKB_KEY_bracketright, 221},
    {XKB_KEY_apostrophe, 222},
    {XKB_KEY_less, 226},
};

// Letters and digits by their place on an American keyboard; a blank is none.
constexpr uint32_t FirstPlace = 2;
constexpr char Places[] = "1234567890    QWERTYUIOP    ASDFGHJKL     ZXCVBNM";

// Farther up, some layouts have a keypad on their letters.
constexpr size_t ShiftLevels = 2;

uint32_t digitAmong(std::span<const xkb_keysym_t> symbols)
{
    const auto levels = symbols.first(std::min(symbols.size(), ShiftLevels));
    const auto digit = std::find_if(levels.begin(), levels.end(), [](xkb_keysym_t symbol) {
        return symbol >= XKB_KEY_0 && symbol <= XKB_KEY_9;
    });
    return digit == levels.end() ? 0 : *digit;
}

uint32_t keyOfPlace(uint32_t code)
{
    if (code < FirstPlace || code - FirstPlace >= std::size(Places) - 1)
        return 0;
    const char key = Places[code - FirstPlace];
    return key == ' ' ? 0 : static_cast<uint32_t>(key);
}

bool isKeypad(xkb_keysym_t symbol)
{
    return symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_9;
}

// 0 when the symbol alone does not tell.
uint32_t keyOfSymbol(xkb_keysym_t symbol)
{
    if (symbol >= XKB_KEY_a && symbol <= XKB_KEY_z)
        return symbol - XKB_KEY_a + 'A';
    if ((symbol >= XKB_KEY_A && symbol <= XKB_KEY_Z) || (symbol >= XKB_KEY_0 && symbol <= XKB_KEY_9))
        return symbol;
    if (symbol >= XKB_KEY_KP_0 && symbol <= XKB_KEY_KP_9)
        return symbol - XKB_KEY_KP_0 + keyNumpad0;
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F24)
        return symbol - XKB_KEY_F1 + keyF1;
    const auto* const row =
        std::find_if(std::begin(Symbols), std::end(Symbols),
                     [symbol](const keyRow& candidate) { return candidate.Symbol == symbol; });
    return row == std::end(Symbols) ? 0 : row->Key;
}

}  // namespace

uint32_t windowKeyOf(std::span<const xkb_keysym_t> symbols, xkb_keysym_t current, uint32_t code)
{
    const xkb_keysym_t plain = symbols.empty() ? xkb_keysym_t{XKB_KEY_NoSymbol} : symbols.front();
    // The keypad is two keyboards in one, and its lock says which.
    if (isKeypad(plain) && isKeypad(current))
        return std::max(keyOfSymbol(current), keyOfSymbol(plain));
    // A digit that needs the shift key still names its key.
    if (const uint32_t digit = digitAmong(symbols); digit != 0)
        return digit;
    if (const uint32_t key = keyOfSymbol(plain); key != 0)
        return key;
    if (const uint32_t key = keyOfPlace(code); key != 0)
        return key;
    return keyUnknown;
}

uint32_t windowControlCharacter(uint32_t key)
{
    constexpr uint32_t wordDelete = 127;
    constexpr uint32_t lineFeed = 10;
    if (key >= 'A' && key <= 'Z')
        return key - 'A' + 1;
    if (key == keyBackspace)
        return wordDelete;
    if (key == keyEnter)
        return lineFeed;
    return 0;
}
