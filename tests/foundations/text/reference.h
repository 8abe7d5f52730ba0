// Numbers as text once more, written down plainly from the rules, without regard for speed.
#pragma once

#include "foundations/text/utfNumber.h"

namespace reference {

std::string integer(const utfInt& number);
std::string floating(const utfFlt& number, const std::string& decimalPoint);

}  // namespace reference
