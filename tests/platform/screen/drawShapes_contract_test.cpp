#include "tests/platform/screen/drawCanvas.h"

#include <cmath>
#include <numbers>

// Lines, rectangles and figures, by the pixels that they leave.

namespace {

class drawShapes : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawShapes);

// How far smooth edges of two systems may be apart, of 255.
constexpr int Shade = 3;

TEST_P(drawShapes, FillsWholePixelsAndNoOthers)
{
    drawCanvas canvas(GetParam(), 12, 10);
    canvas.Fill({2, 3, 7, 6}, Red);
    canvas.Finish();
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 12; ++x)
            EXPECT_EQ(canvas.At(x, y), x >= 2 && x < 7 && y >= 3 && y < 6 ? Red : Black) << x << ',' << y;
    }
}

TEST_P(drawShapes, GivesAPixelTheShareThatIsCovered)
{
    DRAW_NEEDS(drawAbility::SmoothEdges);
    drawCanvas canvas(GetParam(), 12, 10);
    canvas.Fill({2.5f, 3, 7.25f, 6}, Red);
    canvas.Finish();
    EXPECT_NEAR(canvas.Red(2, 4), 128, Shade);
    EXPECT_EQ(canvas.At(3, 4), Red);
    EXPECT_NEAR(canvas.Red(7, 4), 64, Shade);
    EXPECT_EQ(canvas.At(8, 4), Black);
}

TEST_P(drawShapes, PutsTranslucentStripsSideBySideWithoutSeams)
{
    drawCanvas canvas(GetParam(), 24, 4);
    for (int strip = 0; strip < 8; ++strip)
        canvas.Fill({static_cast<float>(3 * strip), 0, static_cast<float>(3 * strip + 3), 4}, Green, 0.5f);
    canvas.Finish();
    for (int x = 0; x < 24; ++x)
        EXPECT_NEAR(canvas.Green(x, 2), 128, 1) << x;
}

TEST_P(drawShapes, DrawsALineOfOnePixelOnHalfPixelsIntoOneRow)
{
    drawCanvas canvas(GetParam(), 20, 7);
    canvas->DrawLine({4, 3.5f}, {15, 3.5f}, canvas.Brush(White).get(), {1, false});
    canvas.Finish();
    const inkBox ink = canvas.Ink();
    EXPECT_EQ(ink.Left, 4);
    EXPECT_EQ(ink.Right, 15);
    EXPECT_EQ(ink.Top, 3);
    EXPECT_EQ(ink.Bottom, 4);
    EXPECT_EQ(canvas.At(4, 3), White);
    EXPECT_EQ(canvas.At(14, 3), White);
}

TEST_P(drawShapes, SharesALineOnWholePixelsBetweenTwoRows)
{
    DRAW_NEEDS(drawAbility::SmoothEdges);
    drawCanvas canvas(GetParam(), 20, 7);
    canvas->DrawLine({4, 3}, {15, 3}, canvas.Brush(Red).get(), {1, false});
    canvas.Finish();
    EXPECT_NEAR(canvas.Red(9, 2), 128, Shade);
    EXPECT_NEAR(canvas.Red(9, 3), 128, Shade);
    EXPECT_EQ(canvas.At(9, 1), Black);
    EXPECT_EQ(canvas.At(9, 4), Black);
}

TEST_P(drawShapes, CentresAWideLineOnItsCourse)
{
    drawCanvas canvas(GetParam(), 12, 20);
    canvas->DrawLine({6, 4}, {6, 16}, canvas.Brush(White).get(), {4, false});
    canvas.Finish();
    const inkBox ink = canvas.Ink();
    EXPECT_EQ(ink.Left, 4);
    EXPECT_EQ(ink.Right, 8);
    EXPECT_EQ(ink.Top, 4);
    EXPECT_EQ(ink.Bottom, 16);
}

TEST_P(drawShapes, DrawsARectangleWithCornersAndWithoutInside)
{
    drawCanvas canvas(GetParam(), 14, 12);
    canvas->DrawRectangle({2.5f, 3.5f, 9.5f, 8.5f}, canvas.Brush(White).get(), {1, false});
    canvas.Finish();
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 14; ++x) {
            const bool within = x >= 2 && x <= 9 && y >= 3 && y <= 8;
            const bool inside = x >= 3 && x <= 8 && y >= 4 && y <= 7;
            EXPECT_EQ(canvas.At(x, y), within && !inside ? White : Black) << x << ',' << y;
        }
    }
}

TEST_P(drawShapes, FillsAnEllipseOfTheRightArea)
{
    drawCanvas canvas(GetParam(), 60, 40);
    canvas->FillEllipse({30, 20}, 24, 15, canvas.Brush(Red).get());
    canvas.Finish();
    double area = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x)
            area += canvas.Red(x, y) / 255.0;
    }
    // Without smooth edges half a pixel may be missing or too many along the rim of some 125.
    EXPECT_NEAR(area, std::numbers::pi * 24 * 15, 24);
    const inkBox ink = canvas.Ink();
    EXPECT_NEAR(ink.Left, 6, 1);
    EXPECT_NEAR(ink.Right, 54, 1);
    EXPECT_NEAR(ink.Top, 5, 1);
    EXPECT_NEAR(ink.Bottom, 35, 1);
    EXPECT_EQ(canvas.At(8, 7), Black);
}

TEST_P(drawShapes, ClosesAnOutlineOnlyWhenAsked)
{
    for (const bool closed : {false, true}) {
        drawCanvas canvas(GetParam(), 20, 20);
        const drawPoint lines[] = {{15.5f, 4.5f}, {15.5f, 15.5f}, {4.5f, 15.5f}};
        canvas->DrawFigure({{4.5f, 4.5f}, lines, {}, true, closed}, canvas.Brush(White).get(), {1, false});
        canvas.Finish();
        EXPECT_EQ(canvas.At(10, 4), White);
        EXPECT_EQ(canvas.At(15, 10), White);
        EXPECT_EQ(canvas.At(10, 15), White);
        EXPECT_EQ(canvas.At(4, 10), closed ? White : Black);
        EXPECT_EQ(canvas.At(10, 10), Black);
    }
}

// A star of one line that crosses itself, about 30, 30.
std::vector<drawPoint> star()
{
    std::vector<drawPoint> points;
    for (int point = 0; point < 5; ++point) {
        const float angle = static_cast<float>(point) * 4 * std::numbers::pi_v<float> / 5;
        points.push_back({30 + 26 * std::sin(angle), 30 - 26 * std::cos(angle)});
    }
    return points;
}

TEST_P(drawShapes, LeavesWhatAFigureGoesAroundTwiceEmpty)
{
    const std::vector<drawPoint> points = star();
    drawCanvas canvas(GetParam(), 60, 60);
    const drawFigure figure = {points[0], std::span(points).subspan(1), {}, true, true};
    canvas->FillFigure(figure, canvas.Brush(Red).get());
    canvas.Finish();
    EXPECT_EQ(canvas.At(30, 30), Black);
    EXPECT_EQ(canvas.At(30, 12), Red);
    EXPECT_EQ(canvas.At(12, 24), Red);
    EXPECT_EQ(canvas.At(47, 24), Red);
    EXPECT_EQ(canvas.At(30, 50), Black);
}

TEST_P(drawShapes, FillsAndDrawsTheSameFigure)
{
    drawCanvas canvas(GetParam(), 20, 20);
    const drawPoint lines[] = {{15, 4}, {15, 15}, {4, 15}};
    const drawFigure figure = {{4, 4}, lines, {}, true, true};
    canvas->FillFigure(figure, canvas.Brush(Red).get());
    canvas->DrawFigure(figure, canvas.Brush(Blue).get(), {2, false});
    canvas.Finish();
    EXPECT_EQ(canvas.At(10, 10), Red);
    EXPECT_EQ(canvas.At(5, 5), Red);
    for (const int edge : {3, 4}) {
        EXPECT_EQ(canvas.At(10, edge), Blue);
        EXPECT_EQ(canvas.At(edge, 10), Blue);
        EXPECT_EQ(canvas.At(edge, edge), Blue);
    }
    EXPECT_EQ(canvas.At(2, 10), Black);
}

TEST_P(drawShapes, DoesNotFillAFigureWithoutInside)
{
    drawCanvas canvas(GetParam(), 20, 20);
    const drawPoint lines[] = {{15, 4}, {15, 15}, {4, 15}};
    canvas->FillFigure({{4, 4}, lines, {}, false, true}, canvas.Brush(Red).get());
    canvas.Finish();
    EXPECT_TRUE(canvas.Ink().IsEmpty());
}

// A quarter of a circle about 10, 50 with radius 40, from above to the right.
constexpr drawPoint QuarterStart = {10, 10};
constexpr float Bend = 40 * 0.5522848f;
constexpr drawPoint Quarter[] = {{10 + Bend, 10}, {50, 50 - Bend}, {50, 50}};

TEST_P(drawShapes, DrawsAnArcMadeOfCurves)
{
    drawCanvas canvas(GetParam(), 60, 60);
    canvas->DrawFigure({QuarterStart, {}, Quarter, false, false}, canvas.Brush(White).get(), {3, false});
    canvas.Finish();
    for (const double degrees : {5.0, 30.0, 45.0, 60.0, 85.0}) {
        const double angle = degrees * std::numbers::pi / 180;
        const auto at = [&](double radius) {
            return canvas.At(static_cast<int>(10 + radius * std::cos(angle)),
                             static_cast<int>(50 - radius * std::sin(angle)));
        };
        EXPECT_EQ(at(40), White) << degrees;
        EXPECT_EQ(at(36), Black) << degrees;
        EXPECT_EQ(at(44), Black) << degrees;
    }
}

TEST_P(drawShapes, FillsAFigureOfCurves)
{
    drawCanvas canvas(GetParam(), 60, 60);
    canvas->FillFigure({QuarterStart, {}, Quarter, true, true}, canvas.Brush(Red).get());
    canvas.Finish();
    EXPECT_EQ(canvas.At(35, 28), Red);
    EXPECT_EQ(canvas.At(20, 40), Black);
    EXPECT_EQ(canvas.At(50, 12), Black);
}

TEST_P(drawShapes, RunsSidesTogetherInASharpCorner)
{
    drawCanvas canvas(GetParam(), 40, 40);
    const drawPoint lines[] = {{20, 20}, {10, 30}};
    canvas->DrawFigure({{10, 10}, lines, {}, true, false}, canvas.Brush(White).get(), {6, false});
    canvas.Finish();
    // The mitre reaches half the width times the root of two beyond the corner; a round one 3, a cut one 2.1.
    EXPECT_EQ(canvas.At(22, 19), White);
    EXPECT_NE(canvas.At(23, 19), Black);
    EXPECT_EQ(canvas.At(25, 19), Black);
}

TEST_P(drawShapes, DashesLinesByTheWidthOfThePen)
{
    DRAW_NEEDS(drawAbility::Dashes);
    drawCanvas canvas(GetParam(), 80, 8);
    canvas->DrawLine({4, 4}, {76, 4}, canvas.Brush(Red).get(), {4, true});
    canvas.Finish();
    EXPECT_EQ(canvas.At(3, 3), Black);
    // Dashes of 8 begin every 16; a round end adds up to 2 and leaves the middle of the gap free.
    for (int begin = 4; begin < 76; begin += 16) {
        EXPECT_EQ(canvas.At(begin, 4), Red) << begin;
        EXPECT_EQ(canvas.At(begin + 7, 4), Red) << begin;
        EXPECT_EQ(canvas.At(begin + 8, 4), Red) << begin;
        if (begin + 12 < 76) {
            EXPECT_EQ(canvas.At(begin + 12, 4), Black) << begin;
        }
    }
}

TEST_P(drawShapes, DashesDoNotOverlapWhenTheyAreTranslucent)
{
    DRAW_NEEDS(drawAbility::Dashes);
    drawCanvas canvas(GetParam(), 80, 8);
    canvas->DrawLine({4, 4}, {76, 4}, canvas.Brush(Red, 0.5f).get(), {4, true});
    canvas.Finish();
    for (int x = 0; x < 80; ++x)
        EXPECT_LE(canvas.Red(x, 4), 128 + Shade) << x;
    EXPECT_NEAR(canvas.Red(8, 4), 128, Shade);
}

TEST_P(drawShapes, TurnsWhatIsDrawnInEightDirections)
{
    for (int eighths = 0; eighths < 8; ++eighths) {
        drawCanvas canvas(GetParam(), 80, 80);
        canvas->SetTransform(drawTurn(eighths, 40, 40));
        canvas.Fill({20, -4, 30, 4}, Red);
        canvas.Finish();
        const drawMatrix turn = drawTurn(eighths, 40, 40);
        const auto at = [&](float x, float y) {
            return canvas.At(static_cast<int>(std::floor(x * turn.M11 + y * turn.M21 + turn.DX)),
                             static_cast<int>(std::floor(x * turn.M12 + y * turn.M22 + turn.DY)));
        };
        EXPECT_EQ(at(25, 0), Red) << eighths;
        EXPECT_EQ(at(22, -2), Red) << eighths;
        EXPECT_EQ(at(28, 2), Red) << eighths;
        EXPECT_EQ(at(17, 0), Black) << eighths;
        EXPECT_EQ(at(33, 0), Black) << eighths;
        EXPECT_EQ(at(25, 7), Black) << eighths;
        EXPECT_EQ(at(-25, 0), Black) << eighths;
    }
}

TEST_P(drawShapes, MovesAndScalesByTheMatrix)
{
    drawCanvas canvas(GetParam(), 20, 20);
    canvas->SetTransform({2, 0, 0, 3, 4, 5});
    canvas.Fill({1, 1, 4, 3}, Red);
    canvas->SetTransform({});
    canvas.Fill({0, 0, 1, 1}, Blue);
    canvas.Finish();
    EXPECT_EQ(canvas.At(0, 0), Blue);
    const inkBox ink = canvas.Ink({1, 1, 20, 20});
    EXPECT_EQ(ink.Left, 6);
    EXPECT_EQ(ink.Right, 12);
    EXPECT_EQ(ink.Top, 8);
    EXPECT_EQ(ink.Bottom, 14);
}

TEST_P(drawShapes, DrawsTwiceAsLargeAtTwiceTheDPI)
{
    drawCanvas canvas(GetParam(), 20, 20);
    canvas->SetDPI(192, 192);
    canvas.Fill({1, 2, 4, 5}, Red);
    canvas->SetDPI(96, 96);
    canvas.Finish();
    const inkBox ink = canvas.Ink();
    EXPECT_EQ(ink.Left, 2);
    EXPECT_EQ(ink.Right, 8);
    EXPECT_EQ(ink.Top, 4);
    EXPECT_EQ(ink.Bottom, 10);
}

TEST_P(drawShapes, SurvivesCoordinatesThatAreFarAwayOrNoNumbers)
{
    drawCanvas canvas(GetParam(), 20, 20);
    const std::unique_ptr<drawBrush> brush = canvas.Brush(Blue);
    const drawPoint wild[] = {{1e30f, 5}, {5, -1e30f}, {NAN, NAN}, {INFINITY, 3}};
    canvas->FillFigure({{0, 0}, wild, {}, true, true}, brush.get());
    canvas->DrawFigure({{0, 0}, wild, {}, true, true}, brush.get(), {1, false});
    canvas->FillEllipse({NAN, 5}, 1e30f, -1, brush.get());
    canvas->DrawLine({5, 5}, {NAN, INFINITY}, brush.get(), {NAN, true});
    canvas->SetTransform({0, 0, 0, 0, 0, 0});
    canvas->FillRectangle({0, 0, 20, 20}, brush.get());
    canvas->SetTransform({});
    canvas.Fill({-100'000, -100'000, 100'000, 100'000}, Red);
    canvas.Fill({5, 5, 6, 6}, Green);
    canvas.Finish();
    EXPECT_EQ(canvas.At(0, 0), Red);
    EXPECT_EQ(canvas.At(19, 19), Red);
    EXPECT_EQ(canvas.At(5, 5), Green);
}

}  // namespace
