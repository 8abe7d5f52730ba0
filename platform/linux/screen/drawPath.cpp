#include "platform/linux/screen/drawPath.h"

#include <cmath>
#include <iterator>

namespace {

constexpr double MiterLimit = 10;

void strokeDashes(cairo_t* context, double width, bool closed)
{
    const double dashes[] = {2 * width, 2 * width};
    cairo_set_dash(context, dashes, std::size(dashes), 0);
    cairo_set_line_cap(context, closed ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    if (closed) {
        cairo_stroke(context);
        return;
    }
    // The caps are round where a dash ends and flat where the line does: flat dashes first, then a dot at
    // each of their ends, except for that at the line's beginning.
    cairo_stroke_preserve(context);
    const double dots[] = {0, 2 * width};
    cairo_set_dash(context, dots, std::size(dots), width / 1024);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_stroke(context);
}

}  // namespace

void drawUseColour(cairo_t* context, const drawColour& colour)
{
    cairo_set_source_rgba(context, static_cast<double>(colour.Red), static_cast<double>(colour.Green),
                          static_cast<double>(colour.Blue), static_cast<double>(colour.Alpha));
}

void drawAddFigure(cairo_t* context, const drawFigure& figure)
{
    const auto x = [](const drawPoint& point) { return drawCoordinate(point.X); };
    const auto y = [](const drawPoint& point) { return drawCoordinate(point.Y); };
    cairo_move_to(context, x(figure.Start), y(figure.Start));
    for (const drawPoint& point : figure.Lines)
        cairo_line_to(context, x(point), y(point));
    for (size_t at = 0; at + 3 <= figure.Curves.size(); at += 3) {
        const drawPoint& first = figure.Curves[at];
        const drawPoint& second = figure.Curves[at + 1];
        const drawPoint& end = figure.Curves[at + 2];
        cairo_curve_to(context, x(first), y(first), x(second), y(second), x(end), y(end));
    }
    if (figure.Closed)
        cairo_close_path(context);
}

void drawStroke(cairo_t* context, const drawPen& pen, const drawColour& colour, bool closed)
{
    const double width = drawCoordinate(pen.Width);
    if (!(width > 0)) {
        cairo_new_path(context);
        return;
    }
    cairo_set_line_width(context, width);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
    cairo_set_miter_limit(context, MiterLimit);
    if (!pen.Dashed) {
        cairo_set_dash(context, nullptr, 0, 0);
        cairo_set_line_cap(context, CAIRO_LINE_CAP_BUTT);
        cairo_stroke(context);
    } else if (closed || colour.Alpha >= 1) {
        strokeDashes(context, width, closed);
    } else {
        // Dashes and dots overlap, which a translucent colour would show.
        cairo_push_group(context);
        drawUseColour(context, {colour.Red, colour.Green, colour.Blue, 1});
        strokeDashes(context, width, closed);
        cairo_pop_group_to_source(context);
        cairo_paint_with_alpha(context, static_cast<double>(colour.Alpha));
    }
}

float drawReach(const drawPen& pen, size_t corners)
{
    const float width = std::isfinite(pen.Width) ? std::abs(pen.Width) : 0.0f;
    return corners > 0 ? width * static_cast<float>(MiterLimit) / 2 : width;
}
