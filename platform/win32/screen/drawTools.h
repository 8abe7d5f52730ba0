// What all drawing stands on, made once. Whatever is drawn with holds its share of it.
#pragma once

#include "platform/win32/screen/drawCOM.h"

struct drawTools {
    comPointer<ID2D1Factory> Drawing;
    comPointer<IDWriteFactory> Text;
    comPointer<IDWriteFontCollection> Fonts;
    comPointer<ID2D1StrokeStyle> Dashes;
    comPointer<IWICImagingFactory> Imaging;

    // All or nothing. Needs the thread's apartment.
    bool Make();
};
