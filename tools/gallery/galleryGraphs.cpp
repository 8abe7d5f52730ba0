// Graphs: spectra and waves, in every way of drawing and at every size, with data that keeps coming.
#include "toolkit/ctrlGraphSpectrum.h"
#include "toolkit/ctrlGraphWave.h"
#include "tools/gallery/gallery.h"

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr float turn = 6.2831853F;

// What a receiver's front end hears: noise, a hump of its filter, and a carrier that wanders.
class spectrumSource
{
public:
    std::vector<float> Next()
    {
        constexpr size_t count = 256;
        std::vector<float> levels(count);
        std::normal_distribution<float> noise(0.0F, 1.2F);
        const float carrier = 128 + 60 * std::sin(Phase);
        for (size_t i = 0; i < count; ++i) {
            const float at = static_cast<float>(i);
            const float hump = 30 * std::exp(-std::pow((at - 128) / 70, 4.0F));
            const float peak = 25 * std::exp(-std::pow((at - carrier) / 1.5F, 2.0F));
            levels[i] = 15 + hump + peak + noise(Random);
        }
        Phase += turn / 100;
        return levels;
    }

private:
    std::mt19937 Random{7};
    float Phase = 0;
};

// A graph to which a thread of its own pushes ten times a second.
template <class Graph>
class liveGraph final : public Graph
{
public:
    using Graph::Graph;

    void Live(std::function<std::vector<float>()> next)
    {
        Push(next());
        if (galleryStill())
            return;
        Source = std::jthread([this, next = std::move(next)](const std::stop_token& stop) {
            std::mutex idle;
            std::condition_variable_any awake;
            std::unique_lock hold(idle);
            while (!awake.wait_for(hold, stop, std::chrono::milliseconds(100),
                                   [&stop] { return stop.stop_requested(); }))
                Push(next());
        });
    }

    // The thread ends before the graph begins to.
    ~liveGraph() override { Source = {}; }

private:
    void Push(const std::vector<float>& data) { Graph::Push(data.data(), data.size(), 1); }

    std::jthread Source;
};

void spectrumSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 480, 270, "Spectrum, ten times a second");
    auto* graph = galleryPlaced(new liveGraph<ctrlGraphSpectrum>(sheet, 0, 0, 10, 10, 0), 10, 26, 460, 234);
    constexpr double low = 1'559.42e6;
    constexpr double high = 1'591.42e6;
    graph->SetStyleWave(graphExp);
    graph->SetTickGapX(2);
    graph->SetTickGapY(2);
    graph->SetAxisFlags(graph->AxisX, true, true, true);
    graph->SetAxisFlags(graph->AxisY, true, false, true);
    graph->SetRangeX(low, high);
    graph->SetExtentX(high - low, true);
    graph->SetOriginX(low);
    graph->SetRangeY(0, 80);
    ctrlGraph::Cursor* cursor = graph->AxisLinkX->AddCursor(true);
    cursor->Flags |= cursorValue;
    graph->AxisLinkX->MoveCursor(cursor, 1'575.42e6, true);
    auto source = std::make_shared<spectrumSource>();
    graph->Live([source] { return source->Next(); });
}

void historySheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 480, 200, "A history, labels outside");
    auto* graph = galleryPlaced(new liveGraph<ctrlGraphWave>(sheet, 0, 0, 10, 10, 0), 10, 26, 460, 164);
    graph->SetAxisFlags(graph->AxisX, true, false, false);
    graph->SetAxisFlags(graph->AxisY, true, false, false);
    graph->SetUnit(graph->AxisX, "s");
    graph->SetUnit(graph->AxisY, "ns");
    graph->SetRangeX(0, 300);
    graph->SetExtentX(300, false);
    graph->SetRangeY(-12, 12);
    ctrlGraph::Cursor* level = graph->AxisLinkY->AddCursor(true);
    level->Label = "limit";
    level->Colour = theme::LabelTextSecond;
    level->Flags |= cursorValue;
    graph->AxisLinkY->MoveCursor(level, 7.5, true);
    auto random = std::make_shared<std::mt19937>(3);
    auto history = std::make_shared<std::vector<float>>();
    const auto next = [random, history] {
        std::uniform_int_distribution<int> error(-40, 40);
        if (history->size() == 300)
            history->erase(history->begin());
        history->push_back(static_cast<float>(error(*random)) * 0.2F);
        return *history;
    };
    for (int i = 0; i < 220; ++i)
        next();
    graph->Live(next);
}

ctrlGraphWave* small(ctrlWindow* sheet, int32_t x, int32_t y, int32_t width, int32_t height,
                     const std::vector<float>& data)
{
    auto* graph = galleryPlaced(new ctrlGraphWave(sheet, 0), x, y, width, height);
    graph->SetAxisFlags(graph->AxisX, true, false, true);
    graph->SetAxisFlags(graph->AxisY, true, false, true);
    graph->SetTickGapX(2);
    graph->SetTickGapY(2);
    graph->SetExtentX(static_cast<double>(data.size()), false);
    graph->SetRangeX(0, static_cast<double>(data.size()));
    graph->Push(data.data(), data.size(), 1);
    return graph;
}

std::vector<float> sine(size_t count, float turns)
{
    std::vector<float> data(count);
    for (size_t i = 0; i < count; ++i)
        data[i] = std::sin(turn * turns * static_cast<float>(i) / static_cast<float>(count));
    return data;
}

void modeSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 480, 230, "Ways of drawing");
    const std::vector<float> wave = sine(25, 1.25F);
    small(sheet, 10, 26, 145, 90, wave);
    small(sheet, 168, 26, 145, 90, wave)->SetStyleWave(graphLines | graphSteps);
    small(sheet, 325, 26, 145, 90, wave)->SetStyleWave(graphStems);
    small(sheet, 10, 126, 145, 90, wave)->SetTraceWidth(2);
    std::vector<float> holes = sine(60, 2);
    for (size_t i = 20; i < 26; ++i)
        holes[i] = std::numeric_limits<float>::quiet_NaN();
    holes[40] = std::numeric_limits<float>::infinity();
    small(sheet, 168, 126, 145, 90, holes);
    small(sheet, 325, 126, 145, 90, sine(100'000, 40))->SetTraceColour(theme::LabelTextSecond);
}

void sizeSheet(ctrlWindow* parent, int32_t x, int32_t y)
{
    auto* sheet = new gallerySheet(parent, x, y, 480, 240, "Sizes and ranges");
    const std::vector<float> wave = sine(40, 1);
    small(sheet, 10, 26, 80, 60, wave);
    ctrlGraphWave* outside = small(sheet, 100, 26, 80, 60, wave);
    outside->SetAxisFlags(outside->AxisX, true, false, false);
    outside->SetAxisFlags(outside->AxisY, true, false, false);
    ctrlGraphWave* tiny = small(sheet, 190, 26, 130, 90, {2e-13F, 8e-13F, 3e-13F, 7e-13F});
    tiny->SetRangeY(0, 1e-12);
    tiny->SetUnit(tiny->AxisY, "s");
    tiny->SetAxisFlags(tiny->AxisY, true, true, false);
    ctrlGraphWave* huge = small(sheet, 330, 26, 140, 90, {2e11F, 8e11F, 3e11F, 7e11F});
    huge->SetRangeY(0, 1e12);
    huge->SetUnit(huge->AxisY, "Hz");
    huge->SetAxisFlags(huge->AxisY, true, true, false);
    auto* upright = galleryPlaced(new ctrlGraphWave(sheet, graphUpright), 10, 126, 80, 104);
    upright->SetAxisFlags(upright->AxisY, true, false, true);
    upright->SetRangeX(-1, 1);
    upright->SetRangeY(0, 40);
    upright->Push(wave.data(), wave.size(), 1);
    small(sheet, 100, 126, 80, 104, {});
    small(sheet, 190, 126, 130, 104, {0.5F});
    small(sheet, 330, 126, 140, 104, wave)->Enable(false);
}

}  // namespace

void galleryGraphs(ctrlWindow* parent)
{
    spectrumSheet(parent, 10, 10);
    historySheet(parent, 10, 290);
    modeSheet(parent, 500, 10);
    sizeSheet(parent, 500, 250);
}
