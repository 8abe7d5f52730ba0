#include "tests/toolkit/graphTest.h"
#include "toolkit/ctrlGraphTicks.h"

#include <limits>
#include <memory>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double none = std::numeric_limits<double>::quiet_NaN();
constexpr uint32_t redraw = stateRedrawFrame | stateRedrawTraces;

class ctrlGraphTest : public graphTest
{
protected:
    std::pair<double, double> RangeX() const { return {Graph->AxisX.Minimum, Graph->AxisX.Maximum}; }
    std::pair<double, double> RangeY() const { return {Graph->AxisY.Minimum, Graph->AxisY.Maximum}; }
};

std::vector<double> positions(const ctrlGraph::AxisLink& link)
{
    std::vector<double> all;
    for (const auto& one : link.Cursors)
        all.push_back(one->Position);
    return all;
}

// --- Axes

TEST_F(ctrlGraphTest, StartsWithBothAxesAndEverythingToDraw)
{
    EXPECT_EQ(RangeX(), std::pair(0.0, 100.0));
    EXPECT_EQ(RangeY(), std::pair(-1.0, 1.0));
    EXPECT_EQ(Graph->AxisX.FullExtent, 100);
    EXPECT_EQ(Graph->AxisY.FullExtent, 1);
    EXPECT_EQ(Graph->PlotHeight, 1);
    EXPECT_EQ(Graph->PlotWidth, 1U);
    EXPECT_EQ(Graph->DbFactor, 20);
    EXPECT_EQ(Graph->SmoothCut, 1000);
    EXPECT_TRUE(Graph->HasState(stateRedrawFrame));
    EXPECT_TRUE(Graph->HasState(stateRedrawTraces));
    Drawn();
    EXPECT_FALSE(Graph->HasState(redraw));
    EXPECT_EQ(Graph->PlotHeight, 99);
    EXPECT_EQ(Graph->PlotWidth, 199U);
    openWave small(Window, 0);
    EXPECT_EQ(small.Width(), 50U);
    EXPECT_TRUE(small.HasStyle(0x10000));
    EXPECT_TRUE(small.HasStyle(0x20000));
    EXPECT_EQ(small.ctrlGraph::SeriesById(0), nullptr);
}

TEST_F(ctrlGraphTest, ARangeWithoutLengthGrowsOnBothSides)
{
    Graph->SetRangeY(5, 5);
    EXPECT_EQ(RangeY(), std::pair(4.0, 6.0));
    Graph->SetRangeX(-3, -3);
    EXPECT_EQ(RangeX(), std::pair(-4.0, -2.0));
    Graph->SetRangeX(1e300, 1e300);
    EXPECT_LT(RangeX().first, RangeX().second) << "where one more is nothing";
}

TEST_F(ctrlGraphTest, AReversedRangeIsAFatalFault)
{
    EXPECT_THROW(Graph->SetRangeX(2, 1), fakeBreak);
    EXPECT_THROW(Graph->SetRangeY(2, 1), fakeBreak);
    EXPECT_THROW(Graph->SetRangeY(infinite, -infinite), fakeBreak);
    EXPECT_EQ(RangeX(), std::pair(0.0, 100.0));
    Graph->SetRangeX(1, 2);
    EXPECT_EQ(RangeX(), std::pair(1.0, 2.0)) << "no lock was left held";
}

TEST_F(ctrlGraphTest, ARangeThatIsNoneChangesNothing)
{
    constexpr double most = std::numeric_limits<double>::max();
    for (const auto& [min, max] :
         {std::pair(none, 1.0), std::pair(0.0, none), std::pair(none, none), std::pair(0.0, infinite),
          std::pair(-infinite, infinite), std::pair(infinite, infinite), std::pair(-most, most)}) {
        Graph->SetRangeX(min, max);
        Graph->SetRangeY(min, max);
    }
    EXPECT_EQ(RangeX(), std::pair(0.0, 100.0));
    EXPECT_EQ(RangeY(), std::pair(-1.0, 1.0));
}

TEST_F(ctrlGraphTest, WhatIsUnchangedNeitherMarksNorPaints)
{
    Drawn();
    Graph->SetRangeX(0, 100);
    Graph->SetRangeY(-1, 1);
    Graph->SetExtentX(100, true);
    Graph->SetOriginX(0);
    Graph->SetUnit(Graph->AxisX, "");
    Graph->SetAxisFlags(Graph->AxisX, false, false, false);
    Graph->SetGridColour(-1);
    Graph->SetLabelColour(-1);
    Graph->SetCursorColour(-1);
    Graph->SetSmoothCut(1000);
    Graph->SetTraceColour(-1);
    Graph->SetTraceWidth(0);
    Graph->SetTickGapX(16);
    Graph->SetTickGapY(10);
    Graph->SetSeriesCount(1);
    Graph->SetStyle(0);
    Graph->SetStyleWave(0x10000);
    EXPECT_FALSE(Graph->HasState(redraw));
    EXPECT_THAT(Drawn(), IsEmpty());
    EXPECT_EQ(Graph->Paints, 1U);
}

TEST_F(ctrlGraphTest, AChangedRangeMarksTheFrameOnlyIfTheAxisHasLabels)
{
    Drawn();
    Graph->SetRangeX(0, 50);
    EXPECT_TRUE(Graph->HasState(stateRedrawTraces));
    EXPECT_FALSE(Graph->HasState(stateRedrawFrame));
    Drawn();
    Graph->SetAxisFlags(Graph->AxisX, true, false, true);
    EXPECT_TRUE(Graph->HasState(stateRedrawFrame));
    Drawn();
    Graph->SetRangeY(0, 50);
    EXPECT_FALSE(Graph->HasState(stateRedrawFrame));
    Graph->SetRangeX(0, 20);
    EXPECT_TRUE(Graph->HasState(stateRedrawFrame));
    Drawn();
    EXPECT_EQ(Graph->Paints, 4U);
}

TEST_F(ctrlGraphTest, AViewOfTheWholeExtentFollowsIt)
{
    Graph->SetRangeX(20, 100);
    Graph->SetExtentX(300, false);
    EXPECT_EQ(RangeX(), std::pair(20.0, 100.0));
    Graph->SetExtentX(100, true);
    EXPECT_EQ(RangeX(), std::pair(20.0, 100.0)) << "it did not end with the old one";
    Graph->SetExtentX(200, true);
    EXPECT_EQ(RangeX(), std::pair(20.0, 200.0));
    Graph->SetExtentX(10, true);
    EXPECT_EQ(RangeX(), std::pair(20.0, 200.0)) << "the view begins behind it";
    EXPECT_EQ(Graph->AxisX.FullExtent, 10);
    Graph->SetExtentX(none, true);
    EXPECT_EQ(Graph->AxisX.FullExtent, 10);
}

// --- Styles

TEST_F(ctrlGraphTest, AStyleRedrawsWhatItConcerns)
{
    const struct {
        uint32_t Style, Expected;
    } rows[] = {{0x0800, stateRedrawTraces},
                {0x1000, stateRedrawTraces},
                {0x0080, redraw},
                {0x0100, redraw},
                {0x0200, 0},
                {0x4000, 0},
                {0x8000, 0},
                {0x0400, 0},
                {0x80000, stateRedrawTraces}};
    for (const auto& [style, expected] : rows) {
        Drawn();
        for (const uint32_t marked : {expected, 0U}) {
            Graph->SetStyle(style);
            EXPECT_TRUE(Graph->HasStyle(style));
            EXPECT_EQ(Graph->HasState(stateRedrawTraces), (marked & stateRedrawTraces) != 0) << style;
            EXPECT_EQ(Graph->HasState(stateRedrawFrame), (marked & stateRedrawFrame) != 0) << style;
            Drawn();
        }
    }
    Graph->SetStyle(styleFocusable);
    EXPECT_TRUE(Graph->HasStyle(styleFocusable));
}

TEST_F(ctrlGraphTest, AStyleOfWavesTurnsModesOnAndOff)
{
    Graph->SetStyle(0x80000);
    Graph->SetStyleWave(0xA0000 | 0x140000 | 0x8000);
    EXPECT_FALSE(Graph->HasStyle(0xA0000));
    EXPECT_TRUE(Graph->HasStyle(0x40000));
    EXPECT_TRUE(Graph->HasStyle(0x100000));
    EXPECT_TRUE(Graph->HasStyle(0x10000));
    EXPECT_TRUE(Graph->HasStyle(0x8000));
    EXPECT_EQ(Graph->AxisY.Unit, "");
    Graph->SetStyleWave(0x4000);
    EXPECT_EQ(Graph->AxisY.Unit, "dB");
    EXPECT_TRUE(Graph->HasStyle(0x4000));
}

TEST_F(ctrlGraphTest, ASpectrumIsOfFrequenciesAndLevels)
{
    const openSpectrum spectrum(Window, 5, 6, 70, 80, 0);
    EXPECT_EQ(spectrum.AxisX.FullExtent, 5512.5);
    EXPECT_EQ(spectrum.AxisX.Maximum, 5512.5);
    EXPECT_EQ(spectrum.AxisX.Unit, "Hz");
    EXPECT_EQ(spectrum.AxisX.Flags, axisLabels | axisPrefixes);
    EXPECT_EQ(spectrum.AxisY.Minimum, -100);
    EXPECT_EQ(spectrum.AxisY.Maximum, 0);
    EXPECT_EQ(spectrum.AxisY.Unit, "dB");
    EXPECT_TRUE(spectrum.HasStyle(16384));
    EXPECT_EQ(spectrum.X(), 5);
    EXPECT_EQ(spectrum.Height(), 80U);
}

// --- Labels

struct labelRow {
    double Min, Max, Value, Step;
    bool Prefixes;
    const char* Unit;
    const char* Text;
};

TEST_F(ctrlGraphTest, LabelsHaveTheDecimalsOfTheirStep)
{
    const labelRow rows[] = {
        {0, 3000, 3000, 1000, true, "Hz", "3 kHz"},    {0, 3000, 500, 500, true, "Hz", "0.5 kHz"},
        {0, 3000, 3000, 1000, false, "Hz", "3000 Hz"}, {0, 100, 20, 20, false, "", "20"},
        {0, 1, 0.25, 0.25, false, "s", "0.3 s"},       {0, 1, 0.2, 0.2, false, "s", "0.2 s"},
        {-1, 1, -0.05, 0.05, false, "", "-0.05"},      {0, 30, 25, 25, false, "", "25"},
        {0, 1, 0.5, 0, false, "", "0.500000"},         {1.5e9, 1.6e9, 1.55e9, 5e7, true, "Hz", "1.55 GHz"},
        {0, 2e13, 1e13, 1e13, true, "Hz", "10 THz"},   {0, 5, 5, 1, true, "V", "5 V"},
        {0, 0.005, 0.002, 0.001, true, "s", "2 ms"},   {0, 3e-6, 2e-6, 1e-6, true, "s", "2 \xC2\xB5s"},
        {0, 3e-9, 2e-9, 1e-9, true, "s", "2 ns"},      {0, 3e-12, 2e-12, 1e-12, true, "", "2 p"},
        {-100, 0, -20, 20, false, "dB", "-20 dB"},
    };
    for (const labelRow& row : rows) {
        const ctrlGraph::Axis axis{row.Max, row.Min, row.Unit, row.Prefixes ? uint32_t{axisPrefixes} : 0U,
                                   0,       0};
        EXPECT_EQ(ctrlGraph::AxisLabel(axis, row.Value, row.Step), row.Text);
    }
    const ctrlGraph::Axis odd{infinite, none, "\xFF", axisPrefixes, 0, 0};
    for (const double value : {none, infinite, 1e308})
        EXPECT_FALSE(ctrlGraph::AxisLabel(odd, value, 1e-300).empty());
}

TEST_F(ctrlGraphTest, AMajorTickIsAMultipleOfTheStep)
{
    EXPECT_TRUE(ctrlGraph::IsMajorTick(0, 5));
    EXPECT_TRUE(ctrlGraph::IsMajorTick(-15, 5));
    EXPECT_TRUE(ctrlGraph::IsMajorTick(0.3, 0.1)) << "just below in binary";
    EXPECT_TRUE(ctrlGraph::IsMajorTick(10.000004, 5));
    EXPECT_TRUE(ctrlGraph::IsMajorTick(9.999996, 5));
    EXPECT_FALSE(ctrlGraph::IsMajorTick(10.00001, 5));
    EXPECT_FALSE(ctrlGraph::IsMajorTick(9.99999, 5));
    EXPECT_FALSE(ctrlGraph::IsMajorTick(0, 0));
    EXPECT_FALSE(ctrlGraph::IsMajorTick(none, 1));
    EXPECT_FALSE(ctrlGraph::IsMajorTick(1, none));
}

TEST_F(ctrlGraphTest, StepsAreOneTwoAndFive)
{
    EXPECT_DOUBLE_EQ(graphStepFrom(1), 1);
    EXPECT_DOUBLE_EQ(graphStepFrom(1.1), 2);
    EXPECT_DOUBLE_EQ(graphStepFrom(2.5), 5);
    EXPECT_NEAR(graphStepFrom(6e-13), 1e-12, 1e-24);
    EXPECT_DOUBLE_EQ(graphStepFrom(3e11), 5e11);
    EXPECT_DOUBLE_EQ(graphStepAfter(1), 2);
    EXPECT_DOUBLE_EQ(graphStepAfter(2), 5);
    EXPECT_DOUBLE_EQ(graphStepAfter(5), 10);
    for (const double bad : {0.0, -1.0, infinite, none})
        EXPECT_EQ(graphStepFrom(bad), 0);
    EXPECT_EQ(graphStepParts(1, 0.1), 5U);
    EXPECT_EQ(graphStepParts(1, 0.3), 2U);
    EXPECT_EQ(graphStepParts(2, 0.4), 4U);
    EXPECT_EQ(graphStepParts(2, 0.6), 2U);
    EXPECT_EQ(graphStepParts(5, 1), 5U);
    EXPECT_EQ(graphStepParts(5, 2), 1U);
    EXPECT_EQ(graphMultiplesOf(2, -3, 5, 100).Count, 4U);
    EXPECT_EQ(graphMultiplesOf(2, -3, 5, 100).First, -1);
    EXPECT_EQ(graphMultiplesOf(2, -3, 5, 3).Count, 0U) << "too many";
    EXPECT_EQ(graphMultiplesOf(1e-6, 1e15, 1e15 + 1, 100).Count, 0U) << "too fine for such numbers";
    EXPECT_EQ(graphMultiplesOf(0, 0, 1, 100).Count, 0U);
}

TEST_F(ctrlGraphTest, TheVerticalStepIsThePowerOfTenOfAPixel)
{
    Graph->SetRangeY(0, 10);
    EXPECT_DOUBLE_EQ(Graph->VerticalStep(), 0.1);
    Graph->SetRangeY(0, 20);
    EXPECT_DOUBLE_EQ(Graph->VerticalStep(), 0.1);
    Graph->SetRangeY(0, 2000);
    EXPECT_DOUBLE_EQ(Graph->VerticalStep(), 10);
}

// --- Links

TEST_F(ctrlGraphTest, GraphsOnOneLinkHaveARangeEachAndTheCursorsOfAll)
{
    auto* second = new openWave(Window, 0, 150, 100, 50, 0);
    second->SetRangeX(105, 106);
    second->Show();
    second->AttachX(Graph->AxisLinkX);
    EXPECT_THAT(Graph->AxisLinkX->Graphs, ElementsAre(Graph, second));
    EXPECT_EQ(second->AxisX.Maximum, 106);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    Graph->AxisLinkX->MoveCursor(cursor, 200, true);
    EXPECT_EQ(cursor->Position, 106) << "the union of the ranges";
    Drawn();
    second->SetRangeX(50, 60);
    EXPECT_EQ(Graph->AxisX.Maximum, 100);
    EXPECT_EQ(cursor->Position, 100);
    EXPECT_TRUE(Graph->HasState(stateRedrawTraces)) << "its cursor moved";
    second->SetStyle(0x0200);
    Graph->SetRangeX(1, 20);
    EXPECT_EQ(cursor->Position, 20) << "the other does not limit it any more";
}

TEST_F(ctrlGraphTest, ALinkOfTheWrongDirectionIsAFatalFault)
{
    EXPECT_THROW(Graph->AttachX(Graph->AxisLinkY), fakeBreak);
    EXPECT_THROW(Graph->AttachY(Graph->AxisLinkX), fakeBreak);
    EXPECT_THROW(Graph->AttachX(nullptr), fakeBreak);
    EXPECT_THAT(Graph->AxisLinkX->Graphs, ElementsAre(Graph));
}

TEST_F(ctrlGraphTest, LinksAndGraphsGoInAnyOrder)
{
    auto* second = new openWave(Window, 0, 150, 100, 50, 0);
    auto* third = new openWave(Window, 0, 150, 100, 50, 0);
    auto kept = std::make_unique<ctrlGraph::AxisLink>(linkKeep);
    auto group = std::make_unique<ctrlGraph::CursorGroup>(linkKeep);
    for (openWave* one : {Graph, second, third}) {
        one->AttachX(kept.get());
        one->AttachCursors(group.get());
    }
    second->AttachY(Graph->AxisLinkY);
    third->AttachY(Graph->AxisLinkY);
    kept->AddCursor(true);
    delete Graph;
    EXPECT_THAT(kept->Graphs, ElementsAre(second, third));
    EXPECT_THAT(second->AxisLinkY->Graphs, ElementsAre(second, third));
    kept.reset();
    group.reset();
    EXPECT_THAT(second->AxisLinkX->Graphs, ElementsAre(second)) << "those that are left have their own";
    EXPECT_NE(second->AxisLinkX, third->AxisLinkX);
    EXPECT_THAT(third->Cursors->Graphs, ElementsAre(third));
    delete second;
    third->SetRangeX(1, 2);
    EXPECT_EQ(third->AxisX.Maximum, 2);

    ctrlGraph::AxisLink empty(linkKeep | linkVertical);
    third->AttachY(&empty);
    delete third;
    EXPECT_THAT(empty.Graphs, IsEmpty()) << "it stays, without graphs";
}

// --- Cursors

TEST_F(ctrlGraphTest, ANewCursorStandsAtTheBeginning)
{
    Graph->SetRangeX(20, 40);
    Graph->SetCursorColour(0x123456);
    const ctrlGraph::Cursor* first = Graph->AxisLinkX->AddCursor(true);
    EXPECT_EQ(first->Position, 20);
    EXPECT_EQ(first->Colour, 0x123456);
    const ctrlGraph::Cursor* upright = Graph->AxisLinkY->AddCursor(true);
    EXPECT_EQ(upright->Position, -1);
    EXPECT_NE(upright->Id, first->Id);
}

TEST_F(ctrlGraphTest, CursorsAreSortedAndStayWithinTheRange)
{
    ctrlGraph::AxisLink& link = *Graph->AxisLinkX;
    ctrlGraph::Cursor* first = link.AddCursor(true);
    ctrlGraph::Cursor* second = link.AddCursor(true);
    link.MoveCursor(first, 60, true);
    link.MoveCursor(second, 30, true);
    EXPECT_THAT(positions(link), ElementsAre(30, 60));
    EXPECT_EQ(link.Cursors.front().get(), second);
    link.MoveCursor(first, 1000, true);
    EXPECT_EQ(first->Position, 100);
    link.MoveCursor(first, -infinite, true);
    EXPECT_EQ(first->Position, 0);
    link.MoveCursor(first, none, true);
    EXPECT_EQ(first->Position, 0);
    Graph->SetStyle(0x0200);
    link.MoveCursor(first, 1000, true);
    EXPECT_EQ(first->Position, 1000);
    link.MoveCursor(first, infinite, true);
    EXPECT_EQ(first->Position, 1000) << "nothing can bring it into a range";
    link.RemoveCursor(first, true);
    EXPECT_THAT(positions(link), ElementsAre(30));
    link.MoveCursor(first, 5, true);
}

TEST_F(ctrlGraphTest, TheRangeMovesItsCursors)
{
    ctrlGraph::AxisLink& link = *Graph->AxisLinkX;
    ctrlGraph::Cursor* cursor = link.AddCursor(true);
    ctrlGraph::Cursor* upright = Graph->AxisLinkY->AddCursor(true);
    link.MoveCursor(cursor, 50, true);
    Graph->SetRangeX(60, 80);
    EXPECT_EQ(cursor->Position, 60);
    Graph->SetRangeX(10, 20);
    EXPECT_EQ(cursor->Position, 20);
    Graph->SetRangeY(3, 4);
    EXPECT_EQ(upright->Position, -1) << "the vertical axis leaves them alone";
    Graph->SetStyle(0x0200);
    Graph->SetRangeX(60, 80);
    EXPECT_EQ(cursor->Position, 20);
}

TEST_F(ctrlGraphTest, AMovedCursorRepaintsAllGraphsOfItsLink)
{
    auto* second = new openWave(Window, 0, 150, 100, 50, 0);
    second->Show();
    second->AttachX(Graph->AxisLinkX);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    Drawn();
    const unsigned paints = Graph->Paints + second->Paints;
    Graph->AxisLinkX->MoveCursor(cursor, 10, false);
    EXPECT_THAT(Drawn(), IsEmpty());
    Graph->AxisLinkX->MoveCursor(cursor, 20, true);
    Drawn();
    EXPECT_EQ(Graph->Paints + second->Paints, paints + 2);
    Graph->AxisLinkX->MoveCursor(cursor, 20, true);
    EXPECT_THAT(Drawn(), IsEmpty()) << "it stands there";
}

}  // namespace
