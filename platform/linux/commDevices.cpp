#include "platform/linux/commDevices.h"

#include "platform/linux/fileSystem.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <map>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t LongestText = 4096;

std::vector<std::string> NamesIn(const std::string& folder)
{
    std::vector<std::string> names;
    DIR* const open = opendir(folder.c_str());
    if (open == nullptr)
        return names;
    while (const dirent* const entry = readdir(open)) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    closedir(open);
    return names;
}

bool Exists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

std::string RealPath(const std::string& path)
{
    char real[PATH_MAX];
    return realpath(path.c_str(), real) == nullptr ? std::string() : std::string(real);
}

// An attribute of a device: one line, without its end.
std::string Attribute(const std::string& path)
{
    const fileDescriptor file = fileOpenDescriptor(path, O_RDONLY);
    char bytes[LongestText];
    const ssize_t got = file.IsOpen() ? read(file.Get(), bytes, sizeof(bytes)) : 0;
    std::string text(bytes, static_cast<size_t>(std::max<ssize_t>(got, 0)));
    text.resize(std::min(text.find('\n'), text.size()));
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

// The folder of the thing that is plugged in, some floors above the port that is in it; empty when it has no
// such number, as ports on the board have none.
std::string PluggedIn(const std::string& port)
{
    std::string folder = RealPath(port + "/device");
    while (folder.size() > 1 && !Exists(folder + "/idVendor"))
        folder = fileFolderOf(folder);
    return folder.size() > 1 ? folder : std::string();
}

commText TextOf(const std::string& text)
{
    return {!text.empty(), !text.empty(), text};
}

// What the thing says of itself, such as "maker product (ttyACM0)".
commDevice DeviceOf(const std::string& port, const std::string& name, const std::string& idOfPort)
{
    commDevice device{TextOf(name), {}, {}};
    const std::string folder = PluggedIn(port);
    const std::string product = folder.empty() ? folder : Attribute(folder + "/product");
    const std::string maker = folder.empty() ? folder : Attribute(folder + "/manufacturer");
    device.Description = TextOf(product);
    const std::string whole = maker.empty() || product.empty() ? product : maker + ' ' + product;
    const std::string& known = whole.empty() ? idOfPort : whole;
    if (!known.empty())
        device.FriendlyName = TextOf(known + " (" + name + ')');
    return device;
}

// A driver makes ports for sockets on the board that may be empty; those have the type 0.
bool IsThere(const std::string& port)
{
    return Exists(port + "/device") && Attribute(port + "/type") != "0";
}

// The links by what they lead to, which is named as the port is.
std::map<std::string, std::string> IdsOfPorts(const std::string& folder)
{
    std::map<std::string, std::string> ids;
    for (const std::string& id : NamesIn(folder)) {
        const std::string target = RealPath(std::string(folder).append("/").append(id));
        ids.emplace(target.substr(target.rfind('/') + 1), id);
    }
    return ids;
}

bool IsTerminal(const std::string& path)
{
    struct stat target = {};
    return stat(path.c_str(), &target) == 0 && S_ISCHR(target.st_mode);
}

std::vector<std::string> VirtualPorts(const std::string& folder)
{
    std::vector<std::string> names;
    if (folder.empty())
        return names;
    for (const std::string& name : NamesIn(folder)) {
        if (name.starts_with(commNamePrefix()) && IsTerminal(std::string(folder).append("/").append(name)))
            names.push_back(name);
    }
    return names;
}

}  // namespace

commPlaces commSystemPlaces()
{
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    const bool isSet = runtime != nullptr && runtime[0] == '/';
    return {"/sys/class/tty", "/dev/serial/by-id",
            isSet ? std::string(runtime) + "/skyreckoning" : std::string()};
}

std::vector<commDevice> commDevicesIn(const commPlaces& places)
{
    std::vector<commDevice> devices;
    const std::vector<std::string> virtualPorts = VirtualPorts(places.Virtual);
    std::map<std::string, std::string> ids = IdsOfPorts(places.ById);
    for (const std::string& name : NamesIn(places.Terminals)) {
        const std::string port = places.Terminals + '/' + name;
        // Opening that name leads to the virtual port.
        const bool hidden = std::find(virtualPorts.begin(), virtualPorts.end(), name) != virtualPorts.end();
        if (!hidden && IsThere(port))
            devices.push_back(DeviceOf(port, name, ids[name]));
    }
    for (const std::string& name : virtualPorts)
        devices.push_back({TextOf(name), TextOf("Virtual port"), TextOf("Virtual port (" + name + ')')});
    return devices;
}
