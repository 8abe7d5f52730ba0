// What traces hold: pushing, transforming, smoothing.
#include "toolkit/ctrlGraphWave.h"

#include "foundations/heap/mem.h"
#include "platform/clock.h"
#include "toolkit/graphKernels.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t firstSize = 50;
constexpr float decimalsPerLn = 0.4342944622F;
constexpr float lnPerDecimal = 2.3025851249F;
constexpr float turn = 6.2831855F;

constexpr uint32_t modesOff = graphPoints | graphDifference;
constexpr uint32_t modesOn = graphLines | graphStems | graphSteps;

}  // namespace

// --- Memory

graphFloats::~graphFloats()
{
    memFree(Data);
}

float* graphFloats::Room(uint64_t count)
{
    if (count > Count) {
        Data = static_cast<float*>(memRealloc(Data, count * sizeof(float), 0));
        Count = count;
    }
    return Data;
}

ctrlGraph::Series::~Series()
{
    memFree(Data);
}

void ctrlGraph::Series::Resize(uint64_t count)
{
    if (count != Count)
        Data = static_cast<float*>(memRealloc(Data, count * sizeof(float), 0));
    Count = count;
}

// --- Life

ctrlGraphWave::ctrlGraphWave(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                             uint32_t style)
    : ctrlGraph(parent, x, y, width, height, style)
{
    StyleStore(graphLines | graphPoints, 0);
    SetSeriesCount(1);
}

ctrlGraphWave::ctrlGraphWave(ctrlWindow* parent, uint32_t style)
    : ctrlGraphWave(parent, 0, 0, firstSize, firstSize, style)
{}

ctrlGraphWave::~ctrlGraphWave()
{
    StateSet(stateClosing);
}

ctrlGraph::Series* ctrlGraphWave::SeriesById(unsigned id)
{
    const auto found =
        std::find_if(Traces.begin(), Traces.end(), [id](const auto& one) { return one->Id == id; });
    return found == Traces.end() ? nullptr : found->get();
}

void ctrlGraphWave::SetSeriesCount(size_t count)
{
    if (Traces.size() == count)
        return;
    {
        const thrSpinHold hold(Lock);
        while (Traces.size() > count)
            Traces.pop_back();
        while (Traces.size() < count)
            Traces.push_back(std::make_unique<series>(this, static_cast<uint32_t>(Traces.size())));
    }
    Redraw(stateRedrawTraces);
}

// --- Looks

void ctrlGraphWave::SetStyleWave(uint32_t bits)
{
    if (bits & graphLog)
        SetUnit(AxisY, "dB");
    const bool changes = HasStyle(bits & modesOff) || ((bits & modesOn) && !HasStyle(bits & modesOn));
    StyleStore(bits & modesOn, bits & modesOff);
    if (changes)
        Redraw(stateRedrawTraces);
    SetStyle(bits & ~(modesOff | modesOn));
}

void ctrlGraphWave::SetTraceColour(colour value)
{
    if (TraceColour == value)
        return;
    TraceColour = value;
    Redraw(stateRedrawTraces);
}

void ctrlGraphWave::SetTraceWidth(float value)
{
    if (TraceWidth == value)
        return;
    TraceWidth = value;
    Redraw(stateRedrawTraces);
}

void ctrlGraphWave::SetTickGapX(uint32_t pixels)
{
    if (LayoutX.Gap == pixels)
        return;
    LayoutX.Gap = pixels;
    Redraw(stateRedrawFrame | stateRedrawTraces);
}

void ctrlGraphWave::SetTickGapY(uint32_t pixels)
{
    const uint32_t kept = std::max(pixels, 1U);
    if (LayoutY.Gap == kept)
        return;
    LayoutY.Gap = kept;
    Redraw(stateRedrawFrame | stateRedrawTraces);
}

// --- Data

void ctrlGraphWave::Push(const float* data, uint64_t total, uint32_t channels)
{
    const int64_t now = clockSteadyNs();
    {
        const thrSpinHold hold(Lock);
        const bool pairs = channels == 1 && Traces.size() == 2;
        // Of one channel, two traces get one half each.
        const uint64_t each = pairs ? 2 : channels;
        const uint64_t count = each && data ? total / each : 0;
        for (const auto& trace : Traces) {
            if (trace->Frozen)
                continue;
            trace->Resize(count);
            const bool upright = HasFlag(graphUpright);
            trace->Extent = upright ? AxisY.Maximum - AxisY.Minimum : AxisX.FullExtent;
            trace->Offset = upright ? 0 : AxisX.Origin;
            trace->Dirty = true;
            trace->Time = now;
            trace->Flags = pairs ? uint32_t{seriesPairs} : 0;
        }
        if (count)
            Deal(data, count, channels, pairs);
    }
    Redraw(stateRedrawTraces);
}

void ctrlGraphWave::Deal(const float* data, uint64_t count, uint32_t channels, bool pairs)
{
    if (pairs && !Traces[0]->Frozen && !Traces[1]->Frozen) {
        graphKernels.Deinterleave(data, count, Traces[0]->Data, Traces[1]->Data);
        return;
    }
    const uint64_t apart = pairs ? 2 : channels;
    for (size_t i = 0; i < Traces.size(); ++i) {
        if (Traces[i]->Frozen)
            continue;
        const float* from = data + i % apart;
        float* to = Traces[i]->Data;
        if (apart == 1) {
            std::copy_n(from, count, to);
            continue;
        }
        for (uint64_t k = 0; k < count; ++k)
            to[k] = from[k * apart];
    }
}

void ctrlGraphWave::TransformSeries()
{
    const bool log = HasStyle(graphLog);
    const bool exp = HasStyle(graphExp);
    for (const auto& trace : Traces) {
        if (!trace->Dirty || trace->Count == 0)
            continue;
        trace->Dirty = false;
        // One undoes the other, but the logarithm would have lost what is below 0.
        if (log == exp)
            continue;
        if (log) {
            graphKernels.LogScale(trace->Data, trace->Data, trace->Count, DbFactor * decimalsPerLn);
            continue;
        }
        const float k = lnPerDecimal / DbFactor;
        std::transform(trace->Data, trace->Data + trace->Count, trace->Data,
                       [k](float x) { return std::exp(k * x); });
    }
}

void ctrlGraphWave::Smooth(float* data, uint64_t count, float cut)
{
    const float a = std::exp(-turn * cut);
    if (count <= 2 || !(a > 0 && a < 1))
        return;
    bool begun = false;
    float before = 0;
    const auto pass = [&](float& sample) {
        if (!std::isfinite(sample))
            return;
        if (begun)
            sample = (1 - a) * sample + a * before;
        before = sample;
        begun = true;
    };
    std::for_each(data, data + count, pass);
    begun = false;
    std::for_each(std::make_reverse_iterator(data + count), std::make_reverse_iterator(data), pass);
}
