// Whole numbers read from text, as wide on every system as on the first one that wrote them.
#pragma once

#include <cstdint>

// A signed decimal number behind white space, held to the range of 32 bits. `end` receives where it stopped:
// the beginning of the text when there is none, with the result 0.
int32_t settingsParseInt32(const char* text, const char** end);

// An unsigned number, decimal or hexadecimal by `base`, that may bear a sign: "-1" is 0xFFFFFFFF. A number
// too large gives 0xFFFFFFFF, whatever its sign.
uint32_t settingsParseUInt32(const char* text, const char** end, int base);

// The same with 64 bits, decimal.
int64_t settingsParseInt64(const char* text, const char** end);
uint64_t settingsParseUInt64(const char* text, const char** end);
