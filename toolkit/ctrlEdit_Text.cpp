#include "toolkit/ctrlEdit.h"

#include <utility>

namespace {

// What the keyboard sends with Ctrl and a letter.
enum : uint32_t {
    charCopy = 3,
    charPaste = 22,
    charCut = 24,
    charFirst = 32,  // below it are keys, not characters
    charDelete = 127,
};

}  // namespace

ctrlEdit_Text::ctrlEdit_Text(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                             uint32_t flags)
    : ctrlEdit_Base(parent, x, y, width, height, flags)
{
    SecretStyle = styleEditPassword;
}

ctrlEdit_Text::~ctrlEdit_Text()
{
    EndFocus();
}

std::string ctrlEdit_Text::Shown() const
{
    return HasStyle(styleEditPassword) ? std::string(Length(), '*') : Name();
}

void ctrlEdit_Text::Paint()
{
    ctrlEdit_Base::Paint();
    ++PaintRect.Left;
    --PaintRect.Right;
    if (HasStyle(styleEditPassword))
        EditStyleClear(styleEditCopy | styleEditPaste);
    const std::string text = Shown();
    if (HasFocus() || !(TextFlags & textTrim)) {
        TextDraw(text);
        return;
    }
    constexpr unsigned across = textLeft | textRight | textTrim;
    ColourEnabled(TextShown(), true);
    Text(PaintRect, text.c_str(), (TextFlags & across) | textTop | textBottom, text.size());
}

void ctrlEdit_Text::Focused(bool on)
{
    if (on)
        Saved = Name();
    ctrlEdit_Base::Focused(on);
}

bool ctrlEdit_Text::KeyEvent(KeyEv event, uint32_t key)
{
    if (event == KeyEv::Char && HasStyle(styleFocusable))
        return Typed(key);
    return ctrlEdit_Base::KeyEvent(event, key);
}

bool ctrlEdit_Text::Typed(uint32_t character)
{
    if (HasState(stateEditControl)) {
        switch (character) {
        case charPaste:
            Paste();
            return false;
        case charCut:
            Copy();
            SelectionDelete();
            return false;
        case charCopy:
            Copy();
            return false;
        default:
            break;
        }
    }
    if (character < charFirst || character == charDelete)
        return ctrlEdit_Base::KeyEvent(KeyEv::Char, character);
    Insert(character);
    return true;
}

// The new text is taken only where somebody hears of it: until then Cancel goes back to the old one.
void ctrlEdit_Text::Commit()
{
    const std::string text = Name();
    if (text == Saved || !OnChange)
        return;
    Saved = text;
    Raise(OnChange);
}

void ctrlEdit_Text::Cancel()
{
    EditText(Saved);
}
