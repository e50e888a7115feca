// The bars of a control on its window.
#pragma once

#include "eventhost.h"

#include "control/commands.h"

#include <commctrl.h>

namespace host {

inline constexpr int allButtons[] = {newButton,         openButton,       saveButton,       copyButton,
                                     pasteButton,       connectButton,    disconnectButton, sendFileButton,
                                     receiveFileButton, propertiesButton, sysInfoButton};

inline HWND ToolbarOf(CTarnCommCtl& control) {
    return GetDlgItem(control.Window(), 1001);
}

inline HWND StatusBarOf(CTarnCommCtl& control) {
    return GetDlgItem(control.Window(), 1000);
}

inline std::vector<int> EnabledButtons(CTarnCommCtl& control) {
    std::vector<int> enabled;
    for (const int button : allButtons)
        if (SendMessageA(ToolbarOf(control), TB_ISBUTTONENABLED, static_cast<WPARAM>(button), 0))
            enabled.push_back(button);
    return enabled;
}

// What each state of the connection leaves enabled.
inline const std::vector<int> enabledWhileClosed = {newButton,     openButton,       saveButton,   copyButton,
                                                    connectButton, propertiesButton, sysInfoButton};
inline const std::vector<int> enabledWhileDialling = {disconnectButton, sysInfoButton};
inline const std::vector<int> enabledWhileOpen = {newButton,      openButton,        saveButton,
                                                  copyButton,     pasteButton,       disconnectButton,
                                                  sendFileButton, receiveFileButton, sysInfoButton};

inline std::string PaneOf(CTarnCommCtl& control, WPARAM pane) {
    char text[512] = {};
    SendMessageA(StatusBarOf(control), SB_GETTEXTA, pane, reinterpret_cast<LPARAM>(text));
    return text;
}

// As the toolbar tells of a click.
inline void Click(CTarnCommCtl& control, int button) {
    SendMessageA(control.Window(), WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(ToolbarOf(control)));
}

inline RECT PlaceOf(CTarnCommCtl& control, HWND child) {
    RECT place = {};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, control.Window(), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

class BarsTest : public EventControlTest {
  public:
    HWND Toolbar() const { return ToolbarOf(*control.Get()); }
    HWND StatusBar() const { return StatusBarOf(*control.Get()); }
    CTarnCommCtl& Control() const { return *control.Get(); }

    void OpenPort() {
        ASSERT_EQ(control->put_CommPort(_variant_t(L"COM5")), S_OK);
        ASSERT_EQ(control->put_Settings(_bstr_t(L"115200,n,8,1")), S_OK);
        ASSERT_EQ(control->put_PortOpen(VARIANT_TRUE), S_OK);
        ASSERT_TRUE(GetPortOpen(Object()));
    }
    CommandState StateOf(CommCommand command) {
        auto state = CommandState_Hidden;
        EXPECT_EQ(control->get_CommandState(command, &state), S_OK);
        return state;
    }
    bool IsHidden(int button) const {
        return SendMessageA(Toolbar(), TB_ISBUTTONHIDDEN, static_cast<WPARAM>(button), 0) != 0;
    }
};

} // namespace host
