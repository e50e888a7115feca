// A terminal in one window, on the flat functions alone: emulations, scrollback, selection, copy and paste,
// capture.
//
//     terminal --port COM3 --settings 9600,n,8,1 --emulation vt100 --scrollback 1000 --capture session.txt
//
// The mouse selects; the right button copies what is selected, or pastes. Ctrl+Insert copies, Shift+Insert
// pastes. F11 begins and ends a capture, F12 writes the screen as text to standard output.
#include "options.h"

#include "TarnComm.h"

#include <commdlg.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr char className[] = "TarnSampleTerminal";

enum Command : int { CommandCopy = 1, CommandPaste, CommandCapture, CommandPrint };

const ACCEL keys[] = {
    {FVIRTKEY | FCONTROL, VK_INSERT, CommandCopy},
    {FVIRTKEY | FSHIFT, VK_INSERT, CommandPaste},
    {FVIRTKEY, VK_F11, CommandCapture},
    {FVIRTKEY, VK_F12, CommandPrint},
};

HWND terminal; // the comm object, a child that fills the window
bool capturing;

void Paste(HWND window) {
    if (!OpenClipboard(window))
        return;
    if (const HANDLE data = GetClipboardData(CF_TEXT)) {
        if (const auto* text = static_cast<const char*>(GlobalLock(data))) {
            Output(terminal, text, static_cast<int>(strlen(text)));
            GlobalUnlock(data);
        }
    }
    CloseClipboard();
}

void CopyOrPaste(HWND window) {
    if (GetSelectionLength(terminal))
        CopySelectionToClipboard(terminal);
    else
        Paste(window);
}

void ToggleCapture(HWND window) {
    char path[MAX_PATH] = "";
    OPENFILENAMEA dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = window;
    dialog.lpstrFile = path;
    dialog.nMaxFile = sizeof path;
    dialog.lpstrTitle = "Capture to";
    if (capturing)
        SetCaptureFilename(terminal, nullptr);
    capturing = !capturing && GetSaveFileNameA(&dialog) && SetCaptureFilename(terminal, path);
}

void PrintScreen() {
    std::vector<char> text(static_cast<size_t>(GetContentsLength(terminal)) + 1);
    GetContents(terminal, text.data(), static_cast<int>(text.size()));
    std::fputs(text.data(), stdout);
    std::fflush(stdout);
}

void Run(HWND window, int command) {
    switch (command) {
    case CommandCopy:
        CopySelectionToClipboard(terminal);
        break;
    case CommandPaste:
        Paste(window);
        break;
    case CommandCapture:
        ToggleCapture(window);
        break;
    case CommandPrint:
        PrintScreen();
        break;
    }
}

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        MoveWindow(terminal, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
    case WM_SETFOCUS:
        SetFocus(terminal);
        return 0;
    case WM_COMMAND:
        Run(window, LOWORD(wParam));
        return 0;
    case WM_CONTEXTMENU: // the right button, let go over the terminal
        CopyOrPaste(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

HWND MakeWindow(const std::string& title) {
    WNDCLASSA kind = {};
    kind.lpfnWndProc = WindowProcedure;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    kind.lpszClassName = className;
    RegisterClassA(&kind);
    return CreateWindowExA(0, className, title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                           760, 480, nullptr, nullptr, kind.hInstance, nullptr);
}

// The window becomes as large as the terminal wants to be.
void FitWindow(HWND window, const Options& options) {
    SIZE cell = {};
    const HDC dc = GetDC(terminal);
    const HGDIOBJ font = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(terminal, WM_GETFONT, 0, 0)));
    GetTextExtentPoint32A(dc, "x", 1, &cell);
    SelectObject(dc, font);
    ReleaseDC(terminal, dc);
    RECT area = {0, 0, cell.cx * options.columns + GetSystemMetrics(SM_CXVSCROLL), cell.cy * options.rows};
    AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    SetWindowPos(window, nullptr, 0, 0, area.right - area.left, area.bottom - area.top,
                 SWP_NOMOVE | SWP_NOZORDER);
}

// Every character as wide as the next, so that columns stand under each other.
HFONT MakeFont() {
    return CreateFontA(-16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, OEM_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, "Terminal");
}

std::string Open(const Options& options) {
    char error[TARN_ERROR_TEXT_SIZE];
    SetCommPort(terminal, options.port.c_str());
    if (SetSettings(terminal, options.settings.c_str()) == TARN_BAD_SETTINGS)
        return "Settings \"" + options.settings + "\" can't be read.";
    if (!SetPortOpen(terminal, 1, error))
        return options.port + ": " + error;
    return "";
}

int Complain(const std::string& text) {
    MessageBoxA(nullptr, text.c_str(), "Terminal", MB_ICONERROR);
    return 1;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int show) {
    const Options options = ReadOptions(__argc, __argv);
    if (!options.problem.empty())
        return Complain(options.problem);

    const HWND window = MakeWindow("Terminal on " + options.port);
    terminal = CreateCommObject(window);
    const HFONT font = MakeFont();
    SendMessageA(terminal, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    SetRows(terminal, options.rows);
    SetColumns(terminal, options.columns);
    SetScrollRows(terminal, options.scrollRows);
    SetColor(terminal, TARN_COLOR_LIGHT_GRAY);
    SetEmulation(terminal, options.emulation);
    SetAutoProcess(terminal, TARN_PROCESS_BOTH);
    SetInputEcho(terminal, 1); // what comes in goes to the screen
    SetEcho(terminal, options.echo);
    ShowWindow(terminal, SW_SHOW);
    FitWindow(window, options);
    if (!options.captureFile.empty())
        capturing = SetCaptureFilename(terminal, options.captureFile.c_str());
    if (const std::string problem = Open(options); !problem.empty())
        return Complain(problem);
    ShowWindow(window, show);

    const HACCEL accelerators =
        CreateAcceleratorTableA(const_cast<ACCEL*>(keys), static_cast<int>(std::size(keys)));
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorA(window, accelerators, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    DestroyAcceleratorTable(accelerators);
    DeleteObject(font);
    return 0;
}
