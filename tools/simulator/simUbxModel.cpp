#include "tools/simulator/simUbxModel.h"

#include "tools/simulator/simUbxKeys.h"

#include <algorithm>

namespace {

using namespace simUbxKey;

constexpr const char* Extensions7[] = {"PROTVER 14.00", "GPS;SBAS;GLO;QZSS"};
constexpr const char* Extensions8[] = {"ROM BASE 2.01 (75331)", "FWVER=TIM 1.01",        "PROTVER=18.00",
                                       "MOD=NEO-M8T-0",         "FIS=0xEF4015 (100111)", "GPS;GLO;GAL;BDS",
                                       "SBAS;IMES;QZSS"};
constexpr const char* ExtensionsF9P[] = {"ROM BASE 0x118B2060", "FWVER=HPG 1.32",  "PROTVER=32.01",
                                         "MOD=ZED-F9P",         "GPS;GLO;GAL;BDS", "SBAS;QZSS"};
constexpr const char* ExtensionsM9N[] = {"ROM BASE 0x118B2060", "FWVER=SPG 4.04",  "PROTVER=32.01",
                                         "MOD=NEO-M9N",         "GPS;GLO;GAL;BDS", "SBAS;QZSS"};
constexpr const char* ExtensionsF9R[] = {"ROM BASE 0x118B2060", "FWVER=HPS 1.30",  "PROTVER=33.30",
                                         "MOD=ZED-F9R",         "GPS;GLO;GAL;BDS", "SBAS;QZSS"};
constexpr const char* ExtensionsM10[] = {"FWVER=SPG 5.10", "PROTVER=34.10", "MOD=SAM-M10Q", "GPS;GLO;GAL;BDS",
                                         "SBAS;QZSS"};
constexpr const char* ExtensionsM10S[] = {"FWVER=SPG 5.10", "PROTVER=34.10", "MOD=MAX-M10S",
                                          "GPS;GLO;GAL;BDS", "SBAS;QZSS"};
constexpr const char* ExtensionsF10N[] = {"FWVER=SPG 6.00", "PROTVER=40.00", "MOD=NEO-F10N", "GPS;GAL;BDS",
                                          "SBAS;QZSS;NAVIC"};

constexpr simUbxSystem Systems7[] = {
    {simSystem::GPS, 4, 255, true},
    {simSystem::SBAS, 1, 3, true},
    {simSystem::QZSS, 0, 3, true},
    {simSystem::GLONASS, 8, 255, false},
};
constexpr simUbxSystem Systems8[] = {
    {simSystem::GPS, 8, 16, true},     {simSystem::SBAS, 1, 3, true},  {simSystem::Galileo, 4, 8, false},
    {simSystem::BeiDou, 8, 16, false}, {simSystem::IMES, 0, 8, false}, {simSystem::QZSS, 0, 3, true},
    {simSystem::GLONASS, 8, 14, true},
};
constexpr simUbxSystem Systems9[] = {
    {simSystem::GPS, 8, 16, true},   {simSystem::SBAS, 3, 3, true}, {simSystem::Galileo, 8, 12, true},
    {simSystem::BeiDou, 2, 5, true}, {simSystem::QZSS, 3, 4, true}, {simSystem::GLONASS, 8, 12, true},
};
constexpr simUbxSystem SystemsF10[] = {
    {simSystem::GPS, 8, 16, true},   {simSystem::SBAS, 3, 3, true}, {simSystem::Galileo, 8, 12, true},
    {simSystem::BeiDou, 2, 5, true}, {simSystem::QZSS, 3, 4, true}, {simSystem::NavIC, 0, 4, false},
};

constexpr uint32_t SignalsM9N[] = {GpsL1CA, SbasL1CA, GalE1, BdsB1I, QzssL1CA, QzssL1S, GloL1};
constexpr uint32_t SignalsF9[] = {GpsL1CA, GpsL2C,   SbasL1CA, GalE1,   GalE5b, BdsB1I,
                                  BdsB2I,  QzssL1CA, QzssL1S,  QzssL2C, GloL1,  GloL2};
constexpr uint32_t SignalsM10[] = {GpsL1CA, SbasL1CA, GalE1, BdsB1I, BdsB1C, QzssL1CA, QzssL1S, GloL1};
constexpr uint32_t SignalsF10N[] = {GpsL1CA, GpsL5,    SbasL1CA, GalE1,  GalE5a, BdsB1C,
                                    BdsB2a,  QzssL1CA, QzssL1S,  QzssL5, NavicL5};

constexpr simUbxModel Models[] = {
    {simModel::UBlox7,
     "1.00 (59842)",
     "00070000",
     Extensions7,
     true,
     false,
     false,
     true,
     false,
     0,
     22,
     0,
     Systems7,
     {}},
    {simModel::M8,
     "EXT CORE 3.01 (111141)",
     "00080000",
     Extensions8,
     true,
     false,
     true,
     true,
     false,
     0,
     32,
     1,
     Systems8,
     {}},
    {simModel::M9, "EXT CORE 1.00 (f10c36)", "00190000", ExtensionsF9P, true, true, true, false, true, 2, 60,
     1, Systems9, SignalsF9},
    {simModel::NeoM9N, "EXT CORE 4.04 (7f89f7)", "00190000", ExtensionsM9N, true, true, true, false, true, 1,
     60, 1, Systems9, SignalsM9N},
    {simModel::ZedF9R, "EXT CORE 1.00 (a669b8)", "00190000", ExtensionsF9R, true, true, true, false, true, 2,
     60, 1, Systems9, SignalsF9},
    {simModel::M10, "ROM SPG 5.10 (7b202e)", "000A0000", ExtensionsM10, false, true, true, false, true, 1, 60,
     1, Systems9, SignalsM10},
    {simModel::MaxM10S, "ROM SPG 5.10 (7b202e)", "000A0000", ExtensionsM10S, false, true, true, false, true,
     1, 60, 1, Systems9, SignalsM10},
    {simModel::NeoF10N, "ROM SPG 6.00 (bd1f3e)", "000A0000", ExtensionsF10N, false, true, true, false, true,
     2, 60, 1, SystemsF10, SignalsF10N},
};

}  // namespace

const simUbxModel* simUbxModelOf(simModel model)
{
    const simUbxModel* const found = std::ranges::find(Models, model, &simUbxModel::Model);
    return found == std::end(Models) ? nullptr : found;
}
