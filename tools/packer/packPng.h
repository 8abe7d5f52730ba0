// Pictures in PNG files. A fault is told as a text that names no file.
#pragma once

#include "tools/packer/packPicture.h"

#include <optional>
#include <string>

// Any PNG without transparency, of at most pixmapBytesMost bytes of pixels; colours become those of sRGB at 8
// bits.
std::optional<packPicture> packReadPng(const std::string& file, std::string& fault);

bool packWritePng(const std::string& file, const packPicture& picture, std::string& fault);
