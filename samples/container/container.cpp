// A terminal program that is nothing but a window around the ActiveX control, with its toolbar and its status
// bar: everything can be tried by mouse. The control is taken from Lantry.ocx beside the program, by its
// identifier; nothing has to be registered.
//
//     container --port COM3 --settings 9600,n,8,1 --emulation vt100
//
// Without a port it opens none: the buttons Properties and Connect choose and open one.
#include "controlhost.h"
#include "options.h"

#include <comdef.h>
#include <olectl.h>
#include <shellapi.h>

#include <algorithm>
#include <string>

namespace {

constexpr wchar_t className[] = L"TarnSampleContainer";
constexpr wchar_t programName[] = L"Terminal";
constexpr SIZE windowSize = {760, 540};

constexpr UINT titleChanged = WM_APP;
constexpr UINT_PTR closingTimer = 1;
constexpr UINT closingPause = 100; // ms between looks whether the control has let go

// Numbers of events in the type library
constexpr DISPID onComm = 19;
constexpr DISPID command = 20;

void OnEvent(DISPID event, const DISPPARAMS& arguments);

HWND window;
ControlHost host(OnEvent);

// The control does nothing for this button but ask its host: a new project has no name and an empty screen.
void StartAnew(ITarnComm& control) {
    control.put_PortOpen(VARIANT_FALSE);
    control.put_ProjectFilename(_bstr_t(L""));
    control.put_Contents(_bstr_t(L""));
}

// Arguments stand in reverse order: Cancel, then Command.
void OnEvent(DISPID event, const DISPPARAMS& arguments) {
    ITarnComm* const control = host.Control();
    if (!control)
        return;
    if (event == command && arguments.cArgs == 2 && V_I4(&arguments.rgvarg[1]) == CommCommand_New)
        StartAnew(*control);
    if (event == command || event == onComm)
        PostMessageW(window, titleChanged, 0, 0); // when the command has been done
}

void ShowTitle() {
    _variant_t port;
    if (!host.Control() || FAILED(host.Control()->get_CommPort(&port)) || V_VT(&port) != VT_BSTR)
        return;
    const std::wstring name(V_BSTR(&port), SysStringLen(V_BSTR(&port)));
    const std::wstring title = name.empty() ? programName : programName + (L" on " + name);
    SetWindowTextW(window, title.c_str());
}

// What waits on the stack below comes to its end first; then the window closes.
void Close() {
    KillTimer(window, closingTimer);
    VARIANT_BOOL busy = VARIANT_FALSE;
    ITarnComm* const control = host.Control();
    if (!control || FAILED(control->get_Busy(&busy)) || !busy) {
        DestroyWindow(window);
        return;
    }
    control->put_AbortTransfer(VARIANT_TRUE);
    control->put_ShutDown(VARIANT_TRUE);
    SetTimer(window, closingTimer, closingPause, nullptr);
}

LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED)
            host.FillWindow();
        return 0;
    case WM_ACTIVATE:
        host.TellActive(LOWORD(wParam) != WA_INACTIVE);
        ShowTitle();
        return DefWindowProcW(hWnd, message, wParam, lParam);
    case WM_SETFOCUS:
        host.TakeFocus();
        return 0;
    case titleChanged:
        ShowTitle();
        return 0;
    case WM_TIMER:
    case WM_CLOSE:
        Close();
        return 0;
    case WM_DESTROY:
        host.Leave();
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(hWnd, message, wParam, lParam);
    }
}

HWND MakeWindow() {
    WNDCLASSW kind = {};
    kind.lpfnWndProc = WindowProcedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    kind.lpszClassName = className;
    RegisterClassW(&kind);
    return CreateWindowExW(0, className, programName, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                           CW_USEDEFAULT, windowSize.cx, windowSize.cy, nullptr, nullptr, kind.hInstance,
                           nullptr);
}

// Every character as wide as the next, so that columns stand under each other. The first one is the control's
// own, which comes with Windows; the others stand in for it where it is missing.
constexpr const wchar_t* faces[] = {L"Terminal", L"DejaVu Sans Mono", L"Liberation Mono", L"Courier New"};

int CALLBACK NoteFont(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
    *reinterpret_cast<bool*>(found) = true;
    return 0; // no more of them
}

bool IsInstalled(const wchar_t* face) {
    LOGFONTW wanted = {};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(wanted.lfFaceName, face, LF_FACESIZE);
    bool found = false;
    const HDC dc = GetDC(nullptr);
    EnumFontFamiliesExW(dc, &wanted, NoteFont, reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, dc);
    return found;
}

void SetFont(ITarnComm& control) {
    const auto face = std::ranges::find_if(faces, IsInstalled);
    if (face == std::begin(faces) || face == std::end(faces))
        return;
    std::wstring name = *face;
    FONTDESC description = {};
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = name.data();
    description.cySize.int64 = 100000; // 10 points, in ten-thousandths
    description.sWeight = FW_NORMAL;
    description.sCharset = DEFAULT_CHARSET;
    Microsoft::WRL::ComPtr<IFontDisp> font;
    if (SUCCEEDED(OleCreateFontIndirect(&description, IID_IFontDisp,
                                        reinterpret_cast<void**>(font.GetAddressOf()))))
        control.putref_Font(font.Get());
}

// A port that can't be opened is told of by the status bar.
void SetUp(ITarnComm& control, const Options& options) {
    control.put_ToolbarVisible(VARIANT_TRUE);
    control.put_StatusbarVisible(VARIANT_TRUE);
    SetFont(control);
    control.put_Emulation(options.emulation);
    control.put_ScrollRows(1000);
    control.put_InputEcho(VARIANT_TRUE); // what comes in goes to the screen
    control.put_Settings(_bstr_t(options.settings.c_str()));
    if (options.port.empty())
        return;
    control.put_CommPort(_variant_t(options.port.c_str()));
    control.put_PortOpen(VARIANT_TRUE);
}

int Complain(const std::wstring& text) {
    MessageBoxW(nullptr, text.c_str(), programName, MB_ICONERROR);
    return 1;
}

std::wstring TextOf(HRESULT failure) {
    wchar_t text[256] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                   static_cast<DWORD>(failure), 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    return text;
}

int Run(const Options& options, int show) {
    window = MakeWindow();
    const HRESULT result = host.Enter(window);
    if (FAILED(result))
        return Complain(L"Lantry.ocx, beside the program: " + TextOf(result));
    SetUp(*host.Control(), options);
    ShowTitle();
    ShowWindow(window, show);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (host.Translate(message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

Options OptionsOfProgram() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    const Options options = ReadOptions(count, words);
    LocalFree(words);
    return options;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int show) {
    const Options options = OptionsOfProgram();
    if (!options.problem.empty())
        return Complain(options.problem);
    OleInitialize(nullptr);
    const int result = Run(options, show);
    OleUninitialize();
    return result;
}
