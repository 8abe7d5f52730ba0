#include "platform/pty.h"

#include "platform/comm.h"
#include "tests/platform/contract.h"
#include "tests/platform/linux/configuration.h"

#include <filesystem>
#include <fstream>
#include <memory>

namespace {

using port = std::unique_ptr<ptyPort, void (*)(ptyPort*)>;

// A folder for what runs, of the test's own.
class ptyLinux : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        Bound = std::make_unique<variableSet>("XDG_RUNTIME_DIR", Runtime().c_str());
    }

    void TearDown() override { Bound.reset(); }

    static std::filesystem::path Runtime() { return std::filesystem::path(contractFolder()); }
    static std::filesystem::path Link() { return Runtime() / "skyreckoning" / "ttySKY"; }

    ptyFault Open()
    {
        ptyFault fault = ptyFault::None;
        Port.reset(ptyOpen("ttySKY", fault));
        return fault;
    }

    std::unique_ptr<variableSet> Bound;
    port Port{nullptr, ptyClose};
};

TEST_F(ptyLinux, IsALinkToATerminalDevice)
{
    EXPECT_EQ(Open(), ptyFault::None);
    EXPECT_TRUE(std::filesystem::is_character_file(Link()));
    Port.reset();
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(Link())));
}

TEST_F(ptyLinux, ReplacesALinkThatWasLeftBehind)
{
    std::filesystem::create_directories(Link().parent_path());
    std::filesystem::create_symlink("/nowhere/at/all", Link());
    EXPECT_EQ(Open(), ptyFault::None);
    EXPECT_TRUE(std::filesystem::is_character_file(Link()));
}

TEST_F(ptyLinux, LeavesAFileThatIsNoLink)
{
    std::filesystem::create_directories(Link().parent_path());
    std::ofstream(Link()) << "precious";
    EXPECT_EQ(Open(), ptyFault::Taken);
    EXPECT_EQ(std::filesystem::file_size(Link()), 8u);
}

TEST_F(ptyLinux, LeavesALinkThatAnotherPutInItsPlace)
{
    EXPECT_EQ(Open(), ptyFault::None);
    std::filesystem::remove(Link());
    std::filesystem::create_symlink("/dev/null", Link());
    Port.reset();
    EXPECT_TRUE(std::filesystem::is_symlink(Link()));
}

TEST_F(ptyLinux, HasNoPlaceWithoutARuntimeFolder)
{
    for (const char* const value : {static_cast<const char*>(nullptr), "", "relative", "/proc/none"}) {
        const variableSet unset("XDG_RUNTIME_DIR", value);
        EXPECT_EQ(Open(), ptyFault::NoFolder);
    }
}

TEST_F(ptyLinux, TakesNoNameThatIsTooLongForAFile)
{
    // The name, a point before it and an ending of five behind it make the longest that a folder holds.
    constexpr size_t Longest = 249;
    for (const size_t length : {Longest, Longest + 1, size_t{5000}}) {
        ptyFault fault = ptyFault::System;
        Port.reset(ptyOpen("tty" + std::string(length - 3, 'x'), fault));
        EXPECT_EQ(fault, length <= Longest ? ptyFault::None : ptyFault::Name) << length;
    }
}

TEST_F(ptyLinux, LosesWhatNobodyReadsAndGoesOn)
{
    ASSERT_EQ(Open(), ptyFault::None);
    const std::string bytes(1000, 'x');
    // Far more than a system holds.
    for (int turn = 0; turn < 200; ++turn)
        ptyWrite(Port.get(), bytes.data(), bytes.size());
    const commHandle host = commOpen("ttySKY");
    ASSERT_NE(host, commNone);
    commLevel level;
    EXPECT_TRUE(commPending(host, level));
    EXPECT_LE(level.Received, 5000u);
    commClose(host);
}

}  // namespace
