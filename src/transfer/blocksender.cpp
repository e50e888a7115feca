#include "blocksender.h"

#include "crc.h"

#include "diagnostics/debugtext.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int mostAttempts = 6; // at one block
constexpr int mostEots = 5;     // an acknowledgement of the last one comes too late; kept so, see the tests
constexpr int blocksInAKilobyte = block::LongBlock / block::ShortBlock;
constexpr int64_t worthALongBlock = 896; // bytes: with no more than these left, short blocks waste less

bool IsStart(int c) {
    return c == block::NAK || c == block::WantCrc || c == block::WantStream;
}

} // namespace

int BlockSender::wctx(LONG flen) {
    firstsec = true;
    line_.Log("wctx:file length=%ld", static_cast<long>(flen));
    if (!AwaitStart() || SendFileBlocks(flen) != 0)
        return -1;
    fin_.Close();
    return SendEot();
}

// A receiver that asks for nothing gets the first block all the same when the time is up.
bool BlockSender::AwaitStart() {
    int c = 0;
    do {
        c = line_.ReadLine(Rxtimeout);
        if (c == block::CAN) {
            line_.ShowStatus("Receiver Cancelled");
            return false;
        }
    } while (c >= 0 && !IsStart(c) && !line_.Aborted());
    if (c == block::WantCrc || c == block::WantStream)
        Crcflg = true;
    return true;
}

int BlockSender::SendFileBlocks(LONG flen) {
    int cbBlock = blklen;
    int64_t sent = 0; // padding too
    for (int number = 1; !line_.Aborted(); ++number) {
        if (Force128 || flen <= sent + worthALongBlock)
            cbBlock = block::ShortBlock;
        if (ReadBlock(cbBlock) == 0)
            return fin_.ReadFailed() ? -1 : 0;
        if (SendBlock(Txbuf.data(), number, cbBlock) != 0)
            return -1;
        sent += cbBlock;
        xfUpdate(line_.Transfer(), static_cast<LONG>(sent), cbBlock);
        line_.ShowStatus("");
    }
    return -1;
}

int BlockSender::SendEot() {
    int eots = 0;
    int c = 0;
    while (c != block::ACK && eots < mostEots && !line_.Aborted()) {
        line_.Purge();
        line_.PutRaw(block::EOT);
        line_.WriteFlush();
        c = line_.ReadLine(Rxtimeout);
        ++eots;
    }
    if (c == block::ACK && eots < mostEots)
        return 0;
    line_.ShowStatus("No acknowledgment for last sector");
    return -1;
}

int BlockSender::ReadBlock(int cbBlock) {
    const int cbRead = fin_.Read(Txbuf.data(), cbBlock);
    std::fill(Txbuf.begin() + cbRead, Txbuf.begin() + cbBlock, static_cast<unsigned char>(block::Pad));
    return cbRead;
}

void BlockSender::TellPlace() const {
    if (Verbose <= 1)
        return;
    char text[48];
    std::snprintf(text, sizeof text, "Sector %3d %2dk\n", Totsecs, Totsecs / blocksInAKilobyte);
    DebugText(text);
}

int BlockSender::SendBlock(const void* lpBytes, int number, int cbBytes) {
    TellPlace();
    int lastReply = 0;
    for (int attempt = 0; attempt < mostAttempts && !line_.Aborted(); ++attempt) {
        PutBlock(static_cast<const unsigned char*>(lpBytes), number, cbBytes);
        const Answer answer = Optiong ? Answer::Acknowledged : ReadAnswer(lastReply);
        if (answer == Answer::Cancelled) {
            line_.ShowStatus("Receiver cancelled");
            return -1;
        }
        if (answer == Answer::Acknowledged) {
            firstsec = false;
            if (!Optiong)
                Totsecs += cbBytes / block::ShortBlock;
            return 0;
        }
    }
    if (!line_.Aborted())
        line_.ShowStatus("Retry count exceeded");
    return -1;
}

void BlockSender::PutBlock(const unsigned char* lpBytes, int number, int cbBytes) {
    line_.PutRaw(cbBytes == block::LongBlock ? block::STX : block::SOH);
    line_.PutRaw(number & 0xFF);
    line_.PutRaw(~number & 0xFF);
    uint16_t crc = 0;
    int sum = 0;
    for (int i = 0; i < cbBytes; ++i) {
        line_.PutRaw(lpBytes[i]);
        crc = crc::Update16(crc, lpBytes[i]);
        sum += lpBytes[i];
    }
    if (Crcflg) {
        line_.PutRaw(crc >> 8);
        line_.PutRaw(crc & 0xFF);
    } else {
        line_.PutRaw(sum & 0xFF);
    }
    line_.WriteFlush();
}

BlockSender::Answer BlockSender::ReadAnswer(int& lastReply) {
    const int before = lastReply;
    lastReply = line_.ReadLine(Rxtimeout);
    switch (lastReply) {
    case block::ACK:
        return Answer::Acknowledged;
    case block::CAN:
        return before == block::CAN ? Answer::Cancelled : AwaitRequest(lastReply);
    case ReadTimeout:
        line_.ShowStatus("Time out waiting for acknowledgement");
        return Answer::Again;
    case block::WantCrc:
    case block::NAK:
        return AskedAgain(lastReply);
    default:
        line_.ShowStatus("Line noise detected waiting for acknowledgement");
        return AwaitRequest(lastReply);
    }
}

// The receiver wants the block once more; a 'C' before the first good one decides about the checksum.
BlockSender::Answer BlockSender::AskedAgain(int c) {
    if (c == block::WantCrc && firstsec)
        Crcflg = true;
    line_.ShowStatus("Receive did not receive sector correctly");
    return Answer::Again;
}

// After noise or one CAN.
BlockSender::Answer BlockSender::AwaitRequest(int& lastReply) {
    while (!line_.Aborted()) {
        const int before = lastReply;
        lastReply = line_.ReadLine(Rxtimeout);
        if (lastReply < 0)
            break;
        if (lastReply == block::NAK || lastReply == block::WantCrc)
            return AskedAgain(lastReply);
        if (lastReply == block::CAN && before == block::CAN)
            return Answer::Cancelled;
    }
    return Answer::Again;
}
