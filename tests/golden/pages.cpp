// Stores what the property pages, the about box and the icon look like: pages FOLDER
#include "dialogstore.h"

#include "com/classfactory.h"
#include "control/aboutdialog.h"
#include "control/PropAbout.h"
#include "control/PropCommunications.h"
#include "control/PropTerminal.h"
#include "control/PropWireTap.h"
#include "control/TarnCommCtl.h"
#include "core/moduleicon.h"

#include <comdef.h>

#include <cstdio>

namespace {

class Frame {
  public:
    explicit Frame(SIZE size)
        : window_(CreateWindowExA(WS_EX_CONTROLPARENT, "#32770", "", WS_POPUP | WS_VISIBLE, 8, 8, size.cx,
                                  size.cy, nullptr, nullptr, nullptr, nullptr)) {}
    ~Frame() { DestroyWindow(window_); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    operator HWND() const { return window_; }

  private:
    HWND window_;
};

void SetLine(ITarnComm& control) {
    control.put_CommPort(_variant_t(2L));
    control.put_Settings(_bstr_t(L"115200,e,7,1.5"));
    control.put_RThreshold(1);
    control.put_ParityReplace(_bstr_t(L"W")); // as wide as a letter gets
}

void SetLog(ITarnComm& control) {
    control.put_WireTap(VARIANT_TRUE);
    control.put_WireTapEvents(VARIANT_TRUE);
    control.put_WireTapTransfer(VARIANT_TRUE);
}

void SetTerminal(ITarnComm& control) {
    control.put_AutoScrollRow(VARIANT_TRUE);
    control.put_AutoReceive(VARIANT_TRUE);
    control.put_Echo(VARIANT_TRUE);
    control.put_CaptureMode(Capture_Visible);
    control.put_CaptureFilename(_bstr_t(L"C:\\Logs\\R&D.txt"));
    control.put_ScrollRows(30000);
}

void Leave(ITarnComm&) {}

struct PageScene {
    const char* name;
    HRESULT (*make)(REFIID iid, void** object);
    void (*prepare)(ITarnComm& control);
};
constexpr PageScene pageScenes[] = {
    {"page-communications", CreateClass<CPropCommunications>, SetLine},
    {"page-communications-plain", CreateClass<CPropCommunications>, Leave},
    {"page-wiretap", CreateClass<CPropWireTap>, SetLog},
    {"page-wiretap-off", CreateClass<CPropWireTap>, Leave},
    {"page-terminal", CreateClass<CPropTerminal>, SetTerminal},
    {"page-about", CreateClass<CPropAbout>, Leave},
};

bool StorePage(const PageScene& scene, const std::string& path) {
    ComPtr<CTarnCommCtl> control;
    ComPtr<IPropertyPage> page;
    if (FAILED(NewObject(control)) || FAILED(scene.make(IID_PPV_ARGS(&page))))
        return false;
    scene.prepare(*control.Get());
    PROPPAGEINFO info = {};
    info.cb = sizeof info;
    page->GetPageInfo(&info);
    CoTaskMemFree(info.pszTitle);
    CoTaskMemFree(info.pszDocString);
    const Frame frame(info.size);
    const RECT all = {0, 0, info.size.cx, info.size.cy};
    IUnknown* object = static_cast<ITarnComm*>(control.Get());
    const bool shown = SUCCEEDED(page->SetObjects(1, &object)) &&
                       SUCCEEDED(page->Activate(frame, &all, FALSE)) && SUCCEEDED(page->Show(SW_SHOW));
    return shown && Store(frame, path);
}

bool StoreAbout(const std::string& path) {
    CAboutDialog dialog(nullptr);
    return dialog.Create() && Store(dialog.Window(), path);
}

// Its sizes side by side.
bool StoreIcon(const std::string& path) {
    constexpr int sizes[] = {16, 32, 48};
    constexpr int room = 56;
    const Frame frame({room * static_cast<int>(std::size(sizes)), room});
    bool good = true;
    int left = 4;
    for (const int size : sizes) {
        const HANDLE icon =
            LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(ModuleIcon), IMAGE_ICON, size, size, 0);
        const HWND shown = CreateWindowExA(0, "Static", "", WS_CHILD | WS_VISIBLE | SS_ICON, left, 4, size,
                                           size, frame, nullptr, nullptr, nullptr);
        SendMessageA(shown, STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon));
        good = good && icon;
        left += room;
    }
    return good && Store(frame, path);
}

bool Told(const char* name, bool good) {
    if (!good)
        std::printf("%s: can't be made\n", name);
    return good;
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    CoInitialize(nullptr);
    const auto path = [&](const char* name) { return std::string(words[1]) + "\\" + name + ".bmp"; };
    bool good = true;
    for (const PageScene& scene : pageScenes)
        good = Told(scene.name, StorePage(scene, path(scene.name))) && good;
    good = Told("about", StoreAbout(path("about"))) && good;
    good = Told("icon", StoreIcon(path("icon"))) && good;
    CoUninitialize();
    return good ? 0 : 1;
}
