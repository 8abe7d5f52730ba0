// For backends: which baud rates are good enough.
#pragma once

#include <cstdint>

// Whether a line works at the rate that a driver took, which may be the nearest that its clock has. A
// receiver bears an error of three per cent.
constexpr bool commRateIsNear(uint32_t asked, uint32_t taken)
{
    constexpr uint32_t Tolerance = 32;
    const uint32_t distance = asked > taken ? asked - taken : taken - asked;
    return distance <= asked / Tolerance;
}
