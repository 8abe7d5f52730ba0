// The page of a u-blox receiver: the time pulse with its errors over time, the constellations to choose from,
// and the spectrum of those models that tell it.
//
// The decoder is asked for things by its own requests, and never waited for. Its pulses and spectra come on
// the data thread straight to the graphs, from Source with a decoder on to Source(nullptr) or the end of the
// page; either waits for the one that is just coming. Either also bears that the decoder went before.
#pragma once

#include "forms/gnssUI.h"
#include "foundations/thread/thrTimer.h"
#include "gnss/gnssUBX.h"

#include <array>
#include <atomic>
#include <memory>
#include <vector>

class ctrlButton;
class ctrlGraphSpectrum;
class ctrlGraphWave;
class ctrlPage;

// Style bits of this page.
enum : uint32_t {
    stylePulseEdit = 128,  // the user may change the time pulse
};

class gnssUBX::UI : public gnss::UI
{
public:
    UI(ctrlWindow* parent, uint32_t flags);
    ~UI() override;

    void Paint() override;
    void Layout() override;

    // The decoder is a gnssUBX that knows its model, by which the page is settled.
    void Source(gnss* decoder) override;
    void Refresh() override;

    void StyleSet(uint32_t bits);

protected:
    static constexpr size_t HistoryLength = 300;

    std::vector<float> PPSHistory;  // nanoseconds; of the data thread
    ctrlEdit_Val* TDOPBox;
    ctrlEdit_Val* PPSWeekBox;
    ctrlEdit_Val* PPSTimeBox;
    ctrlEdit_Val* PPSErrorBox;
    std::array<ctrlButton*, ubxSignalCount> SignalBoxes{};  // in the order in which they stand
    ctrlPage* Tabs;
    ctrlGraphWave* PPSGraph;
    ctrlLabel* RateLabel;
    ctrlEdit_Val* RateEdit;
    ctrlLabel* DutyLabel;
    ctrlEdit_Val* DutyEdit;
    std::vector<ctrlGraphSpectrum*> SpectrumGraphs;  // one for each RF block; changed while nobody listens
    uint16_t ShownProtVer = 0;                       // of the last refresh, for painting
    uint8_t ShownModel = 0;                          // the same
    thrTimer SpectrumRest;                           // until a spectrum is asked for again

    // From a request for a spectrum to the next one, and until an answer counts as lost: on a line of 4800
    // baud, with all else that a receiver tells, it takes some two seconds.
    uint32_t SpectrumRestMs = 100;
    uint32_t SpectrumPatienceMs = 5000;

private:
    static constexpr uint32_t stateBoxClicked = 0x8000;  // since the last refresh

    gnssUBX* Receiver() const { return static_cast<gnssUBX*>(Decoder); }

    void MakePulseBoxes();
    void MakeSignalBoxes();
    void MakeTabs();
    void MakePulseEdits(ctrlWindow* tab);
    void PaintHeading(ctrlWindow* tab);

    void Listen();
    void Deafen();
    void Pulse_OnPPS(double error);
    void Spectrum_OnRFSpectrum(const Spectrum& told);
    void RFSpectrumAdd(size_t count);
    ctrlGraphSpectrum* MakeSpectrum(ctrlWindow* parent);
    void SpectrumPainted();
    void AskSpectrum();
    void LookAfterSpectrum(uint32_t milliseconds);
    void SpectrumRested();
    void PulseChanged();

    ctrlButton* SignalBox(ubxSignal signal) const;
    void SettleModel();
    void ShowPulse();
    void SelectByBoxes();
    void BoxesBySelect();
    void EnableBoxes();

    uint32_t PlaceBoxes(size_t first, size_t end, uint32_t y);
    void PlaceTabs();
    void PaintVersion();

    std::weak_ptr<const char> Ear;          // lives as long as the decoder has the handlers of this page
    std::atomic<bool> SpectrumCame{false};  // since it was last asked for
    bool SpectrumResting = false;
    bool SpectrumOwed = false;  // was painted while it rested
};
