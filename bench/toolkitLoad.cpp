// What the toolkit costs on a real screen: toolkitLoad [SECONDS]
//
// A form of sixty labels. First the time of a whole repaint and of one changed label, in turns; then a
// thousand posts a second, each of which changes three labels, while a user moves the mouse.
#include "bench/toolkitScene.h"
#include "platform/clock.h"
#include "tests/platform/screen/screenInput.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr double nanosecondsPerMicrosecond = 1e3;
constexpr double nanosecondsPerMillisecond = 1e6;

int64_t quantile(std::vector<int64_t>& values, double part)
{
    if (values.empty())
        return -1;
    std::sort(values.begin(), values.end());
    const auto index = static_cast<size_t>(part * static_cast<double>(values.size() - 1));
    return values[index];
}

// Of the processor: what the display or anybody else takes meanwhile is not the toolkit's.
int64_t paintTime(const ctrlWindow& form)
{
    const int64_t start = clockThreadNs();
    Toolkit().Windows().PaintNow(form.Handle());
    return clockThreadNs() - start;
}

void measurePaints(sceneForm& form)
{
    constexpr unsigned times = 300;
    std::vector<int64_t> whole;
    std::vector<int64_t> one;
    for (unsigned i = 0; i < times; ++i) {
        Toolkit().PumpPending();
        form.InvalidateTree(true);
        whole.push_back(paintTime(form));
        Toolkit().PumpPending();
        form.Labels[i % form.Labels.size()]->Caption(std::to_string(i));
        one.push_back(paintTime(form));
    }
    const double wholeUs = static_cast<double>(quantile(whole, 0.5)) / nanosecondsPerMicrosecond;
    const double oneUs = static_cast<double>(quantile(one, 0.5)) / nanosecondsPerMicrosecond;
    std::printf("paint of one changed label: %.3g x a whole repaint, %.1f us of %.0f us (medians of %u)\n",
                oneUs / wholeUs, oneUs, wholeUs, times);
}

struct loadResult {
    std::vector<int64_t> PaintGaps;
    std::vector<int64_t> Latencies;
};

// Moves the mouse over the form's pixels from left to right, each once, and notes when.
class mover
{
public:
    mover(const sceneForm& form, std::vector<int64_t>& sent) : X(form.X()), Y(form.Y()), Sent(sent) {}

    void Run(const std::stop_token& stop) const
    {
        for (size_t x = 0; x < Sent.size() && !stop.stop_requested(); ++x) {
            Sent[x] = clockSteadyNs();
            screenMove(X + static_cast<int32_t>(x), Y + 2);
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
        }
    }

private:
    int32_t X, Y;
    std::vector<int64_t>& Sent;
};

void post(const std::stop_token& stop, sceneForm& form, std::atomic<unsigned>& handled, unsigned count)
{
    auto due = std::chrono::steady_clock::now();
    for (unsigned i = 0; i < count && !stop.stop_requested(); ++i) {
        Toolkit().Post(
            [&form, &handled, i] {
                form.Change(i);
                handled.fetch_add(1);
            },
            true);
        due += std::chrono::milliseconds(1);
        std::this_thread::sleep_until(due);
    }
}

// Beside the pump's sweep, which paints what has waited so long.
void tellDelay(const char* what, std::vector<int64_t>& delays)
{
    constexpr double sweepMs = 50;
    const auto ms = [&delays](double part) {
        return static_cast<double>(quantile(delays, part)) / nanosecondsPerMillisecond;
    };
    std::printf("%s: %.3g x the sweep of 50 ms, median %.2f ms, 99 of 100 %.2f ms, longest %.2f ms, of %zu\n",
                what, ms(0.5) / sweepMs, ms(0.5), ms(0.99), ms(1), delays.size());
}

void measureLoad(sceneForm& form, unsigned seconds)
{
    constexpr unsigned postsPerSecond = 1000;
    const unsigned count = seconds * postsPerSecond;
    std::atomic<unsigned> handled{0};
    std::vector<int64_t> sent(form.Moves.size());
    std::fill(form.Moves.begin(), form.Moves.end(), 0);
    loadResult result;
    const int64_t spent = clockThreadNs();
    const int64_t start = clockSteadyNs();
    {
        const mover mouse(form, sent);
        const std::jthread moving([&mouse](const std::stop_token& stop) { mouse.Run(stop); });
        const std::jthread posting([&](const std::stop_token& stop) { post(stop, form, handled, count); });
        int64_t last = start;
        while (handled < count && Toolkit().PumpOne(true)) {
            int64_t painted = 0;
            for (const sceneLabel* label : form.Labels)
                painted = std::max(painted, label->LastPaintNs);
            if (painted <= last)
                continue;
            result.PaintGaps.push_back(painted - last);
            last = painted;
        }
    }
    const auto wall = static_cast<double>(clockSteadyNs() - start);
    const auto busy = static_cast<double>(clockThreadNs() - spent);
    for (size_t x = 0; x < sent.size(); ++x) {
        if (sent[x] && form.Moves[x])
            result.Latencies.push_back(form.Moves[x] - sent[x]);
    }
    std::printf("a thousand posts a second: %.3g x a processor, %u in %.2f s, all handled: %s\n", busy / wall,
                count, wall / 1e9, handled == count ? "yes" : "NO");
    tellDelay("gap between paints meanwhile", result.PaintGaps);
    tellDelay("mouse to handler meanwhile", result.Latencies);
}

}  // namespace

int main(int count, char** arguments)
{
    constexpr long usualSeconds = 10;
    const long asked = count > 1 ? std::strtol(arguments[1], nullptr, 10) : usualSeconds;
    if (count > 2 || asked < 1 || asked > 3600) {
        std::fprintf(stderr, "usage: toolkitLoad [SECONDS]\n");
        return 2;
    }
    auto* form = new sceneForm;
    if (!form->Handle()) {
        std::fprintf(stderr, "toolkitLoad: there is no display\n");
        return 1;
    }
    Toolkit().PumpPending();
    screenReset();
    measurePaints(*form);
    measureLoad(*form, static_cast<unsigned>(asked));
    delete form;
    return 0;
}
