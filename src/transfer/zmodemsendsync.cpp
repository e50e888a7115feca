// Where the receiver is: its answers to data, and the way back to the place that it asks for.
#include "zmodemsender.h"

namespace {

constexpr int patientRepeats = 5; // requests for one place, from which the blocks get shorter
constexpr int mostRepeats = 12;
constexpr int shortestBlock = 32;   // bytes
constexpr int fruitlessLimit = 100; // a far end that answers for ever, and never the right thing, ends here

enum class SyncAnswer { Failed, Ready, Acknowledged, Skipped, Position, Strange };

struct SyncRow {
    int header;
    SyncAnswer answer;
};

constexpr SyncRow syncAnswers[] = {
    {ReadTimeout, SyncAnswer::Failed}, {ZABORT, SyncAnswer::Failed},  {ZFIN, SyncAnswer::Failed},
    {ZCAN, SyncAnswer::Failed},        {ZRINIT, SyncAnswer::Ready},   {ZACK, SyncAnswer::Acknowledged},
    {ZSKIP, SyncAnswer::Skipped},      {ZRPOS, SyncAnswer::Position},
};

SyncAnswer MeaningOf(int header) {
    for (const SyncRow& row : syncAnswers)
        if (row.header == header)
            return row.answer;
    return SyncAnswer::Strange;
}

unsigned long Hex(LONG position) {
    return static_cast<DWORD>(position);
}

} // namespace

int ZModemSender::getinsync(bool dataRuns) {
    Line().ShowStatus("Resynchronizing...");
    for (;;) {
        Line().Log("Synchronizing");
        if (Line().Aborted())
            return ReadError;
        const int header = framing_.GetHeader();
        switch (MeaningOf(header)) {
        case SyncAnswer::Failed:
            return ReadError;
        case SyncAnswer::Ready:
        case SyncAnswer::Skipped:
            return header;
        case SyncAnswer::Acknowledged:
            if (dataRuns || framing_.Rxpos == Txpos)
                return ZACK;
            break;
        case SyncAnswer::Position:
            return GoTo(framing_.Rxpos);
        case SyncAnswer::Strange:
            framing_.SendBinaryHeader(ZNAK);
            break;
        }
        if (Fruitless())
            return ReadError;
    }
}

// ZRPOS, also for a place that was never sent: nothing can be repeated from there, and the frame that follows
// shows the receiver where the file is.
int ZModemSender::GoTo(LONG position) {
    const bool beyond = position > bytcnt;
    Line().Log("getinsync: Rxpos=%lx %sbytcnt=%lx Maxbytcnt=%lx", Hex(position),
               beyond ? "" : "<= ", Hex(bytcnt), Hex(Maxbytcnt));
    if (beyond && Fruitless())
        return ReadError;
    if (beyond)
        return ZRPOS;
    if (!fin_.Seek(position)) {
        Line().Log("Bad Seek to %ld", static_cast<long>(position));
        return ReadError;
    }
    Eofseen = false;
    Txpos = bytcnt = position;
    if (RepeatsTooOften(position) || (!Confirms(position) && Fruitless())) {
        Line().Log("Can't send block");
        return ReadError;
    }
    Lastsync = position;
    return ZRPOS;
}

// A line that damages every block may let a shorter one through.
bool ZModemSender::RepeatsTooOften(LONG position) {
    if (position != Lastsync) {
        Beenhereb4 = 0;
        return false;
    }
    ++Beenhereb4;
    if (Beenhereb4 > mostRepeats)
        return true;
    if (Beenhereb4 >= patientRepeats && blklen > shortestBlock)
        blklen /= 2;
    return false;
}

// The receiver has more of the file than it ever had.
bool ZModemSender::Confirms(LONG position) {
    if (position <= confirmed_)
        return false;
    confirmed_ = position;
    fruitless_ = 0;
    return true;
}

bool ZModemSender::Fruitless() {
    return ++fruitless_ > fruitlessLimit;
}
