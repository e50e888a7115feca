// The ZModem receiver: its opening and goodbye, what it answers to each frame, how often it forgives.
#include "caseprint.h"
#include "zmodemreceivecase.h"

namespace {

using namespace std::string_literals;
using zmodem::DataFrame;
using zmodem::End;
using zmodem::Exchange;
using zmodem::Offer;
using Heard = std::vector<std::string>;

constexpr uint32_t ESCCTLInZF0 = 0x40000000;
const std::string invitation = "hex ZRINIT 587202560";         // ZF0 is 0x23
const std::string invitationEscaped = "hex ZRINIT 1660944384"; // and 0x40
const std::string cancels(5, '\x18');
const std::string finish = zmodem::Hex(ZFIN).substr(0, 20);

std::vector<Exchange> Times(size_t count, const Exchange& exchange) {
    return std::vector<Exchange>(count, exchange);
}

std::vector<Exchange> operator+(std::vector<Exchange> left, const std::vector<Exchange>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// The opening

struct OpeningCase {
    const char* name;
    std::vector<Exchange> script;
    int result;
    Heard heard;
};

class ZModemOpening : public testing::TestWithParam<OpeningCase> {};

TEST_P(ZModemOpening, AnswersEachFrame) {
    ReceiveCase test(GetParam().script);
    EXPECT_EQ(test.receiver.TryZModem(), GetParam().result);
    EXPECT_EQ(test.farEnd.heard, GetParam().heard);
    EXPECT_TRUE(test.farEnd.ScriptIsDone());
    EXPECT_EQ(test.farEnd.decoder.Rest(), "");
}

const OpeningCase openingRows[] = {
    {"SilenceForAllPasses", {}, 0, Heard(15, invitation)},
    {"File", {{"hex ZRINIT", Offer("a", "5")}}, ZFILE, {invitation}},
    {"FileWithCrc32",
     {{"hex ZRINIT", zmodem::Binary32(ZFILE) + zmodem::Data32("a\0005\0"s, 'k') + "\x11"}},
     ZFILE,
     {invitation}},
    {"FileTwiceGarbled",
     {{"hex ZRINIT", zmodem::Binary(ZFILE) + "a\x18kxx\x11"},
      {"hex ZNAK", zmodem::Binary(ZFILE) + zmodem::Data("a", 'h')},
      {"hex ZNAK", Offer("a", "5")}},
     ZFILE,
     {invitation, "hex ZNAK 587202560", "hex ZNAK 587202560"}},
    {"SessionOptions",
     {{"hex ZRINIT", zmodem::Binary(ZSINIT) + zmodem::Data("stop\0"s, 'k')}, {"hex ZACK 1", Offer("a", "5")}},
     ZFILE,
     {invitation, "hex ZACK 1"}},
    {"SessionOptionsWithAnotherEnd",
     {{"hex ZRINIT", zmodem::Binary(ZSINIT) + zmodem::Data("stop\0"s, 'h')}, {"hex ZNAK", Offer("a", "5")}},
     ZFILE,
     {invitation, "hex ZNAK 587202560"}},
    {"SessionOptionsTooLong",
     {{"hex ZRINIT", zmodem::Hex(ZSINIT).substr(0, 20) + zmodem::Data(std::string(33, 's'), 'k')},
      {"hex ZNAK", Offer("a", "5")}},
     ZFILE,
     {invitation, "hex ZNAK 587202560"}},
    {"EscapingAskedFor",
     {{"hex ZRINIT", zmodem::Hex(ZSINIT, ESCCTLInZF0).substr(0, 20) + zmodem::Data("", 'k')},
      {"hex ZACK 1", zmodem::Hex(ZRQINIT)},
      {invitationEscaped, cancels}},
     -1,
     {invitation, "hex ZACK 1", invitationEscaped}},
    {"Finish", {{"hex ZRINIT", finish}, {"hex ZFIN", "OO"}}, ZCOMPL, {invitation, "hex ZFIN 0"}},
    {"CompletionIsPassedOver",
     {{"hex ZRINIT", zmodem::Hex(ZCOMPL) + finish}, {"hex ZFIN", "OO"}},
     ZCOMPL,
     {invitation, "hex ZFIN 0"}},
    {"Cancels", {{"hex ZRINIT", cancels}}, -1, {invitation}},
    {"CancelFrame", {{"hex ZRINIT", zmodem::Hex(ZCAN)}}, -1, {invitation}},
    {"FreeSpace",
     {{"hex ZRINIT", zmodem::Hex(ZFREECNT)}, {"hex ZACK 2147483647", Offer("a", "5")}},
     ZFILE,
     {invitation, "hex ZACK 2147483647"}},
    {"CommandIsNeverRun",
     {{"hex ZRINIT", zmodem::Binary(ZCOMMAND) + zmodem::Data("rm x\0"s, 'k')}},
     -1,
     {invitation}},
    {"OtherFramesAskAgain",
     {{"hex ZRINIT", zmodem::Hex(ZRQINIT)},
      {"hex ZRINIT", zmodem::Hex(ZDATA)},
      {"hex ZRINIT", Offer("a", "5")}},
     ZFILE,
     {invitation, invitation, invitation}},
    {"GarbledHeaderAsksAgain",
     {{"hex ZRINIT", zmodem::Garbled(zmodem::Hex(ZRQINIT))}, {"hex ZRINIT", Offer("a", "5")}},
     ZFILE,
     {invitation, invitation}},
};
RUN_TABLE(ZModemOpening, openingRows);

TEST(ZModemOpeningLog, CountsThePasses) {
    ReceiveCase test({});
    test.receiver.TryZModem();
    EXPECT_TRUE(test.Logged("Synchronizing"));
    EXPECT_TRUE(test.Logged("Synchronize #1"));
    EXPECT_TRUE(test.Logged("Synchronize #15"));
    EXPECT_FALSE(test.Logged("Synchronize #16"));
    EXPECT_EQ(test.transfer.line.waited, 15u * 10000);
}

TEST(ZModemOpeningFlags, GoToTheFile) {
    ReceiveCase test({{"hex ZRINIT", Offer("a", "5", 2, 0x81)}});
    test.receiver.TryZModem();
    EXPECT_EQ(test.file.zconv, 2);
    EXPECT_EQ(test.file.zmanag, 0x81);
    EXPECT_EQ(test.file.ztrans, 0);
}

TEST(ZModemOpeningAttention, IsKeptWhenItIsAcknowledged) {
    ReceiveCase test({{"hex ZRINIT", zmodem::Binary(ZSINIT) + zmodem::Data("stop\0"s, 'k')},
                      {"hex ZACK", zmodem::Binary(ZSINIT) + zmodem::Data("other\0"s, 'h')}});
    test.receiver.TryZModem();
    EXPECT_EQ(test.file.Attn, "stop");
}

TEST(ZModemOpeningAttention, FillsItsField) {
    const std::string longest(32, 's');
    ReceiveCase test({{"hex ZRINIT", zmodem::Binary(ZSINIT) + zmodem::Data(longest, 'k')}});
    test.receiver.TryZModem();
    EXPECT_EQ(test.file.Attn, longest);
}

TEST(ZModemOpeningAbort, EndsIt) {
    ReceiveCase test({});
    test.transfer.line.abortAt = GetTickCount() + 25000;
    EXPECT_EQ(test.receiver.TryZModem(), 0);
    EXPECT_EQ(test.farEnd.heard, Heard(3, invitation));
}

TEST(ZModemOpeningPort, ClosedEndsIt) {
    ReceiveCase test({});
    test.transfer.line.closeAt = GetTickCount() + 5000;
    EXPECT_EQ(test.receiver.TryZModem(), 0);
    EXPECT_EQ(test.farEnd.heard, Heard(1, invitation));
}

// The goodbye

TEST(ZModemGoodbye, TakesTheSecondLetterToo) {
    ReceiveCase test({{"hex ZRINIT", finish + "junk"}, {"hex ZFIN", "OOx"}});
    EXPECT_EQ(test.receiver.TryZModem(), ZCOMPL);
    EXPECT_EQ(test.transfer.line.Unread(), 1u);
    EXPECT_TRUE(test.Logged("Final goodbye:"));
    EXPECT_TRUE(test.Logged("Goodbye complete"));
}

TEST(ZModemGoodbye, WaitsASecondForTheSecondLetter) {
    ReceiveCase test({{"hex ZRINIT", finish}, {"hex ZFIN", "O"}});
    test.receiver.TryZModem();
    EXPECT_EQ(test.transfer.line.waited, 1000u);
}

TEST(ZModemGoodbye, IsSaidThreeTimes) {
    ReceiveCase test({{"hex ZRINIT", finish}, {"hex ZFIN", "x"}});
    EXPECT_EQ(test.receiver.TryZModem(), ZCOMPL);
    EXPECT_EQ(test.farEnd.heard, (Heard{invitation, "hex ZFIN 0", "hex ZFIN 0", "hex ZFIN 0"}));
    EXPECT_EQ(test.transfer.line.waited, 20000u);
    EXPECT_FALSE(test.Logged("Goodbye complete"));
}

TEST(ZModemGoodbye, EndsWithThePort) {
    ReceiveCase test({{"hex ZRINIT", finish}});
    test.transfer.line.closeAt = GetTickCount() + 5000;
    EXPECT_EQ(test.receiver.TryZModem(), ZCOMPL);
    EXPECT_EQ(test.Count("hex ZFIN"), 1u);
}

// Files

struct FileCase {
    const char* name;
    std::vector<Exchange> script; // after the offer of "a" with five bytes
    int result;
    Heard heard; // after the first ZRPOS
    std::string contents;
    std::string shown = {};
    std::string logged = {};
};

class ZModemFile : public testing::TestWithParam<FileCase> {};

TEST_P(ZModemFile, AnswersEachFrame) {
    const FileCase& row = GetParam();
    ReceiveCase test(std::vector<Exchange>{{"hex ZRINIT", Offer("a", "5 100")}} + row.script);
    test.file.Attn = "!";
    EXPECT_EQ(test.Run(), row.result);
    Heard heard = {invitation, "hex ZRPOS 0"};
    heard.insert(heard.end(), row.heard.begin(), row.heard.end());
    EXPECT_EQ(test.farEnd.heard, heard);
    EXPECT_EQ(test.Contents("a"), row.contents);
    EXPECT_TRUE(row.shown.empty() || test.Showed(row.shown)) << row.shown;
    EXPECT_TRUE(row.logged.empty() || test.Logged(row.logged)) << row.logged;
    EXPECT_TRUE(test.farEnd.ScriptIsDone());
}

const std::vector<Exchange> goodbye = {{"hex ZRINIT", finish}, {"hex ZFIN", "OO"}};
const Heard goodbyeHeard = {invitation, "hex ZFIN 0"};
const std::string attention = "raw 21";

Heard Before(Heard pieces, const Heard& last) {
    pieces.insert(pieces.end(), last.begin(), last.end());
    return pieces;
}

const FileCase fileRows[] = {
    {"EndE", std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} + goodbye, 0,
     goodbyeHeard, "hello", "Transfer successful.", "Receiving data... 5 bytes, now at 5 (E)"},
    {"EndG",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hel", 'i') + zmodem::Data("lo", 'h') + End(5)}} +
         goodbye,
     0, goodbyeHeard, "hello", "Receiving data", "Receiving data... 3 bytes, now at 3 (G)"},
    {"EndQ",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hel", 'j')},
                           {"hex ZACK 3", zmodem::Data("lo", 'h') + End(5)}} +
         goodbye,
     0, Before({"hex ZACK 3"}, goodbyeHeard), "hello", "Receiving data:", "Sending a ZACK for CRCQ"},
    {"EndW",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hel", 'k') + "\x11"},
                           {"hex ZACK 3", DataFrame(3, "lo") + End(5)}} +
         goodbye,
     0, Before({"raw 11", "hex ZACK 3"}, goodbyeHeard), "hello", "", "Sending a ZACK for CRCW"},
    {"Crc32",
     std::vector<Exchange>{{"hex ZRPOS 0", zmodem::Binary32(ZDATA) + zmodem::Data32("hello", 'h') +
                                               zmodem::Binary32(ZEOF, 5)}} +
         goodbye,
     0, goodbyeHeard, "hello"},
    {"Silence",
     std::vector<Exchange>{{"hex ZRPOS 0", ""}, {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} + goodbye, 0,
     Before({"hex ZRPOS 0"}, goodbyeHeard), "hello", "Timeout..."},
    {"NoiseInAHeader",
     std::vector<Exchange>{{"hex ZRPOS 0", zmodem::Garbled(zmodem::Hex(ZDATA))},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({attention, "hex ZRPOS 0"}, goodbyeHeard), "hello", "Received line noise..."},
    {"Refusal",
     std::vector<Exchange>{{"hex ZRPOS 0", zmodem::Hex(ZNAK)},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({"hex ZRPOS 0"}, goodbyeHeard), "hello"},
    {"OfferOnceMore",
     std::vector<Exchange>{{"hex ZRPOS 0", Offer("b", "9")},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({"hex ZRPOS 0"}, goodbyeHeard), "hello", "", "Received out of sequence ZFILE..."},
    {"SkippedBySender", std::vector<Exchange>{{"hex ZRPOS 0", zmodem::Hex(ZSKIP)}} + goodbye, 0, goodbyeHeard,
     "", "Sender skipped file...", "Sender SKIPPED file"},
    {"DataFromAnotherPlace",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(3, "lo")},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({attention, "hex ZRPOS 0"}, goodbyeHeard), "hello"},
    {"StaleEnd",
     std::vector<Exchange>{{"hex ZRPOS 0", End(5) + DataFrame(0, "hello") + End(4) + End(5)}} + goodbye, 0,
     goodbyeHeard, "hello", "", "ReceiveFile: File transferred successfully"},
    {"WrongHeader",
     std::vector<Exchange>{{"hex ZRPOS 0", zmodem::Hex(ZRINIT)},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({"hex ZRPOS 0"}, goodbyeHeard), "hello", "Received invalid header",
     "ReceiveFile: Wrong header 1"},
    {"Junk",
     std::vector<Exchange>{{"hex ZRPOS 0", std::string(59000, 'x')},
                           {"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}} +
         goodbye,
     0, Before({"hex ZRPOS 0"}, goodbyeHeard), "hello", "Received invalid header",
     "ReceiveFile: Wrong header -4"},
    {"CancelInsteadOfAHeader", {{"hex ZRPOS 0", cancels}}, -1, {}, "", "Sender cancelled"},
    {"SilenceInTheData",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hel", 'i') + "l"},
                           {"hex ZRPOS 3", DataFrame(3, "lo") + End(5)}} +
         goodbye,
     0, Before({"hex ZRPOS 3"}, goodbyeHeard), "hello", "Timeout receiving data..."},
    {"NoiseInTheData",
     std::vector<Exchange>{{"hex ZRPOS 0", DataFrame(0, "hel", 'i') + "lo\x18hxx"},
                           {"hex ZRPOS 3", DataFrame(3, "lo") + End(5)}} +
         goodbye,
     0, Before({attention, "hex ZRPOS 3"}, goodbyeHeard), "hello", "Error receiving data..."},
    {"CancelInTheData",
     {{"hex ZRPOS 0", zmodem::Binary(ZDATA) + "he" + cancels}},
     -1,
     {},
     "",
     "Sender CANcelled"},
    {"EmptyFile", std::vector<Exchange>{{"hex ZRPOS 0", End(0)}} + goodbye, 0, goodbyeHeard, ""},
    {"NoFinishAfterTheFile",
     {{"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}},
     -1,
     Heard(15, invitation),
     "hello"},
    {"CancelAfterTheFile",
     {{"hex ZRPOS 0", DataFrame(0, "hello") + End(5)}, {"hex ZRINIT", cancels}},
     -1,
     {invitation},
     "hello"},
};
RUN_TABLE(ZModemFile, fileRows);

// Twenty errors in a row are forgiven, the next is the end.
struct BudgetCase {
    const char* name;
    std::string said; // to each ZRPOS
    std::string reason;
    bool onlyLogged = false;
};

class ZModemBudget : public testing::TestWithParam<BudgetCase> {};

const std::vector<Exchange> offered = {{"hex ZRINIT", Offer("a", "5")}};

TEST_P(ZModemBudget, EndsAtTheTwentyFirstError) {
    const BudgetCase& row = GetParam();
    ReceiveCase test(offered + Times(30, {"hex ZRPOS", row.said}));
    EXPECT_EQ(test.Run(), -1);
    EXPECT_EQ(test.Count("hex ZRPOS"), 21u);
    EXPECT_TRUE(test.Logged(row.reason));
    EXPECT_EQ(test.Showed(row.reason), !row.onlyLogged);
}

TEST_P(ZModemBudget, ForgivesTwentyErrors) {
    ReceiveCase test(offered + Times(20, {"hex ZRPOS", GetParam().said}) +
                     std::vector<Exchange>{{"hex ZRPOS", DataFrame(0, "hello") + End(5)}} + goodbye);
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.Contents("a"), "hello");
}

const BudgetCase budgetRows[] = {
    {"Silence", "", "Receive file got timeout"},
    {"NoiseInAHeader", zmodem::Garbled(zmodem::Hex(ZDATA)), "Persistent CRC or other ERROR"},
    {"Refusal", zmodem::Hex(ZNAK), "Receive file got ZNAK", true},
    {"AnotherPlace", DataFrame(3, ""), "Data has bad addr"},
    {"WrongHeader", zmodem::Hex(ZRQINIT), "ReceiveFile: Wrong header 0"},
    {"SilenceInTheData", zmodem::Binary(ZDATA) + "l", "TIMEOUT"},
    {"NoiseInTheData", zmodem::Binary(ZDATA) + "\x18!", "Persistent CRC or other ERROR"},
};
RUN_TABLE(ZModemBudget, budgetRows);

TEST(ZModemBudgetRefill, EachGoodSubpacketBringsIt) {
    std::vector<Exchange> script = offered;
    uint32_t position = 0;
    for (const char end : {'h', 'i', 'j', 'k'})
        script = script + Times(19, {"hex ZRPOS", zmodem::Hex(ZNAK)}) +
                 std::vector<Exchange>{{"hex ZRPOS", DataFrame(position++, "x", end) + zmodem::Hex(ZNAK)}};
    ReceiveCase test(script);
    test.Run();
    EXPECT_EQ(test.Contents("a"), "xxxx");
}

// One file after the other, and what the host sees of it

TEST(ZModemFiles, AnswerToAnOfferIsTheNextInvitation) {
    ReceiveCase test({{"hex ZRINIT", Offer("a", "1")},
                      {"hex ZRPOS", DataFrame(0, "A") + End(1)},
                      {"hex ZRINIT", Offer("locked", "1")},
                      {"hex ZFERR", zmodem::Hex(ZRQINIT)},
                      {"hex ZFERR", Offer("b", "1")},
                      {"hex ZRPOS", DataFrame(0, "B") + End(1)},
                      {"hex ZRINIT", finish},
                      {"hex ZFIN", "OO"}});
    test.disk.locked.insert("locked");
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.Contents("a") + test.Contents("b"), "AB");
    EXPECT_EQ(test.transfer.transfer.bFileFailed, 1);
    EXPECT_TRUE(test.Logged("File downloaded failed"));
    EXPECT_TRUE(test.Logged("File downloaded successfully"));
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "finish"), 2);
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "abort"), 1);
}

TEST(ZModemFiles, ASkipIsToldOnce) {
    ReceiveCase test(
        {{"hex ZRINIT", Offer("old", "1", 0, ZMPROT)}, {"hex ZSKIP", ""}, {"hex ZRINIT", cancels}});
    test.file.Lzmanag = 0;
    test.disk.files["old"].contents = "kept";
    EXPECT_EQ(test.Run(), -1);
    EXPECT_EQ(test.farEnd.heard, (Heard{invitation, "hex ZSKIP 587202560", invitation}));
    EXPECT_EQ(test.Contents("old"), "kept");
    EXPECT_TRUE(test.Logged("File download skipped"));
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "abort"), 1);
    EXPECT_EQ(test.transfer.transfer.bFileFailed, 0);
}

TEST(ZModemFiles, WhatTheSenderSkipsHasTimeOne) {
    ReceiveCase test(
        std::vector<Exchange>{{"hex ZRINIT", Offer("a", "5 100")}, {"hex ZRPOS", zmodem::Hex(ZSKIP)}} +
        goodbye);
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.disk.files["a"].modified, 1);
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "abort"), 1);
}

TEST(ZModemFiles, TimeIsTheSenders) {
    ReceiveCase test(std::vector<Exchange>{{"hex ZRINIT", Offer("a", "0 100")}, {"hex ZRPOS", End(0)}} +
                     goodbye);
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.disk.files["a"].modified, 0100);
}

TEST(ZModemFiles, AFullDiskIsNoSuccess) {
    ReceiveCase test({{"hex ZRINIT", Offer("a", "5")}, {"hex ZRPOS", DataFrame(0, "hello") + End(5)}});
    test.disk.full = true;
    EXPECT_EQ(test.Run(), -1);
    EXPECT_TRUE(test.Logged("ReceiveFile: Unable to close the file"));
    EXPECT_TRUE(test.Showed("Error closing file"));
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "finish"), 0);
}

TEST(ZModemFiles, GoOnWhereAPartIsThere) {
    const std::string whole(1500, 'w');
    ReceiveCase test(std::vector<Exchange>{{"hex ZRINIT", Offer("a", "1500")},
                                           {"hex ZRPOS 512", DataFrame(512, whole.substr(512)) + End(1500)}} +
                         goodbye,
                     true);
    test.framing.bZModem = true;
    test.disk.files["a"].contents = whole.substr(0, 1000);
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.farEnd.heard[1], "hex ZRPOS 512");
    EXPECT_EQ(test.Contents("a"), whole);
}

TEST(ZModemFiles, AnAbortEndsThem) {
    ReceiveCase test({{"hex ZRINIT", Offer("a", "5")}, {"hex ZRPOS", zmodem::Binary(ZDATA) + "he"}});
    test.transfer.line.abortAt = GetTickCount() + 3000;
    EXPECT_EQ(test.Run(), -1);
    EXPECT_EQ(test.Count("hex ZRPOS"), 1u);
    EXPECT_LE(test.transfer.line.waited, 3100u);
}

TEST(ZModemFiles, AnAbortWithinAnEndlessStreamEndsThem) {
    std::string stream = DataFrame(0, "x", 'i');
    for (int i = 0; i < 5000; ++i)
        stream += zmodem::Data("x", 'i');
    ReceiveCase test({{"hex ZRINIT", Offer("a", "5")}, {"hex ZRPOS", stream}});
    test.transfer.onEvent = [&](int) {
        if (test.transfer.object.Record().lBytesTransferred >= 10)
            test.transfer.object.Record().bAbortTransfer = 1;
    };
    EXPECT_EQ(test.Run(), -1);
    EXPECT_EQ(test.Contents("a"), std::string(10, 'x'));
    EXPECT_TRUE(test.Showed("User canceled"));
}

TEST(ZModemFiles, AClosedPortEndsThem) {
    ReceiveCase test({{"hex ZRINIT", Offer("a", "5")}, {"hex ZRPOS", zmodem::Binary(ZDATA) + "he"}});
    test.transfer.line.closeAt = GetTickCount() + 3000;
    EXPECT_EQ(test.Run(), -1);
    EXPECT_LE(test.transfer.line.waited, 3100u);
}

TEST(ZModemFiles, AnOverlongSubpacketIsNoiseAndStaysInItsBuffer) {
    const std::string whole(1025, 'w');
    ReceiveCase test(std::vector<Exchange>{{"hex ZRINIT", Offer("a", "1025")},
                                           {"hex ZRPOS 0", DataFrame(0, whole)},
                                           {"hex ZRPOS 0", DataFrame(0, whole.substr(1), 'i') +
                                                               zmodem::Data("w", 'h') + End(1025)}} +
                     goodbye);
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.Contents("a"), whole);
}

TEST(ZModemFiles, AHeaderThatFillsItsBufferIsRead) {
    const std::string name(1023, 'n');
    ReceiveCase test({{"hex ZRINIT", zmodem::Binary(ZFILE) + zmodem::Data(name + "n", 'k') + "\x11"},
                      {"hex ZRPOS", DataFrame(0, "hello") + End(5)},
                      {"hex ZRINIT", finish},
                      {"hex ZFIN", "OO"}});
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.file.Pathname, std::string(512, 'n'));
}

} // namespace
