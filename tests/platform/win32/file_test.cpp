#include "platform/file.h"

#include "tests/platform/contract.h"
#include "tests/platform/win32/longFolder.h"

#include <filesystem>

namespace {

constexpr fileAccess Read{};
constexpr fileAccess Write{.Write = true};

using win32File = contractTest;

std::u16string Backslashes(std::u16string path)
{
    for (char16_t& unit : path) {
        if (unit == u'/')
            unit = u'\\';
    }
    return path;
}

void Put(const std::u16string& path, const std::string& bytes)
{
    fileHandle file = fileNone;
    ASSERT_EQ(fileCreate(path, Write, file), fileStatus::Ok);
    uint32_t done = 0;
    EXPECT_EQ(fileWrite(file, 0, bytes.data(), static_cast<uint32_t>(bytes.size()), done), fileStatus::Ok);
    fileClose(file);
}

std::string Content(const std::u16string& path)
{
    fileHandle file = fileNone;
    if (fileOpen(path, Read, file) != fileStatus::Ok)
        return "(not opened)";
    std::string bytes(1000, '\0');
    uint32_t done = 0;
    EXPECT_EQ(fileRead(file, 0, bytes.data(), static_cast<uint32_t>(bytes.size()), done), fileStatus::Ok);
    fileClose(file);
    bytes.resize(done);
    return bytes;
}

TEST_F(win32File, KnowsTheRootOfEveryKindOfPath)
{
    struct rootRow {
        std::u16string Path;
        std::u16string Root;
    };
    const rootRow rows[] = {
        {u"C:\\folder\\file", u"C:\\"},
        {u"c:/folder", u"c:/"},
        {u"C:", u"C:"},
        {u"C:file", u"C:"},
        {u"C:\\", u"C:\\"},
        {u"1:\\file", u""},
        {u"CC:\\file", u""},
        {u":\\", u""},
        {u"\\", u"\\"},
        {u"/folder", u"/"},
        {u"\\folder\\file", u"\\"},
        {u"\\\\server\\share\\file", u"\\\\server\\share\\"},
        {u"//server/share/file", u"//server/share/"},
        {u"\\\\server\\share", u"\\\\server\\share"},
        {u"\\\\server\\", u"\\\\server\\"},
        {u"\\\\server", u"\\\\server"},
        {u"\\\\", u"\\\\"},
        {u"\\\\\\server", u"\\"},
        {u"\\\\?\\C:\\folder", u"\\\\?\\C:\\"},
        {u"\\\\?\\C:", u"\\\\?\\C:"},
        {u"\\\\?\\", u"\\\\?\\"},
        {u"\\\\?\\Volume{1}\\folder", u"\\\\?\\Volume{1}\\"},
        {u"\\\\?\\UNC\\server\\share\\file", u"\\\\?\\UNC\\server\\share\\"},
        {u"\\\\?\\unc\\server\\share\\file", u"\\\\?\\unc\\server\\share\\"},
        {u"\\\\?\\UNC\\server\\share", u"\\\\?\\UNC\\server\\share"},
        {u"\\\\?\\UNC\\server", u"\\\\?\\UNC\\server"},
        {u"\\\\?\\UNC\\", u"\\\\?\\UNC\\"},
        {u"\\\\?\\UNC", u"\\\\?\\UNC"},
        {u"\\\\?\\UNCLE\\server\\share", u"\\\\?\\UNCLE\\"},
        {u"\\\\.\\C:\\folder", u"\\\\.\\C:\\"},
        {u"folder\\file", u""},
        {u".\\file", u""},
    };
    for (const rootRow& row : rows) {
        SCOPED_TRACE(std::filesystem::path(row.Path).string());
        EXPECT_EQ(fileRootLength(row.Path), row.Root.size());
    }
}

TEST_F(win32File, SeparatesNamesByBothSlashes)
{
    EXPECT_TRUE(fileIsSeparator(u'\\'));
    EXPECT_TRUE(fileIsSeparator(u'/'));
    EXPECT_FALSE(fileIsSeparator(u':'));
    ASSERT_TRUE(fileMakeFolder(contractFolder() + u"\\folder"));
    Put(contractFolder() + u"/folder\\file", "content");
    EXPECT_EQ(Content(contractFolder() + u"\\folder/file"), "content");
}

TEST_F(win32File, ReachesPathsPastTheSystemsOldLimit)
{
    const longFolder folder;
    const std::u16string file = folder.Path + u"/file";
    Put(file, "content");
    EXPECT_EQ(Content(file), "content");
    EXPECT_EQ(Content(Backslashes(file)), "content");
    EXPECT_EQ(Content(folder.Parent + u"/missing/.." + file.substr(folder.Parent.size())), "content");
    EXPECT_EQ(fileSizeOf(file), 7u);
    EXPECT_TRUE(fileCopy(file, folder.Path + u"/copy"));
    EXPECT_TRUE(fileRename(folder.Path + u"/copy", folder.Path + u"/other"));
    EXPECT_EQ(Content(folder.Path + u"/other"), "content");
    EXPECT_TRUE(fileRemove(folder.Path + u"/other"));
    EXPECT_FALSE(fileExists(folder.Path + u"/other"));
}

TEST_F(win32File, ReachesFilesAndFoldersAroundTheOldLimit)
{
    constexpr size_t Shortest = 240;
    constexpr size_t Longest = 270;
    const std::u16string folder = contractFolder() + u'/';
    for (size_t length = Shortest; length <= Longest; length++) {
        const std::u16string path = folder + std::u16string(length - folder.size(), u'x');
        SCOPED_TRACE(length);
        Put(path, "content");
        EXPECT_EQ(Content(path), "content");
        EXPECT_TRUE(fileRemove(path));
        EXPECT_TRUE(fileMakeFolder(path));
        EXPECT_TRUE(fileRename(path, folder + static_cast<char16_t>(u'\u4E00' + length - Shortest)));
    }
}

TEST_F(win32File, TakesThePrefixOfLongPaths)
{
    Put(u"\\\\?\\" + Backslashes(contractFolder()) + u"\\file", "content");
    EXPECT_EQ(Content(u"\\\\?\\" + contractFolder() + u"/file"), "content");
    EXPECT_EQ(Content(contractFolder() + u"/file"), "content");
}

TEST_F(win32File, FindsRelativePathsInTheCurrentFolder)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(contractFolder());
    Put(u"file", "content");
    EXPECT_EQ(Content(u"./file"), "content");
    std::filesystem::current_path(before);
    EXPECT_EQ(Content(contractFolder() + u"/file"), "content");
}

TEST_F(win32File, OpensNoDevice)
{
    for (const char16_t* const device : {u"NUL", u"CON", u"\\\\.\\NUL"}) {
        for (const fileAccess& access : {Read, Write}) {
            fileHandle file = fileNone;
            EXPECT_NE(fileOpen(device, access, file), fileStatus::Ok);
            EXPECT_EQ(file, fileNone);
        }
    }
}

TEST_F(win32File, TakesNoOffsetForTheEndOfTheFile)
{
    Put(contractFolder() + u"/file", "content");
    fileHandle file = fileNone;
    ASSERT_EQ(fileOpen(contractFolder() + u"/file", Write, file), fileStatus::Ok);
    for (const uint64_t offset : {UINT64_MAX, UINT64_MAX - 1, uint64_t{1} << 63}) {
        uint32_t done = 1;
        EXPECT_EQ(fileWrite(file, offset, "x", 1, done), fileStatus::Failed);
        EXPECT_EQ(done, 0u);
    }
    fileClose(file);
    EXPECT_EQ(Content(contractFolder() + u"/file"), "content");
}

TEST_F(win32File, CopiesTheContentOfAReadOnlyFileButNotThat)
{
    const std::u16string source = contractFolder() + u"/source";
    Put(source, "content");
    std::filesystem::permissions(source, std::filesystem::perms::owner_read);
    EXPECT_TRUE(fileCopy(source, contractFolder() + u"/copy"));
    std::filesystem::permissions(source, std::filesystem::perms::all);
    EXPECT_TRUE(fileRemove(contractFolder() + u"/copy"));
}

TEST_F(win32File, LeavesAFileThatIsToTakeItsOwnName)
{
    const std::u16string path = contractFolder() + u"/file";
    Put(path, "content");
    EXPECT_FALSE(fileRename(path, Backslashes(path)));
    EXPECT_FALSE(fileCopy(path, path));
    EXPECT_EQ(Content(path), "content");
}

}  // namespace
