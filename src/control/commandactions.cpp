#include "commandactions.h"

#include "ansi.h"
#include "modem/SerialPortProperties.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"
#include "terminal/openclipboard.h"
#include "transfer/receivefiledialog.h"
#include "transfer/sendfiledialog.h"

#include <comdef.h>
#include <commdlg.h>

#include <algorithm>

namespace {

// Its ends of rows have no room of their own: a selection of very many full rows is cut. Kept so, see
// Commands.CopyOfVeryManyFullRowsIsCut.
SharedMemory SelectionOf(HWND object, int length) {
    const int size = length + 1;
    SharedMemory memory(GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE | GMEM_ZEROINIT, static_cast<SIZE_T>(size)));
    if (auto* text = memory ? static_cast<char*>(GlobalLock(memory.get())) : nullptr) {
        GetSelectionText(object, text, size);
        GlobalUnlock(memory.get());
    }
    return memory;
}

// The clipboard is closed before anything is sent: that may take its time.
std::string ClipboardText(HWND object) {
    const OpenedClipboard clipboard(object);
    const HANDLE memory = clipboard.IsOpen() ? GetClipboardData(CF_TEXT) : nullptr;
    const auto* text = memory ? static_cast<const char*>(GlobalLock(memory)) : nullptr;
    if (!text)
        return "";
    std::string copy(text, strnlen(text, GlobalSize(memory)));
    GlobalUnlock(memory);
    return copy;
}

void ShowSerialPort(CTarnCommCtl& control) {
    const HWND object = control.CommObject();
    char text[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, text);
    std::string settings = text;
    int handshaking = GetHandshaking(object);
    CSerialPortProperties dialog(GetActiveWindow(), settings, handshaking);
    if (!control.Ask(dialog))
        return;
    SetSettings(object, settings.c_str());
    SetHandshaking(object, handshaking);
}

} // namespace

void commandactions::Copy(CTarnCommCtl& control) {
    const HWND object = control.CommObject();
    const int length = GetSelectionLength(object);
    if (length < 1)
        return;
    SharedMemory memory = SelectionOf(object, length);
    if (!memory)
        return;
    const OpenedClipboard clipboard(object);
    if (!clipboard.IsOpen())
        return;
    EmptyClipboard();
    if (SetClipboardData(CF_TEXT, memory.get()))
        memory.release(); // the clipboard's from here on
}

void commandactions::Paste(CTarnCommCtl& control) {
    const std::string text = ClipboardText(control.CommObject());
    if (!text.empty())
        Output(control.CommObject(), text.data(), static_cast<int>(std::min<size_t>(text.size(), MAXLONG)));
}

// What a modem answers while it dials isn't for the terminal. The value goes back also where the window went
// meanwhile: the next one takes it over.
void commandactions::Connect(CTarnCommCtl& control) {
    if (GetPortOpen(control.CommObject()))
        return;
    LONG autoProcess = 0;
    control.get_AutoProcess(&autoProcess);
    control.put_AutoProcess(0);
    control.put_PortOpen(VARIANT_TRUE);
    control.put_AutoProcess(autoProcess);
    control.UpdateStatus();
}

void commandactions::Disconnect(CTarnCommCtl& control) {
    control.put_PortOpen(VARIANT_FALSE);
}

void commandactions::SendFile(CTarnCommCtl& control) {
    CSendFileDialog dialog(control.DialogOwner(), GetProtocol(control.CommObject()), "");
    if (!control.Ask(dialog))
        return;
    control.put_XferProtocol(static_cast<XferProtocol>(dialog.nProtocol));
    Upload(control.CommObject(), dialog.szPath.data());
    control.Properties().m_bAbortTransfer = 0;
}

void commandactions::ReceiveFile(CTarnCommCtl& control) {
    const std::string folder = AnsiOf(control.Properties().m_sXferPath);
    CReceiveFileDialog dialog(control.DialogOwner(), GetProtocol(control.CommObject()), folder.c_str());
    if (!control.Ask(dialog))
        return;
    control.put_XferProtocol(static_cast<XferProtocol>(dialog.nProtocol));
    control.put_XferPath(_bstr_t(WideOf(dialog.szPath.data()).c_str()));
    Download(control.CommObject(), "");
    control.Properties().m_bAbortTransfer = 0;
}

void commandactions::Properties(CTarnCommCtl& control) {
    control.ChooseConnection();
    control.UpdateStatus();
}

// What the user chooses is not used: the terminal keeps its font. Kept so.
void commandactions::Font(CTarnCommCtl& control) {
    LOGFONTA font = {};
    CHOOSEFONTA choice = {};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = GetParent(control.Window());
    choice.lpLogFont = &font;
    control.Ask([&] { return ChooseFontA(&choice) != FALSE; });
}

void commandactions::PortProperties(CTarnCommCtl& control) {
    const int line = control.Telephony().FindModem(control.Properties().m_szPort);
    if (line == noLine)
        ShowSerialPort(control);
    else
        control.Ask([&] {
            control.Telephony().ConfigDialog(static_cast<DWORD>(line), GetActiveWindow());
            return true;
        });
    control.UpdateStatus();
}

void commandactions::SysInfo(CTarnCommCtl& control) {
    control.ShowSysInfo();
}
