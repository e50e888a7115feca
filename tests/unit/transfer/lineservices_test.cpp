// What the protocols ask of the line and the clock, on the cable and on this thread.
#include "transferpair.h"

#include "core/portworker.h"
#include "diagnostics/wiretap.h"
#include "support/every.h"
#include "transfer/services.h"
#include "unit/diagnostics/logfiles.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

constexpr DWORD soon = 2000;     // ms: a wait that was ended, on a slow machine
constexpr DWORD endless = 20000; // ms: a wait that is to be ended

class TransferServices : public LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        ResetWireTap();
        logfiles::RemoveLog();
        ASSERT_EQ(object.Open(nearPort), "");
        SetWireTapTransfer(object, 1);
        record = RecordOf(object);
        record->nTransferType = XferUpload; // ticks leave the line alone
        stop = ManualResetEvent();
        line = std::make_unique<WorkerLine>(*record, stop.get());
        transfer.lpComCtl = record;
        transfer.hWnd = object;
        transfer.hStop = stop.get();
        transfer.lpLine = line.get();
        transfer.bWireTap = 1;
    }
    void TearDown() override {
        line.reset();
        record->nTransferType = XferNone;
        ResetWireTap();
        logfiles::RemoveLog();
    }

    bool WriteBlocks(int count) {
        const std::string block(1024, 'x');
        for (int i = 0; i < count; ++i)
            if (xfWrite(transfer, block.data(), static_cast<DWORD>(block.size())) != block.size())
                return false;
        return true;
    }

    bool Logged(const std::string& text) const {
        return logfiles::Messages().find("<time> " + text + "\r\n") != std::string::npos;
    }

    FarEnd farEnd;
    CommObject object;
    COMCTL* record = nullptr;
    EventHandle stop;
    std::unique_ptr<WorkerLine> line;
    TRANSFER transfer;
};

struct EndRow {
    const char* name;
    std::function<void()> end;
};

} // namespace

TEST_F(TransferServices, BytesComeInTheirOrder) {
    ASSERT_TRUE(farEnd.Send(std::string("a\0\xFF", 3)));
    for (const int expected : {0x61, 0, 0xFF})
        EXPECT_EQ(xfGetChar(transfer, endless), expected);
    EXPECT_FALSE(xfDataWaiting(transfer));
    EXPECT_EQ(xfGetChar(transfer, 0), -1);
    EXPECT_TRUE(Logged("Receive timeout."));
}

TEST_F(TransferServices, ByteIsAwaitedForItsTime) {
    for (const DWORD limit : {50u, 1300u}) {
        const Clock clock;
        EXPECT_EQ(xfGetChar(transfer, limit), -1);
        EXPECT_GE(clock.Gone() + 20, limit); // the clock's own step
        EXPECT_LT(clock.Gone(), limit + soon);
    }
    EXPECT_EQ(record->bAbortTransfer, 0);
}

TEST_F(TransferServices, AbortedWaitEndsAtOnceAndIsNoTimeout) {
    record->bAbortTransfer = 1;
    const Clock clock;
    EXPECT_EQ(xfGetChar(transfer, endless), -1);
    xfDelay(transfer, endless);
    EXPECT_FALSE(xfWaitForInput(transfer, endless));
    EXPECT_LT(clock.Gone(), soon);
    EXPECT_FALSE(Logged("Receive timeout."));
}

TEST_F(TransferServices, WaitOfTheEndGoesOnUnderAnAbort) {
    record->bAbortTransfer = 1;
    transfer.bFinishing = 1;
    const Clock clock;
    EXPECT_FALSE(xfWaitForInput(transfer, 300));
    EXPECT_GE(clock.Gone() + 20, 300u);
}

TEST_F(TransferServices, WhatEndsTheWorkerEndsEachWaitAndAborts) {
    const EndRow ends[] = {
        {"the program's end", [] { PostThreadMessageA(GetCurrentThreadId(), WM_QUIT, 0, 0); }},
        {"the stop event", [this] { SetEvent(stop.get()); }},
        {"a bad stop event", [this] { transfer.hStop = reinterpret_cast<HANDLE>(INT_PTR{0x7FFFFFF4}); }},
        {"the closed port", [this] { object.Close(); }},
    };
    for (const EndRow& row : ends) {
        SCOPED_TRACE(row.name);
        row.end();
        const Clock clock;
        record->bAbortTransfer = 0;
        xfDelay(transfer, endless);
        EXPECT_EQ(record->bAbortTransfer, 1);
        EXPECT_LT(clock.Gone(), soon);
        ResetEvent(stop.get());
        transfer.hStop = stop.get();
        MSG quit;
        PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
    }
    record->bAbortTransfer = 0;
    EXPECT_EQ(xfGetChar(transfer, endless), -1);
    EXPECT_EQ(record->bAbortTransfer, 1);
}

TEST_F(TransferServices, ClosedPortTakesNothingAndHasNothing) {
    ASSERT_TRUE(farEnd.Send("abc"));
    ASSERT_TRUE(xfWaitForInput(transfer, endless));
    object.Close();
    EXPECT_EQ(xfInQueue(transfer), 0u);
    EXPECT_EQ(xfOutQueue(transfer), 0u);
    EXPECT_EQ(xfPutChar(transfer, 'x'), 0u);
    EXPECT_EQ(record->bAbortTransfer, 1);
    record->bAbortTransfer = 0;
    xfFlushOutput(transfer);
    EXPECT_EQ(record->bAbortTransfer, 1);
}

TEST_F(TransferServices, TimerExpiresAtItsDeadlineAndWithTheTransfer) {
    const DWORD never = 0xFFFFFFFF;
    EXPECT_EQ(TimerExpired(&transfer, never), 0);
    EXPECT_EQ(TimerExpired(&transfer, CreateTimer(endless)), 0);
    EXPECT_EQ(TimerExpired(&transfer, GetTickCount()), 1);
    EXPECT_EQ(TimerExpired(&transfer, 0), 1);
    EXPECT_EQ(record->bAbortTransfer, 0) << "nothing of that is an abort";
    transfer.bFinishing = 1;
    record->bAbortTransfer = 1;
    EXPECT_EQ(TimerExpired(&transfer, never), 1);
    record->bAbortTransfer = 0;
    SetEvent(stop.get());
    EXPECT_EQ(TimerExpired(&transfer, never), 1);
    EXPECT_EQ(record->bAbortTransfer, 1);
    ResetEvent(stop.get());
    record->bAbortTransfer = 0;
    object.Close();
    EXPECT_EQ(TimerExpired(&transfer, never), 1);
    EXPECT_EQ(record->bAbortTransfer, 1);
}

TEST_F(TransferServices, MessagesOfAThreadWithoutADialogAreDropped) {
    int taken = 0;
    const Every timer(1, [&] { ++taken; });
    xfDelay(transfer, 300);
    EXPECT_EQ(taken, 0);
    EXPECT_TRUE(PumpUntil([&] { return taken > 0; })) << "they come to a loop of the host's";
}

TEST_F(TransferServices, FlushThatIsAbortedIsTold) {
    cable.Baud(1200);
    ASSERT_TRUE(WriteBlocks(10));
    EXPECT_GT(xfOutQueue(transfer), 0u);
    record->bAbortTransfer = 1;
    const Clock clock;
    xfFlushOutput(transfer);
    EXPECT_LT(clock.Gone(), soon);
    EXPECT_TRUE(Logged("Flushing output buffer failed."));
    xfClearOutput(transfer);
    EXPECT_TRUE(Logged("Clear output buffer"));
}

TEST_F(TransferServices, FlushWaitsUntilAllHasLeft) {
    cable.Baud(115200);
    ASSERT_TRUE(WriteBlocks(20));
    xfFlushOutput(transfer);
    EXPECT_EQ(xfOutQueue(transfer), 0u);
    EXPECT_FALSE(Logged("Flushing output buffer failed."));
}

TEST_F(TransferServices, ClearedInputIsGone) {
    ASSERT_TRUE(farEnd.Send("abc"));
    ASSERT_EQ(xfGetChar(transfer, endless), 'a');
    ASSERT_TRUE(PumpUntil([&] { return xfInQueue(transfer) == 2; }));
    xfClearInput(transfer);
    EXPECT_FALSE(xfDataWaiting(transfer));
    EXPECT_EQ(xfGetChar(transfer, 0), -1);
    EXPECT_TRUE(Logged("Clearing input buffer buffer"));
}
