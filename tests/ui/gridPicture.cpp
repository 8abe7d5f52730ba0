#include "tests/ui/gridPicture.h"

#include "tests/platform/screen/screenPixels.h"
#include "tests/ui/program.h"
#include "toolkit/ctrlGrid.h"

#include <functional>

namespace {

using cellDraw = std::function<void(uint64_t row, uint64_t column, const rect* area)>;

struct picture {
    std::vector<uint32_t> Pixels;
    uint64_t Rows = 0;  // that were drawn, with the header
    std::vector<int32_t> Tops;
};

// The table as it looks when its cells are drawn so.
picture Drawn(ctrlGrid* grid, const cellDraw& draw)
{
    picture taken;
    const auto swap = [grid](cellDraw other) {
        const thrSpinHold hold(grid->Lock);
        grid->OnCellDraw.swap(other);
        return other;
    };
    const cellDraw before = swap({});
    swap([&](uint64_t row, uint64_t column, const rect* area) {
        taken.Rows = std::max(taken.Rows, row + 1);
        if (column == 0)
            taken.Tops.push_back(area->Top);
        (draw ? draw : before)(row, column, area);
    });
    grid->Invalidate(true);
    Toolkit().PumpPending();
    taken.Pixels = screenPixels(areaOnScreen(grid));
    swap(before);
    return taken;
}

void DrawCell(ctrlGrid* grid, const expected::satRow& row, uint64_t column, const rect& area, bool centred)
{
    constexpr unsigned Right = textRight | textTop | textBottom;
    constexpr unsigned Centre = textLeft | textRight | textTop | textBottom;
    const std::string& text = row.Cells[column];
    grid->FontStyle(row.Style);
    grid->Colour(row.Shade);
    if (!text.empty())
        grid->Text(area, text.c_str(), centred ? Centre : Right, text.size());
}

}  // namespace

std::string gridDifference(ctrlGrid* grid, const std::vector<expected::satRow>& rows)
{
    constexpr const char* Headers[] = {"ID", "Elev.", "Az.", "SNR", "Signal"};
    expected::satRow header{{}, fontBold, 0xFFFFFF};
    for (size_t column = 0; column < std::size(Headers); ++column)
        header.Cells[column] = Headers[column];
    const picture shown = Drawn(grid, {});
    const picture wanted = Drawn(grid, [&](uint64_t row, uint64_t column, const rect* area) {
        if (row == 0)
            DrawCell(grid, header, column, *area, true);
        else if (row <= rows.size())
            DrawCell(grid, rows[row - 1], column, *area, column == 0 || column == 4);
    });
    if (shown.Rows != rows.size() + 1)
        return std::to_string(shown.Rows) + " rows of " + std::to_string(rows.size() + 1);
    if (shown.Pixels.empty() || shown.Pixels.size() != wanted.Pixels.size())
        return "no picture";
    for (size_t at = 0; at < shown.Pixels.size(); ++at) {
        if (shown.Pixels[at] == wanted.Pixels[at])
            continue;
        const auto y = static_cast<int32_t>(at / grid->Width());
        size_t row = 0;
        while (row + 1 < wanted.Tops.size() && wanted.Tops[row + 1] <= y)
            ++row;
        std::string text = "row " + std::to_string(row) + " at " + std::to_string(at % grid->Width());
        for (const std::string& cell : (row == 0 ? header : rows[row - 1]).Cells)
            text += " |" + cell;
        return text;
    }
    return {};
}
