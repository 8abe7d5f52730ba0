// The main form with a receiver at its port.
#include "tests/forms/mainFormTest.h"
#include "tests/gnss/ubxFrame.h"

namespace {

// What an NVS receiver tells of itself.
const std::string nvsVersion = sentence("ALVER,NVS,CSM54,0425");

std::string textOf(const ubxBytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

const std::string versionReply =
    textOf(ubxFrame(0x0A, 0x04).text("EXT CORE 3.01", 30).text("00080000", 10).text("PROTVER=18.00", 30));

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
    ASSERT_TRUE(Hear(Position, "NMEA"));
    EXPECT_TRUE(Form->Page->HasState(stateVisible));
    // What decided it may have come before there was a page to tell it.
    EXPECT_TRUE(Comes([&] {
        fakePortReceive("COM5", Position);
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
    ASSERT_TRUE(Hear(Position, "NMEA"));
    ASSERT_TRUE(Hear(versionReply + Position + versionReply, "UBX"));
    EXPECT_TRUE(Form->Comm.UBXOnly);
}

TEST_F(mainFormTest, ResetOfAnUnknownModelSendsNothingAndLooksAnew)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    ASSERT_TRUE(HasHeardAll());
    {
        const thrSpinHold hold(Form->Comm.Lock);
        Form->Comm.NMEA->Model = 0;
    }
    EXPECT_EQ(SentByReset(), "");
    EXPECT_EQ(Form->Page, nullptr);
    EXPECT_EQ(Name(Form->ProtocolLabel), "---");
    EXPECT_TRUE(Comes([&] { return Name(Form->StatusLabel).starts_with("Waiting for device reply"); }));
    EXPECT_TRUE(Hear(Position, "NMEA"));
}

TEST_F(mainFormTest, ResetReachesAReceiverThatIsSilent)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    // A search that is still on may forget the model once more.
    ASSERT_TRUE(HasHeardAll());
    fakePortReceive("COM5", nvsVersion);
    ASSERT_TRUE(Comes([&] {
        const thrSpinHold hold(Form->Comm.Lock);
        return Form->Comm.Decoder()->Model == 2;
    }));
    EXPECT_EQ(SentByReset(), "$PORST,F*20\r\n");
}

TEST_F(mainFormTest, AStartWhileARunIsOnBeginsItAnew)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    ASSERT_TRUE(HasHeardAll());
    fakePortReceive("COM5", Position);
    ASSERT_TRUE(await([] { return fakeQueueLength() > 0; }));
    EXPECT_TRUE(Form->Start());
    EXPECT_EQ(Form->Page, nullptr) << "its decoder is gone";
    EXPECT_EQ(Name(Form->ProtocolLabel), "---");
    EXPECT_TRUE(Hear(Position, "NMEA"));
}

TEST_F(mainFormTest, WhatAStoppedRunPostedDoesNothing)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    ASSERT_TRUE(HasHeardAll());
    fakePortReceive("COM5", Position);
    ASSERT_TRUE(await([] { return fakeQueueLength() > 0; }));
    Form->RoleBox->ComboSelect("Network", 0);
    Form->AddressEdit->EditText("");
    Form->RoleBox->OnChange();
    Toolkit().PumpPending();
    EXPECT_EQ(Form->Page, nullptr);
    EXPECT_EQ(Name(Form->StatusLabel), "Waiting for device reply...") << "and not of a model";
}

}  // namespace
