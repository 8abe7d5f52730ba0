#include "tests/toolkit/toolkitTest.h"

#include <numbers>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr rect Box{10, 20, 50, 40};

class CanvasTextTest : public toolkitTest
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

    // The line of the text that these flags draw, without its clip.
    std::string Line(const char* text, unsigned flags)
    {
        fakeClearDraws();
        Paper.Text(Box, text, flags | textUnclipped);
        return fakeDraws().empty() ? "" : fakeDraws().back();
    }

    Canvas Paper;
};

TEST_F(CanvasTextTest, StandsInItsRectangleAndIsClippedToIt)
{
    Paper.Text(Box, "ABC", textLeft | textTop);
    EXPECT_THAT(fakeDraws(),
                ElementsAre("clip 1 10,20,50,40",
                            "text 1 \"ABC\" at 10,20 in 40x20 left top 000000/1 size 11", "unclip 1"));
}

struct alignRow {
    unsigned Flags;
    const char* Align;
};

TEST_F(CanvasTextTest, IsAlignedByItsFlags)
{
    constexpr alignRow rows[] = {
        {textLeft | textTop, " left top "},
        {textRight | textBottom, " right bottom "},
        {0, " centre centre "},
        {textLeft | textRight | textTop | textBottom, " centre centre "},
        {textLeft, " left centre "},
        {textBottom, " centre bottom "},
    };
    for (const alignRow& row : rows)
        EXPECT_THAT(Line("A", row.Flags), HasSubstr(row.Align)) << row.Flags;
}

struct trimRow {
    const char* Text;
    char Delimiter;
};

TEST_F(CanvasTextTest, ALongPathLosesItsMiddle)
{
    constexpr trimRow rows[] = {{"plain", '/'}, {"/home/a", '/'}, {"C:\\a", '\\'}, {"C:\\a/b", '\\'}};
    for (const trimRow& row : rows)
        EXPECT_THAT(Line(row.Text, textTrim), HasSubstr(std::string(" trim ") + row.Delimiter)) << row.Text;
    EXPECT_THAT(Line("C:\\a", 0), Not(HasSubstr("trim")));
}

TEST_F(CanvasTextTest, NeverWraps)
{
    EXPECT_THAT(Line("a b", 0), Not(HasSubstr("wraps")));
}

TEST_F(CanvasTextTest, AThickOneIsDrawnAroundItselfFirst)
{
    Paper.Text(Box, "A", textThick | textUnclipped | textLeft | textTop);
    const std::string tail = " in 40x20 left top 000000/1 size 11";
    EXPECT_THAT(fakeDraws(), ElementsAre("text 1 \"A\" at 9,20" + tail, "text 1 \"A\" at 11,20" + tail,
                                         "text 1 \"A\" at 10,19" + tail, "text 1 \"A\" at 10,21" + tail,
                                         "text 1 \"A\" at 10,20" + tail));
    EXPECT_EQ(fakeBrushesMade(), 1U);
}

TEST_F(CanvasTextTest, IsCutToTheClipThatIsGiven)
{
    const rect clip{0, 30, 45, 100};
    Paper.Text(Box, "A", 0, 0, &clip);
    EXPECT_EQ(fakeDraws().front(), "clip 1 10,30,45,40");
    EXPECT_EQ(fakeDraws().back(), "unclip 1");
}

TEST_F(CanvasTextTest, OutsideOfTheClipNothingIsDone)
{
    const rect clip{50, 0, 90, 90};
    Paper.Text(Box, "A", 0, 0, &clip);
    EXPECT_THAT(fakeDraws(), IsEmpty());
    EXPECT_EQ(fakeFormatsMade(), 0U);
}

TEST_F(CanvasTextTest, AnEmptyOneReturnsBeforeItClips)
{
    Paper.Text(Box, "", 0);
    Paper.Text(Box, "", textUnclipped);
    Paper.Text(Box, nullptr, 0);
    EXPECT_THAT(fakeDraws(), IsEmpty());
}

TEST_F(CanvasTextTest, ALengthCutsIt)
{
    Paper.Text(Box, "ABCDEF", textUnclipped, 2);
    EXPECT_THAT(fakeDraws().back(), HasSubstr("\"AB\""));
}

TEST_F(CanvasTextTest, WithoutALayoutItsClipIsPoppedAllTheSame)
{
    fakeFail("drawMakeTextLayout");
    Paper.Text(Box, "A", 0);
    EXPECT_THAT(fakeDraws(), ElementsAre("clip 1 10,20,50,40", "unclip 1"));
}

TEST_F(CanvasTextTest, WithoutAFormatItIsNotDrawn)
{
    fakeFail("drawMakeTextFormat");
    Paper.Text(Box, "A", 0);
    EXPECT_THAT(fakeDraws(), ElementsAre("clip 1 10,20,50,40", "unclip 1"));
    EXPECT_EQ(Paper.TextSize("A").Width, 6U) << "tried again, and this time made";
}

struct turnRow {
    unsigned Flags;
    const char* Transform;
};

TEST_F(CanvasTextTest, ATurnedOneHangsOnItsAnchor)
{
    // A quarter turn: x' = -y, y' = x about the anchor, which lies at 0, 20 or 40 by 0, 10 or 20.
    constexpr turnRow rows[] = {
        {textLeft | textTop, "transform 1 -0 1 -1 -0 10 20"},
        {textRight | textTop, "transform 1 -0 1 -1 -0 50 -20"},
        {textLeft | textBottom, "transform 1 -0 1 -1 -0 30 40"},
        {textRight | textBottom, "transform 1 -0 1 -1 -0 70 0"},
        {0, "transform 1 -0 1 -1 -0 40 10"},
    };
    Paper.TextAngle(std::numbers::pi_v<float> / 2);
    for (const turnRow& row : rows) {
        fakeClearDraws();
        Paper.Text(Box, "A", row.Flags | textUnclipped);
        const std::vector<std::string> draws = fakeDraws();
        ASSERT_EQ(draws.size(), 3U);
        EXPECT_EQ(draws[0], row.Transform) << row.Flags;
        EXPECT_THAT(draws[1], HasSubstr("\"A\" at 0,0 in 40x20"));
        EXPECT_EQ(draws[2], "transform 1 1 0 0 1 0 0");
    }

    Paper.TextAngle(std::numbers::pi_v<float>);
    fakeClearDraws();
    Paper.Text(Box, "A", textUnclipped);
    EXPECT_EQ(fakeDraws().front(), "transform 1 -1 -0 0 -1 50 40") << "upside down about its middle";
}

TEST_F(CanvasTextTest, AFormatLastsUntilTheFontChanges)
{
    Paper.Text(Box, "A", 0);
    Paper.FontSize(canvasFontSize);
    Paper.FontStyle(0);
    Paper.SetFontName("");
    Paper.Text(Box, "B", 0);
    EXPECT_EQ(fakeFormatsMade(), 1U);

    EXPECT_THAT((Paper.FontSize(20), Line("A", 0)), HasSubstr("size 20"));
    EXPECT_EQ(fakeFormatsMade(), 2U);
    EXPECT_THAT((Paper.FontStyle(fontBold | fontItalic), Line("A", 0)), HasSubstr(" bold italic "));
    EXPECT_EQ(fakeFormatsMade(), 3U);
    Paper.SetFontName("Mono");
    Line("A", 0);
    EXPECT_EQ(fakeFormatsMade(), 4U);
}

TEST_F(CanvasTextTest, AFontIsCopiedWithNameSizeAndStyle)
{
    Canvas other;
    other.SetFontName("Mono");
    other.FontSize(30);
    other.FontStyle(fontBold);
    Line("A", 0);
    Paper.FontCopy(other);
    EXPECT_EQ(Paper.FontName(), "Mono");
    EXPECT_THAT(Line("A", 0), HasSubstr(" bold 000000/1 size 30"));
    EXPECT_EQ(fakeFormatsMade(), 2U);
    Paper.FontCopy(other);
    Line("A", 0);
    EXPECT_EQ(fakeFormatsMade(), 2U) << "an equal font releases nothing";
}

TEST_F(CanvasTextTest, TheDefaultFontHasANameAndASize)
{
    const Canvas plain;
    EXPECT_EQ(plain.FontName(), "Segoe UI");
    EXPECT_EQ(plain.FontSize(), 11.0F);
}

TEST_F(CanvasTextTest, IsMeasuredInWholePixelsWithTheBlanksAtItsEnd)
{
    // Half of 11 for each character, 1.5 times 11 down.
    EXPECT_EQ(Paper.TextSize("A").Width, 6U);
    EXPECT_EQ(Paper.TextSize("A").Height, 17U);
    EXPECT_EQ(Paper.TextSize("AB ").Width, 17U);
    EXPECT_EQ(Paper.TextSize("ABCDEF", 2).Width, 11U);
    EXPECT_EQ(Paper.TextSize("").Width, 0U);
    EXPECT_EQ(Paper.TextSize("").Height, 0U);
    EXPECT_EQ(Paper.TextSize(nullptr).Height, 0U);
}

TEST_F(CanvasTextTest, IsMeasuredWithoutATargetToo)
{
    Paper.DeviceRelease();
    EXPECT_EQ(Paper.TextSize("AB").Width, 11U);
}

TEST_F(CanvasTextTest, ATurnedOneIsMeasuredByTheBoxAroundIt)
{
    Paper.FontSize(10);  // "AB" is 10 by 15
    Paper.TextAngle(std::numbers::pi_v<float> / 2);
    Canvas::textSize size = Paper.TextSize("AB");
    EXPECT_NEAR(size.Width, 15, 1);
    EXPECT_NEAR(size.Height, 10, 1);
    Paper.TextAngle(std::numbers::pi_v<float> / 4);
    size = Paper.TextSize("AB");
    EXPECT_EQ(size.Width, 18U);  // (10 + 15) times the root of one half
    EXPECT_EQ(size.Height, 18U);
    fakeFail("drawMakeTextLayout");
    EXPECT_EQ(Paper.TextSize("AB").Width, 0U);
}

}  // namespace
