#include "tests/platform/linux/serialLine.h"

#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/platform/contractLinks.h"

#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace {

std::filesystem::path NewRuntime()
{
    return std::filesystem::temp_directory_path() /
           ("skyreckoning runtime " + std::to_string(threadId()) + " " + std::to_string(clockSteadyNs()));
}

std::unique_ptr<serialLine>& Line()
{
    static std::unique_ptr<serialLine> line;
    return line;
}

}  // namespace

serialLine::serialLine(const std::string& name)
    : Name(name),
      Runtime(NewRuntime()),
      Bound("XDG_RUNTIME_DIR", Runtime.c_str()),
      Far(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    char device[100] = {};
    EXPECT_EQ(grantpt(Far), 0);
    EXPECT_EQ(unlockpt(Far), 0);
    EXPECT_EQ(ptsname_r(Far, device, sizeof(device)), 0);
    Device = device;
    Held = open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(Held, 0);
    std::filesystem::create_directories(Runtime / "skyreckoning");
    std::filesystem::create_symlink(Device, Runtime / "skyreckoning" / Name);
}

serialLine::~serialLine()
{
    Unplug();
    std::error_code ignored;
    std::filesystem::remove_all(Runtime, ignored);
}

void serialLine::Unplug()
{
    if (Far < 0)
        return;
    close(Far);
    close(Held);
    Far = -1;
    std::error_code ignored;
    std::filesystem::remove(Runtime / "skyreckoning" / Name, ignored);
}

size_t serialLine::Send(std::string_view bytes)
{
    const ssize_t put = write(Far, bytes.data(), bytes.size());
    return put < 0 ? 0 : static_cast<size_t>(put);
}

std::string serialLine::Received()
{
    char bytes[4096];
    ssize_t got = 0;
    while (!Dead && (got = read(Far, bytes, sizeof(bytes))) > 0)
        All.append(bytes, static_cast<size_t>(got));
    return All;
}

bool contractPlug()
{
    // The last one goes first, for it puts back where ports are looked for.
    Line().reset();
    Line() = std::make_unique<serialLine>();
    return true;
}

void contractUnplug()
{
    if (Line())
        Line()->Unplug();
}

std::string contractPort()
{
    return Line()->Name;
}

size_t contractLineSend(std::string_view bytes)
{
    return Line()->Send(bytes);
}

std::string contractLineReceived()
{
    return Line()->Received();
}

void contractLineDies()
{
    Line()->Die();
}

bool contractPortIsExclusive()
{
    return true;
}

bool contractPortTakesAnyRate()
{
    return true;
}

bool contractResetIsAnEnd()
{
    return false;
}
