#include "toolkit/ctrlGraphSpectrum.h"

namespace {

constexpr double fullExtent = 5512.5;  // Hz
constexpr double levelLeast = -100;    // dB
constexpr double levelMost = 0;

}  // namespace

ctrlGraphSpectrum::ctrlGraphSpectrum(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width,
                                     uint32_t height, uint32_t style)
    : ctrlGraphWave(parent, x, y, width, height, style)
{
    SetExtentX(fullExtent, true);
    SetUnit(AxisX, "Hz");
    ctrlGraph::SetRangeY(levelLeast, levelMost);
    SetUnit(AxisY, "dB");
    SetStyle(graphLog);
    SetAxisFlags(AxisX, true, true, false);
}
