// The words of the settings' store: blanks between them, quotes around texts, bytes as two digits each.
//
// Within quotes, \\ \" \n \r \t stand for what they usually do, and \x with two digits for another control
// character.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Whether all of a text is well-formed UTF-8 without a NUL.
bool registryIsUTF8(std::string_view text);

std::string registryQuote(std::string_view text);

// Takes a quoted text and the blanks behind it off the front of `text`; nothing when there is none.
std::optional<std::string> registryUnquote(std::string_view& text);

// The text without blanks at its ends.
std::string_view registryTrim(std::string_view text);

// Takes a word and the blanks behind it off the front of `text`; empty when nothing is left.
std::string_view registryTakeWord(std::string_view& text);

void registryAppendHex(std::string& text, uint8_t byte);

// The byte that the first two digits make, in either case; nothing when they are none.
std::optional<uint8_t> registryHexByte(std::string_view text);
