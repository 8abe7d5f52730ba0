// One solution as NMEA sentences.
#pragma once

#include "tools/simulator/simCore.h"

#include <string>
#include <vector>

struct simNmeaStyle {
    // Version 4.1 and later: GSV names the signal and GSA the system, and satellites are numbered within
    // their system. Without it the numbers of all systems are kept apart: Galileo from 301, BeiDou from 401.
    bool Signals = true;
    // Whether the talker of a solution is "GN", for more than one system; else it is that of GPS.
    bool Mixed = true;
    int MinuteDecimals = 5;
    int SecondDecimals = 2;
};

// $GNRMC,091500.00,A,4722.61400,N,00832.50200,E,0.004,77.52,211126,,,A,V*57
std::string simNmeaRMC(const simEpoch& epoch, const simNmeaStyle& style);
// $GNVTG,77.52,T,,M,0.004,N,0.008,K,A*06
std::string simNmeaVTG(const simEpoch& epoch, const simNmeaStyle& style);
// $GNGGA,091500.00,4722.61400,N,00832.50200,E,1,12,0.61,408.0,M,47.3,M,,*5B
std::string simNmeaGGA(const simEpoch& epoch, const simNmeaStyle& style);
// $GNGSA,A,3,05,07,13,14,,,,,,,,,1.12,0.61,0.94,1*0D, one for each system
std::string simNmeaGSA(const simEpoch& epoch, const simNmeaStyle& style);
// $GPGSV,3,1,10,05,40,120,44,07,61,300,47,13,11,050,,14,22,170,39,1*6C, a group for each system and signal
std::string simNmeaGSV(const simEpoch& epoch, const simNmeaStyle& style);
// $GNGLL,4722.61400,N,00832.50200,E,091500.00,A,A*7D
std::string simNmeaGLL(const simEpoch& epoch, const simNmeaStyle& style);
// $GNZDA,091500.00,21,11,2026,00,00*78
std::string simNmeaZDA(const simEpoch& epoch, const simNmeaStyle& style);
