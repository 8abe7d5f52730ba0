#include "toolkit/editMath.h"

#include <cmath>
#include <limits>

namespace {

constexpr int64_t most = std::numeric_limits<int64_t>::max();
constexpr int64_t least = std::numeric_limits<int64_t>::min();

}  // namespace

int64_t editAdd(int64_t one, int64_t other)
{
    if (other > 0 && one > most - other)
        return most;
    if (other < 0 && one < least - other)
        return least;
    return one + other;
}

int64_t editMultiply(int64_t one, int64_t other)
{
    int64_t product = 0;
    if (!__builtin_mul_overflow(one, other, &product))
        return product;
    return (one < 0) == (other < 0) ? most : least;
}

int64_t editInteger(double value)
{
    constexpr double beyond = 0x1p63;
    if (std::isnan(value))
        return 0;
    if (value >= beyond)
        return most;
    return value < -beyond ? least : static_cast<int64_t>(value);
}

int64_t editTenTo(uint64_t power)
{
    constexpr uint64_t largest = 18;
    int64_t result = 1;
    for (uint64_t each = 0; each < power; ++each) {
        if (each == largest)
            return most;
        result *= 10;
    }
    return result;
}

int64_t editSnap(int64_t value, int64_t step)
{
    const int64_t sum = editAdd(value, step / 2);
    const int64_t rest = sum % step;
    return rest < 0 ? editAdd(sum, -rest - step) : sum - rest;
}

int64_t editWrap(int64_t value, int64_t minimum, int64_t maximum)
{
    // Unsigned, for the distances may be longer than a signed number counts.
    const auto first = static_cast<uint64_t>(minimum);
    const uint64_t range = static_cast<uint64_t>(maximum) - first;
    if (value >= minimum)
        return static_cast<int64_t>(first + (static_cast<uint64_t>(value) - first) % range);
    const uint64_t below = (first - static_cast<uint64_t>(value)) % range;
    return below == 0 ? minimum : static_cast<int64_t>(first + (range - below));
}

double editWrap(double value, double minimum, double maximum)
{
    const double range = maximum - minimum;
    if (!std::isfinite(value) || !std::isfinite(range))
        return value;
    const double rest = std::fmod(value - minimum, range);
    return minimum + (rest < 0 ? rest + range : rest);
}
