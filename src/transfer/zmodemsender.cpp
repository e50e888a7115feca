// The offer of a file, what the receiver may answer to it, and the goodbye.
#include "zmodemsender.h"

#include "crc.h"

#include <algorithm>
#include <span>

namespace {

constexpr int offers = 10;
constexpr int headerPause = 50;      // tenths of a second, between the headers of one answer
constexpr int checksumStartByte = 6; // of ZCRC, in headers that have a length byte

enum class OfferAnswer { Refused, Garbled, Invitation, Skipped, Position, Checksum, Strange };

struct OfferRow {
    int header;
    OfferAnswer answer;
};

constexpr OfferRow offerAnswers[] = {
    {ReadTimeout, OfferAnswer::Refused}, {ZABORT, OfferAnswer::Refused},    {ZFIN, OfferAnswer::Refused},
    {ZCAN, OfferAnswer::Refused},        {ReadError, OfferAnswer::Garbled}, {ZNAK, OfferAnswer::Garbled},
    {ZRINIT, OfferAnswer::Invitation},   {ZSKIP, OfferAnswer::Skipped},     {ZFERR, OfferAnswer::Skipped},
    {ZRPOS, OfferAnswer::Position},      {ZCRC, OfferAnswer::Checksum},
};

OfferAnswer MeaningOf(int header) {
    for (const OfferRow& row : offerAnswers)
        if (row.header == header)
            return row.answer;
    return OfferAnswer::Strange;
}

} // namespace

int ZModemSender::SendZFile(const char* lpHeader, int cbHeader) {
    Line().ShowStatus("Sending filename...");
    Eofseen = false;
    fruitless_ = 0;
    confirmed_ = 0;
    askedCount_.reset();
    for (int offer = 0; offer < offers; ++offer) {
        Line().Log("Sending filename %s", lpHeader);
        if (Line().Aborted())
            return ReadError;
        framing_.Txhdr[ZF0] = Lzconv;
        framing_.Txhdr[ZF1] = Lzmanag;
        framing_.Txhdr[ZF2] = Lztrans;
        framing_.Txhdr[ZF3] = 0;
        framing_.SendBinaryHeader(ZFILE);
        framing_.SendData(lpHeader, cbHeader, ZCRCW);
        if (const std::optional<int> result = AnswerToOffer())
            return *result;
    }
    return CloseWith(ReadError);
}

std::optional<int> ZModemSender::AnswerToOffer() {
    for (;;) {
        const int header = framing_.GetHeader();
        switch (MeaningOf(header)) {
        case OfferAnswer::Refused:
            Line().Log("Received %s for pathname", FrameName(header));
            return ReadError;
        case OfferAnswer::Garbled:
            return std::nullopt;
        case OfferAnswer::Invitation:
            if (Fruitless() || !FindNextHeader())
                return std::nullopt;
            break;
        case OfferAnswer::Skipped:
            return CloseWith(header);
        case OfferAnswer::Position:
            return SendFrom(framing_.Rxpos);
        case OfferAnswer::Checksum:
            if (!AnswerChecksum())
                return std::nullopt;
            break;
        case OfferAnswer::Strange:
            Line().Log("Received %d frame type for pathname", header);
            return std::nullopt;
        }
    }
}

// The receiver invites more than once while the offer is on its way: what follows such an invitation counts.
// The header's first pad is read here; its second one is enough for the framing.
bool ZModemSender::FindNextHeader() {
    for (LONG junk = framing_.Zrwindow + framing_.Baudrate; junk > 0 && !Line().Aborted(); --junk) {
        const int c = Line().ReadLine(headerPause);
        if (c == ZPAD)
            return true;
        if (c < 1)
            return false;
    }
    return false;
}

bool ZModemSender::AnswerChecksum() {
    if (Fruitless())
        return false;
    const LONG count = framing_.Rxpos;
    const LONG start = ReadPosition(&framing_.Rxhdr[checksumStartByte]);
    if (askedCount_ != count || start != -1) {
        askedCount_ = count;
        checksum_ = FileChecksum(start, count);
    }
    framing_.StoreHeader(static_cast<LONG>(checksum_));
    framing_.SendBinaryHeader(ZCRC);
    return true;
}

// Of whole blocks, up to the one that reaches the count. All ones for a file that can't seek.
DWORD ZModemSender::FileChecksum(LONG start, LONG count) {
    bytcnt = start == -1 ? 0 : start;
    if (!fin_.Seek(bytcnt))
        return MAXDWORD;
    Line().Log("CRC32 on %ld bytes", static_cast<long>(count));
    uint32_t value = crc::start32;
    int bytes = 0;
    do {
        bytes = zfilbuf();
        bytcnt = Advanced(bytcnt, bytes);
        Maxbytcnt = std::max(Maxbytcnt, bytcnt);
        for (const unsigned char byte : std::span(Txbuf).first(static_cast<size_t>(bytes)))
            value = crc::Update32(value, byte);
        Line().Log("bytcnt=%ld crc=%08lX", static_cast<long>(bytcnt), static_cast<unsigned long>(value));
    } while (bytes && bytcnt < count && !Line().Aborted());
    return ~value;
}

int ZModemSender::SendFrom(LONG position) {
    if (!fin_.Seek(position))
        return ReadError;
    // The checksum may have read to the end of the file.
    Eofseen = false;
    Txpos = bytcnt = Maxbytcnt = position;
    Lastsync = position - 1;
    return SendFileData();
}

int ZModemSender::CloseWith(int result) {
    fin_.Close();
    return result;
}

// As long as the receiver says anything but its own goodbye; it is the last thing on the line.
void ZModemSender::SayGoodbye() {
    for (;;) {
        framing_.StoreHeader(0);
        framing_.SendHexHeader(ZFIN);
        const int header = framing_.GetHeader();
        if (header == ReadTimeout || header == ZCAN)
            return;
        if (header != ZFIN)
            continue;
        Line().PutRaw('O');
        Line().PutRaw('O');
        Line().WriteFlush();
        return;
    }
}
