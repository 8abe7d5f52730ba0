// What is to be seen on the screen. Each system defines this function once.
#pragma once

#include "platform/window.h"

#include <cstdint>
#include <vector>

// 0x00RRGGBB, rows from the top; empty where the screen cannot be read.
std::vector<uint32_t> screenPixels(const windowArea& area);
