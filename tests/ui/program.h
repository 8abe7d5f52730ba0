// One running copy of the program: its main form with settings of its own, and a user in front of it.
//
// All on the thread of the test, which is the interface thread.
#pragma once

#include "forms/gnssUI.h"
#include "foundations/settings/settingsReg.h"
#include "tests/forms/openForm.h"
#include "tests/ui/road.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// Runs the interface until something has come true; false when it has not within the limit.
template <class Condition>
bool comes(const Condition& isSo, std::chrono::milliseconds limit = std::chrono::seconds(10));

// Handles what waits, and then lets other threads run for a moment.
void letPass();

class program
{
public:
    program();
    ~program();
    program(const program&) = delete;
    program& operator=(const program&) = delete;

    // Settings that the next form finds.
    void Store(const char* name, const std::string& text);
    void Store(const char* name, int32_t number);
    void Store(const char* name, bool value);

    // As the entry makes the form and starts it.
    void Open();

    // The same, with a serial port chosen.
    void OpenAt(const std::string& port);

    // The same, as the client of a server.
    void OpenClient(const std::string& address);

    // As the end of the program.
    void Close();

    // What the user does.
    void ChoosePort(const std::string& port);
    void ChooseRole(const std::string& role);
    static void Press(ctrlButton* button);  // as a click does
    void SetServerPort(uint16_t port);

    std::string Status() const { return Form->StatusLabel->Name(); }
    std::string Protocol() const { return Form->ProtocolLabel->Name(); }

    // What is shown of this model and protocol, and a page.
    bool Shows(std::string_view model, std::string_view protocol) const;

    openForm* Form = nullptr;

private:
    const std::string Root;
};

// Answers message boxes as a user who closes each at once.
class boxReader
{
public:
    boxReader();
    ~boxReader();
    boxReader(const boxReader&) = delete;
    boxReader& operator=(const boxReader&) = delete;

    const std::vector<std::string>& Titles() const { return Seen; }

    static bool IsOpen();

    // What the user does, once, instead of closing the next box.
    std::function<void()> Instead;

private:
    void Look();

    std::vector<std::string> Seen;
    const std::shared_ptr<bool> Alive;
    std::jthread Thread;
};

// Where a control is on the screen.
windowArea areaOnScreen(const ctrlWindow* control);

// The user's hand. False when the control is not to be seen.
bool clickOn(const ctrlWindow* control);
bool chooseRow(const ctrlComboBox* box, size_t row);  // opens its list, and runs the interface meanwhile
bool clickAt(const ctrlWindow* control, int32_t x, int32_t y);  // in it

// Does what is to have that effect. Wine on a busy machine loses a click now and then, and gets another; a
// desktop gets one.
template <class Action, class Condition>
bool doUntil(const Action& act, const Condition& isSo);
template <class Condition>
bool clickUntil(const ctrlWindow* control, const Condition& isSo);

void typeText(std::string_view text);
void pressKey(uint32_t key);

template <class Condition>
bool comes(const Condition& isSo, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        letPass();
    }
    return true;
}

template <class Action, class Condition>
bool doUntil(const Action& act, const Condition& isSo)
{
    const int attempts = road::BearsHaste() ? 1 : 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (act() && comes(isSo))
            return true;
    }
    return false;
}

template <class Condition>
bool clickUntil(const ctrlWindow* control, const Condition& isSo)
{
    return doUntil([control] { return clickOn(control); }, isSo);
}
