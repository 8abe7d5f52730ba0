// A graph of levels over frequencies. What is pushed are samples that its style brings into decibels.
#pragma once

#include "toolkit/ctrlGraphWave.h"

class ctrlGraphSpectrum : public ctrlGraphWave
{
public:
    ctrlGraphSpectrum(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                      uint32_t style);
};
