// Lines that are too long for their box.
#pragma once

#include "platform/linux/screen/drawCairo.h"

#include <string>

// The width of a line up to the blanks at its end.
double drawInkWidth(PangoLayoutLine* line);

// The text of `layout` with every line that is wider than `width` cut: it ends in an ellipsis, and in what
// begins with its last `delimiter` when that fits. `scratch` has the same font and is used to measure.
std::string drawTrimmed(PangoLayout* layout, PangoLayout* scratch, double width, char delimiter);
