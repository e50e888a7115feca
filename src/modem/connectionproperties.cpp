#include "connectionproperties.h"

#include "connectiondialogs.h"
#include "core/dialogitems.h"
#include "SerialPortProperties.h"

#include <commctrl.h>

namespace {

constexpr size_t numberSize = 128; // bytes, with the NUL
constexpr size_t areaCodeSize = 20;

constexpr auto areaItems = {Connection_Country, Connection_AreaCode};
constexpr auto modemItems = {Connection_Number, Connection_UseAreaCode};

// The first row stands for an identifier that no row has.
int RowOfCountry(HWND hDlg, DWORD countryId) {
    const LRESULT rows = SendDlgItemMessageA(hDlg, Connection_Country, CB_GETCOUNT, 0, 0);
    for (int row = 0; row < rows; ++row) {
        const LRESULT data =
            SendDlgItemMessageA(hDlg, Connection_Country, CB_GETITEMDATA, static_cast<WPARAM>(row), 0);
        if (static_cast<DWORD>(data) == countryId)
            return row;
    }
    return 0;
}

} // namespace

const InitStep<CConnectionProperties> CConnectionProperties::initSteps[] = {
    {"Start", &CConnectionProperties::LimitTexts},
    {"Connection", &CConnectionProperties::InitTab},
    {"Adding modems", &CConnectionProperties::AddPorts},
    {"Adding Countries", &CConnectionProperties::AddCountries},
    {"Parsing phone number", &CConnectionProperties::ParseNumber},
    {"Getting current location", &CConnectionProperties::TakeLocation},
    {"Adding countries to combo box", &CConnectionProperties::SelectCountry},
    {"General init", &CConnectionProperties::ShowChoice},
    {"OnClickedUseAreaCode", &CConnectionProperties::OnClickedUseAreaCode},
    {"OnSelEndOK", &CConnectionProperties::OnSelEndOK},
};

// A row that is chosen by a key comes without the end of a selection.
const CommandRow<CConnectionProperties> CConnectionProperties::commands[] = {
    {IDOK, BN_CLICKED, &CConnectionProperties::OnOK},
    {IDCANCEL, BN_CLICKED, &CConnectionProperties::OnCancel},
    {Connection_Configure, BN_CLICKED, &CConnectionProperties::OnConfigure},
    {Connection_UseAreaCode, BN_CLICKED, &CConnectionProperties::OnClickedUseAreaCode},
    {Connection_Port, CBN_SELENDOK, &CConnectionProperties::OnSelEndOK},
    {Connection_Port, CBN_SELCHANGE, &CConnectionProperties::OnSelEndOK},
};

CConnectionProperties::CConnectionProperties(HWND hOwner, ConnectionChoice& choice, CTapiApp& tapi,
                                             PortNames names)
    : CMyDialog(hOwner, ConnectionTemplate), pChoice(&choice), edited(choice), pTapi(&tapi),
      portNames(std::move(names)) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TAB_CLASSES};
    InitCommonControlsEx(&classes);
}

bool CConnectionProperties::OnInitDialog() {
    RunSteps(*this, initSteps, "Exception in CConnectionProperties::InitDialog");
    shownPort = SelectedRow(Window(), Connection_Port);
    shown = Shown();
    return true;
}

bool CConnectionProperties::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

void CConnectionProperties::LimitTexts() {
    LimitEdit(Window(), Connection_Number, numberSize);
    LimitEdit(Window(), Connection_AreaCode, areaCodeSize);
}

void CConnectionProperties::InitTab() {
    AddTab(Window(), Connection_Tabs);
    TitleTab(Window(), Connection_Tabs, "Connection");
}

void CConnectionProperties::AddPorts() {
    for (const std::string& name : portNames())
        AddRow(Window(), Connection_Port, name.c_str());
}

void CConnectionProperties::AddCountries() {
    pTapi->AddCountriesToCombo(GetDlgItem(Window(), Connection_Country));
}

void CConnectionProperties::ParseNumber() {
    const PhoneNumber parsed = ParsePhoneNumber(edited.phoneNumber.c_str());
    bUseAreaCode = parsed.useAreaCode;
    dwCountryID = static_cast<DWORD>(parsed.country);
    szAreaCode = parsed.areaCode;
    szPhoneNumber = parsed.number;
}

void CConnectionProperties::TakeLocation() {
    if (!bUseAreaCode)
        pTapi->GetCurrentLocationCountryIDAndAreaCode(dwCountryID, szAreaCode);
    SetDlgItemTextA(Window(), Connection_AreaCode, szAreaCode.c_str());
}

void CConnectionProperties::SelectCountry() {
    SelectRow(Window(), Connection_Country, RowOfCountry(Window(), dwCountryID));
}

void CConnectionProperties::ShowChoice() {
    SelectPort();
    SetDlgItemTextA(Window(), Connection_Number, szPhoneNumber.c_str());
    CheckDlgButton(Window(), Connection_UseAreaCode, bUseAreaCode ? BST_CHECKED : BST_UNCHECKED);
}

// The list has a modem's whole name, where the choice may have as much of it as a control keeps.
void CConnectionProperties::SelectPort() {
    if (SelectText(Window(), Connection_Port, edited.port.c_str()))
        return;
    const int modem = pTapi->FindModem(edited.port.c_str());
    if (modem != noLine)
        SelectText(Window(), Connection_Port, pTapi->GetModemName(static_cast<DWORD>(modem)).c_str());
}

void CConnectionProperties::OnClickedUseAreaCode() {
    EnableItems(Window(), areaItems, IsAreaCodeUsed());
}

void CConnectionProperties::OnSelEndOK() {
    const bool isModem = SelectedModem() != noLine;
    EnableItems(Window(), modemItems, isModem);
    EnableItems(Window(), areaItems, isModem && IsAreaCodeUsed());
}

// The service's own dialog writes to the service at once.
void CConnectionProperties::OnConfigure() {
    const int modem = SelectedModem();
    if (modem == noLine)
        ConfigurePort();
    else
        pTapi->ConfigDialog(static_cast<DWORD>(modem), Window());
}

void CConnectionProperties::ConfigurePort() {
    CSerialPortProperties(Window(), edited.settings, edited.handshaking).DoModal();
}

// The port stays what it was until another row is selected, the number until the user has changed it: what
// the dialog makes of its fields would be another text.
void CConnectionProperties::OnOK() {
    const int row = SelectedRow(Window(), Connection_Port);
    if (row != noRow && row != shownPort)
        edited.port = SelectedText(Window(), Connection_Port);
    if (IsNumberChanged())
        edited.phoneNumber = EnteredNumber();
    *pChoice = edited;
    End(IDOK);
}

void CConnectionProperties::OnCancel() {
    End(IDCANCEL);
}

int CConnectionProperties::SelectedModem() const {
    const std::string selected = SelectedText(Window(), Connection_Port);
    return selected.empty() ? noLine : pTapi->FindModem(selected.c_str());
}

bool CConnectionProperties::IsAreaCodeUsed() const {
    return IsDlgButtonChecked(Window(), Connection_UseAreaCode) == BST_CHECKED;
}

CConnectionProperties::NumberFields CConnectionProperties::Shown() const {
    return {IsAreaCodeUsed(), SelectedRow(Window(), Connection_Country),
            ItemText(Window(), Connection_AreaCode, areaCodeSize),
            ItemText(Window(), Connection_Number, numberSize)};
}

bool CConnectionProperties::IsNumberChanged() const {
    return IsWindowEnabled(GetDlgItem(Window(), Connection_Number)) && Shown() != shown;
}

std::string CConnectionProperties::EnteredNumber() const {
    const NumberFields fields = Shown();
    if (!fields.useAreaCode)
        return fields.number;
    return BuildPhoneNumber(CountryCodeOfRow(SelectedText(Window(), Connection_Country)), fields.areaCode,
                            fields.number);
}
