// The file that a receive is writing: its header, where it goes, and its end.
#include "caseprint.h"
#include "memorydisk.h"
#include "transfer/receivedfile.h"
#include "transferdouble.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace {

using namespace std::string_literals;

const std::string cancel(10, '\x18');

class Receiving {
  public:
    explicit Receiving(bool resume = false) : line(host.transfer), file(line, resume) {
        host.keepBlocks = false;
    }

    // The block stands alone on the heap, so that a byte too many is seen.
    int Header(const std::string& block) {
        const auto copy = std::make_unique<char[]>(block.size());
        std::ranges::copy(block, copy.get());
        return file.ProcessHeader(copy.get(), block.size());
    }

    void AbortAtTheOffer() {
        host.onEvent = [this](int status) {
            if (status == TransferStatus_Prepare)
                host.object.Record().bAbortTransfer = 1;
        };
    }

    bool Logged(const std::string& text) const {
        return std::ranges::find(host.object.journal, "log " + text) != host.object.journal.end();
    }

    bool Told(const std::string& text) const {
        return std::ranges::find(host.journal, text) != host.journal.end();
    }

    MemoryDisk disk;
    TransferDouble host{XferDownload};
    ModemLine line;
    ReceivedFile file;
};

// The header's text

struct TextCase {
    const char* name;
    std::string text;
    LONG length;
    LONG time = 0;
    int mode = 0;
    int filesLeft = 0;
    LONG bytesLeft = 0;
};

class ReceivedFileText : public testing::TestWithParam<TextCase> {};

TEST_P(ReceivedFileText, IsReadAsFarAsItGoes) {
    Receiving receiving;
    receiving.file.bZModem = true; // which counts past the told length
    EXPECT_EQ(receiving.Header("a.bin\0"s + GetParam().text), FileProceeds);
    EXPECT_EQ(receiving.file.Bytesleft, GetParam().length);
    EXPECT_EQ(receiving.file.Modtime, GetParam().time);
    EXPECT_EQ(receiving.file.Filemode, GetParam().mode);
    EXPECT_EQ(receiving.file.Filesleft, GetParam().filesLeft);
    EXPECT_EQ(receiving.file.Totalleft, GetParam().bytesLeft);
    EXPECT_EQ(receiving.host.transfer.lFileSize, GetParam().length);
}

const TextCase textCases[] = {
    {"Nothing", "", UnknownFileSize},
    {"OnlyNul", "\0"s, UnknownFileSize},
    {"NulThenDigits",
     "\0"
     "12"s,
     UnknownFileSize},
    {"Length", "123", 123},
    {"LengthWithoutNulAtTheEndOfTheBlock", "77", 77},
    {"Time", "123 17", 123, 15},
    {"Mode", "123 17 100644", 123, 15, 0100644},
    {"SerialIsDropped", "123 17 100644 7", 123, 15, 0100644},
    {"FilesLeft", "123 17 100644 0 5", 123, 15, 0100644, 5},
    {"BytesLeft", "123 17 100644 0 5 6000", 123, 15, 0100644, 5, 6000},
    {"MoreWords", "123 17 100644 0 5 6000 1 2 3 4", 123, 15, 0100644, 5, 6000},
    {"NulEndsIt", "123\0 17 100644"s, 123},
    {"BlanksAndTabs", "  123\t 17", 123, 15},
    {"Signs", "+123 +17", 123, 15},
    {"NoBlankWhereADigitIsNotOctal", "12 178", 12, 15},
    {"StopsAtTheFirstThatIsNone", "123 x 100644 0 5", 123},
    {"NoNumber", "abc", UnknownFileSize},
    {"NegativeLengthIsNone", "-5 17", UnknownFileSize, 15},
    {"HugeLength", "99999999999999999999999", 2147483647},
    {"LengthPastTwoGigabytes", "3000000000", 2147483647},
    {"ZeroLength", "0", 0},
};
RUN_TABLE(ReceivedFileText, textCases);

struct LengthCase {
    const char* length;
    bool zmodem;
    int result;
};

// Blocks are filled up, so a length that can't be counted would cut the file.
TEST(ReceivedFileHeader, YModemRefusesALengthThatCantBeCounted) {
    const LengthCase cases[] = {
        {"2147483646", false, FileProceeds},     {"2147483647", false, FileCantBeOpened},
        {"3000000000", false, FileCantBeOpened}, {"99999999999999999999", false, FileCantBeOpened},
        {"3000000000", true, FileProceeds},
    };
    for (const LengthCase& row : cases) {
        SCOPED_TRACE(row.length);
        Receiving receiving;
        receiving.file.bZModem = row.zmodem;
        receiving.disk.files["a"].contents = "old";
        EXPECT_EQ(receiving.Header("a\0"s + row.length), row.result);
        EXPECT_EQ(receiving.disk.files["a"].contents, row.result == FileProceeds ? "" : "old");
        EXPECT_EQ(receiving.Told("status File is too large..."), row.result != FileProceeds);
    }
}

TEST(ReceivedFileHeader, EmptyBlockSetsTheDefaultsAlone) {
    for (const std::string& block : {""s, "\0"s, "\0 5 5 5"s}) {
        Receiving receiving;
        receiving.file.Bytesleft = receiving.file.Modtime = receiving.file.Filemode = 9;
        receiving.host.transfer.lFileOffset = 9;
        EXPECT_EQ(receiving.Header(block), FileProceeds);
        EXPECT_EQ(receiving.file.Bytesleft, UnknownFileSize);
        EXPECT_EQ(receiving.file.Modtime, 0);
        EXPECT_EQ(receiving.file.Filemode, 0);
        EXPECT_EQ(receiving.host.transfer.lFileOffset, 0);
        EXPECT_FALSE(receiving.file.IsOpen());
        EXPECT_TRUE(receiving.host.journal.empty());
    }
    Receiving receiving;
    EXPECT_EQ(receiving.file.ProcessHeader(nullptr, 0), FileProceeds);
}

TEST(ReceivedFileHeader, NameWithoutNulEndsWithTheBlock) {
    Receiving receiving;
    EXPECT_EQ(receiving.Header("abc"), FileProceeds);
    EXPECT_EQ(receiving.file.Pathname, "abc");
}

TEST(ReceivedFileHeader, LongNameIsCut) {
    Receiving receiving;
    EXPECT_EQ(receiving.Header(std::string(600, 'n') + "\0 5"s), FileProceeds);
    EXPECT_EQ(receiving.file.Pathname, std::string(512, 'n'));
}

TEST(ReceivedFileHeader, HostIsAskedBetweenNameAndOpening) {
    Receiving receiving;
    receiving.host.onEvent = [&](int status) {
        EXPECT_TRUE(receiving.disk.journal.empty());
        if (status == TransferStatus_Prepare)
            strcpy(receiving.host.object.Record().szDestFilename, "other.bin");
    };
    EXPECT_EQ(receiving.Header("a.bin\0"
                               "5"s),
              FileProceeds);
    EXPECT_EQ(receiving.file.Pathname, "other.bin");
    EXPECT_EQ(receiving.disk.journal, std::vector<std::string>{"open other.bin wb"});
    EXPECT_TRUE(receiving.Told("prepare a.bin a.bin"));
    EXPECT_TRUE(receiving.Logged("Beginning to transfer a new file"));
    EXPECT_TRUE(receiving.Logged("Total bytes: 5"));
}

TEST(ReceivedFileHeader, FileThatCantBeMadeFails) {
    Receiving receiving;
    receiving.disk.readOnly = true;
    EXPECT_EQ(receiving.Header("a.bin\0"s), FileCantBeOpened);
    EXPECT_FALSE(receiving.file.IsOpen());
}

TEST(ReceivedFileHeader, ModeWithATypeKeepsBytes) {
    for (const auto& [mode, binary] : {std::pair("644", 0), std::pair("100644", 1)}) {
        Receiving receiving;
        receiving.file.Rxbinary = 0;
        receiving.file.Rxascii = 1;
        EXPECT_EQ(receiving.Header("a.bin\0"
                                   "5 0 "s +
                                   mode),
                  FileProceeds);
        EXPECT_EQ(receiving.file.Thisbinary, binary);
    }
}

// Conversion

struct ConversionCase {
    const char* name;
    BYTE asked; // zconv
    BYTE local; // Lzconv
    int rxbinary;
    int rxascii;
    BYTE zconv; // what comes out
    BYTE lzconv;
    int thisbinary;
};

class ReceivedFileConversion : public testing::TestWithParam<ConversionCase> {};

TEST_P(ReceivedFileConversion, FollowsBothSides) {
    Receiving receiving;
    receiving.file.zconv = GetParam().asked;
    receiving.file.Lzconv = GetParam().local;
    receiving.file.Rxbinary = GetParam().rxbinary;
    receiving.file.Rxascii = GetParam().rxascii;
    receiving.Header("");
    EXPECT_EQ(receiving.file.zconv, GetParam().zconv);
    EXPECT_EQ(receiving.file.Lzconv, GetParam().lzconv);
    EXPECT_EQ(receiving.file.Thisbinary, GetParam().thisbinary);
}

const ConversionCase conversionCases[] = {
    {"NobodyAsks", 0, 0, 1, 0, 0, 0, 1},
    {"AsciiWantedHere", 0, 0, 0, 1, 0, 0, 0},
    {"AsciiWantedHereButBinaryToo", 0, 0, 1, 1, 0, 0, 1},
    {"NeitherWanted", 0, 0, 0, 0, 0, 0, 1},
    {"BinaryAsked", 1, 0, 0, 1, 1, 1, 1},
    {"BinaryAskedAgainstResume", 1, 3, 1, 0, 3, 3, 1},
    {"TextAsked", 2, 0, 0, 0, 2, 0, 0},
    {"TextAskedOfBinary", 2, 0, 1, 0, 2, 0, 1},
    {"TextAskedAgainstResume", 2, 3, 0, 0, 3, 3, 1},
    {"ResumeAsked", 3, 0, 1, 0, 3, 0, 1},
    {"LocalWins", 3, 2, 1, 0, 2, 2, 1},
};
RUN_TABLE(ReceivedFileConversion, conversionCases);

TEST(ReceivedFileResume, MethodDecidesTheLocalConversion) {
    EXPECT_EQ(Receiving(false).file.Lzconv, 0);
    EXPECT_EQ(Receiving(true).file.Lzconv, ZCRESUM);
}

// A file that is there already

struct PresentCase {
    const char* name;
    BYTE zmanag;
    BYTE local; // Lzmanag
    bool resume;
    size_t size; // of the file that is here; its time is 1000
    std::string text;
    int result;
    std::string opened;
    LONG rxbytes = 0;
    bool zmodem = true;
};

class ReceivedFilePresent : public testing::TestWithParam<PresentCase> {};

TEST_P(ReceivedFilePresent, IsReplacedResumedOrKept) {
    const PresentCase& row = GetParam();
    Receiving receiving(row.resume);
    receiving.disk.files["a"] = {std::string(row.size, 'x'), 1000};
    receiving.file.bZModem = row.zmodem;
    receiving.file.zmanag = row.zmanag;
    receiving.file.Lzmanag = row.local;
    EXPECT_EQ(receiving.Header("a\0"s + row.text), row.result);
    EXPECT_EQ(receiving.disk.journal,
              row.opened.empty() ? std::vector<std::string>() : std::vector{"open a " + row.opened});
    EXPECT_EQ(receiving.file.Rxbytes, row.rxbytes);
    EXPECT_EQ(receiving.host.transfer.lFileOffset, row.rxbytes);
    EXPECT_EQ(receiving.host.object.Record().lBytesTransferred, row.rxbytes);
    EXPECT_EQ(receiving.Logged("Skipping a"), row.result == FileIsSkipped);
    EXPECT_EQ(receiving.Logged("Crash recovery at " + std::to_string(row.rxbytes)), row.opened == "rb+");
    EXPECT_EQ(receiving.Logged("Current a is " + std::to_string(row.size) + " 1000"),
              (row.zmanag & ZMMASK) != ZMPROT || row.local);
}

TEST_P(ReceivedFilePresent, StaysWhenTheHostAbortsAtTheOffer) {
    const PresentCase& row = GetParam();
    Receiving receiving(row.resume);
    receiving.AbortAtTheOffer();
    receiving.disk.files["a"] = {std::string(row.size, 'x'), 1000};
    receiving.file.bZModem = row.zmodem;
    receiving.file.zmanag = row.zmanag;
    receiving.file.Lzmanag = row.local;
    EXPECT_NE(receiving.Header("a\0"s + row.text), FileProceeds);
    EXPECT_FALSE(receiving.file.OpenNew()) << "nor without a header";
    EXPECT_EQ(receiving.disk.journal, std::vector<std::string>{});
    EXPECT_EQ(receiving.disk.files["a"].contents.size(), row.size);
}

// Times are octal: 1751 is 1001, 1752 is 1002.
const PresentCase presentCases[] = {
    {"ReplacedByDefault", 0, 4, false, 1000, "5", FileProceeds, "wb"},
    {"LocalManagementWins", ZMPROT, 4, false, 1000, "5", FileProceeds, "wb"},
    {"Replace", ZMCLOB, 0, false, 1000, "5", FileProceeds, "wb"},
    {"Append", ZMAPND, 0, false, 1000, "5", FileProceeds, "ab"},
    {"Protect", ZMPROT, 0, false, 1000, "5000", FileIsSkipped, ""},
    {"ProtectWithTheUpperBits", ZMPROT | 0x60, 0, false, 1000, "5000", FileIsSkipped, ""},
    {"NewOrLongerIsLonger", ZMNEWL, 0, false, 1000, "1001 1", FileProceeds, "wb"},
    {"NewOrLongerIsNewer", ZMNEWL, 0, false, 1000, "1000 1752", FileProceeds, "wb"},
    {"NewOrLongerIsNeither", ZMNEWL, 0, false, 1000, "1000 1751", FileIsSkipped, ""},
    {"Newer", ZMNEW, 0, false, 1000, "5 1752", FileProceeds, "wb"},
    {"NewerByOneSecondIsNotEnough", ZMNEW, 0, false, 1000, "5 1751", FileIsSkipped, ""},
    {"NewerByDecades", ZMNEW, 0, false, 1000, "5 20000000000", FileProceeds, "wb"},
    {"NewerDoesNotLookAtLength", ZMNEW, 0, false, 1000, "5000 1", FileIsSkipped, ""},
    {"ChecksumIsSkipped", ZMCRC, 0, false, 1000, "5000 1752", FileIsSkipped, ""},
    {"UnknownManagementIsSkipped", 6, 0, false, 1000, "5000 1752", FileIsSkipped, ""},
    {"SkipIfNotHereButItIs", ZMCLOB | ZMSKNOLOC, 0, false, 1000, "5", FileProceeds, "wb"},
    {"ResumesAtAMultipleOf512", 0, 4, true, 1000, "5000", FileProceeds, "rb+", 512},
    {"ResumesAtTheWholeSize", 0, 4, true, 1024, "5000", FileProceeds, "rb+", 1024},
    {"ResumesASmallFileAtItsStart", 0, 4, true, 511, "5000", FileProceeds, "rb+", 0},
    {"ResumesAFileOfTheSameSize", 0, 4, true, 1000, "1000", FileProceeds, "rb+", 512},
    {"ReplacesWhereNoSizeIsTold", 0, 4, true, 1000, "", FileProceeds, "wb"},
    {"ReplacesALongerFile", 0, 4, true, 1000, "511", FileProceeds, "wb"},
    {"ReplacesAFileLongerByLessThan512", 0, 4, true, 1000, "999", FileProceeds, "wb"},
    {"ResumesOnlyUnderZModem", 0, 4, true, 1000, "5000", FileProceeds, "wb", 0, false},
    {"ProtectedBeforeResume", ZMPROT, 0, true, 1000, "5000", FileIsSkipped, ""},
};
RUN_TABLE(ReceivedFilePresent, presentCases);

TEST(ReceivedFileResume, FileThatIsTooLongToBeComparedIsReplaced) {
    for (const bool tooLong : {false, true}) {
        Receiving receiving(true);
        receiving.file.bZModem = true;
        receiving.disk.files["a"].told = LargestFile - !tooLong;
        EXPECT_EQ(receiving.Header("a\0"
                                   "3000000000"s),
                  FileProceeds);
        EXPECT_EQ(receiving.disk.journal, std::vector<std::string>{tooLong ? "open a wb" : "open a rb+"});
        EXPECT_EQ(receiving.file.Rxbytes, tooLong ? 0 : 0x7FFFFE00);
    }
}

TEST(ReceivedFileResume, GoesOnBehindWhatIsThere) {
    Receiving receiving(true);
    receiving.file.bZModem = true;
    receiving.disk.files["a"].contents = std::string(600, 'x');
    receiving.Header("a\0"
                     "515"s);
    receiving.Header("a\0"
                     "1000"s);
    receiving.file.WriteBlock("yyy", 3);
    EXPECT_EQ(receiving.file.CloseReceivedFile(), 0);
    EXPECT_EQ(receiving.host.transfer.lFileOffset, 3); // the first header emptied the file
    receiving.disk.files["a"].contents = std::string(600, 'x');
    receiving.Header("a\0"
                     "1000"s);
    receiving.file.WriteBlock("yyy", 3);
    EXPECT_EQ(receiving.host.transfer.lFileOffset, 515);
    EXPECT_EQ(receiving.disk.files["a"].contents, std::string(512, 'x') + "yyy" + std::string(85, 'x'));
}

TEST(ReceivedFileResume, FailsWhenTheFileCantBeOpenedOrPlaced) {
    for (const bool locked : {false, true}) {
        Receiving receiving(true);
        receiving.file.bZModem = true;
        receiving.disk.files["a"].contents = std::string(600, 'x');
        receiving.disk.seeksFail = !locked;
        if (locked)
            receiving.disk.locked.insert("a");
        EXPECT_EQ(receiving.Header("a\0"
                                   "1000"s),
                  FileCantBeOpened);
        EXPECT_FALSE(receiving.file.IsOpen());
        EXPECT_EQ(receiving.disk.files["a"].contents.size(), 600u);
    }
}

TEST(ReceivedFileHeader, FileThatIsNotHereIsSkippedWhenTheSenderSaysSo) {
    Receiving receiving;
    receiving.file.zmanag = ZMCLOB | ZMSKNOLOC;
    receiving.file.Lzmanag = 0;
    EXPECT_EQ(receiving.Header("a\0"
                               "5"s),
              FileIsSkipped);
    EXPECT_TRUE(receiving.Logged("Skipping a"));
    EXPECT_TRUE(receiving.disk.journal.empty());
}

// Folders

struct FolderCase {
    const char* name;
    std::string offered;
    std::vector<std::string> made;
    int result = FileProceeds;
    std::string present = {}; // a folder that is there
    std::string blocked = {}; // a file where a folder is wanted
};

class ReceivedFileFolders : public testing::TestWithParam<FolderCase> {
  protected:
    ReceivedFileFolders() {
        receiving.disk.folders.insert(row.present);
        if (!row.blocked.empty())
            receiving.disk.files[row.blocked];
    }

    const FolderCase& row = GetParam();
    Receiving receiving;
};

TEST_P(ReceivedFileFolders, AreMadeFromTheSendersName) {
    EXPECT_EQ(receiving.Header(row.offered), row.result);
    std::vector<std::string> made;
    for (const std::string& entry : receiving.disk.journal)
        if (entry.starts_with("folder "))
            made.push_back(entry.substr(7));
    EXPECT_EQ(made, row.made);
    for (const std::string& folder : row.made)
        EXPECT_TRUE(receiving.Logged("Made directory " + folder + "\n"));
    EXPECT_EQ(receiving.file.IsOpen(), row.result == FileProceeds);
}

TEST_P(ReceivedFileFolders, CallersErrorNumbersStay) {
    errno = EDOM;
    SetLastError(ERROR_BAD_PIPE);
    EXPECT_EQ(receiving.Header(row.offered), row.result);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_PIPE));
}

const FolderCase folderCases[] = {
    {"None", "b.txt", {}},
    {"One", "a/b.txt", {"a"}},
    {"Two", "a/c/b.txt", {"a", "a/c"}},
    {"OneIsThere", "a/c/b.txt", {"a/c"}, FileProceeds, "a"},
    {"AllAreThere", "a/b.txt", {}, FileProceeds, "a"},
    {"Doubled", "a//b.txt", {"a"}, FileCantBeOpened}, // the disk of these tests takes "a/" for another folder
    {"Backslash", "a\\b.txt", {}, FileCantBeOpened},
    {"FileInTheWay", "a/c/b.txt", {}, FileCantBeOpened, "", "a"},
};
RUN_TABLE(ReceivedFileFolders, folderCases);

TEST(ReceivedFileFoldersOf, LeadingSlashAndDotsAreNoFolders) {
    Receiving receiving;
    receiving.disk.folders = {"."};
    EXPECT_EQ(receiving.Header("./a/./b/c"s), FileCantBeOpened);
    EXPECT_EQ(std::ranges::count(receiving.disk.journal, "folder ./a"), 1);
    receiving.disk.journal.clear();
    EXPECT_EQ(receiving.Header("/x/c"s), FileProceeds);
    EXPECT_EQ(receiving.disk.journal,
              (std::vector<std::string>{"open /x/c wb", "folder /x", "open /x/c wb"}));
}

// Kept so: the folder is made where the program stands, and not where the host wants its files.
TEST(ReceivedFileFoldersOf, HostsFolderHasNoPartInThem) {
    Receiving receiving;
    std::strcpy(receiving.host.object.Record().szXferPath, "in");
    receiving.disk.folders = {"in"};
    EXPECT_EQ(receiving.Header("a/b.txt"s), FileCantBeOpened);
    EXPECT_EQ(receiving.disk.journal,
              (std::vector<std::string>{"open in\\a/b.txt wb", "folder a", "open in\\a/b.txt wb"}));
}

TEST(ReceivedFileFoldersOf, OtherErrorsMakeNone) {
    Receiving receiving;
    receiving.disk.locked.insert("a/b");
    EXPECT_EQ(receiving.Header("a/b"s), FileCantBeOpened);
    EXPECT_EQ(receiving.disk.journal, std::vector<std::string>{"open a/b wb"});
}

// Names that lead away

struct AwayCase {
    const char* name;
    std::string offered;
    bool away;
};

class ReceivedFileAway : public testing::TestWithParam<AwayCase> {};

TEST_P(ReceivedFileAway, WarnsTheLineAndGoesOn) {
    Receiving receiving;
    receiving.file.Attn = "attn";
    receiving.file.CheckPath(GetParam().offered);
    EXPECT_EQ(receiving.host.line.sent, GetParam().away ? cancel + cancel : "");
    EXPECT_EQ(receiving.Told("status Security Violation"), GetParam().away);
    receiving.host.line.sent.clear();
    receiving.file.bZModem = true;
    receiving.file.CheckPath(GetParam().offered);
    EXPECT_EQ(receiving.host.line.sent, GetParam().away ? cancel + "attn" + cancel : "");
}

const AwayCase awayCases[] = {
    {"Empty", "", false},         {"Plain", "a.txt", false},     {"Folder", "a/b\\c", false},
    {"OneDot", "./a", false},     {"DotsInFront", "../a", true}, {"DotsBehind", "a/..", true},
    {"DotsInside", "a..b", true}, {"Slash", "/a", true},         {"Backslash", "\\a", true},
    {"Drive", "c:a", false},
};
RUN_TABLE(ReceivedFileAway, awayCases);

TEST(ReceivedFileHeader, NameThatLeadsAwayIsWarnedOfAndWritten) {
    Receiving receiving;
    EXPECT_EQ(receiving.Header("..x"), FileProceeds);
    EXPECT_EQ(receiving.host.line.sent, cancel + cancel);
    EXPECT_EQ(receiving.disk.journal, std::vector<std::string>{"open ..x wb"});
}

TEST(ReceivedFileAttention, TakesItsPausesAndLeavesItsBreaks) {
    Receiving receiving;
    receiving.file.Attn = "a\xDD"
                          "b\xDE"
                          "c";
    receiving.file.bZModem = true;
    const DWORD start = GetTickCount();
    receiving.file.CheckPath("/");
    EXPECT_EQ(receiving.host.line.sent, cancel + "abc" + cancel);
    EXPECT_EQ(GetTickCount() - start, 1000u);
}

// Data

struct TextDataCase {
    const char* name;
    std::vector<std::string> blocks;
    std::string written;
    bool eof = false;
};

class ReceivedFileTextData : public testing::TestWithParam<TextDataCase> {};

TEST_P(ReceivedFileTextData, LosesCrAndEndsAtSub) {
    Receiving receiving;
    receiving.Header("a\0"s);
    receiving.file.Thisbinary = 0;
    LONG size = 0;
    for (const std::string& block : GetParam().blocks) {
        receiving.file.WriteBlock(block.data(), static_cast<int>(block.size()));
        size += static_cast<LONG>(block.size());
    }
    EXPECT_EQ(receiving.disk.files["a"].contents, GetParam().written);
    EXPECT_EQ(receiving.file.Eofseen, GetParam().eof);
    EXPECT_EQ(receiving.host.transfer.lFileOffset, size);
    EXPECT_EQ(receiving.host.object.Record().lBytesTransferred, size);
}

const TextDataCase textDataCases[] = {
    {"Lines", {"a\r\nb\r\n"}, "a\nb\n"},
    {"OnlyCr", {"\r\r"}, ""},
    {"Sub",
     {"ab\x1A"
      "cd"},
     "ab",
     true},
    {"SubFirst", {"\x1A"}, "", true},
    {"NothingAfterSub", {"ab\x1A", "cd", "ef"}, "ab", true},
    {"CrBeforeSub", {"a\r\x1A"}, "a", true},
    {"Empty", {"", "a", ""}, "a"},
};
RUN_TABLE(ReceivedFileTextData, textDataCases);

TEST(ReceivedFileData, StandsAsItCame) {
    Receiving receiving;
    receiving.Header("a\0"s);
    receiving.file.WriteBlock("a\r\n\x1A\0b", 6);
    EXPECT_EQ(receiving.disk.files["a"].contents, "a\r\n\x1A\0b"s);
    receiving.file.WriteBlock("zzz", 0);
    EXPECT_EQ(receiving.host.transfer.lFileOffset, 6);
    EXPECT_EQ(receiving.disk.files["a"].contents.size(), 6u);
}

// The end

TEST(ReceivedFileEnd, WithoutAFileIsFine) {
    Receiving receiving;
    EXPECT_EQ(receiving.file.CloseReceivedFile(), 0);
    EXPECT_TRUE(receiving.host.journal.empty());
}

TEST(ReceivedFileEnd, SetsTheTime) {
    Receiving receiving;
    receiving.Header("a\0"
                     "5 17"s);
    EXPECT_EQ(receiving.file.CloseReceivedFile(), 0);
    EXPECT_EQ(receiving.disk.journal, (std::vector<std::string>{"open a wb", "close a", "time a 15"}));
    EXPECT_TRUE(receiving.Told("status Transfer successful."));
    EXPECT_FALSE(receiving.file.IsOpen());
}

// From 19 January 2038 on.
TEST(ReceivedFileEnd, SetsATimeOfMoreThan31Bits) {
    for (const auto& [told, set] : {std::pair{"20000000000", "2147483648"}, {"37777777777", "4294967295"}}) {
        Receiving receiving;
        receiving.Header("a\0"
                         "5 "s +
                         told);
        EXPECT_EQ(receiving.file.CloseReceivedFile(), 0);
        EXPECT_EQ(receiving.disk.journal.back(), std::string("time a ") + set);
    }
}

TEST(ReceivedFileEnd, LeavesTheTimeWhenNoneWasTold) {
    Receiving receiving;
    receiving.Header("a\0"
                     "5"s);
    EXPECT_EQ(receiving.file.CloseReceivedFile(), 0);
    EXPECT_EQ(receiving.disk.journal, (std::vector<std::string>{"open a wb", "close a"}));
}

TEST(ReceivedFileEnd, TellsOfADiskThatFailed) {
    for (const bool full : {false, true}) {
        Receiving receiving;
        receiving.Header("a\0"
                         "5 17"s);
        receiving.disk.full = full;
        receiving.disk.closesFail = !full;
        receiving.file.WriteBlock("12345", 5);
        EXPECT_EQ(receiving.file.CloseReceivedFile(), -1);
        EXPECT_FALSE(receiving.file.IsOpen());
        EXPECT_FALSE(receiving.Told("status Transfer successful."));
        EXPECT_EQ(receiving.disk.journal, (std::vector<std::string>{"open a wb", "close a"}));
    }
}

TEST(ReceivedFileEnd, AbandonedFileKeepsItsTime) {
    Receiving receiving;
    receiving.Header("a\0"
                     "5 17"s);
    receiving.file.Abandon();
    EXPECT_EQ(receiving.disk.journal, (std::vector<std::string>{"open a wb", "close a"}));
    EXPECT_FALSE(receiving.Told("status Transfer successful."));
}

TEST(ReceivedFileEnd, FileWithoutAHeaderIsMadeAnew) {
    Receiving receiving;
    receiving.file.Pathname = "a";
    receiving.disk.files["a"].contents = "old";
    EXPECT_TRUE(receiving.file.OpenNew());
    EXPECT_EQ(receiving.disk.files["a"].contents, "");
    receiving.file.Abandon();
    receiving.disk.readOnly = true;
    EXPECT_FALSE(receiving.file.OpenNew());
}

} // namespace
