// What the fake platform draws with. Each object knows how the record calls it.
#pragma once

#include "tests/fakes/drawRecord.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace fakes {

class fakeBrush final : public drawBrush
{
public:
    explicit fakeBrush(const drawColour& colour);
    const std::string Text;

private:
    drawCounted Count;
};

// With a blank in front; null is a brush too.
std::string drawBrushText(const drawBrush* brush);

class fakeFormat final : public drawTextFormat
{
public:
    fakeFormat(bool bold, bool italic, float size);
    const float Size;
    const std::string Text;

private:
    drawCounted Count;
};

class fakeLayout final : public drawTextLayout
{
public:
    fakeLayout(std::string_view text, const fakeFormat& format, float width, float height);
    void SetAlign(drawAlign horizontal, drawAlign vertical) override;
    void SetNoWrap() override { Wraps = false; }
    void SetTrimming(char delimiter) override { Trim = std::string(" trim ") + delimiter; }
    drawTextSize Size() const override;
    std::string Line(drawPoint origin) const;
    std::string SizeLine() const { return " size " + drawNumber(EmSize); }

private:
    const std::string Text;
    const float EmSize;
    const std::string Format;
    const float Width;
    const float Height;
    std::string Align = " left top";
    std::string Trim;
    bool Wraps = true;
    drawCounted Count;
};

class fakeBitmap final : public drawBitmap
{
public:
    explicit fakeBitmap(std::string source) : Source(std::move(source)) {}
    const std::string Source;

private:
    drawCounted Count;
};

class fakeImage final : public drawImage
{
public:
    fakeImage(uint32_t width, uint32_t height) : Width(width), Height(height) {}
    bool Read(std::span<uint32_t> pixels) const override;
    const uint32_t Width;
    const uint32_t Height;
    unsigned Target = 0;  // the number of the one that draws to it

private:
    drawCounted Count;
};

}  // namespace fakes
