#include "toolkit/pixmapDecode.h"

#include "foundations/heap/memHeap.h"
#include "tests/fakes/fakes.h"
#include "tests/toolkit/bitWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

constexpr uint64_t most = 1 << 20;

class pixmapDecodeTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
    void TearDown() override { EXPECT_EQ(memHeap.Newest, nullptr); }
};

// What a stream decodes to; nothing when it is wrong.
std::optional<bytes> decoded(const bytes& stream)
{
    // A copy without slack, so that the sanitizer sees a read beyond it.
    const std::unique_ptr<uint8_t[]> exact(new uint8_t[stream.size()]);
    std::copy(stream.begin(), stream.end(), exact.get());
    pixmapBytes out(most);
    const bool isRight = pixmapDecode({exact.get(), stream.size()}, out);
    const bytes held(out.Held().begin(), out.Held().end());
    if (isRight)
        return held;
    EXPECT_EQ(out.Count(), 0u);
    EXPECT_TRUE(held.empty());
    return std::nullopt;
}

struct row {
    const char* Why;
    bytes Stream;
    std::optional<bytes> Wanted;
};

void expectRows(const std::vector<row>& rows)
{
    for (const row& each : rows) {
        SCOPED_TRACE(each.Why);
        EXPECT_EQ(decoded(each.Stream), each.Wanted);
    }
}

bytes repeated(size_t count, uint8_t value)
{
    return bytes(count, value);
}

}  // namespace

TEST_F(pixmapDecodeTest, TellsTheFormByTheFirstBytes)
{
    expectRows({
        {"nothing", {}, std::nullopt},
        {"one byte 0", {0}, std::nullopt},
        {"one byte 1", {1}, std::nullopt},
        {"two that differ", {5, 6}, std::nullopt},
        {"three markers alone", {5, 6, 7}, bytes{}},
        {"0 among the markers", {0, 1, 2}, bytes{}},
        {"0 and 0 alone", {0, 0}, bytes{}},
        {"1 and 1 alone", {1, 1}, bytes{}},
        {"2 and 2", {2, 2}, std::nullopt},
        {"2, 2, 2", {2, 2, 2}, std::nullopt},
        {"2, 2, 3", {2, 2, 3}, std::nullopt},
        {"first like third", {5, 6, 5}, std::nullopt},
        {"second like third", {5, 6, 6}, std::nullopt},
        {"0 and 1, first like third", {0, 1, 0, 1}, std::nullopt},
    });
}

TEST_F(pixmapDecodeTest, ReadsMarkers)
{
    const bytes long1 = repeated(0x0102, 9);
    const bytes long2 = repeated(0x010203, 8);
    expectRows({
        {"literals", {5, 6, 7, 1, 2, 0}, bytes{1, 2, 0}},
        {"count of one byte", {5, 6, 7, 5, 3, 0x41}, bytes{0x41, 0x41, 0x41}},
        {"a marker repeated", {5, 6, 7, 5, 2, 6}, bytes{6, 6}},
        {"count of two bytes, lowest first", {5, 6, 7, 6, 0x02, 0x01, 9}, long1},
        {"count of four bytes, lowest first", {5, 6, 7, 7, 0x03, 0x02, 0x01, 0x00, 8}, long2},
        {"counts of 0 eat their byte", {5, 6, 7, 5, 0, 1, 6, 0, 0, 2, 7, 0, 0, 0, 0, 3, 4}, bytes{4}},
        {"mixed", {5, 6, 7, 1, 5, 2, 8, 3}, bytes{1, 8, 8, 3}},
    });
}

TEST_F(pixmapDecodeTest, RefusesAMarkerWhoseItemIsCut)
{
    const bytes whole[] = {{5, 6, 7, 1, 5, 2, 8}, {5, 6, 7, 1, 6, 2, 0, 8}, {5, 6, 7, 1, 7, 2, 0, 0, 0, 8}};
    for (const bytes& stream : whole) {
        EXPECT_EQ(decoded(stream), (bytes{1, 8, 8}));
        for (size_t length = 5; length < stream.size(); ++length) {
            SCOPED_TRACE(length);
            EXPECT_EQ(decoded({stream.begin(), stream.begin() + static_cast<ptrdiff_t>(length)}),
                      std::nullopt);
        }
    }
}

TEST_F(pixmapDecodeTest, ReadsRunsAndLiterals)
{
    bytes literals = {0, 0, 0xFF};
    for (unsigned i = 0; i < 128; ++i)
        literals.push_back(static_cast<uint8_t>(i));
    const bytes most128(literals.begin() + 3, literals.end());
    bytes cut = literals;
    cut.pop_back();
    expectRows({
        {"a run", {0, 0, 0x02, 0x41}, repeated(4, 0x41)},
        {"the shortest run", {0, 0, 0x00, 0x41}, repeated(2, 0x41)},
        {"the longest run", {0, 0, 0x7F, 0x41}, repeated(129, 0x41)},
        {"literals", {0, 0, 0x81, 0x41, 0x42}, bytes{0x41, 0x42}},
        {"one literal", {0, 0, 0x80, 0x41}, bytes{0x41}},
        {"the most literals", literals, most128},
        {"one after the other", {0, 0, 0x80, 1, 0x00, 2, 0x80, 3}, bytes{1, 2, 2, 3}},
        {"a run without its byte", {0, 0, 0x02}, std::nullopt},
        {"literals without theirs", {0, 0, 0x80}, std::nullopt},
        {"the most literals less one", cut, std::nullopt},
        {"cut after something good", {0, 0, 0x80, 1, 0x7F}, std::nullopt},
    });
}

TEST_F(pixmapDecodeTest, ReadsBits)
{
    expectRows({
        {"the end at once", bitWriter().End().Stream(), bytes{}},
        {"what is behind the end is not read", bitWriter().Run(2, 7).End().Run(3, 8).Stream(), bytes{7, 7}},
        {"a run", bitWriter().Run(3, 0xA5).End().Stream(), repeated(3, 0xA5)},
        {"literals", bitWriter().Literals({1, 0x80, 0xFF}).End().Stream(), bytes{1, 0x80, 0xFF}},
        {"a copy", bitWriter().Literals({1, 2, 3}).Copy(2, 3).End().Stream(), bytes{1, 2, 3, 1, 2}},
        {"a copy of what it writes", bitWriter().Literals({1, 2}).Copy(5, 2).End().Stream(),
         bytes{1, 2, 1, 2, 1, 2, 1}},
        {"counts of 0", bitWriter().Run(0, 9).Copy(0, 5).Literals({}).Run(1, 4).End().Stream(), bytes{4}},
        {"a copy of nothing from nowhere", bitWriter().Copy(0, 0).End().Stream(), bytes{}},
        {"a copy from before the first byte", bitWriter().Literals({1, 2}).Copy(1, 3).End().Stream(),
         std::nullopt},
        {"a copy from the end itself", bitWriter().Literals({1, 2}).Copy(1, 0).End().Stream(), std::nullopt},
        {"a copy before there is anything", bitWriter().Copy(1, 1).End().Stream(), std::nullopt},
    });
}

TEST_F(pixmapDecodeTest, ReadsNumbersOfEveryWidth)
{
    for (const uint64_t number : {uint64_t{1}, uint64_t{2}, uint64_t{128}, uint64_t{129}, uint64_t{1} << 14,
                                  (uint64_t{1} << 14) + 1, most}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(decoded(bitWriter().Run(number, 3).End().Stream()), repeated(number, 3));
    }
    // Also a small number in a wide form.
    for (const char* const prefix : {"0", "10", "110", "1110", "11110"}) {
        SCOPED_TRACE(prefix);
        const unsigned widths[] = {7, 14, 21, 28, 32};
        const unsigned width = widths[std::string(prefix).size() - 1];
        EXPECT_EQ(decoded(bitWriter().Bits("01").Bits(prefix).Value(width, 4).Value(8, 3).End().Stream()),
                  repeated(5, 3));
    }
}

TEST_F(pixmapDecodeTest, EndsWithTheDataAsWell)
{
    expectRows({
        // 2 + 8 + 8 bits, and 6 of the last byte: "00" ends it.
        {"filled up with 0", bitWriter().Run(2, 7).Stream(), bytes{7, 7}},
        {"exactly at the end", bitWriter().Run(1, 1).Run(1, 2).Run(1, 3).Run(1, 4).Stream(),
         bytes{1, 2, 3, 4}},
    });
}

TEST_F(pixmapDecodeTest, TakesTheBitsThatAreLeftAsTheyAre)
{
    expectRows({
        // 18 bits, then 01, the prefix 0, and 3 bits of 7 with the value 5, which is 6; there is no byte.
        {"a count that is cut", bitWriter().Run(1, 9).Bits("01 0 101").Stream(), bytes{9, 0, 0, 0, 0, 0, 0}},
        // 18 bits, then 01 and 1111: the fifth bit of the prefix is not there and 0, nor are the 32 behind
        // it.
        {"a prefix that is cut", bitWriter().Run(1, 9).Bits("01 1111").Stream(), bytes{9, 0}},
        {"an operation alone", bitWriter().Literals({}).Literals({}).Bits("01").Stream(), bytes{0}},
        {"half an operation", bitWriter().Literals({}).Bits("1").Stream(), bytes{0}},
        // 2 + 8 bits and one literal of which 6 bits are there: 101010 is 42.
        {"a literal that is cut", bitWriter().Bits("11").Number(1).Bits("101010").Stream(), bytes{42}},
        {"literals that are not there", bitWriter().Bits("11").Number(3).Bits("101010").Stream(),
         bytes{42, 0, 0}},
        {"a copy whose distance is cut", bitWriter().Literals({6, 7}).Bits("10 0 0000000").Stream(),
         bytes{6, 7, 7}},
    });
}

TEST_F(pixmapDecodeTest, DropsWhatIsTooMuchAndReadsOn)
{
    struct dropRow {
        const char* Why;
        bytes Stream;
        bool IsRight;
    };
    const dropRow rows[] = {
        {"a run beyond the most", bitWriter().Run(most + 1, 1).End().Stream(), true},
        {"the largest number", bitWriter().Run(uint64_t{1} << 32, 1).End().Stream(), true},
        {"literals beyond the data", bitWriter().Bits("11 11110").Value(32, 0xFFFFFFFF).Stream(), true},
        {"many of them", bitWriter().Run(most, 1).Copy(uint64_t{1} << 32, 1).Run(9, 9).Stream(), true},
        {"a wrong copy behind it", bitWriter().Run(most + 1, 1).Copy(1, most + 2).End().Stream(), false},
        {"markers", {5, 6, 7, 7, 0xFF, 0xFF, 0xFF, 0xFF, 1, 9}, true},
        {"markers, cut behind it", {5, 6, 7, 7, 0xFF, 0xFF, 0xFF, 0xFF, 1, 7}, false},
    };
    for (const dropRow& each : rows) {
        SCOPED_TRACE(each.Why);
        const std::optional<bytes> result = decoded(each.Stream);
        EXPECT_EQ(result.has_value(), each.IsRight);
        EXPECT_TRUE(!result || result->empty());
    }
}

TEST_F(pixmapDecodeTest, LivesWithEveryDamageToAStream)
{
    bitWriter writer;
    for (unsigned i = 0; i < 12; ++i)
        writer.Literals({1, 2, static_cast<uint8_t>(i)}).Copy(200 + i, 2).Run(130 + i, 5);
    const bytes streams[] = {
        writer.End().Stream(),
        {0, 0, 0x02, 0x41, 0x81, 0x41, 0x42, 0x7F, 1, 0x83, 1, 2, 3, 4},
        {5, 6, 7, 1, 2, 5, 3, 8, 6, 3, 1, 9, 7, 4, 1, 0, 0, 9, 1},
    };
    std::mt19937 random(1);
    unsigned wrong = 0;
    for (unsigned turn = 0; turn < 6000; ++turn) {
        bytes stream = streams[turn % 3];
        for (unsigned i = random() % 4; i < 4; ++i)
            stream[random() % stream.size()] = static_cast<uint8_t>(random());
        stream.resize(random() % 4 == 0 ? random() % stream.size() : stream.size());
        wrong += decoded(stream) ? 0U : 1U;
    }
    EXPECT_GT(wrong, 100u);
    EXPECT_LT(wrong, 5900u);
}
