// Integers of a value that stop at their limits in place of overflowing. Any thread.
#pragma once

#include <cstdint>

int64_t editAdd(int64_t one, int64_t other);
int64_t editMultiply(int64_t one, int64_t other);

// Truncated; at the limits for what is beyond them.
int64_t editInteger(double value);

// Ten to a power of 0 or more.
int64_t editTenTo(uint64_t power);

// The nearest multiple of a step, which is above 0; the upper one of two that are equally near.
int64_t editSnap(int64_t value, int64_t step);

// Into the range from `minimum` on, without `maximum`, which is above it.
int64_t editWrap(int64_t value, int64_t minimum, int64_t maximum);
double editWrap(double value, double minimum, double maximum);
