// The main form with receivers at its port and peers in its network.
#include "forms/gnssUI.h"
#include "tests/forms/openForm.h"
#include "tests/gnss/nmeaSentence.h"
#include "tests/gnss/ubxFrame.h"
#include "tests/link/runningClock.h"
#include "tests/toolkit/toolkitTest.h"
#include "toolkit/ctrlButton.h"
#include "toolkit/ctrlComboBox.h"
#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlLabel.h"

#include <cstring>
#include <optional>

using testing::HasSubstr;

namespace {

constexpr char root[] = "Software\\Vintermark\\Skyreckoning";
constexpr uint16_t otherPort = 4100;

std::string textOf(const ubxBytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

const std::string position = sentence("GPGGA,123519.00,4723.5000,N,00832.0000,E,1,08,0.9,545.4,M,47.0,M,,");
// What an NVS receiver tells of itself.
const std::string nvsVersion = sentence("ALVER,NVS,CSM54,0425");
const std::string versionReply =
    textOf(ubxFrame(0x0A, 0x04).text("EXT CORE 3.01", 30).text("00080000", 10).text("PROTVER=18.00", 30));

class mainFormTest : public toolkitTest
{
protected:
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
        store.Root = root;
        store.SetText(name, &text, 1);
    }

    // As the entry makes it.
    bool Open(uint32_t flags = formAbout | formHelp)
    {
        Form = new openForm(nullptr, root, "", "", flags);
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

    // A receiver that says where it is until the form has seen it.
    bool Hear(const std::string& bytes, const std::string& protocol)
    {
        return Comes([&] {
            if (Form->ProtocolLabel->Name() == protocol && Form->Page)
                return true;
            fakePortReceive("COM5", bytes);
            return false;
        });
    }

    // As a click of the mouse does.
    static void Press(ctrlButton* button)
    {
        button->Checked(!button->Checked());
        button->Click();
    }

    std::string Name(const ctrlWindow* control) const { return control->Name(); }
    void Choose(const std::string& role)
    {
        Form->RoleBox->ComboSelect(role, 0);
        Form->RoleBox->OnChange();
        Toolkit().PumpPending();
    }

    static bool CloseBox(const std::string& title)
    {
        for (const ctrlWindow* window : Toolkit().WindowList()) {
            if (window->Name() != title)
                continue;
            fakeUserCloses(window->Handle());
            return true;
        }
        return false;
    }

    // The titles of the boxes that are open.
    static std::vector<std::string> Boxes()
    {
        std::vector<std::string> titles;
        for (const windowId window : fakeWindows()) {
            const auto found = fakeWindowOf(window);
            if (found && found->Visible && found->Title != "Skyreckoning")
                titles.push_back(found->Title);
        }
        return titles;
    }

    std::optional<runningClock> Clock;
    openForm* Form = nullptr;
    std::vector<unsigned> Codes;
};

TEST_F(mainFormTest, WithNothingStoredItWaitsForAPortToBeChosen)
{
    EXPECT_FALSE(Open());
    EXPECT_EQ(Name(Form), "Skyreckoning");
    EXPECT_EQ(Name(Form->RoleBox), "Serial port");
    EXPECT_EQ(Name(Form->PortBox), "");
    EXPECT_EQ(Name(Form->StatusLabel), "");
    EXPECT_EQ(Name(Form->ProtocolLabel), "---");
    EXPECT_EQ(Form->ServerPortEdit->ValueGetI(), 4003);
    EXPECT_FALSE(Form->ServerButton->Checked());
    EXPECT_EQ(Form->RoleBox->Rows, (std::vector<std::string>{"Serial port", "Network"}));
}

TEST_F(mainFormTest, AReceiverIsRecognisedAndItsPageShown)
{
    OpenAtPort();
    EXPECT_TRUE(Name(Form->StatusLabel).starts_with("Waiting for device reply")) << Name(Form->StatusLabel);
    ASSERT_TRUE(Hear(position, "NMEA"));
    EXPECT_TRUE(Form->Page->HasState(stateVisible));
    // What decided it may have come before there was a page to tell it.
    EXPECT_TRUE(Comes([&] {
        fakePortReceive("COM5", position);
        return Name(Form->StatusLabel).starts_with("Model: ");
    }));
    EXPECT_THAT(Codes, testing::Contains(notifyDetected));
    EXPECT_THAT(Codes, testing::Contains(notifyNewData));
    EXPECT_EQ(Name(Form->ResetButton), "Reset");
}

TEST_F(mainFormTest, TheProbedSettingIsToldWhileNobodyAnswers)
{
    OpenAtPort();
    EXPECT_TRUE(Shows("Waiting for device reply (9600O1 8 bits)..."));
    EXPECT_TRUE(Shows("Waiting for device reply (115200N1 8 bits)..."));
}

TEST_F(mainFormTest, AReceiverThatTalksNMEAAndIsAUBloxIsRecognisedAgain)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    ASSERT_TRUE(Hear(versionReply + position + versionReply, "UBX"));
    EXPECT_TRUE(Form->Comm.UBXOnly);
}

TEST_F(mainFormTest, ResetOfAnUnknownModelSendsNothingAndLooksAnew)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    const std::string before = fakePortSent("COM5");
    Form->ResetButton->Click();
    Toolkit().PumpPending();
    EXPECT_EQ(Form->Page, nullptr);
    EXPECT_EQ(Name(Form->ProtocolLabel), "---");
    EXPECT_TRUE(Comes([&] { return Name(Form->StatusLabel).starts_with("Waiting for device reply"); }));
    EXPECT_TRUE(Hear(position, "NMEA"));
}

TEST_F(mainFormTest, ResetReachesAReceiverThatIsSilent)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    // The search may have let go of a part of what it said before.
    fakePortReceive("COM5", nvsVersion);
    ASSERT_TRUE(Comes([&] {
        const thrSpinHold hold(Form->Comm.Lock);
        return Form->Comm.Decoder()->Model == 2;
    }));
    // What it sends is taken where it leaves: the time in which it goes out is not real here.
    std::string sent;
    {
        const thrSpinHold hold(Form->Comm.Lock);
        Form->Comm.Decoder()->OnSend = [&sent](const uint8_t* bytes, size_t count) {
            sent.append(bytes, bytes + count);
        };
    }
    Form->ResetButton->Click();
    Toolkit().PumpPending();
    EXPECT_EQ(sent, "$PORST,F*20\r\n");
}

TEST_F(mainFormTest, WhatAStoppedRunPostedDoesNothing)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    fakePortReceive("COM5", position);
    ASSERT_TRUE(await([] { return fakeQueueLength() > 0; }));
    Form->RoleBox->ComboSelect("Network", 0);
    Form->AddressEdit->EditText("");
    Form->RoleBox->OnChange();
    Toolkit().PumpPending();
    EXPECT_EQ(Form->Page, nullptr);
    EXPECT_EQ(Name(Form->StatusLabel), "Waiting for device reply...") << "and not of a model";
}

// --- The server

TEST_F(mainFormTest, TheServerRunsWhileItsButtonIsPressedAndCountsItsClients)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    Press(Form->ServerButton);
    EXPECT_TRUE(Form->ServerButton->Checked());
    EXPECT_FALSE(Form->PortBox->IsEnabled());
    EXPECT_FALSE(Form->ServerPortEdit->IsEnabled());
    EXPECT_TRUE(Comes([&] { return Name(Form->ClientsLabel) == "No clients"; }));
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    const unsigned one = fakePeerConnect(Form->Server.ListeningPort());
    EXPECT_TRUE(Comes([&] { return Name(Form->ClientsLabel) == "1 client"; }));
    const unsigned two = fakePeerConnect(Form->Server.ListeningPort());
    EXPECT_TRUE(Comes([&] { return Name(Form->ClientsLabel) == "2 clients"; }));
    for (const unsigned peer : {one, two})
        EXPECT_TRUE(Comes([&] { return !fakePeerReceived(peer).empty(); }))
            << "greeted, and served from now on";
    fakePortReceive("COM5", position);
    for (const unsigned peer : {one, two})
        EXPECT_TRUE(Comes([&] { return fakePeerReceived(peer).find("GPGGA") != std::string::npos; }));
    fakePeerClose(one);
    EXPECT_TRUE(Comes([&] { return Name(Form->ClientsLabel) == "1 client"; }));
    Press(Form->ServerButton);
    EXPECT_EQ(Name(Form->ClientsLabel), "");
    EXPECT_TRUE(Form->PortBox->IsEnabled());
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() == 0; }));
    EXPECT_TRUE(Comes([&] { return fakePeerEnded(two); }));
}

TEST_F(mainFormTest, AServerThatIsWantedComesBackWithItsRole)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    Press(Form->ServerButton);
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    Choose("Network");
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() == 0; }));
    EXPECT_TRUE(Form->ServerOnSetting.Value);
    EXPECT_FALSE(Form->ServerButton->HasState(stateVisible));
    Choose("Serial port");
    EXPECT_TRUE(Form->ServerButton->Checked());
    ASSERT_TRUE(Hear(position, "NMEA"));
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
}

TEST_F(mainFormTest, AServerWhosePortIsTakenSaysSoAndLetsGo)
{
    OpenAtPort();
    fakeSocketFail("socketListen", 98);
    fakeSocketFail("socketBind", 98);
    std::atomic<bool> wasShown{false};
    {
        // The box runs a pump of its own, in which somebody closes it.
        const std::jthread reader([&wasShown](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                Toolkit().Post([&wasShown] { wasShown = wasShown || CloseBox("Connection failure"); }, true);
            }
        });
        Press(Form->ServerButton);
        EXPECT_TRUE(Comes([&] { return wasShown.load(); }));
    }
    Toolkit().PumpPending();
    EXPECT_TRUE(Comes([&] { return !Form->ServerButton->Checked(); }));
    EXPECT_FALSE(Form->ServerOnSetting.Value);
    EXPECT_TRUE(Form->PortBox->IsEnabled());
    EXPECT_EQ(Name(Form->ClientsLabel), "");
}

// --- The client

TEST_F(mainFormTest, WithoutAnAddressTheConnectButtonLetsGo)
{
    Store("Connection", "Network");
    EXPECT_TRUE(Open());
    EXPECT_FALSE(Form->ConnectButton->Checked());
    EXPECT_EQ(Name(Form->ConnectButton), "Connect");
    Press(Form->ConnectButton);
    EXPECT_FALSE(Form->ConnectButton->Checked());
    EXPECT_TRUE(Form->AddressEdit->IsEnabled());
    EXPECT_FALSE(Form->PortBox->HasState(stateVisible));
}

TEST_F(mainFormTest, ALostConnectionIsTriedAgainWithoutAWord)
{
    fakePeer(otherPort);
    Store("Connection", "Network");
    Store("TCP address", "127.0.0.1:4100");
    EXPECT_TRUE(Open());
    EXPECT_TRUE(Comes([&] { return Name(Form->ConnectButton) == "Disconnect"; }));
    EXPECT_FALSE(Form->AddressEdit->IsEnabled());
    const unsigned peer = fakePeerOf(otherPort);
    std::string body = "STRM" + position;
    std::string message = "GNSS";
    for (int shift = 0; shift < 32; shift += 8)
        message += static_cast<char>(body.size() >> shift);
    ASSERT_TRUE(Comes([&] {
        fakePeerSend(peer, message + body);
        return Form->Page != nullptr;
    }));
    EXPECT_EQ(Name(Form->ProtocolLabel), "NMEA");
    fakePeerClose(peer);
    EXPECT_TRUE(Comes([&] { return Form->Page == nullptr; }));
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(Comes([&] {
        return fakePeerOf(otherPort) != peer && Name(Form->ConnectButton) == "Disconnect";
    })) << Name(Form->ConnectButton);
    Press(Form->ConnectButton);
    EXPECT_TRUE(Comes([&] { return Name(Form->ConnectButton) == "Connect"; }));
    EXPECT_TRUE(Form->AddressEdit->IsEnabled());
}

// --- Frame and settings

TEST_F(mainFormTest, ItIsAsWideAsItsPageAndGrowsInHeightAlone)
{
    OpenAtPort();
    const auto empty = fakeWindowOf(Form->Handle());
    ASSERT_TRUE(Hear(position, "NMEA"));
    Toolkit().PumpPending();
    const auto filled = fakeWindowOf(Form->Handle());
    EXPECT_EQ(Form->Width(), Form->Page->LeastWidth() + 8);
    EXPECT_GE(Form->Height(), static_cast<uint32_t>(Form->Page->Y()) + Form->Page->LeastHeight() + 4);
    EXPECT_EQ(filled->Least.Width, filled->Most.Width);
    EXPECT_GT(filled->Least.Height, empty->Least.Height);
    EXPECT_EQ(empty->Least.Height, empty->Most.Height);
    EXPECT_EQ(Form->ResetButton->Y() + static_cast<int32_t>(Form->ResetButton->Height()),
              static_cast<int32_t>(Form->Page->Height()));
}

TEST_F(mainFormTest, APageThatComesBackFindsTheHeightThatItHad)
{
    constexpr uint32_t taller = 150;
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    const uint32_t least = Form->Height();
    Form->Move(Form->X(), Form->Y(), Form->Width(), least + taller);
    Toolkit().PumpPending();
    ASSERT_EQ(Form->Height(), least + taller);
    Form->RoleBox->ComboSelect("Network", 0);
    Form->RoleBox->OnChange();
    Toolkit().PumpPending();
    EXPECT_LT(Form->Height(), least);
    Form->RoleBox->ComboSelect("Serial port", 0);
    Form->RoleBox->OnChange();
    ASSERT_TRUE(Hear(position, "NMEA"));
    EXPECT_EQ(Form->Height(), least + taller);
    delete std::exchange(Form, nullptr);
    EXPECT_TRUE(Open());
    ASSERT_TRUE(Hear(position, "NMEA"));
    EXPECT_EQ(Form->Height(), least + taller) << "and so after a restart";
}

TEST_F(mainFormTest, APageThatComesPushesNothingOverTheEdgeOfTheScreen)
{
    OpenAtPort();
    windowArea work;
    ASSERT_TRUE(Toolkit().Windows().WorkAreaOf(Form->Handle(), work));
    fakeUserMoves(Form->Handle(), work.Right - static_cast<int32_t>(Form->Width()),
                  work.Bottom - static_cast<int32_t>(Form->Height()));
    Toolkit().PumpPending();
    ASSERT_TRUE(Hear(position, "NMEA"));
    EXPECT_EQ(Form->X() + static_cast<int32_t>(Form->Width()), work.Right);
    EXPECT_EQ(Form->Y() + static_cast<int32_t>(Form->Height()), work.Bottom);
    fakeUserMoves(Form->Handle(), work.Right - 40, 0);
    Toolkit().PumpPending();
    const int32_t x = Form->X();
    ASSERT_GT(x + static_cast<int32_t>(Form->Width()), work.Right);
    Form->InvalidateLayout();
    Toolkit().PumpPending();
    EXPECT_EQ(Form->X(), x) << "where the user puts it is his";
}

TEST_F(mainFormTest, SettingsAndPlaceAreKept)
{
    OpenAtPort();
    Form->ServerPortEdit->Value(4711);
    Form->AddressEdit->EditText("host:99");
    fakeUserMoves(Form->Handle(), 300, 200);
    Toolkit().PumpPending();
    const int32_t x = Form->X();
    delete std::exchange(Form, nullptr);
    EXPECT_TRUE(Open());
    EXPECT_EQ(Form->X(), x);
    EXPECT_EQ(Form->ServerPortEdit->ValueGetI(), 4711);
    EXPECT_EQ(Name(Form->AddressEdit), "host:99");
    EXPECT_EQ(Name(Form->PortBox), "COM5");
}

TEST_F(mainFormTest, ItsButtonsTellTheEntry)
{
    Open();
    Codes.clear();
    Form->AboutButton->Click();
    Form->HelpButton->Click();
    EXPECT_EQ(Codes, (std::vector<unsigned>{notifyAbout, notifyHelp}));
}

TEST_F(mainFormTest, ItMayBeClosedWhileBytesArrive)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(position, "NMEA"));
    Press(Form->ServerButton);
    std::jthread line([](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            fakePortReceive("COM5", position);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    fakePeerConnect(Form->Server.ListeningPort());
    const ctrlLife life(Form);
    fakeUserCloses(Form->Handle());
    EXPECT_TRUE(Comes([&] { return !life; }));
    Form = nullptr;
}

}  // namespace
