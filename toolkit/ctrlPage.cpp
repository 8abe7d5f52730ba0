#include "toolkit/ctrlPage.h"

#include "toolkit/ctrlButton.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t padAcross = 10;  // of a tab's text, left and right
constexpr int32_t padAlong = 4;    // above and below
constexpr int32_t leastTab = 24;
constexpr int32_t closeSide = 14;
constexpr int32_t closeGap = 4;
constexpr uint32_t dimmed = 5;  // sevenths, of a tab that is not shown
constexpr uint32_t lit = 10;
constexpr uint32_t whole = 7;
constexpr char tallText[] = "Ág";

// In the scale of the window that was painted last, which is this one's while it paints.
int32_t scaled(int32_t pixels)
{
    return static_cast<int32_t>(std::lround(static_cast<float>(pixels) * Toolkit().Scale));
}

}  // namespace

ctrlPage::ctrlPage(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                   uint64_t pageCount, uint32_t style)
    : ctrlWindow(parent, x, y, width, height, 0)
{
    StyleSet(style);
    for (uint64_t i = 0; i < pageCount; ++i)
        AddPage(i, nullptr, {});
}

ctrlWindow* ctrlPage::Page(uint64_t index) const
{
    if (index >= PageCount)
        return nullptr;
    ctrlWindow* child = FirstChild();
    for (uint64_t i = 0; child && i < index; ++i)
        child = child->NextSibling();
    return child;
}

void ctrlPage::AddPage(uint64_t index, ctrlWindow* window, const std::string& name)
{
    const uint64_t at = std::min(index, PageCount);
    if (!window)
        window = new ctrlWindow(this, 0);
    ChildOrder(window, static_cast<unsigned>(at));
    window->Caption(name);
    PlacePage(window);
    ++PageCount;
    if (Current != None && at <= Current)
        ++Current;
    CloseButtonsUpdate();
    Invalidate(true);
    if (Current == None)
        SetCurrent(at);
    else
        window->Hide();
}

void ctrlPage::RemovePage(uint64_t index)
{
    ctrlWindow* gone = Page(index);
    if (!gone)
        return;
    const ctrlLife life(this);
    const bool shown = index == Current;
    if (Current != None && index < Current)
        --Current;
    --PageCount;
    gone->Destroy();
    if (!life)
        return;
    CloseButtonsUpdate();
    Invalidate(true);
    if (!shown)
        return;
    Current = None;
    SetCurrent(PageCount == 0 ? None : std::min(index, PageCount - 1));
    if (life && PageCount == 0)
        Notify(notifyPageChanged);
}

void ctrlPage::SetCurrent(uint64_t index)
{
    if (index == Current || (index != None && index >= PageCount))
        return;
    const ctrlLife life(this);
    ctrlWindow* before = Page(Current);
    Current = index;
    if (before)
        before->Hide();
    if (!life)
        return;
    if (ctrlWindow* page = Page(Current))
        page->Show();
    if (!life)
        return;
    Invalidate(true);
    Notify(notifyPageChanged);
}

// --- Place

uint32_t ctrlPage::StripHeight()
{
    return TextSize(tallText).Height + 2 * static_cast<uint32_t>(scaled(padAlong));
}

void ctrlPage::PlacePage(ctrlWindow* page)
{
    const uint32_t strip = std::min(StripHeight(), Height());
    page->Move(0, static_cast<int32_t>(strip), Width(), Height() - strip);
}

void ctrlPage::Layout()
{
    CountPages();
    const ctrlLife life(this);
    for (uint64_t i = 0; life && i < PageCount; ++i)
        PlacePage(Page(i));
}

void ctrlPage::Resize(uint32_t width, uint32_t height)
{
    const ctrlLife life(this);
    ctrlWindow::Resize(width, height);
    if (life)
        Layout();
}

// --- The buttons that close

void ctrlPage::CloseButtonsUpdate()
{
    const uint64_t wanted = HasCloseButtons() ? PageCount : 0;
    const ctrlLife life(this);
    while (life && CloseButtons.size() > wanted) {
        ctrlButton* gone = CloseButtons.back();
        CloseButtons.pop_back();
        gone->Destroy();
    }
    if (!life)
        return;
    while (CloseButtons.size() < wanted) {
        auto* button = new ctrlButton(this, buttonGlyph::Cross, 0);
        button->BorderStyle(ctrlBorder::None);
        button->OnClick = [this, button] { CloseClicked(button); };
        CloseButtons.push_back(button);
        button->Show();
    }
    for (ctrlButton* button : CloseButtons)
        ChildOrder(button, static_cast<unsigned>(PageCount + CloseButtons.size()));
    MeasureTabs();
    PlaceCloseButtons();
}

void ctrlPage::CloseClicked(const ctrlButton* button)
{
    const auto found = std::find(CloseButtons.begin(), CloseButtons.end(), button);
    if (found == CloseButtons.end())
        return;
    const auto index = static_cast<uint64_t>(found - CloseButtons.begin());
    // A copy: the handler may replace itself.
    const auto handler = OnClose;
    if (handler)
        handler(index);
    else
        RemovePage(index);
}

void ctrlPage::PlaceCloseButtons()
{
    for (size_t i = 0; i < CloseButtons.size() && i < TabBoxes.size(); ++i) {
        const rect& box = TabBoxes[i];
        const int32_t side = std::min(scaled(closeSide), std::max(box.Height() - 2 * scaled(closeGap), 1));
        CloseButtons[i]->Move(box.Right - scaled(closeGap) - side, box.Top + (box.Height() - side) / 2,
                              static_cast<uint32_t>(side), static_cast<uint32_t>(side));
    }
}

// --- Looks

// A page may have been destroyed by itself.
void ctrlPage::CountPages()
{
    uint64_t children = 0;
    for (const ctrlWindow* child = FirstChild(); child; child = child->NextSibling())
        ++children;
    PageCount = std::min(PageCount, children - std::min<uint64_t>(children, CloseButtons.size()));
    if (Current != None && Current >= PageCount)
        Current = None;
}

// Tabs that do not fit become narrower in proportion.
void ctrlPage::MeasureTabs()
{
    CountPages();
    TabBoxes.clear();
    const auto height = static_cast<int32_t>(std::min(StripHeight(), Height()));
    const int32_t close = HasCloseButtons() ? scaled(closeSide + closeGap) : 0;
    std::vector<int32_t> widths;
    int64_t total = 0;
    for (uint64_t i = 0; i < PageCount; ++i) {
        const auto text = static_cast<int32_t>(TextSize(Page(i)->Name().c_str()).Width);
        widths.push_back(std::max(text + 2 * scaled(padAcross), scaled(leastTab)) + close);
        total += widths.back();
    }
    const auto room = static_cast<int64_t>(Width());
    int64_t end = 0;
    int32_t left = 0;
    for (const int32_t width : widths) {
        end += width;
        const auto right = static_cast<int32_t>(total > room ? end * room / total : end);
        TabBoxes.push_back({left, 0, right, height});
        left = right;
    }
}

void ctrlPage::Paint()
{
    ctrlWindow::Paint();
    MeasureTabs();
    PlaceCloseButtons();
    for (uint64_t i = 0; i < PageCount; ++i)
        PaintTab(i, TabBoxes[i]);
    // The scale is another than when the pages were placed.
    if (PageCount > 0 && Page(0)->Y() != TabBoxes[0].Bottom)
        InvalidateLayout();
}

void ctrlPage::PaintTab(uint64_t index, const rect& box)
{
    const bool shown = index == Current;
    const colour active = ActiveColour == colourDefault ? theme::Face : ActiveColour;
    const colour fill = shown ? active : ColourScale(TabColour, dimmed, whole);
    rect inner = box;
    // The tab that is shown stands higher than the others.
    if (!shown)
        inner.Top += 2;
    Border(ctrlBorder::Flat, 1, ColourScale(fill, shown ? lit : dimmed, whole), inner);
    Colour(fill);
    RectFillClipped(inner);
    ColourEnabled(theme::FaceText, true);
    const int32_t close = HasCloseButtons() ? scaled(closeSide) : 0;
    const rect text{inner.Left + scaled(closeGap), inner.Top, inner.Right - scaled(closeGap) - close,
                    inner.Bottom};
    Text(text, Page(index)->Name().c_str(), textTrim);
}

void ctrlPage::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    const bool isPress = event == MouseEv::LeftDown || event == MouseEv::LeftDouble;
    if (isPress && HasStyle(stylePageSelect)) {
        const auto hit = std::find_if(TabBoxes.begin(), TabBoxes.end(), [](const rect& box) {
            return rectHas(box, Toolkit().MouseX, Toolkit().MouseY);
        });
        if (hit != TabBoxes.end()) {
            SetCurrent(static_cast<uint64_t>(hit - TabBoxes.begin()));
            return;
        }
    }
    ctrlWindow::MouseEvent(event, keys, delta);
}
