#include "foundations/crash/crashReport.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)

namespace {

// The name comes in three parts of 16 bytes, under numbers of their own (CPUID, "Processor Brand String").
constexpr uint32_t FirstPart = 0x80000002;
constexpr uint32_t LastPart = 0x80000004;
constexpr uint32_t LargestNumber = 0x80000000;

struct answer {
    uint32_t A, B, C, D;
};

answer Ask(uint32_t number)
{
    answer said{};
    __asm__ volatile("cpuid" : "=a"(said.A), "=b"(said.B), "=c"(said.C), "=d"(said.D) : "a"(number), "c"(0));
    return said;
}

}  // namespace

void crashProcessor(char (&name)[crashProcessorRoom])
{
    std::fill(std::begin(name), std::end(name), '\0');
    if (Ask(LargestNumber).A < LastPart) {
        std::strcpy(name, "Unknown");
        return;
    }
    for (uint32_t part = FirstPart; part <= LastPart; ++part) {
        const answer said = Ask(part);
        std::memcpy(name + (part - FirstPart) * sizeof said, &said, sizeof said);
    }
}

#else

void crashProcessor(char (&name)[crashProcessorRoom])
{
    std::fill(std::begin(name), std::end(name), '\0');
    std::strcpy(name, "Unknown");
}

#endif
