#include "forms/arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using words = std::vector<std::string>;

TEST(arguments, AreTakenApartAtBlanksOutsideOfQuotes)
{
    struct row {
        const char* Line;
        words Arguments;
    };
    const row rows[] = {
        {"", {}},
        {" \t ", {}},
        {"sky", {"sky"}},
        {"  sky  one\ttwo ", {"sky", "one", "two"}},
        {R"("C:\Program Files\sky.exe" -x)", {R"(C:\Program Files\sky.exe)", "-x"}},
        {R"("C:\Program Files\sky.exe")", {R"(C:\Program Files\sky.exe)"}},
        {"sky \"\"", {"sky", ""}},
        {"sky \"\" x", {"sky", "", "x"}},
        {"\"\t\"", {"\t"}},
        {R"("/home/a b/sky")", {"/home/a b/sky"}},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Line);
        EXPECT_EQ(argumentsSplit(each.Line), each.Arguments);
    }
}

TEST(arguments, LoseOnePairOfQuotesAndNoOther)
{
    struct row {
        const char* Line;
        words Arguments;
    };
    const row rows[] = {
        {R"(""sky"")", {R"("sky")"}},
        {R"(a"b c"d)", {R"(a"b c"d)"}},
        {R"("a b"c d)", {R"("a b"c)", "d"}},
        {R"("never closed here)", {R"("never closed here)"}},
        {R"(")", {R"(")"}},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Line);
        EXPECT_EQ(argumentsSplit(each.Line), each.Arguments);
    }
}

TEST(arguments, TakeBytesThatAreNoText)
{
    EXPECT_EQ(argumentsSplit(std::string_view("a\0b \xFF\xFE", 6)),
              (words{std::string("a\0b", 3), "\xFF\xFE"}));
    EXPECT_EQ(argumentsSplit(std::string(100'000, '"')).size(), 1U);
    EXPECT_EQ(argumentsSplit(std::string(100'000, ' ')).size(), 0U);
}

TEST(arguments, AreKeptUntilTheNext)
{
    argumentsKeep({"one", "two"});
    EXPECT_EQ(arguments(), (words{"one", "two"}));
    argumentsKeep({"three"});
    EXPECT_EQ(arguments(), (words{"three"}));
    argumentsKeep({});
    EXPECT_TRUE(arguments().empty());
}

}  // namespace
