#include "toolkit/ctrlCursors.h"

#include "tests/toolkit/toolkitTest.h"

#include <bit>

namespace {

struct hotRow {
    unsigned Id;
    uint32_t X, Y;
};

constexpr hotRow drawn[] = {
    {cursorTurnUp, 16, 27}, {cursorTurnDown, 16, 4}, {cursorSplitRows, 16, 15}, {cursorSplitColumns, 15, 16}};

bool isSet(const uint32_t (&rows)[32], int x, int y)
{
    if (x < 0 || x > 31 || y < 0 || y > 31)
        return false;
    return (rows[y] >> (31 - x) & 1) != 0;
}

TEST(ctrlCursors, DrawnOnesHaveTheirHotSpots)
{
    for (const hotRow& row : drawn) {
        const windowCursorShape shape = ctrlCursorShape(row.Id);
        EXPECT_EQ(shape.HotX, row.X) << row.Id;
        EXPECT_EQ(shape.HotY, row.Y) << row.Id;
    }
}

TEST(ctrlCursors, DrawnOnesAreWhiteInABlackOutlineOfOnePixel)
{
    for (const hotRow& row : drawn) {
        const windowCursorShape shape = ctrlCursorShape(row.Id);
        int white = 0;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                bool near = false;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        near = near || isSet(shape.Xor, x + dx, y + dy);
                EXPECT_EQ(isSet(shape.And, x, y), !near) << row.Id << ": " << x << "," << y;
                white += isSet(shape.Xor, x, y);
            }
        }
        EXPECT_GT(white, 40) << row.Id;
    }
}

TEST(ctrlCursors, TheTurnsMirrorEachOther)
{
    const windowCursorShape up = ctrlCursorShape(cursorTurnUp);
    const windowCursorShape down = ctrlCursorShape(cursorTurnDown);
    for (unsigned row = 0; row < 32; ++row)
        EXPECT_EQ(up.Xor[row], down.Xor[31 - row]) << row;
}

class ctrlCursorsTest : public toolkitTest
{
};

TEST_F(ctrlCursorsTest, EachIsMadeOnFirstUseAndKept)
{
    ctrlToolkit& toolkit = Toolkit();
    const auto made = [] { return fakeCallCount("windowSystemCursor") + fakeCallCount("windowMakeCursor"); };
    std::vector<cursorId> cursors;
    for (unsigned id = 1; id <= 13; ++id)
        cursors.push_back(toolkit.Cursor(id));
    const size_t before = made();
    for (unsigned id = 1; id <= 13; ++id)
        EXPECT_EQ(toolkit.Cursor(id), cursors[id - 1]);
    EXPECT_EQ(made(), before);
    for (size_t i = 0; i < cursors.size(); ++i) {
        EXPECT_NE(cursors[i], 0U) << i;
        EXPECT_EQ(std::count(cursors.begin(), cursors.end(), cursors[i]), 1) << i;
    }
    EXPECT_EQ(toolkit.Cursor(0), 0U);
    EXPECT_EQ(toolkit.Cursor(14), 0U);
}

struct systemRow {
    unsigned Id;
    windowCursor Cursor;
};

TEST_F(ctrlCursorsTest, TheOthersAreTheSystems)
{
    constexpr systemRow rows[] = {
        {3, windowCursor::No},         {6, windowCursor::Hand},          {7, windowCursor::SizeAll},
        {8, windowCursor::SizeUpDown}, {9, windowCursor::SizeLeftRight}, {10, windowCursor::Arrow},
        {11, windowCursor::Text},      {12, windowCursor::SizeFalling},  {13, windowCursor::SizeRising},
    };
    windowSystem& system = Toolkit().Windows();
    for (const systemRow& row : rows)
        EXPECT_EQ(ctrlCursorMake(system, row.Id), system.SystemCursor(row.Cursor)) << row.Id;
    EXPECT_EQ(fakeCursorsMade(), 0U);
    for (const hotRow& row : drawn) {
        const cursorId made = ctrlCursorMake(system, row.Id);
        ASSERT_NE(fakeCursorShape(made), nullptr);
        EXPECT_EQ(fakeCursorShape(made)->HotY, row.Y);
        system.DestroyCursor(made);
    }
}

}  // namespace
