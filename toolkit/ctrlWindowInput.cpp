// Mouse, focus, keys, capture.
#include "toolkit/ctrlWindow.h"

#include <algorithm>

namespace {

bool isPress(MouseEv event)
{
    switch (event) {
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
    case MouseEv::MiddleDown:
    case MouseEv::MiddleDouble:
    case MouseEv::RightDown:
    case MouseEv::RightDouble:
        return true;
    default:
        return false;
    }
}

}  // namespace

void ctrlWindow::MouseEvent(MouseEv event, unsigned /*keys*/, int /*delta*/)
{
    switch (event) {
    case MouseEv::LeftDown:
        Notify(notifyClick);
        return;
    case MouseEv::RightDown:
        Notify(notifyRightClick);
        return;
    case MouseEv::LeftDouble: {
        // A copy: the handler may replace itself, or delete this control.
        const auto handler = OnDoubleClick;
        if (handler)
            handler();
        return;
    }
    case MouseEv::Move:
        Cursor(cursorArrow);
        if (CaptureHeld())
            CaptureRelease();
        return;
    default:
        return;
    }
}

void ctrlWindow::Cursor(uint8_t id)
{
    ctrlToolkit& toolkit = Toolkit();
    if (toolkit.CursorId == id)
        return;
    toolkit.CursorId = id;
    toolkit.Windows().SetCursor(toolkit.Cursor(id));
}

// The deepest control at the point, which is moved into its coordinates. A later child lies over an earlier.
ctrlWindow* ctrlWindow::HitTest(int32_t& x, int32_t& y)
{
    ctrlWindow* at = this;
    for (;;) {
        ctrlWindow* hit = nullptr;
        for (ctrlWindow* child = at->FirstChild_; child; child = child->NextSibling_) {
            const rect area = child->Area();
            const bool inside = x >= area.Left && x < area.Right && y >= area.Top && y < area.Bottom;
            if (inside && child->IsShown() && child->Enabled)
                hit = child;
        }
        if (!hit)
            return at;
        x -= hit->X_;
        y -= hit->Y_;
        at = hit;
    }
}

ctrlWindow* ctrlWindow::RouteTarget(int32_t& x, int32_t& y)
{
    if (!CaptureHolder || CaptureHolder == this)
        return HitTest(x, y);
    for (const ctrlWindow* at = CaptureHolder; at && at != this; at = at->Parent_) {
        x -= at->X_;
        y -= at->Y_;
    }
    return CaptureHolder;
}

void ctrlWindow::Route(MouseEv event, unsigned keys, int32_t x, int32_t y, int delta)
{
    if (!Enabled)
        return;
    ctrlWindow* target = RouteTarget(x, y);
    const ctrlLife life(target);
    if (isPress(event)) {
        const bool isHeld = CaptureHolder && CaptureHolder != this;
        // A press is for one that knows of the mouse. Whoever came to lie under it, or was jumped to while
        // another one held it, has not heard of it.
        if (!isHeld && Toolkit().MouseOver != target)
            Deliver(target, MouseEv::Move, keys & ~(keysLeft | keysRight | keysMiddle), x, y, 0);
        if (life)
            FocusByPress(target);
    }
    if (life)
        Deliver(target, event, keys, x, y, delta);
}

void ctrlWindow::Deliver(ctrlWindow* target, MouseEv event, unsigned keys, int32_t x, int32_t y, int delta)
{
    Toolkit().MouseOver = target;
    Toolkit().MouseX = x;
    Toolkit().MouseY = y;
    target->MouseEvent(event, keys, delta);
}

void ctrlWindow::FocusByPress(ctrlWindow* target)
{
    ctrlWindow* taker = target->HasStyle(styleFocusable) ? target : target->Root();
    if (Toolkit().Focused != taker)
        taker->Focus();
}

void ctrlWindow::Focus()
{
    ctrlToolkit& toolkit = Toolkit();
    const windowId handle = Root()->Handle_;
    const ctrlLife life(this);
    ctrlWindow* before = toolkit.Focused;
    const bool here = handle && toolkit.Windows().Focus() == handle;
    if (before && before != this)
        before->Focused(false);
    if (!life)
        return;
    if (here) {
        if (before != this)
            Focused(true);
        return;
    }
    toolkit.Focused = this;
    // The window that loses the system's focus was told above, as was its control.
    toolkit.FocusMoving = true;
    toolkit.Windows().Raise(handle);
    toolkit.Windows().SetFocus(handle);
    toolkit.FocusMoving = false;
}

void ctrlWindow::Focused(bool on)
{
    ctrlToolkit& toolkit = Toolkit();
    if (!on) {
        if (toolkit.Focused == this)
            toolkit.Focused = nullptr;
        return;
    }
    if (!Parent_ || HasStyle(styleFocusable) || HasFlag(ctrlFloating))
        toolkit.Focused = this;
    else
        Root()->Focus();
}

bool ctrlWindow::IsStop() const
{
    return TabOrder_ != 0 && IsShown() && Enabled;
}

void ctrlWindow::TabNext()
{
    if (!Parent_ || !IsChild())
        return;
    ctrlWindow* above = nullptr;
    ctrlWindow* below = nullptr;
    for (ctrlWindow* at = Parent_->FirstChild_; at; at = at->NextSibling_) {
        if (!at->IsStop() || at->TabOrder_ == TabOrder_)
            continue;
        ctrlWindow*& best = at->TabOrder_ > TabOrder_ ? above : below;
        if (!best || at->TabOrder_ < best->TabOrder_)
            best = at;
    }
    ctrlWindow* next = above ? above : below;
    if (next)
        next->Focus();
}

bool ctrlWindow::KeyEvent(KeyEv event, uint32_t key)
{
    if (event != KeyEv::Down || key != keyTab)
        return false;
    const ctrlLife life(this);
    if (!Notify(notifyTab) && life)
        TabNext();
    return true;
}

bool ctrlWindow::DeliverKey(KeyEv event, uint32_t key)
{
    const ctrlLife life(this);
    ctrlWindow* focused = Toolkit().Focused;
    if (focused && focused != this && focused->KeyEvent(event, key))
        return true;
    return life && KeyEvent(event, key);
}

bool ctrlWindow::IsBelow(const ctrlWindow* ancestor) const
{
    for (const ctrlWindow* at = this; at; at = at->Parent_) {
        if (at == ancestor)
            return true;
        if (!at->IsChild())
            break;
    }
    return false;
}

bool ctrlWindow::CaptureHeld() const
{
    return Root()->CaptureHolder == this;
}

bool ctrlWindow::CaptureHeldBelow() const
{
    const ctrlWindow* holder = Root()->CaptureHolder;
    return holder && holder->IsBelow(this);
}

void ctrlWindow::CaptureTake()
{
    if (!IsVisible() || !IsEnabled())
        return;
    ctrlWindow* root = Root();
    if (root->CaptureHolder == this)
        return;
    const ctrlLife life(this);
    Toolkit().Windows().SetCapture(root->Handle_);
    // Behind the call, which may tell that the capture of before is gone.
    if (life)
        root->CaptureHolder = this;
}

void ctrlWindow::CaptureRelease()
{
    ctrlWindow* root = Root();
    ctrlWindow* holder = root->CaptureHolder;
    if (!holder || !holder->IsBelow(this))
        return;
    for (ctrlWindow* at = this; !HasState(stateClosing) && at->IsShown() && at->IsChild();) {
        at = at->Parent_;
        if (!at->HasFlag(ctrlCaptureKeep) || !at->IsShown())
            continue;
        at->CaptureTake();
        if (root->CaptureHolder == at)
            return;
    }
    root->CaptureHolder = nullptr;
    Toolkit().Windows().ReleaseCapture();
}
