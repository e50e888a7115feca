// Sends and receives files over a serial line, by the flat functions alone.
//
//     transfer [OPTION ...] send FILE ...
//     transfer [OPTION ...] receive [NAME ...]      the first files get these names
//     transfer [OPTION ...] auto                    what the far end begins to send by ZModem
//
//     --port COM5            --settings 115200,n,8,1
//     --protocol zmodem      xmodem, xmodem-crc, xmodem-1k, ymodem, ymodem-g, zmodem, kermit
//     --folder FOLDER        of names without a path, in both directions
//     --dialog none          none, free, locks: the module's own window beside the progress line
//     --resume               goes on where a part of the file is there already (ZModem receives)
//     --rename NAME          the next file's name at its destination
//     --wait SECONDS         how long auto waits for the far end to begin
//     --limit SECONDS        aborts a transfer that takes longer
//     --log                  the transfer's messages go to wiretap.txt in the Windows folder
//     --quiet                a line for each event that programs can read, and no progress
//     --abort-after BYTES    aborts when so much of a file has crossed
//     --close-after BYTES    closes the port then
//
// Ends with 0 if every file went over, 1 if the transfer failed, 2 if it could not begin, 3 if a file was
// skipped.
#include "TarnComm.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

enum ExitCode { Done = 0, Failed = 1, NotBegun = 2, Skipped = 3 };

const std::map<std::string, int> protocols = {
    {"xmodem", TARN_PROTOCOL_XMODEM},       {"xmodem-crc", TARN_PROTOCOL_XMODEM_CRC},
    {"xmodem-1k", TARN_PROTOCOL_XMODEM_1K}, {"ymodem", TARN_PROTOCOL_YMODEM},
    {"ymodem-g", TARN_PROTOCOL_YMODEM_G},   {"zmodem", TARN_PROTOCOL_ZMODEM},
    {"kermit", TARN_PROTOCOL_KERMIT},
};

const std::map<std::string, int> dialogs = {
    {"none", TARN_DIALOG_NONE},
    {"free", TARN_DIALOG_FREE},
    {"locks", TARN_DIALOG_LOCKS},
};

// ---- Command line ----

constexpr LONG never = -1;

struct Options {
    std::string port = "COM5";
    std::string settings = "115200,n,8,1";
    std::string folder;
    std::string rename;
    int protocol = TARN_PROTOCOL_ZMODEM;
    int dialog = TARN_DIALOG_NONE;
    LONG wait = 60;     // seconds
    LONG limit = never; // seconds
    LONG abortAfter = never;
    LONG closeAfter = never;
    bool resume = false;
    bool log = false;
    bool quiet = false;
    std::string action; // send, receive, auto
    std::vector<std::string> files;
    std::string problem; // empty: the command line was understood
};

using Take = std::function<void(Options&, const std::string&)>;

Take Text(std::string Options::*field) {
    return [=](Options& options, const std::string& word) { options.*field = word; };
}

Take Number(LONG Options::*field) {
    return [=](Options& options, const std::string& word) {
        char* end = nullptr;
        options.*field = std::strtol(word.c_str(), &end, 10);
        if (end == word.c_str() || *end || options.*field < 0)
            options.problem = "\"" + word + "\" is no count.";
    };
}

Take Choice(const std::map<std::string, int>& choices, int Options::*field) {
    return [=, &choices](Options& options, const std::string& word) {
        const auto found = choices.find(word);
        if (found == choices.end())
            options.problem = "There is no \"" + word + "\".";
        else
            options.*field = found->second;
    };
}

const std::map<std::string, Take> takes = {
    {"--port", Text(&Options::port)},
    {"--settings", Text(&Options::settings)},
    {"--protocol", Choice(protocols, &Options::protocol)},
    {"--folder", Text(&Options::folder)},
    {"--dialog", Choice(dialogs, &Options::dialog)},
    {"--rename", Text(&Options::rename)},
    {"--wait", Number(&Options::wait)},
    {"--limit", Number(&Options::limit)},
    {"--abort-after", Number(&Options::abortAfter)},
    {"--close-after", Number(&Options::closeAfter)},
};

const std::map<std::string, bool Options::*> flags = {
    {"--resume", &Options::resume},
    {"--log", &Options::log},
    {"--quiet", &Options::quiet},
};

void CheckAction(Options& options) {
    const bool send = options.action == "send";
    if (!send && options.action != "receive" && options.action != "auto")
        options.problem = "send, receive or auto?";
    else if (send && options.files.empty())
        options.problem = "Which file?";
}

Options ReadOptions(int count, char** words) {
    Options options;
    for (int i = 1; i < count && options.problem.empty(); ++i) {
        const std::string word = words[i];
        const auto take = takes.find(word);
        const auto flag = flags.find(word);
        if (take != takes.end() && i + 1 < count)
            take->second(options, words[++i]);
        else if (flag != flags.end())
            options.*flag->second = true;
        else if (word.starts_with("--"))
            options.problem = "What is \"" + word + "\"?";
        else if (options.action.empty())
            options.action = word;
        else
            options.files.push_back(word);
    }
    if (options.problem.empty())
        CheckAction(options);
    return options;
}

// ---- Names that the far end offers ----

constexpr size_t longestName = 200; // characters, so that a folder fits in front

std::string LastPart(const std::string& name) {
    return name.substr(name.find_last_of("/\\:") + 1);
}

bool IsOdd(char c) {
    return static_cast<unsigned char>(c) < ' ' ||
           std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos;
}

std::string UpperCase(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

// Names of devices, whatever follows a dot: a file of that name would be written to the device.
bool IsDevice(const std::string& name) {
    static constexpr std::string_view devices[] = {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"};
    std::string stem = UpperCase(name.substr(0, name.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    static constexpr std::string_view digits = "0123456789\xB9\xB2\xB3"; // the last are small, raised 1, 2, 3
    const bool numbered = stem.starts_with("COM") || stem.starts_with("LPT");
    return (numbered && stem.size() == 4 && digits.find(stem[3]) != digits.npos) ||
           std::ranges::find(devices, stem) != std::end(devices);
}

// The name under which a file from the far end is written: of what is offered the last part, without what the
// system or the eye could take for something else. Nothing of it can lead out of the folder.
std::string SafeName(const std::string& offered) {
    std::string name = LastPart(offered).substr(0, longestName);
    std::ranges::replace_if(name, IsOdd, '_');
    name.erase(name.find_last_not_of(". ") + 1); // which the system drops, so that "nul." is a device too
    if (name.empty())
        return "received";
    return IsDevice(name) || name.front() == '-' ? "_" + name : name;
}

// ---- What happens ----

struct StatusName {
    int status;
    const char* name;
};

constexpr StatusName statusNames[] = {
    {TARN_TRANSFER_FAILURE, "AbortFileTransfer"}, {TARN_TRANSFER_SUCCESS, "FinishFileTransfer"},
    {TARN_TRANSFER_WAIT_FOR_FILE, "WaitForFile"}, {TARN_TRANSFER_PREPARE, "PrepareFile"},
    {TARN_TRANSFER_STARTING, "StartFile"},        {TARN_TRANSFER_TRANSFERING, "TransferBlock"},
    {TARN_TRANSFER_FILE_ABORT, "AbortFile"},      {TARN_TRANSFER_END_OF_FILE, "FinishFile"},
};

const char* NameOf(int status) {
    for (const StatusName& row : statusNames)
        if (row.status == status)
            return row.name;
    return "?";
}

// What the handler needs to know: it is given nothing but the object.
struct Session {
    Options options;
    HWND line = nullptr;
    size_t filesNamed = 0; // whose names the command line gave and that haven't come yet
    ULONGLONG start = 0;   // ms, of the transfer
    LONGLONG bytes = 0;    // of the files before
    int files = 0;         // that went over
    int skipped = 0;
    int end = TARN_TRANSFER_WAIT_FOR_FILE;
    bool stopped = false; // the option that stops in the middle has had its turn
    ULONGLONG shown = 0;  // ms, when the progress line was written last
    bool midLine = false; // it stands unfinished
};
Session session;

std::string Name(HWND line, int(TARNAPI* read)(HWND, char*, int)) {
    char name[1024];
    read(line, name, static_cast<int>(sizeof name));
    return name;
}

double Seconds() {
    return static_cast<double>(GetTickCount64() - session.start) / 1000;
}

double Rate(LONGLONG bytes) {
    const double seconds = Seconds();
    return seconds > 0 ? static_cast<double>(bytes) / seconds : 0;
}

// Keeps the far end from choosing where its file goes. The names of the command line were chosen here.
void NameFile(HWND line) {
    const bool download = GetTransferType(line) == 2;
    const bool named = download && session.filesNamed > 0;
    if (named)
        --session.filesNamed;
    if (!session.options.rename.empty())
        SetDestFilename(line, std::exchange(session.options.rename, "").c_str());
    else if (download && !named)
        SetDestFilename(line, SafeName(Name(line, GetSourceFilename)).c_str());
}

void EndProgressLine() {
    if (std::exchange(session.midLine, false))
        std::printf("\n");
}

// Events come with each block; people don't read that fast.
bool IsTimeToShow(LONG done, LONG size) {
    constexpr ULONGLONG pause = 100; // ms
    return done == size || GetTickCount64() >= session.shown + pause;
}

void ShowProgress(HWND line) {
    const LONG done = GetTransferBytesTransferred(line);
    const LONG size = GetTransferFileSize(line);
    if (!IsTimeToShow(done, size))
        return;
    session.shown = GetTickCount64();
    const std::string name = LastPart(Name(line, GetDestFilename));
    std::printf("\r  %s: %ld", name.c_str(), done);
    if (size > 0 && done <= size) // not so where the sender told no size
        std::printf(" of %ld", size);
    std::printf(" bytes, %.0f bytes/s   ", Rate(session.bytes + done));
    session.midLine = true;
}

void ShowEvent(HWND line, int status) {
    if (session.options.quiet) {
        std::printf("%s %ld %ld <%s> <%s>\n", NameOf(status), GetTransferBytesTransferred(line),
                    GetTransferFileSize(line), Name(line, GetSourceFilename).c_str(),
                    Name(line, GetDestFilename).c_str());
        return;
    }
    if (status == TARN_TRANSFER_TRANSFERING) {
        ShowProgress(line);
        return;
    }
    EndProgressLine();
    std::printf("  [%s]", NameOf(status));
    if (status == TARN_TRANSFER_PREPARE || status == TARN_TRANSFER_STARTING)
        std::printf(" %s -> %s", Name(line, GetSourceFilename).c_str(), Name(line, GetDestFilename).c_str());
    std::printf("\n");
}

void StopInTheMiddle(HWND line) {
    const LONG done = GetTransferBytesTransferred(line);
    const Options& options = session.options;
    const bool abort = options.abortAfter != never && done >= options.abortAfter;
    const bool close = options.closeAfter != never && done >= options.closeAfter;
    if (session.stopped || !(abort || close))
        return;
    session.stopped = true;
    if (abort)
        AbortTransfer(line);
    if (close)
        SetPortOpen(line, 0, nullptr);
}

void EndFile(HWND line) {
    ++session.files;
    session.bytes += GetTransferBytesTransferred(line);
}

// Runs on the object's own thread, while the transfer waits.
void CALLBACK OnEvent(HWND line, int, int code) {
    if (code != TARN_EVENT_TRANSFER)
        return;
    const int status = GetTransferStatus(line);
    if (!session.start)
        session.start = GetTickCount64();
    if (status == TARN_TRANSFER_PREPARE)
        NameFile(line);
    ShowEvent(line, status);
    if (status == TARN_TRANSFER_TRANSFERING)
        StopInTheMiddle(line);
    else if (status == TARN_TRANSFER_END_OF_FILE)
        EndFile(line);
    else if (status == TARN_TRANSFER_FILE_ABORT)
        ++session.skipped;
    else if (status <= TARN_TRANSFER_SUCCESS)
        session.end = status;
}

// ---- The main job ----

bool Open(HWND line, const Options& options) {
    SetCommPort(line, options.port.c_str());
    if (SetSettings(line, options.settings.c_str()) != 0) {
        std::printf("Settings \"%s\" can't be read.\n", options.settings.c_str());
        return false;
    }
    char error[TARN_ERROR_TEXT_SIZE];
    if (SetPortOpen(line, 1, error))
        return true;
    std::printf("%s: %s\n", options.port.c_str(), error);
    return false;
}

void Prepare(HWND line, const Options& options) {
    SetEventHandler(line, OnEvent);
    SetProtocol(line, options.protocol);
    SetTransferDialogType(line, options.dialog);
    SetResumeMethod(line, options.resume);
    SetXferPath(line, options.folder.c_str());
    SetWireTapTransfer(line, options.log);
    SetAutoZModem(line, options.action == "auto");
    SetAutoProcess(line, options.action == "auto" ? TARN_PROCESS_SERIAL : TARN_PROCESS_NONE);
}

// The object starts by itself when its input tells that a ZModem sender begins.
bool WaitForFarEnd(HWND line, const Options& options) {
    constexpr LONG look = 50; // ms
    for (const ULONGLONG end = GetTickCount64() + 1000ULL * static_cast<ULONGLONG>(options.wait);
         GetTickCount64() < end; ComPause(line, look))
        if (GetTransferType(line) || session.start)
            return true;
    std::printf("The far end didn't begin in %ld seconds.\n", options.wait);
    return false;
}

bool BeginSending(HWND line, const Options& options) {
    for (const std::string& file : options.files) {
        if (Upload(line, file.c_str()))
            continue;
        std::printf("%s can't be sent.\n", file.c_str());
        return false;
    }
    return true;
}

bool BeginReceiving(HWND line, const Options& options) {
    session.filesNamed = options.files.size();
    if (options.files.empty())
        return Download(line, "");
    return std::ranges::all_of(options.files, [&](const auto& name) { return Download(line, name.c_str()); });
}

bool Begin(HWND line, const Options& options) {
    if (options.action == "send")
        return BeginSending(line, options);
    if (options.action == "receive")
        return BeginReceiving(line, options);
    return WaitForFarEnd(line, options);
}

ExitCode Report() {
    EndProgressLine();
    const bool success = session.end == TARN_TRANSFER_SUCCESS;
    std::printf("%s: %d files, %lld bytes in %.2f seconds, %.0f bytes/s; %d skipped\n",
                success ? "Done" : "The transfer failed", session.files, session.bytes, Seconds(),
                Rate(session.bytes), session.skipped);
    if (!success)
        return Failed;
    return session.skipped ? Skipped : Done;
}

// A timer of the thread: its messages run while the transfer is waited for.
void CALLBACK OnLimit(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    EndProgressLine();
    std::printf("  The time is over.\n");
    AbortTransfer(session.line);
}

void Wait(HWND line, const Options& options) {
    if (options.limit != never)
        SetTimer(nullptr, 0, static_cast<UINT>(options.limit) * 1000, OnLimit);
    WaitUntilTransferIsFinished(line);
}

ExitCode Run(HWND line) {
    const Options& options = session.options;
    Prepare(line, options);
    if (!Open(line, options))
        return NotBegun;
    std::printf("%s is open (%s).\n", options.port.c_str(), options.settings.c_str());
    if (!Begin(line, options))
        return NotBegun;
    Wait(line, options);
    return Report();
}

} // namespace

int main(int count, char** words) {
    session.options = ReadOptions(count, words);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (!session.options.problem.empty()) {
        std::printf("%s\n", session.options.problem.c_str());
        return NotBegun;
    }
    const HWND line = session.line = CreateCommObject(nullptr);
    const ExitCode code = Run(line);
    SetPortOpen(line, 0, nullptr);
    DestroyCommObject(line);
    return code;
}
