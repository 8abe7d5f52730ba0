#include "tests/toolkit/toolkitTest.h"

#include <cstdio>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int Width = 20;
constexpr int Height = 16;

class bordered : public ctrlWindow
{
public:
    using ctrlWindow::ctrlWindow;
    using ctrlWindow::DropArrow;
    using ctrlWindow::PaintRect;
    using ctrlWindow::RectFillClipped;
    using ctrlWindow::RectFillClippedF;

    void Paint() override
    {
        ctrlWindow::Paint();
        Left = PaintRect;
        if (More)
            More();
    }
    rect Left;  // by the base
    std::function<void()> More;
    void DrawEnabled(colour value, bool mind)
    {
        ColourEnabled(value, mind);
        RectFill(0, 0, 1, 1);
    }
};

class ctrlWindowBorderTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Window = new bordered(nullptr, 100, 100, Width, Height, 0);
        Window->SetBorderColour(Tint);
        Window->SetBackColour(0x000001);
        Window->Show();
    }

    // Paints the fills of the record onto pixels; -1 where nothing was drawn.
    static std::vector<colour> Pixels()
    {
        std::vector<colour> pixels(size_t{Width} * Height, -1);
        for (const std::string& line : Drawn({"fill 1 "})) {
            int left = 0, top = 0, right = 0, bottom = 0;
            unsigned red = 0, green = 0, blue = 0;
            if (std::sscanf(line.c_str(), "fill 1 %d,%d,%d,%d %2X%2X%2X", &left, &top, &right, &bottom, &red,
                            &green, &blue) != 7)
                ADD_FAILURE() << line;
            EXPECT_TRUE(left >= 0 && top >= 0 && right <= Width && bottom <= Height) << line;
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < right; ++x)
                    pixels[static_cast<size_t>(y * Width + x)] =
                        static_cast<colour>(red | green << 8 | blue << 16);
        }
        return pixels;
    }

    static constexpr colour Tint = 0x406080;
    bordered* Window = nullptr;
};

enum class side : uint8_t {
    Lit,
    Shaded,
    Corner
};

// On which side of its ring a pixel lies, and which ring that is.
std::pair<side, unsigned> ringOf(int x, int y)
{
    const int ring = std::min(std::min(x, y), std::min(Width - 1 - x, Height - 1 - y));
    const bool topLeft = x == ring || y == ring;
    const bool bottomRight = x == Width - 1 - ring || y == Height - 1 - ring;
    return {topLeft && bottomRight ? side::Corner
            : topLeft              ? side::Lit
                                   : side::Shaded,
            static_cast<unsigned>(ring)};
}

// What a ring of a raised border shows on its lit and on its shaded side; a sunken one the other way round.
std::pair<colour, colour> shades(colour value, unsigned width, unsigned ring, bool raised)
{
    const int whole = static_cast<int>(width == 1 ? 2 : width * width);
    const int change = static_cast<int>(2 * width - 1) - 2 * static_cast<int>(ring);
    const auto scaled = [&](int num) {
        return ColourScale(value, static_cast<uint32_t>(num), static_cast<uint32_t>(whole));
    };
    return raised ? std::pair{scaled(whole + change), scaled(whole - change)}
                  : std::pair{scaled(whole - change), scaled(whole + change)};
}

void expectRings(const std::vector<colour>& pixels, ctrlBorder style, unsigned width)
{
    const bool twice = style == ctrlBorder::Etched || style == ctrlBorder::Ridged;
    const bool raisedFirst = style == ctrlBorder::Raised || style == ctrlBorder::Etched;
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            const colour pixel = pixels[static_cast<size_t>(y * Width + x)];
            const auto [where, ring] = ringOf(x, y);
            if (ring >= (twice ? 2 * width : width)) {
                EXPECT_EQ(pixel, 0x000001) << x << "," << y;
                continue;
            }
            const bool raised = ring < width ? raisedFirst : !raisedFirst;
            const auto [lit, shaded] = shades(0x406080, width, ring % width, raised);
            if (where == side::Corner)
                EXPECT_TRUE(pixel == lit || pixel == shaded) << x << "," << y;
            else
                EXPECT_EQ(pixel, where == side::Lit ? lit : shaded) << x << "," << y;
        }
    }
}

TEST_F(ctrlWindowBorderTest, RingsShadeFromTheOutsideIn)
{
    for (const ctrlBorder style :
         {ctrlBorder::Raised, ctrlBorder::Sunken, ctrlBorder::Etched, ctrlBorder::Ridged}) {
        for (const unsigned width : {1U, 2U, 3U}) {
            SCOPED_TRACE(std::to_string(static_cast<int>(style)) + " of " + std::to_string(width));
            Window->BorderStyle(style);
            Window->BorderWidth(width);
            Window->Invalidate(true);
            expectRings(Pixels(), style, width);
            const bool twice = style == ctrlBorder::Etched || style == ctrlBorder::Ridged;
            const auto taken = static_cast<int32_t>(twice ? 2 * width : width);
            EXPECT_EQ(Window->Left, (rect{taken, taken, Width - taken, Height - taken}));
        }
    }
}

TEST_F(ctrlWindowBorderTest, AFlatOneIsFourStripsOfItsColour)
{
    Window->BorderStyle(ctrlBorder::Flat);
    Window->BorderWidth(3);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 1 0,0,3,16 806040/1", "fill 1 3,0,17,3 806040/1",
                                             "fill 1 17,0,20,16 806040/1", "fill 1 3,13,17,16 806040/1",
                                             "fill 1 3,3,17,13 010000/1"));
}

TEST_F(ctrlWindowBorderTest, NoStyleAndNoWidthDrawNone)
{
    Window->BorderWidth(3);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 1 0,0,20,16 010000/1"));
    Window->BorderStyle(ctrlBorder::Raised);
    Window->BorderWidth(0);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 1 0,0,20,16 010000/1"));
}

TEST_F(ctrlWindowBorderTest, AWidthIsAtMostHalfOfTheControl)
{
    Window->BorderStyle(ctrlBorder::Flat);
    Window->Move(100, 100, 40, 12);
    Window->BorderWidth(10);
    EXPECT_THAT(Drawn({"fill"}), ElementsAre("fill 1 0,0,6,12 806040/1", "fill 1 6,0,34,6 806040/1",
                                             "fill 1 34,0,40,12 806040/1", "fill 1 6,6,34,12 806040/1"))
        << "6 on each side, and nothing left to fill";
    Window->BorderWidth(6);
    EXPECT_THAT(Drawn(), IsEmpty()) << "no change";
}

TEST_F(ctrlWindowBorderTest, ItsColourIsOnesOwnTheParentsOrTheThemes)
{
    auto* child = new ctrlWindow(Window, 0, 0, 5, 5, 0);
    EXPECT_EQ(child->BorderColour(), theme::ListBorder);
    child->SetBorderColour(colourParent);
    EXPECT_EQ(child->BorderColour(), Tint);
    child->SetBorderColour(0x123456);
    EXPECT_EQ(child->BorderColour(), 0x123456);
}

TEST_F(ctrlWindowBorderTest, FillsAreCutToThePaintRectangle)
{
    Window->More = [this] {
        Window->PaintRect = {4, 4, 10, 10};
        fakeClearDraws();
        Window->RectFillClipped({0, 5, 7, 20});
        Window->RectFillClipped({10, 4, 12, 6});
        Window->RectFillClippedF(0, 0, 5.5F, 4.5F);
        Window->RectFillClippedF(0, 0, 4, 9);
    };
    Window->Invalidate(true);
    Toolkit().PumpPending();
    EXPECT_THAT(fakeDraws(), ElementsAre("fill 1 4,5,7,10 010000/1", "fill 1 4,4,5.5,4.5 010000/1", "end 1"));
}

TEST_F(ctrlWindowBorderTest, ADropArrowTakesASquareOnTheRight)
{
    Window->More = [this] {
        fakeClearDraws();
        Window->DropArrow();
    };
    Window->Invalidate(true);
    Toolkit().PumpPending();
    EXPECT_EQ(Window->PaintRect, (rect{0, 0, 4, 16}));
    EXPECT_EQ(fakeDraws().front(), "figure 1 3 points 010000/1 width 2");
    // Half is 4.75, the centre is at 4 + 8 + 0.5 and (16 + 4.75 + 1) / 2.
    const std::vector<drawPoint> points = fakeFigure();
    ASSERT_EQ(points.size(), 3U);
    EXPECT_FLOAT_EQ(points[0].X, 7.75F);
    EXPECT_FLOAT_EQ(points[0].Y, 6.125F);
    EXPECT_FLOAT_EQ(points[1].X, 12.5F);
    EXPECT_FLOAT_EQ(points[1].Y, 10.875F);
    EXPECT_FLOAT_EQ(points[2].X, 17.25F);
    EXPECT_FLOAT_EQ(points[2].Y, 6.125F);
}

TEST_F(ctrlWindowBorderTest, ADisabledControlIsDrawnHalfWayToItsBackground)
{
    auto* child = new bordered(Window, 0, 0, 10, 10, 0);
    child->SetBackColour(0x000000);
    child->More = [child] {
        child->DrawEnabled(0x0000C8, true);
        child->DrawEnabled(0x0000C8, false);
    };
    child->Show();
    EXPECT_THAT(Drawn({"fill 2 0,0,1,1"}), ElementsAre("fill 2 0,0,1,1 C80000/1", "fill 2 0,0,1,1 C80000/1"));
    child->Enable(false);
    EXPECT_THAT(Drawn({"fill 2 0,0,1,1"}), ElementsAre("fill 2 0,0,1,1 640000/1", "fill 2 0,0,1,1 C80000/1"));
    child->Enable(true);
    Window->Enable(false);
    EXPECT_THAT(Drawn({"fill 2 0,0,1,1"}), ElementsAre("fill 2 0,0,1,1 640000/1", "fill 2 0,0,1,1 C80000/1"))
        << "by an ancestor too";
}

}  // namespace
