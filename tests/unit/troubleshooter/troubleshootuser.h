// A user at the troubleshooter: a control and a machine behind it that the test makes up, clicks, keys, and
// the message boxes that come up.
#pragma once

#include "diagnostics/TroubleShootDialog.h"
#include "diagnostics/troubleshootitems.h"
#include "unit/dialogs/dialoguser.h"

#include <map>
#include <stdexcept>

namespace troubleshooter {

using dialogs::Play;
using dialogs::Press;
using dialogs::Tell;
using dialogs::Texts;
using dialogs::User;

class HostDouble final : public TroubleShootHost {
  public:
    std::vector<TroubleShootModem> Modems() override {
        if (modemsFail)
            throw std::runtime_error("modems");
        return modems;
    }
    bool WireTap() override { return wireTap; }
    std::string CaptureFilename() override { return capture; }
    void SetWireTap(bool on) override {
        told.push_back(on ? "WireTap on" : "WireTap off");
        if (onWireTap)
            onWireTap();
    }
    void SetCaptureFilename(const std::string& name) override { told.push_back("capture " + name); }

    std::vector<TroubleShootModem> modems;
    bool modemsFail = false;
    bool wireTap = false;
    std::string capture;
    Texts told;
    std::function<void()> onWireTap;
};

struct Machine {
    std::map<std::string, PortProbe> ports;
    std::map<std::string, LoadedLibrary> libraries;
    Texts logActions;
    bool logActionsFail = false;

    TroubleShootSources Sources() {
        return {[this](const char* port) { return Probe(port); },
                [this](const char* name) { return Find(name); },
                {[this](HWND, const char* path) { return Act("open ", path); },
                 [this](const char* path) { return Act("remove ", path); }}};
    }
    PortProbe Probe(const std::string& port) const {
        const auto found = ports.find(port);
        return found == ports.end() ? PortProbe{false, PortKind::Unknown, {}} : found->second;
    }
    std::optional<LoadedLibrary> Find(const std::string& name) const {
        const auto found = libraries.find(name);
        return found == libraries.end() ? std::nullopt : std::optional<LoadedLibrary>(found->second);
    }
    bool Act(const std::string& what, const std::string& path) {
        logActions.push_back(what + path);
        return !logActionsFail;
    }
};

class HeldLibrary {
  public:
    explicit HeldLibrary(const char* name) : module_(LoadLibraryA(name)) {}
    ~HeldLibrary() { FreeLibrary(module_); }
    HeldLibrary(const HeldLibrary&) = delete;
    HeldLibrary& operator=(const HeldLibrary&) = delete;

  private:
    HMODULE module_;
};

inline std::string WindowsFile(const char* name) {
    char folder[MAX_PATH] = {};
    GetWindowsDirectoryA(folder, MAX_PATH);
    return std::string(folder) + "\\" + name;
}

// The panel, whose items are found as a user sees them: by their places.

inline HWND Panel(HWND hFrame) {
    return GetDlgItem(hFrame, TroubleShoot_Panel);
}

inline LPARAM MiddleOf(HWND hFrame, int item) {
    const RECT box = TroubleShootItemBox(hFrame, item);
    return MAKELPARAM((box.left + box.right) / 2, (box.top + box.bottom) / 2);
}

inline void MoveTo(HWND hFrame, int item) {
    SendMessageA(Panel(hFrame), WM_MOUSEMOVE, 0, MiddleOf(hFrame, item));
}

inline void Click(HWND hFrame, int item) {
    SendMessageA(Panel(hFrame), WM_LBUTTONDOWN, MK_LBUTTON, MiddleOf(hFrame, item));
}

enum : int { libraryItem, portItem, modemItem, loggingItem, exitItem };

// Pages

inline bool IsPage(HWND hWnd) {
    return GetDlgItem(hWnd, List_Rows) != nullptr; // both templates have an item of this number
}

inline std::vector<HWND> PagesOf(HWND hFrame) {
    std::vector<HWND> pages;
    for (HWND hPage = GetWindow(hFrame, GW_CHILD); hPage; hPage = GetWindow(hPage, GW_HWNDNEXT))
        if (IsPage(hPage))
            pages.push_back(hPage);
    return pages;
}

inline std::vector<HWND> ShownPages(HWND hFrame) {
    std::vector<HWND> shown;
    for (const HWND hPage : PagesOf(hFrame))
        if (IsWindowVisible(hPage))
            shown.push_back(hPage);
    return shown;
}

inline HWND LoggingPage(HWND hFrame) {
    for (const HWND hPage : PagesOf(hFrame))
        if (GetDlgItem(hPage, Logging_WireTap))
            return hPage;
    return nullptr;
}

inline Texts RowsOf(HWND hPage) {
    Texts rows;
    const LRESULT count = Tell(hPage, List_Rows, LB_GETCOUNT);
    for (LRESULT row = 0; row < count; ++row) {
        char text[512] = {};
        Tell(hPage, List_Rows, LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
        rows.push_back(text);
    }
    return rows;
}

// Message boxes

struct Box {
    std::string title;
    std::string text;
};

struct BoxSearch {
    const char* title;
    HWND found;
};

inline BOOL CALLBACK KeepBox(HWND hWnd, LPARAM parameter) {
    auto& search = *reinterpret_cast<BoxSearch*>(parameter);
    if (IsWindowVisible(hWnd) && GetWindow(hWnd, GW_OWNER) && !Panel(hWnd) &&
        dialogs::TextOf(hWnd) == search.title)
        search.found = hWnd;
    return !search.found;
}

inline HWND OpenBox(const char* title) {
    BoxSearch search = {title, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), KeepBox, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

inline std::string TextOfBox(HWND hBox) {
    std::string text;
    for (HWND hItem = GetWindow(hBox, GW_CHILD); hItem; hItem = GetWindow(hItem, GW_HWNDNEXT)) {
        char name[32] = {};
        GetClassNameA(hItem, name, sizeof name);
        if (std::string(name) == "Static")
            text += dialogs::TextOf(hItem);
    }
    return text;
}

// Notes the text of the box and lets the user act in it; closes it if it stays.
inline std::unique_ptr<host::Every> WhenBox(const char* title, Texts& seen, std::function<void()> user = {}) {
    return host::When([title] { return OpenBox(title) != nullptr; },
                      [title, &seen, user] {
                          const HWND hBox = OpenBox(title);
                          seen.push_back(TextOfBox(hBox));
                          if (user)
                              user();
                          PostMessageA(hBox, WM_COMMAND, IDOK, 0);
                      });
}

// What a window draws, in memory.
class Picture {
  public:
    explicit Picture(SIZE size) : dc_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        SelectObject(dc_, bitmap_);
    }
    ~Picture() {
        DeleteDC(dc_);
        DeleteObject(bitmap_);
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    HDC Context() const { return dc_; }
    COLORREF At(int x, int y) const { return GetPixel(dc_, x, y); }
    int Count(const RECT& box, COLORREF color) const {
        int count = 0;
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x)
                count += At(x, y) == color;
        return count;
    }

  private:
    HDC dc_;
    HBITMAP bitmap_ = nullptr;
};

inline SIZE SizeOf(HWND hWnd) {
    RECT client = {};
    GetClientRect(hWnd, &client);
    return {client.right, client.bottom};
}

} // namespace troubleshooter
