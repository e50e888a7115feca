// The worker's requests: what each does to the record, and what the host hears of it.
#include "caseprint.h"
#include "support/memorylimit.h"
#include "transferdouble.h"

#include "transfer/queue.h"
#include "transfer/services.h"
#include "transfer/Tc-xfer.h"
#include "transfer/transferstate.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using Journal = std::vector<std::string>;

LRESULT Ask(TransferDouble& transfer, int nCode, LPARAM lParam = 0) {
    return xfRequest(transfer.object.Handle(), nCode, lParam);
}

struct ReadCase {
    const char* name;
    int nCode;
    void (*prepare)(COMCTL&);
    LRESULT expected;
};

const ReadCase readCases[] = {
    {"DialogType", Request_DialogType, [](COMCTL& r) { r.nTransferDialogType = 2; }, 2},
    {"Port", Request_Port, [](COMCTL& r) { r.hComm = reinterpret_cast<HANDLE>(77); }, 77},
    {"DialogParent", Request_DialogParent, [](COMCTL& r) { r.hDialogParent = reinterpret_cast<HWND>(9); }, 9},
    {"NoDialogParent", Request_DialogParent, [](COMCTL&) {}, 0},
    {"Protocol", Request_Protocol, [](COMCTL& r) { r.nProtocol = 6; }, 6},
    {"Abort", Request_Abort, [](COMCTL& r) { r.bAbortTransfer = 1; }, 1},
    {"Direction", Request_Direction, [](COMCTL& r) { r.nTransferType = 1; }, 1},
    {"FilesWaiting", Request_FilesWaiting,
     [](COMCTL& r) {
         QueueFile(r, "a");
         QueueFile(r, "b");
     },
     2},
    {"CodeZero", 0, [](COMCTL&) {}, 0},
    {"CodeEighteen", 18, [](COMCTL&) {}, 0},
    {"NegativeCode", -1, [](COMCTL&) {}, 0},
};

struct StatusCase {
    const char* name;
    int nCode;
    LPARAM lParam;
    int status; // afterwards
    Journal journal;
};

const StatusCase statusCases[] = {
    {"EndTransfer", Request_EndTransfer, 0, TransferStatus_Success, {"success"}},
    {"FailTransfer", Request_FailTransfer, 0, TransferStatus_Failure, {"failure"}},
    {"FileSize", Request_FileSize, 500, TransferStatus_Transfering, {"block 0"}},
    {"FileSizeOfZeroIsDelivered", Request_FileSize, 0, TransferStatus_Transfering, {"block 0"}},
    {"BytesDone", Request_BytesDone, 300, TransferStatus_Transfering, {"block 300"}},
    {"BytesDoneOfZeroIsNotDelivered", Request_BytesDone, 0, TransferStatus_Transfering, {}},
    {"EndFile", Request_EndFile, 0, TransferStatus_WaitForFile, {"finish"}},
    {"SkipFile", Request_SkipFile, 0, TransferStatus_WaitForFile, {"abort"}},
};

} // namespace

class TransferRequestReads : public testing::TestWithParam<ReadCase> {};

TEST_P(TransferRequestReads, GivesTheField) {
    TransferDouble transfer(XferDownload);
    GetParam().prepare(transfer.object.Record());
    EXPECT_EQ(Ask(transfer, GetParam().nCode), GetParam().expected);
    EXPECT_EQ(transfer.journal, Journal());
    EXPECT_EQ(transfer.object.Record().nTransferStatus, TransferStatus_WaitForFile);
}

TEST_P(TransferRequestReads, GivesNothingOfADeadObject) {
    TransferDouble transfer(XferDownload);
    GetParam().prepare(transfer.object.Record());
    transfer.object.Destroy();
    EXPECT_EQ(Ask(transfer, GetParam().nCode), 0);
}

INSTANTIATE_TEST_SUITE_P(All, TransferRequestReads, testing::ValuesIn(readCases),
                         [](const auto& info) { return std::string(info.param.name); });

class TransferRequestStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(TransferRequestStatus, IsSetAndDelivered) {
    TransferDouble transfer(XferUpload);
    EXPECT_EQ(Ask(transfer, GetParam().nCode, GetParam().lParam), 0);
    EXPECT_EQ(transfer.object.Record().nTransferStatus, GetParam().status);
    EXPECT_EQ(transfer.journal, GetParam().journal);
}

INSTANTIATE_TEST_SUITE_P(All, TransferRequestStatus, testing::ValuesIn(statusCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(TransferRequest, StatusTextIsKeptWithoutADelivery) {
    TransferDouble transfer(XferUpload);
    Ask(transfer, Request_StatusText, reinterpret_cast<LPARAM>("Receiving data..."));
    EXPECT_STREQ(transfer.object.Record().szTransferStatus, "Receiving data...");
    EXPECT_EQ(transfer.object.Record().nTransferStatus, TransferStatus_Transfering);
    EXPECT_EQ(transfer.journal, Journal());
}

TEST(TransferRequest, LongStatusTextIsCut) {
    TransferDouble transfer(XferUpload);
    const std::string text(600, 'x');
    Ask(transfer, Request_StatusText, reinterpret_cast<LPARAM>(text.c_str()));
    EXPECT_EQ(transfer.object.Record().szTransferStatus, std::string(512, 'x'));
}

// Whichever of its steps finds no memory: the queue stays as it was.
TEST(TransferQueue, TakesNothingWithoutMemory) {
    const std::string waiting(90, 'w');
    const std::string late(60, 'l');
    TransferDouble transfer(XferUpload);
    transfer.Queue(waiting);
    const COMCTL& record = transfer.object.Record();
    bool taken = false;
    int refused = 0;
    for (size_t most = 0; !taken; most += 10) {
        ASSERT_LT(most, 10 * (waiting.size() + late.size())) << "no limit is enough";
        const host::MemoryLimit limit(most);
        taken = QueueFile(transfer.object.Record(), late.c_str());
        if (taken)
            break;
        ++refused;
        EXPECT_GT(limit.Refusals(), 0);
        EXPECT_EQ(record.cFiles, 1);
        EXPECT_EQ(record.lpFileList.size(), waiting.size() + 1);
    }
    EXPECT_GT(refused, 6) << "the name's own copy, and the longer list";
    EXPECT_EQ(record.cFiles, 2);
    EXPECT_EQ(transfer.journal, Journal());
}

// What came later would be dropped at the end of the transfer.
TEST(TransferQueue, TakesNothingOnceTheUploadHasFoundItEmpty) {
    void (*const asks[])(TransferDouble&) = {
        [](TransferDouble& transfer) {
            std::string source;
            std::string dest;
            xfPrepareSend(transfer.transfer, source, dest);
        },
        [](TransferDouble& transfer) { Ask(transfer, Request_FilesWaiting); },
    };
    for (const auto& ask : asks) {
        TransferDouble transfer(XferUpload);
        COMCTL& record = transfer.object.Record();
        ask(transfer);
        EXPECT_FALSE(QueueFile(record, "late"));
        EXPECT_EQ(record.cFiles, 0);
        Ask(transfer, Request_EndTransfer);
        EXPECT_TRUE(QueueFile(record, "for the next one"));
    }
}

TEST(TransferQueue, TakesNamesAsLongAsOneWaits) {
    TransferDouble transfer(XferUpload);
    COMCTL& record = transfer.object.Record();
    transfer.Queue("one");
    EXPECT_EQ(Ask(transfer, Request_FilesWaiting), 1);
    EXPECT_TRUE(QueueFile(record, "two"));
    std::string source;
    std::string dest;
    xfPrepareSend(transfer.transfer, source, dest);
    EXPECT_TRUE(QueueFile(record, "three"));
    EXPECT_EQ(record.cFiles, 2);
}

TEST(TransferRequest, EndOfTheTransferClearsTypeNamesAndQueueBeforeItIsDelivered) {
    for (const int code : {Request_EndTransfer, Request_FailTransfer}) {
        TransferDouble transfer(XferUpload);
        COMCTL& record = transfer.object.Record();
        transfer.Queue("one");
        transfer.Queue("two");
        std::snprintf(record.szSourceFilename, sizeof record.szSourceFilename, "s");
        std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "d");
        int typeInEvent = -1;
        int filesInEvent = -1;
        transfer.onEvent = [&](int) {
            typeInEvent = record.nTransferType;
            filesInEvent = record.cFiles;
            EXPECT_STREQ(record.szSourceFilename, "");
            EXPECT_STREQ(record.szDestFilename, "");
        };
        Ask(transfer, code);
        EXPECT_EQ(typeInEvent, XferNone);
        EXPECT_EQ(filesInEvent, 0);
    }
}

TEST(TransferRequest, WhatTheHostQueuesInTheLastEventStays) {
    TransferDouble transfer(XferUpload);
    transfer.Queue("left over");
    transfer.onEvent = [&](int) { transfer.Queue("next"); };
    Ask(transfer, Request_EndTransfer);
    EXPECT_EQ(FirstQueuedFile(transfer.object.Record()), "next");
}

TEST(TransferRequest, NamesOfAFileCanBeReadInItsLastEventOnly) {
    for (const int code : {Request_EndFile, Request_SkipFile}) {
        TransferDouble transfer(XferDownload);
        COMCTL& record = transfer.object.Record();
        std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "d");
        std::string seen;
        transfer.onEvent = [&](int) { seen = record.szDestFilename; };
        Ask(transfer, code);
        EXPECT_EQ(seen, "d");
        EXPECT_STREQ(record.szDestFilename, "");
    }
}

namespace {

struct PrepareCase {
    const char* name;
    XferDirection direction;
    std::vector<const char*> queue;
    const char* folder;
    const char* source; // what the protocol proposes
    const char* dest;
    const char* renamed; // by the host in PrepareFile, null for not
    const char* finalSource;
    const char* finalDest;
    Journal journal;
};

const PrepareCase prepareCases[] = {
    {"ReceiveTakesTheProposal",
     XferDownload,
     {},
     "",
     "s.txt",
     "d.txt",
     nullptr,
     "s.txt",
     "d.txt",
     {"prepare s.txt d.txt", "start"}},
    {"ReceiveTakesAQueuedName",
     XferDownload,
     {"mine"},
     "",
     "s.txt",
     "d.txt",
     nullptr,
     "s.txt",
     "mine",
     {"prepare s.txt mine", "start"}},
    {"QueuedNameOfAReceiveGoesToTheFolder",
     XferDownload,
     {"mine"},
     "in",
     "s",
     "d",
     nullptr,
     "s",
     "in\\mine",
     {"prepare s in\\mine", "start"}},
    {"EmptyQueuedNameOfAReceiveIsNone",
     XferDownload,
     {""},
     "",
     "s",
     "d",
     nullptr,
     "s",
     "d",
     {"prepare s d", "start"}},
    {"ReceiveRenamedByTheHost",
     XferDownload,
     {},
     "in",
     "s",
     "d",
     "other",
     "s",
     "in\\other",
     {"prepare s d", "start"}},
    {"ReceiveRenamedToNothingKeepsTheProposal",
     XferDownload,
     {},
     "",
     "s",
     "d",
     "",
     "s",
     "d",
     {"prepare s d", "start"}},
    {"SendTakesTheQueue",
     XferUpload,
     {"a.txt"},
     "",
     "",
     "",
     nullptr,
     "a.txt",
     "a.txt",
     {"prepare a.txt a.txt", "start"}},
    {"SendTakesTheQueueFromTheFolder",
     XferUpload,
     {"a.txt"},
     "out\\",
     "",
     "",
     nullptr,
     "out\\a.txt",
     "out\\a.txt",
     {"prepare out\\a.txt out\\a.txt", "start"}},
    {"SendRenamedByTheHostStaysAsGiven",
     XferUpload,
     {"a.txt"},
     "out",
     "",
     "",
     "b",
     "out\\a.txt",
     "b",
     {"prepare out\\a.txt out\\a.txt", "start"}},
    {"SendWithAnEmptyQueueTellsOfNoFile", XferUpload, {}, "out", "", "", nullptr, "", "", {}},
};

} // namespace

class TransferPrepare : public testing::TestWithParam<PrepareCase> {};

TEST_P(TransferPrepare, SettlesTheNames) {
    const PrepareCase& test = GetParam();
    TransferDouble transfer(test.direction);
    COMCTL& record = transfer.object.Record();
    std::snprintf(record.szXferPath, sizeof record.szXferPath, "%s", test.folder);
    for (const char* name : test.queue)
        transfer.Queue(name);
    record.lBytesTransferred = 5;
    transfer.onEvent = [&](int status) {
        if (test.renamed && status == TransferStatus_Prepare) {
            std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "%s", "");
            if (*test.renamed)
                std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "%s",
                              test.direction == XferDownload
                                  ? (std::string(test.folder) + "\\" + test.renamed).c_str()
                                  : test.renamed);
        }
    };
    std::string source = test.source;
    std::string dest = test.dest;
    TRANSFERNAMES names;
    names.lpSource = &source;
    names.lpDest = &dest;
    Ask(transfer, Request_PrepareFile, reinterpret_cast<LPARAM>(&names));
    EXPECT_EQ(source, test.finalSource);
    EXPECT_EQ(dest, test.finalDest);
    EXPECT_EQ(transfer.journal, test.journal);
    EXPECT_EQ(record.lBytesTransferred, 0);
    EXPECT_EQ(record.cFiles, 0) << "the head of the queue is used up";
}

INSTANTIATE_TEST_SUITE_P(All, TransferPrepare, testing::ValuesIn(prepareCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(TransferPrepare, ChangesInStartFileComeTooLate) {
    TransferDouble transfer(XferDownload);
    COMCTL& record = transfer.object.Record();
    transfer.onEvent = [&](int status) {
        if (status == TransferStatus_Starting)
            std::snprintf(record.szDestFilename, sizeof record.szDestFilename, "late");
    };
    std::string name = "offered";
    xfPrepareReceive(transfer.transfer, name, name);
    EXPECT_EQ(name, "offered");
}

TEST(TransferPrepare, ObjectDestroyedInTheEventEndsTheWorker) {
    TransferDouble transfer(XferDownload);
    transfer.onEvent = [&](int) { transfer.object.Destroy(); };
    std::string name = "offered";
    EXPECT_THROW(xfPrepareReceive(transfer.transfer, name, name), WorkerLeaves);
}

namespace {

DCB AwkwardState() {
    DCB block = {};
    block.DCBlength = sizeof block;
    block.BaudRate = 19200;
    block.fNull = TRUE;
    block.fErrorChar = TRUE;
    block.fInX = TRUE;
    block.fOutX = TRUE;
    block.fOutxCtsFlow = TRUE;
    block.fRtsControl = RTS_CONTROL_HANDSHAKE;
    block.ByteSize = 7;
    block.Parity = EVENPARITY;
    block.StopBits = TWOSTOPBITS;
    return block;
}

} // namespace

TEST(TransferState, IsTransparentMeanwhile) {
    for (int protocol = Protocol_XModemChecksum; protocol <= Protocol_Kermit; ++protocol) {
        const DCB meanwhile = StatesOfTransfer(AwkwardState(), protocol).meanwhile;
        const bool keepsBits = protocol == Protocol_Kermit;
        EXPECT_FALSE(meanwhile.fNull);
        EXPECT_FALSE(meanwhile.fErrorChar);
        EXPECT_FALSE(meanwhile.fInX);
        EXPECT_FALSE(meanwhile.fOutX);
        EXPECT_EQ(meanwhile.ByteSize, keepsBits ? 7 : 8) << protocol;
        EXPECT_EQ(meanwhile.Parity, keepsBits ? EVENPARITY : NOPARITY) << protocol;
        EXPECT_EQ(meanwhile.StopBits, TWOSTOPBITS);
        EXPECT_EQ(meanwhile.BaudRate, 19200u);
        EXPECT_TRUE(meanwhile.fOutxCtsFlow) << "hardware flow control stays";
        EXPECT_EQ(meanwhile.fRtsControl, static_cast<DWORD>(RTS_CONTROL_HANDSHAKE));
    }
}

TEST(TransferState, ComesBackButForTheDiscardingOfNuls) {
    DCB expected = AwkwardState();
    expected.fNull = FALSE;
    const DCB afterwards = StatesOfTransfer(AwkwardState(), Protocol_ZModem).afterwards;
    EXPECT_EQ(std::memcmp(&afterwards, &expected, sizeof expected), 0);
}
