// The opening of a ZModem sender that waits for its receiver, and the goodbye.
#include "caseprint.h"
#include "zmodemsendcase.h"

namespace {

using zmodem::Hex;
using zmodem::LongHex;

enum : int {
    RQINIT,
    RINIT,
    SINIT,
    ACK,
    FILE_,
    SKIP,
    NAK,
    ABORT,
    FIN,
    RPOS,
    FERR = 12,
    CHALLENGE = 14,
    CAN = 16
};
enum : int { COMMAND = 18 };

using Heard = std::vector<std::string>;

const std::string cancel(5, '\x18');

// The far end's words, all said beforehand, and what comes of them.
struct OpeningCase {
    const char* name;
    std::string said;
    int result;
    Heard heard;
    const char* logged = nullptr;
};

void PrintTo(const OpeningCase& row, std::ostream* out) {
    *out << row.name;
}

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

const OpeningCase openingRows[] = {
    {"Invitation", Hex(RINIT, 0x23000000), 0, {}, "Rxbuflen=0 Tframlen=1024"},
    {"Silence", "", -1, {}},
    {"Cancel", cancel, -1, {}},
    {"ChallengeIsAnswered", Hex(CHALLENGE, 4711) + Hex(RINIT), 0, {"hex ZACK 4711"}},
    {"CommandIsAnswered", Hex(COMMAND, 5) + Hex(RINIT), 0, {"hex ZRQINIT 0"}},
    {"OwnKindIsRefused", Hex(RQINIT) + Hex(RINIT), 0, {"hex ZNAK 0"}},
    {"OwnKindWithACommandIsPassedOver", Hex(RQINIT, 18U << 24) + Hex(RINIT), 0, {}},
    {"OtherHeaderIsRefused", Hex(FIN) + Hex(RINIT), 0, {"hex ZNAK 0"}},
    {"GarbledHeaderIsRefused", zmodem::Garbled(Hex(RINIT)) + Hex(RINIT), 0, {"hex ZNAK 0"}},
    {"TenthHeaderCounts", Times(9, Hex(NAK)) + Hex(RINIT), 0, Heard(9, "hex ZNAK 0")},
    {"EleventhDoesNot", Times(10, Hex(NAK)) + Hex(RINIT), -1, Heard(10, "hex ZNAK 0")},
};

class ZModemSenderOpening : public testing::TestWithParam<OpeningCase> {};

TEST_P(ZModemSenderOpening, AnswerGetsItsDue) {
    const OpeningCase& row = GetParam();
    SenderCase at(100, {});
    at.transfer.line.Say(row.said);
    EXPECT_EQ(at.sender.GetReceiverInit(), row.result);
    EXPECT_EQ(at.peer.heard, row.heard);
    EXPECT_TRUE(!row.logged || at.Logged(row.logged));
    EXPECT_EQ(at.transfer.lastStatus.substr(0, 10),
              row.heard.empty() ? "Initiating" : at.transfer.lastStatus.substr(0, 10));
}

RUN_TABLE(ZModemSenderOpening, openingRows);

TEST(ZModemOpeningFile, MustBeOpen) {
    SenderCase at(100, {});
    at.fin.Close();
    at.transfer.line.Say(Hex(RINIT));
    EXPECT_EQ(at.sender.GetReceiverInit(), -1);
}

struct BufferCase {
    const char* name;
    uint32_t told;
    int blklenBefore;
    int blklen;
};

void PrintTo(const BufferCase& row, std::ostream* out) {
    *out << row.name;
}

const BufferCase bufferRows[] = {
    {"None", 0, 1024, 1024},
    {"TooSmall", 31, 1024, 1024},
    {"Smallest", 32, 1024, 32},
    {"HighByteCounts", 512, 1024, 512},
    {"Largest", 1024, 1024, 1024},
    {"TooLarge", 1025, 1024, 1024},
    {"ShortBlocksBecomeLong", 0, 256, 1024},
    {"ShortBlocksBecomeTheBuffer", 100, 256, 100},
};

class ZModemOpeningBuffer : public testing::TestWithParam<BufferCase> {};

TEST_P(ZModemOpeningBuffer, LimitsTheBlocks) {
    SenderCase at(100, {});
    at.sender.blklen = GetParam().blklenBefore;
    at.transfer.line.Say(Hex(RINIT, GetParam().told));
    EXPECT_EQ(at.sender.GetReceiverInit(), 0);
    EXPECT_EQ(at.sender.blklen, GetParam().blklen);
}

RUN_TABLE(ZModemOpeningBuffer, bufferRows);

TEST(ZModemOpeningBuffer, StopsWhenTheFrameIsFull) {
    SenderCase at(200, {{"data 8 W", Hex(RPOS)},
                        {"data 64 W", Hex(ACK, 64)},
                        {"data 64 W", Hex(ACK, 128)},
                        {"data 64 W", Hex(ACK, 192)},
                        {"bin ZEOF 200", Hex(RINIT)}});
    at.transfer.line.Say(Hex(RINIT, 64));
    EXPECT_EQ(at.sender.GetReceiverInit(), 0);
    EXPECT_EQ(at.Send(), 0);
    EXPECT_TRUE(at.peer.ScriptIsDone()) << testing::PrintToString(at.peer.heard);
}

TEST(ZModemOpeningSpeed, GivesTheBlock) {
    constexpr std::pair<LONG, int> rows[] = {{110, 1024}, {300, 1024}, {301, 256}, {1201, 512}, {2401, 1024}};
    for (const auto& [speed, bytes] : rows) {
        SenderCase at(100, {});
        at.framing.Baudrate = speed;
        at.sender.blklen = 128;
        at.transfer.line.Say(Hex(RINIT));
        at.sender.GetReceiverInit();
        EXPECT_EQ(at.sender.blklen, bytes) << speed;
    }
}

TEST(ZModemOpeningEscapes, AreTakenOver) {
    SenderCase at(100, {});
    at.transfer.line.Say(Hex(RINIT, 0x63000000));
    EXPECT_EQ(at.sender.GetReceiverInit(), 0);
    EXPECT_NE(at.framing.Zctlesc, 0);
    EXPECT_TRUE(at.peer.heard.empty()); // the receiver knows
}

TEST(ZModemOpeningEscapes, ComeAsAMaskToo) {
    SenderCase at(100, {});
    std::string flags(16, '\0');
    flags[2] = 16;
    flags[9] = 0x05;
    flags[13] = 0x01;
    at.transfer.line.Say(LongHex(RINIT, flags));
    EXPECT_EQ(at.sender.GetReceiverInit(), 0);
    std::array<bool, 33> expected = {};
    expected[0] = expected[2] = expected[32] = true;
    EXPECT_EQ(at.framing.Zsendmask, expected);
}

TEST(ZModemOpeningEscapes, AreNotTakenWithoutTheFlag) {
    SenderCase at(100, {});
    std::string flags(16, '\0');
    flags[9] = 0x05;
    at.transfer.line.Say(LongHex(RINIT, flags));
    EXPECT_EQ(at.sender.GetReceiverInit(), 0);
    EXPECT_EQ(at.framing.Zsendmask, (std::array<bool, 33>{}));
}

// This side's own wish for escapes

struct InitCase {
    const char* name;
    std::vector<std::string> answers;
    int result;
    int frames;
    const char* logged;
};

void PrintTo(const InitCase& row, std::ostream* out) {
    *out << row.name;
}

const InitCase initRows[] = {
    {"Acknowledged", {Hex(ACK)}, 0, 1, "Initialization successful"},
    {"Cancelled", {cancel}, -1, 1, "Received ZCAN while initializing upload"},
    {"RefusedOnce", {Hex(NAK), Hex(ACK)}, 0, 2, "Error #1 while initializing upload"},
    {"RefusedNineteenTimes", std::vector<std::string>(19, Hex(NAK)), -1, 20,
     "Error #19 while initializing upload"},
};

class ZModemOwnEscapes : public testing::TestWithParam<InitCase> {};

TEST_P(ZModemOwnEscapes, AreAnnounced) {
    const InitCase& row = GetParam();
    std::vector<zmodem::Exchange> script;
    for (const std::string& answer : row.answers)
        script.push_back({"data 32 W", answer});
    SenderCase at(100, script);
    at.framing.Zctlesc = 1;
    at.transfer.line.Say(Hex(RINIT));
    EXPECT_EQ(at.sender.GetReceiverInit(), row.result);
    EXPECT_EQ(at.Count("hex ZSINIT 1073741824"), row.frames);
    EXPECT_EQ(at.Count("data 32 W"), row.frames);
    EXPECT_TRUE(at.Logged(row.logged));
}

RUN_TABLE(ZModemOwnEscapes, initRows);

TEST(ZModemOwnEscapesAbort, EndsIt) {
    SenderCase at(100, {});
    at.framing.Zctlesc = 1;
    at.transfer.line.abortAt = GetTickCount() + 5000;
    at.transfer.line.Say(Hex(RINIT));
    EXPECT_EQ(at.sender.GetReceiverInit(), -1);
    EXPECT_LE(at.transfer.line.waited, 5100U);
}

// The goodbye

struct GoodbyeCase {
    const char* name;
    std::vector<zmodem::Exchange> script;
    Heard heard;
};

void PrintTo(const GoodbyeCase& row, std::ostream* out) {
    *out << row.name;
}

const GoodbyeCase goodbyeRows[] = {
    {"IsAnswered", {{"hex ZFIN", Hex(FIN)}}, {"hex ZFIN 0", "OO"}},
    {"IsRepeated", {{"hex ZFIN", Hex(RINIT)}, {"hex ZFIN", Hex(FIN)}}, {"hex ZFIN 0", "hex ZFIN 0", "OO"}},
    {"IsRepeatedAfterNoise",
     {{"hex ZFIN", zmodem::Garbled(Hex(FIN))}, {"hex ZFIN", Hex(FIN)}},
     {"hex ZFIN 0", "hex ZFIN 0", "OO"}},
    {"EndsInSilence", {}, {"hex ZFIN 0"}},
    {"EndsWithACancel", {{"hex ZFIN", cancel}}, {"hex ZFIN 0"}},
};

class ZModemGoodbye : public testing::TestWithParam<GoodbyeCase> {};

TEST_P(ZModemGoodbye, IsSaid) {
    SenderCase at(100, GetParam().script);
    at.sender.SayGoodbye();
    EXPECT_EQ(at.peer.heard, GetParam().heard);
}

RUN_TABLE(ZModemGoodbye, goodbyeRows);

TEST(ZModemGoodbyeAbort, EndsIt) {
    SenderCase at(100, {});
    at.transfer.line.onWait = [&] { at.transfer.line.Say(Hex(RINIT)); };
    at.transfer.line.abortAt = GetTickCount() + 5000;
    at.peer.Plug(at.transfer.line);
    const auto plugged = at.transfer.line.onWrite;
    at.transfer.line.onWrite = [&](const std::string& bytes) {
        plugged(bytes);
        platform::AdvanceTick(100); // the line takes its time
    };
    at.sender.SayGoodbye();
    EXPECT_GT(at.Count("hex ZFIN"), 10);
    EXPECT_EQ(at.Count("OO"), 0);
}

} // namespace
