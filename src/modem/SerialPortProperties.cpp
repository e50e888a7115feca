#include "SerialPortProperties.h"

#include "connectiondialogs.h"
#include "core/dialogitems.h"
#include "TarnComm.h"

#include <commctrl.h>

#include <array>

namespace {

struct ComboRow {
    int nItem;
    const char* szText;
};

constexpr std::array<ComboRow, 37> comboRows = {{
    {Serial_Speed, "(default)"},
    {Serial_Speed, "110"},
    {Serial_Speed, "300"},
    {Serial_Speed, "600"},
    {Serial_Speed, "1200"},
    {Serial_Speed, "2400"},
    {Serial_Speed, "4800"},
    {Serial_Speed, "9600"},
    {Serial_Speed, "14400"},
    {Serial_Speed, "19200"},
    {Serial_Speed, "28800"},
    {Serial_Speed, "38400"},
    {Serial_Speed, "57600"},
    {Serial_Speed, "115200"},
    {Serial_Speed, "230400"},
    {Serial_Speed, "460800"},
    {Serial_Speed, "921600"},
    {Serial_Parity, "(default)"},
    {Serial_Parity, "None"},
    {Serial_Parity, "Odd"},
    {Serial_Parity, "Even"},
    {Serial_Parity, "Mark"},
    {Serial_Parity, "Space"},
    {Serial_StopBits, "(default)"},
    {Serial_StopBits, "1"},
    {Serial_StopBits, "1.5"},
    {Serial_StopBits, "2"},
    {Serial_DataBits, "(default)"},
    {Serial_DataBits, "5"},
    {Serial_DataBits, "6"},
    {Serial_DataBits, "7"},
    {Serial_DataBits, "8"},
    {Serial_FlowControl, "(default)"},
    {Serial_FlowControl, "None"},
    {Serial_FlowControl, "Hardware"},
    {Serial_FlowControl, "Xon/Xoff"},
    {Serial_FlowControl, "Both"},
}};

constexpr int defaultRow = 0;        // of every combo box
constexpr size_t speedTextSize = 16; // bytes, with the NUL

// Behind the speed, in the order of the settings text.
constexpr int listedFields[] = {Serial_Parity, Serial_DataBits, Serial_StopBits};

constexpr int combos[] = {Serial_Speed, Serial_Parity, Serial_DataBits, Serial_StopBits, Serial_FlowControl};

// Takes the text up to the next comma, and the comma.
std::string TakeField(std::string& rest) {
    const size_t comma = rest.find(',');
    const std::string field = rest.substr(0, comma);
    rest.erase(0, comma == std::string::npos ? comma : comma + 1);
    const size_t first = field.find_first_not_of(' ');
    return first == std::string::npos ? "" : field.substr(first);
}

std::string WithoutDefault(const std::string& text) {
    return text.starts_with('(') ? "" : text;
}

std::string FieldOf(HWND hDlg, int nItem) {
    const std::string text = WithoutDefault(SelectedText(hDlg, nItem));
    return nItem == Serial_Parity ? text.substr(0, 1) : text;
}

constexpr int defaultFlowControl = -1; // has the first row

int RowOfFlowControl(int handshaking) {
    if (handshaking == TARN_HANDSHAKING_DEFAULT)
        return defaultRow;
    const bool hasRow = handshaking >= defaultFlowControl && handshaking <= TARN_HANDSHAKING_BOTH;
    return hasRow ? handshaking - defaultFlowControl : noRow;
}

int FlowControlOfRow(int row) {
    return row + defaultFlowControl;
}

} // namespace

const InitStep<CSerialPortProperties> CSerialPortProperties::initSteps[] = {
    {"Start", &CSerialPortProperties::Start},
    {"Initializing tab", &CSerialPortProperties::InitTab},
    {"Connection", &CSerialPortProperties::InitTitle},
    {"Initializing combobox", &CSerialPortProperties::FillCombos},
    {"Settings", &CSerialPortProperties::ShowSettings},
};

const CommandRow<CSerialPortProperties> CSerialPortProperties::commands[] = {
    {IDOK, BN_CLICKED, &CSerialPortProperties::OnOK},
    {IDCANCEL, BN_CLICKED, &CSerialPortProperties::OnCancel},
    {Serial_Restore, BN_CLICKED, &CSerialPortProperties::OnRestoreDefaults},
};

CSerialPortProperties::CSerialPortProperties(HWND hOwner, std::string& settings, int& handshaking)
    : CMyDialog(hOwner, SerialPortTemplate), pSettings(&settings), pHandshaking(&handshaking) {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TAB_CLASSES};
    InitCommonControlsEx(&classes);
}

bool CSerialPortProperties::OnInitDialog() {
    RunSteps(*this, initSteps, "Exception in CSerialPortProperties::OnInitDialog:");
    return true;
}

bool CSerialPortProperties::OnCommand(int nControl, int nNotification) {
    return RunCommand(*this, commands, nControl, nNotification);
}

void CSerialPortProperties::Start() {
    SendDlgItemMessageA(Window(), Serial_Speed, CB_LIMITTEXT, speedTextSize - 1, 0);
}

void CSerialPortProperties::InitTab() {
    AddTab(Window(), Connection_Tabs);
}

void CSerialPortProperties::InitTitle() {
    TitleTab(Window(), Connection_Tabs, "Connection");
}

void CSerialPortProperties::FillCombos() {
    for (const ComboRow& row : comboRows)
        AddRow(Window(), row.nItem, row.szText);
}

// What no row knows stands as the default. Two values of the flow control share the first row, others have
// none: it stays what it is until another row is selected.
void CSerialPortProperties::ShowSettings() {
    OnRestoreDefaults();
    std::string rest = *pSettings;
    const std::string speed = TakeField(rest);
    if (!speed.empty())
        SetDlgItemTextA(Window(), Serial_Speed, speed.c_str());
    for (const int item : listedFields) {
        const std::string field = TakeField(rest);
        if (!field.empty())
            SelectPrefix(Window(), item, field.c_str());
    }
    SelectRow(Window(), Serial_FlowControl, RowOfFlowControl(*pHandshaking));
}

void CSerialPortProperties::OnOK() {
    std::string settings = WithoutDefault(ItemText(Window(), Serial_Speed, speedTextSize));
    for (const int item : listedFields)
        settings += ',' + FieldOf(Window(), item);
    const int row = SelectedRow(Window(), Serial_FlowControl);
    *pSettings = settings;
    if (row != RowOfFlowControl(*pHandshaking))
        *pHandshaking = FlowControlOfRow(row);
    End(IDOK);
}

void CSerialPortProperties::OnCancel() {
    End(IDCANCEL);
}

void CSerialPortProperties::OnRestoreDefaults() {
    for (const int combo : combos)
        SelectRow(Window(), combo, defaultRow);
}
