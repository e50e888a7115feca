// The data of a file: frames of sub-packets, the receiver's answers between them, the end of the file.
#include "zmodemsender.h"

#include "core/ascii.h"

#include <algorithm>

namespace {

constexpr int rhythm = 4;       // sub-packets to a stop
constexpr int strayLimit = 4;   // stray bytes that make a stop: something may be wrong
constexpr int holdInData = 100; // tenths of a second, after XOff
constexpr int holdAtStop = 10000;

enum class DataAnswer { Ready, Skipped, GoesOn, Failed };

struct DataRow {
    int header;
    DataAnswer inData;
    DataAnswer atEnd;
};

constexpr DataRow dataAnswers[] = {
    {ZRINIT, DataAnswer::Ready, DataAnswer::Ready},
    {ZACK, DataAnswer::GoesOn, DataAnswer::GoesOn},
    {ZRPOS, DataAnswer::GoesOn, DataAnswer::GoesOn},
    {ZSKIP, DataAnswer::Skipped, DataAnswer::Skipped},
};

DataAnswer MeaningOf(int header, DataAnswer DataRow::*place) {
    for (const DataRow& row : dataAnswers)
        if (row.header == header)
            return row.*place;
    return DataAnswer::Failed;
}

// How the file ends by such an answer; nothing while it goes on.
std::optional<int> EndOf(DataAnswer answer) {
    switch (answer) {
    case DataAnswer::Ready:
        return 0;
    case DataAnswer::Skipped:
        return ZSKIP;
    case DataAnswer::Failed:
        return ReadError;
    case DataAnswer::GoesOn:
        break;
    }
    return std::nullopt;
}

bool IsXOff(int c) {
    return (c & 0x7F) == ascii::DC3;
}

bool MayBeginHeader(int c) {
    return c == ZPAD || c == ZDLE;
}

} // namespace

int ZModemSender::SendFileData() {
    Line().Log("Sending file data");
    Line().ShowStatus("");
    subpackets_ = strays_ = 0;
    for (;;)
        if (const std::optional<int> result = SendFrame())
            return *result;
}

std::optional<int> ZModemSender::SendFrame() {
    frameRoom_ = Rxbuflen;
    framing_.StoreHeader(Txpos);
    framing_.SendBinaryHeader(ZDATA);
    if (const std::optional<int> answer = SendSubpackets())
        return AfterAnswer(*answer);
    return SendEndOfFile();
}

// Until a stop has been answered, or the receiver has spoken by itself. No value: the file is at its end.
std::optional<int> ZModemSender::SendSubpackets() {
    do {
        ++subpackets_;
        Line().Log("Sending file data at %ld", static_cast<long>(Txpos));
        if (Line().Aborted())
            return ReadError;
        const int bytes = zfilbuf();
        if (fin_.ReadFailed())
            return ReadError;
        const ZSubpacketEnd end = NextEnd(bytes);
        framing_.SendData(Txbuf.data(), bytes, end);
        bytcnt = Txpos = Advanced(Txpos, bytes);
        Maxbytcnt = std::max(Maxbytcnt, bytcnt);
        xfUpdate(Line().Transfer(), bytcnt, bytes);
        if (end == ZCRCW) {
            const int answer = getinsync(false);
            strays_ = 0;
            return answer;
        }
        if (const std::optional<int> answer = LookAtInput())
            return answer;
    } while (!Eofseen);
    return std::nullopt;
}

ZSubpacketEnd ZModemSender::NextEnd(int cbBytes) {
    if (Eofseen)
        return ZCRCE;
    if (subpackets_ % rhythm == 0) {
        subpackets_ = 0;
        return ZCRCW;
    }
    if (strays_ >= strayLimit || bytcnt == Lastsync)
        return ZCRCW;
    // Two short ones that lose the ZDLE between them pass as one to a receiver whose room takes both: CRC-16
    // is 0 again after the first. With a header between them they don't. Test: NoisyTransfer
    if (blklen < static_cast<int>(Txbuf.size()))
        return ZCRCW;
    if (Rxbuflen && (frameRoom_ -= cbBytes) < 1)
        return ZCRCW;
    return ZCRCG;
}

// What came while the data ran. A value: an answer that ends the frame.
std::optional<int> ZModemSender::LookAtInput() {
    while (Line().DataWaiting()) {
        const int c = Line().ReadLine(1);
        if (c >= 0 && IsXOff(c)) {
            Line().ReadLine(holdInData);
        } else if (!MayBeginHeader(c)) {
            ++strays_;
        } else if (const int answer = getinsync(true); answer != ZACK) {
            framing_.SendData(Txbuf.data(), 0, ZCRCE);
            return answer;
        }
    }
    return std::nullopt;
}

std::optional<int> ZModemSender::AfterAnswer(int answer) {
    for (;;) {
        if (const std::optional<int> end = EndOf(MeaningOf(answer, &DataRow::inData)))
            return CloseWith(*end);
        if (answer == ZACK && !Confirms(framing_.Rxpos) && Fruitless())
            return CloseWith(ReadError);
        const std::optional<int> next = WaitingAnswer();
        if (!next)
            return std::nullopt;
        answer = *next;
    }
}

// Another answer that has come already, if any.
std::optional<int> ZModemSender::WaitingAnswer() {
    while (Line().DataWaiting()) {
        const int c = Line().ReadLine(1);
        if (c >= 0 && IsXOff(c))
            Line().ReadLine(holdAtStop);
        else if (MayBeginHeader(c))
            return getinsync(true);
    }
    return std::nullopt;
}

std::optional<int> ZModemSender::SendEndOfFile() {
    for (;;) {
        framing_.StoreHeader(Txpos);
        framing_.SendBinaryHeader(ZEOF);
        const int answer = getinsync(false);
        if (const std::optional<int> end = EndOf(MeaningOf(answer, &DataRow::atEnd)))
            return CloseWith(*end);
        if (answer == ZRPOS)
            return std::nullopt;
        if (Fruitless())
            return CloseWith(ReadError);
    }
}

int ZModemSender::zfilbuf() {
    std::fill_n(Txbuf.begin(), blklen, static_cast<unsigned char>(0));
    const int bytes = fin_.Read(Txbuf.data(), blklen);
    if (bytes < blklen) {
        Eofseen = true;
        Line().Log("zfilbuf: n=%d vpos=%lu Eofseen=%d", bytes, 0UL, 1);
    }
    return bytes;
}
