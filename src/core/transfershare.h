// What a comm object and the worker of its transfer both read and write. It is the one part of the record
// that is not the window's thread's alone: numbers are atomic, names and the queue are touched under
// TransferLock() only, and never kept locked over a call that may run the host.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>
#include <vector>

inline constexpr int FilenameSize = 513; // transfer names and status, with their NUL
inline constexpr int XferPathSize = 256; // transfer folder, with its NUL

// One lock for the whole process: it is held for a copy of a name, and by two threads at the most.
std::mutex& TransferLock();

// What the worker asks its object's window to do; the window takes nothing but what stands here.
struct WindowRequest {
    int nCode;
    LPARAM lParam;
    mutable std::atomic<bool> bTaken{false}; // the window has it: the record no longer knows of it
};

struct TransferShare {
    std::atomic<LONG> lTransferFileSize{0}; // bytes
    std::atomic<LONG> lBytesTransferred{0}; // bytes
    std::atomic<int> cFiles{0};             // names in the queue
    std::vector<char> lpFileList;           // guarded: NUL-terminated names one after the other
    std::atomic<int> nTransferType{0};      // 0 none, 1 upload, 2 download
    std::atomic<int> nProtocol{0};
    std::atomic<int> nTransferDialogType{0};
    std::atomic<int> nTransferStatus{0};
    std::atomic<int> bAbortTransfer{0};
    std::atomic<HWND> hDialogParent{nullptr};
    std::atomic<int> bWireTapOutput{0};
    std::atomic<int> bWireTapTransfer{0};
    std::atomic<int> nResumeMethod{0};        // 0 never, 1 always
    char szSourceFilename[FilenameSize] = {}; // guarded
    char szDestFilename[FilenameSize] = {};   // guarded
    char szTransferStatus[FilenameSize] = {}; // guarded
    char szXferPath[XferPathSize] = {};       // guarded
    bool bFileListEnded = false; // guarded: the upload has found its queue empty and takes no more
    std::atomic<const WindowRequest*> lpWindowRequest{nullptr}; // while the worker waits for it
    std::atomic<HWND> hTransferDialog{nullptr};                 // made and destroyed by the window's thread

    // Read from the line and not used by the transfer: the terminal's next input.
    std::mutex ReturnedLock;
    std::vector<char> ReturnedInput; // guarded by ReturnedLock
    std::atomic<int> cbReturnedInput{0};

    // Held by the worker during each call on the device, and by whoever takes the device away. The system
    // uses the values of handles again, so the device is told by its number.
    std::timed_mutex DeviceLock;
    int nDevice = 0; // guarded by DeviceLock: counts the devices that the object has had
};
