// YModem, both ways: header blocks, batches, streaming, and both ends on one cable.
#include "caseprint.h"
#include "modemfarend.h"
#include "simulatedcable.h"

#include <cstring>
#include <map>

namespace {

using namespace modem;

const std::string A(128, 'a');
const std::string lastBlock = HeaderBlock("");

// Receiving

struct ReceiveCase {
    const char* name;
    std::vector<std::string> answers;
    std::string sent;
    std::map<std::string, std::string> files;
    std::string events;
    int result = 0;
};

class YModemReceive : public testing::TestWithParam<ReceiveCase> {};

TEST_P(YModemReceive, FollowsTheScript) {
    const ReceiveCase& row = GetParam();
    for (const int protocol : {Protocol_YModem, Protocol_YModemG}) {
        MemoryDisk disk;
        Transfer transfer(XferDownload, protocol);
        transfer.AnswerWith(row.answers);
        EXPECT_EQ(transfer.Receive(), row.result);
        EXPECT_EQ(transfer.Sent(), row.sent);
        std::map<std::string, std::string> files;
        for (const auto& [name, file] : disk.files)
            files[name] = file.contents;
        EXPECT_EQ(files, row.files);
        EXPECT_EQ(transfer.Events(), row.events);
    }
}

const std::string header = HeaderBlock("a.bin\0"
                                       "5 17 0 3"s);
const std::string events = "prepare a.bin a.bin|start|";

const ReceiveCase receiveCases[] = {
    {"NoFile", {lastBlock}, "C" + ACK, {}, ""},
    {"OneFile",
     {header, "", CrcBlock(1, "abcde"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + "C" + ACK,
     {{"a.bin", "abcde"}},
     events + "finish"},
    {"EndBeforeAllToldBytesAreThereIsNoEnd",
     {HeaderBlock("a.bin\0"
                  "200 17 0 3"s),
      "", CrcBlock(1, Bytes(128)), EOT},
     "C" + ACK + "C" + ACK + cancel + cancel + cancel,
     {{"a.bin", Bytes(128)}},
     events + "abort",
     1},
    {"FileOfUnknownLengthKeepsItsPadding",
     {HeaderBlock("a.bin"), "", CrcBlock(1, "abcde"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + "C" + ACK,
     {{"a.bin", Padded("abcde")}},
     events + "finish"},
    {"EmptyFile",
     {HeaderBlock("a.bin\0"
                  "0"s),
      "", EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + "C" + ACK,
     {{"a.bin", ""}},
     events + "finish"},
    {"MoreDataThanTheLengthIsCut",
     {header, "", CrcBlock(1, "abcdefgh"), CrcBlock(2, "xyz"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + ACK + "C" + ACK,
     {{"a.bin", "abcde"}},
     events + "finish"},
    {"LongHeader",
     {CrcBlock(0,
               "a.bin\0"
               "5"s +
                   std::string(300, '\0'),
               '\0'),
      "", CrcBlock(1, "abcde"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + "C" + ACK,
     {{"a.bin", "abcde"}},
     events + "finish"},
    {"Batch",
     {header, "", CrcBlock(1, "abcde"), EOT, "",
      HeaderBlock("b.bin\0"
                  "2"s),
      "", CrcBlock(1, "xy"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + "C" + ACK + "C" + ACK + ACK + "C" + ACK,
     {{"a.bin", "abcde"}, {"b.bin", "xy"}},
     events + "finish|prepare b.bin b.bin|start|finish"},
    {"EndOfAFileInFrontOfAName", {EOT, "", lastBlock}, "C" + ACK + "C" + ACK, {}, ""},
    {"RepeatedHeaderIsADuplicate",
     {header, "", header, CrcBlock(1, "abcde"), EOT, "", lastBlock},
     "C" + ACK + "C" + ACK + ACK + ACK + "C" + ACK,
     {{"a.bin", "abcde"}},
     events + "finish"},
    {"DataWhereAHeaderIsDue", {CrcBlock(1, "abcde")}, "C" + Times(3, cancel), {}, "", 1},
    {"BrokenHeaderIsRequestedAgain", {header.substr(0, 132) + "!", lastBlock}, "CC" + ACK, {}, ""},
    {"SilentSender", {}, Times(6, "C") + Times(4, cancel), {}, "", 1},
    {"SecondFileNeverComes",
     {header, "", CrcBlock(1, "abcde"), EOT},
     "C" + ACK + "C" + ACK + ACK + Times(6, "C") + Times(4, cancel),
     {{"a.bin", "abcde"}},
     events + "finish",
     1},
    {"CancelledAtTheName", {CAN + CAN}, "C" + Times(3, cancel), {}, "", 1},
    {"CancelledInTheData",
     {header, "", CAN + CAN},
     "C" + ACK + "C" + Times(3, cancel),
     {{"a.bin", ""}},
     "prepare a.bin a.bin|start",
     1},
    {"NothingButEnds",
     std::vector<std::string>(400, EOT),
     Times(100, "C" + ACK) + Times(3, cancel),
     {},
     "",
     1},
};

// An answer "" stands for each acknowledgement that a request follows at once.
RUN_TABLE(YModemReceive, receiveCases);

TEST(YModemReceiveStart, StatusesAndTimes) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_YModem);
    transfer.AnswerWith({silence, header, "", CrcBlock(1, "abcde"), EOT, "", lastBlock});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(transfer.Statuses(),
              "Receiving filename...|Receiving data...|Receiving data...|Transfer successful.|"
              "File transferred successfully|Receiving filename...");
    EXPECT_EQ(transfer.Elapsed(), 300u + 10000u + 100u);
    EXPECT_EQ(disk.files["a.bin"].modified, 15);
    EXPECT_EQ(transfer.Line().purges, 2);
    EXPECT_EQ(transfer.Double().object.Record().lTransferFileSize, 5);
}

TEST(YModemReceiveStart, ShortHeaderBehindABrokenLongOneStandsAlone) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_YModem);
    const std::string longOne = CrcBlock(0, std::string(1024, '7'));
    transfer.AnswerWith({longOne.substr(0, longOne.size() - 1) + "!", CrcBlock(0, std::string(128, 'n')), "",
                         EOT, "", lastBlock});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_TRUE(disk.files.contains(std::string(128, 'n')));
}

TEST(YModemReceiveStart, FileThatCantBeMadeEndsTheBatch) {
    MemoryDisk disk;
    disk.readOnly = true;
    Transfer transfer(XferDownload, Protocol_YModem);
    transfer.AnswerWith({header});
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_EQ(transfer.Sent(), "C" + ACK + Times(3, cancel));
}

// The sender starts at 0 whatever is here.
TEST(YModemReceiveStart, PartOfAFileIsReplaced) {
    MemoryDisk disk;
    disk.files["a.bin"].contents = std::string(600, 'x');
    Transfer transfer(XferDownload, Protocol_YModem, true);
    transfer.AnswerWith({HeaderBlock("a.bin\0"
                                     "1024"s),
                         "", CrcBlock(1, Bytes(1024)), EOT, "", lastBlock});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(disk.files["a.bin"].contents, Bytes(1024));
}

TEST(YModemReceiveAbort, EndsAtOnceInEveryPhase) {
    for (DWORD at = 0; at < 60000; at += 970) {
        MemoryDisk disk;
        Transfer transfer(XferDownload, Protocol_YModem);
        transfer.AnswerWith({silence, "x", header, silence, CrcBlock(1, "abc"), silence, EOT});
        transfer.Line().abortAt = GetTickCount() + at + 1;
        EXPECT_EQ(transfer.Receive(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 101);
    }
}

// Sending

MemoryDisk::File FileOf(const std::string& contents, int64_t modified = 1000) {
    return {contents, modified};
}

std::string Text(const std::string& name, const std::string& text) {
    return name + '\0' + text;
}

struct SendCase {
    const char* name;
    int protocol;
    std::map<std::string, std::string> files;
    std::string start;
    std::vector<std::string> answers;
    std::string sent;
    std::string events;
    int result = 0;
};

class YModemSend : public testing::TestWithParam<SendCase> {};

TEST_P(YModemSend, FollowsTheScript) {
    const SendCase& row = GetParam();
    MemoryDisk disk;
    Transfer transfer(XferUpload, row.protocol);
    for (const auto& [name, contents] : row.files) {
        disk.files[name] = FileOf(contents);
        transfer.Double().Queue(name);
    }
    transfer.Line().Say(row.start);
    transfer.AnswerWith(row.answers);
    EXPECT_EQ(transfer.Send(), row.result);
    EXPECT_EQ(transfer.Sent(), row.sent);
    EXPECT_EQ(transfer.Events(), row.events);
}

const std::string sendEvents = "prepare a.bin a.bin|start|";
const std::string header1 = HeaderBlock(Text("a.bin", "1 1750 0 3"));

const SendCase sendCases[] = {
    {"OneFile",
     3,
     {{"a.bin", "a"}},
     "C",
     {ACK + "C", ACK, ACK + "C", ACK},
     header1 + CrcBlock(1, "a") + EOT + lastBlock,
     sendEvents + "finish"},
    {"ChecksumReceiver",
     3,
     {{"a.bin", "a"}},
     NAK,
     {ACK + NAK, ACK, ACK + NAK, ACK},
     SumBlock(0, Text("a.bin", "1 1750 0 3") + std::string(112, '\0')) + SumBlock(1, "a") + EOT +
         SumBlock(0, std::string(128, '\0')),
     sendEvents + "finish"},
    {"File129BytesLong",
     3,
     {{"a.bin", Bytes(129)}},
     "C",
     {ACK + "C", ACK, ACK, ACK + "C", ACK},
     HeaderBlock(Text("a.bin", "129 1750 0 3")) + CrcBlock(1, Bytes(128)) +
         CrcBlock(2, Bytes(129).substr(128)) + EOT + lastBlock,
     sendEvents + "finish"},
    {"LongBlocks",
     3,
     {{"a.bin", Bytes(1024)}},
     "C",
     {ACK + "C", ACK, ACK + "C", ACK},
     HeaderBlock(Text("a.bin", "1024 1750 0 3")) + CrcBlock(1, Bytes(1024)) + EOT + lastBlock,
     sendEvents + "finish"},
    {"Batch",
     3,
     {{"a.bin", "a"}, {"b.bin", "b"}},
     "C",
     {ACK + "C", ACK, ACK + "C", ACK + "C", ACK, ACK + "C", ACK},
     header1 + CrcBlock(1, "a") + EOT + HeaderBlock(Text("b.bin", "1 1750 0 3")) + CrcBlock(1, "b") + EOT +
         lastBlock,
     sendEvents + "finish|prepare b.bin b.bin|start|finish"},
    // The header's own "G" is answered before the next is said; nothing else is waited for but the end.
    {"Streaming",
     4,
     {{"a.bin", "a"}},
     "G",
     {"G", "", ACK + "G", ""},
     header1 + CrcBlock(1, "a") + EOT + lastBlock,
     sendEvents + "finish"},
    {"StreamingBecauseTheReceiverWants",
     3,
     {{"a.bin", "a"}},
     "G",
     {"G", "", ACK + "G", ""},
     header1 + CrcBlock(1, "a") + EOT + lastBlock,
     sendEvents + "finish"},
    {"NobodyThere", 3, {{"a.bin", "a"}}, "", {}, cancel, sendEvents + "abort", 1},
    {"JunkBeforeTheRequest",
     3,
     {{"a.bin", "a"}},
     "login: " + CAN + "x" + "C",
     {ACK + "C", ACK, ACK + "C", ACK},
     header1 + CrcBlock(1, "a") + EOT + lastBlock,
     sendEvents + "finish"},
    {"Cancelled", 3, {{"a.bin", "a"}}, CAN + CAN + CAN + CAN, {}, cancel, sendEvents + "abort", 1},
    {"CancelsInTwoPairsOnly",
     3,
     {{"a.bin", "a"}},
     CAN + CAN + "C",
     {ACK + "C", ACK, ACK + "C", ACK},
     header1 + CrcBlock(1, "a") + EOT + lastBlock,
     sendEvents + "finish"},
    {"HeaderNotTaken",
     3,
     {{"a.bin", "a"}},
     "C",
     std::vector<std::string>(6, NAK),
     Times(6, header1) + cancel,
     sendEvents + "abort",
     1},
    {"CancelledBeforeTheData",
     3,
     {{"a.bin", "a"}},
     "C",
     {ACK + CAN},
     header1 + cancel,
     sendEvents + "abort",
     1},
};
RUN_TABLE(YModemSend, sendCases);

struct HeaderCase {
    const char* name;
    std::string dest;
    int64_t modified;
    std::string block; // as it goes out
};

class YModemSendHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(YModemSendHeader, HoldsNameSizeAndTime) {
    MemoryDisk disk;
    disk.files["a.bin"] = FileOf("a", GetParam().modified);
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Double().onEvent = [&](int status) {
        if (status == TransferStatus_Prepare)
            strcpy(transfer.Double().object.Record().szDestFilename, GetParam().dest.c_str());
    };
    transfer.Line().Say("C");
    transfer.AnswerWith({CAN + CAN});
    EXPECT_EQ(transfer.Send(), 1);
    EXPECT_EQ(transfer.Sent(), HeaderBlock(GetParam().block) + cancel);
    EXPECT_TRUE(transfer.Logged("wctxpn: " + GetParam().block.substr(GetParam().block.find('\0') + 1)));
}

const HeaderCase headerCases[] = {
    {"Plain", "b.bin", 1000, Text("b.bin", "1 1750 0 3")},
    {"OnlyTheLastPart", "x/y/b.bin", 1000, Text("b.bin", "1 1750 0 3")},
    {"BackslashEndsAtTheDoor", "x\\b.bin", 1000, Text("b.bin", "1 1750 0 3")},
    {"LowAndHighWordOfTheTime", "b", 0x900000005, Text("b", "1 5 11 3")},
    {"LongTime", "b", 0xFFFFFFFF, Text("b", "1 37777777777 0 3")},
    {"LongName", std::string(116, 'n'), 1000, Text(std::string(116, 'n'), "1 1750 0 3")},
    {"TooLongNameIsCut", std::string(300, 'n'), 1000, Text(std::string(116, 'n'), "1 1750 0 3")},
};
RUN_TABLE(YModemSendHeader, headerCases);

TEST(YModemSendStatus, TellsEachStep) {
    MemoryDisk disk;
    disk.files["a.bin"] = FileOf("a");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Line().Say("C");
    transfer.AnswerWith({ACK + "C", ACK, ACK + "C", ACK});
    EXPECT_EQ(transfer.Send(), 0);
    EXPECT_EQ(
        transfer.Statuses(),
        "Sending filename...|File transferred successfully.|Terminating transfer...|Sending filename...");
    EXPECT_TRUE(transfer.Logged("wctxpn: a.bin"));
    EXPECT_TRUE(transfer.Logged("wctxpn: "));
}

TEST(YModemSendStatus, NobodyThereIsToldAfter80Seconds) {
    MemoryDisk disk;
    disk.files["a.bin"] = FileOf("a");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    EXPECT_EQ(transfer.Send(), 1);
    EXPECT_EQ(transfer.Statuses(), "Sending filename...|Timeout waiting for ZRINIT|Transfer failed.");
    EXPECT_EQ(transfer.Elapsed(), 80000u + 200u);
}

TEST(YModemSendStatus, CancelIsTold) {
    MemoryDisk disk;
    disk.files["a.bin"] = FileOf("a");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Line().Say(CAN + CAN + CAN + CAN);
    EXPECT_EQ(transfer.Send(), 1);
    EXPECT_EQ(transfer.CountStatus("Received cancelation while waiting to send a file"), 1u);
}

struct RefusedCase {
    const char* name;
    std::string dest;
    bool refused;
};

class YModemSendName : public testing::TestWithParam<RefusedCase> {};

TEST_P(YModemSendName, ThatLeadsAwayIsRefused) {
    MemoryDisk disk;
    disk.files["a.bin"] = FileOf("a");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Double().onEvent = [&](int status) {
        if (status == TransferStatus_Prepare)
            strcpy(transfer.Double().object.Record().szDestFilename, GetParam().dest.c_str());
    };
    transfer.Line().Say("C");
    transfer.AnswerWith({ACK + "C", ACK, ACK + "C", ACK});
    EXPECT_EQ(transfer.Send(), GetParam().refused);
    EXPECT_EQ(transfer.Sent() == cancel + cancel, GetParam().refused);
    EXPECT_EQ(disk.journal.empty(), GetParam().refused);
    EXPECT_EQ(transfer.CountStatus("Transfer failed."), GetParam().refused ? 1u : 0u);
}

// What "\" leads to never gets here: only the part behind it goes out.
const RefusedCase refusedCases[] = {
    {"Plain", "b.bin", false},
    {"DotsAndSlash", "../b.bin", true},
    {"DotsAndSlashInside", "x/../b.bin", true},
    {"DotsAndBackslash", "..\\b", false},
    {"Slash", "/b.bin", true},
    {"DotsAlone", "a..b", false},
    {"FolderDownwards", "x/b.bin", false},
};
RUN_TABLE(YModemSendName, refusedCases);

TEST(YModemSendFile, ThatCantBeReadIsLeftOutAndFailsTheTransfer) {
    MemoryDisk disk;
    disk.files["b.bin"] = FileOf("b");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Double().Queue("b.bin");
    transfer.Line().Say("C");
    transfer.AnswerWith({ACK + "C", ACK, ACK + "C", ACK});
    EXPECT_EQ(transfer.Send(), 1);
    EXPECT_EQ(transfer.Sent(), HeaderBlock(Text("b.bin", "1 1750 0 3")) + CrcBlock(1, "b") + EOT + lastBlock);
    EXPECT_EQ(transfer.Events(), "prepare a.bin a.bin|start|abort|prepare b.bin b.bin|start|finish");
    EXPECT_TRUE(transfer.Statuses().starts_with("Unable to read file...|Sending filename..."));
}

TEST(YModemSendFile, FolderIsLeftOut) {
    MemoryDisk disk;
    disk.folders.insert("a.bin");
    disk.files["b.bin"] = FileOf("b");
    Transfer transfer(XferUpload, Protocol_YModem);
    transfer.Double().Queue("a.bin");
    transfer.Double().Queue("b.bin");
    transfer.Line().Say("C");
    transfer.AnswerWith({ACK + "C", ACK, ACK + "C", ACK});
    EXPECT_EQ(transfer.Send(), 0);
    EXPECT_EQ(transfer.Events(), "prepare a.bin a.bin|start|abort|prepare b.bin b.bin|start|finish");
    EXPECT_TRUE(transfer.Statuses().starts_with("Directories not supported...|Sending filename..."));
}

TEST(YModemSendAbort, EndsAtOnceInEveryPhase) {
    for (DWORD at = 0; at < 200000; at += 3700) {
        MemoryDisk disk;
        disk.files["a.bin"] = FileOf("a");
        Transfer transfer(XferUpload, Protocol_YModem);
        transfer.Double().Queue("a.bin");
        transfer.Line().Say("x");
        transfer.Line().Say("C", 40000);
        transfer.AnswerWith({silence, ACK, silence, ACK, silence});
        transfer.Line().abortAt = GetTickCount() + at + 1;
        transfer.Send();
        EXPECT_LE(transfer.Elapsed(), at + 301);
        EXPECT_EQ(transfer.CountStatus("Timeout waiting for ZRINIT"), 0u);
    }
}

// Both ends on one cable

struct CableCase {
    const char* name;
    int sendAs;
    int receiveAs;
    std::vector<size_t> sizes;
    Noise noise = {};
};

class YModemCable : public testing::TestWithParam<CableCase> {};

TEST_P(YModemCable, CarriesTheFiles) {
    const CableCase& row = GetParam();
    MemoryDisk disk;
    Transfer sender(XferUpload, row.sendAs);
    Transfer receiver(XferDownload, row.receiveAs);
    for (size_t i = 0; i < row.sizes.size(); ++i) {
        const std::string name = "in" + std::to_string(i);
        disk.files[name] = FileOf(Bytes(row.sizes[i]));
        sender.Double().Queue(name);
        receiver.Double().Queue("out" + std::to_string(i));
    }
    SimulatedCable cable(row.noise);
    cable.Connect(sender.Line(), receiver.Line());
    int sent = -1;
    int received = -1;
    cable.Run([&] { sent = sender.Send(); }, [&] { received = receiver.Receive(); });
    EXPECT_EQ(sent, 0);
    EXPECT_EQ(received, 0);
    for (size_t i = 0; i < row.sizes.size(); ++i) {
        std::string& got = disk.files["out" + std::to_string(i)].contents;
        if (row.sendAs < Protocol_YModem)
            got.resize(row.sizes[i]); // the rest is padding
        EXPECT_EQ(got == Bytes(row.sizes[i]), true);
    }
}

const CableCase cableCases[] = {
    {"XModem", 0, 0, {5000}},
    {"XModemCrc", 1, 1, {5000}},
    {"XModem1K", 2, 2, {50000}},
    {"XModem1KToChecksum", 2, 0, {5000}},
    {"YModem", 3, 3, {0, 1, 127, 128, 129, 895, 896, 897, 1023, 1024, 1025, 100000}},
    {"YModemG", 4, 4, {5000, 300}},
    {"NoisyXModem", 1, 1, {20000}, {7, 0.00005, 0.00002, 0.00002}},
    {"NoisyYModem", 3, 3, {20000, 3000}, {3, 0.00005, 0.00002, 0.00002}},
};
RUN_TABLE(YModemCable, cableCases);

// Noise may end a transfer; it may not make a wrong file. Each side that says so is right: the receiver has
// the whole file, the sender was acknowledged to its end.
TEST(YModemNoise, NeverMakesAWrongFile) {
    int whole = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        MemoryDisk disk;
        Transfer sender(XferUpload, Protocol_YModem);
        Transfer receiver(XferDownload, Protocol_YModem);
        disk.files["in"] = FileOf(Bytes(10000));
        sender.Double().Queue("in");
        receiver.Double().Queue("out");
        SimulatedCable cable({seed, 0.0004, 0.0001, 0.0001});
        cable.Connect(sender.Line(), receiver.Line());
        cable.Run([&] { sender.Send(); }, [&] { receiver.Receive(); });
        if (receiver.Events().find("finish") == std::string::npos)
            continue;
        ++whole;
        EXPECT_EQ(disk.files["out"].contents == Bytes(10000), true) << seed;
    }
    EXPECT_GT(whole, 10);
}

} // namespace
