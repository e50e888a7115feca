// The benchmarks' program that does the same with plain calls.
#include "frame.h"
#include "measure.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

class BarePort {
  public:
    explicit BarePort(const std::string& port)
        : device_(CreateFileA(("\\\\.\\" + port).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr)) {
        if (device_ == INVALID_HANDLE_VALUE)
            throw std::runtime_error(port + " does not open");
        for (OVERLAPPED* call : {&read_, &write_, &wait_})
            call->hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        DCB state = {};
        state.DCBlength = sizeof state;
        GetCommState(device_, &state);
        state.fBinary = TRUE;
        state.BaudRate = CBR_9600;
        state.ByteSize = 8;
        state.Parity = NOPARITY;
        state.StopBits = ONESTOPBIT;
        state.fOutX = state.fInX = FALSE;
        COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 0, 0};
        if (!SetCommState(device_, &state) || !SetCommTimeouts(device_, &timeouts) ||
            !SetCommMask(device_, EV_RXCHAR))
            throw std::runtime_error(port + " is no serial port");
        PurgeComm(device_, PURGE_RXCLEAR);
    }
    ~BarePort() {
        CloseHandle(device_);
        for (OVERLAPPED* call : {&read_, &write_, &wait_})
            CloseHandle(call->hEvent);
    }
    BarePort(const BarePort&) = delete;
    BarePort& operator=(const BarePort&) = delete;

    void WaitForCharacter() {
        mask_ = 0;
        if (!WaitCommEvent(device_, &mask_, &wait_))
            Finish(wait_);
    }

    DWORD Count() {
        DWORD errors = 0;
        COMSTAT status = {};
        ClearCommError(device_, &errors, &status);
        return status.cbInQue;
    }

    // What is there, `size` bytes at the most.
    int Read(char* bytes, size_t size) {
        const DWORD wanted = std::min(Count(), static_cast<DWORD>(size));
        DWORD count = 0;
        if (!wanted)
            return 0;
        if (!ReadFile(device_, bytes, wanted, &count, &read_))
            count = Finish(read_);
        return static_cast<int>(count);
    }

    void Write(const char* bytes, size_t size) {
        DWORD count = 0;
        if (!WriteFile(device_, bytes, static_cast<DWORD>(size), &count, &write_))
            count = Finish(write_);
        if (count != size)
            throw std::runtime_error("a write was cut short");
    }

  private:
    DWORD Finish(OVERLAPPED& call) {
        DWORD count = 0;
        if (GetLastError() != ERROR_IO_PENDING)
            throw std::runtime_error("a call failed");
        WaitForSingleObject(call.hEvent, INFINITE);
        if (!GetOverlappedResult(device_, &call, &count, FALSE))
            throw std::runtime_error("a pending call failed");
        return count;
    }

    HANDLE device_;
    OVERLAPPED read_ = {};
    OVERLAPPED write_ = {};
    OVERLAPPED wait_ = {};
    DWORD mask_ = 0;
};

int Out(const Numbers& numbers) {
    BarePort port(PortName(numbers[0]));
    const auto block = CountingBlock(numbers[1]);
    PrintReady();
    char start = 0;
    port.WaitForCharacter();
    port.Read(&start, 1);
    for (long long left = numbers[2]; left > 0; left -= numbers[1])
        port.Write(block.data(), block.size());
    port.WaitForCharacter(); // the far end has all
    return 0;
}

int In(const Numbers& numbers) {
    BarePort port(PortName(numbers[0]));
    auto block = CountingBlock(numbers[1]);
    InputMeter meter(numbers[2]);
    port.Write(&startByte, 1);
    while (!meter.Done()) {
        port.WaitForCharacter();
        meter.Take(block.data(), port.Read(block.data(), block.size()));
    }
    return meter.Report();
}

// Until the far end says that it is enough.
void EchoUntilQuit(BarePort& port) {
    for (;;) {
        char bytes[64];
        port.WaitForCharacter();
        const int count = port.Read(bytes, sizeof bytes);
        if (std::memchr(bytes, quitByte, static_cast<size_t>(count)))
            return;
        if (count)
            port.Write(bytes, static_cast<size_t>(count));
    }
}

// The first port ends the program, so the threads of the others are left to its end.
int Hold(const Numbers& numbers) {
    std::vector<std::unique_ptr<BarePort>> ports;
    std::vector<std::thread> threads;
    for (int i = 0; i < numbers[1]; ++i) {
        ports.push_back(std::make_unique<BarePort>(PortName(numbers[0], i)));
        threads.emplace_back([port = ports.back().get()] { EchoUntilQuit(*port); });
    }
    PrintReady();
    threads.front().join();
    std::fflush(stdout);
    ExitProcess(0);
}

int Unread(const Numbers& numbers) {
    BarePort port(PortName(numbers[0]));
    PrintReady();
    do
        port.WaitForCharacter();
    while (port.Count() <= static_cast<DWORD>(numbers[1]));
    return 0;
}

// The least that an object can be: a window of its own.
int Objects(const Numbers& numbers) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "BareObject";
    RegisterClassA(&windowClass);
    const auto create = [&] {
        return CreateWindowA("BareObject", "", 0, 0, 0, 0, 0, nullptr, nullptr, windowClass.hInstance,
                             nullptr);
    };
    std::vector<HWND> windows;
    for (long long i = 0; i < numbers[1]; ++i)
        windows.push_back(create());
    PrintReady();
    AwaitEndOfInput();
    for (HWND window : windows)
        DestroyWindow(window);
    return 0;
}

const BenchCommands commands = {
    {"out", 3, Out, "BLOCK BYTES"}, {"in", 3, In, "BLOCK BYTES"},     {"hold", 2, Hold, "COUNT_PORTS"},
    {"unread", 2, Unread, "BYTES"}, {"objects", 2, Objects, "COUNT"},
};

} // namespace

int main(int argc, char** argv) {
    return RunBench(argc, argv, commands);
}
