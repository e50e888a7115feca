// What dialogs do with their controls.
#pragma once

#include <windows.h>

#include <cstddef>
#include <initializer_list>
#include <string>

inline constexpr int noRow = -1;

// The one tab of a tab control, and what stands on it.
void AddTab(HWND hDlg, int nItem);
void TitleTab(HWND hDlg, int nItem, const char* szTitle);

void AddRow(HWND hDlg, int nItem, const char* szText);
void SelectRow(HWND hDlg, int nItem, int nRow);
// The first row that begins with the text, case aside. False: there is none, and the selection stays.
bool SelectPrefix(HWND hDlg, int nItem, const char* szText);
// The row that has this text, case aside. False: there is none, and the selection stays.
bool SelectText(HWND hDlg, int nItem, const char* szText);
int SelectedRow(HWND hDlg, int nItem); // or noRow
// Of the selected row, also while the control still shows another; empty if there is none.
std::string SelectedText(HWND hDlg, int nItem);

// What an item shows, cut to what fits into so many bytes with a NUL.
std::string ItemText(HWND hDlg, int nItem, size_t nBytes);
// The user can't type more than fits into so many bytes.
void LimitEdit(HWND hDlg, int nItem, size_t nBytes);

void EnableItems(HWND hDlg, std::initializer_list<int> items, bool on);
