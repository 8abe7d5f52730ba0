#include "tests/platform/screen/drawCanvas.h"

#include <algorithm>
#include <cmath>

// Where text stands and what is left of it, by the pixels.

namespace {

class drawTextPixels : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawTextPixels);

constexpr int Width = 260;
constexpr int Height = 100;
constexpr float BoxLeft = 20;
constexpr float BoxTop = 15;
constexpr float BoxWidth = 220;
constexpr float BoxHeight = 70;

constexpr drawAlign Aligns[] = {drawAlign::Near, drawAlign::Centre, drawAlign::Far};

// Where something of a size stands within a side of a box.
float placeOf(drawAlign align, float box, float size)
{
    return align == drawAlign::Near ? 0 : align == drawAlign::Far ? box - size : (box - size) / 2;
}

TEST_P(drawTextPixels, StandsInItsBoxInAllNineAlignments)
{
    for (const float size : {8.0f, 11.0f, 13.0f, 16.0f, 22.0f, 30.0f, 40.0f}) {
        const std::shared_ptr<drawTextFormat> format = drawTestFormat(size);
        for (const drawAlign horizontal : Aligns) {
            for (const drawAlign vertical : Aligns) {
                drawCanvas canvas(GetParam(), Width, Height);
                const auto text = drawTestText("Hgx1H", *format, BoxWidth, BoxHeight);
                text->SetAlign(horizontal, vertical);
                canvas->DrawLayout({BoxLeft, BoxTop}, text.get(), canvas.Brush(White).get());
                canvas.Finish();

                const drawTextSize room = text->Size();
                const float left = BoxLeft + placeOf(horizontal, BoxWidth, room.Width);
                const float top = BoxTop + placeOf(vertical, BoxHeight, room.Height);
                const inkBox ink = canvas.Ink();
                // An H begins a tenth of an em beside its place. The feet stand on whole pixels, 1.07 ems
                // below the top; capitals are 0.71 ems high.
                EXPECT_NEAR(static_cast<float>(ink.Left), left + 0.1f * size, 2) << size;
                EXPECT_NEAR(static_cast<float>(ink.Right), left + room.Width - 0.1f * size, 2) << size;
                EXPECT_NEAR(static_cast<float>(ink.Top), top + 0.355f * size, 2) << size;
                EXPECT_NEAR(static_cast<float>(ink.Bottom), top + 1.31f * size, 2) << size;
            }
        }
    }
}

TEST_P(drawTextPixels, LeavesBlanksAtTheEndOutOfTheAlignment)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(16);
    for (const drawAlign horizontal : Aligns) {
        std::vector<uint32_t> plain;
        for (const char* words : {"H text H", "H text H    "}) {
            drawCanvas canvas(GetParam(), Width, Height);
            const auto text = drawTestText(words, *format, BoxWidth, BoxHeight);
            text->SetAlign(horizontal, drawAlign::Near);
            canvas->DrawLayout({BoxLeft, BoxTop}, text.get(), canvas.Brush(White).get());
            canvas.Finish();
            if (plain.empty())
                plain = canvas.Pixels();
            EXPECT_EQ(plain, canvas.Pixels()) << words;
        }
    }
}

TEST_P(drawTextPixels, AlignsEveryLine)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(16);
    drawCanvas canvas(GetParam(), Width, Height);
    const auto text = drawTestText("HHHHHHHH\nH", *format, BoxWidth, BoxHeight);
    text->SetAlign(drawAlign::Far, drawAlign::Near);
    canvas->DrawLayout({BoxLeft, BoxTop}, text.get(), canvas.Brush(White).get());
    canvas.Finish();
    const int middle = static_cast<int>(BoxTop + text->Size().Height / 2);
    const inkBox first = canvas.Ink({0, 0, Width, middle});
    const inkBox second = canvas.Ink({0, middle, Width, Height});
    EXPECT_NEAR(first.Right, BoxLeft + BoxWidth - 1.6f, 1.5);
    EXPECT_NEAR(second.Right, first.Right, 1);
    EXPECT_GT(second.Left, first.Left + 50);
}

TEST_P(drawTextPixels, HasSharpFeetWhereverTheBoxIs)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    for (const float fraction : {0.0f, 0.25f, 0.5f, 0.75f}) {
        drawCanvas canvas(GetParam(), Width, Height);
        const auto text = drawTestText("HHHHHHH", *format, BoxWidth, BoxHeight);
        canvas->DrawLayout({BoxLeft, BoxTop + fraction}, text.get(), canvas.Brush(White).get());
        canvas.Finish();
        const inkBox ink = canvas.Ink();
        const auto brightest = [&](int y) {
            int most = 0;
            for (int x = ink.Left; x < ink.Right; ++x)
                most = std::max(most, canvas.Red(x, y));
            return most;
        };
        // Feet between two rows would give each half.
        EXPECT_GT(brightest(ink.Bottom - 1), 0.65 * brightest((ink.Top + ink.Bottom) / 2)) << fraction;
    }
}

TEST_P(drawTextPixels, StandsOutOfItsBoxUnlessItIsClipped)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(16);
    for (const bool clipped : {false, true}) {
        drawCanvas canvas(GetParam(), Width, Height);
        const auto text = drawTestText("A text that is long", *format, 60, 30);
        if (clipped)
            canvas->PushClip({10, 10, 70, 40});
        canvas->DrawLayout({10, 10}, text.get(), canvas.Brush(White).get());
        if (clipped)
            canvas->PopClip();
        canvas.Finish();
        EXPECT_EQ(canvas.IsBlank({70, 0, Width, Height}), clipped);
        EXPECT_FALSE(canvas.IsBlank({10, 10, 70, 40}));
    }
}

TEST_P(drawTextPixels, PointsInEightDirections)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(14);
    for (int eighths = 0; eighths < 8; ++eighths) {
        drawCanvas canvas(GetParam(), 140, 140);
        const auto text = drawTestText("HHHHH", *format, 60, 20);
        text->SetAlign(drawAlign::Near, drawAlign::Centre);
        canvas->SetTransform(drawTurn(eighths, 70, 70));
        canvas->DrawLayout({8, -10}, text.get(), canvas.Brush(White).get());
        canvas->SetTransform({});
        canvas.Finish();

        double x = 0;
        double y = 0;
        double light = 0;
        for (int row = 0; row < 140; ++row) {
            for (int column = 0; column < 140; ++column) {
                x += canvas.Red(column, row) * (column + 0.5 - 70);
                y += canvas.Red(column, row) * (row + 0.5 - 70);
                light += canvas.Red(column, row);
            }
        }
        ASSERT_GT(light, 0);
        // The middle of the text, and a little below that of its line: capitals have no descent.
        const double along = 8 + static_cast<double>(text->Size().Width) / 2;
        const drawMatrix turn = drawTurn(eighths, 0, 0);
        const double straight =
            x / light * static_cast<double>(turn.M11) + y / light * static_cast<double>(turn.M12);
        const double aside =
            x / light * static_cast<double>(turn.M21) + y / light * static_cast<double>(turn.M22);
        EXPECT_NEAR(straight, along, 1.5) << eighths;
        EXPECT_NEAR(aside, 0.5, 1.5) << eighths;
    }
}

std::vector<uint32_t> trimmed(canvasKind kind, std::string_view words, char delimiter, drawAlign align,
                              float width)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    drawCanvas canvas(kind, Width, 30);
    const auto text = drawTestText(words, *format, width, 30);
    text->SetAlign(align, drawAlign::Near);
    text->SetTrimming(delimiter);
    canvas->DrawLayout({BoxLeft, 0}, text.get(), canvas.Brush(White).get());
    canvas.Finish();
    const inkBox ink = canvas.Ink();
    EXPECT_GE(ink.Left, BoxLeft - 1);
    EXPECT_LE(ink.Right, BoxLeft + width + 1);
    return canvas.Pixels();
}

// Whether the columns from `left` on are the same.
bool sameFrom(const std::vector<uint32_t>& one, const std::vector<uint32_t>& other, int left)
{
    for (size_t at = 0; at < one.size(); ++at) {
        if (static_cast<int>(at % Width) >= left && one[at] != other[at])
            return false;
    }
    return true;
}

TEST_P(drawTextPixels, KeepsTheBeginOfATextThatIsTooLong)
{
    const auto cut = trimmed(GetParam(), "An exceedingly long text", '/', drawAlign::Near, 100);
    const auto whole = trimmed(GetParam(), "An exceedingly long text", '/', drawAlign::Near, 200);
    const auto same = [&](int left, int right) {
        for (size_t at = 0; at < cut.size(); ++at) {
            const int x = static_cast<int>(at % Width);
            if (x >= left && x < right && cut[at] != whole[at])
                return false;
        }
        return true;
    };
    EXPECT_TRUE(same(0, 90));
    EXPECT_FALSE(same(90, Width));
}

TEST_P(drawTextPixels, KeepsWhatFollowsTheLastDelimiter)
{
    DRAW_NEEDS(drawAbility::PathTrimming);
    const auto path = trimmed(GetParam(), "C:\\a folder\\another one\\name.log", '\\', drawAlign::Far, 140);
    const auto name = trimmed(GetParam(), "\\name.log", '\\', drawAlign::Far, 140);
    const int nameLeft =
        static_cast<int>(BoxLeft + 140 - drawTestText("\\name.log", *drawTestFormat(13))->Size().Width);
    EXPECT_TRUE(sameFrom(path, name, nameLeft + 1));
    EXPECT_FALSE(sameFrom(path, name, nameLeft - 20));
}

TEST_P(drawTextPixels, CutsAtTheEndWhenWhatFollowsTheDelimiterDoesNotFit)
{
    const char words[] = "C:\\folder\\a name that is much too long for the box";
    EXPECT_EQ(trimmed(GetParam(), words, '\\', drawAlign::Near, 100),
              trimmed(GetParam(), words, '/', drawAlign::Near, 100));
}

TEST_P(drawTextPixels, DrawsAllColoursOnAllGrounds)
{
    drawCanvas canvas(GetParam(), Width, 40);
    canvas.Fill({0, 0, Width, 40}, White);
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(24, true);
    canvas->DrawLayout({0, 0}, drawTestText("HHHH", *format).get(), canvas.Brush(Red).get());
    canvas.Finish();
    bool foundFull = false;
    for (const uint32_t pixel : canvas.Pixels()) {
        // Between white and red there is no other way: red stays full, green and blue go alike.
        EXPECT_GE(pixel >> 16, 254u);
        EXPECT_NEAR(static_cast<int>(pixel >> 8 & 0xFF), static_cast<int>(pixel & 0xFF), 1);
        foundFull = foundFull || pixel == Red;
    }
    EXPECT_TRUE(foundFull);
}

}  // namespace
