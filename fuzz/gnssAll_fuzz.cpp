// All three decoders on one stream, as the supervisor has them while it looks for the protocol. What the UBX
// decoder sends is answered by a receiver that the input leads: it acknowledges, refuses, answers well,
// answers nonsense, or is silent. In between the user asks for signals, pulses and spectra.
#include "fuzz/ubxFrames.h"
#include "gnss/gnssNMEA.h"
#include "gnss/gnssTSIP.h"
#include "gnss/gnssUBX.h"

#include <cstring>

namespace {

class bench
{
public:
    explicit bench(fuzzInput& input) : Input(input)
    {
        NMEA.OnSend = [](const uint8_t*, size_t) {};
        TSIP.OnSend = [](const uint8_t*, size_t) {};
        UBX.OnSend = [this](const uint8_t* bytes, size_t count) { Asked.assign(bytes, bytes + count); };
        UBX.OnRFSpectrum = [](const gnssUBX::Spectrum&) {};
        NMEA.Restart();
        TSIP.Restart();
        UBX.Restart();
    }

    void Run()
    {
        while (!Input.Empty())
            Act();
    }

private:
    void Feed(const fuzzBytes& bytes)
    {
        NMEA.Feed(bytes.data(), bytes.size());
        TSIP.Feed(bytes.data(), bytes.size());
        UBX.Feed(bytes.data(), bytes.size());
    }

    void Act()
    {
        switch (Input.Byte() % 8) {
        case 0:
            return Feed(Input.Take(Input.Byte()));
        case 1:
            return Feed(ubxTakeFrame(Input));
        case 2:
            return Select();
        case 3:
            return Pulse();
        case 4:
            UBX.PendingSpectrum = 1;
            return;
        case 5:
            return Reset();
        default:
            return Answer();
        }
    }

    void Select()
    {
        uint32_t bits = 0;
        for (unsigned byte = 0; byte < 3; byte++)
            bits = bits << 8 | Input.Byte();
        const auto on = [bits](unsigned flag) { return (bits >> flag & 1) != 0; };
        UBX.GNSSSelect(on(0), on(1), on(2), on(3), on(4), on(5), on(6), on(7), on(8), on(9), on(10), on(11),
                       on(12), on(13), on(14), on(15), on(16), on(17), on(18));
    }

    void Pulse()
    {
        fuzzBytes bytes = Input.Take(8);
        bytes.resize(8);
        float values[2];
        std::memcpy(values, bytes.data(), sizeof values);
        UBX.PPSRate = values[0];
        UBX.PPSDuty = values[1];
        UBX.PendingPPS = 1;
    }

    void Reset()
    {
        const uint8_t which = Input.Byte();
        if (which % 3 == 0 && NMEA.IsIdle())
            NMEA.ResetReceiver();
        if (which % 3 == 1)
            TSIP.ResetReceiver();
        if (which % 3 == 2 && UBX.IsIdle())
            UBX.ResetReceiver();
    }

    // To the message that the UBX decoder sent last.
    void Answer()
    {
        if (Asked.size() < 8)
            return;
        const uint8_t messageClass = Asked[2];
        const uint8_t id = Asked[3];
        const uint8_t choice = Input.Byte();
        if (choice % 4 == 3)
            return;
        if (choice % 2 == 0)
            Feed(ubxFramed(messageClass, id, messageClass == 0x06 ? Input.Take(choice) : Told(id)));
        if (messageClass == 0x06)
            Feed(ubxFramed(0x05, choice < 230 ? 1 : 0, {messageClass, id}));
    }

    // MON-VER of a model, or MON-COMMS with one port that counts.
    fuzzBytes Told(uint8_t id)
    {
        if (id == 0x04) {
            constexpr const char* Modules[] = {"MOD=NEO-M9N", "MOD=ZED-F9R", "MOD=MAX-M10S", "MOD=NEO-F10N",
                                               ""};
            fuzzBytes version(100);
            std::memcpy(&version[30], Input.Byte() % 2 == 0 ? "00190000" : "00080000", 8);
            const char* const module = Modules[Input.Byte() % std::size(Modules)];
            std::memcpy(&version[40], module, std::strlen(module));
            std::memcpy(&version[70], Input.Byte() % 2 == 0 ? "PROTVER=34.10" : "PROTVER=18.00", 13);
            return version;
        }
        fuzzBytes comms(48);
        comms[1] = 1;
        comms[9] = Input.Byte() % 4;
        comms[20] = ++Polls;
        return comms;
    }

    fuzzInput& Input;
    gnssNMEA NMEA;
    gnssTSIP TSIP;
    gnssUBX UBX;
    fuzzBytes Asked;
    uint8_t Polls = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    fuzzInput input(bytes, size);
    bench(input).Run();
    return 0;
}
