// The check boxes of the signals: which of them a model has, and how they and the decoder's selection follow
// each other.
#include "forms/gnssUBX_UI.h"

#include "toolkit/ctrlButton.h"

namespace {

struct boxRow {
    ubxSignal Signal;
    bool Shown;  // before the model is known
};

// In the order of layout.
constexpr std::array<boxRow, ubxSignalCount> boxTable = {{
    {ubxSignal::GPSL1CA, true},    {ubxSignal::GPSL2C, false},     {ubxSignal::GPSL5, false},
    {ubxSignal::GalileoE1, true},  {ubxSignal::GalileoE5a, false}, {ubxSignal::GalileoE5b, false},
    {ubxSignal::GLONASSL1, true},  {ubxSignal::GLONASSL2, false},  {ubxSignal::BeiDouB1I, true},
    {ubxSignal::BeiDouB1C, false}, {ubxSignal::BeiDouB2a, false},  {ubxSignal::BeiDouB2I, false},
    {ubxSignal::NavICL5, false},   {ubxSignal::SBAS, true},        {ubxSignal::QZSSL1CA, true},
    {ubxSignal::QZSSL1S, false},   {ubxSignal::QZSSL2C, false},    {ubxSignal::QZSSL5, false},
    {ubxSignal::IMES, false},
}};

// What a model changes. A disabled box follows its partner by the rules of the selection.
struct modelRow {
    uint8_t Model;
    ubxSignalSet Shown;
    ubxSignalSet Hidden;
    ubxSignalSet Disabled;
};

using set = ubxSignalSet;

constexpr modelRow modelTable[] = {
    {ubxModel::Seven, {}, set::Of(ubxSignal::GalileoE1, ubxSignal::BeiDouB1I), {}},
    {ubxModel::M8, set::Of(ubxSignal::IMES), {}, set::Of(ubxSignal::QZSSL1CA)},
    {ubxModel::ZedF9R,
     set::Of(ubxSignal::BeiDouB2I, ubxSignal::GalileoE5b, ubxSignal::GLONASSL2, ubxSignal::GPSL2C,
             ubxSignal::QZSSL2C),
     {},
     set::Of(ubxSignal::QZSSL1CA, ubxSignal::QZSSL2C)},
    {ubxModel::M10, set::Of(ubxSignal::BeiDouB1C, ubxSignal::QZSSL1S), {}, {}},
    {ubxModel::MaxM10S, set::Of(ubxSignal::BeiDouB1C, ubxSignal::QZSSL1S), {}, {}},
    {ubxModel::NeoF10N,
     set::Of(ubxSignal::BeiDouB1C, ubxSignal::BeiDouB2a, ubxSignal::GalileoE5a, ubxSignal::GPSL5,
             ubxSignal::NavICL5, ubxSignal::QZSSL1S, ubxSignal::QZSSL5),
     set::Of(ubxSignal::BeiDouB1I, ubxSignal::GLONASSL1),
     {}},
};

constexpr std::string_view nameOf(ubxSignal signal)
{
    return ubxSignalTable[static_cast<size_t>(signal)].Name;
}

constexpr size_t placeOf(ubxSignal signal)
{
    size_t place = 0;
    while (boxTable[place].Signal != signal)
        ++place;
    return place;
}

}  // namespace

void gnssUBX::UI::MakeSignalBoxes()
{
    for (size_t place = 0; place < boxTable.size(); ++place) {
        auto* box = new ctrlButton(this, std::string(nameOf(boxTable[place].Signal)), 0);
        box->Kind(buttonKind::ToggleHeld);
        box->OnClick = [this] { StateSet(stateBoxClicked); };
        if (boxTable[place].Shown)
            box->Show();
        SignalBoxes[place] = box;
    }
}

ctrlButton* gnssUBX::UI::SignalBox(ubxSignal signal) const
{
    return SignalBoxes[placeOf(signal)];
}

void gnssUBX::UI::SettleModel()
{
    const uint8_t model = Receiver()->Model;
    for (const modelRow& row : modelTable) {
        if (row.Model != model)
            continue;
        for (const boxRow& box : boxTable) {
            if (row.Shown.Has(box.Signal))
                SignalBox(box.Signal)->Show();
            if (row.Hidden.Has(box.Signal))
                SignalBox(box.Signal)->Hide();
            if (row.Disabled.Has(box.Signal))
                SignalBox(box.Signal)->Enable(false);
        }
    }
    const size_t blocks = ubxModel::AbilityOf(model).SpectrumBlocks;
    if (blocks > 0 && SpectrumGraphs.empty())
        RFSpectrumAdd(blocks);
}

// The boxes show what the user clicked until the receiver has answered, which a later refresh tells.
void gnssUBX::UI::SelectByBoxes()
{
    const auto on = [this](ubxSignal signal) { return SignalBox(signal)->Checked(); };
    Receiver()->GNSSSelect(on(ubxSignal::BeiDouB1C), on(ubxSignal::BeiDouB1I), on(ubxSignal::BeiDouB2a),
                           on(ubxSignal::BeiDouB2I), on(ubxSignal::GalileoE1), on(ubxSignal::GalileoE5a),
                           on(ubxSignal::GalileoE5b), on(ubxSignal::GLONASSL1), on(ubxSignal::GLONASSL2),
                           on(ubxSignal::GPSL1CA), on(ubxSignal::GPSL2C), on(ubxSignal::GPSL5),
                           on(ubxSignal::IMES), on(ubxSignal::NavICL5), on(ubxSignal::QZSSL1CA),
                           on(ubxSignal::QZSSL1S), on(ubxSignal::QZSSL2C), on(ubxSignal::QZSSL5),
                           on(ubxSignal::SBAS));
}

void gnssUBX::UI::BoxesBySelect()
{
    const ubxSignalSet selected = Receiver()->Select.Load();
    for (const boxRow& box : boxTable)
        SignalBox(box.Signal)->Checked(selected.Has(box.Signal));
}

// Some signals help others and are of no use without them.
void gnssUBX::UI::EnableBoxes()
{
    const auto on = [this](ubxSignal signal) { return SignalBox(signal)->Checked(); };
    if (ShownModel == ubxModel::ZedF9R)
        SignalBox(ubxSignal::SBAS)->Enable(on(ubxSignal::GPSL1CA) || on(ubxSignal::GalileoE1));
    if (ShownModel != ubxModel::NeoF10N)
        return;
    SignalBox(ubxSignal::NavICL5)
        ->Enable(on(ubxSignal::GPSL1CA) || on(ubxSignal::GalileoE1) || on(ubxSignal::BeiDouB1C));
    for (const ubxSignal signal : {ubxSignal::QZSSL1CA, ubxSignal::QZSSL1S, ubxSignal::QZSSL5})
        SignalBox(signal)->Enable(on(ubxSignal::GPSL1CA));
}
