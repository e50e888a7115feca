// Stores what the control looks like: control FOLDER
#include "windowstore.h"

#include "control/commands.h"
#include "control/TarnCommCtl.h"
#include "support/container.h"
#include "support/host.h"
#include "TarnComm.h"

#include <comdef.h>

#include <cstdio>
#include <iterator>
#include <memory>

namespace {

struct Scene {
    const char* name;
    void (*play)(CTarnCommCtl& control);
};

void Open(CTarnCommCtl& control) {
    control.put_PortOpen(VARIANT_TRUE);
}

// The last in the program: the system's colors are changed.
void TakeContrast(CTarnCommCtl&) {}

constexpr Scene scenes[] = {
    {"closed", [](CTarnCommCtl&) {}},
    {"open", Open},
    {"no-toolbar", [](CTarnCommCtl& control) { control.put_ToolbarVisible(VARIANT_FALSE); }},
    {"no-statusbar", [](CTarnCommCtl& control) { control.put_StatusbarVisible(VARIANT_FALSE); }},
    {"commands-hidden",
     [](CTarnCommCtl& control) {
         for (const CommCommand command : {CommCommand_New, CommCommand_Open, CommCommand_Save,
                                           CommCommand_Copy, CommCommand_SendFile, CommCommand_ReceiveFile})
             control.put_CommandState(command, CommandState_Hidden);
     }},
    {"contrast", TakeContrast},
};

// A black scheme, for this program's windows alone and only while it runs.
class Contrast {
  public:
    Contrast() {
        for (size_t place = 0; place < std::size(elements); ++place)
            before_[place] = GetSysColor(elements[place]);
        SetSysColors(static_cast<int>(std::size(elements)), elements, contrast);
    }
    ~Contrast() { SetSysColors(static_cast<int>(std::size(elements)), elements, before_); }
    Contrast(const Contrast&) = delete;
    Contrast& operator=(const Contrast&) = delete;

  private:
    static constexpr int elements[] = {COLOR_3DFACE,   COLOR_BTNTEXT,    COLOR_3DSHADOW, COLOR_3DHILIGHT,
                                       COLOR_GRAYTEXT, COLOR_3DDKSHADOW, COLOR_3DLIGHT};
    static constexpr COLORREF contrast[] = {RGB(0, 0, 0),       RGB(255, 255, 255), RGB(128, 128, 128),
                                            RGB(192, 192, 192), RGB(0, 255, 0),     RGB(255, 255, 255),
                                            RGB(0, 0, 0)};
    COLORREF before_[std::size(elements)] = {};
};

bool Play(const Scene& scene, const std::string& path) {
    host::Container container;
    ComPtr<CTarnCommCtl> control;
    if (FAILED(NewObject(control)))
        return false;
    const LONG style = GetWindowLongA(container.window, GWL_STYLE);
    SetWindowLongA(container.window, GWL_STYLE, style | WS_CLIPCHILDREN); // it would paint over the control
    SetWindowPos(container.window, nullptr, 8, 8, 480, 260, SWP_NOZORDER | SWP_NOACTIVATE);
    container.site.at = {0, 0, 480, 260};
    container.site.visible = container.site.at;
    container.Hold(static_cast<ITarnComm*>(control.Get()));
    control->put_CommPort(_variant_t(L"COM5"));
    if (container.Do(OLEIVERB_INPLACEACTIVATE) != S_OK)
        return false;
    TerminalPrintString(control->CommObject(), "CONNECT 115200\r\n\r\nWelcome\r\nlogin: ");
    scene.play(*control.Get());
    return StoreWhenStill(control->Window(), path);
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    CoInitialize(nullptr);
    bool good = true;
    for (const Scene& scene : scenes) {
        std::unique_ptr<Contrast> contrast;
        if (scene.play == TakeContrast)
            contrast = std::make_unique<Contrast>();
        if (Play(scene, std::string(words[1]) + "\\" + scene.name + ".bmp"))
            continue;
        std::printf("%s: can't be made\n", scene.name);
        good = false;
    }
    CoUninitialize();
    return good ? 0 : 1;
}
