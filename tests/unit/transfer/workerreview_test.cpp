// The worker against the thread of its window: objects and windows destroyed, ports closed and opened again,
// transfers one after the other, the dialog's owner, what is left behind.
#include "transferpair.h"

#include "transfer/worker.h"

#include <gtest/gtest.h>

#include <tlhelp32.h>

using namespace host;

namespace {

constexpr DWORD promptly = 1500; // ms: a worker that has to be terminated takes longer

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Window = std::unique_ptr<HWND, WindowCloser>;

Window MakeWindow(DWORD style = WS_OVERLAPPEDWINDOW) {
    return Window(
        CreateWindowExA(0, "Static", "", style, 0, 0, 200, 200, nullptr, nullptr, nullptr, nullptr));
}

std::string TextOf(HWND hWnd) {
    char text[FilenameSize] = {};
    GetWindowTextA(hWnd, text, sizeof text);
    return text;
}

DWORD TimeOf(const std::function<void()>& action) {
    const DWORD start = GetTickCount();
    action();
    return GetTickCount() - start;
}

DWORD HandleCount() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

int ThreadCount() {
    const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more; more = Thread32Next(snapshot.get(), &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    return count;
}

DCB StateOf(const CommObject& object) {
    DCB block = {};
    block.DCBlength = sizeof block;
    GetCommState(GetCommID(object), &block);
    return block;
}

std::string ReadFrom(FarEnd& end, size_t wanted, DWORD limitMilliseconds = 5000) {
    std::string bytes;
    PumpUntil([&] { return (bytes += end.Read()).size() >= wanted; }, limitMilliseconds);
    return bytes;
}

} // namespace

using TransferLife = TransferTest;
using TransferDialogLife = TransferTest;
using TransferPortLife = TransferTest;
using TransferSuccession = TransferTest;

// What stays behind

TEST_F(TransferLife, FiftyTransfersLeaveNothingBehind) {
    Use(Protocol_ZModem);
    const std::string path = out.Write("a", "short");
    const auto transferOnce = [&] {
        ASSERT_EQ(Download(receiver, "a"), 1);
        ASSERT_EQ(Upload(sender, path.c_str()), 1);
        ASSERT_TRUE(PumpUntil(
            [&] { return GetTransferType(sender) == XferNone && GetTransferType(receiver) == XferNone; },
            limit));
    };
    for (int i = 0; i < 3; ++i)
        transferOnce();
    Pump(300);
    const DWORD handles = HandleCount();
    const int threads = ThreadCount();
    ASSERT_GT(threads, 0);
    for (int i = 0; i < 50; ++i)
        transferOnce();
    PumpUntil([&] { return HandleCount() <= handles && ThreadCount() <= threads; });
    EXPECT_LE(HandleCount(), handles);
    EXPECT_LE(ThreadCount(), threads);
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    EXPECT_EQ(received.Last(), TransferStatus_Success);
}

// The object goes away in an event

struct DestroyCase {
    const char* name;
    bool ofSender;
    int status;
};

const DestroyCase destroyCases[] = {
    {"SenderPrepares", true, TransferStatus_Prepare},
    {"SenderStarts", true, TransferStatus_Starting},
    {"SenderTransfers", true, TransferStatus_Transfering},
    {"SenderEndsTheFile", true, TransferStatus_EndOfFile},
    {"SenderHasEnded", true, TransferStatus_Success},
    {"ReceiverPrepares", false, TransferStatus_Prepare},
    {"ReceiverStarts", false, TransferStatus_Starting},
    {"ReceiverTransfers", false, TransferStatus_Transfering},
    {"ReceiverEndsTheFile", false, TransferStatus_EndOfFile},
    {"ReceiverHasEnded", false, TransferStatus_Success},
};

class TransferDestroyed : public TransferTest, public testing::WithParamInterface<DestroyCase> {};

TEST_P(TransferDestroyed, InsideAnEventEndsItPromptly) {
    Use(Protocol_ZModem);
    const Window owner = MakeWindow();
    const bool ofSender = GetParam().ofSender;
    CommObject& victim = ofSender ? sender : receiver;
    CommObject& other = ofSender ? receiver : sender;
    StatusList& list = ofSender ? sent : received;
    SetDialogParent(victim, owner.get());
    SetTransferDialogType(victim, TARN_DIALOG_LOCKS);
    int destroyed = -1;
    DWORD took = 0;
    HWND hDlg = nullptr;
    list.onStatus = [&](int status) {
        if (status != GetParam().status || destroyed >= 0)
            return;
        hDlg = Record(victim).hTransferDialog;
        took = TimeOf([&] { destroyed = DestroyCommObject(victim); });
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(5000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return destroyed >= 0; }, limit));
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(IsWindow(victim));
    EXPECT_LT(took, promptly);
    EXPECT_EQ(hDlg != nullptr, GetParam().status != TransferStatus_Success);
    EXPECT_FALSE(IsWindow(hDlg));
    EXPECT_TRUE(IsWindowEnabled(owner.get()));
    AbortTransfer(other);
    EXPECT_TRUE(PumpUntil([&] { return GetTransferType(other) == XferNone; }, limit));
}

INSTANTIATE_TEST_SUITE_P(Statuses, TransferDestroyed, testing::ValuesIn(destroyCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TransferLife, ParentThatGoesTakesObjectWorkerAndDialogAlong) {
    receiver.Close();
    Window parent = MakeWindow();
    CommObject child(parent.get());
    StatusList list(child);
    ASSERT_EQ(child.Open("COM6"), "");
    SetXferPath(child, in.Path().c_str());
    Use(Protocol_ZModem);
    SetProtocol(child, Protocol_ZModem);
    SetTransferDialogType(child, TARN_DIALOG_LOCKS);
    DWORD took = 0;
    HWND hDlg = nullptr;
    list.onStatus = [&](int status) {
        if (status != TransferStatus_Starting)
            return;
        hDlg = Record(child).hTransferDialog;
        took = TimeOf([&] { parent.reset(); });
    };
    ASSERT_EQ(Download(child, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(5000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return !IsWindow(child); }, limit));
    EXPECT_TRUE(hDlg);
    EXPECT_FALSE(IsWindow(hDlg));
    EXPECT_LT(took, promptly);
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
}

TEST_F(TransferLife, HostThatBlocksIsWaitedFor) {
    Use(Protocol_ZModem);
    received.onStatus = [](int status) {
        if (status == TransferStatus_Starting || status == TransferStatus_EndOfFile)
            Sleep(1200);
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(3000)).c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_TRUE(in.Read("a") == Contents(3000));
}

TEST_F(TransferLife, ShutDownInTheMiddleLetsTheObjectGoPromptly) {
    Use(Protocol_ZModem);
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_TRUE(PumpUntil([&] { return GetInBufferCount(sender) > 0; }));
    SetShutDown(receiver, 1);
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(DestroyCommObject(receiver), 1); }), promptly);
}

TEST_F(TransferLife, ThreadWithoutADirectionFailsWithoutAByteOnTheLine) {
    Use(Protocol_ZModem);
    const EventHandle thread(StartTransfer(receiver));
    ASSERT_TRUE(thread);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_EQ(received.statuses, std::vector<int>({TransferStatus_Failure}));
    EXPECT_EQ(GetInBufferCount(sender), 0);
    EXPECT_TRUE(PumpUntil([&] { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; }));
}

TEST_F(TransferLife, ThreadThatAHostStartedHasTheLineToItsEnd) {
    Use(7);
    const std::string path = out.Write("a", "a");
    const EventHandle thread(StartTransfer(receiver)); // asks this thread for its end, and so waits for it
    ASSERT_TRUE(thread);
    EXPECT_EQ(Download(receiver, ""), 0);
    EXPECT_EQ(Upload(receiver, path.c_str()), 0);
    EXPECT_EQ(GetTransferType(receiver), XferNone);
    EXPECT_EQ(Record(receiver).cFiles, 0);
    bool again = false;
    received.onStatus = [&](int) {
        if (!again)
            again = Download(receiver, "") == 1;
    };
    EXPECT_TRUE(PumpUntil([&] { return received.statuses.size() == 2; }, limit)) << "one end each";
    EXPECT_TRUE(again);
    EXPECT_EQ(GetTransferType(receiver), XferNone);
}

TEST_F(TransferLife, ThreadThatAHostStartedIsWaitedForToo) {
    Use(Protocol_ZModem);
    DWORD ended = WAIT_FAILED;
    HANDLE started = nullptr;
    received.onStatus = [&](int) {
        DestroyCommObject(receiver);
        ended = WaitForSingleObject(started, 0);
    };
    started = StartTransfer(receiver);
    const EventHandle thread(started);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_EQ(ended, DWORD{WAIT_OBJECT_0}) << "or it would go on with a record that is gone";
}

TEST_F(TransferLife, WatchersHearNothingOfATransferWithoutAPort) {
    const EventHandle watcher(CreateEventA(nullptr, TRUE, FALSE, "TARNABORTEVENT"));
    sender.Close();
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    Pump(200);
    EXPECT_EQ(WaitForSingleObject(watcher.get(), 0), DWORD{WAIT_TIMEOUT});
}

// The focus

TEST_F(TransferLife, FocusComesBackToAnObjectThatHadIt) {
    receiver.Close();
    for (const bool own : {true, false}) {
        const Window parent = MakeWindow(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        CommObject child(parent.get());
        ShowWindow(child, SW_SHOW);
        StatusList list(child);
        SetProtocol(child, 7);
        Record(child).hFocusWindow = own ? child.Handle() : parent.get();
        SetFocus(parent.get());
        ASSERT_EQ(GetFocus(), parent.get());
        ASSERT_EQ(Download(child, ""), 1);
        ASSERT_TRUE(PumpUntil([&] { return list.Ended(); }));
        EXPECT_EQ(GetFocus(), own ? child.Handle() : parent.get());
    }
}

// The dialog and its owner

struct DialogCase {
    int type;
    bool exists;
    bool locks;
};

TEST_F(TransferDialogLife, TypesShowItAndLockItsOwner) {
    Use(Protocol_ZModem);
    const DialogCase cases[] = {{TARN_DIALOG_NONE, false, false},
                                {TARN_DIALOG_FREE, true, false},
                                {TARN_DIALOG_LOCKS, true, true},
                                {3, false, false}};
    const Window owner = MakeWindow();
    SetDialogParent(receiver, owner.get());
    for (const DialogCase& one : cases) {
        SCOPED_TRACE(one.type);
        SetTransferDialogType(receiver, one.type);
        HWND hDlg = nullptr;
        bool seen = false;
        received.onStatus = [&](int status) {
            const HWND hNow = Record(receiver).hTransferDialog;
            if (status <= 0) {
                EXPECT_FALSE(hNow) << "gone before the last event";
                EXPECT_TRUE(IsWindowEnabled(owner.get()));
                return;
            }
            EXPECT_EQ(!IsWindowEnabled(owner.get()), one.locks) << status;
            EXPECT_EQ(IsWindow(hNow) != FALSE, one.exists);
            EXPECT_EQ(IsWindowVisible(hNow) != FALSE, one.exists);
            hDlg = hNow;
            if (!one.exists || status != TransferStatus_EndOfFile)
                return;
            seen = true;
            EXPECT_EQ(GetWindow(hNow, GW_OWNER), owner.get());
            EXPECT_EQ(TextOf(hNow), "Receiving " + in.In("a") + " (ZModem)");
            EXPECT_EQ(TextOf(GetDlgItem(hNow, 101)), "3000 bytes");
            EXPECT_EQ(TextOf(GetDlgItem(hNow, 102)), "3000 bytes");
        };
        ASSERT_EQ(Download(receiver, "a"), 1);
        ASSERT_EQ(Upload(sender, out.Write("a", Contents(3000)).c_str()), 1);
        ASSERT_TRUE(PumpUntil(
            [&] { return GetTransferType(sender) == XferNone && GetTransferType(receiver) == XferNone; },
            limit));
        EXPECT_EQ(received.Last(), TransferStatus_Success);
        EXPECT_EQ(seen, one.exists);
        EXPECT_FALSE(IsWindow(hDlg));
        received.onStatus = {};
    }
}

TEST_F(TransferDialogLife, OwnerIsTheParentWhereNoneWasGiven) {
    const Window parent = MakeWindow();
    CommObject child(parent.get());
    receiver.Close();
    ASSERT_EQ(child.Open("COM6"), "");
    StatusList list(child);
    SetProtocol(child, Protocol_ZModem);
    SetTransferDialogType(child, TARN_DIALOG_LOCKS);
    ASSERT_EQ(Download(child, ""), 1);
    ASSERT_TRUE(PumpUntil([&] { return !IsWindowEnabled(parent.get()); }));
    ASSERT_TRUE(PumpUntil([&] { return IsWindowVisible(Record(child).hTransferDialog) != FALSE; }));
    EXPECT_EQ(GetWindow(Record(child).hTransferDialog, GW_OWNER), parent.get());
    AbortTransfer(child);
    ASSERT_TRUE(PumpUntil([&] { return list.Ended(); }, limit));
    EXPECT_TRUE(IsWindowEnabled(parent.get()));
}

TEST_F(TransferDialogLife, CancelButtonEndsTheTransfer) {
    cable.Baud(19200);
    Use(Protocol_ZModem);
    const Window owner = MakeWindow();
    SetDialogParent(receiver, owner.get());
    SetTransferDialogType(receiver, TARN_DIALOG_FREE);
    bool pressed = false;
    bool told = false;
    received.onStatus = [&](int status) {
        const HWND hDlg = Record(receiver).hTransferDialog;
        if (status == TransferStatus_Transfering && GetTransferBytesTransferred(receiver) > 2000 && !pressed)
            pressed = PostMessageA(GetDlgItem(hDlg, IDCANCEL), BM_CLICK, 0, 0) != FALSE;
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(100000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil(
        [&] {
            const HWND hDlg = Record(receiver).hTransferDialog;
            // A text that was on its way may stand there for a moment.
            if (pressed && hDlg && !IsWindowEnabled(GetDlgItem(hDlg, IDCANCEL)))
                told = told || TextOf(GetDlgItem(hDlg, 103)) == "Terminating transfer...";
            return sent.Ended() && received.Ended();
        },
        limit));
    EXPECT_TRUE(told);
    EXPECT_EQ(received.Last(), TransferStatus_Failure);
    EXPECT_EQ(sent.Last(), TransferStatus_Failure);
    EXPECT_LT(in.Read("a").size(), 100000u);
}

TEST_F(TransferDialogLife, TransferGoesOnWithoutAnOwnerThatWasDestroyed) {
    Use(Protocol_ZModem);
    Window owner = MakeWindow();
    SetDialogParent(receiver, owner.get());
    SetTransferDialogType(receiver, TARN_DIALOG_LOCKS);
    received.onStatus = [&](int status) {
        if (status == TransferStatus_Starting)
            owner.reset();
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(5000)).c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_TRUE(in.Read("a") == Contents(5000));
    EXPECT_FALSE(Record(receiver).hTransferDialog);
}

// The port goes away or changes in the middle

TEST_F(TransferPortLife, PortOpenedAgainIsNotTheTransfersAnyMore) {
    cable.Baud(19200);
    Use(Protocol_ZModem);
    bool again = false;
    received.onStatus = [&](int status) {
        if (again || status != TransferStatus_Transfering || GetTransferBytesTransferred(receiver) < 1000)
            return;
        again = true;
        receiver.Close();
        EXPECT_EQ(receiver.Open("COM6", "9600,n,8,1"), "");
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(50000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_EQ(received.Last(), TransferStatus_Failure);
    EXPECT_TRUE(GetPortOpen(receiver));
    EXPECT_EQ(StateOf(receiver).BaudRate, DWORD{9600}) << "not the earlier port's state";
    COMMTIMEOUTS timeouts = {};
    GetCommTimeouts(GetCommID(receiver), &timeouts);
    EXPECT_EQ(timeouts.ReadIntervalTimeout, DWORD{MAXDWORD});
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
}

TEST_F(TransferPortLife, DetachedDeviceFailsIt) {
    cable.Baud(19200);
    Use(Protocol_ZModem);
    received.onStatus = [&](int status) {
        if (status == TransferStatus_Transfering && GetTransferBytesTransferred(receiver) > 1000)
            SetCommID(receiver, nullptr);
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(50000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return received.Ended(); }, limit));
    EXPECT_EQ(received.Last(), TransferStatus_Failure);
    EXPECT_FALSE(GetPortOpen(receiver));
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
}

// A closed port in the middle leaves nothing of the old line to the next one.
TEST_F(TransferPortLife, InputOfAClosedPortIsGone) {
    receiver.Close();
    FarEnd end;
    Use(Protocol_XModemChecksum);
    ASSERT_EQ(Upload(sender, out.Write("a", "short").c_str()), 1);
    ASSERT_TRUE(end.Send("\x15"));
    ASSERT_EQ(ReadFrom(end, 132).size(), 132u);
    sent.onStatus = [&](int status) {
        if (status != TransferStatus_EndOfFile)
            return;
        sender.Close();
        EXPECT_EQ(sender.Open("COM5"), "");
    };
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_EQ(ReadFrom(end, 1), "\x04");
    ASSERT_TRUE(end.Send("\x06old"));
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
    EXPECT_EQ(GetInBufferCount(sender), 0);
}

TEST_F(TransferPortLife, HostThatReadsInTheMiddleIsNotHeldUp) {
    cable.Baud(57600);
    Use(Protocol_ZModem);
    char bytes[64];
    DWORD longest = 0;
    const auto read = [&] {
        longest = std::max(longest, TimeOf([&] { GetInput(receiver, bytes, sizeof bytes); }));
    };
    received.onStatus = [&](int) { read(); };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(20000)).c_str()), 1);
    PumpUntil(
        [&] {
            read();
            return sent.Ended() && received.Ended();
        },
        8000);
    EXPECT_LT(longest, 1000u);
    AbortTransfer(sender);
    AbortTransfer(receiver);
    received.onStatus = {};
    EXPECT_TRUE(PumpUntil(
        [&] { return GetTransferType(sender) == XferNone && GetTransferType(receiver) == XferNone; }, limit));
    SetShutDown(receiver, 1); // a read that hangs ends here
}

// What comes while the last events are served is the object's, without a further byte.
TEST_F(TransferPortLife, InputThatCameDuringTheLastFilesEventIsTold) {
    receiver.Close();
    FarEnd end;
    SetRThreshold(sender, 1);
    Use(Protocol_XModemChecksum);
    ASSERT_EQ(Upload(sender, out.Write("a", "short").c_str()), 1);
    ASSERT_TRUE(end.Send("\x15"));
    ASSERT_EQ(ReadFrom(end, 132).size(), 132u);
    sent.onStatus = [&](int status) {
        if (status != TransferStatus_EndOfFile)
            return;
        EXPECT_TRUE(end.Send("prompt> "));
        Sleep(300); // without messages: the object is still in the transfer when it hears of the bytes
    };
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_EQ(ReadFrom(end, 1), "\x04");
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }, limit));
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    EXPECT_TRUE(PumpUntil([&] { return sender.Saw(TARN_EVENT_RECEIVE); }, 2000));
    EXPECT_EQ(GetInBufferCount(sender), 8);
}

// The receiver leaves the sender waiting for the request after the last file, with nothing more to come.
TEST_F(TransferSuccession, FileThatComesAfterTheLastOneIsRefused) {
    receiver.Close();
    FarEnd end;
    Use(Protocol_YModem);
    const std::string path = out.Write("a", "short");
    ASSERT_EQ(Upload(sender, path.c_str()), 1);
    ASSERT_TRUE(end.Send("C"));
    ASSERT_EQ(ReadFrom(end, 133).size(), 133u);
    ASSERT_TRUE(end.Send("\x06"
                         "C"));
    ASSERT_EQ(ReadFrom(end, 133).size(), 133u);
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_EQ(ReadFrom(end, 1), "\x04");
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_TRUE(PumpUntil([&] {
        std::scoped_lock guard(TransferLock());
        const std::string status = Record(sender).szTransferStatus;
        return sent.Last() == TransferStatus_EndOfFile && status == "Sending filename..."; // without a name
    }));
    EXPECT_EQ(GetTransferType(sender), XferUpload);
    EXPECT_EQ(Upload(sender, path.c_str()), 0);
    EXPECT_EQ(Record(sender).cFiles, 0);
    bool again = false;
    sent.onStatus = [&](int status) {
        if (status <= 0 && !again)
            again = Upload(sender, path.c_str()) == 1;
    };
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return again; }, limit)) << "the end opens the queue for the next transfer";
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return GetTransferType(sender) == XferNone; }, limit));
}

// One transfer right after the other

TEST_F(TransferSuccession, WorkerThatSaysGoodbyeDoesNotDisturbTheNext) {
    Use(7);
    const std::string path = out.Write("a", "a");
    constexpr int rounds = 60;
    int ends = 0;
    sent.onStatus = [&](int status) {
        EXPECT_EQ(status, TransferStatus_Failure);
        if (++ends == rounds)
            return;
        EXPECT_EQ(Upload(sender, path.c_str()), 1);
        Sleep(ends % 2 ? 20 : 0); // the next worker asks for its end before this one has its answer
    };
    ASSERT_EQ(Upload(sender, path.c_str()), 1);
    EXPECT_TRUE(PumpUntil([&] { return ends == rounds; }, 30000)) << ends;
    EXPECT_EQ(GetTransferType(sender), XferNone);
}

TEST_F(TransferSuccession, ObjectMayGoRightAfterTheNextHasStarted) {
    receiver.Close();
    const std::string path = out.Write("a", "a");
    for (int i = 0; i < 20; ++i) {
        CommObject object;
        StatusList list(object);
        ASSERT_EQ(object.Open("COM6"), "");
        SetProtocol(object, 7);
        DWORD took = 0;
        bool destroyed = false;
        list.onStatus = [&](int) {
            if (destroyed)
                return;
            EXPECT_EQ(Upload(object, path.c_str()), 1);
            destroyed = true;
            if (i % 2)
                took = TimeOf([&] { EXPECT_EQ(DestroyCommObject(object), 1); });
        };
        ASSERT_EQ(Upload(object, path.c_str()), 1);
        ASSERT_TRUE(PumpUntil([&] { return destroyed; }));
        if (!(i % 2))
            took = TimeOf([&] { EXPECT_EQ(DestroyCommObject(object), 1); });
        EXPECT_LT(took, promptly);
    }
}

TEST_F(TransferSuccession, EightFilesInEightTransfers) {
    Use(Protocol_ZModem);
    constexpr int files = 8;
    int ups = 0;
    int downs = 0;
    const auto name = [](int i) { return "file" + std::to_string(i); };
    for (int i = 0; i < files; ++i)
        out.Write(name(i), name(i));
    sent.onStatus = [&](int status) {
        if (status <= 0 && ++ups < files) {
            EXPECT_EQ(Upload(sender, out.In(name(ups)).c_str()), 1);
        }
    };
    received.onStatus = [&](int status) {
        if (status <= 0 && ++downs < files) {
            EXPECT_EQ(Download(receiver, ""), 1);
        }
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.In(name(0)).c_str()), 1);
    EXPECT_TRUE(PumpUntil([&] { return ups >= files && downs >= files; }, limit)) << ups << ", " << downs;
    for (int i = 0; i < files; ++i)
        EXPECT_EQ(in.Read(name(i)), name(i));
}

TEST_F(TransferSuccession, WhatWasReadAheadIsTheNextTransfersInput) {
    receiver.Close();
    FarEnd end;
    Use(Protocol_XModemChecksum);
    const std::string path = out.Write("a", "short");
    bool again = false;
    sent.onStatus = [&](int status) {
        if (status == TransferStatus_Success && !again) {
            again = true;
            EXPECT_EQ(Upload(sender, path.c_str()), 1);
        }
    };
    ASSERT_EQ(Upload(sender, path.c_str()), 1);
    ASSERT_TRUE(end.Send("\x15"));
    ASSERT_EQ(ReadFrom(end, 132).size(), 132u);
    ASSERT_TRUE(end.Send("\x06"));
    ASSERT_EQ(ReadFrom(end, 1), "\x04");
    ASSERT_TRUE(end.Send("\x06\x15")); // the second asks for the next file's first block
    EXPECT_EQ(ReadFrom(end, 132, 3000).size(), 132u);
    EXPECT_TRUE(again);
    AbortTransfer(sender);
    EXPECT_TRUE(PumpUntil([&] { return GetTransferType(sender) == XferNone; }, limit));
    EXPECT_EQ(GetInBufferCount(sender), 0);
}
