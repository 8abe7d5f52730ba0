// Traces as a canvas gets them: clipped to the plot in whole numbers, and in as few pieces as give the same
// picture.
#pragma once

#include "toolkit/Canvas.h"

#include <cstdint>
#include <vector>

// Points are counted in parts of a pixel.
constexpr int32_t graphUnit = 16;

struct graphPoint {
    int32_t X = 0;
    int32_t Y = 0;
    bool operator==(const graphPoint&) const = default;
};

// Cuts a line to what lies within `bounds`, edges included, first to the left and right, then to the top and
// bottom. False when nothing does. Coordinates are within 2^30 of 0.
bool graphClip(graphPoint& from, graphPoint& to, const rect& bounds);

// A place along or across the plot, in units; far outside ends at a limit which a line can still reach.
int32_t graphUnits(double pixels);

// Pixels before scaling, in the scale of the window that is being painted.
int32_t graphScaled(uint32_t pixels);

// The plot of a trace: its box, and which way its samples run.
struct graphPlot {
    rect Box{};  // pixels
    bool Upright = false;

    int32_t Along(double pixels) const;  // from the first pixel of the axis of the samples, in units
    int32_t Value(double pixels) const;  // from the lowest pixel of the axis of the values, in units
    rect Bounds() const;                 // in units
    graphPoint At(int32_t along, int32_t value) const;
};

// Draws lines from point to point.
class graphPen
{
public:
    graphPen(Canvas& canvas, const graphPlot& plot) : Target(canvas), Plot(plot) {}

    void LineTo(int32_t along, int32_t value);
    void Break();  // the next point begins anew
    void Finish();

private:
    void Segment(graphPoint from, graphPoint to);
    bool TurnsSharply(const graphPoint& to) const;

    Canvas& Target;
    const graphPlot Plot;
    bool Down = false;
    graphPoint Last{};  // unclipped
    std::vector<graphPoint> Path;
    std::vector<drawPoint> Drawn;
};

// Draws columns of one pixel, each from one value to another, as one area where they follow each other.
class graphColumns
{
public:
    graphColumns(Canvas& canvas, const graphPlot& plot) : Target(canvas), Plot(plot) {}

    // The next column; `low` is not above `high`.
    void Add(int32_t pixel, int32_t low, int32_t high);
    void Finish();

private:
    struct column {
        int32_t Pixel, Low, High;  // values in units, on the screen
    };

    Canvas& Target;
    const graphPlot Plot;
    std::vector<column> Row;
    std::vector<drawPoint> Drawn;
};
