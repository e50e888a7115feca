// The benchmarks' program that uses the module.
#include "frame.h"
#include "measure.h"
#include "TarnComm.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

class Line {
  public:
    explicit Line(const std::string& port) : object_(CreateCommObject(nullptr)) {
        char error[TARN_ERROR_TEXT_SIZE];
        SetCommPort(object_, port.c_str());
        if (!SetPortOpen(object_, 1, error))
            throw std::runtime_error(port + ": " + error);
        ClearInputBuffer(object_);
    }
    ~Line() { DestroyCommObject(object_); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    operator HWND() const { return object_; }

    void OnReceive(TarnEventHandler handler) {
        SetEventHandler(object_, handler);
        SetRThreshold(object_, 1);
    }

  private:
    HWND object_;
};

void RunMessages() {
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0)
        DispatchMessageA(&message);
}

void AskForInput(HWND line) {
    Output(line, &startByte, 1);
}

int Out(const Numbers& numbers) {
    const Line line(PortName(numbers[0]));
    const auto block = CountingBlock(numbers[1]);
    const int size = static_cast<int>(block.size());
    char start = 0;
    PrintReady();
    if (!WaitForInput(line, standstill) || !GetInput(line, &start, 1))
        throw std::runtime_error("nobody at the far end");
    for (long long left = numbers[2]; left > 0;) {
        if (Output(line, block.data(), size))
            left -= size;
        else if (!FlushOutputBuffer(line, standstill))
            throw std::runtime_error("the line stands still");
    }
    // A close throws away what waits in the device, so the far end tells that it has all.
    return WaitForInput(line, standstill) ? 0 : 1;
}

int In(const Numbers& numbers) {
    const Line line(PortName(numbers[0]));
    auto block = CountingBlock(numbers[1]);
    InputMeter meter(numbers[2]);
    AskForInput(line);
    while (!meter.Done() && WaitForInput(line, standstill))
        meter.Take(block.data(), GetInput(line, block.data(), static_cast<int>(block.size())));
    return meter.Report();
}

// What the handler of the bulk input works on: it gets nothing but the object.
struct EventInput {
    InputMeter meter;
    std::vector<char> block;
};
std::unique_ptr<EventInput> eventInput;

void CALLBACK TakeInput(HWND line, int, int code) {
    if (code != TARN_EVENT_RECEIVE)
        return;
    auto& [meter, block] = *eventInput;
    while (const int count = GetInput(line, block.data(), static_cast<int>(block.size())))
        meter.Take(block.data(), count);
    if (meter.Done())
        PostQuitMessage(0);
}

int Event(const Numbers& numbers) {
    Line line(PortName(numbers[0]));
    eventInput.reset(new EventInput{InputMeter(numbers[2]), CountingBlock(numbers[1])});
    line.OnReceive(TakeInput);
    AskForInput(line);
    RunMessages();
    return eventInput->meter.Report();
}

void CALLBACK EchoInput(HWND line, int, int code) {
    if (code != TARN_EVENT_RECEIVE)
        return;
    char bytes[64];
    const int count = GetInput(line, bytes, sizeof bytes);
    if (std::memchr(bytes, quitByte, static_cast<size_t>(count)))
        PostQuitMessage(0);
    else
        Output(line, bytes, count);
}

int Hold(const Numbers& numbers) {
    std::vector<std::unique_ptr<Line>> lines;
    for (int i = 0; i < numbers[1]; ++i) {
        lines.push_back(std::make_unique<Line>(PortName(numbers[0], i)));
        lines.back()->OnReceive(EchoInput);
    }
    PrintReady();
    RunMessages();
    return 0;
}

int leftUnread = 0;

void CALLBACK LeaveInput(HWND line, int, int code) {
    if (code == TARN_EVENT_RECEIVE && GetInBufferCount(line) > leftUnread)
        PostQuitMessage(0);
}

int Unread(const Numbers& numbers) {
    Line line(PortName(numbers[0]));
    leftUnread = static_cast<int>(numbers[1]);
    line.OnReceive(LeaveInput);
    PrintReady();
    RunMessages();
    return 0;
}

int Objects(const Numbers& numbers) {
    std::vector<HWND> objects;
    for (long long i = 0; i < numbers[1]; ++i)
        objects.push_back(CreateCommObject(nullptr));
    PrintReady();
    AwaitEndOfInput();
    int failed = 0;
    for (HWND object : objects)
        failed += !DestroyCommObject(object);
    return failed ? 1 : 0;
}

const BenchCommands commands = {
    {"out", 3, Out, "BLOCK BYTES"},   {"in", 3, In, "BLOCK BYTES"},   {"event", 3, Event, "BLOCK BYTES"},
    {"hold", 2, Hold, "COUNT_PORTS"}, {"unread", 2, Unread, "BYTES"}, {"objects", 2, Objects, "COUNT"},
};

} // namespace

int main(int argc, char** argv) {
    return RunBench(argc, argv, commands);
}
