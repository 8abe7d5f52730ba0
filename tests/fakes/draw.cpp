#include "platform/draw.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakeDraws.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct drawState {
    std::vector<std::string> Record;
    unsigned Targets = 0;
    size_t Brushes = 0;
    size_t Formats = 0;
    size_t Objects = 0;
    unsigned EndCode = 0;
    std::vector<drawPoint> Figure;
};

drawState& state()
{
    // Never destroyed: the toolkit's own static objects may let go of targets after it.
    static auto* one = new drawState;
    return *one;
}

void note(std::string line)
{
    state().Record.push_back(std::move(line));
}

std::string number(float value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return text;
}

std::string pointText(drawPoint point)
{
    return number(point.X) + "," + number(point.Y);
}

std::string rectText(const drawRect& rect)
{
    return number(rect.Left) + "," + number(rect.Top) + "," + number(rect.Right) + "," + number(rect.Bottom);
}

std::string sizeText(float width, float height)
{
    return number(width) + "x" + number(height);
}

std::string penText(const drawPen& pen)
{
    return " width " + number(pen.Width) + (pen.Dashed ? " dashed" : "");
}

bool fails(const char* function)
{
    return fakes::ask(function).Scripted;
}

// Counts itself as long as it lives.
struct counted {
    counted() { ++state().Objects; }
    ~counted() { --state().Objects; }
    counted(const counted&) = delete;
    counted& operator=(const counted&) = delete;
};

class fakeBrush final : public drawBrush
{
public:
    explicit fakeBrush(const drawColour& colour)
    {
        const auto channel = [](float value) { return static_cast<unsigned>(std::lround(value * 255)); };
        char text[48];
        std::snprintf(text, sizeof text, "%02X%02X%02X/%g", channel(colour.Red), channel(colour.Green),
                      channel(colour.Blue), static_cast<double>(colour.Alpha));
        Text = text;
    }
    std::string Text;

private:
    counted Count;
};

std::string brushText(const drawBrush* brush)
{
    return brush ? " " + static_cast<const fakeBrush*>(brush)->Text : " none";
}

class fakeFormat final : public drawTextFormat
{
public:
    fakeFormat(bool bold, bool italic, float size)
        : Size(size), Text(std::string(bold ? " bold" : "") + (italic ? " italic" : ""))
    {}
    float Size;
    std::string Text;

private:
    counted Count;
};

struct lineCount {
    size_t Lines = 1;
    size_t Longest = 0;  // bytes
};

lineCount count(std::string_view text)
{
    lineCount lines;
    for (size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        ++lines.Lines;
        lines.Longest = std::max(lines.Longest, end);
        text.remove_prefix(end + 1);
    }
    lines.Longest = std::max(lines.Longest, text.size());
    return lines;
}

class fakeLayout final : public drawTextLayout
{
public:
    fakeLayout(std::string_view text, const fakeFormat& format, float width, float height)
        : Text(text), EmSize(format.Size), Format(format.Text), Width(width), Height(height)
    {}
    void SetAlign(drawAlign horizontal, drawAlign vertical) override
    {
        constexpr const char* across[] = {" left", " right", " centre"};
        constexpr const char* down[] = {" top", " bottom", " centre"};
        Align =
            std::string(across[static_cast<unsigned>(horizontal)]) + down[static_cast<unsigned>(vertical)];
    }
    void SetNoWrap() override { Wraps = false; }
    void SetTrimming(char delimiter) override { Trim = std::string(" trim ") + delimiter; }
    drawTextSize Size() const override
    {
        constexpr float lineHeight = 1.5F;
        if (Text.empty())
            return {};
        const lineCount lines = count(Text);
        return {static_cast<float>(lines.Longest) * EmSize / 2,
                static_cast<float>(lines.Lines) * EmSize * lineHeight};
    }
    std::string Line(drawPoint origin) const
    {
        return "\"" + Text + "\" at " + pointText(origin) + " in " + sizeText(Width, Height) + Align +
               (Wraps ? " wraps" : "") + Trim + Format;
    }
    std::string SizeLine() const { return " size " + number(EmSize); }

private:
    std::string Text;
    float EmSize;
    std::string Format;
    float Width;
    float Height;
    std::string Align = " left top";
    std::string Trim;
    bool Wraps = true;
    counted Count;
};

class fakeBitmap final : public drawBitmap
{
public:
    explicit fakeBitmap(std::string source) : Source(std::move(source)) {}
    std::string Source;

private:
    counted Count;
};

class fakeImage final : public drawImage
{
public:
    fakeImage(uint32_t width, uint32_t height) : Width(width), Height(height) {}
    bool Read(std::span<uint32_t> pixels) const override
    {
        const size_t count = size_t{Width} * Height;
        if (pixels.size() < count)
            return false;
        for (size_t i = 0; i < count; ++i)
            pixels[i] = 0;
        return true;
    }
    uint32_t Width;
    uint32_t Height;
    unsigned Target = 0;  // the number of the one that draws to it

private:
    counted Count;
};

enum class targetKind : uint8_t {
    Window,
    Compatible,
    Image
};

class fakeTarget final : public drawTarget
{
public:
    fakeTarget(targetKind kind, const std::string& name) : Kind(kind), Id(++state().Targets)
    {
        Prefix = " " + std::to_string(Id);
        constexpr const char* kinds[] = {"window", "compatible", "image"};
        note(kinds[static_cast<unsigned>(kind)] + Prefix + " " + name);
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
        const auto hundredths = [](float value) { return number(std::round(value * 100) / 100); };
        note("transform" + Prefix + " " + hundredths(matrix.M11) + " " + hundredths(matrix.M12) + " " +
             hundredths(matrix.M21) + " " + hundredths(matrix.M22) + " " + hundredths(matrix.DX) + " " +
             hundredths(matrix.DY));
    }
    void SetGrayscaleText() override { Grayscale = true; }

    void Begin() override
    {
        if (Drawing)
            fakes::misuse("a target that draws was begun again");
        if (!PixelUnits || !Grayscale)
            fakes::misuse("a target was begun before its units and its text were set");
        Drawing = true;
        note("begin" + Prefix);
    }
    uint32_t End() override
    {
        if (!Drawing)
            fakes::misuse("a target was ended that does not draw");
        if (Clips)
            fakes::misuse("a target was ended with clips");
        Drawing = false;
        note("end" + Prefix);
        return std::exchange(state().EndCode, 0);
    }

    std::unique_ptr<drawBrush> MakeBrush(const drawColour& colour) override
    {
        if (fails("drawMakeBrush"))
            return nullptr;
        ++state().Brushes;
        return std::make_unique<fakeBrush>(colour);
    }
    void DrawLine(drawPoint from, drawPoint to, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("line", pointText(from) + " " + pointText(to) + brushText(brush) + penText(pen));
    }
    void DrawRectangle(const drawRect& rect, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("rectangle", rectText(rect) + brushText(brush) + penText(pen));
    }
    void FillRectangle(const drawRect& rect, const drawBrush* brush) override
    {
        Draw("fill", rectText(rect) + brushText(brush));
    }
    void FillEllipse(drawPoint centre, float rx, float ry, const drawBrush* brush) override
    {
        Draw("ellipse", pointText(centre) + " " + sizeText(rx, ry) + brushText(brush));
    }
    void DrawFigure(const drawFigure& figure, const drawBrush* brush, const drawPen& pen) override
    {
        Draw("figure", FigureText(figure) + brushText(brush) + penText(pen));
    }
    void FillFigure(const drawFigure& figure, const drawBrush* brush) override
    {
        Draw("fillfigure", FigureText(figure) + brushText(brush));
    }
    void DrawLayout(drawPoint origin, const drawTextLayout* layout, const drawBrush* brush) override
    {
        if (!layout)
            return;
        const auto* text = static_cast<const fakeLayout*>(layout);
        Draw("text", text->Line(origin) + brushText(brush) + text->SizeLine());
    }
    void DrawBitmap(const drawBitmap* bitmap, const drawRect& destination, float opacity,
                    const drawRect& source) override
    {
        if (!bitmap)
            return;
        Draw("bitmap", "of " + static_cast<const fakeBitmap*>(bitmap)->Source + " at " +
                           rectText(destination) + " from " + rectText(source) + " opacity " +
                           number(opacity));
    }
    void PushClip(const drawRect& clip) override
    {
        ++Clips;
        Draw("clip", rectText(clip));
    }
    void PopClip() override
    {
        if (Clips == 0)
            fakes::misuse("there was no clip to pop");
        --Clips;
        note("unclip" + Prefix);
    }

    std::unique_ptr<drawBitmap> MakeBitmap(std::span<const uint32_t> pixels, uint32_t width, uint32_t height,
                                           bool alpha) override
    {
        if (fails("drawMakeBitmap") || pixels.size() < size_t{width} * height || width == 0 || height == 0)
            return nullptr;
        return std::make_unique<fakeBitmap>("pixels " +
                                            sizeText(static_cast<float>(width), static_cast<float>(height)) +
                                            (alpha ? " alpha" : ""));
    }
    std::unique_ptr<drawBitmap> MakeBitmap(const drawImage& image) override
    {
        if (fails("drawMakeBitmap"))
            return nullptr;
        return std::make_unique<fakeBitmap>(std::to_string(static_cast<const fakeImage&>(image).Target));
    }
    std::unique_ptr<drawTarget> MakeCompatible(float width, float height, uint32_t& error) override
    {
        if (fails("drawMakeCompatible")) {
            error = fakeDrawError;
            return nullptr;
        }
        return std::make_unique<fakeTarget>(targetKind::Compatible,
                                            "of" + Prefix + " " + sizeText(width, height));
    }
    std::unique_ptr<drawBitmap> Content() override
    {
        return Kind == targetKind::Compatible ? std::make_unique<fakeBitmap>(std::to_string(Id)) : nullptr;
    }

    unsigned Number() const { return Id; }

private:
    void Draw(const char* what, const std::string& arguments) const
    {
        if (!Drawing)
            fakes::misuse("a target was drawn on that was not begun");
        note(what + Prefix + " " + arguments);
    }
    static std::string FigureText(const drawFigure& figure)
    {
        std::vector<drawPoint>& points = state().Figure;
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

    targetKind Kind;
    unsigned Id;
    std::string Prefix;
    bool Drawing = false;
    bool PixelUnits = false;
    bool Grayscale = false;
    bool Identity = true;
    unsigned Clips = 0;
    counted Count;
};

class fakeDrawing final : public drawSystem
{
public:
    std::unique_ptr<drawTarget> MakeWindowTarget(windowId window, uint32_t width, uint32_t height,
                                                 bool hardware, uint32_t& error) override
    {
        if (fails("drawMakeWindowTarget")) {
            error = fakeDrawError;
            return nullptr;
        }
        return std::make_unique<fakeTarget>(targetKind::Window,
                                            "on " + std::to_string(window) + " " + std::to_string(width) +
                                                "x" + std::to_string(height) + (hardware ? " hardware" : ""));
    }
    std::unique_ptr<drawImage> MakeImage(uint32_t width, uint32_t height) override
    {
        if (fails("drawMakeImage") || width == 0 || height == 0)
            return nullptr;
        return std::make_unique<fakeImage>(width, height);
    }
    std::unique_ptr<drawTarget> MakeImageTarget(drawImage& image) override
    {
        if (fails("drawMakeImageTarget"))
            return nullptr;
        auto& own = static_cast<fakeImage&>(image);
        auto target = std::make_unique<fakeTarget>(targetKind::Image, std::to_string(own.Width) + "x" +
                                                                          std::to_string(own.Height));
        own.Target = target->Number();
        return target;
    }
    std::shared_ptr<drawTextFormat> MakeTextFormat(std::string_view /*font*/, bool bold, bool italic,
                                                   float size) override
    {
        if (fails("drawMakeTextFormat"))
            return nullptr;
        ++state().Formats;
        return std::make_shared<fakeFormat>(bold, italic, size);
    }
    std::unique_ptr<drawTextLayout> MakeTextLayout(std::string_view text, const drawTextFormat& format,
                                                   float width, float height) override
    {
        if (fails("drawMakeTextLayout"))
            return nullptr;
        return std::make_unique<fakeLayout>(text, static_cast<const fakeFormat&>(format), width, height);
    }
};

}  // namespace

void fakes::resetDraw()
{
    state().Record.clear();
    state().Targets = 0;
    state().Brushes = 0;
    state().Formats = 0;
    state().EndCode = 0;
    state().Figure.clear();
}

std::vector<std::string> fakeDraws()
{
    return state().Record;
}

std::vector<drawPoint> fakeFigure()
{
    return state().Figure;
}

void fakeClearDraws()
{
    state().Record.clear();
}

size_t fakeDrawCount(const std::string& beginning)
{
    size_t count = 0;
    for (const std::string& line : state().Record)
        count += line.rfind(beginning, 0) == 0;
    return count;
}

size_t fakeBrushesMade()
{
    return state().Brushes;
}

size_t fakeFormatsMade()
{
    return state().Formats;
}

size_t fakeDrawObjects()
{
    return state().Objects;
}

void fakeEndGives(unsigned code)
{
    state().EndCode = code;
}

std::unique_ptr<drawSystem> drawSystemMake()
{
    return std::make_unique<fakeDrawing>();
}
