#include "toolkit/ctrlButton.h"

#include <utility>

namespace {

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
        if (other->Flips())
            other->Click();
        if (!life || !Checked_)
            return;
    }
}

void ctrlButton::Click()
{
    if (StateSet(stateButtonInClick) & stateButtonInClick)
        return;
    const ctrlLife life(this);
    // A copy: the handler may replace itself.
    const std::function<void()> handler = OnClick;
    if (handler)
        handler();
    if (life)
        StateClear(stateButtonInClick);
}

// --- Looks

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
