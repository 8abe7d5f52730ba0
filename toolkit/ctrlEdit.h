// One line of text to be edited, with caret, selection, clipboard and keyboard, drawn by ourselves: the base
// of all edits, and the one for plain text.
//
// The text is the control's name. All positions count characters, not bytes. All on the interface thread.
#pragma once

#include "toolkit/ctrlWindow.h"

#include <cstdint>
#include <functional>
#include <string>

// Creation flags of an edit.
enum : uint32_t {
    ctrlEditInner = 0x100,  // lives inside another control, and goes when it loses the focus
};

// Style bits of edits.
enum : uint32_t {
    styleEditCopy = 0x80,
    styleEditPaste = 0x100,
    styleEditPassword = 0x200,  // of a text: shown as stars, and never copied
};

// State bits of edits.
enum : uint32_t {
    stateEditClick = 0x8000,  // a click waits to be placed by the next paint
    stateEditDrag = 0x10000,  // the same for a drag
    stateEditShift = 0x20000,
    stateEditControl = 0x40000,
    stateEditCaret = 0x80000,   // the caret shows
    stateEditFresh = 0x100000,  // the next click that meets a full selection leaves it
    stateEditWide = 0x200000,   // the caret covers the character at its position
};

constexpr colour colourLabel = -7;

class ctrlEdit_Base : public ctrlWindow
{
public:
    static constexpr uint64_t Unlimited = ~uint64_t{0};

    ctrlEdit_Base(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    colour BackColour() const override;
    void Focused(bool on) override;
    colour BorderColour() const override;
    bool KeyEvent(KeyEv event, uint32_t key) override;

    // Takes the selected text away; nothing without a selection.
    virtual void SelectionDelete();

    // Kept within the text.
    virtual void CaretSet(uint64_t position);

    // Makes what was typed the value, and tells OnChange if that changed it. The handler may delete the edit.
    virtual void Commit() = 0;

    // Makes the text that of the value again.
    virtual void Cancel() = 0;

    // Characters; a longer text is cut.
    void MaxLength(uint64_t length);
    uint64_t MaxLength() const { return MaxLength_; }

    // What stands behind a NUL or a broken sequence, and beyond the longest length, is left out. Tells
    // nobody.
    void EditText(const std::string& text);

    // styleEditCopy and styleEditPaste change without a repaint.
    void EditStyleSet(uint32_t bits);
    void EditStyleClear(uint32_t bits);

    // Extends the selection from the caret to a position, where the caret then is.
    void SelectTo(uint64_t position);
    void CaretMove(uint64_t position);

    // The selected text to the clipboard, and the text there in place of the selected; nothing where the
    // style does not allow it, or the system has no text. A paste drops control characters and what goes
    // beyond the longest length.
    void Copy() const;
    void Paste();

    uint64_t Caret() const { return Caret_; }
    uint64_t SelectionStart() const { return SelectionStart_; }
    uint64_t SelectionEnd() const { return SelectionEnd_; }
    bool HasSelection() const { return SelectionStart_ != SelectionEnd_; }
    int32_t Scroll() const { return Scroll_; }

    std::function<void()> OnChange;  // a commit changed the value
    std::function<void()> OnEnter;   // behind the commit
    unsigned TextFlags = textLeft;   // textLeft and textRight; textTrim while it has no focus
    colour TextColour = colourDefault;
    colour SelectionColour = colourDefault;
    colour SelectedTextColour = colourDefault;
    colour ReservedColour = colourDefault;  // kept, without effect

protected:
    // Draws `text`, which stands for the name, with selection and caret into the paint rectangle, and places
    // the caret where the mouse waits for it.
    void TextDraw(const std::string& text);

    // The x of the caret, and the caret for where the mouse was pressed last.
    int32_t CaretX(const std::string& text);
    void CaretFromX(const std::string& text);

    // The width up to a position.
    int32_t WidthUpTo(const std::string& text, uint64_t position);

    // For the destructors of all that have a Commit of their own, while they still have it.
    void EndFocus();

    // Runs a handler by a copy, for it may replace itself or delete this control.
    static void Raise(const std::function<void()>& handler);

    // Puts a text in place without a word on selection and caret.
    void TextSet(const std::string& text) { Caption(text); }
    uint64_t Length() const;
    void SelectionSet(uint64_t start, uint64_t end);
    void SelectionClear() { SelectionSet(0, 0); }
    void SelectAll();
    void InvalidateUnlessPainting();
    void CaretStore(uint64_t position) { Caret_ = position; }

    // A character in place of the selected text; false when there is no room.
    bool Insert(uint32_t character);
    bool IsShiftDown() const { return HasState(stateEditShift); }
    colour TextShown() const;

    // The parent, which leads to a commit, or the commit itself where there is none. This control may be gone
    // behind it.
    void PassFocus();

    // Where the mouse was pressed or turned last, of all edits.
    struct pressPoint {
        int32_t X = 0, Y = 0;
        bool operator==(const pressPoint&) const = default;
    };
    static pressPoint& LastPress();

    uint32_t SecretStyle = 0;  // with one of these nothing is copied or pasted

private:
    void FocusGained();
    void FocusLost();
    void DestroyLater() const;
    void BlinkStart();
    void BlinkStop();
    void BlinkLost();
    void Blink();

    void Press();
    void MoveEvent(unsigned keys);
    bool KeyDown(uint32_t key);
    bool KeyTarget(uint32_t key);
    void KeyBackspace();
    void KeyDelete();
    void KeyInsert();
    void KeyEnter();
    void KeyEscape();
    void Erase(uint64_t position);

    int32_t Origin(const std::string& text);
    void PlaceByMouse(const std::string& text);
    void ScrollToCaret(const std::string& text);
    void DrawSelection(const std::string& text, int32_t x);
    void DrawCaret(const std::string& text);

    uint64_t Caret_ = 0;
    int32_t Scroll_ = 0;  // pixels by which the text is moved left
    uint64_t SelectionStart_ = 0;
    uint64_t SelectionEnd_ = 0;
    uint64_t MaxLength_ = Unlimited;
    int32_t ClickX = 0;  // of the click that waits
    bool BlinkHeld = false;
};

class ctrlEdit_Text : public ctrlEdit_Base
{
public:
    ctrlEdit_Text(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t flags);
    ~ctrlEdit_Text() override;

    void Paint() override;
    void Focused(bool on) override;
    bool KeyEvent(KeyEv event, uint32_t key) override;
    void Commit() override;
    void Cancel() override;

private:
    std::string Shown() const;
    bool Typed(uint32_t character);

    std::string Saved;  // the text at the last gain of focus
};
