// What a person does with mouse, keyboard and clipboard, shown and told.
#include "tools/gallery/gallery.h"

#include <string>
#include <vector>

namespace {

constexpr size_t linesMost = 6;
constexpr uint32_t controlC = 3;   // the character of Ctrl+C
constexpr uint32_t controlV = 22;  // of Ctrl+V

const char* nameOf(MouseEv event)
{
    constexpr const char* names[] = {"move",        "wheel",       "left down",   "left up",
                                     "left double", "middle down", "middle up",   "middle double",
                                     "right down",  "right up",    "right double"};
    return names[static_cast<unsigned>(event)];
}

class inputSheet final : public gallerySheet
{
public:
    inputSheet(ctrlWindow* parent, int32_t x, int32_t y)
        : gallerySheet(parent, x, y, 480, 140, "Mouse, keys and clipboard")
    {
        StyleSet(styleFocusable);
        TabOrder(1);
    }

    void MouseEvent(MouseEv event, unsigned keys, int delta) override
    {
        std::string line = std::string(nameOf(event)) + " " + std::to_string(Toolkit().MouseX) + " " +
                           std::to_string(Toolkit().MouseY) + " keys " + std::to_string(keys);
        if (event == MouseEv::Wheel)
            line += " delta " + std::to_string(delta);
        Say(line);
        if (event == MouseEv::LeftDown)
            CaptureTake();
        else if (event == MouseEv::LeftUp)
            CaptureRelease();
        else if (event == MouseEv::Move)
            Cursor(cursorText);
    }

    bool KeyEvent(KeyEv event, uint32_t key) override
    {
        constexpr const char* names[] = {"char ", "key down ", "key up "};
        Say(names[static_cast<unsigned>(event)] + std::to_string(key));
        if (event == KeyEv::Char && key == controlC)
            Copy();
        else if (event == KeyEv::Char && key == controlV)
            Paste();
        return ctrlWindow::KeyEvent(event, key);
    }

    void Focused(bool on) override
    {
        Say(on ? "focus" : "no focus");
        ctrlWindow::Focused(on);
        Invalidate(true);
    }

private:
    void Say(const std::string& line)
    {
        galleryTell("input: " + line);
        Lines.push_back(line);
        if (Lines.size() > linesMost)
            Lines.erase(Lines.begin());
        Invalidate(true);
    }

    void Copy()
    {
        std::string all;
        for (const std::string& line : Lines)
            all += line + "\n";
        const bool done = Toolkit().Windows().SetClipboardText(Root()->Handle(), all);
        Say(done ? "copied" : "not copied");
    }

    void Paste()
    {
        const auto text = Toolkit().Windows().ClipboardText(Root()->Handle());
        Say(text ? "pasted " + std::to_string(text->size()) + " " + text->substr(0, 40) : "nothing to paste");
    }

    void PaintSheet() override
    {
        if (HasFocus()) {
            Colour(theme::Highlight);
            PenWidth(1.0F);
            Rectangle(2.5F, 2.5F, static_cast<float>(Width()) - 2.5F, static_cast<float>(Height()) - 2.5F);
        }
        rect line = PaintRect;
        line.Left += 8;
        line.Top += 2;
        for (const std::string& text : Lines) {
            line.Bottom = line.Top + 18;
            Colour(theme::FaceText);
            Text(line, text.c_str(), textLeft | textTrim);
            line.Top = line.Bottom;
        }
    }

    std::vector<std::string> Lines;
};

}  // namespace

ctrlWindow* galleryInput(ctrlWindow* parent, int32_t x, int32_t y)
{
    return new inputSheet(parent, x, y);
}
