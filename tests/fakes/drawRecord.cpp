#include "tests/fakes/drawRecord.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakeDraws.h"

#include <cstdio>
#include <utility>

namespace fakes {

drawState& drawn()
{
    // Never destroyed: the toolkit's own static objects may let go of targets after it.
    static auto* one = new drawState;
    return *one;
}

void drawNote(std::string line)
{
    drawn().Record.push_back(std::move(line));
}

bool drawFails(const char* function)
{
    return ask(function).Scripted;
}

std::string drawNumber(float value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

std::string drawPointText(drawPoint point)
{
    return drawNumber(point.X) + "," + drawNumber(point.Y);
}

std::string drawRectText(const drawRect& rect)
{
    return drawNumber(rect.Left) + "," + drawNumber(rect.Top) + "," + drawNumber(rect.Right) + "," +
           drawNumber(rect.Bottom);
}

std::string drawSizeText(float width, float height)
{
    return drawNumber(width) + "x" + drawNumber(height);
}

std::string drawPenText(const drawPen& pen)
{
    return " width " + drawNumber(pen.Width) + (pen.Dashed ? " dashed" : "");
}

void resetDraw()
{
    drawn().Record.clear();
    drawn().Targets = 0;
    drawn().Brushes = 0;
    drawn().Formats = 0;
    drawn().EndCode = 0;
    drawn().Figure.clear();
}

}  // namespace fakes

std::vector<std::string> fakeDraws()
{
    return fakes::drawn().Record;
}

std::vector<drawPoint> fakeFigure()
{
    return fakes::drawn().Figure;
}

void fakeClearDraws()
{
    fakes::drawn().Record.clear();
}

size_t fakeDrawCount(const std::string& beginning)
{
    size_t count = 0;
    for (const std::string& line : fakes::drawn().Record)
        count += line.rfind(beginning, 0) == 0;
    return count;
}

size_t fakeBrushesMade()
{
    return fakes::drawn().Brushes;
}

size_t fakeFormatsMade()
{
    return fakes::drawn().Formats;
}

size_t fakeDrawObjects()
{
    return fakes::drawn().Objects;
}

void fakeEndGives(unsigned code)
{
    fakes::drawn().EndCode = code;
}
