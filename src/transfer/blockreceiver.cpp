#include "blockreceiver.h"

#include "crc.h"

#include <algorithm>

namespace {

// Tenths of a second.
constexpr int filenameWait = 100;
constexpr int firstWait = 130; // for the first block and every 128th: the sender may be at its disk
constexpr int dataWait = 50;
constexpr int repeatWait = 40; // after a NAK
constexpr int byteWait = 10;
constexpr int silence = 1;

constexpr int longWaitEvery = 128; // blocks
constexpr int mostPasses = 5;      // at one block
constexpr int numberMask = 0xFF;   // block numbers wrap

// Ends of a file in front of a name: a sender repeats one a few times, a line that says nothing else is
// broken.
constexpr int mostEots = 100;

} // namespace

int BlockReceiver::ReceiveFilenameBlock() {
    line_.Purge();
    line_.ShowStatus("Receiving filename...");
    for (int i = 0; i < mostEots; ++i) {
        Firstsec = true;
        file_.Eofseen = false;
        Reply(StartRequest());
        const int result = ReceiveBlock(filenameWait);
        if (result != gotEOT && result != 0)
            return -1;
        Reply(block::ACK);
        if (result == 0)
            return 0;
        line_.ReadLine(byteWait);
    }
    return -1;
}

int BlockReceiver::ReceiveBlocks() {
    Firstsec = true;
    file_.Eofseen = false;
    sizeIsTold_ = file_.Bytesleft != UnknownFileSize;
    int reply = StartRequest();
    line_.ShowStatus("Receiving data...");
    for (int n = 0; !line_.Aborted(); reply = block::ACK) {
        Reply(reply);
        const int result = ReceiveBlock(n % longWaitEvery ? dataWait : firstWait);
        if (result == gotEOT)
            return EndOfFile();
        if (result == -1) {
            line_.ShowStatus("Transfer error");
            return -1;
        }
        if (result == ((n + 1) & numberMask)) {
            ++n;
            TakeBlock();
        } else if (result == (n & numberMask)) {
            line_.ShowStatus("Received duplicate sector");
        } else {
            line_.ShowStatus("Synchronization error");
            return Skipped();
        }
    }
    file_.CloseReceivedFile();
    return Skipped();
}

void BlockReceiver::TakeBlock() {
    const int cbBytes = sizeIsTold_ ? std::clamp<int>(static_cast<int>(file_.Bytesleft), 0, Blklen) : Blklen;
    file_.WriteBlock(Secbuf.data(), cbBytes);
    if (sizeIsTold_)
        file_.Bytesleft -= cbBytes;
    line_.ShowStatus("Receiving data...");
}

int BlockReceiver::EndOfFile() {
    // A stream whose blocks were lost, or a byte of noise, looks like the end of the file.
    if (sizeIsTold_ && file_.Bytesleft > 0) {
        file_.Abandon();
        line_.ShowStatus("Transfer error");
        return Skipped();
    }
    if (file_.CloseReceivedFile() != 0)
        return Skipped();
    Reply(block::ACK);
    xfFileDone(line_.Transfer());
    line_.ShowStatus("File transferred successfully");
    return 0;
}

int BlockReceiver::Skipped() {
    xfFileSkipped(line_.Transfer());
    return -1;
}

int BlockReceiver::ReceiveBlock(int tenths) {
    int Lastrx = 0;
    for (int pass = 0; pass < mostPasses && !line_.Aborted(); ++pass) {
        const int c = line_.ReadLine(tenths);
        if (c == block::EOT)
            return gotEOT;
        if (c == block::CAN && Lastrx != block::CAN) {
            Lastrx = c;
            continue;
        }
        if (c == block::CAN) {
            line_.ShowStatus("Sender cancelled");
            return -1;
        }
        if (c == block::SOH || c == block::STX) {
            Blklen = c == block::STX ? block::LongBlock : block::ShortBlock;
            const int number = ReadBlockBody();
            if (number >= 0)
                return number;
        } else if (c != ReadTimeout) {
            line_.ShowStatus("Line noise detected: Unexpected sector type");
        } else if (!Firstsec) {
            line_.ShowStatus("Timeout waiting for sector");
        }
        Lastrx = 0;
        if (!Drain())
            return -1;
        if (line_.Aborted())
            break;
        if (!Firstsec)
            tenths = repeatWait;
        Reply(Firstsec ? StartRequest() : block::NAK);
    }
    if (line_.Aborted())
        line_.ShowStatus("User canceled");
    line_.Cancel();
    return -1;
}

int BlockReceiver::ReadBlockBody() {
    const int number = line_.ReadLine(byteWait);
    const int complement = line_.ReadLine(byteWait);
    if (number + complement != numberMask) {
        line_.ShowStatus("Line noise detected: invalid sector number");
        return -1;
    }
    if (!ReadBlockData())
        return -1;
    Firstsec = false;
    return number;
}

bool BlockReceiver::ReadBlockData() {
    uint16_t crc = 0;
    int sum = 0;
    for (int i = 0; i < Blklen; ++i) {
        const int c = line_.ReadLine(byteWait);
        if (c < 0) {
            line_.ShowStatus("Timeout waiting for sector");
            return false;
        }
        Secbuf[static_cast<size_t>(i)] = static_cast<char>(c);
        crc = crc::Update16(crc, c);
        sum = (sum + c) & 0xFF;
    }
    const bool good = Crcflg
                          ? line_.ReadLine(byteWait) == crc >> 8 && line_.ReadLine(byteWait) == (crc & 0xFF)
                          : line_.ReadLine(byteWait) == sum;
    if (!good)
        line_.ShowStatus("Line noise detected");
    return good;
}

// An abort ends it too: a line that never falls silent must not outlast it.
bool BlockReceiver::Drain() {
    int c = 0;
    while (c >= 0 && !line_.Aborted())
        c = line_.ReadLine(silence);
    return c != NoCarrier;
}

int BlockReceiver::StartRequest() const {
    return Crcflg ? block::WantCrc : block::NAK;
}

void BlockReceiver::Reply(int c) {
    line_.PutRaw(c);
    line_.WriteFlush();
}
