#include "foundations/settings/settingsReg.h"

#include "tests/foundations/settings/settingsRegFixture.h"

#include <memory>

using testing::ElementsAre;

namespace {

class settingsRegTest : public settingsRegFixture
{
};

}  // namespace

TEST_F(settingsRegTest, JoinsTheLevelsOfItsPathByOneBackslash)
{
    const struct {
        const char* Root;
        const char* Section;
        const char* Subsection;
        const char* Path;
    } Cases[] = {
        {"A\\B", "", "", "A\\B"},
        {"A\\B", "C", "", "A\\B\\C"},
        {"A\\B", "C", "D", "A\\B\\C\\D"},
        {"A\\B", "", "D", "A\\B\\D"},
        {"A\\B\\", "C", "", "A\\B\\C"},
        {"A\\B", "\\C", "", "A\\B\\C"},
        {"A\\B", "C\\", "D", "A\\B\\C\\D"},
        {"A\\B", "C", "\\D", "A\\B\\C\\D"},
        {"A\\B\\", "\\C", "", "A\\B\\\\C"},
        {"A\\B\\", "", "", "A\\B"},
        {"\\A", "", "D\\\\", "A\\D"},
        {"", "C", "", "C"},
        {"\xC3\xA4", "\xE2\x82\xAC", "", "\xC3\xA4\\\xE2\x82\xAC"},
    };
    for (const auto& [root, section, subsection, path] : Cases) {
        SCOPED_TRACE(path);
        fakeClearCalls();
        Store.Root = root;
        Store.Section = section;
        Store.Subsection = subsection;
        Store.Open(false);
        EXPECT_THAT(fakeCalls(), ElementsAre(std::string("registryOpen ") + path));
    }
}

TEST_F(settingsRegTest, DoesNotOpenAMissingKeyForReading)
{
    EXPECT_FALSE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_EQ(fakeCallCount("registryCreate"), 0u);
    Store.Close(false);
    EXPECT_EQ(Store.OpenCount, 0u);
}

TEST_F(settingsRegTest, MakesAMissingKeyForWriting)
{
    EXPECT_TRUE(Store.Open(true));
    EXPECT_EQ(Store.OpenCount, 1u);
    Store.Close(true);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
    EXPECT_TRUE(Store.Open(false));
}

TEST_F(settingsRegTest, CountsNestedOpensAndClosesTheKeyOnce)
{
    fakeFail("registryCreate");
    EXPECT_FALSE(Store.Open(true));
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_TRUE(Store.Open(true));
    EXPECT_TRUE(Store.Open(false));
    EXPECT_EQ(Store.OpenCount, 2u);
    Store.Close(true);
    EXPECT_EQ(fakeRegistryHandles(), 1u);
    Store.Close(false);
    Store.Close(true);
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
    EXPECT_EQ(fakeCallCount("registryClose"), 1u);
}

TEST_F(settingsRegTest, GivesNoWriteAccessToAnOpenNestedInAReaders)
{
    Put(Dword(1));
    ASSERT_TRUE(Store.Open(false));
    EXPECT_TRUE(Store.Open(true));
    const int32_t value = 2;
    Store.SetInt32("Key", &value, 1);
    Store.DeleteValue("Key");
    Store.Close(true);
    Store.Close(false);
    EXPECT_EQ(Stored().Data, Dword(1).Data);
}

TEST_F(settingsRegTest, ReadsNothingInsideAWritersOpen)
{
    Put(Dword(1));
    Store.Open(true);
    int32_t value = 7;
    Store.GetInt32("Key", &value, 1);
    Store.Close(true);
    EXPECT_EQ(value, 7);
}

TEST_F(settingsRegTest, ClosesItsKeyWhenDestroyed)
{
    {
        settingsReg store;
        store.Root = Root;
        store.Open(true);
        store.Open(true);
    }
    EXPECT_EQ(fakeRegistryHandles(), 0u);
}

TEST_F(settingsRegTest, DeletesAValue)
{
    Put(Dword(1));
    fakeRegistryPut(Root, "Other", Dword(2));
    Store.DeleteValue("Key");
    EXPECT_EQ(fakeRegistryValues(Root).size(), 1u);
    Store.DeleteValue("missing");
    EXPECT_EQ(fakeRegistryValues(Root).size(), 1u);
    EXPECT_EQ(Store.OpenCount, 0u);
}

TEST_F(settingsRegTest, DeletesItsKeyWithAllBelowItAndOpensNothing)
{
    Put(Dword(1));
    fakeRegistryPut(Root + "\\Section\\Below", "Key", Dword(2));
    fakeRegistryPut(Root + "\\Other", "Key", Dword(3));
    fakeClearCalls();
    Store.Section = "Section";
    Store.DeleteAll();
    EXPECT_THAT(fakeCalls(), ElementsAre("registryDeleteTree Software\\House\\Section"));
    EXPECT_TRUE(fakeRegistryValues(Root + "\\Section\\Below").empty());
    EXPECT_EQ(fakeRegistryValues(Root + "\\Other").size(), 1u);
    EXPECT_EQ(Stored().Data, Dword(1).Data);
}

TEST_F(settingsRegTest, NeverDeletesEverything)
{
    for (const char* const root : {"", "\\", "\\\\"}) {
        Store.Root = root;
        Store.DeleteAll();
    }
    EXPECT_THAT(fakeCalls(), ElementsAre());
}

TEST_F(settingsRegTest, HasNoBackups)
{
    Store.RotateFiles();
    Store.RestoreFile();
    EXPECT_THAT(fakeCalls(), ElementsAre());
}

TEST_F(settingsRegTest, WritesOneElementInItsOwnTypeAndOthersAsBytes)
{
    const int32_t narrow[] = {-2, 3};
    const int64_t wide[] = {-2, 3};
    const bool flags[] = {true, false, true};
    using bytes = std::vector<uint8_t>;
    const struct {
        const char* What;
        std::function<void(settingsReg&)> Set;
        registryType Type;
        bytes Data;
    } Cases[] = {
        {"one int32", [&](auto& store) { store.SetInt32("Key", narrow, 1); }, registryType::Dword,
         Bytes<int32_t>({-2})},
        {"two int32", [&](auto& store) { store.SetInt32("Key", narrow, 2); }, registryType::Binary,
         Bytes<int32_t>({-2, 3})},
        {"no int32", [&](auto& store) { store.SetInt32("Key", narrow, 0); }, registryType::Binary, {}},
        {"one int64", [&](auto& store) { store.SetInt64("Key", wide, 1); }, registryType::Qword,
         Bytes<int64_t>({-2})},
        {"two int64", [&](auto& store) { store.SetInt64("Key", wide, 2); }, registryType::Binary,
         Bytes<int64_t>({-2, 3})},
        {"no int64", [&](auto& store) { store.SetInt64("Key", nullptr, 0); }, registryType::Binary, {}},
        {"true", [&](auto& store) { store.SetBool("Key", flags, 1); }, registryType::Dword, {1, 0, 0, 0}},
        {"false",
         [&](auto& store) { store.SetBool("Key", flags + 1, 1); },
         registryType::Dword,
         {0, 0, 0, 0}},
        {"three bools",
         [&](auto& store) { store.SetBool("Key", flags, 3); },
         registryType::Binary,
         {1, 0, 1}},
    };
    for (const auto& [what, set, type, data] : Cases) {
        SCOPED_TRACE(what);
        fakeReset();
        set(Store);
        EXPECT_EQ(Stored().Type, type);
        EXPECT_EQ(Stored().Data, data);
        EXPECT_EQ(Store.OpenCount, 0u);
    }
}

TEST_F(settingsRegTest, WritesTextsAsUtf16WithTheirTerminator)
{
    const std::pair<std::string, std::u16string> Cases[] = {
        {"", u""}, {"abc", u"abc"}, {"\xC3\xA4\xF0\x9F\x9B\xB0", u"\u00E4\U0001F6F0"}, {"ab\xFFz", u"ab"}};
    for (const auto& [text, stored] : Cases) {
        SCOPED_TRACE(text);
        Store.SetText("Key", &text, 1);
        EXPECT_EQ(Stored().Type, registryType::Text);
        EXPECT_EQ(Stored().Data, Text(stored).Data);
    }
}

TEST_F(settingsRegTest, WritesFloatsAsOneTextWithSixDecimals)
{
    const double doubles[] = {1.5, -2, 0.25};
    const float floats[] = {0.5f, 1000};
    Store.SetDouble("Key", doubles, 3);
    EXPECT_EQ(Stored().Data, Text(u"1.500000 -2.000000 0.250000").Data);
    Store.SetDouble("Key", doubles, 1);
    EXPECT_EQ(Stored().Data, Text(u"1.500000").Data);
    Store.SetFloat("Key", floats, 2);
    EXPECT_EQ(Stored().Data, Text(u"0.500000 1000.000000").Data);
    Store.SetFloat("Key", floats, 0);
    EXPECT_EQ(Stored().Type, registryType::Text);
    EXPECT_EQ(Stored().Data, Text(u"").Data);
}

TEST_F(settingsRegTest, ReadsADoubleBackWithSixDecimals)
{
    const double value = 47.123456789;
    Store.SetDouble("Key", &value, 1);
    double back = 0;
    Store.GetDouble("Key", &back, 1);
    EXPECT_NEAR(back, 47.123457, 1e-9);
}

TEST_F(settingsRegTest, WritesNothingWhenTheKeyCannotBeMade)
{
    const int32_t value = 1;
    const std::string text = "a";
    fakeFail("registryCreate", {.Times = 2});
    Store.SetInt32("Key", &value, 1);
    Store.SetText("Key", &text, 1);
    EXPECT_EQ(fakeCallCount("registrySet"), 0u);
    fakeFail("registrySet");
    Store.SetInt32("Key", &value, 1);
    EXPECT_EQ(Store.OpenCount, 0u);
    EXPECT_EQ(fakeRegistryHandles(), 0u);
}

TEST_F(settingsRegTest, DropsWhatIsTooLargeForAValue)
{
    const int64_t value = 1;
    Store.SetInt64("Key", &value, uint64_t{1} << 29);
    Store.SetInt64("Key", &value, UINT64_MAX);
    EXPECT_EQ(fakeCallCount("registrySet"), 0u);
}

TEST_F(settingsRegTest, BreaksWhenTextsAreCountedOtherThanOne)
{
    std::string texts[2] = {"a", "b"};
    for (const uint64_t count : {uint64_t{0}, uint64_t{2}}) {
        EXPECT_THROW(Store.GetText("Key", texts, count), fakeBreak);
        EXPECT_THROW(Store.SetText("Key", texts, count), fakeBreak);
    }
    EXPECT_NE(fakeDebugText().find("settingsReg::GetText"), std::string::npos);
    EXPECT_NE(fakeDebugText().find("settingsReg::SetText"), std::string::npos);
    fakeBreakReturns(true);
    fakeClearCalls();
    Store.SetText("Key", texts, 2);
    Store.GetText("Key", texts, 2);
    EXPECT_EQ(fakeCallCount("registry"), 0u);
}
