#include "toolbar.h"

#include "com/modulefile.h"
#include "commands.h"
#include "toolbarpictures.h"

#include <commctrl.h>

#include <array>
#include <span>

namespace {

constexpr UINT identifier = 1001;
constexpr DWORD style =
    WS_CHILD | WS_VISIBLE | CCS_NORESIZE | TBSTYLE_TOOLTIPS | TBSTYLE_FLAT | TBSTYLE_CUSTOMERASE;
constexpr int pictures = 16; // in the strip
constexpr int pictureWidth = 16;
constexpr int pictureHeight = 15;

constexpr int projectSeparator = 2020;
constexpr int clipboardSeparator = 2021;
constexpr int connectionSeparator = 2022;
constexpr int fileSeparator = 2023; // two of them; what hides one hides the first

constexpr TBBUTTON Button(int picture, int command) {
    return {picture, command, TBSTATE_ENABLED, TBSTYLE_BUTTON, {}, 0, 0};
}

constexpr TBBUTTON Separator(int command) {
    return {0, command, TBSTATE_ENABLED, TBSTYLE_SEP, {}, 0, 0};
}

constexpr TBBUTTON entries[] = {
    Button(0, newButton),           Button(1, openButton),       Button(2, saveButton),
    Separator(projectSeparator),    Button(3, copyButton),       Button(4, pasteButton),
    Separator(clipboardSeparator),  Button(5, connectButton),    Button(6, disconnectButton),
    Separator(connectionSeparator), Button(7, sendFileButton),   Button(8, receiveFileButton),
    Separator(fileSeparator),       Button(9, propertiesButton), Separator(fileSeparator),
    Button(10, sysInfoButton),
};

struct EnabledRow {
    int button;
    bool closed;
    bool dialling;
    bool open;
};

constexpr EnabledRow enabledRows[] = {
    {newButton, true, false, true},          {openButton, true, false, true},
    {saveButton, true, false, true},         {copyButton, true, false, true},
    {pasteButton, false, false, true},       {connectButton, true, false, false},
    {disconnectButton, false, true, true},   {sendFileButton, false, false, true},
    {receiveFileButton, false, false, true}, {propertiesButton, true, false, false},
};

bool IsEnabled(const EnabledRow& row, Connection connection) {
    switch (connection) {
    case Connection::Closed:
        return row.closed;
    case Connection::Dialling:
        return row.dialling;
    case Connection::Open:
        return row.open;
    }
    return false;
}

struct GroupRow {
    int separator;
    std::array<int, 3> buttons; // noButton: fewer than three
};

constexpr GroupRow groups[] = {
    {projectSeparator, {newButton, openButton, saveButton}},
    {clipboardSeparator, {copyButton, pasteButton, noButton}},
    {connectionSeparator, {connectButton, disconnectButton, noButton}},
    {fileSeparator, {sendFileButton, receiveFileButton, noButton}},
};

bool HasButton(HWND toolbar, int button) {
    return button != noButton &&
           SendMessageA(toolbar, TB_COMMANDTOINDEX, static_cast<WPARAM>(button), 0) >= 0;
}

bool IsHidden(HWND toolbar, int button) {
    return SendMessageA(toolbar, TB_ISBUTTONHIDDEN, static_cast<WPARAM>(button), 0) != 0;
}

void Tell(HWND toolbar, UINT message, int button, bool value) {
    SendMessageA(toolbar, message, static_cast<WPARAM>(button), MAKELPARAM(value, 0));
}

bool IsEmpty(HWND toolbar, const GroupRow& group) {
    for (const int button : group.buttons)
        if (button != noButton && !IsHidden(toolbar, button))
            return false;
    return true;
}

const char* TipOf(const NMHDR& notification) {
    const ControlCommand* command = CommandOfButton(static_cast<int>(notification.idFrom));
    return command ? command->toolTip : "";
}

LRESULT Erase(const NMCUSTOMDRAW& draw) {
    if (draw.dwDrawStage != CDDS_PREERASE)
        return CDRF_DODEFAULT;
    constexpr int enough = 5000; // pixels either way
    const RECT all = {0, 0, enough, enough};
    FillRect(draw.hdc, &all, GetSysColorBrush(COLOR_3DFACE));
    return CDRF_SKIPDEFAULT;
}

} // namespace

HWND CreateToolbar(HWND parent) {
    return CreateToolbarEx(parent, style, identifier, pictures, ModuleInstance(), ToolbarPictures, entries,
                           static_cast<int>(std::size(entries)), pictureWidth, pictureHeight, pictureWidth,
                           pictureHeight, sizeof(TBBUTTON));
}

void ShowConnection(HWND toolbar, Connection connection) {
    for (const EnabledRow& row : enabledRows)
        Tell(toolbar, TB_ENABLEBUTTON, row.button, IsEnabled(row, connection));
}

CommandState StateOfButton(HWND toolbar, int button) {
    if (!HasButton(toolbar, button))
        return CommandState_Disabled;
    if (IsHidden(toolbar, button))
        return CommandState_Hidden;
    const bool enabled = SendMessageA(toolbar, TB_ISBUTTONENABLED, static_cast<WPARAM>(button), 0) != 0;
    return enabled ? CommandState_Enabled : CommandState_Disabled;
}

void SetStateOfButton(HWND toolbar, int button, CommandState state) {
    if (!HasButton(toolbar, button))
        return;
    Tell(toolbar, TB_HIDEBUTTON, button, state == CommandState_Hidden);
    Tell(toolbar, TB_ENABLEBUTTON, button, state == CommandState_Enabled);
    for (const GroupRow& group : groups)
        Tell(toolbar, TB_HIDEBUTTON, group.separator, IsEmpty(toolbar, group));
}

bool AnswerToolbar(HWND toolbar, NMHDR& notification, LRESULT& result) {
    switch (notification.code) {
    case TTN_GETDISPINFOA: {
        auto& tip = reinterpret_cast<NMTTDISPINFOA&>(notification);
        lstrcpynA(tip.szText, TipOf(notification), static_cast<int>(std::size(tip.szText)));
        tip.lpszText = tip.szText;
        return true;
    }
    case TTN_GETDISPINFOW: {
        auto& tip = reinterpret_cast<NMTTDISPINFOW&>(notification);
        MultiByteToWideChar(CP_ACP, 0, TipOf(notification), -1, tip.szText,
                            static_cast<int>(std::size(tip.szText)));
        tip.lpszText = tip.szText;
        return true;
    }
    case NM_CUSTOMDRAW:
        if (notification.hwndFrom != toolbar)
            return false;
        result = Erase(reinterpret_cast<const NMTBCUSTOMDRAW&>(notification).nmcd);
        return true;
    default:
        return false;
    }
}
