// XModem, both ways, against a scripted far end: every answer, every limit, every text.
#include "caseprint.h"
#include "modemfarend.h"
#include "terminaldouble.h"
#include "transfer/blockreceiver.h"
#include "transfer/blocksender.h"

namespace {

using namespace modem;

const std::string A(128, 'a');
const std::string B(128, 'b');

const std::string receiving = "Receiving data...";
const std::string timeout = "Timeout waiting for sector";
const std::string noise = "Line noise detected";
const std::string received = "Transfer successful.|File transferred successfully";

TEST(XModemBlock, CrcIsThatOfXModem) {
    EXPECT_EQ(Crc16("123456789"), 0x31C3u);
}

// Receiving

struct ReceiveCase {
    const char* name;
    int protocol;
    std::vector<std::string> answers; // to the first request, and so on
    std::string sent;
    std::string contents;
    std::string statuses; // after the first "Receiving data..."
    int result = 0;
};

class XModemReceive : public testing::TestWithParam<ReceiveCase> {};

TEST_P(XModemReceive, FollowsTheScript) {
    const ReceiveCase& row = GetParam();
    MemoryDisk disk;
    Transfer transfer(XferDownload, row.protocol);
    transfer.AnswerWith(row.answers);
    EXPECT_EQ(transfer.Receive(), row.result);
    EXPECT_EQ(transfer.Sent(), row.sent);
    EXPECT_EQ(disk.files["UNTITLED.000"].contents, row.contents);
    EXPECT_EQ(transfer.Statuses(), receiving + (row.statuses.empty() ? "" : "|") + row.statuses);
    EXPECT_EQ(transfer.Logged("Transfer completed successfully"), row.result == 0);
    EXPECT_EQ(transfer.Logged("Transfer completed without success"), row.result != 0);
}

// What is said and sent when nobody answers any more: this block's five passes, and the end.
std::string Fails(size_t requests, const std::string& request) {
    return Times(requests, request) + Times(4, cancel);
}

const std::string broken = CrcBlock(1, A).substr(0, 130) + "!!!";
const std::string oneBroken = noise + "|" + receiving + "|" + received;

const ReceiveCase receiveCases[] = {
    {"Checksum",
     0,
     {SumBlock(1, A), SumBlock(2, "b"), EOT},
     NAK + ACK + ACK + ACK,
     A + Padded("b"),
     receiving + "|" + receiving + "|" + received},
    {"Crc",
     1,
     {CrcBlock(1, A), CrcBlock(2, "b"), EOT},
     "C" + ACK + ACK + ACK,
     A + Padded("b"),
     receiving + "|" + receiving + "|" + received},
    {"BlockSizeFollowsTheBlock",
     1,
     {CrcBlock(1, Bytes(1024)), CrcBlock(2, A), EOT},
     "C" + ACK + ACK + ACK,
     Bytes(1024) + A,
     receiving + "|" + receiving + "|" + received},
    {"LongBlocks",
     2,
     {CrcBlock(1, Bytes(1024)), EOT},
     "C" + ACK + ACK,
     Bytes(1024),
     receiving + "|" + received},
    {"LongBlocksWithChecksum",
     0,
     {SumBlock(1, Bytes(1024)), EOT},
     NAK + ACK + ACK,
     Bytes(1024),
     receiving + "|" + received},
    {"EmptyFile", 1, {EOT}, "C" + ACK, "", received},
    {"DuplicateIsAcknowledgedAndDropped",
     1,
     {CrcBlock(1, A), CrcBlock(1, A), CrcBlock(2, B), EOT},
     "C" + ACK + ACK + ACK + ACK,
     A + B,
     receiving + "|Received duplicate sector|" + receiving + "|" + received},
    {"BlockOutOfOrder",
     1,
     {CrcBlock(1, A), CrcBlock(3, B)},
     "C" + ACK + Times(3, cancel),
     A,
     receiving + "|Synchronization error",
     1},
    {"BlockFromBefore",
     1,
     {CrcBlock(1, A), CrcBlock(2, A), CrcBlock(1, B)},
     "C" + ACK + ACK + Times(3, cancel),
     A + A,
     receiving + "|" + receiving + "|Synchronization error",
     1},
    {"BrokenFirstBlockIsRequestedAgain", 1, {broken, CrcBlock(1, A), EOT}, "CC" + ACK + ACK, A, oneBroken},
    {"BrokenLaterBlockIsRefused",
     1,
     {CrcBlock(1, A), CrcBlock(2, B).substr(0, 132) + "!", CrcBlock(2, B), EOT},
     "C" + ACK + NAK + ACK + ACK,
     A + B,
     receiving + "|" + noise + "|" + receiving + "|" + received},
    {"BrokenHighCrcByte",
     1,
     {CrcBlock(1, A).substr(0, 131) + "!" + CrcBlock(1, A)[132], CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     oneBroken},
    {"BrokenChecksum",
     0,
     {SumBlock(1, A).substr(0, 131) + "!", SumBlock(1, A), EOT},
     NAK + NAK + ACK + ACK,
     A,
     oneBroken},
    {"MissingCrc", 1, {CrcBlock(1, A).substr(0, 131), CrcBlock(1, A), EOT}, "CC" + ACK + ACK, A, oneBroken},
    {"WrongComplement",
     1,
     {"\x01\x01\x01" + A, CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     noise + ": invalid sector number|" + receiving + "|" + received},
    {"ShortBlock",
     1,
     {CrcBlock(1, A).substr(0, 100), CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     timeout + "|" + receiving + "|" + received},
    {"MissingNumber",
     1,
     {"\x01", CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     noise + ": invalid sector number|" + receiving + "|" + received},
    {"Junk",
     1,
     {"hello", CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     noise + ": Unexpected sector type|" + receiving + "|" + received},
    {"JunkInFrontCostsTheBlock",
     1,
     {"x" + CrcBlock(1, A), CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     noise + ": Unexpected sector type|" + receiving + "|" + received},
    {"FirstTimeoutIsSilent",
     1,
     {silence, CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     receiving + "|" + received},
    {"LaterTimeoutIsNot",
     1,
     {CrcBlock(1, A), silence, CrcBlock(2, B), EOT},
     "C" + ACK + NAK + ACK + ACK,
     A + B,
     receiving + "|" + timeout + "|" + receiving + "|" + received},
    {"TwoCancels",
     1,
     {CrcBlock(1, A), CAN + CAN},
     "C" + ACK + Times(3, cancel),
     A,
     receiving + "|Sender cancelled|Transfer error",
     1},
    {"OneCancelIsNone", 1, {CAN + CrcBlock(1, A), EOT}, "C" + ACK + ACK, A, receiving + "|" + received},
    {"CancelsApartAreNone",
     1,
     {CAN + "x", CAN + CrcBlock(1, A), EOT},
     "CC" + ACK + ACK,
     A,
     noise + ": Unexpected sector type|" + receiving + "|" + received},
    {"SilentSender", 1, {}, Fails(6, "C"), "", "Transfer error", 1},
    {"SilentSenderWithChecksum", 0, {}, Fails(6, NAK), "", "Transfer error", 1},
    {"SenderFallsSilent",
     1,
     {CrcBlock(1, A)},
     "C" + ACK + Fails(5, NAK),
     A,
     receiving + "|" + timeout + "|" + timeout + "|" + timeout + "|" + timeout + "|" + timeout +
         "|Transfer error",
     1},
    {"GoodOnTheFifthPass",
     1,
     {silence, silence, silence, silence, CrcBlock(1, A), EOT},
     "CCCCC" + ACK + ACK,
     A,
     receiving + "|" + received},
};
RUN_TABLE(XModemReceive, receiveCases);

TEST(XModemReceiveBatch, NumbersWrapAt256) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    std::vector<std::string> answers;
    std::string contents;
    for (int n = 1; n <= 600; ++n) {
        contents += Padded("block " + std::to_string(n));
        answers.push_back(CrcBlock(n & 255, "block " + std::to_string(n)));
    }
    answers.push_back(EOT);
    transfer.AnswerWith(answers);
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(disk.files["UNTITLED.000"].contents, contents);
}

// However much has come: the count that begins at two thousand million has nothing to say here.
TEST(XModemReceiveLength, HasNoLimit) {
    MemoryDisk disk;
    TransferDouble host(XferDownload, Protocol_XModemCRC);
    host.keepBlocks = false;
    ModemLine line(host.transfer);
    ReceivedFile file(line, false);
    file.ProcessHeader("", 0);
    file.Pathname = "a";
    ASSERT_TRUE(file.OpenNew());
    BlockReceiver receiver(line, file);
    receiver.Crcflg = true;
    std::deque<std::string> blocks = {CrcBlock(1, A), CrcBlock(2, B), EOT, silence};
    host.line.onWrite = [&](const std::string&) {
        file.Bytesleft = std::min<LONG>(file.Bytesleft, 128);
        host.line.Say(blocks.front());
        blocks.pop_front();
    };
    EXPECT_EQ(receiver.ReceiveBlocks(), 0);
    EXPECT_EQ(disk.files["a"].contents, A + B);
}

TEST(XModemReceiveEvents, ComeInTheirOrder) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.Double().keepBlocks = true;
    transfer.AnswerWith({CrcBlock(1, A), CrcBlock(2, A), EOT});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(transfer.Events(), "prepare UNTITLED.000 UNTITLED.000|start|block 128|block 256|finish");
    EXPECT_EQ(disk.journal, (std::vector<std::string>{"open UNTITLED.000 wb", "close UNTITLED.000"}));
    EXPECT_TRUE(transfer.Logged("Starting transfer"));
    EXPECT_TRUE(transfer.Logged("Total bytes: 2000000000"));
}

TEST(XModemReceiveEvents, QueuedNameIsTheDestination) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.Double().Queue("wanted.bin");
    transfer.AnswerWith({CrcBlock(1, A), EOT});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(disk.files["wanted.bin"].contents, A);
}

// Kept so: where all the names are taken, the last one is taken again.
TEST(XModemReceiveEvents, ThousandFilesWithoutANameCostTheLast) {
    MemoryDisk disk;
    for (int i = 0; i < 1000; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "UNTITLED.%03d", i % 1000);
        disk.files[name].contents = "old";
    }
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.AnswerWith({CrcBlock(1, A), EOT});
    EXPECT_EQ(transfer.Receive(), 0);
    EXPECT_EQ(disk.files["UNTITLED.999"].contents, A);
    EXPECT_EQ(disk.files["UNTITLED.998"].contents, "old");
    EXPECT_EQ(disk.files.size(), 1000u);
}

struct FailCase {
    const char* name;
    void (*arrange)(MemoryDisk&);
    std::string sent;
    std::string events;
};

class XModemReceiveDisk : public testing::TestWithParam<FailCase> {};

TEST_P(XModemReceiveDisk, FailureFailsTheTransfer) {
    MemoryDisk disk;
    GetParam().arrange(disk);
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.AnswerWith({CrcBlock(1, A), EOT});
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_EQ(transfer.Sent(), GetParam().sent);
    EXPECT_EQ(transfer.Events(), "prepare UNTITLED.000 UNTITLED.000|start" + GetParam().events);
    EXPECT_EQ(transfer.CountStatus("File transferred successfully"), 0u);
}

const FailCase failCases[] = {
    {"NoFile", [](MemoryDisk& disk) { disk.readOnly = true; }, cancel + cancel, ""},
    {"Full", [](MemoryDisk& disk) { disk.full = true; }, "C" + ACK + Times(3, cancel), "|abort"},
    {"Close", [](MemoryDisk& disk) { disk.closesFail = true; }, "C" + ACK + Times(3, cancel), "|abort"},
};
RUN_TABLE(XModemReceiveDisk, failCases);

// Limits of waiting: milliseconds from the start to the end.

struct TimeCase {
    const char* name;
    std::vector<std::string> answers;
    DWORD elapsed;
};

class XModemReceiveTime : public testing::TestWithParam<TimeCase> {};

TEST_P(XModemReceiveTime, IsLimited) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.AnswerWith(GetParam().answers);
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_EQ(transfer.Elapsed(), GetParam().elapsed);
}

std::vector<std::string> Blocks(int count) {
    std::vector<std::string> blocks;
    for (int n = 1; n <= count; ++n)
        blocks.push_back(CrcBlock(n, A));
    return blocks;
}

constexpr DWORD settle = 300;
constexpr DWORD drain = 100;
constexpr DWORD repeats = 4 * (4000 + drain);

const TimeCase timeCases[] = {
    {"BeforeTheFirstBlock", {}, settle + 5 * (13000 + drain)},
    {"AfterABlock", Blocks(1), settle + 5000 + drain + repeats},
    {"AfterThe127th", Blocks(127), settle + 5000 + drain + repeats},
    {"AfterThe128th", Blocks(128), settle + 13000 + drain + repeats},
    {"InANumber", {CrcBlock(1, A), "\x01"}, settle + 2 * 1000 + drain + repeats},
    {"InTheData", {CrcBlock(1, A), CrcBlock(2, A).substr(0, 50)}, settle + 1000 + drain + repeats},
    {"InTheCrc", {CrcBlock(1, A), CrcBlock(2, A).substr(0, 132)}, settle + 1000 + drain + repeats},
};
RUN_TABLE(XModemReceiveTime, timeCases);

TEST(XModemReceiveStart, ChatterIsDropped) {
    for (const size_t waiting : {60u, 61u}) {
        MemoryDisk disk;
        Transfer transfer(XferDownload, Protocol_XModemCRC);
        transfer.Line().Say(std::string(waiting, 'x'));
        transfer.AnswerWith({silence, CrcBlock(1, A), EOT});
        EXPECT_EQ(transfer.Receive(), 0);
        EXPECT_EQ(transfer.Line().purges, waiting > 60);
        EXPECT_EQ(transfer.CountStatus(noise + ": Unexpected sector type"), waiting > 60 ? 0u : 1u);
        EXPECT_EQ(transfer.Elapsed(), waiting > 60 ? 300u + 1000u + 13000u + drain : 300u + drain);
    }
}

// Aborts

TEST(XModemReceiveAbort, EndsAtOnceInEveryPhase) {
    for (DWORD at = 0; at < 40000; at += 490) {
        MemoryDisk disk;
        Transfer transfer(XferDownload, Protocol_XModemCRC);
        transfer.AnswerWith(
            {silence, "x", CrcBlock(1, A), silence, CrcBlock(2, A), CrcBlock(3, A).substr(0, 70)});
        transfer.Line().abortAt = GetTickCount() + at + 1;
        EXPECT_EQ(transfer.Receive(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 101);
        EXPECT_TRUE(transfer.Sent().ends_with(cancel + cancel));
    }
}

TEST(XModemReceiveAbort, IsTold) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.Line().abortAt = GetTickCount() + 5000;
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_EQ(transfer.Statuses(), receiving + "|User canceled|Transfer error");
}

TEST(XModemReceiveAbort, BetweenBlocksSkipsTheFile) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.AnswerWith({CrcBlock(1, A), CrcBlock(2, A), CrcBlock(3, A), EOT});
    transfer.Double().onEvent = [&](int status) {
        if (status == TransferStatus_Transfering)
            transfer.Double().object.Record().bAbortTransfer = 1;
    };
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_EQ(transfer.Events(), "prepare UNTITLED.000 UNTITLED.000|start|abort");
    EXPECT_EQ(disk.files["UNTITLED.000"].contents, A);
}

TEST(XModemReceiveAbort, EndsALineThatIsNeverSilent) {
    MemoryDisk disk;
    Transfer transfer(XferDownload, Protocol_XModemCRC);
    transfer.Line().onWait = [&] {
        if (!transfer.Double().object.Record().bAbortTransfer)
            transfer.Line().Say(std::string(5000, 'x'));
        transfer.Double().object.Record().bAbortTransfer = 1;
    };
    EXPECT_EQ(transfer.Receive(), 1);
    EXPECT_GT(transfer.Line().Unread(), 4900u);
}

TEST(XModemReceiveAbort, ClosedPortEndsIt) {
    for (DWORD at = 1; at < 20000; at += 390) {
        MemoryDisk disk;
        Transfer transfer(XferDownload, Protocol_XModemCRC);
        transfer.AnswerWith({CrcBlock(1, A), CrcBlock(2, A).substr(0, 70)});
        transfer.Line().closeAt = GetTickCount() + at;
        EXPECT_EQ(transfer.Receive(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 100);
    }
}

// Sending

struct SendCase {
    const char* name;
    int protocol;
    std::string contents;
    std::string start;                // what the receiver says first
    std::vector<std::string> answers; // to each write
    std::string sent;
    std::string statuses;
    int result = 0;
};

class XModemSend : public testing::TestWithParam<SendCase> {};

TEST_P(XModemSend, FollowsTheScript) {
    const SendCase& row = GetParam();
    MemoryDisk disk;
    disk.files["a.bin"].contents = row.contents;
    Transfer transfer(XferUpload, row.protocol);
    transfer.Double().Queue("a.bin");
    transfer.Line().Say(row.start);
    transfer.AnswerWith(row.answers);
    EXPECT_EQ(transfer.Send(), row.result);
    EXPECT_EQ(transfer.Sent(), row.sent);
    EXPECT_EQ(transfer.Statuses(), "Sending filename..." + row.statuses);
    EXPECT_EQ(transfer.Events(),
              row.result ? "prepare a.bin a.bin|start|abort" : "prepare a.bin a.bin|start|finish");
}

const std::string sentWell = "|File transferred successfully.|Terminating transfer...";
const std::string failed = "|Transfer failed.";
const std::string asked = "|Receive did not receive sector correctly";
const std::string unanswered = "|Time out waiting for acknowledgement";
const std::string noisy = "|Line noise detected waiting for acknowledgement";

const SendCase sendCases[] = {
    {"Checksum", 0, "a", NAK, {ACK, ACK}, SumBlock(1, "a") + EOT, sentWell},
    {"Crc", 0, "a", "C", {ACK, ACK}, CrcBlock(1, "a") + EOT, sentWell},
    {"StreamRequestIsCrcAlone", 1, "a", "G", {ACK, ACK}, CrcBlock(1, "a") + EOT, sentWell},
    {"CrcProtocolToAChecksumReceiver", 1, "a", NAK, {ACK, ACK}, SumBlock(1, "a") + EOT, sentWell},
    {"OnlyShortBlocks",
     1,
     Bytes(1024),
     "C",
     {ACK, ACK, ACK, ACK, ACK, ACK, ACK, ACK, ACK},
     [] {
         std::string blocks;
         for (int n = 1; n <= 8; ++n)
             blocks += CrcBlock(n, Bytes(1024).substr(static_cast<size_t>(n - 1) * 128, 128));
         return blocks + EOT;
     }(),
     sentWell},
    {"EmptyFile", 1, "", "C", {ACK}, EOT, sentWell},
    {"LongBlocks", 2, Bytes(1024), "C", {ACK, ACK}, CrcBlock(1, Bytes(1024)) + EOT, sentWell},
    {"LongBlockFor897Bytes", 2, Bytes(897), "C", {ACK, ACK}, CrcBlock(1, Bytes(897)) + EOT, sentWell},
    {"ShortBlocksFor896Bytes", 2, Bytes(896), "C", std::vector<std::string>(8, ACK),
     [] {
         std::string blocks;
         for (int n = 1; n <= 7; ++n)
             blocks += CrcBlock(n, Bytes(896).substr(static_cast<size_t>(n - 1) * 128, 128));
         return blocks + EOT;
     }(),
     sentWell},
    {"ShortBlocksBehindALongOne",
     2,
     Bytes(1025),
     "C",
     {ACK, ACK, ACK},
     CrcBlock(1, Bytes(1024)) + CrcBlock(2, Bytes(1025).substr(1024)) + EOT,
     sentWell},
    {"JunkBeforeTheStart", 0, "a", "xyz" + ACK + "C", {ACK, ACK}, CrcBlock(1, "a") + EOT, sentWell},
    {"SilentStart", 0, "a", "", {ACK, ACK}, SumBlock(1, "a") + EOT, sentWell},
    {"CancelAtTheStart", 0, "a", CAN, {}, cancel, "|Receiver Cancelled" + failed, 1},
    {"Refused", 1, "a", "C", {NAK, ACK, ACK}, Times(2, CrcBlock(1, "a")) + EOT, asked + sentWell},
    {"CrcWantedAfterAll",
     1,
     "a",
     NAK,
     {"C", ACK, ACK},
     SumBlock(1, "a") + CrcBlock(1, "a") + EOT,
     asked + sentWell},
    {"CrcWantedTooLate",
     1,
     A + B,
     NAK,
     {ACK, "C", ACK, ACK},
     SumBlock(1, A) + Times(2, SumBlock(2, B)) + EOT,
     asked + sentWell},
    {"Unanswered", 1, "a", "C", {silence, ACK, ACK}, Times(2, CrcBlock(1, "a")) + EOT, unanswered + sentWell},
    {"NoiseThenRequest",
     1,
     "a",
     "C",
     {"x" + NAK, ACK, ACK},
     Times(2, CrcBlock(1, "a")) + EOT,
     noisy + asked + sentWell},
    {"NoiseHidesAnAcknowledgement",
     1,
     "a",
     "C",
     {"x" + ACK, ACK, ACK},
     Times(2, CrcBlock(1, "a")) + EOT,
     noisy + sentWell},
    {"NoiseThenCrcRequest",
     1,
     "a",
     NAK,
     {"xC", ACK, ACK},
     SumBlock(1, "a") + CrcBlock(1, "a") + EOT,
     noisy + asked + sentWell},
    {"OneCancel", 1, "a", "C", {CAN, ACK, ACK}, Times(2, CrcBlock(1, "a")) + EOT, sentWell},
    {"OneCancelThenRequest",
     1,
     "a",
     "C",
     {CAN + NAK, ACK, ACK},
     Times(2, CrcBlock(1, "a")) + EOT,
     asked + sentWell},
    {"TwoCancels", 1, "a", "C", {CAN + CAN}, CrcBlock(1, "a") + cancel, "|Receiver cancelled" + failed, 1},
    {"CancelsBehindNoise",
     1,
     "a",
     "C",
     {"x" + CAN + CAN},
     CrcBlock(1, "a") + cancel,
     noisy + "|Receiver cancelled" + failed,
     1},
    {"CancelsApart",
     1,
     "a",
     "C",
     {CAN + "x" + CAN + NAK, ACK, ACK},
     Times(2, CrcBlock(1, "a")) + EOT,
     asked + sentWell},
    {"GoodAtTheSixthAttempt",
     1,
     "a",
     "C",
     {NAK, NAK, NAK, NAK, NAK, ACK, ACK},
     Times(6, CrcBlock(1, "a")) + EOT,
     Times(5, asked) + sentWell},
    {"SixRefusals",
     1,
     "a",
     "C",
     {NAK, NAK, NAK, NAK, NAK, NAK},
     Times(6, CrcBlock(1, "a")) + cancel,
     Times(6, asked) + "|Retry count exceeded" + failed,
     1},
    {"DeadReceiver",
     1,
     "a",
     "C",
     {},
     Times(6, CrcBlock(1, "a")) + cancel,
     Times(6, unanswered) + "|Retry count exceeded" + failed,
     1},
    {"EndAcknowledgedAtTheFourth", 1, "", "C", {NAK, "x", silence, ACK}, Times(4, EOT), sentWell},
    {"EndAcknowledgedAtTheFifthIsTooLate",
     1,
     "",
     "C",
     {NAK, NAK, NAK, NAK, ACK},
     Times(5, EOT) + cancel,
     "|No acknowledgment for last sector" + failed,
     1},
    {"EndNotAcknowledged",
     1,
     "",
     "C",
     {NAK, NAK, NAK, NAK, NAK},
     Times(5, EOT) + cancel,
     "|No acknowledgment for last sector" + failed,
     1},
};
RUN_TABLE(XModemSend, sendCases);

TEST(XModemSendTime, OneMinuteForEachAnswer) {
    MemoryDisk disk;
    disk.files["a.bin"].contents = "a";
    Transfer transfer(XferUpload, Protocol_XModemCRC);
    transfer.Double().Queue("a.bin");
    EXPECT_EQ(transfer.Send(), 1);
    EXPECT_EQ(transfer.Elapsed(), 7 * 60000u + 200u); // the start, six attempts, and the cancel's way out
}

TEST(XModemSendEvents, CountWholeBlocks) {
    MemoryDisk disk;
    disk.files["a.bin"].contents = Bytes(129);
    Transfer transfer(XferUpload, Protocol_XModemCRC);
    transfer.Double().keepBlocks = true;
    transfer.Double().Queue("a.bin");
    transfer.Line().Say("C");
    transfer.AnswerWith({ACK, ACK, ACK});
    EXPECT_EQ(transfer.Send(), 0);
    EXPECT_EQ(transfer.Events(), "prepare a.bin a.bin|start|block 0|block 128|block 256|finish");
    EXPECT_TRUE(transfer.Logged("wcs: name=a.bin"));
    EXPECT_TRUE(transfer.Logged("wctx:file length=129"));
    EXPECT_EQ(disk.journal, (std::vector<std::string>{"open a.bin rb", "close a.bin"}));
}

TEST(XModemSendEvents, NothingQueuedCancels) {
    for (const int protocol : {0, 1, 2, 3, 4}) {
        MemoryDisk disk;
        Transfer transfer(XferUpload, protocol);
        EXPECT_EQ(transfer.Send(), 1);
        EXPECT_EQ(transfer.Sent(), cancel + cancel);
        EXPECT_EQ(transfer.Events(), "");
        EXPECT_EQ(transfer.Elapsed(), 200u);
    }
}

// The place is that before the block, in short blocks and in kilobytes; what is streamed does not count.
struct PlaceCase {
    const char* name;
    int Verbose;
    bool Optiong;
    std::vector<std::string> texts;
};

class BlockPlace : public testing::TestWithParam<PlaceCase> {};

TEST_P(BlockPlace, IsToldToADebugger) {
    const PlaceCase& row = GetParam();
    TerminalDouble debugger;
    MemoryDisk disk;
    disk.files["a.bin"].contents = Bytes(2048 + 130);
    TransferDouble transfer(XferUpload, Protocol_XModem1K);
    ModemLine line(transfer.transfer);
    FileStream file;
    ASSERT_EQ(file.Open("a.bin", FileMode::Read), 0);
    BlockSender sender(line, file);
    sender.Verbose = row.Verbose;
    sender.Optiong = row.Optiong;
    transfer.line.onWrite = [&](const std::string& bytes) {
        if (bytes.size() < fullBuffer)
            transfer.line.Say(ACK);
    };
    transfer.line.Say("C");
    ASSERT_EQ(sender.wctx(2048 + 130), 0);
    std::erase_if(debugger.debugTexts,
                  [](const std::string& text) { return text.ends_with("\r\n"); }); // the log's
    EXPECT_EQ(debugger.debugTexts, row.texts);
}

const std::string firstPlace = "Sector   0  0k\n";
const std::vector<std::string> places = {firstPlace, "Sector   8  1k\n", "Sector  16  2k\n",
                                         "Sector  17  2k\n"};

const PlaceCase placeCases[] = {
    {"Verbose", 2, false, places},
    {"MoreVerbose", 3, false, places},
    {"Streaming", 2, true, std::vector<std::string>(4, firstPlace)},
    {"AsASendIs", 1, false, {}},
    {"Silent", 0, false, {}},
};

RUN_TABLE(BlockPlace, placeCases);

TEST(XModemSendAbort, EndsAtOnceInEveryPhase) {
    for (DWORD at = 0; at < 250000; at += 3700) {
        MemoryDisk disk;
        disk.files["a.bin"].contents = Bytes(300);
        Transfer transfer(XferUpload, Protocol_XModemCRC);
        transfer.Double().Queue("a.bin");
        transfer.AnswerWith({silence, ACK, "x", ACK, CAN});
        transfer.Line().abortAt = GetTickCount() + at + 1;
        EXPECT_EQ(transfer.Send(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 301);
        EXPECT_EQ(transfer.CountStatus("Retry count exceeded"), 0u);
        EXPECT_TRUE(transfer.Sent().ends_with(cancel));
    }
}

TEST(XModemSendAbort, ClosedPortEndsIt) {
    for (DWORD at = 1; at < 250000; at += 3700) {
        MemoryDisk disk;
        disk.files["a.bin"].contents = Bytes(300);
        Transfer transfer(XferUpload, Protocol_XModemCRC);
        transfer.Double().Queue("a.bin");
        transfer.AnswerWith({silence, ACK, "x", ACK, CAN});
        transfer.Line().closeAt = GetTickCount() + at;
        EXPECT_EQ(transfer.Send(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 300);
    }
}

} // namespace
