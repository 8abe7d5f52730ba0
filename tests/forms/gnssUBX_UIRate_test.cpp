#include "tests/forms/ubxPageTest.h"

#include <limits>

namespace {

class gnssUBX_UIRateTest : public ubxPageTest
{
protected:
    // Types a value into an edit and leaves it.
    static void Enter(const ctrlEdit_Val* edit, const std::string& text)
    {
        Click(edit);
        Press(keyHome);
        fakeKeyDown(keyShift);
        fakeKeyPress(keyEnd);
        fakeKeyUp(keyShift);
        Type(text);
        Press(keyEnter);
    }
};

TEST_F(gnssUBX_UIRateTest, AsksForTheRateThatWasTyped)
{
    ShownFor(9);
    Page->Refresh();
    Enter(Page->RateEdit, "5");
    EXPECT_EQ(Receiver.PPSRate, 5.0F);
    EXPECT_EQ(Receiver.PendingPPS, 1);
    const std::vector<ubxBytes> sent = Step();
    ASSERT_EQ(sent.size(), 1U);
    const ubxBytes rate = {0x24, 0x00, 0x05, 0x40, 5, 0, 0, 0};
    EXPECT_NE(std::search(sent[0].begin(), sent[0].end(), rate.begin(), rate.end()), sent[0].end());
    EXPECT_EQ(Receiver.PendingPPS, 0);
}

TEST_F(gnssUBX_UIRateTest, AsksForTheDutyThatWasTyped)
{
    ShownFor(9);
    Page->Refresh();
    Enter(Page->DutyEdit, "25");
    EXPECT_EQ(Receiver.PPSDuty, 0.25F);
    EXPECT_EQ(Receiver.PPSRate, 1.0F);
    EXPECT_EQ(Receiver.PendingPPS, 1);
    Page->Refresh();
    EXPECT_EQ(Shows(Page->DutyEdit), "25.0000 %");
}

TEST_F(gnssUBX_UIRateTest, LimitsARateBeforeItIsComparedWithTheDecoders)
{
    ShownFor(9);
    Receiver.PPSRate = 0.25F;
    Page->Refresh();
    Enter(Page->RateEdit, "0.1");
    EXPECT_EQ(Receiver.PPSRate, 0.25F);
    EXPECT_EQ(Receiver.PendingPPS, 0) << "that is what it has already";
    Receiver.PPSRate = 3.0F;
    Page->Refresh();
    Enter(Page->RateEdit, "0.1");
    EXPECT_EQ(Receiver.PPSRate, 0.25F);
    EXPECT_EQ(Receiver.PendingPPS, 1);
}

TEST_F(gnssUBX_UIRateTest, LimitsRateAndDutyAtTheirUpperEnds)
{
    ShownFor(9);
    Page->Refresh();
    Enter(Page->RateEdit, "99999999");
    EXPECT_EQ(Receiver.PPSRate, 10'000'000.0F);
    EXPECT_EQ(Shows(Page->RateEdit), "10 MHz");
    Enter(Page->DutyEdit, "101");
    EXPECT_EQ(Receiver.PPSDuty, 1.0F);
}

TEST_F(gnssUBX_UIRateTest, AsksForNothingWhenAnEditIsLeftUnchanged)
{
    ShownFor(9);
    Receiver.PPSDuty = 0.1F;
    Receiver.PPSRate = 0.3F;
    Page->Refresh();
    for (const ctrlEdit_Val* edit : {Page->RateEdit, Page->DutyEdit}) {
        Click(edit);
        EXPECT_TRUE(edit->HasFocus());
        Press(keyEnter);
    }
    EXPECT_EQ(Receiver.PendingPPS, 0);
    EXPECT_EQ(Receiver.PPSDuty, 0.1F);
    EXPECT_EQ(Receiver.PPSRate, 0.3F);
}

TEST_F(gnssUBX_UIRateTest, KeepsToItsLimitsWhateverTheReceiverTells)
{
    ShownFor(9);
    Page->Refresh();
    Receiver.PPSRate = std::numeric_limits<float>::infinity();
    Receiver.PPSDuty = std::numeric_limits<float>::quiet_NaN();
    Receiver.PPSTime = std::numeric_limits<double>::quiet_NaN();
    Receiver.PPSError = -std::numeric_limits<double>::infinity();
    Receiver.TDOP = std::numeric_limits<float>::quiet_NaN();
    Page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(Page->RateEdit->ValueGetF(), 10'000'000.0);
    EXPECT_EQ(Page->DutyEdit->ValueGetF(), 0.0) << "what is no number changes nothing";
    Enter(Page->DutyEdit, "50");
    EXPECT_EQ(Receiver.PPSRate, 10'000'000.0F);
    EXPECT_EQ(Receiver.PPSDuty, 0.5F);
}

TEST_F(gnssUBX_UIRateTest, LetsNobodyChangeThePulseOverANetwork)
{
    Identify(9);
    Page = Made<openUBXPage>();
    Page->Source(&Receiver);
    Show(Page);
    for (const ctrlEdit_Val* edit : {Page->RateEdit, Page->DutyEdit}) {
        const std::string before = edit->Name();
        Enter(edit, "7");
        Turn(edit, 240);
        EXPECT_EQ(edit->Name(), before);
        EXPECT_FALSE(edit->HasFocus());
    }
    EXPECT_EQ(Receiver.PendingPPS, 0);
    Click(Box("SBAS"));
    Page->Refresh();
    EXPECT_TRUE(Receiver.Select.Has(ubxSignal::SBAS)) << "the signals can be chosen all the same";
    EXPECT_EQ(Receiver.PendingGNSS, 1);
}

TEST_F(gnssUBX_UIRateTest, ForgetsWhatIsTypedWhenThePageGoes)
{
    ShownFor(9);
    Page->Refresh();
    Click(Page->RateEdit);
    Press(keyEnd);
    Type("7");
    Host->Page = nullptr;
    Page->Destroy();
    EXPECT_EQ(Receiver.PendingPPS, 0);
    EXPECT_EQ(Receiver.PPSRate, 1.0F);
}

TEST_F(gnssUBX_UIRateTest, AsksForNothingWithoutASource)
{
    ShownFor(10);
    Page->Source(nullptr);
    Enter(Page->RateEdit, "5");
    Click(Box("SBAS"));
    Page->Refresh();
    SelectTab(1);
    Page->SpectrumGraphs[0]->Invalidate();
    Toolkit().PumpPending();
    EXPECT_EQ(Receiver.PendingPPS, 0);
    EXPECT_EQ(Receiver.PendingGNSS, 0);
    EXPECT_EQ(Receiver.PendingSpectrum, 0);
}

}  // namespace
