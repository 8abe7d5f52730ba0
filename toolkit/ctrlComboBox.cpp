#include "toolkit/ctrlComboBox.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t statePressed = 0x8000;
constexpr uint32_t stateOpened = 0x10000;

constexpr uint32_t ownWidth = 20;
constexpr uint32_t ownHeight = 10;
constexpr uint32_t dynamicWidth = 50;
constexpr uint32_t dynamicHeight = 20;
constexpr int notch = 120;

}  // namespace

ctrlComboBox::ctrlComboBox(ctrlWindow* parent, uint32_t flags)
    : ctrlList(parent, 0, 0, ownWidth, ownHeight, flags)
{
    Caption({});
}

ctrlComboBox::~ctrlComboBox()
{
    if (ctrlListSel* list = ListBox())
        list->OnClick = nullptr;
}

ctrlListSel* ctrlComboBox::ListBox() const
{
    return List ? static_cast<ctrlListSel*>(List->Window()) : nullptr;
}

// --- Rows

void ctrlComboBox::TakeName()
{
    Caption(HasSelected() ? Rows[static_cast<size_t>(Selected)] : std::string());
    Invalidate(true);
}

void ctrlComboBox::ComboAdd(const std::string& text)
{
    CloseList();
    RowAdd(text);
    if (HasStyle(styleComboSorted))
        std::sort(Rows.begin(), Rows.end());
    Selected = RowFind(Name());
    Invalidate(true);
}

void ctrlComboBox::ComboSelect(const std::string& text, uint64_t index)
{
    const size_t found = RowFind(text);
    ComboIndex(found < Rows.size() ? found : index);
}

void ctrlComboBox::ComboIndex(uint64_t index)
{
    Selected = index;
    TakeName();
}

void ctrlComboBox::ComboClear()
{
    CloseList();
    Rows.clear();
    Checks.clear();
    Selected = None;
    TakeName();
}

// --- Looks

void ctrlComboBox::Paint()
{
    ctrlWindow::Paint();
    Scale_ = Toolkit().Scale;
    ColourEnabled(RowColour(), true);
    DropArrow();
    ++PaintRect.Left;
    --PaintRect.Right;
    const bool isDrawn = HasSelected() && OnRowDraw && OnRowDraw(Selected, PaintRect, false);
    const std::string name = Name();
    if (!isDrawn) {
        ColourEnabled(RowColour(), true);
        Text(PaintRect, name.c_str(), TextFlags);
    }
    PreferredHeight_ = 0;
    PreferredWidth_ = 0;
    if (!HasFlag(ctrlMeasure))
        return;
    textSize most = TextSize(name.c_str());
    for (const std::string& row : Rows) {
        const textSize size = TextSize(row.c_str());
        most.Width = std::max(most.Width, size.Width);
        most.Height = std::max(most.Height, size.Height);
    }
    PreferredHeight_ = most.Height + Height() - static_cast<uint32_t>(PaintRect.Height());
    PreferredWidth_ = most.Width + Width() - static_cast<uint32_t>(PaintRect.Width());
}

// --- The mouse

void ctrlComboBox::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const bool held = CaptureHeld();
    if (held && (event == MouseEv::LeftDown || event == MouseEv::LeftDouble)) {
        StateSet(statePressed);
        return;
    }
    if (held && event == MouseEv::Wheel && (keys & keysLeft) == 0) {
        Turn(delta);
        return;
    }
    if (event == MouseEv::LeftUp && HasState(statePressed)) {
        const ctrlLife life(this);
        CaptureRelease();
        if (!life)
            return;
        StateClear(statePressed);
        Opened(true);
        return;
    }
    if ((keys & keysLeft) == 0)
        StateClear(statePressed);
    Point(keys, delta, event);
}

void ctrlComboBox::Point(unsigned keys, int delta, MouseEv event)
{
    const auto x = static_cast<uint32_t>(Toolkit().MouseX);
    const auto y = static_cast<uint32_t>(Toolkit().MouseY);
    const bool inside = x < Width() && y < Height();
    const ctrlLife life(this);
    if (!inside && !HasState(statePressed)) {
        if (CaptureHeld()) {
            Cursor(cursorArrow);
            CaptureRelease();
            if (!life)
                return;
            Invalidate(true);
        }
        ctrlWindow::MouseEvent(event, keys, delta);
        return;
    }
    Cursor(cursorHand);
    if (CaptureHeld())
        return;
    CaptureTake();
    if (life)
        Invalidate(true);
}

void ctrlComboBox::Turn(int delta)
{
    WheelRest += delta;
    const int notches = WheelRest / notch;
    WheelRest %= notch;
    if (notches == 0 || Rows.empty())
        return;
    const uint64_t last = Rows.size() - 1;
    const uint64_t before = Selected;
    const auto steps = static_cast<uint64_t>(std::abs(static_cast<int64_t>(notches)));
    if (notches < 0)
        Selected = HasSelected() ? Selected + std::min(steps, last - Selected) : last;
    else
        Selected = std::min(Selected, last) - std::min(steps, std::min(Selected, last));
    if (Selected == before)
        return;
    TakeName();
    Changed();
}

void ctrlComboBox::Changed()
{
    // A copy: the handler may replace itself, or destroy the field.
    const std::function<void()> handler = OnChange;
    if (handler)
        handler();
}

// --- The popup

bool ctrlComboBox::Opened() const
{
    return HasState(stateOpened);
}

void ctrlComboBox::Opened(bool open)
{
    if (open == Opened())
        return;
    const ctrlLife life(this);
    if (!open) {
        StateClear(stateOpened);
        if (Parent())
            Parent()->Focus();
        return;
    }
    Notify(notifyOpening);
    if (!life || Rows.empty())
        return;
    StateSet(stateOpened);
    OpenList();
}

void ctrlComboBox::OpenList()
{
    const auto row = static_cast<uint32_t>(std::ceil(static_cast<float>(RowHeight()) * Scale_));
    const auto rows = static_cast<uint32_t>(std::min(VisibleRows, Rows.size()));
    ctrlListSel* list = ctrlListSel::DropDown(this, row * rows + 2 * BorderThickness());
    List = ctrlLife(list);
    list->StyleClear(styleFocusable);
    list->OnClick = [this, list] { ListBox_OnClick(list); };
    list->OnRowDraw = OnRowDraw;
    list->RowsAdd(Rows);
    list->RowHeight(row);
    list->Selected = Selected;
    list->TextFlags = TextFlags;
    list->Show();
}

// The popup is in its own mouse event: it goes later.
void ctrlComboBox::ListBox_OnClick(ctrlListSel* list)
{
    Toolkit().Post(
        [life = ctrlLife(list)] {
            if (life)
                life.Window()->Destroy();
        },
        true);
    StateClear(stateOpened);
    Invalidate(true);
    if (list->Selected >= Rows.size() || list->Selected == Selected)
        return;
    Selected = list->Selected;
    TakeName();
    Changed();
}

void ctrlComboBox::CloseList()
{
    if (!Opened())
        return;
    const ctrlLife life(this);
    if (ctrlListSel* list = ListBox()) {
        list->OnClick = nullptr;
        list->Destroy();
    }
    if (life)
        Opened(false);
}

// --- Rows from elsewhere

ctrlComboBoxDynamic::ctrlComboBoxDynamic(ctrlWindow* parent, uint32_t flags, provider rows)
    : ctrlComboBox(parent, flags), Provider(std::move(rows))
{
    ctrlWindow::Resize(dynamicWidth, dynamicHeight);
    Refill();
}

bool ctrlComboBoxDynamic::Notify(unsigned code)
{
    if (code == notifyOpening)
        Refill();
    return ctrlComboBox::Notify(code);
}

// The choice stays on its text, also while that is not there.
void ctrlComboBoxDynamic::Refill()
{
    Rows.clear();
    Checks.clear();
    Selected = None;
    if (Provider)
        RowsAdd(Provider());
    Selected = RowFind(Name());
}
