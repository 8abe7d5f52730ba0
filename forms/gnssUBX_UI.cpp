#include "forms/gnssUBX_UI.h"

#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGraphSpectrum.h"

#include <algorithm>

namespace {

constexpr int32_t angleDecimals = 4;
constexpr int32_t timeDecimals = 3;
constexpr int32_t valueDecimals = 2;
constexpr int32_t dopFloor = -2;
constexpr int32_t timeFloor = -1;
constexpr uint32_t dopStyles = styleValAnyRange;
constexpr uint32_t pulseStyles = styleValAnyRange | styleValPlain;

constexpr double picosecondsPerSecond = 1e12;
constexpr double percent = 100;
constexpr double perPercent = 0.01;
constexpr float leastRate = 0.25F;  // Hz
constexpr float mostRate = 1e7F;

}  // namespace

gnssUBX::UI::UI(ctrlWindow* parent, uint32_t flags) : gnss::UI(parent, flags)
{
    PPSHistory.reserve(HistoryLength);
    LatitudeEdit->Decimals(angleDecimals);
    LongitudeEdit->Decimals(angleDecimals);
    TimeEdit->Decimals(timeDecimals);
    MakePulseBoxes();
    MakeSignalBoxes();
    MakeTabs();
}

gnssUBX::UI::~UI()
{
    StateSet(stateClosing);
    SpectrumRest.Stop();
    Deafen();
    // An edit that has the focus commits when it goes.
    RateEdit->OnChange = nullptr;
    DutyEdit->OnChange = nullptr;
}

void gnssUBX::UI::MakePulseBoxes()
{
    TDOPBox = MakeVal(0, dopStyles, {}, valueDecimals);
    PPSWeekBox = MakeVal(ctrlEditInteger, pulseStyles, {}, valueDecimals);
    PPSTimeBox = MakeVal(0, pulseStyles, "s", valueDecimals);
    PPSErrorBox = MakeVal(0, pulseStyles, "ps", valueDecimals);
    TDOPBox->ExponentFloor(dopFloor);
    PPSTimeBox->ExponentFloor(timeFloor);
}

void gnssUBX::UI::StyleSet(uint32_t bits)
{
    if ((bits & stylePulseEdit) && !HasStyle(stylePulseEdit)) {
        RateEdit->ValStyleSet(styleFocusable);
        DutyEdit->ValStyleSet(styleFocusable);
    }
    gnss::UI::StyleSet(bits);
}

// --- The decoder

void gnssUBX::UI::Source(gnss* decoder)
{
    Deafen();
    gnss::UI::Source(decoder);
    if (!decoder)
        return;
    SettleModel();
    Listen();
}

void gnssUBX::UI::Listen()
{
    gnssUBX* receiver = Receiver();
    const auto ear = std::make_shared<const char>();
    receiver->OnPPS = [this, receiver, ear] { Pulse_OnPPS(receiver->PPSError); };
    receiver->OnRFSpectrum = [this, ear](const Spectrum& told) { Spectrum_OnRFSpectrum(told); };
    Ear = ear;
}

// Where a link ends by itself the decoder may have gone first, and its handlers with it.
void gnssUBX::UI::Deafen()
{
    if (Ear.expired())
        return;
    Receiver()->OnPPS = nullptr;
    Receiver()->OnRFSpectrum = nullptr;
}

void gnssUBX::UI::Refresh()
{
    gnss::UI::Refresh();
    const gnssUBX* receiver = Receiver();
    if (!receiver)
        return;
    if (ShownProtVer != receiver->ProtVer || ShownModel != receiver->Model) {
        ShownProtVer = receiver->ProtVer;
        ShownModel = receiver->Model;
        Invalidate(true);
    }
    ShowPulse();
    if (StateClear(stateBoxClicked) & stateBoxClicked) {
        SelectByBoxes();
        return;
    }
    BoxesBySelect();
    EnableBoxes();
}

void gnssUBX::UI::ShowPulse()
{
    const gnssUBX& receiver = *Receiver();
    DutyEdit->Value(double{receiver.PPSDuty} * percent);
    PPSErrorBox->Value(receiver.PPSError * picosecondsPerSecond);
    RateEdit->Value(double{receiver.PPSRate});
    PPSTimeBox->Value(receiver.PPSTime);
    PPSWeekBox->Value(int64_t{receiver.PPSWeek});
    TDOPBox->Value(double{receiver.TDOP});
}

void gnssUBX::UI::PulseChanged()
{
    gnssUBX* receiver = Receiver();
    if (!receiver)
        return;
    const float duty = std::clamp(static_cast<float>(DutyEdit->ValueGetF() * perPercent), 0.0F, 1.0F);
    const float rate = std::clamp(static_cast<float>(RateEdit->ValueGetF()), leastRate, mostRate);
    if (duty == receiver->PPSDuty && rate == receiver->PPSRate)
        return;
    receiver->PPSDuty = duty;
    receiver->PPSRate = rate;
    receiver->PendingPPS = 1;
}
