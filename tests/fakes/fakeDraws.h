// Drawing of the fake platform: no pixels, but a record of all that was asked for. The rules of fakes.h hold
// here too.
//
// A target is numbered in the order of its making, from 1 after a reset. The lines of the record:
//
//   window 1 on 1 600x400      a target on window 1; "window 1 on 1 600x400 hardware" with the card's help
//   compatible 2 of 1 40x20    image 3 40x20
//   begin 2                    end 2
//   line 2 1,2 3,4 000000/1 width 1          colours as RRGGBB/opacity; "dashed" behind the width
//   rectangle 2 0,0,4,4 000000/1 width 1     fill 2 0,0,4,4 000000/1     ellipse 2 5,5 2x2 000000/1
//   figure 2 3 points 000000/1 width 1       fillfigure 2 3 points 000000/1
//   text 2 "ABC" at 0,0 in 40x20 left top 000000/1 size 11     with "bold", "italic", "trim /" where so
//   bitmap 2 of 3 at 0,0,40,20 from 0,0,40,20 opacity 1        "of pixels 8x8" for one made of pixels
//   clip 2 0,0,4,4             unclip 2
//   transform 2 M11 M12 M21 M22 DX DY        only one that is not the identity, or ends such a one
//
// A text measures half its size across for each byte of its longest line, and 1.5 times its size down for
// each line.
#pragma once

#include "platform/draw.h"

#include <cstddef>
#include <string>
#include <vector>

std::vector<std::string> fakeDraws();
std::vector<drawPoint> fakeFigure();  // of the last figure: its start, then its lines or curves
void fakeClearDraws();
size_t fakeDrawCount(const std::string& beginning);

// How many were made since the reset.
size_t fakeBrushesMade();
size_t fakeFormatsMade();

// What lives now: targets, brushes, formats, layouts, bitmaps, images.
size_t fakeDrawObjects();

// The next end of a target gives this code, once.
void fakeEndGives(unsigned code);

// fakeFail works on "drawMakeWindowTarget", "drawMakeCompatible", "drawMakeImage", "drawMakeImageTarget",
// "drawMakeBrush", "drawMakeTextFormat", "drawMakeTextLayout", "drawMakeBitmap". Targets that fail tell this
// code.
constexpr unsigned fakeDrawError = 0x88990001;
