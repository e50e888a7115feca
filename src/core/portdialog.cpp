// The modal dialog that edits the line settings. This module carries no template 101; a program that links
// one in gets the dialog, all others the failure that the system reports for a missing template.
#include "comobject.h"
#include "live.h"
#include "TarnComm.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace {

constexpr int portSettingsTemplate = 101;
constexpr int objectIsGone = 0;

struct SpeedRow {
    int control;
    long speed;
};

// The last button stands for any other speed, and is read back as 38400.
constexpr std::array<SpeedRow, 8> speeds = {
    {{11, 1200}, {12, 2400}, {13, 4800}, {14, 9600}, {15, 14400}, {16, 19200}, {17, 28800}, {18, 38400}}};

struct LetterRow {
    int control;
    int value;
    char letter;
};

constexpr std::array<LetterRow, 5> parities = {
    {{41, 0, 'n'}, {42, 1, 'o'}, {43, 2, 'e'}, {44, 3, 'm'}, {45, 4, 's'}}};

struct TextRow {
    int control;
    int value;
    const char* text;
};

constexpr std::array<TextRow, 3> stopBits = {{{31, 0, "1"}, {32, 1, "1.5"}, {33, 2, "2"}}};

constexpr int firstDataBits = 5;
constexpr int lastDataBits = 8;
constexpr int dataBitsControl = 17; // added to the number of bits

// Hardware flow, both kinds, the port's default and any other value share a button.
constexpr int sharedHandshaking = 2;
constexpr std::array<TextRow, 3> handshakes = {{{53, 0, ""}, {51, 1, ""}, {52, sharedHandshaking, ""}}};

// A group with no button checked stands for a value that was left out, which the line takes as the first.
template <class Rows>
const auto& CheckedRow(HWND hDialog, const Rows& rows) {
    for (const auto& row : rows)
        if (IsDlgButtonChecked(hDialog, row.control) == BST_CHECKED)
            return row;
    return rows.front();
}

template <class Rows>
void CheckValue(HWND hDialog, const Rows& rows, int value) {
    for (const auto& row : rows)
        CheckDlgButton(hDialog, row.control, row.value == value ? BST_CHECKED : BST_UNCHECKED);
}

void CheckSpeed(HWND hDialog, long speed) {
    int control = speeds.back().control;
    for (const SpeedRow& row : speeds)
        if (row.speed == speed)
            control = row.control;
    for (const SpeedRow& row : speeds)
        CheckDlgButton(hDialog, row.control, row.control == control ? BST_CHECKED : BST_UNCHECKED);
}

void CheckHandshaking(HWND hDialog, int handshaking) {
    const bool hasOwnButton = handshaking == 0 || handshaking == 1;
    CheckValue(hDialog, handshakes, hasOwnButton ? handshaking : sharedHandshaking);
}

void FillDialog(HWND hDialog, const COMCTL& record) {
    CheckSpeed(hDialog, record.lBaud);
    CheckValue(hDialog, parities, record.nParity);
    for (int bits = firstDataBits; bits <= lastDataBits; ++bits)
        CheckDlgButton(hDialog, bits + dataBitsControl,
                       bits == record.nDataBits ? BST_CHECKED : BST_UNCHECKED);
    CheckValue(hDialog, stopBits, record.nStopBits);
    CheckHandshaking(hDialog, record.nHandshaking);
}

int CheckedDataBits(HWND hDialog) {
    for (int bits = firstDataBits; bits < lastDataBits; ++bits)
        if (IsDlgButtonChecked(hDialog, bits + dataBitsControl) == BST_CHECKED)
            return bits;
    return lastDataBits;
}

void ApplyDialog(HWND hDialog, HWND hWnd) {
    char settings[32];
    std::snprintf(settings, sizeof settings, "%ld,%c,%d,%s", CheckedRow(hDialog, speeds).speed,
                  CheckedRow(hDialog, parities).letter, CheckedDataBits(hDialog),
                  CheckedRow(hDialog, stopBits).text);
    SetSettings(hWnd, settings);
    SetHandshaking(hWnd, CheckedRow(hDialog, handshakes).value);
}

// The dialog's window word keeps the 16 low bits of the object's handle, which is all that tells one window
// of a process from another.
HWND ObjectOf(HWND hDialog) {
    const auto low = static_cast<WORD>(GetWindowLongPtrA(hDialog, GWLP_USERDATA));
    return LiveObjectWithLowWord(low);
}

} // namespace

INT_PTR TARNAPI PortSettingsDialogProc(HWND hDialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG: {
        const auto hWnd = reinterpret_cast<HWND>(lParam);
        SetWindowLongPtrA(hDialog, GWLP_USERDATA, LOWORD(lParam));
        if (const COMCTL* record = RecordOf(hWnd))
            FillDialog(hDialog, *record);
        return TRUE;
    }
    case WM_COMMAND: {
        const int control = LOWORD(wParam);
        if (control != IDOK && control != IDCANCEL)
            return FALSE;
        if (control == IDOK)
            ApplyDialog(hDialog, ObjectOf(hDialog));
        EndDialog(hDialog, control == IDOK);
        return TRUE;
    }
    default:
        return FALSE;
    }
}

int TARNAPI PortSettingsDialog(HWND hWnd, HWND hParent) {
    if (!RecordOf(hWnd))
        return objectIsGone;
    return static_cast<int>(DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(portSettingsTemplate), hParent,
                                            PortSettingsDialogProc, reinterpret_cast<LPARAM>(hWnd)));
}
