#include "tests/toolkit/graphTest.h"
#include "toolkit/ctrlGraphPen.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float none = std::numeric_limits<float>::quiet_NaN();

class ctrlGraphPaintTest : public graphTest
{
protected:
    void Labels(bool inside, bool prefixes = true)
    {
        Graph->SetAxisFlags(Graph->AxisX, true, prefixes, inside);
        Graph->SetAxisFlags(Graph->AxisY, true, false, inside);
    }

    // The points of the last figure, after one paint.
    std::vector<drawPoint> Figure()
    {
        Drawn();
        return fakeFigure();
    }
};

void expectWithin(const std::vector<drawPoint>& points, const rect& box)
{
    for (const drawPoint& one : points) {
        EXPECT_THAT(one.X, AllOf(Ge(static_cast<float>(box.Left)), Le(static_cast<float>(box.Right))));
        EXPECT_THAT(one.Y, AllOf(Ge(static_cast<float>(box.Top)), Le(static_cast<float>(box.Bottom))));
    }
}

// --- Clipping

struct clipRow {
    graphPoint From, To;
    bool Seen;
    graphPoint FromThen, ToThen;
};

TEST_F(ctrlGraphPaintTest, LinesAreCutToThePlot)
{
    constexpr int32_t far = 1 << 30;
    const rect bounds{0, 0, 100, 50};
    const clipRow rows[] = {
        {{10, 10}, {90, 40}, true, {10, 10}, {90, 40}},
        {{-10, 10}, {10, 30}, true, {0, 20}, {10, 30}},
        {{90, 10}, {110, 30}, true, {90, 10}, {100, 20}},
        {{50, -50}, {50, 100}, true, {50, 0}, {50, 50}},
        {{-10, 25}, {110, 25}, true, {0, 25}, {100, 25}},
        {{-far, 25}, {far, 25}, true, {0, 25}, {100, 25}},
        {{50, far}, {50, -far}, true, {50, 50}, {50, 0}},
        {{-5, 10}, {-1, 20}, false, {}, {}},
        {{101, 10}, {300, 20}, false, {}, {}},
        {{10, -9}, {90, -1}, false, {}, {}},
        {{10, 51}, {90, 51}, false, {}, {}},
        {{-100, 0}, {0, -100}, false, {}, {}},
        {{0, 0}, {100, 50}, true, {0, 0}, {100, 50}},
    };
    for (const clipRow& row : rows) {
        graphPoint from = row.From;
        graphPoint to = row.To;
        const bool seen = graphClip(from, to, bounds);
        EXPECT_EQ(seen, row.Seen) << row.From.X << "," << row.From.Y;
        if (!seen)
            continue;
        EXPECT_EQ(from, row.FromThen) << from.X << "," << from.Y;
        EXPECT_EQ(to, row.ToThen) << to.X << "," << to.Y;
    }
}

// --- The frame

TEST_F(ctrlGraphPaintTest, WithoutLabelsThePlotIsTheWholeControl)
{
    const std::vector<std::string> draws = Drawn();
    EXPECT_EQ(Graph->Box, (rect{0, 0, 200, 100}));
    EXPECT_THAT(Texts(draws), IsEmpty());
    EXPECT_THAT(draws, Contains(StartsWith("fill 2 0,0,200,100 000000/1")));
    EXPECT_THAT(draws, Contains(StartsWith("line 2 80.5,0 80.5,100 303050/1"))) << "the grid";
}

TEST_F(ctrlGraphPaintTest, LabelsStandAroundOrInThePlot)
{
    Graph->SetUnit(Graph->AxisX, "Hz");
    Graph->SetRangeX(0, 3000);
    Labels(false);
    std::vector<drawnText> texts = Texts(Drawn());
    EXPECT_THAT(Names(texts), AllOf(Contains("0 kHz"), Contains("2 kHz")));
    for (const drawnText& one : texts)
        EXPECT_FALSE(rectMeet(one.Area, Graph->Box)) << one.Text;
    Labels(true);
    texts = Texts(Drawn());
    EXPECT_EQ(Graph->Box, (rect{0, 0, 200, 100}));
    EXPECT_THAT(texts, Not(IsEmpty()));
}

TEST_F(ctrlGraphPaintTest, AWideAxisWithPrefixesIsLabelledInThousands)
{
    Graph->Move(0, 0, 400, 300);
    Graph->SetUnit(Graph->AxisX, "Hz");
    Graph->SetRangeX(0, 3000);
    Graph->SetAxisFlags(Graph->AxisX, true, true, false);
    EXPECT_THAT(Names(Texts(Drawn())), Contains("3.0 kHz"));
    Graph->Move(0, 0, 200, 300);
    EXPECT_THAT(Names(Texts(Drawn())), ElementsAre("0 kHz", "1 kHz", "2 kHz", "3 kHz"));
}

// Labels as they were drawn: within the control, and none upon another.
void expectReadable(const std::vector<drawnText>& texts, const rect& control)
{
    for (size_t i = 0; i < texts.size(); ++i) {
        EXPECT_TRUE(rectCovers(control, texts[i].Area)) << texts[i].Text;
        for (size_t k = 0; k < i; ++k)
            EXPECT_FALSE(rectMeet(texts[i].Area, texts[k].Area)) << texts[i].Text << " on " << texts[k].Text;
    }
}

TEST_F(ctrlGraphPaintTest, LabelsNeverOverlapNorLeaveTheControl)
{
    const std::pair<double, double> ranges[] = {
        {0, 1},       {-100, 0},      {1.559e9, 1.591e9}, {0, 1e-12},       {-5e11, 5e11},
        {1e12, 2e12}, {99.9999, 100}, {-1e-12, 1e-12},    {1e15, 1e15 + 1}, {0, 300}};
    const std::pair<uint32_t, uint32_t> sizes[] = {{1, 1},   {2, 1},     {1, 40},      {30, 20},  {80, 60},
                                                   {81, 61}, {200, 100}, {2000, 1000}, {500, 60}, {60, 500}};
    for (const float scale : {1.0F, 1.25F, 2.0F, 3.0F}) {
        fakeScreenDPI(static_cast<uint32_t>(96 * scale));
        auto* window = new ctrlWindow(nullptr, 0, 0, 2000, 1000, ctrlPerMonitor);
        auto* graph = new openWave(window, 0);
        graph->Show();
        window->Show();
        graph->SetUnit(graph->AxisX, "Hz");
        for (const auto& [min, max] : ranges) {
            graph->SetRangeX(min, max);
            graph->SetRangeY(min, max);
            for (const auto& [wide, high] : sizes) {
                graph->Move(0, 0, wide, high);
                for (const bool inside : {false, true}) {
                    SCOPED_TRACE(testing::Message()
                                 << scale << " " << min << " " << wide << "x" << high << inside);
                    graph->SetAxisFlags(graph->AxisX, true, true, inside);
                    graph->SetAxisFlags(graph->AxisY, true, false, inside);
                    const std::vector<std::string> draws = Drawn();
                    const rect control{0, 0, static_cast<int32_t>(wide), static_cast<int32_t>(high)};
                    expectReadable(Texts(draws), control);
                    EXPECT_TRUE(rectCovers(control, graph->Box));
                    EXPECT_LT(draws.size(), 3000U);
                }
            }
        }
        delete window;
    }
}

TEST_F(ctrlGraphPaintTest, LabelsOfOneRowStandApartAndBelongToOneAxis)
{
    Graph->SetUnit(Graph->AxisX, "Hz");
    Graph->SetUnit(Graph->AxisY, "Y");
    Labels(true);
    constexpr int32_t least = 7;  // about half of a text's height
    for (uint32_t wide = 80; wide < 400; wide += 7) {
        Graph->Move(0, 0, wide, 60 + wide / 8);
        Graph->SetRangeX(1.55942e9, 1.59142e9 + wide * 1e5);
        const std::vector<drawnText> texts = Texts(Drawn());
        for (const drawnText& one : texts) {
            for (const drawnText& other : texts) {
                const bool inOneRow = one.Area.Top < other.Area.Bottom && other.Area.Top < one.Area.Bottom;
                if (&one == &other || !inOneRow || one.Area.Left > other.Area.Left)
                    continue;
                EXPECT_EQ(one.Text.ends_with("Y"), other.Text.ends_with("Y")) << one.Text << other.Text;
                EXPECT_GE(other.Area.Left - one.Area.Right, least) << one.Text << other.Text << wide;
            }
        }
    }
}

TEST_F(ctrlGraphPaintTest, LabelsInThePlotLieOnAVeil)
{
    Labels(true);
    const std::vector<std::string> draws = Drawn({"fill 2 "});
    EXPECT_THAT(draws, Contains(HasSubstr("000000/0.6")));
    Labels(false);
    EXPECT_THAT(Drawn({"fill 2 "}), Not(Contains(HasSubstr("000000/0.6"))));
}

TEST_F(ctrlGraphPaintTest, StemsAndStepsStandOnWholePixels)
{
    Graph->SetRangeX(0, 7);
    Graph->SetExtentX(7, false);
    Push({0.1F, 0.7F, -0.3F, 0.2F, 0.9F, -0.8F, 0.4F});
    const auto isSharp = [](float place) { return place - std::floor(place) == 0.5F; };
    Graph->SetStyleWave(graphLines | graphSteps);
    EXPECT_THAT(DrawnIn(Trace), Not(IsEmpty()));
    for (const drawPoint& one : fakeFigure())
        EXPECT_TRUE(isSharp(one.X) && isSharp(one.Y)) << one.X << " " << one.Y;
    Graph->SetStyleWave(graphStems);
    const std::vector<std::string> stems = DrawnIn(Trace);
    ASSERT_THAT(stems, SizeIs(7));
    for (const std::string& one : stems) {
        float x = 0;
        ASSERT_EQ(std::sscanf(one.c_str(), "line 2 %f,", &x), 1) << one;
        EXPECT_TRUE(isSharp(x)) << one;
    }
}

TEST_F(ctrlGraphPaintTest, ASmallGraphStillHasALabelOnEachAxis)
{
    Graph->SetUnit(Graph->AxisX, "X");
    Graph->SetUnit(Graph->AxisY, "Y");
    Graph->Move(0, 0, 80, 60);
    for (const auto& [min, max] : {std::pair(0.0, 1.0), std::pair(-100.0, 0.0), std::pair(0.0, 300.0)}) {
        for (const bool inside : {false, true}) {
            Graph->SetRangeX(min, max);
            Graph->SetRangeY(min, max);
            Labels(inside, false);
            const std::vector<std::string> names = Names(Texts(Drawn()));
            EXPECT_THAT(names, Contains(HasSubstr("X"))) << min << inside;
            EXPECT_THAT(names, Contains(HasSubstr("Y"))) << min << inside;
        }
    }
}

TEST_F(ctrlGraphPaintTest, NewDataLeavesTheFrame)
{
    Labels(false);
    Drawn();
    Push({1, 0, 1});
    EXPECT_THAT(Texts(Drawn({"fill 2 ", "text"})), Not(IsEmpty()));
    Push({0, 1, 0});
    const std::vector<std::string> fills = Drawn({"fill 2 "});
    ASSERT_THAT(fills, SizeIs(1)) << "of the plot alone";
    EXPECT_THAT(fills[0], Not(StartsWith("fill 2 0,0,200,100")));
    Graph->SetRangeX(0, 10);
    EXPECT_THAT(Drawn({"fill 2 0,0,200,100"}), SizeIs(1)) << "now the axes changed";
}

TEST_F(ctrlGraphPaintTest, ANewSizeOrTargetNeedsAllOfIt)
{
    Labels(false);
    Drawn();
    Graph->Move(10, 20, 150, 90);
    EXPECT_THAT(Drawn(), Contains(HasSubstr("0,0,150,90 000000/1")));
    EXPECT_EQ(Graph->Box.Right, 150);
    fakeEndGives(drawTargetLost);
    Push({1, 2});
    EXPECT_THAT(Drawn(), Contains(HasSubstr("0,0,150,90 000000/1")));
}

// --- Traces

TEST_F(ctrlGraphPaintTest, SamplesAreJoinedByOneLine)
{
    Graph->SetRangeX(0, 99.5);
    Graph->SetExtentX(99.5, false);
    Push({-1, 0, 1, 1});
    const std::vector<drawPoint> points = Figure();
    ASSERT_THAT(points, SizeIs(4));
    const float x[] = {0.5F, 50.25F, 100, 149.75F};
    const float y[] = {99.5F, 50, 0.5F, 0.5F};
    for (size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(points[i].X, x[i], 0.04F) << i;
        EXPECT_NEAR(points[i].Y, y[i], 0.04F) << i;
    }
}

TEST_F(ctrlGraphPaintTest, ATraceOfASpectrumStandsAtThePushedDecibels)
{
    auto* spectrum = new openSpectrum(Window, 0, 0, 200, 101, 0);
    spectrum->Show();
    spectrum->SetStyleWave(0x8000);
    spectrum->SetAxisFlags(spectrum->AxisX, false, false, false);
    spectrum->SetRangeX(1.5e9, 1.6e9);
    spectrum->SetExtentX(1e8, true);
    spectrum->SetOriginX(1.5e9);
    spectrum->SetRangeY(-100, 0);
    const float data[] = {-100, -75, -25, -25};
    spectrum->Push(data, std::size(data), 1);
    const std::vector<drawPoint> points = Figure();
    ASSERT_THAT(points, SizeIs(4));
    EXPECT_NEAR(points[0].Y, 100.5F, 0.04F);
    EXPECT_NEAR(points[1].Y, 75.5F, 0.04F);
    EXPECT_NEAR(points[2].Y, 25.5F, 0.04F);
    EXPECT_NEAR(points[0].X, 0.5F, 0.04F);
    EXPECT_NEAR(points[2].X, 100, 0.04F);
}

TEST_F(ctrlGraphPaintTest, ASharpCornerEndsAFigure)
{
    Graph->SetRangeX(0, 4);
    Graph->SetExtentX(4, false);
    Push({-0.2F, 0.2F, -0.2F, 0.2F});
    EXPECT_THAT(DrawnIn(Trace), SizeIs(1)) << "wide angles";
    Graph->SetRangeX(0, 199);
    EXPECT_THAT(DrawnIn(Trace), SizeIs(3)) << "a pixel wide and twenty high";
}

TEST_F(ctrlGraphPaintTest, ManySamplesBecomeColumnsFromTheirLeastToTheirMost)
{
    std::vector<float> data(20000, 0.0F);
    data[10000] = 0.75F;
    data[10001] = -0.5F;
    Push(data);
    const std::vector<std::string> drawn = DrawnIn(Trace);
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_THAT(drawn[0], StartsWith("fillfigure 2 "));
    const std::vector<drawPoint> points = fakeFigure();
    expectWithin(points, Graph->Box);
    float least = 1000;
    float most = 0;
    float level = 0;
    for (const drawPoint& one : points) {
        least = std::min(least, one.Y);
        most = std::max(most, one.Y);
        if (one.X > 150)
            level = std::max(level, one.Y);
    }
    EXPECT_NEAR(least, 50 - 0.75F * 49.5F - 0.5F, 0.07F);
    EXPECT_NEAR(most, 50 + 0.5F * 49.5F + 0.5F, 0.07F);
    EXPECT_NEAR(level, 50.5F, 0.07F) << "a flat column is one pixel high";
}

TEST_F(ctrlGraphPaintTest, AColumnReachesToItsNeighbourAndAnotherModeLeavesTheGap)
{
    Graph->SetRangeX(0, 1592);
    Graph->SetExtentX(1592, false);
    // Eight samples a column. From low to high between two of them, and no sample on the way.
    std::vector<float> samples(1592, -0.9F);
    std::fill(samples.begin() + 804, samples.end(), 0.9F);
    Push(samples);
    // The figure goes along the upper ends of the columns, two points each, and back along the lower ones.
    const auto widestGap = [this] {
        const std::vector<drawPoint> points = Figure();
        float gap = 0;
        for (size_t at = 0; at + 2 < points.size() / 2; at += 2) {
            const size_t back = points.size() - 1 - at;
            gap = std::max(gap, std::max(points[at].Y, points[at + 2].Y) -
                                    std::min(points[back].Y, points[back - 2].Y));
        }
        return gap;
    };
    EXPECT_LE(widestGap(), 0.0F);
    Graph->SeriesById(0)->ColumnMode = 7;
    Push(samples);
    EXPECT_GT(widestGap(), 80.0F);
}

TEST_F(ctrlGraphPaintTest, OtherColumnsShowOneOfTheirSamples)
{
    std::vector<float> data;
    for (int i = 0; i < 4000; ++i)
        data.push_back(i % 2 ? 1.0F : -1.0F);
    data[0] = 0;
    const std::pair<uint8_t, float> rows[] = {{2, 99.5F}, {3, 0.5F}, {5, 99.5F}};
    for (const auto& [mode, y] : rows) {
        Graph->SeriesById(0)->ColumnMode = mode;
        Push(data);
        const std::vector<drawPoint> points = Figure();
        ASSERT_THAT(points, Not(IsEmpty()));
        EXPECT_NEAR(points.back().Y, y, 0.04F) << int{mode};
        EXPECT_NEAR(points.front().Y, mode == 5 ? 50 : mode == 3 ? 0.5F : 99.5F, 0.04F) << int{mode};
    }
    Graph->SeriesById(0)->ColumnMode = 7;
    Push(data);
    EXPECT_THAT(DrawnIn(Trace), SizeIs(1));
}

TEST_F(ctrlGraphPaintTest, WhatIsNoNumberIsAGap)
{
    Push({0, 0, none, 0, 0});
    EXPECT_THAT(DrawnIn(Trace), SizeIs(2));
    Push({none, none, none});
    EXPECT_THAT(DrawnIn(Trace), IsEmpty());
    std::vector<float> data(10000, 0.25F);
    std::fill(data.begin() + 4000, data.begin() + 6000, none);
    Push(data);
    EXPECT_THAT(DrawnIn(Trace), SizeIs(2));
    Push(std::vector<float>(10000, none));
    EXPECT_THAT(DrawnIn(Trace), IsEmpty());
}

TEST_F(ctrlGraphPaintTest, WhatIsFarOutsideIsCutAtThePlot)
{
    for (const float value : {infinite, -infinite, 1e30F, -1e30F}) {
        Push({0, value, 0});
        EXPECT_THAT(DrawnIn(Trace), Not(IsEmpty())) << "the way there is seen";
        expectWithin(fakeFigure(), Graph->Box);
        Push({value, value, value});
        EXPECT_THAT(DrawnIn(Trace), IsEmpty());
        Push(std::vector<float>(10000, value));
        EXPECT_THAT(DrawnIn(Trace), IsEmpty());
    }
}

TEST_F(ctrlGraphPaintTest, DrawsAnythingInAnySizeAndRange)
{
    std::mt19937 random(3);
    std::vector<float> wild(100000);
    for (float& one : wild)
        one = std::bit_cast<float>(static_cast<uint32_t>(random()));
    Labels(true);
    for (const double scale : {1e-12, 1.0, 1e12, 1e300, 1e-300}) {
        Graph->SetRangeX(-scale, scale);
        Graph->SetRangeY(-scale, scale);
        for (const double extent : {0.0, -1.0, scale, 1e-300, 1e300}) {
            Graph->SetExtentX(extent, false);
            for (const auto& [wide, high] :
                 {std::pair(1U, 1U), std::pair(80U, 60U), std::pair(2000U, 1000U)}) {
                Graph->Move(0, 0, wide, high);
                for (const size_t count : {0U, 1U, 2U, 300U, 100000U}) {
                    Graph->Push(wild.data(), count, 1);
                    Drawn();
                    Push(std::vector<float>(count, 0.5F));
                    Drawn();
                }
            }
        }
    }
}

TEST_F(ctrlGraphPaintTest, ConstantDataIsALevelLine)
{
    // Two samples are a line, more a figure.
    Push({0.5F, 0.5F});
    EXPECT_THAT(DrawnIn(Trace), ElementsAre(StartsWith("line 2 0.5,25.25 100,25.25 ")));
    for (const size_t count : {3U, 300U, 100000U}) {
        Push(std::vector<float>(count, 0.5F));
        EXPECT_THAT(DrawnIn(Trace), SizeIs(1));
        const std::vector<drawPoint> points = fakeFigure();
        EXPECT_THAT(points.size(), Ge(3U));
        for (const drawPoint& one : points)
            EXPECT_NEAR(one.Y, 50 - 0.5F * 49.5F, 0.6F) << count;
    }
}

TEST_F(ctrlGraphPaintTest, PointsHaveTheWidthOfTheTrace)
{
    Push({0, 1, 5});
    EXPECT_EQ(DrawnIn(Trace).size(), 1U);
    Graph->SetTraceWidth(1.5F);
    std::vector<std::string> drawn = DrawnIn(Trace);
    std::erase_if(drawn, [](const std::string& line) { return !line.starts_with("ellipse"); });
    EXPECT_THAT(drawn, SizeIs(2)) << "the third lies outside";
    EXPECT_THAT(drawn[0], HasSubstr("1.5x1.5"));
    Graph->SetStyleWave(0x20000);
    EXPECT_EQ(DrawnIn(Trace).size(), 1U);
}

TEST_F(ctrlGraphPaintTest, OneSampleIsAPoint)
{
    Push({0.5F});
    EXPECT_THAT(DrawnIn(Trace), ElementsAre(StartsWith("ellipse")));
}

TEST_F(ctrlGraphPaintTest, DifferencesShowWhatChanged)
{
    Graph->SetStyle(0x80000);
    Push({5, 5, 5.5F, 5.5F});
    const std::vector<drawPoint> points = Figure();
    ASSERT_THAT(points, SizeIs(3)) << "the first differs from nothing";
    EXPECT_NEAR(points[0].Y, 50, 0.04F);
    EXPECT_NEAR(points[1].Y, 50 - 0.5F * 49.5F, 0.04F);
    EXPECT_NEAR(points[2].Y, 50, 0.04F);
}

TEST_F(ctrlGraphPaintTest, AViewOfAPartDrawsThatPart)
{
    std::vector<float> data(100000);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = i >= 50000 && i < 50010 ? 0.5F : -0.5F;
    Push(data);
    Graph->SetRangeX(50.0005, 50.0085);
    const std::vector<drawPoint> points = Figure();
    ASSERT_THAT(points, Not(IsEmpty()));
    EXPECT_THAT(points.size(), Le(12U));
    for (const drawPoint& one : points)
        EXPECT_NEAR(one.Y, 50 - 0.5F * 49.5F, 0.04F);
}

TEST_F(ctrlGraphPaintTest, UprightSamplesRunFromTheBottomUp)
{
    Graph->Hide();
    auto* upright = new openWave(Window, 0, 0, 200, 101, 0x100);
    upright->Show();
    upright->SetRangeX(0, 199);
    upright->SetRangeY(-50, 50);
    const float data[] = {0, 30, 50, 50};
    upright->Push(data, std::size(data), 1);
    const std::vector<drawPoint> points = Figure();
    ASSERT_THAT(points, SizeIs(4));
    EXPECT_NEAR(points[0].X, 0.5F, 0.04F);
    EXPECT_NEAR(points[0].Y, 100.5F, 0.04F);
    EXPECT_NEAR(points[1].X, 30.5F, 0.04F);
    EXPECT_NEAR(points[1].Y, 75.5F, 0.04F);
    const std::vector<float> many(5000, 100.0F);
    upright->Push(many.data(), many.size(), 1);
    const std::vector<drawPoint> columns = Figure();
    expectWithin(columns, upright->Box);
    for (const drawPoint& one : columns)
        EXPECT_NEAR(one.X, 100.5F, 0.6F);
}

TEST_F(ctrlGraphPaintTest, ManySamplesCostLittle)
{
    std::vector<float> data(100000);
    std::mt19937 random(5);
    for (float& one : data)
        one = static_cast<float>(random() % 2000) / 1000 - 1;
    Graph->Move(0, 0, 2000, 1000);
    Push(data);
    EXPECT_THAT(DrawnIn(Trace), SizeIs(1)) << "one figure for all of it";
    Push(std::vector<float>(data.begin(), data.begin() + 256));
    EXPECT_THAT(DrawnIn(Trace).size(), Le(256U));
}

// --- Cursors

TEST_F(ctrlGraphPaintTest, CursorLabelsStayInThePlot)
{
    Graph->SetUnit(Graph->AxisX, "Hz");
    Graph->SetUnit(Graph->AxisY, "dB");
    for (const double position : {0.0, 1.0, 50.0, 99.0, 100.0}) {
        ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
        cursor->Flags = cursorValue;
        cursor->Label = "at";
        Graph->AxisLinkX->MoveCursor(cursor, position, true);
        cursor = Graph->AxisLinkY->AddCursor(true);
        cursor->Flags = cursorValue;
        Graph->AxisLinkY->MoveCursor(cursor, position / 50 - 1, true);
    }
    Graph->Move(0, 0, 400, 300);
    const std::vector<drawnText> texts = Texts(Drawn());
    EXPECT_THAT(texts, SizeIs(10));
    EXPECT_THAT(Names(texts), AllOf(Contains("at 50.0 Hz"), Contains("0.000 dB")));
    for (const drawnText& one : texts)
        EXPECT_TRUE(rectCovers(Graph->Box, one.Area)) << one.Text;
    Graph->Move(0, 0, 20, 10);
    for (const drawnText& one : Texts(Drawn()))
        EXPECT_TRUE(rectCovers(Graph->Box, one.Area)) << one.Text;
}

TEST_F(ctrlGraphPaintTest, AHandlerGivesTextAndColour)
{
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    cursor->Label = "label";
    cursor->OnText = [this](const ctrlGraph::Cursor& asked, std::string& text, colour& shade) {
        text = text + " of " + std::to_string(asked.Position);
        shade = 0x0000FF;
        Graph->AxisLinkX->MoveCursor(Graph->AxisLinkX->Cursors.front().get(), 25, false);
    };
    const std::vector<std::string> draws = Drawn();
    EXPECT_THAT(Names(Texts(draws)), ElementsAre("label of 0.000000"));
    EXPECT_THAT(draws, Contains(AllOf(StartsWith("line"), HasSubstr("FF0000/1"))));
    EXPECT_EQ(cursor->Position, 25);
}

TEST_F(ctrlGraphPaintTest, AHandlerMayDeleteTheGraph)
{
    Graph->AxisLinkX->AddCursor(true)->OnText = [this](const ctrlGraph::Cursor&, std::string&, colour&) {
        if (Graph)
            std::exchange(Graph, nullptr)->Destroy();
    };
    Drawn();
    EXPECT_EQ(Graph, nullptr);
}

TEST_F(ctrlGraphPaintTest, APaintTellsTheTracesHandlerWithoutALock)
{
    unsigned told = 0;
    Graph->SeriesById(0)->OnPainted = [this, &told](ctrlGraph::Series& trace) {
        ++told;
        Graph->SetRangeY(-2, 2);
        EXPECT_EQ(trace.Owner, Graph);
    };
    Push({1, 2});
    Drawn();
    EXPECT_EQ(told, 2U) << "its range asked for another paint";
}

TEST_F(ctrlGraphPaintTest, TheMouseDragsACursor)
{
    Graph->SetRangeX(0, 199);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    Graph->AxisLinkX->MoveCursor(cursor, 50, true);
    Drawn();
    const int32_t left = 110;
    const int32_t top = 120;
    fakeMouseMove(left + 52, top + 30);
    Toolkit().PumpPending();
    EXPECT_EQ(Toolkit().CursorId, cursorSizeLeftRight);
    fakeMousePress();
    fakeMouseMove(left + 120, top + 40);
    Toolkit().PumpPending();
    EXPECT_TRUE(Graph->CaptureHeld());
    EXPECT_NEAR(cursor->Position, 120, 1e-6);
    EXPECT_THAT(Drawn(), IsEmpty());
    fakeMouseMove(left + 1000, top + 40);
    Toolkit().PumpPending();
    EXPECT_EQ(cursor->Position, 199) << "as far as the range goes";
    fakeMouseMove(left + 80, top + 40);
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_FALSE(Graph->CaptureHeld());
    fakeMouseMove(left + 20, top + 40);
    Toolkit().PumpPending();
    EXPECT_NEAR(cursor->Position, 80, 1e-6);
    EXPECT_EQ(Toolkit().CursorId, cursorArrow);
}

TEST_F(ctrlGraphPaintTest, TheMouseLeavesFixedCursorsAndClicksElsewhere)
{
    Graph->SetRangeX(0, 199);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    Graph->AxisLinkX->MoveCursor(cursor, 50, true);
    unsigned clicks = 0;
    Graph->OnNotify = [&clicks](unsigned code) {
        clicks += code == notifyClick;
        return false;
    };
    Drawn();
    fakeMouseClick(110 + 100, 120 + 30);
    Toolkit().PumpPending();
    EXPECT_EQ(clicks, 1U);
    fakeMouseClick(110 + 50, 120 + 30);
    Toolkit().PumpPending();
    EXPECT_EQ(clicks, 1U) << "the cursor was taken";
    cursor->Flags = cursorFixed;
    fakeMouseClick(110 + 50, 120 + 30);
    Toolkit().PumpPending();
    EXPECT_EQ(clicks, 2U);
}

TEST_F(ctrlGraphPaintTest, ACursorThatGoesWhileItIsHeldIsLetGo)
{
    Graph->SetRangeX(0, 199);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkX->AddCursor(true);
    Graph->AxisLinkX->MoveCursor(cursor, 50, true);
    Drawn();
    fakeMouseMove(110 + 50, 120 + 30);
    fakeMousePress();
    Toolkit().PumpPending();
    Graph->AxisLinkX->RemoveCursor(cursor, true);
    fakeMouseMove(110 + 90, 120 + 30);
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_FALSE(Graph->CaptureHeld());
}

TEST_F(ctrlGraphPaintTest, AnUprightCursorIsDraggedUpAndDown)
{
    Graph->SetRangeY(0, 99);
    ctrlGraph::Cursor* cursor = Graph->AxisLinkY->AddCursor(true);
    Graph->AxisLinkY->MoveCursor(cursor, 50, true);
    Drawn();
    fakeMouseMove(110 + 20, 120 + 49);
    fakeMousePress();
    fakeMouseMove(110 + 20, 120 + 9);
    Toolkit().PumpPending();
    EXPECT_NEAR(cursor->Position, 90, 1e-6);
    EXPECT_EQ(Toolkit().CursorId, cursorSizeUpDown);
    fakeMouseRelease();
    Toolkit().PumpPending();
}

}  // namespace
