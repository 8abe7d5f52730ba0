// Lines, borders, arcs and areas.
#include "tools/gallery/gallery.h"

namespace {

class shapeSheet final : public gallerySheet
{
public:
    shapeSheet(ctrlWindow* parent, int32_t x, int32_t y) : gallerySheet(parent, x, y, 320, 330, "Shapes") {}

private:
    void PaintSheet() override
    {
        PaintLines();
        PaintBorders();
        PaintArcs();
        PaintAreas();
    }

    void PaintLines()
    {
        float y = 30.5F;
        for (const float width : {1.0F, 2.0F, 4.0F}) {
            PenWidth(width);
            Colour(theme::FaceText);
            LineStyle(canvasLine::Solid);
            Line(10, y, 150, y);
            LineStyle(canvasLine::Dashed);
            Line(166, y, 306, y);
            y += 10;
        }
        LineStyle(canvasLine::Solid);
        PenWidth(1.0F);
        for (int i = 0; i <= 8; ++i)
            Line(10, 62, 10 + static_cast<float>(i) * 17.5F, 92);
        PenWidth(2.0F);
        const drawPoint zigzag[] = {{170, 90}, {190, 64}, {210, 90}, {230, 64}, {250, 90}, {270, 64}};
        Polyline(zigzag, 6, false);
    }

    void PaintBorders()
    {
        constexpr ctrlBorder styles[] = {ctrlBorder::Flat, ctrlBorder::Raised, ctrlBorder::Sunken,
                                         ctrlBorder::Etched, ctrlBorder::Ridged};
        int32_t left = 10;
        for (const ctrlBorder style : styles) {
            int32_t top = 102;
            for (const uint32_t width : {1U, 2U, 3U}) {
                rect box{left, top, left + 52, top + 26};
                Border(style, width, theme::Face, box);
                Colour(theme::WindowBackground);
                RectFillClipped(box);
                top += 32;
            }
            left += 61;
        }
    }

    void PaintArcs()
    {
        struct arc {
            float Start, End;
        };
        constexpr arc arcs[] = {{0, 90}, {45, 270}, {180, 360}, {300, 60}, {0, 360}};
        float x = 36;
        PenWidth(2.0F);
        Colour(theme::Highlight);
        for (const arc& one : arcs) {
            Arc(x, 228, 22, one.Start, one.End);
            x += 61;
        }
    }

    void PaintAreas()
    {
        const drawPoint triangle[] = {{10, 320}, {40, 266}, {70, 320}};
        Colour(theme::Face);
        PenWidth(1.0F);
        Polygon(triangle, 3, theme::Highlight);
        const drawPoint star[] = {{110, 262}, {126, 322}, {82, 284}, {138, 284}, {94, 322}};
        Colour(theme::LabelTextSecond);
        Polygon(star, 5);
        Colour(theme::FaceText);
        EllipseFill(180, 292, 30, 20);
        Opacity(0.5F);
        Colour(0x0000FF);
        RectFill(170, 280, 240, 322);
        Opacity(1.0F);
        Colour(theme::ListBorder);
        Rectangle(250.5F, 266.5F, 300.5F, 320.5F);
        rect arrow = PaintRect;
        PaintRect = {256, 280, 296, 306};
        Colour(theme::FaceText);
        DropArrow();
        PaintRect = arrow;
    }
};

}  // namespace

ctrlWindow* galleryShapes(ctrlWindow* parent, int32_t x, int32_t y)
{
    return new shapeSheet(parent, x, y);
}
