// The list of protocols in a dialog. A row's place is the protocol's number.
#pragma once

#include <windows.h>

// A protocol that has no row selects none.
void FillProtocols(HWND hDlg, int nItem, int nProtocol);

// Of the selected row; without one, the protocol that is given.
int SelectedProtocol(HWND hDlg, int nItem, int nProtocol);
