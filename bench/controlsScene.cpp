#include "bench/controlsScene.h"

#include "platform/clock.h"

#include <cmath>

namespace {

constexpr uint32_t rowHeight = 15;
constexpr uint64_t columnCount = 5;

}  // namespace

sceneGrid::sceneGrid(ctrlWindow* parent, uint64_t rows)
    : ctrlGrid(parent, 0, 0, Width, Height, columnCount, rows + 1)
{
    SetFixedRows(1);
    for (uint64_t row = 0; row <= rows; ++row)
        SetRowHeight(row, rowHeight);
    for (uint64_t column = 0; column + 1 < columnCount; ++column)
        SetColumnWidth(column, 36);
    SetAutoColumn(columnCount - 1);
    OnCellDraw = [this](uint64_t row, uint64_t column, const rect* area) { Draw(row, column, *area); };
    Show();
}

void sceneGrid::Draw(uint64_t row, uint64_t column, const rect& area)
{
    ColourEnabled(theme::Highlight, true);
    constexpr uint64_t part = 10;
    const unsigned turn = row % part == NewRow % part ? Turn + NewRow : Turn;
    const std::string text = std::to_string((row * columnCount + column) * 7 + turn);
    Text(area, text.c_str(), textRight | textTop | textBottom);
}

ctrlGraphSpectrum* sceneSpectrum(ctrlWindow* parent, int32_t y, uint64_t samples)
{
    constexpr double low = 1'559.42e6;
    constexpr double high = 1'591.42e6;
    auto* graph = new ctrlGraphSpectrum(parent, 0, y, 300, 280, 0);
    graph->SetStyleWave(graphExp);
    graph->SetTickGapX(2);
    graph->SetTickGapY(2);
    graph->SetAxisFlags(graph->AxisX, true, true, true);
    graph->SetAxisFlags(graph->AxisY, true, false, true);
    graph->SetRangeX(low, high);
    graph->SetExtentX(high - low, true);
    graph->SetOriginX(low);
    graph->SetRangeY(0, 80);
    graph->AxisLinkX->AddCursor(true)->Flags |= cursorValue;
    const std::vector<float> levels = sceneLevels(samples, 0);
    graph->Push(levels.data(), levels.size(), 1);
    graph->Show();
    return graph;
}

std::vector<float> sceneLevels(uint64_t count, unsigned turn)
{
    std::vector<float> levels(count);
    uint32_t noise = turn + 1;
    for (uint64_t i = 0; i < count; ++i) {
        noise = noise * 1'664'525 + 1'013'904'223;
        const float at = static_cast<float>(i) / static_cast<float>(count) - 0.5F;
        levels[i] = 15 + 30 * std::exp(-at * at * 16) + static_cast<float>(noise >> 24) / 64;
    }
    return levels;
}

void sceneEdit::Paint()
{
    ctrlEdit_Text::Paint();
    Painted = Name();
    LastPaintNs = clockSteadyNs();
}
