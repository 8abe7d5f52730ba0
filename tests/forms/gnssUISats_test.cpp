#include "tests/forms/pageTest.h"
#include "tests/gnss/nmeaSentence.h"

#include <limits>

namespace {

using testing::ElementsAre;

using basePage = openPage<gnss::UI>;

class gnssUISatsTest : public pageTest
{
protected:
    static constexpr const char* Headers[] = {"ID", "Elev.", "Az.", "SNR", "Signal"};
    static constexpr size_t Columns = std::size(Headers);

    void SetUp() override
    {
        pageTest::SetUp();
        Page = Shown<basePage>();
        Page->Source(&Model);
    }

    void Show(const std::vector<SatInfo>& sats)
    {
        Model.Sats = sats;
        Page->Refresh();
    }

    // What the table writes below its header.
    std::vector<pageDrawn> Cells()
    {
        std::vector<pageDrawn> texts = Written(Page->VisSats);
        texts.erase(texts.begin(), texts.begin() + std::min(std::ssize(texts), std::ssize(Headers)));
        return texts;
    }

    static SatInfo Sat(gnss::Source source, uint8_t svId, float level, bool used = false)
    {
        SatInfo satellite;
        satellite.Source = source;
        satellite.SvId = svId;
        satellite.SNR = level;
        satellite.Elevation = 45.4F;
        satellite.Azimuth = 300.6F;
        satellite.Signals[0] = 31;
        satellite.SetUsed(used);
        return satellite;
    }
    static SatInfo WithSignals(uint8_t first, uint8_t second, uint8_t third)
    {
        SatInfo satellite = Sat(gnss::Source::GPS, 1, 30);
        satellite.Signals[0] = first;
        satellite.Signals[1] = second;
        satellite.Signals[2] = third;
        return satellite;
    }

    gnss Model;
    basePage* Page = nullptr;
};

TEST_F(gnssUISatsTest, HasAHeaderAloneWithoutSatellites)
{
    EXPECT_EQ(Page->VisSats->RowHeights.size(), 1U);
    const std::vector<pageDrawn> texts = Written(Page->VisSats);
    EXPECT_THAT(Words(texts), testing::ElementsAreArray(Headers));
    for (const pageDrawn& text : texts)
        EXPECT_TRUE(text.Has("FFFFFF/1") && text.Has("bold") && text.Has("centre")) << text.How;
}

TEST_F(gnssUISatsTest, ShowsASatelliteInItsRow)
{
    Show({Sat(gnss::Source::GLONASS, 24, 38.5F)});
    const std::vector<pageDrawn> cells = Cells();
    EXPECT_THAT(Words(cells), ElementsAre("R24 ", "45° ", "301° ", "39 ", "L1C/A"));
    ASSERT_EQ(cells.size(), Columns);
    for (size_t column = 0; column < Columns; ++column)
        EXPECT_TRUE(cells[column].Has(column == 0 || column == 4 ? "centre centre" : "right centre"))
            << cells[column].How;
}

TEST_F(gnssUISatsTest, TellsByItsLookHowASatelliteIsUsed)
{
    struct row {
        SatInfo Satellite;
        const char* Colour;
        bool Bold;
        bool Italic;
    };
    for (const row& one : {row{Sat(gnss::Source::GPS, 1, 30), "00FFFF/1", false, false},
                           {Sat(gnss::Source::GPS, 1, 30, true), "FFFFFF/1", true, false},
                           {Sat(gnss::Source::GPS, 1, -1), "00FF00/1", false, true},
                           {Sat(gnss::Source::GPS, 1, -1, true), "00FF00/1", false, true},
                           {Sat(gnss::Source::GPS, 1, 0), "00FFFF/1", false, false}}) {
        Show({one.Satellite});
        const std::vector<pageDrawn> cells = Cells();
        EXPECT_FALSE(cells.empty());
        for (const pageDrawn& cell : cells) {
            EXPECT_TRUE(cell.Has(one.Colour)) << cell.How;
            EXPECT_EQ(cell.Has("bold"), one.Bold) << cell.How;
            EXPECT_EQ(cell.Has("italic"), one.Italic) << cell.How;
        }
    }
}

TEST_F(gnssUISatsTest, LeavesTheLevelOfAnUntrackedSatelliteEmpty)
{
    Show({Sat(gnss::Source::GPS, 7, -1)});
    EXPECT_THAT(Words(Cells()), ElementsAre("G7 ", "45° ", "301° ", "L1C/A"));
}

TEST_F(gnssUISatsTest, NamesEveryConstellationByItsLetter)
{
    std::vector<SatInfo> sats;
    for (uint8_t source = 0; source <= 10; ++source)
        sats.push_back(Sat(static_cast<gnss::Source>(source), 5, 30));
    Show(sats);
    std::string letters;
    const std::vector<pageDrawn> cells = Cells();
    for (size_t at = 0; at < cells.size(); at += Columns)
        letters += cells[at].Text.substr(0, 1);
    EXPECT_EQ(letters, "*BERGINQS**");
}

TEST_F(gnssUISatsTest, PutsAQuestionMarkForANumberThatIsNotKnown)
{
    Show({Sat(gnss::Source::Mixed, 255, 30), Sat(gnss::Source::Galileo, 0, 30),
          Sat(gnss::Source::Galileo, 254, 30)});
    const std::vector<pageDrawn> cells = Cells();
    ASSERT_EQ(cells.size(), 3 * Columns);
    EXPECT_EQ(cells[0].Text, "*? ");
    EXPECT_EQ(cells[Columns].Text, "E? ");
    EXPECT_EQ(cells[2 * Columns].Text, "E254 ");
}

TEST_F(gnssUISatsTest, JoinsTheSignalsUpToTheFirstEmptySlot)
{
    struct row {
        SatInfo Satellite;
        const char* Text;
    };
    for (const row& one : {row{WithSignals(16, 0, 22), "E1"},
                           {WithSignals(16, 19, 0), "E1 , E5 a"},
                           {WithSignals(16, 19, 22), "E1 , E5 a , E5 b"},
                           {WithSignals(44, 255, 31), "L1C/A"},
                           {WithSignals(31, 200, 34), "L1C/A , L5 I"}}) {
        Show({one.Satellite});
        const std::vector<pageDrawn> cells = Cells();
        ASSERT_EQ(cells.size(), Columns);
        EXPECT_EQ(cells[4].Text, one.Text);
    }
    Show({WithSignals(0, 16, 16)});
    EXPECT_EQ(Cells().size(), Columns - 1) << "nothing is written for no signal";
}

TEST_F(gnssUISatsTest, MakesThePageWiderByEachFurtherSignal)
{
    Show({WithSignals(31, 0, 0)});
    Toolkit().PumpPending();
    const uint32_t one = Page->Width();
    const uint32_t gridOne = Page->VisSats->Width();
    Show({WithSignals(31, 0, 0), WithSignals(31, 33, 34)});
    Toolkit().PumpPending();
    EXPECT_EQ(Page->Width(), one + 2 * 63);
    EXPECT_EQ(Page->VisSats->Width(), gridOne + 2 * 63);

    Show({WithSignals(31, 33, 0)});
    Toolkit().PumpPending();
    EXPECT_EQ(Page->SignalsMax, 3U) << "it never becomes narrower";
    EXPECT_EQ(Page->Width(), one + 2 * 63);
}

TEST_F(gnssUISatsTest, DoesNotCountSignalsWithoutAText)
{
    Show({WithSignals(31, 44, 255)});
    Toolkit().PumpPending();
    EXPECT_EQ(Page->SignalsMax, 1U);
}

TEST_F(gnssUISatsTest, WritesAnglesThatAreNoNumbers)
{
    SatInfo odd = Sat(gnss::Source::GPS, 1, 30);
    odd.Elevation = std::numeric_limits<float>::quiet_NaN();
    odd.Azimuth = -std::numeric_limits<float>::infinity();
    odd.SNR = std::numeric_limits<float>::quiet_NaN();
    Show({odd});
    EXPECT_THAT(Words(Cells()), ElementsAre("G1 ", "NaN° ", "∞° ", "L1C/A"));
}

TEST_F(gnssUISatsTest, WritesNothingOfASatelliteThatIsGoneMeanwhile)
{
    Show({Sat(gnss::Source::GPS, 1, 30), Sat(gnss::Source::GPS, 2, 30)});
    Model.Sats.clear();
    EXPECT_TRUE(Cells().empty());
    EXPECT_EQ(Page->VisSats->RowHeights.size(), 3U);
}

TEST_F(gnssUISatsTest, ShowsTheSatellitesOfSentences)
{
    decoderListener<gnssNMEA> listener;
    Page->Source(&listener.Receiver);
    listener.Feed(std::string(gsv("GA").signal('7').sat(12, 40, 130, "44")) +
                  std::string(gsv("GP").signal('1').sat(3, 5, 7, "30")) + rmc());
    Page->Refresh();
    EXPECT_THAT(Words(Cells()),
                ElementsAre("E12 ", "40° ", "130° ", "44 ", "E1", "G3 ", "5° ", "7° ", "30 ", "L1C/A"));
    Page->Source(nullptr);
}

}  // namespace
