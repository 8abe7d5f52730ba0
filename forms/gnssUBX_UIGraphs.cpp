// The tabs: the errors of the time pulse, with its rate and duty, and the spectra.
#include "forms/gnssUBX_UI.h"

#include "forms/pageText.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlLabel.h"
#include "toolkit/ctrlPage.h"
#include "toolkit/ctrlSplit.h"
#include "toolkit/graphKernels.h"

#include <algorithm>
#include <string>

namespace {

constexpr char headingText[] = "PPS error history [ns]";
constexpr uint32_t headingAt = 4;
constexpr uint32_t headingWidth = 300;  // before scaling
constexpr uint32_t headingExtra = 4;

constexpr float pointWidth = 1.5F;
constexpr uint32_t tickGap = 2;
constexpr double leastRate = 0.25;  // Hz
constexpr double mostRate = 10'000'000;
constexpr double mostDuty = 100;  // %
constexpr int32_t decimals = 2;
constexpr int32_t dutyFloor = -2;

constexpr double nanosecondsPerSecond = 1e9;
constexpr double leastMargin = 0.1;  // ns, above and below the history
constexpr double marginPart = 0.05;

constexpr uint32_t spectrumSide = 100;
constexpr uint32_t spectrumTab = 128;  // a style bit, for those who look for this tab

}  // namespace

void gnssUBX::UI::MakeTabs()
{
    Tabs = new ctrlPage(this, 0, 0, 1, 1, 0, stylePageSelect);
    Tabs->StyleSet(styleFollowHeight);
    Tabs->AddPage(0, nullptr, "PPS");
    Tabs->Show();
    ctrlWindow* tab = Tabs->Page(0);
    tab->OnNotify = [this, tab](unsigned code) {
        if (code == notifyPainted)
            PaintHeading(tab);
        return false;
    };
    PPSGraph = new ctrlGraphWave(tab, 0);
    PPSGraph->SetTraceWidth(pointWidth);
    PPSGraph->SetRangeX(0, HistoryLength);
    PPSGraph->SetTickGapX(tickGap);
    PPSGraph->SetTickGapY(tickGap);
    PPSGraph->SetAxisFlags(PPSGraph->AxisX, true, false, true);
    PPSGraph->SetAxisFlags(PPSGraph->AxisY, true, false, true);
    PPSGraph->SetUnit(PPSGraph->AxisX, "s");
    PPSGraph->StyleSet(styleFollowWidth | styleFollowHeight);
    PPSGraph->Show();
    MakePulseEdits(tab);
}

void gnssUBX::UI::MakePulseEdits(ctrlWindow* tab)
{
    const auto make = [tab](const char* text, ctrlLabel*& label, ctrlEdit_Val*& edit) {
        label = new ctrlLabel(tab, text, pageLabelFlags, 0);
        edit = new ctrlEdit_Val(tab, 0);
        edit->ValStyleClear(styleFocusable);
        edit->Decimals(decimals);
        label->StyleSet(styleFollowY);
        edit->StyleSet(styleFollowY);
        label->Show();
    };
    make("PPS rate", RateLabel, RateEdit);
    RateEdit->ValStyleSet(styleValGeneral);
    RateEdit->Range(leastRate, mostRate);
    RateEdit->Unit("Hz");
    make("duty", DutyLabel, DutyEdit);
    DutyEdit->ValStyleSet(styleValPlain);
    DutyEdit->Range(0.0, mostDuty);
    DutyEdit->Unit("%");
    DutyEdit->ExponentFloor(dutyFloor);
    for (ctrlEdit_Val* edit : {RateEdit, DutyEdit}) {
        edit->OnChange = [this] { PulseChanged(); };
        edit->Show();
    }
}

void gnssUBX::UI::PaintHeading(ctrlWindow* tab)
{
    tab->Colour(theme::LabelText);
    tab->Text(BoxOf(headingAt, headingAt, Scaled(headingWidth) + headingExtra, LabelHeight() + headingExtra),
              headingText, pageLabelFlags);
}

// --- The pulse, on the data thread

void gnssUBX::UI::Pulse_OnPPS(double error)
{
    if (PPSHistory.size() >= HistoryLength)
        PPSHistory.erase(PPSHistory.begin());
    PPSHistory.push_back(static_cast<float>(error * nanosecondsPerSecond));
    if (PPSHistory.size() < 2)
        return;
    float ends[2];
    graphKernels.MinMax(PPSHistory.data(), PPSHistory.size(), ends);
    const double lowest = ends[0];
    const double highest = ends[1];
    const double margin = std::max(leastMargin, (highest - lowest) * marginPart);
    PPSGraph->SetRangeY(lowest - margin, highest + margin);
    PPSGraph->SetExtentX(static_cast<double>(PPSHistory.size()), false);
    PPSGraph->Push(PPSHistory.data(), PPSHistory.size(), 1);
}

// --- The spectrum

void gnssUBX::UI::RFSpectrumAdd(size_t count)
{
    auto* split = new ctrlSplit(Tabs, 0, 0, spectrumSide, spectrumSide, spectrumTab);
    Tabs->AddPage(Tabs->PageCount, split, "RF spectrum");
    for (size_t block = 0; block < count; ++block) {
        SpectrumGraphs.push_back(MakeSpectrum(split));
        split->Add(block, SpectrumGraphs.back());
    }
}

ctrlGraphSpectrum* gnssUBX::UI::MakeSpectrum(ctrlWindow* parent)
{
    auto* graph = new ctrlGraphSpectrum(parent, 0, 0, spectrumSide, spectrumSide, 0);
    graph->OnNotify = [this](unsigned code) {
        if (code == notifyPainted)
            SpectrumPainted();
        return false;
    };
    // Levels come in decibels already: the way back undoes what the graph would make of amplitudes.
    graph->SetStyleWave(graphExp);
    graph->SetSeriesCount(1);
    graph->SetTickGapX(tickGap);
    graph->SetTickGapY(tickGap);
    graph->SetAxisFlags(graph->AxisX, true, true, true);
    graph->SetAxisFlags(graph->AxisY, true, false, true);
    ctrlGraph::Cursor* cursor = graph->AxisLinkX->AddCursor(true);
    const thrSpinHold hold(graph->Lock);
    cursor->Colour = theme::Highlight;
    cursor->Flags = (cursor->Flags | cursorValue) & ~uint32_t{cursorFixed};
    return graph;
}

// A graph that is seen paints, the paint asks for the next spectrum, and that lets the graph paint again. On
// a fast line the circle would go round a hundred times a second, faster than anybody can look.
void gnssUBX::UI::SpectrumPainted()
{
    if (!SpectrumResting)
        AskSpectrum();
    else if (SpectrumCame)
        SpectrumOwed = true;
}

void gnssUBX::UI::AskSpectrum()
{
    gnssUBX* receiver = Receiver();
    SpectrumCame = false;
    SpectrumOwed = false;
    if (!receiver)
        return;
    receiver->PendingSpectrum = 1;
    if (SpectrumResting)
        return;
    SpectrumResting = true;
    LookAfterSpectrum(SpectrumRestMs);
}

// Every so many, from now on.
void gnssUBX::UI::LookAfterSpectrum(uint32_t milliseconds)
{
    SpectrumRest.Stop();
    SpectrumRest.Period = milliseconds;
    SpectrumRest.OnTick = [this] {
        Toolkit().Post(
            [this, life = ctrlLife(this)] {
                if (life && !HasState(stateClosing))
                    SpectrumRested();
            },
            true);
    };
    SpectrumRest.Start();
}

// The rest is over, or the patience. A line that loses the answer, or the request, must not end the circle.
void gnssUBX::UI::SpectrumRested()
{
    const bool isSeen = SpectrumGraphs.front()->IsVisible();
    const bool isLost = !SpectrumResting && !SpectrumCame;
    if (isSeen && (SpectrumOwed || isLost))
        return AskSpectrum();
    const bool isAwaited = isSeen && !SpectrumCame;
    SpectrumOwed = false;
    SpectrumResting = false;
    if (isAwaited)
        LookAfterSpectrum(SpectrumPatienceMs);
    else
        SpectrumRest.Stop();
}

// On the data thread. The receiver says where the spectrum lies, so a zoom ends with the next one.
void gnssUBX::UI::Spectrum_OnRFSpectrum(const Spectrum& told)
{
    if (told.Block >= SpectrumGraphs.size())
        return;
    ctrlGraphSpectrum* graph = SpectrumGraphs[told.Block];
    graph->SetRangeX(told.LowFrequency, told.HighFrequency);
    graph->SetExtentX(told.HighFrequency - told.LowFrequency, true);
    graph->SetOriginX(told.LowFrequency);
    graph->SetRangeY(told.LowLevel, told.HighLevel);
    SpectrumCame = true;
    graph->Push(told.Levels, told.Count, 1);
}
