// The text of an edit on the screen: where its characters are, and where the mouse hits them.
#include "toolkit/ctrlEdit.h"

#include "foundations/text/utfEdit.h"

#include <utility>

namespace {

constexpr colour caretColour = 0xFFFFFF;
constexpr unsigned drawnFlags = textLeft | textTop | textBottom;  // at the left, in the middle of the height
constexpr unsigned alignFlags = textLeft | textRight;

}  // namespace

int32_t ctrlEdit_Base::WidthUpTo(const std::string& text, uint64_t position)
{
    const size_t bytes = utfOffset(text.c_str(), position);
    return bytes == 0 || position == 0 ? 0 : static_cast<int32_t>(TextSize(text.c_str(), bytes).Width);
}

// Where the text begins before it is scrolled.
int32_t ctrlEdit_Base::Origin(const std::string& text)
{
    const unsigned align = TextFlags & alignFlags;
    if (align == textLeft)
        return PaintRect.Left;
    const auto width = static_cast<int32_t>(TextSize(text.c_str(), text.size()).Width);
    if (align == textRight)
        return PaintRect.Right - width - 1;
    return (PaintRect.Left + PaintRect.Right - width) / 2 - 1;
}

int32_t ctrlEdit_Base::CaretX(const std::string& text)
{
    return Origin(text) + WidthUpTo(text, Caret_) - Scroll_;
}

// A longer prefix is no narrower, so that the first one that reaches the point is found by halves.
void ctrlEdit_Base::CaretFromX(const std::string& text)
{
    const int32_t x = LastPress().X + Scroll_ - Origin(text);
    const uint64_t length = utfLength(text.c_str(), text.size());
    Caret_ = 0;
    if (x < 1 || length == 0)
        return;
    uint64_t below = 0;
    uint64_t reaching = length;
    while (reaching - below > 1) {
        const uint64_t middle = below + (reaching - below) / 2;
        (WidthUpTo(text, middle) < x ? below : reaching) = middle;
    }
    const int32_t before = x - WidthUpTo(text, below);
    const int32_t behind = WidthUpTo(text, reaching) - x;
    Caret_ = behind <= before ? reaching : below;
}

void ctrlEdit_Base::TextDraw(const std::string& text)
{
    if (HasFocus()) {
        PlaceByMouse(text);
        ScrollToCaret(text);
    }
    const int32_t x = Origin(text) - Scroll_;
    ColourEnabled(TextShown(), true);
    Text({x, PaintRect.Top, PaintRect.Right, PaintRect.Bottom}, text.c_str(), drawnFlags, text.size());
    if (HasSelection() && (HasFocus() || CaptureHeld()))
        DrawSelection(text, x);
    if (HasState(stateEditCaret))
        DrawCaret(text);
}

void ctrlEdit_Base::PlaceByMouse(const std::string& text)
{
    const uint32_t waits = StateClear(stateEditClick | stateEditDrag);
    if (waits & stateEditClick) {
        // A drag may have moved the common point on since.
        const int32_t later = std::exchange(LastPress().X, ClickX);
        CaretFromX(text);
        LastPress().X = later;
        SelectionSet(Caret_, Caret_);
        InvalidateUnlessPainting();
        CaretSet(Caret_);
    }
    if (waits & stateEditDrag) {
        const uint64_t before = Caret_;
        CaretFromX(text);
        SelectTo(std::exchange(Caret_, before));
    }
}

void ctrlEdit_Base::ScrollToCaret(const std::string& text)
{
    const int32_t x = CaretX(text);
    if (x >= PaintRect.Right)
        Scroll_ += x - PaintRect.Right + 1;
    else if (x < PaintRect.Left)
        Scroll_ += x - PaintRect.Left;
}

void ctrlEdit_Base::DrawSelection(const std::string& text, int32_t x)
{
    const size_t start = utfOffset(text.c_str(), SelectionStart_);
    const size_t end = utfOffset(text.c_str(), SelectionEnd_);
    const rect area{x + WidthUpTo(text, SelectionStart_), PaintRect.Top, x + WidthUpTo(text, SelectionEnd_),
                    PaintRect.Bottom};
    if (end <= start)
        return;
    const colour ground = SelectionColour == colourDefault ? theme::SelectionBackground : SelectionColour;
    const colour letters = SelectedTextColour == colourDefault ? theme::Highlight : SelectedTextColour;
    Colour(HasFocus() ? ground : BackColour());
    RectFillClipped(area);
    Colour(HasFocus() ? letters : ColourMix(BackColour(), letters, 2, 3));
    Text(area, text.c_str() + start, drawnFlags, end - start);
}

void ctrlEdit_Base::DrawCaret(const std::string& text)
{
    const int32_t left = CaretX(text);
    int32_t width = 1;
    if (HasState(stateEditWide) && Caret_ < utfLength(text.c_str(), text.size()))
        width = WidthUpTo(text, Caret_ + 1) - WidthUpTo(text, Caret_);
    Colour(caretColour);
    RectFillClippedF(static_cast<float>(left), static_cast<float>(PaintRect.Top),
                     static_cast<float>(left + width), static_cast<float>(PaintRect.Bottom));
}
