// Calls a computer by modem, logs in and fetches a file, by the flat functions alone.
//
//     dial [OPTION ...] NUMBER COMMAND FILE        such as: dial 5551002 "sz letter.txt" letter.txt
//
//     --port COM11           --settings 115200,n,8,1
//     --init "COMMAND"       sets the modem up
//     --user NAME            --password WORD          what the far end asks for
//     --prompt "$ "          how it tells that it waits for a command
//     --capture FILE         what the line says is added to this file
//
// COMMAND has the far end send one file by ZModem, which becomes FILE here. Ends with 0 if the file is whole
// and the line is down again, with 1 otherwise.
#include "TarnComm.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

// ---- Command line ----

struct Options {
    std::string port = "COM11";
    std::string settings = "115200,n,8,1";
    std::string init = "ATX4E1V1S7=60&C1";
    std::string user = "guest";
    std::string password = "guest";
    std::string prompt = "$ ";
    std::string capture;
    std::string number;
    std::string command;
    std::string file;
    bool understood = false;
};

using Field = std::string Options::*;

const std::map<std::string, Field> named = {
    {"--port", &Options::port},       {"--settings", &Options::settings}, {"--init", &Options::init},
    {"--user", &Options::user},       {"--password", &Options::password}, {"--prompt", &Options::prompt},
    {"--capture", &Options::capture},
};

const std::vector<Field> placed = {&Options::number, &Options::command, &Options::file};

Options ReadOptions(int count, char** words) {
    Options options;
    size_t place = 0;
    for (int i = 1; i < count; ++i) {
        const auto option = named.find(words[i]);
        if (option != named.end() && i + 1 < count)
            options.*option->second = words[++i];
        else if (place < placed.size())
            options.*placed[place++] = words[i];
        else
            return options;
    }
    options.understood = place == placed.size();
    return options;
}

// ---- Words ----

void Send(HWND line, const std::string& text) {
    Output(line, text.data(), static_cast<int>(text.size()));
}

constexpr LONG farEndLimit = 15000; // ms

// Reads until the text comes. The words that end all hope are looked for too.
bool Await(HWND line, const std::string& text) {
    using namespace std::string_literals;
    SetLookUpTimeOut(line, farEndLimit);
    const std::string list = text + "\0NO CARRIER\0incorrect\0"s;
    if (DiscardUntilLookUp(line, list.c_str()) == 0)
        return true;
    std::printf("The far end didn't say \"%s\".\n", text.c_str());
    return false;
}

// The rest of the present line, or of what comes of it in time.
std::string ReadLine(HWND line) {
    constexpr LONG limit = 2000; // ms
    char text[128];
    SetInputTimeOut(line, limit);
    text[GetLineInput(line, text, static_cast<int>(sizeof text) - 1)] = '\0';
    return text;
}

// ---- The call ----

bool Open(HWND line, const Options& options) {
    SetCommPort(line, options.port.c_str());
    char error[TARN_ERROR_TEXT_SIZE] = "the settings can't be read";
    if (SetSettings(line, options.settings.c_str()) == 0 && SetPortOpen(line, 1, error))
        return true;
    std::printf("%s: %s\n", options.port.c_str(), error);
    return false;
}

// The terminal shows what is read, and the capture keeps what the terminal is shown.
bool Capture(HWND line, const Options& options) {
    if (options.capture.empty())
        return true;
    SetEmulation(line, TARN_EMULATION_TTY);
    SetInputEcho(line, 1);
    SetCaptureMode(line, TARN_CAPTURE_STANDARD);
    if (SetCaptureFilename(line, options.capture.c_str()))
        return true;
    std::printf("%s can't be written.\n", options.capture.c_str());
    return false;
}

bool SetUpModem(HWND line, const Options& options) {
    const std::string modem =
        "Hayes Compatible\t" + options.init + "^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400";
    SetModemOptions(line, modem.c_str());
    if (!InitModem(line)) {
        std::printf("The modem at %s didn't say OK.\n", options.port.c_str());
        return false;
    }
    ReadLine(line);
    std::printf("The modem at %s is set up by %s.\n", options.port.c_str(), options.init.c_str());
    return true;
}

struct DialResult {
    int code;
    const char* words;
};

constexpr DialResult dialResults[] = {
    {TARN_DIAL_CONNECTED, "connected"}, {TARN_DIAL_NO_CARRIER, "no carrier"},
    {TARN_DIAL_BUSY, "busy"},           {TARN_DIAL_NO_DIAL_TONE, "no dial tone"},
    {TARN_DIAL_CANCELLED, "cancelled"}, {TARN_DIAL_TIMED_OUT, "no answer of the modem in time"},
};

const char* WordsOf(int code) {
    for (const DialResult& row : dialResults)
        if (row.code == code)
            return row.words;
    return "?";
}

bool Call(HWND line, const Options& options) {
    std::printf("Dialing %s: ", options.number.c_str());
    const int result = Dial(line, options.number.c_str());
    std::printf("%s", WordsOf(result));
    if (result != TARN_DIAL_CONNECTED) {
        std::printf(".\n");
        return false;
    }
    const std::string speed = ReadLine(line); // it stands behind "CONNECT"
    std::printf("%s; carrier %s.\n", speed.c_str(), GetCarrier(line) ? "on" : "off");
    return true;
}

struct Question {
    const char* text;
    Field answer;
};

constexpr Question questions[] = {
    {"login:", &Options::user},
    {"Password:", &Options::password},
};

bool LogIn(HWND line, const Options& options) {
    for (const Question& question : questions) {
        if (!Await(line, question.text))
            return false;
        Send(line, options.*question.answer + "\r");
    }
    if (!Await(line, options.prompt))
        return false;
    std::printf("Logged in as %s.\n", options.user.c_str());
    return true;
}

// ---- The file ----

// What the handler needs to know: it is given nothing but the object.
struct Transfer {
    std::string file;
    bool begun = false;
    bool whole = false;
    LONG bytes = 0;
    int end = TARN_TRANSFER_FAILURE;
};
Transfer transfer;

// The name that the far end offers is its affair: the file gets the one of the command line, and there is
// room for one file only. What follows the transfer is for Await again.
void BeginFile(HWND line) {
    if (transfer.begun) {
        AbortTransfer(line);
        return;
    }
    transfer.begun = true;
    SetDestFilename(line, transfer.file.c_str());
    SetAutoProcess(line, TARN_PROCESS_NONE);
}

// Runs on the object's own thread, while the transfer waits.
void CALLBACK OnEvent(HWND line, int, int code) {
    if (code != TARN_EVENT_TRANSFER)
        return;
    const int status = GetTransferStatus(line);
    if (status == TARN_TRANSFER_PREPARE) {
        BeginFile(line);
    } else if (status == TARN_TRANSFER_END_OF_FILE) {
        transfer.whole = true;
        transfer.bytes = GetTransferBytesTransferred(line);
    } else if (status <= TARN_TRANSFER_SUCCESS) {
        transfer.end = status;
    }
}

// The object starts to receive when its input tells that a ZModem sender begins.
bool WaitForSender(HWND line) {
    constexpr LONG look = 50; // ms
    for (const ULONGLONG end = GetTickCount64() + farEndLimit; GetTickCount64() < end; ComPause(line, look))
        if (transfer.begun || GetTransferType(line))
            return true;
    std::printf("The far end sent no file.\n");
    return false;
}

bool Fetch(HWND line, const Options& options) {
    transfer.file = options.file;
    SetEventHandler(line, OnEvent);
    SetProtocol(line, TARN_PROTOCOL_ZMODEM);
    SetAutoZModem(line, 1);
    SetAutoProcess(line, TARN_PROCESS_SERIAL);
    const ULONGLONG start = GetTickCount64();
    Send(line, options.command + "\r");
    if (!WaitForSender(line))
        return false;
    WaitUntilTransferIsFinished(line);
    const bool success = transfer.whole && transfer.end == TARN_TRANSFER_SUCCESS;
    std::printf("%s: %ld bytes in %.1f seconds, %s.\n", options.file.c_str(), transfer.bytes,
                static_cast<double>(GetTickCount64() - start) / 1000, success ? "whole" : "but it failed");
    return success && Await(line, options.prompt);
}

// ---- The end ----

// Some modems tell the end of a call; those that were told to end it say nothing more.
bool ModemTellsTheEnd(HWND line) {
    constexpr LONG limit = 2000; // ms
    SetLookUpTimeOut(line, limit);
    return DiscardUntilLookUp(line, "NO CARRIER\0") == 0;
}

bool Leave(HWND line) {
    const bool down = HangUp(line);
    const char* word = ModemTellsTheEnd(line) ? "; the modem says NO CARRIER" : "";
    std::printf("Hung up: carrier %s%s.\n", GetCarrier(line) ? "still on" : "gone", word);
    return down && !GetCarrier(line);
}

bool Run(HWND line, const Options& options) {
    if (!Open(line, options) || !Capture(line, options) || !SetUpModem(line, options) || !Call(line, options))
        return false;
    const bool done = LogIn(line, options) && Fetch(line, options);
    return Leave(line) && done;
}

} // namespace

int main(int count, char** words) {
    const Options options = ReadOptions(count, words);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (!options.understood) {
        std::printf("dial [OPTION ...] NUMBER COMMAND FILE\n");
        return 1;
    }
    const HWND line = CreateCommObject(nullptr);
    const bool done = Run(line, options);
    SetPortOpen(line, 0, nullptr);
    DestroyCommObject(line);
    return done ? 0 : 1;
}
