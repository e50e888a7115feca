// Ticks and events on the virtual line, and the three roads of an event.
#include "support/line.h"

#include "core/comctl.h"
#include "core/comobject.h"
#include "core/live.h"
#include "core/notify.h"
#include "core/rooms.h"
#include "core/thread.h"

namespace {

class Event : public host::LineTest {};

TEST_F(Event, ReceiveFiresAgainWhileBytesStayUnread) {
    host::CommObject object;
    host::FarEnd peer;
    SetRThreshold(object, 3);
    ASSERT_EQ(object.Open(host::nearPort), "");
    peer.Send("ab");
    host::Pump(100);
    EXPECT_EQ(object.Count(TARN_EVENT_RECEIVE), 0) << "under the threshold";
    peer.Send("c");
    EXPECT_TRUE(host::PumpUntil([&] { return object.Count(TARN_EVENT_RECEIVE) >= 3; }));
    EXPECT_EQ(RecordOf(object)->bReceiveFlag, 1);
    char bytes[8];
    EXPECT_EQ(GetInput(object, bytes, sizeof bytes), 3);
    EXPECT_EQ(RecordOf(object)->bReceiveFlag, 0) << "cleared by the fresh count";
}

TEST_F(Event, UnreadBytesCostNextToNothing) {
    host::CommObject object;
    host::FarEnd peer;
    SetRThreshold(object, 1);
    ASSERT_EQ(object.Open(host::nearPort), "");
    peer.Send("left unread");
    host::Pump(200);
    object.ForgetEvents();
    host::Pump(1000);
    EXPECT_GE(object.Count(TARN_EVENT_RECEIVE), 1);
    EXPECT_LE(object.Count(TARN_EVENT_RECEIVE), 60) << "ticks in a second";
}

TEST_F(Event, SendFiresAtTheThreshold) {
    host::CommObject object;
    SetSThreshold(object, 1);
    ASSERT_EQ(object.Open(host::nearPort), "");
    SendMessageA(object, WM_TIMER, 0, 0);
    EXPECT_EQ(object.Events(), std::vector<int>{TARN_EVENT_SEND});
    EXPECT_EQ(GetLastCommEvent(object), TARN_EVENT_SEND);
}

TEST_F(Event, SignalEventsComeInOrder) {
    host::CommObject object;
    host::FarEnd peer;
    EscapeCommFunction(peer.Handle(), CLRDTR);
    EscapeCommFunction(peer.Handle(), CLRRTS);
    SetInterval(object, 60000);
    ASSERT_EQ(object.Open(host::nearPort), "");
    SendMessageA(object, WM_TIMER, 0, 0);
    object.ForgetEvents();
    EscapeCommFunction(peer.Handle(), SETDTR);
    EscapeCommFunction(peer.Handle(), SETRTS);
    cable.Ring('a', true);
    SendMessageA(object, WM_TIMER, 0, 0);
    EXPECT_EQ(object.Events(),
              (std::vector<int>{TARN_EVENT_CTS, TARN_EVENT_DSR, TARN_EVENT_RING, TARN_EVENT_CARRIER}));
    object.ForgetEvents();
    cable.Ring('a', false);
    SendMessageA(object, WM_TIMER, 0, 0);
    EXPECT_TRUE(object.Events().empty()) << "a ring that ends is no event";
}

TEST_F(Event, TickDoesNothingDuringATransferOrWhileClosed) {
    host::CommObject object;
    SetSThreshold(object, 1);
    SendMessageA(object, WM_TIMER, 0, 0);
    EXPECT_TRUE(object.Events().empty()) << "closed";
    SetInterval(object, 60000);
    ASSERT_EQ(object.Open(host::nearPort), "");
    RecordOf(object)->nTransferType = 2;
    SendMessageA(object, WM_TIMER, 0, 0);
    EXPECT_TRUE(object.Events().empty()) << "the transfer owns the line";
    RecordOf(object)->nTransferType = 0;
}

TEST_F(Event, TimerTicksWithAnInterval) {
    host::CommObject object;
    host::FarEnd peer;
    SetInterval(object, 20);
    SetRThreshold(object, 1);
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_NE(RecordOf(object)->idTimer, 0u);
    EXPECT_EQ(RecordOf(object)->lpMonitorThread, nullptr);
    peer.Send("x");
    EXPECT_TRUE(host::PumpUntil([&] { return object.Saw(TARN_EVENT_RECEIVE); }));
}

TEST_F(Event, RunningTimerIsNeverChanged) {
    host::CommObject object;
    SetInterval(object, 60000);
    ASSERT_EQ(object.Open(host::nearPort), "");
    const UINT_PTR timer = RecordOf(object)->idTimer;
    SetInterval(object, 10);
    object.Close();
    EXPECT_EQ(RecordOf(object)->idTimer, timer) << "killed at destruction only";
    SetInterval(object, 0);
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_EQ(RecordOf(object)->idTimer, timer);
    EXPECT_EQ(RecordOf(object)->lpMonitorThread, nullptr) << "still on the old timer";
}

TEST_F(Event, IntervalTakesEffectAtTheNextOpeningAfterAMonitor) {
    host::CommObject object;
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_NE(RecordOf(object)->lpMonitorThread, nullptr);
    SetInterval(object, 60000);
    EXPECT_EQ(RecordOf(object)->idTimer, 0u);
    object.Close();
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_NE(RecordOf(object)->idTimer, 0u);
    EXPECT_EQ(RecordOf(object)->lpMonitorThread, nullptr);
}

TEST_F(Event, AutomaticProcessingForcesTheReceiveThreshold) {
    host::CommObject object;
    SetAutoProcess(object, TARN_PROCESS_SERIAL);
    EXPECT_EQ(GetRThreshold(object), 0) << "not while closed";
    ASSERT_EQ(object.Open(host::nearPort), "");
    EXPECT_EQ(GetRThreshold(object), 1);
}

TEST_F(Event, AutomaticProcessingLooksUpAndStartsTheDownload) {
    host::CommObject object;
    host::FarEnd peer;
    static int downloads;
    downloads = 0;
    upperRooms.startDownload = [](HWND, const char* name) { downloads += *name == '\0'; };
    SetAutoProcess(object, TARN_PROCESS_SERIAL);
    SetLookUpText(object, "login:,NO CARRIER", ',');
    ASSERT_EQ(object.Open(host::nearPort), "");
    peer.Send("Welcome\r\nLogin:");
    EXPECT_TRUE(host::PumpUntil([&] { return object.Saw(TARN_EVENT_LOOKUP); }));
    EXPECT_EQ(object.Count(TARN_EVENT_RECEIVE), 0) << "the dispatcher takes the place of the thresholds";
    peer.Send("rz\r**\x18"
              "B00000000");
    EXPECT_TRUE(host::PumpUntil([&] { return downloads == 1; }));
    upperRooms.startDownload = nullptr;
}

TEST_F(Event, ClosingInsideAnEventCostsNoTimeAndNoThread) {
    host::CommObject object;
    host::FarEnd peer;
    SetRThreshold(object, 1);
    ASSERT_EQ(object.Open(host::nearPort), "");
    DWORD took = MAXDWORD;
    object.OnEventDo([&](int code) {
        if (code != TARN_EVENT_RECEIVE)
            return;
        const DWORD start = GetTickCount();
        object.Close();
        took = GetTickCount() - start;
    });
    peer.Send("close");
    EXPECT_TRUE(host::PumpUntil([&] { return took != MAXDWORD; }));
    EXPECT_LT(took, 1000u) << "ms";
    EXPECT_EQ(GetPortOpen(object), 0);
    EXPECT_EQ(TerminatedThreadCount(), 0);
}

TEST_F(Event, DestroyingInsideAnEventCostsNoTimeAndNoThread) {
    auto object = std::make_unique<host::CommObject>();
    host::FarEnd peer;
    SetRThreshold(*object, 1);
    ASSERT_EQ(object->Open(host::nearPort), "");
    DWORD took = MAXDWORD;
    const HWND handle = *object;
    object->OnEventDo([&](int code) {
        if (code != TARN_EVENT_RECEIVE)
            return;
        const DWORD start = GetTickCount();
        EXPECT_EQ(DestroyCommObject(handle), 1);
        took = GetTickCount() - start;
    });
    peer.Send("destroy");
    EXPECT_TRUE(host::PumpUntil([&] { return took != MAXDWORD; }));
    EXPECT_LT(took, 1000u) << "ms";
    EXPECT_EQ(RecordOf(handle), nullptr);
    EXPECT_EQ(TerminatedThreadCount(), 0);
}

HWND portToClose;

void CALLBACK ClosePortOnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    SetPortOpen(portToClose, 0, nullptr);
}

TEST_F(Event, ClosingInAWaitInsideAnEventCostsNoTimeAndNoThread) {
    host::CommObject object;
    host::FarEnd peer;
    SetRThreshold(object, 1);
    ASSERT_EQ(object.Open(host::nearPort), "");
    portToClose = object;
    DWORD took = MAXDWORD;
    object.OnEventDo([&](int code) {
        if (code != TARN_EVENT_RECEIVE || took != MAXDWORD)
            return;
        took = 0;
        SetTimer(nullptr, 0, 10, ClosePortOnTimer);
        const DWORD start = GetTickCount();
        ComPause(object, 100);
        took = GetTickCount() - start;
    });
    peer.Send("x");
    EXPECT_TRUE(host::PumpUntil([&] { return took != MAXDWORD && took; }));
    EXPECT_LT(took, 1500u) << "ms";
    EXPECT_EQ(GetPortOpen(object), 0);
    EXPECT_EQ(TerminatedThreadCount(), 0);
}

// A window that keeps the commands it gets.
class CommandWindow {
  public:
    CommandWindow() {
        hWnd_ = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrA(hWnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        commands.clear();
    }
    ~CommandWindow() { DestroyWindow(hWnd_); }
    operator HWND() const { return hWnd_; }

    static std::vector<std::pair<WPARAM, LPARAM>> commands;

  private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != WM_COMMAND)
            return DefWindowProcA(hWnd, message, wParam, lParam);
        commands.emplace_back(wParam, lParam);
        return 0;
    }
    HWND hWnd_;
};

std::vector<std::pair<WPARAM, LPARAM>> CommandWindow::commands;

LPARAM CommandOf(HWND object, int code) {
    return MAKELPARAM(LOWORD(reinterpret_cast<UINT_PTR>(object)), code);
}

TEST_F(Event, HandlerComesFirst) {
    const CommandWindow parent;
    const host::CommObject object(parent);
    Notify(object, TARN_EVENT_CTS);
    EXPECT_EQ(object.Events(), std::vector<int>{TARN_EVENT_CTS});
    EXPECT_TRUE(CommandWindow::commands.empty());
}

struct Call {
    HWND object;
    int id;
    int code;
    bool operator==(const Call&) const = default;
};

std::vector<Call> calls;

void CALLBACK KeepCall(HWND object, int id, int code) {
    calls.push_back({object, id, code});
}

TEST_F(Event, HandlerIsToldWindowIdentifierAndCode) {
    const CommandWindow parent;
    const HWND object = CreateCommObject(parent);
    SetWindowLongPtrA(object, GWLP_ID, 42);
    SetEventHandler(object, KeepCall);
    calls.clear();
    Notify(object, TARN_EVENT_CTS);
    EXPECT_TRUE(calls == std::vector{(Call{object, 42, TARN_EVENT_CTS})});
}

TEST_F(Event, WithoutHandlerTheParentGetsACommand) {
    const CommandWindow parent;
    const HWND object = CreateCommObject(parent);
    SetWindowLongPtrA(object, GWLP_ID, 42);
    Notify(object, TARN_EVENT_DSR);
    ASSERT_EQ(CommandWindow::commands.size(), 1u);
    EXPECT_EQ(CommandWindow::commands[0].first, 42u);
    EXPECT_EQ(CommandWindow::commands[0].second, CommandOf(object, TARN_EVENT_DSR));
}

TEST_F(Event, EventWindowComesBeforeTheParent) {
    const CommandWindow window;
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    const HWND object = CreateCommObject(parent);
    SetEventWindow(object, window);
    Notify(object, TARN_ERROR_BREAK);
    ASSERT_EQ(CommandWindow::commands.size(), 1u);
    EXPECT_EQ(CommandWindow::commands[0].second, CommandOf(object, TARN_ERROR_BREAK));
    DestroyWindow(parent);
}

TEST_F(Event, WithoutAnyTargetTheControlFiresIt) {
    const HWND object = CreateCommObject(nullptr);
    static int fired;
    fired = 0;
    upperRooms.fireCommEvent = [](CTarnCommCtl&, int code) { fired = code; };
    Notify(object, TARN_EVENT_RING);
    EXPECT_EQ(fired, 0) << "there is no control";
    int control = 0;
    RecordOf(object)->lpControl = reinterpret_cast<CTarnCommCtl*>(&control);
    Notify(object, TARN_EVENT_RING);
    EXPECT_EQ(fired, TARN_EVENT_RING);
    RecordOf(object)->lpControl = nullptr;
    upperRooms.fireCommEvent = nullptr;
    DestroyCommObject(object);
}

TEST_F(Event, ErrorIsPendingOnlyDuringItsDelivery) {
    host::CommObject object;
    int inside = 0;
    object.OnEventDo([&](int) { inside = RecordOf(object)->nPendingError; });
    Notify(object, TARN_ERROR_PARITY);
    EXPECT_EQ(inside, TARN_ERROR_PARITY);
    EXPECT_EQ(GetLastCommError(object), 0);
    EXPECT_EQ(GetLastCommEvent(object), TARN_ERROR_PARITY);
    Notify(object, TARN_EVENT_CTS);
    EXPECT_EQ(inside, 0) << "no error code";
}

TEST_F(Event, CodesFromAThousandOnAreErrors) {
    host::CommObject object;
    int inside = -1;
    object.OnEventDo([&](int) { inside = RecordOf(object)->nPendingError; });
    for (const int code : {100, 999, 1000, 1001}) {
        Notify(object, code);
        EXPECT_EQ(inside, code >= 1000 ? code : 0);
        EXPECT_EQ(GetLastCommEvent(object), code);
    }
}

TEST_F(Event, GetLastCommErrorTakesTheErrorInItsHandler) {
    host::CommObject object;
    int first = 0, second = -1;
    object.OnEventDo([&](int) {
        first = GetLastCommError(object);
        second = GetLastCommError(object);
    });
    Notify(object, TARN_ERROR_FRAME);
    EXPECT_EQ(first, TARN_ERROR_FRAME);
    EXPECT_EQ(second, 0);
}

TEST_F(Event, ErrorTextsAreThoseOfTheTable) {
    const std::pair<int, const char*> rows[] = {
        {1001, "Break Error"},
        {1002, "CTS Time Out Error"},
        {1003, "DSR Time Out Error"},
        {1004, "Framing Error"},
        {1005, "Input Time Out Error"},
        {1006, "Data Overrun Error"},
        {1007, "Carrier Time Out Error"},
        {1008, "Receive Buffer Overflow Error"},
        {1009, "Parity Receive Error"},
        {1010, "Transmit Buffer Full Error"},
    };
    for (const auto& [code, text] : rows)
        EXPECT_STREQ(ErrorText(code), text);
    EXPECT_EQ(ErrorText(7), nullptr);
}

} // namespace
