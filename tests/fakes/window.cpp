#include "platform/window.h"

#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/fakeWindows.h"
#include "tests/fakes/windowSystem.h"

#include <charconv>

// The life of a window, and what it is asked about itself.

namespace fakes {

namespace {

std::string hexText(uint32_t value)
{
    char digits[8];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), value, 16);
    return "0x" + std::string(digits, end.ptr);
}

std::string extentText(const windowExtent& extent)
{
    return std::to_string(extent.Width) + 'x' + std::to_string(extent.Height);
}

std::string createText(const windowCreate& create)
{
    return "style " + hexText(create.Style) + " extended " + hexText(create.StyleExtended) + " owner " +
           std::to_string(create.Owner) + (create.PerMonitor ? " perMonitor" : "");
}

}  // namespace

bool windowEnter(const char* function, windowId window, const std::string& arguments)
{
    deskRequireInterface();
    const std::string subject = std::to_string(window);
    return !enter(function, arguments.empty() ? subject : subject + ' ' + arguments).Scripted;
}

bool windowEnter(const char* function)
{
    deskRequireInterface();
    return !enter(function).Scripted;
}

scriptedWindows::scriptedWindows(windowReceiver receiver) : Receiver(receiver) {}

scriptedWindows::~scriptedWindows()
{
    const desk desk;
    std::vector<windowId> mine;
    for (const auto& [id, window] : desk->Windows) {
        if (window.System == this)
            mine.push_back(id);
    }
    for (const windowId id : mine)
        desk.Forget(id);
}

windowId scriptedWindows::Create(const windowCreate& create, uint32_t& error)
{
    error = 0;
    windowId id = 0;
    {
        const desk desk;
        if (desk->Windows.empty())
            desk->Interface = std::this_thread::get_id();
        id = desk->Last + 1;
    }
    const bool works = windowEnter("windowCreate", id, createText(create));
    {
        const desk desk;
        if (!works || desk->Lost) {
            error = fakeCreateError;
            return 0;
        }
        id = ++desk->Last;
        desk->Windows[id] = {.Receiver = Receiver,
                             .System = this,
                             .Made = create,
                             .Style = create.Style,
                             .DPI = create.PerMonitor ? desk->DPI : 96,
                             .Topmost = (create.StyleExtended & styleTopmost) != 0};
        desk->Order.push_back(id);
    }
    deskTell(id, msgCreate);
    return id;
}

void scriptedWindows::Destroy(windowId window)
{
    if (windowEnter("windowDestroy", window))
        deskDestroy(window);
}

void* scriptedWindows::Object(windowId window)
{
    ask("windowObject");
    const desk desk;
    const fakes::window* found = desk.Find(window);
    return found ? found->Object : nullptr;
}

void scriptedWindows::SetObject(windowId window, void* object)
{
    deskRequireInterface();
    const desk desk;
    if (fakes::window* found = desk.Find(window))
        found->Object = object;
}

uint32_t scriptedWindows::Style(windowId window)
{
    deskRequireInterface();
    const desk desk;
    const fakes::window* found = desk.Find(window);
    return found ? found->Style : 0;
}

void scriptedWindows::SetStyle(windowId window, uint32_t style)
{
    if (!windowEnter("windowSetStyle", window, hexText(style)))
        return;
    const desk desk;
    if (fakes::window* found = desk.Find(window))
        found->Style = style;
}

void scriptedWindows::SetSizeRange(windowId window, const windowExtent& least, const windowExtent& most)
{
    const std::string range = extentText(least) + ' ' + extentText(most);
    if (!windowEnter("windowSetSizeRange", window, range))
        return;
    const desk desk;
    if (fakes::window* found = desk.Find(window)) {
        found->Least = least;
        found->Most = most;
    }
}

void scriptedWindows::SetTitle(windowId window, std::string_view title)
{
    if (!windowEnter("windowSetTitle", window, std::string(title)))
        return;
    const desk desk;
    if (fakes::window* found = desk.Find(window))
        found->Title = title;
}

uint32_t scriptedWindows::DPI(windowId window)
{
    ask("windowDPI");
    const desk desk;
    const fakes::window* found = desk.Find(window);
    return found ? found->DPI : 96;
}

}  // namespace fakes

std::unique_ptr<windowSystem> windowSystemMake(std::string_view className, windowReceiver receiver)
{
    fakes::enter("windowSystemMake", std::string(className));
    return std::make_unique<fakes::scriptedWindows>(receiver);
}
