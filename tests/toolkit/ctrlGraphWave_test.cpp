#include "tests/toolkit/graphTest.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float none = std::numeric_limits<float>::quiet_NaN();

class ctrlGraphWaveTest : public graphTest
{
protected:
    std::vector<float> Kept(unsigned id = 0) const
    {
        const ctrlGraph::Series& trace = *Graph->SeriesById(id);
        return {trace.Data, trace.Data + trace.Count};
    }
    std::vector<float> Transformed(const std::vector<float>& data)
    {
        Push(data);
        const thrSpinHold hold(Graph->Lock);
        Graph->TransformSeries();
        return Kept();
    }
};

TEST_F(ctrlGraphWaveTest, KeepsACopyOfWhatIsPushed)
{
    Graph->SetExtentX(40, false);
    Graph->SetOriginX(7);
    Drawn();
    fakeClockMove(5'000'000'000);
    std::vector<float> data = {1, 2, 3};
    Push(data);
    data.assign(3, 9);
    const ctrlGraph::Series& trace = *Graph->SeriesById(0);
    EXPECT_THAT(Kept(), ElementsAre(1, 2, 3));
    EXPECT_EQ(trace.Count, 3U);
    EXPECT_EQ(trace.Extent, 40);
    EXPECT_EQ(trace.Offset, 7);
    EXPECT_EQ(trace.Time, clockSteadyNs());
    EXPECT_TRUE(trace.Dirty);
    EXPECT_TRUE(Graph->HasState(stateRedrawTraces));
    Drawn();
    EXPECT_FALSE(trace.Dirty);
    Push({4});
    EXPECT_THAT(Kept(), ElementsAre(4));
}

TEST_F(ctrlGraphWaveTest, NothingPushedLeavesNothing)
{
    Push({1, 2, 3});
    Push({});
    EXPECT_THAT(Kept(), IsEmpty());
    EXPECT_EQ(Graph->SeriesById(0)->Data, nullptr);
    EXPECT_THAT(DrawnIn(Trace), IsEmpty());
    Graph->Push(nullptr, 5, 1);
    EXPECT_THAT(Kept(), IsEmpty());
    const float one = 1;
    Graph->Push(&one, 1, 0);
    EXPECT_THAT(Kept(), IsEmpty()) << "of no channels";
    Graph->Push(&one, 1, 2);
    EXPECT_THAT(Kept(), IsEmpty()) << "less than one of each";
}

TEST_F(ctrlGraphWaveTest, DealsChannelsToTracesInTurn)
{
    Graph->SetSeriesCount(3);
    Push({1, 2, 10, 20, 100, 200, 7}, 2);
    EXPECT_THAT(Kept(0), ElementsAre(1, 10, 100));
    EXPECT_THAT(Kept(1), ElementsAre(2, 20, 200));
    EXPECT_THAT(Kept(2), ElementsAre(1, 10, 100));
    Push({5, 6}, 1);
    EXPECT_THAT(Kept(2), ElementsAre(5, 6));
    Graph->SetSeriesCount(0);
    Push({1, 2});
    EXPECT_EQ(Graph->SeriesById(0), nullptr);
    EXPECT_THAT(DrawnIn(Trace), IsEmpty());
}

TEST_F(ctrlGraphWaveTest, SplitsPairsOfOneChannel)
{
    Graph->SetSeriesCount(2);
    Push({1, -1, 2, -2, 3, -3, 4});
    EXPECT_THAT(Kept(0), ElementsAre(1, 2, 3));
    EXPECT_THAT(Kept(1), ElementsAre(-1, -2, -3));
    EXPECT_EQ(Graph->SeriesById(1)->Flags, seriesPairs);
    Graph->SeriesById(0)->Frozen = 1;
    Push({5, 6, 7, 8});
    EXPECT_THAT(Kept(0), ElementsAre(1, 2, 3));
    EXPECT_THAT(Kept(1), ElementsAre(6, 8));
}

TEST_F(ctrlGraphWaveTest, UprightSamplesSpanTheVerticalRange)
{
    openWave upright(Window, 0x100);
    upright.SetRangeY(-3, 5);
    upright.SetOriginX(50);
    const float data[] = {1, 2};
    upright.Push(data, 2, 1);
    EXPECT_EQ(upright.SeriesById(0)->Extent, 8);
    EXPECT_EQ(upright.SeriesById(0)->Offset, 0);
}

// --- Transforms

TEST_F(ctrlGraphWaveTest, TheLogarithmGivesDecibels)
{
    Graph->SetStyleWave(0x4000);
    const std::vector<float> shown = Transformed({1, 10, 0.001F, 100000});
    const float expected[] = {0, 20, -60, 100};
    for (size_t i = 0; i < shown.size(); ++i)
        EXPECT_NEAR(shown[i], expected[i], 1e-4F);
    Graph->SetDbFactor(10);
    EXPECT_NEAR(Transformed({100})[0], 20, 1e-4F);
}

TEST_F(ctrlGraphWaveTest, TheLogarithmOfZeroIsThatOfTheLeast)
{
    Graph->SetStyleWave(0x4000);
    for (const float shown : Transformed({0, -5, none, -infinite}))
        EXPECT_NEAR(shown, -758.6F, 0.01F);
}

TEST_F(ctrlGraphWaveTest, TheInverseGivesAmplitudes)
{
    Graph->SetStyleWave(0x8000);
    const std::vector<float> shown = Transformed({0, 20, -60, 1e9F});
    EXPECT_EQ(shown[0], 1);
    EXPECT_NEAR(shown[1], 10, 1e-4F);
    EXPECT_NEAR(shown[2], 0.001F, 1e-7F);
    EXPECT_EQ(shown[3], infinite);
}

TEST_F(ctrlGraphWaveTest, BothTransformsLeaveTheSamplesAsTheyCame)
{
    Graph->SetStyle(0x4000);
    Graph->SetStyleWave(0x8000);
    EXPECT_THAT(Transformed({-43.25F, 0, -1e-20F, 7}), ElementsAre(-43.25F, 0, -1e-20F, 7));
}

TEST_F(ctrlGraphWaveTest, TransformsOncePerData)
{
    Graph->SetStyleWave(0x4000);
    Push({100});
    Drawn();
    Graph->Invalidate();
    Drawn();
    EXPECT_NEAR(Kept()[0], 40, 1e-4F);
}

// --- Smoothing

TEST_F(ctrlGraphWaveTest, SmoothingNeedsThreeSamplesAndACut)
{
    std::vector<float> two = {1, 5};
    ctrlGraphWave::Smooth(two.data(), 2, 0.01F);
    EXPECT_THAT(two, ElementsAre(1, 5));
    ctrlGraphWave::Smooth(nullptr, 0, 0.01F);
    std::vector<float> data = {1, 5, 2, 8};
    for (const float cut : {1000.0F, 0.0F, -1.0F, none, infinite}) {
        ctrlGraphWave::Smooth(data.data(), data.size(), cut);
        EXPECT_THAT(data, ElementsAre(1, 5, 2, 8)) << cut;
    }
}

TEST_F(ctrlGraphWaveTest, SmoothingRunsForwardAndBackward)
{
    const float cut = std::log(2.0F) / 6.2831855F;  // a is one half
    std::vector<float> data = {0, 8, 0, 0};
    ctrlGraphWave::Smooth(data.data(), data.size(), cut);
    // Forward 0, 4, 2, 1; backward from the last.
    const float expected[] = {1.375F, 2.75F, 1.5F, 1};
    for (size_t i = 0; i < data.size(); ++i)
        EXPECT_NEAR(data[i], expected[i], 1e-5F) << i;
    std::vector<float> broken = {4, none, 4, infinite, 4};
    ctrlGraphWave::Smooth(broken.data(), broken.size(), cut);
    EXPECT_FLOAT_EQ(broken[0], 4);
    EXPECT_FLOAT_EQ(broken[4], 4);
    EXPECT_TRUE(std::isnan(broken[1]));
}

TEST_F(ctrlGraphWaveTest, SmoothingShowsButDoesNotKeep)
{
    Graph->SetStyle(0x0800);
    Graph->SetSmoothCut(0.1F);
    Push({0, 1, 0, 1});
    Drawn();
    EXPECT_THAT(Kept(), ElementsAre(0, 1, 0, 1));
}

// --- Threads

TEST_F(ctrlGraphWaveTest, AnotherThreadMayPushWhileThisOnePaints)
{
    std::atomic<bool> stop{false};
    {
        std::jthread pusher([this, &stop] {
            std::vector<float> data(500);
            for (unsigned i = 0; !stop; ++i) {
                data.resize(1 + i * 37 % 500, static_cast<float>(i % 7));
                Graph->SetRangeY(-1.0 - i % 3, 8);
                Graph->SetRangeX(0, 10 + i % 90);
                Graph->SetExtentX(10 + i % 90, true);
                Graph->Push(data.data(), data.size(), 1);
            }
        });
        ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
        for (int i = 0; i < 200; ++i) {
            Graph->AxisLinkX->MoveCursor(cursor, i, true);
            Toolkit().PumpPending();
        }
        stop = true;
    }
    Toolkit().PumpPending();
    EXPECT_FALSE(Graph->HasState(stateRedrawFrame | stateRedrawTraces));
}

}  // namespace
