// The forms of the kernels: a plain loop, and for x86-64 two with vectors.
#pragma once

#include "toolkit/graphKernels.h"

#include <algorithm>
#include <cstdint>
#include <limits>

enum class graphVector : uint8_t {
    None,
    Four,   // SSE2, which every x86-64 has
    Eight,  // AVX2
};

struct graphKernelForms {
    graphMinMax* MinMax;
    graphScaleOffset* ScaleOffset;
    graphLogScale* LogScale;
    graphExtreme* Min;
    graphExtreme* Max;
    graphDeinterleave* Deinterleave;
};

// Null where this processor cannot run it; never for None. Any thread.
const graphKernelForms* graphFormsOf(graphVector width);

// Null when the program was built for another processor.
const graphKernelForms* graphVectorForms(graphVector width);

// On x86-64 only; to be run only where there is AVX2.
const graphKernelForms& graphFormsEight();
void graphSplitFour(const float* source, uint32_t pairs, float* first, float* second);

// --- For the forms

// The smallest and the largest number so far. Without a number Least is above Most.
struct graphSpan {
    float Least = std::numeric_limits<float>::infinity();
    float Most = -std::numeric_limits<float>::infinity();

    bool HasNumber() const { return Least <= Most; }
    void Take(float value)
    {
        Least = value < Least ? value : Least;
        Most = value > Most ? value : Most;
    }
};

// The loops below count in 31 bits; longer arrays come to them in pieces.
constexpr uint64_t graphChunkMost = 0x7FFFFFFF;

// Calls `piece` with the offset and the length of each.
template <class Piece>
void graphChunks(uint64_t count, uint64_t most, Piece piece)
{
    for (uint64_t at = 0; at < count;) {
        const uint64_t length = std::min(count - at, most);
        piece(at, static_cast<uint32_t>(length));
        at += length;
    }
}

using graphSpanLoop = void(const float* data, uint32_t count, graphSpan& span);
using graphScaleLoop = void(float* destination, const float* source, uint32_t count, float c, float k);
using graphLogLoop = void(float* destination, const float* source, uint32_t count, float k);
using graphSplitLoop = void(const float* source, uint32_t pairs, float* first, float* second);

template <graphSpanLoop* Loop>
graphSpan graphSpanOf(const float* data, uint64_t count)
{
    graphSpan span;
    graphChunks(count, graphChunkMost, [&](uint64_t at, uint32_t length) { Loop(data + at, length, span); });
    // Which zero a vector finds depends on the order of its comparisons; the sum has only one.
    return span.HasNumber() ? graphSpan{span.Least + 0.0F, span.Most + 0.0F} : graphSpan{0, 0};
}

template <graphSpanLoop* Span, graphScaleLoop* Scale, graphLogLoop* Log, graphSplitLoop* Split>
constexpr graphKernelForms graphFormsFrom()
{
    return {
        [](const float* data, uint64_t count, float* pair) {
            const graphSpan span = graphSpanOf<Span>(data, count);
            pair[0] = span.Least;
            pair[1] = span.Most;
        },
        [](float* destination, const float* source, uint64_t count, float c, float k) {
            graphChunks(count, graphChunkMost, [&](uint64_t at, uint32_t length) {
                Scale(destination + at, source + at, length, c, k);
            });
        },
        [](float* destination, const float* source, uint64_t count, float k) {
            graphChunks(count, graphChunkMost,
                        [&](uint64_t at, uint32_t length) { Log(destination + at, source + at, length, k); });
        },
        [](const float* data, uint64_t count) { return graphSpanOf<Span>(data, count).Least; },
        [](const float* data, uint64_t count) { return graphSpanOf<Span>(data, count).Most; },
        [](const float* source, uint64_t pairs, float* first, float* second) {
            graphChunks(pairs, graphChunkMost, [&](uint64_t at, uint32_t length) {
                Split(source + 2 * at, length, first + at, second + at);
            });
        },
    };
}
