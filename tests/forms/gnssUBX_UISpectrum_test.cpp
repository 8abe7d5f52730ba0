#include "tests/forms/ubxPageTest.h"

namespace {

using testing::ElementsAre;

class gnssUBX_UISpectrumTest : public ubxPageTest
{
protected:
    static constexpr size_t PulseTab = 0;
    static constexpr size_t SpectrumTab = 1;

    ctrlGraphSpectrum& Graph(size_t block) const { return *Page->SpectrumGraphs.at(block); }

    // Whether a spectrum was asked for since the last time; the decoder may have sent the poll already.
    bool Asked()
    {
        const ubxBytes poll = {0xB5, 0x62, 0x0A, 0x31, 0x00, 0x00, 0x3B, 0xBB};
        const bool sent = std::find(Sent.begin(), Sent.end(), poll) != Sent.end();
        Sent.clear();
        return Receiver.PendingSpectrum.exchange(0) != 0 || sent;
    }

    void LetItRest()
    {
        Page->SpectrumRest.OnTick();
        Toolkit().PumpPending();
    }

    // From here on no rest ends but by LetItRest.
    void StopTheClock()
    {
        constexpr uint32_t hourMs = 3'600'000;
        Page->SpectrumRestMs = hourMs;
        Page->SpectrumPatienceMs = 2 * hourMs;
    }
};

TEST_F(gnssUBX_UISpectrumTest, HasGraphsOfLevelsOverFrequencies)
{
    ShownFor(11);
    for (const ctrlGraphSpectrum* graph : Page->SpectrumGraphs) {
        EXPECT_EQ(graph->LayoutX.Gap, 2U);
        EXPECT_EQ(graph->LayoutY.Gap, 2U);
        EXPECT_EQ(graph->AxisX.Flags, axisLabels | axisPrefixes | axisInside);
        EXPECT_EQ(graph->AxisY.Flags, axisLabels | axisInside);
        EXPECT_EQ(graph->AxisX.Unit, "Hz");
        EXPECT_EQ(graph->AxisY.Unit, "dB");
        EXPECT_EQ(graph->Traces.size(), 1U);
        ASSERT_EQ(graph->AxisLinkX->Cursors.size(), 1U);
        const ctrlGraph::Cursor& cursor = *graph->AxisLinkX->Cursors[0];
        EXPECT_EQ(cursor.Colour, 0x00C0FF);
        EXPECT_EQ(cursor.Flags, cursorValue);
        EXPECT_TRUE(graph->AxisLinkY->Cursors.empty());
    }
    EXPECT_TRUE(Page->Tabs->Page(SpectrumTab)->HasStyle(128));
}

TEST_F(gnssUBX_UISpectrumTest, ShowsTheDecibelsThatTheReceiverTold)
{
    ShownFor(10);
    SelectTab(SpectrumTab);
    Feed(SpectrumOf(1, 78, 10));
    Toolkit().PumpPending();
    ASSERT_EQ(Graph(0).Traces[0]->Count, 256U);
    EXPECT_FALSE(Graph(0).Traces[0]->Dirty) << "it was painted";
    const float level = (78.0F - 128.0F) * 0.25098425F + 31.875F - 10.0F;
    EXPECT_THAT(DataOf(*Graph(0).Traces[0]), testing::Each(testing::FloatNear(level, 1e-4F)));
}

TEST_F(gnssUBX_UISpectrumTest, FollowsTheWindowOfEachSpectrum)
{
    ShownFor(10);
    SelectTab(SpectrumTab);
    const double low = 1'575'000'000 - 128'000'000 * 0.49609375;
    const double high = 1'575'000'000 + 128'000'000 * 0.5;
    Feed(SpectrumOf(1, 128, 10));
    ExpectRange(Graph(0).AxisX, low, high);
    ExpectRange(Graph(0).AxisY, -10, 53.75);
    EXPECT_EQ(Graph(0).AxisX.Origin, low);
    EXPECT_EQ(Graph(0).AxisX.FullExtent, high - low);
    EXPECT_EQ(Graph(0).Traces[0]->Offset, low);
    EXPECT_EQ(Graph(0).Traces[0]->Extent, high - low);

    Graph(0).SetRangeX(low + 1e6, low + 2e6);
    Feed(SpectrumOf(1, 128, 40, 64'000'000, 1'227'000'000));
    ExpectRange(Graph(0).AxisX, 1'227'000'000 - 64'000'000 * 0.49609375, 1'227'000'000 + 64'000'000 * 0.5);
    ExpectRange(Graph(0).AxisY, -40, 23.75);
}

TEST_F(gnssUBX_UISpectrumTest, TakesASpectrumWithoutAWidth)
{
    ShownFor(10);
    Feed(SpectrumOf(1, 128, 0, 0, 0));
    ExpectRange(Graph(0).AxisX, -1, 1);
    Feed(SpectrumOf(1, 255, 255, 0xFFFFFFFF, 0xFFFFFFFF));
    SelectTab(SpectrumTab);
    ExpectRange(Graph(0).AxisY, -255, 63.75 - 255);
}

TEST_F(gnssUBX_UISpectrumTest, GivesEachBlockItsGraphAndDropsThoseBeyond)
{
    ShownFor(11);
    Feed(SpectrumOf(2));
    EXPECT_EQ(Graph(0).Traces[0]->Count, 256U);
    EXPECT_EQ(Graph(1).Traces[0]->Count, 256U);
    delete Host;

    Receiver.Model = 0;
    ShownFor(10);
    Feed(SpectrumOf(3));
    ASSERT_EQ(Page->SpectrumGraphs.size(), 1U);
    EXPECT_EQ(Graph(0).Traces[0]->Count, 256U);
    Feed(SpectrumOf(0));
    EXPECT_EQ(Graph(0).Traces[0]->Count, 256U);
}

TEST_F(gnssUBX_UISpectrumTest, AsksForSpectraOnlyWhileSomebodyLooks)
{
    ShownFor(10);
    StopTheClock();
    Feed(Pulse(1000));
    Feed(Pulse(2000));
    Feed(SpectrumOf(1));
    Page->Refresh();
    Toolkit().PumpPending();
    EXPECT_FALSE(Asked()) << "the tab is not shown";

    SelectTab(SpectrumTab);
    EXPECT_TRUE(Asked());
    Toolkit().PumpPending();
    EXPECT_FALSE(Asked()) << "once it is painted it waits for the answer";

    Feed(SpectrumOf(1));
    Toolkit().PumpPending();
    LetItRest();
    EXPECT_TRUE(Asked()) << "the answer paints, and the paint asks again";

    SelectTab(PulseTab);
    Asked();
    Feed(SpectrumOf(1));
    Toolkit().PumpPending();
    EXPECT_FALSE(Asked()) << "a late answer paints nothing";
}

TEST_F(gnssUBX_UISpectrumTest, RestsBetweenTwoRequestsHoweverFastTheReceiverAnswers)
{
    ShownFor(11);
    StopTheClock();
    SelectTab(SpectrumTab);
    EXPECT_TRUE(Asked());
    for (int round = 0; round < 20; ++round) {
        Feed(SpectrumOf(2));
        Toolkit().PumpPending();
        EXPECT_FALSE(Asked()) << round;
    }
    LetItRest();
    EXPECT_TRUE(Asked());
    LetItRest();
    EXPECT_FALSE(Asked()) << "once: the answer to it is not there yet";

    SelectTab(PulseTab);
    SelectTab(SpectrumTab);
    Asked();
    Feed(SpectrumOf(2));
    Toolkit().PumpPending();
    Asked();
    SelectTab(PulseTab);
    LetItRest();
    EXPECT_FALSE(Asked()) << "nobody looks any more";
}

TEST_F(gnssUBX_UISpectrumTest, AsksAnewForASpectrumThatWasLost)
{
    ShownFor(11);
    EXPECT_EQ(Page->SpectrumRestMs, 100U);
    EXPECT_EQ(Page->SpectrumPatienceMs, 5000U);
    StopTheClock();
    SelectTab(SpectrumTab);
    EXPECT_TRUE(Asked());
    for (int loss = 0; loss < 3; ++loss) {
        LetItRest();
        EXPECT_FALSE(Asked()) << "it may still come";
        EXPECT_EQ(Page->SpectrumRest.Period, Page->SpectrumPatienceMs);
        LetItRest();
        EXPECT_TRUE(Asked()) << loss;
        EXPECT_EQ(Page->SpectrumRest.Period, Page->SpectrumRestMs);
    }
    LetItRest();
    Feed(SpectrumOf(2));
    Toolkit().PumpPending();
    EXPECT_TRUE(Asked()) << "what came at last is painted";
    EXPECT_EQ(Page->SpectrumRest.Period, Page->SpectrumRestMs);
}

TEST_F(gnssUBX_UISpectrumTest, AsksForNothingThatNobodyWouldSee)
{
    ShownFor(11);
    StopTheClock();
    SelectTab(SpectrumTab);
    LetItRest();
    EXPECT_TRUE(Asked());
    SelectTab(PulseTab);
    LetItRest();
    LetItRest();
    EXPECT_FALSE(Asked()) << "another tab is in front";

    SelectTab(SpectrumTab);
    EXPECT_TRUE(Asked());
    LetItRest();
    fakeUserMinimises(Host->Handle());
    Toolkit().PumpPending();
    Feed(SpectrumOf(2));
    LetItRest();
    LetItRest();
    EXPECT_FALSE(Asked()) << "a window that is minimised paints nothing";
    fakeUserRestores(Host->Handle());
    Toolkit().PumpPending();
    EXPECT_TRUE(Asked());
}

TEST_F(gnssUBX_UISpectrumTest, PollsTheSpectrumWithTheNextFrame)
{
    ShownFor(10);
    SelectTab(SpectrumTab);
    EXPECT_THAT(Step(), ElementsAre(ubxBytes{0xB5, 0x62, 0x0A, 0x31, 0x00, 0x00, 0x3B, 0xBB}));
    EXPECT_THAT(Step(), ElementsAre());
}

TEST_F(gnssUBX_UISpectrumTest, NeverAsksForSpectraThatTheModelDoesNotTell)
{
    ShownFor(9);
    EXPECT_EQ(Page->Tabs->PageCount, 1U);
    Click(Page->Tabs, 100, 5);
    Page->InvalidateTree(true);
    Toolkit().PumpPending();
    EXPECT_FALSE(Asked());
}

TEST_F(gnssUBX_UISpectrumTest, ShowsTheTabThatIsClicked)
{
    ShownFor(11);
    EXPECT_TRUE(Page->PPSGraph->IsVisible());
    EXPECT_FALSE(Graph(0).IsVisible());
    SelectTab(SpectrumTab);
    EXPECT_FALSE(Page->PPSGraph->IsVisible());
    EXPECT_TRUE(Graph(0).IsVisible());
    EXPECT_TRUE(Graph(1).IsVisible());
    SelectTab(PulseTab);
    EXPECT_TRUE(Page->PPSGraph->IsVisible());
}

TEST_F(gnssUBX_UISpectrumTest, MovesTheCursorOfASpectrumWithTheMouse)
{
    ShownFor(10);
    SelectTab(SpectrumTab);
    Feed(SpectrumOf(1));
    Toolkit().PumpPending();
    ctrlGraph::AxisLink* link = Graph(0).AxisLinkX;
    ctrlGraph::Cursor* cursor = link->Cursors[0].get();
    link->MoveCursor(cursor, 1'575'000'000, true);
    Toolkit().PumpPending();
    const double part =
        (1'575'000'000 - Graph(0).AxisX.Minimum) / (Graph(0).AxisX.Maximum - Graph(0).AxisX.Minimum);
    const auto [left, top] = CornerOf(&Graph(0));
    const int32_t x = left + static_cast<int32_t>(part * Graph(0).Width());
    fakeMouseMove(x, top + 100);
    fakeMousePress();
    fakeMouseMove(x + 40, top + 100);
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_GT(cursor->Position, 1'575'000'000.0 + 1e6);
}

}  // namespace
