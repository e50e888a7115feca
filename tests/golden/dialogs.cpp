// Stores what the module's dialogs look like: dialogs FOLDER
#include "dialogstore.h"

#include "core/comctl.h"
#include "modem/connectiondialogs.h"
#include "modem/connectionproperties.h"
#include "modem/dialdialog.h"
#include "modem/propertydialog.h"
#include "modem/SerialPortProperties.h"
#include "support/host.h"
#include "support/nocalls.h"
#include "transfer/receivefiledialog.h"
#include "transfer/sendfiledialog.h"
#include "transfer/statusdialog.h"
#include "troubleshooterscenes.h"
#include "unit/dialogs/doubles.h"

#include <commctrl.h>

#include <cstdio>
#include <memory>

namespace {

struct WindowCloser {
    using pointer = HWND;
    void operator()(HWND hWnd) const { DestroyWindow(hWnd); }
};
using Window = std::unique_ptr<HWND, WindowCloser>;

struct Scene {
    const char* name;
    int id;
    int direction;
    void (*play)(HWND hDlg, TRANSFER& transfer);
};

void ShowHalf(HWND, TRANSFER& transfer) {
    ShowItem(transfer, Item_Status,
             "Sending block 1234 of R&D \xfc"
             "bersicht.txt");
    ShowItem(transfer, Item_BytesDone, "1263616 bytes");
    ShowItem(transfer, Item_FileSize, "2000000 bytes");
    ShowItem(transfer, Item_Elapsed, "00:01:52");
    ShowItem(transfer, Item_BlockSize, "1024");
    ShowPercent(transfer, 63);
}

void Cancel(HWND hDlg, TRANSFER& transfer) {
    ShowHalf(hDlg, transfer);
    SendMessageA(hDlg, WM_CLOSE, 0, 0);
}

void Leave(HWND, TRANSFER&) {}

constexpr Scene scenes[] = {
    {"status-opened", StatusTemplate, XferUpload, Leave},
    {"status-running", StatusTemplate, XferUpload, ShowHalf},
    {"status-cancelled", StatusTemplate, XferUpload, Cancel},
    {"status-moved", StatusTemplateMoved, XferDownload, ShowHalf},
    {"status-wide", StatusTemplateWide, XferDownload, Leave},
};

bool Play(const Scene& scene, const std::string& path) {
    COMCTL record;
    TRANSFER transfer;
    transfer.lpComCtl = &record;
    transfer.nDirection = scene.direction;
    const Window dialog(
        scene.id == StatusTemplate
            ? CreateStatusDialog(nullptr, DlgProc)
            : CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(scene.id), nullptr, DlgProc, 0));
    transfer.hDlg = dialog.get();
    OpenStatusDialog(transfer);
    scene.play(dialog.get(), transfer);
    return dialog.get() && Store(dialog.get(), path);
}

// The connection dialogs, and those of files to send and receive

constexpr char modem[] = "R&D's Fast Modem V.92";

bool StoreOpen(CMyDialog& dialog, const std::string& path) {
    return dialog.Create() && Store(dialog.Window(), path);
}

bool StoreDial(CTapiApp&, const std::string& path) {
    CDialDialog dialog(nullptr, nullptr);
    return StoreOpen(dialog, path);
}

bool StoreConnection(CTapiApp& tapi, ConnectionChoice choice, const std::string& path) {
    CConnectionProperties dialog(nullptr, choice, tapi, [] {
        return std::vector<std::string>{"COM3", "COM1", modem};
    });
    return StoreOpen(dialog, path);
}

bool StoreModem(CTapiApp& tapi, const std::string& path) {
    return StoreConnection(tapi, {modem, "+49 (30) 5551212", "", 0}, path);
}

bool StorePort(CTapiApp& tapi, const std::string& path) {
    return StoreConnection(tapi, {"COM1", "", "", 0}, path);
}

bool StoreSerialPort(CTapiApp&, const std::string& path) {
    std::string settings = "7200,e,7,1";
    int handshaking = TARN_HANDSHAKING_NONE;
    CSerialPortProperties dialog(nullptr, settings, handshaking);
    return StoreOpen(dialog, path);
}

bool StoreDirect(CTapiApp& tapi, const std::string& path) {
    ConnectionChoice choice = {"COM64", "", "115200,n,8,1", 0};
    CPropertyDialog dialog(nullptr, choice, tapi);
    return StoreOpen(dialog, path);
}

bool StoreDialled(CTapiApp& tapi, const std::string& path) {
    ConnectionChoice choice = {modem, "5551212", "9600,n,8,1", 0};
    CPropertyDialog dialog(nullptr, choice, tapi);
    return StoreOpen(dialog, path);
}

bool StoreSendFile(CTapiApp&, const std::string& path) {
    CSendFileDialog dialog(nullptr, TARN_PROTOCOL_YMODEM_G, "C:\\R&D\\a report of the year.txt");
    return StoreOpen(dialog, path);
}

bool StoreReceiveFile(CTapiApp&, const std::string& path) {
    CReceiveFileDialog dialog(nullptr, TARN_PROTOCOL_ZMODEM, "C:\\R&D");
    return StoreOpen(dialog, path);
}

struct ConnectionScene {
    const char* name;
    bool (*store)(CTapiApp& tapi, const std::string& path);
};

constexpr ConnectionScene connectionScenes[] = {
    {"dial", StoreDial},
    {"connection-modem", StoreModem},
    {"connection-port", StorePort},
    {"serial-port", StoreSerialPort},
    {"property-direct", StoreDirect},
    {"property-dial", StoreDialled},
    {"send-file", StoreSendFile},
    {"receive-file", StoreReceiveFile},
};

bool Play(const ConnectionScene& scene, const std::string& path) {
    doubles::service.lines = {modem};
    doubles::service.countries = {{"Denmark (45)", 45}, {"Germany (49)", 49}};
    doubles::service.countryId = 45;
    doubles::service.areaCode = "89";
    host::NoCalls owner;
    CTapiApp tapi(owner);
    return scene.store(tapi, path);
}

// False if one can't be made.
template <class Scenes>
bool PlayAll(const Scenes& scenes, const std::string& folder) {
    bool good = true;
    for (const auto& scene : scenes) {
        if (Play(scene, folder + "\\" + scene.name + ".bmp"))
            continue;
        std::printf("%s: can't be made\n", scene.name);
        good = false;
    }
    return good;
}

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    const bool status = PlayAll(scenes, words[1]);
    const bool connection = PlayAll(connectionScenes, words[1]);
    const bool troubleshooter = PlayTroubleshooter(Store, words[1]);
    return status && connection && troubleshooter ? 0 : 1;
}
