// The numbers of UBX: sync bytes, classes and messages, under their published names.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ubx {

constexpr uint8_t SyncFirst = 0xB5;
constexpr uint8_t SyncSecond = 0x62;

constexpr size_t HeaderSize = 4;    // class, id and length, in front of the payload
constexpr size_t ChecksumSize = 2;  // behind it
constexpr size_t PayloadLimit = 0xFFFF;

constexpr uint8_t NAV = 0x01;
constexpr uint8_t ACK = 0x05;
constexpr uint8_t CFG = 0x06;
constexpr uint8_t MON = 0x0A;
constexpr uint8_t TIM = 0x0D;

constexpr uint8_t NavPOSLLH = 0x02;
constexpr uint8_t NavDOP = 0x04;
constexpr uint8_t NavVELNED = 0x12;
constexpr uint8_t NavTIMEUTC = 0x21;
constexpr uint8_t NavSVINFO = 0x30;
constexpr uint8_t NavSAT = 0x35;
constexpr uint8_t NavSIG = 0x43;

constexpr uint8_t AckNAK = 0x00;
constexpr uint8_t AckACK = 0x01;

constexpr uint8_t CfgPRT = 0x00;
constexpr uint8_t CfgMSG = 0x01;
constexpr uint8_t CfgTP5 = 0x31;
constexpr uint8_t CfgGNSS = 0x3E;
constexpr uint8_t CfgVALSET = 0x8A;
constexpr uint8_t CfgVALGET = 0x8B;

constexpr uint8_t MonVER = 0x04;
constexpr uint8_t MonSPAN = 0x31;
constexpr uint8_t MonCOMMS = 0x36;

constexpr uint8_t TimTP = 0x01;

// Receivers from this protocol version on are configured by keys.
constexpr uint16_t ProtVerKeys = 0x1702;

// Receivers from this protocol version on report satellites by NAV-SAT, older ones by NAV-SVINFO.
constexpr uint16_t ProtVerNavSAT = 0x0F00;

// Receivers from this protocol version on take version 1 of CFG-TP5.
constexpr uint16_t ProtVerPulse = 0x1000;

constexpr size_t CfgPRTSize = 20;
constexpr size_t CfgTP5Size = 32;
constexpr size_t CfgGNSSHeader = 4;
constexpr size_t CfgGNSSBlock = 8;

}  // namespace ubx
