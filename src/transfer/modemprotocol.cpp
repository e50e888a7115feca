#include "modemprotocol.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace {

// Tenths of a second.
constexpr int receiveTimeout = 100;
constexpr int sendTimeout = 600;
constexpr int requestTimeout = 800; // for the receiver's first word
constexpr int cancelTimeout = 20;

// Milliseconds.
constexpr DWORD settleTime = 300;
constexpr DWORD chatterTime = 1000;
constexpr DWORD cancelTime = 200; // for the cancel to leave, whether the transfer is aborted or not

constexpr DWORD earlyInput = 60; // bytes: more than a sender's first words, so something else is talking

constexpr size_t headerSize = block::LongBlock;
constexpr size_t longHeaderMark = 125; // a header that reaches it wants long blocks

// The numbers behind the name, in a short block too: a header that lost some would tell a wrong length.
constexpr size_t longestText = 100;
static_assert(longestText + 2 < block::ShortBlock);

struct ReceiveRow {
    bool Crcflg;
    bool Batch;
    bool Nozmodem;
};

// By protocol. The block size follows from each block, and YModem-G is received as YModem.
constexpr std::array<ReceiveRow, 6> receiveRows = {{
    {false, false, true}, // Protocol_XModemChecksum
    {true, false, true},  // Protocol_XModemCRC
    {true, false, true},  // Protocol_XModem1K
    {true, true, true},   // Protocol_YModem
    {true, true, true},   // Protocol_YModemG
    {true, true, false},  // Protocol_ZModem
}};

struct SendRow {
    bool Force128;
    bool Modem2;
    bool Nozmodem;
    bool Optiong;
};

constexpr std::array<SendRow, 6> sendRows = {{
    {true, true, true, false},    // Protocol_XModemChecksum
    {true, true, true, false},    // Protocol_XModemCRC
    {false, true, true, false},   // Protocol_XModem1K
    {false, false, true, false},  // Protocol_YModem
    {false, false, true, true},   // Protocol_YModemG
    {false, false, false, false}, // Protocol_ZModem
}};

bool LeadsAway(const std::string& name) {
    return name.find("../") != std::string::npos || name.find("..\\") != std::string::npos ||
           name.starts_with('/') || name.starts_with('\\');
}

// "\" doesn't part a name here.
std::string LastPart(const std::string& name) {
    const size_t slash = name.rfind('/');
    return slash == std::string::npos ? name : name.substr(slash + 1);
}

// Size, time, the time's high word where others tell the mode, and a serial number.
std::string HeaderText(const FileInfo& info) {
    const auto modified = static_cast<uint64_t>(info.modified);
    char text[longestText + 1];
    std::snprintf(
        text, sizeof text, "%lu %lo %o 3", static_cast<unsigned long>(static_cast<DWORD>(info.cbFile)),
        static_cast<unsigned long>(static_cast<uint32_t>(modified)), static_cast<unsigned>(modified >> 32));
    return text;
}

} // namespace

CModemProtocol::CModemProtocol(TRANSFER& transfer, bool bResume)
    : line_(transfer), framing_(line_), received_(line_, bResume), blockReceiver_(line_, received_),
      zmodemReceiver_(framing_, received_), blockSender_(line_, fin_), zmodemSender_(framing_, fin_) {
    zmodemSender_.Lzconv = received_.Lzconv;
}

int CModemProtocol::StartModemReceive(int nProtocol) {
    const ReceiveRow& row = receiveRows.at(static_cast<size_t>(nProtocol));
    framing_.Rxtimeout = receiveTimeout;
    blockReceiver_.Crcflg = row.Crcflg;
    Batch = row.Batch;
    Nozmodem = row.Nozmodem;
    DropEarlyInput();
    line_.Log("Starting transfer");
    const bool failed = ReceiveAll() == -1;
    if (failed) {
        line_.Cancel();
        line_.Log("Transfer completed without success");
        if (!framing_.bZModem)
            line_.Cancel();
    } else {
        line_.Log("Transfer completed successfully");
    }
    received_.Abandon();
    return failed;
}

void CModemProtocol::DropEarlyInput() {
    TRANSFER& transfer = line_.Transfer();
    xfDelay(transfer, settleTime);
    if (xfInQueue(transfer) <= earlyInput)
        return;
    xfDelay(transfer, chatterTime);
    xfClearInput(transfer);
}

int CModemProtocol::ReceiveAll() {
    if (!Batch)
        return ReceiveOne();
    if (ReceiveBatch() == 0)
        return 0;
    line_.Cancel();
    received_.Abandon();
    return -1;
}

int CModemProtocol::ReceiveBatch() {
    switch (const int result = Nozmodem ? 0 : zmodemReceiver_.TryZModem(); result) {
    case 0:
        return ReceiveYModem();
    case ZCOMPL:
        return 0;
    case -1:
        return -1;
    default:
        return zmodemReceiver_.ReceiveFiles();
    }
}

int CModemProtocol::ReceiveYModem() {
    const auto& Secbuf = blockReceiver_.Secbuf;
    for (;;) {
        line_.Transfer().lFileOffset = 0;
        if (blockReceiver_.ReceiveFilenameBlock() == -1)
            return -1;
        if (!Secbuf[0])
            return 0;
        if (received_.ProcessHeader(Secbuf.data(), static_cast<size_t>(blockReceiver_.Blklen)) != 0)
            return -1;
        if (blockReceiver_.ReceiveBlocks() == -1)
            return -1;
    }
}

int CModemProtocol::ReceiveOne() {
    TRANSFER& transfer = line_.Transfer();
    received_.ProcessHeader("", 0);
    received_.CheckPath(received_.Pathname);
    xfStartFile(transfer);
    xfPrepareReceive(transfer, received_.Pathname, received_.Pathname);
    xfSetFileSize(transfer, received_.Bytesleft);
    if (!received_.OpenNew())
        return -1;
    if (blockReceiver_.ReceiveBlocks() != -1)
        return 0;
    line_.Cancel();
    received_.Abandon();
    return -1;
}

int CModemProtocol::StartModemSend(int nProtocol) {
    const SendRow& row = sendRows.at(static_cast<size_t>(nProtocol));
    blockSender_.Force128 = row.Force128;
    Modem2 = row.Modem2;
    Nozmodem = row.Nozmodem;
    blockSender_.Optiong = row.Optiong;
    framing_.bZModem = !Nozmodem;
    framing_.Rxtimeout = sendTimeout;
    blockSender_.Rxtimeout = sendTimeout;
    if (framing_.bZModem) {
        framing_.StoreHeader(0);
        framing_.SendHexHeader(ZRQINIT);
    }
    if (SendAll() == -1) {
        Exitcode = 1;
        line_.Cancel();
        Sleep(cancelTime);
    }
    fin_.Close();
    return Errcnt || Exitcode;
}

int CModemProtocol::SendAll() {
    blockSender_.Crcflg = false;
    blockSender_.firstsec = true;
    if (!SendQueuedFiles())
        return -1;
    blockSender_.Totsecs = 0;
    if (!Sentcount)
        return SendNothing();
    line_.ShowStatus("Terminating transfer...");
    EndBatch();
    return 0;
}

bool CModemProtocol::SendQueuedFiles() {
    for (;;) {
        std::string source;
        std::string dest;
        xfPrepareSend(line_.Transfer(), source, dest);
        if (source.empty())
            return true;
        blockSender_.Totsecs = 0;
        if (!SendQueuedFile(source, dest))
            return false;
    }
}

bool CModemProtocol::SendQueuedFile(const std::string& source, const std::string& dest) {
    switch (wcs(source, dest)) {
    case Sent::Whole:
        line_.ShowStatus("File transferred successfully.");
        xfFileDone(line_.Transfer());
        return true;
    case Sent::SkippedByReceiver:
        xfFileSkipped(line_.Transfer());
        line_.ShowStatus("File as skipped.");
        return true;
    case Sent::LeftOut:
        return true;
    case Sent::Failed:
        break;
    }
    line_.ShowStatus("Transfer failed.");
    xfFileSkipped(line_.Transfer());
    return false;
}

void CModemProtocol::EndBatch() {
    if (Modem2)
        return;
    if (framing_.bZModem)
        zmodemSender_.SayGoodbye();
    else
        wctxpn("", {});
}

int CModemProtocol::SendNothing() {
    if (Nozmodem || Modem2) {
        line_.Cancel();
        return -1;
    }
    if (GetNak() != 0)
        line_.Cancel();
    line_.Cancel();
    Exitcode = 1;
    return 0;
}

CModemProtocol::Sent CModemProtocol::wcs(const std::string& source, const std::string& dest) {
    line_.Log("wcs: name=%s", source.c_str());
    if (LeadsAway(dest)) {
        xfFileSkipped(line_.Transfer());
        line_.Cancel();
        return Sent::Failed;
    }
    FileInfo info;
    // A size that doesn't fit the header would be told wrong, and the file cut at the far end.
    const bool readable = fin_.Open(source, FileMode::Read) == 0 && GetFileInfo(source, info);
    if (!readable || info.cbFile == LargestFile) {
        ++Errcnt;
        return LeaveOut("Unable to read file...");
    }
    if (info.isFolder)
        return LeaveOut("Directories not supported...");
    xfStartFile(line_.Transfer());
    xfSetFileSize(line_.Transfer(), info.cbFile);
    ++Sentcount;
    return SendOpenFile(dest, info);
}

CModemProtocol::Sent CModemProtocol::SendOpenFile(const std::string& dest, const FileInfo& info) {
    const int result = wctxpn(dest, info);
    if (result == ZSKIP || result == ZFERR)
        return Sent::SkippedByReceiver;
    if (result != 0)
        return Sent::Failed;
    if (!framing_.bZModem && blockSender_.wctx(info.cbFile) != 0)
        return Sent::Failed;
    return Sent::Whole;
}

CModemProtocol::Sent CModemProtocol::LeaveOut(const char* szStatus) {
    fin_.Close();
    line_.ShowStatus(szStatus);
    xfFileSkipped(line_.Transfer());
    return Sent::LeftOut;
}

int CModemProtocol::wctxpn(const std::string& name, const FileInfo& info) {
    line_.ShowStatus("Sending filename...");
    line_.Log("wctxpn: %s", name.c_str());
    if (Modem2)
        return 0;
    if (!framing_.bZModem && GetNak() != 0)
        return -1;
    const std::string text = name.empty() ? "" : HeaderText(info);
    const size_t room = framing_.bZModem ? headerSize : block::ShortBlock;
    const std::string header = LastPart(name).substr(0, room - text.size() - 2) + '\0' + text + '\0';
    std::array<char, headerSize> Txbuf = {};
    std::ranges::copy(header, Txbuf.begin());
    if (Txbuf[longHeaderMark])
        blockSender_.blklen = zmodemSender_.blklen = block::LongBlock;
    line_.Log("wctxpn: %s", text.c_str());
    if (framing_.bZModem)
        return zmodemSender_.SendZFile(Txbuf.data(), static_cast<int>(header.size()));
    return blockSender_.SendBlock(Txbuf.data(), 0, block::ShortBlock);
}

int CModemProtocol::GetNak() {
    int Lastrx = 0;
    while (!line_.Aborted()) {
        const int c = line_.ReadLine(requestTimeout);
        if (line_.Aborted())
            break;
        switch (c) {
        case ReadTimeout:
            line_.ShowStatus("Timeout waiting for ZRINIT");
            return 1;
        case block::WantStream:
            blockSender_.Optiong = true;
            blockSender_.blklen = block::LongBlock;
            [[fallthrough]];
        case block::WantCrc:
            blockSender_.Crcflg = true;
            return 0;
        case block::NAK:
            return 0;
        case ZPAD:
            return zmodemSender_.GetReceiverInit() == 0 ? 0 : -1;
        case block::CAN:
            if (Cancelled(Lastrx))
                return 1;
            break;
        default:
            break;
        }
        Lastrx = c;
    }
    return -1;
}

// A CAN has come: one before it and one behind it make it a cancel.
bool CModemProtocol::Cancelled(int before) {
    if (line_.ReadLine(cancelTimeout) != block::CAN || before != block::CAN)
        return false;
    line_.ShowStatus("Received cancelation while waiting to send a file");
    return true;
}
