#include "toolkit/ctrlLabel.h"

namespace {

constexpr uint32_t ownSize = 10;
constexpr uint32_t haloWidth = 2;  // of both sides together

colour shown(colour value)
{
    switch (value) {
    case labelFace:
        return theme::FaceText;
    case labelSecond:
        return theme::LabelTextSecond;
    case labelHighlight:
    case colourDefault:
        return theme::LabelText;
    default:
        return value;
    }
}

}  // namespace

ctrlLabel::ctrlLabel(ctrlWindow* parent, const std::string& text, unsigned textFlags, uint32_t flags)
    : ctrlWindow(parent, 0, 0, ownSize, ownSize, flags | ctrlStyleRepaint), TextFlags(textFlags)
{
    BackColour_ = colourParent;
    Caption(text);
}

void ctrlLabel::TextColour(colour value)
{
    if (TextColour_ == value)
        return;
    TextColour_ = value;
    Invalidate(true);
}

void ctrlLabel::Paint()
{
    ctrlWindow::Paint();
    ColourEnabled(shown(TextColour_), true);
    const std::string text = HasStyle(styleLabelWrap) ? Wrapped(Name()) : Name();
    Text(PaintRect, text.c_str(), TextFlags);
    if (!HasFlag(ctrlMeasure))
        return;
    const textSize size = TextSize(text.c_str());
    const uint32_t halo = (TextFlags & textThick) != 0 ? haloWidth : 0;
    PreferredHeight_ = size.Height + halo + Height() - static_cast<uint32_t>(PaintRect.Height());
    PreferredWidth_ = size.Width + halo + Width() - static_cast<uint32_t>(PaintRect.Width());
}

uint32_t ctrlLabel::WidthOf(const std::string& text, size_t from, size_t to)
{
    return to > from ? TextSize(text.c_str() + from, to - from).Width : 0;
}

// A line feed takes the place of the last blank that its line has room before.
std::string ctrlLabel::Wrapped(const std::string& name)
{
    const size_t end = name.find_last_not_of(' ');
    std::string text = end == std::string::npos ? std::string() : name.substr(0, end + 1);
    const auto width = static_cast<uint32_t>(PaintRect.Width());
    if (WidthOf(text, 0, text.size()) <= width)
        return text;
    for (size_t line = 0; line < text.size();) {
        text.erase(line, text.find_first_not_of(' ', line) - line);
        if (WidthOf(text, line, text.size()) <= width)
            break;
        size_t blank = text.find(' ', line);
        if (blank == std::string::npos)
            break;
        for (size_t next = text.find(' ', blank + 1); next != std::string::npos;
             next = text.find(' ', next + 1)) {
            if (WidthOf(text, line, next) >= width)
                break;
            blank = next;
        }
        text[blank] = '\n';
        line = blank + 1;
    }
    return text;
}
