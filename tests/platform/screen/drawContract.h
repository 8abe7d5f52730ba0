// What the contract suites of drawing ask of the platform that they run on.
#pragma once

#include <cstdint>
#include <optional>

// Whether what is drawn can be seen. Defined once for the real platform and once for the fake one.
bool drawContractHasPixels();

enum class drawAbility {
    EmptyClips,    // clips that do not meet leave nothing
    ScreenPixels,  // what a window shows can be read back
    SourceEdges,   // a bitmap is scaled without what is beside its source
    SmoothEdges,   // of figures, lines and rectangles
    Dashes,
    PathTrimming,  // what follows the last delimiter stays
    WordCutting,   // a word that is wider than its box goes on in the next line
};

// Null when the system can; else why it cannot. Defined once for each system and once for the fake.
const char* drawContractLacks(drawAbility ability);

// What the screen shows at a point, as 0xRRGGBB; nothing when that cannot be told. Defined like it.
std::optional<uint32_t> drawContractScreen(int32_t x, int32_t y);
