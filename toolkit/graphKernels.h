// Operations on whole arrays of samples, as graphs need them.
//
// Each entry of the table chooses at its first call, once for the program, the fastest form that this
// processor has; the forms agree in every bit, but for the rounding of LogScale. Any thread, the first call
// too. Arrays may have any alignment; a count of 0 touches none of them.
//
// No form traps on anything: a NaN is no number, so MinMax, Min and Max pass over it, LogScale takes it for a
// value below the smallest normal float, and ScaleOffset and Deinterleave hand it on. Infinities are numbers.
#pragma once

#include <atomic>
#include <cstdint>

// One operation: a function that another may take the place of while threads call it.
template <class Operation>
class graphKernel;

template <class Result, class... Arguments>
class graphKernel<Result(Arguments...)>
{
public:
    using form = Result (*)(Arguments...);

    explicit constexpr graphKernel(form first) : Form(first) {}

    // All forms are code and need no data that another thread would have to publish.
    Result operator()(Arguments... arguments) const
    {
        return Form.load(std::memory_order_relaxed)(arguments...);
    }
    void Choose(form chosen) { Form.store(chosen, std::memory_order_relaxed); }

private:
    std::atomic<form> Form;
};

using graphMinMax = void(const float* data, uint64_t count, float* pair);
using graphScaleOffset = void(float* destination, const float* source, uint64_t count, float c, float k);
using graphLogScale = void(float* destination, const float* source, uint64_t count, float k);
using graphExtreme = float(const float* data, uint64_t count);
using graphDeinterleave = void(const float* source, uint64_t pairs, float* first, float* second);

struct graphKernelTable {
    // The smallest and the largest element; 0 and 0 when no element is a number. A zero comes out positive.
    graphKernel<graphMinMax> MinMax;

    // (source + c) * k, each operation rounded. The arrays are the same or apart.
    graphKernel<graphScaleOffset> ScaleOffset;

    // k * ln(max(source, graphLogLeast)). The arrays are the same or apart. Forms differ from each other by
    // at most graphLogRounding of the value.
    graphKernel<graphLogScale> LogScale;

    graphKernel<graphExtreme> Min;  // as MinMax
    graphKernel<graphExtreme> Max;

    // 2 * pairs elements into two arrays, which are apart from the source.
    graphKernel<graphDeinterleave> Deinterleave;
};

constexpr float graphLogLeast = 1.17549435e-38F;  // the smallest normal float
constexpr float graphLogRounding = 4.8e-7F;       // four units in the last place

extern graphKernelTable graphKernels;
