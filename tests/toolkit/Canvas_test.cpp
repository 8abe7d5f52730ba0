#include "tests/toolkit/toolkitTest.h"

#include "toolkit/drawing.h"

#include <cmath>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A canvas in memory that draws; its target is number 1.
class CanvasTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Paper.SurfaceSize(100, 50);
        Paper.TargetCreate(nullptr);
        Paper.BeginDraw();
        fakeClearDraws();
    }
    void TearDown() override
    {
        if (Paper.HasTarget())
            Paper.EndDraw();
        Paper.DeviceRelease();
        toolkitTest::TearDown();
    }

    Canvas Paper;
};

TEST_F(CanvasTest, DrawsEachShapeAsItWasAskedFor)
{
    const drawPoint points[] = {{1, 1}, {9, 1}, {5, 8}};
    Paper.Colour(0x0000FF);
    Paper.PenWidth(2);
    Paper.Line(1, 2, 3, 4);
    Paper.Rectangle(1, 2, 11, 12);
    Paper.RectFill(0, 0, 5, 6);
    Paper.EllipseFill(20, 21, 3, 4);
    Paper.LineStyle(canvasLine::Dashed);
    Paper.Polyline(points, 3, true);
    Paper.LineStyle(canvasLine::Solid);
    Paper.Polyline(points, 3, false);

    EXPECT_THAT(fakeDraws(),
                ElementsAre("line 1 1,2 3,4 FF0000/1 width 2", "rectangle 1 1,2,11,12 FF0000/1 width 2",
                            "fill 1 0,0,5,6 FF0000/1", "ellipse 1 20,21 3x4 FF0000/1",
                            "figure 1 3 points closed FF0000/1 width 2 dashed",
                            "figure 1 3 points FF0000/1 width 2"));
}

TEST_F(CanvasTest, APolylineOfOnePointIsNothingAndOfTwoIsALine)
{
    const drawPoint points[] = {{1, 1}, {9, 1}};
    Paper.Polyline(points, 0, true);
    Paper.Polyline(points, 1, true);
    EXPECT_THAT(fakeDraws(), IsEmpty());

    Paper.Polyline(points, 2, true);
    EXPECT_THAT(fakeDraws(), ElementsAre("line 1 1,1 9,1 000000/1 width 1"));
}

TEST_F(CanvasTest, APolygonIsFilledAndThenOutlinedInTheColourThatItLeaves)
{
    const drawPoint points[] = {{1, 1}, {9, 1}, {5, 8}};
    Paper.Colour(0x00FF00);
    Paper.Polygon(points, 3);
    EXPECT_EQ(Paper.Colour(), 0x00FF00);
    Paper.Polygon(points, 3, 0x0000FF);

    EXPECT_EQ(Paper.Colour(), 0x0000FF);
    EXPECT_THAT(fakeDraws(),
                ElementsAre("fillfigure 1 3 points closed 00FF00/1", "fillfigure 1 3 points closed 00FF00/1",
                            "figure 1 3 points closed FF0000/1 width 1"));
}

TEST_F(CanvasTest, KeepsTheOpacityBetweenNoneAndWhole)
{
    const std::pair<float, float> rows[] = {{1.5F, 1.0F}, {-0.5F, 0.0F}, {0.25F, 0.25F}};
    for (const auto& [given, kept] : rows) {
        Paper.Opacity(given);
        EXPECT_EQ(Paper.Opacity(), kept);
    }
    Paper.RectFill(0, 0, 1, 1);
    EXPECT_THAT(fakeDraws(), ElementsAre("fill 1 0,0,1,1 000000/0.25"));
}

TEST_F(CanvasTest, MakesOneBrushForEachColourAndOpacity)
{
    const auto fill = [this](colour value, float opacity) {
        Paper.Colour(value);
        Paper.Opacity(opacity);
        Paper.RectFill(0, 0, 1, 1);
    };
    fill(1, 1);
    fill(1, 1);
    EXPECT_EQ(fakeBrushesMade(), 1U);
    fill(2, 1);
    EXPECT_EQ(fakeBrushesMade(), 2U);
    fill(2, 0.5F);
    EXPECT_EQ(fakeBrushesMade(), 3U);
    fill(1, 1);
    fill(2, 1);
    fill(2, 0.5F);
    EXPECT_EQ(fakeBrushesMade(), 3U);
    EXPECT_EQ(fakeDraws().back(), "fill 1 0,0,1,1 020000/0.5");
}

TEST_F(CanvasTest, BrushesAndFormatsLiveFromOneBeginToItsEnd)
{
    Paper.RectFill(0, 0, 1, 1);
    Paper.Text({0, 0, 50, 20}, "A", 0);
    Paper.EndDraw();
    Paper.BeginDraw();
    Paper.RectFill(0, 0, 1, 1);
    Paper.Text({0, 0, 50, 20}, "A", 0);
    EXPECT_EQ(fakeBrushesMade(), 2U);
    EXPECT_EQ(fakeFormatsMade(), 2U);
}

TEST_F(CanvasTest, ABrushThatCannotBeMadeIsTriedAgainAtTheNextDraw)
{
    fakeFail("drawMakeBrush");
    Paper.RectFill(0, 0, 1, 1);
    Paper.RectFill(0, 0, 1, 1);
    EXPECT_THAT(fakeDraws(), ElementsAre("fill 1 0,0,1,1 none", "fill 1 0,0,1,1 000000/1"));
}

TEST_F(CanvasTest, AGivenBrushIsUsedUntilTheColourChanges)
{
    const auto image = Drawing()->MakeImage(1, 1);
    const auto target = Drawing()->MakeImageTarget(*image);
    const auto red = target->MakeBrush({1, 0, 0, 1});
    fakeClearDraws();
    Paper.BrushSelect(red.get());
    Paper.RectFill(0, 0, 1, 1);
    Paper.Colour(0);  // as it is already
    Paper.RectFill(0, 0, 2, 2);
    Paper.Colour(0x00FF00);
    Paper.RectFill(0, 0, 3, 3);
    EXPECT_THAT(fakeDraws(),
                ElementsAre("fill 1 0,0,1,1 FF0000/1", "fill 1 0,0,2,2 FF0000/1", "fill 1 0,0,3,3 00FF00/1"));
}

// --- Arcs

struct arcRow {
    const char* Name;
    float Start, End;
    double Sweep;  // degrees
    drawPoint From, To;
};

class CanvasArcTest : public CanvasTest, public testing::WithParamInterface<arcRow>
{
};

// How far counter-clockwise on the screen it is from one point to the other, seen from the centre.
double degreesBetween(drawPoint from, drawPoint to)
{
    const auto angle = [](drawPoint point) { return std::atan2(40.0 - point.Y, point.X - 50.0); };
    constexpr double degrees = 57.29577951308232;
    const double turned = (angle(to) - angle(from)) * degrees;
    return turned < -0.1 ? turned + 360 : turned;
}

TEST_P(CanvasArcTest, RunsCounterClockwiseAlongTheCircle)
{
    const arcRow& row = GetParam();
    Paper.Arc(50, 40, 10, row.Start, row.End);
    const std::vector<drawPoint> points = fakeFigure();
    ASSERT_EQ(points.size() % 3, 1U) << "the start, and three for each curve";
    EXPECT_NEAR(points.front().X, row.From.X, 0.02);
    EXPECT_NEAR(points.front().Y, row.From.Y, 0.02);
    EXPECT_NEAR(points.back().X, row.To.X, 0.02);
    EXPECT_NEAR(points.back().Y, row.To.Y, 0.02);
    const auto distance = [](double x, double y) { return std::hypot(x - 50, y - 40); };
    double sweep = 0;
    for (size_t i = 0; i + 3 < points.size(); i += 3) {
        const auto middle = [](float a, float b, float c, float d) { return (a + 3 * b + 3 * c + d) / 8; };
        const float x = middle(points[i].X, points[i + 1].X, points[i + 2].X, points[i + 3].X);
        const float y = middle(points[i].Y, points[i + 1].Y, points[i + 2].Y, points[i + 3].Y);
        EXPECT_NEAR(distance(points[i].X, points[i].Y), 10, 0.01) << i;
        EXPECT_NEAR(distance(x, y), 10, 0.01) << i;
        const double turned = degreesBetween(points[i], points[i + 3]);
        EXPECT_LT(turned, 90.1) << "a curve follows the circle for a quarter at most";
        sweep += turned;
    }
    EXPECT_NEAR(sweep, row.Sweep, 0.1);
    EXPECT_EQ(fakeDraws().back(),
              "figure 1 " + std::to_string(points.size()) + " points curved 000000/1 width 1");
}

INSTANTIATE_TEST_SUITE_P(, CanvasArcTest,
                         testing::Values(arcRow{"Quarter", 0, 90, 90, {60, 40}, {50, 30}},
                                         arcRow{"Half", 90, 270, 180, {50, 30}, {50, 50}},
                                         arcRow{"Large", 0, 270, 270, {60, 40}, {50, 50}},
                                         arcRow{"Round", 0, 360, 360, {60, 40}, {60, 40}},
                                         arcRow{
                                             "OverTheRight", 315, 45, 90, {57.07F, 47.07F}, {57.07F, 32.93F}},
                                         arcRow{"Backwards", 90, 0, 270, {50, 30}, {60, 40}}),
                         [](const auto& row) { return row.param.Name; });

// --- Clips

TEST_F(CanvasTest, ClipsNest)
{
    Paper.ClipPush({1, 2, 30, 40});
    Paper.ClipPush({3, 4, 5, 6});
    Paper.ClipPop();
    Paper.ClipPop();
    EXPECT_THAT(fakeDraws(), ElementsAre("clip 1 1,2,30,40", "clip 1 3,4,5,6", "unclip 1", "unclip 1"));
}

TEST_F(CanvasTest, APopWithoutAClipIsFatal)
{
    EXPECT_THROW(Paper.ClipPop(), fakeBreak);
    EXPECT_EQ(fakeDebugText(), "Canvas::ClipPop - No clip to pop!\r\n");
}

TEST_F(CanvasTest, AReleasePopsTheClipsThatWereLeft)
{
    Paper.ClipPush({1, 2, 30, 40});
    Paper.ClipPush({3, 4, 5, 6});
    Paper.DeviceRelease();
    EXPECT_EQ(fakeDrawCount("unclip 1"), 2U);
    EXPECT_FALSE(Paper.HasTarget());
}

TEST_F(CanvasTest, WithoutATargetNothingIsDrawn)
{
    Paper.DeviceRelease();
    fakeClearDraws();
    const drawPoint points[] = {{1, 1}, {9, 1}, {5, 8}};
    Paper.BeginDraw();
    Paper.RectFill(0, 0, 1, 1);
    Paper.Line(0, 0, 1, 1);
    Paper.Polygon(points, 3, 1);
    Paper.Polyline(points, 3, false);
    Paper.Arc(1, 1, 1, 0, 90);
    Paper.EllipseFill(1, 1, 1, 1);
    Paper.Rectangle(0, 0, 1, 1);
    Paper.Text({0, 0, 9, 9}, "A", 0);
    Paper.EndDraw();
    EXPECT_THAT(fakeDraws(), IsEmpty());
}

}  // namespace
