// The transfer benchmark's program that uses the module: moves one file to or from another program.
#include "frame.h"
#include "TarnComm.h"

#include <windows.h>

#include <cstdio>
#include <stdexcept>

namespace {

const char fileName[] = "data.txt"; // in the current folder, in both directions

enum Argument : size_t { Port, Protocol, Baud, ArgumentCount };

// Of the whole process, all its threads; in ms.
double ProcessorTime() {
    FILETIME created, ended, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user))
        throw std::runtime_error("no process times");
    const auto milliseconds = [](const FILETIME& time) {
        constexpr double unit = 1e-4; // 100 ns
        return unit * (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime);
    };
    return milliseconds(kernel) + milliseconds(user);
}

// What the handler fills in: it is given nothing but the object.
struct Course {
    double spent = 0; // processor time in ms, from the first block to the end of the file
    LONG bytes = 0;
    bool begun = false;
    int end = TARN_TRANSFER_WAIT_FOR_FILE;
};
Course course;

void CALLBACK FollowTransfer(HWND line, int, int code) {
    if (code != TARN_EVENT_TRANSFER)
        return;
    const int status = GetTransferStatus(line);
    if (status == TARN_TRANSFER_TRANSFERING && !course.begun) {
        course.begun = true;
        course.spent = ProcessorTime();
    } else if (status == TARN_TRANSFER_END_OF_FILE) {
        course.bytes = GetTransferBytesTransferred(line);
        course.spent = ProcessorTime() - course.spent;
    } else if (status <= TARN_TRANSFER_SUCCESS) {
        course.end = status;
    }
}

class Line {
  public:
    explicit Line(const Numbers& numbers) : object_(CreateCommObject(nullptr)) {
        const std::string port = PortName(numbers[Port]);
        SetCommPort(object_, port.c_str());
        SetSettings(object_, (std::to_string(numbers[Baud]) + ",n,8,1").c_str());
        SetProtocol(object_, static_cast<int>(numbers[Protocol]));
        SetEventHandler(object_, FollowTransfer);
        char error[TARN_ERROR_TEXT_SIZE];
        if (!SetPortOpen(object_, 1, error))
            throw std::runtime_error(port + ": " + error);
    }
    ~Line() { DestroyCommObject(object_); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    operator HWND() const { return object_; }

  private:
    HWND object_;
};

int Report() {
    if (course.end != TARN_TRANSFER_SUCCESS)
        throw std::runtime_error("the transfer failed");
    std::printf("processor_ms %.1f bytes %ld\n", course.spent, course.bytes);
    return 0;
}

// Begins when the script says so: what a start costs is not to be counted.
int Move(const Numbers& numbers, int(TARNAPI* begin)(HWND, const char*)) {
    const Line line(numbers);
    PrintReady();
    std::getchar();
    if (!begin(line, fileName))
        throw std::runtime_error("the transfer can't begin");
    WaitUntilTransferIsFinished(line);
    return Report();
}

int Send(const Numbers& numbers) {
    return Move(numbers, Upload);
}

int Receive(const Numbers& numbers) {
    return Move(numbers, Download);
}

const BenchCommands commands = {
    {"send", ArgumentCount, Send, "PROTOCOL BAUD"},
    {"receive", ArgumentCount, Receive, "PROTOCOL BAUD"},
};

} // namespace

int main(int argc, char** argv) {
    return RunBench(argc, argv, commands);
}
