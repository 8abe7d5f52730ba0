// What the program keeps until it is started again.
#include "tests/ui/host.h"
#include "tests/ui/uiTest.h"
#include "toolkit/ctrlEdit.h"

namespace {

class settingsUi : public uiTest
{
};

TEST_F(settingsUi, WithNothingKeptItShowsNothingAndWaits)
{
    Program.Open();
    EXPECT_EQ(Program.Form->RoleBox->Name(), "Serial port");
    EXPECT_EQ(Program.Form->PortBox->Name(), "");
    EXPECT_EQ(Program.Status(), "");
    EXPECT_EQ(Program.Protocol(), "---");
    EXPECT_EQ(Program.Form->ServerPortEdit->ValueGetI(), 4003);
    EXPECT_FALSE(Program.Form->ServerButton->Checked());
    EXPECT_EQ(Program.Form->AddressEdit->Name(), "");
    EXPECT_FALSE(Program.Form->Comm.IsOpen());
}

TEST_F(settingsUi, ThePortAndTheServerComeBack)
{
    const uint16_t port = freePort();
    Device.emplace(simModel::M9);
    Program.OpenAt(Device->Port());
    Program.SetServerPort(port);
    ASSERT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
    ASSERT_TRUE(
        clickUntil(Program.Form->ServerButton, [&] { return Program.Form->Server.ListeningPort() == port; }));
    Program.Close();

    Program.Open();
    EXPECT_EQ(Program.Form->ServerPortEdit->ValueGetI(), port);
    EXPECT_TRUE(Program.Form->ServerButton->Checked());
    if (Program.Form->PortBox->RowFind(Device->Port()) == Program.Form->PortBox->Rows.size())
        GTEST_SKIP() << "this system does not list the ports that tests have";
    EXPECT_EQ(Program.Form->PortBox->Name(), Device->Port());
    EXPECT_TRUE(Program.Form->Page || Program.Form->Server.ListeningPort() == 0) << "it waits for a receiver";
    EXPECT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
    EXPECT_TRUE(comes([&] { return Program.Form->Server.ListeningPort() == port; }));
}

TEST_F(settingsUi, AServerThatWasTurnedOffStaysOff)
{
    Program.Store("Server enabled", true);
    Program.Open();
    EXPECT_TRUE(Program.Form->ServerButton->Checked());
    program::Press(Program.Form->ServerButton);
    Program.Close();
    Program.Open();
    EXPECT_FALSE(Program.Form->ServerButton->Checked());
}

TEST_F(settingsUi, TheRoleAndTheAddressComeBack)
{
    const otherHost server;
    const std::string address = "127.0.0.1:" + std::to_string(server.Port());
    Program.Open();
    Program.Form->AddressEdit->EditText(address);
    Program.ChooseRole("Network");
    ASSERT_TRUE(comes([&] { return Program.Form->ConnectButton->Name() == "Disconnect"; }));
    Program.Close();

    Program.Open();
    EXPECT_EQ(Program.Form->RoleBox->Name(), "Network");
    EXPECT_EQ(Program.Form->AddressEdit->Name(), address);
    EXPECT_TRUE(comes([&] { return Program.Form->ConnectButton->Name() == "Disconnect"; }));
}

TEST_F(settingsUi, TheWindowComesBackToItsPlace)
{
    constexpr int32_t x = 123;
    constexpr int32_t y = 77;
    Device.emplace(simModel::M9);
    Program.OpenAt(Device->Port());
    Program.Form->Move(x, y, Program.Form->Width(), Program.Form->Height());
    letPass();
    Program.Close();

    Program.OpenAt(Device->Port());
    EXPECT_EQ(Program.Form->X(), x);
    EXPECT_EQ(Program.Form->Y(), y);
    ASSERT_TRUE(comes([&] { return Program.Shows("u-blox 9/M9", "UBX"); })) << Program.Status();
    letPass();
    EXPECT_EQ(Program.Form->X(), x) << "a page grows to the right and down";
    EXPECT_EQ(Program.Form->Y(), y);
}

TEST_F(settingsUi, AWindowWhoseMonitorIsGoneComesBackInSight)
{
    constexpr int32_t away = 5000;
    Program.Store("Window - Position - Horizontal", int32_t{away});
    Program.Store("Window - Position - Vertical", int32_t{away});
    Program.Open();
    windowArea area;
    EXPECT_TRUE(Toolkit().Windows().WorkAreaOf(Program.Form->Handle(), area)) << Program.Form->X();
    EXPECT_GE(Program.Form->X(), area.Left);
    EXPECT_GE(Program.Form->Y(), area.Top);
    EXPECT_LE(Program.Form->X() + static_cast<int32_t>(Program.Form->Width()), area.Right);
    EXPECT_LE(Program.Form->Y() + static_cast<int32_t>(Program.Form->Height()), area.Bottom);
}

}  // namespace
