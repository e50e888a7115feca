// X, Y and ZModem where something is missing: no file to send, a protocol that has to give way to another, a
// disk that fails, a place in a file that doesn't exist. Whole transfers before a scripted far end.
#include "caseprint.h"
#include "modemfarend.h"
#include "zmodemreceivecase.h"

namespace {

using namespace std::string_literals;
using zmodem::Exchange;
using zmodem::Hex;
using zmodem::Offer;

using Heard = std::vector<std::string>;
using Script = std::vector<Exchange>;

const std::string cancels(10, '\x18');
const std::string invitation = Hex(ZRINIT, 0x23000000);

// One whole ZModem transfer, or one that becomes so.
class Session {
  public:
    Session(XferDirection direction, int nProtocol, Script script)
        : transfer(direction, nProtocol), farEnd_(std::move(script)) {
        transfer.keepBlocks = false;
        transfer.transfer.bWireTap = 0;
        transfer.line.patience = 60 * 60 * 1000;
        farEnd_.Plug(transfer.line);
    }

    int Send() {
        return CModemProtocol(transfer.transfer, false).StartModemSend(transfer.transfer.nProtocol);
    }
    int Receive() {
        return CModemProtocol(transfer.transfer, false).StartModemReceive(transfer.transfer.nProtocol);
    }

    void Queue(const std::string& name, size_t cbFile) {
        disk.files[name].contents = modem::Bytes(cbFile);
        transfer.Queue(name);
    }

    // The host's events in one string: "prepare a a|finish".
    std::string Events() const {
        std::string events;
        for (const std::string& entry : transfer.journal)
            if (entry == "finish" || entry == "abort" || entry.starts_with("prepare"))
                events += (events.empty() ? "" : "|") + entry;
        return events;
    }

    bool Showed(const std::string& text) const {
        return std::ranges::find(transfer.journal, "status " + text) != transfer.journal.end();
    }

    size_t Count(const std::string& piece) const {
        return static_cast<size_t>(std::ranges::count_if(
            farEnd_.heard, [&](const std::string& heard) { return heard.starts_with(piece); }));
    }

    std::string Last(const std::string& piece) const {
        std::string last;
        for (const std::string& heard : farEnd_.heard)
            if (heard.starts_with(piece))
                last = heard;
        return last;
    }

    const Heard& HeardPieces() const { return farEnd_.heard; }
    bool ScriptIsDone() const { return farEnd_.ScriptIsDone(); }

    MemoryDisk disk;
    TransferDouble transfer;

  private:
    zmodem::FarEnd farEnd_;
};

Script operator+(Script left, const Script& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Exchange takes = {"data ", Hex(ZRPOS)};
const Exchange receipt = {"bin ZEOF", Hex(ZRINIT)};
const Exchange goodbye = {"hex ZFIN", Hex(ZFIN)};
const Script receiverGoodbye = {{"hex ZRINIT", Hex(ZFIN)}, {"hex ZFIN", "OO"}};

// Nothing to send

struct NothingCase {
    const char* name;
    std::string said;
    size_t cancels;
};

void PrintTo(const NothingCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewNothing : public testing::TestWithParam<NothingCase> {};

TEST_P(ModemReviewNothing, ToSendIsCancelled) {
    Session at(XferUpload, Protocol_ZModem, {});
    at.transfer.line.Say(GetParam().said, 100);
    EXPECT_EQ(at.Send(), 1);
    Heard expected(1 + GetParam().cancels, "CAN 10");
    expected.front() = "hex ZRQINIT 0";
    EXPECT_EQ(at.HeardPieces(), expected);
    EXPECT_EQ(at.Events(), "");
}

// The first word of the receiver tells how often.
const NothingCase nothingRows[] = {
    {"Silence", "", 2},
    {"Invitation", invitation, 2},
    {"Cancel", std::string(4, '\x18'), 2},
    {"ChecksumRequest", "\x15", 1},
    {"CrcRequest", "C", 1},
    {"StreamRequest", "G", 1},
    {"CrcRequestBehindJunk", "rz\r\n" + "C"s, 1},
};

RUN_TABLE(ModemReviewNothing, nothingRows);

TEST(ModemReviewNothingElse, FilesThatCantBeReadAreNothing) {
    for (const int protocol : {Protocol_XModem1K, Protocol_YModem, Protocol_YModemG, Protocol_ZModem}) {
        Session at(XferUpload, protocol, {});
        at.Queue("a", 10);
        at.disk.locked.insert("a");
        EXPECT_EQ(at.Send(), 1);
        EXPECT_EQ(at.Count("CAN 10"), 2u) << protocol;
        EXPECT_EQ(at.Events(), "prepare a a|abort");
        EXPECT_TRUE(at.Showed("Unable to read file..."));
    }
}

// A YModem sender whose receiver speaks ZModem

struct ChangeCase {
    const char* name;
    std::string said;
    Script script;
    int result;
    std::string events;
    size_t shortBlocks = 0; // of 256 bytes
};

void PrintTo(const ChangeCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewChange : public testing::TestWithParam<ChangeCase> {};

TEST_P(ModemReviewChange, ToZModemFollowsTheReceiver) {
    const ChangeCase& row = GetParam();
    Session at(XferUpload, Protocol_YModem, row.script);
    at.Queue("a", 600);
    at.Queue("b", 50);
    at.transfer.line.Say(row.said, 100);
    EXPECT_EQ(at.Send(), row.result);
    EXPECT_EQ(at.Events(), row.events);
    EXPECT_TRUE(at.ScriptIsDone()) << testing::PrintToString(at.HeardPieces());
    EXPECT_EQ(at.HeardPieces().back(), row.result ? "CAN 10" : "OO");
    EXPECT_EQ(at.Count("data 256 "), row.shortBlocks);
}

const std::string firstFails = "prepare a a|abort";
const std::string bothGo = "prepare a a|finish|prepare b b|finish";

const ChangeCase changeRows[] = {
    {"Batch", invitation, {takes, receipt, takes, receipt, goodbye}, 0, bothGo},
    {"BehindJunk", "rz waiting\r" + invitation, {takes, receipt, takes, receipt, goodbye}, 0, bothGo},
    {"FirstFileSkipped",
     invitation,
     {{"data ", Hex(ZSKIP)}, takes, receipt, goodbye},
     0,
     "prepare a a|abort|prepare b b|finish"},
    {"Challenge",
     Hex(ZCHALLENGE, 77),
     {{"hex ZACK 77", invitation}, takes, receipt, takes, receipt, goodbye},
     0,
     bothGo},
    {"GarbledInvitation",
     zmodem::Garbled(invitation),
     {{"hex ZNAK", invitation}, takes, receipt, takes, receipt, goodbye},
     0,
     bothGo},
    {"SmallBuffer",
     Hex(ZRINIT, 0x23000100),
     {takes,
      {"data 256 W", Hex(ZACK, 256)},
      {"data 256 W", Hex(ZACK, 512)},
      receipt,
      takes,
      receipt,
      goodbye},
     0,
     bothGo,
     2},
    {"AStarAndSilence", "*", {}, 1, firstFails},
    {"AStarAndACancel", "*" + cancels, {}, 1, firstFails},
    {"SilenceAfterTheOffer", invitation, {}, 1, firstFails},
};

RUN_TABLE(ModemReviewChange, changeRows);

// A ZModem receiver whose sender speaks YModem

const std::string file = modem::HeaderBlock("a.bin\0"
                                            "5 17 0 3"s);

std::vector<std::string> AfterPasses(size_t passes, const std::vector<std::string>& answers) {
    std::vector<std::string> all(passes, modem::silence);
    all.insert(all.end(), answers.begin(), answers.end());
    return all;
}

TEST(ModemReviewFallback, YModemFollowsFifteenInvitations) {
    for (const bool resume : {false, true}) {
        MemoryDisk disk;
        disk.files["a.bin"].contents = std::string(600, 'x'); // the sender starts at 0, whatever is here
        modem::Transfer at(XferDownload, Protocol_ZModem, resume);
        at.AnswerWith(AfterPasses(15, {modem::HeaderBlock("a.bin\0"
                                                          "1024"s),
                                       "", modem::CrcBlock(1, modem::Bytes(1024)), modem::EOT, "",
                                       modem::HeaderBlock("")}));
        EXPECT_EQ(at.Receive(), 0);
        EXPECT_EQ(at.Sent(), modem::Times(15, invitation) + "C" + modem::ACK + "C" + modem::ACK + modem::ACK +
                                 "C" + modem::ACK);
        EXPECT_TRUE(disk.files["a.bin"].contents == modem::Bytes(1024));
        EXPECT_EQ(at.Events(), "prepare a.bin a.bin|start|finish");
        EXPECT_GE(at.Elapsed(), 150000u);
    }
}

TEST(ModemReviewFallback, SilenceEndsYModemToo) {
    MemoryDisk disk;
    modem::Transfer at(XferDownload, Protocol_ZModem);
    EXPECT_EQ(at.Receive(), 1);
    EXPECT_EQ(at.Sent(), modem::Times(15, invitation) + modem::Times(6, "C") + modem::Times(4, cancels));
}

// Who has spoken ZModem is cancelled once less.
TEST(ModemReviewFallback, SenderThatOnlyAsksIsHeard) {
    MemoryDisk disk;
    modem::Transfer at(XferDownload, Protocol_ZModem);
    at.AnswerWith(std::vector<std::string>(15, Hex(ZRQINIT)));
    EXPECT_EQ(at.Receive(), 1);
    EXPECT_EQ(at.Sent(), modem::Times(15, invitation) + modem::Times(6, "C") + modem::Times(3, cancels));
}

TEST(ModemReviewFallback, AbortInAnyPassEndsAtOnce) {
    for (DWORD at = 0; at < 240000; at += 7300) {
        MemoryDisk disk;
        modem::Transfer transfer(XferDownload, Protocol_ZModem);
        transfer.Line().abortAt = GetTickCount() + at + 1;
        EXPECT_EQ(transfer.Receive(), 1);
        EXPECT_LE(transfer.Elapsed(), at + 101);
    }
}

// Disks that fail while a file is received

struct DiskCase {
    const char* name;
    void (*spoil)(MemoryDisk& disk);
    Script script;
    int result;
    std::string events;
    int fileFailed = 0;
    std::string shown = {};
};

void PrintTo(const DiskCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewDisk : public testing::TestWithParam<DiskCase> {};

TEST_P(ModemReviewDisk, CostsNoMoreThanItMust) {
    const DiskCase& row = GetParam();
    Session at(XferDownload, Protocol_ZModem, row.script);
    row.spoil(at.disk);
    EXPECT_EQ(at.Receive(), row.result);
    EXPECT_EQ(at.Events(), row.events);
    EXPECT_EQ(at.transfer.transfer.bFileFailed, row.fileFailed);
    EXPECT_TRUE(row.shown.empty() || at.Showed(row.shown));
    EXPECT_TRUE(at.ScriptIsDone()) << testing::PrintToString(at.HeardPieces());
    EXPECT_EQ(at.Count("CAN 10"), row.result ? 2u : 0u);
}

const Exchange offerA = {"hex ZRINIT", Offer("a", "1")};
const Exchange dataA = {"hex ZRPOS 0", zmodem::DataFrame(0, "A") + zmodem::End(1)};
const Exchange refusedOfferB = {"hex ZFERR", Offer("b", "1")};
const Exchange dataB = dataA;
const Script refusedGoodbye = {{"hex ZFERR", Hex(ZFIN)}, {"hex ZFIN", "OO"}};
const Script secondArrives = Script{offerA, refusedOfferB, dataB} + receiverGoodbye;
const std::string secondOnly = "prepare a a|abort|prepare b b|finish";

const DiskCase diskRows[] = {
    {"Full",
     [](MemoryDisk& disk) { disk.full = true; },
     {offerA, dataA},
     1,
     "prepare a a",
     0,
     "Error closing file"},
    {"CloseFails",
     [](MemoryDisk& disk) { disk.closesFail = true; },
     {offerA, dataA},
     1,
     "prepare a a",
     0,
     "Error closing file"},
    {"ReadOnlyFolder", [](MemoryDisk& disk) { disk.readOnly = true; },
     Script{offerA, refusedOfferB} + refusedGoodbye, 0, "prepare a a|abort|prepare b b|abort", 1},
    {"LockedFile", [](MemoryDisk& disk) { disk.locked.insert("a"); }, secondArrives, 0, secondOnly, 1},
    {"FolderOfThatName", [](MemoryDisk& disk) { disk.folders.insert("a"); }, secondArrives, 0, secondOnly, 1},
};

RUN_TABLE(ModemReviewDisk, diskRows);

struct BlockDiskCase {
    const char* name;
    void (*spoil)(MemoryDisk& disk);
    std::vector<std::string> answers;
    std::string sent;
    std::string events;
};

void PrintTo(const BlockDiskCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewYModemDisk : public testing::TestWithParam<BlockDiskCase> {};

TEST_P(ModemReviewYModemDisk, EndsTheBatch) {
    MemoryDisk disk;
    GetParam().spoil(disk);
    modem::Transfer at(XferDownload, Protocol_YModem);
    at.AnswerWith(GetParam().answers);
    EXPECT_EQ(at.Receive(), 1);
    EXPECT_EQ(at.Sent(), GetParam().sent + modem::Times(3, cancels));
    EXPECT_EQ(at.Events(), "prepare a.bin a.bin|start" + GetParam().events);
    EXPECT_EQ(at.CountStatus("Transfer successful."), 0u);
}

const std::vector<std::string> wholeFile = {file, "", modem::CrcBlock(1, "12345"), modem::EOT};
const std::string untilTheEnd = "C" + modem::ACK + "C" + modem::ACK; // which is not acknowledged
const std::string untilTheName = "C" + modem::ACK;

const BlockDiskCase blockDiskRows[] = {
    {"Full", [](MemoryDisk& disk) { disk.full = true; }, wholeFile, untilTheEnd, "|abort"},
    {"CloseFails", [](MemoryDisk& disk) { disk.closesFail = true; }, wholeFile, untilTheEnd, "|abort"},
    {"LockedFile", [](MemoryDisk& disk) { disk.locked.insert("a.bin"); }, {file}, untilTheName, ""},
    {"FolderOfThatName", [](MemoryDisk& disk) { disk.folders.insert("a.bin"); }, {file}, untilTheName, ""},
};

RUN_TABLE(ModemReviewYModemDisk, blockDiskRows);

TEST(ModemReviewCutShort, FileIsNotCalledSuccessfulAndKeepsItsTime) {
    MemoryDisk disk;
    modem::Transfer at(XferDownload, Protocol_YModem);
    at.AnswerWith({file, "", modem::EOT});
    EXPECT_EQ(at.Receive(), 1);
    EXPECT_EQ(at.CountStatus("Transfer successful."), 0u);
    EXPECT_EQ(at.CountStatus("Transfer error"), 1u);
    EXPECT_EQ(at.Events(), "prepare a.bin a.bin|start|abort");
    EXPECT_EQ(disk.files["a.bin"].modified, 0);
}

// Files that go away while they are sent

TEST(ModemReviewVanished, FileIsNeverSentToAnEarlyEnd) {
    struct Row {
        int protocol;
        std::string start;
        std::vector<std::string> answers;
    };
    const std::vector<std::string> acks(40, modem::ACK);
    const Row rows[] = {
        {Protocol_XModemChecksum, modem::NAK, acks},
        {Protocol_XModemCRC, "C", acks},
        {Protocol_XModem1K, "C", acks},
        {Protocol_YModem, "C", {modem::ACK + "C", modem::ACK, modem::ACK, modem::ACK, modem::ACK}},
        {Protocol_YModemG, "G", {"G"}},
    };
    for (const Row& row : rows) {
        MemoryDisk disk;
        disk.files["a"].contents = modem::Bytes(5000);
        modem::Transfer at(XferUpload, row.protocol);
        at.Double().Queue("a");
        at.Line().Say(row.start);
        at.AnswerWith(row.answers);
        at.Line().onWrite = [&, answer = at.Line().onWrite](const std::string& bytes) {
            if (at.Sent().size() > 2100)
                disk.files.erase("a");
            answer(bytes);
        };
        EXPECT_EQ(at.Send(), 1) << row.protocol;
        EXPECT_EQ(at.Events(), "prepare a a|start|abort") << row.protocol;
        EXPECT_LT(at.Sent().size(), 4500u) << row.protocol;
        EXPECT_TRUE(at.Sent().ends_with(cancels)) << row.protocol;
        EXPECT_FALSE(at.Sent().ends_with(modem::EOT + cancels)) << row.protocol;
    }
}

TEST(ModemReviewVanished, ZModemTellsNoEnd) {
    Session at(XferUpload, Protocol_ZModem, {takes, {"data 1024 W", Hex(ZACK, 4096)}, receipt});
    at.Queue("a", 9000);
    at.transfer.line.onWrite = [&, hear = at.transfer.line.onWrite](const std::string& bytes) {
        hear(bytes);
        if (at.Count("data 1024 W"))
            at.disk.files.erase("a");
    };
    EXPECT_EQ(at.Send(), 1);
    EXPECT_EQ(at.Events(), "prepare a a|abort");
    EXPECT_EQ(at.Count("bin ZEOF"), 0u);
    EXPECT_EQ(at.HeardPieces().back(), "bin ZDATA 4096");
    EXPECT_TRUE(at.transfer.line.sent.ends_with(cancels));
}

TEST(ModemReviewVanished, BeforeItsTurnIsLeftOut) {
    Session at(XferUpload, Protocol_ZModem, {takes, receipt, takes, receipt, goodbye});
    for (const char* name : {"a", "b", "c"})
        at.Queue(name, 10);
    at.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_EndOfFile)
            at.disk.files.erase("b");
    };
    EXPECT_EQ(at.Send(), 1);
    EXPECT_EQ(at.Events(), "prepare a a|finish|prepare b b|abort|prepare c c|finish");
}

// Files that the receiver doesn't want

TEST(ModemReviewSkipped, FileIsNoLossForTheNext) {
    struct Row {
        const char* name;
        Script script;
    };
    const Row rows[] = {
        {"at the offer", {{"data ", Hex(ZSKIP)}}},
        {"at the offer, it can't be made", {{"data ", Hex(ZFERR)}}},
        {"at a stop", {takes, {"data 1024 W", Hex(ZSKIP)}}},
        {"in the data", {takes, {"bin ZDATA", Hex(ZSKIP)}}},
        {"at its end", {takes, {"data 1024 W", Hex(ZACK, 4096)}, {"bin ZEOF", Hex(ZSKIP)}}},
    };
    for (const Row& row : rows) {
        Session at(XferUpload, Protocol_ZModem, row.script + Script{takes, receipt, goodbye});
        at.Queue("a", 5000);
        at.Queue("b", 50);
        EXPECT_EQ(at.Send(), 0) << row.name;
        EXPECT_EQ(at.Events(), "prepare a a|abort|prepare b b|finish") << row.name;
        EXPECT_TRUE(at.Showed("File as skipped.")) << row.name;
        EXPECT_TRUE(at.ScriptIsDone()) << row.name << testing::PrintToString(at.HeardPieces());
    }
}

// Places that don't exist

std::string ChecksumRequest(uint32_t count, uint32_t start) {
    return zmodem::LongHex(ZCRC, zmodem::LowFirst32(count) + "\0\0"s + zmodem::LowFirst32(start));
}

struct PlaceCase {
    const char* name;
    Script script;
    std::string lastEnd; // the last ZEOF, "" for a transfer that fails
};

void PrintTo(const PlaceCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewPlace : public testing::TestWithParam<PlaceCase> {};

TEST_P(ModemReviewPlace, AskedForIsAnsweredOrRefused) {
    const PlaceCase& row = GetParam();
    const bool good = !row.lastEnd.empty();
    Session at(XferUpload, Protocol_ZModem, row.script);
    at.Queue("a", 4096);
    EXPECT_EQ(at.Send(), good ? 0 : 1);
    EXPECT_EQ(at.Events(), good ? "prepare a a|finish" : "prepare a a|abort");
    EXPECT_TRUE(at.ScriptIsDone()) << testing::PrintToString(at.HeardPieces());
    EXPECT_EQ(at.HeardPieces().back(), good ? "OO" : "CAN 10");
    EXPECT_EQ(good ? at.Last("bin ZEOF") : "", row.lastEnd);
    EXPECT_TRUE(good || at.Count("bin ZDATA") <= 1); // nothing goes out after the refusal
}

const Exchange stop = {"data 1024 W", Hex(ZACK, 4096)};

const PlaceCase placeRows[] = {
    {"OfferBeyondTheEnd", {{"data ", Hex(ZRPOS, 5000)}, receipt, goodbye}, "bin ZEOF 5000"},
    {"OfferAtTheLastPlace", {{"data ", Hex(ZRPOS, 0x7FFFFFFF)}, receipt, goodbye}, "bin ZEOF 2147483647"},
    {"OfferAtTheLowestPlace", {{"data ", Hex(ZRPOS, 0x80000000)}}, ""},
    {"OfferAtMinusOne", {{"data ", Hex(ZRPOS, 0xFFFFFFFF)}}, ""},
    {"StopBeyondTheEnd", {takes, {"data 1024 W", Hex(ZRPOS, 0x7FFFFFFF)}, receipt, goodbye}, "bin ZEOF 4096"},
    {"StopAtTheLowestPlace", {takes, {"data 1024 W", Hex(ZRPOS, 0x80000000)}}, ""},
    {"StopAtMinusOne", {takes, {"data 1024 W", Hex(ZRPOS, 0xFFFFFFFF)}}, ""},
    {"StopAcknowledgedAtMinusOne", {takes, {"data 1024 W", Hex(ZACK, 0xFFFFFFFF)}}, ""},
    {"DataAtMinusOne", {takes, {"bin ZDATA", Hex(ZRPOS, 0xFFFFFFFF)}}, ""},
    {"EndBeyondTheEnd",
     {takes, stop, {"bin ZEOF", Hex(ZRPOS, 0x7FFFFFFF)}, {"bin ZEOF", Hex(ZRINIT)}, goodbye},
     "bin ZEOF 4096"},
    {"ChecksumOfMinusOne",
     {{"data ", Hex(ZCRC, 0xFFFFFFFF)}, {"bin ZCRC", Hex(ZRPOS)}, stop, receipt, goodbye},
     "bin ZEOF 4096"},
    {"ChecksumFromBeyondTheEnd",
     {{"data ", ChecksumRequest(0x7FFFFFFF, 0x7FFFFFF0)}, {"bin ZCRC 0", Hex(ZRPOS)}, stop, receipt, goodbye},
     "bin ZEOF 4096"},
    {"ChecksumFromTheLowestPlace",
     {{"data ", ChecksumRequest(0x7FFFFFFF, 0x80000000)},
      {"bin ZCRC 4294967295", Hex(ZRPOS)},
      stop,
      receipt,
      goodbye},
     "bin ZEOF 4096"},
};

RUN_TABLE(ModemReviewPlace, placeRows);

TEST(ModemReviewPlaceFromTheEnd, NegativeIsRefusedAfterTheEnd) {
    Session at(XferUpload, Protocol_ZModem, {takes, stop, {"bin ZEOF", Hex(ZRPOS, 0x80000000)}});
    at.Queue("a", 4096);
    EXPECT_EQ(at.Send(), 1);
    EXPECT_EQ(at.Events(), "prepare a a|abort");
    EXPECT_TRUE(at.ScriptIsDone());
}

// The same, told by a sender.

struct ToldCase {
    const char* name;
    std::string header;
    Script script;
};

void PrintTo(const ToldCase& row, std::ostream* out) {
    *out << row.name;
}

class ModemReviewTold : public testing::TestWithParam<ToldCase> {};

TEST_P(ModemReviewTold, PlaceOrLengthSpoilsNoFile) {
    const Script script =
        Script{{"hex ZRINIT", Offer("a", GetParam().header)}} + GetParam().script + receiverGoodbye;
    Session at(XferDownload, Protocol_ZModem, script);
    EXPECT_EQ(at.Receive(), 0);
    EXPECT_EQ(at.Events(), "prepare a a|finish");
    EXPECT_EQ(at.disk.files["a"].contents, "hello");
    EXPECT_GE(at.transfer.object.Record().lTransferFileSize, 0);
    EXPECT_TRUE(at.ScriptIsDone()) << testing::PrintToString(at.HeardPieces());
}

const std::string rest = zmodem::DataFrame(3, "lo") + zmodem::End(5);
const std::string hello = zmodem::DataFrame(0, "hello") + zmodem::End(5);

const ToldCase toldRows[] = {
    {"DataAtMinusOne",
     "5",
     {{"hex ZRPOS 0", zmodem::DataFrame(0xFFFFFFFF, "WRONG")}, {"hex ZRPOS 0", hello}}},
    {"DataBeyond", "5", {{"hex ZRPOS 0", zmodem::DataFrame(0x7FFFFFFF, "WRONG")}, {"hex ZRPOS 0", hello}}},
    {"DataFromBefore",
     "5",
     {{"hex ZRPOS 0", zmodem::DataFrame(0, "hel") + zmodem::DataFrame(2, "WRONG")}, {"hex ZRPOS 3", rest}}},
    {"EndAtTheLowestPlace",
     "5",
     {{"hex ZRPOS 0", zmodem::DataFrame(0, "hel") + zmodem::End(0x80000003) + rest}}},
    {"EndBeyond", "5", {{"hex ZRPOS 0", zmodem::DataFrame(0, "hel") + zmodem::End(0x7FFFFFFF) + rest}}},
    {"NegativeLength", "-5 -1 -1 -1 -1 -1", {{"hex ZRPOS 0", hello}}},
    {"HugeLength", "99999999999999999999 77777777777777777777777", {{"hex ZRPOS 0", hello}}},
    {"NoLength", "", {{"hex ZRPOS 0", hello}}},
};

RUN_TABLE(ModemReviewTold, toldRows);

} // namespace
