// Rows of text: the store that lists and combo boxes have in common, and the list that scrolls.
//
// All on the interface thread.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class ctrlSlider;

// Creation flags of a list.
enum : uint32_t {
    ctrlListPopup = 0x100,  // lives as a popup, in the font of its parent
    ctrlListBrief = 0x200,  // lives as a popup
};

// Style bits of lists.
enum : uint32_t {
    styleListMany = 128,  // several rows may be chosen, each with a check
};

class ctrlList : public ctrlWindow
{
public:
    static constexpr uint64_t None = ~uint64_t{0};

    ctrlList(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);

    colour BackColour() const override;
    colour BorderColour() const override;

    // The index of the first row that equals the text, or the count of rows.
    size_t RowFind(const std::string& text) const;

    // The selection stays on its text; of equal rows the first counts.
    void RowAdd(const std::string& text);
    void RowsAdd(const std::vector<std::string>& rows);
    void RowHeight(uint32_t height);
    uint32_t RowHeight() const { return RowHeight_; }

    // Draws a row into the rectangle; `filled` when its ground is that of a selected or hot row. True when
    // the row is done.
    std::function<bool(uint64_t row, const rect& area, bool filled)> OnRowDraw;

    uint64_t Selected = None;  // at or beyond the count of rows: none
    std::vector<std::string> Rows;
    unsigned TextFlags;  // of Canvas::Text, for a row
    colour TextColour = colourDefault;

protected:
    bool HasSelected() const { return Selected < Rows.size(); }
    colour RowColour() const { return TextColour == colourDefault ? theme::Highlight : TextColour; }

    std::vector<uint8_t> Checks;  // one a row, where several may be chosen

private:
    uint32_t RowHeight_;
};

class ctrlListSel : public ctrlList
{
public:
    ctrlListSel(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);

    // A popup of a control, as wide as that and still empty and hidden: below it, or above it where it would
    // leave the work area. The control owns it.
    static ctrlListSel* DropDown(ctrlWindow* owner, uint32_t height);

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;

    bool IsChecked(size_t row) const { return row < Checks.size() && Checks[row] != 0; }
    uint64_t CheckCount() const { return Checked.load(); }  // any thread

    std::function<void()> OnClick;  // a row was chosen, or a popup left
    colour SelectionColour = colourDefault;

private:
    bool IsPopup() const { return HasFlag(ctrlListPopup | ctrlListBrief); }
    uint32_t Rise() const;  // of a row, never 0
    uint64_t FirstRow() const;
    void PlaceScrollBar();
    void MakeScrollBar(double range, uint64_t shown);
    void DrawRow(uint64_t row, const rect& area);
    bool IsInside() const;
    bool IsOnScrollBar() const;
    void MovePointer();
    void Turn(unsigned keys, int delta);
    void Press();
    void Release();
    void Clicked();

    ctrlSlider* ScrollBar = nullptr;  // while not all rows fit
    uint64_t Hot = None;
    std::atomic<uint64_t> Checked{0};
};
