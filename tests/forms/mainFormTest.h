// The main form on the fake platform: a port for a receiver, a network for peers, and settings.
#pragma once

#include "forms/gnssUI.h"
#include "tests/forms/openForm.h"
#include "tests/gnss/nmeaSentence.h"
#include "tests/link/runningClock.h"
#include "tests/toolkit/toolkitTest.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

class mainFormTest : public toolkitTest
{
protected:
    static constexpr char Root[] = "Software\\Vintermark\\Skyreckoning";

    void SetUp() override
    {
        toolkitTest::SetUp();
        Clock.emplace();
        fakePort("COM5");
        commDevice device;
        device.Port = {true, true, "COM5"};
        device.Description = {true, true, "A receiver"};
        device.FriendlyName = {true, true, "A receiver (COM5)"};
        fakeDevices(0, {device});
    }
    void TearDown() override
    {
        delete Form;
        Toolkit().PumpPending();
        Clock.reset();
        toolkitTest::TearDown();
    }

    static void Store(const char* name, const std::string& text)
    {
        settingsReg store;
        store.Root = Root;
        store.SetText(name, &text, 1);
    }

    // As the entry makes it.
    bool Open(uint32_t flags = formAbout | formHelp)
    {
        Form = new openForm(nullptr, Root, "", "", flags);
        Form->OnNotify = [this](unsigned code) {
            Codes.push_back(code);
            return true;
        };
        Form->Show();
        Toolkit().PumpPending();
        const bool started = Form->Start();
        Toolkit().PumpPending();
        return started;
    }
    void OpenAtPort()
    {
        Store("Serial port", "COM5");
        ASSERT_TRUE(Open());
    }

    template <class Condition>
    static bool Comes(const Condition& isSo)
    {
        return await([&] {
            Toolkit().PumpPending();
            return isSo();
        });
    }
    bool Shows(const std::string& status)
    {
        return Comes([&] { return Form->StatusLabel->Name() == status; });
    }

    // A receiver that says this until the form has seen it, and has laid out and painted all.
    bool Hear(const std::string& bytes, const std::string& protocol)
    {
        const bool isSeen = Comes([&] {
            if (Form->ProtocolLabel->Name() == protocol && Form->Page)
                return true;
            fakePortReceive("COM5", bytes);
            return false;
        });
        // Another thread may have marked something, and be about to ask for its paint.
        return isSeen && Comes([&] { return !Form->HasState(stateDirty | stateDirtyBelow | stateLayout); });
    }

    // Whether a receiver that speaks NMEA has told all that it was to tell: while the search goes on the line
    // may lose something, behind it what was said last is heard last.
    bool HasHeardAll() const
    {
        const auto isSo = [this](const auto& condition) {
            return Comes([&] {
                const thrSpinHold hold(Form->Comm.Lock);
                return condition(Form->Comm);
            });
        };
        if (!isSo([](const gnssComm& link) { return !link.TSIP && !link.UBX; }))
            return false;
        fakePortReceive("COM5",
                        sentence("GPGGA,123520.00,4723.5000,N,00832.0000,E,1,08,0.9,12.0,M,47.0,M,,"));
        return isSo([](const gnssComm& link) { return link.NMEA->Altitude == 12.0; });
    }

    // As a click of the mouse does.
    static void Press(ctrlButton* button)
    {
        button->Checked(!button->Checked());
        button->Click();
    }

    // Presses "Reset". What the decoder sends then is taken where it leaves: the time in which it goes out is
    // not real here.
    std::string SentByReset() const
    {
        std::string sent;
        {
            const thrSpinHold hold(Form->Comm.Lock);
            Form->Comm.Decoder()->OnSend = [&sent](const uint8_t* bytes, size_t count) {
                sent.append(bytes, bytes + count);
            };
        }
        Form->ResetButton->Click();
        Toolkit().PumpPending();
        return sent;
    }

    static std::string Name(const ctrlWindow* control) { return control->Name(); }
    void Choose(const std::string& role)
    {
        Form->RoleBox->ComboSelect(role, 0);
        Form->RoleBox->OnChange();
        Toolkit().PumpPending();
    }

    // Where a receiver is.
    const std::string Position =
        sentence("GPGGA,123519.00,4723.5000,N,00832.0000,E,1,08,0.9,545.4,M,47.0,M,,");
    std::optional<runningClock> Clock;
    openForm* Form = nullptr;
    std::vector<unsigned> Codes;
};
