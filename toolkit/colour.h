// Colours, the shades that controls make of them, and those of the theme.
#pragma once

#include <cstdint>

// 0x00BBGGRR: red in the low byte. The top byte is no part of the colour. Negative values are for those who
// give them a meaning of their own, such as "the parent's".
using colour = int32_t;

namespace theme {

constexpr colour WindowBackground = 0x604040;
constexpr colour Face = 0x806060;  // of buttons and sliders
constexpr colour FaceText = 0xFFFFFF;
constexpr colour ListBorder = 0xC08080;  // of edits too
constexpr colour ListBackground = 0x000000;
constexpr colour Highlight = 0x00C0FF;  // highlighted text, a selected item
constexpr colour SelectionBackground = 0x004860;
constexpr colour LabelText = 0x00C0FF;
constexpr colour LabelTextSecond = 0xFFFF00;

}  // namespace theme

// Each channel times num / den, at most 255. The top byte of the result is 0.
//
// Made for speed and stable to the last bit: first den, then num is brought down to 255 with its twin in
// proportion, truncating. Division by 1 is exact and by 2 truncates; by any other den it is a multiplication
// with (65535 / den + 1) / 65536, which can be one above the truncated quotient. A den of 0, or one that
// becomes 0 because num / den is 256 or more, is a fatal fault. Any thread.
colour ColourScale(colour value, uint32_t num, uint32_t den);

// For each channel `from` plus (`to` minus `from`) times num / den, in 0 to 255. The top byte is 0.
//
// As ColourScale, with 127 for 255. Quotients round towards minus infinity, and by the multiplication a
// negative one that is whole comes out one lower: the way down from 3 to 0 is at 1 after a third. The order
// of den and num is the other way round than there.
colour ColourMix(colour from, colour to, uint32_t den, uint32_t num);
