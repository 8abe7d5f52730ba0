// The program's message box: a title, a text and a row of buttons, of which the user presses one.
//
// Any thread asks with Execute; the box itself lives on the interface thread. It stays within the work area
// of its monitor: a text that is too wide is broken, and of one that is too high the end is left out.
#pragma once

#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlForm.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

class uiMessage final : public ctrlForm
{
public:
    enum class Buttons : uint8_t {
        OK = 0,
        Yes = 1,
        No = 2,
        Cancel = 3,
        Abort = 4,
        Retry = 5,
        Ignore = 6,
        None = 7,  // closed without a button, or never shown
    };

    // Asks, and gives the button that was pressed. `parent` owns the box, or is null; a minimised one is
    // restored first. The text is UTF-8 in lines, of which the first 64 KiB are looked at. No buttons are one
    // OK.
    //
    // On the interface thread it returns when the user has answered. On another one it does so with `wait`,
    // and the interface thread must not wait for that thread meanwhile; without `wait` it gives None at once,
    // and the box comes later. None also when the system refuses a window, and when the parent is gone before
    // the interface thread comes to it.
    template <class window>
    static Buttons Execute(window* parent, const std::string& title, const std::string& text,
                           const std::vector<Buttons>& buttons = {}, bool wait = true)
    {
        iconSource icon = nullptr;
        if constexpr (std::is_convertible_v<window*, ctrlForm*>)
            icon = [](const ctrlWindow& form) { return static_cast<const ctrlForm&>(form).Icon(); };
        return Ask(parent, icon, {title, text, buttons}, wait);
    }

    // The file with other labels for the buttons: a text store (foundations/settings) whose section
    // "uiMessage" has the default labels as its keys. Empty, as at first, for the defaults, which also stand
    // where the file or an entry is missing. It is read for the next box. Interface thread.
    static void LabelFile(const std::u16string& path);

    void CloseRequest() override;
    void Paint() override;
    void Layout() override;

private:
    struct question {
        std::string Title;
        std::string Text;
        std::vector<Buttons> Choice;
    };
    struct record;
    using iconSource = iconId (*)(const ctrlWindow& form);

    uiMessage(ctrlWindow* parent, const question& asked);

    static Buttons Ask(ctrlWindow* parent, iconSource icon, question asked, bool wait);
    static void Answer(record& asked);
    static Buttons Run(ctrlWindow* parent, iconId icon, const question& asked);

    void AddButton(Buttons label);
    void ShowOwner() const;
    windowExtent Room() const;
    std::string Fitted();
    int32_t ButtonWidth(int32_t room) const;
    void Resized(int32_t width, int32_t height);

    std::vector<ctrlButton*> Row;  // in the order given
    std::string Message;
};
