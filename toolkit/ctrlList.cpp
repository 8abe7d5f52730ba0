#include "toolkit/ctrlList.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t rowRoom = 4;  // pixels above the font's size

}  // namespace

ctrlList::ctrlList(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags | ctrlStyleRepaint),
      TextFlags(textLeft | textTop | textBottom),
      RowHeight_(static_cast<uint32_t>(canvasFontSize) + rowRoom)
{
    BorderStyle(ctrlBorder::Flat);
}

colour ctrlList::BackColour() const
{
    return BackColour_ == colourDefault ? theme::ListBackground : ctrlWindow::BackColour();
}

colour ctrlList::BorderColour() const
{
    const colour full = ctrlWindow::BorderColour();
    return CaptureHeld() ? full : ColourMix(BackColour(), full, 3, 2);
}

size_t ctrlList::RowFind(const std::string& text) const
{
    return static_cast<size_t>(std::find(Rows.begin(), Rows.end(), text) - Rows.begin());
}

void ctrlList::RowAdd(const std::string& text)
{
    Rows.push_back(text);
    Checks.push_back(0);
    if (Selected < Rows.size() - 1)
        Selected = RowFind(std::string(Rows[Selected]));
    Invalidate(true);
}

void ctrlList::RowsAdd(const std::vector<std::string>& rows)
{
    for (const std::string& row : rows)
        RowAdd(row);
}

void ctrlList::RowHeight(uint32_t height)
{
    if (RowHeight_ == height)
        return;
    RowHeight_ = height;
    Invalidate(true);
}
