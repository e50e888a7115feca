// The commands of the toolbar, by their buttons and by DoCommand.
#include "commandtest.h"

#include "core/handle.h"
#include "terminal/openclipboard.h"

#include <cstring>
#include <thread>

namespace {

using host::Lines;

class Commands : public host::CommandTest {};

struct OpeningRow {
    CommCommand command;
    int told;
    bool logged;
};

constexpr OpeningRow openings[] = {
    {CommCommand_New, 1, true},
    {CommCommand_Open, 2, true},
    {CommCommand_Save, 3, true},
    {CommCommand_SaveAs, 4, true},
    {CommCommand_Copy, 5, false},
    {CommCommand_Paste, 6, false},
    {CommCommand_Connect, 7, true},
    {CommCommand_Disconnect, 8, true},
    {CommCommand_SendFile, 9, true},
    {CommCommand_ReceiveFile, 10, true},
    {CommCommand_Properties, 11, true},
    {CommCommand_Font, 12, false},
    // As Properties; kept so.
    {CommCommand_PortProperties, 11, true},
};

TEST_F(Commands, EachOpensInItsWay) {
    Show();
    Veto();
    const int windows = host::ThreadWindows();
    for (const OpeningRow& row : openings) {
        LogAnew();
        Give(row.command);
        const std::string told = std::to_string(row.told);
        EXPECT_EQ(TakeHeard(), (Lines{"Command " + told + " False"}));
        EXPECT_EQ(Log(), row.logged ? Lines{"TarnComm_Command(" + told + ", False) Event"} : Lines{});
        EXPECT_EQ(host::ThreadWindows(), windows) << "cancelled: no dialog";
    }
}

TEST_F(Commands, EachButtonGivesItsCommand) {
    Show();
    Veto();
    constexpr int commandsOfButtons[] = {1, 2, 3, 5, 6, 7, 8, 9, 10, 11};
    for (size_t place = 0; place < std::size(commandsOfButtons); ++place) {
        Press(host::allButtons[place]);
        EXPECT_EQ(TakeHeard(), (Lines{"Command " + std::to_string(commandsOfButtons[place]) + " False"}));
    }
}

TEST_F(Commands, ACodeInPlaceOfTheNotificationOpensNothing) {
    Show();
    SendMessageA(control->Window(), WM_COMMAND, MAKEWPARAM(connectButton, 0xFFFF), 0);
    EXPECT_EQ(ear.Count("Command 7 False"), 0);
    SendMessageA(control->Window(), WM_COMMAND, MAKEWPARAM(connectButton, 0xFFFE), 0);
    EXPECT_EQ(ear.Count("Command 7 False"), 1);
}

TEST_F(Commands, OtherIdentifiersAreNoCommands) {
    Show();
    for (const int other : {1, 1000, 1001, 1999, 2003, 2012, 2020, 2021, 2022, 2023})
        Press(other);
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_F(Commands, OtherValuesDoNothing) {
    Show();
    LogAnew();
    for (const int value : {0, 15, -1, 2006, 0x10007})
        EXPECT_EQ(Do(value), S_OK) << value;
    EXPECT_EQ(ear.heard, Lines{});
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(Commands, NewIsTheHosts) {
    Show();
    Press(newButton);
    EXPECT_EQ(TakeHeard(), Lines{"Command 1 False"});
    LogAnew();
    EXPECT_EQ(Do(CommCommand_New), S_OK);
    EXPECT_EQ(ear.heard, Lines{});
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(Commands, AHostMayEndTheControlWhenItIsAsked) {
    Show();
    control->put_CommPort(_variant_t(L"COM5"));
    const HWND window = control->Window();
    const HWND bar = Toolbar();
    ear.onEvent = [&](DISPID, DISPPARAMS&) {
        ear.onEvent = nullptr;
        ear.LoseControl();
        container.Drop();
        control.Reset();
    };
    SendMessageA(window, WM_COMMAND, connectButton, reinterpret_cast<LPARAM>(bar));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(ear.heard.front(), "Command 7 False");
    EXPECT_EQ(ear.References(), 0u);
}

TEST_F(Commands, AnotherCommObjectEndsTheCommand) {
    control->put_CommPort(_variant_t(L"COM5"));
    ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::Command)
            container.Do(OLEIVERB_INPLACEACTIVATE);
    };
    Give(CommCommand_Connect);
    EXPECT_FALSE(GetPortOpen(Object()));
}

// Connect and Disconnect

TEST_F(Commands, ConnectOpensThePort) {
    Show();
    control->put_CommPort(_variant_t(L"COM5"));
    LogAnew();
    EXPECT_EQ(Do(CommCommand_Connect), S_OK);
    EXPECT_TRUE(GetPortOpen(Object()));
    Lines log = Log();
    std::erase_if(log, [](const std::string& line) { return line.starts_with("BaudRate"); });
    EXPECT_EQ(log, (Lines{"TarnComm.AutoProcess returns 3", "TarnComm.AutoProcess = 0",
                          "TarnComm.PortOpen = True", "TarnComm.AutoProcess = 3"}));
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileOpen);
}

TEST_F(Commands, ConnectGivesAutoProcessBack) {
    for (const LONG value : {0, 1, 2, 3}) {
        control->put_CommPort(_variant_t(L"COM5"));
        control->put_AutoProcess(value);
        EXPECT_EQ(Do(CommCommand_Connect), S_OK);
        EXPECT_TRUE(GetPortOpen(Object()));
        EXPECT_EQ(GetAutoProcess(Object()), value);
        EXPECT_EQ(control->Properties().m_nAutoProcess, value);
        EXPECT_EQ(Do(CommCommand_Disconnect), S_OK);
        EXPECT_FALSE(GetPortOpen(Object()));
    }
}

TEST_F(Commands, ConnectOfAnOpenPortDoesNothing) {
    Show();
    OpenPort();
    LogAnew();
    EXPECT_EQ(Do(CommCommand_Connect), S_OK);
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(Commands, AFailureToConnectShowsInTheStatus) {
    Show();
    control->put_CommPort(_variant_t(L"COM7")); // access is denied
    Press(connectButton);
    EXPECT_FALSE(GetPortOpen(Object()));
    EXPECT_EQ(GetAutoProcess(Object()), 3);
    EXPECT_NE(host::PaneOf(Control(), 0), "");
    EXPECT_NE(host::PaneOf(Control(), 0), "Connected");
    EXPECT_EQ(host::EnabledButtons(Control()), host::enabledWhileClosed);
}

TEST_F(Commands, ACancelledConnectKeepsThePortClosed) {
    Show();
    control->put_CommPort(_variant_t(L"COM5"));
    Veto();
    Press(connectButton);
    EXPECT_FALSE(GetPortOpen(Object()));
    EXPECT_EQ(control->Properties().m_nAutoProcess, 3);
}

TEST_F(Commands, DisconnectClosesThePort) {
    Show();
    OpenPort();
    LogAnew();
    Press(disconnectButton);
    EXPECT_FALSE(GetPortOpen(Object()));
    EXPECT_EQ(Log(), (Lines{"TarnComm_Command(8, False) Event", "TarnComm.PortOpen = False"}));
}

// Copy and Paste

// The plain text of the clipboard, or "(none)".
std::string Clipboard() {
    const OpenedClipboard clipboard(nullptr);
    const HANDLE memory = clipboard.IsOpen() ? GetClipboardData(CF_TEXT) : nullptr;
    if (!memory)
        return "(none)";
    const std::string text = static_cast<const char*>(GlobalLock(memory));
    GlobalUnlock(memory);
    return text;
}

void PutClipboard(const std::string& text, UINT format = CF_TEXT) {
    SharedMemory memory(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, text.size() + 1));
    std::memcpy(GlobalLock(memory.get()), text.data(), text.size());
    GlobalUnlock(memory.get());
    const OpenedClipboard clipboard(nullptr);
    ASSERT_TRUE(clipboard.IsOpen());
    EmptyClipboard();
    ASSERT_TRUE(SetClipboardData(format, memory.release()));
}

// A foreign window has it open meanwhile.
void WhileClipboardIsTaken(const std::function<void()>& action) {
    const EventHandle taken = ManualResetEvent(), done = ManualResetEvent();
    std::thread other([&] {
        const HWND window =
            CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        {
            const OpenedClipboard clipboard(window);
            SetEvent(taken.get());
            WaitForSingleObject(done.get(), INFINITE);
        }
        DestroyWindow(window);
    });
    WaitForSingleObject(taken.get(), INFINITE);
    action();
    SetEvent(done.get());
    other.join();
}

TEST_F(Commands, CopyPutsTheSelectionOnTheClipboard) {
    Show();
    PutClipboard("before");
    TerminalPrintString(Object(), "Hello there");
    control->put_SelStart(6);
    control->put_SelLength(5);
    EXPECT_EQ(Do(CommCommand_Copy), S_OK);
    EXPECT_EQ(Clipboard(), "there");
}

TEST_F(Commands, CopyBreaksRows) {
    Show();
    TerminalPrintString(Object(), (std::string(80, 'a') + std::string(80, 'b')).c_str());
    control->put_SelStart(78);
    control->put_SelLength(4);
    EXPECT_EQ(Do(CommCommand_Copy), S_OK);
    EXPECT_EQ(Clipboard(), "aa\r\nbb");
}

// The ends of the rows take the place of letters; kept so.
TEST_F(Commands, CopyOfVeryManyFullRowsIsCut) {
    Show();
    constexpr int rows = 60, columns = 80;
    control->put_Rows(rows);
    TerminalPrintString(Object(), std::string(rows * columns, 'a').c_str());
    control->put_SelStart(0);
    control->put_SelLength(rows * columns - 1); // the last one can't be reached
    EXPECT_EQ(Do(CommCommand_Copy), S_OK);
    EXPECT_EQ(Clipboard().size(), static_cast<size_t>(GetSelectionLength(Object())));
    EXPECT_LT(Clipboard().size(), rows * columns - 1 + (rows - 1) * std::strlen("\r\n"));
}

TEST_F(Commands, CopyOfNothingLeavesTheClipboard) {
    Show();
    PutClipboard("before");
    control->put_SelStart(0);
    EXPECT_EQ(Do(CommCommand_Copy), S_OK);
    EXPECT_EQ(Clipboard(), "before");
}

TEST_F(Commands, ATakenClipboardStopsCopyAndPaste) {
    Show();
    OpenPort();
    PutClipboard("before");
    TerminalPrintString(Object(), "Hello there");
    control->put_SelStart(0);
    control->put_SelLength(5);
    host::FarEnd peer;
    WhileClipboardIsTaken([&] {
        EXPECT_EQ(Do(CommCommand_Copy), S_OK);
        EXPECT_EQ(Do(CommCommand_Paste), S_OK);
    });
    EXPECT_EQ(Clipboard(), "before");
    EXPECT_EQ(Do(CommCommand_Paste), S_OK);
    EXPECT_EQ(peer.Read(6), "before") << "only the second one";
}

TEST_F(Commands, PasteSendsTheClipboard) {
    Show();
    OpenPort();
    host::FarEnd peer;
    PutClipboard("50 %s\r\n\xfc");
    Press(pasteButton);
    EXPECT_EQ(peer.Read(8), "50 %s\r\n\xfc");
    EXPECT_TRUE(OpenedClipboard(nullptr).IsOpen()) << "closed again";
}

TEST_F(Commands, PasteWithoutTextSendsNothing) {
    Show();
    OpenPort();
    host::FarEnd peer;
    PutClipboard("not a text", CF_RIFF);
    Press(pasteButton);
    PutClipboard("");
    Press(pasteButton);
    PutClipboard("x");
    Press(pasteButton);
    EXPECT_EQ(peer.Read(1), "x");
}

// It doesn't wait for the port to open.
TEST_F(Commands, PasteIntoAClosedPortIsLost) {
    Show();
    host::FarEnd peer;
    PutClipboard("lost");
    EXPECT_EQ(Do(CommCommand_Paste), S_OK);
    OpenPort();
    PutClipboard("x");
    EXPECT_EQ(Do(CommCommand_Paste), S_OK);
    EXPECT_EQ(peer.Read(1), "x");
}

} // namespace
