#include "tools/packer/packBits.h"

#include "toolkit/pixmapDecode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace {

using bytes = std::vector<uint8_t>;

constexpr uint64_t most = 1 << 24;

// The stream of these bytes, which decodes to them.
bytes packed(const bytes& wanted)
{
    bytes stream = packBits(wanted);
    pixmapBytes out(most);
    EXPECT_TRUE(pixmapDecode(stream, out));
    EXPECT_TRUE(wanted == bytes(out.Held().begin(), out.Held().end())) << wanted.size() << " bytes";
    return stream;
}

}  // namespace

TEST(packBits, WritesTheseStreams)
{
    struct row {
        const char* Why;
        bytes Bytes;
        bytes Stream;
    };
    const row rows[] = {
        {"nothing", {}, {1, 1, 0x00}},
        // 11 0 0000000 and the byte, 00
        {"a literal", {0x41}, {1, 1, 0xC0, 0x10, 0x40}},
        // 01 0 0000011 and the byte, 00
        {"a run", {0x41, 0x41, 0x41, 0x41}, {1, 1, 0x40, 0xD0, 0x40}},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Why);
        EXPECT_EQ(packBits(each.Bytes), each.Stream);
    }
}

TEST(packBits, TakesWhatIsShorter)
{
    struct row {
        const char* Why;
        bytes Bytes;
        size_t Bits;
    };
    bytes period;
    for (unsigned i = 0; i < 900; ++i)
        period.push_back(static_cast<uint8_t>(i % 9));
    bytes far(40000);
    for (unsigned i = 0; i < 5; ++i)
        far[i] = far[39990 + i] = static_cast<uint8_t>(50 + i);
    const row rows[] = {
        {"a short run is a run", bytes(3, 1), 2 + 8 + 8},
        {"a long run is one item", bytes(20000, 1), 2 + 24 + 8},
        {"a period is literals and one copy", period, 10 + 9 * 8 + 2 + 16 + 8},
        {"a short period is literals and a short copy", bytes{1, 2, 3, 1, 2, 3, 1, 2, 3}, 10 + 24 + 18},
        {"a copy from far away", far, (10 + 40) + (2 + 24 + 8) + (2 + 8 + 24)},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Why);
        EXPECT_EQ(packed(each.Bytes).size(), 2 + (each.Bits + 2 + 7) / 8);
    }
}

TEST(packBits, DecodesToWhatWasPacked)
{
    std::mt19937 random(1);
    for (unsigned turn = 0; turn < 150; ++turn) {
        SCOPED_TRACE(turn);
        bytes wanted;
        const uint64_t kinds = 1 + random() % 40;
        for (uint64_t piece = random() % 60; piece > 0; --piece) {
            const size_t length = random() % (turn % 10 == 0 ? 700 : 40);
            const uint8_t value = static_cast<uint8_t>(random() % kinds);
            if (random() % 2 == 0)
                wanted.insert(wanted.end(), length, value);
            else
                for (size_t i = 0; i < length; ++i)
                    wanted.push_back(static_cast<uint8_t>(random() % kinds));
        }
        packed(wanted);
    }
}

TEST(packBits, MakesTheSameStreamEachTime)
{
    std::mt19937 random(2);
    bytes wanted(700);
    for (uint8_t& byte : wanted)
        byte = static_cast<uint8_t>(random() % 7);
    EXPECT_EQ(packed(wanted), packed(wanted));
}

TEST(packBits, CrossesEveryWidthOfANumber)
{
    for (const size_t count : {128U, 129U, 130U, 16384U, 16385U, 16390U}) {
        SCOPED_TRACE(count);
        packed(bytes(count, 3));
        bytes noise(count);
        std::mt19937 random(7);
        for (uint8_t& byte : noise)
            byte = static_cast<uint8_t>(random());
        packed(noise);
        noise.insert(noise.end(), noise.begin(), noise.end());
        packed(noise);
    }
}

TEST(packBits, IsDoneSoonWithALargePictureOfOneColour)
{
    packed(bytes(50000, 0));
}
