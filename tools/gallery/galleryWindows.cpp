// A popup, a modal form, and what the frame can do.
#include "tools/gallery/gallery.h"

#include <functional>

namespace {

// A tile that does something when it is clicked.
class galleryAction final : public galleryTile
{
public:
    galleryAction(ctrlWindow* parent, int32_t x, int32_t y, const char* name, std::function<void()> action)
        : galleryTile(parent, x, y, 110, 26, theme::Face, name)
    {
        BorderStyle(ctrlBorder::Raised);
        StyleSet(styleFocusable);
        OnNotify = [act = std::move(action)](unsigned code) {
            if (code == notifyClick)
                act();
            return false;
        };
    }

    void MouseEvent(MouseEv event, unsigned keys, int delta) override
    {
        if (event == MouseEv::Move) {
            Cursor(cursorHand);
            return;
        }
        galleryTile::MouseEvent(event, keys, delta);
    }

    void Focused(bool on) override
    {
        galleryTell(Name() + (on ? ": focus" : ": no focus"));
        galleryTile::Focused(on);
    }

    bool KeyEvent(KeyEv event, uint32_t key) override
    {
        if (event != KeyEv::Down || (key != keySpace && key != keyEnter))
            return galleryTile::KeyEvent(event, key);
        Notify(notifyClick);
        return true;
    }
};

// Closes when something outside of it is pressed.
class popupWindow final : public ctrlWindow
{
public:
    popupWindow(ctrlWindow* parent, int32_t x, int32_t y)
        : ctrlWindow(parent, x, y, 160, 90, ctrlFloating | ctrlTool | ctrlCaptureKeep | ctrlKeep)
    {
        SetBackColour(theme::ListBackground);
        BorderStyle(ctrlBorder::Flat);
        new galleryTile(this, 10, 10, 140, 30, theme::SelectionBackground, "popup");
    }

    void Open()
    {
        Show();
        CaptureTake();
        galleryTell(CaptureHeld() ? "popup open" : "popup without capture");
    }

    void MouseEvent(MouseEv event, unsigned keys, int delta) override
    {
        const int32_t x = Toolkit().MouseX;
        const int32_t y = Toolkit().MouseY;
        const bool inside =
            x >= 0 && y >= 0 && x < static_cast<int32_t>(Width()) && y < static_cast<int32_t>(Height());
        if (event == MouseEv::Move) {
            Cursor(inside ? cursorHand : cursorArrow);
            return;
        }
        if (event == MouseEv::LeftDown && !inside) {
            galleryTell("popup closed by a press outside");
            Hide();
            return;
        }
        if (event == MouseEv::LeftDown)
            galleryTell("popup pressed");
        ctrlWindow::MouseEvent(event, keys, delta);
    }
};

void runModal(ctrlWindow* parent, int depth)
{
    auto* form = new ctrlWindow(parent, 0, 0, 300, 140, ctrlFloating | ctrlFramed);
    form->FrameStyle(frameClosable, 0);
    form->Caption(depth == 0 ? "Modal" : "Modal in modal");
    auto* done = new galleryAction(form, 20, 50, "Done", [form] { form->ModalResult(1); });
    done->TabOrder(1);
    auto* deeper = new galleryAction(form, 160, 50, "Deeper", [form, depth] { runModal(form, depth + 1); });
    deeper->TabOrder(2);
    form->Centre();
    galleryTell("modal " + std::to_string(depth) + " open");
    const int32_t result = form->Modal(true);
    galleryTell("modal " + std::to_string(depth) + " ended " + std::to_string(result));
}

class windowSheet final : public gallerySheet
{
public:
    windowSheet(ctrlWindow* parent, int32_t x, int32_t y) : gallerySheet(parent, x, y, 490, 140, "Windows")
    {
        ctrlWindow* root = Root();
        Popup = new popupWindow(root, 0, 0);
        new galleryAction(this, 10, 30, "Popup", [this] { OpenPopup(); });
        new galleryAction(this, 130, 30, "Modal form", [root] { runModal(root, 0); });
        new galleryAction(this, 250, 30, "Centre", [root] { root->Centre(); });
        new galleryAction(this, 370, 30, "Caption",
                          [root] { root->Caption("Gallery \xC2\xB5 \xE2\x82\xAC"); });
        new galleryAction(this, 10, 66, "Close", [root] { root->CloseRequest(); });
        new galleryAction(this, 130, 66, "Cursors", [this] { NextCursor(); });
    }

private:
    void OpenPopup()
    {
        int32_t x = 10;
        int32_t y = 60;
        windowArea area;
        ScreenPoint(x, y, area);
        Popup->Move(x, y, Popup->Width(), Popup->Height());
        Popup->Open();
    }

    void NextCursor()
    {
        Shown = static_cast<uint8_t>(Shown % cursorSizeRising + 1);
        Cursor(Shown);
        galleryTell("cursor " + std::to_string(Shown));
    }

    popupWindow* Popup = nullptr;
    uint8_t Shown = 0;
};

}  // namespace

ctrlWindow* galleryWindows(ctrlWindow* parent, int32_t x, int32_t y)
{
    return new windowSheet(parent, x, y);
}
