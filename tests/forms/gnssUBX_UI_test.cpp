#include "tests/forms/ubxPageTest.h"

namespace {

using testing::ElementsAre;

class gnssUBX_UITest : public ubxPageTest
{
};

TEST_F(gnssUBX_UITest, HasItsCaptionsWordForWord)
{
    ShownFor(10);
    std::vector<std::string> boxes;
    for (const ctrlButton* box : Page->SignalBoxes)
        boxes.push_back(box->Name());
    EXPECT_THAT(boxes, ElementsAre("GPS L1C/A", "GPS L2C", "GPS L5", "Galileo E1", "Galileo E5a",
                                   "Galileo E5b", "GLONASS L1", "GLONASS L2", "BeiDou B1I", "BeiDou B1C",
                                   "BeiDou B2a", "BeiDou B2I", "NavIC L5", "SBAS", "QZSS L1C/A", "QZSS L1S",
                                   "QZSS L2C", "QZSS L5", "IMES"));
    EXPECT_EQ(Page->Tabs->Page(0)->Name(), "PPS");
    EXPECT_EQ(Page->Tabs->Page(1)->Name(), "RF spectrum");
    EXPECT_EQ(Page->RateLabel->Name(), "PPS rate");
    EXPECT_EQ(Page->DutyLabel->Name(), "duty");
    EXPECT_EQ(Page->RateEdit->Unit(), "Hz");
    EXPECT_EQ(Page->DutyEdit->Unit(), "%");
    EXPECT_THAT(Words(Written(Page)),
                ElementsAre("Latitude", "Longitude", "Altitude", "Sea level", "Speed", "Track", "HDOP",
                            "VDOP", "PDOP", "TDOP", "PPS week", "PPS time", "PPS error", "Constellations",
                            "Protocol version 34.10"));
    EXPECT_THAT(Words(Written(Page->Tabs->Page(0))), testing::Contains("PPS error history [ns]"));
}

TEST_F(gnssUBX_UITest, ShowsSomeBoxesBeforeItKnowsTheModel)
{
    Page = Shown<openUBXPage>();
    EXPECT_THAT(BoxesShown(),
                ElementsAre("GPS L1C/A", "Galileo E1", "GLONASS L1", "BeiDou B1I", "SBAS", "QZSS L1C/A"));
    EXPECT_EQ(Page->Tabs->PageCount, 1U);
}

TEST_F(gnssUBX_UITest, ShowsPositionAndTimeMorePreciselyThanOthers)
{
    ShownFor(9);
    Feed(ubxFrame(0x01, 0x02)
             .u4(0)
             .i4(115'166'667)
             .i4(481'173'000)
             .i4(0)
             .i4(545'500)
             .u4(0)
             .u4(0));  // NAV-POSLLH
    Page->Refresh();
    EXPECT_EQ(Page->LatitudeEdit->Name(), "48º07′02.2800″N");
    EXPECT_EQ(Page->LongitudeEdit->Name(), "11º31′00.0001″E");
    EXPECT_EQ(Page->TimeEdit->Name(), "0:00:00.000");
    EXPECT_EQ(Shows(Page->AltitudeEdit), "545.5 m");
}

TEST_F(gnssUBX_UITest, ShowsThePulse)
{
    ShownFor(9);
    Feed(Pulse(-1250));
    Feed(ubxFrame(0x01, 0x04).u4(0).u2(110).u2(120).u2(75).u2(130).u2(140).u2(150).u2(160));  // NAV-DOP
    Receiver.PPSDuty = 0.125F;
    Receiver.PPSRate = 5.0F;
    Page->Refresh();
    EXPECT_EQ(Shows(Page->PPSWeekBox), "2345 ");
    EXPECT_EQ(Shows(Page->PPSTimeBox), "345600.500 s");
    EXPECT_EQ(Shows(Page->PPSErrorBox), "-1250.00 ps");
    EXPECT_EQ(Shows(Page->TDOPBox), "0.7500 ");
    EXPECT_EQ(Shows(Page->DutyEdit), "12.5000 %");
    EXPECT_EQ(Shows(Page->RateEdit), "5 Hz");
    for (const ctrlEdit_Val* box : {Page->TDOPBox, Page->PPSWeekBox, Page->PPSTimeBox, Page->PPSErrorBox})
        EXPECT_FALSE(box->HasStyle(styleFocusable));
}

TEST_F(gnssUBX_UITest, TellsTheProtocolVersionWithTwoDigitsBehindThePoint)
{
    struct row {
        const char* Version;
        const char* Text;
    };
    for (const row& one : {row{"PROTVER=27.31", "Protocol version 27.31"},
                           {"PROTVER=8.05", "Protocol version 8.05"},
                           {"PROTVER=255.255", "Protocol version 255.255"},
                           {"FWVER=ANY", "Protocol version 0.00"}}) {
        Receiver.Model = 0;
        ShownFor(9, 1.0, one.Version);
        const pageDrawn line = Find(Written(Page), one.Text);
        EXPECT_TRUE(line.Has("FFC000/1")) << line.How;
        EXPECT_EQ(line.Area.Top, 8 * 18 + 2 * (3 * 14 + 22));
        delete Host;
    }
}

TEST_F(gnssUBX_UITest, PaintsAgainWhenTheVersionChangesAndNotOtherwise)
{
    ShownFor(9);
    const unsigned before = Page->Paints;
    Page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(Page->Paints, before);
    Receiver.ProtVer = 0x1234;
    Page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(Page->Paints, before + 1);
    EXPECT_EQ(Page->ShownProtVer, 0x1234);
}

TEST_F(gnssUBX_UITest, TakesOtherStyleBitsAsAnyControlDoes)
{
    ShownFor(9);
    Page->StyleSet(styleFollowX);
    EXPECT_TRUE(Page->HasStyle(styleFollowX));
    EXPECT_TRUE(Page->HasStyle(stylePulseEdit));
}

}  // namespace
