// How the about form looks.
#include "resources/aboutPicture.h"
#include "tests/forms/aboutTest.h"

#include <array>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using uiAboutLookTest = aboutTest;

TEST_F(uiAboutLookTest, ShowsWhatItIsGiven)
{
    Look(About(), [] {
        const auto column = Column();
        ASSERT_EQ(column.size(), 5U);
        EXPECT_EQ(column[Title]->Name(), "Skyreckoning");
        EXPECT_EQ(column[Version]->Name(), "Version 1.0.5.5");
        EXPECT_EQ(column[Note]->Name(), "A note");
        EXPECT_EQ(column[Link]->Name(), "The web page");
        EXPECT_EQ(column[Mail]->Name(), "hello@skyreckoning.example");
        EXPECT_EQ(fakeWindowOf(Box()->Handle())->Title, "About");
        EXPECT_EQ(fakeWindowOf(Box()->Handle())->Style & (styleMaximiseBox | styleMinimiseBox), 0U);
    });
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
}

TEST_F(uiAboutLookTest, ItsTextsHaveTheirColoursAndSizes)
{
    Look(About(), [] {
        Box()->InvalidateTree(true);
        const std::vector<std::string> texts = Drawn({"text"});
        const auto shows = [&texts](const std::string& text, const std::string& how) {
            EXPECT_THAT(texts, Contains(testing::AllOf(HasSubstr("\"" + text + "\""), HasSubstr(how))));
        };
        shows("Skyreckoning", "centre top FF4020/1 size 18");
        shows("Version 1.0.5.5", "centre top 00FFFF/1 size 14");
        shows("A note", "centre top FFC000/1 size 11");
        shows("The web page", "centre centre FFFFFF/1 size 11");
    });
}

TEST_F(uiAboutLookTest, LayoutFollowsTheScale)
{
    struct row {
        uint32_t DPI;
        std::array<int32_t, 5> Heights;  // of the column's rows
        int32_t ImageWidth;
        int32_t ColumnWidth;
    };
    // Texts of the fake platform are half their size wide for each letter, and 1.5 times their size high. The
    // mail address is the widest: 26 letters, a border of 2, and 8.
    constexpr row rows[] = {
        {96, {27, 21, 17, 18, 18}, 159, 153},
        {144, {41, 32, 25, 27, 27}, 229, 225},
        {192, {54, 42, 33, 36, 36}, 296, 296},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.DPI);
        fakeScreenDPI(each.DPI);
        Look(About(), [&each] {
            int32_t height = 16;
            for (const int32_t one : each.Heights)
                height += one;
            const int32_t left = each.ImageWidth + 16;
            int32_t y = 8;
            for (size_t i = 0; i < each.Heights.size(); ++i) {
                const ctrlWindow* control = Column().at(i);
                EXPECT_EQ(control->X(), left) << i;
                EXPECT_EQ(control->Y(), y) << i;
                EXPECT_EQ(control->Width(), static_cast<uint32_t>(each.ColumnWidth)) << i;
                EXPECT_EQ(control->Height(), static_cast<uint32_t>(each.Heights[i])) << i;
                y += each.Heights[i] + 4;
            }
            EXPECT_EQ(Box()->Height(), static_cast<uint32_t>(height + 16));
            EXPECT_EQ(Box()->Width(), static_cast<uint32_t>(left + each.ColumnWidth + 8));
        });
    }
}

TEST_F(uiAboutLookTest, TakesItsSizeAroundTheCentreOfItsOwner)
{
    Look(About(), [] {
        EXPECT_NEAR(Box()->X() + static_cast<int32_t>(Box()->Width()) / 2, 500, 1);
        EXPECT_NEAR(Box()->Y() + static_cast<int32_t>(Box()->Height()) / 2, 400, 1);
    });
}

TEST_F(uiAboutLookTest, DrawsThePictureInProportion)
{
    ASSERT_EQ(aboutPicture.Width, 142U);
    ASSERT_EQ(aboutPicture.Height, 104U);
    Look(About(), [] {
        const int32_t height = static_cast<int32_t>(Box()->Height()) - 16;
        const int32_t width = 142 * height / 104;
        std::string wanted = " of pixels 142x104 alpha at 8,8,";
        wanted +=
            std::to_string(8 + width) + "," + std::to_string(8 + height) + " from 0,0,142,104 opacity 1";
        EXPECT_THAT(Pictures(), ElementsAre(HasSubstr(wanted)));
    });
}

TEST_F(uiAboutLookTest, ASecondPictureStandsBesideTheFirst)
{
    const std::vector<uint8_t> bytes(4 * 10 * 20, 0x80);
    pixmap image;
    image.Width = 10;
    image.Height = 20;
    image.Bits = 32;
    image.Stride = 40;
    image.Pixels = bytes.data();
    image.Size = static_cast<uint32_t>(bytes.size());
    uiAbout* about = About();
    about->SecondImage(image);
    Look(about, [] {
        const int32_t height = static_cast<int32_t>(Box()->Height()) - 16;
        const int32_t first = 142 * height / 104;
        const int32_t second = 10 * height / 20;
        EXPECT_EQ(Column().at(Title)->X(), first + 16 + 8 + second);
        const int32_t left = 8 + first + 8;
        std::string wanted = " of pixels 10x20 alpha at ";
        wanted += std::to_string(left) + ",8," + std::to_string(left + second) + "," +
                  std::to_string(8 + height) + " from 0,0,10,20 opacity 1";
        EXPECT_THAT(Pictures(), ElementsAre(HasSubstr("142x104"), HasSubstr(wanted)));
    });
}

TEST_F(uiAboutLookTest, ASecondPictureThatIsDamagedIsNone)
{
    pixmap image;
    image.Width = 100'000;
    image.Height = 100'000;
    image.Bits = 32;
    uiAbout* about = About();
    about->SecondImage(image);
    Look(about, [] { EXPECT_THAT(Pictures(), ElementsAre(HasSubstr("142x104"))); });
    about = About();
    about->SecondImage(aboutPicture);
    about->SecondImage(pixmap{});
    Look(about, [] { EXPECT_THAT(Pictures(), ElementsAre(HasSubstr("142x104"))); });
}

}  // namespace
