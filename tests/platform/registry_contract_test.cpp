#include "platform/registry.h"

#include "tests/platform/contract.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using bytes = std::vector<uint8_t>;

struct keyCloser {
    void operator()(registryKey* key) const { registryClose(key); }
};
using keyOwner = std::unique_ptr<registryKey, keyCloser>;

struct found {
    registryStatus Status = registryStatus::Failed;
    registryType Type = registryType::Binary;
    bytes Data;

    bool operator==(const found& other) const = default;
};

keyOwner Open(const std::string& path)
{
    return keyOwner(registryOpen(path));
}

keyOwner Create(const std::string& path)
{
    return keyOwner(registryCreate(path));
}

bool Set(const keyOwner& key, const std::string& name, registryType type, const bytes& data)
{
    return registrySet(key.get(), name, type, data.data(), static_cast<uint32_t>(data.size()));
}

// Asks for the size first and then for the bytes, as callers do.
found Query(const keyOwner& key, const std::string& name)
{
    found result;
    uint32_t size = 0;
    result.Status = registryQuery(key.get(), name, result.Type, nullptr, size);
    if (result.Status != registryStatus::Ok)
        return {};
    result.Data.resize(size + 1);
    size = static_cast<uint32_t>(result.Data.size());
    result.Status = registryQuery(key.get(), name, result.Type, result.Data.data(), size);
    result.Data.resize(size);
    return result;
}

found Stored(registryType type, const bytes& data)
{
    return {registryStatus::Ok, type, data};
}

bytes Text(const std::u16string& text)
{
    bytes data;
    for (const char16_t unit : text) {
        data.push_back(static_cast<uint8_t>(unit & 0xFF));
        data.push_back(static_cast<uint8_t>(unit >> 8));
    }
    return data;
}

const std::u16string End(1, u'\0');

class registryContract : public contractTest
{
protected:
    void TearDown() override { registryDeleteTree(Key); }

    const std::string Key = ContractKey;
};

TEST_F(registryContract, OpensNoKeyThatIsNotThere)
{
    EXPECT_EQ(Open(Key), nullptr);
    EXPECT_EQ(Open(Key + "\\Below"), nullptr);
}

TEST_F(registryContract, MakesAKeyThatIsThereFromThenOn)
{
    ASSERT_NE(Create(Key + "\\One"), nullptr);
    EXPECT_NE(Open(Key + "\\One"), nullptr);
    EXPECT_NE(Create(Key + "\\One"), nullptr);
    EXPECT_EQ(Open(Key + "\\Two"), nullptr);
    EXPECT_EQ(Open(Key + "\\On"), nullptr);
    EXPECT_EQ(Open(Key + "\\One\\Two"), nullptr);
}

TEST_F(registryContract, MakesTheParentsOfAKey)
{
    ASSERT_NE(Create(Key + "\\A\\B\\C"), nullptr);
    EXPECT_NE(Open(Key + "\\A\\B"), nullptr);
    EXPECT_NE(Open(Key + "\\A"), nullptr);
    EXPECT_NE(Open(Key), nullptr);
}

TEST_F(registryContract, RefusesAnEmptyPath)
{
    EXPECT_EQ(Open(""), nullptr);
    EXPECT_EQ(Create(""), nullptr);
    EXPECT_FALSE(registryDeleteTree(""));
}

TEST_F(registryContract, ReadsBackWhatWasWritten)
{
    const struct {
        const char* Name;
        registryType Type;
        bytes Data;
    } rows[] = {
        {"Server port", registryType::Dword, {0xA3, 0x0F, 0, 0}},
        {"Largest", registryType::Dword, {0xFF, 0xFF, 0xFF, 0xFF}},
        {"Wide", registryType::Qword, {1, 2, 3, 4, 5, 6, 7, 0x88}},
        {"Connection", registryType::Text, Text(u"COM3" + End)},
        {"Empty", registryType::Text, Text(End)},
        {"Quotes", registryType::Text, Text(u"\"C:\\x\" = text \r\n\t# ; [a]\x01\x7F" + End)},
        {"Blanks", registryType::Text, Text(u"  both ends  " + End)},
        {"Unicode", registryType::Text, Text(u"µ € \U0001F6F0 \uFEFF" + End)},
        {"Unterminated", registryType::Text, Text(u"abc")},
        {"Twice terminated", registryType::Text, Text(u"abc" + End + End)},
        {"Zero inside", registryType::Text, Text(u"a" + End + u"b" + End)},
        {"Lone surrogate", registryType::Text, Text(std::u16string(1, char16_t{0xD800}) + End)},
        {"Odd text", registryType::Text, {'a', 0, 'b'}},
        {"No text", registryType::Text, {}},
        {"Bytes", registryType::Binary, {0, 1, 0xFF, 0x0A, 0x22}},
        {"No bytes", registryType::Binary, {}},
        {"Half a number", registryType::Dword, {1, 2}},
        {"Long number", registryType::Dword, {1, 2, 3, 4, 5}},
        {"Short wide number", registryType::Qword, {1, 2, 3, 4}},
        {"Other type", registryType{7}, Text(u"one" + End + u"two" + End + End)},
        {"No type", registryType{0}, {9}},
        {"", registryType::Dword, {1, 0, 0, 0}},
        {"A name = of \"quotes\", \\ and [brackets]", registryType::Dword, {2, 0, 0, 0}},
        {"N\xC3\xA4me \xE2\x82\xAC", registryType::Dword, {3, 0, 0, 0}},
    };
    const keyOwner writer = Create(Key);
    ASSERT_NE(writer, nullptr);
    for (const auto& row : rows)
        EXPECT_TRUE(Set(writer, row.Name, row.Type, row.Data)) << row.Name;
    const keyOwner reader = Open(Key);
    ASSERT_NE(reader, nullptr);
    for (const auto& row : rows)
        EXPECT_EQ(Query(reader, row.Name), Stored(row.Type, row.Data)) << row.Name;
}

TEST_F(registryContract, HoldsEveryUnitAsText)
{
    const keyOwner writer = Create(Key);
    std::u16string all;
    for (unsigned unit = 1; unit < 0xD800; unit++)
        all += static_cast<char16_t>(unit);
    ASSERT_TRUE(Set(writer, "All", registryType::Text, Text(all + End)));
    EXPECT_EQ(Query(Open(Key), "All"), Stored(registryType::Text, Text(all + End)));
}

TEST_F(registryContract, TellsTheSizeWhenThereIsNoBuffer)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "Bytes", registryType::Binary, {1, 2, 3}));
    const keyOwner reader = Open(Key);
    registryType type = registryType::Text;
    uint32_t size = 1;
    EXPECT_EQ(registryQuery(reader.get(), "Bytes", type, nullptr, size), registryStatus::Ok);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(type, registryType::Binary);
}

TEST_F(registryContract, TellsHowMuchRoomAValueNeeds)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "Bytes", registryType::Binary, {1, 2, 3}));
    const keyOwner reader = Open(Key);
    registryType type = registryType::Text;
    uint8_t buffer[4] = {9, 9, 9, 9};
    uint32_t size = 2;
    EXPECT_EQ(registryQuery(reader.get(), "Bytes", type, buffer, size), registryStatus::MoreData);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(registryQuery(reader.get(), "Bytes", type, buffer, size), registryStatus::Ok);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(buffer[2], 3);
    EXPECT_EQ(buffer[3], 9);
}

TEST_F(registryContract, HasNoValueThatWasNeverWritten)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "There", registryType::Binary, {1}));
    EXPECT_EQ(Query(Open(Key), "Not there").Status, registryStatus::Failed);
    EXPECT_EQ(Query(Open(Key), "").Status, registryStatus::Failed);
}

TEST_F(registryContract, ReplacesAValueOfAnyType)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "Value", registryType::Text, Text(u"a long text before" + End)));
    ASSERT_TRUE(Set(writer, "Other", registryType::Binary, {5}));
    ASSERT_TRUE(Set(writer, "Value", registryType::Dword, {1, 0, 0, 0}));
    const keyOwner reader = Open(Key);
    EXPECT_EQ(Query(reader, "Value"), Stored(registryType::Dword, {1, 0, 0, 0}));
    EXPECT_EQ(Query(reader, "Other"), Stored(registryType::Binary, {5}));
}

TEST_F(registryContract, TakesASCIILettersInEitherCase)
{
    const keyOwner writer = Create(Key + "\\Case");
    ASSERT_TRUE(Set(writer, "Server Port", registryType::Dword, {1, 0, 0, 0}));
    ASSERT_TRUE(Set(Create(Key + "\\CASE"), "SERVER PORT", registryType::Dword, {2, 0, 0, 0}));
    EXPECT_EQ(Query(Open(Key + "\\case"), "server port"), Stored(registryType::Dword, {2, 0, 0, 0}));
    EXPECT_TRUE(registryDelete(Create(Key + "\\cAsE").get(), "sErVeR pOrT"));
    EXPECT_EQ(Query(Open(Key + "\\Case"), "Server Port").Status, registryStatus::Failed);
    EXPECT_TRUE(registryDeleteTree(Key + "\\cASE"));
    EXPECT_EQ(Open(Key + "\\Case"), nullptr);
}

TEST_F(registryContract, KeepsValuesOfOneKeyFromAnother)
{
    ASSERT_TRUE(Set(Create(Key), "Value", registryType::Binary, {1}));
    ASSERT_TRUE(Set(Create(Key + "\\Below"), "Value", registryType::Binary, {2}));
    ASSERT_TRUE(Set(Create(Key + "\\Below too"), "Value", registryType::Binary, {3}));
    EXPECT_EQ(Query(Open(Key), "Value"), Stored(registryType::Binary, {1}));
    EXPECT_EQ(Query(Open(Key + "\\Below"), "Value"), Stored(registryType::Binary, {2}));
    EXPECT_EQ(Query(Open(Key + "\\Below too"), "Value"), Stored(registryType::Binary, {3}));
}

TEST_F(registryContract, HasHandlesThatReadOrWriteAndNeverBoth)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "Value", registryType::Binary, {1}));
    EXPECT_EQ(Query(writer, "Value").Status, registryStatus::Failed);

    const keyOwner reader = Open(Key);
    EXPECT_FALSE(Set(reader, "Value", registryType::Binary, {2}));
    EXPECT_FALSE(Set(reader, "New", registryType::Binary, {2}));
    EXPECT_FALSE(registryDelete(reader.get(), "Value"));
    EXPECT_EQ(Query(reader, "Value"), Stored(registryType::Binary, {1}));
}

TEST_F(registryContract, ShowsAReaderWhatIsWrittenWhileItIsOpen)
{
    const keyOwner writer = Create(Key);
    const keyOwner reader = Open(Key);
    ASSERT_TRUE(Set(writer, "Value", registryType::Binary, {1}));
    EXPECT_EQ(Query(reader, "Value"), Stored(registryType::Binary, {1}));
}

TEST_F(registryContract, RemovesAValueOnce)
{
    const keyOwner writer = Create(Key);
    ASSERT_TRUE(Set(writer, "Value", registryType::Binary, {1}));
    ASSERT_TRUE(Set(writer, "Other", registryType::Binary, {2}));
    EXPECT_TRUE(registryDelete(writer.get(), "Value"));
    EXPECT_FALSE(registryDelete(writer.get(), "Value"));
    EXPECT_EQ(Query(Open(Key), "Value").Status, registryStatus::Failed);
    EXPECT_EQ(Query(Open(Key), "Other"), Stored(registryType::Binary, {2}));
}

TEST_F(registryContract, RemovesAKeyWithAllThatIsBelow)
{
    for (const char* const below : {"\\A", "\\A\\B", "\\A\\B\\C", "\\AB", "\\D"})
        ASSERT_TRUE(Set(Create(Key + below), "Value", registryType::Binary, {1}));
    EXPECT_TRUE(registryDeleteTree(Key + "\\A"));
    for (const char* const below : {"\\A", "\\A\\B", "\\A\\B\\C"})
        EXPECT_EQ(Open(Key + below), nullptr) << below;
    for (const char* const below : {"\\AB", "\\D"})
        EXPECT_EQ(Query(Open(Key + below), "Value"), Stored(registryType::Binary, {1})) << below;
    EXPECT_FALSE(registryDeleteTree(Key + "\\A"));
}

TEST_F(registryContract, KeepsWhatIsAboveARemovedKey)
{
    ASSERT_NE(Create(Key + "\\A\\B"), nullptr);
    ASSERT_TRUE(registryDeleteTree(Key + "\\A\\B"));
    EXPECT_NE(Open(Key + "\\A"), nullptr);
}

TEST_F(registryContract, MakesARemovedKeyAnewAndEmpty)
{
    ASSERT_TRUE(Set(Create(Key), "Value", registryType::Binary, {1}));
    ASSERT_TRUE(registryDeleteTree(Key));
    ASSERT_NE(Create(Key), nullptr);
    EXPECT_EQ(Query(Open(Key), "Value").Status, registryStatus::Failed);
}

TEST_F(registryContract, HoldsALargeValue)
{
    bytes large(100'000);
    for (size_t i = 0; i < large.size(); i++)
        large[i] = static_cast<uint8_t>(i * 31);
    ASSERT_TRUE(Set(Create(Key), "Large", registryType::Binary, large));
    EXPECT_EQ(Query(Open(Key), "Large"), Stored(registryType::Binary, large));
}

TEST_F(registryContract, EndsNoHandle)
{
    registryClose(nullptr);
}

TEST_F(registryContract, TellsWhereItIs)
{
    if (contractIsFake())
        GTEST_SKIP() << "it is nowhere";
    EXPECT_NE(registryPlace(), "");
}

TEST_F(registryContract, LosesNothingWhenThreadsWriteAtOnce)
{
    constexpr uint8_t Threads = 4;
    constexpr uint8_t Values = 10;
    {
        std::vector<std::jthread> threads;
        for (uint8_t thread = 0; thread < Threads; thread++) {
            threads.emplace_back([this, thread] {
                const keyOwner writer = Create(Key);
                for (uint8_t value = 0; value < Values; value++)
                    EXPECT_TRUE(
                        Set(writer, std::to_string(thread * Values + value), registryType::Binary, {value}));
            });
        }
    }
    const keyOwner reader = Open(Key);
    for (unsigned i = 0; i < Threads * Values; i++)
        EXPECT_EQ(Query(reader, std::to_string(i)),
                  Stored(registryType::Binary, {static_cast<uint8_t>(i % Values)}));
}

}  // namespace
