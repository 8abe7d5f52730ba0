// An image that owns its palette and pixels.
#pragma once

#include "toolkit/pixmap.h"
#include "toolkit/pixmapBytes.h"

// Set the wanted Bits (and RowMultiple), then assign any image: the assignment brings it to that depth.
//
// Palette and Pixels point into blocks of the checked heap and stand until the next assignment; writing to
// these two members frees nothing. One thread at a time.
class pixmapDyn : public pixmap
{
public:
    pixmapDyn() = default;
    pixmapDyn(const pixmapDyn&) = delete;

    // Keeps Bits and RowMultiple. Where `source` has the same depth, also a compressed one, pixels and
    // palette are copied. Other roads lead to 16 and to 32 bits, from any depth but that of the result and
    // from compressed images; their result has no palette. Any other pair is a fatal fault and leaves an
    // image of zeros.
    //
    // The source may be damaged and may lie in this image. Its Stride is not asked: rows follow each other as
    // pixmapStride says. Missing pixels, and colours that its palette does not have, are 0; of a palette the
    // first 256 entries are read. If the stream of a compressed image is wrong, all pixels are 0. An image
    // beyond pixmapBytesMost, or beyond what memory is left, leaves an empty one: 0 by 0.
    pixmapDyn& operator=(const pixmap& source);
    pixmapDyn& operator=(const pixmapDyn& source);

    ~pixmapDyn() = default;

private:
    void Take(const pixmap& source);
    bool Make(const pixmap& source);
    void MakeEmpty();
    void TakeSame(const pixmap& source);
    void TakePalette(const pixmap& source);
    void TakeCompressed(const pixmap& source);
    void TakeAs16(const pixmap& source);
    void TakeAs32(const pixmap& source);

    pixmapBlock PaletteBlock;
    pixmapBlock PixelBlock;
};
