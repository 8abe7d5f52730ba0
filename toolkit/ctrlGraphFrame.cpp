// The layout of the frame: where the plot lies, and the ticks and labels around and in it.
#include "toolkit/ctrlGraph.h"
#include "toolkit/ctrlGraphPen.h"
#include "toolkit/ctrlGraphTicks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t labelGap = 3;       // between a label and the plot, before scaling
constexpr uint32_t ticksMost = 4000;  // of an axis
constexpr int stepsTried = 12;

rect moved(const rect& area, int32_t x, int32_t y)
{
    return {area.Left + x, area.Top + y, area.Right + x, area.Bottom + y};
}

// Into `bounds`, where it has room there.
rect pushedInto(rect area, const rect& bounds)
{
    area = moved(area, std::min(0, bounds.Right - area.Right), std::min(0, bounds.Bottom - area.Bottom));
    return moved(area, std::max(0, bounds.Left - area.Left), std::max(0, bounds.Top - area.Top));
}

int32_t signedOf(uint32_t value)
{
    return static_cast<int32_t>(value);
}

}  // namespace

// --- Values to pixels

int32_t ctrlGraph::PixelX(double value) const
{
    const double part = (value - AxisX.Minimum) / (AxisX.Maximum - AxisX.Minimum);
    return Box.Left + static_cast<int32_t>(std::lround(std::clamp(part, 0.0, 1.0) * (Box.Width() - 1)));
}

int32_t ctrlGraph::PixelY(double value) const
{
    const double part = (value - AxisY.Minimum) / (AxisY.Maximum - AxisY.Minimum);
    return Box.Bottom - 1 -
           static_cast<int32_t>(std::lround(std::clamp(part, 0.0, 1.0) * (Box.Height() - 1)));
}

// --- Layout

bool ctrlGraph::IsFrameStale(uint32_t bits) const
{
    return (bits & stateRedrawFrame) || !bits || HasState(stateFresh) || Kept.Width != Width() ||
           Kept.Height != Height() || Kept.Scale != Toolkit().Scale;
}

void ctrlGraph::BuildFrame(const tickRoom& across, const tickRoom& up)
{
    RoomAcross = across;
    RoomUp = up;
    Kept = {};
    Kept.Width = Width();
    Kept.Height = Height();
    Kept.Scale = Toolkit().Scale;
    Kept.Area = PaintRect;
    Kept.TextHeight = TextSize("0").Height;
    Box = PaintRect;
    const int32_t gap = graphScaled(labelGap);
    const int32_t high = signedOf(Kept.TextHeight);
    // Labels that would leave no plot stay away.
    constexpr int32_t share = 2;
    const bool outsideX = (AxisX.Flags & (axisLabels | axisInside)) == axisLabels;
    const bool outsideY = (AxisY.Flags & (axisLabels | axisInside)) == axisLabels;
    if (outsideX && (high + gap) * share <= Box.Height())
        Box.Bottom -= high + gap;
    if (outsideY) {
        Box.Top += std::min(high / 2, std::max(Box.Height() / share, 0));
        ReserveUp();
    }
    PlotHeight = static_cast<float>(std::max(Box.Height() - 1, 1));
    PlotWidth = static_cast<uint32_t>(std::max(Box.Width() - 1, 1));
    Kept.Across = Ticks(AxisX, RoomAcross, false);
    Kept.Up = Ticks(AxisY, RoomUp, true);
    PlaceLabelsAcross();
    PlaceLabelsUp();
    DropPushed();
    DropCrowded();
}

// Takes the width of the widest label off the plot.
void ctrlGraph::ReserveUp()
{
    uint32_t widest = 0;
    for (const tick& one : Ticks(AxisY, RoomUp, true)) {
        if (!one.Text.empty())
            widest = std::max(widest, TextSize(one.Text.c_str()).Width);
    }
    constexpr int32_t share = 4;
    const int32_t wanted = signedOf(widest) + graphScaled(labelGap);
    if (wanted <= Box.Width() - Box.Width() / share)
        Box.Left += wanted;
}

// The ticks of an axis, with the texts of those that are to have one.
std::vector<ctrlGraph::tick> ctrlGraph::Ticks(const Axis& axis, const tickRoom& room, bool up)
{
    std::vector<tick> ticks;
    const int32_t length = up ? Box.Height() : Box.Width();
    if (Box.IsEmpty() || length < 2)
        return ticks;
    const double perPixel = (axis.Maximum - axis.Minimum) / length;
    const double step = LabelStep(axis, room, up);
    if (step <= 0)
        return ticks;
    const double part = step / graphStepParts(step, perPixel * std::max(graphScaled(room.Gap), 2));
    for (const double distance : {part, step}) {
        const auto [first, count] = graphMultiplesOf(distance, axis.Minimum, axis.Maximum, ticksMost);
        for (uint32_t i = 0; i < count; ++i) {
            const double value = (first + i) * distance;
            const bool major = IsMajorTick(value, step);
            if (major != (distance == step))
                continue;
            // Without the sum a zero could be a negative one.
            tick one{up ? PixelY(value) : PixelX(value), major, {}, {}};
            if (major && (axis.Flags & axisLabels))
                one.Text = AxisLabel(axis, value + 0.0, step);
            ticks.push_back(one);
        }
        if (part == step)
            break;
    }
    return ticks;
}

// The finest step at which labels have room; where none has, the coarsest that still has a tick.
double ctrlGraph::LabelStep(const Axis& axis, const tickRoom& room, bool up)
{
    const int32_t length = up ? Box.Height() : Box.Width();
    const double range = axis.Maximum - axis.Minimum;
    constexpr uint32_t roomBare = 40;
    const int32_t least =
        axis.Flags & axisLabels ? signedOf(Kept.TextHeight) + graphScaled(room.Gap) : graphScaled(roomBare);
    double step = graphStepFrom(range / length * std::max(least, 1));
    const auto ticks = [&axis](double distance) {
        return graphMultiplesOf(distance, axis.Minimum, axis.Maximum, ticksMost).Count;
    };
    // A single tick tells no scale; of two, a label may find no room and the other stays.
    constexpr double finer = 0.4;
    for (int i = 0; i < 3 && ticks(step) < 2; ++i)
        step = graphStepFrom(step * finer);
    for (int i = 0; i < stepsTried && step > 0; ++i) {
        const double coarser = graphStepAfter(step);
        if (!(axis.Flags & axisLabels) || LabelsFit(axis, step, room, up) || ticks(coarser) < 2)
            return step;
        step = coarser;
    }
    return step;
}

bool ctrlGraph::LabelsFit(const Axis& axis, double step, const tickRoom& room, bool up)
{
    // Up, the height was minded when the search began.
    if (up)
        return true;
    const auto [first, count] = graphMultiplesOf(step, axis.Minimum, axis.Maximum, ticksMost);
    const double pixels = step / (axis.Maximum - axis.Minimum) * (Box.Width() - 1);
    uint32_t widest = 0;
    for (const uint32_t at : {0U, count / 2, count - 1}) {
        if (at < count)
            widest = std::max(widest, TextSize(AxisLabel(axis, (first + at) * step, step).c_str()).Width);
    }
    // Labels a blank apart could be read as one.
    const int32_t gap = std::max(graphScaled(room.Gap), signedOf(Kept.TextHeight) / 2);
    return pixels >= signedOf(widest) + gap;
}

void ctrlGraph::PlaceLabelsAcross()
{
    const bool inside = (AxisX.Flags & axisInside) != 0;
    const int32_t high = signedOf(Kept.TextHeight);
    const int32_t top = inside ? Box.Bottom - high - graphScaled(RoomAcross.Major) : Kept.Area.Bottom - high;
    for (tick& one : Kept.Across) {
        if (one.Text.empty())
            continue;
        const int32_t wide = signedOf(TextSize(one.Text.c_str()).Width);
        const rect wanted{one.At - wide / 2, top, one.At - wide / 2 + wide, top + high};
        one.Area = pushedInto(wanted, inside ? Box : Kept.Area);
    }
}

void ctrlGraph::PlaceLabelsUp()
{
    const bool inside = (AxisY.Flags & axisInside) != 0;
    const int32_t high = signedOf(Kept.TextHeight);
    const int32_t gap = graphScaled(labelGap);
    for (tick& one : Kept.Up) {
        if (one.Text.empty())
            continue;
        const int32_t wide = signedOf(TextSize(one.Text.c_str()).Width);
        const int32_t left = inside ? Box.Left + gap + graphScaled(RoomUp.Major) : Box.Left - gap - wide;
        const rect wanted{left, one.At - high / 2, left + wide, one.At - high / 2 + high};
        one.Area = pushedInto(wanted, inside ? Box : Kept.Area);
    }
}

// A label at the end of the axis below that was pushed towards its neighbour could be read as one with it.
void ctrlGraph::DropPushed()
{
    const int32_t least = signedOf(Kept.TextHeight) / 2;
    std::vector<tick*> named;
    for (tick& one : Kept.Across) {
        if (!one.Text.empty())
            named.push_back(&one);
    }
    std::sort(named.begin(), named.end(), [](const tick* a, const tick* b) { return a->At < b->At; });
    if (named.size() < 3)
        return;
    const auto tooNear = [&](size_t left) {
        return named[left + 1]->Area.Left - named[left]->Area.Right < least;
    };
    if (tooNear(0))
        named.front()->Text.clear();
    if (tooNear(named.size() - 2))
        named.back()->Text.clear();
}

// A label that does not fit into the control, or lies on one that was there before, is left out.
void ctrlGraph::DropCrowded()
{
    const auto meets = [](const tick& one, const tick& other) {
        return &one != &other && !other.Text.empty() && rectMeet(one.Area, other.Area);
    };
    // In one row with the labels of the other axis, one would be taken for theirs.
    int32_t lowest = Kept.Area.Bottom;
    if ((AxisX.Flags & AxisY.Flags & axisInside) != 0) {
        for (const tick& one : Kept.Across)
            lowest = one.Text.empty() ? lowest : std::min(lowest, one.Area.Top);
    }
    std::vector<const tick*> placed;
    for (std::vector<tick>* ticks : {&Kept.Across, &Kept.Up}) {
        const bool outside = !((ticks == &Kept.Up ? AxisY : AxisX).Flags & axisInside);
        for (tick& one : *ticks) {
            if (one.Text.empty())
                continue;
            // What belongs outside of the plot and has no room there would lie in it.
            const bool astray = outside && rectMeet(one.Area, Box);
            const bool crowded = std::any_of(placed.begin(), placed.end(),
                                             [&](const tick* other) { return meets(one, *other); });
            const bool low = ticks == &Kept.Up && one.Area.Bottom > lowest;
            if (astray || crowded || low || !rectCovers(Kept.Area, one.Area))
                one.Text.clear();
            else
                placed.push_back(&one);
        }
    }
}
