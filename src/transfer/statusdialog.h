// The status dialog of a transfer: made, answered and destroyed on the thread of the comm window; the worker
// writes its texts and the bar. Without a dialog everything here does nothing.
#pragma once

#include "statusitems.h"
#include "transfer.h"

// Window's thread. The dialog is made hidden; null when there is none to be had. A record that was lent must
// outlive the dialog.
HWND CreateStatusDialog(HWND hOwner, DLGPROC lpProcedure);
void DestroyStatusDialog(HWND hDlg);

// Worker's thread. Each waits for the window's thread.
void OpenStatusDialog(TRANSFER& transfer); // lends it the record, fills it, shows it
void ShowItem(const TRANSFER& transfer, int nItem, const char* szText);
void ShowTitle(const TRANSFER& transfer, const char* szTitle);
void ShowPercent(const TRANSFER& transfer, int nPercent);
