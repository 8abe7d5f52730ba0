// The controls that a page works hardest with: the grid of satellites, spectra, and an edit.
#pragma once

#include "toolkit/ctrlEdit.h"
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlGrid.h"

#include <cstdint>
#include <string>
#include <vector>

// A window with nothing but one control, or several side by side.
class sceneWindow final : public ctrlWindow
{
public:
    sceneWindow(uint32_t width, uint32_t height) : ctrlWindow(nullptr, 40, 40, width, height, ctrlFramed) {}
};

// A header and rows of five columns, of which 40 are seen.
class sceneGrid final : public ctrlGrid
{
public:
    sceneGrid(ctrlWindow* parent, uint64_t rows);

    static constexpr uint32_t Width = 460;
    static constexpr uint32_t Height = 41 * 15;
    unsigned Turn = 0;    // changes all texts
    unsigned NewRow = 0;  // changes one row of ten

private:
    void Draw(uint64_t row, uint64_t column, const rect& area);
};

// As the page of a receiver with a spectrum has it.
ctrlGraphSpectrum* sceneSpectrum(ctrlWindow* parent, int32_t y, uint64_t samples);
std::vector<float> sceneLevels(uint64_t count, unsigned turn);

class sceneEdit final : public ctrlEdit_Text
{
public:
    explicit sceneEdit(ctrlWindow* parent) : ctrlEdit_Text(parent, 10, 10, 300, 20, 0) { Show(); }
    void Paint() override;

    std::string Painted;      // the text of the last paint
    int64_t LastPaintNs = 0;  // when it ended, of the steady clock
};
