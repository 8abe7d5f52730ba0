// What each getter takes from each type of value. A type that a getter does not name leaves its output alone.
#include "foundations/fatal/crashFatal.h"
#include "foundations/settings/settingsNumber.h"
#include "foundations/settings/settingsRaw.h"
#include "foundations/settings/settingsReg.h"
#include "foundations/text/utfParse.h"

#include <algorithm>
#include <concepts>
#include <limits>
#include <string_view>

namespace {

template <class T>
T same(T stored)
{
    return stored;
}

template <class T>
T atMost(uint32_t stored)
{
    return static_cast<T>(std::min<uint32_t>(stored, std::numeric_limits<T>::max()));
}

template <int32_t Least>
int16_t clampedInt16(int32_t stored)
{
    return static_cast<int16_t>(std::clamp<int32_t>(stored, Least, std::numeric_limits<int16_t>::max()));
}

// "1.500000 -2.000000"
template <std::floating_point T>
void parseFloats(const std::string& text, T* value, uint64_t count)
{
    const char* at = text.c_str();
    for (uint64_t i = 0; i < count && *at != '\0'; ++i)
        value[i] = static_cast<T>(utfParseFlt(at, &at));
}

template <std::floating_point T>
void takeFloats(const settingsRaw& raw, T* value, uint64_t count)
{
    if (raw.Type == registryType::Dword)
        raw.First<int32_t>(value, count, [](int32_t stored) { return static_cast<T>(stored); });
    else if (raw.Type == registryType::Binary)
        raw.Each<T>(value, count, same<T>);
    else if (raw.Type == registryType::Text)
        parseFloats(raw.Text(), value, count);
}

// "hex(b):12,34,56,78", a form that old exports left in the store. A comma uses up a round like a number
// does, so the four numbers come to stand a byte apart and the rest of the form is not read.
template <std::integral T>
void parseHex(const std::string& text, T* value, uint64_t count)
{
    constexpr std::string_view Prefix = "hex(b):";
    constexpr uint32_t Rounds = 8;
    constexpr uint32_t BitsARound = 4;
    if (count == 0 || !text.starts_with(Prefix))
        return;
    const char* at = text.c_str() + Prefix.size();
    uint32_t result = 0;
    for (uint32_t i = 0; i < Rounds && *at != '\0'; ++i) {
        if (*at == ',')
            ++at;
        else
            result |= settingsParseUInt32(at, &at, 16) << (BitsARound * i);
    }
    value[0] = static_cast<T>(result);
}

// `Half` is the 32-bit kind whose sign decides how a REG_DWORD is widened.
template <class Half, std::integral T>
void takeWide(const settingsRaw& raw, T* value, uint64_t count)
{
    if (raw.Type == registryType::Dword)
        raw.First<Half>(value, count, [](Half stored) { return static_cast<T>(stored); });
    else if (raw.Type == registryType::Qword)
        raw.First<T>(value, count, same<T>);
    else if (raw.Type == registryType::Binary)
        raw.Each<T>(value, count, same<T>);
    else if (raw.Type == registryType::Text)
        parseHex(raw.Text(), value, count);
}

template <std::unsigned_integral T>
void takeNarrow(const settingsRaw& raw, T* value, uint64_t count)
{
    if (raw.Type == registryType::Dword)
        raw.First<uint32_t>(value, count, atMost<T>);
    else if (raw.Type == registryType::Binary)
        raw.Each<uint32_t>(value, count, atMost<T>);
}

}  // namespace

void settingsReg::GetText(const char* key, std::string* value, uint64_t count)
{
    if (count != 1) {
        crashFatal("settingsReg::GetText reads exactly one text.");
        return;
    }
    const settingsRaw raw = Read(key);
    if (raw.Type == registryType::Text || raw.Type == registryType::Binary)
        *value = raw.Text();
}

void settingsReg::GetDouble(const char* key, double* value, uint64_t count)
{
    takeFloats(Read(key), value, count);
}

void settingsReg::GetFloat(const char* key, float* value, uint64_t count)
{
    takeFloats(Read(key), value, count);
}

void settingsReg::GetUInt64(const char* key, uint64_t* value, uint64_t count)
{
    takeWide<uint32_t>(Read(key), value, count);
}

void settingsReg::GetInt64(const char* key, int64_t* value, uint64_t count)
{
    takeWide<int32_t>(Read(key), value, count);
}

void settingsReg::GetInt32(const char* key, int32_t* value, uint64_t count)
{
    const settingsRaw raw = Read(key);
    if (raw.Type == registryType::Dword)
        raw.First<int32_t>(value, count, same<int32_t>);
    else if (raw.Type == registryType::Binary)
        raw.Each<int32_t>(value, count, same<int32_t>);
}

void settingsReg::GetUInt16(const char* key, uint16_t* value, uint64_t count)
{
    takeNarrow(Read(key), value, count);
}

// The lower bound differs between the two forms: programs that read these values have come to rely on it.
void settingsReg::GetInt16(const char* key, int16_t* value, uint64_t count)
{
    const settingsRaw raw = Read(key);
    if (raw.Type == registryType::Dword)
        raw.First<int32_t>(value, count, clampedInt16<std::numeric_limits<int16_t>::min()>);
    else if (raw.Type == registryType::Binary)
        raw.Each<int32_t>(value, count, clampedInt16<0>);
}

void settingsReg::GetUInt8(const char* key, uint8_t* value, uint64_t count)
{
    takeNarrow(Read(key), value, count);
}

void settingsReg::GetBool(const char* key, bool* value, uint64_t count)
{
    const settingsRaw raw = Read(key);
    const auto isSet = [](auto stored) { return stored != 0; };
    if (raw.Type == registryType::Dword)
        raw.First<uint32_t>(value, count, isSet);
    else if (raw.Type == registryType::Binary)
        raw.Each<uint8_t>(value, count, isSet);
}
