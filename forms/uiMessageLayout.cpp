// How a message box looks, and where its parts are.
#include "forms/uiMessage.h"
#include "forms/uiMessageText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t margin = 8;
constexpr int32_t gap = 4;  // between buttons
constexpr int32_t buttonMargin = 8;
constexpr float buttonWidthLeast = 42;
constexpr float buttonHeight = 18;

int32_t scaled(float size)
{
    return static_cast<int32_t>(std::ceil(size * Toolkit().Scale));
}

}  // namespace

// The largest client area that the monitor has room for.
windowExtent uiMessage::Room() const
{
    windowSystem& system = Toolkit().Windows();
    windowArea work;
    if (!system.WorkAreaOf(Handle(), work))
        work = system.DesktopWorkArea();
    const windowEdges frame = system.FrameOf(Handle(), {}, system.DPI(Handle()));
    return {std::max(work.Right - work.Left - (frame.Right - frame.Left), 1),
            std::max(work.Bottom - work.Top - (frame.Bottom - frame.Top), 1)};
}

std::string uiMessage::Fitted()
{
    const windowExtent room = Room();
    const int32_t width = std::max(room.Width - 2 * margin, 0);
    const int32_t height = std::max(room.Height - 3 * margin - scaled(buttonHeight), 0);
    const textSize whole = TextSize(Message.c_str());
    if (whole.Width <= static_cast<uint32_t>(width) && whole.Height <= static_cast<uint32_t>(height))
        return Message;
    const uint32_t lineHeight = std::max(TextSize("X").Height, 1U);
    return uiMessageFit(Message.c_str(), static_cast<uint32_t>(width),
                        static_cast<uint32_t>(height) / lineHeight,
                        [this](std::string_view part) { return TextSize(part.data(), part.size()).Width; });
}

void uiMessage::Paint()
{
    ctrlForm::Paint();
    const std::string fitted = Fitted();
    const textSize size = TextSize(fitted.c_str());
    PreferredHeight_ = size.Height;
    PreferredWidth_ = size.Width;
    ColourEnabled(theme::LabelText, true);
    const rect area{margin, margin, static_cast<int32_t>(Width()) - margin,
                    static_cast<int32_t>(size.Height) + margin};
    Text(area, fitted.c_str(), textLeft | textTop);
}

int32_t uiMessage::ButtonWidth(int32_t room) const
{
    uint32_t widest = 0;
    for (const ctrlButton* button : Row)
        widest = std::max(widest, button->PreferredWidth());
    const int32_t wanted = std::max(static_cast<int32_t>(widest), scaled(buttonWidthLeast)) + buttonMargin;
    return std::max(std::min(wanted, (room - 2 * margin) / static_cast<int32_t>(Row.size()) - gap), 1);
}

void uiMessage::Layout()
{
    const windowExtent room = Room();
    const int32_t width = ButtonWidth(room.Width);
    const int32_t height = scaled(buttonHeight);
    const int32_t textHeight =
        std::min(static_cast<int32_t>(PreferredHeight_), std::max(room.Height - 3 * margin - height, 0));
    const int32_t row = (width + gap) * static_cast<int32_t>(Row.size());
    const int32_t whole =
        std::min(std::max(row, static_cast<int32_t>(PreferredWidth_)) + 2 * margin, room.Width);
    int32_t x = (whole - row + gap) / 2;
    for (ctrlButton* button : Row) {
        button->Move(x, textHeight + 2 * margin, static_cast<uint32_t>(width), static_cast<uint32_t>(height));
        x += width + gap;
    }
    Resized(whole, textHeight + 3 * margin + height);
}

// Takes a size around the centre, but on the monitor as far as it fits there.
void uiMessage::Resized(int32_t width, int32_t height)
{
    int32_t x = X() - (width - static_cast<int32_t>(Width())) / 2;
    int32_t y = Y() - (height - static_cast<int32_t>(Height())) / 2;
    windowSystem& system = Toolkit().Windows();
    windowArea work;
    if (system.WorkAreaOf(Handle(), work)) {
        const windowEdges frame = system.FrameOf(Handle(), {}, system.DPI(Handle()));
        x = std::max(std::min(x, work.Right - frame.Right - width), work.Left - frame.Left);
        y = std::max(std::min(y, work.Bottom - frame.Bottom - height), work.Top - frame.Top);
    }
    Move(x, y, static_cast<uint32_t>(width), static_cast<uint32_t>(height));
}
