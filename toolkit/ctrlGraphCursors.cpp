// Cursors: how they look, and how the mouse takes them.
#include "toolkit/ctrlGraph.h"
#include "toolkit/ctrlGraphPen.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr float half = 0.5F;
constexpr uint32_t grasp = 4;     // how far from a cursor the mouse takes it, before scaling
constexpr int32_t labelSide = 2;  // between a label and its line, before scaling

}  // namespace

// The handlers run on copies of what they are to know: they may move or remove cursors.
bool ctrlGraph::AskCursors()
{
    std::vector<Cursor> asked;
    for (const AxisLink* link : {AxisLinkX, AxisLinkY}) {
        const thrSpinHold hold(Lock);
        for (const auto& cursor : link->Cursors) {
            if (cursor->OnText && !(cursor->Flags & cursorHidden))
                asked.push_back(*cursor);
        }
    }
    const ctrlLife life(this);
    std::vector<answer> answers;
    for (const Cursor& cursor : asked) {
        answer said{cursor.Id, cursor.Label, colourDefault};
        cursor.OnText(cursor, said.Text, said.Shade);
        if (!life)
            return false;
        answers.push_back(std::move(said));
    }
    Answers = std::move(answers);
    return true;
}

void ctrlGraph::DrawCursors()
{
    if (Box.IsEmpty())
        return;
    ClipPush(Box);
    PenWidth(1);
    std::vector<rect> taken;
    for (const bool up : {false, true}) {
        for (const auto& cursor : (up ? AxisLinkY : AxisLinkX)->Cursors) {
            const Axis& axis = up ? AxisY : AxisX;
            const bool seen = cursor->Position >= axis.Minimum && cursor->Position <= axis.Maximum;
            if (seen && !(cursor->Flags & cursorHidden))
                DrawCursor(*cursor, up, taken);
        }
    }
    ClipPop();
}

std::string ctrlGraph::CursorText(const Cursor& cursor, bool up, colour& shade) const
{
    std::string text = cursor.Label;
    for (const answer& said : Answers) {
        if (said.Id != cursor.Id || !cursor.OnText)
            continue;
        text = said.Text;
        if (said.Shade >= 0)
            shade = said.Shade;
    }
    if (!(cursor.Flags & cursorValue))
        return text;
    const Axis& axis = up ? AxisY : AxisX;
    const double pixel = (AxisX.Maximum - AxisX.Minimum) / PlotWidth;
    const double step = up ? VerticalStep() : std::pow(10.0, std::floor(std::log10(pixel)));
    return text + (text.empty() ? "" : " ") + AxisLabel(axis, cursor.Position, step);
}

void ctrlGraph::DrawCursor(const Cursor& cursor, bool up, std::vector<rect>& taken)
{
    colour shade = Shade(cursor.Colour, Shade(CursorColour, theme::Highlight));
    const std::string text = CursorText(cursor, up, shade);
    const int32_t pixel = up ? PixelY(cursor.Position) : PixelX(cursor.Position);
    const float at = static_cast<float>(pixel) + half;
    ColourEnabled(shade, true);
    if (up)
        Line(static_cast<float>(Box.Left), at, static_cast<float>(Box.Right), at);
    else
        Line(at, static_cast<float>(Box.Top), at, static_cast<float>(Box.Bottom));
    if (text.empty())
        return;
    const rect area = CursorLabelArea(pixel, up, TextSize(text.c_str()), taken);
    taken.push_back(area);
    // On a ground of its own: a trace through it would make it hard to read.
    ColourEnabled(BackColour(), false);
    RectFill(static_cast<float>(area.Left), static_cast<float>(area.Top), static_cast<float>(area.Right),
             static_cast<float>(area.Bottom));
    ColourEnabled(shade, true);
    Text(area, text.c_str(), textLeft | textTop, 0, &Box);
}

// Beside its line, on the side that has room, and in the first row that no other label takes.
rect ctrlGraph::CursorLabelArea(int32_t at, bool up, const textSize& size,
                                const std::vector<rect>& taken) const
{
    const auto wide = static_cast<int32_t>(std::min(size.Width, static_cast<uint32_t>(Box.Width())));
    const auto high = static_cast<int32_t>(std::min(size.Height, static_cast<uint32_t>(Box.Height())));
    const int32_t side = graphScaled(labelSide) + 1;
    int32_t left = up ? Box.Right - wide : at + side;
    int32_t top = up ? at - side - high : Box.Top;
    if (!up && left + wide > Box.Right)
        left = at - side - wide + 1;
    if (up && top < Box.Top)
        top = at + side;
    left = std::clamp(left, Box.Left, Box.Right - wide);
    top = std::clamp(top, Box.Top, Box.Bottom - high);
    const rect first{left, top, left + wide, top + high};
    for (rect area = first; area.Bottom <= Box.Bottom; area.Top += high, area.Bottom += high) {
        if (std::none_of(taken.begin(), taken.end(),
                         [&area](const rect& one) { return rectMeet(one, area); }))
            return area;
    }
    return first;
}

// --- The mouse

ctrlGraph::Cursor* ctrlGraph::CursorAt(int32_t x, int32_t y, bool& up) const
{
    const bool inside = x >= Box.Left && x < Box.Right && y >= Box.Top && y < Box.Bottom;
    Cursor* nearest = nullptr;
    int32_t least = graphScaled(grasp) + 1;
    const thrSpinHold hold(Lock);
    for (const bool vertical : {false, true}) {
        for (const auto& cursor : (vertical ? AxisLinkY : AxisLinkX)->Cursors) {
            const Axis& axis = vertical ? AxisY : AxisX;
            const bool seen = cursor->Position >= axis.Minimum && cursor->Position <= axis.Maximum;
            const int32_t away =
                vertical ? std::abs(y - PixelY(cursor->Position)) : std::abs(x - PixelX(cursor->Position));
            if (!inside || !seen || (cursor->Flags & (cursorHidden | cursorFixed)) || away >= least)
                continue;
            nearest = cursor.get();
            least = away;
            up = vertical;
        }
    }
    return nearest;
}

void ctrlGraph::DragTo(int32_t x, int32_t y)
{
    double position = 0;
    {
        const thrSpinHold hold(Lock);
        const Axis& axis = HeldUp ? AxisY : AxisX;
        const double pixel =
            (axis.Maximum - axis.Minimum) / (HeldUp ? static_cast<double>(PlotHeight) : PlotWidth);
        position = axis.Minimum + pixel * (HeldUp ? Box.Bottom - 1 - y : x - Box.Left);
    }
    (HeldUp ? AxisLinkY : AxisLinkX)->MoveCursor(Held, position, true);
}

void ctrlGraph::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const int32_t x = Toolkit().MouseX;
    const int32_t y = Toolkit().MouseY;
    if (Held && !CaptureHeld())
        Held = nullptr;
    bool up = false;
    Cursor* under = Held ? Held : CursorAt(x, y, up);
    if (under && !Held && event == MouseEv::LeftDown) {
        Held = under;
        HeldUp = up;
        CaptureTake();
        return;
    }
    if (under && event == MouseEv::Move) {
        if (Held)
            DragTo(x, y);
        ctrlWindow::Cursor((Held ? HeldUp : up) ? cursorSizeUpDown : cursorSizeLeftRight);
        return;
    }
    if (Held && event == MouseEv::LeftUp) {
        Held = nullptr;
        CaptureRelease();
        return;
    }
    ctrlWindow::MouseEvent(event, keys, delta);
}
