// The toolbar: a button for each command that has one, and which of them can be pressed.
#pragma once

#include "TarnLink.h"

#include <windows.h>

inline constexpr int toolbarHeight = 23; // pixels

// Null: there is none.
HWND CreateToolbar(HWND parent);

enum class Connection {
    Closed,
    Dialling,
    Open,
};

// Enables and disables the buttons; those that are hidden stay so.
void ShowConnection(HWND toolbar, Connection connection);

// A button that the toolbar doesn't have is disabled.
CommandState StateOfButton(HWND toolbar, int button);
// Separators go with the last button before them.
void SetStateOfButton(HWND toolbar, int button, CommandState state);

// True: a notification of the toolbar or its tool tips, answered by result.
bool AnswerToolbar(HWND toolbar, NMHDR& notification, LRESULT& result);
