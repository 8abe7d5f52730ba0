// A push button: with a text or a drawn glyph, that clicks once or again and again, or stays down.
//
// All on the interface thread.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

enum class buttonKind : uint8_t {
    Push = 0,        // clicks when it is released under the pointer
    Repeat = 1,      // clicks when it is pressed, and again while it is held
    Radio = 2,       // a press checks it; when checked it ignores the pointer
    Toggle = 3,      // flips at each click
    ToggleHeld = 4,  // the same, but a checked one looks held when the pointer leaves it
};

enum class buttonGlyph : uint8_t {
    None = 0,  // the name
    Question = 5,
    Up = 6,
    Down = 8,
    Left = 10,
    Right = 11,
    Cross = 43,
};

// State bits of buttons.
enum : uint32_t {
    stateButtonPressed = 0x8000,
    stateButtonHot = 0x10000,      // the pointer is over it
    stateButtonInClick = 0x20000,  // its handler runs
};

class ctrlButton : public ctrlWindow
{
public:
    ctrlButton(ctrlWindow* parent, const std::string& text, uint32_t flags);  // 10 by 10
    ctrlButton(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, buttonGlyph glyph,
               uint32_t flags);
    ctrlButton(ctrlWindow* parent, buttonGlyph glyph, uint32_t flags);  // 10 by 10
    ~ctrlButton() override;

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Paint() override;
    colour BackColour() const override;
    colour BorderColour() const override;

    void Kind(buttonKind kind);
    buttonKind Kind() const { return Kind_; }
    void Glyph(buttonGlyph glyph);

    // Of a kind that can be checked. The others of its ring let go; those that toggle click then.
    void Checked(bool value);
    bool Checked() const { return Checked_; }

    // Runs the handler, unless it runs already.
    void Click();

    void TextColour(colour value);
    void GlyphColour(colour value);

    // The handler may destroy the button.
    std::function<void()> OnClick;

    // A ring of buttons of which one is checked at most: each names the next, the last one the first. Null
    // for a button alone. A button that goes leaves its ring.
    ctrlButton* NextInGroup = nullptr;

    uint32_t FirstDelay = 0;                // ms before the first repeat
    std::atomic<uint32_t> RepeatPeriod{0};  // ms between repeats

private:
    bool IsPressed() const { return HasState(stateButtonPressed); }
    bool IsHot() const { return HasState(stateButtonHot); }
    bool Flips() const { return Kind_ == buttonKind::Toggle || Kind_ == buttonKind::ToggleHeld; }
    colour FaceColour() const;
    colour GlyphShade() const;

    void Point(bool held);
    void Drag();
    void Press();
    void Repeat();
    void Tick(const ctrlLife& life);
    void Release();
    void Cool();   // the pointer counts as elsewhere
    bool LetGo();  // whether it was pressed
    void UncheckOthers();
    void LeaveGroup();

    void PaintText();
    void PaintGlyph();

    colour TextColour_ = colourDefault;
    colour GlyphColour_ = colourDefault;  // the default is that of the text
    bool Checked_ = false;
    bool OwnsTimer = false;
    buttonGlyph Glyph_ = buttonGlyph::None;
    buttonKind Kind_ = buttonKind::Push;
};
