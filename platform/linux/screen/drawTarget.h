// Drawing on an image surface: what all targets have in common.
#pragma once

#include "platform/linux/screen/drawBitmap.h"

#include <vector>

class cairoBrush : public drawBrush
{
public:
    explicit cairoBrush(const drawColour& colour) : Colour(colour) {}
    const drawColour Colour;
};

class cairoTarget : public drawTarget
{
public:
    explicit cairoTarget(cairoOwned<cairo_surface_t> surface);

    void SetDPI(float x, float y) override;
    void SetTransform(const drawMatrix& matrix) override;
    void SetGrayscaleText() override {}  // it always is

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

protected:
    // Pixels of the surface may have changed in here.
    virtual void Touched(const drawRect&) {}

    cairo_surface_t* Surface() const { return Surface_.get(); }
    bool IsDrawing() const { return Drawing; }

private:
    bool Use(const drawBrush* brush);
    void Touch(const drawRect& box, float reach);
    void TouchFigure(const drawFigure& figure, float reach);
    void ApplyMatrix();
    void ApplyClip();

    cairoOwned<cairo_surface_t> Surface_;
    cairoOwned<cairo_t> Context;
    drawMatrix Matrix;
    float ScaleX = 1;
    float ScaleY = 1;
    std::vector<drawRect> Clips;  // in pixels of the surface, each within the one before
    bool Drawing = false;
    bool Flat = false;  // the matrix leaves nothing to see
};
