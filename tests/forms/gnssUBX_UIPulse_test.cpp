#include "tests/forms/ubxPageTest.h"

#include <limits>

namespace {

using testing::ElementsAre;

class gnssUBX_UIPulseTest : public ubxPageTest
{
protected:
    ctrlGraph::Series& History() const { return *Page->PPSGraph->Traces.at(0); }
};

TEST_F(gnssUBX_UIPulseTest, DropsTheOldestErrorBehindTheThreeHundredth)
{
    ShownFor(9);
    for (int32_t error = 1; error <= 300; ++error)
        Feed(Pulse(error * 1000));
    ASSERT_EQ(Page->PPSHistory.size(), 300U);
    EXPECT_EQ(Page->PPSHistory.front(), 1.0F);
    Feed(Pulse(301'000));
    ASSERT_EQ(Page->PPSHistory.size(), 300U);
    EXPECT_EQ(Page->PPSHistory.front(), 2.0F);
    EXPECT_EQ(Page->PPSHistory.back(), 301.0F);
    EXPECT_EQ(DataOf(History()), Page->PPSHistory);
}

TEST_F(gnssUBX_UIPulseTest, ChangesNothingForASinglePulse)
{
    ShownFor(9);
    const ctrlGraph::Axis before = Page->PPSGraph->AxisY;
    Feed(Pulse(5000));
    EXPECT_THAT(Page->PPSHistory, ElementsAre(5.0F));
    ExpectRange(Page->PPSGraph->AxisY, before.Minimum, before.Maximum);
    EXPECT_EQ(History().Count, 0U);
    EXPECT_EQ(Page->PPSGraph->AxisX.FullExtent, 100.0);
}

TEST_F(gnssUBX_UIPulseTest, LeavesAFifthOfANanosecondToEqualErrors)
{
    ShownFor(9);
    Feed(Pulse(2000));
    Feed(Pulse(2000));
    ExpectRange(Page->PPSGraph->AxisY, 1.9, 2.1);
    Feed(Pulse(2100));
    ExpectRange(Page->PPSGraph->AxisY, 1.9, 2.2);
}

TEST_F(gnssUBX_UIPulseTest, LeavesAMarginOfFivePerCent)
{
    ShownFor(9);
    Feed(Pulse(-10'000));
    Feed(Pulse(10'000));
    Feed(Pulse(3'000));
    ExpectRange(Page->PPSGraph->AxisY, -11, 11);
    EXPECT_EQ(DataOf(History()), (std::vector<float>{-10.0F, 10.0F, 3.0F}));
}

TEST_F(gnssUBX_UIPulseTest, GrowsTheHistoryInAViewOfFiveMinutes)
{
    ShownFor(9);
    for (int32_t count = 1; count <= 310; ++count) {
        Feed(Pulse(count));
        if (count >= 2) {
            EXPECT_EQ(Page->PPSGraph->AxisX.FullExtent, std::min(count, 300));
            EXPECT_EQ(History().Extent, std::min(count, 300));
        }
        ExpectRange(Page->PPSGraph->AxisX, 0, 300);
    }
}

TEST_F(gnssUBX_UIPulseTest, ShowsTheLargestErrorsThatCanBeTold)
{
    ShownFor(9);
    Feed(Pulse(std::numeric_limits<int32_t>::min()));
    Feed(Pulse(std::numeric_limits<int32_t>::max()));
    Toolkit().PumpPending();
    ExpectRange(Page->PPSGraph->AxisY, -2147483.648 - 214748.3648, 2147483.648 + 214748.3648);
}

TEST_F(gnssUBX_UIPulseTest, DrawsTheHistoryOfEachPulse)
{
    ShownFor(9);
    Feed(Pulse(1000));
    Feed(Pulse(3000));
    Toolkit().PumpPending();
    Feed(Pulse(2000));
    EXPECT_FALSE(Drawn({"line", "figure", "fill"}).empty());
}

TEST_F(gnssUBX_UIPulseTest, HasAGraphOfErrorsInSeconds)
{
    ShownFor(9);
    const ctrlGraphWave& graph = *Page->PPSGraph;
    EXPECT_EQ(graph.TraceWidth, 1.5F);
    ExpectRange(graph.AxisX, 0, 300);
    EXPECT_EQ(graph.LayoutX.Gap, 2U);
    EXPECT_EQ(graph.LayoutY.Gap, 2U);
    EXPECT_EQ(graph.AxisX.Flags, axisLabels | axisInside);
    EXPECT_EQ(graph.AxisY.Flags, axisLabels | axisInside);
    EXPECT_EQ(graph.AxisX.Unit, "s");
    EXPECT_EQ(graph.AxisY.Unit, "");
    EXPECT_EQ(graph.Traces.size(), 1U);
}

TEST_F(gnssUBX_UIPulseTest, HeadsTheHistoryOnItsTab)
{
    ShownFor(9, 1.5);
    const pageDrawn heading = Find(Written(Page->Tabs->Page(0)), "PPS error history [ns]");
    EXPECT_EQ(heading.Area, (rect{4, 4, 4 + 450 + 4, 4 + 21 + 4}));
    EXPECT_TRUE(heading.Has("left centre FFC000/1")) << heading.How;
}

TEST_F(gnssUBX_UIPulseTest, HearsNoPulseWithoutASource)
{
    ShownFor(9);
    Feed(Pulse(1000));
    Page->Source(nullptr);
    EXPECT_FALSE(Receiver.OnPPS);
    EXPECT_FALSE(Receiver.OnRFSpectrum);
    Feed(Pulse(2000));
    EXPECT_THAT(Page->PPSHistory, ElementsAre(1.0F));
}

TEST_F(gnssUBX_UIPulseTest, ListensToItsNewSourceAlone)
{
    ShownFor(9);
    gnssUBX other;
    Page->Source(&other);
    Feed(Pulse(1000));
    EXPECT_THAT(Page->PPSHistory, ElementsAre());
    feed(other, Pulse(2000));
    EXPECT_THAT(Page->PPSHistory, ElementsAre(2.0F));
    Page->Source(nullptr);
}

TEST_F(gnssUBX_UIPulseTest, LetsGoOfASourceThatWentBefore)
{
    Page = Shown<openUBXPage>();
    auto other = std::make_unique<gnssUBX>();
    Page->Source(other.get());
    other.reset();
    Page->Source(nullptr);

    other = std::make_unique<gnssUBX>();
    Page->Source(other.get());
    other.reset();
    Host->Page = nullptr;
    Page->Destroy();
}

TEST_F(gnssUBX_UIPulseTest, LeavesHandlersOfOthersAlone)
{
    ShownFor(9);
    int pulses = 0;
    Receiver.OnPPS = [&pulses] { ++pulses; };
    Receiver.OnRFSpectrum = nullptr;
    Page->Source(nullptr);
    Feed(Pulse(1000));
    EXPECT_EQ(pulses, 1);
}

TEST_F(gnssUBX_UIPulseTest, TakesItsHandlersBackWhenItGoes)
{
    ShownFor(11);
    Feed(Pulse(1000));
    EXPECT_TRUE(Receiver.OnPPS);
    EXPECT_TRUE(Receiver.OnRFSpectrum);
    Host->Page = nullptr;
    Page->Destroy();
    EXPECT_FALSE(Receiver.OnPPS);
    EXPECT_FALSE(Receiver.OnRFSpectrum);
    Feed(Pulse(2000));
    Feed(SpectrumOf(2));
    Toolkit().PumpPending();
}

}  // namespace
