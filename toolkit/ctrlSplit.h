// A stack of controls in one row or column, with gaps between them that the user can drag.
//
// All on the interface thread, but for Add, which any thread may call.
#pragma once

#include "foundations/thread/thrSpin.h"
#include "toolkit/ctrlWindow.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Style bits of splits.
enum : uint32_t {
    styleSplitColumns = 0x100,  // from left to right; else from top to bottom
};

class ctrlSplit : public ctrlWindow
{
public:
    static constexpr size_t None = ~size_t{0};

    ctrlSplit(ctrlWindow* parent, int32_t x, int32_t y, uint32_t width, uint32_t height, uint32_t style);

    void MouseEvent(MouseEv event, unsigned keys, int delta) override;
    void Layout() override;
    void Resize(uint32_t width, uint32_t height) override;

    // Puts a child control of this one, or a plain new one for null, at that place in the stack, or at its
    // end.
    void Add(size_t index, ctrlWindow* window);

    thrSpin Lock;  // the stack
    size_t Count = 0;
    size_t Drag = None;     // the gap that is dragged, behind the child of that number among the visible ones
    int32_t DragStart = 0;  // the last position along the stack
    uint32_t Gap;           // pixels

private:
    enum class layout : uint8_t {
        Spare,    // of the room that is left over, if any
        Resized,  // also where none is
        Even,     // of all room
    };

    bool IsRow() const { return HasStyle(styleSplitColumns); }
    std::vector<ctrlWindow*> Visible() const;
    uint32_t LengthOf(const ctrlWindow& child) const;
    uint32_t Kept(const ctrlWindow& child, int64_t length) const;
    bool IsFixed(const ctrlWindow& child) const;
    void Arrange(layout how);
    void ShareOut(const std::vector<ctrlWindow*>& stack, std::vector<uint32_t>& lengths, int64_t spare) const;
    void Place(const std::vector<ctrlWindow*>& stack, const std::vector<uint32_t>& lengths);

    int32_t Pointer() const;
    size_t GapAt(int32_t position) const;
    void PointAt(unsigned keys, int delta);
    void DragTo(int32_t position);

    bool Arranging = false;
};
