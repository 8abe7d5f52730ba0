#include "tests/platform/screen/drawCanvas.h"

#include <cmath>

// Measuring and laying out of text. What it looks like is in drawTextPixels.

namespace {

constexpr std::string_view Sample = "Satellites in view: 24 GPS L1 C/A \u00B5\u00B0 \u00E9 47.123456";

drawTextSize sizeOf(std::string_view text, float size = 13)
{
    return drawTestText(text, *drawTestFormat(size))->Size();
}

// Widths are a matter of fonts, which a platform without pixels has not got.
class drawText : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!drawContractHasPixels())
            GTEST_SKIP() << "there are no fonts here";
    }
};

TEST(drawTextSizes, NothingIsZeroByZero)
{
    for (const float size : {8.0f, 13.0f, 40.0f}) {
        EXPECT_EQ(sizeOf("", size).Width, 0);
        EXPECT_EQ(sizeOf("", size).Height, 0);
    }
}

TEST_F(drawText, AFormatNeedsASize)
{
    for (const float size : {0.0f, -3.0f, NAN, INFINITY})
        EXPECT_EQ(drawContractSystem().MakeTextFormat("Open Sans", false, false, size), nullptr);
}

TEST_F(drawText, ABoxOfLessThanNothingIsRefused)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(11);
    EXPECT_EQ(drawContractSystem().MakeTextLayout("text", *format, -1, 10), nullptr);
    EXPECT_EQ(drawContractSystem().MakeTextLayout("text", *format, 10, -1), nullptr);
    EXPECT_NE(drawContractSystem().MakeTextLayout("text", *format, 0, 0), nullptr);
}

// The same text takes the same room on every system: the numbers are those of the font, at any size.
TEST_F(drawText, TakesTheRoomThatTheFontSays)
{
    constexpr float EmsWide = 21.92f;
    constexpr float EmsHigh = (2189.0f + 600.0f) / 2048;
    for (const float size : {8.0f, 9.0f, 11.0f, 12.5f, 13.75f, 16.0f, 18.0f, 20.0f, 24.0f, 32.0f, 40.0f}) {
        EXPECT_NEAR(sizeOf(Sample, size).Width, EmsWide * size, 1) << size;
        EXPECT_NEAR(sizeOf(Sample, size).Height, EmsHigh * size, 0.05) << size;
    }
}

TEST_F(drawText, CountsBlanksAtTheEnd)
{
    const float blank = sizeOf(" ").Width;
    EXPECT_GT(blank, 2);
    EXPECT_NEAR(sizeOf("text   ").Width, sizeOf("text").Width + 3 * blank, 0.1);
    EXPECT_GT(sizeOf(" ").Height, 10);
}

TEST_F(drawText, BreaksLinesWhereTheTextDoes)
{
    const float line = sizeOf("a").Height;
    EXPECT_NEAR(sizeOf("a\nb").Height, 2 * line, 0.1);
    EXPECT_NEAR(sizeOf("a\r\nb").Height, 2 * line, 0.1);
    EXPECT_NEAR(sizeOf("a\n\nb").Height, 3 * line, 0.1);
    EXPECT_NEAR(sizeOf("a\n").Height, 2 * line, 0.1);
    EXPECT_NEAR(sizeOf("wide text\na").Width, sizeOf("wide text").Width, 0.1);
}

TEST_F(drawText, WrapsBetweenWordsUntilToldNotTo)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    const std::unique_ptr<drawTextLayout> text =
        drawContractSystem().MakeTextLayout("some words that go over several lines", *format, 90, 200);
    const float line = sizeOf("a").Height;
    EXPECT_NEAR(text->Size().Height, 3 * line, 0.1);
    EXPECT_LE(text->Size().Width, 90 + 5);  // a blank may stand out
    text->SetNoWrap();
    EXPECT_NEAR(text->Size().Height, line, 0.1);
    EXPECT_GT(text->Size().Width, 200);
}

TEST_F(drawText, CutsAWordThatIsWiderThanItsBox)
{
    DRAW_NEEDS(drawAbility::WordCutting);
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    const std::unique_ptr<drawTextLayout> text =
        drawContractSystem().MakeTextLayout("averylongwordthatdoesnotfit", *format, 60, 200);
    EXPECT_LE(text->Size().Width, 60);
    EXPECT_GE(text->Size().Height, 3 * sizeOf("a").Height - 0.1f);
}

TEST_F(drawText, IsWiderWhenBold)
{
    EXPECT_GT(drawTestText(Sample, *drawTestFormat(13, true))->Size().Width,
              drawTestText(Sample, *drawTestFormat(13))->Size().Width * 1.02f);
    EXPECT_NE(drawTestText(Sample, *drawTestFormat(13, false, true))->Size().Width,
              drawTestText(Sample, *drawTestFormat(13))->Size().Width);
}

TEST_F(drawText, ShowsAReplacementForBytesThatAreNoText)
{
    const struct {
        std::string_view Bytes;
        std::string_view Shown;
    } rows[] = {
        {"\xFF", "\uFFFD"},
        {"a\x80z", "a\uFFFDz"},
        {"a\xC3", "a\uFFFD"},
        {"a\xC3z", "a\uFFFDz"},
        {"\xE2\x82 8", "\uFFFD 8"},
        {"\xFE\xFF", "\uFFFD\uFFFD"},
        {std::string_view("a\0b", 3), "a\uFFFDb"},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(sizeOf(row.Bytes).Width, sizeOf(row.Shown).Width, 0.1) << row.Shown;
}

TEST_F(drawText, TakesTextOfAnyLength)
{
    const std::string text(20'000, 'x');
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    EXPECT_NEAR(drawTestText(text, *format)->Size().Width, 20'000 * sizeOf("x").Width, 400);
    const std::unique_ptr<drawTextLayout> trimmed = drawTestText(text, *format, 100, 20);
    trimmed->SetTrimming('/');
    EXPECT_LE(trimmed->Size().Width, 101);
}

TEST_F(drawText, StaysWithinItsBoxWhenItIsTrimmed)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    for (const std::string_view text :
         {Sample, std::string_view("C:\\folder\\another one\\third\\name.log"),
          std::string_view("\u00B5\u00B0\u00E9\u20AC\u4E2D\u6587\u00B5\u00B0\u00E9\u20AC\u4E2D\u6587")}) {
        const float whole = drawTestText(text, *format)->Size().Width;
        for (float width = 40; width < whole; width += 7) {
            const std::unique_ptr<drawTextLayout> layout = drawTestText(text, *format, width, 20);
            layout->SetTrimming('\\');
            const float trimmed = layout->Size().Width;
            EXPECT_LE(trimmed, width + 0.5f);
            EXPECT_GT(trimmed, width - 26) << "too much was cut away";
        }
        const std::unique_ptr<drawTextLayout> fitting = drawTestText(text, *format, whole + 0.5f, 20);
        fitting->SetTrimming('\\');
        EXPECT_NEAR(fitting->Size().Width, whole, 0.1);
    }
}

TEST_F(drawText, TrimsEveryLineForItself)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    const std::unique_ptr<drawTextLayout> layout =
        drawTestText("short\na line that is much too long\nshort too", *format, 80, 60);
    layout->SetTrimming('/');
    EXPECT_NEAR(layout->Size().Height, 3 * sizeOf("a").Height, 0.1);
    EXPECT_LE(layout->Size().Width, 80);
}

TEST_F(drawText, TrimsToTheEllipsisAloneWhereNothingFits)
{
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(13);
    for (const float width : {0.0f, 1.0f, 5.0f}) {
        const std::unique_ptr<drawTextLayout> layout = drawTestText(Sample, *format, width, 20);
        layout->SetTrimming('/');
        EXPECT_LE(layout->Size().Width, 30) << width;
    }
}

TEST_F(drawText, ReplacesAFontThatTheSystemLacks)
{
    const std::shared_ptr<drawTextFormat> format =
        drawContractSystem().MakeTextFormat("No Such Font At All", false, false, 13);
    ASSERT_NE(format, nullptr);
    EXPECT_GT(drawTestText(Sample, *format)->Size().Width, 200);
    EXPECT_NE(drawContractSystem().MakeTextFormat("", false, false, 13), nullptr);
}

}  // namespace
