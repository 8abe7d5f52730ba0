#include "toolkit/ctrlEdit_Digits.h"

#include "foundations/text/utfEdit.h"

#include <algorithm>

ctrlEdit_Digits::ctrlEdit_Digits(ctrlWindow* parent, uint32_t width, uint32_t height, uint32_t flags)
    : ctrlEdit_Spin(parent, width, height, flags)
{
    StateSet(stateEditWide);
    TextFlags = textRight | textTop | textBottom;
}

void ctrlEdit_Digits::Paint()
{
    ctrlEdit_Spin::Paint();
    ++PaintRect.Left;
    --PaintRect.Right;
    PaintText();
}

void ctrlEdit_Digits::PaintText()
{
    TextDraw(Name());
}

// The text has more digits while it has the focus.
void ctrlEdit_Digits::Focused(bool on)
{
    const ctrlLife life(this);
    ctrlEdit_Spin::Focused(on);
    if (!life)
        return;
    Cancel();
    if (on && HasFocus())
        SelectAll();
}

char ctrlEdit_Digits::At(const std::string& text, uint64_t position)
{
    const size_t offset = utfOffset(text.c_str(), position);
    return offset < text.size() ? text[offset] : '\0';
}

void ctrlEdit_Digits::Put(std::string& text, uint64_t position, char digit)
{
    const size_t offset = utfOffset(text.c_str(), position);
    if (offset < text.size() && IsDigit(text[offset]))
        text[offset] = digit;
}

std::string ctrlEdit_Digits::Mark(const std::string& local, const char* otherwise)
{
    return local.empty() ? otherwise : local.substr(0, utfOffset(local.c_str(), 1));
}

ctrlEdit_Digits::digitPlace ctrlEdit_Digits::PlaceOf(const std::string& text, uint64_t position)
{
    digitPlace place;
    for (uint64_t at = 0; at < position; ++at) {
        if (IsDigit(At(text, at)))
            ++place.Index;
        else if (at > 0)
            place = {place.Group + 1};
    }
    while (IsDigit(At(text, position + 1 + place.Behind)))
        ++place.Behind;
    return place;
}

double ctrlEdit_Digits::NumberIn(const std::string& text, uint64_t group)
{
    double number = 0;
    bool isInDigits = false;
    uint64_t passed = 0;
    for (const char one : text) {
        if (IsDigit(one) && passed == group)
            number = number * 10 + (one - '0');
        else if (!IsDigit(one) && isInDigits)
            ++passed;
        isInDigits = IsDigit(one);
    }
    return number;
}

std::string ctrlEdit_Digits::WithoutSelected() const
{
    std::string text = Name();
    for (uint64_t at = SelectionStart(); at < std::min(SelectionEnd(), Length()); ++at)
        Put(text, at, '0');
    return text;
}

void ctrlEdit_Digits::SelectionDelete()
{
    if (!HasSelection())
        return;
    const uint64_t start = SelectionStart();
    TextSet(WithoutSelected());
    SelectionClear();
    Invalidate(true);
    CaretSet(start);
}

void ctrlEdit_Digits::CaretSet(uint64_t position)
{
    const std::string text = Name();
    const uint64_t length = utfLength(text.c_str(), text.size());
    const auto isDigitAt = [&text](uint64_t at) { return IsDigit(At(text, at)); };
    uint64_t last = length;
    while (last > 0 && !isDigitAt(last))
        --last;
    uint64_t first = 0;
    while (first < last && !isDigitAt(first))
        ++first;
    const bool goesBack = position < Caret();
    position = std::clamp(position, first, last);
    while (!isDigitAt(position) && position > first && position < last)
        position = goesBack ? position - 1 : position + 1;
    CaretStore(position);
}

bool ctrlEdit_Digits::KeyEvent(KeyEv event, uint32_t key)
{
    if (!HasStyle(styleFocusable))
        return ctrlEdit_Spin::KeyEvent(event, key);
    if (event == KeyEv::Down && (key == keyBackspace || key == keyDelete))
        return ctrlEdit_Spin::KeyEvent(event, keyLeft);
    if (event == KeyEv::Char && HasFocus() && key >= '0' && key <= '9') {
        Overwrite(static_cast<char>(key));
        return true;
    }
    return ctrlEdit_Spin::KeyEvent(event, key);
}

// A digit that is refused leaves what is selected alone.
void ctrlEdit_Digits::Overwrite(char digit)
{
    std::string text = WithoutSelected();
    uint64_t position = HasSelection() ? SelectionStart() : Caret();
    while (position < Length() && !IsDigit(At(text, position)))
        ++position;
    if (!IsDigit(At(text, position)) || !Fits(text, position, digit))
        return;
    Put(text, position, digit);
    TextSet(text);
    SelectionClear();
    Invalidate(true);
    CaretStore(position);
    CaretSet(position + 1);
}
