// ZModem's framing: whatever comes off the line is read to its end without a step outside the buffer, with
// results of the tables; whatever goes out comes in again as it was. The first byte of an input chooses, see
// Options.
#include "platform.h"
#include "transfer/zmodemframing.h"
#include "transferdouble.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int bufferSize = 64; // bytes
constexpr unsigned char guard = 0xA5;
constexpr int bitsOfMask = 5; // bytes

void Require(bool condition, int line = __builtin_LINE()) {
    if (condition)
        return;
    std::fprintf(stderr, "not so in line %d\n", line);
    std::abort();
}

struct Options {
    explicit Options(uint8_t byte) : escapeControls(byte & 1), crc32(byte & 2), goesRound(byte & 4) {}
    bool escapeControls;
    bool crc32;
    bool goesRound;
};

struct Session {
    explicit Session(const Options& options) {
        framing.Zctlesc = options.escapeControls;
        framing.Crc32 = framing.Crc32t = options.crc32;
        transfer.keepBlocks = false;
    }

    TransferDouble transfer{XferDownload};
    ModemLine line{transfer.transfer};
    ZModemFraming framing{line};
};

bool IsHeaderResult(int result) {
    return result >= JunkLimit && result < 256;
}

bool IsEscapeResult(int result) {
    return result >= GotZCRCE && result <= GotZCRCW;
}

void ReadHeader(Session& session) {
    const int result = session.framing.GetHeader();
    Require(IsHeaderResult(result) || IsEscapeResult(result));
    Require(session.framing.Rxhlen >= 0 && session.framing.Rxhlen <= 16);
    Require(session.framing.Crc32 >= 0 && session.framing.Crc32 <= 2);
}

void ReadSubpacket(Session& session) {
    unsigned char buffer[bufferSize + 1];
    buffer[bufferSize] = guard;
    const int result = session.framing.ReceiveData(buffer, bufferSize);
    const bool good = IsEscapeResult(result);
    Require(good || result == ZCAN || (result >= NoCarrier && result <= ReadError));
    Require(session.framing.Rxcount >= 0 && session.framing.Rxcount <= bufferSize);
    Require(good || session.framing.Rxcount == 0);
    Require(buffer[bufferSize] == guard);
}

// Headers and sub-packets in turn until the line is silent.
void Read(Session& session, const std::string& bytes) {
    session.transfer.line.Say(bytes);
    while (session.transfer.line.Unread()) {
        ReadHeader(session);
        ReadSubpacket(session);
    }
}

void Send(Session& session, const std::string& bytes) {
    session.framing.StoreHeader(static_cast<LONG>(bytes.size()));
    session.framing.SendData(bytes.data(), static_cast<int>(bytes.size()), ZCRCW);
    session.framing.SendHexHeader(ZRPOS);
    session.framing.SendBinaryHeader(ZDATA);
    session.line.WriteFlush();
}

void GoRound(Session& session, const std::string& bytes) {
    const std::string part = bytes.substr(0, bufferSize);
    if (bytes.size() >= bitsOfMask)
        session.framing.SetEscapes(reinterpret_cast<const unsigned char*>(bytes.data()));
    Send(session, part);
    session.transfer.line.Say(session.transfer.line.sent);

    char buffer[bufferSize];
    Require(session.framing.ReceiveData(buffer, bufferSize) == GotZCRCW);
    Require(std::string(buffer, static_cast<size_t>(session.framing.Rxcount)) == part);
    for (const int type : {ZRPOS, ZDATA}) {
        Require(session.framing.GetHeader() == type);
        Require(session.framing.Rxpos == static_cast<LONG>(part.size()));
    }
    Require(session.transfer.line.Unread() == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (!size)
        return 0;
    platform::SetTick(0);
    const Options options(bytes[0]);
    Session session(options);
    const std::string rest(reinterpret_cast<const char*>(bytes) + 1, size - 1);
    if (options.goesRound)
        GoRound(session, rest);
    else
        Read(session, rest);
    return 0;
}
