// Eight lanes. What follows the compiler's instruction is run only where the processor has them.
#include "toolkit/graphKernelsForms.h"

#if defined(__x86_64__)

#include <cstddef>
#include <cstring>
#include <limits>

namespace {
constexpr uint32_t lanes = 8;
}

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

#include "toolkit/graphKernelsLoops.h"

namespace {

void spanEight(const float* data, uint32_t count, graphSpan& span)
{
    vectorLoops::SpanLoop(data, count, span);
}

void scaleEight(float* destination, const float* source, uint32_t count, float c, float k)
{
    vectorLoops::ScaleLoop(destination, source, count, c, k);
}

void logEight(float* destination, const float* source, uint32_t count, float k)
{
    vectorLoops::LogLoop(destination, source, count, k);
}

}  // namespace

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

const graphKernelForms& graphFormsEight()
{
    // Sorting pairs across the halves of an eight costs what it gains: splitting waits for memory anyway.
    static constexpr graphKernelForms eight =
        graphFormsFrom<spanEight, scaleEight, logEight, graphSplitFour>();
    return eight;
}

#endif
