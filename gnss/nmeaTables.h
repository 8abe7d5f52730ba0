// What the sentences say by a letter or a number, as tables.
#pragma once

#include "gnss/gnss.h"

#include <cstdint>
#include <span>
#include <string_view>

// Which constellation a talker stands for; the first row whose prefix begins a sentence decides.
struct nmeaTalker {
    std::string_view Prefix;
    gnss::Source Source;
};
inline constexpr nmeaTalker NmeaTalkers[] = {
    {"$BD", gnss::Source::BeiDou}, {"$GA", gnss::Source::Galileo}, {"$GB", gnss::Source::BeiDou},
    {"$GI", gnss::Source::NavIC},  {"$GL", gnss::Source::GLONASS}, {"$GN", gnss::Source::Mixed},
    {"$GP", gnss::Source::GPS},    {"$GQ", gnss::Source::QZSS},
};

// Ranges of satellite numbers that reveal a constellation; the first row that fits decides.
struct nmeaIdRange {
    uint32_t First;
    uint32_t Last;
    int32_t Shift;  // added to the number
    gnss::Source Source;
    bool OwnOfBeiDouAndGalileo;  // those two count their own satellites here
};
inline constexpr nmeaIdRange NmeaIdRanges[] = {
    {33, 64, 87, gnss::Source::SBAS, true},         {65, 96, -64, gnss::Source::GLONASS, false},
    {152, 158, 0, gnss::Source::SBAS, false},       {173, 182, -172, gnss::Source::IMES, false},
    {193, 202, -192, gnss::Source::QZSS, false},    {247, 253, -246, gnss::Source::NavIC, false},
    {301, 336, -300, gnss::Source::Galileo, false}, {401, 437, -400, gnss::Source::BeiDou, false},
};

// Signal ids of GSV by the talker's constellation, and the index in SignalName.
struct nmeaSignal {
    gnss::Source Source;
    char Id;
    uint8_t Signal;
};
inline constexpr nmeaSignal NmeaSignals[] = {
    {gnss::Source::BeiDou, '1', 4},   {gnss::Source::BeiDou, '3', 1},   {gnss::Source::BeiDou, '5', 7},
    {gnss::Source::BeiDou, '8', 13},  {gnss::Source::BeiDou, 'B', 10},  {gnss::Source::Galileo, '1', 19},
    {gnss::Source::Galileo, '2', 22}, {gnss::Source::Galileo, '4', 25}, {gnss::Source::Galileo, '5', 27},
    {gnss::Source::Galileo, '7', 16}, {gnss::Source::GLONASS, '1', 29}, {gnss::Source::GLONASS, '3', 30},
    {gnss::Source::GPS, '1', 31},     {gnss::Source::GPS, '5', 33},     {gnss::Source::GPS, '6', 32},
    {gnss::Source::GPS, '7', 34},     {gnss::Source::GPS, '8', 35},     {gnss::Source::NavIC, '1', 36},
    {gnss::Source::QZSS, '1', 37},    {gnss::Source::QZSS, '4', 38},    {gnss::Source::QZSS, '5', 40},
    {gnss::Source::QZSS, '6', 39},    {gnss::Source::QZSS, '7', 41},    {gnss::Source::QZSS, '8', 42},
    {gnss::Source::SBAS, '1', 43},
};

// Letters or digits and the value that they stand for.
template <class Value>
struct nmeaLetter {
    char Letter;
    Value Means;
};

// System ids of GSA; any other is GPS.
inline constexpr nmeaLetter<gnss::Source> NmeaSystems[] = {
    {'0', gnss::Source::QZSS},   {'2', gnss::Source::GLONASS}, {'3', gnss::Source::Galileo},
    {'4', gnss::Source::BeiDou}, {'5', gnss::Source::QZSS},    {'6', gnss::Source::NavIC},
};

// Mode indicators and the fix quality that each means; any other is 0.
inline constexpr nmeaLetter<uint8_t> NmeaModesGLL[] = {{'A', 1}, {'D', 2}, {'E', 6}};
inline constexpr nmeaLetter<uint8_t> NmeaModesRMC[] = {{'A', 1}, {'D', 2}, {'E', 6}, {'F', 5}, {'R', 4}};

// The reset command of a model, without "$" and checksum.
struct nmeaReset {
    uint8_t Model;
    std::string_view Command;
};
inline constexpr nmeaReset NmeaResets[] = {
    {1, "PSRF104,0,0,0,96000,237759,1946,12,4"},
    {2, "PORST,F"},
};

template <class Value>
constexpr Value nmeaMeaning(std::span<const nmeaLetter<Value>> table, char letter, Value otherwise)
{
    for (const nmeaLetter<Value>& row : table) {
        if (row.Letter == letter)
            return row.Means;
    }
    return otherwise;
}

// A satellite as the program numbers it.
struct nmeaSatellite {
    gnss::Source Source;
    uint8_t SvId;
};

// The satellite that a number of a sentence means, when the sentence speaks of `source`.
nmeaSatellite nmeaMapId(uint32_t id, gnss::Source source);

// The index in SignalName, 0 for an unknown combination.
uint8_t nmeaMapSignal(gnss::Source talker, char id);
