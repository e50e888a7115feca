// What commands and methods of the control open for its user, and what they do with the answer.
#include "commandtest.h"

#include "control/ansi.h"
#include "control/pageitems.h"
#include "support/systemdialog.h"
#include "transfer/filedialogs.h"
#include "unit/troubleshooter/troubleshootuser.h"

#include <fstream>

namespace {

using host::Lines;

constexpr int choose = IDOK;
constexpr int fontFaces = 0x470; // of the system's dialog

// Stands in place of the system's dialog while there is an answer.
std::function<BOOL(CHOOSEFONTA& choice)> fontAnswer;

BOOL WINAPI DoubleChooseFontA(CHOOSEFONTA* choice) {
    if (const auto answer = fontAnswer)
        return answer(*choice);
    return host::Platform<decltype(&::ChooseFontA)>("comdlg32.dll", "ChooseFontA")(choice);
}

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(ChooseFontA, 4)
}

namespace {

class CommandDialogs : public host::CommandTest {
  public:
    CommandDialogs() {
        char folder[MAX_PATH] = {};
        char path[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        GetTempFileNameA(folder, "cmd", 0, path);
        file = path;
        temporary = folder;
    }
    ~CommandDialogs() override {
        fontAnswer = nullptr;
        DeleteFileA(file.c_str());
    }
    void ExpectTransfer(int kind) {
        EXPECT_EQ(GetTransferType(Object()), kind);
        EXPECT_EQ(control->Properties().m_bAbortTransfer, 0);
        AbortTransfer(Object());
        WaitUntilTransferIsFinished(Object());
    }

    std::string file; // is there, and empty
    std::string temporary;
};

// Send File and Receive File

TEST_F(CommandDialogs, SendFileUploadsWithTheChosenProtocol) {
    Show();
    OpenPort();
    control->put_XferStatusDialog(Dialog_Hidden);
    control->Properties().m_bAbortTransfer = trueFlag;
    InDialog(SendFile_Path, [&](HWND dialog) {
        EXPECT_EQ(dialogs::ItemText(dialog, SendFile_Path), "");
        EXPECT_EQ(dialogs::Selected(dialog, FileDialog_Protocol), TARN_PROTOCOL_ZMODEM) << "the current one";
        dialogs::Type(dialog, SendFile_Path, file);
        dialogs::Choose(dialog, FileDialog_Protocol, TARN_PROTOCOL_XMODEM_CRC);
        dialogs::Press(dialog, choose);
    });
    Press(sendFileButton);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(GetProtocol(Object()), TARN_PROTOCOL_XMODEM_CRC);
    EXPECT_EQ(control->Properties().m_nXferProtocol, TARN_PROTOCOL_XMODEM_CRC);
    ExpectTransfer(1);
}

TEST_F(CommandDialogs, ReceiveFileDownloadsIntoTheChosenFolder) {
    Show();
    OpenPort();
    control->put_XferStatusDialog(Dialog_Hidden);
    control->put_XferPath(_bstr_t(L"C:\\before"));
    control->Properties().m_bAbortTransfer = trueFlag;
    InDialog(ReceiveFile_Folder, [&](HWND dialog) {
        EXPECT_EQ(dialogs::ItemText(dialog, ReceiveFile_Folder), "C:\\before");
        dialogs::Type(dialog, ReceiveFile_Folder, temporary);
        dialogs::Choose(dialog, FileDialog_Protocol, TARN_PROTOCOL_YMODEM);
        dialogs::Press(dialog, choose);
    });
    Press(receiveFileButton);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(GetProtocol(Object()), TARN_PROTOCOL_YMODEM);
    EXPECT_EQ(control->Properties().m_sXferPath, WideOf(temporary));
    ExpectTransfer(2);
}

// The project

constexpr char project[] =
    "[Comm]\r\nSettings=1200,e,7,1\r\nPhoneNumber=5551234\r\nPort=COM9\r\nProtocol=3\r\n";

std::string ProjectPort(const std::string& path) {
    char port[100] = {};
    GetPrivateProfileStringA("Comm", "Port", "", port, sizeof port, path.c_str());
    return port;
}

// Who gives a command.
struct Giver {
    const char* name;
    void (*give)(CommandDialogs& test, CommCommand command);
};

const Giver givers[] = {
    {"code", [](CommandDialogs& test, CommCommand command) { EXPECT_EQ(test.Do(command), S_OK); }},
    {"user", [](CommandDialogs& test, CommCommand command) { test.Give(command); }},
    {"button", [](CommandDialogs& test, CommCommand command) { test.Press(CommandOf(command)->button); }},
};

TEST_F(CommandDialogs, OpenReadsTheProject) {
    Show();
    std::ofstream(file, std::ios::binary) << project;
    host::fileQuestions.answer = host::ChoosesFile(file);
    for (const Giver& giver : givers) {
        SCOPED_TRACE(giver.name);
        host::fileQuestions.asked.clear();
        control->put_ProjectFilename(nullptr);
        control->put_PhoneNumber(nullptr);
        giver.give(*this, CommCommand_Open);
        ASSERT_EQ(host::fileQuestions.asked.size(), 1u);
        EXPECT_FALSE(host::fileQuestions.asked.front().isSave);
        EXPECT_EQ(control->Properties().m_sProjectFilename, WideOf(file));
        EXPECT_EQ(control->Properties().m_sPhoneNumber, L"5551234");
        EXPECT_EQ(host::PaneOf(Control(), 1), "COM9");
    }
}

TEST_F(CommandDialogs, SaveWritesTheProject) {
    Show();
    control->put_CommPort(_variant_t(L"COM5"));
    host::fileQuestions.answer = host::ChoosesFile(file);
    for (const Giver& giver : givers) {
        SCOPED_TRACE(giver.name);
        host::fileQuestions.asked.clear();
        DeleteFileA(file.c_str());
        control->put_ProjectFilename(nullptr);
        giver.give(*this, CommCommand_Save);
        ASSERT_EQ(host::fileQuestions.asked.size(), 1u);
        EXPECT_TRUE(host::fileQuestions.asked.front().isSave);
        EXPECT_EQ(ProjectPort(file), "COM5");
        giver.give(*this, CommCommand_Save);
        EXPECT_EQ(host::fileQuestions.asked.size(), 1u) << "it has its name now";
    }
}

TEST_F(CommandDialogs, SaveAsAsksAlways) {
    Show();
    control->put_CommPort(_variant_t(L"COM5"));
    control->put_ProjectFilename(_bstr_t(L"C:\\before.tlo"));
    host::fileQuestions.answer = host::ChoosesFile(file);
    for (const Giver& giver : {givers[0], givers[1]}) { // it has no button
        SCOPED_TRACE(giver.name);
        DeleteFileA(file.c_str());
        giver.give(*this, CommCommand_SaveAs);
        EXPECT_EQ(ProjectPort(file), "COM5");
    }
    ASSERT_EQ(host::fileQuestions.asked.size(), 2u);
    EXPECT_EQ(host::fileQuestions.asked[0].name, "C:\\before.tlo");
    EXPECT_EQ(host::fileQuestions.asked[1].name, file);
}

TEST_F(CommandDialogs, ACancelledCommandAsksForNoFile) {
    Show();
    Veto();
    host::fileQuestions.answer = host::ChoosesFile(file);
    for (const CommCommand command : {CommCommand_Open, CommCommand_Save, CommCommand_SaveAs})
        Give(command);
    EXPECT_EQ(host::fileQuestions.asked.size(), 0u);
    EXPECT_EQ(control->Properties().m_sProjectFilename, L"");
}

// Properties, Port Properties and Font

TEST_F(CommandDialogs, PropertiesSetThePort) {
    Show();
    control->put_CommPort(_variant_t(L"COM6"));
    InDialog(Connection_Port, [&](HWND dialog) {
        const auto row = dialogs::Tell(dialog, Connection_Port, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                       reinterpret_cast<LPARAM>("COM5"));
        ASSERT_GE(row, 0);
        dialogs::Choose(dialog, Connection_Port, static_cast<int>(row));
        dialogs::Press(dialog, choose);
    });
    Press(propertiesButton);
    EXPECT_EQ(opened, 1);
    EXPECT_STREQ(control->Properties().m_szPort, "COM5");
    EXPECT_EQ(host::PaneOf(Control(), 1), "COM5");
}

// The comm object alone has them: what is stored stays as it is.
TEST_F(CommandDialogs, PortPropertiesSetTheLine) {
    Show();
    control->put_Settings(_bstr_t(L"2400,n,8,1"));
    control->put_Handshaking(Handshaking_None);
    constexpr int noneRow = 1, hardwareRow = 2;
    InDialog(Serial_Speed, [&](HWND dialog) {
        EXPECT_EQ(dialogs::ItemText(dialog, Serial_Speed), "2400");
        EXPECT_EQ(dialogs::Selected(dialog, Serial_FlowControl), noneRow);
        dialogs::Type(dialog, Serial_Speed, "19200");
        dialogs::Choose(dialog, Serial_FlowControl, hardwareRow);
        dialogs::Press(dialog, choose);
    });
    Give(CommCommand_PortProperties);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(GetSettingsBaud(Object()), 19200);
    EXPECT_EQ(GetHandshaking(Object()), hardwareRow - 1);
    EXPECT_EQ(control->Properties().m_sSettings, L"2400,n,8,1");
    EXPECT_EQ(control->Properties().m_nHandshaking, Handshaking_None);
}

// What a font object says of itself.
struct FontFacts {
    std::wstring name;
    LONGLONG size = 0;
    bool operator==(const FontFacts&) const = default;
};

FontFacts FactsOf(CTarnCommCtl& control) {
    ComPtr<IFontDisp> object;
    ComPtr<IFont> font;
    control.get_Font(object.GetAddressOf());
    EXPECT_EQ(object.As(&font), S_OK);
    _bstr_t name;
    CY size = {};
    font->get_Name(name.GetAddress());
    font->get_Size(&size);
    return {static_cast<const wchar_t*>(name), size.int64};
}

TEST_F(CommandDialogs, FontChangesNothing) {
    Show();
    ComPtr<IFontDisp> before, after;
    control->get_Font(before.GetAddressOf());
    const FontFacts facts = FactsOf(Control());
    const auto handle = SendMessageA(Object(), WM_GETFONT, 0, 0);
    int asked = 0;
    fontAnswer = [&](CHOOSEFONTA& choice) -> BOOL {
        ++asked;
        EXPECT_EQ(choice.lStructSize, sizeof choice);
        EXPECT_EQ(choice.hwndOwner, container.window);
        EXPECT_EQ(choice.Flags, 0u);
        std::strcpy(choice.lpLogFont->lfFaceName, "Courier New");
        choice.lpLogFont->lfHeight = -40;
        return TRUE;
    };
    EXPECT_EQ(Do(CommCommand_Font), S_OK);
    EXPECT_EQ(asked, 1);
    control->get_Font(after.GetAddressOf());
    EXPECT_EQ(before.Get(), after.Get());
    EXPECT_EQ(FactsOf(Control()), facts);
    EXPECT_EQ(SendMessageA(Object(), WM_GETFONT, 0, 0), handle);
}

// All of them

using Find = HWND (*)();
using User = void (*)(HWND dialog);

enum class Owner {
    Control, // its window, or else the active one
    Form,    // the parent of its window
    Active,  // the active window
};

struct DialogRow {
    const char* name;
    HRESULT (*open)(ITarnComm& control);
    Find find;
    Owner owner;
    User confirm; // makes a choice and confirms it
};

template <CommCommand command>
HRESULT Run(ITarnComm& control) {
    return control.DoCommand(command);
}

template <int item>
HWND With() {
    return dialogs::OpenDialogWith(item);
}

template <int item>
void ChooseProtocol(HWND dialog) {
    dialogs::Type(dialog, item, "C:\\chosen");
    dialogs::Choose(dialog, FileDialog_Protocol, TARN_PROTOCOL_XMODEM_1K);
    dialogs::Press(dialog, choose);
}

void TypeNumber(HWND dialog) {
    dialogs::Type(dialog, Connection_Number, "5559999");
    dialogs::Press(dialog, choose);
}

void PressOK(HWND dialog) {
    dialogs::Press(dialog, choose);
}

void TypeProject(HWND dialog) {
    host::TypeFileName(dialog, "C:\\chosen.tlo");
}

// One that is there: the system asks again about any other.
void TypeProgram(HWND dialog) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    host::TypeFileName(dialog, program);
}

void ExitWithLog(HWND dialog) {
    dialogs::Press(troubleshooter::LoggingPage(dialog), Logging_WireTap);
    troubleshooter::Click(dialog, troubleshooter::exitItem);
}

HRESULT ShowProperties(ITarnComm& control) {
    VARIANT_BOOL confirmed = VARIANT_TRUE;
    const HRESULT result = control.PropertiesDialog(&confirmed);
    EXPECT_EQ(confirmed, VARIANT_FALSE);
    return result;
}

const DialogRow dialogRows[] = {
    {"Open", Run<CommCommand_Open>, [] { return host::DialogTitled("Open Project"); }, Owner::Form,
     TypeProgram},
    {"Save", Run<CommCommand_Save>, [] { return host::DialogTitled("Save Project"); }, Owner::Form,
     TypeProject},
    {"SaveAs", Run<CommCommand_SaveAs>, [] { return host::DialogTitled("Save Project"); }, Owner::Form,
     TypeProject},
    {"SendFile", Run<CommCommand_SendFile>, With<SendFile_Path>, Owner::Control,
     ChooseProtocol<SendFile_Path>},
    {"ReceiveFile", Run<CommCommand_ReceiveFile>, With<ReceiveFile_Folder>, Owner::Control,
     ChooseProtocol<ReceiveFile_Folder>},
    {"Properties", Run<CommCommand_Properties>, With<Connection_Port>, Owner::Control, TypeNumber},
    {"PropertiesDialog", ShowProperties, With<Connection_Port>, Owner::Control, TypeNumber},
    {"Font", Run<CommCommand_Font>, With<fontFaces>, Owner::Form, PressOK},
    {"PortProperties", Run<CommCommand_PortProperties>, With<Serial_Restore>, Owner::Active, PressOK},
    {"SysInfo", Run<CommCommand_SysInfo>, With<TroubleShoot_Panel>, Owner::Active, ExitWithLog},
    {"ShowSysInfo", [](ITarnComm& control) { return control.ShowSysInfo(); }, With<TroubleShoot_Panel>,
     Owner::Active, ExitWithLog},
    {"About", [](ITarnComm& control) { return control.About(); }, With<About_Version>, Owner::Control,
     PressOK},
};

void PrintTo(const DialogRow& row, std::ostream* out) {
    *out << row.name;
}

class OpenedDialogs : public CommandDialogs, public testing::WithParamInterface<DialogRow> {
  public:
    // Opens it; the user acts once.
    void Open(const dialogs::User& user) {
        CTarnCommCtl* const opening = control.Get();
        const host::SystemDialogUser atDialog(GetParam().find, user);
        EXPECT_EQ(GetParam().open(*opening), S_OK);
    }
    void ExpectNothingChosen() {
        const ControlProperties& now = control->Properties();
        EXPECT_EQ(now.m_nXferProtocol, TARN_PROTOCOL_ZMODEM);
        EXPECT_EQ(now.m_sXferPath, L"");
        EXPECT_EQ(now.m_sPhoneNumber, L"");
        EXPECT_EQ(now.m_sProjectFilename, L"");
        EXPECT_EQ(now.m_bAbortTransfer, trueFlag);
        EXPECT_EQ(now.m_bWireTap, 0);
        EXPECT_EQ(GetProtocol(Object()), IsWindow(Object()) ? TARN_PROTOCOL_ZMODEM : 0);
        EXPECT_EQ(GetTransferType(Object()), 0);
    }
};

// Any visible dialog of this thread but the one.
BOOL CALLBACK KeepOther(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<host::TitleSearch*>(parameter);
    char kind[32] = {};
    GetClassNameA(window, kind, sizeof kind);
    if (window != search.other && IsWindowVisible(window) && std::string(kind) == "#32770")
        search.found = window;
    return !search.found;
}

HWND OtherDialog(HWND dialog) {
    host::TitleSearch search = {"", dialog, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), KeepOther, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

TEST_P(OpenedDialogs, ASecondOneIsRefused) {
    control->Properties().m_bAbortTransfer = trueFlag;
    for (const bool visible : {false, true}) {
        SCOPED_TRACE(visible);
        if (visible)
            Show();
        Open([&](HWND dialog) {
            const host::Every strays(20, [dialog] {
                if (const HWND other = OtherDialog(dialog)) {
                    ADD_FAILURE() << dialogs::TextOf(other);
                    EndDialog(other, IDCANCEL);
                }
            });
            const bool isMethod = GetParam().open == ShowProperties;
            for (const DialogRow& second : dialogRows) {
                SCOPED_TRACE(second.name);
                const HRESULT refused = isMethod && second.open == ShowProperties ? InvalidCall : S_OK;
                EXPECT_EQ(second.open(*control.Get()), refused);
            }
            EXPECT_TRUE(IsWindowVisible(dialog));
            Cancel(dialog);
        });
        ExpectNothingChosen();
        Open(Cancel); // afterwards there is one again
    }
}

// What a host does while a dialog of its control is open. Its form stays.
struct Leaving {
    const char* name;
    bool visible;
    bool closes; // the dialog, at once
    void (*act)(CommandDialogs& test);
};

void ReleaseControl(CommandDialogs& test) {
    test.ear.LoseControl();
    test.container.Drop();
    test.control.Reset();
}

const Leaving leavings[] = {
    {"destroys its window", true, true, [](CommandDialogs& test) { DestroyWindow(test.control->Window()); }},
    {"destroys the terminal's window", true, true,
     [](CommandDialogs& test) { DestroyWindow(test.Object()); }},
    {"closes the container", true, true, [](CommandDialogs& test) { test.container.Drop(); }},
    {"releases it", true, true, ReleaseControl},
    {"releases one that was not shown", false, true, ReleaseControl},
    {"shows it", false, true, [](CommandDialogs& test) { test.container.Do(OLEIVERB_SHOW); }},
    {"destroys the invisible object", false, false,
     [](CommandDialogs& test) { DestroyWindow(test.Object()); }},
};

TEST_P(OpenedDialogs, GoWithTheControl) {
    for (const Leaving& row : leavings) {
        SCOPED_TRACE(row.name);
        if (!control || !IsWindow(Object()) || control->Window()) {
            ear.Disconnect();
            container.Drop();
            control.Reset();
            ASSERT_EQ(NewObject(control), S_OK);
            ASSERT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
            ear.Connect(*control.Get());
        }
        if (row.visible)
            Show();
        control->Properties().m_bAbortTransfer = trueFlag;
        HWND shown = nullptr;
        Open([&](HWND dialog) {
            shown = dialog;
            row.act(*this);
            EXPECT_EQ(IsWindowVisible(dialog) != 0, !row.closes);
            if (!row.closes)
                GetParam().confirm(dialog);
        });
        EXPECT_FALSE(IsWindow(shown));
        EXPECT_TRUE(IsWindow(container.window));
        EXPECT_TRUE(IsWindowEnabled(container.window));
        if (control)
            ExpectNothingChosen();
        EXPECT_FALSE(logfiles::FileExists("C:\\chosen.tlo"));
    }
}

TEST_P(OpenedDialogs, CancelledTheyChangeNothing) {
    Show();
    control->put_CommPort(_variant_t(L"COM9"));
    control->put_Settings(_bstr_t(L"2400,n,8,1"));
    control->put_Handshaking(Handshaking_None);
    control->Properties().m_bAbortTransfer = trueFlag;
    const bool isPortProperties = GetParam().find == With<Serial_Restore>;
    Open([&](HWND dialog) {
        for (const int item : {SendFile_Path, ReceiveFile_Folder, Connection_Number})
            if (GetDlgItem(dialog, item))
                dialogs::Type(dialog, item, "C:\\other");
        if (GetDlgItem(dialog, FileDialog_Protocol))
            dialogs::Choose(dialog, FileDialog_Protocol, TARN_PROTOCOL_KERMIT);
        if (isPortProperties) {
            dialogs::Type(dialog, Serial_Speed, "19200");
            dialogs::Choose(dialog, Serial_FlowControl, 3);
        }
        Cancel(dialog);
    });
    ExpectNothingChosen();
    EXPECT_STREQ(control->Properties().m_szPort, "COM9");
    EXPECT_EQ(GetSettingsBaud(Object()), 2400);
    EXPECT_EQ(GetHandshaking(Object()), Handshaking_None);
    EXPECT_EQ(ear.heard, Lines{});
}

TEST_P(OpenedDialogs, StandOverTheirOwner) {
    const dialogs::Window other = dialogs::MakeOwner();
    for (const bool visible : {false, true}) {
        SCOPED_TRACE(visible);
        if (visible)
            Show();
        SetActiveWindow(other.get());
        HWND owner = other.get();
        if (GetParam().owner == Owner::Form)
            owner = visible ? container.window : nullptr;
        if (GetParam().owner == Owner::Control && visible)
            owner = container.window;
        Open([&](HWND dialog) {
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner);
            Cancel(dialog);
        });
    }
}

INSTANTIATE_TEST_SUITE_P(All, OpenedDialogs, testing::ValuesIn(dialogRows),
                         [](const auto& row) { return std::string(row.param.name); });

// None of the fourteen asks the host or tells the log when code gives it.
TEST_F(CommandDialogs, CodeIsNotAsked) {
    Show();
    Veto();
    host::fileQuestions.answer = host::CancelsFile;
    fontAnswer = [](CHOOSEFONTA&) -> BOOL { return FALSE; };
    const host::Every canceller(20, [] {
        if (const HWND dialog = OtherDialog(nullptr))
            Cancel(dialog);
    });
    for (int command = 1; command <= 14; ++command) {
        SCOPED_TRACE(command);
        LogAnew();
        TakeHeard();
        EXPECT_EQ(Do(command), S_OK);
        for (const std::string& line : TakeHeard())
            EXPECT_FALSE(line.starts_with("Command")) << line;
        for (const std::string& line : Log())
            EXPECT_EQ(line.find("_Command("), line.npos) << line;
    }
    EXPECT_EQ(host::fileQuestions.asked.size(), 3u);
}

} // namespace
