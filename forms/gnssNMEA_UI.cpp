#include "forms/gnssNMEA_UI.h"

#include "toolkit/ctrlEdit_Val.h"

namespace {

constexpr int32_t decimals = 1;

constexpr uint32_t rowVariation = 3;
constexpr uint32_t rowQuality = 4;
constexpr uint32_t whole = 1;
constexpr uint32_t thirds = 3;
constexpr uint32_t quarters = 4;

constexpr std::string_view variationCells[] = {{}, {}, {}, "Mag. var."};
constexpr std::string_view qualityCells[] = {"Fix qual."};

}  // namespace

gnssNMEA::UI::UI(ctrlWindow* parent, uint32_t flags) : gnss::UI(parent, flags)
{
    MagVarEdit = MakeVal(0, styleValAnyRange | styleValPlain, "°", decimals);
    FixQualityEdit = MakeText();
}

gnssNMEA::UI::~UI() = default;

void gnssNMEA::UI::Refresh()
{
    gnss::UI::Refresh();
    if (!Decoder)
        return;
    const auto& receiver = static_cast<const gnssNMEA&>(*Decoder);
    MagVarEdit->Value(double{receiver.MagVar});
    FixQualityEdit->EditText(std::string(FixQualityName(receiver.FixQuality)));
}

void gnssNMEA::UI::Layout()
{
    // Below the last edit there is room for a button.
    SizePage(MinWidth(WidthBlock) + Gap + MinWidth(WidthGrid),
             EditTop(rowQuality) + EditHeight() + Gap + EditHeight());
    PlaceCommon();
    PlaceEdit(MagVarEdit, rowVariation, quarters, quarters - 1);
    PlaceEdit(FixQualityEdit, rowQuality, whole, 0);
}

void gnssNMEA::UI::Paint()
{
    constexpr labelRow rows[] = {
        {rowVariation, quarters, variationCells},
        {rowQuality, thirds, qualityCells},
    };
    gnss::UI::Paint();
    PaintRows(rows);
}
