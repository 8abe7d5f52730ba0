// Decoders as JSON objects: every field that a page shows, under the name that it has in the decoder.
#pragma once

#include "gnss/gnssNMEA.h"
#include "gnss/gnssTSIP.h"
#include "gnss/gnssUBX.h"
#include "tools/decode/jsonWriter.h"

#include <cstdint>

// How often a decoder raised its events.
struct decodeEvents {
    uint64_t NewData = 0;
    uint64_t PPS = 0;
};

// Without events their counts are left out.
void decodeWrite(jsonWriter& json, const gnssNMEA& receiver, const decodeEvents* events = nullptr);
void decodeWrite(jsonWriter& json, const gnssTSIP& receiver, const decodeEvents* events = nullptr);
void decodeWrite(jsonWriter& json, const gnssUBX& receiver, const decodeEvents* events = nullptr);
