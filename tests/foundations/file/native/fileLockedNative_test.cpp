// Locked files between processes. The program starts itself again, with a filter that selects one test, so
// that the environment is set up, and tells the role to play there and its folder.

#include "foundations/file/fileLocked.h"
#include "platform/process.h"
#include "platform/thread.h"
#include "tests/await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int Lines = 15;
constexpr int Writers = 3;
constexpr char RoleFilter[] = "fileLockedNative.MakesMissingFolders:";

std::u16string within(const std::filesystem::path& folder, const char* name)
{
    return (folder / name).u16string();
}

std::string content(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void leaveMark(const std::filesystem::path& folder, const char* name)
{
    const fileLocked mark(within(folder, name), fileLocked::Create);
    ASSERT_TRUE(mark.State & fileLocked::IsOpen);
}

class fileLockedNative : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string name = "skyreckoning file " + std::to_string(threadId()) + " " +
                                 testing::UnitTest::GetInstance()->current_test_info()->name();
        Folder = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directory(Folder);
    }
    void TearDown() override { std::filesystem::remove_all(Folder); }

    processHandle* Play(const std::string& role) const
    {
        return processStart({processPath(), "--gtest_brief=1",
                             "--gtest_filter=" + (RoleFilter + role) + ":" + Folder.string()});
    }
    bool AwaitMark(const char* name) const
    {
        return await([&] { return fileExists(within(Folder, name)); });
    }

    std::filesystem::path Folder;
};

// --- Roles of the other process

bool writesAfterTheOther(const std::filesystem::path& folder)
{
    leaveMark(folder, "started");
    fileLocked file(within(folder, "shared"), fileLocked::ModeWrite | fileLocked::Append);
    const bool written = file.WriteString("second\n") == 7;
    leaveMark(folder, "written");
    return written;
}

bool appendsLines(const std::filesystem::path& folder)
{
    bool written = true;
    for (int line = 0; line < Lines; ++line) {
        fileLocked file(within(folder, "shared"), fileLocked::ModeWrite | fileLocked::Append);
        const std::string text = std::to_string(line) + ".\n";
        written = file.Write(text.data(), 1) == 1 && written;
        written = file.WriteString(text.substr(1)) == text.size() - 1 && written;
    }
    return written;
}

bool holdsForEver(const std::filesystem::path& folder)
{
    const fileLocked file(within(folder, "shared"), fileLocked::ModeWrite);
    if (!(file.State & fileLocked::IsOpen))
        return false;
    leaveMark(folder, "held");
    for (;;)
        threadSleep(1000);
}

struct roleRow {
    const char* Name;
    bool (*Play)(const std::filesystem::path&);
};

constexpr roleRow Roles[] = {
    {"WritesAfterTheOther", writesAfterTheOther},
    {"AppendsLines", appendsLines},
    {"HoldsForEver", holdsForEver},
};

// Plays the role that the filter names, instead of the tests.
class rolePlayer : public testing::Environment
{
public:
    void SetUp() override
    {
        const std::string filter = GTEST_FLAG_GET(filter);
        for (const roleRow& role : Roles) {
            const std::string beginning = std::string(RoleFilter) + role.Name + ':';
            if (filter.starts_with(beginning))
                std::exit(role.Play(filter.substr(beginning.size())) ? 0 : 1);
        }
    }
};

const testing::Environment* const Player = testing::AddGlobalTestEnvironment(new rolePlayer);

// --- What must hold between them

TEST_F(fileLockedNative, KeepsAnotherProcessWaitingUntilItIsLetGo)
{
    processHandle* other = nullptr;
    {
        fileLocked file(within(Folder, "shared"), fileLocked::ModeWrite);
        ASSERT_TRUE(file.State & fileLocked::IsOpen);
        other = Play("WritesAfterTheOther");
        ASSERT_NE(other, nullptr);
        EXPECT_TRUE(AwaitMark("started"));
        threadSleep(100);
        EXPECT_FALSE(fileExists(within(Folder, "written")));
        EXPECT_EQ(file.WriteString("first\n"), 6u);
    }
    EXPECT_EQ(processWait(other), 0);
    EXPECT_EQ(content(Folder / "shared"), "first\nsecond\n");
}

TEST_F(fileLockedNative, LosesNoLineOfSeveralProcesses)
{
    std::vector<processHandle*> others;
    for (int index = 0; index < Writers; ++index)
        others.push_back(Play("AppendsLines"));
    for (processHandle* other : others) {
        ASSERT_NE(other, nullptr);
        EXPECT_EQ(processWait(other), 0);
    }
    std::istringstream text(content(Folder / "shared"));
    std::vector<int> counts(Lines);
    for (std::string line; std::getline(text, line);) {
        ASSERT_EQ(line.back(), '.') << line;
        ++counts.at(std::stoul(line));
    }
    EXPECT_EQ(counts, std::vector<int>(Lines, Writers));
}

TEST_F(fileLockedNative, GetsTheFileOfAProcessThatWasKilled)
{
    processHandle* const other = Play("HoldsForEver");
    ASSERT_NE(other, nullptr);
    EXPECT_TRUE(AwaitMark("held"));
    const fileLocked refused(within(Folder, "shared"), fileLocked::Exclusive);
    EXPECT_FALSE(refused.State & fileLocked::IsOpen);
    processKill(other);
    const fileLocked file(within(Folder, "shared"), fileLocked::ModeWrite);
    EXPECT_TRUE(file.State & fileLocked::IsOpen);
    processWait(other);
}

TEST_F(fileLockedNative, TriesAgainUntilTheOtherSideLetsGo)
{
    auto first = std::make_unique<fileLocked>(within(Folder, "shared"), fileLocked::ModeWrite);
    ASSERT_TRUE(first->State & fileLocked::IsOpen);
    std::atomic<bool> opened{false};
    std::jthread other([&] {
        const fileLocked second(within(Folder, "shared"), fileLocked::ModeRead);
        EXPECT_TRUE(second.State & fileLocked::IsOpen);
        opened = true;
    });
    threadSleep(60);
    EXPECT_FALSE(opened);
    first.reset();
    EXPECT_TRUE(await([&] { return opened.load(); }));
}

TEST_F(fileLockedNative, MakesMissingFolders)
{
    {
        fileLocked file(within(Folder, "some/more/folders/file"), fileLocked::ModeWrite);
        ASSERT_TRUE(file.State & fileLocked::IsOpen);
        EXPECT_FALSE(file.State & fileLocked::Existed);
        EXPECT_EQ(file.WriteString("text"), 4u);
    }
    EXPECT_EQ(content(Folder / "some/more/folders/file"), "text");
}

TEST_F(fileLockedNative, MakesNoFileToReadFrom)
{
    const fileLocked file(within(Folder, "missing"), fileLocked::ModeRead);
    EXPECT_FALSE(file.State & fileLocked::IsOpen);
    EXPECT_FALSE(std::filesystem::exists(Folder / "missing"));
}

TEST_F(fileLockedNative, CutsAndReadsBackWhatItWrote)
{
    fileLocked file(within(Folder, "file"), fileLocked::ModeWrite);
    EXPECT_EQ(file.WriteString("0123456789"), 10u);
    EXPECT_TRUE(file.Seek(-4, fileLocked::Origin::WritePosition));
    EXPECT_TRUE(file.SetEnd());
    char text[20] = {};
    EXPECT_EQ(file.Read(text, sizeof(text)), 6u);
    EXPECT_STREQ(text, "012345");
}

TEST_F(fileLockedNative, WritesInTheBackgroundWhileOthersRead)
{
    constexpr uint64_t Records = 200;
    constexpr uint64_t Record = 8;
    fileLocked file(within(Folder, "file"), fileLocked::ModeWrite | fileLocked::Background);
    std::atomic<uint64_t> seen{0};
    std::vector<std::jthread> readers;
    for (int index = 0; index < 3; ++index) {
        readers.emplace_back([&] {
            char text[Record];
            await([&] {
                seen += file.Read(text, sizeof(text));
                return seen == Records * Record;
            });
        });
    }
    for (uint64_t index = 0; index < Records; ++index)
        ASSERT_EQ(file.WriteString("8 bytes."), Record);
    readers.clear();
    EXPECT_EQ(seen, Records * Record);
    EXPECT_EQ(file.ReadPos, Records * Record);
}

}  // namespace
