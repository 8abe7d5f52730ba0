// The page of a receiver that speaks TSIP: its clock and its modes, and a panel of flags.
#pragma once

#include "forms/gnssUI.h"
#include "gnss/gnssTSIP.h"

#include <string>
#include <vector>

class gnssTSIP::UI : public gnss::UI
{
public:
    UI(ctrlWindow* parent, uint32_t flags);
    ~UI() override;

    void Paint() override;
    void Layout() override;

    // The decoder is a gnssTSIP.
    void Refresh() override;

protected:
    ctrlEdit_Val* TDOPEdit;
    ctrlEdit_Val* WeekEdit;
    ctrlEdit_Val* WeekTimeEdit;
    ctrlEdit_Val* UTCOffsetEdit;
    ctrlEdit_Val* ClockBiasEdit;
    ctrlEdit_Val* BiasRateEdit;
    ctrlEdit_Val* PPSErrorEdit;
    ctrlEdit_Text* RXModeEdit;
    ctrlEdit_Text* DecodeStatusEdit;
    ctrlEdit_Val* TemperatureEdit;

private:
    // A line of the panel, as it was at the last refresh: painting has no lock to ask the decoder.
    struct panelLine {
        std::string Text;
        colour Shade;
        bool Heading;
    };

    const gnssTSIP& Receiver() const { return static_cast<const gnssTSIP&>(*Decoder); }

    void MakeEdits();
    void ShowClock();
    void FormPanel();
    rect SideLabel(uint32_t index) const;
    uint32_t SideEnd() const;
    void PaintSide();
    uint32_t PanelIndent();
    void PaintPanel();

    std::vector<panelLine> Panel;
};
