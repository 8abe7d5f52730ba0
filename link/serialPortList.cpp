#include "link/serialPortList.h"

#include "platform/comm.h"

#include <algorithm>

namespace {

std::string textOf(const commText& text)
{
    return text.Found && text.IsText ? text.Text : std::string();
}

// A device without a port, or with one of another kind such as a printer's, has no name here.
std::string serialNameOf(const commDevice& device)
{
    const std::string name = textOf(device.Port);
    const std::string_view prefix = commNamePrefix();
    return name.compare(0, prefix.size(), prefix) == 0 ? name : std::string();
}

// Each text that is missing takes the next best one.
void complete(serialPortInfo& info)
{
    if (info.description.empty())
        info.description = info.friendlyName;
    if (!info.friendlyName.empty())
        return;
    if (info.description.empty())
        info.description = info.port;
    info.friendlyName = info.description;
}

}  // namespace

serialPortList::serialPortList()
{
    for (unsigned deviceClass = 0; deviceClass < commClasses; deviceClass++) {
        for (const commDevice& device : commDevices(deviceClass)) {
            serialPortInfo info{serialNameOf(device), textOf(device.Description),
                                textOf(device.FriendlyName)};
            if (info.port.empty())
                continue;
            complete(info);
            push_back(std::move(info));
        }
    }
    std::sort(begin(), end(),
              [](const serialPortInfo& a, const serialPortInfo& b) { return a.port < b.port; });
}
