#include "foundations/settings/settingsItem.h"
#include "foundations/settings/settingsReg.h"
#include "foundations/text/utfLocale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

using testing::ElementsAre;

namespace {

class settingsRegNative : public testing::Test
{
protected:
    void SetUp() override
    {
        Store.Root = "Software\\Vintermark\\Skyreckoning test";
        Store.DeleteAll();
    }
    void TearDown() override
    {
        Store.Section.clear();
        Store.Subsection.clear();
        Store.DeleteAll();
        EXPECT_FALSE(Store.Open(false));
    }

    template <class T>
    T Get(void (settingsReg::*getter)(const char*, T*, uint64_t), T prior = {}, const char* key = "Key")
    {
        (Store.*getter)(key, &prior, 1);
        return prior;
    }

    settingsReg Store;
};

}  // namespace

TEST_F(settingsRegNative, ReadsBackTexts)
{
    const std::string texts[] = {"", "COM3", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9B\xB0", " a \r\n\t\"b\"\\",
                                 std::string(70000, 'x')};
    for (const std::string& text : texts) {
        Store.SetText("Key", &text, 1);
        EXPECT_EQ(Get<std::string>(&settingsReg::GetText, "prior"), text);
    }
}

TEST_F(settingsRegNative, ReadsBackOneNumberOfEachKind)
{
    for (const int32_t number : {0, 1, -1, 4003, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(number);
        Store.SetInt32("Key", &number, 1);
        EXPECT_EQ(Get(&settingsReg::GetInt32), number);
        EXPECT_EQ(Get(&settingsReg::GetInt64), number);
        EXPECT_EQ(Get(&settingsReg::GetUInt64), static_cast<uint32_t>(number));
        EXPECT_EQ(Get(&settingsReg::GetDouble), number);
        EXPECT_EQ(Get(&settingsReg::GetFloat), static_cast<float>(number));
        EXPECT_EQ(Get(&settingsReg::GetBool), number != 0);
    }
    const int32_t large = 70000;
    Store.SetInt32("Key", &large, 1);
    EXPECT_EQ(Get(&settingsReg::GetUInt16), 65535);
    EXPECT_EQ(Get(&settingsReg::GetInt16), 32767);
    EXPECT_EQ(Get(&settingsReg::GetUInt8), 255);
    const int64_t wide = std::numeric_limits<int64_t>::min() + 5;
    Store.SetInt64("Key", &wide, 1);
    EXPECT_EQ(Get(&settingsReg::GetInt64), wide);
    EXPECT_EQ(Get(&settingsReg::GetUInt64), static_cast<uint64_t>(wide));
    EXPECT_EQ(Get(&settingsReg::GetInt32, 7), 7);
    for (const bool flag : {true, false}) {
        Store.SetBool("Key", &flag, 1);
        EXPECT_EQ(Get(&settingsReg::GetBool, !flag), flag);
    }
}

TEST_F(settingsRegNative, ReadsBackSeveralElements)
{
    const int32_t narrow[] = {1, -2, 70000};
    int32_t narrowBack[4] = {7, 7, 7, 7};
    uint16_t held[3] = {};
    int16_t clamped[3] = {};
    uint8_t small[3] = {};
    Store.SetInt32("Key", narrow, 3);
    Store.GetInt32("Key", narrowBack, 4);
    Store.GetUInt16("Key", held, 3);
    Store.GetInt16("Key", clamped, 3);
    Store.GetUInt8("Key", small, 3);
    EXPECT_THAT(narrowBack, ElementsAre(1, -2, 70000, 7));
    EXPECT_THAT(held, ElementsAre(1, 65535, 65535));
    EXPECT_THAT(clamped, ElementsAre(1, 0, 32767));
    EXPECT_THAT(small, ElementsAre(1, 255, 255));

    const int64_t wide[] = {1, -2};
    int64_t wideBack[2] = {};
    Store.SetInt64("Key", wide, 2);
    Store.GetInt64("Key", wideBack, 2);
    EXPECT_THAT(wideBack, ElementsAre(1, -2));

    const bool flags[] = {true, false, true};
    bool flagsBack[3] = {};
    Store.SetBool("Key", flags, 3);
    Store.GetBool("Key", flagsBack, 3);
    EXPECT_THAT(flagsBack, ElementsAre(true, false, true));

    Store.SetInt32("Key", narrow, 0);
    Store.GetInt32("Key", narrowBack, 4);
    EXPECT_THAT(narrowBack, ElementsAre(1, -2, 70000, 7));
}

TEST_F(settingsRegNative, ReadsBackFloatsWithSixDecimalsAndADotWhateverTheLocale)
{
    const std::string former = utfLocale.DecimalPoint;
    utfLocale.DecimalPoint = ",";
    const double doubles[] = {1.5, -47.1234567, 0};
    double back[3] = {7, 7, 7};
    Store.SetDouble("Key", doubles, 3);
    Store.GetDouble("Key", back, 3);
    EXPECT_EQ(Get<std::string>(&settingsReg::GetText), "1.500000 -47.123457 0.000000");
    EXPECT_DOUBLE_EQ(back[0], 1.5);
    EXPECT_NEAR(back[1], -47.123457, 1e-9);
    EXPECT_EQ(back[2], 0);
    const float one = 0.25f;
    Store.SetFloat("Key", &one, 1);
    EXPECT_FLOAT_EQ(Get(&settingsReg::GetFloat), 0.25f);
    utfLocale.DecimalPoint = former;
}

TEST_F(settingsRegNative, KeepsItsSectionsApart)
{
    const int32_t numbers[] = {1, 2, 3};
    const char* const sections[] = {"", "Section", "Section\\deeper"};
    for (size_t i = 0; i < 3; ++i) {
        Store.Section = sections[i];
        Store.SetInt32("Key", &numbers[i], 1);
    }
    for (size_t i = 0; i < 3; ++i) {
        Store.Section = sections[i];
        EXPECT_EQ(Get(&settingsReg::GetInt32), numbers[i]);
    }
    Store.Section = "Section";
    Store.DeleteAll();
    EXPECT_EQ(Get(&settingsReg::GetInt32, 7), 7);
    Store.Subsection = "deeper";
    EXPECT_EQ(Get(&settingsReg::GetInt32, 7), 7);
    Store.Section.clear();
    Store.Subsection.clear();
    EXPECT_EQ(Get(&settingsReg::GetInt32), 1);
}

TEST_F(settingsRegNative, GivesNoWriteAccessToAnOpenNestedInAReaders)
{
    const int32_t first = 1;
    const int32_t second = 2;
    Store.SetInt32("Key", &first, 1);
    ASSERT_TRUE(Store.Open(false));
    EXPECT_TRUE(Store.Open(true));
    Store.SetInt32("Key", &second, 1);
    Store.DeleteValue("Key");
    Store.Close(true);
    Store.Close(false);
    EXPECT_EQ(Get(&settingsReg::GetInt32), 1);
    Store.DeleteValue("Key");
    EXPECT_EQ(Get(&settingsReg::GetInt32, 7), 7);
}

TEST_F(settingsRegNative, SavesAndLoadsAList)
{
    settingsList list;
    settingsItemText connection(&list, "Connection", "none");
    settingsItemInt port(&list, "Server port", 4003);
    settingsItemBool enabled(&list, "Server enabled");
    Store.LoadList(list);
    EXPECT_EQ(connection.Value, "none");
    EXPECT_EQ(port.Value, 4003);
    connection.Value = "serial";
    enabled.Value = true;
    Store.SaveList(list);
    port.Value = 1;
    Store.LoadList(list);
    EXPECT_EQ(connection.Value, "serial");
    EXPECT_EQ(port.Value, 4003);
    EXPECT_TRUE(enabled.Value);
}
