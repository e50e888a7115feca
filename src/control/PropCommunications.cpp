#include "PropCommunications.h"

#include "ansi.h"
#include "core/dialogitems.h"
#include "pageitems.h"

#include <comdef.h>

#include <array>
#include <cstdio>

namespace {

constexpr int lastPort = 62;
constexpr int lastCode = 255;
constexpr int firstPrintedCode = 32;
constexpr size_t fieldSize = 32;     // of a field of the settings, with its NUL
constexpr size_t portNameSize = 260; // names of modems as well

constexpr const char* speeds[] = {"",      "110",   "300",   "1200",   "2400",   "4800",   "9600",
                                  "19200", "38400", "57600", "115200", "230400", "460800", "921600"};
constexpr const char* parities[] = {"", "None", "Even", "Odd", "Mark", "Space"};
constexpr const char* dataBits[] = {"", "5", "6", "7", "8"};
constexpr const char* stopBits[] = {"", "1", "2", "1.5"};

template <class Texts>
void FillList(HWND dialog, int item, const Texts& texts) {
    SendDlgItemMessageA(dialog, item, CB_RESETCONTENT, 0, 0);
    for (const char* text : texts)
        AddRow(dialog, item, text);
}

void FillPorts(HWND dialog) {
    FillList(dialog, Comm_Port, std::array{""});
    for (int port = 0; port <= lastPort; ++port) {
        char name[16];
        std::snprintf(name, sizeof name, "COM%d", port);
        AddRow(dialog, Comm_Port, name);
    }
}

// A row's place is the code of its character.
void FillCharacters(HWND dialog) {
    FillList(dialog, Comm_Replacement, std::array{""});
    for (int code = 1; code <= lastCode; ++code) {
        char text[24];
        std::snprintf(text, sizeof text, code < firstPrintedCode ? "Chr(%d)" : "Chr(%d) - '%c'", code, code);
        AddRow(dialog, Comm_Replacement, text);
    }
}

void SelectField(HWND dialog, int item, const std::string& field) {
    if (field.empty())
        SelectRow(dialog, item, 0);
    else
        SelectPrefix(dialog, item, field.c_str());
}

// Cuts what stands before the first comma off.
std::string TakeField(std::string& rest) {
    const size_t comma = rest.find(',');
    const std::string field = rest.substr(0, comma);
    rest = comma == rest.npos ? "" : rest.substr(comma + 1);
    return field;
}

std::string PortOf(ITarnComm& control) {
    _variant_t port;
    if (FAILED(control.get_CommPort(&port)) || FAILED(VariantChangeType(&port, &port, 0, VT_BSTR)))
        return "";
    return AnsiOf(V_BSTR(&port));
}

} // namespace

const PageFacts& CPropCommunications::Facts() const {
    static constexpr PageFacts facts = {CommunicationsTemplate, L"&Communications", L"Communications"};
    return facts;
}

void CPropCommunications::OnPrepare() {
    const HWND dialog = Dialog();
    FillPorts(dialog);
    FillCharacters(dialog);
    FillList(dialog, Comm_Speed, speeds);
    FillList(dialog, Comm_Parity, parities);
    FillList(dialog, Comm_DataBits, dataBits);
    FillList(dialog, Comm_StopBits, stopBits);
}

void CPropCommunications::OnControl(ITarnComm& control) {
    ShowText(Comm_Port, PortOf(control));
    ShowSettings(GetText(control, &ITarnComm::get_Settings));
    ShowNumber(Comm_InBufferSize, Get(control, &ITarnComm::get_InBufferSize));
    ShowNumber(Comm_OutBufferSize, Get(control, &ITarnComm::get_OutBufferSize));
    Check(Comm_TriggersOnComm, Get(control, &ITarnComm::get_IgnoreOnComm) == VARIANT_FALSE);
    ShowThreshold(Get(control, &ITarnComm::get_RThreshold));
    ShowReplacement(GetText(control, &ITarnComm::get_ParityReplace));
}

void CPropCommunications::ShowSettings(const std::string& settings) const {
    std::string rest = settings;
    ShowText(Comm_Speed, TakeField(rest));
    for (const int item : {Comm_Parity, Comm_DataBits, Comm_StopBits})
        SelectField(Dialog(), item, TakeField(rest));
}

void CPropCommunications::ShowThreshold(LONG threshold) const {
    ShowText(Comm_RThreshold, threshold > 0 ? std::to_string(threshold) : "");
    Check(Comm_TriggersReceive, threshold > 0);
    EnableItems(Dialog(), {Comm_RThreshold}, threshold > 0);
}

void CPropCommunications::ShowReplacement(const std::string& replacement) const {
    const auto code = static_cast<unsigned char>(replacement.empty() ? '\0' : replacement.front());
    SelectRow(Dialog(), Comm_Replacement, code);
    EnableItems(Dialog(), {Comm_Replacement}, code != 0);
    Check(Comm_ReplacesBytes, code != 0);
}

void CPropCommunications::OnChanged(int item) {
    if (item == Comm_ReplacesBytes)
        EnableItems(Dialog(), {Comm_Replacement}, IsChecked(Comm_ReplacesBytes));
    if (item == Comm_TriggersReceive)
        OnTriggersReceive();
}

// No count is none to wait for.
void CPropCommunications::OnTriggersReceive() const {
    const bool triggers = IsChecked(Comm_TriggersReceive);
    EnableItems(Dialog(), {Comm_RThreshold}, triggers);
    if (!triggers)
        ShowText(Comm_RThreshold, "");
    else if (ItemText(Dialog(), Comm_RThreshold, fieldSize).empty())
        ShowText(Comm_RThreshold, "1");
}

TarnPage::Setters CPropCommunications::Values() const {
    const _variant_t port(WideOf(ItemText(Dialog(), Comm_Port, portNameSize)).c_str());
    return {
        SetsText(&ITarnComm::put_Settings, SettingsText()),
        [port](ITarnComm& control) { return control.put_CommPort(port); },
        Sets(&ITarnComm::put_InBufferSize, Number(Comm_InBufferSize, false)),
        Sets(&ITarnComm::put_OutBufferSize, Number(Comm_OutBufferSize, false)),
        Sets(&ITarnComm::put_RThreshold, Number(Comm_RThreshold, true)),
        SetsFlag(&ITarnComm::put_IgnoreOnComm, !IsChecked(Comm_TriggersOnComm)),
        SetsText(&ITarnComm::put_ParityReplace, ReplacementText()),
    };
}

std::string CPropCommunications::SettingsText() const {
    const auto field = [this](int item) { return ItemText(Dialog(), item, fieldSize); };
    return field(Comm_Speed) + ',' + field(Comm_Parity).substr(0, 1) + ',' + field(Comm_DataBits) + ',' +
           field(Comm_StopBits);
}

std::string CPropCommunications::ReplacementText() const {
    const int code = SelectedRow(Dialog(), Comm_Replacement);
    return code > 0 ? std::string(1, static_cast<char>(code)) : "";
}
