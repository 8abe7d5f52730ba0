// Drawing by Direct2D: what all targets have in common.
#pragma once

#include "platform/win32/screen/drawTools.h"

class directBrush : public drawBrush
{
public:
    explicit directBrush(comPointer<ID2D1SolidColorBrush> brush) : Brush(std::move(brush)) {}
    const comPointer<ID2D1SolidColorBrush> Brush;
};

class directTarget : public drawTarget
{
public:
    directTarget(const drawTools& tools, comPointer<ID2D1RenderTarget> target)
        : Tools(tools), Target(std::move(target))
    {}

    void SetDPI(float x, float y) override;
    void SetTransform(const drawMatrix& matrix) override;
    void SetGrayscaleText() override;

    void Begin() override;
    uint32_t End() override;

    std::unique_ptr<drawBrush> MakeBrush(const drawColour& colour) override;
    void DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen) override;
    void DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen) override;
    void FillRectangle(const drawRect& rect, const drawBrush* brush) override;
    void FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush) override;
    void DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen) override;
    void FillFigure(const drawFigure& figure, const drawBrush* brush) override;
    void DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush) override;
    void DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                    const drawRect& source) override;

    void PushClip(const drawRect& clip) override;
    void PopClip() override;

    std::unique_ptr<drawBitmap> MakeBitmap(std::span<const uint32_t> pixels, uint32_t width, uint32_t height,
                                           bool alpha) override;
    std::unique_ptr<drawBitmap> MakeBitmap(const drawImage& image) override;
    std::unique_ptr<drawTarget> MakeCompatible(float width, float height, uint32_t& error) override;
    std::unique_ptr<drawBitmap> Content() override { return nullptr; }

private:
    comPointer<ID2D1PathGeometry> Path(const drawFigure& figure) const;
    ID2D1StrokeStyle* Style(const drawPen& pen) const;

    drawTools Tools;
    comPointer<ID2D1RenderTarget> Target;
};
