// The platform's serial calls of the test program, at link time: the program calls them through the import
// pointers below, which the linker takes in place of those of the import library. Calls for other handles
// than the scripted device's go on to the platform. Nothing here may need a constructor: the first calls come
// from the run-time's own start-up.
#include "scripteddevice.h"

#include "support/importdouble.h"

using host::ScriptedDevice;

namespace {

// The device behind one of its handles. Null with the error set: the test has let it go.
ScriptedDevice* Device() {
    ScriptedDevice* device = ScriptedDevice::Present();
    if (!device)
        SetLastError(ERROR_INVALID_HANDLE);
    return device;
}

bool IsScriptedPath(const char* path) {
    return ScriptedDevice::Present() && path && !lstrcmpiA(path, "\\\\.\\SCRIPTED");
}

} // namespace

#define PLATFORM(Name) host::Platform<decltype(&::Name)>("kernel32.dll", #Name)
#define PASS_ON_UNLESS_SCRIPTED(handle, Name, ...)                                                           \
    if (!ScriptedDevice::Owns(handle))                                                                       \
        return PLATFORM(Name)(__VA_ARGS__);                                                                  \
    ScriptedDevice* device = Device();                                                                       \
    if (!device)                                                                                             \
        return FALSE;

namespace {

HANDLE WINAPI DoubleCreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                DWORD creation, DWORD flags, HANDLE like) {
    if (IsScriptedPath(path))
        return Device()->Open(access, share, creation, flags);
    return PLATFORM(CreateFileA)(path, access, share, security, creation, flags, like);
}

HANDLE WINAPI DoubleCreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL signalled, LPCSTR name) {
    if (!ScriptedDevice::EventFails(manual, name))
        return PLATFORM(CreateEventA)(security, manual, signalled, name);
    SetLastError(ERROR_NO_SYSTEM_RESOURCES);
    return nullptr;
}

DWORD WINAPI DoubleFormatMessageA(DWORD flags, LPCVOID source, DWORD message, DWORD language, LPSTR buffer,
                                  DWORD size, va_list* inserts) {
    const DWORD length = ScriptedDevice::SystemTextLength();
    if (!length || !(flags & FORMAT_MESSAGE_FROM_SYSTEM) || length >= size)
        return PLATFORM(FormatMessageA)(flags, source, message, language, buffer, size, inserts);
    FillMemory(buffer, length, 'x');
    buffer[length] = '\0';
    return length;
}

BOOL WINAPI DoubleCloseHandle(HANDLE handle) {
    PASS_ON_UNLESS_SCRIPTED(handle, CloseHandle, handle)
    return device->Close(handle);
}

BOOL WINAPI DoubleReadFile(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED state) {
    PASS_ON_UNLESS_SCRIPTED(handle, ReadFile, handle, buffer, size, count, state)
    return device->Read(handle, buffer, size, count, state);
}

BOOL WINAPI DoubleWriteFile(HANDLE handle, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED state) {
    PASS_ON_UNLESS_SCRIPTED(handle, WriteFile, handle, bytes, size, count, state)
    return device->Write(handle, bytes, size, count, state);
}

BOOL WINAPI DoubleGetOverlappedResult(HANDLE handle, LPOVERLAPPED state, LPDWORD count, BOOL wait) {
    PASS_ON_UNLESS_SCRIPTED(handle, GetOverlappedResult, handle, state, count, wait)
    return device->Result(handle, state, count, wait);
}

BOOL WINAPI DoubleCancelIoEx(HANDLE handle, LPOVERLAPPED state) {
    PASS_ON_UNLESS_SCRIPTED(handle, CancelIoEx, handle, state)
    return device->Cancel(handle, state);
}

BOOL WINAPI DoubleSetupComm(HANDLE handle, DWORD in, DWORD out) {
    PASS_ON_UNLESS_SCRIPTED(handle, SetupComm, handle, in, out)
    return device->SetUp(handle, in, out);
}

BOOL WINAPI DoubleSetCommTimeouts(HANDLE handle, LPCOMMTIMEOUTS timeouts) {
    PASS_ON_UNLESS_SCRIPTED(handle, SetCommTimeouts, handle, timeouts)
    return device->TakeTimeouts(handle, *timeouts);
}

BOOL WINAPI DoubleGetCommState(HANDLE handle, LPDCB state) {
    PASS_ON_UNLESS_SCRIPTED(handle, GetCommState, handle, state)
    return device->GiveState(handle, *state);
}

BOOL WINAPI DoubleSetCommState(HANDLE handle, LPDCB state) {
    PASS_ON_UNLESS_SCRIPTED(handle, SetCommState, handle, state)
    return device->TakeState(handle, *state);
}

BOOL WINAPI DoubleSetCommMask(HANDLE handle, DWORD mask) {
    PASS_ON_UNLESS_SCRIPTED(handle, SetCommMask, handle, mask)
    return device->TakeMask(handle, mask);
}

BOOL WINAPI DoubleGetCommMask(HANDLE handle, LPDWORD mask) {
    PASS_ON_UNLESS_SCRIPTED(handle, GetCommMask, handle, mask)
    return device->GiveMask(handle, *mask);
}

BOOL WINAPI DoubleWaitCommEvent(HANDLE handle, LPDWORD mask, LPOVERLAPPED state) {
    PASS_ON_UNLESS_SCRIPTED(handle, WaitCommEvent, handle, mask, state)
    return device->Wait(handle, mask, state);
}

BOOL WINAPI DoubleGetCommModemStatus(HANDLE handle, LPDWORD status) {
    PASS_ON_UNLESS_SCRIPTED(handle, GetCommModemStatus, handle, status)
    return device->GiveModemStatus(handle, *status);
}

BOOL WINAPI DoubleEscapeCommFunction(HANDLE handle, DWORD function) {
    if (ScriptedDevice* orphaned = ScriptedDevice::Present(); orphaned && !ScriptedDevice::Owns(handle))
        orphaned->RecordOrphan("EscapeCommFunction", function);
    PASS_ON_UNLESS_SCRIPTED(handle, EscapeCommFunction, handle, function)
    return device->Escape(handle, function);
}

BOOL WINAPI DoubleSetCommBreak(HANDLE handle) {
    PASS_ON_UNLESS_SCRIPTED(handle, SetCommBreak, handle)
    return device->Break(handle, true);
}

BOOL WINAPI DoubleClearCommBreak(HANDLE handle) {
    PASS_ON_UNLESS_SCRIPTED(handle, ClearCommBreak, handle)
    return device->Break(handle, false);
}

BOOL WINAPI DoublePurgeComm(HANDLE handle, DWORD flags) {
    PASS_ON_UNLESS_SCRIPTED(handle, PurgeComm, handle, flags)
    return device->Purge(handle, flags);
}

BOOL WINAPI DoubleClearCommError(HANDLE handle, LPDWORD errors, LPCOMSTAT status) {
    PASS_ON_UNLESS_SCRIPTED(handle, ClearCommError, handle, errors, status)
    return device->Status(handle, errors, status);
}

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(CreateFileA, 28)
TARN_IMPORT_DOUBLE(CreateEventA, 16)
TARN_IMPORT_DOUBLE(CloseHandle, 4)
TARN_IMPORT_DOUBLE(FormatMessageA, 28)
TARN_IMPORT_DOUBLE(ReadFile, 20)
TARN_IMPORT_DOUBLE(WriteFile, 20)
TARN_IMPORT_DOUBLE(GetOverlappedResult, 16)
TARN_IMPORT_DOUBLE(CancelIoEx, 8)
TARN_IMPORT_DOUBLE(SetupComm, 12)
TARN_IMPORT_DOUBLE(SetCommTimeouts, 8)
TARN_IMPORT_DOUBLE(GetCommState, 8)
TARN_IMPORT_DOUBLE(SetCommState, 8)
TARN_IMPORT_DOUBLE(SetCommMask, 8)
TARN_IMPORT_DOUBLE(GetCommMask, 8)
TARN_IMPORT_DOUBLE(WaitCommEvent, 12)
TARN_IMPORT_DOUBLE(GetCommModemStatus, 8)
TARN_IMPORT_DOUBLE(EscapeCommFunction, 8)
TARN_IMPORT_DOUBLE(SetCommBreak, 4)
TARN_IMPORT_DOUBLE(ClearCommBreak, 4)
TARN_IMPORT_DOUBLE(PurgeComm, 8)
TARN_IMPORT_DOUBLE(ClearCommError, 12)
}
