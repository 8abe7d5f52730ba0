// The plain loops, and the choice at first use.
#include "toolkit/graphKernels.h"

#include "toolkit/graphKernelsForms.h"

#include <cmath>
#include <cstring>

namespace {

// --- Plain loops

void spanPlain(const float* data, uint32_t count, graphSpan& span)
{
    for (uint32_t i = 0; i < count; ++i)
        span.Take(data[i]);
}

void scalePlain(float* destination, const float* source, uint32_t count, float c, float k)
{
    for (uint32_t i = 0; i < count; ++i)
        destination[i] = (source[i] + c) * k;
}

void logPlain(float* destination, const float* source, uint32_t count, float k)
{
    for (uint32_t i = 0; i < count; ++i)
        destination[i] = k * std::log(source[i] > graphLogLeast ? source[i] : graphLogLeast);
}

// Copies bits: a float in a register of an old kind would lose what its NaN says.
void splitPlain(const float* source, uint32_t pairs, float* first, float* second)
{
    for (uint32_t i = 0; i < pairs; ++i) {
        std::memcpy(first + i, source + size_t{2} * i, sizeof(float));
        std::memcpy(second + i, source + size_t{2} * i + 1, sizeof(float));
    }
}

constexpr graphKernelForms Plain = graphFormsFrom<spanPlain, scalePlain, logPlain, splitPlain>();

// --- The choice

const graphKernelForms& fastest()
{
    for (const graphVector width : {graphVector::Eight, graphVector::Four}) {
        if (const graphKernelForms* forms = graphFormsOf(width))
            return *forms;
    }
    return Plain;
}

// What an entry begins as. Threads that come together all store the same.
template <class Operation, graphKernel<Operation> graphKernelTable::*Entry,
          Operation* graphKernelForms::*Form>
struct resolver;

template <class Result, class... Arguments, graphKernel<Result(Arguments...)> graphKernelTable::*Entry,
          Result (*graphKernelForms::*Form)(Arguments...)>
struct resolver<Result(Arguments...), Entry, Form> {
    static Result First(Arguments... arguments)
    {
        const auto chosen = fastest().*Form;
        (graphKernels.*Entry).Choose(chosen);
        return chosen(arguments...);
    }
};

template <class Operation, graphKernel<Operation> graphKernelTable::*Entry,
          Operation* graphKernelForms::*Form>
constexpr graphKernel<Operation> unresolved()
{
    return graphKernel<Operation>(resolver<Operation, Entry, Form>::First);
}

}  // namespace

const graphKernelForms* graphFormsOf(graphVector width)
{
    return width == graphVector::None ? &Plain : graphVectorForms(width);
}

constinit graphKernelTable graphKernels{
    unresolved<graphMinMax, &graphKernelTable::MinMax, &graphKernelForms::MinMax>(),
    unresolved<graphScaleOffset, &graphKernelTable::ScaleOffset, &graphKernelForms::ScaleOffset>(),
    unresolved<graphLogScale, &graphKernelTable::LogScale, &graphKernelForms::LogScale>(),
    unresolved<graphExtreme, &graphKernelTable::Min, &graphKernelForms::Min>(),
    unresolved<graphExtreme, &graphKernelTable::Max, &graphKernelForms::Max>(),
    unresolved<graphDeinterleave, &graphKernelTable::Deinterleave, &graphKernelForms::Deinterleave>(),
};
