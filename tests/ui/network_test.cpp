// Two copies of the program on one machine: one has the receiver and serves it, the other watches.
#include "tests/link/native/machine.h"
#include "tests/ui/host.h"
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"
#include "toolkit/ctrlEdit.h"
#include "tools/simulator/simUbxKeys.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char modelName[] = "u-blox Neo-M9N";
constexpr int32_t below = 500;  // where the second form stands, clear of the first

class networkUi : public uiTest
{
protected:
    void TearDown() override
    {
        Second.Close();
        uiTest::TearDown();
    }

    void Serve(uint16_t port)
    {
        Device.emplace(simModel::NeoM9N);
        Program.OpenAt(Device->Port());
        Program.SetServerPort(port);
        ASSERT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << Program.Status();
        ASSERT_TRUE(clickUntil(Program.Form->ServerButton,
                               [&] { return Program.Form->Server.ListeningPort() == port; }));
    }
    void Watch(uint16_t port)
    {
        Second.OpenClient("127.0.0.1:" + std::to_string(port));
        ASSERT_TRUE(comes([&] { return Second.Shows(modelName, "UBX"); })) << Second.Status();
        Second.Form->Move(0, below, Second.Form->Width(), Second.Form->Height());
    }
    std::string Clients() const { return Program.Form->ClientsLabel->Name(); }
    std::string Connection() const { return Second.Form->ConnectButton->Name(); }
    bool SecondIsIdle()
    {
        const thrSpinHold hold(Second.Form->Comm.Lock);
        const gnssUBX* ubx = Second.Form->Comm.UBX.get();
        return ubx && ubx->ConfigState == gnssUBX::State::Idle && ubx->PPSWeek != 0 && ubx->PendingGNSS == 0;
    }

    // The row of controls that a role has.
    static std::vector<std::string> Row(const program& one)
    {
        std::vector<std::string> shown;
        const openForm* form = one.Form;
        const std::pair<const char*, const ctrlWindow*> controls[] = {
            {"port", form->PortBox},
            {"server", form->ServerButton},
            {"server port", form->ServerPortEdit},
            {"clients", form->ClientsLabel},
            {"address", form->AddressEdit},
            {"connect", form->ConnectButton},
        };
        for (const auto& [name, control] : controls) {
            if (control->HasState(stateVisible))
                shown.emplace_back(name);
        }
        return shown;
    }

    program Second;
    boxReader Boxes;
};

TEST_F(networkUi, EachRoleShowsItsOwnControlsAndAServerThatIsWantedComesBack)
{
    const uint16_t port = freePort();
    ASSERT_NO_FATAL_FAILURE(Serve(port));
    EXPECT_THAT(Row(Program), ElementsAre("port", "server", "server port", "clients"));
    EXPECT_EQ(Clients(), "No clients");

    Program.ChooseRole("Network");
    EXPECT_THAT(Row(Program), ElementsAre("address", "connect"));
    EXPECT_EQ(Program.Form->Page, nullptr);
    EXPECT_EQ(Program.Protocol(), "---");
    EXPECT_TRUE(Program.Form->ServerOnSetting.Value);
    EXPECT_EQ(Program.Form->ConnectButton->Name(), "Connect") << "there is no address";
    EXPECT_FALSE(Program.Form->ConnectButton->Checked());
    EXPECT_TRUE(comes([&] { return Program.Form->Server.ListeningPort() == 0; }));

    Program.ChooseRole("Serial port");
    EXPECT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << Program.Status();
    EXPECT_TRUE(comes([&] { return Program.Form->Server.ListeningPort() == port; }));
    EXPECT_THAT(Boxes.Titles(), IsEmpty());
}

TEST_F(networkUi, TheRoleIsChosenWithTheMouse)
{
    Program.Open();
    ASSERT_TRUE(chooseRow(Program.Form->RoleBox, 1));
    EXPECT_EQ(Program.Form->RoleBox->Name(), "Network");
    EXPECT_THAT(Row(Program), ElementsAre("address", "connect"));
}

TEST_F(networkUi, ClientsAreCounted)
{
    const uint16_t port = freePort();
    ASSERT_NO_FATAL_FAILURE(Serve(port));
    EXPECT_FALSE(Program.Form->PortBox->IsEnabled());
    EXPECT_FALSE(Program.Form->ServerPortEdit->IsEnabled());
    ASSERT_NO_FATAL_FAILURE(Watch(port));
    EXPECT_TRUE(comes([&] { return Clients() == "1 client"; })) << Clients();
    {
        program third;
        third.OpenClient("127.0.0.1:" + std::to_string(port));
        EXPECT_TRUE(comes([&] { return Clients() == "2 clients"; })) << Clients();
    }
    EXPECT_TRUE(comes([&] { return Clients() == "1 client"; })) << Clients();

    ASSERT_TRUE(
        clickUntil(Program.Form->ServerButton, [&] { return !Program.Form->ServerButton->Checked(); }));
    EXPECT_EQ(Clients(), "");
    EXPECT_TRUE(Program.Form->PortBox->IsEnabled());
    EXPECT_TRUE(comes([&] { return Second.Form->Page == nullptr && Connection() == "Connecting"; }));
    EXPECT_TRUE(Program.Form->Page) << "the receiver's own page stays";
    EXPECT_THAT(Boxes.Titles(), IsEmpty());
}

TEST_F(networkUi, AClientConfiguresTheReceiverThroughTheServer)
{
    const uint16_t port = freePort();
    ASSERT_NO_FATAL_FAILURE(Serve(port));
    ASSERT_NO_FATAL_FAILURE(Watch(port));
    ASSERT_TRUE(comes([&] { return SecondIsIdle(); }));
    ctrlButton* box = ubxParts::BoxOf(Second.Form->Page, "GLONASS L1");
    ASSERT_TRUE(comes([&] { return box->Checked(); }));
    Toolkit().Windows().Raise(Second.Form->Handle());
    // A slow screen has not raised it yet when the mouse comes.
    if (road::BearsHaste())
        ASSERT_TRUE(clickOn(box));
    else
        program::Press(box);
    EXPECT_TRUE(comes([&] { return Device->Key(simUbxKey::GloL1) == 0; }));
    EXPECT_TRUE(comes([&] { return SecondIsIdle() && !box->Checked(); }));
    EXPECT_FALSE(ubxParts::RateOf(Second.Form->Page)->HasStyle(styleFocusable))
        << "the pulse is not a client's";
    EXPECT_TRUE(ubxParts::RateOf(Program.Form->Page)->HasStyle(styleFocusable));
}

TEST_F(networkUi, AServerThatReturnsIsFoundAgainWithoutAWord)
{
    const uint16_t port = freePort();
    ASSERT_NO_FATAL_FAILURE(Serve(port));
    ASSERT_NO_FATAL_FAILURE(Watch(port));
    EXPECT_EQ(Connection(), "Disconnect");
    EXPECT_FALSE(Second.Form->AddressEdit->IsEnabled());

    Program.Close();
    ASSERT_TRUE(comes([&] { return Connection() == "Connecting"; }));
    EXPECT_EQ(Second.Form->Page, nullptr);
    EXPECT_EQ(Second.Protocol(), "---");
    EXPECT_TRUE(Second.Form->ConnectButton->Checked());

    // What was on comes on again, at its port.
    Program.OpenAt(Device->Port());
    EXPECT_TRUE(Program.Form->ServerButton->Checked());
    ASSERT_TRUE(comes([&] { return Program.Form->Server.ListeningPort() == port; })) << Program.Status();
    const int64_t back = msOf([&] { EXPECT_TRUE(comes([&] { return Connection() == "Disconnect"; })); });
    EXPECT_LE(back, 3900) << "one attempt, not two";
    EXPECT_TRUE(comes([&] { return Second.Shows(modelName, "UBX"); })) << Second.Status();
    EXPECT_THAT(Boxes.Titles(), IsEmpty());
}

TEST_F(networkUi, AnAttemptIsRepeatedEveryTwoSeconds)
{
    const uint16_t port = freePort();
    Second.OpenClient("127.0.0.1:" + std::to_string(port));
    // The first attempt finds nobody, which ends the run; the next comes two seconds later.
    const uint32_t first = Second.Form->RunNumber;
    ASSERT_TRUE(comes([&] { return Second.Form->RunNumber != first; }));
    const otherHost server(port);
    ASSERT_EQ(server.Port(), port);
    const int64_t waited = msOf([&] { EXPECT_TRUE(comes([&] { return Connection() == "Disconnect"; })); });
    EXPECT_GE(waited, 1500);
    EXPECT_LE(waited, 3900) << "the next attempt, not the one after";
    EXPECT_THAT(Boxes.Titles(), IsEmpty());
}

TEST_F(networkUi, AServerWhosePortIsTakenSaysSoAndLetsGo)
{
    const otherHost taken;
    Device.emplace(simModel::NeoM9N);
    Program.OpenAt(Device->Port());
    Program.SetServerPort(taken.Port());
    ASSERT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << Program.Status();
    ASSERT_TRUE(clickUntil(Program.Form->ServerButton, [&] { return !Boxes.Titles().empty(); }));
    EXPECT_THAT(Boxes.Titles(), ElementsAre("Connection failure"));
    EXPECT_FALSE(Program.Form->ServerButton->Checked());
    EXPECT_FALSE(Program.Form->ServerOnSetting.Value);
    EXPECT_TRUE(Program.Form->PortBox->IsEnabled());
    EXPECT_TRUE(Program.Form->ServerPortEdit->IsEnabled());
    EXPECT_EQ(Clients(), "");
    EXPECT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << "the page goes on";
}

TEST_F(networkUi, AStrangersGreetingEndsTheConnectionWithAWord)
{
    const std::string text = "Somebody else v1";
    std::string greeting = {'\x01', '\0', '\xFF', '\xFF', static_cast<char>(text.size()), '\0', '\0', '\0'};
    greeting += text;
    const otherHost stranger(0, greeting);
    Second.OpenClient("127.0.0.1:" + std::to_string(stranger.Port()));
    EXPECT_TRUE(comes([&] { return !Boxes.Titles().empty(); }));
    EXPECT_THAT(Boxes.Titles(), ElementsAre("Connection failure"));
    EXPECT_TRUE(comes([&] { return Connection() == "Connect"; })) << Connection();
    EXPECT_FALSE(Second.Form->ConnectButton->Checked());
    EXPECT_TRUE(Second.Form->AddressEdit->IsEnabled());
}

TEST_F(networkUi, AnAddressWithoutAPortIsThatOfTheUsualServer)
{
    const otherHost usual(pktPort);
    if (usual.Port() == 0)
        GTEST_SKIP() << "somebody has the usual port";
    Second.Store("Server port", int32_t{freePort()});
    Second.OpenClient("127.0.0.1");
    EXPECT_TRUE(comes([&] { return Connection() == "Disconnect"; })) << Connection();
}

TEST_F(networkUi, ConnectLetsGoAtOnceWithoutAnAddress)
{
    Second.OpenClient("");
    EXPECT_EQ(Connection(), "Connect");
    unsigned presses = 0;
    Second.Form->ConnectButton->OnClick = [&presses, handler = Second.Form->ConnectButton->OnClick] {
        ++presses;
        handler();
    };
    ASSERT_TRUE(clickUntil(Second.Form->ConnectButton, [&] { return presses == 1; }));
    EXPECT_FALSE(Second.Form->ConnectButton->Checked());
    EXPECT_EQ(Connection(), "Connect");
    EXPECT_TRUE(Second.Form->AddressEdit->IsEnabled());
}

TEST_F(networkUi, AnAddressIsTypedAndTheConnectionTakenBack)
{
    const otherHost server;
    Second.OpenClient("");
    ASSERT_TRUE(clickUntil(Second.Form->AddressEdit, [&] { return Second.Form->AddressEdit->HasFocus(); }));
    typeText("127.0.0.1:" + std::to_string(server.Port()));
    pressKey(keyEnter);
    EXPECT_TRUE(comes([&] { return Connection() == "Disconnect"; })) << Connection();
    ASSERT_TRUE(clickUntil(Second.Form->ConnectButton, [&] { return Connection() == "Connect"; }))
        << Connection();
    EXPECT_TRUE(Second.Form->AddressEdit->IsEnabled());
    EXPECT_THAT(Boxes.Titles(), IsEmpty());
}

}  // namespace
