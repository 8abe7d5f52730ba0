// The controls, each in each of its states.
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlGrid.h"
#include "toolkit/ctrlPage.h"
#include "toolkit/ctrlSlider.h"
#include "toolkit/ctrlSplit.h"
#include "tools/gallery/gallery.h"

#include <string>
#include <vector>

namespace {

// --- Buttons

ctrlButton* button(ctrlWindow* parent, const char* text, buttonKind kind, int32_t x, int32_t y)
{
    auto* made = new ctrlButton(parent, text, 0);
    made->Kind(kind);
    made->OnClick = [made] {
        galleryTell("button " + made->Name() + (made->Checked() ? " clicked, checked" : " clicked"));
    };
    return galleryPlaced(made, x, y, 90, 24);
}

void disabledButtons(ctrlWindow* sheet)
{
    button(sheet, "Disabled", buttonKind::Push, 10, 116)->Enable(false);
    ctrlButton* checked = button(sheet, "Disabled on", buttonKind::Toggle, 110, 116);
    checked->Checked(true);
    checked->Enable(false);
}

void glyphButtons(ctrlWindow* sheet)
{
    int32_t x = 10;
    for (const bool enabled : {true, false}) {
        for (const buttonGlyph glyph : {buttonGlyph::Question, buttonGlyph::Up, buttonGlyph::Down,
                                        buttonGlyph::Left, buttonGlyph::Right, buttonGlyph::Cross}) {
            galleryPlaced(new ctrlButton(sheet, glyph, 0), x, 148, 22, 22)->Enable(enabled);
            x += 25;
        }
    }
}

void buttonSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 182, "Buttons");
    button(sheet, "Push", buttonKind::Push, 10, 26);
    ctrlButton* repeat = button(sheet, "Repeat", buttonKind::Repeat, 110, 26);
    repeat->FirstDelay = 500;
    repeat->RepeatPeriod = 100;
    button(sheet, "Toggle", buttonKind::Toggle, 210, 26);
    std::vector<ctrlButton*> ring;
    for (const char* name : {"One", "Two", "Three"})
        ring.push_back(
            button(sheet, name, buttonKind::Radio, 10 + 100 * static_cast<int32_t>(ring.size()), 56));
    for (size_t i = 0; i < ring.size(); ++i)
        ring[i]->NextInGroup = ring[(i + 1) % ring.size()];
    ring[1]->Checked(true);
    button(sheet, "Held", buttonKind::ToggleHeld, 10, 86)->Checked(true);
    button(sheet, "Toggle on", buttonKind::Toggle, 110, 86)->Checked(true);
    disabledButtons(sheet);
    glyphButtons(sheet);
}

// --- Labels

void labelSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 150, "Labels");
    galleryLabel(sheet, "as labels are", 10, 26, 140);
    galleryLabel(sheet, "on faces", 10, 46, 140)->TextColour(labelFace);
    galleryLabel(sheet, "the second colour", 10, 66, 140)->TextColour(labelSecond);
    galleryLabel(sheet, "disabled", 10, 86, 140)->Enable(false);
    galleryLabel(sheet, "right", 10, 106, 140, textRight);
    galleryLabel(sheet, "thick", 10, 126, 140, textLeft | textThick)->TextColour(labelFace);
    auto* wrapped = new ctrlLabel(sheet,
                                  "A text that is broken between its words, and a word of "
                                  "Donaudampfschifffahrtsgesellschaften that is too long for a line.",
                                  textLeft | textTop, 0);
    wrapped->StyleSet(styleLabelWrap);
    galleryPlaced(wrapped, 170, 26, 140, 110);
}

// --- Sliders

void sliderSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 190, "Sliders");
    const auto slider = [sheet](uint32_t style, int32_t left, int32_t top, int32_t width, int32_t height) {
        auto* made = new ctrlSlider(sheet, 0, 0, 10, 10, style);
        made->Page = 10;
        made->OnChange = [made] { galleryTell("slider " + std::to_string(made->Value)); };
        return galleryPlaced(made, left, top, width, height);
    };
    slider(styleSliderHorizontal, 10, 28, 200, 20);
    slider(styleSliderHorizontal | styleSliderArrows, 10, 58, 200, 20);
    slider(styleSliderHorizontal | styleSliderArrows, 10, 88, 200, 16)->TrackWidth = 0;
    slider(styleSliderHorizontal, 10, 118, 200, 20)->Enable(false);
    ctrlSlider* without = slider(styleSliderHorizontal | styleSliderArrows, 10, 148, 200, 20);
    without->SetRange(7, 7);
    slider(0, 225, 28, 20, 150);
    slider(styleSliderArrows, 255, 28, 20, 150);
    ctrlSlider* bar = slider(styleSliderArrows, 285, 28, 14, 150);
    bar->TrackWidth = 0;
    bar->Ratio = 0.5F;
}

// --- Lists

const std::vector<std::string>& towns()
{
    static const std::vector<std::string> names = {
        "Aarau", "Basel",  "Bern",   "Chur",     "Davos",     "Frauenfeld", "Genf",  "Herisau", "Ilanz",
        "Jona",  "Kriens", "Luzern", "Martigny", "Neuchatel", "Olten",      "Pully", "Sion",    "Thun"};
    return names;
}

void listSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 182, "Lists");
    const auto list = [sheet](int32_t left, size_t rows) {
        auto* made = new ctrlListSel(sheet, 0, 0, 10, 10, 0);
        made->RowHeight(static_cast<uint32_t>(galleryScaled(static_cast<int32_t>(made->RowHeight()))));
        made->RowsAdd({towns().begin(), towns().begin() + static_cast<ptrdiff_t>(rows)});
        made->Selected = 2;
        made->OnClick = [made] { galleryTell("list " + std::to_string(made->Selected)); };
        return galleryPlaced(made, left, 26, 96, 120);
    };
    list(10, 5);
    list(112, towns().size())->StyleSet(styleListMany);
    list(214, towns().size())->Enable(false);
    const auto combo = [sheet](int32_t left, size_t rows, uint64_t selected) {
        auto* made = new ctrlComboBox(sheet, 0);
        for (size_t i = 0; i < rows; ++i)
            made->ComboAdd(towns()[i]);
        made->ComboIndex(selected);
        made->OnChange = [made] { galleryTell("combo " + made->Name()); };
        return galleryPlaced(made, left, 152, 96, 20);
    };
    combo(10, 4, 1);
    combo(112, towns().size(), 9);
    combo(214, 4, 2)->Enable(false);
}

// --- Containers

void containerSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 340, "Pages and splits");
    auto* pages = galleryPlaced(new ctrlPage(sheet, 0, 0, 10, 10, 0, stylePageSelect), 10, 26, 300, 90);
    for (const char* name : {"PPS", "RF spectrum", "A third one"})
        pages->AddPage(pages->PageCount, nullptr, name);
    pages->Page(0)->SetBackColour(theme::ListBackground);
    auto* closing = galleryPlaced(new ctrlPage(sheet, 0, 0, 10, 10, 5, stylePageSelect | stylePageClose), 10,
                                  124, 300, 60);
    for (uint64_t i = 0; i < closing->PageCount; ++i)
        closing->Page(i)->Caption("Page number " + std::to_string(i + 1));
    closing->SetCurrent(2);
    auto* columns = galleryPlaced(new ctrlSplit(sheet, 0, 0, 10, 10, styleSplitColumns), 10, 192, 300, 60);
    auto* rows = galleryPlaced(new ctrlSplit(sheet, 0, 0, 10, 10, 0), 10, 260, 300, 70);
    for (const colour back : {0x805030, 0x308050, 0x503080}) {
        columns->Add(columns->Count, new galleryTile(columns, 0, 0, 10, 10, back, ""));
        rows->Add(rows->Count, new galleryTile(rows, 0, 0, 10, 10, back, ""));
    }
}

// --- Grid

class satelliteGrid final : public ctrlGrid
{
public:
    satelliteGrid(ctrlWindow* parent, int32_t x, int32_t y, int32_t width, int32_t height, uint64_t rows)
        : ctrlGrid(parent, 0, 0, 10, 10, 4, rows + 1)
    {
        const auto scaled = [](uint32_t size) {
            return static_cast<uint32_t>(galleryScaled(static_cast<int32_t>(size)));
        };
        SetFixedRows(1);
        RowHeightDefault = scaled(RowHeightDefault);
        for (uint64_t row = 0; row <= rows; ++row)
            SetRowHeight(row, RowHeightDefault);
        constexpr int32_t roomy = 200;
        SetColumnWidth(0, scaled(width < roomy ? 25 : 40));
        SetColumnWidth(1, scaled(50));
        SetColumnWidth(2, scaled(38));
        SetColumnWidth(3, scaled(60));
        if (width >= roomy)
            SetAutoColumn(1);
        OnCellDraw = [this](uint64_t row, uint64_t column, const rect* area) { Draw(row, column, *area); };
        OnSelection = [this] {
            galleryTell("grid " + std::to_string(Selection.FirstRow) + "," +
                        std::to_string(Selection.FirstColumn) + " to " + std::to_string(Selection.LastRow) +
                        "," + std::to_string(Selection.LastColumn));
        };
        SetSelection({2, 3, 1, 2});
        galleryPlaced(this, x, y, width, height);
    }

private:
    void Draw(uint64_t row, uint64_t column, const rect& area)
    {
        static const char* const heads[] = {"SV", "Signals", "Elev.", "dBHz"};
        const std::string text = row == 0 ? heads[column] : std::to_string(row * 10 + column);
        ColourEnabled(row == 0 ? theme::FaceText : theme::Highlight, true);
        const rect inner{area.Left + 3, area.Top, area.Right - 3, area.Bottom};
        Text(inner, text.c_str(), row == 0 ? 0U : unsigned{textRight});
    }
};

void gridSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 320, 340, "Grids");
    new satelliteGrid(sheet, 10, 26, 300, 126, 5);
    new satelliteGrid(sheet, 10, 160, 145, 170, 400);
    (new satelliteGrid(sheet, 165, 160, 145, 170, 4))->Enable(false);
}

}  // namespace

void galleryControls(ctrlWindow* parent)
{
    buttonSheet(parent, 10, 10);
    labelSheet(parent, 10, 202);
    sliderSheet(parent, 10, 362);
    listSheet(parent, 340, 10);
    containerSheet(parent, 340, 202);
    gridSheet(parent, 670, 10);
}
