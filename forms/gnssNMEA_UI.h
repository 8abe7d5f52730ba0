// The page of a receiver that speaks NMEA 0183: magnetic variation and the quality of the fix besides.
#pragma once

#include "forms/gnssUI.h"
#include "gnss/gnssNMEA.h"

class gnssNMEA::UI : public gnss::UI
{
public:
    UI(ctrlWindow* parent, uint32_t flags);
    ~UI() override;

    void Paint() override;
    void Layout() override;

    // The decoder is a gnssNMEA.
    void Refresh() override;

protected:
    ctrlEdit_Val* MagVarEdit;
    ctrlEdit_Text* FixQualityEdit;
};
