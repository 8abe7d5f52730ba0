#include "bench/ratio.h"

#include "foundations/text/utfNumber.h"

#include <algorithm>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <iterator>

namespace {

// What a receiver sends most: a coordinate, a height, a whole number.
constexpr double Values[] = {47.285233, 123.4, 8.0};
constexpr int64_t Integers[] = {7, -31, 1998};

// A message grows by some numbers and begins anew.
constexpr size_t MessageLength = 4096;

template <class Body>
void Messages(benchmark::State& state, const Body& append)
{
    std::string text;
    text.reserve(2 * MessageLength);
    size_t next = 0;
    for ([[maybe_unused]] auto _ : state) {
        append(text, next);
        next = next == std::size(Values) - 1 ? 0 : next + 1;
        if (text.size() > MessageLength)
            text.clear();
        benchmark::DoNotOptimize(text.data());
    }
}

// `print` is a call of snprintf with a format that the compiler can check. Like every candidate it ends in
// the string, since that is where the numbers are wanted.
template <class Print>
void Printed(std::string& text, const Print& print)
{
    char buffer[64];
    text.append(buffer, static_cast<size_t>(print(buffer, sizeof buffer)));
}

template <class... Arguments>
void Chars(std::string& text, Arguments... arguments)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, std::end(buffer), arguments...);
    text.append(buffer, result.ptr);
}

void IntegerGroup()
{
    ratioGroup("utfInt d width 4")
        .Measure([](benchmark::State& state) {
            Messages(state, [](std::string& text, size_t next) { text << utfInt('d', Integers[next], 4u); });
        })
        .Against("snprintf",
                 [](benchmark::State& state) {
                     Messages(state, [](std::string& text, size_t next) {
                         Printed(text, [=](char* buffer, size_t size) {
                             return std::snprintf(buffer, size, "%4" PRId64, Integers[next]);
                         });
                     });
                 })
        .Against("to_chars", [](benchmark::State& state) {
            Messages(state, [](std::string& text, size_t next) {
                const size_t start = text.size();
                Chars(text, Integers[next]);
                text.insert(start, 4 - std::min<size_t>(4, text.size() - start), ' ');
            });
        });
}

using printFunction = int (*)(char* buffer, size_t size, int digits, double value);

int Fixed(char* buffer, size_t size, int digits, double value)
{
    return std::snprintf(buffer, size, "%.*f", digits, value);
}

int General(char* buffer, size_t size, int digits, double value)
{
    return std::snprintf(buffer, size, "%.*g", digits, value);
}

void FloatGroup(const std::string& name, char conversion, int digits, printFunction print,
                std::chars_format charsFormat)
{
    ratioGroup(name)
        .Measure([=](benchmark::State& state) {
            Messages(state, [=](std::string& text, size_t next) {
                text << utfFlt(utfFmt::DotPoint, conversion, Values[next], 0u, digits);
            });
        })
        .Against("snprintf",
                 [=](benchmark::State& state) {
                     Messages(state, [=](std::string& text, size_t next) {
                         Printed(text, [=](char* buffer, size_t size) {
                             return print(buffer, size, digits, Values[next]);
                         });
                     });
                 })
        .Against("to_chars", [=](benchmark::State& state) {
            Messages(state,
                     [=](std::string& text, size_t next) { Chars(text, Values[next], charsFormat, digits); });
        });
}

}  // namespace

void ratioGroups()
{
    IntegerGroup();
    for (int decimals = 0; decimals <= 4; ++decimals) {
        FloatGroup("utfFlt f " + std::to_string(decimals) + " decimals", 'f', decimals, Fixed,
                   std::chars_format::fixed);
    }
    FloatGroup("utfFlt g 8 digits", 'g', 8, General, std::chars_format::general);
}
