#include "modemnames.h"

#include "core/live.h"
#include "modemlist.h"
#include "modemlistfile.h"
#include "modemoptions.h"

namespace {

constexpr const char* builtInName = "Hayes Compatible";

struct ListMessages {
    UINT add;
    UINT setData;
    UINT selectByPrefix;
};

constexpr ListMessages listBox = {LB_ADDSTRING, LB_SETITEMDATA, LB_SELECTSTRING};
constexpr ListMessages comboBox = {CB_ADDSTRING, CB_SETITEMDATA, CB_SELECTSTRING};

LRESULT AddName(HWND hControl, const ListMessages& messages, const char* name) {
    return SendMessageA(hControl, messages.add, 0, reinterpret_cast<LPARAM>(name));
}

bool Fill(const COMCTL& record, HWND hControl, const ListMessages& messages) {
    const ObjectWatch watch(record); // the control may be one of the host's own making
    AddName(hControl, messages, builtInName);
    ModemListFile file;
    if (!file.IsOpen())
        return false;
    const auto nextLine = [&] { return ReadModemLine([&file] { return file.NextByte(); }); };
    LPARAM place = 0;
    for (std::string line = nextLine(); !line.empty(); line = nextLine()) {
        const LRESULT item = AddName(hControl, messages, ModemName(line).c_str());
        ++place;
        if (item >= 0)
            SendMessageA(hControl, messages.setData, static_cast<WPARAM>(item), place);
    }
    if (watch.Gone())
        return false;
    constexpr auto fromTheTop = static_cast<WPARAM>(-1);
    const std::string title = ModemOption(record, ModemField::Title);
    SendMessageA(hControl, messages.selectByPrefix, fromTheTop, reinterpret_cast<LPARAM>(title.c_str()));
    return true;
}

} // namespace

bool FillListBox(const COMCTL& record, HWND hListBox) {
    return Fill(record, hListBox, listBox);
}

bool FillComboBox(const COMCTL& record, HWND hComboBox) {
    return Fill(record, hComboBox, comboBox);
}
