// The drawing interface: a target and a small state of colour, pen and font. Every control is one.
//
// Coordinates are pixels of the target. Everything is called on the interface thread. Between BeginDraw and
// EndDraw operations draw; without a target they do nothing. Brushes and text formats live from one BeginDraw
// to its EndDraw; colour, pen, font and size survive everything.
#pragma once

#include "platform/draw.h"
#include "toolkit/colour.h"
#include "toolkit/pixmap.h"
#include "toolkit/rect.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Flags of Canvas::Text. Without a bit for a direction the text is centred in it.
enum : unsigned {
    textLeft = 1,
    textRight = 2,
    textTop = 4,
    textBottom = 8,
    textTrim = 16,       // what does not fit becomes an ellipsis; of a path the file's name stays
    textUnclipped = 32,  // may reach out of the rectangle
    textThick = 64,      // with a halo of one pixel in its own colour
};

// Bits of Canvas::FontStyle.
enum : uint8_t {
    fontBold = 1,
    fontItalic = 2,
};

enum class canvasLine : uint8_t {
    Solid = 0,
    Dashed = 1,
};

// What kind of target a canvas has, or had last.
enum class canvasTarget : uint8_t {
    Window = 0,
    Compatible = 1,  // off-screen, for composition onto a parent
    Image = 2,       // off-screen, in memory
};

constexpr char canvasFontName[] = "Segoe UI";
constexpr float canvasFontSize = 11.0F;

class Canvas
{
public:
    struct textSize {
        uint32_t Height = 0;  // pixels, rounded up
        uint32_t Width = 0;
    };

    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Makes sure that there is a current brush: `brush`, which belongs to someone else, or one of this
    // canvas's for its colour and opacity. With a current brush nothing happens.
    virtual void BrushSelect(drawBrush* brush);

    // The same for the text format; a given one is shared.
    virtual void FontSelect(const std::shared_ptr<drawTextFormat>& format);

    virtual ~Canvas();

    virtual void Colour(colour value);

    // Back to the state without a target. Clips that were left are popped.
    virtual void DeviceRelease();

    // Draws UTF-8. A length of 0 is up to the terminator; an empty text draws nothing. Without textUnclipped
    // nothing is drawn outside of `area` and, where it is given, of `clip`.
    virtual void Text(const rect& area, const char* text, unsigned flags, size_t length = 0,
                      const rect* clip = nullptr);

    virtual std::string FontName() const;

    colour Colour() const { return Colour_; }
    float Opacity() const { return Opacity_; }
    float FontSize() const { return FontSize_; }
    uint8_t FontStyle() const { return FontStyle_; }
    uint32_t Width() const { return Width_; }
    uint32_t Height() const { return Height_; }
    bool HasTarget() const { return Target != nullptr; }
    canvasTarget TargetKind() const { return TargetKind_; }

    void Opacity(float value);  // kept in 0.0 to 1.0
    void LineStyle(canvasLine value) { LineStyle_ = value; }
    void PenWidth(float value) { PenWidth_ = value; }
    void FontSize(float value);  // the em, in pixels before scaling
    void FontStyle(uint8_t bits);
    void SetFontName(const std::string& name);  // empty for the default
    void FontCopy(const Canvas& other);
    void TextAngle(float radians) { TextAngle_ = radians; }

    void Line(float x1, float y1, float x2, float y2);
    void Polyline(const drawPoint* points, size_t count, bool closed);

    // Filled with the current colour; an outline other than -1 becomes the current colour.
    void Polygon(const drawPoint* points, size_t count, colour outline = -1);
    void Rectangle(float left, float top, float right, float bottom);
    void RectFill(float left, float top, float right, float bottom);
    void EllipseFill(float x, float y, float rx, float ry);

    // Degrees, counter-clockwise from the right; from `start` on to `end`.
    void Arc(float x, float y, float radius, float start, float end);

    // The size of what Text would draw, turned by the text angle. Needs no target.
    textSize TextSize(const char* text, size_t length = 0);

    void ClipPush(const rect& clip);
    void ClipPop();  // without a clip a fatal fault

    // Copies from a canvas with an off-screen target; with a transparency of 0.0 to 1.0.
    void CanvasDraw(int32_t x, int32_t y, const Canvas& source, float transparency, int32_t sourceX,
                    int32_t sourceY, uint32_t width, uint32_t height);

    // Draws the part of an image of any depth; with `alpha` its pixels have one, multiplied already.
    void PixmapDraw(const pixmap& image, float x, float y, float width, float height, float sourceX,
                    float sourceY, float sourceWidth, float sourceHeight, bool alpha);

    // Makes a target of the surface's size where there is none: compatible with the parent's, or in memory.
    void TargetCreate(Canvas* parent);
    void BeginDraw();
    void EndDraw();

    // The size of the surface. It is that of the next target.
    void SurfaceSize(uint32_t width, uint32_t height);

    // The pixels of a target in memory, 0x00RRGGBB, rows from the top. False without one.
    bool Read(std::vector<uint32_t>& pixels) const;

protected:
    struct cachedBrush {
        std::unique_ptr<drawBrush> Brush;
        colour Colour = 0;
        float Opacity = 0;
    };

    drawPen Pen() const { return {PenWidth_, LineStyle_ == canvasLine::Dashed}; }
    void TargetTake(std::unique_ptr<drawTarget> target, canvasTarget kind);
    void PopAllClips();

    // Makes the current format at this size where there is none.
    void FormatMake(float size);

    drawBrush* Brush = nullptr;  // one of the cache, or of an ancestor's
    std::vector<cachedBrush> BrushCache;
    uint64_t ClipDepth = 0;
    std::unique_ptr<drawTarget> Target;
    std::shared_ptr<drawTextFormat> TextFormat;
    std::unique_ptr<drawImage> Image;  // of a target in memory
    canvasTarget TargetKind_ = canvasTarget::Image;
    uint8_t FontStyle_ = 0;
    canvasLine LineStyle_ = canvasLine::Solid;
    colour Colour_ = 0;
    float Opacity_ = 1.0F;
    float FontSize_ = canvasFontSize;
    uint32_t Height_ = 0;
    float PenWidth_ = 1.0F;
    float TextAngle_ = 0.0F;
    uint32_t Width_ = 0;
    std::string FontName_;  // empty for the default

private:
    void DrawTextAt(const rect& area, const drawTextLayout& layout, unsigned flags);
    std::unique_ptr<drawBitmap> Content(drawTarget& destination) const;
};
