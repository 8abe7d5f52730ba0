// Where windows stand in their tree, what they are called, and the bits of their frame and style.
#include "toolkit/ctrlWindow.h"

void ctrlWindow::LinkChild()
{
    const thrSpinHold hold(Toolkit().Lock);
    NextSibling_ = Parent_->FirstChild_;
    Parent_->FirstChild_ = this;
}

void ctrlWindow::Unlink()
{
    if (!Parent_)
        return;
    const thrSpinHold hold(Toolkit().Lock);
    ctrlWindow** link = IsChild() ? &Parent_->FirstChild_ : &Parent_->FirstOwned;
    while (*link && *link != this)
        link = &(*link)->NextSibling_;
    if (*link)
        *link = NextSibling_;
    NextSibling_ = nullptr;
}

void ctrlWindow::PostToSelf(void (*action)(ctrlWindow& window))
{
    Toolkit().Post(
        [life = ctrlLife(this), action] {
            if (life)
                action(*life.Window());
        },
        true);
}

void ctrlWindow::Caption(const std::string& text)
{
    {
        const thrSpinHold hold(NameLock);
        if (Name_ == text)
            return;
        Name_ = text;
    }
    if (Handle_) {
        // The name as it is then: of threads that name it at once, the last to do so need not be the last
        // here.
        PostToSelf([](ctrlWindow& window) { Toolkit().Windows().SetTitle(window.Handle_, window.Name()); });
    }
    Invalidate(true);
}

std::string ctrlWindow::Name() const
{
    const thrSpinHold hold(NameLock);
    return Name_;
}

ctrlWindow* ctrlWindow::Root()
{
    ctrlWindow* at = this;
    while (!at->Handle_ && at->Parent_)
        at = at->Parent_;
    return at->Handle_ ? at : this;
}

const ctrlWindow* ctrlWindow::Root() const
{
    const ctrlWindow* at = this;
    while (!at->Handle_ && at->Parent_)
        at = at->Parent_;
    return at->Handle_ ? at : this;
}

bool ctrlWindow::IsEnabled() const
{
    for (const ctrlWindow* at = this; at; at = at->Parent_) {
        if (!at->Enabled)
            return false;
        if (at->HasFlag(ctrlFloating))
            break;
    }
    return true;
}

bool ctrlWindow::IsVisible() const
{
    for (const ctrlWindow* at = this; at; at = at->Parent_) {
        if (!at->IsShown())
            return false;
        if (at->HasFlag(ctrlFloating))
            break;
    }
    return true;
}

void ctrlWindow::ChildOrder(ctrlWindow* child, unsigned index)
{
    if (!child || child->Parent_ != this || !child->IsChild())
        return;
    child->Unlink();
    {
        const thrSpinHold hold(Toolkit().Lock);
        ctrlWindow** link = &FirstChild_;
        for (unsigned at = 0; at < index && *link; ++at)
            link = &(*link)->NextSibling_;
        child->NextSibling_ = *link;
        *link = child;
    }
    Invalidate(true);
}

void ctrlWindow::FrameStyle(uint8_t set, uint8_t clear)
{
    struct row {
        uint8_t Bits;
        uint32_t Style;
    };
    constexpr row rows[] = {
        {frameMaximise | frameMaximiseToo, styleMaximiseBox},
        {frameMinimise, styleMinimiseBox},
        {frameResize, styleResizable},
    };
    const unsigned both = set & clear;
    const unsigned before = Frame_;
    Frame_ = static_cast<uint8_t>((before | (set & ~both)) & ~(clear & ~both));
    if (Frame_ == before || !Handle_ || !HasFlag(ctrlFramed))
        return;
    windowSystem& system = Toolkit().Windows();
    uint32_t style = system.Style(Handle_);
    for (const row& one : rows)
        style = Frame_ & one.Bits ? style | one.Style : style & ~one.Style;
    system.SetStyle(Handle_, style);
    if ((Frame_ ^ before) & frameResize)
        Move(X_, Y_, Width(), Height(), true);
}

void ctrlWindow::StyleSet(uint32_t bits)
{
    constexpr uint32_t own = ~uint32_t{127};
    const uint32_t changed = bits & ~Style_.fetch_or(bits);
    if (HasFlag(ctrlStyleRepaint) && (changed & own))
        Invalidate(true);
    if ((changed & styleAlwaysOnTop) && Handle_)
        PostToSelf([](ctrlWindow& window) {
            Toolkit().Windows().Place(window.Handle_, windowOrder::Topmost, {},
                                      placeKeepSize | placeKeepPosition | placeNoActivate);
        });
}

void ctrlWindow::StyleClear(uint32_t bits)
{
    constexpr uint32_t own = ~uint32_t{127};
    const uint32_t changed = bits & Style_.fetch_and(~bits);
    if (HasFlag(ctrlStyleRepaint) && (changed & own))
        Invalidate(true);
    if ((changed & styleAlwaysOnTop) && Handle_)
        PostToSelf([](ctrlWindow& window) {
            Toolkit().Windows().Place(window.Handle_, windowOrder::NotTopmost, {},
                                      placeKeepSize | placeKeepPosition | placeNoActivate);
        });
}

void ctrlWindow::Activated(bool active)
{
    Active = active;
}

void ctrlWindow::GesturePan(bool /*first*/, uint32_t /*id*/) {}

bool ctrlWindow::Notify(unsigned code)
{
    // A copy: the handler may replace itself, or delete this control.
    const auto handler = OnNotify;
    return handler && handler(code);
}
