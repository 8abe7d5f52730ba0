// How windows come, stand in their tree, and go.
#include "toolkit/ctrlWindow.h"

#include "platform/debug.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

namespace {

constexpr uint32_t plainDPI = 96;

uint32_t flagsOf(const ctrlWindow* parent, uint32_t flags)
{
    if (!parent)
        return flags & ~uint32_t{ctrlFloating};
    const bool child = (flags & ctrlFloating) == 0;
    return child ? flags & ~uint32_t{ctrlPerMonitor | ctrlFramed} : flags;
}

windowCreate createOf(uint32_t flags, const ctrlWindow* parent)
{
    windowCreate create;
    create.Style = flags & ctrlFramed ? styleSystemMenu : stylePopup;
    create.StyleExtended = styleNoParentNotify;
    if (flags & ctrlTool)
        create.StyleExtended |= styleTopmost | styleTool;
    if ((flags & ctrlFramed) && !parent)
        create.StyleExtended |= styleTaskbar;
    create.Owner = parent ? parent->Root()->Handle() : 0;
    create.PerMonitor = (flags & ctrlPerMonitor) != 0;
    return create;
}

}  // namespace

ctrlLife::ctrlLife(const ctrlWindow* window) : Life(window->Life) {}

ctrlWindow::ctrlWindow(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                       uint32_t flags)
    : Flags(flagsOf(parent, flags)), X_(x), Y_(y), Parent_(parent), Life(std::make_shared<ctrlWindow*>(this))
{
    if (!IsChild()) {
        MakeNative(width, height, __builtin_return_address(0));
        return;
    }
    SurfaceSize(width, height);
    LinkChild();
}

ctrlWindow::ctrlWindow(ctrlWindow* parent, uint32_t flags) : ctrlWindow(parent, 0, 0, 10, 10, flags) {}

void ctrlWindow::MakeNative(uint32_t width, uint32_t height, const void* caller)
{
    StateSet(stateClosing);
    // Messages are handled below; the window that this one belongs to must not go with one of them.
    ctrlWindow* root = Parent_ ? Parent_->Root() : nullptr;
    const bool held = root && !(root->StateSet(stateInMessage) & stateInMessage);
    Toolkit().Add(this);
    windowSystem& system = Toolkit().Windows();
    uint32_t error = 0;
    const windowId handle = system.Create(createOf(Flags, Parent_), error);
    {
        const thrSpinHold hold(Toolkit().Lock);
        Handle_ = handle;
    }
    if (handle) {
        system.SetObject(handle, this);
        PlaceFirst(width, height);
        system.AskGestures(handle);
    } else {
        SurfaceSize(width, height);
        char text[192];
        std::snprintf(text, sizeof text,
                      "ctrlWindow::ctrlWindow - Cannot create window in call from %016" PRIXPTR
                      "! - Error %" PRIu32 " (%08" PRIX32 ")\r\n",
                      reinterpret_cast<uintptr_t>(caller), error, error);
        debugWrite(text);
    }
    if (Parent_) {
        const thrSpinHold hold(Toolkit().Lock);
        NextSibling_ = Parent_->FirstOwned;
        Parent_->FirstOwned = this;
    }
    StateClear(stateClosing);
    if (held) {
        root->StateClear(stateInMessage);
        Toolkit().SweepSoon();
    }
}

uint32_t ctrlWindow::FrameDPI() const
{
    return HasFlag(ctrlPerMonitor) ? Toolkit().Windows().DPI(Handle_) : plainDPI;
}

windowExtent ctrlWindow::FrameThickness() const
{
    const windowEdges frame = Toolkit().Windows().FrameOf(Handle_, {}, FrameDPI());
    return {frame.Right - frame.Left, frame.Bottom - frame.Top};
}

void ctrlWindow::PlaceFirst(uint32_t width, uint32_t height)
{
    constexpr uint32_t first = placeKeepOrder | placeNoActivate | placeFrameChanged;
    constexpr uint32_t again = placeKeepPosition | placeKeepOrder | placeNoActivate;
    ctrlToolkit& toolkit = Toolkit();
    const auto wide = static_cast<int32_t>(width);
    const auto high = static_cast<int32_t>(height);
    const windowEdges client{X_, Y_, X_ + wide, Y_ + high};
    windowEdges frame = toolkit.Windows().FrameOf(Handle_, client, FrameDPI());
    toolkit.Pending = {frame, true};
    toolkit.Windows().Place(Handle_, windowOrder::Keep, frame, first);
    toolkit.PumpPending();

    const int32_t shortWidth = wide - static_cast<int32_t>(Width());
    const int32_t shortHeight = high - static_cast<int32_t>(Height());
    if (shortWidth != 0 || shortHeight != 0) {
        frame.Right += shortWidth;
        frame.Bottom += shortHeight;
        toolkit.Pending = {frame, true};
        toolkit.Windows().Place(Handle_, windowOrder::Keep, frame, again);
        toolkit.PumpPending();
    }
    toolkit.Pending.UnderWay = false;
}

ctrlWindow::~ctrlWindow()
{
    *Life = nullptr;
    ctrlToolkit& toolkit = Toolkit();
    // The pump below must not delete those that this one belongs to either.
    StateSet(stateClosing | stateInMessage);
    CaptureRelease();
    ForgetInput();
    const bool native = !IsChild();
    if (native)
        toolkit.Remove(this);
    while (FirstOwned) {
        ctrlWindow* owned = FirstOwned;
        owned->Destroy();
        // Of a system that is gone the message that ends it never comes.
        if (!toolkit.PumpPending() && owned == FirstOwned)
            delete owned;
    }
    while (FirstChild_)
        delete FirstChild_;
    Canvas::DeviceRelease();
    // Once more: what was pumped may have given it the focus, or moved the mouse over it.
    ForgetInput();
    Unlink();
    if (!native) {
        Parent_->InvalidateLayout();
        return;
    }
    if (Handle_) {
        toolkit.Windows().SetObject(Handle_, nullptr);
        toolkit.Windows().Destroy(Handle_);
        toolkit.Rescue(Handle_);
    }
}

// What the toolkit and the native window remember of the control beyond its life.
void ctrlWindow::ForgetInput()
{
    ctrlToolkit& toolkit = Toolkit();
    toolkit.ForgetDeferred(this);
    if (toolkit.Focused == this)
        toolkit.Focused = nullptr;
    if (toolkit.MouseOver == this)
        toolkit.MouseOver = nullptr;
    if (toolkit.LastMove.Window == this)
        toolkit.LastMove = {};
    ctrlWindow* root = Root();
    if (root->GestureTarget == this)
        root->GestureTarget = nullptr;
    if (root->CaptureHolder == this)
        root->CaptureHolder = nullptr;
}

// Modal runs of windows that this one or a control in it owns must unwind before it can go.
bool ctrlWindow::EndOwnedRuns()
{
    bool any = false;
    for (ctrlWindow* child = FirstChild_; child; child = child->NextSibling_)
        any |= child->EndOwnedRuns();
    for (ctrlWindow* owned = FirstOwned; owned; owned = owned->NextSibling_) {
        any |= owned->EndOwnedRuns();
        if (!owned->HasState(stateModal))
            continue;
        owned->ModalResult(-1);
        any = true;
    }
    return any;
}

// A run is over that this window, or one that owns it, was to be destroyed behind.
void ctrlWindow::RunEnded()
{
    for (ctrlWindow* at = this; at; at = at->Parent_) {
        if (std::exchange(at->DestroyWaits, false))
            at->PostToSelf([](ctrlWindow& window) { window.Destroy(); });
    }
}

void ctrlWindow::Destroy()
{
    bool running = EndOwnedRuns();
    if (HasState(stateModal)) {
        ModalResult(-1);
        running = true;
    }
    // By the end of the run, and not by a closure that tries again and again: the run may be one that a pump
    // of its own stands above, which would never see an empty queue.
    DestroyWaits = running;
    if (running)
        return;
    if (StateSet(stateClosing) & stateClosing)
        return;
    if (!Handle_) {
        // Its destructor could not see the end of a window that it owns and that is in a message.
        if (MayBeDeleted())
            delete this;
        else
            Toolkit().DeferDelete(this);
        return;
    }
    const ctrlLife life(this);
    while (life && !Toolkit().Windows().Post(Handle_, msgClose, 0, 0)) {
        if (!Toolkit().PumpPending())
            return;
    }
}

bool ctrlWindow::MayBeDeleted() const
{
    if (HasState(stateModal | stateInMessage))
        return false;
    for (const ctrlWindow* first : {FirstOwned, FirstChild_}) {
        for (const ctrlWindow* at = first; at; at = at->NextSibling_) {
            if (!at->MayBeDeleted())
                return false;
        }
    }
    return true;
}

void ctrlWindow::Close(ctrlWindow* window)
{
    // The pump of its own destructor may bring it.
    if (!ctrlLife(window))
        return;
    if (window->MayBeDeleted()) {
        delete window;
        return;
    }
    window->EndOwnedRuns();
    Toolkit().DeferDelete(window);
}

void ctrlWindow::CloseRequest()
{
    if ((Frame_ & frameClosable) == 0)
        return;
    if (ModalResult_ == 0)
        ModalResult(-1);
    else if (HasFlag(ctrlKeep))
        Hide();
    else
        Destroy();
}
