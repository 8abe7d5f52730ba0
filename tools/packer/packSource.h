// A stored image as C++ source: a header that declares it and a source with its stream and its record.
#pragma once

#include "tools/packer/packPicture.h"

#include <optional>
#include <string>
#include <string_view>

struct packTexts {
    std::string Header;
    std::string Source;
};

// `name` is that of the record and of both files, `folder` where they stand, from the root of the tree, and
// `origin` the file that the picture comes from.
packTexts packSourceOf(const packPicture& picture, std::string_view name, std::string_view folder,
                       std::string_view origin);

// The picture that is stored in such a source. Nothing when it is none, or its stream is damaged.
std::optional<packPicture> packPictureOf(std::string_view source);
