// The opening of a sender that waits for the receiver's ZRINIT and takes its limits over.
#include "zmodemsender.h"

#include <algorithm>

namespace {

constexpr int headersToWaitFor = 10;
constexpr int openingErrors = 19;
constexpr int attentionSize = 32;  // bytes of the attention string in ZSINIT, none is in use
constexpr BYTE hasEscapeMask = 16; // ZRINIT, ZF1
constexpr int escapeMaskByte = 9;  // where the mask stands in a ZRINIT with a length byte
constexpr int smallestBuffer = 32; // bytes
constexpr int largestBlock = 1024;
constexpr int Tframlen = 1024; // the largest frame that this side wants

struct BlockForSpeed {
    LONG above; // bits per second
    int bytes;
};

// The last row that holds counts.
constexpr BlockForSpeed blocksForSpeeds[] = {{300, 256}, {1200, 512}, {2400, 1024}};

int BlockFor(LONG speed) {
    int bytes = largestBlock;
    for (const BlockForSpeed& row : blocksForSpeeds)
        if (speed > row.above)
            bytes = row.bytes;
    return bytes;
}

} // namespace

int ZModemSender::GetReceiverInit() {
    Line().ShowStatus("Initiating protocol...");
    for (int header = 0; header < headersToWaitFor; ++header)
        if (const std::optional<int> result = AnswerToInvitation())
            return *result;
    return ReadError;
}

// No value: the invitation is still to come.
std::optional<int> ZModemSender::AnswerToInvitation() {
    switch (framing_.GetHeader()) {
    case ReadTimeout:
    case ZCAN:
        return ReadError;
    case ZRINIT:
        return TakeReceiverInit();
    case ZCHALLENGE:
        framing_.StoreHeader(framing_.Rxpos);
        framing_.SendHexHeader(ZACK);
        return std::nullopt;
    case ZCOMMAND:
        framing_.StoreHeader(0);
        framing_.SendHexHeader(ZRQINIT);
        return std::nullopt;
    case ZRQINIT:
        // A sender at the far end that offers a command: its receiver may follow.
        if (framing_.Rxhdr[ZF0] == ZCOMMAND)
            return std::nullopt;
        break;
    default:
        break;
    }
    framing_.SendHexHeader(ZNAK);
    return std::nullopt;
}

int ZModemSender::TakeReceiverInit() {
    const int flags = framing_.Rxhdr[ZF0];
    framing_.Txfcs32 = 0; // CRC-16, whatever the receiver takes
    framing_.Zctlesc |= flags & ESCCTL;
    escapesAsked_ = flags & ESCCTL;
    if (framing_.Rxhdr[ZF1] & hasEscapeMask)
        framing_.SetEscapes(&framing_.Rxhdr[escapeMaskByte]);
    Rxbuflen = framing_.Rxhdr[0] | framing_.Rxhdr[1] << 8;
    LimitBuffer();
    if (!fin_.IsOpen())
        return ReadError;
    LimitBlock();
    return SendZSINIT();
}

void ZModemSender::LimitBuffer() {
    Line().Log("Rxbuflen=%d Tframlen=%ld", Rxbuflen, static_cast<long>(Tframlen));
    if (Rxbuflen < smallestBuffer || Rxbuflen > largestBlock) {
        Rxbuflen = largestBlock;
        Line().Log("Rxbuflen=%d", Rxbuflen);
    }
    Rxbuflen = std::min(Rxbuflen, Tframlen);
    Line().Log("Rxbuflen=%d", Rxbuflen);
}

void ZModemSender::LimitBlock() {
    if (blklen < largestBlock)
        blklen = BlockFor(framing_.Baudrate);
    blklen = std::min(blklen, Rxbuflen);
    Line().Log("Rxbuflen=%d blklen=%d", Rxbuflen, blklen);
    Line().Log("Txwindow = %u Txwspac = %d", 0U, 0);
}

// Needed only where this side escapes more than the receiver asked for.
int ZModemSender::SendZSINIT() {
    if (!framing_.Zctlesc || escapesAsked_)
        return 0;
    Line().ShowStatus("Initiating protocol...");
    constexpr std::array<char, attentionSize> noAttention = {};
    for (int errors = 0;;) {
        Line().Log("Initializing upload...");
        if (Line().Aborted())
            return ReadError;
        framing_.StoreHeader(0);
        framing_.Txhdr[ZF0] |= ESCCTL;
        framing_.SendHexHeader(ZSINIT);
        framing_.SendData(noAttention.data(), attentionSize, ZCRCW);
        const int header = framing_.GetHeader();
        if (header == ZACK) {
            Line().Log("Initialization successful");
            return 0;
        }
        if (header == ZCAN) {
            Line().Log("Received ZCAN while initializing upload");
            return ReadError;
        }
        if (++errors > openingErrors)
            return ReadError;
        Line().Log("Error #%d while initializing upload", errors);
    }
}
