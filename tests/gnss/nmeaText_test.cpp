#include "gnss/nmeaText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string_view> split(std::string_view text)
{
    std::vector<std::string_view> fields;
    nmeaSplit(text, fields);
    return fields;
}

std::span<const uint8_t> bytesOf(const std::vector<uint8_t>& bytes)
{
    return bytes;
}

TEST(nmeaText, KeepsEmptyFieldsBetweenCommasButNoneAfterTheLast)
{
    EXPECT_THAT(split(""), IsEmpty());
    EXPECT_THAT(split("a"), ElementsAre("a"));
    EXPECT_THAT(split("a,"), ElementsAre("a"));
    EXPECT_THAT(split("a,,"), ElementsAre("a", ""));
    EXPECT_THAT(split("a,b"), ElementsAre("a", "b"));
    EXPECT_THAT(split(",a"), ElementsAre("", "a"));
    EXPECT_THAT(split(","), ElementsAre(""));
}

TEST(nmeaText, TakesNoNeighbourOfACommaForOne)
{
    EXPECT_THAT(split("a,-+,-,+-,.,"), ElementsAre("a", "-+", "-", "+-", "."));
    EXPECT_THAT(split("\xAC\xAC,\xAC,\x2D\x2D"), ElementsAre("\xAC\xAC", "\xAC", "--"));
}

TEST(nmeaText, SplitsTextsOfAnyLength)
{
    std::mt19937 random(3);
    for (size_t length = 0; length < 300; ++length) {
        std::string text;
        std::vector<std::string> wanted(1);
        for (size_t i = 0; i < length; ++i) {
            text += random() % 4 == 0 ? ',' : static_cast<char>('*' + random() % 6);
            if (text.back() == ',')
                wanted.emplace_back();
            else
                wanted.back() += text.back();
        }
        if (wanted.back().empty())
            wanted.pop_back();
        const std::vector<std::string_view> fields = split(text);
        EXPECT_EQ(std::vector<std::string>(fields.begin(), fields.end()), wanted) << text;
    }
}

TEST(nmeaText, FindsTheLineEndWhereverItStands)
{
    for (size_t length = 0; length < 40; ++length) {
        for (size_t at = 0; at <= length; ++at) {
            for (const uint8_t end : {uint8_t{0x0D}, uint8_t{0x0A}}) {
                // Neighbours of both ends, and the same with the top bit set.
                std::vector<uint8_t> bytes(length);
                for (size_t i = 0; i < length; ++i)
                    bytes[i] = std::vector<uint8_t>{0x09, 0x0B, 0x0C, 0x0E, 0x8D, 0x8A}[i % 6];
                if (at < length)
                    bytes[at] = end;
                EXPECT_EQ(nmeaLineLength(bytesOf(bytes)), at);
            }
        }
    }
}

TEST(nmeaText, CombinesAllBytes)
{
    std::string text;
    uint8_t sum = 0;
    for (unsigned i = 0; i < 100; ++i) {
        EXPECT_EQ(nmeaChecksum(text), sum);
        text += static_cast<char>(i * 37 + 11);
        sum = static_cast<uint8_t>(sum ^ static_cast<uint8_t>(text.back()));
    }
}

}  // namespace
