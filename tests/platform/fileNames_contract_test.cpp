// Files by name.
#include "tests/platform/fileTest.h"

namespace {

using fileNamesContract = fileTest;

TEST_F(fileNamesContract, RemovesAFile)
{
    Put(u"file", "content");
    EXPECT_TRUE(fileRemove(Path(u"file")));
    EXPECT_FALSE(fileExists(Path(u"file")));
    EXPECT_FALSE(fileRemove(Path(u"file")));
}

TEST_F(fileNamesContract, RemovesNoFileInUse)
{
    for (const fileAccess& access : {Write, WriteAlone}) {
        const fileHandle file = Create(u"file", access);
        EXPECT_FALSE(fileRemove(Path(u"file")));
        EXPECT_TRUE(fileExists(Path(u"file")));
        Close(file);
        EXPECT_TRUE(fileRemove(Path(u"file")));
    }
}

TEST_F(fileNamesContract, RemovesNoFolder)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    EXPECT_FALSE(fileRemove(Path(u"folder")));
    EXPECT_TRUE(fileExists(Path(u"folder")));
}

TEST_F(fileNamesContract, GivesAFileAnotherName)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    Put(u"file", "content");
    EXPECT_TRUE(fileRename(Path(u"file"), Path(u"folder/other")));
    EXPECT_FALSE(fileExists(Path(u"file")));
    EXPECT_EQ(Content(u"folder/other"), "content");
}

TEST_F(fileNamesContract, TakesNoNameFromAnotherFile)
{
    Put(u"file", "content");
    Put(u"taken", "other");
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    for (const char16_t* const taken : {u"taken", u"folder"}) {
        EXPECT_FALSE(fileRename(Path(u"file"), Path(taken)));
        EXPECT_FALSE(fileCopy(Path(u"file"), Path(taken)));
    }
    EXPECT_EQ(Content(u"file"), "content");
    EXPECT_EQ(Content(u"taken"), "other");
}

TEST_F(fileNamesContract, RenamesAndCopiesNothingThatIsMissing)
{
    EXPECT_FALSE(fileRename(Path(u"missing"), Path(u"new")));
    EXPECT_FALSE(fileCopy(Path(u"missing"), Path(u"new")));
    EXPECT_FALSE(fileExists(Path(u"new")));
    Put(u"file", "content");
    EXPECT_FALSE(fileRename(Path(u"file"), Path(u"missing/new")));
    EXPECT_FALSE(fileCopy(Path(u"file"), Path(u"missing/new")));
    EXPECT_EQ(Content(u"file"), "content");
}

TEST_F(fileNamesContract, CopiesAFileWhole)
{
    const std::string large(300'001, 'x');
    Put(u"large", large);
    Put(u"empty", "");
    EXPECT_TRUE(fileCopy(Path(u"large"), Path(u"large copy")));
    EXPECT_TRUE(fileCopy(Path(u"empty"), Path(u"empty copy")));
    EXPECT_EQ(Content(u"large copy"), large);
    EXPECT_EQ(Content(u"large"), large);
    EXPECT_EQ(Content(u"empty copy"), "");
    EXPECT_TRUE(fileRemove(Path(u"large copy")));
}

TEST_F(fileNamesContract, CopiesNoFolder)
{
    ASSERT_TRUE(fileMakeFolder(Path(u"folder")));
    EXPECT_FALSE(fileCopy(Path(u"folder"), Path(u"copy")));
    EXPECT_FALSE(fileExists(Path(u"copy")));
}

TEST_F(fileNamesContract, MakesOneFolderAtATime)
{
    EXPECT_FALSE(fileMakeFolder(Path(u"a/b")));
    EXPECT_TRUE(fileMakeFolder(Path(u"a")));
    EXPECT_FALSE(fileMakeFolder(Path(u"a")));
    EXPECT_TRUE(fileMakeFolder(Path(u"a/b")));
    EXPECT_TRUE(fileExists(Path(u"a/b")));
    EXPECT_EQ(fileSizeOf(Path(u"a/b")), std::nullopt);
    Put(u"file", "");
    EXPECT_FALSE(fileMakeFolder(Path(u"file")));
}

TEST_F(fileNamesContract, KnowsTheRootAndTheSeparatorsOfAPath)
{
    EXPECT_EQ(fileRootLength(u""), 0u);
    EXPECT_EQ(fileRootLength(u"name"), 0u);
    EXPECT_EQ(fileRootLength(u"folder/name"), 0u);
    const std::u16string folder = contractFolder();
    const size_t root = fileRootLength(folder);
    EXPECT_GT(root, 0u);
    EXPECT_LT(root, folder.size());
    EXPECT_TRUE(fileIsSeparator(folder[root - 1]));
    EXPECT_TRUE(fileIsSeparator(u'/'));
    for (const char16_t unit : {u'a', u'.', u' ', u'\0'})
        EXPECT_FALSE(fileIsSeparator(unit));
}

TEST_F(fileNamesContract, ConfusesNoBrokenPathWithItsBeginning)
{
    Put(u"file", "content");
    const std::u16string broken[] = {Path(u"file") + char16_t{0xD800},
                                     Path(u"file") + char16_t{0xDC00} + u"x", Path(u"file") + u'\0' + u"x"};
    for (const std::u16string& path : broken) {
        fileHandle handle = fileNone;
        EXPECT_NE(fileOpen(path, Read, handle), fileStatus::Ok);
        EXPECT_FALSE(fileExists(path));
        EXPECT_EQ(fileSizeOf(path), std::nullopt);
        EXPECT_FALSE(fileRemove(path));
        EXPECT_FALSE(fileRename(path, Path(u"new")));
        EXPECT_FALSE(fileCopy(path, Path(u"new")));
    }
    EXPECT_EQ(Content(u"file"), "content");
}

}  // namespace
