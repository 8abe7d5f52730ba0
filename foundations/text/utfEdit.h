// Appending to UTF-8 strings, and editing them by code points. Any thread, each on its own operands.
#pragma once

#include <cstddef>
#include <string>

// Messages are built by chains of these. A null text appends "(null)".
std::string& operator<<(std::string& target, const char* text);
std::string& operator<<(std::string& target, char character);
std::string& operator<<(std::string& target, const std::string& text);

// The number of code points in at most `bytes` bytes, up to a NUL: every byte that is no continuation byte
// counts.
size_t utfLength(const char* text, size_t bytes);

// The byte at which a code point begins, counting from 0; the length of the text for an index past its end.
size_t utfOffset(const char* text, size_t index);

// Removes `count` code points from `index` on, at most to the end.
void utfErase(std::string& text, size_t index, size_t count);

// Puts a code point before the one at `index`, or at the end for an index past it. Zero and values above
// U+10FFFF insert nothing.
void utfInsert(std::string& text, size_t index, char32_t codePoint);

// Puts `put` in the place of every `find`; a `put` of zero or above U+10FFFF takes them away. Equal ones, and
// a `find` of zero or above U+10FFFF, change nothing.
void utfReplace(std::string& text, char32_t find, char32_t put);

// Cuts the text to at most `bytes` bytes and never within a sequence. A text that is no longer is left alone.
void utfTruncate(std::string& text, size_t bytes);
