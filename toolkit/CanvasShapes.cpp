// Lines and areas.
#include "toolkit/Canvas.h"

#include <cmath>
#include <numbers>
#include <span>

namespace {

constexpr float radiansPerDegree = 0.017453F;

// The control points of a curve over `sweep` radians stand off its ends by this part of the radius.
float controlDistance(float sweep)
{
    return 4.0F / 3.0F * std::tan(sweep / 4.0F);
}

// Angles grow counter-clockwise on a screen whose y grows downward.
struct circle {
    drawPoint Centre;
    float Radius;

    drawPoint At(float angle) const
    {
        return {Centre.X + Radius * std::cos(angle), Centre.Y - Radius * std::sin(angle)};
    }

    // The point at the angle, moved along the tangent.
    drawPoint Beside(float angle, float distance) const
    {
        const drawPoint at = At(angle);
        return {at.X - Radius * distance * std::sin(angle), at.Y - Radius * distance * std::cos(angle)};
    }
};

}  // namespace

void Canvas::Line(float x1, float y1, float x2, float y2)
{
    BrushSelect(nullptr);
    if (Target)
        Target->DrawLine({x1, y1}, {x2, y2}, Brush, Pen());
}

void Canvas::Polyline(const drawPoint* points, size_t count, bool closed)
{
    if (count < 2)
        return;
    if (count == 2) {
        Line(points[0].X, points[0].Y, points[1].X, points[1].Y);
        return;
    }
    BrushSelect(nullptr);
    if (Target)
        Target->DrawFigure({points[0], {points + 1, count - 1}, {}, true, closed}, Brush, Pen());
}

void Canvas::Polygon(const drawPoint* points, size_t count, colour outline)
{
    if (count < 2)
        return;
    const drawFigure figure{points[0], {points + 1, count - 1}, {}, true, true};
    BrushSelect(nullptr);
    if (Target)
        Target->FillFigure(figure, Brush);
    if (outline == -1)
        return;
    Colour(outline);
    BrushSelect(nullptr);
    if (Target)
        Target->DrawFigure(figure, Brush, Pen());
}

void Canvas::Rectangle(float left, float top, float right, float bottom)
{
    BrushSelect(nullptr);
    if (Target)
        Target->DrawRectangle({left, top, right, bottom}, Brush, Pen());
}

void Canvas::RectFill(float left, float top, float right, float bottom)
{
    BrushSelect(nullptr);
    if (Target)
        Target->FillRectangle({left, top, right, bottom}, Brush);
}

void Canvas::EllipseFill(float x, float y, float rx, float ry)
{
    BrushSelect(nullptr);
    if (Target)
        Target->FillEllipse({x, y}, rx, ry, Brush);
}

// As curves and not as an arc of the system's: not every system that runs us draws those.
void Canvas::Arc(float x, float y, float radius, float start, float end)
{
    constexpr float turn = 2.0F * std::numbers::pi_v<float>;
    constexpr float quarter = turn / 4.0F;
    constexpr int quartersMost = 4;
    BrushSelect(nullptr);
    const float from = start * radiansPerDegree;
    float sweep = std::fmod((end - start) * radiansPerDegree, turn);
    if (sweep < 0)
        sweep += turn;
    if (!Target || !std::isfinite(sweep) || sweep == 0)
        return;

    const circle round{{x, y}, radius};
    const int pieces = std::clamp(static_cast<int>(std::ceil(sweep / quarter)), 1, quartersMost);
    const float step = sweep / static_cast<float>(pieces);
    const float distance = controlDistance(step);
    drawPoint curves[3 * quartersMost];
    drawPoint* next = curves;
    for (int i = 0; i < pieces; ++i) {
        const float begin = from + step * static_cast<float>(i);
        *next++ = round.Beside(begin, distance);
        *next++ = round.Beside(begin + step, -distance);
        *next++ = round.At(begin + step);
    }
    const auto used = std::span(curves).first(3 * static_cast<size_t>(pieces));
    Target->DrawFigure({round.At(from), {}, used, false, false}, Brush, Pen());
}
