#include "gnss/gnssNMEA.h"
#include "tests/gnss/nmeaSentence.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Source = gnss::Source;

class gnssNMEASatsTest : public gnssNMEATest
{
protected:
    // "G5 S120*": letters, numbers, and a star behind those that are used.
    std::string Shown() const
    {
        std::string text;
        for (const SatInfo& each : Receiver.Sats) {
            text += text.empty() ? "" : " ";
            text += SourceLetter(each.Source) + std::to_string(each.SvId);
            if (each.IsUsed())
                text += '*';
        }
        return text;
    }
};

TEST_F(gnssNMEASatsTest, ShowsSatellitesOnlyWithTheNextRMC)
{
    Feed(gsv("GP").sat(5U, 40, 130, "44"));
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Listener.NewData, 0U);
    Feed(sentence("GPGGA,1") + sentence("GPGLL,1") + gsa("5"));
    EXPECT_EQ(Shown(), "");
    Feed(rmc());
    ASSERT_EQ(Shown(), "G5");
    EXPECT_EQ(Receiver.Sats[0].Elevation, 40);
    EXPECT_EQ(Receiver.Sats[0].Azimuth, 130);
    EXPECT_EQ(Receiver.Sats[0].SNR, 44);
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(0, 0, 0));
    EXPECT_THAT(Receiver.SatsNew, IsEmpty());
}

TEST_F(gnssNMEASatsTest, ShowsSatellitesEvenWithAnRMCThatHasNoFields)
{
    Feed(std::string(gsv("GP").sat(5U)) + sentence("GPRMC"));
    EXPECT_EQ(Shown(), "G5");
}

TEST_F(gnssNMEASatsTest, KeepsTheListWithoutNewSatellites)
{
    Show(gsv("GP").sat(5U));
    Feed(rmc() + rmc());
    EXPECT_EQ(Shown(), "G5");
    Show(gsv("GP").sat(6U));
    EXPECT_EQ(Shown(), "G6") << "a new list takes the place of the old one";
}

TEST_F(gnssNMEASatsTest, ShowsAGroupThatCameToNoEnd)
{
    Feed(sentence("GPGSV,3,1,12,05,40,130,44") + rmc());
    EXPECT_EQ(Shown(), "G5");
}

TEST_F(gnssNMEASatsTest, SortsByConstellationThenNumber)
{
    Show(std::string(gsv("GP").sat(30U).sat(5U)) + std::string(gsv("GL").sat(80U).sat(66U)) +
         std::string(gsv("GA").sat(9U)) + std::string(gsv("GB").sat(12U)) + std::string(gsv("GN").sat(7U)) +
         std::string(gsv("GQ").sat(3U)) + std::string(gsv("GI").sat(2U)));
    EXPECT_EQ(Shown(), "B12 E9 R2 R16 G5 G30 N2 Q3 *7");
}

TEST_F(gnssNMEASatsTest, MapsEveryRangeOfNumbers)
{
    struct row {
        const char* Talker;
        unsigned Id;
        const char* Shown;
    };
    constexpr row rows[] = {
        {"GP", 1, "G1"},
        {"GP", 32, "G32"},
        {"GP", 33, "S120"},
        {"GP", 64, "S151"},
        {"GB", 33, "B33"},
        {"GB", 64, "B64"},
        {"BD", 33, "B33"},
        {"GA", 36, "E36"},
        {"GL", 33, "S120"},
        {"GN", 40, "S127"},
        {"GL", 65, "R1"},
        {"GL", 96, "R32"},
        {"GP", 65, "R1"},
        {"GA", 65, "R1"},
        {"GP", 97, "G97"},
        {"GP", 151, "G151"},
        {"GP", 152, "S152"},
        {"GP", 158, "S158"},
        {"GP", 159, "G159"},
        {"GP", 172, "G172"},
        {"GP", 173, "I1"},
        {"GP", 182, "I10"},
        {"GP", 183, "G183"},
        {"GP", 192, "G192"},
        {"GP", 193, "Q1"},
        {"GP", 202, "Q10"},
        {"GP", 203, "G203"},
        {"GP", 246, "G246"},
        {"GP", 247, "N1"},
        {"GP", 253, "N7"},
        {"GP", 254, "G254"},
        {"GP", 255, "G255"},
        {"GP", 256, "G0"},
        {"GP", 300, "G44"},
        {"GP", 301, "E1"},
        {"GP", 336, "E36"},
        {"GP", 337, "G81"},
        {"GP", 400, "G144"},
        {"GP", 401, "B1"},
        {"GP", 437, "B37"},
        {"GP", 438, "G182"},
        {"GL", 5, "R5"},
        {"GQ", 3, "Q3"},
        {"GI", 3, "N3"},
        {"GN", 3, "*3"},
        {"GP", 0, "G0"},
        {"GP", 4294967295U, "G255"},
    };
    for (const row& each : rows) {
        Show(gsv(each.Talker).sat(each.Id));
        EXPECT_EQ(Shown(), each.Shown) << each.Talker << each.Id;
    }
}

TEST_F(gnssNMEASatsTest, NumbersASatelliteWithoutIdAs255)
{
    for (const char* id : {"", "A", "-5", " 5", "+5"}) {
        Show(gsv("GP").sat(id));
        EXPECT_EQ(Shown(), "G255") << id;
    }
    Show(gsv("GP").sat("5x").sat("99999999999999"));
    EXPECT_EQ(Shown(), "G5 G255");
}

TEST_F(gnssNMEASatsTest, ReadsALevelOnlyWhereADigitBegins)
{
    struct row {
        const char* Level;
        float SNR;
    };
    constexpr row rows[] = {{"44", 44}, {"44.5", 44.5F}, {"00", 0},  {"", -1},
                            {"-", -1},  {"-3", -1},      {" 3", -1}, {"x", -1}};
    for (const row& each : rows) {
        // A field behind, so that an empty level is none that a last comma leaves out.
        Show(gsv("GP").sat(5U, 40, 130, each.Level).signal('1'));
        ASSERT_EQ(Shown(), "G5");
        EXPECT_EQ(Receiver.Sats[0].SNR, each.SNR) << each.Level;
    }
}

TEST_F(gnssNMEASatsTest, LosesTheLastSatelliteWhoseEmptyLevelEndsTheSentence)
{
    Show(sentence("GPGSV,1,1,02,05,40,130,44,06,41,131,"));
    EXPECT_EQ(Shown(), "G5") << "the last comma begins no field, so the group is not complete";
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(0, 0, 0));
}

TEST_F(gnssNMEASatsTest, TakesTheNumberOfAnIncompleteGroupForTheSignal)
{
    Show(sentence("GPGSV,1,1,02,05,40,130,44,12,41,131,"));
    ASSERT_EQ(Shown(), "G5");
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(31, 0, 0));
    Show(sentence("GPGSV,1,1,02,05,40,130,44,82,41"));
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(35, 0, 0));
}

TEST_F(gnssNMEASatsTest, KnowsEverySignal)
{
    struct row {
        const char* Talker;
        const char* Ids;
        std::vector<unsigned> Signals;
    };
    const row rows[] = {
        {"GB", "1358B", {4, 1, 7, 13, 10}},         {"BD", "1358B", {4, 1, 7, 13, 10}},
        {"GA", "12457", {19, 22, 25, 27, 16}},      {"GL", "13", {29, 30}},
        {"GP", "15678", {31, 33, 32, 34, 35}},      {"GI", "1", {36}},
        {"GQ", "145678", {37, 38, 40, 39, 41, 42}}, {"GN", "", {}},
    };
    for (const row& each : rows) {
        const std::string known = each.Ids;
        for (unsigned letter = ' ' + 1; letter < 127; ++letter) {
            if (letter == ',')
                continue;
            const auto id = static_cast<char>(letter);
            Show(gsv(each.Talker).sat(5U).signal(id));
            const size_t at = known.find(id);
            const unsigned wanted = at == std::string::npos ? 0 : each.Signals[at];
            ASSERT_EQ(Receiver.Sats.size(), 1U);
            EXPECT_EQ(Receiver.Sats[0].Signals[0], wanted) << each.Talker << id;
        }
    }
}

TEST_F(gnssNMEASatsTest, LooksTheSignalUpByTheTalkerAndNotByTheNumber)
{
    Show(gsv("GP").sat(33U).sat(193U).signal('8'));
    ASSERT_EQ(Shown(), "Q1 S120");
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(35, 0, 0));
    EXPECT_THAT(Receiver.Sats[1].Signals, ElementsAre(35, 0, 0));
}

TEST_F(gnssNMEASatsTest, ReadsOnlyTheFirstCharacterOfASignal)
{
    Show(sentence("GPGSV,1,1,01,05,40,130,44,15"));
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(31, 0, 0));
}

TEST_F(gnssNMEASatsTest, KeepsTheFirstThreeSignalsOfASatellite)
{
    for (const char signal : {'7', '1', '2', '5'})
        Feed(gsv("GA").sat(12U).signal(signal));
    Feed(rmc());
    ASSERT_EQ(Shown(), "E12");
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(16, 19, 22));
}

TEST_F(gnssNMEASatsTest, ShowsTheLevelOfTheSignalThatCameFirst)
{
    Feed(std::string(gsv("GA").sat(12U, 10, 20, "30").signal('7')) + std::string(gsv("GA").sat(3U)) +
         std::string(gsv("GA").sat(12U, 11, 21, "50").signal('1')) + rmc());
    ASSERT_EQ(Shown(), "E3 E12");
    EXPECT_EQ(Receiver.Sats[1].SNR, 30);
    EXPECT_EQ(Receiver.Sats[1].Elevation, 10);
    EXPECT_EQ(Receiver.Sats[1].Azimuth, 20);
    EXPECT_THAT(Receiver.Sats[1].Signals, ElementsAre(16, 19, 0));
}

TEST_F(gnssNMEASatsTest, FillsTheFirstSlotWhenTheFirstEntryHasNoSignal)
{
    Feed(std::string(gsv("GA").sat(12U)) + std::string(gsv("GA").sat(12U).signal('1')) +
         std::string(gsv("GA").sat(12U)) + std::string(gsv("GA").sat(12U).signal('1')) + rmc());
    ASSERT_EQ(Shown(), "E12");
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(19, 19, 0)) << "equal signals are not told apart";
}

TEST_F(gnssNMEASatsTest, ReadsShortGSVSentences)
{
    for (const char* text :
         {"GPGSV", "GPGSV,1", "GPGSV,1,1", "GPGSV,1,1,04", "GPGSV,1,1,04,1", "GPGSV,1,1,04,5,6,7"}) {
        Feed(sentence(text));
        EXPECT_THAT(Receiver.SatsNew, IsEmpty()) << text;
    }
}

TEST_F(gnssNMEASatsTest, MergesSatellitesThatWaitForAnRMCWhichNeverComes)
{
    const std::string first = std::string(gsv("GP").sat(5U, 10, 20, "30").signal('6'));
    const std::string later = std::string(gsv("GP").sat(5U, 1, 2, "3").sat(6U).sat(7U).sat(8U).signal('1'));
    Feed(first);
    for (int i = 0; i < 20000; ++i)
        Feed(later);
    EXPECT_LT(Receiver.SatsNew.size(), 5000U);
    Feed(rmc());
    EXPECT_EQ(Shown(), "G5 G6 G7 G8");
    EXPECT_EQ(Receiver.Sats[0].SNR, 30);
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(32, 31, 31));
}

TEST_F(gnssNMEASatsTest, MarksTheSatellitesOfAGSAAtOnce)
{
    Show(std::string(gsv("GP").sat(5U).sat(6U).sat(7U)));
    Feed(gsa("5,7"));
    EXPECT_EQ(Shown(), "G5* G6 G7*");
    EXPECT_EQ(Receiver.PDOP, 1.5F);
    EXPECT_EQ(Receiver.HDOP, 0.9F);
    EXPECT_EQ(Receiver.VDOP, 1.2F);
    Feed(gsa("6"));
    EXPECT_EQ(Shown(), "G5 G6* G7");
}

TEST_F(gnssNMEASatsTest, LeavesOtherConstellationsAlone)
{
    Show(std::string(gsv("GP").sat(5U).sat(6U)) + std::string(gsv("GA").sat(5U)) +
         std::string(gsv("GL").sat(65U)));
    Feed(gsa("5", '1') + gsa("5", '3') + gsa("65", '2') + gsa("6", '1'));
    EXPECT_EQ(Shown(), "E5* R1* G5 G6*");
}

TEST_F(gnssNMEASatsTest, KnowsEverySystemOfAGSA)
{
    struct row {
        char System;
        const char* Shown;
    };
    constexpr row rows[] = {{'0', "B3 E3 R3 G3 N3 Q3* *3"}, {'5', "B3 E3 R3 G3 N3 Q3* *3"},
                            {'1', "B3 E3 R3 G3* N3 Q3 *3"}, {'2', "B3 E3 R3* G3 N3 Q3 *3"},
                            {'3', "B3 E3* R3 G3 N3 Q3 *3"}, {'4', "B3* E3 R3 G3 N3 Q3 *3"},
                            {'6', "B3 E3 R3 G3 N3* Q3 *3"}, {'7', "B3 E3 R3 G3* N3 Q3 *3"},
                            {'x', "B3 E3 R3 G3* N3 Q3 *3"}, {0, "B3 E3 R3 G3* N3 Q3 *3"}};
    std::string everywhere;
    for (const char* talker : {"GB", "GA", "GL", "GP", "GI", "GQ", "GN"})
        everywhere += std::string(gsv(talker).sat(3U));
    for (const row& each : rows) {
        Receiver.Restart();
        Show(everywhere);
        Feed(gsa("3", each.System));
        EXPECT_EQ(Shown(), each.Shown) << each.System;
    }
}

TEST_F(gnssNMEASatsTest, LetsANumberThatRevealsAConstellationSpeakForThoseBehindIt)
{
    Show(gsv("GP").sat(5U).sat(7U).sat(33U));
    Feed(gsa("5,33,7"));
    EXPECT_EQ(Shown(), "G5* G7 S120*") << "7 is looked for among the SBAS satellites";
    Feed(gsa("33,5"));
    EXPECT_EQ(Shown(), "G5* G7 S120*") << "only SBAS was marked as not used first";
    Feed(gsa("7,33"));
    EXPECT_EQ(Shown(), "G5 G7* S120*");
}

TEST_F(gnssNMEASatsTest, TakesBeiDouAndGalileoNumbersFrom33OnForTheirOwn)
{
    Show(std::string(gsv("GA").sat(33U)) + std::string(gsv("GB").sat(33U)) + std::string(gsv("GP").sat(33U)));
    Feed(gsa("33", '3') + gsa("33", '4'));
    EXPECT_EQ(Shown(), "B33* E33* S120");
}

TEST_F(gnssNMEASatsTest, MarksAsNotUsedAgainWhereTheFirstNumberComesTwice)
{
    Show(gsv("GP").sat(5U).sat(6U));
    Feed(gsa("5,6,5"));
    EXPECT_EQ(Shown(), "G5* G6");
}

TEST_F(gnssNMEASatsTest, KeepsWhoIsUsedWhenAGSANamesNobody)
{
    Show(gsv("GP").sat(5U));
    Feed(gsa("5") + gsa(""));
    EXPECT_EQ(Shown(), "G5*");
    Feed(sentence("GPGSA,A,1") + sentence("GPGSA,A") + sentence("GPGSA"));
    EXPECT_EQ(Shown(), "G5*");
}

TEST_F(gnssNMEASatsTest, ReadsTwelveNumbersThenTheDilutions)
{
    Show(gsv("GP").sat(1U).sat(12U).sat(13U));
    Feed(sentence("GPGSA,A,3,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,1"));
    EXPECT_EQ(Shown(), "G1* G12* G13");
    EXPECT_EQ(Receiver.PDOP, 13);
}

TEST_F(gnssNMEASatsTest, StopsAGSAWhereItsFieldsEnd)
{
    struct row {
        const char* Rest;
        float PDOP;
        float HDOP;
        float VDOP;
    };
    constexpr row rows[] = {
        {"", 9, 9, 9}, {",1", 1, 9, 9}, {",1,2", 1, 2, 9}, {",1,2,3", 1, 2, 3}, {",,,", 0, 0, 9}};
    for (const row& each : rows) {
        Receiver.PDOP = Receiver.HDOP = Receiver.VDOP = 9;
        Feed(sentence("GPGSA,A,3,5,,,,,,,,,,,6" + std::string(each.Rest)));
        EXPECT_EQ(Receiver.PDOP, each.PDOP) << each.Rest;
        EXPECT_EQ(Receiver.HDOP, each.HDOP) << each.Rest;
        EXPECT_EQ(Receiver.VDOP, each.VDOP) << each.Rest;
    }
}

TEST_F(gnssNMEASatsTest, TakesOverWhoIsUsedAtTheGSVAndNotAtTheRMC)
{
    Show(gsv("GP").sat(5U).sat(6U));
    Feed(gsa("5"));
    Show(gsv("GP").sat(5U).sat(6U));
    EXPECT_EQ(Shown(), "G5* G6");
    Feed(std::string(gsv("GP").sat(5U).sat(6U)) + gsa("6") + rmc());
    EXPECT_EQ(Shown(), "G5* G6") << "the new list was made before this GSA, which marked the old one";
}

TEST_F(gnssNMEASatsTest, MarksNobodyWhoIsNotListed)
{
    Feed(gsa("5,-5,999999999999,x"));
    Show(gsv("GP").sat(6U));
    Feed(gsa("5,-5,999999999999,x"));
    EXPECT_EQ(Shown(), "G6");
}

}  // namespace
