// ZModem headers on their way out.
#include "zmodemframing.h"
#include "zmodemsum.h"

#include "core/ascii.h"

namespace {

constexpr int headerLength = 4;
constexpr int lineFeedOfHex = ascii::LF | 0x80; // the end of a hex header
constexpr int XON = ascii::DC1;

void PutHex(ModemLine& line, int c) {
    constexpr char digits[] = "0123456789abcdef";
    line.PutRaw(digits[c >> 4 & 15]);
    line.PutRaw(digits[c & 15]);
}

} // namespace

LONG ReadPosition(const unsigned char* lpBytes) {
    uint32_t position = 0;
    for (size_t i = headerLength; i-- > 0;)
        position = position << 8 | lpBytes[i];
    return static_cast<LONG>(position);
}

void ZModemFraming::StoreHeader(LONG position) {
    for (size_t i = 0; i < headerLength; ++i)
        Txhdr[i] = static_cast<unsigned char>(static_cast<uint32_t>(position) >> 8 * i);
}

void ZModemFraming::SendHexHeader(int type) {
    line_.Log("Sending hex header: %d %s %lx", headerLength, FrameName(type),
              static_cast<unsigned long>(static_cast<uint32_t>(ReadPosition(Txhdr.data()))));
    for (const int c : {ZPAD, ZPAD, ZDLE, static_cast<int>(ZHEX)})
        line_.PutRaw(c);
    Crc32t = 0;

    ZSum16 sum;
    sum.Add(type);
    PutHex(line_, type);
    for (size_t i = 0; i < headerLength; ++i) {
        sum.Add(Txhdr[i]);
        PutHex(line_, Txhdr[i]);
    }
    for (const int c : sum.Out())
        PutHex(line_, c);

    line_.PutRaw(ascii::CR);
    line_.PutRaw(lineFeedOfHex);
    if (type != ZFIN && type != ZACK)
        line_.PutRaw(XON);
    line_.WriteFlush();
}

template <class Sum>
void ZModemFraming::SendHeaderBytes(ZFrameCharacter kind, int type) {
    line_.PutRaw(kind);
    Sum sum;
    sum.Add(type);
    SendEscaped(type);
    for (size_t i = 0; i < headerLength; ++i) {
        sum.Add(Txhdr[i]);
        SendEscaped(Txhdr[i]);
    }
    for (const int c : sum.Out())
        SendEscaped(c);
}

void ZModemFraming::SendBinaryHeader(int type) {
    line_.Log("Send binary header: %d %s %ld", headerLength, FrameName(type),
              static_cast<long>(ReadPosition(Txhdr.data())));
    if (type == ZDATA)
        for (int i = 0; i < Znulls; ++i)
            line_.PutRaw(ascii::NUL);
    line_.PutRaw(ZPAD);
    line_.PutRaw(ZDLE);

    // Kept so: this side sends CRC-16 frames, whatever was wished for. Test:
    // ZModemSends.Crc16EvenIfCrc32IsWanted
    Txfcs32 = 0;
    Crc32t = 0;
    if (Txfcs32)
        SendBinaryHeader32(type);
    else
        SendHeaderBytes<ZSum16>(ZBIN, type);
    if (type != ZDATA)
        line_.WriteFlush();
}

void ZModemFraming::SendBinaryHeader32(int type) {
    Crc32t = 1;
    SendHeaderBytes<ZSum32>(ZBIN32, type);
}
