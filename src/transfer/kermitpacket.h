// Kermit's packets, on the line and off it, and the parameters of a send-init.
//
//     padding, SOH, LEN, SEQ, TYPE, data, CHECK, eol
#pragma once

#include "kermitstate.h"

namespace kermit {

// What stands in a packet's TYPE, and what ReceivePacket gives besides.
enum PacketType : int {
    PacketFault = -1, // the step failed by itself
    NoPacket = 0,     // time-out or wrong check
    InitPacket = 'S',
    AckPacket = 'Y',
    NakPacket = 'N',
    FilePacket = 'F',
    DataPacket = 'D',
    EndOfFilePacket = 'Z',
    BreakPacket = 'B',
    ErrorPacket = 'E',
};

// LEN is the count of what follows it, in a printable character: data, SEQ, TYPE and CHECK.
inline constexpr int blank = 32;
inline constexpr int lengthOffset = blank + 3;
inline constexpr int mostText = largestPacket - 3; // characters of a name or a text: LEN stays printable

struct Packet {
    int type = NoPacket; // any byte, or a PacketType
    int length = 0;      // of the data, 0 to mostData
    int number = 0;      // -32 to 223: only 0 to 63 are numbers of packets
};

} // namespace kermit

// True when the whole packet was taken. length: -1 to mostData.
bool SendPacket(KermitState& kermit, char type, int number, int length, const char* data);

// The data, closed by a NUL, goes to data; without a packet that is junk.
kermit::Packet ReceivePacket(KermitState& kermit, kermit::PacketData& data);

void FillParameters(kermit::PacketData& data);

// A field that the other side left out keeps its value.
void ReadParameters(KermitState& kermit, const kermit::PacketData& data, int length);
