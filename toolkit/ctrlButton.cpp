#include "toolkit/ctrlButton.h"

#include <utility>

namespace {

constexpr uint32_t statePressed = 0x8000;
constexpr uint32_t stateHot = 0x10000;
constexpr uint32_t stateInClick = 0x20000;

constexpr uint32_t ownSize = 10;

// A lit face is brighter by ten sevenths, a disabled one darker by six sevenths.
constexpr uint32_t litShade = 10;
constexpr uint32_t disabledShade = 6;
constexpr uint32_t fullShade = 7;

colour shaded(colour value, bool lit, bool enabled)
{
    if (lit)
        value = ColourScale(value, litShade, fullShade);
    return enabled ? value : ColourScale(value, disabledShade, fullShade);
}

bool canBeChecked(buttonKind kind)
{
    return kind >= buttonKind::Radio;
}

bool flips(buttonKind kind)
{
    return kind == buttonKind::Toggle || kind == buttonKind::ToggleHeld;
}

}  // namespace

ctrlButton::ctrlButton(ctrlWindow* parent, const std::string& text, uint32_t flags)
    : ctrlButton(parent, 0, 0, ownSize, ownSize, buttonGlyph::None, flags)
{
    Caption(text);
}

ctrlButton::ctrlButton(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                       buttonGlyph glyph, uint32_t flags)
    : ctrlWindow(parent, x, y, width, height, flags), Glyph_(glyph)
{
    BorderStyle(ctrlBorder::Flat);
    Caption({});
}

ctrlButton::ctrlButton(ctrlWindow* parent, buttonGlyph glyph, uint32_t flags)
    : ctrlButton(parent, 0, 0, ownSize, ownSize, glyph, flags)
{}

ctrlButton::~ctrlButton()
{
    if (OwnsTimer)
        Toolkit().TimerStop();
    LeaveGroup();
}

void ctrlButton::LeaveGroup()
{
    if (!NextInGroup)
        return;
    ctrlButton* before = NextInGroup;
    while (before->NextInGroup && before->NextInGroup != this)
        before = before->NextInGroup;
    before->NextInGroup = NextInGroup == before ? nullptr : NextInGroup;
    NextInGroup = nullptr;
}

void ctrlButton::Kind(buttonKind kind)
{
    if (Kind_ == kind)
        return;
    Kind_ = kind;
    Invalidate(true);
}

void ctrlButton::Glyph(buttonGlyph glyph)
{
    if (Glyph_ == glyph)
        return;
    Glyph_ = glyph;
    Invalidate(true);
}

void ctrlButton::TextColour(colour value)
{
    if (TextColour_ == value)
        return;
    TextColour_ = value;
    Invalidate(true);
}

void ctrlButton::GlyphColour(colour value)
{
    if (GlyphColour_ == value)
        return;
    GlyphColour_ = value;
    Invalidate(true);
}

void ctrlButton::Checked(bool value)
{
    if (!canBeChecked(Kind_) || Checked_ == value)
        return;
    Checked_ = value;
    LetGo();
    const ctrlLife life(this);
    if (value)
        UncheckOthers();
    if (life)
        Invalidate(true);
}

// A handler that runs meanwhile may change the ring: it is walked anew until nobody is left to let go.
void ctrlButton::UncheckOthers()
{
    const ctrlLife life(this);
    for (;;) {
        ctrlButton* other = NextInGroup;
        while (other && other != this && !other->Checked_)
            other = other->NextInGroup;
        if (!other || other == this)
            return;
        other->Checked(false);
        if (flips(other->Kind_))
            other->Click();
        if (!life || !Checked_)
            return;
    }
}

void ctrlButton::Click()
{
    if (StateSet(stateInClick) & stateInClick)
        return;
    const ctrlLife life(this);
    // A copy: the handler may replace itself.
    const std::function<void()> handler = OnClick;
    if (handler)
        handler();
    if (life)
        StateClear(stateInClick);
}

// --- Looks

bool ctrlButton::IsPressed() const
{
    return HasState(statePressed);
}

bool ctrlButton::IsHot() const
{
    return HasState(stateHot);
}

colour ctrlButton::FaceColour() const
{
    return BackColour_ == colourDefault ? theme::Face : ctrlWindow::BackColour();
}

colour ctrlButton::BackColour() const
{
    return shaded(FaceColour(), IsHot() ? IsPressed() != Checked_ : Checked_, IsEnabled());
}

colour ctrlButton::BorderColour() const
{
    return shaded(FaceColour(), IsHot() != Checked_, IsEnabled());
}

// --- The mouse

void ctrlButton::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    switch (event) {
    case MouseEv::Move:
        Point((keys & keysLeft) != 0);
        return;
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
        if (IsHot())
            Press();
        return;
    case MouseEv::LeftUp:
        Release();
        return;
    default:
        ctrlWindow::MouseEvent(event, keys, delta);
    }
}

void ctrlButton::Point(bool held)
{
    const auto x = static_cast<uint32_t>(Toolkit().MouseX);
    const auto y = static_cast<uint32_t>(Toolkit().MouseY);
    const bool isDeaf = Kind_ == buttonKind::Radio && Checked_;
    if (x < Width() && y < Height() && !isDeaf) {
        if (!(StateSet(stateHot) & stateHot))
            Invalidate(true);
        const ctrlLife life(this);
        if (!CaptureHeld())
            CaptureTake();
        if (!life)
            return;
        Cursor(cursorArrow);
    } else {
        if (StateClear(stateHot) & stateHot)
            Invalidate(true);
        if (!held)
            CaptureRelease();
    }
    if (held && CaptureHeld())
        Drag();
}

void ctrlButton::Drag()
{
    const bool hot = IsHot();
    if (flips(Kind_)) {
        if (hot && Checked_)
            StateSet(statePressed);
        else if (!hot && Checked_ && Kind_ == buttonKind::Toggle)
            LetGo();
        Invalidate(true);
        return;
    }
    if (Kind_ == buttonKind::Radio || hot == IsPressed())
        return;
    if (hot)
        StateSet(statePressed);
    else
        LetGo();
    Invalidate(true);
}

void ctrlButton::Press()
{
    switch (Kind_) {
    case buttonKind::Radio: {
        if (Checked_)
            return;
        const ctrlLife life(this);
        Checked(true);
        if (life)
            Click();
        return;
    }
    case buttonKind::Repeat:
        if (!IsPressed())
            Repeat();
        return;
    default:
        if (!(StateSet(statePressed) & statePressed))
            Invalidate(true);
    }
}

void ctrlButton::Repeat()
{
    if (OnClick) {
        const ctrlLife life(this);
        Click();
        if (!life)
            return;
        Toolkit().TimerTake(
            FirstDelay, [this, life] { Tick(life); },
            [life] {
                if (life)
                    static_cast<ctrlButton*>(life.Window())->OwnsTimer = false;
            });
        OwnsTimer = true;
    }
    StateSet(statePressed);
    Invalidate(true);
}

// On the timer's thread; the button stops the timer before it goes.
void ctrlButton::Tick(const ctrlLife& life)
{
    Toolkit().Timer.Period = RepeatPeriod.load();
    if (!IsPressed())
        return;
    Toolkit().Post(
        [life] {
            auto* button = static_cast<ctrlButton*>(life.Window());
            // Behind its release a click that was on its way is late.
            if (button && button->IsPressed())
                button->Click();
        },
        true);
}

void ctrlButton::Cool()
{
    StateClear(stateHot);
}

bool ctrlButton::LetGo()
{
    const bool was = (StateClear(statePressed) & statePressed) != 0;
    if (was && OwnsTimer)
        Toolkit().TimerStop();
    return was;
}

void ctrlButton::Release()
{
    const ctrlLife life(this);
    CaptureRelease();
    if (!life || Kind_ == buttonKind::Radio || (flips(Kind_) && !IsHot()) || !LetGo())
        return;
    Invalidate(true);
    if (flips(Kind_))
        Checked(!Checked_);
    if (life && Kind_ != buttonKind::Repeat)
        Click();
}
