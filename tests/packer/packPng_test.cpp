#include "tools/packer/packPng.h"

#include "tests/packer/randomPicture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

const std::string resources = SKY_RESOURCES;

}  // namespace

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
