// Four lanes, which every x86-64 has, and the way to more.
#include "toolkit/graphKernelsForms.h"

#if defined(__x86_64__)

namespace {
constexpr uint32_t lanes = 4;
}

#include "toolkit/graphKernelsLoops.h"

namespace {

using loops = vectorLoops;

bool hasEight()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
}

}  // namespace

void graphSplitFour(const float* source, uint32_t pairs, float* first, float* second)
{
    uint32_t i = 0;
    for (; pairs - i >= lanes; i += lanes) {
        const loops::number a = loops::Load(source + size_t{2} * i);
        const loops::number b = loops::Load(source + size_t{2} * i + lanes);
        loops::Store(first + i, __builtin_shufflevector(a, b, 0, 2, 4, 6));
        loops::Store(second + i, __builtin_shufflevector(a, b, 1, 3, 5, 7));
    }
    for (; i < pairs; ++i) {
        first[i] = source[size_t{2} * i];
        second[i] = source[size_t{2} * i + 1];
    }
}

const graphKernelForms* graphVectorForms(graphVector width)
{
    static constexpr graphKernelForms four =
        graphFormsFrom<loops::SpanLoop, loops::ScaleLoop, loops::LogLoop, graphSplitFour>();
    if (width == graphVector::Four)
        return &four;
    return hasEight() ? &graphFormsEight() : nullptr;
}

#else

const graphKernelForms* graphVectorForms(graphVector /*width*/)
{
    return nullptr;
}

#endif
