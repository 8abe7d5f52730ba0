#include "toolkit/ctrlList.h"
#include "toolkit/ctrlSlider.h"

#include <algorithm>

namespace {

constexpr uint32_t statePressed = 0x8000;
constexpr uint32_t scrollBarWidth = 14;
constexpr float leastThumb = 0.1F;  // of the bar, so that it can be taken hold of

}  // namespace

ctrlListSel::ctrlListSel(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                         uint32_t flags)
    : ctrlList(parent, x, y, width, height, flags)
{
    if (HasFlag(ctrlListPopup) && parent)
        FontCopy(*parent);
}

ctrlListSel* ctrlListSel::DropDown(ctrlWindow* owner, uint32_t height)
{
    constexpr uint32_t popup = uint32_t{ctrlListPopup} | ctrlTool | ctrlFloating | ctrlCaptureKeep;
    int32_t x = 0;
    auto y = static_cast<int32_t>(owner->Height());
    windowArea area;
    const bool isOnScreen = owner->ScreenPoint(x, y, area);
    // The area's bottom is its last row of pixels.
    if (isOnScreen && y + static_cast<int32_t>(height) > area.Bottom + 1)
        y -= static_cast<int32_t>(owner->Height() + height);
    const uint32_t followsMonitor = owner->Root()->HasFlag(ctrlPerMonitor) ? ctrlPerMonitor : 0U;
    return new ctrlListSel(owner, x, y, owner->Width(), height, popup | followsMonitor);
}

uint32_t ctrlListSel::Rise() const
{
    return std::max(RowHeight(), 1U);
}

uint64_t ctrlListSel::FirstRow() const
{
    return ScrollBar ? static_cast<uint64_t>(std::max(-ScrollBar->Value, 0.0)) : 0;
}

// --- Looks

void ctrlListSel::Paint()
{
    if (IsPopup() && !CaptureHeldBelow()) {
        const ctrlLife life(this);
        CaptureTake();
        if (!life)
            return;
    }
    ctrlWindow::Paint();
    if (PaintRect.IsEmpty())
        return;
    PlaceScrollBar();
    int32_t top = PaintRect.Top;
    for (uint64_t row = FirstRow(); row < Rows.size() && top < PaintRect.Bottom; ++row) {
        const int32_t bottom = top + static_cast<int32_t>(Rise());
        DrawRow(row, {PaintRect.Left + 1, top, PaintRect.Right - 1, bottom});
        top = bottom;
    }
}

void ctrlListSel::PlaceScrollBar()
{
    const auto height = static_cast<uint32_t>(PaintRect.Height());
    const uint64_t shown = height / Rise();
    if (Rows.size() * uint64_t{Rise()} <= height) {
        delete ScrollBar;
        ScrollBar = nullptr;
        return;
    }
    const auto range = static_cast<double>(Rows.size() - shown);
    if (ScrollBar)
        ScrollBar->SetRange(-range, 0);
    else
        MakeScrollBar(range, shown);
    uint32_t width = scrollBarWidth;
    if (HasFlag(ctrlListPopup) && Parent())
        width = Parent()->Height() - std::min(Parent()->Height(), 2 * BorderThickness());
    width = std::min(width, static_cast<uint32_t>(PaintRect.Width()));
    PaintRect.Right -= static_cast<int32_t>(width);
    ScrollBar->Page = static_cast<double>(std::max<uint64_t>(shown, 1));
    const float all = static_cast<float>(Rows.size()) * static_cast<float>(Rise());
    ScrollBar->Ratio = std::max(static_cast<float>(height) / all, leastThumb);
    ScrollBar->Move(PaintRect.Right, PaintRect.Top, width, height);
}

// The selected row stands in the middle of what is shown first.
void ctrlListSel::MakeScrollBar(double range, uint64_t shown)
{
    ScrollBar = new ctrlSlider(this, 0, 0, scrollBarWidth, 1, styleSliderArrows);
    ScrollBar->TrackWidth = 0;
    ScrollBar->SetRange(-range, 0);
    const uint64_t half = shown / 2;
    ScrollBar->SetValue(HasSelected() && Selected > half ? -static_cast<double>(Selected - half) : 0.0);
    ScrollBar->OnChange = [this] { Invalidate(true); };
    ScrollBar->Show();
}

void ctrlListSel::DrawRow(uint64_t row, const rect& area)
{
    const bool many = HasStyle(styleListMany);
    const bool chosen = many ? IsChecked(static_cast<size_t>(row)) : row == Selected;
    const bool filled = chosen || row == Hot;
    if (filled) {
        const colour selection =
            SelectionColour == colourDefault ? theme::SelectionBackground : SelectionColour;
        Colour(chosen ? selection : ColourMix(BackColour(), selection, 2, 1));
        RectFillClipped(area);
    }
    if (OnRowDraw && OnRowDraw(row, area, filled))
        return;
    ColourEnabled(RowColour(), true);
    Text(area, Rows[static_cast<size_t>(row)].c_str(), TextFlags, 0, &PaintRect);
}

// --- The mouse

bool ctrlListSel::IsInside() const
{
    return rectHas(PaintRect, Toolkit().MouseX, Toolkit().MouseY);
}

bool ctrlListSel::IsOnScrollBar() const
{
    if (!ScrollBar)
        return false;
    const int32_t x = Toolkit().MouseX - ScrollBar->X();
    const int32_t y = Toolkit().MouseY - ScrollBar->Y();
    return x >= 0 && y >= 0 && x < static_cast<int32_t>(ScrollBar->Width()) &&
           y < static_cast<int32_t>(ScrollBar->Height());
}

void ctrlListSel::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    if (event != MouseEv::Wheel && IsOnScrollBar()) {
        ScrollBar->Route(event, keys, Toolkit().MouseX - ScrollBar->X(), Toolkit().MouseY - ScrollBar->Y(),
                         delta);
        return;
    }
    switch (event) {
    case MouseEv::Move:
        MovePointer();
        return;
    case MouseEv::Wheel:
        Turn(keys, delta);
        return;
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
        Press();
        return;
    case MouseEv::LeftUp:
        Release();
        return;
    default:
        ctrlWindow::MouseEvent(event, keys, delta);
    }
}

void ctrlListSel::Turn(unsigned keys, int delta)
{
    if (!ScrollBar)
        return;
    Toolkit().MouseX -= ScrollBar->X();
    Toolkit().MouseY -= ScrollBar->Y();
    ScrollBar->MouseEvent(MouseEv::Wheel, keys, delta);
}

void ctrlListSel::MovePointer()
{
    const bool held = CaptureHeld();
    const uint64_t before = Hot;
    const ctrlLife life(this);
    if (IsInside()) {
        const uint64_t row = static_cast<uint32_t>(Toolkit().MouseY - PaintRect.Top) / Rise() + FirstRow();
        Hot = row < Rows.size() ? row : None;
        if (!held)
            CaptureTake();
        if (life)
            Cursor(cursorArrow);
    } else {
        Hot = None;
        // A popup keeps it, to hear of presses outside.
        if (held && !IsPopup())
            CaptureRelease();
    }
    if (life && (Hot != before || CaptureHeld() != held))
        Invalidate(true);
}

void ctrlListSel::Press()
{
    if (!IsInside()) {
        if (!IsPopup())
            return;
        Selected = None;
        Clicked();
        return;
    }
    StateSet(statePressed);
    if (Hot < Rows.size())
        Selected = Hot;
    Invalidate(true);
}

void ctrlListSel::Release()
{
    if (!(StateClear(statePressed) & statePressed))
        return;
    if (HasStyle(styleListMany) && HasSelected()) {
        // Who fills Rows by hand does not think of the checks.
        Checks.resize(std::max(Checks.size(), Rows.size()));
        uint8_t& check = Checks[static_cast<size_t>(Selected)];
        check = check ? 0 : 1;
        if (check)
            ++Checked;
        else
            --Checked;
    }
    Invalidate(true);
    Clicked();
}

void ctrlListSel::Clicked()
{
    // A copy: the handler may replace itself, or destroy the list.
    const std::function<void()> handler = OnClick;
    if (handler)
        handler();
}
