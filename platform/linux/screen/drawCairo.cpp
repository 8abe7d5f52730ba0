#include "platform/linux/screen/drawCairo.h"

#include <algorithm>
#include <cmath>

double drawCoordinate(float value)
{
    constexpr float Furthest = 1 << 21;
    return std::isnan(value) ? 0.0 : static_cast<double>(std::clamp(value, -Furthest, Furthest));
}

drawRect drawTransformed(const cairo_matrix_t& matrix, const drawRect& rect)
{
    const float xs[] = {rect.Left, rect.Right};
    const float ys[] = {rect.Top, rect.Bottom};
    drawRect box = {INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (const float cornerX : xs) {
        for (const float cornerY : ys) {
            double x = drawCoordinate(cornerX);
            double y = drawCoordinate(cornerY);
            cairo_matrix_transform_point(&matrix, &x, &y);
            box.Left = std::min(box.Left, static_cast<float>(x));
            box.Top = std::min(box.Top, static_cast<float>(y));
            box.Right = std::max(box.Right, static_cast<float>(x));
            box.Bottom = std::max(box.Bottom, static_cast<float>(y));
        }
    }
    return box;
}

drawRect drawIntersection(const drawRect& one, const drawRect& other)
{
    return {std::max(one.Left, other.Left), std::max(one.Top, other.Top), std::min(one.Right, other.Right),
            std::min(one.Bottom, other.Bottom)};
}
