#include "receivedfile.h"

#include "core/ascii.h"
#include "core/handle.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace {

constexpr size_t longestName = 512; // characters, what the record's field holds
constexpr LONG resumeUnit = 512;    // bytes: a file goes on at a multiple of it
constexpr int resumeBlock = 1024;   // bytes, the block size that is shown at a resume
constexpr int typeBits = 0xF000;    // of a mode: a sender that tells the type of the file
constexpr long long biggestWord = 0xFFFFFFFF;

// Numbers as scanf reads them: blanks and a sign may stand in front, and the first that is none is the last.
class NumberText {
  public:
    explicit NumberText(std::string_view text)
        : text_(text.substr(0, text.find('\0'))), next_(text_.c_str()) {}

    // Leaves the number as it is when there is none.
    void Decimal(LONG& number) { Read(number, 10, std::numeric_limits<LONG>::max()); }
    void Octal(LONG& number) { Read(number, 8, biggestWord); }

  private:
    void Read(LONG& number, int base, long long most) {
        char* end = nullptr;
        const long long value = std::strtoll(next_, &end, base);
        const bool found = end != next_;
        if (found)
            number = static_cast<LONG>(std::clamp<long long>(value, std::numeric_limits<LONG>::min(), most));
        next_ = found ? end : "";
    }

    std::string text_;
    const char* next_;
};

// The caller's error number of the C library comes back at the end.
class ErrnoKeeper {
  public:
    ErrnoKeeper() = default;
    ~ErrnoKeeper() { errno = error_; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

  private:
    int error_ = errno;
};

bool LeadsAway(const std::string& name) {
    return name.find("..") != std::string::npos || name.starts_with('/') || name.starts_with('\\');
}

bool IsHere(std::string_view part) {
    return part.empty() || part == ".";
}

} // namespace

ReceivedFile::ReceivedFile(ModemLine& line, bool bResume) : Lzconv(bResume ? ZCRESUM : 0), line_(line) {}

int ReceivedFile::ProcessHeader(const char* lpBlock, size_t cbBlock) {
    line_.Transfer().lFileOffset = 0;
    const FileMode mode = ChooseMode();
    Bytesleft = UnknownFileSize;
    Modtime = 0;
    Filemode = 0;
    if (!lpBlock || !cbBlock || !*lpBlock)
        return FileProceeds;
    const std::string_view block(lpBlock, cbBlock);
    const std::string_view name = block.substr(0, block.find('\0'));
    ReadHeaderText(block.substr(std::min(name.size() + 1, block.size())));
    Announce(name);
    if (IsTooLong()) {
        line_.ShowStatus("File is too large...");
        return FileCantBeOpened;
    }
    FileInfo present;
    if (GetFileInfo(Pathname, present))
        return MeetPresent(present, mode, std::string(name));
    return zmanag & ZMSKNOLOC ? Skip() : OpenAs(mode, std::string(name));
}

FileMode ReceivedFile::ChooseMode() {
    Thisbinary = Rxascii && !Rxbinary ? 0 : 1;
    if (zconv == ZCBIN && Lzconv != ZCRESUM)
        Lzconv = zconv;
    if (Lzconv)
        zconv = Lzconv;
    if (Lzmanag)
        zmanag = Lzmanag;
    if (!Rxbinary && zconv == ZCNL)
        Thisbinary = 0;
    if (zconv != ZCBIN)
        return zmanag == ZMAPND ? FileMode::Append : FileMode::Write;
    Thisbinary = 1;
    return FileMode::Write;
}

void ReceivedFile::ReadHeaderText(std::string_view text) {
    if (text.empty() || !text.front())
        return;
    NumberText numbers(text);
    LONG mode = 0;
    LONG serial = 0;
    LONG files = Filesleft;
    numbers.Decimal(Bytesleft);
    numbers.Octal(Modtime);
    numbers.Octal(mode);
    numbers.Octal(serial);
    numbers.Decimal(files);
    numbers.Decimal(Totalleft);
    Filemode = mode;
    Filesleft = files;
    if (Bytesleft < 0)
        Bytesleft = UnknownFileSize;
    if (Filemode & typeBits)
        ++Thisbinary;
}

void ReceivedFile::Announce(std::string_view name) {
    Pathname = name.substr(0, longestName);
    CheckPath(Pathname);
    xfStartFile(line_.Transfer());
    xfPrepareReceive(line_.Transfer(), Pathname, Pathname);
    xfSetFileSize(line_.Transfer(), Bytesleft);
}

// YModem's told length is where its padding begins: what can't be counted would be cut, and told as whole.
bool ReceivedFile::IsTooLong() const {
    return !bZModem && Bytesleft == LargestFile;
}

int ReceivedFile::MeetPresent(const FileInfo& present, FileMode mode, const std::string& name) {
    zmanag &= ZMMASK;
    if (zmanag == ZMPROT)
        return Skip();
    line_.Log("Current %s is %ld %ld", Pathname.c_str(), static_cast<long>(present.cbFile),
              static_cast<long>(present.modified));
    // YModem has no way to ask for the rest of a file: its sender starts at 0 whatever is here.
    if (bZModem && Thisbinary && zconv == ZCRESUM) {
        Rxbytes = present.cbFile / resumeUnit * resumeUnit;
        // Without a told length nobody knows where the old contents would have to end, and of two files that
        // can't be counted which is the longer.
        if (Bytesleft >= present.cbFile && Bytesleft != UnknownFileSize && present.cbFile < LargestFile)
            return Resume();
        Rxbytes = 0;
        return OpenAs(mode, name);
    }
    return Replaces(present) ? OpenAs(mode, name) : Skip();
}

bool ReceivedFile::Replaces(const FileInfo& present) const {
    const bool newer = present.modified + 1 < ToldTime();
    switch (zmanag) {
    case ZMNEWL:
        return Bytesleft > present.cbFile || newer;
    case ZMAPND:
    case ZMCLOB:
        return true;
    case ZMNEW:
        return newer;
    default:
        return false;
    }
}

int ReceivedFile::Resume() {
    if (Open(FileMode::Update) != 0)
        return FileCantBeOpened;
    if (!fout_.Seek(Rxbytes)) {
        fout_.Close();
        return FileCantBeOpened;
    }
    TRANSFER& transfer = line_.Transfer();
    transfer.lFileOffset = Rxbytes;
    xfUpdate(transfer, transfer.lFileOffset, resumeBlock);
    line_.Log("Crash recovery at %ld", static_cast<long>(Rxbytes));
    return FileProceeds;
}

int ReceivedFile::Skip() {
    line_.Log("Skipping %s", Pathname.c_str());
    return FileIsSkipped;
}

int ReceivedFile::OpenAs(FileMode mode, const std::string& name) {
    int error = Open(mode);
    if (error == ENOENT && MakeDirectories(name))
        error = Open(mode);
    return error ? FileCantBeOpened : FileProceeds;
}

// The folders of the sender's name, from the current one; the host's folder is not looked at.
int ReceivedFile::MakeDirectories(const std::string& name) {
    const LastErrorKeeper systems;
    const ErrnoKeeper librarys;
    int made = 0;
    size_t start = 0;
    for (size_t end; (end = name.find('/', start)) != std::string::npos; start = end + 1) {
        if (IsHere(std::string_view(name).substr(start, end - start)))
            continue;
        const std::string folder = name.substr(0, end);
        const int error = MakeFolder(folder);
        if (error && error != EEXIST)
            break;
        if (error)
            continue;
        line_.Log("Made directory %s\n", folder.c_str());
        ++made;
    }
    return made;
}

void ReceivedFile::CheckPath(const std::string& name) {
    if (!LeadsAway(name))
        return;
    line_.Cancel();
    line_.ShowStatus("Security Violation");
    if (bZModem)
        line_.SendString(Attn.c_str());
    line_.Cancel();
}

bool ReceivedFile::OpenNew() {
    return Open(FileMode::Write) == 0;
}

// A host that aborts at the offer keeps the file that lies there.
int ReceivedFile::Open(FileMode mode) {
    return line_.Aborted() ? ECANCELED : fout_.Open(Pathname, mode);
}

void ReceivedFile::WriteBlock(const void* lpBytes, int cbBytes) {
    TRANSFER& transfer = line_.Transfer();
    transfer.lFileOffset = Advanced(transfer.lFileOffset, cbBytes);
    xfUpdate(transfer, transfer.lFileOffset, cbBytes);
    if (cbBytes <= 0)
        return;
    if (Thisbinary)
        fout_.Write(lpBytes, cbBytes);
    else
        WriteText({static_cast<const char*>(lpBytes), static_cast<size_t>(cbBytes)});
}

void ReceivedFile::WriteText(std::string_view bytes) {
    if (Eofseen)
        return;
    const size_t end = bytes.find(ascii::SUB);
    Eofseen = end != std::string_view::npos;
    std::string text(bytes.substr(0, end));
    std::erase(text, ascii::CR);
    if (!text.empty())
        fout_.Write(text.data(), static_cast<int>(text.size()));
}

int ReceivedFile::CloseReceivedFile() {
    if (!fout_.IsOpen())
        return 0;
    if (!fout_.Close())
        return -1;
    if (Modtime)
        SetFileTimes(Pathname, CurrentTime(), ToldTime());
    line_.ShowStatus("Transfer successful.");
    return 0;
}

void ReceivedFile::Abandon() {
    fout_.Close();
}
