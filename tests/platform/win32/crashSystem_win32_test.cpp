#include "platform/crash.h"

#include "platform/win32/crashExports.h"
#include "platform/win32/crashSymbols.h"
#include "tests/platform/contract.h"

#include <atomic>
#include <string>
#include <thread>
#include <windows.h>

extern "C" __declspec(dllexport) uint64_t exportedFunction();

// Somewhere behind its own begin.
uint64_t exportedFunction()
{
    return reinterpret_cast<uint64_t>(__builtin_return_address(0)) == 0
               ? 0
               : reinterpret_cast<uint64_t>(exportedFunction) + 1;
}

namespace {

using win32CrashSystem = contractTest;

TEST_F(win32CrashSystem, NamesFunctionsByTheExportsOfTheProgram)
{
    crashSymbol symbol;
    const uint64_t begin = reinterpret_cast<uint64_t>(exportedFunction);
    ASSERT_TRUE(crashExportAt(begin, symbol));
    EXPECT_STREQ(symbol.Name, "exportedFunction");
    EXPECT_EQ(symbol.Displacement, 0u);
    ASSERT_TRUE(crashExportAt(exportedFunction(), symbol));
    EXPECT_STREQ(symbol.Name, "exportedFunction");
    EXPECT_EQ(symbol.Displacement, 1u);
    // Not by that of another that stands before them, nor by those of other files.
    EXPECT_FALSE(crashExportAt(reinterpret_cast<uint64_t>(crashSeparator), symbol));
    EXPECT_FALSE(crashExportAt(
        reinterpret_cast<uint64_t>(GetProcAddress(GetModuleHandleA("kernel32"), "Sleep")), symbol));
    EXPECT_FALSE(crashExportAt(0, symbol));
}

TEST_F(win32CrashSystem, GoesOnWithoutTheSymbolsThatAnotherThreadHas)
{
    ASSERT_TRUE(crashSymbolsStart());
    EXPECT_TRUE(crashSymbolsMine());
    // A crash within the crash does not wait for itself.
    const ULONGLONG begun = GetTickCount64();
    EXPECT_FALSE(crashSymbolsStart());
    EXPECT_LT(GetTickCount64() - begun, 500u);
    std::thread([] {
        EXPECT_FALSE(crashSymbolsStart());
        EXPECT_FALSE(crashSymbolsMine());
    }).join();
    crashSymbolsEnd();
    EXPECT_FALSE(crashSymbolsMine());
    std::thread([] {
        EXPECT_TRUE(crashSymbolsStart());
        crashSymbolsEnd();
    }).join();
}

TEST_F(win32CrashSystem, TakesItsTurnWithTheSymbols)
{
    ASSERT_TRUE(crashSymbolsStart());
    std::atomic<bool> asks = false;
    std::thread second([&asks] {
        asks = true;
        EXPECT_TRUE(crashSymbolsStart());
        crashSymbolsEnd();
    });
    EXPECT_TRUE(contractAwait([&asks] { return asks.load(); }));
    crashSymbolsEnd();
    second.join();
}

TEST_F(win32CrashSystem, ReadsTheVersionOfAFile)
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("kernel32"), path, MAX_PATH);
    uint16_t version[4] = {};
    ASSERT_TRUE(crashFileVersion(path, version));
    EXPECT_GE(version[0], 6);
    EXPECT_GT(version[2], 0);
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    EXPECT_FALSE(crashFileVersion(path, version));
    EXPECT_FALSE(crashFileVersion("no such file.dll", version));
}

// Has this process take a key of the tests for that of the user.
class otherUser
{
public:
    otherUser()
    {
        RegCreateKeyExA(HKEY_CURRENT_USER, ContractKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &User,
                        nullptr);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, User), ERROR_SUCCESS);
    }
    ~otherUser()
    {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(User);
    }
    otherUser(const otherUser&) = delete;
    otherUser& operator=(const otherUser&) = delete;

    void Folder(DWORD type, const std::string& bytes)
    {
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER,
                        "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", 0, nullptr,
                        0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegSetValueExA(key, "Personal", 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
        RegCloseKey(key);
    }

private:
    HKEY User = nullptr;
};

std::string Documents(size_t room = 4095)
{
    std::string target(room, '?');
    const size_t length = crashDocuments(target.data(), room);
    if (length > 0) {
        EXPECT_EQ(target[length], '\0');
    }
    return target.substr(0, length);
}

TEST_F(win32CrashSystem, ReadsTheFolderForDocuments)
{
    struct folderRow {
        DWORD Type;
        std::string Stored;
        std::string Folder;
    };
    const folderRow rows[] = {
        {REG_SZ, std::string("C:\\a folder\0", 12), "C:\\a folder"},
        {REG_SZ, "C:\\not closed", "C:\\not closed"},
        {REG_SZ, std::string("C:\\cut\0off", 10), "C:\\cut"},
        {REG_SZ, std::string("D:\\\0", 4), "D:"},
        {REG_SZ, std::string("\0", 1), ""},
        {REG_SZ, "", ""},
        {REG_EXPAND_SZ, std::string("C:\\a folder\0", 12), ""},
        {REG_MULTI_SZ, std::string("C:\\a folder\0\0", 13), ""},
        {REG_DWORD, "abcd", ""},
    };
    otherUser user;
    EXPECT_EQ(Documents(), "");
    for (const folderRow& row : rows) {
        SCOPED_TRACE(row.Stored);
        user.Folder(row.Type, row.Stored);
        EXPECT_EQ(Documents(), row.Folder);
    }
}

TEST_F(win32CrashSystem, TakesNoFolderForDocumentsThatIsTooLong)
{
    otherUser user;
    for (const char* const end : {"", "\\"}) {
        const std::string folder = "C:\\" + std::string(91, 'x');
        user.Folder(REG_SZ, folder + end + '\0');
        const size_t length = folder.size() + std::string_view(end).size();
        EXPECT_EQ(Documents(length + 2), folder);
        for (const size_t room : {length + 1, length, size_t{10}, size_t{1}, size_t{0}})
            EXPECT_EQ(Documents(room), "") << room;
    }
}

TEST_F(win32CrashSystem, NeedsNoOtherRunOfTheProgramToTell)
{
    std::string words[] = {"skyreckoning.exe", crashWritten, "C:\\report"};
    char* given[] = {words[0].data(), words[1].data(), words[2].data()};
    const char* caption = nullptr;
    const char* text = nullptr;
    EXPECT_FALSE(crashMessageOf(3, given, caption, text));
}

TEST_F(win32CrashSystem, KeepsItsFileFromOthers)
{
    const std::u16string wide = contractFolder() + u"/report";
    const std::string path(wide.begin(), wide.end());
    const intptr_t file = crashFileCreate(path.c_str());
    ASSERT_NE(file, crashNoFile);
    EXPECT_EQ(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr),
              INVALID_HANDLE_VALUE);
    crashFileClose(file);
}

}  // namespace
