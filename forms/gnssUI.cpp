#include "forms/gnssUI.h"

#include "forms/pageText.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlLabel.h"

namespace {

constexpr int32_t angleDecimals = 2;
constexpr int32_t timeDecimals = 2;
constexpr int32_t valueDecimals = 1;
constexpr int32_t dopDecimals = 2;

// Above this speed there are no decimals.
constexpr float fastSpeed = 50.0F;

constexpr uint32_t valueStyles = styleValAnyRange | styleValPlain;
constexpr uint32_t dopStyles = styleValAnyRange;

constexpr uint64_t gridColumns = 5;
constexpr uint64_t gridSignals = 4;  // the column that takes the rest of the width

}  // namespace

gnss::UI::UI(ctrlWindow* parent, uint32_t flags) : ctrlWindow(parent, flags)
{
    MakeCommon();
    MakeGrid();
}

gnss::UI::~UI()
{
    // What painting asks of the decoder is over before the controls go.
    StateSet(stateClosing);
    Decoder = nullptr;
}

void gnss::UI::MakeDisplay(ctrlEdit_Base* edit)
{
    edit->EditStyleClear(styleFocusable);
    edit->Show();
}

ctrlEdit_Val* gnss::UI::MakeVal(uint32_t flags, uint32_t styles, const std::string& unit, int32_t decimals)
{
    auto* edit = new ctrlEdit_Val(this, flags);
    edit->ValStyleSet(styles);
    edit->Unit(unit);
    edit->Decimals(decimals);
    MakeDisplay(edit);
    return edit;
}

ctrlEdit_Text* gnss::UI::MakeText()
{
    auto* edit = new ctrlEdit_Text(this, 0, 0, 1, 1, 0);
    MakeDisplay(edit);
    return edit;
}

void gnss::UI::MakeCommon()
{
    DateLabel = new ctrlLabel(this, "Date UTC", pageLabelFlags, 0);
    TimeLabel = new ctrlLabel(this, "Time UTC", pageLabelFlags, 0);
    DateLabel->Show();
    TimeLabel->Show();
    DateEdit = new ctrlEdit_Date(this, 0);
    TimeEdit = new ctrlEdit_Time(this, 0);
    LatitudeEdit = new ctrlEdit_Angle(this, ctrlEditLatitude);
    LongitudeEdit = new ctrlEdit_Angle(this, 0);
    TimeEdit->Decimals(timeDecimals);
    LatitudeEdit->Decimals(angleDecimals);
    LongitudeEdit->Decimals(angleDecimals);
    for (ctrlEdit_Base* edit :
         std::initializer_list<ctrlEdit_Base*>{DateEdit, TimeEdit, LatitudeEdit, LongitudeEdit})
        MakeDisplay(edit);
    AltitudeEdit = MakeVal(0, valueStyles, "m", valueDecimals);
    SeaLevelEdit = MakeVal(0, valueStyles, "m", valueDecimals);
    SpeedEdit = MakeVal(0, valueStyles, "km/h", valueDecimals);
    TrackEdit = MakeVal(0, valueStyles, "°", valueDecimals);
    HDOPEdit = MakeVal(0, dopStyles, {}, dopDecimals);
    VDOPEdit = MakeVal(0, dopStyles, {}, dopDecimals);
    PDOPEdit = MakeVal(0, dopStyles, {}, dopDecimals);
}

void gnss::UI::MakeGrid()
{
    VisSats = new ctrlGrid(this, 0, 0, 1, 1, gridColumns, 1);
    VisSats->SetFixedRows(1);
    VisSats->SetAutoColumn(gridSignals);
    VisSats->StyleClear(styleGridBarHNeeded);
    // The main form makes a page taller without asking it for its layout.
    VisSats->StyleSet(styleGridLinesH | styleGridLinesV | styleFollowHeight);
    VisSats->OnCellDraw = [this](uint64_t row, uint64_t column, const rect* area) {
        VisSats_OnCellDraw(row, column, area);
    };
    VisSats->Show();
}

void gnss::UI::Source(gnss* decoder)
{
    Decoder = decoder;
    if (Decoder)
        Refresh();
}

void gnss::UI::Refresh()
{
    if (!Decoder)
        return;
    DateEdit->Date(Decoder->Year, Decoder->Month, Decoder->Day);
    TimeEdit->Value(Decoder->TimeOfDay);
    LatitudeEdit->Value(Decoder->Latitude);
    LongitudeEdit->Value(Decoder->Longitude);
    AltitudeEdit->Value(Decoder->Altitude);
    SeaLevelEdit->Value(double{Decoder->SeaLevel});
    SpeedEdit->Decimals(Decoder->Speed <= fastSpeed ? valueDecimals : 0);
    SpeedEdit->Value(double{Decoder->Speed});
    TrackEdit->Value(double{Decoder->Track});
    HDOPEdit->Value(double{Decoder->HDOP});
    VDOPEdit->Value(double{Decoder->VDOP});
    PDOPEdit->Value(double{Decoder->PDOP});
    {
        const thrSpinHold hold(Decoder->SatsLock);
        VisSats->SetRowCount(Decoder->Sats.size() + 1);
    }
    VisSats->Invalidate(true);
}
