// What is drawn on. Each target writes the record; its number is in every line.
#pragma once

#include "platform/draw.h"

#include <cstdint>
#include <memory>
#include <string>

namespace fakes {

enum class drawTargetKind : uint8_t {
    Window,
    Compatible,
    Image
};

struct drawTargetMade {
    std::unique_ptr<drawTarget> Target;
    unsigned Number;
};

// `name` stands behind the kind and the number in the line of its making.
drawTargetMade drawTargetMake(drawTargetKind kind, const std::string& name);

}  // namespace fakes
