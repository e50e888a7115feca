// One file of a ZModem receive after the other: its frames, its data, the errors it may have.
#include "zmodemreceiver.h"

#include "core/ascii.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int errorBudget = 20; // errors in a row that a file may have
constexpr int XON = ascii::DC1;
constexpr LONG skippedModtime = 1; // marks what a sender gave up

} // namespace

int ZModemReceiver::ReceiveFiles() {
    for (;;) {
        const int result = IsRefusedAgain() ? RefuseAgain() : ReceiveOffer();
        if (result != FileProceeds)
            return result;
        const int next = TryZModem();
        if (next != ZFILE)
            return next == ZCOMPL ? 0 : ReadError;
    }
}

// Some senders answer ZFERR by the same offer, for ever: only ZSKIP brings them to their next file.
bool ZModemReceiver::IsRefusedAgain() const {
    return !refused_.empty() && refused_ == Offer();
}

int ZModemReceiver::RefuseAgain() {
    Tryzhdrtype = ZSKIP;
    if (++needless_ > needlessLimit)
        return ReadError;
    return FileProceeds;
}

int ZModemReceiver::ReceiveOffer() {
    const std::string offer(Offer());
    const int result = ReceiveFile();
    refused_ = result == ZFERR ? offer : std::string();
    return EndFile(result) ? int{FileProceeds} : result;
}

// False: the result says nothing about a file, and ends the run.
bool ZModemReceiver::EndFile(int result) {
    TRANSFER& transfer = Line().Transfer();
    switch (result) {
    case ZEOF:
        Line().Log("File downloaded successfully");
        xfFileDone(transfer);
        return true;
    case ZSKIP:
        Line().Log("File download skipped");
        xfFileSkipped(transfer);
        return true;
    case ZFERR:
        Line().Log("File downloaded failed");
        xfFileSkipped(transfer);
        transfer.bFileFailed = 1;
        return true;
    default:
        return false;
    }
}

int ZModemReceiver::ReceiveFile() {
    file_.Eofseen = false;
    file_.Rxbytes = 0;
    file_.bZModem = framing_.bZModem;
    if (const int result = file_.ProcessHeader(Secbuf.data(), static_cast<size_t>(cbOffer_))) {
        Tryzhdrtype = result;
        return result;
    }
    Line().ShowStatus("Receiving data...");
    budget_ = errorBudget;
    while (!Line().Aborted()) {
        SendPosition(ZRPOS, file_.Rxbytes);
        if (const std::optional<int> result = ReceiveFrames())
            return *result;
    }
    return ReadError;
}

// Headers until one ends the file, or (nothing) asks the sender to go back to Rxbytes.
std::optional<int> ZModemReceiver::ReceiveFrames() {
    struct Row {
        int type;
        Step (ZModemReceiver::*action)();
    };
    static constexpr Row rows[] = {
        {ReadTimeout, &ZModemReceiver::HeaderLate}, {ReadError, &ZModemReceiver::HeaderBroken},
        {ZNAK, &ZModemReceiver::HeaderRefused},     {ZFILE, &ZModemReceiver::FileOutOfSequence},
        {ZSKIP, &ZModemReceiver::FileSkipped},      {ZDATA, &ZModemReceiver::TakeData},
        {ZEOF, &ZModemReceiver::TakeEnd},           {ZCAN, &ZModemReceiver::SenderCancelled},
    };
    for (;;) {
        const int type = framing_.GetHeader();
        const auto* row = std::ranges::find(rows, type, &Row::type);
        const Step step = row == std::end(rows) ? WrongHeader(type) : (this->*row->action)();
        if (step.next == Next::End)
            return step.result;
        if (step.next == Next::Pass)
            return std::nullopt;
    }
}

ZModemReceiver::Step ZModemReceiver::Fail(const char* szReason) {
    Line().ShowStatus(szReason);
    return {Next::End, ReadError};
}

// What costs no budget, but not for ever.
ZModemReceiver::Step ZModemReceiver::Tolerate(Next next) {
    return ++needless_ > needlessLimit ? Fail("Persistent CRC or other ERROR") : Step{next};
}

ZModemReceiver::Step ZModemReceiver::HeaderLate() {
    if (BudgetSpent())
        return Fail("Receive file got timeout");
    Line().ShowStatus("Timeout...");
    return {Next::Pass};
}

ZModemReceiver::Step ZModemReceiver::HeaderBroken() {
    if (BudgetSpent())
        return Fail("Persistent CRC or other ERROR");
    Line().ShowStatus("Received line noise...");
    SendAttention();
    return {Next::Pass};
}

ZModemReceiver::Step ZModemReceiver::HeaderRefused() {
    if (!BudgetSpent())
        return {Next::Pass};
    Line().Log("Receive file got ZNAK");
    return {Next::End, ReadError};
}

ZModemReceiver::Step ZModemReceiver::FileOutOfSequence() {
    Line().Log("Received out of sequence ZFILE...");
    framing_.ReceiveData(Secbuf.data(), subpacketSize);
    return Tolerate(Next::Pass);
}

ZModemReceiver::Step ZModemReceiver::FileSkipped() {
    file_.Modtime = skippedModtime;
    file_.CloseReceivedFile();
    Line().Log("Sender SKIPPED file");
    Line().ShowStatus("Sender skipped file...");
    return {Next::End, ZSKIP};
}

ZModemReceiver::Step ZModemReceiver::SenderCancelled() {
    return Fail("Sender cancelled");
}

ZModemReceiver::Step ZModemReceiver::WrongHeader(int type) {
    char text[64];
    std::snprintf(text, sizeof text, "ReceiveFile: Wrong header %d", type);
    Line().Log("%s", text);
    if (BudgetSpent())
        return Fail(text);
    Line().ShowStatus("Received invalid header");
    return {Next::Pass};
}

ZModemReceiver::Step ZModemReceiver::TakeEnd() {
    // One of another position is stale: it was on its way when the sender was asked to go back.
    if (framing_.Rxpos != file_.Rxbytes)
        return Tolerate(Next::Header);
    if (file_.CloseReceivedFile() == 0) {
        Line().Log("ReceiveFile: File transferred successfully");
        return {Next::End, ZEOF};
    }
    Tryzhdrtype = ZFERR;
    Line().Log("ReceiveFile: Unable to close the file");
    return Fail("Error closing file");
}

ZModemReceiver::Step ZModemReceiver::TakeData() {
    if (framing_.Rxpos != file_.Rxbytes) {
        if (BudgetSpent())
            return Fail("Data has bad addr");
        SendAttention();
        return {Next::Pass};
    }
    return ReceiveSubpackets();
}

// How a good sub-packet goes on, by its end.
struct ZModemReceiver::DataRow {
    int end;
    char letter;
    bool goesOn; // another one follows
    bool xonFirst;
    const char* reply; // logged before the ZACK; null for none
};

ZModemReceiver::Step ZModemReceiver::ReceiveSubpackets() {
    static constexpr DataRow rows[] = {
        {GotZCRCG, 'G', true, false, nullptr},
        {GotZCRCQ, 'Q', true, false, "Sending a ZACK for CRCQ"},
        {GotZCRCE, 'E', false, false, nullptr},
        {GotZCRCW, 'W', false, true, "Sending a ZACK for CRCW"},
    };
    for (;;) {
        Line().ShowStatus("Receiving data:");
        const int result = framing_.ReceiveData(Secbuf.data(), subpacketSize);
        const auto* row = std::ranges::find(rows, result, &DataRow::end);
        if (row == std::end(rows))
            return DataFailure(result);
        StoreSubpacket(*row);
        if (!row->goesOn)
            return {Next::Header};
    }
}

void ZModemReceiver::StoreSubpacket(const DataRow& row) {
    const int count = framing_.Rxcount;
    file_.WriteBlock(Secbuf.data(), count);
    file_.Rxbytes = Advanced(file_.Rxbytes, count);
    Line().Log("Receiving data... %d bytes, now at %d (%c)", count, static_cast<int>(file_.Rxbytes),
               row.letter);
    Line().ShowStatus("Receiving data");
    budget_ = errorBudget;
    needless_ = 0;
    if (!row.reply)
        return;
    if (row.xonFirst)
        Line().PutRaw(XON);
    Line().Log("%s", row.reply);
    SendPosition(ZACK, file_.Rxbytes);
}

ZModemReceiver::Step ZModemReceiver::DataFailure(int result) {
    switch (result) {
    case ReadTimeout:
        if (BudgetSpent())
            return Fail("TIMEOUT");
        Line().ShowStatus("Timeout receiving data...");
        return {Next::Pass};
    case ReadError:
        if (BudgetSpent())
            return Fail("Persistent CRC or other ERROR");
        SendAttention();
        Line().ShowStatus("Error receiving data...");
        return {Next::Pass};
    case ZCAN:
        return Fail("Sender CANcelled");
    default:
        return Tolerate(Next::Pass);
    }
}

void ZModemReceiver::SendAttention() {
    Line().SendString(file_.Attn.c_str());
}
