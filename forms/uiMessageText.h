// A text brought into the room that a message box has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Breaks lines wider than `widthMost` at a blank, or within a word that alone is too wide, and leaves out
// what is beyond `linesMost` lines, the last of which is then "...". `widthOf` measures a part of a line that
// is not empty. A line takes one code point at least, so that hostile widths come to an end too.
std::string uiMessageFit(std::string_view text, uint32_t widthMost, size_t linesMost,
                         const std::function<uint32_t(std::string_view part)>& widthOf);
