// The compressed forms of stored pixels.
#pragma once

#include "toolkit/pixmapBytes.h"

#include <cstdint>
#include <span>

// Appends to `out` what the stream holds. False when the stream is wrong; `out` is then cleared. True also
// when `out` had to drop what it was given. The stream may be anything; the time taken is bounded by its
// length and the most that `out` holds. Any thread.
//
// The first bytes name the form.
//
// Three different bytes: these are markers. A byte that is none of them stands for itself; behind a marker
// come a count of 1, 2 or 4 bytes, lowest first, for the first, second and third marker, and a byte to
// repeat.
//
// 0 and 0: runs and literals. Behind a control byte c with its high bit set come (c & 0x7F) + 1 bytes; behind
// another a byte to repeat c + 2 times.
//
// 1 and 1: a stream of bits, the highest bit of each byte first. Items begin with an operation in 2 bits:
//
//   0  the end
//   1  count, byte          the byte, count times
//   2  length, distance     length bytes from distance bytes back in the output, which may overlap
//   3  count, bytes         as they are
//
// A number is a prefix and, in the bits behind it, the number less 1: 0 and 7 bits, 10 and 14, 110 and 21,
// 1110 and 28, 11110 and 32. The prefix 11111 alone is 0. The data may also end without the operation 0. A
// field that the end cuts has the value of the bits that are there, 0 when there are none. A distance to
// before the first byte is wrong.
bool pixmapDecode(std::span<const uint8_t> stream, pixmapBytes& out);
