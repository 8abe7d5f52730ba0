#include "toolkit/ctrlSplit.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr uint32_t ownGap = 4;

}  // namespace

ctrlSplit::ctrlSplit(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height,
                     uint32_t style)
    : ctrlWindow(parent, x, y, width, height, 0), Gap(ownGap)
{
    StyleSet(style);
}

void ctrlSplit::Add(size_t index, ctrlWindow* window)
{
    Toolkit().Post(
        [this, index, window] {
            ctrlWindow* child = window;
            {
                const thrSpinHold hold(Lock);
                if (!child)
                    child = new ctrlWindow(this, 0);
                ChildOrder(child, static_cast<unsigned>(std::min(index, Count)));
                ++Count;
            }
            child->Show();
            // A newcomer would be left with next to nothing where the others fill the room.
            Arrange(layout::Even);
        },
        false);
}

// --- Layout

std::vector<ctrlWindow*> ctrlSplit::Visible() const
{
    std::vector<ctrlWindow*> stack;
    for (ctrlWindow* child = FirstChild(); child; child = child->NextSibling()) {
        if (child->HasState(stateVisible))
            stack.push_back(child);
    }
    return stack;
}

uint32_t ctrlSplit::LengthOf(const ctrlWindow& child) const
{
    return IsRow() ? child.Width() : child.Height();
}

uint32_t ctrlSplit::Kept(const ctrlWindow& child, int64_t length) const
{
    const auto wanted = static_cast<uint32_t>(std::clamp<int64_t>(length, 1, INT32_MAX));
    return IsRow() ? child.ClampWidth(wanted) : child.ClampHeight(wanted);
}

bool ctrlSplit::IsFixed(const ctrlWindow& child) const
{
    return Kept(child, 1) == Kept(child, INT32_MAX);
}

void ctrlSplit::Layout()
{
    Arrange(layout::Spare);
}

void ctrlSplit::Resize(uint32_t width, uint32_t height)
{
    const bool changed = width != Width() || height != Height();
    const ctrlLife life(this);
    ctrlWindow::Resize(width, height);
    if (life && changed)
        Arrange(layout::Resized);
}

void ctrlSplit::Arrange(layout how)
{
    const std::vector<ctrlWindow*> stack = Visible();
    if (stack.empty() || Arranging)
        return;
    const auto count = static_cast<int64_t>(stack.size());
    const int64_t room = std::max<int64_t>((IsRow() ? Width() : Height()) - (count - 1) * Gap, 0);
    std::vector<uint32_t> lengths;
    int64_t total = 0;
    for (const ctrlWindow* child : stack) {
        lengths.push_back(how == layout::Even ? Kept(*child, room / count) : LengthOf(*child));
        total += lengths.back();
    }
    if (room == total && how == layout::Spare)
        return;
    ShareOut(stack, lengths, room - total);
    const ctrlLife life(this);
    Arranging = true;
    Place(stack, lengths);
    if (life)
        Arranging = false;
}

// In equal parts, the last taking the remainder; what a child cannot take goes to the others.
void ctrlSplit::ShareOut(const std::vector<ctrlWindow*>& stack, std::vector<uint32_t>& lengths,
                         int64_t spare) const
{
    std::vector<size_t> free(stack.size());
    std::iota(free.begin(), free.end(), size_t{0});
    std::erase_if(free, [&](size_t at) { return IsFixed(*stack[at]); });
    while (spare != 0 && !free.empty()) {
        const int64_t part = spare / static_cast<int64_t>(free.size());
        int64_t left = spare;
        std::vector<size_t> open;
        for (const size_t at : free) {
            const int64_t change = at == free.back() ? left : part;
            left -= change;
            const uint32_t kept = Kept(*stack[at], lengths[at] + change);
            spare -= static_cast<int64_t>(kept) - lengths[at];
            if (kept == lengths[at] + change)
                open.push_back(at);
            lengths[at] = kept;
        }
        free = open;
    }
}

void ctrlSplit::Place(const std::vector<ctrlWindow*>& stack, const std::vector<uint32_t>& lengths)
{
    std::vector<ctrlLife> lives;
    lives.reserve(stack.size());
    for (const ctrlWindow* child : stack)
        lives.emplace_back(child);
    const bool isRow = IsRow();
    const uint32_t across = isRow ? Height() : Width();
    int32_t at = 0;
    for (size_t i = 0; i < lives.size(); ++i) {
        if (ctrlWindow* child = lives[i].Window()) {
            if (isRow)
                child->Move(at, 0, lengths[i], across);
            else
                child->Move(0, at, across, lengths[i]);
        }
        at += static_cast<int32_t>(lengths[i] + Gap);
    }
}

// --- The mouse

int32_t ctrlSplit::Pointer() const
{
    return IsRow() ? Toolkit().MouseX : Toolkit().MouseY;
}

size_t ctrlSplit::GapAt(int32_t position) const
{
    const std::vector<ctrlWindow*> stack = Visible();
    for (size_t i = 0; i + 1 < stack.size(); ++i) {
        const int32_t end =
            (IsRow() ? stack[i]->X() : stack[i]->Y()) + static_cast<int32_t>(LengthOf(*stack[i]));
        const int32_t next = IsRow() ? stack[i + 1]->X() : stack[i + 1]->Y();
        if (position >= end && position < next)
            return i;
    }
    return None;
}

void ctrlSplit::MouseEvent(MouseEv event, unsigned keys, int delta)
{
    switch (event) {
    case MouseEv::Move:
        PointAt(keys, delta);
        return;
    case MouseEv::LeftDown:
    case MouseEv::LeftDouble:
        Drag = GapAt(Pointer());
        if (Drag == None)
            break;
        DragStart = Pointer();
        CaptureTake();
        return;
    case MouseEv::LeftUp:
        if (Drag == None)
            break;
        Drag = None;
        CaptureRelease();
        return;
    default:
        break;
    }
    ctrlWindow::MouseEvent(event, keys, delta);
}

void ctrlSplit::PointAt(unsigned keys, int delta)
{
    if ((keys & keysLeft) == 0)
        Drag = None;
    if (Drag != None) {
        DragTo(Pointer());
        return;
    }
    const bool over = GapAt(Pointer()) != None;
    if (!over) {
        ctrlWindow::MouseEvent(MouseEv::Move, keys, delta);
        return;
    }
    Cursor(IsRow() ? cursorSizeLeftRight : cursorSizeUpDown);
}

// What the one child gains the other loses, as far as both can.
void ctrlSplit::DragTo(int32_t position)
{
    const std::vector<ctrlWindow*> stack = Visible();
    if (Drag + 1 >= stack.size())
        return;
    std::vector<uint32_t> lengths;
    lengths.reserve(stack.size());
    for (const ctrlWindow* child : stack)
        lengths.push_back(LengthOf(*child));
    uint32_t& before = lengths[Drag];
    uint32_t& after = lengths[Drag + 1];
    const int64_t both = int64_t{before} + after;
    const uint32_t wanted = Kept(*stack[Drag], int64_t{before} + position - DragStart);
    const uint32_t rest = Kept(*stack[Drag + 1], both - wanted);
    const uint32_t given = Kept(*stack[Drag], both - rest);
    if (given == before || int64_t{given} + rest != both)
        return;
    DragStart += static_cast<int32_t>(given) - static_cast<int32_t>(before);
    before = given;
    after = rest;
    Place(stack, lengths);
}
