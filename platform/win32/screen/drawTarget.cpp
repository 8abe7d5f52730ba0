#include "platform/win32/screen/drawTarget.h"

#include "platform/win32/screen/drawBitmap.h"
#include "platform/win32/screen/drawText.h"

#include <vector>

namespace {

// The surface of another target, which changes with it.
class compatibleTarget final : public directTarget
{
public:
    compatibleTarget(const drawTools& tools, const comPointer<ID2D1BitmapRenderTarget>& target)
        : directTarget(tools, target), Bitmap(target)
    {}

    std::unique_ptr<drawBitmap> Content() override
    {
        comPointer<ID2D1Bitmap> content;
        if (FAILED(Bitmap->GetBitmap(content.Put())))
            return nullptr;
        return std::make_unique<directBitmap>(std::move(content));
    }

private:
    comPointer<ID2D1BitmapRenderTarget> Bitmap;
};

ID2D1Brush* nativeOf(const drawBrush* brush)
{
    return static_cast<const directBrush*>(brush)->Brush.Get();
}

void addLines(ID2D1GeometrySink* sink, std::span<const drawPoint> points)
{
    std::vector<D2D1_POINT_2F> lines;
    lines.reserve(points.size());
    for (const drawPoint& point : points)
        lines.push_back(drawNative(point));
    sink->AddLines(lines.data(), static_cast<UINT32>(lines.size()));
}

void addCurves(ID2D1GeometrySink* sink, std::span<const drawPoint> points)
{
    std::vector<D2D1_BEZIER_SEGMENT> curves;
    curves.reserve(points.size() / 3);
    for (size_t at = 0; at + 3 <= points.size(); at += 3)
        curves.push_back({drawNative(points[at]), drawNative(points[at + 1]), drawNative(points[at + 2])});
    sink->AddBeziers(curves.data(), static_cast<UINT32>(curves.size()));
}

}  // namespace

void directTarget::SetDPI(float x, float y)
{
    Target->SetDpi(x, y);
}

void directTarget::SetTransform(const drawMatrix& matrix)
{
    D2D1_MATRIX_3X2_F native = {};
    native._11 = matrix.M11;
    native._12 = matrix.M12;
    native._21 = matrix.M21;
    native._22 = matrix.M22;
    native._31 = matrix.DX;
    native._32 = matrix.DY;
    Target->SetTransform(&native);
}

void directTarget::SetGrayscaleText()
{
    Target->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
}

void directTarget::Begin()
{
    Target->BeginDraw();
}

uint32_t directTarget::End()
{
    return drawCode(Target->EndDraw(nullptr, nullptr));
}

std::unique_ptr<drawBrush> directTarget::MakeBrush(const drawColour& colour)
{
    D2D1_COLOR_F native = {};
    native.r = colour.Red;
    native.g = colour.Green;
    native.b = colour.Blue;
    native.a = colour.Alpha;
    comPointer<ID2D1SolidColorBrush> brush;
    Target->CreateSolidColorBrush(&native, nullptr, brush.Put());
    return brush ? std::make_unique<directBrush>(std::move(brush)) : nullptr;
}

ID2D1StrokeStyle* directTarget::Style(const drawPen& pen) const
{
    return pen.Dashed ? Tools.Dashes.Get() : nullptr;
}

void directTarget::DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen)
{
    if (brush != nullptr)
        Target->DrawLine(drawNative(from), drawNative(to), nativeOf(brush), pen.Width, Style(pen));
}

void directTarget::DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen)
{
    const D2D1_RECT_F native = drawNative(rect);
    if (brush != nullptr)
        Target->DrawRectangle(&native, nativeOf(brush), pen.Width, Style(pen));
}

void directTarget::FillRectangle(const drawRect& rect, const drawBrush* brush)
{
    const D2D1_RECT_F native = drawNative(rect);
    if (brush != nullptr)
        Target->FillRectangle(&native, nativeOf(brush));
}

void directTarget::FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush)
{
    const D2D1_ELLIPSE native = {drawNative(centre), rx, ry};
    if (brush != nullptr)
        Target->FillEllipse(&native, nativeOf(brush));
}

comPointer<ID2D1PathGeometry> directTarget::Path(const drawFigure& figure) const
{
    comPointer<ID2D1PathGeometry> path;
    comPointer<ID2D1GeometrySink> sink;
    if (FAILED(Tools.Drawing->CreatePathGeometry(path.Put())) || FAILED(path->Open(sink.Put())))
        return {};
    sink->BeginFigure(drawNative(figure.Start),
                      figure.Filled ? D2D1_FIGURE_BEGIN_FILLED : D2D1_FIGURE_BEGIN_HOLLOW);
    if (!figure.Lines.empty())
        addLines(sink.Get(), figure.Lines);
    if (figure.Curves.size() >= 3)
        addCurves(sink.Get(), figure.Curves);
    sink->EndFigure(figure.Closed ? D2D1_FIGURE_END_CLOSED : D2D1_FIGURE_END_OPEN);
    if (FAILED(sink->Close()))
        return {};
    return path;
}

void directTarget::DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen)
{
    if (brush == nullptr)
        return;
    if (const comPointer<ID2D1PathGeometry> path = Path(figure))
        Target->DrawGeometry(path.Get(), nativeOf(brush), pen.Width, Style(pen));
}

void directTarget::FillFigure(const drawFigure& figure, const drawBrush* brush)
{
    if (brush == nullptr)
        return;
    if (const comPointer<ID2D1PathGeometry> path = Path(figure))
        Target->FillGeometry(path.Get(), nativeOf(brush), nullptr);
}

void directTarget::DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush)
{
    if (layout == nullptr || brush == nullptr)
        return;
    Target->DrawTextLayout(drawNative(origin), static_cast<const directText*>(layout)->Get(), nativeOf(brush),
                           D2D1_DRAW_TEXT_OPTIONS_NONE);
}

void directTarget::DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                              const drawRect& source)
{
    if (bitmap == nullptr)
        return;
    const D2D1_RECT_F to = drawNative(destination);
    const D2D1_RECT_F from = drawNative(source);
    Target->DrawBitmap(static_cast<const directBitmap*>(bitmap)->Bitmap.Get(), &to, opacity,
                       D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, &from);
}

void directTarget::PushClip(const drawRect& clip)
{
    const D2D1_RECT_F native = drawNative(clip);
    Target->PushAxisAlignedClip(&native, Target->GetAntialiasMode());
}

void directTarget::PopClip()
{
    Target->PopAxisAlignedClip();
}

std::unique_ptr<drawBitmap> directTarget::MakeBitmap(std::span<const uint32_t> pixels, uint32_t width,
                                                     uint32_t height, bool alpha)
{
    return drawCopy(Target.Get(), pixels, width, height, alpha);
}

std::unique_ptr<drawBitmap> directTarget::MakeBitmap(const drawImage& image)
{
    return drawCopy(Target.Get(), static_cast<const directImage&>(image));
}

std::unique_ptr<drawTarget> directTarget::MakeCompatible(float width, float height, uint32_t& error)
{
    // A size of nothing would mean that of this target.
    const D2D1_SIZE_F size = {std::max(width, 1.0f), std::max(height, 1.0f)};
    comPointer<ID2D1BitmapRenderTarget> target;
    const HRESULT result = Target->CreateCompatibleRenderTarget(
        &size, nullptr, nullptr, D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS_NONE, target.Put());
    if (FAILED(result)) {
        error = drawCode(result);
        return nullptr;
    }
    return std::make_unique<compatibleTarget>(Tools, target);
}
