#include "forms/uiMessageText.h"

#include <gtest/gtest.h>

namespace {

// Each byte is 10 wide.
std::string fitted(std::string_view text, uint32_t letters, size_t lines)
{
    return uiMessageFit(text, 10 * letters, lines, [](std::string_view part) {
        EXPECT_FALSE(part.empty());
        return static_cast<uint32_t>(10 * part.size());
    });
}

TEST(uiMessageText, BreaksLinesWhereTheyMayBeBroken)
{
    struct row {
        const char* Text;
        uint32_t Letters;
        const char* Fitted;
    };
    constexpr row rows[] = {
        {"", 5, ""},
        {"12345", 5, "12345"},
        {"one two", 7, "one two"},
        {"one two", 6, "one\ntwo"},
        {"one two", 3, "one\ntwo"},
        {"one two three", 8, "one two\nthree"},
        {"123456", 5, "12345\n6"},
        {"a 12345678 b", 5, "a\n12345\n678 b"},
        // Its own lines stay, the empty ones too.
        {"one\ntwo", 9, "one\ntwo"},
        {"one\n\ntwo\n", 9, "one\n\ntwo\n"},
        {"\n", 9, "\n"},
        {"one two\nthree", 5, "one\ntwo\nthree"},
        // Blanks at a break: one is used up.
        {"one  two", 4, "one \ntwo"},
        {"   ", 1, " \n "},
        // No code point is cut, and none is left out where there is no room at all.
        {"\xC3\xA4\xC3\xB6\xC3\xBC", 3, "\xC3\xA4\n\xC3\xB6\n\xC3\xBC"},
        {"\xF0\x9F\x9B\xB0x", 2, "\xF0\x9F\x9B\xB0\nx"},
        {"abc", 0, "a\nb\nc"},
    };
    for (const row& each : rows)
        EXPECT_EQ(fitted(each.Text, each.Letters, 99), each.Fitted) << each.Text;
}

TEST(uiMessageText, LeavesOutTheLinesThatHaveNoRoom)
{
    EXPECT_EQ(fitted("one\ntwo\nthree", 9, 3), "one\ntwo\nthree");
    EXPECT_EQ(fitted("one\ntwo\nthree", 9, 2), "one\n...");
    EXPECT_EQ(fitted("one\ntwo\nthree", 9, 1), "...");
    EXPECT_EQ(fitted("one\ntwo\nthree", 9, 0), "...");
    EXPECT_EQ(fitted("one", 9, 1), "one");
    EXPECT_EQ(fitted("123456", 3, 1), "...");
}

TEST(uiMessageText, MeasuresALongLineInStepsOfItsRows)
{
    size_t measured = 0;
    const std::string book(1'000'000, 'x');
    const std::string shown = uiMessageFit(book, 1000, 50, [&measured](std::string_view part) {
        measured += part.size();
        return static_cast<uint32_t>(part.size());
    });
    EXPECT_EQ(shown.size(), 49 * 1001 + 3U);
    EXPECT_LT(measured, 50 * 15'000U);
}

TEST(uiMessageText, TakesBytesThatAreNoText)
{
    const std::string tail(1000, '\x80');
    EXPECT_EQ(fitted(tail, 3, 99), tail) << "nothing but the rest of a code point";
    EXPECT_EQ(fitted("a" + tail + "b", 3, 99), "a" + tail + "\nb");
}

}  // namespace
