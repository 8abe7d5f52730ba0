#include "forms/gnssTSIP_UI.h"

#include "forms/pageText.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <cmath>

namespace {

constexpr int32_t angleDecimals = 4;
constexpr int32_t timeDecimals = 3;
constexpr int32_t dopDecimals = 2;
constexpr int32_t clockDecimals = 2;
constexpr int32_t largeBiasDecimals = 3;
constexpr int32_t temperatureDecimals = 1;
constexpr uint32_t countStyles = styleValAnyRange;
constexpr uint32_t valueStyles = styleValAnyRange | styleValPlain;

constexpr double perThousand = 0.001;
constexpr double picosecondsPerSecond = 1e12;

// Two units, the second a thousand times the first, which large values are shown in.
struct unitPair {
    double Large;
    const char* Unit;
    int32_t Decimals;
    const char* LargeUnit;
    int32_t LargeDecimals;
};
constexpr unitPair biasUnits{100'000, "ns", clockDecimals, "\u03BCs", largeBiasDecimals};
constexpr unitPair rateUnits{10'000, "ppb", clockDecimals, "ppm", clockDecimals};

void showScaled(ctrlEdit_Val* edit, double value, const unitPair& units)
{
    // The edit would keep its number, which must then keep its unit.
    if (std::isnan(value))
        return;
    const bool isLarge = std::fabs(value) >= units.Large;
    edit->Unit(isLarge ? units.LargeUnit : units.Unit);
    edit->Decimals(isLarge ? units.LargeDecimals : units.Decimals);
    edit->Value(isLarge ? value * perThousand : value);
}

}  // namespace

gnssTSIP::UI::UI(ctrlWindow* parent, uint32_t flags) : gnss::UI(parent, flags)
{
    LatitudeEdit->Decimals(angleDecimals);
    LongitudeEdit->Decimals(angleDecimals);
    TimeEdit->Decimals(timeDecimals);
    MakeEdits();
}

gnssTSIP::UI::~UI() = default;

void gnssTSIP::UI::MakeEdits()
{
    TDOPEdit = MakeVal(0, countStyles, {}, dopDecimals);
    WeekEdit = MakeVal(ctrlEditInteger, countStyles, {}, 0);
    WeekTimeEdit = MakeVal(ctrlEditInteger, countStyles, "s", 0);
    UTCOffsetEdit = MakeVal(ctrlEditInteger, countStyles, "s", 0);
    ClockBiasEdit = MakeVal(0, valueStyles, "ns", clockDecimals);
    BiasRateEdit = MakeVal(0, valueStyles, "ppb", clockDecimals);
    PPSErrorEdit = MakeVal(0, valueStyles, "ps", 0);
    RXModeEdit = MakeText();
    DecodeStatusEdit = MakeText();
    TemperatureEdit = MakeVal(0, valueStyles, "°C", temperatureDecimals);
}

void gnssTSIP::UI::Refresh()
{
    gnss::UI::Refresh();
    if (!Decoder)
        return;
    const gnssTSIP& receiver = Receiver();
    TDOPEdit->Value(double{receiver.TDOP});
    DateLabel->Caption(std::string(receiver.DateLabel()));
    TimeLabel->Caption(std::string(receiver.TimeLabel()));
    WeekEdit->Value(int64_t{receiver.Week});
    WeekTimeEdit->Value(double{receiver.WeekTime});
    UTCOffsetEdit->Value(double{receiver.UTCOffset});
    ShowClock();
    RXModeEdit->EditText(std::string(receiver.RXModeName()));
    DecodeStatusEdit->EditText(std::string(receiver.DecodeStatusName()));
    TemperatureEdit->Value(double{receiver.Temperature});
    FormPanel();
    Invalidate(true);
}

void gnssTSIP::UI::ShowClock()
{
    const gnssTSIP& receiver = Receiver();
    showScaled(ClockBiasEdit, receiver.ClockBias, biasUnits);
    showScaled(BiasRateEdit, receiver.BiasRate, rateUnits);
    PPSErrorEdit->Value(double{receiver.PPSError} * picosecondsPerSecond);
}

void gnssTSIP::UI::FormPanel()
{
    const gnssTSIP& receiver = Receiver();
    Panel.clear();
    Panel.push_back({"Time flags:", theme::LabelText, true});
    for (const FlagLine& line : TimeFlagLines())
        Panel.push_back({std::string(line.Text(receiver.TimeFlags)), pageWhite, false});
    Panel.push_back({"Status flags:", theme::LabelText, true});
    for (const FlagLine& line : StatusLines())
        Panel.push_back(
            {receiver.StatusText(line), line.IsSet(receiver.Status) ? pageYellow : pageGreen, false});
}
