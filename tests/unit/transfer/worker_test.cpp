// The worker of a transfer on a real line: its life, its events, the port before and after.
#include "transferpair.h"

#include "core/comobject.h"
#include "support/memorylimit.h"
#include "transfer/queue.h"
#include "transfer/Tc-xfer.h"
#include "transfer/worker.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

using Statuses = std::vector<int>;

DCB StateOf(const CommObject& object) {
    DCB block = {};
    block.DCBlength = sizeof block;
    GetCommState(GetCommID(object), &block);
    return block;
}

// While the messages of this thread run: the worker waits for the host in each event.
std::string ReadFrom(FarEnd& end, size_t wanted) {
    std::string bytes;
    PumpUntil([&] { return (bytes += end.Read()).size() >= wanted; });
    return bytes;
}

struct ProtocolCase {
    const char* name;
    int nProtocol;
    bool namesFiles;
    bool keepsSize;
};

const ProtocolCase protocolCases[] = {
    {"XModem", Protocol_XModemChecksum, false, false}, {"XModemCrc", Protocol_XModemCRC, false, false},
    {"XModem1K", Protocol_XModem1K, false, false},     {"YModem", Protocol_YModem, true, true},
    {"YModemG", Protocol_YModemG, true, true},         {"ZModem", Protocol_ZModem, true, true},
    {"Kermit", Protocol_Kermit, true, true},
};

} // namespace

class TransferOverTheLine : public TransferTest, public testing::WithParamInterface<ProtocolCase> {};

TEST_P(TransferOverTheLine, BringsAFileAsItIs) {
    const ProtocolCase& protocol = GetParam();
    Use(protocol.nProtocol);
    const std::string contents = Contents(5000);
    const std::string path = out.Write("data.bin", contents);
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, path.c_str()), 1);
    EXPECT_EQ(GetTransferType(sender), XferUpload);
    EXPECT_EQ(GetTransferType(receiver), XferDownload);
    ASSERT_TRUE(BothEnd());
    const std::string name = protocol.namesFiles ? "data.bin" : "UNTITLED.000";
    std::string got = in.Read(name);
    if (!protocol.keepsSize) {
        EXPECT_EQ(got.size() % 128, 0u);
        got.resize(contents.size());
    }
    EXPECT_TRUE(got == contents) << in.Read(name).size() << " bytes";
    const Statuses expected = {TransferStatus_Prepare, TransferStatus_Starting, TransferStatus_Transfering,
                               TransferStatus_EndOfFile, TransferStatus_Success};
    EXPECT_EQ(sent.statuses, expected);
    EXPECT_EQ(received.statuses, expected);
    for (const StatusList* list : {&sent, &received})
        for (const DWORD thread : list->threads)
            EXPECT_EQ(thread, GetCurrentThreadId()) << "events come on the object's own thread";
    EXPECT_EQ(GetTransferType(sender), XferNone);
    EXPECT_EQ(GetTransferType(receiver), XferNone);
}

INSTANTIATE_TEST_SUITE_P(All, TransferOverTheLine, testing::ValuesIn(protocolCases),
                         [](const auto& info) { return std::string(info.param.name); });

using TransferBegin = TransferTest;
using TransferWorker = TransferTest;
using TransferPortState = TransferTest;
using TransferLine = TransferTest;

TEST_F(TransferBegin, UnreadableFileIsRefusedAndTouchesNothing) {
    Record(sender).nTransferStatus = TransferStatus_EndOfFile;
    EXPECT_EQ(Upload(sender, out.In("missing").c_str()), 0);
    EXPECT_EQ(Upload(sender, ""), 0);
    EXPECT_EQ(Upload(sender, nullptr), 0);
    EXPECT_EQ(GetTransferStatus(sender), TransferStatus_EndOfFile);
    EXPECT_EQ(GetTransferType(sender), XferNone);
    EXPECT_EQ(Record(sender).cFiles, 0);
    EXPECT_EQ(sender.Count(TARN_EVENT_TRANSFER), 0);
}

TEST_F(TransferBegin, UploadIsRefusedDuringADownload) {
    const std::string path = out.Write("a", "a");
    Record(sender).nTransferType = XferDownload;
    EXPECT_EQ(Upload(sender, path.c_str()), 0);
    EXPECT_EQ(Record(sender).cFiles, 0);
    Record(sender).nTransferType = XferUpload;
    EXPECT_EQ(Download(sender, "a"), 0);
    EXPECT_EQ(Record(sender).cFiles, 0);
    Record(sender).nTransferType = XferNone;
}

TEST_F(TransferBegin, SecondDownloadWaitsInTheQueueAsADestination) {
    Record(receiver).nTransferType = XferDownload;
    EXPECT_EQ(Download(receiver, "x"), 1);
    EXPECT_EQ(Download(receiver, nullptr), 1);
    EXPECT_EQ(Record(receiver).cFiles, 2);
    EXPECT_STREQ(Record(receiver).lpFileList.data(), in.In("x").c_str());
    Record(receiver).nTransferType = XferNone;
}

TEST_F(TransferBegin, BothClearTheAbort) {
    AbortTransfer(sender);
    EXPECT_EQ(Record(sender).bAbortTransfer, 1);
    Upload(sender, "");
    EXPECT_EQ(Record(sender).bAbortTransfer, 0);
    AbortCurrentFile(sender);
    EXPECT_EQ(Record(sender).bAbortTransfer, 1);
    Record(sender).nTransferType = XferUpload;
    Download(sender, "");
    EXPECT_EQ(Record(sender).bAbortTransfer, 0);
    Record(sender).nTransferType = XferNone;
}

TEST_F(TransferBegin, ProtocolWithoutAnEngineFailsWithoutAByteOnTheLine) {
    for (const int protocol : {7, 8, -1, 100}) {
        Use(protocol);
        sent.statuses.clear();
        ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
        ASSERT_TRUE(PumpUntil([&] { return GetTransferType(sender) == XferNone && sent.Last() == -1; }));
        EXPECT_EQ(sent.statuses, Statuses({TransferStatus_Failure})) << protocol;
        EXPECT_EQ(GetInBufferCount(receiver), 0);
    }
}

TEST_F(TransferBegin, ClosedPortFails) {
    sender.Close();
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    EXPECT_EQ(sent.statuses, Statuses({TransferStatus_Failure}));
}

TEST_F(TransferBegin, WithoutMemoryNothingBegins) {
    struct Case {
        const char* name;
        int(TARNAPI* begin)(HWND, const char*);
    };
    const std::string path = out.Write(std::string(100, 'a'), "a");
    const std::string waiting(400, 'w'); // so that the queue is what has no room, not the name
    COMCTL& record = *RecordOf(sender);
    for (const Case& row : {Case{"Upload", Upload}, Case{"Download", Download}}) {
        ASSERT_TRUE(QueueFile(record, waiting.c_str()));
        for (const size_t most : {size_t{0}, path.size(), path.size() * 2 + 2, waiting.size()}) {
            const host::MemoryLimit limit(most);
            EXPECT_EQ(row.begin(sender, path.c_str()), 0) << row.name << " with " << most;
            EXPECT_GT(limit.Refusals(), 0) << row.name << " with " << most;
        }
        EXPECT_EQ(record.cFiles, 1) << row.name;
        EXPECT_EQ(GetTransferType(sender), XferNone) << row.name;
        EXPECT_EQ(GetTransferStatus(sender), 0) << row.name;
        DropQueuedFiles(record);
    }
    EXPECT_EQ(sent.statuses, Statuses());
}

TEST_F(TransferBegin, DeadObjectsGiveNothing) {
    for (const HWND dead : {HWND(nullptr), reinterpret_cast<HWND>(12345)}) {
        char name[8] = "x";
        EXPECT_EQ(Upload(dead, "a"), 0);
        EXPECT_EQ(Download(dead, "a"), 0);
        EXPECT_EQ(StartTransfer(dead), nullptr);
        EXPECT_EQ(GetTransferStatus(dead), 0);
        EXPECT_EQ(GetTransferType(dead), 0);
        EXPECT_EQ(GetTransferFileSize(dead), 0);
        EXPECT_EQ(GetTransferBytesTransferred(dead), 0);
        EXPECT_EQ(GetSourceFilename(dead, name, sizeof name), 0);
        EXPECT_EQ(GetDestFilename(dead, name, sizeof name), 0);
        EXPECT_EQ(GetSourceFilenameLength(dead), 0);
        EXPECT_EQ(GetDestFilenameLength(dead), 0);
        AbortTransfer(dead);
        AbortCurrentFile(dead);
        SetDestFilename(dead, "a");
        SetXferPath(dead, "a");
        WaitUntilTransferIsFinished(dead);
        EXPECT_STREQ(name, "x");
    }
    EXPECT_EQ(TimerExpired(nullptr, 0), 1);
}

TEST_F(TransferBegin, NamesAreCutToTheBuffer) {
    SetDestFilename(sender, "destination");
    std::snprintf(Record(sender).szSourceFilename, FilenameSize, "source");
    char name[6];
    EXPECT_EQ(GetDestFilename(sender, name, sizeof name), 5);
    EXPECT_STREQ(name, "desti");
    EXPECT_EQ(GetSourceFilename(sender, name, sizeof name), 5);
    EXPECT_STREQ(name, "sourc");
    EXPECT_EQ(GetDestFilename(sender, name, 1), 0);
    EXPECT_STREQ(name, "");
    EXPECT_EQ(GetDestFilename(sender, name, 0), 0);
    EXPECT_EQ(GetDestFilename(sender, nullptr, 5), 0);
    EXPECT_EQ(GetDestFilenameLength(sender), 11);
    EXPECT_EQ(GetSourceFilenameLength(sender), 6);
    EXPECT_EQ(GetTransferFilename(sender, name, sizeof name), 0);
    EXPECT_EQ(GetTransferFilenameLength(sender), 0);
}

TEST_F(TransferWorker, SendsABatchAndTakesMoreWhileItRuns) {
    Use(Protocol_ZModem);
    out.Write("b", Contents(3000));
    out.Write("c", "");
    sent.onStatus = [&](int status) {
        if (status == TransferStatus_Starting && !in.Has("b")) {
            EXPECT_EQ(Upload(sender, out.In("b").c_str()), 1);
            EXPECT_EQ(Upload(sender, out.In("c").c_str()), 1);
        }
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(100)).c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_EQ(in.Read("a"), Contents(100));
    EXPECT_TRUE(in.Read("b") == Contents(3000));
    EXPECT_TRUE(in.Has("c"));
    EXPECT_EQ(in.Read("c"), "");
}

TEST_F(TransferWorker, HostRenamesInPrepareFile) {
    Use(Protocol_ZModem);
    std::string offered;
    received.onStatus = [&](int status) {
        char name[FilenameSize] = {};
        GetSourceFilename(receiver, name, sizeof name);
        if (status == TransferStatus_Prepare) {
            offered = name;
            SetDestFilename(receiver, "mine");
        }
        if (status == TransferStatus_Starting)
            SetDestFilename(receiver, "too late");
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", "text").c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(offered, in.In("a"));
    EXPECT_EQ(in.Read("mine"), "text");
    EXPECT_FALSE(in.Has("a"));
    EXPECT_FALSE(in.Has("too late"));
}

TEST_F(TransferWorker, AbortOfTheFileEndsTheTransferOnBothSides) {
    cable.Baud(19200);
    Use(Protocol_ZModem);
    sent.onStatus = [&](int status) {
        if (status == TransferStatus_Transfering && GetTransferBytesTransferred(sender) > 2000)
            AbortCurrentFile(sender);
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(100000)).c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(sent.Last(), TransferStatus_Failure);
    EXPECT_EQ(received.Last(), TransferStatus_Failure);
    EXPECT_LT(in.Read("a").size(), 100000u);
}

TEST_F(TransferWorker, NextTransferMayStartInTheLastEvent) {
    Use(Protocol_ZModem);
    out.Write("second", "2");
    bool again = true;
    sent.onStatus = [&](int status) {
        if (status == TransferStatus_Success && again) {
            again = false;
            EXPECT_EQ(GetTransferType(sender), XferNone);
            EXPECT_EQ(Upload(sender, out.In("second").c_str()), 1);
        }
    };
    received.onStatus = [&](int status) {
        if (status == TransferStatus_Success && !in.Has("second")) {
            EXPECT_EQ(Download(receiver, ""), 1);
        }
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("first", "1").c_str()), 1);
    ASSERT_TRUE(
        PumpUntil([&] { return in.Read("second") == "2" && GetTransferType(sender) == XferNone; }, limit));
    EXPECT_EQ(in.Read("first"), "1");
    ASSERT_TRUE(BothEnd());
}

TEST_F(TransferWorker, WaitUntilItIsFinishedServesBothObjects) {
    Use(Protocol_YModem);
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(300)).c_str()), 1);
    WaitUntilTransferIsFinished(sender);
    EXPECT_LE(GetTransferStatus(sender), 0);
    WaitUntilTransferIsFinished(receiver);
    EXPECT_EQ(in.Read("a"), Contents(300));
}

TEST_F(TransferWorker, WaitEndsAtShutDown) {
    Use(Protocol_ZModem);
    ASSERT_EQ(Download(receiver, ""), 1);
    SetShutDown(receiver, 1);
    WaitUntilTransferIsFinished(receiver);
    EXPECT_EQ(GetTransferType(receiver), XferDownload);
    SetShutDown(receiver, 0);
    AbortTransfer(receiver);
    EXPECT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
}

TEST_F(TransferWorker, ObjectDestroyedInMidTransferEndsIt) {
    cable.Baud(19200);
    for (const bool inAnEvent : {false, true}) {
        auto victim = std::make_unique<CommObject>();
        receiver.Close();
        ASSERT_EQ(victim->Open("COM6"), "");
        SetXferPath(*victim, in.Path().c_str());
        SetProtocol(*victim, Protocol_ZModem);
        SetProtocol(sender, Protocol_ZModem);
        StatusList list(*victim);
        bool destroyed = false;
        DWORD took = 0;
        const auto destroy = [&] {
            const DWORD start = GetTickCount();
            destroyed = DestroyCommObject(*victim) != 0;
            took = GetTickCount() - start;
        };
        list.onStatus = [&](int status) {
            if (inAnEvent && status == TransferStatus_Starting)
                destroy();
        };
        ASSERT_EQ(Download(*victim, ""), 1);
        ASSERT_EQ(Upload(sender, out.Write("a", Contents(20000)).c_str()), 1);
        ASSERT_TRUE(PumpUntil(
            [&] {
                if (!inAnEvent && list.Last() == TransferStatus_Transfering)
                    destroy();
                return destroyed;
            },
            limit));
        EXPECT_LT(took, 1500u) << "the worker was not terminated";
        AbortTransfer(sender);
        ASSERT_TRUE(PumpUntil([&] { return GetTransferType(sender) == XferNone; }, limit));
        sent.statuses.clear();
    }
}

TEST_F(TransferWorker, PortClosedUnderItFailsIt) {
    cable.Baud(19200);
    Use(Protocol_ZModem);
    received.onStatus = [&](int status) {
        if (status == TransferStatus_Transfering && GetTransferBytesTransferred(receiver) > 1000)
            receiver.Close();
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(50000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_EQ(received.Last(), TransferStatus_Failure);
    AbortTransfer(sender);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
}

TEST_F(TransferWorker, WatchersOfTheNamedEventHearOfTheEnd) {
    const EventHandle watcher(CreateEventA(nullptr, TRUE, FALSE, "TARNABORTEVENT"));
    ASSERT_TRUE(watcher);
    Use(7);
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return WaitForSingleObject(watcher.get(), 0) == WAIT_OBJECT_0; }));
    EXPECT_TRUE(sent.Ended());
}

TEST_F(TransferWorker, ForeignMessagesAreNoRequests) {
    const std::string path = out.Write("a", "a");
    SendMessageA(sender, TransferMessage, Request_CreateDialog, reinterpret_cast<LPARAM>(&DlgProc));
    EXPECT_EQ(Record(sender).hTransferDialog.load(), nullptr);
    Record(sender).nTransferType = XferUpload;
    for (WPARAM code = 1; code <= 17; ++code)
        SendMessageA(sender, TransferMessage, code, reinterpret_cast<LPARAM>(sender.Handle()));
    SendMessageA(sender, TransferEndMessage, 0, 0);
    EXPECT_EQ(GetTransferType(sender), XferUpload);
    EXPECT_TRUE(IsWindow(sender));
    EXPECT_EQ(sender.Count(TARN_EVENT_TRANSFER), 0);
    Record(sender).nTransferType = XferNone;
}

TEST_F(TransferPortState, HasNoSoftwareFlowControlMeanwhile) {
    SetHandshaking(receiver, TARN_HANDSHAKING_XONXOFF);
    const DCB before = StateOf(receiver);
    ASSERT_TRUE(before.fInX && before.fOutX);
    Use(Protocol_ZModem);
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_TRUE(PumpUntil([&] { return !StateOf(receiver).fInX && !StateOf(receiver).fOutX; }));
    EXPECT_EQ(StateOf(receiver).BaudRate, before.BaudRate);
    AbortTransfer(receiver);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_TRUE(StateOf(receiver).fInX && StateOf(receiver).fOutX);
}

TEST_F(TransferPortState, ReadsEndAtOnceAgainAfterwards) {
    const auto timeoutsOf = [](const CommObject& object) {
        COMMTIMEOUTS timeouts = {};
        GetCommTimeouts(GetCommID(object), &timeouts);
        return timeouts.ReadIntervalTimeout;
    };
    const DWORD before = timeoutsOf(sender);
    Use(7);
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    EXPECT_EQ(timeoutsOf(sender), before);
}

TEST_F(TransferLine, WhatComesAfterATransferIsTheObjectsInput) {
    receiver.Close();
    FarEnd far_end;
    Use(Protocol_XModemChecksum);
    ASSERT_EQ(Upload(sender, out.Write("a", "short").c_str()), 1);
    ASSERT_TRUE(far_end.Send("\x15"));
    ASSERT_EQ(ReadFrom(far_end, 132).size(), 132u);
    ASSERT_TRUE(far_end.Send("\x06"));
    ASSERT_EQ(ReadFrom(far_end, 1), "\x04");
    ASSERT_TRUE(far_end.Send("\x06prompt> "));
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    ASSERT_TRUE(PumpUntil([&] { return GetInBufferCount(sender) == 8; }));
    char text[32] = {};
    EXPECT_EQ(GetInput(sender, text, 3), 3);
    EXPECT_STREQ(text, "pro");
    EXPECT_EQ(GetInBufferCount(sender), 5);
    std::memset(text, 0, sizeof text);
    EXPECT_EQ(GetInput(sender, text, sizeof text), 5);
    EXPECT_STREQ(text, "mpt> ");
}

TEST_F(TransferLine, ZModemStartInTheInputStartsADownload) {
    Use(Protocol_ZModem);
    SetAutoZModem(receiver, 1);
    SetAutoProcess(receiver, TARN_PROCESS_SERIAL);
    ASSERT_EQ(Upload(sender, out.Write("auto.txt", "by itself").c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_EQ(in.Read("auto.txt"), "by itself");
}

TEST_F(TransferLine, OtherEventsWaitUntilTheEnd) {
    SetRThreshold(receiver, 1);
    Use(Protocol_ZModem);
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(3000)).c_str()), 1);
    received.onStatus = [&](int) { EXPECT_EQ(receiver.Count(TARN_EVENT_RECEIVE), 0); };
    ASSERT_TRUE(BothEnd());
    ASSERT_TRUE(Output(sender, "x", 1));
    EXPECT_TRUE(PumpUntil([&] { return receiver.Saw(TARN_EVENT_RECEIVE); })) << "ticks come again";
}
