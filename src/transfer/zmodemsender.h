// The ZModem sender. It offers its first file without waiting for ZRINIT, sends CRC-16 frames, and stops for
// an acknowledgement at every fourth sub-packet.
#pragma once

#include "filestream.h"
#include "zmodemframing.h"

#include <array>
#include <optional>

class ZModemSender {
  public:
    ZModemSender(ZModemFraming& framing, FileStream& fin) : framing_(framing), fin_(fin) {}

    // Offers a file by its header block (name, NUL, text, NUL) and sends it. 0, ZSKIP or ZFERR, or -1.
    int SendZFile(const char* lpHeader, int cbHeader);

    void SayGoodbye();

    // The opening of a sender that waits for it: 0 after ZRINIT, or -1. Runs when a YModem sender's receiver
    // turns out to speak ZModem.
    int GetReceiverInit();

    BYTE Lzconv = 0;  // ZF0 to send
    BYTE Lzmanag = 4; // ZF1
    BYTE Lztrans = 0; // ZF2
    int blklen = 1024;

  private:
    // The offer: zmodemsender.cpp. No value: the file is offered once more.
    std::optional<int> AnswerToOffer();
    bool FindNextHeader();
    bool AnswerChecksum();
    DWORD FileChecksum(LONG start, LONG count);
    int SendFrom(LONG position);
    int CloseWith(int result);

    // The data: zmodemsenddata.cpp. No value: the next frame follows.
    int SendFileData();
    std::optional<int> SendFrame();
    std::optional<int> SendSubpackets();
    std::optional<int> SendEndOfFile();
    std::optional<int> AfterAnswer(int answer);
    std::optional<int> LookAtInput();
    std::optional<int> WaitingAnswer();
    ZSubpacketEnd NextEnd(int cbBytes);
    int zfilbuf();

    // The synchronisation: zmodemsendsync.cpp.
    int getinsync(bool dataRuns);
    int GoTo(LONG position);
    bool RepeatsTooOften(LONG position);
    bool Confirms(LONG position);
    bool Fruitless();

    // The opening: zmodemsendopening.cpp.
    std::optional<int> AnswerToInvitation();
    int TakeReceiverInit();
    void LimitBuffer();
    void LimitBlock();
    int SendZSINIT();

    ModemLine& Line() { return framing_.Line(); }

    ZModemFraming& framing_;
    FileStream& fin_;
    std::array<unsigned char, 1024> Txbuf = {};

    LONG Txpos = 0;     // where the next sub-packet stands in the file
    LONG bytcnt = 0;    // how far the file has been sent, or read for its checksum
    LONG Maxbytcnt = 0; // the largest so far
    LONG Lastsync = 0;  // where the receiver last asked to go on
    int Beenhereb4 = 0; // how often in a row it asked for that place
    bool Eofseen = false;
    int subpackets_ = 0; // since the last stop
    int strays_ = 0;     // bytes from the receiver that begin no header
    LONG confirmed_ = 0; // the furthest place that the receiver told
    int fruitless_ = 0;  // answers since the last one that moved the file on

    std::optional<LONG> askedCount_; // of the receiver's last request for a checksum
    DWORD checksum_ = 0;             // its answer

    int Rxbuflen = 0;           // the receiver's buffer, 0 is no limit
    int frameRoom_ = 0;         // what is left of it in this frame
    bool escapesAsked_ = false; // by the receiver, of all control characters
};
