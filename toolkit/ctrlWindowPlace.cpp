// Where controls are and how large.
#include "toolkit/ctrlWindow.h"

#include <algorithm>
#include <vector>

namespace {

constexpr uint32_t sizeMost = 16384;

uint32_t clampTo(uint32_t value, uint32_t least, uint32_t most)
{
    if (most != 0)
        value = std::min(value, most);
    return std::min(std::max(value, least), sizeMost);
}

uint32_t grown(uint32_t size, int32_t change)
{
    const int64_t sum = int64_t{size} + change;
    return static_cast<uint32_t>(std::clamp<int64_t>(sum, 0, sizeMost));
}

}  // namespace

rect ctrlWindow::Surface() const
{
    return {0, 0, static_cast<int32_t>(Width()), static_cast<int32_t>(Height())};
}

rect ctrlWindow::Area() const
{
    return {X_, Y_, X_ + static_cast<int32_t>(Width()), Y_ + static_cast<int32_t>(Height())};
}

uint32_t ctrlWindow::ClampWidth(uint32_t width) const
{
    return clampTo(width, WidthLeast, WidthMost);
}

uint32_t ctrlWindow::ClampHeight(uint32_t height) const
{
    return clampTo(height, HeightLeast, HeightMost);
}

void ctrlWindow::StoreSize(uint32_t width, uint32_t height)
{
    const thrSpinHold hold(Toolkit().Lock);
    SurfaceSize(width, height);
}

void ctrlWindow::Move(int32_t x, int32_t y, uint32_t width, uint32_t height, bool force)
{
    width = ClampWidth(width);
    height = ClampHeight(height);
    if (!force && x == X_ && y == Y_ && width == Width() && height == Height())
        return;
    if (Handle_) {
        PlaceNative({x, y, x + static_cast<int32_t>(width), y + static_cast<int32_t>(height)});
        return;
    }
    {
        const thrSpinHold hold(Toolkit().Lock);
        X_ = x;
        Y_ = y;
    }
    const ctrlLife life(this);
    Moved();
    if (!life)
        return;
    if (width != Width() || height != Height())
        Resize(width, height);
    else
        Invalidate(true);
    if (life && Parent_)
        Parent_->InvalidateLayout();
}

void ctrlWindow::PlaceNative(const windowEdges& client)
{
    ctrlToolkit& toolkit = Toolkit();
    windowSystem& system = toolkit.Windows();
    const ctrlLife life(this);
    const windowId handle = Handle_;
    const auto place = [&](uint32_t dpi, uint32_t flags) {
        const windowEdges frame = system.FrameOf(handle, client, dpi);
        toolkit.Pending = {frame, true};
        system.Place(handle, windowOrder::Keep, frame, flags);
        toolkit.Pending.UnderWay = false;
    };
    if (!HasFlag(ctrlPerMonitor)) {
        place(FrameDPI(), placeKeepOrder | placeNoActivate);
        return;
    }
    // The move may carry the window to a monitor where its frame is another. Between two that each send it to
    // the other there is no end to be waited for.
    constexpr int triesMost = 8;
    for (int tries = 0; life && tries < triesMost; ++tries) {
        const uint32_t dpi = FrameDPI();
        place(dpi, placeKeepOrder | placeNoActivate | placeFrameChanged);
        if (!life || FrameDPI() == dpi)
            return;
    }
}

void ctrlWindow::Resize(uint32_t width, uint32_t height)
{
    if (width == Width() && height == Height())
        return;
    const ctrlLife life(this);
    if (!HasState(stateMinimised))
        FollowParent(static_cast<int32_t>(width - Width()), static_cast<int32_t>(height - Height()));
    if (!life)
        return;
    StoreSize(width, height);
    Notify(notifyResized);
    if (!life)
        return;
    DeviceRelease();
    Invalidate(true);
}

// Moves the children that go with the right or the bottom edge, by what the parent is about to grow.
void ctrlWindow::FollowParent(int32_t widthChange, int32_t heightChange)
{
    constexpr uint32_t follows = styleFollowWidth | styleFollowHeight | styleFollowX | styleFollowY;
    std::vector<ctrlLife> children;
    for (ctrlWindow* child = FirstChild_; child; child = child->NextSibling_) {
        if (child->HasStyle(follows))
            children.emplace_back(child);
    }
    for (const ctrlLife& life : children) {
        ctrlWindow* child = life.Window();
        if (!child)
            continue;
        rect area = child->Area();
        uint32_t width = child->Width();
        uint32_t height = child->Height();
        if (child->HasStyle(styleFollowWidth))
            width = grown(width, widthChange);
        else if (child->HasStyle(styleFollowX))
            area.Left += widthChange;
        if (child->HasStyle(styleFollowHeight))
            height = grown(height, heightChange);
        else if (child->HasStyle(styleFollowY))
            area.Top += heightChange;
        child->Move(area.Left, area.Top, width, height);
    }
}

void ctrlWindow::Width(uint32_t width)
{
    const uint32_t kept = ClampWidth(width);
    if (kept != Width())
        Move(X_, Y_, kept, Height());
}

void ctrlWindow::Height(uint32_t height)
{
    const uint32_t kept = ClampHeight(height);
    if (kept != Height())
        Move(X_, Y_, Width(), kept);
}

void ctrlWindow::WidthRange(uint32_t least, uint32_t most)
{
    WidthLeast = least;
    WidthMost = most;
    if (Handle_)
        Toolkit().Windows().SetSizeRange(
            Handle_, {static_cast<int32_t>(WidthLeast), static_cast<int32_t>(HeightLeast)},
            {static_cast<int32_t>(WidthMost), static_cast<int32_t>(HeightMost)});
    Width(Width());
}

void ctrlWindow::HeightRange(uint32_t least, uint32_t most)
{
    HeightLeast = least;
    HeightMost = most;
    if (Handle_)
        Toolkit().Windows().SetSizeRange(
            Handle_, {static_cast<int32_t>(WidthLeast), static_cast<int32_t>(HeightLeast)},
            {static_cast<int32_t>(WidthMost), static_cast<int32_t>(HeightMost)});
    Height(Height());
}

void ctrlWindow::Centre()
{
    const auto width = static_cast<int32_t>(Width());
    const auto height = static_cast<int32_t>(Height());
    const auto middle = [](int32_t from, int32_t to, int32_t length) {
        return from + (to - from - length) / 2;
    };
    if (IsChild()) {
        Move(middle(0, static_cast<int32_t>(Parent_->Width()), width),
             middle(0, static_cast<int32_t>(Parent_->Height()), height), Width(), Height());
        return;
    }
    windowSystem& system = Toolkit().Windows();
    windowArea work;
    windowArea area;
    int32_t x = 0;
    int32_t y = 0;
    if (Parent_ && Parent_->ScreenPoint(x, y, work) && system.WorkAreaAt(x, y, work)) {
        // In the parent, but on its monitor as far as it fits there.
        area = {x, y, x + static_cast<int32_t>(Parent_->Width()),
                y + static_cast<int32_t>(Parent_->Height())};
    } else {
        if (!system.WorkAreaOf(Handle_, work))
            work = system.DesktopWorkArea();
        area = work;
    }
    x = std::max(std::min(middle(area.Left, area.Right, width), work.Right - width), work.Left);
    y = std::max(std::min(middle(area.Top, area.Bottom, height), work.Bottom - height), work.Top);
    Move(x, y, Width(), Height());
}

bool ctrlWindow::ScreenPoint(int32_t& x, int32_t& y, windowArea& area) const
{
    for (const ctrlWindow* at = this; at; at = at->Parent_) {
        x += at->X_;
        y += at->Y_;
        if (!at->IsChild())
            break;
    }
    const auto without = [](windowArea whole) {
        return windowArea{whole.Left, whole.Top, whole.Right - 1, whole.Bottom - 1};
    };
    windowArea found;
    if (Toolkit().Windows().WorkAreaAt(x, y, found)) {
        area = without(found);
        return true;
    }
    const windowArea& desktop = Toolkit().WorkArea;
    if (x < desktop.Left || x >= desktop.Right || y < desktop.Top || y >= desktop.Bottom)
        return false;
    area = without(desktop);
    return true;
}
