// Numbers as text sentences carry them. All functions skip leading blanks, take one sign, stop at the first
// character that does not belong to the number, and give 0 when there is no digit. They know no locale, do
// not allocate and never fail.
#pragma once

#include <cstdint>
#include <string_view>

// Digits with a point and an exponent, rounded to the nearest number of the type; no infinity, no "nan", no
// hexadecimal. What is too large for the type gives the largest finite number with its sign.
double nmeaDouble(std::string_view text);
float nmeaFloat(std::string_view text);

// Digits alone. Kept between -4294967295 and 4294967295, whatever the number of digits.
int64_t nmeaInteger(std::string_view text);

// Up to eight hexadecimal digits of either case; blanks and signs are no part of such a number.
uint32_t nmeaHex(std::string_view text);
