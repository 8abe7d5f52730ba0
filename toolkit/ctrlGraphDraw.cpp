// The frame on the canvas.
#include "toolkit/ctrlGraph.h"
#include "toolkit/ctrlGraphPen.h"

namespace {

constexpr float half = 0.5F;  // from a pixel's edge to its middle
constexpr colour gridDefault = 0x503030;
constexpr uint32_t axisShade = 2;  // the axes are brighter than the grid by this factor

}  // namespace

void ctrlGraph::DrawGrid(const std::vector<tick>& ticks, bool up)
{
    for (const tick& one : ticks) {
        if (!one.Major)
            continue;
        const float at = static_cast<float>(one.At) + half;
        if (up)
            Line(static_cast<float>(Box.Left), at, static_cast<float>(Box.Right), at);
        else
            Line(at, static_cast<float>(Box.Top), at, static_cast<float>(Box.Bottom));
    }
}

void ctrlGraph::DrawTicks(const std::vector<tick>& ticks, const tickRoom& room, bool up)
{
    for (const tick& one : ticks) {
        const float at = static_cast<float>(one.At) + half;
        const auto length = static_cast<float>(graphScaled(one.Major ? room.Major : room.Minor));
        const auto left = static_cast<float>(Box.Left);
        const auto bottom = static_cast<float>(Box.Bottom);
        if (up)
            Line(left, at, left + length, at);
        else
            Line(at, bottom - length, at, bottom);
    }
}

// All that lies in the plot beneath the traces.
void ctrlGraph::DrawPlot()
{
    if (Box.IsEmpty())
        return;
    // An axis without labels is measured by nothing but its range.
    if (!(AxisX.Flags & axisLabels))
        Kept.Across = Ticks(AxisX, RoomAcross, false);
    if (!(AxisY.Flags & axisLabels))
        Kept.Up = Ticks(AxisY, RoomUp, true);
    const auto left = static_cast<float>(Box.Left);
    const auto bottom = static_cast<float>(Box.Bottom);
    ColourEnabled(BackColour(), false);
    RectFill(left, static_cast<float>(Box.Top), static_cast<float>(Box.Right), bottom);
    const colour grid = Shade(GridColour, gridDefault);
    ClipPush(Box);
    PenWidth(1);
    ColourEnabled(grid, true);
    DrawGrid(Kept.Across, false);
    DrawGrid(Kept.Up, true);
    ColourEnabled(ColourScale(grid, axisShade, 1), true);
    DrawTicks(Kept.Across, RoomAcross, false);
    DrawTicks(Kept.Up, RoomUp, true);
    Line(left + half, static_cast<float>(Box.Top), left + half, bottom);
    Line(left, bottom - half, static_cast<float>(Box.Right), bottom - half);
    ClipPop();
}

void ctrlGraph::DrawLabels()
{
    for (const std::vector<tick>* ticks : {&Kept.Across, &Kept.Up}) {
        const Axis& axis = ticks == &Kept.Up ? AxisY : AxisX;
        for (const tick& one : *ticks) {
            if (!one.Text.empty())
                DrawLabel(one, (axis.Flags & axisInside) != 0);
        }
    }
}

void ctrlGraph::DrawLabel(const tick& one, bool inside)
{
    // A trace behind a label dims, so that both can be read.
    constexpr float veil = 0.6F;
    if (inside) {
        ColourEnabled(BackColour(), false);
        Opacity(veil);
        RectFillClipped(one.Area);
        Opacity(1.0F);
    }
    ColourEnabled(Shade(LabelColour, theme::LabelText), true);
    Text(one.Area, one.Text.c_str(), textLeft | textTop, 0, &Kept.Area);
}
