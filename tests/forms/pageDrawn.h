// Texts out of a record of draws.
#pragma once

#include "toolkit/rect.h"

#include <cstdio>
#include <string>
#include <vector>

// A text that was drawn: on which target, where, and how.
struct pageDrawn {
    unsigned Target = 0;
    std::string Text;
    rect Area{};
    std::string How;  // alignment, colour and font as the record has them

    bool Has(const std::string& part) const { return How.find(part) != std::string::npos; }
};

inline std::vector<pageDrawn> pageTextsOf(const std::vector<std::string>& lines)
{
    std::vector<pageDrawn> texts;
    for (const std::string& line : lines) {
        const size_t open = line.find('"');
        const size_t close = line.rfind('"');
        if (!line.starts_with("text ") || open == std::string::npos)
            continue;
        pageDrawn one;
        one.Text = line.substr(open + 1, close - open - 1);
        one.How = line.substr(close + 1);
        float x = 0;
        float y = 0;
        float wide = 0;
        float high = 0;
        std::sscanf(line.c_str(), "text %u", &one.Target);
        std::sscanf(one.How.c_str(), " at %f,%f in %fx%f", &x, &y, &wide, &high);
        one.Area = {static_cast<int32_t>(x), static_cast<int32_t>(y), static_cast<int32_t>(x + wide),
                    static_cast<int32_t>(y + high)};
        texts.push_back(one);
    }
    return texts;
}
