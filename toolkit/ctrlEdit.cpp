// How an edit stands: its text, caret, selection and clipboard.
#include "toolkit/ctrlEdit.h"

#include "foundations/text/utfConvert.h"
#include "foundations/text/utfEdit.h"

#include <algorithm>

namespace {

constexpr uint32_t clipboardStyles = styleEditCopy | styleEditPaste;

bool isControl(char16_t unit)
{
    constexpr char16_t firstPrintable = 0x20;
    constexpr char16_t firstHigh = 0x7F;
    constexpr char16_t lastHigh = 0x9F;
    return unit < firstPrintable || (unit >= firstHigh && unit <= lastHigh);
}

// What is whole of a text that may come from anywhere.
std::string readable(const std::string& text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    std::string whole;
    return utfAppend8From16(whole, units.data(), units.size());
}

std::string withoutControls(const std::string& text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    std::erase_if(units, isControl);
    std::string kept;
    return utfAppend8From16(kept, units.data(), units.size());
}

uint64_t lengthOf(const std::string& text)
{
    return utfLength(text.c_str(), text.size());
}

std::string cut(std::string text, uint64_t length)
{
    if (length < lengthOf(text))
        text.resize(utfOffset(text.c_str(), length));
    return text;
}

}  // namespace

ctrlEdit_Base::ctrlEdit_Base(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                             uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags | ctrlStyleRepaint)
{
    BorderStyle_ = ctrlBorder::Flat;
    StyleStore(styleFocusable | clipboardStyles, 0);
    Caption({});
}

colour ctrlEdit_Base::BackColour() const
{
    switch (BackColour_) {
    case colourDefault:
        return theme::ListBackground;
    case colourParent:
        return Parent() ? Parent()->ChildBackColour() : theme::ListBackground;
    default:
        return ctrlWindow::BackColour();
    }
}

colour ctrlEdit_Base::BorderColour() const
{
    const colour base = ctrlWindow::BorderColour();
    if (HasFocus())
        return ColourMix(BackColour(), base, 3, 4);
    return CaptureHeld() ? base : ColourMix(BackColour(), base, 3, 2);
}

colour ctrlEdit_Base::TextShown() const
{
    if (TextColour == colourLabel)
        return theme::LabelText;
    return TextColour == colourDefault ? theme::Highlight : TextColour;
}

uint64_t ctrlEdit_Base::Length() const
{
    return lengthOf(Name());
}

void ctrlEdit_Base::MaxLength(uint64_t length)
{
    MaxLength_ = length;
    if (Length() > length)
        EditText(Name());
}

void ctrlEdit_Base::EditText(const std::string& text)
{
    TextSet(cut(readable(text), MaxLength_));
    const uint64_t length = Length();
    SelectionSet(std::min(SelectionStart_, length), std::min(SelectionEnd_, length));
    if (Caret_ > length)
        CaretSet(length);
}

void ctrlEdit_Base::EditStyleSet(uint32_t bits)
{
    StyleStore(bits & clipboardStyles, 0);
    StyleSet(bits & ~clipboardStyles);
}

void ctrlEdit_Base::EditStyleClear(uint32_t bits)
{
    StyleStore(0, bits & clipboardStyles);
    StyleClear(bits & ~clipboardStyles);
}

void ctrlEdit_Base::InvalidateUnlessPainting()
{
    if (!HasState(statePainting))
        Invalidate(true);
}

void ctrlEdit_Base::SelectionSet(uint64_t start, uint64_t end)
{
    SelectionStart_ = start;
    SelectionEnd_ = end;
}

void ctrlEdit_Base::SelectAll()
{
    const uint64_t length = Length();
    SelectionSet(0, length);
    CaretSet(length);
}

void ctrlEdit_Base::SelectionDelete()
{
    if (!HasSelection())
        return;
    std::string text = Name();
    const uint64_t start = SelectionStart_;
    utfErase(text, start, SelectionEnd_ - start);
    TextSet(text);
    SelectionSet(start, start);
    Invalidate(true);
    CaretSet(start);
}

void ctrlEdit_Base::CaretSet(uint64_t position)
{
    Caret_ = std::min(position, Length());
}

void ctrlEdit_Base::CaretMove(uint64_t position)
{
    position = std::min(position, Length());
    SelectionSet(position, position);
    InvalidateUnlessPainting();
    CaretSet(position);
}

void ctrlEdit_Base::SelectTo(uint64_t position)
{
    position = std::min(position, Length());
    const uint64_t caret = Caret_;
    const uint64_t start = SelectionStart_;
    const uint64_t end = SelectionEnd_;
    if (position == caret)
        return;
    if (!HasSelection())
        SelectionSet(std::min(position, caret), std::max(position, caret));
    else if (position < caret && end != caret)
        SelectionSet(position, end);
    else if (position < caret)
        SelectionSet(std::min(position, start), position < start ? start : position);
    else if (start != caret)
        SelectionSet(start, position);
    else
        SelectionSet(position > end ? end : position, std::max(position, end));
    CaretSet(position);
    InvalidateUnlessPainting();
}

bool ctrlEdit_Base::Insert(uint32_t character)
{
    SelectionDelete();
    std::string text = Name();
    if (lengthOf(text) >= MaxLength_)
        return false;
    const uint64_t caret = Caret_;
    utfInsert(text, caret, character);
    TextSet(text);
    Invalidate(true);
    CaretSet(caret + 1);
    return true;
}

void ctrlEdit_Base::Copy() const
{
    if (!HasStyle(styleEditCopy) || HasStyle(SecretStyle) || !HasSelection())
        return;
    const std::string text = Name();
    const size_t start = utfOffset(text.c_str(), SelectionStart_);
    const size_t end = utfOffset(text.c_str(), SelectionEnd_);
    if (end > start)
        Toolkit().Windows().SetClipboardText(Root()->Handle(), text.substr(start, end - start));
}

void ctrlEdit_Base::Paste()
{
    if (!HasStyle(styleEditPaste) || HasStyle(SecretStyle))
        return;
    SelectionDelete();
    SelectionClear();
    const std::optional<std::string> given = Toolkit().Windows().ClipboardText(Root()->Handle());
    if (!given)
        return;
    const std::string before = Name();
    const size_t at = utfOffset(before.c_str(), Caret_);
    const std::string first = withoutControls(before.substr(0, at) + readable(*given));
    const std::string all = first + withoutControls(before.substr(at));
    TextSet(cut(all, MaxLength_));
    Invalidate(true);
    CaretSet(lengthOf(first));
}

void ctrlEdit_Base::Raise(const std::function<void()>& handler)
{
    const std::function<void()> copy = handler;
    if (copy)
        copy();
}
