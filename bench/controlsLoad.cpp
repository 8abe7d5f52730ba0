// What the controls cost on a real screen: controlsLoad CALLS [SECONDS]
//
// CALLS is what controlsCalls printed. First the time of a paint of grids and spectra, in turns with a bare
// target of the system that gets as many texts, lines and fills; then two spectra at ten pushes a second;
// then a user who types.
#include "bench/controlsScene.h"
#include "platform/clock.h"
#include "platform/draw.h"
#include "tests/platform/screen/screenInput.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <thread>

namespace {

constexpr double nanosecondsPerMillisecond = 1e6;
constexpr double frameMs = 1000.0 / 60;
constexpr unsigned times = 200;

struct callCounts {
    size_t Texts = 0, Lines = 0, Fills = 0;
};
using callTable = std::map<std::string, callCounts>;

callTable readCalls(const char* path)
{
    callTable table;
    std::ifstream file(path);
    std::string name;
    callCounts counts;
    while (file >> name >> counts.Texts >> counts.Lines >> counts.Fills)
        table[name] = counts;
    return table;
}

double median(std::vector<int64_t>& values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? -1 : static_cast<double>(values[values.size() / 2]) / nanosecondsPerMillisecond;
}

// Of the processor: what the display or anybody else takes meanwhile is not the control's.
int64_t timeOf(const std::function<void()>& body)
{
    const int64_t start = clockThreadNs();
    body();
    return clockThreadNs() - start;
}

// A window on which nothing of the toolkit draws.
class bareTarget
{
public:
    bareTarget(uint32_t width, uint32_t height)
        : System(drawSystemMake()), Window(new sceneWindow(width, height)), Width(width), Height(height)
    {
        Window->Show();
        Toolkit().PumpPending();
        uint32_t error = 0;
        Target = System->MakeWindowTarget(Window->Handle(), width, height, false, error);
        Format = System->MakeTextFormat(Window->FontName(), false, false, 11);
        Brush = Target ? Target->MakeBrush({1, 0.75F, 0, 1}) : nullptr;
    }
    ~bareTarget()
    {
        Brush = nullptr;
        Target = nullptr;
        delete Window;
    }
    bareTarget(const bareTarget&) = delete;
    bareTarget& operator=(const bareTarget&) = delete;

    bool IsReady() const { return Brush && Format; }

    // Other texts each time.
    void Draw(const callCounts& counts)
    {
        Target->SetDPI(96, 96);
        Target->Begin();
        for (size_t i = 0; i < counts.Fills; ++i)
            Target->FillRectangle(Cell(i), Brush.get());
        for (size_t i = 0; i < counts.Lines; ++i) {
            const drawRect cell = Cell(i);
            Target->DrawLine({cell.Left, cell.Top + 0.5F}, {cell.Right, cell.Top + 0.5F}, Brush.get(), {});
        }
        for (size_t i = 0; i < counts.Texts; ++i) {
            const drawRect cell = Cell(i);
            const auto layout = System->MakeTextLayout(std::to_string(i * 7 + Turn), *Format,
                                                       cell.Right - cell.Left, cell.Bottom - cell.Top);
            layout->SetAlign(drawAlign::Far, drawAlign::Centre);
            layout->SetNoWrap();
            Target->DrawLayout({cell.Left, cell.Top}, layout.get(), Brush.get());
        }
        Target->End();
        ++Turn;
    }

private:
    drawRect Cell(size_t index) const
    {
        constexpr float wide = 90;
        constexpr float high = 15;
        const auto across = std::max<size_t>(Width / 92, 1);
        const auto down = std::max<size_t>(Height / 15, 1);
        const auto x = static_cast<float>(index % across) * (wide + 2);
        const auto y = static_cast<float>(index / across % down) * high;
        return {x, y, x + wide, y + high};
    }

    std::unique_ptr<drawSystem> System;
    sceneWindow* Window;
    uint32_t Width, Height;
    std::unique_ptr<drawTarget> Target;
    std::shared_ptr<drawTextFormat> Format;
    std::unique_ptr<drawBrush> Brush;
    size_t Turn = 0;
};

// Paints a window of a control and a bare one in turns. `change` makes the next paint one of new content.
void comparePaints(const char* name, ctrlWindow& window, const callCounts& counts,
                   const std::function<void(unsigned)>& change)
{
    bareTarget bare(window.Width(), window.Height());
    if (!bare.IsReady())
        return;
    window.Show();
    Toolkit().PumpPending();
    std::vector<int64_t> ours;
    std::vector<int64_t> plain;
    for (unsigned i = 0; i < times; ++i) {
        change(i);
        window.InvalidateTree(true);
        ours.push_back(timeOf([&window] { Toolkit().Windows().PaintNow(window.Handle()); }));
        plain.push_back(timeOf([&bare, &counts] { bare.Draw(counts); }));
        Toolkit().PumpPending();
    }
    const double mine = median(ours);
    const double other = median(plain);
    std::printf("%s: %.3g x the system alone, %.3f ms for %zu texts and %zu lines and %zu fills\n", name,
                mine / other, mine, counts.Texts, counts.Lines, counts.Fills);
}

void measureGrid(const callTable& calls, uint64_t rows)
{
    const std::string name = "grid" + std::to_string(rows);
    const std::string title = "grid of " + std::to_string(rows);
    sceneWindow window(sceneGrid::Width, sceneGrid::Height);
    auto* grid = new sceneGrid(&window, rows);
    comparePaints((title + " with all texts new").c_str(), window, calls.at(name),
                  [grid](unsigned turn) { grid->Turn = turn; });
    // A row in ten is another than before.
    comparePaints((title + " with a tenth of the texts new").c_str(), window, calls.at(name),
                  [grid](unsigned turn) { grid->NewRow = turn; });
}

void measureSpectrum(const callTable& calls, uint64_t samples)
{
    const std::string name = "spectrum" + std::to_string(samples);
    const std::string title = "spectrum of " + std::to_string(samples);
    sceneWindow window(300, 280);
    ctrlGraphSpectrum* graph = sceneSpectrum(&window, 0, samples);
    std::vector<int64_t> pushes;
    comparePaints(title.c_str(), window, calls.at(name), [&](unsigned turn) {
        const std::vector<float> levels = sceneLevels(samples, turn);
        pushes.push_back(timeOf([&] { graph->Push(levels.data(), levels.size(), 1); }));
    });
    std::printf("push into a %s: %.3g x a frame of 60 Hz, %.4f ms\n", title.c_str(), median(pushes) / frameMs,
                median(pushes));
}

void measureTenHertz(unsigned seconds)
{
    sceneWindow window(300, 570);
    ctrlGraphSpectrum* graphs[] = {sceneSpectrum(&window, 0, 256), sceneSpectrum(&window, 285, 256)};
    window.Show();
    Toolkit().PumpPending();
    std::atomic<bool> done{false};
    const int64_t spent = clockThreadNs();
    const int64_t start = clockSteadyNs();
    {
        const std::jthread source([&] {
            auto due = std::chrono::steady_clock::now();
            for (unsigned i = 0; i < seconds * 10; ++i) {
                for (ctrlGraphSpectrum* graph : graphs) {
                    const std::vector<float> levels = sceneLevels(256, i);
                    graph->Push(levels.data(), levels.size(), 1);
                }
                due += std::chrono::milliseconds(100);
                std::this_thread::sleep_until(due);
            }
            Toolkit().Post([&done] { done = true; }, true);
        });
        while (!done && Toolkit().PumpOne(true)) {
        }
    }
    const auto wall = static_cast<double>(clockSteadyNs() - start);
    std::printf("two spectra at 10 Hz: %.3g x a processor, in %.1f s\n",
                static_cast<double>(clockThreadNs() - spent) / wall, wall / 1e9);
}

void measureTyping()
{
    constexpr unsigned letters = 200;
    constexpr uint32_t keyA = 'A';
    sceneWindow window(320, 40);
    auto* edit = new sceneEdit(&window);
    window.Show();
    Toolkit().Windows().SetFocus(window.Handle());
    Toolkit().PumpPending();
    edit->Focus();
    Toolkit().PumpPending();
    std::vector<int64_t> latencies;
    for (unsigned i = 0; i < letters; ++i) {
        if (i % 30 == 0)
            edit->EditText("");
        Toolkit().PumpPending();
        const size_t before = edit->Painted.size();
        const int64_t sent = clockSteadyNs();
        screenKeyDown(keyA);
        screenKeyUp(keyA);
        constexpr int64_t patience = 1'000'000'000;
        while (edit->Painted.size() <= before && clockSteadyNs() - sent < patience)
            Toolkit().PumpPending();
        if (edit->Painted.size() > before)
            latencies.push_back(edit->LastPaintNs - sent);
    }
    const size_t seen = latencies.size();
    const double middle = median(latencies);
    std::printf(
        "key to painted letter: %.3g x a frame of 60 Hz, median %.3f ms, longest %.3f ms, %zu of %u\n",
        middle / frameMs, middle,
        seen ? static_cast<double>(latencies.back()) / nanosecondsPerMillisecond : -1.0, seen, letters);
}

}  // namespace

int main(int count, char** arguments)
{
    constexpr long usualSeconds = 10;
    const long asked = count > 2 ? std::strtol(arguments[2], nullptr, 10) : usualSeconds;
    const callTable calls = count > 1 ? readCalls(arguments[1]) : callTable{};
    if (count < 2 || count > 3 || calls.size() != 4 || asked < 1 || asked > 3600) {
        std::fprintf(stderr, "usage: controlsLoad CALLS [SECONDS]\n");
        return 2;
    }
    // The interface thread is that of the first window, which stays.
    const sceneWindow first(10, 10);
    if (!first.Handle()) {
        std::fprintf(stderr, "controlsLoad: there is no display\n");
        return 1;
    }
    screenReset();
    for (const uint64_t rows : {uint64_t{40}, uint64_t{400}})
        measureGrid(calls, rows);
    for (const uint64_t samples : {uint64_t{256}, uint64_t{100'000}})
        measureSpectrum(calls, samples);
    measureTenHertz(static_cast<unsigned>(asked));
    measureTyping();
    return 0;
}
