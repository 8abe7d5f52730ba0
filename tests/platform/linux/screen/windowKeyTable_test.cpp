#include "platform/linux/screen/windowKeyTable.h"

#include "platform/windowMessages.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <vector>

#include <gtest/gtest.h>

namespace {

struct keyRow {
    const char* Name;
    std::vector<xkb_keysym_t> Symbols;
    xkb_keysym_t Current;
    uint32_t Place;  // as the kernel counts
    uint32_t Key;
};

const keyRow Rows[] = {
    {"a letter", {XKB_KEY_a, XKB_KEY_A}, XKB_KEY_a, 30, 'A'},
    {"a letter with shift", {XKB_KEY_a, XKB_KEY_A}, XKB_KEY_A, 30, 'A'},
    {"a letter by its print, not its place", {XKB_KEY_a, XKB_KEY_A}, XKB_KEY_a, 16, 'A'},
    {"a digit", {XKB_KEY_1, XKB_KEY_exclam}, XKB_KEY_1, 2, '1'},
    {"a digit that needs shift", {XKB_KEY_ampersand, XKB_KEY_1}, XKB_KEY_ampersand, 2, '1'},
    {"a French minus is the 6", {XKB_KEY_minus, XKB_KEY_6}, XKB_KEY_minus, 7, '6'},
    {"a keypad on letters", {XKB_KEY_h, XKB_KEY_H, XKB_KEY_NoSymbol, XKB_KEY_4}, XKB_KEY_h, 35, 'H'},
    {"a Cyrillic letter by its place", {XKB_KEY_Cyrillic_ef, XKB_KEY_Cyrillic_EF}, 0, 30, 'A'},
    {"the keypad with its lock", {XKB_KEY_KP_Home, XKB_KEY_KP_7}, XKB_KEY_KP_7, 71, keyNumpad0 + 7},
    {"the keypad without", {XKB_KEY_KP_Home, XKB_KEY_KP_7}, XKB_KEY_KP_Home, 71, keyHome},
    {"the keypad's comma", {XKB_KEY_KP_Delete, XKB_KEY_KP_Separator}, XKB_KEY_KP_Separator, 83, keyDecimal},
    {"enter of the keypad", {XKB_KEY_KP_Enter}, XKB_KEY_KP_Enter, 96, keyEnter},
    {"tab backwards", {XKB_KEY_Tab, XKB_KEY_ISO_Left_Tab}, XKB_KEY_ISO_Left_Tab, 15, keyTab},
    {"the third level's key", {XKB_KEY_ISO_Level3_Shift}, XKB_KEY_ISO_Level3_Shift, 100, keyAlt},
    {"a function key", {XKB_KEY_F12}, XKB_KEY_F12, 88, keyF1 + 11},
    {"a full stop is not the delete key", {XKB_KEY_period, XKB_KEY_greater}, XKB_KEY_period, 52, 190},
    {"a key that makes nothing", {}, XKB_KEY_NoSymbol, 0, keyUnknown},
    {"a key that nobody knows", {XKB_KEY_XF86Calculator}, XKB_KEY_XF86Calculator, 140, keyUnknown},
};

TEST(keysOfTheKeyboard, HaveTheirNumbers)
{
    for (const keyRow& row : Rows)
        EXPECT_EQ(windowKeyOf(row.Symbols, row.Current, row.Place), row.Key) << row.Name;
}

TEST(keysOfTheKeyboard, MakeControlCharacters)
{
    EXPECT_EQ(windowControlCharacter('A'), 1u);
    EXPECT_EQ(windowControlCharacter('Z'), 26u);
    EXPECT_EQ(windowControlCharacter(keyBackspace), 127u);
    EXPECT_EQ(windowControlCharacter(keyEnter), 10u);
    EXPECT_EQ(windowControlCharacter(keyDelete), 0u);
    EXPECT_EQ(windowControlCharacter('1'), 0u);
}

}  // namespace
