// The program ends at once and whole, whatever it is doing.
#include "tests/link/native/machine.h"
#include "tests/platform/contractLinks.h"
#include "tests/ui/host.h"
#include "tests/ui/uiTest.h"

namespace {

constexpr int64_t EndMs = 3000;
constexpr char modelName[] = "u-blox Neo-M9N";

class closingUi : public uiTest
{
protected:
    // The user closes the window, and the pump ends it.
    void EndNow()
    {
        const ctrlLife life(Program.Form);
        Program.Form->CloseRequest();
        const int64_t spent = msOf([&] { EXPECT_TRUE(comes([&] { return !life; })); });
        EXPECT_LE(spent, EndMs);
        Program.Form = nullptr;
    }
    void Recognise()
    {
        Device.emplace(simModel::NeoM9N);
        Program.OpenAt(Device->Port());
        ASSERT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << Program.Status();
    }
};

TEST_F(closingUi, WithNothingOpened)
{
    Program.Open();
    EndNow();
}

TEST_F(closingUi, WhileItLooksForAReceiver)
{
    simOptions options;
    Device.emplace(options);
    Device->Freeze();
    Device->Block();
    Program.OpenAt(Device->Port());
    ASSERT_TRUE(comes([&] { return Program.Status() != "Waiting for device reply..."; }));
    EXPECT_THAT(Program.Status(), testing::StartsWith("Waiting for device reply ("));
    EndNow();
}

TEST_F(closingUi, WithAPage)
{
    ASSERT_NO_FATAL_FAILURE(Recognise());
    EndNow();
}

TEST_F(closingUi, WithAPageWhoseCableWasPulled)
{
    ASSERT_NO_FATAL_FAILURE(Recognise());
    Device->Unplug();
    letPass();
    EndNow();
}

TEST_F(closingUi, AsAServerWithAClient)
{
    ASSERT_NO_FATAL_FAILURE(Recognise());
    const uint16_t port = freePort();
    Program.SetServerPort(port);
    program::Press(Program.Form->ServerButton);
    program client;
    client.OpenClient("127.0.0.1:" + std::to_string(port));
    ASSERT_TRUE(comes([&] { return client.Shows(modelName, "UBX"); })) << client.Status();
    EndNow();
    EXPECT_TRUE(comes([&] { return client.Form->ConnectButton->Name() == "Connecting"; }));
}

TEST_F(closingUi, AsAClientThatIsConnected)
{
    ASSERT_NO_FATAL_FAILURE(Recognise());
    program server;
    std::swap(server.Form, Program.Form);
    const uint16_t port = freePort();
    server.SetServerPort(port);
    program::Press(server.Form->ServerButton);
    Program.OpenClient("127.0.0.1:" + std::to_string(port));
    ASSERT_TRUE(comes([&] { return Program.Shows(modelName, "UBX"); })) << Program.Status();
    EndNow();
    EXPECT_TRUE(comes([&] { return server.Form->ClientsLabel->Name() == "No clients"; }));
}

TEST_F(closingUi, AsAClientWhoseServerIsNotThere)
{
    Program.OpenClient("127.0.0.1:" + std::to_string(freePort()));
    EndNow();
}

TEST_F(closingUi, AsAClientWhoseServerDoesNotAnswer)
{
    const contractSilentHost silent;
    Program.OpenClient("127.0.0.1:" + std::to_string(silent.Address.Port));
    letPass();
    EXPECT_EQ(Program.Form->ConnectButton->Name(), "Connecting");
    EndNow();
}

TEST_F(closingUi, DuringAMessageBox)
{
    ASSERT_NO_FATAL_FAILURE(Recognise());
    const otherHost taken;
    Program.SetServerPort(taken.Port());
    const ctrlLife life(Program.Form);
    boxReader boxes;
    boxes.Instead = [&life] { life.Window()->Destroy(); };
    program::Press(Program.Form->ServerButton);
    EXPECT_TRUE(comes([&] { return !life; }));
    EXPECT_EQ(boxes.Titles().size(), 1U);
    EXPECT_FALSE(boxReader::IsOpen());
    Program.Form = nullptr;
}

}  // namespace
