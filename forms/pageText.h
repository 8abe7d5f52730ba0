// How the pages write: flags of texts and colours that they have in common.
#pragma once

#include "toolkit/Canvas.h"

constexpr unsigned pageLabelFlags = textLeft | textTop | textBottom;
constexpr unsigned pageValueFlags = textRight | textTop | textBottom;
constexpr unsigned pageCentreFlags = textLeft | textRight | textTop | textBottom;

constexpr colour pageWhite = 0xFFFFFF;
constexpr colour pageGreen = 0x00FF00;
constexpr colour pageYellow = 0x00FFFF;
constexpr colour pageCyan = 0xFFFF00;
