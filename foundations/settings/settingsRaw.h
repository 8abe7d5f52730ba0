// A registry value as it was read: a type and bytes that anyone may have written.
#pragma once

#include "platform/registry.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

struct settingsRaw {
    registryType Type = {};  // none of the known ones when nothing could be read
    const uint8_t* Bytes = nullptr;
    uint32_t Size = 0;

    // The bytes as UTF-16 up to a zero, in UTF-8.
    std::string Text() const;

    // Converts as many whole elements of type Stored as both the value and the caller have.
    template <class Stored, class T, class Convert>
    void Each(T* value, uint64_t count, Convert convert) const
    {
        const uint64_t elements = std::min<uint64_t>(count, Size / sizeof(Stored));
        for (uint64_t i = 0; i < elements; ++i) {
            Stored stored;
            std::memcpy(&stored, Bytes + i * sizeof(Stored), sizeof(Stored));
            value[i] = convert(stored);
        }
    }

    // The same for element 0 alone.
    template <class Stored, class T, class Convert>
    void First(T* value, uint64_t count, Convert convert) const
    {
        Each<Stored>(value, std::min<uint64_t>(count, 1), convert);
    }
};
