// The file that an X, Y or ZModem receive is writing: what its header said, where it goes, and its end.
#pragma once

#include "filestream.h"
#include "modemline.h"
#include "zmodemframes.h"

#include <string>
#include <string_view>

// What became of an offered file. The numbers are ZModem's, since they go out as header types.
enum FileResult : int {
    FileProceeds = 0,
    FileIsSkipped = 5,     // ZSKIP
    FileCantBeOpened = 12, // ZFERR
};

class ReceivedFile {
  public:
    explicit ReceivedFile(ModemLine& line, bool bResume);

    // Reads a header block (name, NUL, "%ld%lo%o%lo%d%ld%d%d": length, time, mode, serial, files left, bytes
    // left, two more; every field may be missing), asks the host for the names, and opens the file or decides
    // otherwise. An empty block sets the defaults alone. cbBlock counts the readable bytes; a NUL follows
    // them.
    int ProcessHeader(const char* lpBlock, size_t cbBlock);

    // Warns the line by a cancel when a name leads out of the folder (".." in it, or "/" or "\" in front).
    // The file goes on: the host has the last word in its PrepareFile event.
    void CheckPath(const std::string& name);

    // Opens Pathname for a receive without a header. False: it can't be made.
    bool OpenNew();

    // Bytes as they come, or as text: without CR, up to SUB. What can't be written shows at the close.
    void WriteBlock(const void* lpBytes, int cbBytes);

    // Sets the file's time as the header told. 0, or -1: the file is not whole on the disk.
    int CloseReceivedFile();

    // Closes a file that failed: it stays as far as it came, without its time.
    void Abandon();

    bool IsOpen() const { return fout_.IsOpen(); }

    std::string Pathname;
    LONG Bytesleft = UnknownFileSize;
    LONG Modtime = 0; // seconds since 1970, 0 is unknown
    int Filemode = 0;
    int Filesleft = 0;
    LONG Totalleft = 0;
    bool Eofseen = false;
    LONG Rxbytes = 0; // where a ZModem receive goes on

    // ZModem's options: what the sender asked for (ZF0, ZF1, ZF2), what this side wants instead if not 0.
    BYTE zconv = 0;
    BYTE zmanag = 4;
    BYTE ztrans = 0;
    BYTE Lzconv;
    BYTE Lzmanag = 4;

    int Rxbinary = 1; // keep bytes as they come
    int Rxascii = 0;  // text conversion wanted
    int Thisbinary = 1;

    std::string Attn;     // what a ZModem sender wants to be interrupted with
    bool bZModem = false; // a good ZModem header was seen

  private:
    FileMode ChooseMode(); // and the conversion
    void ReadHeaderText(std::string_view text);
    void Announce(std::string_view name);
    bool IsTooLong() const;
    int MeetPresent(const FileInfo& present, FileMode mode, const std::string& name);
    bool Replaces(const FileInfo& present) const;
    int64_t ToldTime() const { return static_cast<DWORD>(Modtime); } // its high bit means 2038 and later
    int Resume();
    int Skip();
    int OpenAs(FileMode mode, const std::string& name);
    int Open(FileMode mode);
    int MakeDirectories(const std::string& name); // the number of folders made
    void WriteText(std::string_view bytes);

    ModemLine& line_;
    FileStream fout_;
};
