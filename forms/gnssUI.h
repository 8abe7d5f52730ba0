// The page of a receiver: what every protocol tells of it, with the satellites in a table. The pages of
// single protocols derive from it and add their own.
//
// The page decodes nothing and never updates by itself. All on the interface thread. Source with a decoder
// and Refresh read the decoder, so the caller holds the link's lock; painting has no lock and touches nothing
// of the decoder but its list of satellites, under that list's own lock.
//
// The decoder belongs to somebody else, who takes it back with Source(nullptr), or destroys the page, before
// it goes.
#pragma once

#include "gnss/gnss.h"
#include "toolkit/ctrlWindow.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class ctrlEdit_Angle;
class ctrlEdit_Base;
class ctrlEdit_Date;
class ctrlEdit_Text;
class ctrlEdit_Time;
class ctrlEdit_Val;
class ctrlGrid;
class ctrlLabel;

class gnss::UI : public ctrlWindow
{
public:
    UI(ctrlWindow* parent, uint32_t flags);
    ~UI() override;

    void Paint() override;

    // Also sets the least size of the page, and its width for good.
    void Layout() override;

    // Shows this decoder from now on; null for none. What is on the controls stays then.
    virtual void Source(gnss* decoder);

    // Copies what the decoder holds to the controls. Without a decoder nothing.
    virtual void Refresh();

protected:
    // --- Geometry, in pixels at the scale of the window that is being painted

    // Parts of MinWidth.
    static constexpr unsigned WidthBlock = 0;  // the left block of edits
    static constexpr unsigned WidthGrid = 1;

    static constexpr uint32_t Gap = 4;  // between neighbours

    static uint32_t Scaled(uint32_t pixels);  // rounded up
    static uint32_t LabelHeight();
    static uint32_t EditHeight();
    static uint32_t LabelTop(uint32_t row);  // of the rows of labels with edits below them
    static uint32_t EditTop(uint32_t row);
    static rect BoxOf(uint32_t x, uint32_t y, uint32_t width, uint32_t height);

    uint32_t MinWidth(unsigned which) const;

    // One of so many equal columns of the left block.
    rect Column(uint32_t columns, uint32_t index, uint32_t y, uint32_t height) const;

    static void Place(ctrlWindow* control, const rect& area);

    // Puts an edit in one of so many columns of a row of edits.
    void PlaceEdit(ctrlWindow* edit, uint32_t row, uint32_t columns, uint32_t index) const;

    // What this class has; the size of the page is left alone.
    void PlaceCommon();

    // The page gets this width, and at least this height.
    void SizePage(uint32_t width, uint32_t leastHeight);

    // --- Labels that are painted

    // As many cells as there are columns, or fewer. One without a text only takes up room.
    struct labelRow {
        uint32_t Row;
        uint32_t Columns;
        std::span<const std::string_view> Cells;
    };
    void PaintRows(std::span<const labelRow> rows);
    void PaintText(const rect& area, std::string_view text, colour shade, unsigned flags);

    // --- For constructors: controls that only show

    ctrlEdit_Val* MakeVal(uint32_t flags, uint32_t styles, const std::string& unit, int32_t decimals);
    ctrlEdit_Text* MakeText();
    static void MakeDisplay(ctrlEdit_Base* edit);

    gnss* Decoder = nullptr;
    uint64_t SignalsMax = 1;  // the most signals that were printed for one satellite so far

    ctrlLabel* DateLabel;
    ctrlLabel* TimeLabel;
    ctrlEdit_Date* DateEdit;
    ctrlEdit_Time* TimeEdit;
    ctrlEdit_Angle* LatitudeEdit;
    ctrlEdit_Angle* LongitudeEdit;
    ctrlEdit_Val* AltitudeEdit;
    ctrlEdit_Val* SeaLevelEdit;
    ctrlEdit_Val* SpeedEdit;
    ctrlEdit_Val* TrackEdit;
    ctrlEdit_Val* HDOPEdit;
    ctrlEdit_Val* VDOPEdit;
    ctrlEdit_Val* PDOPEdit;
    ctrlGrid* VisSats;

private:
    struct satText {
        std::string Text;
        colour Shade;
        uint8_t Style;
        unsigned Flags;
    };

    void MakeCommon();
    void MakeGrid();
    void PlaceGrid();

    void VisSats_OnCellDraw(uint64_t row, uint64_t column, const rect* area);
    void DrawHeader(uint64_t column, const rect& area);
    bool FormCell(size_t index, uint64_t column, satText& cell);
    std::string SignalsText(const SatInfo& satellite);
};
