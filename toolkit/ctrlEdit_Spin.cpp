#include "toolkit/ctrlEdit_Spin.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int32_t wheelStep = 120;
constexpr uint32_t hotStates = stateSpinDrop | stateSpinUpper | stateSpinLower;

// Of the column of the two arrows in a field of this height inside: odd, so that it has a middle.
int32_t spinWidth(int32_t height)
{
    return std::max(2 * height / 3, 0) | 1;
}

int32_t added(int32_t rest, int64_t more)
{
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(rest + more, -most, most));
}

bool isPress(MouseEv event)
{
    return event == MouseEv::LeftDown || event == MouseEv::LeftDouble;
}

}  // namespace

ctrlEdit_Spin::ctrlEdit_Spin(ctrlWindow* parent, uint32_t width, uint32_t height, uint32_t flags)
    : ctrlEdit_Base(parent, 0, 0, width, height, flags)
{
    EditStyleClear(styleEditPaste);
}

void ctrlEdit_Spin::GestureEnd()
{
    Toolkit().MouseX = -1;
    Toolkit().MouseY = -1;
    MouseEvent(MouseEv::Move, 0, 0);
}

void ctrlEdit_Spin::GesturePan(bool first, uint32_t /*id*/)
{
    MouseEvent(first ? MouseEv::LeftDown : MouseEv::Move, keysLeft, 0);
}

void ctrlEdit_Spin::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const ctrlLife life(this);
    const bool isDown = (keys & keysLeft) != 0;
    if (!isDown && (StateClear(stateSpinDrag) & stateSpinDrag))
        Rest = 0;
    // An arrow that is held stays the one.
    if (HasStyle(styleSpinDrop | styleSpinArrows) && (!isDown || isPress(event)))
        MoveHot();
    if (!life)
        return;
    if (event == MouseEv::Wheel && !IsHot() && HasStyle(styleFocusable) && CaptureHeld() && !isDown) {
        Wheel(delta);
        return;
    }
    const int32_t oldY = LastPress().Y;
    if (IsHot() && isPress(event)) {
        PressArrow();
        return;
    }
    if (IsHot())
        LastPress() = {Toolkit().MouseX, Toolkit().MouseY};
    else
        ctrlEdit_Base::MouseEvent(event, keys, delta);
    if (!life)
        return;
    if (!CaptureHeld())
        DragEnd();
    else if (event == MouseEv::Move && isDown && HasStyle(styleFocusable))
        Drag(oldY);
}

// The state bit of the arrow at a point; 0 for none.
uint32_t ctrlEdit_Spin::ArrowAt(int32_t x, int32_t y) const
{
    const auto border = static_cast<int32_t>(BorderThickness());
    int32_t right = static_cast<int32_t>(Width()) - border;
    const int32_t bottom = static_cast<int32_t>(Height()) - border;
    const int32_t height = bottom - border;
    if (y < border || y >= bottom || x >= right)
        return 0;
    if (HasStyle(styleSpinDrop)) {
        right -= height;
        if (x >= right)
            return stateSpinDrop;
    }
    if (!HasStyle(styleSpinArrows) || x < right - spinWidth(height))
        return 0;
    return y < border + height / 2 ? stateSpinUpper : stateSpinLower;
}

void ctrlEdit_Spin::MoveHot()
{
    const uint32_t arrow = ArrowAt(Toolkit().MouseX, Toolkit().MouseY);
    const uint32_t before = StateClear(hotStates) & hotStates;
    StateSet(arrow);
    if (arrow == before)
        return;
    const ctrlLife life(this);
    if (arrow) {
        Cursor(cursorHand);
        CaptureTake();
    } else if (HasFocus()) {
        Cursor(cursorText);
    } else {
        CaptureRelease();
    }
    if (life)
        Invalidate(true);
}

void ctrlEdit_Spin::PressArrow()
{
    LastPress() = {Toolkit().MouseX, Toolkit().MouseY};
    if (HasState(stateSpinDrop))
        DoOnDropDown();
    else
        DoOnSpinSteps(HasState(stateSpinUpper) ? 1 : -1);
}

// The digit under the pointer is found by the next paint, for only then can the text be measured.
void ctrlEdit_Spin::Wheel(int delta)
{
    const ctrlLife life(this);
    const int32_t x = Toolkit().MouseX;
    if (HasFocus())
        PassFocus();
    if (!life)
        return;
    LastPress().X = x;
    Rest = added(Rest, delta);
    Invalidate(true);
}

void ctrlEdit_Spin::TextDraw(const std::string& text)
{
    const int32_t steps = Rest / wheelStep;
    if (steps == 0 || HasState(stateSpinDrag)) {
        ctrlEdit_Base::TextDraw(text);
        return;
    }
    const ctrlLife life(this);
    Rest %= wheelStep;
    CaretFromX(text);
    CaretSet(Caret());
    WheelSteps(steps);
    if (life)
        ctrlEdit_Base::TextDraw(Name());
}

// A number that begins with 1 loses this digit on the way down; the next one is stepped in its place.
void ctrlEdit_Spin::WheelSteps(int64_t steps)
{
    const std::string text = Name();
    const uint64_t first = text.starts_with('-') ? 1 : 0;
    const uint64_t digit = HasState(stateEditWide) ? Caret() : Caret() - 1;
    if (IsShortened && steps < 0 && digit == first && text.substr(first).starts_with('1'))
        CaretSet(Caret() + 1);
    DoOnMouseWheelSteps(steps);
}

// Pixels beyond the upper or the lower edge count, and none between them.
void ctrlEdit_Spin::Drag(int32_t oldY)
{
    const int32_t y = Toolkit().MouseY;
    if (y == oldY || (y >= PaintRect.Top && y <= PaintRect.Bottom))
        return;
    if (!(StateSet(stateSpinDrag) & stateSpinDrag))
        Rest = 0;
    const int32_t from = y < PaintRect.Top ? std::min(oldY, PaintRect.Top) : std::max(oldY, PaintRect.Bottom);
    Rest = added(Rest, int64_t{from} - y);
    const int64_t pixels = std::max(DragPixels, 1U);
    const int64_t steps = Rest / pixels;
    Rest = static_cast<int32_t>(Rest % pixels);
    if (steps == 0)
        return;
    const ctrlLife life(this);
    if (HasFocus())
        PassFocus();
    if (life)
        DoOnSpinSteps(steps * int64_t{DragFactor});
}

void ctrlEdit_Spin::DragEnd()
{
    StateClear(stateSpinDrag);
    Rest = 0;
}

void ctrlEdit_Spin::ArrowColour(uint32_t hot)
{
    const colour plain = TextShown();
    ColourEnabled(HasState(hot) ? ColourMix(BackColour(), plain, 2, 3) : plain, true);
}

void ctrlEdit_Spin::Paint()
{
    ctrlEdit_Base::Paint();
    if (HasStyle(styleSpinDrop)) {
        ArrowColour(stateSpinDrop);
        DropArrow();
    }
    if (HasStyle(styleSpinArrows))
        SpinArrows();
}

void ctrlEdit_Spin::SpinArrows()
{
    constexpr float pen = 1.5F;
    constexpr float tip = 3.0F;  // from the edge
    const int32_t height = PaintRect.Height();
    const int32_t width = spinWidth(height);
    PaintRect.Right -= width;
    PenWidth(pen);
    const auto top = static_cast<float>(PaintRect.Top);
    const auto bottom = static_cast<float>(PaintRect.Bottom);
    const float half = static_cast<float>(width) * 0.25F + 0.75F;
    const float centre = static_cast<float>(PaintRect.Right) + static_cast<float>(width) * 0.5F;
    const float depth = static_cast<float>(height) * 0.5F - 2.0F;
    const drawPoint up[] = {{centre - half, top + depth}, {centre, top + tip}, {centre + half, top + depth}};
    const drawPoint down[] = {
        {centre - half, bottom - depth}, {centre, bottom - tip}, {centre + half, bottom - depth}};
    ArrowColour(stateSpinUpper);
    Polyline(up, std::size(up), false);
    ArrowColour(stateSpinLower);
    Polyline(down, std::size(down), false);
}
