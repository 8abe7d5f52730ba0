#include "tests/fakes/drawTarget.h"

#include "tests/fakes/core.h"
#include "tests/fakes/drawObjects.h"
#include "tests/fakes/fakeDraws.h"

#include <cmath>
#include <utility>

namespace fakes {

namespace {

class recordingTarget final : public drawTarget
{
public:
    recordingTarget(drawTargetKind kind, const std::string& name) : Kind(kind), Id(++drawn().Targets)
    {
        Prefix = " " + std::to_string(Id);
        constexpr const char* kinds[] = {"window", "compatible", "image"};
        drawNote(kinds[static_cast<unsigned>(kind)] + Prefix + " " + name);
    }

    void SetDPI(float x, float y) override { PixelUnits = x == 96 && y == 96; }
    void SetTransform(const drawMatrix& matrix) override
    {
        const drawMatrix none;
        const bool identity = matrix.M11 == none.M11 && matrix.M12 == none.M12 && matrix.M21 == none.M21 &&
                              matrix.M22 == none.M22 && matrix.DX == none.DX && matrix.DY == none.DY;
        if (identity && Identity)
            return;
        Identity = identity;
        const auto hundredths = [](float value) { return drawNumber(std::round(value * 100) / 100); };
        drawNote("transform" + Prefix + " " + hundredths(matrix.M11) + " " + hundredths(matrix.M12) + " " +
                 hundredths(matrix.M21) + " " + hundredths(matrix.M22) + " " + hundredths(matrix.DX) + " " +
                 hundredths(matrix.DY));
    }
    void SetGrayscaleText() override { Grayscale = true; }

    void Begin() override
    {
        if (Drawing)
            misuse("a target that draws was begun again");
        if (!PixelUnits || !Grayscale)
            misuse("a target was begun before its units and its text were set");
        Drawing = true;
        drawNote("begin" + Prefix);
    }
    uint32_t End() override
    {
        if (!Drawing)
            misuse("a target was ended that does not draw");
        if (Clips)
            misuse("a target was ended with clips");
        Drawing = false;
        drawNote("end" + Prefix);
        return std::exchange(drawn().EndCode, 0);
    }

    std::unique_ptr<drawBrush> MakeBrush(const drawColour& colour) override
    {
        if (drawFails("drawMakeBrush"))
            return nullptr;
        ++drawn().Brushes;
        return std::make_unique<fakeBrush>(colour);
    }
    void DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("line", drawPointText(from) + " " + drawPointText(to) + drawBrushText(brush) + drawPenText(pen));
    }
    void DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("rectangle", drawRectText(rect) + drawBrushText(brush) + drawPenText(pen));
    }
    void FillRectangle(const drawRect& rect, const drawBrush* brush) override
    {
        Draw("fill", drawRectText(rect) + drawBrushText(brush));
    }
    void FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush) override
    {
        Draw("ellipse", drawPointText(centre) + " " + drawSizeText(rx, ry) + drawBrushText(brush));
    }
    void DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("figure", FigureText(figure) + drawBrushText(brush) + drawPenText(pen));
    }
    void FillFigure(const drawFigure& figure, const drawBrush* brush) override
    {
        Draw("fillfigure", FigureText(figure) + drawBrushText(brush));
    }
    void DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush) override
    {
        if (!layout)
            return;
        const auto* text = static_cast<const fakeLayout*>(layout);
        Draw("text", text->Line(origin) + drawBrushText(brush) + text->SizeLine());
    }
    void DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                    const drawRect& source) override
    {
        if (!bitmap)
            return;
        Draw("bitmap", "of " + static_cast<const fakeBitmap*>(bitmap)->Source + " at " +
                           drawRectText(destination) + " from " + drawRectText(source) + " opacity " +
                           drawNumber(opacity));
    }
    void PushClip(const drawRect& clip) override
    {
        ++Clips;
        Draw("clip", drawRectText(clip));
    }
    void PopClip() override
    {
        if (Clips == 0)
            misuse("there was no clip to pop");
        --Clips;
        drawNote("unclip" + Prefix);
    }

    std::unique_ptr<drawBitmap> MakeBitmap(std::span<const uint32_t> pixels, uint32_t width, uint32_t height,
                                           bool alpha) override
    {
        if (drawFails("drawMakeBitmap") || pixels.size() < size_t{width} * height || width == 0 ||
            height == 0)
            return nullptr;
        return std::make_unique<fakeBitmap>(
            "pixels " + drawSizeText(static_cast<float>(width), static_cast<float>(height)) +
            (alpha ? " alpha" : ""));
    }
    std::unique_ptr<drawBitmap> MakeBitmap(const drawImage& image) override
    {
        if (drawFails("drawMakeBitmap"))
            return nullptr;
        return std::make_unique<fakeBitmap>(std::to_string(static_cast<const fakeImage&>(image).Target));
    }
    std::unique_ptr<drawTarget> MakeCompatible(float width, float height, uint32_t& error) override
    {
        if (drawFails("drawMakeCompatible")) {
            error = fakeDrawError;
            return nullptr;
        }
        return drawTargetMake(drawTargetKind::Compatible, "of" + Prefix + " " + drawSizeText(width, height))
            .Target;
    }
    std::unique_ptr<drawBitmap> Content() override
    {
        return Kind == drawTargetKind::Compatible ? std::make_unique<fakeBitmap>(std::to_string(Id))
                                                  : nullptr;
    }

    unsigned Number() const { return Id; }

private:
    void Draw(const char* what, const std::string& arguments) const
    {
        if (!Drawing)
            misuse("a target was drawn on that was not begun");
        drawNote(what + Prefix + " " + arguments);
    }
    static std::string FigureText(const drawFigure& figure)
    {
        std::vector<drawPoint>& points = drawn().Figure;
        points.assign(1, figure.Start);
        points.insert(points.end(), figure.Lines.begin(), figure.Lines.end());
        points.insert(points.end(), figure.Curves.begin(), figure.Curves.end());
        std::string text = std::to_string(1 + figure.Lines.size() + figure.Curves.size()) + " points";
        if (!figure.Curves.empty())
            text += " curved";
        if (figure.Closed)
            text += " closed";
        return text;
    }

    drawTargetKind Kind;
    unsigned Id;
    std::string Prefix;
    bool Drawing = false;
    bool PixelUnits = false;
    bool Grayscale = false;
    bool Identity = true;
    unsigned Clips = 0;
    drawCounted Count;
};

}  // namespace

drawTargetMade drawTargetMake(drawTargetKind kind, const std::string& name)
{
    auto target = std::make_unique<recordingTarget>(kind, name);
    const unsigned number = target->Number();
    return {std::move(target), number};
}

}  // namespace fakes
