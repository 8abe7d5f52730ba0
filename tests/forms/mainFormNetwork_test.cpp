// The main form as a server, and as the client of one.
#include "tests/forms/mainFormTest.h"

namespace {

constexpr uint16_t otherPort = 4100;

class mainFormNetworkTest : public mainFormTest
{
protected:
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

    // Lets `act` run while somebody closes the box of a failure: it runs a pump of its own.
    template <class Act>
    void CloseFailureDuring(Act act)
    {
        std::atomic<bool> wasShown{false};
        {
            const std::jthread reader([&wasShown](const std::stop_token& stop) {
                while (!stop.stop_requested()) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(5));
                    Toolkit().Post([&wasShown] { wasShown = wasShown || CloseBox("Connection failure"); },
                                   true);
                }
            });
            act();
            EXPECT_TRUE(Comes([&] { return wasShown.load(); }));
        }
        Toolkit().PumpPending();
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
};

// --- The server

TEST_F(mainFormNetworkTest, TheServerRunsWhileItsButtonIsPressedAndCountsItsClients)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    ASSERT_TRUE(HasHeardAll());
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
    fakePortReceive("COM5", Position);
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

TEST_F(mainFormNetworkTest, AServerThatIsWantedComesBackWithItsRole)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    Press(Form->ServerButton);
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    Choose("Network");
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() == 0; }));
    EXPECT_TRUE(Form->ServerOnSetting.Value);
    EXPECT_FALSE(Form->ServerButton->HasState(stateVisible));
    Choose("Serial port");
    EXPECT_TRUE(Form->ServerButton->Checked());
    ASSERT_TRUE(Hear(Position, "NMEA"));
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
}

TEST_F(mainFormNetworkTest, AServerWhosePortIsTakenSaysSoAndLetsGo)
{
    OpenAtPort();
    fakeSocketFail("socketListen", 98);
    fakeSocketFail("socketBind", 98);
    CloseFailureDuring([&] { Press(Form->ServerButton); });
    EXPECT_TRUE(Comes([&] { return !Form->ServerButton->Checked(); }));
    EXPECT_FALSE(Form->ServerOnSetting.Value);
    EXPECT_TRUE(Form->PortBox->IsEnabled());
    EXPECT_EQ(Name(Form->ClientsLabel), "");
}

TEST_F(mainFormNetworkTest, AServerThatCanAcceptNobodyAnyMoreSaysSoAndEndsItsClients)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    Press(Form->ServerButton);
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    const unsigned peer = fakePeerConnect(Form->Server.ListeningPort());
    ASSERT_TRUE(Comes([&] { return Name(Form->ClientsLabel) == "1 client"; }));
    CloseFailureDuring([] { fakeSocketFail("socketAccept", 24); });
    EXPECT_TRUE(Comes([&] { return !Form->ServerButton->Checked(); }));
    EXPECT_TRUE(Form->PortBox->IsEnabled());
    EXPECT_TRUE(Form->ServerPortEdit->IsEnabled());
    EXPECT_EQ(Name(Form->ClientsLabel), "");
    EXPECT_TRUE(Comes([&] { return fakePeerEnded(peer); }));
    Press(Form->ServerButton);
    EXPECT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; })) << "it can be started again";
}

// --- The client

TEST_F(mainFormNetworkTest, WithoutAnAddressTheConnectButtonLetsGo)
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

TEST_F(mainFormNetworkTest, ALostConnectionIsTriedAgainWithoutAWord)
{
    fakePeer(otherPort);
    Store("Connection", "Network");
    Store("TCP address", "127.0.0.1:4100");
    EXPECT_TRUE(Open());
    EXPECT_TRUE(Comes([&] { return Name(Form->ConnectButton) == "Disconnect"; }));
    EXPECT_FALSE(Form->AddressEdit->IsEnabled());
    const unsigned peer = fakePeerOf(otherPort);
    std::string body = "STRM" + Position;
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
    EXPECT_TRUE(Comes([&] { return Name(Form->StatusLabel) == "Waiting for device reply..."; }));
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(Comes([&] {
        return fakePeerOf(otherPort) != peer && Name(Form->ConnectButton) == "Disconnect";
    })) << Name(Form->ConnectButton);
    Press(Form->ConnectButton);
    EXPECT_TRUE(Comes([&] { return Name(Form->ConnectButton) == "Connect"; }));
    fakePeerClose(fakePeerOf(otherPort));
    EXPECT_TRUE(Comes([&] { return Name(Form->StatusLabel).empty(); }));
    EXPECT_TRUE(Form->AddressEdit->IsEnabled());
}

TEST_F(mainFormNetworkTest, LeavingTheRoleEndsTheConnection)
{
    fakePeer(otherPort);
    Store("Connection", "Network");
    Store("TCP address", "127.0.0.1:4100");
    Store("Serial port", "COM5");
    EXPECT_TRUE(Open());
    ASSERT_TRUE(Comes([&] { return Name(Form->ConnectButton) == "Disconnect"; }));
    const unsigned peer = fakePeerOf(otherPort);
    Choose("Serial port");
    EXPECT_TRUE(Comes([&] { return fakePeerEnded(peer); }));
    EXPECT_FALSE(Form->ConnectButton->Checked());
    EXPECT_FALSE(Form->ConnectButton->HasState(stateVisible));
    EXPECT_TRUE(Hear(Position, "NMEA")) << "from the port";
}

}  // namespace
