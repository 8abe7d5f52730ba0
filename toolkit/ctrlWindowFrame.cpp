// What the system tells of a window's frame: its place, its size, and what the user does to it.
#include "toolkit/ctrlWindow.h"

#include <algorithm>

int64_t ctrlWindow::OnMove(uint64_t first, int64_t second)
{
    {
        const thrSpinHold hold(Toolkit().Lock);
        X_ = windowPointX(second);
        Y_ = windowPointY(second);
    }
    const ctrlLife life(this);
    Moved();
    return life ? Default(msgMove, first, second) : 0;
}

int64_t ctrlWindow::OnSize(uint64_t first, int64_t second)
{
    const auto width = static_cast<uint32_t>(second & 0xFFFF);
    const auto height = static_cast<uint32_t>(second >> 16 & 0xFFFF);
    const ctrlLife life(this);
    switch (first) {
    case sizedRestored:
        StateClear(stateMaximised | stateMinimised);
        break;
    case sizedMinimised:
        StateSet(stateMinimised);
        StateChanged();
        return 0;
    case sizedMaximised:
        if (!(StateSet(stateMaximised) & stateMaximised)) {
            StateClear(stateMinimised);
            RestoredWidth = Width();
            RestoredHeight = Height();
        }
        break;
    default:
        return 0;
    }
    Resize(width, height);
    if (!life)
        return 0;
    StateSet(stateLayout);
    StateChanged();
    return 0;
}

int64_t ctrlWindow::OnShowWindow(uint64_t first, int64_t second)
{
    if (first)
        StateSet(stateVisible);
    else
        StateClear(stateVisible);
    const ctrlLife life(this);
    StateChanged();
    return life ? Default(msgShowWindow, first, second) : 0;
}

int64_t ctrlWindow::OnSizeLimits(int64_t second)
{
    auto* limits = reinterpret_cast<windowSizeLimits*>(second);
    const windowExtent thick = FrameThickness();
    if (WidthMost) {
        const auto most = static_cast<int32_t>(WidthMost) + thick.Width;
        limits->MaximisedSize.Width = std::min(limits->MaximisedSize.Width, most);
    }
    if (HeightMost) {
        const auto most = static_cast<int32_t>(HeightMost) + thick.Height;
        limits->MaximisedSize.Height = std::min(limits->MaximisedSize.Height, most);
    }
    return 0;
}

// While the toolkit itself asks for a frame, the system does not correct it.
int64_t ctrlWindow::OnPosChanging(uint64_t first, int64_t second)
{
    const ctrlToolkit::pendingFrame& pending = Toolkit().Pending;
    if (pending.UnderWay) {
        auto* placing = reinterpret_cast<windowPlacing*>(second);
        if (!(placing->Flags & placeKeepPosition)) {
            placing->X = pending.Frame.Left;
            placing->Y = pending.Frame.Top;
        }
        if (!(placing->Flags & placeKeepSize)) {
            placing->Width = pending.Frame.Right - pending.Frame.Left;
            placing->Height = pending.Frame.Bottom - pending.Frame.Top;
        }
    }
    return Default(msgPosChanging, first, second);
}

int64_t ctrlWindow::OnFrameMove(uint64_t first, int64_t second)
{
    switch (first) {
    case hitTopLeft:
    case hitBottomRight:
        Cursor(cursorSizeFalling);
        break;
    case hitTopRight:
    case hitBottomLeft:
        Cursor(cursorSizeRising);
        break;
    case hitTop:
    case hitBottom:
        Cursor(cursorSizeUpDown);
        break;
    case hitLeft:
    case hitRight:
        Cursor(cursorSizeLeftRight);
        break;
    case hitClient:
        break;
    default:
        Cursor(cursorArrow);
        break;
    }
    return Default(msgFrameMove, first, second);
}

int64_t ctrlWindow::OnSysCommand(uint64_t first, int64_t second)
{
    constexpr uint64_t undefinedBits = 0xF;
    const uint64_t command = first & ~undefinedBits;
    if (command == commandClose) {
        CloseRequest();
        return 0;
    }
    if ((command == commandMinimise || command == commandMaximise) && !HasState(stateMaximised)) {
        RestoredX = X_;
        RestoredY = Y_;
    }
    return Default(msgSysCommand, first, second);
}

int64_t ctrlWindow::OnSizing(uint64_t first, int64_t second)
{
    auto* edges = reinterpret_cast<windowEdges*>(second);
    const windowExtent thick = FrameThickness();
    const auto client = [](int32_t length, int32_t thickness) {
        return static_cast<uint32_t>(std::max(length - thickness, 0));
    };
    const auto width =
        static_cast<int32_t>(ClampWidth(client(edges->Right - edges->Left, thick.Width))) + thick.Width;
    const auto height =
        static_cast<int32_t>(ClampHeight(client(edges->Bottom - edges->Top, thick.Height))) + thick.Height;
    if (first == edgeLeft || first == edgeTopLeft || first == edgeBottomLeft)
        edges->Left = edges->Right - width;
    else
        edges->Right = edges->Left + width;
    if (first == edgeTop || first == edgeTopLeft || first == edgeTopRight)
        edges->Top = edges->Bottom - height;
    else
        edges->Bottom = edges->Top + height;
    return Default(msgSizing, first, second);
}

// The window keeps its size in pixels on another monitor; only what is drawn inside changes.
int64_t ctrlWindow::OnScaledSize(int64_t second)
{
    auto* extent = reinterpret_cast<windowExtent*>(second);
    const ctrlToolkit::pendingFrame& pending = Toolkit().Pending;
    if (pending.UnderWay)
        *extent = {pending.Frame.Right - pending.Frame.Left, pending.Frame.Bottom - pending.Frame.Top};
    else
        *extent = {static_cast<int32_t>(Width()), static_cast<int32_t>(Height())};
    StateSet(stateLayout);
    return 1;
}
