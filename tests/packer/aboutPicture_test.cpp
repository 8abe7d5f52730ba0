// The about picture is stored as it was packed, and unpacked as it was drawn.
#include "resources/aboutPicture.h"

#include "toolkit/pixmapDyn.h"
#include "tools/packer/packPng.h"
#include "tools/packer/packSource.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

const std::string resources = SKY_RESOURCES;

std::string textOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

TEST(aboutPicture, IsWhatThePackerMakesOfItsFile)
{
    std::string fault;
    const std::optional<packPicture> picture = packReadPng(resources + "/about.png", fault);
    ASSERT_TRUE(picture) << fault;
    const packTexts texts = packSourceOf(*picture, "aboutPicture", "resources", "about.png");
    EXPECT_EQ(texts.Header, textOf(resources + "/aboutPicture.h"));
    EXPECT_TRUE(texts.Source == textOf(resources + "/aboutPicture.cpp")) << "pack it anew";
}

TEST(aboutPicture, ShowsThePictureInTheProgram)
{
    EXPECT_EQ(aboutPicture.Width, 142u);
    EXPECT_EQ(aboutPicture.Height, 104u);
    EXPECT_EQ(aboutPicture.Bits, -24);
    std::string fault;
    const std::optional<packPicture> picture = packReadPng(resources + "/about.png", fault);
    ASSERT_TRUE(picture) << fault;
    pixmapDyn shown;
    shown.Bits = 32;
    shown = aboutPicture;
    ASSERT_EQ(shown.Size, 142u * 104 * 4);
    for (size_t y = 0; y < 104; ++y)
        for (size_t x = 0; x < 142; ++x)
            for (size_t i = 0; i < 4; ++i)
                ASSERT_EQ(shown.Pixels[(y * 142 + x) * 4 + i],
                          i == 3 ? 0xFF : picture->Pixels[y * aboutPicture.Stride + x * 3 + i])
                    << x << ", " << y;
}
