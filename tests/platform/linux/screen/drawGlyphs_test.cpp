#include "tests/platform/screen/drawCanvas.h"

namespace {

class drawGlyphsTest : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawGlyphsTest);

constexpr int Width = 120;
constexpr int Height = 40;
constexpr float Size = 16;
constexpr int Strip = 6;  // an H leaves less than that free beside it, and more where it is missing

// Something in each strip of `step` pixels from the first to the last column with ink.
bool hasNoGap(const drawCanvas& canvas, int step)
{
    const inkBox ink = canvas.Ink();
    for (int x = ink.Left; x + step < ink.Right; x += step) {
        if (canvas.Ink({x, 0, x + step, Height}).IsEmpty())
            return false;
    }
    return true;
}

TEST_P(drawGlyphsTest, ShowsEveryPartOfATextThatIsFarLongerThanTheSurface)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(Size);
    const auto text = drawTestText(std::string(600, 'H'), *format, 100, 20);
    text->SetNoWrap();
    const float room = text->Size().Width;
    ASSERT_GT(room, 6000);
    for (float from = 0; from + Width < room; from += Width) {
        drawCanvas canvas(GetParam(), Width, Height);
        canvas->DrawLayout({-from, 5}, text.get(), canvas.Brush(White).get());
        canvas.Finish();
        const inkBox ink = canvas.Ink();
        ASSERT_LT(ink.Left, Size) << from;
        ASSERT_GT(static_cast<float>(ink.Right), Width - Size) << from;
        ASSERT_TRUE(hasNoGap(canvas, Strip)) << from;
    }
}

TEST_P(drawGlyphsTest, DrawsAWordAsItsLettersOneByOne)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(Size);
    drawCanvas whole(GetParam(), Width, Height);
    whole->DrawLayout({10, 5}, drawTestText("HHH", *format, 100, 20).get(), whole.Brush(White).get());
    whole.Finish();
    const auto letter = drawTestText("H", *format, 100, 20);
    const float step = letter->Size().Width;
    drawCanvas single(GetParam(), Width, Height);
    for (int at = 0; at < 3; ++at)
        single->DrawLayout({10 + static_cast<float>(at) * step, 5}, letter.get(), single.Brush(White).get());
    single.Finish();
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x)
            ASSERT_NEAR(whole.Red(x, y), single.Red(x, y), 2) << x << ", " << y;
    }
}

}  // namespace
