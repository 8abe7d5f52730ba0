#include "platform/linux/screen/windowHints.h"

#include <algorithm>

namespace {

// WM_NORMAL_HINTS: flags, and the words they are about.
enum : uint32_t {
    sizeUserPosition = 1,
    sizeUserSize = 2,
    sizeMinimum = 16,
    sizeMaximum = 32,
    sizeGravity = 512,
};
enum {
    wordFlags = 0,
    wordX = 1,
    wordY = 2,
    wordWidth = 3,
    wordHeight = 4,
    wordMinimum = 5,
    wordMaximum = 7,
    wordGravity = 17,
};
constexpr uint32_t StaticGravity = 10;
constexpr int32_t LargestSize = 16384;

// _MOTIF_WM_HINTS: functions and decorations have the same bits but for the first.
enum : uint32_t {
    frameHasFunctions = 1,
    frameHasDecorations = 2,
    functionResize = 2,
    functionMove = 4,
    functionMinimise = 8,
    functionMaximise = 16,
    functionClose = 32,
    decorationBorder = 2,
    decorationResize = 4,
    decorationTitle = 8,
    decorationMenu = 16,
    decorationMinimise = 32,
    decorationMaximise = 64,
};

struct frameRow {
    uint32_t Style;
    uint32_t Functions;
    uint32_t Decorations;
};

constexpr frameRow FrameRows[] = {
    {styleSystemMenu, functionMove | functionClose, decorationBorder | decorationTitle | decorationMenu},
    {styleResizable, functionResize, decorationResize},
    {styleMinimiseBox, functionMinimise, decorationMinimise},
    {styleMaximiseBox, functionMaximise, decorationMaximise},
};

void setExtent(windowNormalHints& hints, size_t word, const windowExtent& extent, int32_t unlimited)
{
    hints[word] = static_cast<uint32_t>(extent.Width > 0 ? extent.Width : unlimited);
    hints[word + 1] = static_cast<uint32_t>(extent.Height > 0 ? extent.Height : unlimited);
}

}  // namespace

windowNormalHints windowHintsOfSize(uint32_t style, const windowEdges& area, const windowExtent& least,
                                    const windowExtent& most)
{
    const windowExtent size{std::max(area.Right - area.Left, 1), std::max(area.Bottom - area.Top, 1)};
    windowNormalHints hints{};
    hints[wordFlags] = sizeUserPosition | sizeUserSize | sizeGravity;
    hints[wordX] = static_cast<uint32_t>(area.Left);
    hints[wordY] = static_cast<uint32_t>(area.Top);
    hints[wordWidth] = static_cast<uint32_t>(size.Width);
    hints[wordHeight] = static_cast<uint32_t>(size.Height);
    hints[wordGravity] = StaticGravity;

    const bool isFixed = (style & (styleResizable | styleMaximiseBox)) == 0;
    const windowExtent& minimum = isFixed ? size : least;
    const windowExtent& maximum = isFixed ? size : most;
    if (minimum.Width > 0 || minimum.Height > 0) {
        hints[wordFlags] |= sizeMinimum;
        setExtent(hints, wordMinimum, minimum, 1);
    }
    if (maximum.Width > 0 || maximum.Height > 0) {
        hints[wordFlags] |= sizeMaximum;
        setExtent(hints, wordMaximum, maximum, LargestSize);
    }
    return hints;
}

windowFrameHints windowHintsOfFrame(uint32_t style)
{
    windowFrameHints hints{frameHasFunctions | frameHasDecorations, 0, 0, 0, 0};
    if ((style & stylePopup) != 0)
        return hints;
    for (const frameRow& row : FrameRows) {
        if ((style & row.Style) != 0) {
            hints[1] |= row.Functions;
            hints[2] |= row.Decorations;
        }
    }
    return hints;
}
