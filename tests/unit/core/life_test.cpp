// Making, naming and destroying comm objects, and what dead handles get.
#include "core/comctl.h"
#include "core/live.h"
#include "support/host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <thread>

namespace {

bool quietMemoryIsOut = false;

// While it lives, allocations that may fail without an exception do.
class NoQuietMemory {
  public:
    NoQuietMemory() { quietMemoryIsOut = true; }
    ~NoQuietMemory() { quietMemoryIsOut = false; }
    NoQuietMemory(const NoQuietMemory&) = delete;
    NoQuietMemory& operator=(const NoQuietMemory&) = delete;
};

constexpr char libraryOfNoUse[] = "lz32.dll"; // that nothing else in the process loads

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return quietMemoryIsOut ? nullptr : std::malloc(size ? size : 1);
}

namespace {

int NumberOf(HWND object) {
    const COMCTL* record = RecordOf(object);
    return record ? std::atoi(record->szName + std::strlen("Comm")) : 0;
}

TEST(Life, NamesCountObjectsAndAreNeverUsedTwice) {
    const HWND first = CreateCommObject(nullptr);
    const HWND second = CreateCommObject(nullptr);
    EXPECT_EQ(std::string(RecordOf(first)->szName).substr(0, 4), "Comm");
    EXPECT_EQ(NumberOf(second), NumberOf(first) + 1);
    const int last = NumberOf(second);
    EXPECT_EQ(DestroyCommObject(first), 1);
    const HWND third = CreateCommObject(nullptr);
    EXPECT_EQ(NumberOf(third), last + 1);
    DestroyCommObject(second);
    DestroyCommObject(third);
}

TEST(Life, ObjectWithoutParentIsAPopupOfAnIconsSize) {
    const host::CommObject object;
    RECT box = {};
    GetWindowRect(object, &box);
    EXPECT_EQ(GetWindowLongA(object, GWL_STYLE) & (WS_POPUP | WS_CHILD), static_cast<LONG>(WS_POPUP));
    EXPECT_EQ(box.right - box.left, GetSystemMetrics(SM_CXICON));
    EXPECT_EQ(box.bottom - box.top, GetSystemMetrics(SM_CYICON));
}

TEST(Life, ObjectWithParentIsAChildWhoseScrollBarsShowWhenThereIsSomethingToScroll) {
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    const HWND object = CreateCommObject(parent);
    const LONG bars = WS_HSCROLL | WS_VSCROLL;
    EXPECT_EQ(GetWindowLongA(object, GWL_STYLE) & (WS_CHILD | bars), static_cast<LONG>(WS_CHILD));
    SetEmulation(object, TARN_EMULATION_ANSI);
    SetWindowPos(object, nullptr, 0, 0, 200, 100, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(GetWindowLongA(object, GWL_STYLE) & bars, bars);
    EXPECT_EQ(GetParent(object), parent);
    DestroyWindow(parent);
    EXPECT_EQ(RecordOf(object), nullptr) << "the record goes with the window";
}

TEST(Life, NamedObjectIsAlwaysAChild) {
    EXPECT_EQ(CreateCommObjectName(nullptr, "alone"), nullptr) << "a child needs a parent";
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    const HWND object = CreateCommObjectName(parent, "line one");
    EXPECT_TRUE(GetWindowLongA(object, GWL_STYLE) & WS_CHILD);
    wchar_t title[16] = {};
    InternalGetWindowText(object, title, static_cast<int>(std::size(title)));
    EXPECT_EQ(std::wstring(title), L"line one") << "although the window says that it has none";
    DestroyWindow(parent);
}

TEST(Life, WindowClassIsAsHostsKnowIt) {
    const host::CommObject object;
    char name[64] = {};
    GetClassNameA(object, name, sizeof name);
    EXPECT_STREQ(name, "TarnCommObject");
    EXPECT_EQ(GetClassLongA(object, GCL_STYLE), static_cast<DWORD>(CS_DBLCLKS));
    EXPECT_EQ(GetClassLongA(object, GCL_CBWNDEXTRA), sizeof(void*));
    EXPECT_EQ(GetClassLongPtrA(object, GCLP_HCURSOR),
              reinterpret_cast<ULONG_PTR>(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_IBEAM))));
    EXPECT_EQ(GetClassLongPtrA(object, GCLP_HICON), 0u);
    EXPECT_EQ(GetClassLongPtrA(object, GCLP_MENUNAME), 0u);
    EXPECT_EQ(GetClassLongPtrA(object, GCLP_HBRBACKGROUND),
              reinterpret_cast<ULONG_PTR>(GetStockObject(WHITE_BRUSH)));
    EXPECT_EQ(reinterpret_cast<COMCTL*>(GetWindowLongPtrA(object, 0)), RecordOf(object));
}

TEST(Life, StartUpMayRunAgain) {
    EXPECT_NE(InitTarnCommObjects(), 0);
    EXPECT_NE(InitTarnCommObjects(), 0) << "a class that exists is as good";
    const host::CommObject object;
    EXPECT_NE(object.Handle(), nullptr);
}

TEST(Life, TitleUnder255CharactersBecomesTheName) {
    const host::CommObject object;
    COMCTL& record = *RecordOf(object);
    SetWindowTextA(object, "Gate 7");
    EXPECT_STREQ(record.szName, "Gate 7");
    const std::string longest(254, 'n');
    SetWindowTextA(object, longest.c_str());
    EXPECT_EQ(record.szName, longest);
    SetWindowTextA(object, std::string(255, 'x').c_str());
    EXPECT_EQ(record.szName, longest) << "a longer title changes nothing";
}

TEST(Life, WindowAnswersWithAnEmptyTitle) {
    const host::CommObject object;
    SetWindowTextA(object, "Gate 7");
    char text[16] = "before";
    EXPECT_EQ(SendMessageA(object, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text)), 0);
    EXPECT_STREQ(text, "");
}

TEST(Life, WindowAsksForAllKeysAndErasesNothing) {
    const host::CommObject object;
    EXPECT_EQ(SendMessageA(object, WM_GETDLGCODE, 0, 0), DLGC_WANTARROWS | DLGC_WANTTAB | DLGC_WANTALLKEYS);
    EXPECT_EQ(SendMessageA(object, WM_ERASEBKGND, 0, 0), 1);
}

TEST(Life, DestructionLeavesNoRecord) {
    const int before = LiveObjectCount();
    const HWND object = CreateCommObject(nullptr);
    const COMCTL* record = RecordOf(object);
    EXPECT_TRUE(IsLive(record));
    EXPECT_EQ(LiveObjectCount(), before + 1);
    EXPECT_EQ(DestroyCommObject(object), 1);
    EXPECT_FALSE(IsLive(record));
    EXPECT_EQ(LiveObjectCount(), before);
    EXPECT_EQ(DestroyCommObject(object), 0);
}

// Counts objects of this process from the first one on, which the environment makes before any test runs.
class FirstObject : public testing::Environment {
  public:
    void SetUp() override {
        const host::CommObject object;
        name = RecordOf(object)->szName;
    }
    static std::string name;
};

std::string FirstObject::name;

[[maybe_unused]] const auto* const firstObject = testing::AddGlobalTestEnvironment(new FirstObject);

TEST(Life, FirstObjectOfAProcessIsComm1) {
    EXPECT_EQ(FirstObject::name, "Comm1");
}

TEST(Life, CreationFailsWithoutMemoryForTheRecord) {
    const int before = LiveObjectCount();
    {
        const NoQuietMemory none;
        EXPECT_EQ(CreateCommObject(nullptr), nullptr);
    }
    EXPECT_EQ(LiveObjectCount(), before);
    const host::CommObject object;
    EXPECT_NE(RecordOf(object), nullptr) << "and the next one is made";
}

TEST(Life, DestructionFreesALibraryThatTheRecordHolds) {
    ASSERT_EQ(GetModuleHandleA(libraryOfNoUse), nullptr);
    const HWND object = CreateCommObject(nullptr);
    RecordOf(object)->hLibrary = LoadLibraryA(libraryOfNoUse);
    ASSERT_NE(GetModuleHandleA(libraryOfNoUse), nullptr);
    DestroyCommObject(object);
    EXPECT_EQ(GetModuleHandleA(libraryOfNoUse), nullptr);
}

struct Attempt {
    HWND object = nullptr;
    int result = -1;
    bool busy = false;
};

Attempt attempt;

void CALLBACK TryToDestroy() {
    attempt.busy = GetBusy(attempt.object);
    attempt.result = DestroyCommObject(attempt.object);
}

TEST(Life, DestroyIsRefusedInAnEventOfAWait) {
    const host::CommObject object;
    attempt = {};
    attempt.object = object;
    SetIdleLoop(object, TryToDestroy);
    ComPause(object, 1);
    EXPECT_TRUE(attempt.busy);
    EXPECT_EQ(attempt.result, 0);
    EXPECT_NE(RecordOf(object), nullptr);
    EXPECT_EQ(GetBusy(object), 0);
}

// What every flat function does with a handle that is not (or no longer) ours.
struct DeadHandleRow {
    const char* name;
    bool (*isSilent)(HWND);
};

char buffer[256];

const DeadHandleRow deadHandleRows[] = {
    {"DestroyCommObject", [](HWND h) { return DestroyCommObject(h) == 0; }},
    {"GetAutoZModem", [](HWND h) { return SetAutoZModem(h, 1), GetAutoZModem(h) == 0; }},
    {"GetBackspace", [](HWND h) { return SetBackspace(h, 1), GetBackspace(h) == 0; }},
    {"GetDialTimeOut", [](HWND h) { return SetDialTimeOut(h, 1), GetDialTimeOut(h) == 0; }},
    {"GetDialogParent", [](HWND h) { return SetDialogParent(h, h), GetDialogParent(h) == nullptr; }},
    {"GetInBufferSize", [](HWND h) { return SetInBufferSize(h, 1), GetInBufferSize(h) == 0; }},
    {"GetHandshaking", [](HWND h) { return SetHandshaking(h, 1), GetHandshaking(h) == 0; }},
    {"GetParityReplace", [](HWND h) { return SetParityReplace(h, 1), GetParityReplace(h) == 0; }},
    {"GetRThreshold", [](HWND h) { return SetRThreshold(h, 1), GetRThreshold(h) == 0; }},
    {"GetSThreshold", [](HWND h) { return SetSThreshold(h, 1), GetSThreshold(h) == 0; }},
    {"GetInterval", [](HWND h) { return SetInterval(h, 1), GetInterval(h) == 0; }},
    {"GetDTR", [](HWND h) { return SetDTR(h, 1), GetDTR(h) == 0; }},
    {"GetRTS", [](HWND h) { return SetRTS(h, 1), GetRTS(h) == 0; }},
    {"GetBreak", [](HWND h) { return SetBreak(h, 1), GetBreak(h) == 0; }},
    {"GetCTS", [](HWND h) { return GetCTS(h) == 0; }},
    {"GetDSR", [](HWND h) { return GetDSR(h) == 0; }},
    {"GetCarrier", [](HWND h) { return GetCarrier(h) == 0; }},
    {"GetCommID", [](HWND h) { return SetCommID(h, nullptr), GetCommID(h) == nullptr; }},
    {"GetCommPort", [](HWND h) { return SetCommPort(h, "COM9"), *GetCommPort(h) == '\0'; }},
    {"GetPort", [](HWND h) { return SetPort(h, "COM9"), *GetPort(h) == '\0'; }},
    {"SetPortOpen", [](HWND h) { return SetPortOpen(h, 1, buffer) == 0 && SetPortOpen(h, 0, nullptr) == 0; }},
    {"GetPortOpen", [](HWND h) { return GetPortOpen(h) == 0; }},
    {"SetSettings", [](HWND h) { return SetSettings(h, "nonsense") == 0; }},
    {"GetSettings", [](HWND h) { return GetSettings(h, buffer) == 0 && *buffer == '\0'; }},
    {"GetSettingsBaud", [](HWND h) { return GetSettingsBaud(h) == 0; }},
    {"PortSettingsDialog", [](HWND h) { return PortSettingsDialog(h, nullptr) == 0; }},
    {"GetLastCommError", [](HWND h) { return GetLastCommError(h) == 0; }},
    {"GetLastCommEvent", [](HWND h) { return GetLastCommEvent(h) == 0; }},
    {"Output", [](HWND h) { return Output(h, "x", 1) == 0; }},
    {"ComOutput", [](HWND h) { return ComOutput(h, "x", 1) == 0; }},
    {"GetInput", [](HWND h) { return GetInput(h, buffer, 1) == 0; }},
    {"GetLineInput", [](HWND h) { return GetLineInput(h, buffer, 1) == 0; }},
    {"GetInBufferCount", [](HWND h) { return GetInBufferCount(h) == 0; }},
    {"GetOutBufferCount", [](HWND h) { return GetOutBufferCount(h) == 0; }},
    {"ClearBuffers", [](HWND h) { return ClearInputBuffer(h), ClearOutputBuffer(h), true; }},
    {"FlushInputBuffer", [](HWND h) { return FlushInputBuffer(h, 10000) == 0; }},
    {"FlushOutputBuffer", [](HWND h) { return FlushOutputBuffer(h, 10000) == 0; }},
    {"ComPause", [](HWND h) { return ComPause(h, 10000), true; }},
    {"WaitForInput", [](HWND h) { return WaitForInput(h, 10000) == 0; }},
    {"TranslationTable",
     [](HWND h) { return SetTranslationTable(h, buffer), GetTranslationTable(h, buffer), true; }},
    {"GetBusy", [](HWND h) { return GetBusy(h) == 0; }},
    {"SetLookUpText", [](HWND h) { return SetLookUpText(h, "a,b", ','), SetLookUpInputLen(h, 9), true; }},
    {"GetLookUpSeparator", [](HWND h) { return SetLookUpSeparator(h, ','), GetLookUpSeparator(h) == '\0'; }},
    {"GetLookUpTimeOut", [](HWND h) { return SetLookUpTimeOut(h, 9), GetLookUpTimeOut(h) == 0; }},
    {"InputUntilLookUp", [](HWND h) { return InputUntilLookUp(h, "a\0", buffer, 9) == 0; }},
    {"DiscardUntilLookUp", [](HWND h) { return DiscardUntilLookUp(h, "a\0") == 0; }},
    {"SetWireTapInput", [](HWND h) { return SetWireTapInput(h, 1) == 0; }},
    {"SetWireTapOutput", [](HWND h) { return SetWireTapOutput(h, 1) == 0; }},
    {"SetWireTapTransfer", [](HWND h) { return SetWireTapTransfer(h, 1) == 0; }},
    {"SetHooks",
     [](HWND h) { return SetEventHandler(h, nullptr), SetEventWindow(h, h), SetIdleLoop(h, nullptr), true; }},

    {"GetEmulation", [](HWND h) { return SetEmulation(h, 2), GetEmulation(h) == 0; }},
    {"GetRows", [](HWND h) { return SetRows(h, 10), GetRows(h) == 0; }},
    {"GetColumns", [](HWND h) { return SetColumns(h, 10), GetColumns(h) == 0; }},
    {"GetScrollRows", [](HWND h) { return SetScrollRows(h, 10) == 0 && GetScrollRows(h) == 0; }},
    {"GetCursorRow", [](HWND h) { return SetCursorRow(h, 1), GetCursorRow(h) == 0; }},
    {"GetCursorColumn", [](HWND h) { return SetCursorColumn(h, 1), GetCursorColumn(h) == 0; }},
    {"GetColor", [](HWND h) { return SetColor(h, 1), GetColor(h) == 0; }},
    {"GetColorFilter", [](HWND h) { return SetColorFilter(h, 1), GetColorFilter(h) == 0; }},
    {"GetAutoScroll", [](HWND h) { return SetAutoScroll(h, 1), GetAutoScroll(h) == 0; }},
    {"GetAutoSize", [](HWND h) { return SetAutoSize(h, 1, nullptr), GetAutoSize(h) == 0; }},
    {"SetScrollBars", [](HWND h) { return SetHScrollBar(h, h), SetVScrollBar(h, h), true; }},
    {"TerminalPrintString", [](HWND h) { return TerminalPrintString(h, "x"), SetContents(h, "x", 1), true; }},
    {"GetContents",
     [](HWND h) { return GetContents(h, buffer, sizeof buffer) == 0 && GetContentsLength(h) == 0; }},
    {"GetScrollContents",
     [](HWND h) {
         return GetScrollContents(h, buffer, sizeof buffer) == 0 && GetScrollContentsLength(h) == 0;
     }},
    {"GetTextAt", [](HWND h) { return *GetTextAt(h, 0, 0) == '\0'; }},
    {"GetSelectionStart", [](HWND h) { return SetSelectionStart(h, 1) == 0 && GetSelectionStart(h) == 0; }},
    {"GetSelectionLength",
     [](HWND h) { return SetSelectionLength(h, 1) == 0 && GetSelectionLength(h) == 0; }},
    {"GetSelectionText", [](HWND h) { return GetSelectionText(h, buffer, sizeof buffer) == 0; }},
    {"CopySelectionToClipboard", [](HWND h) { return CopySelectionToClipboard(h) == 0; }},
    {"PaintCommWindow", [](HWND h) { return PaintCommWindow(h, nullptr, 0, 0, 80, 25), true; }},
    {"GetCaptureMode", [](HWND h) { return SetCaptureMode(h, 1), GetCaptureMode(h) == 0; }},
    {"SetCaptureFilename", [](HWND h) { return SetCaptureFilename(h, "capture.txt") == 0; }},

    {"GetProtocol", [](HWND h) { return SetProtocol(h, 1), GetProtocol(h) == 0; }},
    {"GetResumeMethod", [](HWND h) { return SetResumeMethod(h, 1), GetResumeMethod(h) == 0; }},
    {"Upload", [](HWND h) { return SetXferPath(h, "."), Upload(h, "file") == 0; }},
    {"Download", [](HWND h) { return SetDestFilename(h, "file"), Download(h, "file") == 0; }},
    {"StartTransfer", [](HWND h) { return StartTransfer(h) == nullptr; }},
    {"Abort", [](HWND h) { return AbortTransfer(h), AbortCurrentFile(h), true; }},
    {"WaitUntilTransferIsFinished", [](HWND h) { return WaitUntilTransferIsFinished(h), true; }},
    {"GetTransferType", [](HWND h) { return GetTransferType(h) == 0 && GetTransferStatus(h) == 0; }},
    {"GetTransferFileSize",
     [](HWND h) { return GetTransferFileSize(h) == 0 && GetTransferBytesTransferred(h) == 0; }},
    {"GetSourceFilename",
     [](HWND h) {
         return GetSourceFilename(h, buffer, sizeof buffer) == 0 && GetSourceFilenameLength(h) == 0;
     }},
    {"GetDestFilename",
     [](HWND h) { return GetDestFilename(h, buffer, sizeof buffer) == 0 && GetDestFilenameLength(h) == 0; }},

    {"InitModem", [](HWND h) { return InitModem(h) == 0 && InitModemForAnswer(h) == 0; }},
    {"CheckModem", [](HWND h) { return CheckModem(h) == 0 && WaitForOk(h) == 0; }},
    {"OutputModem", [](HWND h) { return OutputModem(h, "AT") == 0; }},
    {"Dial", [](HWND h) { return Dial(h, "1") == 0 && HangUp(h) == 0 && Disconnect(h) == 0; }},
    {"GetModemOptions", [](HWND h) { return SetModemOptions(h, "x"), GetModemOptions(h, buffer) == 0; }},
    {"FillWithModemNames",
     [](HWND h) { return FillListWithModemNames(h, h) == 0 && FillComboWithModemNames(h, h) == 0; }},
};

void ExpectSilence(HWND handle, const char* what) {
    for (const DeadHandleRow& row : deadHandleRows)
        EXPECT_TRUE(row.isSilent(handle)) << row.name << " with " << what;
}

TEST(DeadHandle, NullIsSilent) {
    ExpectSilence(nullptr, "null");
}

TEST(DeadHandle, ForeignWindowIsSilent) {
    const HWND other =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    ExpectSilence(other, "a window of another kind");
    DestroyWindow(other);
}

TEST(DeadHandle, DestroyedObjectIsSilent) {
    const HWND object = CreateCommObject(nullptr);
    DestroyCommObject(object);
    ExpectSilence(object, "a destroyed object");
}

TEST(DeadHandle, DestroyedObjectIsSilentOnAnotherThread) {
    const HWND object = CreateCommObject(nullptr);
    DestroyCommObject(object);
    std::thread([object] { ExpectSilence(object, "a destroyed object, elsewhere"); }).join();
}

TEST(DeadHandle, DestructionInsideAnEventIsSilentAfterwards) {
    auto object = std::make_unique<host::CommObject>();
    const HWND handle = *object;
    object->OnEventDo([handle](int) { DestroyWindow(handle); });
    ASSERT_EQ(object->Open("COM5"), "");
    SetSThreshold(handle, 1);
    EXPECT_TRUE(host::PumpUntil([&] {
        SendMessageA(handle, WM_TIMER, 0, 0);
        return !RecordOf(handle);
    }));
    ExpectSilence(handle, "an object destroyed in its event");
}

} // namespace
