// Edits of texts, values, dates, angles and times, each in each of its states.
#include "toolkit/ctrlEdit.h"
#include "toolkit/ctrlEdit_Angle.h"
#include "toolkit/ctrlEdit_Date.h"
#include "toolkit/ctrlEdit_Time.h"
#include "toolkit/ctrlEdit_Val.h"
#include "tools/gallery/gallery.h"

#include <string>
#include <vector>

namespace {

constexpr int32_t sheetWidth = 320;
constexpr int32_t labelLeft = 10;
constexpr int32_t labelWidth = 120;
constexpr int32_t editLeft = 136;
constexpr int32_t editWidth = 170;
constexpr int32_t editHeight = 20;
constexpr int32_t firstRow = 28;
constexpr int32_t rowPitch = 26;

// A sheet of rows: a label, and an edit behind it. Tab goes from row to row.
class rowSheet final : public gallerySheet
{
public:
    rowSheet(ctrlWindow* parent, int32_t x, int32_t y, int32_t rows, const char* heading)
        : gallerySheet(parent, x, y, sheetWidth, static_cast<uint32_t>(firstRow + rows * rowPitch + 4),
                       heading)
    {}

    template <class edit>
    edit* Add(const char* name, edit* made, int32_t width = editWidth)
    {
        galleryLabel(this, name, labelLeft, Top + 1, labelWidth);
        galleryPlaced(made, editLeft, Top, width, editHeight);
        made->TabOrder(++Rows);
        made->OnChange = [made, name] { galleryTell(std::string(name) + ": " + made->Name()); };
        Top += rowPitch;
        return made;
    }

    ctrlEdit_Text* TextRow(const char* name, const char* text)
    {
        ctrlEdit_Text* made = Add(name, new ctrlEdit_Text(this, 0, 0, 10, 10, 0));
        made->EditText(text);
        return made;
    }

    ctrlEdit_Val* ValueRow(const char* name, double value, const char* unit, uint32_t styles = 0)
    {
        ctrlEdit_Val* made = Add(name, new ctrlEdit_Val(this, 0));
        made->ValStyleSet(styleSpinArrows | styles);
        made->Unit(unit);
        made->Range(-1e13, 1e13);
        made->Decimals(2);
        made->Value(value);
        return made;
    }

private:
    int32_t Top = firstRow;
    uint32_t Rows = 0;
};

// Shows a value and takes none: Tab passes it by.
void displayOnly(ctrlEdit_Base* edit)
{
    edit->EditStyleClear(uint32_t{styleFocusable} | styleSpinArrows);
    edit->TabOrder(0);
}

void textSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new rowSheet(parent, x, y, 9, "Texts");
    sheet->TextRow("left", "skyreckoning.example:4003");
    sheet->TextRow("right", "skyreckoning.example")->TextFlags = textRight;
    sheet->TextRow("centred", "skyreckoning.example")->TextFlags = 0;
    sheet->TextRow("too long", "A text that is a good deal too long for its field")->TextFlags =
        textLeft | textTrim;
    sheet->TextRow("other scripts", "Zürich, Αθήνα, 東京, 🛰")->MaxLength(40);
    sheet->TextRow("at most 8", "12345678")->MaxLength(8);
    sheet->TextRow("password", "secret")->StyleSet(styleEditPassword);
    displayOnly(sheet->TextRow("display", "cannot be typed in"));
    sheet->TextRow("disabled", "cannot be used")->Enable(false);
}

void valueSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new rowSheet(parent, x, y, 12, "Values");
    sheet->ValueRow("plain", 1234.5, "m", styleValPlain);
    sheet->ValueRow("with prefixes", 3500, "Hz", styleSpinDrop)
        ->Presets(std::vector<double>{0.25, 1, 10, 1e3, 1e6, 10e6, 1e9, 2.5e9, 1e10, 1e12});
    ctrlEdit_Val* small = sheet->ValueRow("small", 0.0025, "s");
    small->Range(0.0, 5.0);
    small->Step(0.001);
    sheet->ValueRow("grouped", 1234567.25, "m", styleValPlain | styleValGrouped);
    sheet->ValueRow("significant", 12345.678, "Hz", styleValGeneral)->Decimals(4);
    ctrlEdit_Val* snapped = sheet->ValueRow("snaps to 5", 25, "%", styleValSnap | styleValPlain);
    snapped->Step(5.0);
    snapped->Range(0.0, 100.0);
    ctrlEdit_Val* wrapped = sheet->ValueRow("wraps", 359, "º", styleValWrap | styleValPlain);
    wrapped->Range(0.0, 360.0);
    wrapped->Decimals(0);
    auto* port = sheet->Add("whole number", new ctrlEdit_Val(sheet, ctrlEditInteger));
    port->ValStyleSet(styleSpinArrows | styleSpinDrop);
    port->Range(0, 65535);
    port->Presets(std::vector<int64_t>{4001, 4002, 4003});
    port->Value(4003);
    sheet->ValueRow("narrow", 98765.4321, "ns", styleValPlain)
        ->Width(static_cast<uint32_t>(galleryScaled(60)));
    displayOnly(sheet->ValueRow("display", -12.34, "ns", styleValPlain));
    displayOnly(sheet->ValueRow("display, no unit", 0.98, "", styleValPlain));
    sheet->ValueRow("disabled", 42, "Hz", styleSpinDrop)->Enable(false);
}

void digitSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new rowSheet(parent, x, y, 11, "Dates, angles and times");
    sheet->Add("date", new ctrlEdit_Date(sheet, 0))->Date(2024, 6, 12);
    auto* latitude = sheet->Add("latitude", new ctrlEdit_Angle(sheet, ctrlEditLatitude));
    latitude->Decimals(4);
    latitude->Value(47.3923056);
    auto* longitude = sheet->Add("longitude", new ctrlEdit_Angle(sheet, 0));
    longitude->Decimals(4);
    longitude->Value(-8.0451);
    sheet->Add("whole seconds", new ctrlEdit_Angle(sheet, 0))->Value(179.9999);
    auto* time = sheet->Add("time of day", new ctrlEdit_Time(sheet, 0));
    time->Decimals(3);
    time->Value(45296.789);
    sheet->Add("whole seconds", new ctrlEdit_Time(sheet, 0))->Value(3599);
    auto* minutes = sheet->Add("minutes", new ctrlEdit_Time(sheet, ctrlEditMinutes));
    minutes->FirstDigits(3);
    minutes->Value(754.0);
    minutes->EditStyleSet(styleSpinArrows);
    auto* display = sheet->Add("display", new ctrlEdit_Time(sheet, 0));
    display->Value(82800);
    displayOnly(display);
    displayOnly(sheet->Add("display", new ctrlEdit_Angle(sheet, ctrlEditLatitude)));
    auto* date = sheet->Add("disabled", new ctrlEdit_Date(sheet, 0));
    date->Date(1980, 1, 6);
    date->Enable(false);
    auto* disabled = sheet->Add("disabled", new ctrlEdit_Time(sheet, 0));
    disabled->Value(61.5);
    disabled->Enable(false);
}

}  // namespace

void galleryEdits(ctrlWindow* parent)
{
    textSheet(parent, 10, 10);
    valueSheet(parent, 340, 10);
    digitSheet(parent, 670, 10);
}
