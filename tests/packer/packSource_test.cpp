#include "tools/packer/packSource.h"

#include "resources/aboutPicture.h"
#include "toolkit/pixmapDyn.h"
#include "tools/packer/packPng.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

namespace {

using testing::HasSubstr;

const std::string resources = SKY_RESOURCES;

std::string textOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

packPicture randomPicture(uint32_t width, uint32_t height)
{
    packPicture picture{width, height, {}};
    picture.Pixels.resize(pixmapStride(24, width) * height);
    std::mt19937 random(width);
    for (size_t i = 0; i < picture.Pixels.size(); ++i)
        if (i % pixmapStride(24, width) < size_t{3} * width)
            picture.Pixels[i] = static_cast<uint8_t>(random() % 5);
    return picture;
}

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    const size_t place = text.find(what);
    EXPECT_NE(place, std::string::npos) << what;
    return text.replace(place, what.size(), by);
}

}  // namespace

TEST(packSource, DeclaresAndDefinesTheRecord)
{
    const packTexts texts = packSourceOf({1, 1, {0x41, 0x41, 0x41, 0}}, "dot", "some/folder", "dot.png");
    EXPECT_EQ(texts.Header, "// Made by skypack from dot.png; not to be edited.\n"
                            "#pragma once\n\n"
                            "#include \"toolkit/pixmap.h\"\n\n"
                            "extern const pixmap dot;\n");
    EXPECT_EQ(texts.Source, "// Made by skypack from dot.png; not to be edited.\n"
                            "#include \"some/folder/dot.h\"\n\n"
                            "namespace {\n\n"
                            "// clang-format off\n"
                            "constexpr uint8_t Stream[] = {\n"
                            "    0x01,0x01,0x40,0x90,0x70,0x00,0x00,\n"
                            "};\n"
                            "// clang-format on\n\n"
                            "}  // namespace\n\n"
                            "constexpr pixmap dot = {\n"
                            "    .Width = 1,\n"
                            "    .Height = 1,\n"
                            "    .Bits = -24,\n"
                            "    .Pixels = Stream,\n"
                            "    .Size = sizeof Stream,\n"
                            "    .Stride = 4,\n"
                            "};\n");
}

TEST(packSource, GivesThePictureBack)
{
    for (const uint32_t width : {1U, 2U, 3U, 4U, 5U, 142U})
        for (const uint32_t height : {1U, 7U, 60U}) {
            SCOPED_TRACE(testing::Message() << width << " by " << height);
            const packPicture picture = randomPicture(width, height);
            EXPECT_EQ(packPictureOf(packSourceOf(picture, "any", "folder", "any.png").Source), picture);
        }
}

TEST(packSource, RefusesWhatItDidNotMake)
{
    const std::string whole = packSourceOf(randomPicture(5, 3), "any", "folder", "any.png").Source;
    ASSERT_TRUE(packPictureOf(whole));
    struct row {
        const char* What;
        const char* By;
    };
    const row rows[] = {
        {".Width = 5", ".Width = 6"},
        {".Height = 3", ".Height = 2"},
        {".Width = 5", ".Width = five"},
        {".Bits = -24", ".Bits = 24"},
        {"0x01,0x01,", "0x02,0x02,"},
        {"0x01,0x01,", "0x01,0xZZ,"},
        {"0x01,0x01,", "0x01 0x01,"},
        {"0x01,0x01,", "0x01,0x01,0x00,"},
        {"Stream[]", "Other[]"},
        {"0x01,0x01,", "1,1,"},
        {".Height = 3,", ".Height = 4294967295,"},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.By);
        EXPECT_FALSE(packPictureOf(replaced(whole, each.What, each.By)));
    }
    EXPECT_FALSE(packPictureOf(""));
    EXPECT_FALSE(packPictureOf(whole.substr(0, whole.find("};"))));
}

TEST(packPng, WritesAndReadsTheSamePixels)
{
    const std::string file = testing::TempDir() + "packPng_test.png";
    for (const uint32_t width : {1U, 3U, 142U}) {
        SCOPED_TRACE(width);
        const packPicture picture = randomPicture(width, 9);
        std::string fault;
        ASSERT_TRUE(packWritePng(file, picture, fault)) << fault;
        EXPECT_EQ(packReadPng(file, fault), picture);
    }
    std::remove(file.c_str());
}

TEST(packPng, TellsWhyItCannot)
{
    std::string fault;
    EXPECT_FALSE(packReadPng(resources + "/no-such.png", fault));
    EXPECT_NE(fault, "");
    fault.clear();
    EXPECT_FALSE(packReadPng(resources + "/aboutPicture.h", fault));
    EXPECT_THAT(fault, HasSubstr("PNG"));
    fault.clear();
    EXPECT_FALSE(packWritePng(resources + "/no-such-folder/any.png", randomPicture(1, 1), fault));
    EXPECT_NE(fault, "");
}

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
