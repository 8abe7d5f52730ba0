// What stands at an axis: the steps and their texts.
#include "foundations/text/utfNumber.h"
#include "toolkit/ctrlGraph.h"
#include "toolkit/ctrlGraphTicks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double ten = 10;
constexpr double nearly = 0.000001;  // of a step, for what arithmetic takes off
constexpr int decimalsUnknown = 6;
constexpr int decimalsMost = 17;

constexpr const char* prefixes[] = {"T", "G", "M", "k", "", "m", "\xC2\xB5", "n", "p"};
constexpr double prefixFirst = 1e-12;
constexpr int prefixDecimals = 12;
constexpr double prefixRatio = 1000;
constexpr int prefixRatioDecimals = 3;

// The power of ten in which a step is written without decimals.
int exponentOf(double step)
{
    const int exponent = static_cast<int>(std::floor(std::log10(step) + nearly));
    return exponent > 0 && !ctrlGraph::IsMajorTick(step, std::pow(ten, exponent)) ? exponent - 1 : exponent;
}

bool isStep(double step)
{
    return std::isfinite(step) && step > 0;
}

// A step as its digit, 1, 2 or 5, and its power.
struct stepParts {
    int Digit;
    double Power;
};

stepParts partsOf(double step)
{
    const double power = std::pow(ten, std::floor(std::log10(step) + nearly));
    return {static_cast<int>(std::lround(step / power)), power};
}

}  // namespace

bool ctrlGraph::IsMajorTick(double position, double step)
{
    if (!isStep(step) || !std::isfinite(position))
        return false;
    const double rest = std::fmod(std::abs(position), step);
    return rest < step * nearly || step - rest < step * nearly;
}

double ctrlGraph::VerticalStep() const
{
    const double range = AxisY.Maximum - AxisY.Minimum;
    return std::pow(1 / ten, std::ceil(std::log10(std::max(Height(), 1U) / range)));
}

std::string ctrlGraph::AxisLabel(const Axis& axis, double value, double step)
{
    const int exponent = isStep(step) ? exponentOf(step) : -decimalsUnknown;
    int decimals = -exponent;
    const char* prefix = "";
    if (axis.Flags & axisPrefixes) {
        double most = std::max(std::abs(axis.Minimum), std::abs(axis.Maximum)) * prefixFirst;
        value *= prefixFirst;
        decimals = prefixDecimals - exponent;
        size_t steps = 0;
        for (; steps + 1 < std::size(prefixes) && !(most > 1.0); ++steps) {
            most *= prefixRatio;
            value *= prefixRatio;
            decimals -= prefixRatioDecimals;
        }
        prefix = prefixes[steps];
    }
    std::string text;
    text << utfFlt('f', value, std::clamp(decimals, 0, decimalsMost));
    if (*prefix || !axis.Unit.empty())
        text += ' ';
    return text + prefix + axis.Unit;
}

double graphStepFrom(double value)
{
    if (!isStep(value))
        return 0;
    const double power = std::pow(ten, std::floor(std::log10(value)));
    if (!isStep(power))
        return 0;
    for (const double digit : {1.0, 2.0, 5.0}) {
        if (digit * power >= value * (1 - nearly))
            return digit * power;
    }
    return ten * power;
}

double graphStepAfter(double step)
{
    constexpr double more = 1.5;
    return graphStepFrom(step * more);
}

uint32_t graphStepParts(double step, double least)
{
    constexpr uint32_t choices[] = {5, 4, 2};
    const int digit = partsOf(step).Digit;
    for (const uint32_t parts : choices) {
        const bool even = digit == 2 ? parts != 5 : digit == 5 ? parts == 5 : parts != 4;
        if (even && step / parts >= least)
            return parts;
    }
    return 1;
}

graphMultiples graphMultiplesOf(double step, double min, double max, uint32_t most)
{
    constexpr double exact = 4503599627370496;  // whole numbers are apart up to here
    if (!isStep(step))
        return {};
    const double first = std::ceil(min / step - nearly);
    const double last = std::floor(max / step + nearly);
    if (!(std::abs(first) < exact) || !(std::abs(last) < exact) || last < first || last - first >= most)
        return {};
    return {first, static_cast<uint32_t>(last - first) + 1};
}
