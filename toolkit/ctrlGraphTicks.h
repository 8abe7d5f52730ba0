// Steps of 1, 2 and 5 times powers of ten, in which axes are divided.
#pragma once

#include <cstdint>

// The smallest step that is not below `value`; 0 when there is none, as for what is no positive number.
double graphStepFrom(double value);

// The next larger step.
double graphStepAfter(double step);

// Into how many parts a step may be divided so that each is a step again, the most first: 5, or 4 for a 2,
// then 2 for a 1, a 4th part not being one, then 1.
uint32_t graphStepParts(double step, double least);

// The multiples of a step in a range. Of more than `most`, and where the step is too small to be seen next
// to the numbers themselves, there are none.
struct graphMultiples {
    double First = 0;  // of the step
    uint32_t Count = 0;
};
graphMultiples graphMultiplesOf(double step, double min, double max, uint32_t most);
