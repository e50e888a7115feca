#include "kermitreceive.h"

#include "guarded.h"
#include "kermit.h"
#include "kermitdata.h"
#include "kermitmessage.h"
#include "kermitpacket.h"
#include "services.h"

using namespace kermit;

namespace {

constexpr DWORD unknownSize = INVALID_FILE_SIZE;

void Acknowledge(KermitState& kermit, int number, int length = 0) {
    SendPacket(kermit, AckPacket, number, length, kermit.packet.data());
}

// The answer to the packet that was due: a new count of tries for the next one.
void AcknowledgeDue(KermitState& kermit, int length = 0) {
    Acknowledge(kermit, kermit.nSequence, length);
    kermit.oldTries = kermit.cTries;
    kermit.cTries = 0;
    TakeNextNumber(kermit);
}

// The packet before has come again, since its answer was lost: it gets one more.
State AcknowledgeAgain(KermitState& kermit, const Packet& came, int length = 0) {
    if (TriesAreUsedUp(kermit.oldTries))
        return State::Abort;
    if (came.number != NumberBefore(kermit.nSequence))
        return State::Abort;
    Acknowledge(kermit, came.number, length);
    kermit.cTries = 0;
    return kermit.cState;
}

// What every state does with these three.
State RefusePacket(KermitState& kermit, const Packet& came) {
    if (came.type == NoPacket) {
        SendPacket(kermit, NakPacket, kermit.nSequence, 0, nullptr);
        return kermit.cState;
    }
    // Shows recpkt, where no packet of a receive goes; kept so, see the tests.
    if (came.type == ErrorPacket)
        ShowErrorPacket(kermit, kermit.recpkt.data());
    return State::Abort;
}

State ReceiveInit(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    const Packet came = ReceivePacket(kermit, kermit.packet);
    if (came.type != InitPacket)
        return RefusePacket(kermit, came);
    ReadParameters(kermit, kermit.packet, came.length);
    FillParameters(kermit.packet);
    AcknowledgeDue(kermit, parameterCount);
    return State::File;
}

State TakeFile(KermitState& kermit, const Packet& came) {
    if (came.number != kermit.nSequence)
        return State::Abort;
    std::string name = kermit.packet.data();
    std::string filnam1 = name;
    xfPrepareReceive(kermit.transfer, name, filnam1);
    if (xfGetAbort(kermit.transfer)) // a host that aborts at the offer keeps the file that lies there
        return State::Abort;
    kermit.hFile = FCreate(filnam1.c_str());
    kermit.cbWritten = 0;
    if (!kermit.hFile) {
        Error(kermit, "Cannot create " + filnam1);
        return State::Abort;
    }
    ShowMessage(kermit, "Receiving " + filnam1);
    AcknowledgeDue(kermit);
    ShowMessage(kermit, "");
    return State::Data;
}

State TakeBreak(KermitState& kermit, const Packet& came) {
    if (came.number != kermit.nSequence)
        return State::Abort;
    Acknowledge(kermit, kermit.nSequence);
    return State::Complete;
}

State ReceiveFile(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    const Packet came = ReceivePacket(kermit, kermit.packet);
    switch (came.type) {
    case FilePacket:
        return TakeFile(kermit, came);
    case BreakPacket:
        return TakeBreak(kermit, came);
    case InitPacket:
        FillParameters(kermit.packet);
        return AcknowledgeAgain(kermit, came, parameterCount);
    case EndOfFilePacket:
        return AcknowledgeAgain(kermit, came);
    default:
        return RefusePacket(kermit, came);
    }
}

State TakeData(KermitState& kermit, const Packet& came) {
    // The answer to one that comes again carries six bytes of its data; kept so, see the tests.
    if (came.number != kermit.nSequence)
        return AcknowledgeAgain(kermit, came, parameterCount);
    if (!EmptyBuffer(kermit, came.length))
        return State::Abort;
    AcknowledgeDue(kermit);
    // After the answer: the sender goes on while the host looks at its progress.
    CountReceived(kermit, came.length);
    ShowMessage(kermit, "");
    return State::Data;
}

// A write that failed tells nothing, but the file is too short then. What has no size (a device) is believed.
bool IsWhole(const KermitState& kermit) {
    const DWORD size = Fsize(kermit.hFile);
    return size == unknownSize || size == kermit.cbWritten;
}

State TakeEndOfFile(KermitState& kermit, const Packet& came) {
    if (came.number != kermit.nSequence || !IsWhole(kermit))
        return State::Abort;
    Acknowledge(kermit, kermit.nSequence);
    Fclose(kermit.hFile);
    TakeNextNumber(kermit);
    xfFileDone(kermit.transfer);
    return State::File;
}

State ReceiveData(KermitState& kermit) {
    if (TriesAreUsedUp(kermit.cTries))
        return State::Abort;
    const Packet came = ReceivePacket(kermit, kermit.packet);
    switch (came.type) {
    case DataPacket:
        return TakeData(kermit, came);
    case FilePacket:
        return AcknowledgeAgain(kermit, came);
    case EndOfFilePacket:
        return TakeEndOfFile(kermit, came);
    default:
        return RefusePacket(kermit, came);
    }
}

State Step(KermitState& kermit) {
    const auto guarded = [&](const char* szLabel, State (*step)(KermitState&)) {
        return Guarded(szLabel, State::Abort, [&] { return step(kermit); });
    };
    switch (kermit.cState) {
    case State::ReceiveInit:
        return guarded("Kermit: ReceiveInit", ReceiveInit);
    case State::File:
        return guarded("Kermit: ReceiveFile", ReceiveFile);
    case State::Data:
        return guarded("Kermit: ReceiveData", ReceiveData);
    case State::SendInit:
    case State::EndOfFile:
    case State::Break:
    case State::Complete:
    case State::Abort:
        break;
    }
    return State::Abort;
}

bool RunSteps(KermitState& kermit) {
    LogTransfer(kermit.transfer, "Kermit Receive File");
    kermit.cState = State::ReceiveInit;
    kermit.nSequence = 0;
    kermit.cTries = 0;
    while (kermit.cState != State::Abort && !xfGetAbort(kermit.transfer)) {
        if (kermit.cState == State::Complete) {
            DebugText("Complete");
            return true;
        }
        kermit.cState = Step(kermit);
    }
    Fclose(kermit.hFile);
    return false;
}

} // namespace

bool ReceiveSwitcher(KermitState& kermit) {
    return Guarded("Kermit: ReceiveSwitcher", false, [&] { return RunSteps(kermit); });
}

int KermitReceive(TRANSFER& transfer) {
    KermitState kermit(transfer);
    xfStartFile(transfer);
    return ReceiveSwitcher(kermit) ? 0 : 1;
}
