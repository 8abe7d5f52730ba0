#include "platform/registry.h"

#include "tests/platform/linux/configuration.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr char Key[] = "Software\\Vintermark\\Skyreckoning";

struct keyCloser {
    void operator()(registryKey* key) const { registryClose(key); }
};
using keyOwner = std::unique_ptr<registryKey, keyCloser>;

bool SetNumber(const std::string& name, uint32_t number)
{
    const keyOwner key(registryCreate(Key));
    return key && registrySet(key.get(), name, registryType::Dword, &number, sizeof(number));
}

bool HasNumber(const std::string& name, uint32_t number)
{
    const keyOwner key(registryOpen(Key));
    registryType type = registryType::Text;
    uint32_t stored = 0;
    uint32_t size = sizeof(stored);
    return key && registryQuery(key.get(), name, type, &stored, size) == registryStatus::Ok &&
           stored == number;
}

unsigned RightsOf(const std::filesystem::path& path)
{
    struct stat state = {};
    return stat(path.c_str(), &state) == 0 ? state.st_mode & 07777u : 0;
}

// Something that even an administrator cannot open.
void MakeSocket(const std::filesystem::path& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.string().size(), sizeof(address.sun_path));
    path.string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    close(made);
}

class registryLinux : public testing::Test
{
protected:
    const configurationFolder Configuration;
};

TEST_F(registryLinux, WritesATextThatPeopleCanRead)
{
    const keyOwner key(registryCreate(Key));
    ASSERT_NE(key, nullptr);
    const uint32_t port = 4003;
    const uint64_t large = 123;
    const uint8_t bytes[] = {1, 2, 0xFF};
    EXPECT_TRUE(registrySet(key.get(), "Server port", registryType::Dword, &port, sizeof(port)));
    EXPECT_TRUE(registrySet(key.get(), "Connection", registryType::Text, u"COM3", 10));
    EXPECT_TRUE(registrySet(key.get(), "X", registryType::Qword, &large, sizeof(large)));
    EXPECT_TRUE(registrySet(key.get(), "Y", registryType::Binary, bytes, sizeof(bytes)));
    EXPECT_TRUE(registrySet(key.get(), "Z", registryType{7}, bytes, sizeof(bytes)));
    EXPECT_EQ(Configuration.Content(),
              "# What Skyreckoning remembers. Edit it while the program does not run.\n"
              "\n"
              "[Software\\Vintermark\\Skyreckoning]\n"
              "\"Server port\" = dword 4003\n"
              "\"Connection\" = text \"COM3\"\n"
              "\"X\" = qword 123\n"
              "\"Y\" = binary 01 02 ff\n"
              "\"Z\" = raw 7 01 02 ff\n");
}

TEST_F(registryLinux, ReadsWhatAPersonWrote)
{
    Configuration.Put("# mine\n[software\\vintermark\\skyreckoning]\n\"server PORT\" = dword 4003\n");
    EXPECT_TRUE(HasNumber("Server port", 4003));
}

TEST_F(registryLinux, LeavesTheLinesOfOthersAlone)
{
    Configuration.Put("# mine\nnonsense\n[Software\\Other]\n\"A\" = dword 1\n");
    ASSERT_TRUE(SetNumber("Server port", 4003));
    EXPECT_EQ(Configuration.Content(),
              "# mine\nnonsense\n[Software\\Other]\n\"A\" = dword 1\n\n"
              "[Software\\Vintermark\\Skyreckoning]\n\"Server port\" = dword 4003\n");
}

TEST_F(registryLinux, LivesWithAFileOfGarbage)
{
    std::string garbage;
    for (int i = 0; i < 3000; i++)
        garbage += static_cast<char>(i * i % 251);
    Configuration.Put(garbage);
    ASSERT_TRUE(SetNumber("Server port", 4003));
    EXPECT_TRUE(HasNumber("Server port", 4003));
    EXPECT_EQ(Configuration.Content().substr(0, garbage.size()), garbage);
}

TEST_F(registryLinux, TellsWhereTheFileIs)
{
    EXPECT_EQ(registryPlace(), Configuration.Store().string());
}

TEST_F(registryLinux, FallsBackOnTheHomeFolder)
{
    const variableSet home("HOME", Configuration.Path.c_str());
    for (const char* const unusable : {static_cast<const char*>(nullptr), "", "relative"}) {
        const variableSet configuration("XDG_CONFIG_HOME", unusable);
        EXPECT_EQ(registryPlace(), (Configuration.Path / ".config/skyreckoning/registry").string());
        EXPECT_TRUE(SetNumber("Server port", 4003));
        EXPECT_TRUE(HasNumber("Server port", 4003));
    }
}

TEST_F(registryLinux, FailsCleanlyWhereThereIsNoPlace)
{
    const variableSet home("HOME", nullptr);
    const variableSet configuration("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(registryPlace(), "");
    EXPECT_EQ(registryOpen(Key), nullptr);
    EXPECT_EQ(registryCreate(Key), nullptr);
    EXPECT_FALSE(registryDeleteTree(Key));
}

TEST_F(registryLinux, FailsCleanlyWhereTheFolderCannotBeMade)
{
    std::ofstream(Configuration.Path / "file") << "in the way";
    const variableSet configuration("XDG_CONFIG_HOME", (Configuration.Path / "file").c_str());
    EXPECT_EQ(registryOpen(Key), nullptr);
    EXPECT_EQ(registryCreate(Key), nullptr);
    EXPECT_FALSE(registryDeleteTree(Key));
}

TEST_F(registryLinux, MakesAPrivateFileAndKeepsTheRightsOfOneThatIsThere)
{
    ASSERT_TRUE(SetNumber("Server port", 1));
    EXPECT_EQ(RightsOf(Configuration.Store()), 0600u);
    ASSERT_EQ(chmod(Configuration.Store().c_str(), 0644), 0);
    ASSERT_TRUE(SetNumber("Server port", 2));
    EXPECT_EQ(RightsOf(Configuration.Store()), 0644u);
}

TEST_F(registryLinux, FollowsALinkInTheFilesPlace)
{
    const std::filesystem::path elsewhere = Configuration.Path / "elsewhere";
    std::filesystem::create_directories(Configuration.Store().parent_path());
    std::filesystem::create_directories(elsewhere);
    std::filesystem::create_symlink("../elsewhere/second", Configuration.Store());
    std::filesystem::create_symlink(elsewhere / "real", elsewhere / "second");
    for (const uint32_t number : {1u, 2u}) {
        ASSERT_TRUE(SetNumber("Server port", number));
        EXPECT_TRUE(HasNumber("Server port", number));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(Configuration.Store()));
    EXPECT_TRUE(std::filesystem::is_symlink(elsewhere / "second"));
    EXPECT_TRUE(std::filesystem::is_regular_file(elsewhere / "real"));
}

TEST_F(registryLinux, GivesUpOnLinksThatGoRoundInACircle)
{
    std::filesystem::create_directories(Configuration.Store().parent_path());
    std::filesystem::create_symlink("registry", Configuration.Store());
    EXPECT_EQ(registryOpen(Key), nullptr);
    EXPECT_EQ(registryCreate(Key), nullptr);
}

TEST_F(registryLinux, DoesNotReplaceWhatItCannotRead)
{
    std::filesystem::create_directories(Configuration.Store());
    EXPECT_FALSE(SetNumber("Server port", 1));
    EXPECT_TRUE(std::filesystem::is_directory(Configuration.Store()));

    std::filesystem::remove(Configuration.Store());
    ASSERT_EQ(mkfifo(Configuration.Store().c_str(), 0600), 0);
    EXPECT_FALSE(SetNumber("Server port", 1));
    EXPECT_TRUE(std::filesystem::is_fifo(Configuration.Store()));

    std::filesystem::remove(Configuration.Store());
    MakeSocket(Configuration.Store());
    EXPECT_FALSE(SetNumber("Server port", 1));
    EXPECT_TRUE(std::filesystem::is_socket(Configuration.Store()));
}

TEST_F(registryLinux, DoesNotReplaceAFileThatIsTooLarge)
{
    constexpr uintmax_t Huge = uintmax_t{1} << 33;
    Configuration.Put("[A]\n");
    std::filesystem::resize_file(Configuration.Store(), Huge);
    EXPECT_EQ(registryOpen("A"), nullptr);
    EXPECT_FALSE(SetNumber("Server port", 1));
    EXPECT_EQ(std::filesystem::file_size(Configuration.Store()), Huge);
}

TEST_F(registryLinux, RefusesAValueThatTheFileCannotHold)
{
    ASSERT_TRUE(SetNumber("Server port", 1));
    const std::vector<uint8_t> large(size_t{17} << 20);
    const keyOwner key(registryCreate(Key));
    for (const uint32_t size : {uint32_t{17} << 20, uint32_t{6} << 20})
        EXPECT_FALSE(registrySet(key.get(), "Large", registryType::Binary, large.data(), size));
    EXPECT_TRUE(HasNumber("Server port", 1));
}

TEST_F(registryLinux, DoesNotTouchTheFileForAValueThatIsThereAlready)
{
    ASSERT_TRUE(SetNumber("Server port", 4003));
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(stat(Configuration.Store().c_str(), &before), 0);
    EXPECT_TRUE(SetNumber("Server port", 4003));
    ASSERT_EQ(stat(Configuration.Store().c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(registryLinux, IgnoresTheRestOfAWriteThatWasCutOff)
{
    ASSERT_TRUE(SetNumber("Server port", 1));
    std::ofstream(Configuration.Store().string() + ".new") << "half a fi";
    EXPECT_TRUE(SetNumber("Server port", 2));
    EXPECT_TRUE(HasNumber("Server port", 2));
    EXPECT_FALSE(std::filesystem::exists(Configuration.Store().string() + ".new"));
}

TEST_F(registryLinux, WritesNothingThroughAHandleOfAKeyThatIsGone)
{
    const keyOwner key(registryCreate(Key));
    ASSERT_TRUE(registryDeleteTree(Key));
    EXPECT_FALSE(registrySet(key.get(), "Value", registryType::Binary, "x", 1));
    EXPECT_EQ(registryOpen(Key), nullptr);
}

// Lets no file of this process grow beyond a size, as a full disk would.
class smallDisk
{
public:
    explicit smallDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &Before);
        const rlimit small = {bytes, Before.rlim_max};
        Handler = signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &small);
    }

    ~smallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &Before);
        signal(SIGXFSZ, Handler);
    }

    smallDisk(const smallDisk&) = delete;
    smallDisk& operator=(const smallDisk&) = delete;

private:
    rlimit Before = {};
    sighandler_t Handler = nullptr;
};

TEST_F(registryLinux, KeepsTheOldFileWhenTheDiskIsFull)
{
    ASSERT_TRUE(SetNumber("Server port", 4003));
    const std::string before = Configuration.Content();
    const keyOwner key(registryCreate(Key));
    const std::vector<uint8_t> large(5000);
    {
        const smallDisk disk(1000);
        EXPECT_FALSE(registrySet(key.get(), "Large", registryType::Binary, large.data(), 5000));
    }
    EXPECT_EQ(Configuration.Content(), before);
    EXPECT_FALSE(std::filesystem::exists(Configuration.Store().string() + ".new"));
    EXPECT_TRUE(registrySet(key.get(), "Large", registryType::Binary, large.data(), 5000));
}

TEST_F(registryLinux, DoesNotWriteWhereItMayNot)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "an administrator may write everywhere";
    ASSERT_TRUE(SetNumber("Server port", 4003));
    const std::filesystem::path folder = Configuration.Store().parent_path();
    ASSERT_EQ(chmod(folder.c_str(), 0500), 0);
    EXPECT_FALSE(SetNumber("Server port", 1));
    EXPECT_TRUE(HasNumber("Server port", 4003));
    ASSERT_EQ(chmod(folder.c_str(), 0700), 0);
}

}  // namespace
