// A serial port cannot be made from within a Windows program. Whoever runs the tests may name one in SKY_COM,
// with the number of a TCP port behind it: every connection to that plugs the serial port in, carries what
// goes over its line, and unplugs it at its end.
#include "platform/comm.h"
#include "tests/platform/contractLinks.h"

#include <cstdlib>
#include <memory>
#include <windows.h>

namespace {

// "COM7 4711"
struct offer {
    std::string Name;
    uint16_t Port = 0;
};

offer Offer()
{
    const char* const text = std::getenv("SKY_COM");
    const std::string whole = text == nullptr ? "" : text;
    const size_t blank = whole.find(' ');
    if (blank == std::string::npos)
        return {};
    return {whole.substr(0, blank), static_cast<uint16_t>(std::atoi(whole.c_str() + blank))};
}

class serialLine
{
public:
    explicit serialLine(const offer& given) : Name(given.Name), Started(socketStart()), Far(socketOpen())
    {
        IsThere = socketConnect(Far, {socketFamily::IPv4, given.Port, {127, 0, 0, 1}, 0}) &&
                  socketSetNonBlocking(Far) && contractAwait([&] { return CanBeOpened(); });
    }

    ~serialLine()
    {
        Unplug();
        if (Started)
            socketEnd();
    }

    serialLine(const serialLine&) = delete;
    serialLine& operator=(const serialLine&) = delete;

    void Unplug()
    {
        if (!IsThere)
            return;
        IsThere = false;
        socketClose(Far);
        contractAwait([&] { return !CanBeOpened(); });
    }

    size_t Send(std::string_view bytes)
    {
        const int64_t sent = socketSend(Far, bytes.data(), bytes.size());
        return sent < 0 ? 0 : static_cast<size_t>(sent);
    }

    std::string Received()
    {
        char bytes[4096];
        int64_t got = 0;
        while (!Dead && (got = socketReceive(Far, bytes, sizeof(bytes))) > 0)
            All.append(bytes, static_cast<size_t>(got));
        return All;
    }

    const std::string Name;
    bool IsThere = false;
    bool Dead = false;

private:
    bool CanBeOpened() const
    {
        const commHandle port = commOpen(Name);
        commClose(port);
        return port != commNone;
    }

    const bool Started;
    const socketHandle Far;
    std::string All;
};

std::unique_ptr<serialLine>& Line()
{
    static std::unique_ptr<serialLine> line;
    return line;
}

// The replacement of the system under which the tests are run on others.
bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace

bool contractPlug()
{
    const offer given = Offer();
    Line().reset();
    if (given.Name.empty())
        return false;
    Line() = std::make_unique<serialLine>(given);
    EXPECT_TRUE(Line()->IsThere);
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
    Line()->Dead = true;
}

bool contractPortIsExclusive()
{
    return !IsWine();
}

bool contractPortTakesAnyRate()
{
    return !IsWine();
}

bool contractResetIsAnEnd()
{
    return IsWine();
}
