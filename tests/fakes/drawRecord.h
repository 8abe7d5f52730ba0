// The record of what is drawn on the fake platform, and how its lines are worded.
#pragma once

#include "platform/draw.h"

#include <cstddef>
#include <string>
#include <vector>

namespace fakes {

struct drawState {
    std::vector<std::string> Record;
    unsigned Targets = 0;
    size_t Brushes = 0;
    size_t Formats = 0;
    size_t Objects = 0;
    unsigned EndCode = 0;
    std::vector<drawPoint> Figure;
};

drawState& drawn();

// Appends a line to the record.
void drawNote(std::string line);

// Whether the script lets this call fail.
bool drawFails(const char* function);

std::string drawNumber(float value);
std::string drawPointText(drawPoint point);
std::string drawRectText(const drawRect& rect);
std::string drawSizeText(float width, float height);
std::string drawPenText(const drawPen& pen);

// Counts itself among the objects as long as it lives.
struct drawCounted {
    drawCounted() { ++drawn().Objects; }
    ~drawCounted() { --drawn().Objects; }
    drawCounted(const drawCounted&) = delete;
    drawCounted& operator=(const drawCounted&) = delete;
};

}  // namespace fakes
