// What windows are told.
#include "toolkit/ctrlWindow.h"

namespace {

int64_t low16(uint64_t first)
{
    return static_cast<int64_t>(first & 0xFFFF);
}

}  // namespace

int64_t ctrlWindow::Receive(const windowMessage& message)
{
    ctrlToolkit& toolkit = Toolkit();
    windowSystem& system = toolkit.Windows();
    const auto objectOf = [&system](windowId window) {
        return static_cast<ctrlWindow*>(window ? system.Object(window) : nullptr);
    };
    ctrlWindow* window = objectOf(message.Window);
    if (message.Number == msgMouseWheel) {
        if (ctrlWindow* captor = objectOf(system.Capture()))
            window = captor;
    }
    int64_t result = 0;
    if (message.Number == msgApp) {
        toolkit.RunPosted(message);
    } else if (message.Number == msgCreate || !window) {
        return system.Default(message);
    } else if (message.Number == msgClose) {
        Close(window);
    } else {
        const ctrlLife life(window);
        const bool outer = !(window->StateSet(stateInMessage) & stateInMessage);
        result = window->WindowProc(message.Number, message.First, message.Second);
        if (outer && life)
            window->StateClear(stateInMessage);
    }
    toolkit.SweepDeferred();
    return result;
}

int64_t ctrlWindow::Default(uint32_t message, uint64_t first, int64_t second)
{
    windowMessage given;
    given.Window = Handle_;
    given.Number = message;
    given.First = first;
    given.Second = second;
    return Toolkit().Windows().Default(given);
}

int64_t ctrlWindow::WindowProc(uint32_t message, uint64_t first, int64_t second)
{
    switch (message) {
    case msgMove:
        return OnMove(first, second);
    case msgSize:
        return OnSize(first, second);
    case msgActivate:
        return OnActivate(first, second);
    case msgSetFocus:
        return OnSetFocus();
    case msgKillFocus:
        return OnKillFocus();
    case msgEnable:
    case msgChildActivate:
    case msgStyleChanging:
    case msgStyleChanged:
    case msgSyncPaint:
    case msgEnterSizeMove:
    case msgExitSizeMove:
        return 0;
    case msgDPIChanged:
        // It keeps its size, and all in it another.
        if (HasFlag(ctrlPerMonitor)) {
            InvalidateLayout();
            InvalidateTree(true);
        }
        return 0;
    case msgPaint:
        return OnPaint();
    case msgPaintIcon:
    case msgEraseBackground:
    case msgSetCursor:
    case msgMouseActivate:
    case msgMoving:
        return 1;
    case msgShowWindow:
        return OnShowWindow(first, second);
    case msgCancelMode:
        CaptureRelease();
        return 0;
    case msgSizeLimits:
        return OnSizeLimits(second);
    case msgPosChanging:
        return OnPosChanging(first, second);
    case msgSizing:
        return OnSizing(first, second);
    case msgCaptureChanged:
        CaptureHolder = nullptr;
        return 0;
    case msgScaledSize:
        return OnScaledSize(second);
    default:
        return OnFrameOrInput(message, first, second);
    }
}

// What the user does: to the frame, by keys, by touch, and by the mouse.
int64_t ctrlWindow::OnFrameOrInput(uint32_t message, uint64_t first, int64_t second)
{
    const bool framed = HasFlag(ctrlFramed);
    switch (message) {
    case msgFrameSize:
    case msgFramePaint:
    case msgFrameLeftDown:
        return framed ? Default(message, first, second) : 0;
    case msgFrameHit:
        return framed ? Default(message, first, second) : int64_t{hitClient};
    case msgFrameMove:
        return framed ? OnFrameMove(first, second) : 0;
    case msgKeyDown:
        return OnKey(KeyEv::Down, message, first, second);
    case msgKeyUp:
        return OnKey(KeyEv::Up, message, first, second);
    case msgChar:
        return OnChar(first, second);
    case msgSysCommand:
        return OnSysCommand(first, second);
    case msgGesture:
        return OnGesture(first, second);
    case msgMouseMove:
        return OnMouseMove(first, second);
    case msgLeftDouble:
        return OnLeftDouble(first, second);
    case msgMouseWheel:
        return OnWheel(first, second);
    default:
        return OnButton(message, first, second);
    }
}

int64_t ctrlWindow::OnButton(uint32_t message, uint64_t first, int64_t second)
{
    struct row {
        uint32_t Message;
        MouseEv Event;
    };
    constexpr row rows[] = {
        {msgLeftDown, MouseEv::LeftDown},       {msgLeftUp, MouseEv::LeftUp},
        {msgRightDown, MouseEv::RightDown},     {msgRightUp, MouseEv::RightUp},
        {msgRightDouble, MouseEv::RightDouble}, {msgMiddleDown, MouseEv::MiddleDown},
        {msgMiddleUp, MouseEv::MiddleUp},       {msgMiddleDouble, MouseEv::MiddleDouble},
    };
    for (const row& one : rows) {
        if (one.Message == message)
            return OnMouse(one.Event, first, second);
    }
    return Default(message, first, second);
}

int64_t ctrlWindow::OnActivate(uint64_t first, int64_t second)
{
    const bool active = low16(first) != 0;
    const ctrlLife life(this);
    if (active != Active)
        Activated(active);
    return life ? Default(msgActivate, first, second) : 0;
}

int64_t ctrlWindow::OnSetFocus()
{
    ctrlWindow* focused = Toolkit().Focused;
    (focused ? focused : this)->Focused(true);
    return 0;
}

int64_t ctrlWindow::OnKillFocus()
{
    ctrlToolkit& toolkit = Toolkit();
    if (toolkit.Focused && !toolkit.FocusMoving)
        toolkit.Focused->Focused(false);
    return 0;
}

int64_t ctrlWindow::OnKey(KeyEv event, uint32_t message, uint64_t first, int64_t second)
{
    const ctrlLife life(this);
    if (DeliverKey(event, static_cast<uint32_t>(first)) || !life)
        return 0;
    return Default(message, first, second);
}

// A character beyond the basic plane comes in two halves, of which neither is delivered.
int64_t ctrlWindow::OnChar(uint64_t first, int64_t second)
{
    constexpr uint64_t highFirst = 0xD800;
    constexpr uint64_t lowFirst = 0xDC00;
    constexpr uint64_t lowLast = 0xDFFF;
    if (first >= highFirst && first < lowFirst) {
        Toolkit().HighSurrogate = static_cast<uint32_t>(first);
        return 0;
    }
    if (first >= lowFirst && first <= lowLast)
        return Default(msgChar, first, second);
    return OnKey(KeyEv::Char, msgChar, first, second);
}

int64_t ctrlWindow::OnGesture(uint64_t first, int64_t second)
{
    windowGesture gesture;
    windowSystem& system = Toolkit().Windows();
    if (!system.GestureRead(second, gesture))
        return Default(msgGesture, first, second);
    const ctrlLife life(this);
    int32_t x = gesture.X - X_;
    int32_t y = gesture.Y - Y_;
    if (gesture.Kind == windowGestureKind::Begin) {
        GestureTarget = HitTest(x, y);
        GestureTarget->GestureBegin();
    } else if (gesture.Kind == windowGestureKind::End) {
        ctrlWindow* target = GestureTarget;
        GestureTarget = nullptr;
        if (target)
            target->GestureEnd();
    } else if (GestureTarget) {
        for (const ctrlWindow* at = GestureTarget; at && at != this; at = at->Parent_) {
            x -= at->X_;
            y -= at->Y_;
        }
        Toolkit().MouseX = x;
        Toolkit().MouseY = y;
        if (gesture.Kind == windowGestureKind::Pan) {
            GestureTarget->GesturePan(gesture.First, static_cast<uint32_t>(gesture.Kind));
            system.GestureClose(second);
            return 0;
        }
    }
    return life ? Default(msgGesture, first, second) : 0;
}

int64_t ctrlWindow::OnMouseMove(uint64_t first, int64_t second)
{
    const ctrlToolkit::mouseMove move{this, windowPointX(second), windowPointY(second)};
    if (Toolkit().LastMove == move)
        return 0;
    Toolkit().LastMove = move;
    return OnMouse(MouseEv::Move, first, second);
}

int64_t ctrlWindow::OnMouse(MouseEv event, uint64_t first, int64_t second)
{
    Route(event, static_cast<unsigned>(low16(first)), windowPointX(second), windowPointY(second), 0);
    return 0;
}

int64_t ctrlWindow::OnLeftDouble(uint64_t first, int64_t second)
{
    if (!HasState(stateMinimised))
        return OnMouse(MouseEv::LeftDouble, first, second);
    Toolkit().Windows().Show(Handle_, windowShow::Restore);
    return 0;
}

int64_t ctrlWindow::OnWheel(uint64_t first, int64_t second)
{
    const int delta = static_cast<int16_t>(first >> 16 & 0xFFFF);
    Route(MouseEv::Wheel, static_cast<unsigned>(low16(first)), windowPointX(second) - X_,
          windowPointY(second) - Y_, delta);
    return 0;
}
