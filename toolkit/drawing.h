// The system's drawing, of which there is one for the program.
#pragma once

#include "platform/draw.h"

// Null when the system has none; the program then runs without a picture, and says so when a target fails.
// Interface thread.
drawSystem* Drawing();
