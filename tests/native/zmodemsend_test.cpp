// The ZModem sender: what it says to each answer of the receiver.
#include "caseprint.h"
#include "zmodemsendcase.h"

namespace {

using zmodem::Binary;
using zmodem::Data;
using zmodem::Garbled;
using zmodem::Hex;
using zmodem::LongHex;

using Heard = std::vector<std::string>;
using Script = std::vector<zmodem::Exchange>;

enum : int { RQINIT, RINIT, SINIT, ACK, FILE_, SKIP, NAK, ABORT, FIN, RPOS, DATA, END, FERR, CRC, CHALLENGE };
enum : int { COMPL = 15, CAN = 16, FREECNT = 17, COMMAND = 18 };

const std::string offer = "bin ZFILE 262144"; // ZF1 4: replace
const std::string offerEnd = "data 8 W";
const std::string cancel(5, '\x18');

// The data of a whole file from its beginning, for a file of less than four sub-packets.
Script Answered(const std::string& said, uint32_t size) {
    return {{offerEnd, said}, {"bin ZEOF " + std::to_string(size), Hex(RINIT, 0x23000000)}};
}

Heard operator+(Heard list, const Heard& more) {
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

const Heard offered = {offer, offerEnd};
const Heard sent100 = {"bin ZDATA 0", "data 100 E", "bin ZEOF 100"};

struct SendCase {
    const char* name;
    size_t cbFile;
    Script script;
    int result;
    Heard heard;
    const char* logged = nullptr;
    DWORD waits = 0; // ms, at least and not a second more
};

void PrintTo(const SendCase& row, std::ostream* out) {
    *out << row.name;
}

void Expect(const SendCase& row) {
    SenderCase at(row.cbFile, row.script);
    EXPECT_EQ(at.Send(), row.result);
    EXPECT_EQ(at.peer.heard, row.heard);
    EXPECT_TRUE(at.peer.ScriptIsDone());
    EXPECT_EQ(at.peer.decoder.Rest(), "");
    EXPECT_GE(at.transfer.line.waited, row.waits);
    EXPECT_LE(at.transfer.line.waited, row.waits + 1000);
    EXPECT_TRUE(!row.logged || at.Logged(row.logged)) << row.logged;
}

// The offer

class ZModemOffer : public testing::TestWithParam<SendCase> {};

const SendCase offerRows[] = {
    {"SilenceEndsIt", 100, {}, -1, offered, "Received timeout for pathname", 60000},
    {"AbortEndsIt", 100, {{offerEnd, Hex(ABORT)}}, -1, offered, "Received ZABORT for pathname"},
    {"FinEndsIt", 100, {{offerEnd, Hex(FIN)}}, -1, offered, "Received ZFIN for pathname"},
    {"CanHeaderEndsIt", 100, {{offerEnd, Hex(CAN)}}, -1, offered, "Received ZCAN for pathname"},
    {"FiveCansEndIt", 100, {{offerEnd, cancel}}, -1, offered, "Received ZCAN for pathname"},
    {"NakRepeats", 100, {{offerEnd, Hex(NAK)}, {offerEnd, Hex(SKIP)}}, 5, offered + offered},
    {"GarbledHeaderRepeats",
     100,
     {{offerEnd, Garbled(Hex(RPOS))}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered},
    {"SkipSkips", 100, {{offerEnd, Hex(SKIP)}}, 5, offered},
    {"FileErrorSkips", 100, {{offerEnd, Hex(FERR)}}, 12, offered},
    {"PositionSends", 100, Answered(Hex(RPOS), 100), 0, offered + sent100, "Sending filename a"},
    {"BinaryPositionSends", 100, Answered(Binary(RPOS), 100), 0, offered + sent100},
    {"LongCrcPositionSends", 100, Answered(zmodem::Binary32(RPOS), 100), 0, offered + sent100},
    {"PositionInTheMiddleSendsTheRest", 100, Answered(Hex(RPOS, 40), 100), 0,
     offered + Heard{"bin ZDATA 40", "data 60 E", "bin ZEOF 100"}},
    {"PositionAtTheEndSendsNothing", 100, Answered(Hex(RPOS, 100), 100), 0,
     offered + Heard{"bin ZDATA 100", "data 0 E", "bin ZEOF 100"}},
    {"NegativePositionFails", 100, {{offerEnd, Hex(RPOS, 0x80000000)}}, -1, offered},
    {"InvitationIsPassedOver", 100, Answered(Hex(RINIT) + Hex(RPOS), 100), 0, offered + sent100},
    {"InvitationsArePassedOver", 100, Answered(Hex(RINIT) + Hex(RINIT) + Hex(RINIT) + Hex(RPOS), 100), 0,
     offered + sent100},
    {"InvitationThenBinaryHeader",
     100,
     {{offerEnd, Hex(RINIT) + "*" + Binary(RPOS)}, {"bin ZEOF", Hex(RINIT)}},
     0,
     offered + sent100},
    {"InvitationAndJunk", 100, Answered(Hex(RINIT) + "\r\nrz" + Hex(RPOS), 100), 0, offered + sent100},
    {"InvitationAndSilenceRepeats",
     100,
     {{offerEnd, Hex(RINIT)}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered,
     nullptr,
     5000},
    {"InvitationAndNulRepeats",
     100,
     {{offerEnd, Hex(RINIT) + std::string(1, '\0')}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered},
    {"OtherHeaderRepeats",
     100,
     {{offerEnd, Hex(ACK)}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered,
     "Received 3 frame type for pathname"},
    {"HeaderOutOfRangeRepeats",
     100,
     {{offerEnd, Hex(FREECNT)}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered,
     "Received 17 frame type for pathname"},
    {"JunkRepeats",
     100,
     {{offerEnd, std::string(59001, 'x')}, {offerEnd, Hex(SKIP)}},
     5,
     offered + offered,
     "Received -4 frame type for pathname"},
};

TEST_P(ZModemOffer, AnswerGetsItsDue) {
    Expect(GetParam());
}

RUN_TABLE(ZModemOffer, offerRows);

TEST(ZModemOfferLimit, TenNaksAreEnough) {
    SenderCase at(100, Script(10, {offerEnd, Hex(NAK)}));
    EXPECT_EQ(at.Send(), -1);
    EXPECT_EQ(at.Count("bin ZFILE"), 10);
    EXPECT_FALSE(at.fin.IsOpen());
}

TEST(ZModemOfferLimit, InvitationsForEverEnd) {
    SenderCase at(100, Script(12, {offerEnd, ""}));
    at.transfer.line.onWait = [&] { at.transfer.line.Say(Hex(RINIT)); };
    EXPECT_EQ(at.Send(), -1);
    EXPECT_EQ(at.Count("bin ZFILE"), 10);
}

TEST(ZModemOfferLimit, JunkAfterAnInvitationEnds) {
    SenderCase at(100, {{offerEnd, Hex(RINIT) + std::string(60000, 'x')}, {offerEnd, Hex(SKIP)}});
    EXPECT_EQ(at.Send(), 5);
}

TEST(ZModemOfferLimit, ChecksumRequestsForEverEnd) {
    SenderCase at(100, {});
    at.transfer.line.onWait = [&] { at.transfer.line.Say(Hex(CRC, 100)); };
    EXPECT_EQ(at.Send(), -1);
}

TEST(ZModemOfferWords, AreTheStatus) {
    SenderCase at(100, {{offerEnd, Hex(SKIP)}});
    at.Send();
    EXPECT_EQ(at.transfer.lastStatus, "Sending filename...");
    EXPECT_EQ(at.peer.decoder.fileHeader, std::string("a\0001 2 3", 8));
}

TEST(ZModemOfferFlags, AreTheOnesAskedFor) {
    SenderCase at(100, {{"bin ZFILE " + std::to_string(3U << 24 | 5U << 16 | 7U << 8), Hex(NAK)},
                        {"data 8 W", Hex(SKIP)}});
    at.sender.Lzconv = 3;
    at.sender.Lzmanag = 5;
    at.sender.Lztrans = 7;
    EXPECT_EQ(at.Send(), 5);
}

TEST(ZModemOfferFile, IsClosedWhenSkipped) {
    for (const int type : {SKIP, FERR}) {
        SenderCase at(100, {{offerEnd, Hex(type)}});
        at.Send();
        EXPECT_FALSE(at.fin.IsOpen());
    }
}

TEST(ZModemOfferFile, ThatCantSeekFails) {
    SenderCase at(100, {{offerEnd, Hex(RPOS)}});
    at.disk.seeksFail = true;
    EXPECT_EQ(at.Send(), -1);
    EXPECT_EQ(at.peer.heard, offered);
}

TEST(ZModemOfferAbort, BeforeItSaysNothing) {
    SenderCase at(100, {});
    xfSetAbort(at.transfer.transfer, 1);
    EXPECT_EQ(at.Send(), -1);
    EXPECT_EQ(at.transfer.line.sent, "");
}

TEST(ZModemOfferAbort, WhileWaitingEndsAtOnce) {
    SenderCase at(100, {});
    at.transfer.line.abortAt = GetTickCount() + 3000;
    EXPECT_EQ(at.Send(), -1);
    EXPECT_LE(at.transfer.line.waited, 3100U);
}

TEST(ZModemOfferPort, ClosedWhileWaitingEndsAtOnce) {
    SenderCase at(100, {});
    at.transfer.line.closeAt = GetTickCount() + 3000;
    EXPECT_EQ(at.Send(), -1);
    EXPECT_LE(at.transfer.line.waited, 3100U);
}

// The checksum

std::string ChecksumRequest(uint32_t count, uint32_t start) {
    return LongHex(CRC, zmodem::LowFirst32(count) + std::string(2, '\0') + zmodem::LowFirst32(start));
}

struct ChecksumCase {
    const char* name;
    size_t cbFile;
    std::string request;
    size_t from;
    size_t to; // what the sum covers
};

void PrintTo(const ChecksumCase& row, std::ostream* out) {
    *out << row.name;
}

class ZModemChecksum : public testing::TestWithParam<ChecksumCase> {};

const ChecksumCase checksumRows[] = {
    {"WholeFile", 1500, Hex(CRC, 1500), 0, 1500},
    {"MoreThanTheFile", 1500, Hex(CRC, 9999), 0, 1500},
    {"WholeBlocksCount", 3000, Hex(CRC, 100), 0, 1024},
    {"BlockIsReachedExactly", 3000, Hex(CRC, 1024), 0, 1024},
    {"OneMoreByteIsOneMoreBlock", 3000, Hex(CRC, 1025), 0, 2048},
    {"StartIsTold", 5000, ChecksumRequest(1100, 100), 100, 1124},
    {"StartOfAllOnesIsTheBeginning", 1500, ChecksumRequest(1500, 0xFFFFFFFF), 0, 1500},
    {"EmptyFile", 0, Hex(CRC, 10), 0, 0},
};

TEST_P(ZModemChecksum, CoversTheFile) {
    const ChecksumCase& row = GetParam();
    const std::string contents = AllBytes(row.cbFile).substr(row.from, row.to - row.from);
    const std::string answer = "bin ZCRC " + std::to_string(zmodem::Crc32(contents));
    const std::string end = "bin ZEOF " + std::to_string(row.cbFile);
    SenderCase at(row.cbFile,
                  {{offerEnd, row.request}, {answer, Hex(RPOS)}, {"bin ZDATA 0", ""}, {end, Hex(RINIT)}});
    if (row.cbFile > 4096) // a stop on the way
        at.peer = zmodem::FarEnd({{offerEnd, row.request},
                                  {answer, Hex(RPOS)},
                                  {"data 1024 W", Hex(ACK, 4096)},
                                  {end, Hex(RINIT)}});
    EXPECT_EQ(at.Send(), 0);
    EXPECT_TRUE(at.peer.ScriptIsDone()) << testing::PrintToString(at.peer.heard);
    EXPECT_EQ(at.peer.decoder.contents,
              AllBytes(row.cbFile)); // the reading for the sum has left nothing behind
}

RUN_TABLE(ZModemChecksum, checksumRows);

TEST(ZModemChecksumAgain, IsAnsweredWithoutReading) {
    SenderCase at(1500, {{offerEnd, ChecksumRequest(1500, 0xFFFFFFFF)},
                         {"bin ZCRC", ChecksumRequest(1500, 0xFFFFFFFF)},
                         {"bin ZCRC", Hex(CRC, 1500)},
                         {"bin ZCRC", Hex(SKIP)}});
    EXPECT_EQ(at.Send(), 5);
    EXPECT_EQ(at.Count("bin ZCRC " + std::to_string(zmodem::Crc32(AllBytes(1500)))), 3);
    int reads = 0;
    for (const std::string& line : at.transfer.object.journal)
        reads += line == "log CRC32 on 1500 bytes";
    EXPECT_EQ(reads, 2); // for the first, and for the one that tells a start
}

TEST(ZModemChecksumOf, AFileThatCantSeekIsAllOnes) {
    SenderCase at(1500, {{offerEnd, Hex(CRC, 1500)}, {"bin ZCRC 4294967295", Hex(SKIP)}});
    at.disk.seeksFail = true;
    EXPECT_EQ(at.Send(), 5);
}

// The data

class ZModemData : public testing::TestWithParam<SendCase> {};

const Heard four = {"data 1024 G", "data 1024 G", "data 1024 G", "data 1024 W"};

// An offer that is taken, and then the script.
Script Taken(const Script& more) {
    Script script = {{offerEnd, Hex(RPOS)}};
    script.insert(script.end(), more.begin(), more.end());
    return script;
}

const SendCase dataRows[] = {
    {"EmptyFile", 0, Answered(Hex(RPOS), 0), 0, offered + Heard{"bin ZDATA 0", "data 0 E", "bin ZEOF 0"}},
    {"OneByte", 1, Answered(Hex(RPOS), 1), 0, offered + Heard{"bin ZDATA 0", "data 1 E", "bin ZEOF 1"}},
    {"LessThanABlock", 1023, Answered(Hex(RPOS), 1023), 0,
     offered + Heard{"bin ZDATA 0", "data 1023 E", "bin ZEOF 1023"}},
    {"ExactlyABlock", 1024, Answered(Hex(RPOS), 1024), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 0 E", "bin ZEOF 1024"}},
    {"MoreThanABlock", 1025, Answered(Hex(RPOS), 1025), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1 E", "bin ZEOF 1025"}},
    {"LastOfFourBlocksIsShort", 4000, Answered(Hex(RPOS), 4000), 0,
     offered +
         Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 1024 G", "data 928 E", "bin ZEOF 4000"}},
    {"FourthBlockStops", 4096, Taken({{"data 1024 W", Hex(ACK, 4096)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"EachFourthBlockStops", 8193,
     Taken({{"data 1024 W", Hex(ACK, 4096)}, {"data 1024 W", Hex(ACK, 8192)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096"} + four +
         Heard{"bin ZDATA 8192", "data 1 E", "bin ZEOF 8193"}},
    {"OlderAcknowledgementIsReadPast", 4096,
     Taken({{"data 1024 W", Hex(ACK, 1024) + Hex(ACK, 4096)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"PositionAtAStopGoesBack", 4096,
     Taken({{"data 1024 W", Hex(RPOS, 2048)}, {"data 1024 W", Hex(ACK, 3072)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four +
         Heard{"bin ZDATA 2048", "data 1024 W", "bin ZDATA 3072", "data 1024 G", "data 0 E",
               "bin ZEOF 4096"}},
    {"PositionBeyondIsNotTaken", 4096,
     Taken({{"data 1024 W", Hex(RPOS, 5000)}, {"bin ZEOF 4096", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"},
     "getinsync: Rxpos=1388 bytcnt=1000 Maxbytcnt=1000"},
    {"PositionAtWhatWasSentIsTaken", 4096,
     Taken({{"data 1024 W", Hex(RPOS, 4096)}, {"bin ZEOF 4096", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"},
     "getinsync: Rxpos=1000 <= bytcnt=1000 Maxbytcnt=1000"},
    {"InvitationAtAStopEndsTheFile", 9999, Taken({{"data 1024 W", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four},
    {"SkipAtAStop", 9999, Taken({{"data 1024 W", Hex(SKIP)}}), 5, offered + Heard{"bin ZDATA 0"} + four},
    {"AbortAtAStop", 9999, Taken({{"data 1024 W", Hex(ABORT)}}), -1, offered + Heard{"bin ZDATA 0"} + four},
    {"FinAtAStop", 9999, Taken({{"data 1024 W", Hex(FIN)}}), -1, offered + Heard{"bin ZDATA 0"} + four},
    {"CancelAtAStop", 9999, Taken({{"data 1024 W", cancel}}), -1, offered + Heard{"bin ZDATA 0"} + four},
    {"SilenceAtAStop", 9999, Taken({{"data 1024 W", ""}}), -1, offered + Heard{"bin ZDATA 0"} + four,
     "Synchronizing", 60000},
    {"OtherHeaderAtAStopIsRefused", 4096,
     Taken({{"data 1024 W", Hex(FERR)}, {"bin ZNAK", Hex(ACK, 4096)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four +
         Heard{"bin ZNAK 0", "bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"GarbledHeaderAtAStopIsRefused", 4096,
     Taken(
         {{"data 1024 W", Garbled(Hex(ACK, 4096))}, {"bin ZNAK", Hex(ACK, 4096)}, {"bin ZEOF", Hex(RINIT)}}),
     0,
     offered + Heard{"bin ZDATA 0"} + four +
         Heard{"bin ZNAK 0", "bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"SecondAnswerAtAStopCounts", 4096,
     Taken({{"data 1024 W", Hex(ACK, 4096) + Hex(RPOS, 3072)},
            {"data 1024 W", Hex(ACK, 4096)},
            {"bin ZEOF", Hex(RINIT)}}),
     0,
     offered + Heard{"bin ZDATA 0"} + four +
         Heard{"bin ZDATA 3072", "data 1024 W", "bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"XOffAtAStopHolds", 4096, Taken({{"data 1024 W", Hex(ACK, 4096) + "\x13"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}, nullptr,
     1000000},
    {"XOffWithParityAtAStopHolds", 4096,
     Taken({{"data 1024 W", Hex(ACK, 4096) + "\x93"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}, nullptr,
     1000000},
    {"XOnAfterXOffAtAStopGoesOn", 4096,
     Taken({{"data 1024 W", Hex(ACK, 4096) + "\x13\x11"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0"} + four + Heard{"bin ZDATA 4096", "data 0 E", "bin ZEOF 4096"}},
    {"PositionInTheDataGoesBack", 3000,
     Taken({{"bin ZDATA 0", Hex(RPOS, 512)}, {"data 1024 W", Hex(ACK, 1536)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 0 E", "bin ZDATA 512", "data 1024 W",
                     "bin ZDATA 1536", "data 1024 G", "data 440 E", "bin ZEOF 3000"}},
    {"AcknowledgementInTheDataGoesOn", 3000, Taken({{"bin ZDATA 0", Hex(ACK, 77)}, {"bin ZEOF", Hex(RINIT)}}),
     0, offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 952 E", "bin ZEOF 3000"}},
    {"SkipInTheData", 3000, Taken({{"bin ZDATA 0", Hex(SKIP)}}), 5,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 0 E"}},
    {"InvitationInTheDataEndsTheFile", 3000, Taken({{"bin ZDATA 0", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 0 E"}},
    {"CancelInTheData", 3000, Taken({{"bin ZDATA 0", cancel + "\x18"}}), -1,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 0 E"}},
    {"XOffInTheDataHolds", 3000, Taken({{"bin ZDATA 0", "\x13"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 952 E", "bin ZEOF 3000"}, nullptr,
     10000},
    {"XOffWithParityInTheDataHolds", 3000, Taken({{"bin ZDATA 0", "\x93"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 952 E", "bin ZEOF 3000"}, nullptr,
     10000},
    {"XOnAfterXOffInTheDataGoesOn", 3000, Taken({{"bin ZDATA 0", "\x13\x11"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 952 E", "bin ZEOF 3000"}},
    // The XOn behind the position is a stray too.
    {"FewStraysAreLetGo", 3000, Taken({{"bin ZDATA 0", "xy"}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 G", "data 952 E", "bin ZEOF 3000"}},
    {"FourStraysMakeAStop", 3000,
     Taken({{"bin ZDATA 0", "xyz"}, {"data 1024 W", Hex(ACK, 2048)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered +
         Heard{"bin ZDATA 0", "data 1024 G", "data 1024 W", "bin ZDATA 2048", "data 952 E", "bin ZEOF 3000"}},
    {"StopForgetsTheStrays", 5000,
     Taken({{"bin ZDATA 0", "xyz"},
            {"data 1024 W", Hex(ACK, 2048)},
            {"data 1024 W", Hex(ACK, 4096)},
            {"bin ZEOF", Hex(RINIT)}}),
     0,
     offered + Heard{"bin ZDATA 0", "data 1024 G", "data 1024 W", "bin ZDATA 2048", "data 1024 G",
                     "data 1024 W", "bin ZDATA 4096", "data 904 E", "bin ZEOF 5000"}},
};

TEST_P(ZModemData, GoesOutInItsRhythm) {
    Expect(GetParam());
}

RUN_TABLE(ZModemData, dataRows);

// The end of the file

class ZModemFileEnd : public testing::TestWithParam<SendCase> {};

const SendCase endRows[] = {
    {"InvitationIsTheReceipt", 100, Taken({{"bin ZEOF", Hex(RINIT)}}), 0, offered + sent100},
    {"AcknowledgementRepeatsIt", 100, Taken({{"bin ZEOF", Hex(ACK, 100)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + sent100 + Heard{"bin ZEOF 100"}},
    {"OlderAcknowledgementIsReadPast", 100, Taken({{"bin ZEOF", Hex(ACK, 50) + Hex(RINIT)}}), 0,
     offered + sent100},
    {"SkipIsASkipHereToo", 100, Taken({{"bin ZEOF", Hex(SKIP)}}), ZSKIP, offered + sent100},
    {"PositionSendsAgain", 100, Taken({{"bin ZEOF", Hex(RPOS, 60)}, {"bin ZEOF", Hex(RINIT)}}), 0,
     offered + sent100 + Heard{"bin ZDATA 60", "data 40 E", "bin ZEOF 100"}},
    {"PositionBeyondSendsTheEndAgain", 100, Taken({{"bin ZEOF", Hex(RPOS, 101)}, {"bin ZEOF", Hex(RINIT)}}),
     0, offered + sent100 + Heard{"bin ZDATA 100", "data 0 E", "bin ZEOF 100"}},
    {"OtherHeaderIsRefused", 100, Taken({{"bin ZEOF", Hex(FERR) + Hex(RINIT)}}), 0,
     offered + sent100 + Heard{"bin ZNAK 100"}},
    {"AbortFails", 100, Taken({{"bin ZEOF", Hex(ABORT)}}), -1, offered + sent100},
    {"CancelFails", 100, Taken({{"bin ZEOF", cancel}}), -1, offered + sent100},
    {"SilenceFails", 100, Taken({}), -1, offered + sent100, nullptr, 60000},
};

TEST_P(ZModemFileEnd, IsConfirmed) {
    Expect(GetParam());
}

RUN_TABLE(ZModemFileEnd, endRows);

TEST(ZModemFileEndClose, ClosesTheFile) {
    for (const std::string& answer : {Hex(RINIT), Hex(SKIP), Hex(ABORT)}) {
        SenderCase at(100, Taken({{"bin ZEOF", answer}}));
        at.Send();
        EXPECT_FALSE(at.fin.IsOpen());
    }
}

// Resynchronisation

TEST(ZModemResend, ShortensTheBlocksAndGivesUp) {
    SenderCase at(20000, Taken(Script(14, {"bin ZDATA 0", Hex(RPOS)})));
    EXPECT_EQ(at.Send(), -1);
    // The first request for the place is not a repeated one.
    const Heard rounds = {"data 1024 G", "data 1024 W", "data 1024 W", "data 1024 W", "data 1024 W",
                          "data 1024 W", "data 512 W",  "data 256 W",  "data 128 W",  "data 64 W",
                          "data 32 W",   "data 32 W",   "data 32 W",   "data 32 W"};
    Heard data;
    for (const std::string& piece : at.peer.heard)
        if (piece.starts_with("data ") && piece != offerEnd && piece != "data 0 E")
            data.push_back(piece);
    EXPECT_EQ(data, rounds);
    EXPECT_TRUE(at.Logged("Can't send block"));
}

// Two that lost the ZDLE between them would pass as one.
TEST(ZModemResend, StopsAfterEachShortBlock) {
    Script script(6, {"bin ZDATA 0", Hex(RPOS)});
    for (uint32_t end = 512; end <= 2048; end += 512)
        script.push_back({"data 512 W", Hex(ACK, end)});
    script.push_back({"bin ZEOF 2048", Hex(RINIT)});
    SenderCase at(2048, Taken(script));
    EXPECT_EQ(at.Send(), 0);
    EXPECT_TRUE(at.peer.ScriptIsDone()) << testing::PrintToString(at.peer.heard);
    EXPECT_EQ(at.Count("data 512 G"), 0);
}

TEST(ZModemResend, AnotherPlaceStartsTheCountAgain) {
    Script script;
    for (int round = 0; round < 8; ++round)
        script.push_back({"data ", Hex(RPOS, round % 4 == 3 ? 1 : 0)});
    script.push_back({"data ", Hex(SKIP)});
    SenderCase at(20000, Taken(script));
    EXPECT_EQ(at.Send(), 5);
    EXPECT_EQ(at.sender.blklen, 1024);
}

TEST(ZModemResend, StopsAtThePlaceItHadToRepeat) {
    SenderCase at(9000, Taken({{"data 1024 W", Hex(RPOS, 1024)},
                               {"data 1024 W", Hex(ACK, 2048)},
                               {"data 1024 W", Hex(SKIP)}}));
    EXPECT_EQ(at.Send(), 5);
    const Heard repeated = {"bin ZDATA 1024", "data 1024 W", "bin ZDATA 2048"};
    const Heard goesOn = {"data 1024 G", "data 1024 G", "data 1024 W"};
    EXPECT_EQ(at.peer.heard, offered + Heard{"bin ZDATA 0"} + four + repeated + goesOn);
}

TEST(ZModemResend, FailsWhereItCantSeek) {
    SenderCase at(9000, Taken({{"data 1024 W", Hex(RPOS, 1024)}}));
    at.transfer.onEvent = [&](int) { at.disk.seeksFail = true; };
    EXPECT_EQ(at.Send(), -1);
    EXPECT_TRUE(at.Logged("Bad Seek to 1024"));
    EXPECT_FALSE(at.fin.IsOpen());
}

TEST(ZModemResend, RepeatsTheRightBytes) {
    SenderCase at(9000, Taken({{"data 1024 W", Hex(RPOS, 1000)},
                               {"data 1024 W", Hex(ACK, 2024)},
                               {"data 1024 W", Hex(ACK, 5096)},
                               {"bin ZEOF 9000", Hex(RPOS, 8999)},
                               {"bin ZEOF 9000", Hex(RINIT)}}));
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.peer.decoder.contents, AllBytes(9000));
}

TEST(ZModemResend, PlacesBeyondForEverEnd) {
    SenderCase at(100, Taken(Script(300, {"bin ZEOF", Hex(RPOS, 5000)})));
    EXPECT_EQ(at.Send(), -1);
    EXPECT_LE(at.Count("bin ZEOF"), 110);
}

TEST(ZModemResend, AcknowledgedEndsForEverEnd) {
    SenderCase at(100, Taken(Script(300, {"bin ZEOF", Hex(ACK, 100)})));
    EXPECT_EQ(at.Send(), -1);
    EXPECT_LE(at.Count("bin ZEOF"), 110);
}

TEST(ZModemResend, StrangeAnswersForEverEnd) {
    SenderCase at(100, Taken({{"bin ZEOF", Hex(FERR)}}));
    at.transfer.line.onWait = [&] { at.transfer.line.Say(Hex(FERR)); };
    EXPECT_EQ(at.Send(), -1);
}

TEST(ZModemResend, ManyStopsAreNoTrouble) {
    Script script;
    for (uint32_t stop = 1; stop <= 150; ++stop)
        script.push_back({"data 1024 W", Hex(ACK, stop * 4096)});
    script.push_back({"bin ZEOF", Hex(RINIT)});
    SenderCase at(150 * 4096, Taken(script));
    EXPECT_EQ(at.Send(), 0);
    EXPECT_EQ(at.peer.decoder.contents, AllBytes(150 * 4096));
}

TEST(ZModemDataAbort, EndsTheFile) {
    SenderCase at(9000, Taken({{"data 1024 W", Hex(ACK, 4096)}}));
    at.transfer.onEvent = [&](int) { xfSetAbort(at.transfer.transfer, 1); };
    EXPECT_EQ(at.Send(), -1);
    EXPECT_EQ(at.Count("data 1024"), 0); // what was not flushed stays here
    EXPECT_FALSE(at.fin.IsOpen());
}

TEST(ZModemDataAbort, AtAStopEndsTheFile) {
    SenderCase at(9000, Taken({}));
    at.transfer.line.abortAt = GetTickCount() + 5000;
    EXPECT_EQ(at.Send(), -1);
    EXPECT_LE(at.transfer.line.waited, 5100U);
}

TEST(ZModemDataProgress, IsTold) {
    SenderCase at(3000, Taken({{"bin ZEOF", Hex(RINIT)}}));
    at.transfer.keepBlocks = true;
    EXPECT_EQ(at.Send(), 0);
    Heard blocks;
    for (const std::string& entry : at.transfer.journal)
        if (entry.starts_with("block"))
            blocks.push_back(entry);
    EXPECT_EQ(blocks, (Heard{"block 1024", "block 2048", "block 3000"}));
    EXPECT_EQ(at.transfer.lastStatus, "Resynchronizing...");
}

TEST(ZModemDataFlush, WaitsOnlyAtStopsAndEnds) {
    SenderCase at(5000, Taken({{"data 1024 W", Hex(ACK, 4096)}, {"bin ZEOF", Hex(RINIT)}}));
    EXPECT_EQ(at.Send(), 0);
    // ZFILE's header and data, the stop, the last sub-packet, ZEOF; neither ZDATA nor the three that go on.
    EXPECT_EQ(at.transfer.line.flushes, 5);
}

} // namespace
