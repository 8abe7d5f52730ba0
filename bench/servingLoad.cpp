// A receiver on a virtual port and a crowd of clients for a copy of the program that serves it: who gets
// what, and how late.
//
//     servingLoad PORT SECONDS CLIENTS COMERS      as serving_load.py starts it
//
// It makes the virtual port, says "ready", and waits for a line with the TCP port of the server. Then a
// stream of 115200 baud goes out for so many seconds. CLIENTS read it, one more connects and reads nothing,
// and COMERS come and go each second. Each sentence of the stream has a number and the moment at which it was
// written, so every client can tell whether it got every byte, and when. At the end there is a line of
// figures.
#include "link/pktComm.h"
#include "platform/clock.h"
#include "platform/pty.h"
#include "platform/socket.h"
#include "platform/thread.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr double BytesPerSecond = 11520;
constexpr int64_t NsPerSecond = 1'000'000'000;
constexpr int64_t NsPerMs = 1'000'000;

// "$GPGLL,4723.000000123,N,00832.000000012345678,E,120000,A,A*5C\r\n": the number, and the moment in ns.
constexpr size_t NumberAt = 12;
constexpr size_t NumberDigits = 9;
constexpr size_t MomentAt = 30;
constexpr size_t MomentDigits = 15;
constexpr size_t SentenceSize = 63;

std::string digits(uint64_t value, size_t count)
{
    std::string text = std::to_string(value);
    return std::string(count - std::min(count, text.size()), '0') + text;
}

std::string sentence(uint64_t number, uint64_t moment)
{
    const std::string body = "GPGLL,4723." + digits(number, NumberDigits) + ",N,00832." +
                             digits(moment, MomentDigits) + ",E,120000,A,A";
    unsigned sum = 0;
    for (const char letter : body)
        sum ^= static_cast<unsigned char>(letter);
    constexpr char hex[] = "0123456789ABCDEF";
    return "$" + body + "*" + hex[sum >> 4] + hex[sum & 15] + "\r\n";
}

uint64_t numberIn(std::string_view text)
{
    uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

// How late sentences arrived, in steps of 50 microseconds up to two seconds.
class lateness
{
public:
    void Add(int64_t ns)
    {
        const int64_t step = std::clamp<int64_t>(ns / StepNs, 0, Steps - 1);
        ++Counts[static_cast<size_t>(step)];
        ++Total;
    }

    double Ms(double part) const
    {
        const auto wanted = static_cast<uint64_t>(static_cast<double>(Total) * part);
        uint64_t seen = 0;
        for (size_t step = 0; step < Counts.size(); step++) {
            seen += Counts[step];
            if (seen > wanted)
                return static_cast<double>(step + 1) * static_cast<double>(StepNs) / 1e6;
        }
        return 0;
    }

    uint64_t Count() const { return Total; }

private:
    static constexpr int64_t StepNs = 50'000;
    static constexpr int64_t Steps = 40'000;
    std::vector<uint64_t> Counts = std::vector<uint64_t>(Steps);
    uint64_t Total = 0;
};

// One reader of the served stream.
class reader
{
public:
    explicit reader(uint16_t port)
    {
        socketAddress address;
        address.Port = port;
        const uint8_t host[] = {127, 0, 0, 1};
        std::copy(std::begin(host), std::end(host), address.Host);
        Socket = socketOpen();
        Connected = socketConnect(Socket, address);
        socketSetNonBlocking(Socket);
    }
    ~reader() { socketClose(Socket); }
    reader(const reader&) = delete;
    reader& operator=(const reader&) = delete;

    bool IsConnected() const { return Connected && !Ended; }

    // Takes what has come; whether there was anything.
    bool Read(lateness& late)
    {
        uint8_t bytes[65536];
        const int64_t count = socketReceive(Socket, bytes, sizeof bytes);
        if (count <= 0) {
            Ended = Ended || count == 0;
            return false;
        }
        Wire.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
        TakeMessages();
        TakeSentences(late);
        return true;
    }

    uint64_t Sentences = 0;
    uint64_t Wrong = 0;  // sentences that are not the one after the last, byte for byte
    uint64_t Last = 0;

private:
    void TakeMessages()
    {
        size_t at = 0;
        while (Wire.size() - at >= sizeof(msgHead)) {
            msgHead head;
            std::memcpy(&head, Wire.data() + at, sizeof head);
            if (Wire.size() - at < sizeof head + head.length)
                break;
            if (head.key == pktKey::GNSS)
                Stream.append(Wire, at + sizeof head + 4, head.length - 4);
            at += sizeof head + head.length;
        }
        Wire.erase(0, at);
    }

    void TakeSentences(lateness& late)
    {
        size_t at = Begun ? 0 : Stream.find('$');
        if (at == std::string::npos)
            return;
        const auto now = static_cast<uint64_t>(clockSteadyNs());
        for (; Stream.size() - at >= SentenceSize; at += SentenceSize) {
            const std::string_view one(Stream.data() + at, SentenceSize);
            const uint64_t number = numberIn(one.substr(NumberAt, NumberDigits));
            const uint64_t moment = numberIn(one.substr(MomentAt, MomentDigits));
            if (one != sentence(number, moment) || (Begun && number != Last + 1))
                Wrong++;
            late.Add(static_cast<int64_t>(now - moment));
            Begun = true;
            Last = number;
            Sentences++;
        }
        Stream.erase(0, at);
    }

    socketHandle Socket = socketNone;
    bool Connected = false;
    bool Ended = false;
    bool Begun = false;
    std::string Wire;
    std::string Stream;
};

// Writes the stream at the speed of the line until it is told to stop.
void play(ptyPort* port, const std::atomic<bool>& stop, std::atomic<uint64_t>& written)
{
    const int64_t start = clockSteadyNs();
    uint64_t sent = 0;
    std::string left;
    while (!stop) {
        const auto due =
            static_cast<uint64_t>(static_cast<double>(clockSteadyNs() - start) / 1e9 * BytesPerSecond);
        while (sent + left.size() < due)
            left += sentence(written++, static_cast<uint64_t>(clockSteadyNs()));
        const size_t count = ptyWrite(port, left.data(), left.size());
        left.erase(0, count);
        sent += count;
        threadSleep(2);
    }
}

struct figures {
    uint64_t Sentences = 0;
    uint64_t Wrong = 0;
    unsigned Lost = 0;  // readers whose connection ended
    uint64_t Comers = 0;
    uint64_t ComersRefused = 0;
    uint64_t ComersWrong = 0;
};

// A comer reads for half a second and leaves.
struct comer {
    std::unique_ptr<reader> Reader;
    int64_t Until;
};

class crowd
{
public:
    crowd(uint16_t port, unsigned clients, unsigned comers) : Port(port), ComersEach(comers), Stalled(port)
    {
        for (unsigned i = 0; i < clients; i++)
            Readers.push_back(std::make_unique<reader>(port));
    }

    void Run(int64_t seconds)
    {
        const int64_t end = clockSteadyNs() + seconds * NsPerSecond;
        int64_t next = clockSteadyNs();
        lateness unused;
        while (clockSteadyNs() < end) {
            bool busy = false;
            for (const auto& each : Readers)
                busy = each->Read(Late) || busy;
            for (comer& each : Comers)
                each.Reader->Read(unused);
            if (ComersEach > 0 && clockSteadyNs() >= next) {
                next += NsPerSecond / ComersEach;
                Come();
            }
            Leave();
            if (!busy)
                threadSleep(1);
        }
    }

    figures Result() const
    {
        figures result = Found;
        for (const auto& each : Readers) {
            result.Sentences += each->Sentences;
            result.Wrong += each->Wrong;
            result.Lost += each->IsConnected() ? 0U : 1U;
        }
        return result;
    }

    // The number of the sentence up to which every reader has the stream.
    uint64_t Reached() const
    {
        uint64_t reached = UINT64_MAX;
        for (const auto& each : Readers)
            reached = std::min(reached, each->Last);
        return reached;
    }

    lateness Late;

private:
    void Come()
    {
        Comers.push_back({std::make_unique<reader>(Port), clockSteadyNs() + NsPerSecond / 2});
        Found.Comers++;
        Found.ComersRefused += Comers.back().Reader->IsConnected() ? 0U : 1U;
    }

    void Leave()
    {
        while (!Comers.empty() && Comers.front().Until < clockSteadyNs()) {
            Found.ComersWrong += Comers.front().Reader->Wrong;
            Comers.erase(Comers.begin());
        }
    }

    uint16_t Port;
    unsigned ComersEach;
    reader Stalled;
    std::vector<std::unique_ptr<reader>> Readers;
    std::vector<comer> Comers;
    figures Found;
};

int Measure(ptyPort* port, int64_t seconds, unsigned clients, unsigned comers)
{
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> written{0};
    std::jthread player([&] { play(port, stop, written); });
    std::printf("ready\n");
    std::fflush(stdout);
    unsigned serverPort = 0;
    if (std::scanf("%u", &serverPort) != 1)  // NOLINT(cert-err34-c): a wrong number is a refused connection
        return 2;
    crowd all(static_cast<uint16_t>(serverPort), clients, comers);
    all.Run(seconds);
    const uint64_t last = written - 1;
    stop = true;
    const figures found = all.Result();
    std::printf("{\"last\": %llu, \"reached\": %llu, \"sentences\": %llu, \"wrong\": %llu, \"lost\": %u, "
                "\"comers\": %llu, \"comersRefused\": %llu, \"comersWrong\": %llu, \"medianMs\": %.2f, "
                "\"p99Ms\": %.2f}\n",
                static_cast<unsigned long long>(last), static_cast<unsigned long long>(all.Reached()),
                static_cast<unsigned long long>(found.Sentences),
                static_cast<unsigned long long>(found.Wrong), found.Lost,
                static_cast<unsigned long long>(found.Comers),
                static_cast<unsigned long long>(found.ComersRefused),
                static_cast<unsigned long long>(found.ComersWrong), all.Late.Ms(0.5), all.Late.Ms(0.99));
    return 0;
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 5) {
        std::fprintf(stderr, "usage: servingLoad PORT SECONDS CLIENTS COMERS\n");
        return 2;
    }
    socketStart();
    ptyFault fault = ptyFault::None;
    ptyPort* const port = ptyOpen(arguments[1], fault);
    if (port == nullptr) {
        std::fprintf(stderr, "servingLoad: there is no virtual port\n");
        return 2;
    }
    const int code =
        Measure(port, static_cast<int64_t>(numberIn(arguments[2])),
                static_cast<unsigned>(numberIn(arguments[3])), static_cast<unsigned>(numberIn(arguments[4])));
    ptyClose(port);
    socketEnd();
    return code;
}
