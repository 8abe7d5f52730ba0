#include "tests/forms/pageTest.h"
#include "tests/gnss/nmeaSentence.h"

#include <cmath>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using basePage = openPage<gnss::UI>;

class gnssUITest : public pageTest
{
protected:
    void Feed(const std::string& stream) { Listener.Feed(stream); }

    static std::string TextOf(const ctrlWindow* edit) { return edit->Name(); }

    static std::vector<ctrlEdit_Base*> EditsOf(const basePage* page)
    {
        return {page->DateEdit,     page->TimeEdit,  page->LatitudeEdit, page->LongitudeEdit,
                page->AltitudeEdit, page->SpeedEdit, page->SeaLevelEdit, page->TrackEdit,
                page->HDOPEdit,     page->VDOPEdit,  page->PDOPEdit};
    }

    decoderListener<gnssNMEA> Listener;
    gnssNMEA& Receiver = Listener.Receiver;
    gnss Model;  // whatever a decoder may have made of its fields
};

TEST_F(gnssUITest, HasItsLabelsWordForWord)
{
    auto* page = Shown<basePage>();
    EXPECT_EQ(page->DateLabel->Name(), "Date UTC");
    EXPECT_EQ(page->TimeLabel->Name(), "Time UTC");
    const std::vector<pageDrawn> texts = Written(page);
    std::vector<std::string> painted;
    for (const pageDrawn& text : texts) {
        if (text.Target != Find(texts, "Latitude").Target)
            continue;
        painted.push_back(text.Text);
        EXPECT_TRUE(text.Has("FFC000/1")) << text.How;
        EXPECT_FALSE(text.Has("bold") || text.Has("italic")) << text.How;
    }
    EXPECT_THAT(painted, ElementsAre("Latitude", "Longitude", "Altitude", "Sea level", "Speed", "Track",
                                     "HDOP", "VDOP", "PDOP"));
    EXPECT_THAT(Words(Written(page->DateLabel)), ElementsAre("Date UTC"));
    EXPECT_THAT(Words(Written(page->TimeLabel)), ElementsAre("Time UTC"));
}

TEST_F(gnssUITest, ShowsWhatSentencesTold)
{
    auto* page = Shown<basePage>();
    page->Source(&Receiver);
    Feed(sentence("GPGGA,123519.25,4807.038,N,01131.000,W,1,08,0.9,545.5,M,46.9,M,,") + gsa("04,05") +
         sentence("GPRMC,123519.25,A,4807.038,N,01131.000,W,020.0,084.4,230394,003.1,W"));
    page->Refresh();
    EXPECT_EQ(TextOf(page->DateEdit), "23/03/1994");
    EXPECT_EQ(TextOf(page->TimeEdit), "12:35:19.25");
    EXPECT_EQ(TextOf(page->LatitudeEdit), "48º07′02.28″N");
    EXPECT_EQ(TextOf(page->LongitudeEdit), "11º31′00.00″W");
    EXPECT_EQ(Shows(page->AltitudeEdit), "545.5 m");
    EXPECT_EQ(Shows(page->SeaLevelEdit), "46.9 m");
    EXPECT_EQ(Shows(page->SpeedEdit), "37.0 km/h");
    EXPECT_EQ(Shows(page->TrackEdit), "84.4 °");
    EXPECT_EQ(Shows(page->HDOPEdit), "0.90 ");
    EXPECT_EQ(Shows(page->VDOPEdit), "1.20 ");
    EXPECT_EQ(Shows(page->PDOPEdit), "1.50 ");
}

TEST_F(gnssUITest, ShowsAtOnceWhatANewSourceHolds)
{
    auto* page = Shown<basePage>();
    Model.Altitude = 12.25;
    Model.Year = 2026;
    Model.Month = 11;
    Model.Day = 22;
    page->Source(&Model);
    EXPECT_EQ(Shows(page->AltitudeEdit), "12.3 m");
    EXPECT_EQ(TextOf(page->DateEdit), "22/11/2026");
}

TEST_F(gnssUITest, DoesNotUpdateByItself)
{
    auto* page = Shown<basePage>();
    page->Source(&Model);
    Model.Altitude = 12;
    Toolkit().PumpPending();
    EXPECT_EQ(Shows(page->AltitudeEdit), "0.0 m");
    page->Refresh();
    EXPECT_EQ(Shows(page->AltitudeEdit), "12.0 m");
}

TEST_F(gnssUITest, ShowsASpeedUpToFiftyWithOneDecimalAndAboveWithNone)
{
    struct row {
        float Speed;
        const char* Text;
    };
    auto* page = Shown<basePage>();
    page->Source(&Model);
    for (const row& one : {row{0.0F, "0.0 km/h"},
                           {50.0F, "50.0 km/h"},
                           {50.1F, "50 km/h"},
                           {731.6F, "732 km/h"},
                           {-3.25F, "-3.3 km/h"},
                           {49.0F, "49.0 km/h"}}) {
        Model.Speed = one.Speed;
        page->Refresh();
        EXPECT_EQ(Shows(page->SpeedEdit), one.Text);
    }
}

TEST_F(gnssUITest, NeedsNoPrefixForLargeValues)
{
    auto* page = Shown<basePage>();
    page->Source(&Model);
    Model.Altitude = 123456.75;
    Model.SeaLevel = -12345.5F;
    page->Refresh();
    EXPECT_EQ(Shows(page->AltitudeEdit), "123456.8 m");
    EXPECT_EQ(Shows(page->SeaLevelEdit), "-12345.5 m");
}

TEST_F(gnssUITest, KeepsWhatItShowedWhereAFieldIsNoNumber)
{
    auto* page = Shown<basePage>();
    page->Source(&Model);
    Model.Latitude = 10;
    Model.TimeOfDay = 61;
    Model.Altitude = 7;
    Model.HDOP = 1;
    page->Refresh();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr float noneF = std::numeric_limits<float>::quiet_NaN();
    Model.Latitude = Model.Longitude = Model.Altitude = Model.TimeOfDay = none;
    Model.HDOP = Model.VDOP = Model.PDOP = Model.Speed = Model.Track = Model.SeaLevel = noneF;
    page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(TextOf(page->LatitudeEdit), "10º00′00.00″N");
    EXPECT_EQ(TextOf(page->TimeEdit), "0:01:01.00");
    EXPECT_EQ(Shows(page->AltitudeEdit), "7.0 m");
    EXPECT_EQ(Shows(page->HDOPEdit), "1.00 ");
}

TEST_F(gnssUITest, ShowsValuesThatNoReceiverMeant)
{
    auto* page = Shown<basePage>();
    page->Source(&Model);
    constexpr double infinite = std::numeric_limits<double>::infinity();
    Model.Latitude = infinite;
    Model.Longitude = -1e300;
    Model.Altitude = -infinite;
    Model.TimeOfDay = infinite;
    Model.Speed = std::numeric_limits<float>::max();
    Model.HDOP = std::numeric_limits<float>::infinity();
    Model.Year = 65535;
    Model.Month = 255;
    Model.Day = 255;
    page->Refresh();
    Toolkit().PumpPending();
    EXPECT_EQ(TextOf(page->LatitudeEdit), "90º00′00.00″N");
    EXPECT_EQ(TextOf(page->LongitudeEdit), "180º00′00.00″W");
    EXPECT_EQ(TextOf(page->TimeEdit), "24:00:00.00");
    EXPECT_EQ(TextOf(page->DateEdit), "31/12/9999");
    EXPECT_THAT(TextOf(page->AltitudeEdit), testing::HasSubstr("∞"));
    Model.Year = Model.Month = Model.Day = 0;
    page->Refresh();
    EXPECT_EQ(TextOf(page->DateEdit), "01/01/0000");
}

TEST_F(gnssUITest, LetsNobodyEdit)
{
    auto* page = Shown<basePage>();
    Model.Latitude = Model.Longitude = 10;
    page->Source(&Model);
    std::vector<std::string> before;
    for (const ctrlEdit_Base* edit : EditsOf(page))
        before.push_back(TextOf(edit));
    for (const ctrlEdit_Base* edit : EditsOf(page)) {
        EXPECT_FALSE(edit->HasStyle(styleFocusable));
        Click(edit);
        EXPECT_FALSE(edit->HasFocus());
        Type("7");
        Press(keyEnter);
        Turn(edit, 240);
    }
    std::vector<std::string> after;
    for (const ctrlEdit_Base* edit : EditsOf(page))
        after.push_back(TextOf(edit));
    EXPECT_EQ(after, before);
}

TEST_F(gnssUITest, KeepsItsValuesWithoutASourceAndForgetsTheSatellites)
{
    auto* page = Shown<basePage>();
    page->Source(&Receiver);
    Feed(std::string(gsv("GP").sat(3).sat(4)) + rmc());
    page->Refresh();
    EXPECT_EQ(Words(Written(page->VisSats)).size(), 5U + 2 * 4) << "no sentence told the signals";
    const std::string date = TextOf(page->DateEdit);

    page->Source(nullptr);
    page->Refresh();
    EXPECT_EQ(TextOf(page->DateEdit), date);
    EXPECT_EQ(page->VisSats->RowHeights.size(), 3U);
    EXPECT_THAT(Words(Written(page->VisSats)), ElementsAre("ID", "Elev.", "Az.", "SNR", "Signal"));
}

TEST_F(gnssUITest, GoesWhileItsSourceStays)
{
    auto* page = Shown<basePage>();
    page->Source(&Receiver);
    Host->Page = nullptr;
    page->Destroy();
    Feed(std::string(gsv("GP").sat(3)) + rmc());
    Toolkit().PumpPending();
    EXPECT_THAT(VisibleChildren(Host), IsEmpty());
}

}  // namespace
