#include "tools/simulator/simNoise.h"

namespace {

// A step that visits every number of 64 bits, and a mixing of its bits.
constexpr uint64_t Step = 0x9E3779B97F4A7C15;

uint64_t Mixed(uint64_t value)
{
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
    value = (value ^ value >> 27) * 0x94D049BB133111EB;
    return value ^ value >> 31;
}

double UnitOf(uint64_t value)
{
    return static_cast<double>(value >> 11) * 0x1p-53;
}

}  // namespace

uint64_t simNoise::Next()
{
    State += Step;
    return Mixed(State);
}

double simNoise::Unit()
{
    return UnitOf(Next());
}

double simNoise::Normal()
{
    // The sum of twelve has a deviation of 1 and a mean of 6, and never runs away.
    double sum = -6;
    for (int part = 0; part < 12; ++part)
        sum += Unit();
    return sum;
}

double simNoise::Of(uint64_t first, uint64_t second)
{
    return UnitOf(Mixed(Mixed(first + Step) ^ (second + 1) * Step));
}
