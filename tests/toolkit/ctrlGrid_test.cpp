#include "toolkit/ctrlGrid.h"

#include "tests/toolkit/controlTest.h"
#include "toolkit/ctrlSlider.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <thread>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

using cell = std::pair<uint64_t, uint64_t>;

class ctrlGridTest : public controlTest
{
protected:
    // Cells of 50 by 20, in a grid without a border.
    ctrlGrid* Grid(uint64_t columns, uint64_t rows, uint32_t width = 300, uint32_t height = 200)
    {
        auto* grid = new ctrlGrid(Main, 0, 0, width, height, columns, rows);
        grid->OnCellDraw = [this](uint64_t row, uint64_t column, const rect* area) {
            Drawn_.emplace_back(row, column);
            Areas.push_back(*area);
        };
        grid->OnSelection = Count(Selections);
        return Placed(grid, 0, 0, width, height);
    }
    const std::vector<cell>& Cells(ctrlGrid* grid)
    {
        Drawn_.clear();
        Areas.clear();
        grid->Invalidate(true);
        Toolkit().PumpPending();
        return Drawn_;
    }

    std::vector<cell> Drawn_;
    std::vector<rect> Areas;
    int Selections = 0;
};

TEST_F(ctrlGridTest, WithoutRowsOrColumnsThereIsOnlyGround)
{
    for (const auto& [columns, rows] : {cell{0, 0}, cell{0, 5}, cell{5, 0}}) {
        ctrlGrid* grid = Grid(columns, rows);
        EXPECT_TRUE(Cells(grid).empty());
        Click(grid, 20, 20);
        fakeMouseDouble();
        Wheel(120);
        EXPECT_EQ(Selections, 0);
        EXPECT_EQ(grid->ScrollV, nullptr);
        grid->Destroy();
    }
}

// What a record of fills leaves on the screen, as the colours of its pixels.
std::vector<std::string> screenOf(const std::vector<std::string>& fills, int32_t width, int32_t height)
{
    std::vector<std::string> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (const std::string& line : fills) {
        rect area;
        char shade[16] = {};
        if (std::sscanf(line.c_str(), "fill %*d %d,%d,%d,%d %15[^/]", &area.Left, &area.Top, &area.Right,
                        &area.Bottom, shade) != 5)
            continue;
        for (int32_t y = std::max(area.Top, 0); y < std::min(area.Bottom, height); ++y) {
            for (int32_t x = std::max(area.Left, 0); x < std::min(area.Right, width); ++x)
                pixels[static_cast<size_t>(y * width + x)] = shade;
        }
    }
    return pixels;
}

TEST_F(ctrlGridTest, LinesStandBetweenAllCellsWhateverFillsThem)
{
    constexpr int32_t wide = 151;
    constexpr int32_t high = 81;
    for (const colour cells : {colourDefault, colour{0x102030}}) {
        for (const gridSelection& selection : {gridSelection{9, 9, 9, 9}, gridSelection{1, 2, 0, 1}}) {
            ctrlGrid* grid = Grid(3, 4, wide, high);
            grid->StyleSet(styleGridLinesV | styleGridLinesH | styleGridSelectMany);
            grid->BorderStyle(ctrlBorder::None);
            grid->LineColour = 0x0000FF;
            grid->CellColour = cells;
            grid->Selection = selection;
            grid->Invalidate(true);
            const std::vector<std::string> pixels = screenOf(Drawn({"fill "}), wide, high);
            for (int32_t y = 0; y < high; ++y) {
                for (int32_t x = 0; x < wide; ++x) {
                    const bool isLine = x % 50 == 0 || y % 20 == 0;
                    ASSERT_EQ(pixels[static_cast<size_t>(y * wide + x)] == "FF0000", isLine)
                        << x << "," << y << " " << cells << " " << selection.FirstRow;
                }
            }
            grid->Destroy();
        }
    }
}

TEST_F(ctrlGridTest, ATableThatFitsShowsNoScrollBars)
{
    ctrlGrid* grid = Grid(3, 5);
    EXPECT_EQ(grid->ScrollH, nullptr);
    EXPECT_EQ(grid->ScrollV, nullptr);
    EXPECT_EQ(Cells(grid).size(), 15U);
    EXPECT_EQ(Areas.front(), (rect{0, 0, 50, 20})) << "the lines of a cell are those of its neighbours too";
}

TEST_F(ctrlGridTest, BarsComeWhenTheyAreNeededAndGoAgain)
{
    ctrlGrid* grid = Grid(3, 50);
    ASSERT_NE(grid->ScrollV, nullptr);
    EXPECT_EQ(grid->ScrollH, nullptr);
    EXPECT_EQ(grid->ScrollV->X(), 286);
    EXPECT_EQ(grid->ScrollV->Maximum, 40);
    EXPECT_EQ(grid->ScrollV->Value, 40) << "at the top";
    grid->SetColumnCount(20);
    Toolkit().PumpPending();
    ASSERT_NE(grid->ScrollH, nullptr);
    EXPECT_EQ(grid->ScrollH->Width(), 286U) << "the corner stays free";
    EXPECT_EQ(grid->ScrollH->Y(), 186);
    grid->SetColumnCount(2);
    grid->SetRowCount(2);
    Toolkit().PumpPending();
    EXPECT_EQ(grid->ScrollH, nullptr);
    EXPECT_EQ(grid->ScrollV, nullptr);
    grid->StyleSet(styleGridBarV);
    Toolkit().PumpPending();
    ASSERT_NE(grid->ScrollV, nullptr);
    EXPECT_EQ(grid->ScrollV->Maximum, 0);
}

TEST_F(ctrlGridTest, OnlyWhatIsSeenIsDrawn)
{
    ctrlGrid* grid = Grid(100, 10'000);
    EXPECT_LE(Cells(grid).size(), 6U * 10U);
    grid->ScrollV->SetValue(0);
    grid->ScrollH->SetValue(grid->ScrollH->Maximum);
    EXPECT_EQ(Cells(grid).back(), cell(9'999, 99)) << "the last one can be reached";
}

TEST_F(ctrlGridTest, FixedLinesStayWhereTheyAre)
{
    ctrlGrid* grid = Grid(10, 50);
    grid->FixedColumns = 1;
    grid->SetFixedRows(1);
    Toolkit().PumpPending();
    grid->ScrollV->SetValue(grid->ScrollV->Maximum - 7);
    grid->ScrollH->SetValue(2);
    const std::vector<cell>& cells = Cells(grid);
    EXPECT_EQ(cells[0], cell(0, 0));
    EXPECT_EQ(cells[1], cell(0, 3));
    EXPECT_THAT(cells, Contains(cell(8, 0)));
    EXPECT_THAT(cells, Contains(cell(8, 3)));
    EXPECT_THAT(cells, Not(Contains(cell(7, 3))));
}

TEST_F(ctrlGridTest, AViewOfTheTopStaysThereWhenRowsCome)
{
    ctrlGrid* grid = Grid(3, 50);
    grid->SetRowCount(80);
    EXPECT_EQ(Cells(grid).front(), cell(0, 0));
    grid->ScrollV->SetValue(30);
    Toolkit().PumpPending();
    grid->SetRowCount(20);
    Toolkit().PumpPending();
    EXPECT_EQ(grid->ScrollV->Value, 10) << "clamped";
}

TEST_F(ctrlGridTest, WidthsAndHeightsAreAtLeastOne)
{
    ctrlGrid* grid = Grid(2, 2);
    grid->SetAutoColumn(0);
    EXPECT_TRUE(grid->Columns[0].Auto);
    grid->SetColumnWidth(0, 0);
    EXPECT_EQ(grid->Columns[0].Width, 1U);
    EXPECT_FALSE(grid->Columns[0].Auto);
    grid->SetRowHeight(1, 0);
    EXPECT_EQ(grid->RowHeights[1], 1U);
    grid->SetColumnWidth(9, 10);
    grid->SetRowHeight(9, 10);
    grid->SetAutoColumn(9);
    EXPECT_EQ(Cells(grid).size(), 4U);
}

TEST_F(ctrlGridTest, CountsNeverFallBelowTheFixedOnes)
{
    ctrlGrid* grid = Grid(4, 4);
    grid->SetFixedRows(6);
    EXPECT_EQ(grid->RowHeights.size(), 6U);
    grid->SetRowCount(2);
    EXPECT_EQ(grid->RowHeights.size(), 6U);
    grid->FixedColumns = 2;
    grid->SetColumnCount(1);
    EXPECT_EQ(grid->Columns.size(), 2U);
}

TEST_F(ctrlGridTest, TheSpareWidthIsShared)
{
    ctrlGrid* grid = Grid(3, 2);
    grid->SetAutoColumn(1);
    Toolkit().PumpPending();
    EXPECT_EQ(grid->Columns[1].Width, 200U);
    grid->SetRowCount(50);
    Toolkit().PumpPending();
    EXPECT_EQ(grid->Columns[1].Width, 186U) << "it gives way to the bar";
    EXPECT_EQ(grid->ScrollH, nullptr);
    grid->SetColumnWidth(0, 240);
    Toolkit().PumpPending();
    EXPECT_EQ(grid->Columns[1].Width, 4U) << "never less";
}

TEST_F(ctrlGridTest, TheMouseSelectsCells)
{
    ctrlGrid* grid = Grid(5, 8);
    int clicks = 0;
    grid->OnNotify = [&clicks](unsigned code) {
        clicks += code == notifyClick ? 1 : 0;
        return false;
    };
    MoveTo(grid, 110, 50);
    Press();
    EXPECT_EQ(grid->Selection, (gridSelection{2, 2, 2, 2}));
    MoveTo(grid, 20, 90);
    EXPECT_EQ(grid->Selection, (gridSelection{2, 4, 0, 2}));
    MoveTo(grid, 210, 10);
    EXPECT_EQ(grid->Selection, (gridSelection{0, 2, 2, 4})) << "from where it began";
    MoveTo(grid, 2000, 10);
    EXPECT_EQ(Selections, 3);
    Release();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
    Click(grid, 20, 190);
    EXPECT_EQ(Selections, 3) << "below the last row";
}

TEST_F(ctrlGridTest, ASelectionOfOneCellStaysOne)
{
    ctrlGrid* grid = Grid(5, 8);
    grid->StyleClear(styleGridSelectMany);
    grid->SetSelection({1, 3, 1, 3});
    Toolkit().PumpPending();
    EXPECT_EQ(grid->Selection, (gridSelection{1, 1, 1, 1}));
    MoveTo(grid, 10, 10);
    Press();
    MoveTo(grid, 110, 90);
    Release();
    EXPECT_EQ(grid->Selection, (gridSelection{0, 0, 0, 0}));
}

TEST_F(ctrlGridTest, AHeaderCellCanBeSelectedButIsNotMarked)
{
    ctrlGrid* grid = Grid(3, 4);
    grid->SetFixedRows(1);
    Click(grid, 60, 10);
    EXPECT_EQ(grid->Selection, (gridSelection{0, 0, 1, 1}));
    grid->Invalidate(true);
    EXPECT_THAT(Drawn({"fill"}), Not(Contains(HasSubstr("604800"))));
    Click(grid, 60, 30);
    grid->Invalidate(true);
    EXPECT_THAT(Drawn({"fill"}), Contains(HasSubstr("50,20,101,41 604800/1")));
    grid->StyleSet(styleGridUnmarked);
    grid->Invalidate(true);
    EXPECT_THAT(Drawn({"fill"}), Not(Contains(HasSubstr("604800"))));
}

TEST_F(ctrlGridTest, AHandlerMayTakeClicksAndChangeSelections)
{
    ctrlGrid* grid = Grid(5, 8);
    cell clicked{99, 99};
    grid->OnCellClick = [&clicked](uint64_t row, uint64_t column) { clicked = {row, column}; };
    Click(grid, 110, 50);
    EXPECT_EQ(clicked, cell(2, 2));
    EXPECT_EQ(Selections, 0);
    grid->OnCellClick = nullptr;
    grid->OnSelecting = [](gridSelection* wanted) { wanted->FirstColumn = 0, wanted->LastColumn = 4; };
    Click(grid, 111, 50);
    EXPECT_EQ(grid->Selection, (gridSelection{2, 2, 0, 4}));
    grid->SetSelection({2, 2, 3, 3});
    EXPECT_EQ(Selections, 1) << "the same rows again";
}

TEST_F(ctrlGridTest, DoubleAndRightClicksAreTold)
{
    ctrlGrid* grid = Grid(5, 8);
    int doubles = 0;
    int rights = 0;
    grid->OnDoubleClick = Count(doubles);
    grid->OnNotify = [&rights](unsigned code) {
        rights += code == notifyRightClick ? 1 : 0;
        return false;
    };
    Click(grid, 60, 30);
    fakeMouseDouble();
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(doubles, 1);
    fakeMousePress(fakeButton::Right);
    fakeMouseRelease(fakeButton::Right);
    Toolkit().PumpPending();
    EXPECT_EQ(rights, 1);
    grid->SetSelection({100, 100, 0, 0});
    fakeMouseDouble();
    Toolkit().PumpPending();
    EXPECT_EQ(doubles, 1) << "the selection is no cell of the table";
}

TEST_F(ctrlGridTest, ASelectionOutOfSightIsScrolledTo)
{
    ctrlGrid* grid = Grid(20, 50);
    grid->SetSelection({30, 30, 10, 10});
    const std::vector<cell>& cells = Cells(grid);
    const auto found = std::find(cells.begin(), cells.end(), cell(30, 10));
    ASSERT_NE(found, cells.end());
    const rect& area = Areas[static_cast<size_t>(found - cells.begin())];
    EXPECT_LE(area.Bottom, 186) << "whole";
    EXPECT_LE(area.Right, 286);
    grid->SetSelection({3, 3, 1, 1});
    EXPECT_EQ(Cells(grid).front(), cell(3, 1));
    const double before = grid->ScrollV->Value;
    grid->SetSelection({5, 5, 2, 2});
    EXPECT_EQ(grid->ScrollV->Value, before) << "it was in sight";
}

TEST_F(ctrlGridTest, TheWheelScrollsRows)
{
    ctrlGrid* grid = Grid(3, 50);
    MoveTo(grid, 20, 20);
    Wheel(-120);
    EXPECT_EQ(Cells(grid).front(), cell(1, 0));
    Wheel(240);
    EXPECT_EQ(Cells(grid).front(), cell(0, 0));
}

TEST_F(ctrlGridTest, HeadersAreDimmedWhenItIsDisabled)
{
    ctrlGrid* grid = Grid(3, 4);
    grid->SetFixedRows(1);
    Toolkit().PumpPending();
    grid->Enable(false);
    grid->Invalidate(true);
    const colour dim = ColourScale(theme::Face, 6, 7);
    char text[8];
    std::snprintf(text, sizeof text, "%02X%02X%02X", dim & 0xFF, dim >> 8 & 0xFF, dim >> 16 & 0xFF);
    EXPECT_THAT(Drawn({"fill"}), Contains(HasSubstr(text)));
}

TEST_F(ctrlGridTest, AThreadMayChangeTheShapeUnderItsLock)
{
    ctrlGrid* grid = Grid(5, 5);
    std::atomic<bool> done{false};
    std::jthread shaper([&] {
        for (uint64_t i = 0; i < 200; ++i) {
            const thrSpinHold hold(grid->Lock);
            grid->SetRowCount(i % 60);
            grid->SetColumnCount(1 + i % 20);
        }
        done = true;
    });
    uint64_t step = 0;
    EXPECT_TRUE(await([&] {
        ++step;
        Click(grid, static_cast<int32_t>(step % 280), static_cast<int32_t>(step % 180));
        grid->SetSelection({step % 60, step % 60, step % 20, step % 20});
        return done.load();
    }));
}

TEST_F(ctrlGridTest, StaysWholeAtAnySize)
{
    for (const uint32_t size : {1U, 2U, 13U, 14U, 15U, 29U}) {
        ctrlGrid* grid = Grid(30, 30, size, size);
        grid->SetFixedRows(3);
        grid->FixedColumns = 3;
        Cells(grid);
        Click(grid, 0, 0);
        grid->SetSelection({29, 29, 29, 29});
        Cells(grid);
        grid->Destroy();
    }
}

}  // namespace
