// samples/container as its user has it: a window with the control and its bars, keys that go out, a clean
// end.
#include "support/line.h" // sockets come before the platform's header

#include <commctrl.h>

#include <string>

namespace {

constexpr DWORD limit = 30000; // ms for any step

std::string FolderOfProgram() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string program = path;
    return program.substr(0, program.rfind('\\') + 1);
}

class Sample {
  public:
    explicit Sample(const std::string& arguments) {
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        std::string line = "\"" + FolderOfProgram() + "container.exe\" " + arguments;
        EXPECT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                   &process_));
    }
    ~Sample() {
        if (!HasEnded(0))
            TerminateProcess(process_.hProcess, 1);
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    bool HasEnded(DWORD limitMilliseconds) const {
        return WaitForSingleObject(process_.hProcess, limitMilliseconds) == WAIT_OBJECT_0;
    }
    DWORD ExitCode() const {
        DWORD code = ~0U;
        GetExitCodeProcess(process_.hProcess, &code);
        return code;
    }

  private:
    PROCESS_INFORMATION process_ = {};
};

class ContainerSample : public host::LineTest {
  protected:
    // The window of this title, once it is shown.
    static HWND ShownWindow(const char* title) {
        HWND window = nullptr;
        host::PumpUntil(
            [&] {
                window = FindWindowA("TarnSampleContainer", title);
                return window && IsWindowVisible(window);
            },
            limit);
        return window;
    }
    static HWND ChildOf(HWND window, const char* kind) {
        const HWND control = FindWindowExA(window, nullptr, "TarnCommControl", nullptr);
        return FindWindowExA(control, nullptr, kind, nullptr);
    }
    static void PressKey(WORD key) {
        INPUT keys[2] = {};
        for (INPUT& each : keys) {
            each.type = INPUT_KEYBOARD;
            each.ki.wVk = key;
        }
        keys[1].ki.dwFlags = KEYEVENTF_KEYUP;
        EXPECT_EQ(SendInput(2, keys, sizeof keys[0]), 2u);
    }
    static HWND FocusOf(HWND window) {
        GUITHREADINFO info = {};
        info.cbSize = sizeof info;
        GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
        return info.hwndFocus;
    }
};

TEST_F(ContainerSample, ShowsItsBarsSendsKeysAndCloses) {
    host::FarEnd peer;
    const Sample sample("--port COM5 --settings 115200,n,8,1 --emulation vt100");
    const HWND window = ShownWindow("Terminal on COM5");
    ASSERT_TRUE(window);
    const HWND toolbar = ChildOf(window, "ToolbarWindow32");
    const HWND status = ChildOf(window, "msctls_statusbar32");
    const HWND terminal = ChildOf(window, "TarnCommObject");
    for (const HWND child : {toolbar, status, terminal})
        EXPECT_TRUE(IsWindowVisible(child));
    EXPECT_EQ(SendMessageA(toolbar, TB_BUTTONCOUNT, 0, 0), 16);
    const auto statusLength = LOWORD(SendMessageA(status, SB_GETTEXTLENGTHA, 0, 0));
    EXPECT_EQ(statusLength, std::string("Connected").size());

    SetForegroundWindow(window);
    EXPECT_TRUE(host::PumpUntil([&] { return FocusOf(window) == terminal; }, limit));
    PressKey('A');
    EXPECT_EQ(peer.Read(1, limit), "a");

    PostMessageA(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(sample.HasEnded(limit));
    EXPECT_EQ(sample.ExitCode(), 0u);
}

TEST_F(ContainerSample, WithoutAPortItWaitsForOne) {
    const Sample sample("");
    const HWND window = ShownWindow("Terminal");
    ASSERT_TRUE(window);
    constexpr WPARAM connect = 2006, disconnect = 2007;
    const HWND toolbar = ChildOf(window, "ToolbarWindow32");
    EXPECT_TRUE(SendMessageA(toolbar, TB_ISBUTTONENABLED, connect, 0));
    EXPECT_FALSE(SendMessageA(toolbar, TB_ISBUTTONENABLED, disconnect, 0));
    PostMessageA(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(sample.HasEnded(limit));
    EXPECT_EQ(sample.ExitCode(), 0u);
}

} // namespace
