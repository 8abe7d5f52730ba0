#include "platform/linux/registryText.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using bytes = std::vector<uint8_t>;

registryValue Number(uint8_t number)
{
    return {registryType::Dword, {number, 0, 0, 0}};
}

bytes Data(const registryText& text, std::string_view path, std::string_view name)
{
    const std::optional<registryValue> value = text.Find(path, name);
    return value ? value->Data : bytes{0xBA, 0xD0};
}

TEST(registryText, WritesValuesInWords)
{
    const struct {
        registryValue Value;
        const char* Words;
    } rows[] = {
        {{registryType::Dword, {0xA3, 0x0F, 0, 0}}, "dword 4003"},
        {{registryType::Dword, {0xFF, 0xFF, 0xFF, 0xFF}}, "dword 4294967295"},
        {{registryType::Qword, {123, 0, 0, 0, 0, 0, 0, 0}}, "qword 123"},
        {{registryType::Qword, {0, 0, 0, 0, 0, 0, 0, 0x80}}, "qword 9223372036854775808"},
        {{registryType::Text, {'C', 0, 'O', 0, 'M', 0, '3', 0, 0, 0}}, "text \"COM3\""},
        {{registryType::Text, {0, 0}}, "text \"\""},
        {{registryType::Text, {'"', 0, '\\', 0, '\n', 0, '\t', 0, '\r', 0, 1, 0, 0x7F, 0, 0, 0}},
         "text \"\\\"\\\\\\n\\t\\r\\x01\\x7f\""},
        {{registryType::Text, {0xB5, 0, 0xAC, 0x20, 0x3D, 0xD8, 0xF0, 0xDE, 0, 0}},
         "text \"\xC2\xB5\xE2\x82\xAC\xF0\x9F\x9B\xB0\""},
        {{registryType::Binary, {1, 2, 0xFF}}, "binary 01 02 ff"},
        {{registryType::Binary, {}}, "binary"},
        {{registryType::Text, {'a', 0}}, "raw 1 61 00"},
        {{registryType::Text, {'a', 0, 0, 0, 0, 0}}, "raw 1 61 00 00 00 00 00"},
        {{registryType::Text, {'a', 0, 0}}, "raw 1 61 00 00"},
        {{registryType::Text, {0x00, 0xD8, 0, 0}}, "raw 1 00 d8 00 00"},
        {{registryType::Text, {}}, "raw 1"},
        {{registryType::Dword, {1}}, "raw 4 01"},
        {{registryType::Qword, {1, 0, 0, 0}}, "raw 11 01 00 00 00"},
        {{registryType{7}, {1}}, "raw 7 01"},
        {{registryType{0xFFFFFFFF}, {}}, "raw 4294967295"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Words);
        EXPECT_EQ(registryFormat(row.Value), row.Words);
        const std::optional<registryValue> value = registryParse(row.Words);
        ASSERT_TRUE(value);
        EXPECT_EQ(value->Type, row.Value.Type);
        EXPECT_EQ(value->Data, row.Value.Data);
    }
}

TEST(registryText, TakesNothingElseForAValue)
{
    for (const char* const words : {"",
                                    "dword",
                                    "dword x",
                                    "dword -1",
                                    "dword 4294967296",
                                    "dword 1 2",
                                    "qword 18446744073709551616",
                                    "text",
                                    "text COM3",
                                    "text \"open",
                                    "text \"a\" b",
                                    "text \"\\q\"",
                                    "text \"\\x4\"",
                                    "text \"\\xzz\"",
                                    "text \"\\x00\"",
                                    "text \"\xFF\"",
                                    "text \"\xED\xA0\x80\"",
                                    "text \"\xC0\x80\"",
                                    "binary 0",
                                    "binary 123",
                                    "binary 0g",
                                    "raw",
                                    "raw x",
                                    "raw 4294967296 00",
                                    "word 1",
                                    "DWORD 1"}) {
        EXPECT_FALSE(registryParse(words)) << words;
    }
}

TEST(registryText, TakesWhatAPersonWritesLoosely)
{
    const registryText text(
        "\xEF\xBB\xBF[A]\r\n  \"One\"=dword   1\r\n\t\"Two\"\t=\tbinary  0A  fF \r\n\"Three\" = dword 3");
    EXPECT_EQ(Data(text, "a", "one"), (bytes{1, 0, 0, 0}));
    EXPECT_EQ(Data(text, "a", "TWO"), (bytes{0x0A, 0xFF}));
    EXPECT_EQ(Data(text, "A", "Three"), (bytes{3, 0, 0, 0}));
}

TEST(registryText, KeepsCommentsAndWhatItDoesNotUnderstand)
{
    registryText text(
        "# first\n; second\nstray = 1\n\n[A]\n# about the value\n\"One\" = dword 1\nwhat is this\n"
        "\"Broken\" = dword many\n\n# about B\n[B]\n\"Two\" = dword 2\n[unclosed\n\"Three\" = dword 3\n");
    text.Set("A", "One", Number(9));
    text.Set("A", "New", Number(8));
    text.Set("B", "Two", Number(7));
    EXPECT_EQ(text.Bytes(),
              "# first\n; second\nstray = 1\n\n[A]\n# about the value\n\"One\" = dword 9\nwhat is this\n"
              "\"Broken\" = dword many\n\"New\" = dword 8\n\n# about B\n[B]\n\"Two\" = dword 7\n[unclosed\n"
              "\"Three\" = dword 3\n");
}

TEST(registryText, KeepsTheLineEndsAndTheNameOfTheFirstWriting)
{
    registryText text("[A]\r\n  \"One\" = dword 1  \r\n");
    text.Set("a", "ONE", Number(2));
    EXPECT_EQ(text.Bytes(), "[A]\r\n  \"One\" = dword 2  \r\n");
}

TEST(registryText, WritesNoValueOntoALineThatIsNotEnded)
{
    registryText header("[A]");
    header.Set("A", "One", Number(1));
    EXPECT_EQ(header.Bytes(), "[A]\n\"One\" = dword 1\n");
    registryText comment("# no end");
    comment.Set("A", "One", Number(1));
    EXPECT_EQ(comment.Bytes(), "# no end\n\n[A]\n\"One\" = dword 1\n");
}

TEST(registryText, TakesTheFirstGoodLineOfSeveral)
{
    registryText text("[A]\n\"One\" = dword many\n\"One\" = dword 2\n[a]\n\"One\" = dword 3\n");
    EXPECT_EQ(Data(text, "A", "One"), (bytes{2, 0, 0, 0}));
    text.Set("A", "One", Number(4));
    EXPECT_EQ(Data(text, "A", "One"), (bytes{4, 0, 0, 0}));
    EXPECT_TRUE(text.Remove("A", "One"));
    EXPECT_EQ(text.Bytes(), "[A]\n[a]\n");
}

TEST(registryText, NamesANewKeyLikeThoseAboveIt)
{
    registryText text("[Software\\Vintermark\\Other]\n");
    text.AddKey("SOFTWARE\\vintermark\\Skyreckoning");
    EXPECT_EQ(text.Bytes(), "[Software\\Vintermark\\Other]\n\n[Software\\Vintermark\\Skyreckoning]\n");
    text.AddKey("software\\VINTERMARK");
    EXPECT_EQ(text.Bytes(), "[Software\\Vintermark\\Other]\n\n[Software\\Vintermark\\Skyreckoning]\n");
}

TEST(registryText, LeavesTheCommentOfTheNextKeyWhenOneIsRemoved)
{
    registryText text(
        "[K\\A]\n# goes\n\"One\" = dword 1\n\n[K\\A\\B]\n\"Two\" = dword 2\n\n# stays\n; too\n[K\\C]\n");
    EXPECT_TRUE(text.RemoveTree("k\\a"));
    EXPECT_EQ(text.Bytes(), "# stays\n; too\n[K\\C]\n");
    EXPECT_FALSE(text.RemoveTree("K\\A"));
}

TEST(registryText, KeepsTheKeyAboveTheLastOneRemoved)
{
    registryText text("[K\\A\\B]\n\"One\" = dword 1\n");
    EXPECT_TRUE(text.RemoveTree("k\\a\\b"));
    EXPECT_EQ(text.Bytes(), "[K\\A]\n");
}

TEST(registryText, KnowsWhatAPathIs)
{
    for (const char* const path : {"A", "A\\B", "A b\\[c]", "\xC3\xA4\\\xE2\x82\xAC", " "})
        EXPECT_TRUE(registryIsPath(path)) << path;
    for (const std::string& path : {std::string(), std::string("\\"), std::string("\\A"), std::string("A\\"),
                                    std::string("A\\\\B"), std::string("A\nB"), std::string("A\0B", 3),
                                    std::string("A\x7F"), std::string("\xFF"), std::string("\xC0\x80")})
        EXPECT_FALSE(registryIsPath(path)) << path;
}

std::string Garbage(std::mt19937& random)
{
    constexpr std::string_view Pieces[] = {"[",  "]",  "[A]\n", "\"",    "\"One\" = ", "dword ",      "1",
                                           "\n", "\\", "\\x4",  "text ", "binary ",    "raw 1 ",      "#",
                                           "\r", " ",  "=",     "[A\\",  "B]\n",       "\xEF\xBB\xBF"};
    std::string text;
    for (auto i = random() % 60; i > 0; i--) {
        if (random() % 8 == 0)
            text += static_cast<char>(random());
        else
            text += Pieces[random() % std::size(Pieces)];
    }
    return text;
}

TEST(registryText, WorksOnAnyGarbage)
{
    std::mt19937 random(2026);
    for (int round = 0; round < 5000; round++) {
        const std::string garbage = Garbage(random);
        SCOPED_TRACE(testing::PrintToString(garbage));
        registryText text(garbage);
        text.Find("A", "One");
        text.Set("A", "One", Number(1));
        text.Set("A\\B", "Two", Number(2));
        ASSERT_EQ(Data(text, "A", "One"), (bytes{1, 0, 0, 0}));
        ASSERT_EQ(Data(text, "A\\B", "Two"), (bytes{2, 0, 0, 0}));
        ASSERT_TRUE(text.Remove("A", "One"));
        ASSERT_FALSE(text.Find("A", "One"));
        ASSERT_TRUE(text.RemoveTree("A"));
        ASSERT_FALSE(text.HasKey("A"));
        ASSERT_FALSE(text.HasKey("A\\B"));
    }
}

TEST(registryText, WorksOnLinesOfAnyLength)
{
    const std::string huge(300'000, 'x');
    registryText text("[" + huge + "]\n\"" + huge + "\" = text \"" + huge + "\"\n" + huge + "\n[A]\n" +
                      std::string(300'000, '\n'));
    text.Set("A", "One", Number(1));
    EXPECT_EQ(Data(text, "A", "One"), (bytes{1, 0, 0, 0}));
    EXPECT_EQ(Data(text, huge, huge).size(), 2 * huge.size() + 2);
}

}  // namespace
