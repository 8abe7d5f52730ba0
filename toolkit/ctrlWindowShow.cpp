// Showing, hiding, enabling, and the modal run.
#include "toolkit/ctrlWindow.h"

#include <vector>

void ctrlWindow::Show()
{
    if (!Toolkit().IsInterfaceThread()) {
        PostToSelf([](ctrlWindow& window) { window.Show(); });
        return;
    }
    const ctrlLife life(this);
    Invalidate(true);
    if (Handle_)
        ShowNative();
    else
        ShowChild();
    if (life && (StateClear(stateNeverShown) & stateNeverShown) && HasStyle(styleMaximiseFirst) && Handle_)
        MaximiseFirst();
}

void ctrlWindow::ShowNative()
{
    windowSystem& system = Toolkit().Windows();
    const ctrlLife life(this);
    const windowId handle = Handle_;
    if (!IsShown())
        system.Show(handle, HasFlag(ctrlFramed) ? windowShow::Activate : windowShow::NoActivate);
    else if (HasState(stateMinimised))
        system.Show(handle, windowShow::Restore);
    else
        system.Raise(handle);
    if (!life)
        return;
    if (!IsShown()) {
        // A handler hid it while it was being shown, which a system may take for the hiding of a hidden one.
        system.Show(handle, windowShow::Hide);
        return;
    }
    // Marks that were set while it was hidden asked for nothing.
    if (HasState(stateDirty | stateDirtyBelow))
        AskPaint();
    windowArea area;
    if (!system.WorkAreaOf(handle, area))
        Centre();
}

void ctrlWindow::ShowChild()
{
    if (StateSet(stateVisible) & stateVisible)
        return;
    if (Parent_)
        Parent_->InvalidateLayout();
    StateChanged();
}

void ctrlWindow::MaximiseFirst()
{
    const ctrlLife life(this);
    Toolkit().PumpPending();
    if (!life)
        return;
    RestoredX = X_;
    RestoredY = Y_;
    Toolkit().Windows().Show(Handle_, windowShow::Maximise);
    Toolkit().PumpPending();
}

void ctrlWindow::Hide()
{
    if (!Toolkit().IsInterfaceThread()) {
        PostToSelf([](ctrlWindow& window) { window.Hide(); });
        return;
    }
    const ctrlLife life(this);
    if (HasState(stateMinimised | stateMaximised)) {
        if (Handle_)
            Toolkit().Windows().Show(Handle_, windowShow::Restore);
        else
            StateClear(stateMinimised | stateMaximised);
    }
    if (!life || !(StateClear(stateVisible) & stateVisible))
        return;
    CaptureRelease();
    if (!life)
        return;
    // A control in it would go on taking keys that nobody sees arrive.
    ctrlWindow* focused = Toolkit().Focused;
    if (focused && focused != this && focused->IsBelow(this))
        focused->Focused(false);
    if (!life)
        return;
    Focused(false);
    if (!life)
        return;
    DeviceRelease();
    if (Handle_) {
        Toolkit().Windows().Show(Handle_, windowShow::Hide);
        return;
    }
    if (Parent_)
        Parent_->InvalidateLayout();
    StateChanged();
}

void ctrlWindow::Enable(bool on)
{
    if (Enabled.exchange(on) == on)
        return;
    const ctrlLife life(this);
    if (!on) {
        CaptureRelease();
        const bool focused = life && Toolkit().Focused && Toolkit().Focused->IsBelow(this);
        for (ctrlWindow* at = focused ? Parent_ : nullptr; at; at = at->Parent_) {
            const bool stands = at->HasFlag(ctrlFloating) || !at->Parent_ || at->Parent_->IsVisible();
            if (!at->IsShown() || !stands)
                continue;
            at->Focus();
            break;
        }
    }
    if (!life)
        return;
    if (IsChild()) {
        InvalidateTree(true);
        return;
    }
    // By the handle: it may be gone when its turn comes.
    Toolkit().Post(
        [life, handle = Handle_, on] {
            Toolkit().Windows().Enable(handle, on);
            if (life)
                life.Window()->InvalidateTree(true);
        },
        true);
}

void ctrlWindow::ModalResult(int32_t result)
{
    ModalResult_ = result;
    // The paint that this asks for wakes the pump of the run.
    Invalidate(true);
}

int32_t ctrlWindow::Modal(bool reset)
{
    const ctrlLife life(this);
    ctrlToolkit& toolkit = Toolkit();
    if (reset)
        ModalResult_ = 0;
    if (!(StateSet(stateModal) & stateModal))
        ModalBegin();
    while (life && ModalResult_ == 0) {
        if (!toolkit.PumpOne(true) && life)
            ModalResult_ = -1;
    }
    if (!life)
        return -1;
    const int32_t result = ModalResult_;
    if (StateClear(stateModal) & stateModal)
        ModalEnd();
    if (life)
        Hide();
    if (life)
        RunEnded();
    if (life && !HasFlag(ctrlKeep))
        delete this;
    toolkit.SweepSoon();
    return result;
}

void ctrlWindow::ModalBegin()
{
    constexpr uint32_t orderOnly = placeKeepSize | placeKeepPosition;
    const ctrlLife life(this);
    ctrlToolkit& toolkit = Toolkit();
    Enable(true);
    Show();
    if (!life)
        return;
    if (Handle_)
        toolkit.Windows().Place(Handle_, windowOrder::Topmost, {}, orderOnly);
    EnableOthers(false);
    while (life && ModalResult_ == 0 && toolkit.PumpOne(false)) {
    }
    if (life && FirstChild_)
        FirstChild_->TabNext();
}

void ctrlWindow::ModalEnd()
{
    constexpr uint32_t orderOnly = placeKeepSize | placeKeepPosition;
    windowSystem& system = Toolkit().Windows();
    const ctrlLife life(this);
    EnableOthers(true);
    if (!life)
        return;
    if (Handle_)
        system.Place(Handle_, windowOrder::NotTopmost, {}, orderOnly);
    if (life && Parent_)
        system.Raise(Parent_->Root()->Handle());
}

void ctrlWindow::EnableOthers(bool on) const
{
    std::vector<ctrlLife> others;
    for (const ctrlWindow* other : Toolkit().WindowList()) {
        if (other != this && other->IsShown())
            others.emplace_back(other);
    }
    for (const ctrlLife& other : others) {
        if (other)
            other.Window()->Enable(on);
    }
}
