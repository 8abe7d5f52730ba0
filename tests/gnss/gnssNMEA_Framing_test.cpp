#include "gnss/gnssNMEA.h"
#include "tests/gnss/nmeaSentence.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using std::string_literals::operator""s;
using testing::IsEmpty;

const std::string Good = sentence("GPGLL,4807.038,N,01131.000,E,123519,A,A");
const std::string VersionReply = "\xB5\x62\x0A\x04";

TEST_F(gnssNMEATest, TakesNoBytesAsWellAsMany)
{
    Receiver.Feed(nullptr, 0);
    EXPECT_TRUE(Receiver.IsIdle());
    EXPECT_EQ(Receiver.Model, 0);
}

TEST_F(gnssNMEATest, DropsWhatStandsBetweenSentences)
{
    Feed("noise GPGLL,1*00\r\n\r\n\n" + std::string("\0\xFF", 2) + Good + "\r\n*\r\n");
    EXPECT_EQ(Listener.NewData, 1U);
    EXPECT_TRUE(Receiver.IsIdle());
}

TEST_F(gnssNMEATest, HoldsAPartOfASentenceBetweenCalls)
{
    Feed("$GPGLL,4807");
    EXPECT_FALSE(Receiver.IsIdle());
    EXPECT_EQ(Receiver.Line, "$GPGLL,4807");
    Feed(".038,N,00000.000,E\n");
    EXPECT_TRUE(Receiver.IsIdle());
    EXPECT_NEAR(Receiver.Latitude, 48.1173, 1e-9);
}

TEST_F(gnssNMEATest, EndsASentenceAtCRAsWellAsAtLF)
{
    Feed("$GPGLL\r$GPGLL\n$GPGLL\r\n");
    EXPECT_EQ(Listener.NewData, 3U);
}

TEST_F(gnssNMEATest, KeepsADollarInsideASentence)
{
    Feed("$GPG$GPGLL,4807.038,N\r\n");
    EXPECT_EQ(Listener.NewData, 0U);
    EXPECT_EQ(Receiver.Model, 0);
}

TEST_F(gnssNMEATest, DropsASentenceWithABadChecksumWithoutATrace)
{
    Feed("$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*00\r\n");
    EXPECT_EQ(describeNMEA(Receiver), describeNMEA(gnssNMEA()));
    EXPECT_THAT(Listener.Log, IsEmpty());
    Feed(rmc());
    EXPECT_NEAR(Receiver.Latitude, 48.1173, 1e-9);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssNMEATest, AcceptsChecksumsOfEitherCase)
{
    const std::string lower = "$GPGLL,4807.038,N,v*5a\r\n";
    const std::string upper = "$GPGLL,4807.038,N,v*5A\r\n";
    ASSERT_EQ(sentence("GPGLL,4807.038,N,v"), upper) << "the sentence is chosen for a letter in its checksum";
    Feed(lower);
    Feed(upper);
    EXPECT_EQ(Listener.NewData, 2U);
}

TEST_F(gnssNMEATest, AcceptsASentenceWithoutChecksum)
{
    Feed("$GPGLL,4807.038,N,01131.000,E,123519,A\r\n");
    EXPECT_EQ(Listener.NewData, 1U);
    EXPECT_NEAR(Receiver.Latitude, 48.1173, 1e-9);
}

TEST_F(gnssNMEATest, TakesAStarElsewhereForNoChecksum)
{
    Feed("$GPGLL,4807.038,N*5\r\n$GPGLL,4807.038,N*5A9\r\n");
    EXPECT_EQ(Listener.NewData, 2U);
}

TEST_F(gnssNMEATest, ReadsAChecksumUpToItsFirstCharacterThatIsNoDigit)
{
    struct row {
        const char* Ending;
        bool Good;
    };
    // With the character behind them all bytes combine to 7, which a single digit can say.
    const std::string text = "$GPGLL,x";
    unsigned sum = 0;
    for (const char each : text.substr(1))
        sum ^= static_cast<uint8_t>(each);
    const std::string pad(1, static_cast<char>(sum ^ 7));
    constexpr row rows[] = {{"*07", true}, {"*7x", true}, {"*7 ", true}, {"* 7", false}, {"*x7", false}};
    for (const row& each : rows) {
        const unsigned before = Listener.NewData;
        Feed(text + pad + each.Ending + "\r\n");
        EXPECT_EQ(Listener.NewData - before, each.Good ? 1U : 0U) << each.Ending;
    }
}

TEST_F(gnssNMEATest, ChecksNoSentenceOfFourBytesOrFewer)
{
    Feed("$*00\r\n$\r\n$*24\n$,\n");
    EXPECT_EQ(Receiver.Model, 0);
    EXPECT_TRUE(Receiver.IsIdle());
}

TEST_F(gnssNMEATest, RecognisesUbloxByTheFifthByteOfItsVersionReply)
{
    Feed(VersionReply);
    EXPECT_EQ(Receiver.Model, 0);
    EXPECT_FALSE(Receiver.IsIdle());
    Feed("$");
    EXPECT_EQ(Receiver.Model, 6);
    EXPECT_TRUE(Receiver.IsIdle()) << "the byte that decides goes with the reply";
    EXPECT_THAT(Listener.Log, IsEmpty());
    Feed(Good);
    EXPECT_EQ(Listener.NewData, 1U);
    EXPECT_EQ(Receiver.Model, 6) << "a sentence changes only model 0";
}

TEST_F(gnssNMEATest, StandsAfterAStrayStartByteUntilRestart)
{
    for (const std::string& stray : {"\xB5\x62\x0A\x05"s, "\xB5\x62\x05\x01"s, "\xB5$GP"s, "\xB5\r\n"s}) {
        Receiver.Restart();
        Feed(stray);
        for (int i = 0; i < 100; ++i)
            Feed(Good);
        EXPECT_EQ(Listener.NewData, 0U);
        EXPECT_FALSE(Receiver.IsIdle());
        EXPECT_LE(Receiver.Line.size(), 4U) << "nothing is stored of what can change nothing";
    }
    Receiver.Restart();
    Feed(Good);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssNMEATest, TakesTheStartByteForTextInsideASentence)
{
    Feed("$GPGLL,\xB5\x62\x0A\x04,,\n");
    EXPECT_EQ(Receiver.Model, 1);
    Feed(Good);
    EXPECT_EQ(Listener.NewData, 2U);
}

TEST_F(gnssNMEATest, DropsASentenceThatIsLongerThanTheLimitAtItsEnd)
{
    const std::string head = "$GPGLL,4807.038,N,";
    Feed(head + std::string(gnssNMEA::LineLimit - head.size(), 'x') + "\r\n");
    EXPECT_EQ(Listener.NewData, 1U) << "a sentence of the limit itself is decoded";
    Feed(head + std::string(gnssNMEA::LineLimit - head.size() + 1, 'x') + "\r\n");
    EXPECT_EQ(Listener.NewData, 1U);
    for (int i = 0; i < 50; ++i)
        Feed(i == 0 ? "$" + std::string(50000, ',') : std::string(50000, ','));
    EXPECT_LE(Receiver.Line.size(), gnssNMEA::LineLimit + 1);
    Feed("\n" + Good);
    EXPECT_EQ(Listener.NewData, 2U);
}

TEST_F(gnssNMEATest, EmptiesLineAndStagingOnRestartAndSendsNothing)
{
    Feed(Good + std::string(gsv("GP").sat(5U)) + "$GPGGA,1");
    Receiver.FixQuality = 4;
    Receiver.MagVar = 3;
    Receiver.DGPSAge = 5;
    Receiver.DGPSStation = 6;
    Receiver.Restart();
    EXPECT_TRUE(Receiver.IsIdle());
    EXPECT_THAT(Receiver.SatsNew, IsEmpty());
    EXPECT_EQ(Receiver.Model, 0);
    EXPECT_EQ(Receiver.FixQuality, 4);
    EXPECT_EQ(Receiver.MagVar, 3);
    EXPECT_EQ(Receiver.DGPSAge, 5);
    EXPECT_EQ(Receiver.DGPSStation, 6U);
    EXPECT_NEAR(Receiver.Latitude, 48.1173, 1e-9);
    EXPECT_THAT(Listener.Sent, IsEmpty());
}

TEST_F(gnssNMEATest, ForgetsOnRestartWhichSatellitesWereUsed)
{
    Show(gsv("GP").sat(5U));
    Feed(gsa("5"));
    Receiver.Restart();
    Feed(gsa("5"));
    Show(gsv("GP").sat(5U));
    ASSERT_EQ(Receiver.Sats.size(), 1U);
    EXPECT_FALSE(Receiver.Sats[0].IsUsed());
}

TEST_F(gnssNMEATest, DecodesTheSameHoweverTheStreamIsCut)
{
    std::string stream = "noise\r\n$ALVER,NVS,CSM54,1\r\n" + Good + "$GPGGA,bad*00\r\n";
    for (const char signal : {'7', '1', '2', '5'})
        stream += std::string(gsv("GA").sat(12U).sat(4U).signal(signal));
    stream += std::string(gsv("GP").sat(33U).sat(5U).sat("", 1, 2, "")) + gsa("5,33") + rmc() + gsa("5,33");
    stream += sentence("GNGGA,123519.25,4807.038,S,01131.000,W,4,08,0.9,545.4,M,46.9,M,1.5,0120");
    stream += sentence("PORZD,A") + sentence("GPZDA,1,2,3") + rmc() + VersionReply + "." + rmc() + "$GPGLL,1";
    expectSameHoweverCut<gnssNMEA>(stream, describeNMEA);
    expectSameHoweverCut<gnssNMEA>(stream + "\n\xB5" + stream, describeNMEA);
}

}  // namespace
