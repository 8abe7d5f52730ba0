// Conversions between the three encodings of Unicode.
//
// Each appends to its target and returns it. A conversion stops at what it cannot read and keeps what came
// before; no replacement character is ever written. All stop at a NUL as well. Any thread; the text may not
// lie in the target.
#pragma once

#include <cstddef>
#include <string>

// As a count: up to the terminating NUL.
constexpr size_t utfToEnd = static_cast<size_t>(-1);

// `count` is in units. Stops at a surrogate that has no partner.
std::string& utfAppend8From16(std::string& target, const char16_t* text, size_t count = utfToEnd);

// `count` is in units. Stops at a value above U+10FFFF; surrogates are encoded like any other value.
std::string& utfAppend8From32(std::string& target, const char32_t* text, size_t count = utfToEnd);

// `count` is in bytes. Stops at a sequence that is cut short, begins with a continuation byte or a byte from
// 0xF8, or stands for more than U+10FFFF. Overlong forms and encoded surrogates are taken.
std::u16string& utfAppend16From8(std::u16string& target, const char* text, size_t count = utfToEnd);

// The bytes of one code point in UTF-8 at `target`, which has room for four: how many there are, 0 for a
// value above U+10FFFF.
size_t utfEncode(char32_t codePoint, char* target);
