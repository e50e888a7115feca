#include "comobject.h"

#include "diagnostics/swallow.h"
#include "live.h"
#include "port.h"
#include "portdirect.h"
#include "rooms.h"
#include "TarnComm.h"
#include "Tc-lkup.h"
#include "terminal/window.h"
#include "tick.h"
#include "transfer/worker.h"
#include "writer.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>
#include <numeric>

namespace {

constexpr char className[] = "TarnCommObject";
constexpr size_t longestTitle = 254; // characters that a title may have to become the object's name

// Objects made by this module; never counts down, so names are not used twice.
std::atomic<int> objectsMade{0};

LRESULT OnCreate(HWND hWnd, const CREATESTRUCTA& parameters) {
    auto record = std::unique_ptr<COMCTL>(new (std::nothrow) COMCTL);
    if (!record)
        return -1;
    SetWindowLongPtrA(hWnd, 0, reinterpret_cast<LONG_PTR>(record.get()));
    record->hWnd = hWnd;
    record->hVScrollBar = hWnd;
    record->hHScrollBar = hWnd;
    record->hFont = static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    record->cxWindow = parameters.cx;
    record->cyWindow = parameters.cy;
    record->lpOverlappedWrite = std::make_unique<COverlappedWrite>(WriterRingSize);
    OpenTerminal(*record);
    std::iota(std::begin(record->abCharMap), std::end(record->abCharMap), BYTE{0});
    record->bSendFlag = 1;
    std::snprintf(record->szName, sizeof record->szName, "Comm%d", ++objectsMade);
    AddLiveObject(hWnd, *record.release()); // the window owns it from here to its destroy handler
    InvalidateRect(hWnd, nullptr, TRUE);
    return 0;
}

void CloseTransferThread(COMCTL& record) {
    try {
        record.hTransferThread.reset();
    } catch (...) {
        SwallowException("CloseTransferThread");
    }
}

void OnDestroy(HWND hWnd) {
    std::unique_ptr<COMCTL> record(RecordOf(hWnd));
    if (!record)
        return;
    RemoveLiveObject(hWnd); // from here on the handle is dead to everybody, this thread's own messages too
    SetWindowLongPtrA(hWnd, 0, 0);
    EndTransferThread(*record);
    CloseTerminal(*record);
    if (record->idTimer)
        KillTimer(hWnd, record->idTimer);
    if (record->hLibrary)
        FreeLibrary(record->hLibrary);
    if (record->bPortOpen)
        ClosePort(*record);
    CloseTransferThread(*record);
    if (DirectWriteIsStuck(*record))
        static_cast<void>(record.release()); // lost, rather than written to by the device after its end
}

LRESULT OnSetText(HWND hWnd, const char* title) {
    COMCTL* record = RecordOf(hWnd);
    if (record && title && std::strlen(title) <= longestTitle)
        std::snprintf(record->szName, sizeof record->szName, "%s", title);
    return TRUE;
}

LRESULT OnGetText(char* buffer, size_t size) {
    if (buffer && size)
        *buffer = '\0';
    return 0;
}

LRESULT OnFireEvent(HWND hWnd, int code) {
    const COMCTL* record = RecordOf(hWnd);
    if (record && record->lpControl && upperRooms.fireCommEvent)
        upperRooms.fireCommEvent(*record->lpControl, code);
    return 0;
}

LRESULT OnOther(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (COMCTL* record = RecordOf(hWnd)) {
        if (const auto answer = AnswerTerminal(*record, message, wParam, lParam))
            return *answer;
    }
    return message == WM_TIMER ? Tick(hWnd) : DefWindowProcA(hWnd, message, wParam, lParam);
}

LRESULT Answer(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CREATE:
        return OnCreate(hWnd, *reinterpret_cast<const CREATESTRUCTA*>(lParam));
    case WM_DESTROY:
        OnDestroy(hWnd);
        return 0;
    case WM_SETTEXT:
        return OnSetText(hWnd, reinterpret_cast<const char*>(lParam));
    case WM_GETTEXT:
        return OnGetText(reinterpret_cast<char*>(lParam), wParam);
    case WM_ERASEBKGND:
        return 1;
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS | DLGC_WANTTAB | DLGC_WANTALLKEYS;
    case TransferMessage:
        return AnswerWindowRequest(hWnd, static_cast<int>(wParam), lParam);
    case TransferEventMessage:
        return AnswerTransferEvent(hWnd);
    case TransferEndMessage:
        return AnswerTransferEnd(hWnd, static_cast<int>(wParam));
    case FireEventMessage:
        return OnFireEvent(hWnd, static_cast<int>(wParam));
    default:
        return OnOther(hWnd, message, wParam, lParam);
    }
}

// Nothing throws across the window procedure; a creation that fails says so.
LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    try {
        return Answer(hWnd, message, wParam, lParam);
    } catch (...) {
        SwallowException("WindowProcedure");
        return message == WM_CREATE ? -1 : 0;
    }
}

HWND MakeObject(HWND hParent, const char* title, DWORD style) {
    const HINSTANCE module = ThisModule();
    if (!RegisterObjectClass(module))
        return nullptr;
    return CreateWindowExA(0, className, title, style, 0, 0, 0, 0, hParent, nullptr, module, nullptr);
}

constexpr DWORD childStyle = WS_CHILD | WS_HSCROLL | WS_VSCROLL;

} // namespace

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const char*>(&ThisModule), &module);
    return module;
}

bool RegisterObjectClass(HINSTANCE module) {
    WNDCLASSA existing = {};
    if (GetClassInfoA(module, className, &existing))
        return true;
    WNDCLASSA window = {};
    window.style = CS_DBLCLKS;
    window.lpfnWndProc = WindowProcedure;
    window.cbWndExtra = sizeof(COMCTL*);
    window.hInstance = module;
    window.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_IBEAM));
    window.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    window.lpszClassName = className;
    return RegisterClassA(&window) || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

void UnregisterObjectClass(HINSTANCE module) {
    UnregisterClassA(className, module);
}

HWND TARNAPI CreateCommObject(HWND hParent) {
    return MakeObject(hParent, "", hParent ? childStyle : WS_POPUP);
}

HWND TARNAPI CreateCommObjectName(HWND hParent, const char* szName) {
    return MakeObject(hParent, szName ? szName : "", childStyle);
}

int TARNAPI DestroyCommObject(HWND hWnd) {
    const COMCTL* record = RecordOf(hWnd);
    return record && !record->nBusy && DestroyWindow(hWnd);
}
