#include "PropTerminal.h"

#include "core/dialogitems.h"
#include "pageitems.h"

#include <algorithm>

namespace {

constexpr size_t fileNameSize = 261; // with its NUL

constexpr const char* captureModes[] = {"Standard", "Binary", "Visible"};

} // namespace

// In the order in which they are read; Values has the order of setting.
const TarnPage::CheckRow CPropTerminal::shownChecks[] = {
    {Terminal_AutoReceive, &ITarnComm::get_AutoReceive, &ITarnComm::put_AutoReceive},
    {Terminal_AutoSend, &ITarnComm::get_AutoSend, &ITarnComm::put_AutoSend},
    {Terminal_ScrollRow, &ITarnComm::get_AutoScrollRow, &ITarnComm::put_AutoScrollRow},
    {Terminal_ScrollColumn, &ITarnComm::get_AutoScrollColumn, &ITarnComm::put_AutoScrollColumn},
    {Terminal_ScrollKeyboard, &ITarnComm::get_AutoScrollKeyboard, &ITarnComm::put_AutoScrollKeyboard},
    {Terminal_Echo, &ITarnComm::get_Echo, &ITarnComm::put_Echo},
    {Terminal_InputEcho, &ITarnComm::get_InputEcho, &ITarnComm::put_InputEcho},
};

const PageFacts& CPropTerminal::Facts() const {
    static constexpr PageFacts facts = {TerminalTemplate, L"&Terminal", L"Terminal Properties"};
    return facts;
}

void CPropTerminal::OnPrepare() {
    SendDlgItemMessageA(Dialog(), Terminal_CaptureMode, CB_RESETCONTENT, 0, 0);
    for (const char* mode : captureModes)
        AddRow(Dialog(), Terminal_CaptureMode, mode);
    LimitEdit(Dialog(), Terminal_CaptureFilename, fileNameSize);
}

void CPropTerminal::OnControl(ITarnComm& control) {
    ShowChecks(shownChecks, control);
    SelectRow(Dialog(), Terminal_CaptureMode, Get(control, &ITarnComm::get_CaptureMode));
    ShowText(Terminal_CaptureFilename, GetText(control, &ITarnComm::get_CaptureFilename));
    ShowNumber(Terminal_Columns, Get(control, &ITarnComm::get_Columns));
    ShowNumber(Terminal_Rows, Get(control, &ITarnComm::get_Rows));
    ShowNumber(Terminal_ScrollRows, Get(control, &ITarnComm::get_ScrollRows));
}

TarnPage::Setters CPropTerminal::Values() const {
    return {
        // Keys before input: what the second leaves in the control keeps its guard quiet (see
        // put_AutoReceive).
        SetsCheck(Terminal_AutoSend),
        SetsCheck(Terminal_AutoReceive),
        SetsCheck(Terminal_ScrollRow),
        SetsCheck(Terminal_ScrollColumn),
        SetsCheck(Terminal_ScrollKeyboard),
        SetsCheck(Terminal_InputEcho),
        SetsCheck(Terminal_Echo),
        SetsCaptureMode(),
        SetsText(&ITarnComm::put_CaptureFilename, ItemText(Dialog(), Terminal_CaptureFilename, fileNameSize)),
        Sets(&ITarnComm::put_Columns, Number(Terminal_Columns, true)),
        Sets(&ITarnComm::put_Rows, Number(Terminal_Rows, true)),
        Sets(&ITarnComm::put_ScrollRows, Number(Terminal_ScrollRows, true)),
    };
}

TarnPage::Setter CPropTerminal::SetsCheck(int item) const {
    const auto& row = *std::ranges::find(shownChecks, item, &CheckRow::item);
    return SetsFlag(row.put, IsChecked(item));
}

// No row is selected for a mode that the list doesn't know: an object keeps it then.
TarnPage::Setter CPropTerminal::SetsCaptureMode() const {
    const int row = SelectedRow(Dialog(), Terminal_CaptureMode);
    if (row == noRow)
        return [](ITarnComm&) { return S_OK; };
    return Sets(&ITarnComm::put_CaptureMode, static_cast<CaptureMode>(row));
}
