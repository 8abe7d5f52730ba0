// Outlines on a Cairo context: figures as paths, and pens along them.
#pragma once

#include "platform/linux/screen/drawCairo.h"

void drawAddFigure(cairo_t* context, const drawFigure& figure);

// Strokes the current path in `colour` and forgets it. The path is one figure.
void drawStroke(cairo_t* context, const drawPen& pen, const drawColour& colour, bool closed);

void drawUseColour(cairo_t* context, const drawColour& colour);

// How far from its path a pen can reach, with its mitres.
float drawReach(const drawPen& pen, size_t corners);
