#include "tools/packer/packSource.h"

#include "tests/packer/randomPicture.h"

#include <gtest/gtest.h>

namespace {

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
        for (const uint32_t height : {1U, 7U, 20U}) {
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
