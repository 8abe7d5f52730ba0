// The text store between processes. The program starts itself again as one of the roles below, which are
// tests that take part in no other run; the role's folder and name follow as arguments.
#include "foundations/settings/settingsText.h"
#include "foundations/text/utfConvert.h"
#include "foundations/text/utfLocale.h"
#include "platform/process.h"
#include "platform/thread.h"
#include "tests/await.h"

#include <gtest/gtest.h>

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int Rows = 4;
constexpr int ValuesOfAProcess = 20;
constexpr size_t OwnArguments = 4;  // the program and the three that choose the role

std::string utf8(const std::filesystem::path& path)
{
    const std::u16string units = path.u16string();
    std::string text;
    return utfAppend8From16(text, units.data(), units.size());
}

std::string content(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string keyOf(int row)
{
    return "Value " + std::to_string(row);
}

// Long enough that the file takes the disk a while, and recognisable wherever it is cut.
std::string valueOf(int number)
{
    constexpr size_t Length = 60000;
    std::string value;
    while (value.size() < Length)
        value += "number " + std::to_string(number) + ", ";
    return value + "end";
}

std::string fileOf(int number)
{
    std::string text = "[Main]\r\n";
    for (int row = 0; row < Rows; ++row)
        text += keyOf(row) + "=" + valueOf(number) + "\r\n";
    return text;
}

void writeAll(settingsText& store, int number)
{
    const std::string value = valueOf(number);
    store.Open(true);
    for (int row = 0; row < Rows; ++row)
        store.SetText(keyOf(row).c_str(), &value, 1);
    store.Close(true);
}

class settingsTextNative : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string name = "skyreckoning settings " + std::to_string(threadId()) + " " +
                                 testing::UnitTest::GetInstance()->current_test_info()->name();
        Folder = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directory(Folder);
        Path = Folder / "store.txt";
        Store.Root = utf8(Path);
    }
    void TearDown() override { std::filesystem::remove_all(Folder); }

    processHandle* Play(const std::string& role, const std::string& name = {}) const
    {
        return processStart({processPath(), "--gtest_also_run_disabled_tests", "--gtest_brief=1",
                             "--gtest_filter=settingsTextRole.DISABLED_" + role, utf8(Path), name});
    }

    // Kills a writer as soon as the file is seen cut short, or after a while when that is not to be seen.
    void KillAWriter(std::chrono::microseconds longest) const
    {
        const std::filesystem::path mark = Folder / "started";
        std::filesystem::remove(mark);
        processHandle* const writer = Play("WritesUntilItIsKilled");
        ASSERT_NE(writer, nullptr);
        EXPECT_TRUE(await([&] { return std::filesystem::exists(mark); }));
        const uintmax_t full = fileOf(1).size();
        const auto end = std::chrono::steady_clock::now() + longest;
        std::error_code ignored;
        while (std::filesystem::file_size(Path, ignored) >= full && std::chrono::steady_clock::now() < end)
            threadYield();
        processKill(writer);
        processWait(writer);
    }

    std::filesystem::path Folder;
    std::filesystem::path Path;
    settingsText Store;
};

// --- Roles of the other process

class settingsTextRole : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::vector<std::string> all = testing::internal::GetInjectableArgvs();
        if (all.size() < OwnArguments + 2)
            GTEST_SKIP() << "started by hand";
        Store.Root = all[OwnArguments];
        Name = all[OwnArguments + 1];
    }

    settingsText Store;
    std::string Name;
};

TEST_F(settingsTextRole, DISABLED_WritesUntilItIsKilled)
{
    for (int number = 1;; ++number) {
        writeAll(Store, number);
        if (number == 1) {
            settingsText mark;
            mark.Root = Store.Root.substr(0, Store.Root.find_last_of("/\\") + 1) + "started";
            mark.Open(true);
            mark.Close(true);
        }
    }
}

TEST_F(settingsTextRole, DISABLED_AddsValues)
{
    for (int32_t number = 0; number < ValuesOfAProcess; ++number)
        Store.SetInt32((Name + std::to_string(number)).c_str(), &number, 1);
}

// --- What must hold between them

TEST_F(settingsTextNative, LeavesTheOldTheNewOrABeginningOfItWheneverTheWriterDies)
{
    constexpr int Kills = 10;
    constexpr unsigned Longest = 300'000;
    std::mt19937 random(std::random_device{}());
    for (int kill = 0; kill < Kills && !HasFailure(); ++kill) {
        const std::chrono::microseconds longest(static_cast<unsigned>(random()) % Longest);
        SCOPED_TRACE(testing::Message() << "kill " << kill << " within " << longest.count() << " us");
        writeAll(Store, 0);
        Store.RotateFiles();
        KillAWriter(longest);
        const std::string bytes = content(Path);
        const size_t digits = fileOf(0).find('0', keyOf(0).size() + fileOf(0).find(keyOf(0)));
        const int number = bytes.size() > digits ? std::atoi(bytes.c_str() + digits) : 0;
        EXPECT_TRUE(fileOf(number).starts_with(bytes)) << bytes.substr(0, 100) << "... " << bytes.size();
        Store.RestoreFile();
        EXPECT_TRUE(content(Path) == (bytes.empty() ? fileOf(0) : bytes)) << number;
    }
}

TEST_F(settingsTextNative, LosesNoValueOfTwoProcesses)
{
    processHandle* const others[] = {Play("AddsValues", "First "), Play("AddsValues", "Second ")};
    for (processHandle* const other : others) {
        ASSERT_NE(other, nullptr);
        EXPECT_EQ(processWait(other), 0);
    }
    ASSERT_TRUE(Store.Open(false));
    for (const char* const name : {"First ", "Second "}) {
        for (int32_t number = 0; number < ValuesOfAProcess; ++number) {
            int32_t value = -1;
            Store.GetInt32((name + std::to_string(number)).c_str(), &value, 1);
            EXPECT_EQ(value, number) << name;
        }
    }
    Store.Close(false);
}

TEST_F(settingsTextNative, KeepsAllOfAFileOnTheDisk)
{
    std::ofstream(Path, std::ios::binary) << "; remark\n\nnameless=1\n[Other]\nKey=x\n";
    const std::string value = " a=\"b\"\\\n\xC3\xA4";
    Store.SetText("Key", &value, 1);
    EXPECT_EQ(content(Path), "; remark\r\n\r\nnameless=1\r\n[Other]\r\nKey=x\r\n[Main]\r\n"
                             "Key=\" a\\=\\\"b\\\"\\\\\\n\xC3\xA4\"\r\n");
    std::string back;
    Store.GetText("Key", &back, 1);
    EXPECT_EQ(back, value);
}

TEST_F(settingsTextNative, WritesAndReadsADotWhateverTheLocale)
{
    const std::string formerPoint = utfLocale.DecimalPoint;
    const std::string formerLocale = std::setlocale(LC_ALL, nullptr);
    utfLocale.DecimalPoint = ",";
    // The first of these that the system has; most systems that have none are still covered by the line
    // above.
    for (const char* const name : {"de_DE.UTF-8", "de_DE", "de-DE", "German_Germany.1252", "C"})
        if (std::setlocale(LC_ALL, name) != nullptr)
            break;
    const double values[] = {1.5, -0.25};
    Store.SetDouble("Key", values, 2);
    EXPECT_EQ(content(Path), "[Main]\r\nKey=1.5;-0.25\r\n");
    double back[] = {0, 0};
    Store.GetDouble("Key", back, 2);
    EXPECT_DOUBLE_EQ(back[0], 1.5);
    EXPECT_DOUBLE_EQ(back[1], -0.25);
    std::setlocale(LC_ALL, formerLocale.c_str());
    utfLocale.DecimalPoint = formerPoint;
}

}  // namespace
