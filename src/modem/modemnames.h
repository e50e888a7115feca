// The names of the known modems in a control of the host's dialog.
#pragma once

#include "core/comctl.h"

// Adds the name that needs no list, then those of the list with their places in it as item data, counted from
// 1, and selects the one that the object's modem starts with. False: there is no list, or the object is gone.
bool FillListBox(const COMCTL& record, HWND hListBox);
bool FillComboBox(const COMCTL& record, HWND hComboBox);
