// The other end of the cable, by plain platform calls.
#pragma once

#include <windows.h>

#include <string>

namespace host {

class FarEnd {
  public:
    explicit FarEnd(const char* port = "COM6") {
        device_ = CreateFileA((std::string("\\\\.\\") + port).c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                              nullptr, OPEN_EXISTING, 0, nullptr);
        DCB block = {};
        block.DCBlength = sizeof block;
        GetCommState(device_, &block);
        block.BaudRate = 115200;
        block.ByteSize = 8;
        block.Parity = NOPARITY;
        block.fBinary = TRUE;
        block.fInX = FALSE;
        block.fOutX = FALSE;
        SetCommState(device_, &block);
        COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 0, 0};
        SetCommTimeouts(device_, &timeouts);
    }
    ~FarEnd() { Close(); }
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    bool IsOpen() const { return device_ != INVALID_HANDLE_VALUE; }
    HANDLE Handle() const { return device_; }
    void Close() {
        if (IsOpen())
            CloseHandle(device_);
        device_ = INVALID_HANDLE_VALUE;
    }

    bool Send(const std::string& bytes) {
        DWORD written = 0;
        return WriteFile(device_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
               written == bytes.size();
    }

    // What is there now.
    std::string Read() {
        std::string bytes(65536, '\0');
        DWORD count = 0;
        ReadFile(device_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
        bytes.resize(count);
        return bytes;
    }

    // Reads until so many bytes are in or the limit has passed.
    std::string Read(size_t wanted, DWORD limitMilliseconds = 5000) {
        std::string bytes;
        const DWORD start = GetTickCount();
        while (bytes.size() < wanted && GetTickCount() - start < limitMilliseconds) {
            const std::string piece = Read();
            bytes += piece;
            if (piece.empty())
                Sleep(1);
        }
        return bytes;
    }

  private:
    HANDLE device_ = INVALID_HANDLE_VALUE;
};

} // namespace host
