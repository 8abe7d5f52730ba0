// The loops with vectors, of as many lanes as `lanes` of the source that includes this says. That source has
// told the compiler which processor to write for; the unnamed namespace keeps what is made of them apart.
//
// No function of a library is called: one that is made here would be written for that processor, and the
// linker might keep it for the whole program. Loads and stores are unaligned: arrays are, and not every
// compiler keeps its own stack aligned to 32.
#pragma once

#include "toolkit/graphKernelsForms.h"

#include <cstddef>
#include <cstring>
#include <limits>

namespace {

struct vectorLoops {
    // ln(1 + m) for m in sqrt(1/2) - 1 to sqrt(2) - 1 is m - m^2 / 2 + m^3 times this polynomial; ln 2 is
    // added in two parts, of which the first is exact in its products with small whole numbers.
    static constexpr float lnPolynomial[] = {7.0376836292E-2F,  -1.1514610310E-1F, 1.1676998740E-1F,
                                             -1.2420140846E-1F, 1.4249322787E-1F,  -1.6668057665E-1F,
                                             2.0000714765E-1F,  -2.4999993993E-1F, 3.3333331174E-1F};
    static constexpr size_t lnTerms = sizeof lnPolynomial / sizeof *lnPolynomial;
    static constexpr float ln2High = 0.693359375F;
    static constexpr float ln2Low = -2.12194440e-4F;
    static constexpr float infinite = std::numeric_limits<float>::infinity();
    static constexpr float rootHalf = 0.707106781186547524F;
    static constexpr int32_t mantissaBits = 23;
    static constexpr int32_t mantissaMask = 0x007FFFFF;
    static constexpr int32_t halfBits = 0x3F000000;  // of 0.5
    static constexpr int32_t exponentBias = 126;     // of a mantissa from 0.5 up

    using number [[gnu::vector_size(lanes * sizeof(float))]] = float;
    using whole [[gnu::vector_size(lanes * sizeof(int32_t))]] = int32_t;

    [[gnu::always_inline]] static inline number Load(const float* from)
    {
        number value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    [[gnu::always_inline]] static inline void Store(float* to, number value)
    {
        std::memcpy(to, &value, sizeof value);
    }

    [[gnu::always_inline]] static inline number Ln(number x)
    {
        const whole bits = reinterpret_cast<whole>(x);
        const number mantissa = reinterpret_cast<number>((bits & mantissaMask) | halfBits);
        const whole low = mantissa < rootHalf;  // -1 where so
        const number e = __builtin_convertvector((bits >> mantissaBits) - exponentBias + low, number);
        const number m = mantissa - 1.0F + reinterpret_cast<number>(reinterpret_cast<whole>(mantissa) & low);
        const number square = m * m;
        number y = number{} + lnPolynomial[0];
        for (size_t i = 1; i < lnTerms; ++i)
            y = y * m + lnPolynomial[i];
        y = y * m * square + e * ln2Low - square * 0.5F;
        y = m + y + e * ln2High;
        return x == infinite ? x : y;
    }

    [[gnu::always_inline]] static inline void Log(float* destination, const float* source, float k)
    {
        const number x = Load(source);
        const number least = number{} + graphLogLeast;
        // A NaN is above nothing.
        Store(destination, Ln(x > least ? x : least) * k);
    }

    static void SpanLoop(const float* data, uint32_t count, graphSpan& span)
    {
        number least = number{} + span.Least;
        number most = number{} + span.Most;
        uint32_t i = 0;
        for (; count - i >= lanes; i += lanes) {
            const number x = Load(data + i);
            least = x < least ? x : least;
            most = x > most ? x : most;
        }
        float found[2 * lanes];
        Store(found, least);
        Store(found + lanes, most);
        for (uint32_t lane = 0; lane < lanes; ++lane) {
            span.Least = found[lane] < span.Least ? found[lane] : span.Least;
            span.Most = found[lanes + lane] > span.Most ? found[lanes + lane] : span.Most;
        }
        for (; i < count; ++i)
            span.Take(data[i]);
    }

    static void ScaleLoop(float* destination, const float* source, uint32_t count, float c, float k)
    {
        uint32_t i = 0;
        for (; count - i >= lanes; i += lanes)
            Store(destination + i, (Load(source + i) + c) * k);
        for (; i < count; ++i)
            destination[i] = (source[i] + c) * k;
    }

    static void LogLoop(float* destination, const float* source, uint32_t count, float k)
    {
        uint32_t i = 0;
        for (; count - i >= lanes; i += lanes)
            Log(destination + i, source + i, k);
        // The rest takes the same road, so that a sample has one logarithm wherever it stands.
        float rest[lanes] = {};
        for (uint32_t at = i; at < count; ++at)
            rest[at - i] = source[at];
        Log(rest, rest, k);
        for (uint32_t at = i; at < count; ++at)
            destination[at] = rest[at - i];
    }
};

}  // namespace
