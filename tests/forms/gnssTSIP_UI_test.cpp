#include "tests/forms/tsipPageTest.h"

#include <limits>

namespace {

using testing::ElementsAre;

class gnssTSIP_UITest : public tsipPageTest
{
};

TEST_F(gnssTSIP_UITest, HasItsLabelsWordForWord)
{
    ShownPage();
    std::vector<std::string> words = Words(Written(Page));
    ASSERT_GE(words.size(), 19U);
    words.resize(19);
    EXPECT_THAT(words,
                ElementsAre("Latitude", "Longitude", "Altitude", "Sea level", "Speed", "Track", "HDOP",
                            "VDOP", "PDOP", "TDOP", "Week no.", "Week time", "UTC offset", "Clock bias",
                            "Bias rate", "PPS error", "RX Mode", "Decode status", "Temperature"));
}

TEST_F(gnssTSIP_UITest, KnowsNoModesBeforeTheFirstReport)
{
    ShownPage();
    EXPECT_EQ(Page->RXModeEdit->Name(), "Unknown");
    EXPECT_EQ(Page->DecodeStatusEdit->Name(), "Unknown");
    EXPECT_THAT(Words(Written(Page->RXModeEdit)), ElementsAre("Unknown"));
}

TEST_F(gnssTSIP_UITest, ShowsTheTimingReports)
{
    ShownPage();
    Feed(primaryTiming({.TimeOfWeek = 100'018,
                        .Week = 1000,
                        .Offset = 18,
                        .Flags = 1,
                        .Hours = 3,
                        .Minutes = 46,
                        .Seconds = 40,
                        .Day = 2,
                        .Month = 11,
                        .Year = 2026}));
    EXPECT_EQ(Shows(Page->WeekTimeEdit), "100000 s");
    EXPECT_EQ(Shows(Page->UTCOffsetEdit), "18 s");
    EXPECT_EQ(Page->WeekEdit->ValueGetI(), Receiver.Week);
    EXPECT_EQ(Page->WeekEdit->Unit(), "");
    EXPECT_EQ(Page->TimeEdit->Name(), "3:46:40.000");

    Feed(supplemental{
        .Mode = 7, .Decoding = 0x0A, .Bias = 12.5F, .Rate = 0.25F, .Temperature = 36.5F, .PPS = 8e-12F});
    EXPECT_EQ(Shows(Page->ClockBiasEdit), "12.50 ns");
    EXPECT_EQ(Shows(Page->BiasRateEdit), "0.25 ppb");
    EXPECT_EQ(Shows(Page->TemperatureEdit), "36.5 °C");
    EXPECT_EQ(Shows(Page->PPSErrorEdit), "8 ps");
    EXPECT_EQ(Page->RXModeEdit->Name(), "Over-determine clock");
    EXPECT_EQ(Page->DecodeStatusEdit->Name(), "Only 2 usable sats");
    EXPECT_TRUE(Page->LatitudeEdit->Name().starts_with("28º38′52.403")) << Page->LatitudeEdit->Name();
    EXPECT_EQ(Page->LatitudeEdit->Name().size(), std::string("28º38′52.4031″N").size()) << "four decimals";

    Feed(allInView({}));
    EXPECT_EQ(Shows(Page->TDOPEdit), "4.00 ");
}

TEST_F(gnssTSIP_UITest, NamesEveryModeAndStatus)
{
    ShownPage();
    const char* const modes[] = {"Automatic (2D/3D)",
                                 "Single satellite",
                                 "Unknown",
                                 "Horizontal (2D)",
                                 "Full position (3D)",
                                 "GPS reference",
                                 "Clock hold (2D)",
                                 "Over-determine clock",
                                 "Unknown",
                                 "Unknown"};
    for (unsigned mode = 0; mode < std::size(modes); ++mode) {
        Feed(supplemental{.Mode = mode});
        EXPECT_EQ(Page->RXModeEdit->Name(), modes[mode]);
    }
    Feed(supplemental{.Mode = 200});
    EXPECT_EQ(Page->RXModeEdit->Name(), "Unknown");
    struct row {
        unsigned Code;
        const char* Text;
    };
    for (const row& one : {row{0x00, "Doing Fixes"},
                           {0x01, "No GPS time"},
                           {0x02, "Need initialization"},
                           {0x03, "PDOP too high"},
                           {0x08, "No usable sats"},
                           {0x09, "Only 1 usable sat"},
                           {0x0A, "Only 2 usable sats"},
                           {0x0B, "Only 3 usable sats"},
                           {0x0C, "Chosen sat unusable"},
                           {0x10, "T-RAIM rejected fix"},
                           {0xFF, "Unknown"},
                           {0x04, "Unknown"},
                           {0x11, "Unknown"}}) {
        Feed(supplemental{.Decoding = one.Code});
        EXPECT_EQ(Page->DecodeStatusEdit->Name(), one.Text);
    }
}

TEST_F(gnssTSIP_UITest, ShowsALargeBiasInMicroseconds)
{
    struct row {
        float Bias;
        const char* Text;
    };
    ShownPage();
    for (const row& one : {row{99'999.9F, "99999.90 ns"},
                           {100'000.0F, "100.000 μs"},
                           {-100'000.0F, "-100.000 μs"},
                           {-99'999.5F, "-99999.50 ns"},
                           {0.0F, "0.00 ns"},
                           {2'500'000.0F, "2500.000 μs"}}) {
        Feed(supplemental{.Bias = one.Bias});
        EXPECT_EQ(Shows(Page->ClockBiasEdit), one.Text);
    }
}

TEST_F(gnssTSIP_UITest, ShowsALargeRateInPartsPerMillion)
{
    struct row {
        float Rate;
        const char* Text;
    };
    ShownPage();
    for (const row& one : {row{9'999.5F, "9999.50 ppb"},
                           {10'000.0F, "10.00 ppm"},
                           {-10'000.0F, "-10.00 ppm"},
                           {-0.25F, "-0.25 ppb"}}) {
        Feed(supplemental{.Rate = one.Rate});
        EXPECT_EQ(Shows(Page->BiasRateEdit), one.Text);
    }
}

TEST_F(gnssTSIP_UITest, KeepsNumberAndUnitWhereAFieldIsNoNumber)
{
    ShownPage();
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    Feed(supplemental{.Bias = 200'000, .Rate = 20'000, .Temperature = 20, .PPS = 1e-12F});
    Feed(supplemental{.Bias = none, .Rate = none, .Temperature = none, .PPS = none});
    EXPECT_EQ(Shows(Page->ClockBiasEdit), "200.000 μs");
    EXPECT_EQ(Shows(Page->BiasRateEdit), "20.00 ppm");
    EXPECT_EQ(Shows(Page->TemperatureEdit), "20.0 °C");
    Receiver.WeekTime = Receiver.UTCOffset = none;
    Feed(supplemental{.Bias = std::numeric_limits<float>::infinity(),
                      .Rate = -std::numeric_limits<float>::infinity()});
    Toolkit().PumpPending();
    EXPECT_EQ(Page->ClockBiasEdit->Unit(), "μs");
    Receiver.WeekTime = 1e30F;
    Page->Refresh();
    EXPECT_EQ(Page->WeekTimeEdit->ValueGetI(), 0) << "no whole number is that large";
}

TEST_F(gnssTSIP_UITest, SaysByItsLabelsWhoseTimeItShows)
{
    ShownPage();
    EXPECT_EQ(Page->DateLabel->Name(), "Date GPS");
    EXPECT_EQ(Page->TimeLabel->Name(), "Time GPS");
    Feed(primaryTiming({.Flags = 1}));
    EXPECT_THAT(Words(Written(Page->DateLabel)), ElementsAre("Date UTC"));
    EXPECT_THAT(Words(Written(Page->TimeLabel)), ElementsAre("Time UTC"));
    Feed(primaryTiming({.Flags = 0}));
    EXPECT_EQ(Page->DateLabel->Name(), "Date GPS");
    EXPECT_EQ(Page->TimeLabel->Name(), "Time GPS");
}

TEST_F(gnssTSIP_UITest, LetsNobodyEdit)
{
    ShownPage();
    for (const ctrlEdit_Base* edit : std::initializer_list<ctrlEdit_Base*>{
             Page->TDOPEdit, Page->WeekEdit, Page->WeekTimeEdit, Page->UTCOffsetEdit, Page->ClockBiasEdit,
             Page->BiasRateEdit, Page->PPSErrorEdit, Page->RXModeEdit, Page->DecodeStatusEdit,
             Page->TemperatureEdit}) {
        const std::string before = edit->Name();
        Click(edit);
        Type("7");
        Press(keyEnter);
        Turn(edit, 240);
        EXPECT_EQ(edit->Name(), before);
        EXPECT_FALSE(edit->HasFocus());
    }
}

TEST_F(gnssTSIP_UITest, LinesItsRowsUpAtEachScale)
{
    struct row {
        double Scale;
        int32_t Label;
        int32_t Edit;
        int32_t Left;
        int32_t Grid;
        int32_t Side;
        int32_t Panel;
    };
    for (const row& one : {row{1.0, 14, 18, 224, 205, 80, 170},
                           {1.5, 21, 27, 332, 308, 120, 255},
                           {2.0, 28, 36, 428, 410, 160, 340}}) {
        ShownPage(one.Scale);
        const int32_t pitch = one.Label + one.Edit + 6;
        const int32_t quarter = (one.Left - 12) / 4;
        const int32_t third = (one.Left - 8) / 3;
        const auto edit = [&](int32_t line, int32_t index, int32_t width) {
            const int32_t x = index * (width + 4);
            const int32_t y = line * pitch + one.Label + 2;
            return rect{x, y, x + width, y + one.Edit};
        };
        EXPECT_EQ(AreaOf(Page->TDOPEdit), edit(3, 3, quarter));
        EXPECT_EQ(AreaOf(Page->WeekEdit), edit(4, 0, third));
        EXPECT_EQ(AreaOf(Page->WeekTimeEdit), edit(4, 1, third));
        EXPECT_EQ(AreaOf(Page->UTCOffsetEdit), edit(4, 2, third));
        EXPECT_EQ(AreaOf(Page->ClockBiasEdit), edit(5, 0, third));
        EXPECT_EQ(AreaOf(Page->BiasRateEdit), edit(5, 1, third));
        EXPECT_EQ(AreaOf(Page->PPSErrorEdit), edit(5, 2, third));

        const std::vector<pageDrawn> texts = Written(Page);
        int32_t y = 6 * pitch;
        for (const auto& [text, control, end] :
             {std::tuple<const char*, const ctrlWindow*, int32_t>{"RX Mode", Page->RXModeEdit, one.Left},
              {"Decode status", Page->DecodeStatusEdit, one.Left},
              {"Temperature", Page->TemperatureEdit, 2 * third + 4}}) {
            EXPECT_EQ(AreaOf(control), (rect{one.Side + 1, y, end, y + one.Edit}));
            const pageDrawn label = Find(texts, text);
            EXPECT_EQ(label.Area, (rect{0, y, one.Side, y + one.Edit}));
            EXPECT_TRUE(label.Has("right centre FFC000/1")) << label.How;
            y += one.Edit + 4;
        }
        EXPECT_EQ(Page->ClampHeight(1), static_cast<uint32_t>(y + one.Edit));
        EXPECT_EQ(Page->Width(), static_cast<uint32_t>(one.Left + 8 + one.Grid + one.Panel));
        EXPECT_EQ(Page->ClampWidth(1), Page->Width());
        EXPECT_EQ(Page->ClampWidth(9999), Page->Width());
        ExpectNothingOverlaps(Page);
        ExpectLabelsAreFree(Page, "RX Mode");
        delete Host;
    }
}

}  // namespace
