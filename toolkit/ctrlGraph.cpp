#include "toolkit/ctrlGraph.h"

#include "foundations/fatal/crashFatal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double fullExtentX = 100;
constexpr double fullExtentY = 1;

// Where a range of one more on both sides is none: next to such numbers 1 is nothing.
constexpr double leastPart = 1e-12;

constexpr uint32_t styleTraces = 0x1800;
constexpr uint32_t styleFrame = 0x0180;
constexpr uint32_t styleStored = 0xC600;
constexpr uint32_t styleModes = graphLines | graphPoints | graphStems | graphDifference | graphSteps;

}  // namespace

ctrlGraph::ctrlGraph(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                     uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags)
{
    AxisX.Maximum = fullExtentX;
    AxisX.FullExtent = fullExtentX;
    AxisY.Maximum = fullExtentY;
    AxisY.Minimum = -fullExtentY;
    AxisY.FullExtent = fullExtentY;
    AttachOwnX();
    AttachOwnY();
    AttachOwnCursors();
    StateSet(stateRedrawFrame | stateRedrawTraces);
}

ctrlGraph::~ctrlGraph()
{
    StateSet(stateClosing);
    AttachCursors(nullptr);
    Detach(&ctrlGraph::AxisLinkX);
    Detach(&ctrlGraph::AxisLinkY);
}

void ctrlGraph::Invalidate()
{
    Redraw(stateRedrawTraces);
}

ctrlGraph::Series* ctrlGraph::SeriesById(unsigned /*id*/)
{
    return nullptr;
}

void ctrlGraph::Redraw(uint32_t bits)
{
    if (bits & ~StateSet(bits))
        ctrlWindow::Invalidate(true);
}

bool ctrlGraph::HasLabels(const Axis& axis) const
{
    const thrSpinHold hold(Lock);
    return (axis.Flags & axisLabels) != 0;
}

void ctrlGraph::RedrawAxis(const Axis& axis)
{
    Redraw(HasLabels(axis) ? stateRedrawFrame | stateRedrawTraces : stateRedrawTraces);
}

colour ctrlGraph::BackColour() const
{
    return BackColour_ == colourDefault ? theme::ListBackground : ctrlWindow::BackColour();
}

// --- Ranges

bool ctrlGraph::Prepare(double& min, double& max, const char* reversed) const
{
    if (min > max) {
        crashFatal(reversed);
        return false;
    }
    if (!std::isfinite(max - min))
        return false;
    if (min == max) {
        const double margin = std::max(1.0, std::abs(min) * leastPart);
        min -= margin;
        max += margin;
    }
    return std::isfinite(max - min);
}

void ctrlGraph::SetRangeX(double min, double max)
{
    if (Prepare(min, max, "ctrlGraph::SetRangeX - The range is reversed!"))
        SetRange(&ctrlGraph::AxisLinkX, &ctrlGraph::AxisX, min, max);
}

void ctrlGraph::SetRangeY(double min, double max)
{
    if (Prepare(min, max, "ctrlGraph::SetRangeY - The range is reversed!"))
        SetRange(&ctrlGraph::AxisLinkY, &ctrlGraph::AxisY, min, max);
}

void ctrlGraph::SetExtentX(double extent, bool keepView)
{
    if (!std::isfinite(extent))
        return;
    bool follows = false;
    double min = 0;
    {
        const thrSpinHold hold(Lock);
        if (AxisX.FullExtent == extent)
            return;
        min = AxisX.Minimum;
        follows = keepView && AxisX.Maximum == AxisX.FullExtent && min <= extent;
        AxisX.FullExtent = extent;
    }
    if (follows)
        SetRangeX(min, extent);
    RedrawAxis(AxisX);
}

void ctrlGraph::SetOriginX(double origin)
{
    {
        const thrSpinHold hold(Lock);
        if (!std::isfinite(origin) || AxisX.Origin == origin)
            return;
        AxisX.Origin = origin;
    }
    RedrawAxis(AxisX);
}

// --- Looks

void ctrlGraph::SetUnit(Axis& axis, const std::string& unit)
{
    {
        const thrSpinHold hold(Lock);
        if (axis.Unit == unit)
            return;
        axis.Unit = unit;
    }
    if (HasLabels(axis))
        Redraw(stateRedrawFrame | stateRedrawTraces);
}

void ctrlGraph::SetAxisFlags(Axis& axis, bool labels, bool prefixes, bool inside)
{
    uint32_t flags = 0;
    for (const auto& [set, bit] :
         {std::pair(labels, uint32_t{axisLabels}), std::pair(prefixes, uint32_t{axisPrefixes}),
          std::pair(inside, uint32_t{axisInside})})
        flags |= set ? bit : 0;
    {
        const thrSpinHold hold(Lock);
        if (axis.Flags == flags)
            return;
        axis.Flags = flags;
    }
    Redraw(stateRedrawFrame | stateRedrawTraces);
}

void ctrlGraph::SetShade(colour& place, colour value)
{
    if (place == value)
        return;
    place = value;
    Redraw(stateRedrawFrame | stateRedrawTraces);
}

void ctrlGraph::SetLabelColour(colour value)
{
    SetShade(LabelColour, value);
}

void ctrlGraph::SetGridColour(colour value)
{
    SetShade(GridColour, value);
}

void ctrlGraph::SetCursorColour(colour value)
{
    SetShade(CursorColour, value);
}

void ctrlGraph::SetDbFactor(float value)
{
    const thrSpinHold hold(Lock);
    DbFactor = value;
}

void ctrlGraph::SetSmoothCut(float value)
{
    {
        const thrSpinHold hold(Lock);
        if (SmoothCut == value)
            return;
        SmoothCut = value;
    }
    Redraw(stateRedrawTraces);
}

void ctrlGraph::SetStyle(uint32_t bits)
{
    const auto isNew = [this, bits](uint32_t some) {
        for (uint32_t rest = bits & some; rest; rest &= rest - 1) {
            if (!HasStyle(rest & ~(rest - 1)))
                return true;
        }
        return false;
    };
    const bool traces = isNew(styleTraces | styleModes);
    const bool frames = isNew(styleFrame);
    constexpr uint32_t own = styleTraces | styleFrame | styleStored;
    StyleStore(bits & own, 0);
    if (bits & ~own)
        StyleSet(bits & ~own);
    if (frames)
        Redraw(stateRedrawFrame | stateRedrawTraces);
    else if (traces)
        Redraw(stateRedrawTraces);
}
