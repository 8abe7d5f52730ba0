// The monitors, what taskbars leave of them, and how dense their pixels are.
#pragma once

#include "platform/linux/screen/windowDisplay.h"
#include "platform/window.h"

#include <cstdint>
#include <string_view>
#include <vector>

// All of them, the first one first; never empty while the connection holds.
std::vector<windowArea> windowMonitorAreas(const windowDisplay& display);

// What taskbars leave of a monitor.
windowArea windowWorkArea(const windowDisplay& display, const windowArea& monitor);

// The monitor that most of `area` is on; null when none of it is on any. An area without a size is a point.
const windowArea* windowMonitorOf(const std::vector<windowArea>& monitors, const windowArea& area);

// The dots per inch that the desktop asks of its programs; 96 when it does not say.
uint32_t windowDesktopDPI(const windowDisplay& display);
uint32_t windowDPIOfResources(std::string_view resources);
