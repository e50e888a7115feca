// The receiver's opening and goodbye; the files between them are in zmodemfile.cpp.
#include "zmodemreceiver.h"

#include <algorithm>

namespace {

constexpr int openingPasses = 15;
constexpr int goodbyePasses = 3;
constexpr int goodbyeTimeout = 100;    // tenths of a second
constexpr int secondOTimeout = 10;     // tenths of a second
constexpr LONG freeSpace = 0x7FFFFFFF; // bytes, told to whoever asks
constexpr int sessionOptions = CANFDX | CANOVIO | CANFC32;
constexpr int attentionSize = 32; // bytes

} // namespace

void ZModemReceiver::SendPosition(int type, LONG position) {
    framing_.StoreHeader(position);
    framing_.SendHexHeader(type);
}

int ZModemReceiver::TryZModem() {
    Line().Log("Synchronizing");
    for (int pass = 1; pass <= openingPasses && !Line().Aborted(); ++pass) {
        Line().Log("Synchronize #%d", pass);
        OfferSession();
        if (const std::optional<int> result = AwaitOffer())
            return *result;
    }
    return 0;
}

void ZModemReceiver::OfferSession() {
    framing_.StoreHeader(0);
    framing_.Txhdr[ZF0] = static_cast<unsigned char>(sessionOptions | (framing_.Zctlesc ? ESCCTL : 0));
    framing_.SendHexHeader(Tryzhdrtype);
    if (Tryzhdrtype == ZSKIP)
        Tryzhdrtype = ZRINIT;
}

// Headers until one ends the opening, or (nothing) asks for the next pass.
std::optional<int> ZModemReceiver::AwaitOffer() {
    struct Row {
        int type;
        Step (ZModemReceiver::*action)();
    };
    static constexpr Row rows[] = {
        {ZSINIT, &ZModemReceiver::TakeSessionOptions},
        {ZFILE, &ZModemReceiver::TakeFileOffer},
        {ZFIN, &ZModemReceiver::TakeGoodbye},
        {ZCOMPL, &ZModemReceiver::ReadOn},
        {ZCAN, &ZModemReceiver::Refuse},
        {ZFREECNT, &ZModemReceiver::TellFreeSpace},
        {ZCOMMAND, &ZModemReceiver::Refuse}, // no command is ever run
    };
    for (int headers = 0; headers < needlessLimit; ++headers) {
        const int type = framing_.GetHeader();
        const auto* row = std::ranges::find(rows, type, &Row::type);
        if (row == std::end(rows))
            return std::nullopt;
        const Step step = (this->*row->action)();
        if (step.next == Next::End)
            return step.result;
    }
    return std::nullopt;
}

ZModemReceiver::Step ZModemReceiver::TakeSessionOptions() {
    framing_.Zctlesc = framing_.Rxhdr[ZF0] & ESCCTL;
    std::array<char, attentionSize + 1> attention = {};
    if (framing_.ReceiveData(attention.data(), attentionSize) == GotZCRCW) {
        file_.Attn = attention.data();
        SendPosition(ZACK, 1);
    } else {
        framing_.SendHexHeader(ZNAK);
    }
    return {Next::Header};
}

ZModemReceiver::Step ZModemReceiver::TakeFileOffer() {
    file_.zconv = framing_.Rxhdr[ZF0];
    file_.zmanag = framing_.Rxhdr[ZF1];
    file_.ztrans = framing_.Rxhdr[ZF2];
    Tryzhdrtype = ZRINIT;
    if (framing_.ReceiveData(Secbuf.data(), subpacketSize) == GotZCRCW) {
        cbOffer_ = framing_.Rxcount;
        std::fill(Secbuf.begin() + cbOffer_, Secbuf.end(), '\0');
        return {Next::End, ZFILE};
    }
    framing_.SendHexHeader(ZNAK);
    return {Next::Header};
}

ZModemReceiver::Step ZModemReceiver::TakeGoodbye() {
    Acknowledge();
    return {Next::End, ZCOMPL};
}

ZModemReceiver::Step ZModemReceiver::TellFreeSpace() {
    SendPosition(ZACK, freeSpace);
    return {Next::Header};
}

void ZModemReceiver::Acknowledge() {
    Line().Log("Final goodbye:");
    framing_.StoreHeader(0);
    for (int pass = 0; pass < goodbyePasses; ++pass) {
        Line().Purge();
        framing_.SendHexHeader(ZFIN);
        const int c = Line().ReadLine(goodbyeTimeout);
        if (c == NoCarrier)
            return;
        if (c == 'O') {
            Line().ReadLine(secondOTimeout);
            Line().Log("Goodbye complete");
            return;
        }
    }
}
