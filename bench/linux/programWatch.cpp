// Starts a program again and again and tells how long it takes until its window shows something, and until a
// given place in it turns bright: programWatch COUNT X Y WIDTH HEIGHT PROGRAM
//
// It looks as a user does, from outside: at the display, each millisecond. The place is in pixels of the
// window. With a width of 0 only the first is waited for.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using moment = std::chrono::steady_clock::time_point;

constexpr int limitSeconds = 30;
constexpr uint32_t smallest = 40;  // of a window that is no helper's

template <class Type>
std::unique_ptr<Type, decltype(&free)> owned(Type* reply)
{
    return {reply, &free};
}

struct place {
    int16_t X;
    int16_t Y;
    uint16_t Width;
    uint16_t Height;
};

class watcher
{
public:
    watcher() : Connection(xcb_connect(nullptr, nullptr)) {}
    ~watcher() { xcb_disconnect(Connection); }
    watcher(const watcher&) = delete;
    watcher& operator=(const watcher&) = delete;

    bool IsConnected() const { return xcb_connection_has_error(Connection) == 0; }

    // The first visible window of some size, or 0.
    xcb_window_t Find()
    {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(Connection)).data->root;
        const auto tree = owned(xcb_query_tree_reply(Connection, xcb_query_tree(Connection, root), nullptr));
        const xcb_window_t* const windows = xcb_query_tree_children(tree.get());
        for (int at = 0; at < xcb_query_tree_children_length(tree.get()); ++at) {
            if (IsShown(windows[at]))
                return windows[at];
        }
        return 0;
    }

    // Empty when the place is not in the window.
    std::vector<uint32_t> Pixels(xcb_window_t window, const place& where)
    {
        const auto image =
            owned(xcb_get_image_reply(Connection,
                                      xcb_get_image(Connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, where.X,
                                                    where.Y, where.Width, where.Height, ~0U),
                                      nullptr));
        if (!image)
            return {};
        const auto* const words = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.get()));
        return {words, words + size_t{where.Width} * where.Height};
    }

private:
    bool IsShown(xcb_window_t window)
    {
        const auto state = owned(xcb_get_window_attributes_reply(
            Connection, xcb_get_window_attributes(Connection, window), nullptr));
        const auto size =
            owned(xcb_get_geometry_reply(Connection, xcb_get_geometry(Connection, window), nullptr));
        return state && size && state->map_state == XCB_MAP_STATE_VIEWABLE && size->width >= smallest &&
               size->height >= smallest;
    }

    xcb_connection_t* Connection;
};

double millisecondsSince(moment began)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began).count();
}

// Milliseconds until it is so; negative when it never was.
template <class Condition>
double await(moment began, const Condition& isSo)
{
    while (millisecondsSince(began) < limitSeconds * 1000) {
        if (isSo())
            return millisecondsSince(began);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return -1;
}

// White and amber are; lines, backgrounds and what is not used are not.
bool isBright(uint32_t pixel)
{
    return (pixel & 0xC00000) == 0xC00000;
}

void report(const char* what, std::vector<double>& times)
{
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    std::printf("%s: %.3g x a second, %.0f ms at least, %.0f at most, of %zu\n", what, median / 1000,
                times.front(), times.back(), times.size());
}

// What the program of a run took; negative where it never came.
struct outcome {
    double Painted;
    double Live;
};

// One run, ended by force. Nothing when the program cannot be started.
std::optional<outcome> watch(watcher& display, char* program, const place& live)
{
    const moment began = std::chrono::steady_clock::now();
    char* const arguments[] = {program, nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, program, nullptr, nullptr, arguments, environ) != 0)
        return std::nullopt;
    xcb_window_t window = 0;
    outcome found{};
    // What has one colour alone is the background that the display gives.
    found.Painted = await(began, [&] {
        window = display.Find();
        const std::vector<uint32_t> row =
            window ? display.Pixels(window, {0, 10, smallest, 1}) : std::vector<uint32_t>();
        return std::any_of(row.begin(), row.end(), [&row](uint32_t pixel) { return pixel != row.front(); });
    });
    if (live.Width > 0) {
        found.Live = await(began, [&] {
            const std::vector<uint32_t> all = display.Pixels(window, live);
            return std::any_of(all.begin(), all.end(), isBright);
        });
    }
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    await(std::chrono::steady_clock::now(), [&] { return display.Find() == 0; });
    return found;
}

}  // namespace

int main(int count, char** words)
{
    if (count != 7)
        return 2;
    const auto number = [words](int at) { return std::atoi(words[at]); };
    const place live{static_cast<int16_t>(number(2)), static_cast<int16_t>(number(3)),
                     static_cast<uint16_t>(number(4)), static_cast<uint16_t>(number(5))};
    watcher display;
    if (!display.IsConnected())
        return 1;
    std::vector<double> painted;
    std::vector<double> shown;
    for (int run = 0; run < number(1); ++run) {
        const std::optional<outcome> found = watch(display, words[6], live);
        if (!found || found->Painted < 0 || found->Live < 0)
            return 1;
        painted.push_back(found->Painted);
        shown.push_back(found->Live);
    }
    report("from start to the first paint", painted);
    if (live.Width > 0)
        report("from start to what is live", shown);
    return 0;
}
