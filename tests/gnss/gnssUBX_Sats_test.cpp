#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class gnssUBXSats : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    // The only satellite of the list.
    const SatInfo& TheSat() const
    {
        EXPECT_EQ(Receiver.Sats.size(), 1u);
        return Receiver.Sats.at(0);
    }

    ubxLink Link{false};
    gnssUBX& Receiver = Link.Receiver;
};

// NAV-SVINFO, NAV-SAT or NAV-SIG, record by record.
class listFrame
{
public:
    listFrame(unsigned id, unsigned version) : Id(id), Version(version) {}

    listFrame& svinfo(unsigned svid, unsigned flags, unsigned quality, unsigned cno, int elev = 0,
                      int azim = 0)
    {
        Records.u1(7).u1(svid).u1(flags).u1(quality).u1(cno).i1(elev).i2(azim).zeros(4);
        return Counted();
    }

    listFrame& sat(unsigned gnssId, unsigned svId, unsigned cno = 40, uint32_t flags = GoodSat, int elev = 0,
                   int azim = 0)
    {
        Records.u1(gnssId).u1(svId).u1(cno).i1(elev).i2(azim).zeros(2).u4(flags);
        return Counted();
    }

    listFrame& signal(unsigned gnssId, unsigned svId, unsigned sigId)
    {
        Records.u1(gnssId).u1(svId).u1(sigId).zeros(13);
        return Counted();
    }

    listFrame& counting(unsigned count)
    {
        Count = count;
        return *this;
    }

    ubxFrame frame() const
    {
        ubxFrame whole(0x01, Id);
        whole.u4(1000);
        if (Id == 0x30)
            whole.u1(Count).zeros(3);
        else
            whole.u1(Version).u1(Count).zeros(2);
        return whole.bytes(Records.payload());
    }

    operator ubxBytes() const { return frame(); }

    static constexpr uint32_t GoodSat = 0x14;  // health 1, qualityInd 4

private:
    listFrame& Counted()
    {
        Count++;
        return *this;
    }

    unsigned Id;
    unsigned Version;
    unsigned Count = 0;
    ubxFrame Records{0, 0};
};

listFrame navSvinfo()
{
    return {0x30, 0};
}

listFrame navSat(unsigned version = 1)
{
    return {0x35, version};
}

listFrame navSig(unsigned version = 0)
{
    return {0x43, version};
}

}  // namespace

// --- NAV-SVINFO

TEST_F(gnssUBXSats, OlderListMapsEveryNumberToItsConstellation)
{
    for (unsigned svid = 0; svid < 256; svid++) {
        gnss::Source source = gnss::Source::Unknown;
        unsigned number = svid;
        unsigned signal = 0;
        if (svid >= 1 && svid <= 32) {
            source = gnss::Source::GPS;
            signal = 31;
        } else if (svid >= 65 && svid <= 96) {
            source = gnss::Source::GLONASS;
            number = svid - 64;
            signal = 29;
        } else if (svid >= 120 && svid <= 158) {
            source = gnss::Source::SBAS;
            signal = 43;
        } else if (svid >= 193 && svid <= 197) {
            source = gnss::Source::QZSS;
            number = svid - 192;
            signal = 37;
        } else if (svid == 255) {
            source = gnss::Source::GLONASS;
            signal = 29;
        }
        feed(Receiver, navSvinfo().svinfo(svid, 1, 4, 40));
        EXPECT_EQ(TheSat().Source, source) << svid;
        EXPECT_EQ(TheSat().SvId, number) << svid;
        EXPECT_THAT(TheSat().Signals, ElementsAre(signal, 0, 0)) << svid;
    }
}

TEST_F(gnssUBXSats, AGlonassSatelliteOfUnknownNumberKeeps255)
{
    feed(Receiver, navSvinfo().svinfo(255, 0, 4, 30));
    EXPECT_EQ(TheSat().Source, gnss::Source::GLONASS);
    EXPECT_EQ(TheSat().SvId, 255);
}

TEST_F(gnssUBXSats, ANumberOfNoConstellationIsUnknown)
{
    feed(Receiver, navSvinfo().svinfo(100, 0, 4, 30));
    EXPECT_EQ(TheSat().Source, gnss::Source::Unknown);
    EXPECT_EQ(TheSat().SvId, 100);
}

TEST_F(gnssUBXSats, OlderListReadsAnglesUseAndLevel)
{
    struct {
        unsigned Flags, Quality;
        float SNR;
        unsigned Used;
    } constexpr Cases[] = {
        {0x00, 2, 44, 0}, {0x01, 4, 44, 1}, {0x01, 7, 44, 1}, {0x00, 1, -1, 0},
        {0x01, 0, -1, 1}, {0x10, 7, -1, 0}, {0x11, 4, -1, 1}, {0xEE, 4, 44, 0},
    };
    for (const auto& row : Cases) {
        feed(Receiver, navSvinfo().svinfo(12, row.Flags, row.Quality, 44, -5, 359));
        EXPECT_EQ(TheSat().SNR, row.SNR) << row.Flags << " " << row.Quality;
        EXPECT_EQ(TheSat().Used, row.Used);
        EXPECT_EQ(TheSat().Elevation, -5);
        EXPECT_EQ(TheSat().Azimuth, 359);
    }
}

// --- NAV-SAT

TEST_F(gnssUBXSats, NewerListMapsEveryConstellation)
{
    struct {
        gnss::Source Source;
        unsigned Signal;
    } constexpr Rows[] = {
        {gnss::Source::GPS, 31},     {gnss::Source::SBAS, 43},  {gnss::Source::Galileo, 16},
        {gnss::Source::BeiDou, 4},   {gnss::Source::IMES, 0},   {gnss::Source::QZSS, 37},
        {gnss::Source::GLONASS, 29}, {gnss::Source::NavIC, 36},
    };
    for (unsigned gnssId = 0; gnssId < 256; gnssId++) {
        feed(Receiver, navSat());
        feed(Receiver, navSat().sat(gnssId, 200));
        EXPECT_EQ(TheSat().Source, gnssId < 8 ? Rows[gnssId].Source : gnss::Source::Unknown) << gnssId;
        EXPECT_THAT(TheSat().Signals, ElementsAre(gnssId < 8 ? Rows[gnssId].Signal : 0, 0, 0)) << gnssId;
        EXPECT_EQ(TheSat().SvId, 200) << "as the message has it";
    }
}

TEST_F(gnssUBXSats, ALevelCountsOnlyOfAHealthySatelliteThatWasFound)
{
    for (uint32_t low = 0; low < 64; low++) {
        const uint32_t flags = low | 0xABCDEF40;
        const unsigned quality = low & 7;
        const unsigned health = low >> 4 & 3;
        feed(Receiver, navSat().sat(0, 5, 37, flags, 90, -1));
        EXPECT_EQ(TheSat().SNR, health == 1 && quality >= 2 ? 37.0f : -1.0f) << low;
        EXPECT_EQ(TheSat().Used, low >> 3 & 1) << low;
        EXPECT_EQ(TheSat().Elevation, 90);
        EXPECT_EQ(TheSat().Azimuth, -1);
    }
}

TEST_F(gnssUBXSats, ASatelliteThatIsNotTrackedStaysInTheList)
{
    feed(Receiver, navSat().sat(0, 5, 0, 0).sat(0, 6));
    ASSERT_EQ(Receiver.Sats.size(), 2u);
    EXPECT_EQ(Receiver.Sats[0].SNR, -1.0f);
}

TEST_F(gnssUBXSats, TheListKeepsTheOrderOfTheMessage)
{
    feed(Receiver, navSat().sat(6, 9).sat(0, 30).sat(3, 4).sat(0, 2));
    std::vector<unsigned> numbers;
    for (const SatInfo& sat : Receiver.Sats)
        numbers.push_back(sat.SvId);
    EXPECT_THAT(numbers, ElementsAre(9, 30, 4, 2));
}

TEST_F(gnssUBXSats, SignalsThatWereFoundSurviveTheNextList)
{
    feed(Receiver, navSat().sat(0, 5).sat(2, 5));
    feed(Receiver, navSig().signal(0, 5, 0).signal(0, 5, 7));
    feed(Receiver, navSat().sat(2, 5).sat(0, 5).sat(0, 6));
    ASSERT_EQ(Receiver.Sats.size(), 3u);
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(0, 0, 0)) << "NAV-SIG had found none";
    EXPECT_THAT(Receiver.Sats[1].Signals, ElementsAre(31, 35, 0));
    EXPECT_THAT(Receiver.Sats[2].Signals, ElementsAre(31, 0, 0)) << "is new";
}

TEST_F(gnssUBXSats, OfASatelliteListedTwiceTheLaterSignalsAreCarriedOver)
{
    SatInfo first;
    first.Source = gnss::Source::GPS;
    first.SvId = 5;
    SatInfo second = first;
    first.Signals[0] = 32;
    second.Signals[0] = 33;
    Receiver.Sats = {first, second};
    feed(Receiver, navSat().sat(0, 5));
    EXPECT_THAT(TheSat().Signals, ElementsAre(33, 0, 0));
}

// --- NAV-SIG

TEST_F(gnssUBXSats, EverySignalIdMapsToItsText)
{
    struct {
        unsigned GnssId, SigId;
        std::string_view Text;
    } constexpr Rows[] = {
        {0, 0, "L1C/A"},  {0, 3, "L2 CL"},  {0, 4, "L2 CM"},  {0, 6, "L5 I"},   {0, 7, "L5 Q"},     //
        {1, 0, "L1C/A"},                                                                            //
        {2, 0, "E1 C"},   {2, 1, "E1 B"},   {2, 3, "E5 aI"},  {2, 4, "E5 aQ"},  {2, 5, "E5 bI"},    //
        {2, 6, "E5 bQ"},  {2, 8, "E6 B"},   {2, 9, "E6 C"},   {2, 10, "E6 A"},                      //
        {3, 0, "B1I D1"}, {3, 1, "B1I D2"}, {3, 2, "B2I D1"}, {3, 3, "B2I D2"}, {3, 4, "B3I D1"},   //
        {3, 5, "B1 Cp"},  {3, 6, "B1 Cd"},  {3, 7, "B2 ap"},  {3, 8, "B2 ad"},  {3, 10, "B3I D2"},  //
        {5, 0, "L1C/A"},  {5, 1, "L1S"},    {5, 4, "L2 CM"},  {5, 5, "L2 CL"},  {5, 8, "L5 I"},     //
        {5, 9, "L5 Q"},   {6, 0, "L1 OF"},  {6, 2, "L2 OF"},  {7, 0, "L5 A"},
    };
    struct {
        unsigned First, Last;
    } constexpr Groups[] = {{31, 35}, {43, 43}, {16, 28}, {1, 15}, {0, 0}, {37, 42}, {29, 30}, {36, 36}};
    for (unsigned gnssId = 0; gnssId < 12; gnssId++) {
        for (unsigned sigId = 0; sigId < 256; sigId++) {
            std::string_view text;
            for (const auto& row : Rows)
                if (row.GnssId == gnssId && row.SigId == sigId)
                    text = row.Text;
            feed(Receiver, navSat().sat(gnssId, 5));
            feed(Receiver, navSig().signal(gnssId, 5, sigId));
            const uint8_t signal = TheSat().Signals[0];
            EXPECT_EQ(SignalName(signal), text) << gnssId << " " << sigId;
            EXPECT_THAT(TheSat().Signals, ElementsAre(signal, 0, 0));
            // Equal texts are told apart by the constellation.
            if (!text.empty()) {
                EXPECT_GE(signal, Groups[gnssId].First) << gnssId << " " << sigId;
                EXPECT_LE(signal, Groups[gnssId].Last) << gnssId << " " << sigId;
            }
        }
    }
}

TEST_F(gnssUBXSats, KeepsTheFirstThreeSignalsOfASatellite)
{
    feed(Receiver, navSat().sat(0, 5));
    feed(Receiver, navSig().signal(0, 5, 7).signal(0, 5, 3).signal(0, 5, 0).signal(0, 5, 4));
    EXPECT_THAT(TheSat().Signals, ElementsAre(35, 32, 31));
}

TEST_F(gnssUBXSats, ASignalOfAnUnknownSatelliteChangesNothing)
{
    feed(Receiver, navSat().sat(0, 5).sat(6, 7));
    feed(Receiver, navSig().signal(0, 6, 0).signal(2, 5, 0).signal(9, 5, 0).signal(0, 5, 3));
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(32, 0, 0));
    EXPECT_THAT(Receiver.Sats[1].Signals, ElementsAre(0, 0, 0));
}

TEST_F(gnssUBXSats, AMessageWithoutSignalsTakesThemAllAway)
{
    feed(Receiver, navSat().sat(0, 5));
    feed(Receiver, navSig());
    EXPECT_THAT(TheSat().Signals, ElementsAre(0, 0, 0));
    EXPECT_EQ(Link.NewData, 2u);
}

TEST_F(gnssUBXSats, OfASatelliteListedTwiceTheFirstGetsTheSignals)
{
    feed(Receiver, navSat().sat(0, 5, 11).sat(0, 5, 22));
    feed(Receiver, navSig().signal(0, 5, 0));
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(31, 0, 0));
    EXPECT_THAT(Receiver.Sats[1].Signals, ElementsAre(0, 0, 0));
}

TEST_F(gnssUBXSats, SignalsLeaveTheRestOfASatelliteAsItWas)
{
    feed(Receiver, navSat().sat(0, 5, 37, listFrame::GoodSat | 8, 45, 90));
    feed(Receiver, navSig().signal(0, 5, 0));
    EXPECT_EQ(TheSat().SNR, 37);
    EXPECT_EQ(TheSat().Used, 1);
    EXPECT_EQ(TheSat().Elevation, 45);
    EXPECT_EQ(TheSat().Azimuth, 90);
}

// --- All three

TEST_F(gnssUBXSats, ListsOfAnotherVersionAreDropped)
{
    for (unsigned version = 0; version < 256; version++) {
        ubxLink link(false);
        feed(link.Receiver, navSat(version).sat(0, 5));
        EXPECT_EQ(link.Receiver.Sats.size(), version == 1 ? 1u : 0u) << version;
        feed(link.Receiver, navSat().sat(0, 5));
        link.NewData = 0;
        feed(link.Receiver, navSig(version).signal(0, 5, 3));
        EXPECT_EQ(link.NewData, version == 0 ? 1u : 0u) << version;
    }
}

TEST_F(gnssUBXSats, AListOneByteTooLongOrTooShortIsDroppedWhole)
{
    feed(Receiver, navSat().sat(0, 9));
    Link.NewData = 0;
    for (const listFrame& list : {navSvinfo().svinfo(5, 1, 4, 40).svinfo(6, 1, 4, 40),
                                  navSat().sat(0, 5).sat(0, 6), navSig().signal(0, 9, 3).signal(0, 9, 4)}) {
        const size_t size = list.frame().payload().size();
        feed(Receiver, list.frame().resized(size - 1));
        feed(Receiver, list.frame().resized(size + 1));
        feed(Receiver, listFrame(list).counting(1));
        feed(Receiver, listFrame(list).counting(3));
        feed(Receiver, listFrame(list).counting(255));
    }
    EXPECT_EQ(Link.NewData, 0u);
    EXPECT_EQ(TheSat().SvId, 9);
    EXPECT_THAT(TheSat().Signals, ElementsAre(31, 0, 0));
}

TEST_F(gnssUBXSats, TakesAsManySatellitesAndSignalsAsAMessageCanCount)
{
    listFrame sats = navSat();
    listFrame signals = navSig();
    for (unsigned at = 0; at < 255; at++) {
        sats.sat(at % 8, at);
        signals.signal(at % 8, at, 0);
    }
    feed(Receiver, sats);
    feed(Receiver, signals);
    ASSERT_EQ(Receiver.Sats.size(), 255u);
    EXPECT_THAT(Receiver.Sats[254].Signals, ElementsAre(29, 0, 0));
    listFrame old = navSvinfo();
    for (unsigned at = 0; at < 255; at++)
        old.svinfo(at, 0, 4, 40);
    feed(Receiver, old);
    EXPECT_EQ(Receiver.Sats.size(), 255u);
}

TEST_F(gnssUBXSats, AnEmptyListEmptiesTheList)
{
    feed(Receiver, navSat().sat(0, 5));
    feed(Receiver, navSat());
    EXPECT_THAT(Receiver.Sats, IsEmpty());
    EXPECT_EQ(Link.NewData, 2u);
}
