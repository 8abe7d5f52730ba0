#include "gnss/gnssNMEA.h"
#include "tests/gnss/nmeaSentence.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;

class gnssNMEACommandTest : public gnssNMEATest
{
protected:
    // Everything that was sent, as one text, and forgets it.
    std::string TakeSent()
    {
        std::string text;
        for (const std::string& each : Listener.Sent)
            text += each;
        Listener.Sent.clear();
        return text;
    }
};

TEST_F(gnssNMEACommandTest, SendsATextWithItsChecksum)
{
    Receiver.SendSentence("PORST,F");
    EXPECT_EQ(TakeSent(), "$PORST,F*20\r\n");
    Receiver.SendSentence("");
    EXPECT_EQ(TakeSent(), "$*00\r\n");
    Receiver.SendSentence("\x7F\x30");
    EXPECT_EQ(TakeSent(), "$\x7F\x30*4F\r\n");
}

TEST_F(gnssNMEACommandTest, SendsEachCommandInOnePiece)
{
    Receiver.SendSentence("POVER");
    EXPECT_EQ(Listener.Sent.size(), 1U);
}

TEST_F(gnssNMEACommandTest, AsksTheNVSReceiverForItsSatelliteSentences)
{
    Feed("$ALVER,NVS,CSM54,0425\r\n");
    EXPECT_EQ(Receiver.Model, 2);
    EXPECT_EQ(TakeSent(), sentence("PORZB,GSA,2,GSV,3"));
    Feed("$ALVER,NVS,CSM54,0425\r\n");
    EXPECT_EQ(TakeSent(), sentence("PORZB,GSA,2,GSV,3")) << "each reply sends it again";
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssNMEACommandTest, TakesOtherVersionRepliesForProofOfNMEAAlone)
{
    for (const char* text :
         {"ALVER,NVS,CSM55,1", "ALVER,NVS,CSM54", "ALVER,nvs,CSM54,1", "ALVER,NVS,CSM541,1", "ALVER"}) {
        SCOPED_TRACE(text);
        Receiver.Restart();
        Feed(sentence(text));
        EXPECT_EQ(Receiver.Model, 1);
        EXPECT_EQ(TakeSent(), "");
    }
}

TEST_F(gnssNMEACommandTest, AsksAGenericReceiverForItsVersionAtEachPORZD)
{
    Feed(sentence("PORZD,A,002.5"));
    EXPECT_EQ(Receiver.Model, 1);
    EXPECT_EQ(TakeSent(), "") << "it was not known yet";
    Feed(sentence("PORZD,A,002.5") + sentence("PORZD"));
    EXPECT_EQ(TakeSent(), sentence("POVER") + sentence("POVER"));
    Receiver.Model = 2;
    Feed(sentence("PORZD,A,002.5"));
    EXPECT_EQ(TakeSent(), "");
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssNMEACommandTest, IsSilentWhileNobodyCanSend)
{
    Receiver.OnSend = nullptr;
    Feed(sentence("PORZD,A") + sentence("PORZD,A") + sentence("ALVER,NVS,CSM54,1"));
    EXPECT_EQ(Receiver.Model, 2);
    for (const uint8_t model : {uint8_t{0}, uint8_t{1}, uint8_t{2}, uint8_t{6}}) {
        Receiver.Model = model;
        Receiver.ResetReceiver();
        EXPECT_EQ(Receiver.Model, 0);
    }
}

TEST_F(gnssNMEACommandTest, SendsTheResetCommandOfEachModelAndRestarts)
{
    const std::string resets[] = {"",
                                  "$PSRF104,0,0,0,96000,237759,1946,12,4*1D\r\n",
                                  "$PORST,F*20\r\n",
                                  "",
                                  "",
                                  "",
                                  std::string("\xB5\x62\x06\x04\x04\x00\xFF\xFF\x00\x00\x0C\x5D", 12),
                                  ""};
    for (uint8_t model = 0; model < 8; ++model) {
        SCOPED_TRACE(int{model});
        Receiver.Model = model;
        Receiver.Valid = gnss::ValidTime;
        Receiver.ResetReceiver();
        EXPECT_EQ(TakeSent(), resets[model]);
        EXPECT_EQ(Receiver.Model, 0);
        EXPECT_EQ(Receiver.Valid, 0);
    }
}

TEST_F(gnssNMEACommandTest, LeavesTheReceiverModeToItself)
{
    Receiver.Model = 1;
    Receiver.ReceiverModeSet(3);
    EXPECT_THAT(Listener.Sent, IsEmpty());
}

TEST_F(gnssNMEACommandTest, KnowsNMEAByEachOfItsSentences)
{
    struct row {
        const char* Text;
        bool IsProof;
        bool IsNewData;
    };
    constexpr row rows[] = {
        {"GPGGA", true, true},         {"GPGLL", true, true},    {"GPGSA", true, true},
        {"GPRMC", true, true},         {"GPGSV", true, false},   {"GPGSV,1,1,0", true, false},
        {"ALVER", true, false},        {"PORZD", true, false},   {"GPZDA,1", false, false},
        {"GPVTG", false, false},       {"GPTXT", false, false},  {"GPGNS", false, false},
        {"QZGSV,1,1,0", false, false}, {"XXGGA", false, false},  {"GPGGAX,1", false, false},
        {"GPGG,1", false, false},      {"GGA", false, false},    {"gpgga", false, false},
        {"GPgga", false, false},       {"ALVERX", false, false}, {"PORZ", false, false},
        {"GP", false, false},          {"", false, false},       {",GPGGA", false, false},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Text);
        Receiver.Restart();
        Listener.NewData = 0;
        Feed(sentence(each.Text));
        EXPECT_EQ(Receiver.Model, each.IsProof ? 1 : 0);
        EXPECT_EQ(Listener.NewData, each.IsNewData ? 1U : 0U);
    }
}

TEST_F(gnssNMEACommandTest, KnowsEveryTalker)
{
    struct row {
        const char* Talker;
        gnss::Source Source;
    };
    constexpr row rows[] = {
        {"BD", gnss::Source::BeiDou}, {"GA", gnss::Source::Galileo}, {"GB", gnss::Source::BeiDou},
        {"GI", gnss::Source::NavIC},  {"GL", gnss::Source::GLONASS}, {"GN", gnss::Source::Mixed},
        {"GP", gnss::Source::GPS},    {"GQ", gnss::Source::QZSS},
    };
    for (const row& each : rows) {
        Show(gsv(each.Talker).sat(7U));
        ASSERT_EQ(Receiver.Sats.size(), 1U) << each.Talker;
        EXPECT_EQ(Receiver.Sats[0].Source, each.Source) << each.Talker;
    }
    for (const char* talker : {"QZ", "GX", "PG", "BE"}) {
        Receiver.Restart();
        Show(gsv(talker).sat(7U));
        EXPECT_TRUE(Receiver.Sats.empty()) << talker;
    }
}

TEST_F(gnssNMEACommandTest, DecodesWithoutListeners)
{
    Receiver.OnNewData = nullptr;
    Receiver.OnSend = nullptr;
    Feed(sentence("GPGLL,4807.038,N,01131.000,E,123519,A"));
    EXPECT_EQ(Receiver.Model, 1);
}

}  // namespace
