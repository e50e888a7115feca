// The control's events by the numbers that sinks know them by, and their arguments.
#pragma once

#include <oaidl.h>
#include <windows.h>

namespace events {

enum Id : DISPID {
    Receive = 1,
    Click,
    KeyDown,
    KeyPress,
    KeyUp,
    Send,
    CTSChanged,
    DSRChanged,
    CarrierChanged,
    Ring,
    AbortFileTransfer,
    FinishFileTransfer,
    WaitForFile,
    PrepareFile,
    StartFile,
    AbortFile,
    FinishFile,
    TransferBlock,
    OnComm,
    Command,
    DblClick,
    Hide,
    Paint,
    Show,
    MouseMove,
    MouseDown,
    MouseUp,
    NewConnection,
    LookUp,
};

// An argument that the sinks may change.
inline VARIANT ByReference(short& value) {
    VARIANT argument;
    V_VT(&argument) = VT_I2 | VT_BYREF;
    V_I2REF(&argument) = &value;
    return argument;
}

inline VARIANT ByReference(float& value) {
    VARIANT argument;
    V_VT(&argument) = VT_R4 | VT_BYREF;
    V_R4REF(&argument) = &value;
    return argument;
}

} // namespace events
