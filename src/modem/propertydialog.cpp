#include "propertydialog.h"

#include "connectiondialogs.h"
#include "core/dialogitems.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int highestPort = 64;
constexpr size_t numberSize = 257; // bytes, with the NUL
constexpr size_t speedTextSize = 16;

struct ComboRow {
    int nItem;
    const char* szText;
};

constexpr std::array<ComboRow, 25> comboRows = {{
    {Property_Parity, "None"},  {Property_Parity, "Even"},  {Property_Parity, "Odd"},
    {Property_Parity, "Mark"},  {Property_Parity, "Space"}, {Property_StopBits, "1"},
    {Property_StopBits, "1.5"}, {Property_StopBits, "2"},   {Property_DataBits, "5"},
    {Property_DataBits, "6"},   {Property_DataBits, "7"},   {Property_DataBits, "8"},
    {Property_Speed, "110"},    {Property_Speed, "300"},    {Property_Speed, "1200"},
    {Property_Speed, "2400"},   {Property_Speed, "4800"},   {Property_Speed, "9600"},
    {Property_Speed, "19200"},  {Property_Speed, "38400"},  {Property_Speed, "57600"},
    {Property_Speed, "115200"}, {Property_Speed, "230400"}, {Property_Speed, "460800"},
    {Property_Speed, "921600"},
}};

// What the rows of a list stand for in the settings text.
constexpr char parityLetters[] = "neoms";
constexpr char dataBitsDigits[] = "5678";
constexpr std::array<const char*, 3> stopBitsTexts = {"1", "1.5", "2"};

constexpr auto portItems = {Property_PortLabel,     Property_Port,        Property_SpeedLabel,
                            Property_Speed,         Property_ParityLabel, Property_Parity,
                            Property_DataBitsLabel, Property_DataBits,    Property_StopBitsLabel,
                            Property_StopBits};
constexpr auto modemItems = {Property_ModemLabel, Property_Modem};

// A line's settings as rows of the lists.
struct SettingsRows {
    std::string speed;
    int parity;
    int dataBits;
    int stopBits;
};

int ParityRow(char letter) {
    struct Row {
        const char* szLetters;
        int nRow;
    };
    constexpr Row rows[] = {{"Ee", 1}, {"Oo", 2}, {"Mm", 3}, {"Ss", 4}};
    for (const Row& row : rows)
        if (letter && std::strchr(row.szLetters, letter))
            return row.nRow;
    return 0;
}

// "1.5" has the row of "2", and "2" that of "1.5"; kept so, see SettingsAreShownAndReadBack in the tests.
int StopBitsRow(const std::string& text) {
    if (text.starts_with("1.5"))
        return 2;
    return text.starts_with('1') ? 0 : 1;
}

// Behind the next comma; empty if there is none.
std::string NextField(const std::string& text) {
    const size_t comma = text.find(',');
    return comma == std::string::npos ? "" : text.substr(comma + 1);
}

SettingsRows RowsOf(const std::string& settings) {
    const size_t digits = std::min(settings.find_first_not_of("0123456789"), settings.size());
    const std::string parity =
        settings.substr(digits).starts_with(',') ? settings.substr(digits + 1) : settings.substr(digits);
    const std::string dataBits = NextField(parity);
    return {settings.substr(0, digits), ParityRow(parity.c_str()[0]), dataBits.c_str()[0] - '5',
            StopBitsRow(NextField(dataBits))};
}

void ShowItems(HWND hDlg, std::initializer_list<int> items, bool on) {
    for (const int item : items)
        ShowWindow(GetDlgItem(hDlg, item), on ? SW_SHOW : SW_HIDE);
}

} // namespace

CPropertyDialog::CPropertyDialog(HWND hOwner, ConnectionChoice& choice, const CTapiApp& tapi)
    : CMyDialog(hOwner, PropertyTemplate), pChoice(&choice), pTapi(&tapi) {}

// The focus goes to the radio button that is checked: one that got it would be checked by it.
bool CPropertyDialog::OnInitDialog() {
    FillCombos();
    ShowSettings();
    ShowPort();
    ShowNumber();
    AddModems();
    ShowPage();
    SetFocus(GetDlgItem(Window(), IsDirect() ? Property_Direct : Property_Dial));
    return false;
}

bool CPropertyDialog::OnCommand(int nControl, int nNotification) {
    switch (nControl) {
    case Property_Direct:
    case Property_Dial:
        ShowPage();
        return true;
    case IDOK:
        OnOK();
        return true;
    default:
        return CMyDialog::OnCommand(nControl, nNotification);
    }
}

void CPropertyDialog::FillCombos() {
    for (int port = 1; port <= highestPort; ++port)
        AddRow(Window(), Property_Port, ("COM" + std::to_string(port)).c_str());
    for (const ComboRow& row : comboRows)
        AddRow(Window(), row.nItem, row.szText);
    SendDlgItemMessageA(Window(), Property_Speed, CB_LIMITTEXT, speedTextSize - 1, 0);
    LimitEdit(Window(), Property_Number, numberSize);
}

// Data bits that no row has stand as the last ones.
void CPropertyDialog::ShowSettings() {
    const SettingsRows rows = RowsOf(pChoice->settings);
    constexpr int last = sizeof dataBitsDigits - 2;
    SetDlgItemTextA(Window(), Property_Speed, rows.speed.c_str());
    SelectRow(Window(), Property_Parity, rows.parity);
    SelectRow(Window(), Property_DataBits, rows.dataBits < 0 || rows.dataBits > last ? last : rows.dataBits);
    SelectRow(Window(), Property_StopBits, rows.stopBits);
}

void CPropertyDialog::ShowPort() {
    const char* port = pChoice->port.c_str();
    if (!*port || SelectText(Window(), Property_Port, port))
        return;
    AddRow(Window(), Property_Port, port);
    SelectText(Window(), Property_Port, port);
}

void CPropertyDialog::ShowNumber() {
    SetDlgItemTextA(Window(), Property_Number, pChoice->phoneNumber.c_str());
    CheckRadioButton(Window(), Property_Direct, Property_Dial,
                     pChoice->phoneNumber.empty() ? Property_Direct : Property_Dial);
}

void CPropertyDialog::AddModems() {
    for (DWORD device = 0; pTapi->FindNextDataModem(device); ++device)
        AddRow(Window(), Property_Modem, pTapi->GetModemName(device).c_str());
    SelectText(Window(), Property_Modem, pChoice->port.c_str());
}

void CPropertyDialog::ShowPage() {
    ShowItems(Window(), portItems, IsDirect());
    ShowItems(Window(), modemItems, !IsDirect());
}

// A list without a selection changes nothing.
void CPropertyDialog::OnOK() {
    const std::string port = SelectedText(Window(), IsDirect() ? Property_Port : Property_Modem);
    pChoice->settings = EnteredSettings();
    pChoice->phoneNumber = IsDirect() ? "" : ItemText(Window(), Property_Number, numberSize);
    if (!port.empty())
        pChoice->port = port;
    End(IDOK);
}

bool CPropertyDialog::IsDirect() const {
    return IsDlgButtonChecked(Window(), Property_Direct) == BST_CHECKED;
}

std::string CPropertyDialog::EnteredSettings() const {
    const auto row = [this](int nItem) {
        return static_cast<size_t>(std::max(SelectedRow(Window(), nItem), 0));
    };
    char settings[64];
    std::snprintf(settings, sizeof settings, "%d,%c,%c,%s",
                  std::atoi(ItemText(Window(), Property_Speed, speedTextSize).c_str()),
                  parityLetters[row(Property_Parity)], dataBitsDigits[row(Property_DataBits)],
                  stopBitsTexts[row(Property_StopBits)]);
    return settings;
}
