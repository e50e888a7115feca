#include "projectfile.h"

#include "ansi.h"
#include "core/comobject.h"
#include "inifile.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <comdef.h>
#include <commdlg.h>

#include <array>
#include <cstdio>

namespace {

constexpr char settingsKey[] = "Settings";
constexpr char portKey[] = "Port";
constexpr char protocolKey[] = "Protocol";
constexpr char phoneNumberKey[] = "PhoneNumber";

constexpr char filter[] = "Communications Files (*.tlo)\0*.tlo\0All Files (*.*)\0*.*\0";

using FileName = std::array<char, MAX_PATH>;

// One of the system's two dialogs, with its title and what it asks of the file beyond what both do.
struct FileDialog {
    BOOL(WINAPI* show)(OPENFILENAMEA* choice);
    const char* szTitle;
    DWORD flags;
};

// Null while the control has no window.
HWND OwnerOf(const CTarnCommCtl& control) {
    return control.Window() ? GetParent(control.Window()) : nullptr;
}

// The name stands in the dialog at first. False: cancelled, refused, or too late.
bool AskForName(CTarnCommCtl& control, const FileDialog& dialog, const std::string& name) {
    FileName szName = {};
    std::snprintf(szName.data(), szName.size(), "%s", name.c_str());
    OPENFILENAMEA choice = {};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = OwnerOf(control);
    choice.hInstance = ThisModule();
    choice.lpstrFilter = filter;
    choice.lpstrFile = szName.data();
    choice.nMaxFile = static_cast<DWORD>(szName.size());
    choice.lpstrTitle = dialog.szTitle;
    choice.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | dialog.flags;
    choice.lpstrDefExt = ".tlo";
    if (!control.Ask([&] { return dialog.show(&choice) != FALSE; }))
        return false;
    control.Properties().m_sProjectFilename = WideOf(szName.data());
    return true;
}

bool AskForFileToOpen(CTarnCommCtl& control) {
    return AskForName(control, {GetOpenFileNameA, "Open Project", OFN_FILEMUSTEXIST}, "");
}

bool AskForFileToSave(CTarnCommCtl& control, const std::string& name) {
    return AskForName(control, {GetSaveFileNameA, "Save Project", 0}, name);
}

CIniFile FileOf(const CTarnCommCtl& control) {
    CIniFile file;
    file.Open(AnsiOf(control.Properties().m_sProjectFilename).c_str());
    return file;
}

_bstr_t Bstr(const char* szText) {
    return _bstr_t(MakeBstr(std::string_view(szText)), false);
}

// Through the setters, as a host would; each may tell the host, which may end the control.
void Read(CTarnCommCtl& control) {
    CIniFile file = FileOf(control);
    control.put_Settings(Bstr(file.GetString(settingsKey, "")));
    control.put_CommPort(_variant_t(Bstr(file.GetString(portKey, ""))));
    control.put_XferProtocol(static_cast<XferProtocol>(file.GetInt(protocolKey, TARN_PROTOCOL_ZMODEM)));
    control.put_PhoneNumber(Bstr(file.GetString(phoneNumberKey, "")));
}

// A control without its comm object has nothing to write over a good project.
void Write(const CTarnCommCtl& control, const char* szPort) {
    const HWND object = control.CommObject();
    if (!control.Has(object))
        return;
    char szSettings[TARN_SETTINGS_TEXT_SIZE] = {};
    GetSettings(object, szSettings);
    CIniFile file = FileOf(control);
    file.WriteString(settingsKey, szSettings);
    file.WriteString(phoneNumberKey, AnsiOf(control.Properties().m_sPhoneNumber).c_str());
    file.WriteString(portKey, szPort);
    file.WriteInt(protocolKey, GetProtocol(object));
}

} // namespace

void OpenProject(CTarnCommCtl& control) {
    const ComPtr<CTarnCommCtl> held(&control);
    const HWND object = control.CommObject();
    const std::wstring& name = control.Properties().m_sProjectFilename;
    if (name.empty())
        AskForFileToOpen(control);
    if (!name.empty() && control.Has(object)) // the host may have named one meanwhile
        Read(control);
}

// The port as the comm object has it; kept so, see ProjectFile.SaveTakesTheObjectsPort.
void SaveProject(CTarnCommCtl& control) {
    const ComPtr<CTarnCommCtl> held(&control);
    if (control.Properties().m_sProjectFilename.empty() && !AskForFileToSave(control, ""))
        return;
    Write(control, GetCommPort(control.CommObject()));
}

// The port as the host gave it; kept so, see ProjectFile.SaveAsTakesTheHostsPort.
void SaveProjectAs(CTarnCommCtl& control) {
    const ComPtr<CTarnCommCtl> held(&control);
    if (AskForFileToSave(control, AnsiOf(control.Properties().m_sProjectFilename)))
        Write(control, control.Properties().m_szPort);
}
