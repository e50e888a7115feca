#include "troubleshooterscenes.h"

#include "diagnostics/TroubleShootDialog.h"
#include "diagnostics/troubleshootitems.h"

#include <cstdio>
#include <cstring>

namespace {

class Control final : public TroubleShootHost {
  public:
    std::vector<TroubleShootModem> Modems() override { return modems; }
    bool WireTap() override { return true; }
    std::string CaptureFilename() override { return ""; }
    void SetWireTap(bool) override {}
    void SetCaptureFilename(const std::string&) override {}

    std::vector<TroubleShootModem> modems = {
        {"R&D's Fast Modem V.92", "Unimodem 5 Service Provider", 56000},
        {"Another Modem", "with |http://link|link words| in its row", 33600},
    };
};

PortProbe ProbeMadeUp(const char* szPort) {
    if (std::strcmp(szPort, "COM1") == 0)
        return {true, PortKind::Serial, {9600, 8, NOPARITY}};
    if (std::strcmp(szPort, "COM32") == 0)
        return {true, PortKind::Serial, {115200, 7, EVENPARITY}};
    return {false, PortKind::Unknown, {}};
}

// One of each kind.
std::optional<LoadedLibrary> FindMadeUp(const char* szName) {
    SYSTEMTIME created = {};
    created.wYear = 1999;
    created.wMonth = 12;
    created.wDay = 31;
    created.wHour = 12;
    const std::string path = std::string("C:\\windows\\system32\\") + szName;
    if (std::strcmp(szName, "Tapi32.dll") == 0)
        return LoadedLibrary{path, FileVersion{10, 0, 19041, 1}, created};
    if (std::strcmp(szName, "OlePro32.dll") == 0)
        return LoadedLibrary{
            "C:\\Program Files\\A Folder With A Long Name\\Another One\\olepro32.dll", {}, {}};
    if (std::strcmp(szName, "MFC42.dll") == 0)
        return LoadedLibrary{};
    return {};
}

void Click(HWND hDlg, int item) {
    const RECT box = TroubleShootItemBox(hDlg, item);
    SendDlgItemMessageA(hDlg, TroubleShoot_Panel, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(box.left, box.top));
}

// By a key, as the mouse is not really there.
void MarkExit(HWND hDlg) {
    SendDlgItemMessageA(hDlg, TroubleShoot_Panel, WM_KEYDOWN, VK_END, 1);
}

constexpr int nothing = -1;

struct Scene {
    const char* name;
    int clicked;
    bool exitMarked;
    bool hasModems;
};

constexpr Scene scenes[] = {
    {"troubleshooter-welcome", nothing, false, true}, {"troubleshooter-libraries", 0, false, true},
    {"troubleshooter-ports", 1, false, true},         {"troubleshooter-modems", 2, false, true},
    {"troubleshooter-no-modems", 2, false, false},    {"troubleshooter-logging", 3, true, true},
};

bool Play(const Scene& scene, const StorePicture& store, const std::string& path) {
    Control control;
    if (!scene.hasModems)
        control.modems.clear();
    CTroubleShootDialog dialog(nullptr, control, {ProbeMadeUp, FindMadeUp, SystemLogFileActions()});
    if (!dialog.Create())
        return false;
    if (scene.clicked != nothing)
        Click(dialog.Window(), scene.clicked);
    if (scene.exitMarked)
        MarkExit(dialog.Window());
    return store(dialog.Window(), path);
}

} // namespace

bool PlayTroubleshooter(const StorePicture& store, const std::string& folder) {
    bool good = true;
    for (const Scene& scene : scenes) {
        if (Play(scene, store, folder + "\\" + scene.name + ".bmp"))
            continue;
        std::printf("%s: can't be made\n", scene.name);
        good = false;
    }
    return good;
}
