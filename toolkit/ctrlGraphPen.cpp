#include "toolkit/ctrlGraphPen.h"

#include "toolkit/ctrlToolkit.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double farthest = 100000;  // pixels
constexpr double middle = 0.5;       // of a pixel
constexpr int32_t halfUnit = graphUnit / 2;

// The part of a line that lies between two bounds of one coordinate; the other follows in proportion.
bool clipBetween(int32_t& from, int32_t& fromOther, int32_t& to, int32_t& toOther, int32_t least,
                 int32_t most)
{
    if ((from < least && to < least) || (from > most && to > most))
        return false;
    const int64_t length = int64_t{to} - from;
    const int64_t other = int64_t{toOther} - fromOther;
    const int32_t start = from;
    const int32_t startOther = fromOther;
    const auto cut = [&](int32_t& at, int32_t& atOther) {
        const int32_t bound = std::clamp(at, least, most);
        if (bound == at)
            return;
        at = bound;
        atOther = static_cast<int32_t>(startOther + other * (bound - start) / length);
    };
    cut(from, fromOther);
    cut(to, toOther);
    return true;
}

float pixelsOf(int32_t units)
{
    return static_cast<float>(units) / static_cast<float>(graphUnit);
}

}  // namespace

bool graphClip(graphPoint& from, graphPoint& to, const rect& bounds)
{
    return clipBetween(from.X, from.Y, to.X, to.Y, bounds.Left, bounds.Right) &&
           clipBetween(from.Y, from.X, to.Y, to.X, bounds.Top, bounds.Bottom);
}

int32_t graphUnits(double pixels)
{
    return static_cast<int32_t>(std::lround(std::clamp(pixels, -farthest, farthest) * graphUnit));
}

int32_t graphScaled(uint32_t pixels)
{
    return static_cast<int32_t>(std::lround(static_cast<float>(pixels) * Toolkit().Scale));
}

// --- The plot

int32_t graphPlot::Along(double pixels) const
{
    return graphUnits(Upright ? Box.Bottom - middle - pixels : Box.Left + middle + pixels);
}

int32_t graphPlot::Value(double pixels) const
{
    return graphUnits(Upright ? Box.Left + middle + pixels : Box.Bottom - middle - pixels);
}

rect graphPlot::Bounds() const
{
    return {Box.Left * graphUnit, Box.Top * graphUnit, Box.Right * graphUnit, Box.Bottom * graphUnit};
}

graphPoint graphPlot::At(int32_t along, int32_t value) const
{
    return Upright ? graphPoint{value, along} : graphPoint{along, value};
}

// --- Lines

void graphPen::LineTo(int32_t along, int32_t value)
{
    const graphPoint to = Plot.At(along, value);
    if (Down)
        Segment(Last, to);
    Last = to;
    Down = true;
}

void graphPen::Break()
{
    Down = false;
}

void graphPen::Segment(graphPoint from, graphPoint to)
{
    if (!graphClip(from, to, Plot.Bounds()))
        return;
    if (Path.empty() || Path.back() != from || TurnsSharply(to)) {
        Finish();
        Path.push_back(from);
    }
    if (to != from)
        Path.push_back(to);
}

// A mitre would stick out of a sharp corner and show a value that no sample has: the figure ends there.
bool graphPen::TurnsSharply(const graphPoint& to) const
{
    if (Path.size() < 2)
        return false;
    const graphPoint& at = Path.back();
    const graphPoint& before = Path[Path.size() - 2];
    const double x1 = at.X - before.X;
    const double y1 = at.Y - before.Y;
    const double x2 = to.X - at.X;
    const double y2 = to.Y - at.Y;
    return x1 * x2 + y1 * y2 < 0;
}

void graphPen::Finish()
{
    Drawn.clear();
    for (const graphPoint& one : Path)
        Drawn.push_back({pixelsOf(one.X), pixelsOf(one.Y)});
    Target.Polyline(Drawn.data(), Drawn.size(), false);
    Path.clear();
}

// --- Columns

void graphColumns::Add(int32_t pixel, int32_t low, int32_t high)
{
    const rect bounds = Plot.Bounds();
    const int32_t least = Plot.Upright ? bounds.Left : bounds.Top;
    const int32_t most = Plot.Upright ? bounds.Right : bounds.Bottom;
    const int32_t first = Plot.Upright ? Plot.Box.Top : Plot.Box.Left;
    const int32_t last = Plot.Upright ? Plot.Box.Bottom : Plot.Box.Right;
    if (low > most || high < least || pixel < first || pixel >= last)
        return;
    if (!Row.empty() && std::abs(Row.back().Pixel - pixel) != 1)
        Finish();
    // A line is a pixel wide, so a column reaches half of one beyond its ends.
    Row.push_back({pixel, std::max(low - halfUnit, least), std::min(high + halfUnit, most)});
}

void graphColumns::Finish()
{
    Drawn.clear();
    const auto point = [this](int32_t pixel, int32_t value) {
        const graphPoint at = Plot.At(pixel * graphUnit, value);
        Drawn.push_back({pixelsOf(at.X), pixelsOf(at.Y)});
    };
    // There along the one end of the columns, and back along the other.
    const int32_t back = Row.size() > 1 && Row[1].Pixel < Row[0].Pixel ? 1 : 0;
    for (const column& one : Row) {
        point(one.Pixel + back, one.Low);
        point(one.Pixel + 1 - back, one.Low);
    }
    for (size_t at = Row.size(); at-- > 0;) {
        const column& one = Row[at];
        point(one.Pixel + 1 - back, one.High);
        point(one.Pixel + back, one.High);
    }
    Target.Polygon(Drawn.data(), Drawn.size());
    Row.clear();
}
