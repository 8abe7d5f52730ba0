// What the system knows of the devices that have ports.
#include "platform/comm.h"

#include "platform/win32/text.h"

#include <cstring>
#include <windows.h>
// These need the one above.
#include <devpropdef.h>
#include <setupapi.h>

namespace {

// Ports; modems with ports of their own; adapters that plug in several.
constexpr GUID Classes[commClasses] = {
    {0x4D36E978, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}},
    {0x28A57F37, 0x88BD, 0x4753, {0xBA, 0xA0, 0xB0, 0x13, 0xAA, 0x31, 0xC5, 0x1B}},
    {0x13B66731, 0x2122, 0x4DAC, {0x83, 0x1E, 0xC6, 0x0E, 0x71, 0x3F, 0xF3, 0x06}},
};

// The description that the device itself gave to the bus.
constexpr DEVPROPKEY BusDescription = {
    {0x540B947E, 0x8B40, 0x45BC, {0xA8, 0xA2, 0x6A, 0x0B, 0x89, 0x4C, 0xBD, 0xA2}}, 4};

class deviceList
{
public:
    explicit deviceList(const GUID& ofClass)
        : Value(SetupDiGetClassDevsW(&ofClass, nullptr, nullptr, DIGCF_PRESENT))
    {}
    ~deviceList()
    {
        if (IsOpen())
            SetupDiDestroyDeviceInfoList(Value);
    }
    deviceList(const deviceList&) = delete;
    deviceList& operator=(const deviceList&) = delete;

    bool IsOpen() const { return Value != INVALID_HANDLE_VALUE; }
    HDEVINFO Get() const { return Value; }

private:
    const HDEVINFO Value;
};

// Reads a property with `query`, which takes a buffer, its size in bytes, and where to put the type and the
// size that is needed. The stored text may lack its end.
template <typename question>
commText propertyOf(DWORD typeOfText, const question& query)
{
    constexpr size_t MostUnits = 4096;
    char16_t buffer[MostUnits] = {};
    DWORD type = 0;
    DWORD size = 0;
    if (!query(reinterpret_cast<BYTE*>(buffer), DWORD{sizeof(buffer) - sizeof(char16_t)}, type, size))
        return {};
    if (type != typeOfText)
        return {true, false, {}};
    return {true, true, textTo8(std::u16string_view(buffer, size / sizeof(char16_t)))};
}

commText portOf(const deviceList& list, SP_DEVINFO_DATA& device)
{
    HKEY const key =
        SetupDiOpenDevRegKey(list.Get(), &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
    if (key == INVALID_HANDLE_VALUE)
        return {};
    const commText port = propertyOf(REG_SZ, [&](BYTE* buffer, DWORD room, DWORD& type, DWORD& size) {
        size = room;
        return RegQueryValueExW(key, L"PortName", nullptr, &type, buffer, &size) == ERROR_SUCCESS;
    });
    RegCloseKey(key);
    return port;
}

commText descriptionOf(const deviceList& list, SP_DEVINFO_DATA& device)
{
    return propertyOf(DEVPROP_TYPE_STRING, [&](BYTE* buffer, DWORD room, DWORD& type, DWORD& size) {
        return SetupDiGetDevicePropertyW(list.Get(), &device, &BusDescription, &type, buffer, room, &size,
                                         0) != FALSE;
    });
}

commText friendlyNameOf(const deviceList& list, SP_DEVINFO_DATA& device)
{
    return propertyOf(REG_SZ, [&](BYTE* buffer, DWORD room, DWORD& type, DWORD& size) {
        return SetupDiGetDeviceRegistryPropertyW(list.Get(), &device, SPDRP_FRIENDLYNAME, &type, buffer, room,
                                                 &size) != FALSE;
    });
}

}  // namespace

std::vector<commDevice> commDevices(unsigned deviceClass)
{
    std::vector<commDevice> devices;
    if (deviceClass >= commClasses)
        return devices;
    const deviceList list(Classes[deviceClass]);
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof(device);
    for (DWORD index = 0; list.IsOpen() && SetupDiEnumDeviceInfo(list.Get(), index, &device) != FALSE;
         ++index)
        devices.push_back({portOf(list, device), descriptionOf(list, device), friendlyNameOf(list, device)});
    return devices;
}
