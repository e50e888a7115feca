// A session with a shell at the other end of a serial line, by the flat functions alone.
//
//     session [--port COM5] [--settings 115200,n,8,1] [--prompt "$ "] [--log] [COMMAND ...]
//
// Waits for the prompt, sends each command, shows what comes back and which events the line raised. With
// --log it prints at its end what WireTap wrote about the last command.
#include "TarnComm.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr LONG promptTimeOut = 10000; // ms
constexpr LONG lineTimeOut = 1000;    // ms
constexpr LONG settlingTime = 300;    // ms

struct Options {
    std::string port = "COM5";
    std::string settings = "115200,n,8,1";
    std::string prompt = "$ ";
    bool log = false;
    std::vector<std::string> commands;
};

struct EventName {
    int code;
    const char* name;
};

constexpr EventName eventNames[] = {
    {TARN_EVENT_SEND, "Send"},       {TARN_EVENT_RECEIVE, "Receive"}, {TARN_EVENT_CTS, "CTS changed"},
    {TARN_EVENT_DSR, "DSR changed"}, {TARN_EVENT_RING, "Ring"},       {TARN_EVENT_CARRIER, "Carrier changed"},
    {TARN_EVENT_LOOKUP, "Look-up"},  {TARN_ERROR_BREAK, "Break"},     {TARN_ERROR_FRAME, "Framing error"},
    {TARN_ERROR_OVERRUN, "Overrun"},
};

const char* NameOf(int code) {
    for (const EventName& row : eventNames)
        if (row.code == code)
            return row.name;
    return "event";
}

// Runs inside the calls below, whenever the line has something to tell. Receive comes again and again while
// bytes wait; it is shown when their number changes.
void CALLBACK OnEvent(HWND line, int, int code) {
    static int lastCode = 0;
    static int lastWaiting = -1;
    const int waiting = GetInBufferCount(line);
    if (code == lastCode && waiting == lastWaiting)
        return;
    lastCode = code;
    lastWaiting = waiting;
    std::printf("   [%s, %d bytes wait]\n", NameOf(code), waiting);
}

// A list for InputUntilLookUp: strings with their NUL, an empty one at the end.
std::string LookUpList(const std::string& text) {
    return text + std::string(2, '\0');
}

void Send(HWND line, const std::string& text) {
    Output(line, text.data(), static_cast<int>(text.size()));
    FlushOutputBuffer(line, lineTimeOut);
}

bool WaitForPrompt(HWND line, const Options& options) {
    SetLookUpTimeOut(line, promptTimeOut);
    return DiscardUntilLookUp(line, LookUpList(options.prompt).c_str()) >= 0;
}

// Reads lines until the one that begins with the prompt, which has no line end.
void ShowLines(HWND line, const Options& options) {
    char text[512];
    SetInputTimeOut(line, lineTimeOut);
    for (;;) {
        const int length = GetLineInput(line, text, static_cast<int>(sizeof text) - 1);
        text[length] = '\0';
        if (options.prompt == text || (!length && !GetInBufferCount(line)))
            return;
        std::printf("  %s\n", text);
    }
}

// Sends a command and reads all that comes back in blocks, so that the log shows blocks.
void ShowLogged(HWND line, const std::string& command) {
    char bytes[512];
    SetWireTapInput(line, 1);
    SetWireTapOutput(line, 1);
    Send(line, command + "\r");
    while (WaitForInput(line, lineTimeOut)) {
        const int count = GetInput(line, bytes, static_cast<int>(sizeof bytes));
        std::fwrite(bytes, 1, static_cast<size_t>(count), stdout);
    }
    SetWireTapInput(line, 0);
    SetWireTapOutput(line, 0);
    std::printf("\n");
}

void PrintLog() {
    char path[MAX_PATH];
    GetWindowsDirectoryA(path, MAX_PATH);
    const std::string name = std::string(path) + "\\wiretap.txt";
    std::printf("\n%s, its lines about the line:\n", name.c_str());
    FILE* file = std::fopen(name.c_str(), "rb");
    if (!file)
        return;
    char text[256];
    bool data = false;
    while (std::fgets(text, sizeof text, file)) {
        const bool continued = data && std::strncmp(text, "          ", 10) == 0;
        data = continued || std::strstr(text, " reads ") || std::strstr(text, " writes ");
        if (data)
            std::printf("  %s", text);
    }
    std::fclose(file);
}

Options ReadOptions(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const bool hasValue = i + 1 < count;
        if (word == "--log")
            options.log = true;
        else if (word == "--port" && hasValue)
            options.port = words[++i];
        else if (word == "--settings" && hasValue)
            options.settings = words[++i];
        else if (word == "--prompt" && hasValue)
            options.prompt = words[++i];
        else
            options.commands.push_back(word);
    }
    return options;
}

} // namespace

int main(int count, char** words) {
    const Options options = ReadOptions(count, words);
    std::setvbuf(stdout, nullptr, _IONBF, 0);

    const HWND line = CreateCommObject(nullptr);
    SetEventHandler(line, OnEvent);
    SetRThreshold(line, 1);
    SetCommPort(line, options.port.c_str());
    if (SetSettings(line, options.settings.c_str()) != 0) {
        std::printf("Settings \"%s\" can't be read.\n", options.settings.c_str());
        return 1;
    }
    char error[TARN_ERROR_TEXT_SIZE];
    if (!SetPortOpen(line, 1, error)) {
        std::printf("%s: %s\n", options.port.c_str(), error);
        return 1;
    }
    char settings[TARN_SETTINGS_TEXT_SIZE];
    GetSettings(line, settings);
    std::printf("%s is open (%s); carrier %s.\n", options.port.c_str(), settings,
                GetCarrier(line) ? "on" : "off");

    ComPause(line, settlingTime); // greetings of the line and of the far end
    ClearInputBuffer(line);
    Send(line, "\r");
    if (!WaitForPrompt(line, options)) {
        std::printf("No prompt \"%s\" came in %ld seconds.\n", options.prompt.c_str(), promptTimeOut / 1000);
        DestroyCommObject(line);
        return 1;
    }
    std::printf("The prompt is there.\n");

    for (const std::string& command : options.commands) {
        std::printf("\n> %s\n", command.c_str());
        Send(line, command + "\r");
        ShowLines(line, options);
    }
    if (options.log) {
        std::printf("\nOnce more with the log on:\n");
        ShowLogged(line, "echo logged");
    }
    SetPortOpen(line, 0, nullptr);
    DestroyCommObject(line);
    if (options.log)
        PrintLog();
    return 0;
}
