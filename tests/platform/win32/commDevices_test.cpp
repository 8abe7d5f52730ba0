#include "platform/comm.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>
#include <windows.h>

namespace {

constexpr wchar_t Devices[] = L"System\\CurrentControlSet\\Enum\\USB\\VID_1546&PID_01A8";
constexpr wchar_t Ports[] = L"{4D36E978-E325-11CE-BFC1-08002BE10318}";
constexpr wchar_t BusDescription[] = L"Properties\\{540B947E-8B40-45BC-A8A2-6A0B894CBDA2}\\0004";
constexpr DWORD PropertyText = 0xFFFF0012;

// Devices that are in the registry alone, which a system that has real ones lets nobody write.
class win32CommDevices : public testing::Test
{
protected:
    void SetUp() override
    {
        HKEY key = nullptr;
        const bool writable = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr &&
                              RegCreateKeyW(HKEY_LOCAL_MACHINE, Devices, &key) == ERROR_SUCCESS;
        if (!writable)
            GTEST_SKIP() << "devices cannot be made up here";
        RegCloseKey(key);
    }

    void TearDown() override { RegDeleteTreeW(HKEY_LOCAL_MACHINE, Devices); }

    static void Set(const std::wstring& path, const wchar_t* name, DWORD type, std::wstring_view text)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, path.c_str(), &key), ERROR_SUCCESS);
        const std::wstring ended(text);
        EXPECT_EQ(RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(ended.c_str()),
                                 static_cast<DWORD>((ended.size() + 1) * sizeof(wchar_t))),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    // The devices that the test made, of all that there are.
    static std::vector<commDevice> Listed()
    {
        std::vector<commDevice> ours;
        for (const commDevice& device : commDevices(0)) {
            if (device.Port.Text.starts_with("COM2") || device.FriendlyName.Text.starts_with("Made up"))
                ours.push_back(device);
        }
        return ours;
    }
};

TEST_F(win32CommDevices, TellsWhatTheSystemKnows)
{
    const std::wstring one = std::wstring(Devices) + L"\\1";
    Set(one, L"ClassGUID", REG_SZ, Ports);
    Set(one, L"FriendlyName", REG_SZ, L"Made up \u00E9 (COM251)");
    Set(one + L"\\Device Parameters", L"PortName", REG_SZ, L"COM251");
    Set(one + L"\\" + BusDescription, nullptr, PropertyText, L"GNSS receiver");
    const std::vector<commDevice> devices = Listed();
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(devices[0].Port.Text, "COM251");
    EXPECT_EQ(devices[0].Description.Text, "GNSS receiver");
    EXPECT_EQ(devices[0].FriendlyName.Text, "Made up \xC3\xA9 (COM251)");
    for (const commText& text : {devices[0].Port, devices[0].Description, devices[0].FriendlyName})
        EXPECT_TRUE(text.Found && text.IsText);
}

TEST_F(win32CommDevices, ListsDevicesOfWhichItKnowsLittle)
{
    const std::wstring one = std::wstring(Devices) + L"\\2";
    Set(one, L"ClassGUID", REG_SZ, Ports);
    Set(one, L"FriendlyName", REG_SZ, L"Made up");
    Set(one + L"\\Device Parameters", L"PortName", REG_BINARY, L"COM252");
    const std::vector<commDevice> devices = Listed();
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_TRUE(devices[0].Port.Found);
    EXPECT_FALSE(devices[0].Port.IsText);
    EXPECT_EQ(devices[0].Port.Text, "");
    EXPECT_FALSE(devices[0].Description.Found);
    EXPECT_EQ(devices[0].FriendlyName.Text, "Made up");
}

}  // namespace
