#include "kermitsend.h"

#include "guarded.h"
#include "kermit.h"
#include "kermitdata.h"
#include "kermitmessage.h"
#include "kermitpacket.h"
#include "services.h"
#include "Tc-xfer.h"

#include <cstdio>

using namespace kermit;

namespace {

constexpr char triesUsedUp[] = "pTransfer->cTries > MAXTRY: aborting...\n";

enum class Nak {
    MayAcknowledge, // the number after this packet's: its sender has got this one
    IsARetry,
};

enum class Reply { Taken, Retry, Refused, Error };

// What came in answer to the packet of nSequence. After a taken one the next packet is due.
Reply AwaitReply(KermitState& kermit, Nak nak, int& length) {
    Packet reply = ReceivePacket(kermit, kermit.recpkt);
    length = reply.length;
    switch (reply.type) {
    case NoPacket:
        return Reply::Retry;
    case ErrorPacket:
        ShowErrorPacket(kermit, kermit.recpkt.data());
        return Reply::Error;
    case NakPacket:
        if (nak == Nak::IsARetry)
            return Reply::Retry;
        reply.number = NumberBefore(reply.number);
        break;
    case AckPacket:
        break;
    default:
        return Reply::Refused;
    }
    if (reply.number != kermit.nSequence)
        return Reply::Retry;
    kermit.cTries = 0;
    TakeNextNumber(kermit);
    return Reply::Taken;
}

// The ending of every step: a retry enters the state again, a refusal ends the transfer, and a reply that was
// taken goes on by the state's own rule.
template <class Next>
State AfterReply(KermitState& kermit, Nak nak, Next next) {
    int length = 0;
    switch (AwaitReply(kermit, nak, length)) {
    case Reply::Retry:
        return kermit.cState;
    case Reply::Error:
        if (kermit.cState == State::File)
            xfFileSkipped(kermit.transfer);
        return State::Abort;
    case Reply::Refused:
        return State::Abort;
    case Reply::Taken:
        break;
    }
    return next(length);
}

State SendInit(KermitState& kermit) {
    DebugText("SendInit()...");
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    FillParameters(kermit.packet);
    xfClearInput(kermit.transfer);
    if (!SendPacket(kermit, InitPacket, kermit.nSequence, parameterCount, kermit.packet.data()))
        return State::Abort;
    return AfterReply(kermit, Nak::IsARetry, [&](int length) {
        ReadParameters(kermit, kermit.recpkt, length);
        if (!kermit.eol)
            kermit.eol = ascii::LF;
        if (!kermit.ctlq)
            kermit.ctlq = quote;
        return State::File;
    });
}

// False: no file waits.
bool GetNextFile(KermitState& kermit) {
    return Guarded("Kermit: GetNextFile", false, [&] {
        DebugText("GetNextFile!");
        kermit.szKermitSource.clear();
        kermit.szKermitDest.clear();
        xfPrepareSend(kermit.transfer, kermit.szKermitSource, kermit.szKermitDest);
        return !kermit.szKermitSource.empty();
    });
}

State SkipFile(KermitState& kermit) {
    xfFileSkipped(kermit.transfer);
    return State::Abort;
}

// Opens the first file of the transfer alone; kept so, see the tests of batches.
bool OpenFirstFile(KermitState& kermit) {
    if (kermit.bHadFile)
        return true;
    const std::string& name = kermit.szKermitSource;
    kermit.hFile = FopenRead(name.c_str());
    kermit.bHadFile = static_cast<bool>(kermit.hFile);
    if (kermit.bHadFile)
        return true;
    xfSetMessage(kermit.transfer, "Cannot open file, skipping...");
    Error(kermit, "Cannot open file " + name);
    LogTransfer(kermit.transfer, ("Cannot open " + name + " - skipping.").c_str());
    return false;
}

bool SendName(KermitState& kermit, const std::string& name) {
    const std::string base = name.substr(name.find_last_of("/\\") + 1).substr(0, mostText);
    return SendPacket(kermit, FilePacket, kermit.nSequence, static_cast<int>(base.size()), base.data());
}

State FillNext(KermitState& kermit, State atEnd) {
    kermit.cbData = FillBuffer(kermit);
    if (kermit.cbData == fillFailed)
        return State::Abort;
    return kermit.cbData == endOfFile ? atEnd : State::Data;
}

// A retry takes a new name from the queue, while the file that is open goes on being read; kept so, see the
// tests.
State SendFile(KermitState& kermit) {
    TRANSFER& transfer = kermit.transfer;
    LogTransfer(transfer, "Kermit Send File");
    if (!GetNextFile(kermit))
        return SkipFile(kermit);
    if (TriesAreUsedUp(kermit.cTries)) {
        DebugText(triesUsedUp);
        return SkipFile(kermit);
    }
    const std::string& name = kermit.szKermitSource;
    LogTransfer(transfer, ("Filename: " + name).c_str());
    if (!OpenFirstFile(kermit))
        return State::Abort;
    xfSetFileSize(transfer, static_cast<LONG>(Fsize(kermit.hFile)));
    ShowMessage(kermit, "Sending " + name);
    if (!SendName(kermit, name))
        return SkipFile(kermit);
    // An empty file takes one data packet of the length -1.
    return AfterReply(kermit, Nak::MayAcknowledge, [&](int) { return FillNext(kermit, State::Data); });
}

State SendData(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries)) {
        DebugText(triesUsedUp);
        return State::Abort;
    }
    char text[48];
    std::snprintf(text, sizeof text, "pTransfer->cTries = %d\n", kermit.cTries);
    DebugText(text);
    if (!SendPacket(kermit, DataPacket, kermit.nSequence, kermit.cbData, kermit.packet.data()))
        return State::Abort;
    return AfterReply(kermit, Nak::MayAcknowledge, [&](int) {
        ShowMessage(kermit, "");
        return FillNext(kermit, State::EndOfFile);
    });
}

State SendEOF(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    if (!SendPacket(kermit, EndOfFilePacket, kermit.nSequence, 0, nullptr))
        return State::Abort;
    return AfterReply(kermit, Nak::MayAcknowledge, [&](int) {
        Fclose(kermit.hFile);
        xfFileDone(kermit.transfer);
        return xfRequest(kermit.transfer.hWnd, Request_FilesWaiting, 0) ? State::File : State::Break;
    });
}

State SendBreak(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    if (!SendPacket(kermit, BreakPacket, kermit.nSequence, 0, nullptr))
        return State::Abort;
    return AfterReply(kermit, Nak::MayAcknowledge, [](int) { return State::Complete; });
}

State Step(KermitState& kermit) {
    const auto guarded = [&](const char* szLabel, State (*step)(KermitState&)) {
        return Guarded(szLabel, State::Abort, [&] { return step(kermit); });
    };
    switch (kermit.cState) {
    case State::SendInit:
        return guarded("Kermit: SendInit", SendInit);
    case State::File:
        return guarded("Kermit: SendFile", SendFile);
    case State::Data:
        return guarded("Kermit: SendData", SendData);
    case State::EndOfFile:
        return guarded("Kermit: SendEOF", SendEOF);
    case State::Break:
        return guarded("Kermit: SendBreak", SendBreak);
    case State::ReceiveInit:
    case State::Complete:
    case State::Abort:
        break;
    }
    return State::Abort;
}

bool RunSteps(KermitState& kermit) {
    kermit.cState = State::SendInit;
    kermit.nSequence = 0;
    kermit.cTries = 0;
    while (kermit.cState != State::Abort && !xfGetAbort(kermit.transfer)) {
        if (kermit.cState == State::Complete)
            return true;
        kermit.cState = Step(kermit);
    }
    Fclose(kermit.hFile);
    return false;
}

} // namespace

bool SendSwitcher(KermitState& kermit) {
    return Guarded("Kermit: SendSwitcher", false, [&] { return RunSteps(kermit); });
}

int KermitSend(TRANSFER& transfer) {
    KermitState kermit(transfer);
    xfStartFile(transfer);
    return SendSwitcher(kermit) ? 0 : 1;
}
