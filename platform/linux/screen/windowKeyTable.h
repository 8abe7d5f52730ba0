// From what is printed on a key to its virtual number, and to the control characters. Computed only.
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <span>

// Keys without a number of their own.
constexpr uint32_t keyUnknown = 255;

// `symbols` are those that the key makes in the present layout, from the plain one up; `current` is the one
// that it makes now. A layout without Latin letters has the numbers that the keys have where it has them, by
// their place (`code`, as the kernel counts). Never 0.
uint32_t windowKeyOf(std::span<const xkb_keysym_t> symbols, xkb_keysym_t current, uint32_t code);

// The character that a key with the control key makes, where that is not the layout's own; 0 for none.
uint32_t windowControlCharacter(uint32_t key);
