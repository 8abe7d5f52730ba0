#include "tests/platform/screen/windowTest.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <string>
#include <thread>

namespace {

constexpr uint32_t Place_ = placeKeepOrder | placeNoActivate | placeFrameChanged;

windowTest* Running = nullptr;

std::string freshClassName()
{
    static unsigned last = 0;
    return "Skyreckoning contract " + std::to_string(++last);
}

}  // namespace

bool operator==(const windowEdges& one, const windowEdges& other)
{
    return one.Left == other.Left && one.Top == other.Top && one.Right == other.Right &&
           one.Bottom == other.Bottom;
}

void PrintTo(const windowEdges& edges, std::ostream* stream)
{
    *stream << edges.Left << ',' << edges.Top << " to " << edges.Right << ',' << edges.Bottom;
}

void windowTest::SetUp()
{
    screenReset();
    Running = this;
    System = windowSystemMake(freshClassName(), Receive);
}

void windowTest::TearDown()
{
    System.reset();
    Running = nullptr;
}

int64_t windowTest::Receive(const windowMessage& message)
{
    windowTest& test = *Running;
    test.Heard.push_back(message);
    if (test.Answer) {
        if (const std::optional<int64_t> answer = test.Answer(message))
            return *answer;
    }
    if (message.Number != msgPaint)
        return test.System->Default(message);
    test.System->PaintDone(message.Window);
    return 0;
}

windowId windowTest::Make(uint32_t style, windowId owner)
{
    uint32_t error = 0;
    const windowId window = System->Create({.Style = style, .Owner = owner}, error);
    EXPECT_NE(window, 0u) << "error " << error;
    return window;
}

windowId windowTest::MakeAt(const windowEdges& client, uint32_t style, windowId owner)
{
    const windowId window = Make(style, owner);
    EXPECT_TRUE(Place(window, client));
    return window;
}

windowId windowTest::OpenAt(const windowEdges& client, uint32_t style, windowId owner)
{
    const windowId window = MakeAt(client, style, owner);
    const bool isPopup = (style & stylePopup) != 0;
    System->Show(window, isPopup ? windowShow::NoActivate : windowShow::Activate);
    EXPECT_TRUE(isPopup || Until([&] { return System->Focus() == window; }));
    Pump();
    return window;
}

bool windowTest::Place(windowId window, const windowEdges& client)
{
    const windowEdges frame = System->FrameOf(window, client, System->DPI(window));
    return System->Place(window, windowOrder::Keep, frame, Place_);
}

windowEdges windowTest::ClientOf(windowId window)
{
    windowEdges area{};
    EXPECT_TRUE(System->ClientArea(window, area));
    return area;
}

bool windowTest::TakeOne()
{
    windowMessage message;
    if (System->Peek(message) != windowTake::Taken)
        return false;
    System->Dispatch(message);
    return true;
}

void windowTest::Pump()
{
    while (TakeOne()) {
    }
}

bool windowTest::Until(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        if (!TakeOne())
            std::this_thread::yield();
    }
    return true;
}

bool windowTest::Repeats(const std::function<void()>& act, const std::function<bool()>& condition)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        act();
        const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
        while (std::chrono::steady_clock::now() < limit) {
            Pump();
            if (condition())
                return true;
            std::this_thread::yield();
        }
    }
    return false;
}

bool windowTest::Point(windowId window, int32_t x, int32_t y)
{
    // A window that was shown just now may not be in its place yet, so the mouse is moved until it is heard.
    const size_t before = Count(window, msgMouseMove);
    const auto move = [&] {
        const windowEdges client = ClientOf(window);
        screenMove(client.Left + x + 1, client.Top + y + 1);
        screenMove(client.Left + x, client.Top + y);
    };
    return Repeats(move, [&] {
        return Count(window, msgMouseMove) > before && LastPoint(window, msgMouseMove) == windowPoint(x, y);
    });
}

bool windowTest::Listens(windowId window)
{
    const size_t before = Count(window, msgKeyUp);
    const auto press = [] {
        screenKeyDown(keyShift);
        screenKeyUp(keyShift);
    };
    const bool hears = Repeats(press, [&] { return Count(window, msgKeyUp) > before; });
    Pump();
    return hears;
}

void windowTest::Click(screenButton button)
{
    screenPress(button);
    screenRelease(button);
}

size_t windowTest::Count(windowId window, uint32_t number) const
{
    const auto is = [&](const windowMessage& each) { return each.Window == window && each.Number == number; };
    return static_cast<size_t>(std::count_if(Heard.begin(), Heard.end(), is));
}

windowMessage windowTest::Last(windowId window, uint32_t number) const
{
    const auto is = [&](const windowMessage& each) { return each.Window == window && each.Number == number; };
    const auto found = std::find_if(Heard.rbegin(), Heard.rend(), is);
    return found == Heard.rend() ? windowMessage{} : *found;
}

int64_t windowTest::LastPoint(windowId window, uint32_t number) const
{
    const int64_t second = Last(window, number).Second;
    return windowPoint(windowPointX(second), windowPointY(second));
}

std::vector<uint32_t> windowTest::Order(windowId window, std::initializer_list<uint32_t> numbers) const
{
    std::vector<uint32_t> order;
    for (const windowMessage& each : Heard) {
        if (each.Window == window && std::find(numbers.begin(), numbers.end(), each.Number) != numbers.end())
            order.push_back(each.Number);
    }
    return order;
}
