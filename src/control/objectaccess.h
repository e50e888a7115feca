// What the control does with its comm object beside the flat functions. A face of its own, because the names
// of the core's events are those of the type library, too.
#pragma once

#include <windows.h>

#include <string>

class CTarnCommCtl;
struct COMCTL;

// The object's way back to its control. Null takes the control away.
void AttachControl(HWND hObject, CTarnCommCtl* control);
CTarnCommCtl* ControlOf(HWND hObject);

// Attaches a device that the telephony service has opened, with the object's settings. One that isn't valid
// detaches the present one.
void GiveCallToObject(HWND hObject, HANDLE hComm);

void NotifyObject(HWND hObject, int code);
void ClearPendingError(HWND hObject);
int LookUpMatchOf(HWND hObject);
const char* ErrorTextOf(int code); // null: it is no error's code

// The text that a transfer shows; empty without one.
std::string TransferMessageOf(HWND hObject);

// The rows of core/rooms.h that ask the control. Filled when the module starts.
struct ControlRoom {
    void (*fireCommEvent)(CTarnCommCtl& control, int code);
    void (*fireLookUp)(CTarnCommCtl& control, const char* text, int count);
    bool (*isConnected)(const CTarnCommCtl& control);
};
bool ConnectControlRoom(const ControlRoom& room);
