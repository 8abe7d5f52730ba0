#include "tests/fakes/drawObjects.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fakes {

namespace {

std::string colourText(const drawColour& colour)
{
    const auto channel = [](float value) { return static_cast<unsigned>(std::lround(value * 255)); };
    char text[48];
    std::snprintf(text, sizeof text, "%02X%02X%02X/%g", channel(colour.Red), channel(colour.Green),
                  channel(colour.Blue), static_cast<double>(colour.Alpha));
    return text;
}

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

}  // namespace

fakeBrush::fakeBrush(const drawColour& colour) : Text(colourText(colour)) {}

std::string drawBrushText(const drawBrush* brush)
{
    return brush ? " " + static_cast<const fakeBrush*>(brush)->Text : " none";
}

fakeFormat::fakeFormat(bool bold, bool italic, float size)
    : Size(size), Text(std::string(bold ? " bold" : "") + (italic ? " italic" : ""))
{}

fakeLayout::fakeLayout(std::string_view text, const fakeFormat& format, float width, float height)
    : Text(text), EmSize(format.Size), Format(format.Text), Width(width), Height(height)
{}

void fakeLayout::SetAlign(drawAlign horizontal, drawAlign vertical)
{
    constexpr const char* across[] = {" left", " right", " centre"};
    constexpr const char* down[] = {" top", " bottom", " centre"};
    Align = std::string(across[static_cast<unsigned>(horizontal)]) + down[static_cast<unsigned>(vertical)];
}

drawTextSize fakeLayout::Size() const
{
    constexpr float lineHeight = 1.5F;
    if (Text.empty())
        return {};
    const lineCount lines = count(Text);
    return {static_cast<float>(lines.Longest) * EmSize / 2,
            static_cast<float>(lines.Lines) * EmSize * lineHeight};
}

std::string fakeLayout::Line(drawPoint origin) const
{
    return "\"" + Text + "\" at " + drawPointText(origin) + " in " + drawSizeText(Width, Height) + Align +
           (Wraps ? " wraps" : "") + Trim + Format;
}

bool fakeImage::Read(std::span<uint32_t> pixels) const
{
    const size_t all = size_t{Width} * Height;
    if (pixels.size() < all)
        return false;
    std::fill_n(pixels.begin(), all, 0);
    return true;
}

}  // namespace fakes
