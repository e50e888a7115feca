// Queue, names and progress of a transfer.
#include "memorydisk.h"
#include "platform.h"
#include "transferdouble.h"

#include "transfer/queue.h"
#include "transfer/services.h"
#include "transfer/statusdialog.h"
#include "transfer/xferpath.h"

#include <gtest/gtest.h>

namespace {

using Journal = std::vector<std::string>;

struct PathCase {
    const char* folder;
    const char* name;
    const char* expected;
};

const PathCase pathCases[] = {
    {"", "", ""},
    {"in", "", ""},
    {"", "a.txt", "a.txt"},
    {"in", "a.txt", "in\\a.txt"},
    {"in\\", "a.txt", "in\\a.txt"},
    {"C:\\in", "a.txt", "C:\\in\\a.txt"},
    {"in", "b\\a.txt", "b\\a.txt"},
    {"in", "\\a.txt", "\\a.txt"},
    {"in", "C:a.txt", "in\\C:a.txt"},
    {"in", "b/a.txt", "in\\b/a.txt"},
};

const PathCase stripCases[] = {
    {"", "a.txt", "a.txt"},
    {"", "in\\a.txt", "a.txt"},
    {"", "C:\\in\\a.txt", "a.txt"},
    {"", "C:a.txt", "a.txt"},
    {"", "in/a.txt", "in/a.txt"},
    {"", "C:\\a:b", "a:b"},
    {"", "in\\", ""},
    {"", "", ""},
};

void SetFolder(TransferDouble& transfer, const char* szFolder) {
    COMCTL& record = transfer.object.Record();
    std::snprintf(record.szXferPath, sizeof record.szXferPath, "%s", szFolder);
}

struct ProtocolCase {
    int nProtocol;
    const char* name;
};

const ProtocolCase protocolCases[] = {
    {0, "XModem"}, {1, "XModem CRC"}, {2, "XModem 1K"},     {3, "YModem"}, {4, "YModem-G"},
    {5, "ZModem"}, {6, "Kermit"},     {7, "Compuserve B+"}, {8, ""},       {-1, ""},
};

// What the log got, without the word in front of each line.
Journal LogOf(const TransferDouble& transfer) {
    Journal lines;
    for (const std::string& entry : transfer.object.journal)
        if (entry.starts_with("log "))
            lines.push_back(entry.substr(4));
    return lines;
}

} // namespace

TEST(XferProtocol, EachHasItsName) {
    for (const ProtocolCase& test : protocolCases)
        EXPECT_STREQ(ProtocolName(test.nProtocol), test.name) << test.nProtocol;
}

TEST(XferPath, NameThatDoesNotFitIsCut) {
    TransferDouble transfer(XferUpload);
    const COMCTL& record = transfer.object.Record();
    StoreDestFilename(transfer.object.Record(), std::string(512, 'a').c_str());
    EXPECT_EQ(record.szDestFilename, std::string(512, 'a'));
    StoreDestFilename(transfer.object.Record(), std::string(513, 'b').c_str());
    EXPECT_EQ(record.szDestFilename, std::string(512, 'b'));
    EXPECT_STREQ(record.szTransferStatus, "") << "the field behind";
}

TEST(XferPath, JoinsTheFolderToBareNames) {
    TransferDouble transfer(XferDownload);
    for (const PathCase& test : pathCases) {
        SetFolder(transfer, test.folder);
        EXPECT_EQ(MakeXferPath(transfer.object.Record(), test.name), test.expected) << test.name;
    }
}

TEST(XferPath, StripsUpToTheLastBackslashOrColon) {
    for (const PathCase& test : stripCases) {
        std::string name = test.name;
        xfStripPath(name);
        EXPECT_EQ(name, test.expected) << test.name;
    }
}

TEST(XferPath, DestFilenameGoesToTheFolderInADownloadOnly) {
    for (const XferDirection direction : {XferNone, XferUpload, XferDownload}) {
        TransferDouble transfer(direction);
        SetFolder(transfer, "in");
        StoreDestFilename(transfer.object.Record(), "x");
        EXPECT_STREQ(transfer.object.Record().szDestFilename, direction == XferUpload ? "x" : "in\\x");
        StoreDestFilename(transfer.object.Record(), "");
        EXPECT_STREQ(transfer.object.Record().szDestFilename, "");
        StoreDestFilename(transfer.object.Record(), "y");
        StoreDestFilename(transfer.object.Record(), nullptr);
        EXPECT_STREQ(transfer.object.Record().szDestFilename, "");
    }
}

TEST(XferQueue, GivesNamesInTheirOrder) {
    TransferDouble transfer(XferUpload);
    COMCTL& record = transfer.object.Record();
    EXPECT_EQ(FirstQueuedFile(record), "");
    for (const char* name : {"one", "two", "three"})
        EXPECT_TRUE(QueueFile(record, name));
    EXPECT_EQ(record.cFiles, 3);
    EXPECT_EQ(record.lpFileList.size(), sizeof "one" + sizeof "two" + sizeof "three");
    for (const char* name : {"one", "two", "three"}) {
        EXPECT_EQ(FirstQueuedFile(record), name);
        DropFirstQueuedFile(record);
    }
    EXPECT_EQ(record.cFiles, 0);
    EXPECT_TRUE(record.lpFileList.empty());
    DropFirstQueuedFile(record);
    EXPECT_EQ(record.cFiles, 0);
}

TEST(XferQueue, JoinsTheFolderWhenANameIsQueued) {
    TransferDouble transfer(XferUpload);
    SetFolder(transfer, "out");
    transfer.Queue("a");
    SetFolder(transfer, "elsewhere");
    EXPECT_EQ(FirstQueuedFile(transfer.object.Record()), "out\\a");
}

TEST(XferQueue, NamelessEntriesCount) {
    TransferDouble transfer(XferDownload);
    QueueFile(transfer.object.Record(), nullptr);
    QueueFile(transfer.object.Record(), "");
    QueueFile(transfer.object.Record(), "b");
    EXPECT_EQ(transfer.object.Record().cFiles, 3);
    DropFirstQueuedFile(transfer.object.Record());
    DropFirstQueuedFile(transfer.object.Record());
    EXPECT_EQ(FirstQueuedFile(transfer.object.Record()), "b");
    DropQueuedFiles(transfer.object.Record());
    EXPECT_EQ(transfer.object.Record().cFiles, 0);
}

TEST(XferProgress, OneFileAsTheHostSeesIt) {
    const MemoryDisk disk;
    TransferDouble transfer(XferUpload);
    transfer.Queue("C:\\out\\a.txt");
    std::string source;
    std::string dest;
    xfPrepareSend(transfer.transfer, source, dest);
    EXPECT_EQ(source, "C:\\out\\a.txt");
    EXPECT_EQ(dest, "a.txt") << "the far end is told no folder";
    xfStartFile(transfer.transfer);
    xfSetFileSize(transfer.transfer, 2000);
    EXPECT_EQ(transfer.object.Record().lTransferFileSize, 2000);
    xfUpdate(transfer.transfer, 1024, 1024);
    EXPECT_EQ(transfer.object.Record().lBytesTransferred, 1024);
    xfUpdate(transfer.transfer, 2000, 976);
    xfFileDone(transfer.transfer);
    EXPECT_EQ(transfer.journal, Journal({"prepare C:\\out\\a.txt C:\\out\\a.txt", "start",
                                         "title Sending C:\\out\\a.txt (ZModem)", "block 0", "block 1024",
                                         "block 2000", "finish"}));
    EXPECT_EQ(transfer.object.Record().nTransferStatus, TransferStatus_WaitForFile);
}

TEST(XferProgress, AnUnknownSizeIsNotTold) {
    TransferDouble transfer(XferDownload);
    transfer.object.Record().lTransferFileSize = 7;
    xfSetFileSize(transfer.transfer, UnknownFileSize);
    EXPECT_EQ(transfer.object.Record().lTransferFileSize, 7);
    EXPECT_EQ(transfer.transfer.lFileSize, UnknownFileSize);
    EXPECT_EQ(transfer.journal, Journal());
}

TEST(XferProgress, ANewFileStartsFromZero) {
    TransferDouble transfer(XferDownload);
    transfer.transfer.lBytesDone = 1;
    transfer.transfer.lFileOffset = 2;
    transfer.transfer.lFileSize = 3;
    platform::AdvanceTick(1234);
    xfStartFile(transfer.transfer);
    EXPECT_EQ(transfer.transfer.lBytesDone, 0);
    EXPECT_EQ(transfer.transfer.lFileOffset, 0);
    EXPECT_EQ(transfer.transfer.lFileSize, 0);
    EXPECT_EQ(transfer.transfer.dwStartTicks, GetTickCount());
}

TEST(XferProgress, SkippedFileIsAnAbortOfTheFile) {
    TransferDouble transfer(XferUpload);
    xfFileSkipped(transfer.transfer);
    EXPECT_EQ(transfer.journal, Journal({"abort"}));
}

TEST(XferProgress, StatusLineReachesTheRecord) {
    TransferDouble transfer(XferUpload);
    xfSetMessage(transfer.transfer, "100% of %s%n");
    EXPECT_STREQ(transfer.object.Record().szTransferStatus, "100% of %s%n");
    EXPECT_EQ(transfer.lastStatus, "100% of %s%n");
}

TEST(XferLog, TellsEachStepOfAFile) {
    const MemoryDisk disk;
    TransferDouble transfer(XferUpload);
    transfer.Queue("C:\\out\\a.txt");
    std::string source;
    std::string dest;
    xfPrepareSend(transfer.transfer, source, dest);
    xfStartFile(transfer.transfer);
    xfSetFileSize(transfer.transfer, 2000);
    xfUpdate(transfer.transfer, 1024, 1024);
    xfSetMessage(transfer.transfer, "Sending %s");
    xfSetMessage(transfer.transfer, "");
    xfFileDone(transfer.transfer);
    xfFileSkipped(transfer.transfer);
    EXPECT_EQ(LogOf(transfer), Journal({"Source file=C:\\out\\a.txt", "Destination file=a.txt",
                                        "Beginning to transfer a new file", "0 bytes transferred",
                                        "Total bytes: 2000", "1024 bytes transferred", "Sending %s",
                                        "File has been transferred", "File was skipped."}));
}

TEST(XferLog, IsSilentWhereItWasOffAtTheStart) {
    TransferDouble transfer(XferUpload);
    transfer.transfer.bWireTap = 0;
    xfStartFile(transfer.transfer);
    xfUpdate(transfer.transfer, 1024, 1024);
    EXPECT_EQ(LogOf(transfer), Journal());
}

TEST(XferLog, TellsAFreeNameAsItTellsTheLastOne) {
    MemoryDisk disk;
    TransferDouble transfer(XferDownload);
    std::string name;
    xfPrepareReceive(transfer.transfer, name, name);
    EXPECT_EQ(LogOf(transfer), Journal({"Unique filename:UNTITLED.000 after 1000", "Source file=UNTITLED.000",
                                        "Destination file=UNTITLED.000"}));
}

TEST(XferUnique, TakesTheFirstFreeName) {
    MemoryDisk disk;
    TransferDouble transfer(XferDownload);
    EXPECT_EQ(xfUniqueFilename(transfer.transfer), "UNTITLED.000");
    disk.files["UNTITLED.000"];
    disk.files["UNTITLED.001"];
    EXPECT_EQ(xfUniqueFilename(transfer.transfer), "UNTITLED.002");
    SetFolder(transfer, "in");
    EXPECT_EQ(xfUniqueFilename(transfer.transfer), "in\\UNTITLED.000");
}

TEST(XferUnique, OverwritesTheLastOfAThousand) {
    MemoryDisk disk;
    TransferDouble transfer(XferDownload);
    for (int i = 0; i < 1000; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "UNTITLED.%03d", i % 1000);
        disk.files[name];
    }
    EXPECT_EQ(xfUniqueFilename(transfer.transfer), "UNTITLED.999");
}

TEST(XferUnique, NamelessReceiveGetsOne) {
    const MemoryDisk disk;
    TransferDouble transfer(XferDownload);
    std::string name;
    xfPrepareReceive(transfer.transfer, name, name);
    EXPECT_EQ(name, "UNTITLED.000");
    EXPECT_EQ(transfer.journal.front(), "prepare UNTITLED.000 UNTITLED.000");
}

namespace {

// A transfer that believes to have a dialog.
struct ShownTransfer : TransferDouble {
    ShownTransfer() : TransferDouble(XferDownload) { transfer.hDlg = reinterpret_cast<HWND>(1); }
};

struct PercentCase {
    LONG size;
    LONG done;
    int percent;
};

const PercentCase percentCases[] = {
    {1000, 0, 0},
    {1000, 500, 50},
    {1000, 999, 99},
    {1000, 1000, 100},
    {0, 500, 0},
    {-1, 500, 0},
    {UnknownFileSize, 1000, 0},
    {UnknownFileSize, 42949672, 0},
    {42949672, 42949672, 100},
    // Counted in 32 bits, kept so.
    {42949673, 42949673, 0},
    {85899346, 64424509, 24},
};

struct ElapsedCase {
    DWORD milliseconds;
    const char* text;
};

const ElapsedCase elapsedCases[] = {
    {0, ""},
    {999, ""},
    {1000, "00:00:01"},
    {59999, "00:00:59"},
    {60000, "00:01:00"},
    {3599000, "00:59:59"},
    {3600000, "01:00:00"},
    {360000000, "100:00:00"},
};

} // namespace

TEST(XferShown, BarShowsThePercentOfTheFile) {
    for (const PercentCase& test : percentCases) {
        ShownTransfer shown;
        xfSetFileSize(shown.transfer, test.size);
        xfUpdate(shown.transfer, test.done, 0);
        EXPECT_EQ(shown.percent, test.percent) << test.done << " of " << test.size;
    }
}

TEST(XferShown, TimeCountsFromTheFirstBytes) {
    for (const ElapsedCase& test : elapsedCases) {
        ShownTransfer shown;
        xfStartFile(shown.transfer);
        platform::AdvanceTick(5000);
        xfUpdate(shown.transfer, 100, 100);
        platform::AdvanceTick(test.milliseconds);
        xfUpdate(shown.transfer, 200, 100);
        EXPECT_EQ(shown.items[Item_Elapsed], test.text) << test.milliseconds;
    }
}

TEST(XferShown, BlockSizeOfZeroIsEmpty) {
    ShownTransfer shown;
    xfUpdate(shown.transfer, 128, 128);
    EXPECT_EQ(shown.items[Item_BlockSize], "128");
    xfUpdate(shown.transfer, 256, 0);
    EXPECT_EQ(shown.items[Item_BlockSize], "");
}

TEST(XferShown, SizesAreTold) {
    ShownTransfer shown;
    xfSetFileSize(shown.transfer, 5000);
    xfUpdate(shown.transfer, 1024, 1024);
    EXPECT_EQ(shown.items[Item_FileSize], "5000 bytes");
    EXPECT_EQ(shown.items[Item_BytesDone], "1024 bytes");
}

TEST(XferShown, UnknownSizeLeavesItsLabelEmpty) {
    ShownTransfer shown;
    xfStartFile(shown.transfer);
    xfSetFileSize(shown.transfer, UnknownFileSize);
    EXPECT_EQ(shown.items[Item_FileSize], "");
}

TEST(XferShown, LabelsAreEmptiedAtTheStartOfEachFile) {
    ShownTransfer shown;
    for (int item = Item_BytesDone; item <= Item_BlockSize; ++item)
        shown.items[item] = "old";
    xfStartFile(shown.transfer);
    for (int item = Item_BytesDone; item <= Item_BlockSize; ++item)
        EXPECT_EQ(shown.items[item], "") << item;
}
