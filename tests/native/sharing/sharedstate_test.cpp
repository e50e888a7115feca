// What the window's thread and the worker of a transfer share, on two real threads under ThreadSanitizer: the
// host calls its functions while the worker goes through files, and answers the worker's events in between.
#include "memorydisk.h"
#include "transferdouble.h"

#include "core/returnedinput.h"
#include "TarnComm.h"
#include "transfer/queue.h"
#include "transfer/services.h"
#include "transfer/Tc-xfer.h"
#include "transfer/worker.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <thread>

// The worker is this test's own thread.
bool BeginTransfer(COMCTL&) {
    return true;
}

HANDLE StartWorkerAlone(COMCTL&) {
    return nullptr;
}

bool WorkerStandsAlone(const COMCTL&) {
    return false;
}

void WINAPI OutputDebugStringA(LPCSTR) {}

namespace {

constexpr int fileCount = 300;

// Carries the worker's events to the host's thread and lets the worker wait for the answer, as a sent message
// does.
class Mailbox {
  public:
    void Send(int status) {
        std::unique_lock guard(lock_);
        status_ = status;
        waiting_ = true;
        answered_.wait(guard, [&] { return !waiting_; });
    }

    template <class Host>
    void Answer(Host&& host) {
        const std::scoped_lock guard(lock_);
        if (!waiting_)
            return;
        host(status_);
        waiting_ = false;
        answered_.notify_one();
    }

  private:
    std::mutex lock_; // guards what follows
    std::condition_variable answered_;
    int status_ = 0;
    bool waiting_ = false;
};

void SendOneFile(TransferDouble& transfer) {
    TRANSFER& worker = transfer.transfer;
    std::string source;
    std::string dest;
    xfPrepareSend(worker, source, dest);
    xfStartFile(worker);
    xfSetFileSize(worker, 3000);
    for (LONG done = 1000; done <= 3000; done += 1000) {
        xfUpdate(worker, done, 1000);
        xfSetMessage(worker, "block");
        xfGetAbort(worker);
    }
    xfUniqueFilename(worker);
    for (const int code : {Request_DialogType, Request_Port, Request_DialogParent, Request_Protocol,
                           Request_Abort, Request_Direction, Request_FilesWaiting})
        xfRequest(worker.hWnd, code, 0);
    xfFileDone(worker);
    xfSetAbort(worker, 0);
}

void CallEverything(HWND object, const COMCTL& record) {
    char name[600];
    if (record.cFiles < 5)
        Upload(object, "file");
    GetSourceFilename(object, name, sizeof name);
    GetDestFilename(object, name, sizeof name);
    GetSourceFilenameLength(object);
    GetDestFilenameLength(object);
    GetTransferStatus(object);
    GetTransferType(object);
    GetTransferFileSize(object);
    GetTransferBytesTransferred(object);
    SetXferPath(object, "folder");
    AbortTransfer(object);
    AbortCurrentFile(object);
}

} // namespace

TEST(SharedTransfer, HostAndWorkerDisturbNeitherEachOtherNorTheRecord) {
    MemoryDisk disk;
    disk.files["file"];
    disk.files["folder\\file"];
    TransferDouble transfer(XferUpload);
    transfer.transfer.bWireTap = 0;
    transfer.keepBlocks = false;
    const HWND object = transfer.object.Handle();
    COMCTL& record = transfer.object.Record();
    Mailbox mailbox;
    int events = 0; // the host's thread alone
    transfer.onEvent = [&](int status) { mailbox.Send(status); };
    std::atomic<bool> done{false};
    ASSERT_TRUE(QueueFile(record, "file"));

    std::jthread worker([&] {
        for (int i = 0; i < fileCount; ++i)
            SendOneFile(transfer);
        xfRequest(object, Request_EndTransfer, 0);
        done = true;
    });
    while (!done) {
        CallEverything(object, record);
        mailbox.Answer([&](int status) {
            ++events;
            if (status == TransferStatus_Prepare)
                SetDestFilename(object, "renamed");
        });
    }
    EXPECT_GE(events, fileCount * 5);
    EXPECT_EQ(record.nTransferStatus, TransferStatus_Success);
}

TEST(SharedTransfer, InputThatTheWorkerGivesBackIsReadOnce) {
    ScriptedObject object;
    COMCTL& record = object.Record();
    constexpr size_t given = 20000;
    std::jthread worker([&] {
        for (size_t i = 0; i < given; ++i)
            GiveBackInput(record, "x", 1);
    });
    size_t taken = 0;
    char buffer[64];
    while (taken < given)
        if (record.cbReturnedInput)
            taken += static_cast<size_t>(TakeReturnedInput(record, buffer, sizeof buffer));
    EXPECT_EQ(taken, given);
    EXPECT_EQ(record.cbReturnedInput, 0);
}

TEST(SharedTransfer, QueueIsFilledAndEmptiedAtTheSameTime) {
    ScriptedObject object;
    COMCTL& record = object.Record();
    constexpr int names = 20000;
    std::jthread host([&] {
        for (int i = 0; i < names; ++i) {
            while (record.cFiles > 20)
                std::this_thread::yield();
            QueueFile(record, "name");
        }
    });
    int taken = 0;
    while (taken < names)
        if (FirstQueuedFile(record) == "name") {
            DropFirstQueuedFile(record);
            ++taken;
        }
    EXPECT_EQ(record.cFiles, 0);
    EXPECT_EQ(FirstQueuedFile(record), "");
}
