#include "link/pktBuffer.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string head(uint32_t key, uint32_t length)
{
    const msgHead made{key, length};
    return std::string(reinterpret_cast<const char*>(&made), sizeof made);
}

// Hands over bytes as they find room; what the last of them made of the message.
pktBuffer::State put(pktBuffer& buffer, std::string bytes)
{
    pktBuffer::State state = pktBuffer::State::Partial;
    while (!bytes.empty()) {
        const std::span<uint8_t> room = buffer.Room();
        const size_t count = std::min(room.size(), bytes.size());
        std::memcpy(room.data(), bytes.data(), count);
        bytes.erase(0, count);
        state = buffer.Took(count);
    }
    return state;
}

TEST(pktBuffer, AsksForTheHeadAloneAndThenForTheBodyAlone)
{
    pktBuffer buffer;
    EXPECT_EQ(buffer.Room().size(), 8U);
    EXPECT_EQ(put(buffer, head(1, 5)), pktBuffer::State::Partial);
    EXPECT_EQ(buffer.Room().size(), 5U);
    EXPECT_EQ(put(buffer, "abc"), pktBuffer::State::Partial);
    EXPECT_EQ(buffer.Room().size(), 2U);
    EXPECT_EQ(put(buffer, "de"), pktBuffer::State::Whole);
    EXPECT_EQ(buffer.Message().Body().size(), 5U);
}

TEST(pktBuffer, TakesNothingForNothing)
{
    pktBuffer buffer;
    EXPECT_EQ(buffer.Room().size(), 8U);
    EXPECT_EQ(buffer.Took(0), pktBuffer::State::Partial);
    EXPECT_EQ(buffer.Room().size(), 8U);
}

TEST(pktBuffer, IsWholeWithItsHeadWhenThereIsNoBody)
{
    pktBuffer buffer;
    EXPECT_EQ(put(buffer, head(7, 0)), pktBuffer::State::Whole);
    EXPECT_EQ(buffer.Message().key, 7U);
}

TEST(pktBuffer, TakesNoMoreMemoryThanAStepAheadOfWhatCame)
{
    pktBuffer buffer;
    put(buffer, head(1, pktBuffer::LengthLimit));
    EXPECT_LE(buffer.Room().size(), 65536U);
}

TEST(pktBuffer, BelievesTheLongestMessageAndNoLongerOne)
{
    pktBuffer longest;
    EXPECT_EQ(put(longest, head(1, pktBuffer::LengthLimit)), pktBuffer::State::Partial);
    EXPECT_EQ(put(longest, std::string(pktBuffer::LengthLimit, 'x')), pktBuffer::State::Whole);
    for (const uint32_t length : {pktBuffer::LengthLimit + 1, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        pktBuffer buffer;
        EXPECT_EQ(put(buffer, head(1, length)), pktBuffer::State::TooLong) << length;
    }
}

TEST(pktBuffer, BeginsAnew)
{
    pktBuffer buffer;
    put(buffer, head(1, 100) + "half");
    buffer.Clear();
    EXPECT_EQ(put(buffer, head(2, 2) + "ok"), pktBuffer::State::Whole);
    EXPECT_EQ(buffer.Message().key, 2U);
    EXPECT_EQ(buffer.Message().length, 2U);
}

}  // namespace
