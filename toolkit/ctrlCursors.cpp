#include "toolkit/ctrlCursors.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr unsigned rowCount = 32;

struct drawnCursor {
    uint8_t Id;
    uint8_t HotX, HotY;
    uint32_t Rows[rowCount];  // the leftmost pixel in the highest bit
};

constexpr drawnCursor drawn[] = {
    {cursorTurnUp,
     16,
     27,
     {
         0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
         0x00000000, 0x00000000, 0x04000010, 0x0E000038, 0x1F00007C, 0x3F8000FE, 0x7FC001FF, 0x0E000038,
         0x0E000038, 0x06000030, 0x07000070, 0x07000070, 0x038000E0, 0x03C001E0, 0x01E003C0, 0x00F80F80,
         0x007FFF00, 0x001FFC00, 0x0003E000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
     }},
    {cursorTurnDown,
     16,
     4,
     {
         0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x0003E000, 0x001FFC00, 0x007FFF00,
         0x00F80F80, 0x01E003C0, 0x03C001E0, 0x038000E0, 0x07000070, 0x07000070, 0x06000030, 0x0E000038,
         0x0E000038, 0x7FC001FF, 0x3F8000FE, 0x1F00007C, 0x0E000038, 0x04000010, 0x00000000, 0x00000000,
         0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
     }},
    {cursorSplitRows,
     16,
     15,
     {
         0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00008000, 0x0001C000, 0x0003E000,
         0x0007F000, 0x00008000, 0x00008000, 0x00008000, 0x00008000, 0x03FFFFE0, 0x00000000, 0x00000000,
         0x00000000, 0x03FFFFE0, 0x00008000, 0x00008000, 0x00008000, 0x00008000, 0x0007F000, 0x0003E000,
         0x0001C000, 0x00008000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
     }},
    {cursorSplitColumns,
     15,
     16,
     {
         0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00044000, 0x00044000,
         0x00044000, 0x00044000, 0x00044000, 0x00044000, 0x00044000, 0x00844200, 0x01844300, 0x03844380,
         0x07FC7FC0, 0x03844380, 0x01844300, 0x00844200, 0x00044000, 0x00044000, 0x00044000, 0x00044000,
         0x00044000, 0x00044000, 0x00044000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
     }},
};

struct systemCursor {
    uint8_t Id;
    windowCursor Cursor;
};

constexpr systemCursor systemCursors[] = {
    {cursorNo, windowCursor::No},
    {cursorHand, windowCursor::Hand},
    {cursorSizeAll, windowCursor::SizeAll},
    {cursorSizeUpDown, windowCursor::SizeUpDown},
    {cursorSizeLeftRight, windowCursor::SizeLeftRight},
    {cursorArrow, windowCursor::Arrow},
    {cursorText, windowCursor::Text},
    {cursorSizeFalling, windowCursor::SizeFalling},
    {cursorSizeRising, windowCursor::SizeRising},
};

// A row with each set pixel spread to its neighbours left and right.
constexpr uint32_t spread(uint32_t row)
{
    return row | row << 1 | row >> 1;
}

}  // namespace

windowCursorShape ctrlCursorShape(unsigned id)
{
    windowCursorShape shape;
    const auto* found = std::find_if(std::begin(drawn), std::end(drawn),
                                     [id](const drawnCursor& one) { return one.Id == id; });
    if (found == std::end(drawn))
        return shape;
    shape.HotX = found->HotX;
    shape.HotY = found->HotY;
    for (unsigned row = 0; row < rowCount; ++row) {
        const uint32_t above = row > 0 ? found->Rows[row - 1] : 0;
        const uint32_t below = row + 1 < rowCount ? found->Rows[row + 1] : 0;
        shape.Xor[row] = found->Rows[row];
        shape.And[row] = ~(spread(above) | spread(found->Rows[row]) | spread(below));
    }
    return shape;
}

cursorId ctrlCursorMake(windowSystem& system, unsigned id)
{
    for (const systemCursor& one : systemCursors) {
        if (one.Id == id)
            return system.SystemCursor(one.Cursor);
    }
    return system.MakeCursor(ctrlCursorShape(id));
}
