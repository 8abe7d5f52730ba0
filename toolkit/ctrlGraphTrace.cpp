// How traces come to the screen.
#include "toolkit/ctrlGraphWave.h"
#include "toolkit/graphKernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();

// What a fraction of a pixel may go wrong by rounding in single precision.
constexpr double exactness = 1.0 / 64;

bool hasNumber(const float* data, uint64_t count)
{
    return std::any_of(data, data + count, [](float x) { return !std::isnan(x); });
}

// A place among `count` samples.
uint64_t indexOf(double place, uint64_t count)
{
    if (!(place > 0))
        return 0;
    return place < static_cast<double>(count) ? static_cast<uint64_t>(place) : count;
}

}  // namespace

void ctrlGraphWave::Paint()
{
    if (!AskCursors())
        return;
    {
        const thrSpinHold hold(Lock);
        // Cleared before the work is done: what is pushed behind this paint asks for another.
        constexpr uint32_t both = stateRedrawFrame | stateRedrawTraces;
        const uint32_t bits = StateClear(both) & both;
        if (IsFrameStale(bits)) {
            ctrlWindow::Paint();
            BuildFrame(LayoutX, LayoutY);
        }
        DrawPlot();
        TransformSeries();
        PaintTraces();
        DrawLabels();
        DrawCursors();
    }
    TellPainted();
}

// Traces may be gone, and the graph too, after any of them.
void ctrlGraphWave::TellPainted()
{
    const ctrlLife life(this);
    for (size_t i = 0; life && i < Traces.size(); ++i) {
        series& trace = *Traces[i];
        const auto handler = trace.OnPainted;
        if (handler && trace.Count)
            handler(trace);
    }
}

void ctrlGraphWave::PaintTraces()
{
    if (Box.IsEmpty())
        return;
    ClipPush(Box);
    for (const auto& trace : Traces) {
        if (trace->Count && trace->Shown)
            DrawSeries(*trace);
    }
    ClipPop();
    PenWidth(1);
}

graphPlot ctrlGraphWave::Plot(bool upright) const
{
    return {Box, upright};
}

ctrlGraphWave::mapping ctrlGraphWave::MappingOf(const series& trace) const
{
    const bool upright = HasFlag(graphUpright);
    const Axis& axis = upright ? AxisY : AxisX;
    const double length = upright ? static_cast<double>(PlotHeight) : PlotWidth;
    const double perValue = length / (axis.Maximum - axis.Minimum);
    // Upright samples are counted from the lower end of the axis.
    const double first = upright ? trace.Offset : trace.Offset - axis.Minimum;
    return {first * perValue, trace.Extent * perValue / static_cast<double>(trace.Count), upright};
}

// The samples as the style has them shown, all of the trace.
const float* ctrlGraphWave::Shown(const series& trace)
{
    const bool smooth = HasStyle(graphSmooth);
    const bool difference = HasStyle(graphDifference);
    if (!smooth && !difference)
        return trace.Data;
    float* work = Work.Room(trace.Count);
    std::copy_n(trace.Data, trace.Count, work);
    if (smooth)
        Smooth(work, trace.Count, SmoothCut);
    if (difference) {
        for (uint64_t i = trace.Count - 1; i > 0; --i)
            work[i] -= work[i - 1];
        work[0] = none;
    }
    return work;
}

// Values in pixels from the lower end of their axis.
const float* ctrlGraphWave::Mapped(const float* data, uint64_t count, bool upright)
{
    const Axis& axis = upright ? AxisX : AxisY;
    const double length = upright ? PlotWidth : static_cast<double>(PlotHeight);
    const double range = axis.Maximum - axis.Minimum;
    const double perValue = length / range;
    const auto offset = static_cast<float>(-axis.Minimum);
    const auto scale = static_cast<float>(perValue);
    float* mapped = Scratch.Room(count);
    const bool exact = std::abs(offset + axis.Minimum) * perValue <= exactness && std::isnormal(scale) &&
                       std::isfinite(offset);
    if (exact) {
        graphKernels.ScaleOffset(mapped, data, count, offset, scale);
        return mapped;
    }
    std::transform(data, data + count, mapped, [&](float x) {
        return static_cast<float>(std::clamp((x - axis.Minimum) * perValue,
                                             -static_cast<double>(std::numeric_limits<float>::max()),
                                             static_cast<double>(std::numeric_limits<float>::max())));
    });
    return mapped;
}

// The samples from which something can be seen: those in the plot, and one on each side, to which lines lead.
void ctrlGraphWave::Visible(const mapping& map, uint64_t count, uint64_t& from, uint64_t& to) const
{
    from = 0;
    to = count;
    const double length = map.Upright ? Box.Height() : Box.Width();
    if (!(map.Each > 0))
        return;
    from = indexOf(std::floor((-1 - map.First) / map.Each), count);
    to = indexOf(std::ceil((length - map.First) / map.Each) + 2, count);
}

void ctrlGraphWave::DrawSeries(const series& trace)
{
    const mapping map = MappingOf(trace);
    if (!std::isfinite(map.First) || !std::isfinite(map.Each) || map.Each < 0)
        return;
    uint64_t from = 0;
    uint64_t to = 0;
    Visible(map, trace.Count, from, to);
    if (from >= to)
        return;
    const colour own = trace.Colour < 0 ? TraceColour : trace.Colour;
    ColourEnabled(own < 0 ? theme::LabelTextSecond : own, true);
    PenWidth(std::max(trace.LineWidth, 0.0F) * Toolkit().Scale);
    if (map.Each < 1)
        DrawColumns(trace, map, from, to);
    else
        DrawSamples(trace, map, from, to);
}

void ctrlGraphWave::DrawSamples(const series& trace, const mapping& map, uint64_t from, uint64_t to)
{
    const float* mapped = Mapped(Shown(trace) + from, to - from, map.Upright);
    const graphPlot plot = Plot(map.Upright);
    graphPen pen(*this, plot);
    const int32_t ground = plot.Value(0);
    const bool steps = HasStyle(graphSteps);
    // Lines along the axes are sharp only on whole pixels.
    const auto crisp = [](double pixels, bool sharp) { return sharp ? std::round(pixels) : pixels; };
    int32_t before = ground;
    for (uint64_t i = from; i < to && HasStyle(graphLines | graphStems); ++i) {
        const float value = mapped[i - from];
        if (std::isnan(value)) {
            pen.Break();
            continue;
        }
        const double along = map.First + map.Each * static_cast<double>(i);
        const int32_t at = plot.Along(crisp(along, steps || HasStyle(graphStems)));
        const int32_t high = plot.Value(crisp(static_cast<double>(value), steps));
        if (HasStyle(graphStems)) {
            pen.Break();
            pen.LineTo(at, ground);
            pen.LineTo(at, high);
            continue;
        }
        if (steps && i > from && !std::isnan(mapped[i - from - 1]))
            pen.LineTo(at, before);
        pen.LineTo(at, high);
        before = high;
    }
    pen.Finish();
    DrawPoints(map, mapped, from, to);
}

void ctrlGraphWave::DrawPoints(const mapping& map, const float* mapped, uint64_t from, uint64_t to)
{
    const float radius = TraceWidth * Toolkit().Scale;
    // A sample that stands alone is seen by nothing else.
    const bool alone = to - from == 1 && !HasStyle(graphStems);
    if (!HasStyle(graphPoints) || (!(radius > 0) && !alone))
        return;
    const graphPlot plot = Plot(map.Upright);
    const rect bounds = plot.Bounds();
    const float size = radius > 0 ? radius : 1.0F;
    for (uint64_t i = from; i < to; ++i) {
        if (std::isnan(mapped[i - from]))
            continue;
        const graphPoint at = plot.At(plot.Along(map.First + map.Each * static_cast<double>(i)),
                                      plot.Value(static_cast<double>(mapped[i - from])));
        if (at.X < bounds.Left || at.X > bounds.Right || at.Y < bounds.Top || at.Y > bounds.Bottom)
            continue;
        EllipseFill(static_cast<float>(at.X) / graphUnit, static_cast<float>(at.Y) / graphUnit, size, size);
    }
}

void ctrlGraphWave::DrawColumns(const series& trace, const mapping& map, uint64_t from, uint64_t to)
{
    const float* mapped = Mapped(Shown(trace) + from, to - from, map.Upright);
    const graphPlot plot = Plot(map.Upright);
    const uint8_t mode = trace.ColumnMode;
    const bool single = mode == columnsLeast || mode == columnsMost || mode == columnsFirst;
    graphColumns columns(*this, plot);
    graphPen pen(*this, plot);
    float joint = none;  // half of the way from the column before
    for (uint64_t i = from; i < to;) {
        // The middle of a column's pixel stands for the range of half a pixel on both sides.
        const double pixel = std::floor(map.First + map.Each * static_cast<double>(i) + 0.5);
        const double next = map.Each > 0 ? (pixel + 0.5 - map.First) / map.Each : static_cast<double>(to);
        const uint64_t end = std::clamp(indexOf(std::ceil(next), to), i + 1, to);
        const float* first = mapped + (i - from);
        const uint64_t count = end - i;
        i = end;
        float pair[2];
        graphKernels.MinMax(first, count, pair);
        // Both are 0 also where there is no number at all.
        if (pair[0] == 0 && pair[1] == 0 && !hasNumber(first, count)) {
            pen.Break();
            joint = none;
            continue;
        }
        if (single) {
            const float value = mode == columnsLeast ? pair[0] : mode == columnsMost ? pair[1] : *first;
            if (!std::isnan(value))
                pen.LineTo(plot.Along(pixel), plot.Value(static_cast<double>(value)));
            continue;
        }
        float low = std::fmin(pair[0], joint);
        float high = std::fmax(pair[1], joint);
        joint = end < to && mode == columnsJoined ? (first[count - 1] + first[count]) / 2 : none;
        low = std::fmin(low, joint);
        high = std::fmax(high, joint);
        const int32_t a = plot.Value(static_cast<double>(low));
        const int32_t b = plot.Value(static_cast<double>(high));
        const int32_t column = map.Upright ? Box.Bottom - 1 - static_cast<int32_t>(pixel)
                                           : Box.Left + static_cast<int32_t>(pixel);
        columns.Add(column, std::min(a, b), std::max(a, b));
    }
    columns.Finish();
    pen.Finish();
}
