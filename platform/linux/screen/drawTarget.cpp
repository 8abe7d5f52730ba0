#include "platform/linux/screen/drawTarget.h"

#include "platform/linux/screen/drawPath.h"
#include "platform/linux/screen/drawText.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <numbers>

namespace {

constexpr float PlainDPI = 96;

// The surface of another target, which changes with it.
class compatibleTarget final : public cairoTarget
{
public:
    using cairoTarget::cairoTarget;
    std::unique_ptr<drawBitmap> Content() override
    {
        return std::make_unique<cairoBitmap>(cairoOwned<cairo_surface_t>(cairo_surface_reference(Surface())));
    }
};

uint32_t pixelsIn(float units, float scale)
{
    constexpr float Most = 1 << 30;
    const float pixels = std::ceil(units * scale);
    return pixels > 0 ? static_cast<uint32_t>(std::min(pixels, Most)) : 0;
}

}  // namespace

cairoTarget::cairoTarget(cairoOwned<cairo_surface_t> surface)
    : Surface_(std::move(surface)), Context(cairo_create(Surface_.get()))
{}

void cairoTarget::SetDPI(float x, float y)
{
    ScaleX = x > 0 ? x / PlainDPI : 1;
    ScaleY = y > 0 ? y / PlainDPI : 1;
    ApplyMatrix();
}

void cairoTarget::SetTransform(const drawMatrix& matrix)
{
    Matrix = matrix;
    ApplyMatrix();
}

void cairoTarget::ApplyMatrix()
{
    const auto number = [](float value, float scale) {
        return static_cast<double>(value) * static_cast<double>(scale);
    };
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, number(Matrix.M11, ScaleX), number(Matrix.M12, ScaleY),
                      number(Matrix.M21, ScaleX), number(Matrix.M22, ScaleY), number(Matrix.DX, ScaleX),
                      number(Matrix.DY, ScaleY));
    // A context that once got a matrix without inverse draws no more.
    const double area = matrix.xx * matrix.yy - matrix.xy * matrix.yx;
    Flat = !std::isnormal(area) || !std::isfinite(matrix.x0) || !std::isfinite(matrix.y0);
    if (!Flat)
        cairo_set_matrix(Context.get(), &matrix);
}

void cairoTarget::Begin()
{
    if (cairo_status(Context.get()) != CAIRO_STATUS_SUCCESS)
        Context.reset(cairo_create(Surface_.get()));
    Clips.clear();
    ApplyMatrix();
    ApplyClip();
    Drawing = true;
}

uint32_t cairoTarget::End()
{
    if (!Drawing)
        return EINVAL;
    Drawing = false;
    Clips.clear();
    cairo_surface_flush(Surface_.get());
    return cairo_status(Context.get()) == CAIRO_STATUS_SUCCESS ? 0 : ENOMEM;
}

bool cairoTarget::Use(const drawBrush* brush)
{
    if (brush == nullptr || !Drawing || Flat)
        return false;
    drawUseColour(Context.get(), static_cast<const cairoBrush*>(brush)->Colour);
    return true;
}

void cairoTarget::Touch(const drawRect& box, float reach)
{
    cairo_matrix_t matrix;
    cairo_get_matrix(Context.get(), &matrix);
    const drawRect within = {box.Left - reach, box.Top - reach, box.Right + reach, box.Bottom + reach};
    const drawRect pixels = drawTransformed(matrix, within);
    Touched(Clips.empty() ? pixels : drawIntersection(pixels, Clips.back()));
}

void cairoTarget::TouchFigure(const drawFigure& figure, float reach)
{
    drawRect box = {figure.Start.X, figure.Start.Y, figure.Start.X, figure.Start.Y};
    for (const std::span<const drawPoint> points : {figure.Lines, figure.Curves}) {
        for (const drawPoint& point : points) {
            box = {std::min(box.Left, point.X), std::min(box.Top, point.Y), std::max(box.Right, point.X),
                   std::max(box.Bottom, point.Y)};
        }
    }
    Touch(box, reach);
}

std::unique_ptr<drawBrush> cairoTarget::MakeBrush(const drawColour& colour)
{
    return std::make_unique<cairoBrush>(colour);
}

void cairoTarget::DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen)
{
    DrawFigure({from, std::span(&to, 1), {}, false, false}, brush, pen);
}

void cairoTarget::DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen)
{
    const drawPoint corners[] = {{rect.Right, rect.Top}, {rect.Right, rect.Bottom}, {rect.Left, rect.Bottom}};
    DrawFigure({{rect.Left, rect.Top}, corners, {}, false, true}, brush, pen);
}

void cairoTarget::FillRectangle(const drawRect& rect, const drawBrush* brush)
{
    if (!Use(brush))
        return;
    const cairo_rectangle_t box = drawBox(rect);
    cairo_rectangle(Context.get(), box.x, box.y, box.width, box.height);
    cairo_fill(Context.get());
    Touch(rect, 0);
}

void cairoTarget::FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush)
{
    const double width = drawCoordinate(rx);
    const double height = drawCoordinate(ry);
    if (!(width > 0 && height > 0) || !Use(brush))
        return;
    cairo_save(Context.get());
    cairo_translate(Context.get(), drawCoordinate(centre.X), drawCoordinate(centre.Y));
    cairo_scale(Context.get(), width, height);
    cairo_arc(Context.get(), 0, 0, 1, 0, 2 * std::numbers::pi);
    cairo_restore(Context.get());
    cairo_fill(Context.get());
    Touch({centre.X - rx, centre.Y - ry, centre.X + rx, centre.Y + ry}, 0);
}

void cairoTarget::DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen)
{
    if (!Use(brush))
        return;
    drawAddFigure(Context.get(), figure);
    drawStroke(Context.get(), pen, static_cast<const cairoBrush*>(brush)->Colour, figure.Closed);
    TouchFigure(figure, drawReach(pen, figure.Lines.size() + figure.Curves.size()));
}

void cairoTarget::FillFigure(const drawFigure& figure, const drawBrush* brush)
{
    if (!figure.Filled || !Use(brush))
        return;
    drawAddFigure(Context.get(), figure);
    cairo_set_fill_rule(Context.get(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(Context.get());
    cairo_set_fill_rule(Context.get(), CAIRO_FILL_RULE_WINDING);
    TouchFigure(figure, 0);
}

void cairoTarget::DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush)
{
    if (layout == nullptr || !Use(brush))
        return;
    const pangoText* text = static_cast<const pangoText*>(layout);
    text->Draw(Context.get(), origin);
    const drawRect reach = text->Reach();
    Touch({origin.X + reach.Left, origin.Y + reach.Top, origin.X + reach.Right, origin.Y + reach.Bottom}, 0);
}

void cairoTarget::DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                             const drawRect& source)
{
    if (bitmap == nullptr || !Drawing || Flat)
        return;
    if (static_cast<const cairoBitmap*>(bitmap)->Draw(Context.get(), destination, opacity, source))
        Touch(destination, 0);
}

void cairoTarget::PushClip(const drawRect& clip)
{
    if (!Drawing)
        return;
    cairo_matrix_t matrix;
    cairo_get_matrix(Context.get(), &matrix);
    const drawRect pixels = drawTransformed(matrix, clip);
    Clips.push_back(Clips.empty() ? pixels : drawIntersection(pixels, Clips.back()));
    ApplyClip();
}

void cairoTarget::PopClip()
{
    if (Clips.empty())
        return;
    Clips.pop_back();
    ApplyClip();
}

void cairoTarget::ApplyClip()
{
    cairo_reset_clip(Context.get());
    if (Clips.empty())
        return;
    cairo_matrix_t matrix;
    cairo_get_matrix(Context.get(), &matrix);
    cairo_identity_matrix(Context.get());
    const cairo_rectangle_t box = drawBox(Clips.back());
    cairo_rectangle(Context.get(), box.x, box.y, std::max(box.width, 0.0), std::max(box.height, 0.0));
    cairo_clip(Context.get());
    cairo_set_matrix(Context.get(), &matrix);
}

std::unique_ptr<drawBitmap> cairoTarget::MakeBitmap(std::span<const uint32_t> pixels, uint32_t width,
                                                    uint32_t height, bool alpha)
{
    return drawCopy(pixels, width, height, alpha);
}

std::unique_ptr<drawBitmap> cairoTarget::MakeBitmap(const drawImage& image)
{
    return drawCopy(static_cast<const cairoImage&>(image));
}

std::unique_ptr<drawTarget> cairoTarget::MakeCompatible(float width, float height, uint32_t& error)
{
    cairoOwned<cairo_surface_t> surface =
        drawMakeSurface(CAIRO_FORMAT_ARGB32, pixelsIn(width, ScaleX), pixelsIn(height, ScaleY));
    if (!surface) {
        error = ENOMEM;
        return nullptr;
    }
    return std::make_unique<compatibleTarget>(std::move(surface));
}
