#include "forms/gnssNMEA_UI.h"
#include "tests/forms/pageTest.h"
#include "tests/gnss/nmeaSentence.h"

namespace {

using testing::ElementsAre;

class openNMEAPage : public openPage<gnssNMEA::UI>
{
public:
    using openPage::openPage;
    using UI::FixQualityEdit;
    using UI::MagVarEdit;
};

class gnssNMEA_UITest : public pageTest
{
protected:
    openNMEAPage* ShownPage(double scale = 1.0)
    {
        auto* page = Shown<openNMEAPage>(scale);
        page->Source(&Listener.Receiver);
        return page;
    }

    static std::string GGA(char quality)
    {
        return sentence(std::string("GPGGA,123519.00,4807.038,N,01131.000,E,") + quality +
                        ",08,0.9,545.4,M,46.9,M,,");
    }

    decoderListener<gnssNMEA> Listener;
};

TEST_F(gnssNMEA_UITest, HasItsLabelsWordForWord)
{
    EXPECT_THAT(Words(Written(ShownPage())),
                ElementsAre("Latitude", "Longitude", "Altitude", "Sea level", "Speed", "Track", "HDOP",
                            "VDOP", "PDOP", "Mag. var.", "Fix qual."));
}

TEST_F(gnssNMEA_UITest, ShowsTheMagneticVariation)
{
    auto* page = ShownPage();
    Listener.Feed(sentence("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.5,W"));
    page->Refresh();
    EXPECT_EQ(Shows(page->MagVarEdit), "-3.5 °");
    Listener.Feed(sentence("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,012.5,E"));
    page->Refresh();
    EXPECT_EQ(Shows(page->MagVarEdit), "12.5 °");
}

TEST_F(gnssNMEA_UITest, NamesTheQualityOfTheFix)
{
    auto* page = ShownPage();
    const char* const names[] = {"Invalid fix",
                                 "GPS fix (SPS)",
                                 "DGPS fix",
                                 "PPS fix",
                                 "Real Time Kinematic",
                                 "Float Real Time Kinematic",
                                 "Estimated (dead reckoning)",
                                 "Manual input mode",
                                 "Simulation mode"};
    char quality = '0';
    for (const char* name : names) {
        Listener.Feed(GGA(quality++));
        page->Refresh();
        EXPECT_EQ(page->FixQualityEdit->Name(), name);
        EXPECT_THAT(Words(Written(page->FixQualityEdit)), ElementsAre(name));
    }
    Listener.Receiver.FixQuality = 200;
    page->Refresh();
    EXPECT_EQ(page->FixQualityEdit->Name(), "");
}

TEST_F(gnssNMEA_UITest, CallsAFixInvalidEvenWithAPosition)
{
    auto* page = ShownPage();
    Listener.Feed(GGA('0'));
    page->Refresh();
    EXPECT_EQ(page->FixQualityEdit->Name(), "Invalid fix");
    EXPECT_EQ(page->LatitudeEdit->Name(), "48º07′02.28″N");
}

TEST_F(gnssNMEA_UITest, LetsNobodyEdit)
{
    auto* page = ShownPage();
    Listener.Feed(GGA('1'));
    page->Refresh();
    for (const ctrlEdit_Base* edit :
         std::initializer_list<ctrlEdit_Base*>{page->MagVarEdit, page->FixQualityEdit}) {
        const std::string before = edit->Name();
        Click(edit);
        Type("7");
        Press(keyEnter);
        Turn(edit, 240);
        EXPECT_EQ(edit->Name(), before);
        EXPECT_FALSE(edit->HasFocus());
    }
}

TEST_F(gnssNMEA_UITest, KeepsItsValuesWithoutASource)
{
    auto* page = ShownPage();
    Listener.Feed(GGA('2'));
    page->Refresh();
    page->Source(nullptr);
    page->Refresh();
    EXPECT_EQ(page->FixQualityEdit->Name(), "DGPS fix");
}

TEST_F(gnssNMEA_UITest, AddsARowBelowTheOthers)
{
    struct row {
        double Scale;
        int32_t Label;
        int32_t Edit;
        int32_t Left;
        int32_t Grid;
    };
    for (const row& one : {row{1.0, 14, 18, 224, 205}, {1.5, 21, 27, 332, 308}, {2.0, 28, 36, 428, 410}}) {
        auto* page = ShownPage(one.Scale);
        Toolkit().PumpPending();
        const int32_t pitch = one.Label + one.Edit + 6;
        const int32_t quarter = (one.Left - 12) / 4;
        const int32_t third = (one.Left - 8) / 3;
        const int32_t y = 4 * pitch + one.Label + 2;
        EXPECT_EQ(AreaOf(page->MagVarEdit),
                  (rect{3 * (quarter + 4), y - pitch, one.Left, y - pitch + one.Edit}));
        EXPECT_EQ(AreaOf(page->FixQualityEdit), (rect{0, y, one.Left, y + one.Edit}));
        const std::vector<pageDrawn> texts = Written(page);
        EXPECT_EQ(Find(texts, "Mag. var.").Area,
                  (rect{3 * (quarter + 4), 3 * pitch, one.Left, 3 * pitch + one.Label}));
        EXPECT_EQ(Find(texts, "Fix qual.").Area, (rect{0, 4 * pitch, third, 4 * pitch + one.Label}));
        EXPECT_EQ(page->ClampHeight(1), static_cast<uint32_t>(4 * pitch + one.Label + 6 + 2 * one.Edit));
        EXPECT_EQ(page->Width(), static_cast<uint32_t>(one.Left + 4 + one.Grid));
        EXPECT_EQ(page->ClampWidth(1), page->Width());
        ExpectNothingOverlaps(page);
        ExpectLabelsAreFree(page, "Mag. var.");
        delete Host;
    }
}

}  // namespace
