// ZModem's data sub-packets, out and in.
#include "zmodemframing.h"
#include "zmodemsum.h"

#include "core/ascii.h"

namespace {

constexpr int XON = ascii::DC1;

constexpr bool IsByte(int c) {
    return (c & ~0xFF) == 0;
}

constexpr bool IsSubpacketEnd(int c) {
    return c >= GotZCRCE && c <= GotZCRCW;
}

} // namespace

template <class Sum>
void ZModemFraming::SendSubpacket(const void* lpBytes, int cbBytes, ZSubpacketEnd end) {
    const auto* bytes = static_cast<const unsigned char*>(lpBytes);
    Sum sum;
    for (int i = 0; i < cbBytes; ++i) {
        sum.Add(bytes[i]);
        SendEscaped(bytes[i]);
    }
    line_.PutRaw(ZDLE);
    line_.PutRaw(end);
    sum.Add(end);
    for (const int c : sum.Out())
        SendEscaped(c);
    if (end == ZCRCW)
        line_.PutRaw(XON);
    if (end != ZCRCG)
        line_.WriteFlush();
}

void ZModemFraming::SendData(const void* lpBytes, int cbBytes, ZSubpacketEnd end) {
    if (Crc32t) {
        SendData32(lpBytes, cbBytes, end);
        return;
    }
    line_.Log("Sending data: length=%d Type=%s", cbBytes, SubpacketEndName(end));
    SendSubpacket<ZSum16>(lpBytes, cbBytes, end);
}

void ZModemFraming::SendData32(const void* lpBytes, int cbBytes, ZSubpacketEnd end) {
    line_.Log("Sending data (32-bit): length=%d type=%s", cbBytes, SubpacketEndName(end));
    SendSubpacket<ZSum32>(lpBytes, cbBytes, end);
}

// What is told of a sub-packet. The two kinds differ in their words, not in their meaning.
struct ZModemFraming::DataWords {
    const char* tooLong;
    const char* timeout;
    const char* received; // in front of the length
    const char* type;     // in front of the end's name
};

// The first result that is no byte, or the last byte of the checksum.
template <class Sum>
int ZModemFraming::ReadSum(Sum& sum) {
    int c = 0;
    for (int i = 0; i < Sum::Bytes; ++i) {
        c = ReadEscaped();
        if (!IsByte(c))
            return c;
        sum.Add(c);
    }
    return c;
}

template <class Sum>
int ZModemFraming::ReceiveSubpacket(const DataWords& words, void* lpBuffer, int cbBuffer) {
    auto* const bytes = static_cast<unsigned char*>(lpBuffer);
    int count = 0;
    Sum sum;
    // A line that is never silent can't hold the user: an abort shows at each sub-packet and each end.
    int c = line_.Aborted() ? ReadTimeout : ReadEscaped();
    for (; IsByte(c); c = ReadEscaped()) {
        if (count == cbBuffer) {
            line_.ShowStatus(words.tooLong);
            return ReadError;
        }
        bytes[count++] = static_cast<unsigned char>(c);
        sum.Add(c);
    }

    while (IsSubpacketEnd(c)) {
        const int end = c;
        sum.Add(end & 0xFF);
        c = ReadSum(sum);
        if (IsByte(c)) {
            if (!sum.Matches()) {
                line_.ShowStatus("Line noise detected");
                return ReadError;
            }
            Rxcount = count;
            line_.Log("%s length=%d%s type=%s", words.received, count, words.type, SubpacketEndName(end));
            return end;
        }
        if (line_.Aborted())
            c = ReadTimeout;
    }

    switch (c) {
    case GotCancel:
        line_.ShowStatus("Sender canceled");
        return ZCAN;
    case ReadTimeout:
        line_.ShowStatus(line_.Aborted() ? "User canceled" : words.timeout);
        return c;
    default:
        line_.ShowStatus("Line noise detected: Invalid sector type");
        return c;
    }
}

int ZModemFraming::ReceiveData(void* lpBuffer, int cbBuffer) {
    static constexpr DataWords words = {"Line noise detected: Sector too long", "Time out waiting for data",
                                        "Receiving data (2):", " "};
    Rxcount = 0;
    return Crc32 ? ReceiveData32(lpBuffer, cbBuffer) : ReceiveSubpacket<ZSum16>(words, lpBuffer, cbBuffer);
}

int ZModemFraming::ReceiveData32(void* lpBuffer, int cbBuffer) {
    static constexpr DataWords words = {"Line noise detected: sector too long", "Timeout waiting for data",
                                        "Receiving data:", ""};
    return ReceiveSubpacket<ZSum32>(words, lpBuffer, cbBuffer);
}
