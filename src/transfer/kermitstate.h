// What one Kermit transfer knows. One object for each transfer, on the worker's stack; the steps of both
// directions share it.
#pragma once

#include "transfer.h"
#include "xferfile.h"

#include "core/ascii.h"

#include <array>
#include <string>

namespace kermit {

inline constexpr int MAXTRY = 10;
inline constexpr int sequenceNumbers = 64;    // packet numbers run modulo this
inline constexpr int parameterCount = 6;      // bytes of data in a send-init and its answer
inline constexpr int largestPacket = 94;      // what one character of length can tell
inline constexpr int dataSize = 94;           // of a packet buffer
inline constexpr int mostData = dataSize - 1; // a NUL closes the data of a packet that came in
inline constexpr char quote = '#';

enum class State : char {
    ReceiveInit = 'R',
    SendInit = 'S',
    File = 'F',
    Data = 'D',
    EndOfFile = 'Z',
    Break = 'B',
    Complete = 'C',
    Abort = 'A',
};

using PacketData = std::array<char, dataSize>;

} // namespace kermit

struct KermitState {
    explicit KermitState(TRANSFER& theTransfer) : transfer(theTransfer) {}

    TRANSFER& transfer;

    std::string szKermitSource;
    std::string szKermitDest;
    int cbData = 0; // in packet: data to be sent, -1 at the end of the file

    // What the other side wants to get.
    int spsiz = 0; // longest packet, 0 to largestPacket
    int npad = 0;  // padding characters ahead of a packet
    char padchar = ascii::NUL;
    char eol = ascii::CR;
    char ctlq = kermit::quote;

    int nSequence = 0;
    int cTries = 0;      // entries of the state
    int oldTries = 0;    // those of the state before
    int bSendErrors = 0; // error packets go on the line; set by nobody
    int bImage = 1;      // all eight bits of a byte are data
    kermit::State cState = kermit::State::Abort;

    kermit::PacketData recpkt = {};
    kermit::PacketData packet = {};

    // A file is opened for sending only as long as none was opened before; see the tests of batches.
    FileHandle hFile;
    bool bHadFile = false;
    ReadAhead ahead;
    DWORD cbWritten = 0; // bytes of the file that comes in
};

namespace kermit {

inline bool TriesAreUsedUp(int& tries) {
    return tries++ > MAXTRY;
}

inline int NumberBefore(int number) {
    return number <= 0 ? sequenceNumbers - 1 : number - 1;
}

inline void TakeNextNumber(KermitState& kermit) {
    kermit.nSequence = (kermit.nSequence + 1) % sequenceNumbers;
}

} // namespace kermit
