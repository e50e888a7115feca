// ZModem headers and data sub-packets, on the line and off it, for both directions. Origin: see
// zmodemframes.h. What this side picks: it sends CRC-16 frames only, and takes all kinds, those with a length
// byte too.
#pragma once

#include "modemline.h"
#include "zmodemframes.h"

#include <array>
#include <cstdint>

// A position as headers carry it: four bytes, low one first. StoreHeader is the reverse.
LONG ReadPosition(const unsigned char* lpBytes);

using ZHeader = std::array<unsigned char, 16>; // four bytes are used but in the kinds with a length

class ZModemFraming {
  public:
    explicit ZModemFraming(ModemLine& line) : line_(line) {}

    ModemLine& Line() { return line_; }

    // Headers out. The position goes into Txhdr, low byte first; callers may set flags there instead.
    void StoreHeader(LONG position);
    void SendHexHeader(int type);
    void SendBinaryHeader(int type);

    // Headers in: the frame type, ZCAN, or a ReadResult. Fills Rxhdr, Rxpos, Rxtype.
    int GetHeader();

    // Data. ReceiveData gives a sub-packet's end (GotZCRCE ...), ZCAN or a negative result, and the count in
    // Rxcount. It stores at most size bytes.
    void SendData(const void* lpBytes, int cbBytes, ZSubpacketEnd end);
    int ReceiveData(void* lpBuffer, int cbBuffer);

    void SetEscapes(const unsigned char* lpMask); // 33 bits in 5 bytes, low bit first: see Zsendmask

    int Rxtimeout = 100; // tenths of a second
    int Rxframeind = 0;  // frame character of the last header
    int Rxtype = 0;
    int Rxcount = 0;
    LONG Rxpos = 0;
    int Rxhlen = 0;
    ZHeader Rxhdr = {};
    ZHeader Txhdr = {};
    int Zctlesc = 0;                     // all control characters are escaped
    int Znulls = 0;                      // NULs ahead of a ZDATA header
    std::array<bool, 33> Zsendmask = {}; // control characters to escape, and 0xFF last
    LONG Baudrate = 57600;               // never refreshed from the port: a part of the junk limit
    LONG Zrwindow = 1400;
    int Crc32 = 0;        // of the frame coming in: 0 CRC-16, 1 or 2 CRC-32
    int Txfcs32 = 0;      // CRC-32 wanted for sending; every binary header clears it
    int Crc32t = 0;       // CRC-32 in use for sending
    bool bZModem = false; // set by any good header
    int Protocol = 0;     // set to 5 by a good CRC-16 header

  private:
    struct HeaderSearch;
    struct HeaderForm;
    struct DataWords;

    void SendEscaped(int c);
    template <class Sum>
    void SendHeaderBytes(ZFrameCharacter kind, int type);
    template <class Sum>
    void SendSubpacket(const void* lpBytes, int cbBytes, ZSubpacketEnd end);
    void SendBinaryHeader32(int type);
    void SendData32(const void* lpBytes, int cbBytes, ZSubpacketEnd end);

    // A byte, GotCancel, GotZCRCE ... or a negative result. The common byte is told by two of its bits.
    int ReadEscaped() {
        const int c = line_.ReadLine(Rxtimeout);
        return c & notControl ? c : ReadControl(c);
    }
    int ReadControl(int c);
    int ReadAfterZdle();
    int ReadAfterDropped();
    int Read7Bit();
    int ReadHex();

    template <class Sum>
    int ReceiveHeader(const HeaderForm& form);
    int ReceiveBinaryHeader();
    int ReceiveBinaryHeader32();
    int ReceiveHexHeader();
    template <class Sum>
    int ReadSum(Sum& sum);
    template <class Sum>
    int ReceiveSubpacket(const DataWords& words, void* lpBuffer, int cbBuffer);
    int ReceiveData32(void* lpBuffer, int cbBuffer);

    static constexpr int notControl = 0x60; // a byte with neither bit is a control character

    ModemLine& line_;
};
