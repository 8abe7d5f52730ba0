// What integers and floating point numbers have in common once their digits are written. Private to this
// folder.
#pragma once

#include "foundations/text/utfNumber.h"

#include <cstddef>

// Gives the number that was appended from `start` on its sign and the padding to `width` bytes. What stands
// before it is left alone.
void utfFinishField(std::string& target, size_t start, int32_t width, utfFlags flags, bool negative);
