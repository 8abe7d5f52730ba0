// Numbers read from text.
#pragma once

// Reads a decimal number behind blanks and tabs: sign, digits, a point with decimals, an exponent that may
// itself be a number with decimals and an exponent. The point is "." or, unless `dotOnly`, also the first
// byte of the locale's decimal point. `end`, if given, receives where the number stopped: behind the blanks
// and the sign when there is none, with the result 0.
//
// The text may be hostile. At most 32 exponents nest; the letter of a further one ends the number. Too large
// a number is infinite and too small a one 0, but none is ever no number: decimals beyond what a double
// resolves are skipped, and 0 and infinity stay what they are whatever the exponent. Any thread.
double utfParseFlt(const char* text, const char** end = nullptr, bool dotOnly = false);
