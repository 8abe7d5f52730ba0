// A process that is killed while it writes its settings.
#include "tests/foundations/settings/settingsTextFixture.h"

#include <map>
#include <memory>
#include <vector>

namespace {

constexpr unsigned EndOfTime = 100000;

const char* const FileFunctions[] = {"fileOpen",   "fileCreate",  "fileLockRange", "fileSize",   "fileRead",
                                     "fileWrite",  "fileSetSize", "fileExists",    "fileSizeOf", "fileRemove",
                                     "fileRename", "fileCopy",    "fileMakeFolder"};

// From now on nothing that is asked of the disk happens any more.
void killed()
{
    for (const char* const function : FileFunctions)
        fakeFail(function, {.Times = EndOfTime});
}

struct call {
    std::string Function;
    unsigned Nth;
};

// The calls of file functions since the last clearing, each by its number among those of its name.
std::vector<call> fileCalls()
{
    std::map<std::string, unsigned> counts;
    std::vector<call> calls;
    for (const std::string& text : fakeCalls()) {
        const std::string function = text.substr(0, text.find(' '));
        if (function.starts_with("file"))
            calls.push_back({function, ++counts[function]});
    }
    return calls;
}

class settingsTextCrash : public settingsTextFixture
{
protected:
    void Change()
    {
        auto store = std::make_unique<settingsText>();
        store->Root = "/house/labels.txt";
        const std::string value = "a new value";
        store->Open(true);
        store->SetText("Key", &value, 1);
        store->Close(true);
    }

    const std::string Old = "; remark\r\n[Main]\r\nKey=old\r\nOther=1\r\n";
    const std::string New = "; remark\r\n[Main]\r\nKey=a new value\r\nOther=1\r\n";

    void ExpectOldNewPrefixOrEmpty()
    {
        const std::string bytes = Bytes();
        EXPECT_TRUE(bytes == Old || New.starts_with(bytes)) << bytes;
    }
};

}  // namespace

TEST_F(settingsTextCrash, LeavesTheOldOrTheBeginningOfTheNewAtWhicheverCallItDies)
{
    Put(Old);
    fakeClearCalls();
    Change();
    ASSERT_EQ(Bytes(), New);
    const std::vector<call> calls = fileCalls();
    ASSERT_GT(calls.size(), 5u);
    for (const auto& [function, nth] : calls) {
        SCOPED_TRACE(function + ' ' + std::to_string(nth));
        fakeReset();
        Put(Old);
        fakeOnCall(function, nth, killed);
        Change();
        ExpectOldNewPrefixOrEmpty();
    }
}

TEST_F(settingsTextCrash, LeavesABeginningOfTheNewWhereverTheWriteIsCut)
{
    for (uint32_t bytes = 0; bytes <= New.size(); ++bytes) {
        SCOPED_TRACE(bytes);
        fakeReset();
        Put(Old);
        fakeShort("fileWrite", bytes);
        Change();
        EXPECT_EQ(Bytes(), New.substr(0, bytes));
    }
}

TEST_F(settingsTextCrash, ComesBackFromTheBackupMadeBefore)
{
    Put(Old);
    fakeClearCalls();
    Change();
    const std::vector<call> calls = fileCalls();
    unsigned emptied = 0;
    for (const auto& [function, nth] : calls) {
        SCOPED_TRACE(function + ' ' + std::to_string(nth));
        fakeReset();
        Put(Old);
        Store.RotateFiles();
        fakeOnCall(function, nth, killed);
        Change();
        const std::string bytes = Bytes();
        const bool backup = fakeFileHas(Path + u".1");
        EXPECT_TRUE(backup);
        EXPECT_EQ(fakeFileBytes(Path + u".1"), Old);
        emptied += bytes.empty() ? 1u : 0u;
        // The next process finds a disk that works.
        fakeReset();
        Put(bytes);
        fakeFilePut(Path + u".1", Old);
        Store.RestoreFile();
        EXPECT_EQ(Bytes(), bytes.empty() ? Old : bytes);
        EXPECT_FALSE(Text("Key").empty());
    }
    EXPECT_GT(emptied, 0u);
}
