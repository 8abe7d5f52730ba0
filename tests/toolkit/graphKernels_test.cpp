#include "toolkit/graphKernelsForms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <thread>
#include <vector>

using testing::ElementsAre;

namespace {

constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float none = std::numeric_limits<float>::quiet_NaN();
constexpr float denormal = std::numeric_limits<float>::denorm_min();
constexpr float largest = std::numeric_limits<float>::max();
constexpr size_t counts[] = {0, 1, 2, 3, 7, 8, 9, 300, 100000};

struct form {
    const char* Name;
    const graphKernelForms* Forms;
};

// All that this processor can run.
std::vector<form> allForms()
{
    std::vector<form> all = {{"plain", graphFormsOf(graphVector::None)},
                             {"four", graphFormsOf(graphVector::Four)},
                             {"eight", graphFormsOf(graphVector::Eight)}};
    std::erase_if(all, [](const form& one) { return !one.Forms; });
    return all;
}

// Random floats of every size, both signs, with what is special among them.
std::vector<float> anything(size_t count, unsigned seed)
{
    constexpr float special[] = {none,  infinite, -infinite, denormal, -denormal,    0.0F,
                                 -0.0F, largest,  -largest,  1.0F,     graphLogLeast};
    std::mt19937 random(seed);
    std::vector<float> data(count);
    for (float& one : data) {
        const auto bits = static_cast<uint32_t>(random());
        one = bits % 5 == 0 ? special[bits / 5 % std::size(special)] : std::bit_cast<float>(bits);
    }
    return data;
}

// Compares bits, but takes one NaN for another.
bool same(float a, float b)
{
    return std::isnan(a) ? std::isnan(b) : std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

// Runs a check on each form, count and alignment. The check gets the form and the data.
template <class Check>
void onEverything(Check check)
{
    for (const form& one : allForms()) {
        for (const size_t count : counts) {
            for (const size_t shift : {0U, 1U, 3U}) {
                SCOPED_TRACE(std::string(one.Name) + " " + std::to_string(count) + " from " +
                             std::to_string(shift));
                const std::vector<float> data = anything(count + shift, static_cast<unsigned>(count));
                check(*one.Forms, data.data() + shift, count);
            }
        }
    }
}

std::vector<float> pairOf(const graphKernelForms& forms, const std::vector<float>& data)
{
    std::vector<float> pair(2, none);
    forms.MinMax(data.data(), data.size(), pair.data());
    return pair;
}

TEST(graphKernels, FindsTheSmallestAndTheLargest)
{
    onEverything([](const graphKernelForms& forms, const float* data, size_t count) {
        float least = infinite;
        float most = -infinite;
        for (size_t i = 0; i < count; ++i) {
            least = std::fmin(least, data[i]);
            most = std::fmax(most, data[i]);
        }
        if (least > most)
            least = most = 0;
        float pair[2] = {none, none};
        forms.MinMax(data, count, pair);
        EXPECT_EQ(pair[0], least);
        EXPECT_EQ(pair[1], most);
        EXPECT_EQ(forms.Min(data, count), least);
        EXPECT_EQ(forms.Max(data, count), most);
    });
}

TEST(graphKernels, FindsAnExtremeAtEveryPlace)
{
    for (const form& one : allForms()) {
        for (size_t count = 1; count < 40; ++count) {
            for (size_t at = 0; at < count; ++at) {
                std::vector<float> data(count, 1.5F);
                data[at] = -2;
                EXPECT_EQ(one.Forms->Min(data.data(), count), -2) << one.Name << count << " at " << at;
                data[at] = 3;
                EXPECT_EQ(one.Forms->Max(data.data(), count), 3) << one.Name << count << " at " << at;
            }
        }
    }
}

TEST(graphKernels, PassesOverWhatIsNoNumber)
{
    for (const form& one : allForms()) {
        SCOPED_TRACE(one.Name);
        for (const size_t count : {1U, 4U, 8U, 9U, 30U}) {
            std::vector<float> data(count, none);
            EXPECT_THAT(pairOf(*one.Forms, data), ElementsAre(0, 0));
            data.back() = 5;
            EXPECT_THAT(pairOf(*one.Forms, data), ElementsAre(5, 5));
            data.front() = -infinite;
            EXPECT_THAT(pairOf(*one.Forms, data), ElementsAre(-infinite, count == 1 ? -infinite : 5));
        }
        EXPECT_EQ(one.Forms->Min(nullptr, 0), 0);
        EXPECT_EQ(one.Forms->Max(nullptr, 0), 0);
        const std::vector<float> endless(20, infinite);
        EXPECT_THAT(pairOf(*one.Forms, endless), ElementsAre(infinite, infinite));
    }
}

TEST(graphKernels, AZeroThatIsFoundIsPositive)
{
    for (const form& one : allForms()) {
        for (size_t at = 0; at < 17; ++at) {
            std::vector<float> data(17, -0.0F);
            data[at] = 0.0F;
            for (const float found : pairOf(*one.Forms, data))
                EXPECT_TRUE(same(found, 0.0F)) << one.Name << at;
        }
        EXPECT_TRUE(same(one.Forms->Max(std::vector<float>(9, -0.0F).data(), 9), 0.0F)) << one.Name;
    }
}

TEST(graphKernels, AddsAndScalesToTheBit)
{
    const std::pair<float, float> factors[] = {
        {0, 1}, {100, -3.5F}, {-1e12F, 1e-12F}, {denormal, largest}, {infinite, 0}, {none, 1}};
    onEverything([&factors](const graphKernelForms& forms, const float* data, size_t count) {
        for (const auto& [c, k] : factors) {
            std::vector<float> result(count + 1, 77);
            forms.ScaleOffset(result.data(), data, count, c, k);
            size_t wrong = 0;
            for (size_t i = 0; i < count; ++i) {
                const float sum = data[i] + c;
                wrong += !same(result[i], sum * k);
            }
            EXPECT_EQ(wrong, 0U) << c << " " << k;
            EXPECT_EQ(result[count], 77) << "behind the end";
        }
    });
}

TEST(graphKernels, TakesLogarithmsWithinTheStatedRounding)
{
    constexpr float k = 20 * 0.4342944622F;
    onEverything([](const graphKernelForms& forms, const float* data, size_t count) {
        std::vector<float> result(count + 1, 77);
        forms.LogScale(result.data(), data, count, k);
        size_t wrong = 0;
        for (size_t i = 0; i < count; ++i) {
            const double x = data[i] > graphLogLeast ? data[i] : graphLogLeast;
            const double exact = static_cast<double>(k) * std::log(x);
            wrong +=
                !(result[i] == exact || std::abs(result[i] - exact) <= std::abs(exact) * graphLogRounding);
        }
        EXPECT_EQ(wrong, 0U);
        EXPECT_EQ(result[count], 77) << "behind the end";
    });
}

TEST(graphKernels, LogarithmsAroundOneAreAsExact)
{
    std::vector<float> data;
    for (int i = -20000; i < 20000; ++i)
        data.push_back(1.0F + static_cast<float>(i) * 1e-5F);
    std::vector<float> result(data.size());
    for (const form& one : allForms()) {
        one.Forms->LogScale(result.data(), data.data(), data.size(), 1);
        double worst = 0;
        for (size_t i = 0; i < data.size(); ++i) {
            const double exact = std::log(static_cast<double>(data[i]));
            if (exact != 0)
                worst = std::max(worst, std::abs(result[i] / exact - 1));
        }
        EXPECT_LE(worst, static_cast<double>(graphLogRounding)) << one.Name;
        EXPECT_EQ(result[20000], 0) << one.Name;
    }
}

TEST(graphKernels, TheLogarithmOfTooLittleIsThatOfTheLeast)
{
    const float tooLittle[] = {0, -0.0F, denormal, -1, -infinite, none, graphLogLeast, 1, infinite};
    for (const form& one : allForms()) {
        float result[std::size(tooLittle)];
        one.Forms->LogScale(result, tooLittle, std::size(tooLittle), 20 * 0.4342944622F);
        for (size_t i = 0; i < 7; ++i)
            EXPECT_NEAR(result[i], -758.596F, 0.001F) << one.Name << i;
        EXPECT_EQ(result[7], 0) << one.Name;
        EXPECT_EQ(result[8], infinite) << one.Name;
    }
}

TEST(graphKernels, WorksInPlace)
{
    for (const form& one : allForms()) {
        std::vector<float> data(300);
        for (size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<float>(i) + 1;
        std::vector<float> expected(data.size());
        one.Forms->LogScale(expected.data(), data.data(), data.size(), 2);
        one.Forms->LogScale(data.data(), data.data(), data.size(), 2);
        EXPECT_EQ(data, expected) << one.Name;
        one.Forms->ScaleOffset(expected.data(), data.data(), data.size(), 1, 2);
        one.Forms->ScaleOffset(data.data(), data.data(), data.size(), 1, 2);
        EXPECT_EQ(data, expected) << one.Name;
    }
}

TEST(graphKernels, SplitsPairs)
{
    onEverything([](const graphKernelForms& forms, const float* data, size_t count) {
        const size_t pairs = count / 2;
        std::vector<float> first(pairs + 1, 77);
        std::vector<float> second(pairs + 1, 77);
        forms.Deinterleave(data, pairs, first.data(), second.data());
        size_t wrong = 0;
        for (size_t i = 0; i < pairs; ++i) {
            wrong += std::memcmp(&first[i], &data[2 * i], sizeof(float)) != 0;
            wrong += std::memcmp(&second[i], &data[2 * i + 1], sizeof(float)) != 0;
        }
        EXPECT_EQ(wrong, 0U);
        EXPECT_EQ(first[pairs] + second[pairs], 154) << "behind the end";
    });
}

TEST(graphKernels, LongArraysComeInPieces)
{
    std::vector<std::pair<uint64_t, uint32_t>> pieces;
    const auto note = [&pieces](uint64_t at, uint32_t length) { pieces.emplace_back(at, length); };
    graphChunks(10, 4, note);
    EXPECT_THAT(pieces, ElementsAre(std::pair(0U, 4U), std::pair(4U, 4U), std::pair(8U, 2U)));
    pieces.clear();
    graphChunks(0, 4, note);
    EXPECT_TRUE(pieces.empty());
    graphChunks(2 * graphChunkMost + 5, graphChunkMost, note);
    EXPECT_THAT(pieces,
                ElementsAre(std::pair(uint64_t{0}, 0x7FFFFFFFU), std::pair(graphChunkMost, 0x7FFFFFFFU),
                            std::pair(2 * graphChunkMost, 5U)));
}

TEST(graphKernels, AChoiceReplacesTheFirstFunction)
{
    using sum = int(int, int);
    graphKernel<sum> kernel([](int a, int b) { return a + b; });
    EXPECT_EQ(kernel(2, 3), 5);
    kernel.Choose([](int a, int b) { return a * b; });
    EXPECT_EQ(kernel(2, 3), 6);
}

TEST(graphKernels, ThreadsMayMakeTheFirstCallTogether)
{
    const std::vector<float> data = {3, -1, 4, -1, 5, -9, 2, 6};
    std::vector<std::jthread> threads;
    std::atomic<unsigned> wrong{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&data, &wrong] {
            float pair[2];
            graphKernels.MinMax(data.data(), data.size(), pair);
            float first[4];
            float second[4];
            graphKernels.Deinterleave(data.data(), 4, first, second);
            float scaled[8];
            graphKernels.ScaleOffset(scaled, data.data(), data.size(), 1, 2);
            float logs[8];
            graphKernels.LogScale(logs, data.data(), data.size(), 1);
            const bool right = pair[0] == -9 && pair[1] == 6 && first[3] == 2 && second[3] == 6 &&
                               scaled[7] == 14 && std::abs(logs[7] - std::log(6.0F)) < 1e-6F &&
                               graphKernels.Min(data.data(), 8) == -9 &&
                               graphKernels.Max(data.data(), 8) == 6;
            wrong += !right;
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0U);
}

}  // namespace
