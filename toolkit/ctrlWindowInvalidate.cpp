// What must be painted again. Any thread: bits are atomic, and lists are read under the toolkit's lock.
#include "platform/clock.h"
#include "toolkit/ctrlWindow.h"

void ctrlWindow::Invalidate(bool self)
{
    if (HasState(stateClosing))
        return;
    if (self && HasState(stateDirty))
        return;
    ctrlWindow* native = nullptr;
    {
        const thrSpinHold hold(Toolkit().Lock);
        native = InvalidateWalk(self);
    }
    if (native)
        native->AskPaint();
}

// Marks the control and all that must hear of it; the native window when the marks have reached it.
ctrlWindow* ctrlWindow::InvalidateWalk(bool self)
{
    ctrlWindow* control = this;
    for (;;) {
        if (self && (control->StateSet(stateDirty) & stateDirty))
            return nullptr;
        if (control->Handle_)
            return control;
        ctrlWindow* parent = control->Parent_;
        if (!parent)
            return nullptr;
        if (control->Transparency_ == 0.0F) {
            control->CoverTestLater();
        } else if (!control->CoverTest()) {
            parent->StateSet(stateDirtyBelow);
            if (parent->HasState(stateClosing))
                return nullptr;
            control = parent;
            self = true;
            continue;
        }
        // The climb ends at the native window, at a mark that is there already, or below something
        // translucent, whose background must be drawn again too.
        ctrlWindow* at = parent;
        for (; at; at = at->Parent_) {
            if (at->HasState(stateClosing))
                return nullptr;
            const bool marked = (at->StateSet(stateDirtyBelow) & stateDirtyBelow) != 0;
            // Behind a native window is the screen, and not the window that owns it.
            if (at->Handle_)
                return marked ? nullptr : at;
            if (at->Transparency_ != 0.0F && at->Parent_)
                break;
            if (marked)
                return nullptr;
        }
        if (!at || at->Parent_->HasState(stateClosing))
            return nullptr;
        control = at->Parent_;
        self = true;
    }
}

bool ctrlWindow::IsShownInShown() const
{
    return IsShown() && Parent_ && Parent_->IsShown();
}

rect ctrlWindow::CoverArea() const
{
    const rect area = Area();
    return {std::max(area.Left, 0), std::max(area.Top, 0),
            std::min(area.Right, static_cast<int32_t>(Parent_->Width())),
            std::min(area.Bottom, static_cast<int32_t>(Parent_->Height()))};
}

// What lies above an opaque control and lets it show through is drawn again with it.
void ctrlWindow::CoverTestLater()
{
    for (ctrlWindow* later = NextSibling_; later; later = later->NextSibling_) {
        if (later->IsShownInShown() && later->Transparency_ != 0.0F && rectMeet(later->Area(), Area()))
            later->CoverTest();
    }
}

// Marks the siblings that lie beneath this translucent control. False when an opaque one covers all of it.
bool ctrlWindow::CoverTest()
{
    ctrlWindow* control = this;
    for (;;) {
        const rect area = control->CoverArea();
        ctrlWindow* cover = nullptr;
        for (ctrlWindow* at = Parent_->FirstChild_; at && at != control; at = at->NextSibling_) {
            if (at->IsShownInShown() && rectCovers(at->Area(), area))
                cover = at;
        }
        if (cover) {
            cover->StateSet(stateDirtyBelow);
            if (cover->Transparency_ == 0.0F)
                return false;
            control = cover;
            continue;
        }
        for (ctrlWindow* at = Parent_->FirstChild_; at && at != control; at = at->NextSibling_) {
            if (!at->IsShownInShown() || !rectMeet(at->Area(), area))
                continue;
            at->StateSet(stateDirtyBelow);
            if (at->Transparency_ != 0.0F)
                at->CoverTest();
        }
        return true;
    }
}

void ctrlWindow::AskPaint()
{
    if (!IsShown() || (StateSet(statePaintAsked) & statePaintAsked))
        return;
    InvalidateTime = clockSteadyNs();
    Toolkit().Windows().AskPaint(Handle_);
}

bool ctrlWindow::IsPaintOverdue(int64_t askedBefore) const
{
    return Handle_ && IsShown() && HasState(statePaintAsked) && InvalidateTime.load() <= askedBefore;
}

void ctrlWindow::PaintOverdue()
{
    windowSystem& system = Toolkit().Windows();
    if (PaintAgain.exchange(false))
        system.AskPaint(Handle_);
    system.PaintNow(Handle_);
}

void ctrlWindow::InvalidateTree(bool self)
{
    Invalidate(self);
    for (ctrlWindow* child = FirstChild_; child; child = child->NextSibling_)
        child->InvalidateTree(self);
}

void ctrlWindow::InvalidateLayout()
{
    const uint32_t before = StateSet(stateChildren | stateLayout);
    if (!(before & stateLayout) || !(before & (stateChildren | statePainting)))
        Invalidate(true);
    ctrlWindow* root = Root();
    if (root != this && root->HasFlag(ctrlPerMonitor))
        root->InvalidateLayout();
}
