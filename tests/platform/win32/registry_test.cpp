#include "platform/registry.h"

#include "foundations/settings/settingsReg.h"
#include "tests/platform/contract.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using win32Registry = contractTest;

// Runs the system's own registry program and gives what it says; its exit code says whether it found what it
// was asked for.
std::string Reg(const std::string& arguments, bool expected = true)
{
    const std::filesystem::path output = std::filesystem::path(contractFolder()) / "output";
    // The shell takes the outer quotes off.
    const std::string command = "\"reg " + arguments + " > \"" + output.string() + "\" 2>&1\"";
    EXPECT_EQ(std::system(command.c_str()) == 0, expected) << command;
    std::ifstream file(output);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string HiveKey(const std::string& below = {})
{
    return "\"HKEY_CURRENT_USER\\" + std::string(ContractKey) + below + '"';
}

bool Set(const std::string& path, const std::string& name, registryType type, const std::string& bytes)
{
    registryKey* const key = registryCreate(path);
    EXPECT_NE(key, nullptr);
    const bool done = registrySet(key, name, type, bytes.data(), static_cast<uint32_t>(bytes.size()));
    registryClose(key);
    return done;
}

std::string Query(const std::string& path, const std::string& name, registryType expected)
{
    registryKey* const key = registryOpen(path);
    if (key == nullptr)
        return "(no key)";
    std::string bytes(1000, '?');
    uint32_t size = static_cast<uint32_t>(bytes.size());
    registryType type = {};
    EXPECT_EQ(registryQuery(key, name, type, bytes.data(), size), registryStatus::Ok);
    EXPECT_EQ(type, expected);
    registryClose(key);
    bytes.resize(size);
    return bytes;
}

// An ASCII text as the registry stores it.
std::string Stored(const std::string& text, bool terminated = true)
{
    std::string bytes;
    for (const char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return terminated ? bytes + std::string(2, '\0') : bytes;
}

TEST_F(win32Registry, WritesWhatTheSystemsOwnProgramReads)
{
    struct valueRow {
        const char* Name;
        registryType Type;
        std::string Bytes;
        const char* Shown;
    };
    const valueRow rows[] = {
        {"Text", registryType::Text, Stored("a text of ours"), "a text of ours"},
        {"Number", registryType::Dword, std::string("\x2A\x01\0\0", 4), "0x12a"},
        {"Bytes", registryType::Binary, std::string("\0\x01\xFE\xFF", 4), "0001FEFF"},
    };
    for (const valueRow& row : rows) {
        SCOPED_TRACE(row.Name);
        ASSERT_TRUE(Set(ContractKey, row.Name, row.Type, row.Bytes));
        const std::string said = Reg("query " + HiveKey() + " /v " + row.Name);
        EXPECT_NE(said.find(row.Name), std::string::npos) << said;
        EXPECT_NE(said.find(row.Shown), std::string::npos) << said;
    }
}

TEST_F(win32Registry, ReadsWhatTheSystemsOwnProgramWrites)
{
    Reg("add " + HiveKey("\\below") + " /v Text /d \"one of theirs\" /f");
    Reg("add " + HiveKey("\\below") + " /v Number /t REG_DWORD /d 305419896 /f");
    Reg("add " + HiveKey("\\below") + " /v Bytes /t REG_BINARY /d 00ff10 /f");
    const std::string path = std::string(ContractKey) + "\\below";
    EXPECT_EQ(Query(path, "Text", registryType::Text), Stored("one of theirs"));
    EXPECT_EQ(Query(path, "Number", registryType::Dword), "\x78\x56\x34\x12");
    EXPECT_EQ(Query(path, "Bytes", registryType::Binary), std::string("\0\xFF\x10", 3));
}

TEST_F(win32Registry, SettingsAreReadByTheSystemsOwnProgram)
{
    settingsReg store;
    store.Root = ContractKey;
    const std::string port = "COM3 \xC2\xB5";
    const int32_t number = 4003;
    store.SetText("Serial port", &port, 1);
    store.SetInt32("Server port", &number, 1);
    EXPECT_NE(Reg("query " + HiveKey() + " /v \"Serial port\"").find("COM3"), std::string::npos);
    EXPECT_NE(Reg("query " + HiveKey() + " /v \"Server port\"").find("0xfa3"), std::string::npos);
}

TEST_F(win32Registry, SettingsReadWhatTheSystemsOwnProgramWrites)
{
    Reg("add " + HiveKey() + " /v \"Serial port\" /d COM7 /f");
    Reg("add " + HiveKey() + " /v \"Server port\" /t REG_DWORD /d 5000 /f");
    Reg("add " + HiveKey() + " /v \"Server enabled\" /t REG_DWORD /d 1 /f");
    settingsReg store;
    store.Root = ContractKey;
    std::string port;
    int32_t number = 0;
    bool enabled = false;
    store.GetText("Serial port", &port, 1);
    store.GetInt32("Server port", &number, 1);
    store.GetBool("Server enabled", &enabled, 1);
    EXPECT_EQ(port, "COM7");
    EXPECT_EQ(number, 5000);
    EXPECT_TRUE(enabled);
}

TEST_F(win32Registry, RemovesForTheSystemsOwnProgramToo)
{
    ASSERT_TRUE(Set(ContractKey, "Text", registryType::Text, Stored("text")));
    ASSERT_TRUE(Set(std::string(ContractKey) + "\\a\\b", "Text", registryType::Text, Stored("text")));
    registryKey* const key = registryCreate(ContractKey);
    EXPECT_TRUE(registryDelete(key, "Text"));
    registryClose(key);
    Reg("query " + HiveKey() + " /v Text", false);
    Reg("query " + HiveKey("\\a\\b"));
    EXPECT_TRUE(registryDeleteTree(ContractKey));
    Reg("query " + HiveKey(), false);
}

TEST_F(win32Registry, StoresNothingBehindAText)
{
    // What follows the text in memory looks like its terminating zero.
    const std::string memory = Stored("abc") + std::string(8, '\0');
    registryKey* const key = registryCreate(ContractKey);
    ASSERT_NE(key, nullptr);
    for (const uint32_t size : {1u, 2u, 3u, 4u, 5u, 6u}) {
        SCOPED_TRACE(size);
        ASSERT_TRUE(registrySet(key, "Text", registryType::Text, memory.data(), size));
        EXPECT_EQ(Query(ContractKey, "Text", registryType::Text), memory.substr(0, size));
    }
    registryClose(key);
}

TEST_F(win32Registry, TakesNoNameThatTheSystemWouldCut)
{
    ASSERT_TRUE(Set(ContractKey, "Text", registryType::Text, Stored("text")));
    const std::string path = ContractKey;
    for (const std::string& rest : {std::string("\0x", 2), std::string("\xFF"), std::string("\xC3")}) {
        EXPECT_EQ(registryOpen(path + rest), nullptr);
        EXPECT_EQ(registryCreate(path + rest), nullptr);
        EXPECT_FALSE(registryDeleteTree(path + rest));
        registryKey* const writer = registryCreate(path);
        EXPECT_FALSE(registrySet(writer, "Text" + rest, registryType::Text, "", 0));
        EXPECT_FALSE(registryDelete(writer, "Text" + rest));
        registryClose(writer);
    }
    EXPECT_EQ(Query(ContractKey, "Text", registryType::Text), Stored("text"));
}

TEST_F(win32Registry, OpensNotEverythingForAnEmptyPath)
{
    EXPECT_EQ(registryOpen(""), nullptr);
    EXPECT_EQ(registryCreate(""), nullptr);
}

TEST_F(win32Registry, NamesTheHive)
{
    EXPECT_EQ(registryPlace(), "HKEY_CURRENT_USER");
}

}  // namespace
