// A window with one graph, and what was drawn of it as numbers.
#pragma once

#include "foundations/text/utfLocale.h"
#include "tests/toolkit/toolkitTest.h"
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlGraphWave.h"

#include <cstdio>

// A graph that shows its inside.
template <class Graph>
class openGraph : public Graph
{
public:
    using Graph::Box;
    using Graph::Graph;
    using Graph::StateClear;
    unsigned Paints = 0;
    void Paint() override
    {
        ++Paints;
        Graph::Paint();
    }
};

using openWave = openGraph<ctrlGraphWave>;
using openSpectrum = openGraph<ctrlGraphSpectrum>;

// A text that was drawn: where, and what.
struct drawnText {
    std::string Text;
    rect Area{};
};

class graphTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        utfLocale.DecimalPoint = ".";
        Window = new ctrlWindow(nullptr, 100, 100, 400, 300, 0);
        Graph = new openWave(Window, 10, 20, 200, 100, 0);
        Graph->Show();
        Window->Show();
    }

    void TearDown() override
    {
        toolkitTest::TearDown();
        utfLocaleFill();
    }

    void Push(const std::vector<float>& data, uint32_t channels = 1)
    {
        Graph->Push(data.data(), data.size(), channels);
    }

    // The texts in a record of draws.
    static std::vector<drawnText> Texts(const std::vector<std::string>& draws)
    {
        std::vector<drawnText> texts;
        for (const std::string& line : draws) {
            const size_t open = line.find('"');
            const size_t close = line.rfind('"');
            if (!line.starts_with("text ") || open == std::string::npos)
                continue;
            float x = 0;
            float y = 0;
            float wide = 0;
            float high = 0;
            std::sscanf(line.c_str() + close + 1, " at %f,%f in %fx%f", &x, &y, &wide, &high);
            const auto left = static_cast<int32_t>(x);
            const auto top = static_cast<int32_t>(y);
            texts.push_back(
                {line.substr(open + 1, close - open - 1),
                 {left, top, left + static_cast<int32_t>(wide), top + static_cast<int32_t>(high)}});
        }
        return texts;
    }

    static std::vector<std::string> Names(const std::vector<drawnText>& texts)
    {
        std::vector<std::string> names;
        for (const drawnText& one : texts)
            names.push_back(one.Text);
        return names;
    }

    // The lines of the record that draw in a colour, given as the record has it.
    std::vector<std::string> DrawnIn(const std::string& shade)
    {
        std::vector<std::string> lines = Drawn({"line", "figure", "fillfigure", "ellipse"});
        std::erase_if(lines,
                      [&shade](const std::string& line) { return line.find(shade) == std::string::npos; });
        return lines;
    }

    static constexpr char Trace[] = "00FFFF/1";
    static constexpr char Mark[] = "FFC000/1";  // of cursors

    ctrlWindow* Window = nullptr;
    openWave* Graph = nullptr;
};
