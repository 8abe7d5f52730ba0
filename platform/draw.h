// Drawing: targets, brushes, paths, images and text.
//
// All of it belongs to the interface thread. Units are pixels from the target's top left corner, y downward;
// a pixel covers the square from its coordinates to those plus 1. What a call makes is owned by the caller
// and may outlive what made it, but can then no longer be used. A null pointer is a failure; drawing with a
// null brush, layout or bitmap does nothing.
#pragma once

#include "platform/windowMessages.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

struct drawPoint {
    float X = 0, Y = 0;
};

struct drawRect {
    float Left = 0, Top = 0, Right = 0, Bottom = 0;
};

// x' = x M11 + y M21 + DX, y' = x M12 + y M22 + DY.
struct drawMatrix {
    float M11 = 1, M12 = 0, M21 = 0, M22 = 1, DX = 0, DY = 0;
};

// Each 0.0 to 1.0; the colour is not multiplied with Alpha.
struct drawColour {
    float Red = 0, Green = 0, Blue = 0, Alpha = 1;
};

// One figure of a path: from Start along Lines, or along Curves (cubic Bézier curves: two control points and
// an end for each). One of the two is empty.
struct drawFigure {
    drawPoint Start;
    std::span<const drawPoint> Lines;
    std::span<const drawPoint> Curves;
    bool Filled = false;  // the figure has an inside, for FillFigure
    bool Closed = false;
};

enum class drawAlign : uint8_t {
    Near = 0,  // left, top
    Far = 1,   // right, bottom
    Centre = 2,
};

// The pen of lines: its width in pixels, centred on the line, ends flat, corners mitred up to 10 times the
// width. Dashes are 2 widths long with gaps of 2 widths, their ends round.
struct drawPen {
    float Width = 1;
    bool Dashed = false;
};

class drawBrush
{
public:
    virtual ~drawBrush() = default;
};

class drawBitmap
{
public:
    virtual ~drawBitmap() = default;
};

class drawTextFormat
{
public:
    virtual ~drawTextFormat() = default;
};

struct drawTextSize {
    float Width = 0;  // with blanks at the end
    float Height = 0;
};

// One text, laid out in a box. Until told otherwise it is left, top, and wraps.
class drawTextLayout
{
public:
    virtual ~drawTextLayout() = default;
    virtual void SetAlign(drawAlign horizontal, drawAlign vertical) = 0;
    virtual void SetNoWrap() = 0;  // lines end only where the text says so

    // A line that is too long is cut between characters and ends in an ellipsis, behind which what follows
    // the last `delimiter` stays, if it fits.
    virtual void SetTrimming(char delimiter) = 0;

    // 0 by 0 for an empty text.
    virtual drawTextSize Size() const = 0;
};

// Pixels in memory that a target can draw to: 32 bits, blue before green before red, the fourth unused.
class drawImage
{
public:
    virtual ~drawImage() = default;

    // Copies all rows, from the top, without gaps. False when they cannot be had or the span is too short.
    virtual bool Read(std::span<uint32_t> pixels) const = 0;
};

// What End gives when the target is gone and everything made for it must be made again.
constexpr uint32_t drawTargetLost = 0x8899000C;

// Draws between Begin and End. Several may be between the two at a time, as a child's surface and its
// parent's are.
class drawTarget
{
public:
    virtual ~drawTarget() = default;

    virtual void SetDPI(float x, float y) = 0;  // 96 makes units pixels
    virtual void SetTransform(const drawMatrix& matrix) = 0;
    virtual void SetGrayscaleText() = 0;  // anti-aliased without colour

    virtual void Begin() = 0;
    virtual uint32_t End() = 0;  // a code of the system, 0 for success; of a window, shows what was drawn

    // The brush can be used on this target and on those that were made compatible with it.
    virtual std::unique_ptr<drawBrush> MakeBrush(const drawColour& colour) = 0;

    virtual void DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen) = 0;
    virtual void DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen) = 0;
    virtual void FillRectangle(const drawRect& rect, const drawBrush* brush) = 0;
    virtual void FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush) = 0;
    virtual void DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen) = 0;
    virtual void FillFigure(const drawFigure& figure, const drawBrush* brush) = 0;
    virtual void DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush) = 0;

    // Scales linearly from `source`, in pixels of the bitmap, to `destination`.
    virtual void DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                            const drawRect& source) = 0;

    // Clips nest; each cuts the one before. A Begin starts without.
    virtual void PushClip(const drawRect& clip) = 0;
    virtual void PopClip() = 0;

    // `pixels` are 32 bits as 0xAARRGGBB, multiplied with alpha already; without `alpha` all are opaque.
    // They are copied.
    virtual std::unique_ptr<drawBitmap> MakeBitmap(std::span<const uint32_t> pixels, uint32_t width,
                                                   uint32_t height, bool alpha) = 0;
    virtual std::unique_ptr<drawBitmap> MakeBitmap(const drawImage& image) = 0;  // a copy

    // An off-screen surface of the same kind, transparent at first and kept from paint to paint; the code of
    // a failure goes to `error`.
    virtual std::unique_ptr<drawTarget> MakeCompatible(float width, float height, uint32_t& error) = 0;

    // What a compatible target holds, without copying: it changes with the target. Null for other targets.
    virtual std::unique_ptr<drawBitmap> Content() = 0;
};

class drawSystem
{
public:
    drawSystem() = default;
    drawSystem(const drawSystem&) = delete;
    drawSystem& operator=(const drawSystem&) = delete;
    virtual ~drawSystem() = default;

    // Draws on the client area of a window, which keeps what is not drawn over; with the help of the
    // graphics card, or as the system thinks best. The code of a failure goes to `error`.
    virtual std::unique_ptr<drawTarget> MakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                         bool hardware, uint32_t& error) = 0;

    // At first all 0.
    virtual std::unique_ptr<drawImage> MakeImage(uint32_t width, uint32_t height) = 0;
    virtual std::unique_ptr<drawTarget> MakeImageTarget(drawImage& image) = 0;

    // `size` is the em in pixels. A font that the system lacks is replaced by one that is like it.
    virtual std::shared_ptr<drawTextFormat> MakeTextFormat(std::string_view font, bool bold, bool italic,
                                                           float size) = 0;

    // `text` is UTF-8; bytes that are none show as replacement characters.
    virtual std::unique_ptr<drawTextLayout>
    MakeTextLayout(std::string_view text, const drawTextFormat& format, float width, float height) = 0;
};

// The system's drawing; null when it has none.
std::unique_ptr<drawSystem> drawSystemMake();
