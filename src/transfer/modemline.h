// The line as the engine of XModem, YModem and ZModem sees it: bytes in with a limit, bytes out through a
// buffer, the status line and the log.
#pragma once

#include "services.h"

#include <array>

// What a read gives instead of a byte. Every function of the engine that reads passes them on.
enum ReadResult : int {
    ReadError = -1,   // bytes came, but wrong ones
    ReadTimeout = -2, // nothing came
    NoCarrier = -3,   // the port is closed
    JunkLimit = -4,   // nothing but junk came
};

class ModemLine {
  public:
    explicit ModemLine(TRANSFER& transfer) : transfer_(transfer) {}

    TRANSFER& Transfer() { return transfer_; }
    bool Aborted() { return xfGetAbort(transfer_) != 0; }

    int ReadLine(int tenths); // 0 to 255, ReadTimeout or NoCarrier
    bool DataWaiting() { return xfDataWaiting(transfer_); }
    void Purge(); // drops the input

    void PutRaw(int c);
    void WriteFlush(); // returns when the bytes are on the line, or after 10 seconds

    // 0xDD does nothing, 0xDE waits a second: the two commands that a ZModem attention string may hold.
    void SendString(const char* szText);
    void Cancel(); // ten CAN

    void Log(const char* szFormat, ...) __attribute__((format(printf, 2, 3)));
    void ShowStatus(const char* szText); // status line and log

  private:
    void WriteOut();

    TRANSFER& transfer_;
    std::array<unsigned char, 1024> outbuf_;
    size_t cbOut_ = 0;
};
