// ZModem's headers, out and in.
#include "caseprint.h"
#include "zmodemcase.h"

#include <utility>

namespace {

using namespace std::string_literals;

constexpr int tenthsOfTimeout = 100;
constexpr size_t junkLimit = 59000;

TEST(ZModemNames, FramesAndFailures) {
    const std::pair<int, const char*> rows[] = {
        {-4, "No Response to Error Correction Request"},
        {-3, "No Carrier Detect"},
        {-2, "timeout"},
        {-1, "error"},
        {20, "xxxxx"},
        {21, "xxxxx"},
        {-5, "xxxxx"},
        {360, "xxxxx"},
    };
    for (const auto& [type, name] : rows)
        EXPECT_STREQ(FrameName(type), name) << type;
    for (int type = 0; type < 20; ++type)
        EXPECT_EQ(FrameName(type), zmodem::Name(type));
}

TEST(ZModemNames, SubpacketEnds) {
    EXPECT_STREQ(SubpacketEndName(ZCRCE), "ZCRCE");
    EXPECT_STREQ(SubpacketEndName(GotZCRCG), "ZCRCG");
    EXPECT_STREQ(SubpacketEndName(GotZCRCQ), "ZCRCQ");
    EXPECT_STREQ(SubpacketEndName(ZCRCW), "ZCRCW");
}

// Headers out

struct HexOutCase {
    const char* name;
    int type;
    LONG position;
    std::string sent;
    std::string logged;
};

class ZModemHexOut : public testing::TestWithParam<HexOutCase> {};

TEST_P(ZModemHexOut, IsFramed) {
    FramingCase test;
    test.framing.Crc32t = 1;
    test.framing.StoreHeader(GetParam().position);
    test.framing.SendHexHeader(GetParam().type);
    EXPECT_EQ(test.transfer.line.sent, GetParam().sent);
    EXPECT_EQ(test.transfer.line.flushes, 1);
    EXPECT_EQ(test.framing.Crc32t, 0);
    EXPECT_TRUE(test.Logged(GetParam().logged));
}

const HexOutCase hexOutRows[] = {
    {"Empty", ZRQINIT, 0, "**\x18"s + "B00000000000000\r\x8A\x11", "Sending hex header: 4 ZRQINIT 0"},
    {"PositionIsLowByteFirst", ZRPOS, 0x1a2b3c4d, zmodem::Hex(ZRPOS, 0x1a2b3c4d),
     "Sending hex header: 4 ZRPOS 1a2b3c4d"},
    {"NegativePosition", ZRPOS, -1, zmodem::Hex(ZRPOS, 0xFFFFFFFF), "Sending hex header: 4 ZRPOS ffffffff"},
    {"NoXonAfterZACK", ZACK, 1024, zmodem::Hex(ZACK, 1024).substr(0, 20), "Sending hex header: 4 ZACK 400"},
    {"NoXonAfterZFIN", ZFIN, 0, "**\x18"s + "B0800000000022d\r\x8A", "Sending hex header: 4 ZFIN 0"},
};
RUN_TABLE(ZModemHexOut, hexOutRows);

TEST(ZModemSends, BinaryHeader) {
    FramingCase test;
    test.framing.StoreHeader(0x11131824);
    test.framing.SendBinaryHeader(ZFILE);
    EXPECT_EQ(test.transfer.line.sent, zmodem::Binary(ZFILE, 0x11131824));
    EXPECT_EQ(test.transfer.line.flushes, 1);
    EXPECT_TRUE(test.Logged("Send binary header: 4 ZFILE 286464036"));
}

TEST(ZModemSends, NulsAheadOfDataOnlyAndNoFlush) {
    FramingCase test;
    test.framing.Znulls = 3;
    test.framing.SendBinaryHeader(ZEOF);
    EXPECT_EQ(test.Sent(), zmodem::Binary(ZEOF));
    const int flushes = test.transfer.line.flushes;
    test.framing.SendBinaryHeader(ZDATA);
    EXPECT_EQ(test.transfer.line.flushes, flushes);
    EXPECT_EQ(test.transfer.line.sent, "");
    EXPECT_EQ(test.Sent(), "\0\0\0"s + zmodem::Binary(ZDATA));
}

TEST(ZModemSends, Crc16EvenIfCrc32IsWanted) {
    FramingCase test;
    test.framing.Txfcs32 = 1;
    test.framing.Crc32t = 1;
    test.framing.SendBinaryHeader(ZDATA);
    test.framing.SendData("abc", 3, ZCRCE);
    EXPECT_EQ(test.Sent(), zmodem::Binary(ZDATA) + zmodem::Data("abc", 'h'));
    EXPECT_EQ(test.framing.Txfcs32, 0);
}

// Headers in

struct HeaderCase {
    const char* name;
    std::string input;
    int result;
    LONG position = 0;
    std::string logged = {};
    size_t unread = 0;
    int escapeControls = 0;
};

class ZModemHeader : public testing::TestWithParam<HeaderCase> {};

TEST_P(ZModemHeader, IsFound) {
    const HeaderCase& row = GetParam();
    FramingCase test;
    test.framing.Zctlesc = row.escapeControls;
    test.Say(row.input);
    EXPECT_EQ(test.framing.GetHeader(), row.result);
    EXPECT_EQ(test.framing.Rxpos, row.position);
    EXPECT_EQ(test.transfer.line.Unread(), row.unread);
    EXPECT_TRUE(test.Logged("Receiving header:"));
    EXPECT_TRUE(test.Logged("Read header returned " + std::to_string(row.result)));
    EXPECT_TRUE(row.logged.empty() || test.Logged(row.logged)) << row.logged;
}

const std::string four = "\x01\x02\x03\x04"s;
const std::string sixteen = "abcdefghijklmnop"s;
constexpr LONG fourAsPosition = 0x04030201;

std::string Replaced(std::string text, size_t at, char byte) {
    text[at] = byte;
    return text;
}

// A frame character and escaped bytes after it.
std::string Frame(char kind, const std::string& bytes) {
    return std::string("*\x18") + kind + bytes;
}

const HeaderCase headerRows[] = {
    {"Hex", zmodem::Hex(ZRPOS, 0x12345678), ZRPOS, 0x12345678,
     "Get header:: FrameIndex=B Length=4 Type=ZRPOS Position=305419896", 1},
    {"HexWithOnePad", zmodem::Hex(ZRINIT).substr(1), ZRINIT, 0, "", 1},
    {"HexWithManyPads", "*****" + zmodem::Hex(ZRINIT), ZRINIT, 0, "", 1},
    {"HexWithParityOnItsDigits", Replaced(zmodem::Hex(ZRINIT, 0), 5, '1' - 256 + 128), ZRINIT, 0, "", 1},
    {"Binary", zmodem::Binary(ZDATA, 70000), ZDATA, 70000, "Read binary header returned 10 (5)"},
    {"BinaryWithEscapes", zmodem::Binary(ZDATA, 0x18111391), ZDATA, 0x18111391},
    {"Binary32", zmodem::Binary32(ZDATA, 0x18111391), ZDATA, 0x18111391, "   Receive header returns 10"},
    {"RunLength32", zmodem::WithKind(zmodem::Binary32(ZDATA, 5), 'D'), ZDATA, 5},
    {"LongBinary", zmodem::LongBinary(ZRPOS, four), ZRPOS, fourAsPosition,
     "Get header:: FrameIndex=a Length=4 Type=ZRPOS Position=67305985"},
    {"LongHex", zmodem::LongHex(ZRPOS, four), ZRPOS, fourAsPosition, "", 1},
    {"LongBinary32", zmodem::LongBinary32('c', ZRPOS, four), ZRPOS, fourAsPosition},
    {"LongRunLength32", zmodem::LongBinary32('d', ZRPOS, four), ZRPOS, fourAsPosition},
    {"SixteenBytes", zmodem::LongBinary(ZRPOS, sixteen), ZRPOS, 0x64636261},
    {"SeventeenBytesAreJunk", zmodem::LongBinary(ZRPOS, sixteen + "q") + zmodem::Hex(ZACK, 1), ZACK, 1, "",
     1},
    {"NoBytesAtAll", zmodem::LongBinary(ZRPOS, ""), ZRPOS, 0},
    {"BadLengthDigits", "**\x18"s + "b0G", ReadError},
    {"BadEscapeAsLength", Frame('a', "\x18!"), ReadError},
    {"CancelAsLengthIsJunk", Frame('c', std::string(5, '\x18')) + zmodem::Hex(ZNAK), ZNAK, 0, "", 1},
    {"AfterJunk", "OO\r\nlogin: *\x18?" + zmodem::Binary(ZRINIT, 7), ZRINIT, 7},
    {"AfterXons", "\x11\x91\x11" + zmodem::Binary(ZRINIT, 7), ZRINIT, 7},
    {"XonsWithinTheStart", "*\x11\x18\x13" + zmodem::Hex(ZRINIT, 7).substr(3), ZRINIT, 7, "", 1},
    {"XonsWithinHexDigits", "**\x18"s + "B\x11\x13" + zmodem::Hex(ZRINIT, 7).substr(4), ZRINIT, 7, "", 1},
    {"PadThenJunk", "*x" + zmodem::Hex(ZRINIT, 7), ZRINIT, 7, "", 1},
    {"ControlsInHexAreWrong", "**\x18"s + "B\x01" + zmodem::Hex(ZRINIT).substr(4), ReadError, 0, "", 17},
    {"ControlsInHexAreDroppedUnderEscaping", "**\x18"s + "B\x01" + zmodem::Hex(ZRINIT, 7).substr(4), ZRINIT,
     7, "", 1, 1},
    {"UpperCaseHexIsWrong", "**\x18"s + "B0A00000000", ReadError, 0, "Read hex header returned -1 (0)", 8},
    {"BacktickInHexIsWrong", "**\x18"s + "B0`", ReadError, 0, "Read hex header returned -1 (0)"},
    {"BadHexDataDigit", "**\x18"s + "B0000:0", ReadError, 0, "Read hex header returned -1 (1)", 1},
    {"BadFirstHexCheck", "**\x18"s + "B0000000000gg", ReadError, 0, "Read hex header returned -1 (2)", 1},
    {"BadSecondHexCheck", "**\x18"s + "B000000000000/0", ReadError, 0, "Read hex header returned -1 (3)", 1},
    {"HexWithWrongCheck", "**\x18"s + "B00000000000001\r\n\x11", ReadError, 0,
     "Read hex header returned error because of CRC mismatch", 3},
    {"HexWithoutLineEnd", zmodem::Hex(ZRINIT, 5).substr(0, 18), ReadTimeout, 5,
     "Read hex header returned -2 (4)"},
    {"HexWithHalfALineEnd", zmodem::Hex(ZRINIT, 5).substr(0, 19), ReadTimeout, 5,
     "Read hex header returned -2 (5)"},
    {"BinaryWithoutType", Frame('A', ""), ReadTimeout, 0, "Read binary header returned -2 (1)"},
    {"BinaryWithoutData", Frame('A', "\x01"), ReadTimeout, 0, "Read binary header returned -2 (2)"},
    {"BinaryWithoutCheck", Frame('A', "\x01\0\0\0\0"s), ReadTimeout, 0, "Read binary header returned -2 (3)"},
    {"BinaryWithHalfACheck", Frame('A', "\x01\0\0\0\0a"s), ReadTimeout, 0,
     "Read binary header returned -2 (4)"},
    {"BinaryWithWrongCheck", Frame('A', "\x01\0\0\0\0ab"s), ReadError, 0,
     "Read binary failed because of CRC error"},
    {"Binary32WithoutType", Frame('C', ""), ReadTimeout, 0, "Receive header returns -2 prematurely (1)"},
    {"Binary32WithoutData", Frame('C', "\x01"), ReadTimeout, 0, "Receive header returns -2 prematurely (2)"},
    {"Binary32WithoutCheck", Frame('C', "\x01\0\0\0\0abc"s), ReadTimeout, 0,
     "Receive header returns -2 prematurely (4)"},
    {"Binary32WithWrongCheck", Frame('C', "\x01\0\0\0\0abcd"s), ReadError, 0,
     "Receive binary header returns -1 prematurely (5)"},
    {"Binary32LogsItsType", zmodem::Binary32(ZFILE), ZFILE, 0,
     [] {
         char text[64];
         const auto value = static_cast<uint32_t>(~zmodem::Crc32("\x04"));
         std::snprintf(text, sizeof text, "Receive header: type=4  crc=%X", value);
         return std::string(text);
     }()},
    {"CancelWithinAHeader", Frame('A', "\x01" + std::string(5, '\x18')), ZCAN, 0,
     "Read binary header returned 280 (2)"},
    {"SubpacketEndAsType", Frame('A', "\x18i"), GotZCRCG, 0, "Get header: FrameIndex=A Type=361 Position=0"},
    {"TypeAboveTheNames", zmodem::Binary(21), 21, 0, "Get header: FrameIndex=A Type=21 Position=0"},
    {"LastTypeWithoutAName", zmodem::Binary(22), 22, 0, "Get header: FrameIndex=A Type=22 Position=0"},
    {"LastNamedType", zmodem::Binary(20), 20, 0, "Get header:: FrameIndex=A Length=4 Type=xxxxx Position=0"},
    {"FiveCancels", "\x18\x18\x18\x18\x18", ZCAN, 0,
     "Get header:: FrameIndex=  Length=0 Type=ZCAN Position=0"},
    {"TwoPairsOfCancelsAndSilence", "\x18\x18\x18\x18", ReadTimeout},
    {"TwoPairsOfCancelsAndAHeader", "\x18\x18\x18\x18" + zmodem::Hex(ZRINIT), ZRINIT, 0, "", 1},
    {"CancelsApartByJunkStartAnew", "\x18\x18\x18\x18x\x18\x18\x18\x18" + zmodem::Hex(ZRINIT), ZRINIT, 0, "",
     1},
    {"CancelsAfterAPadStartAnew", "\x18\x18*\x18" + std::string(5, '\x18'), ZCAN},
    {"FourCancelsAfterAPad", "\x18\x18*\x18" + std::string(4, '\x18'), ReadTimeout},
    {"EndOfASubpacketInTheSearch", "\x18kx" + zmodem::Hex(ZRINIT), ZRINIT, 0, "", 1},
    {"EndOfASubpacketAndSilence", "\x18k", ReadError},
    {"CancelAndAPadAreJunk", "\x18*\x18" + zmodem::Hex(ZRINIT), ZRINIT, 0, "", 1},
    {"Silence", "", ReadTimeout, 0, "Get header:: FrameIndex=  Length=0 Type=timeout Position=0"},
    {"APadAndSilence", "*", ReadTimeout},
    {"AFrameStartAndSilence", "*\x18", ReadTimeout},
    {"JunkUpToTheLimit", std::string(junkLimit, 'x') + zmodem::Hex(ZRINIT), JunkLimit, 0,
     "Get header:: FrameIndex=  Length=0 Type=No Response to Error Correction Request Position=0", 21},
    {"JunkShortOfTheLimit", std::string(junkLimit - 1, 'x') + zmodem::Hex(ZRINIT), ZRINIT, 0, "", 1},
};
RUN_TABLE(ZModemHeader, headerRows);

TEST(ZModemHeader, TheJunkCountIsPerCall) {
    FramingCase test;
    test.Say(std::string(2 * junkLimit - 1, 'x') + zmodem::Hex(ZRINIT));
    EXPECT_EQ(test.framing.GetHeader(), JunkLimit);
    EXPECT_EQ(test.framing.GetHeader(), ZRINIT);
}

TEST(ZModemHeader, EachKindTellsItsCheckAndMarksZModem) {
    struct Row {
        std::string input;
        char kind;
        int crc32;
        int protocol;
    };
    const Row rows[] = {
        {zmodem::Binary(1), 'A', 0, 5},
        {zmodem::Hex(1), 'B', 0, 5},
        {zmodem::Binary32(1), 'C', 1, 0},
        {zmodem::WithKind(zmodem::Binary32(1), 'D'), 'D', 2, 0},
        {zmodem::LongBinary(1, four), 'a', 0, 5},
        {zmodem::LongHex(1, four), 'b', 0, 5},
        {zmodem::LongBinary32('c', 1, four), 'c', 1, 0},
        {zmodem::LongBinary32('d', 1, four), 'd', 2, 0},
    };
    for (const Row& row : rows) {
        FramingCase test;
        test.framing.Crc32 = 7;
        test.Say(row.input);
        EXPECT_EQ(test.framing.GetHeader(), ZRINIT);
        EXPECT_EQ(test.framing.Rxframeind, row.kind);
        EXPECT_EQ(test.framing.Rxtype, ZRINIT);
        EXPECT_EQ(test.framing.Crc32, row.crc32) << row.kind;
        EXPECT_EQ(test.framing.Protocol, row.protocol) << row.kind;
        EXPECT_TRUE(test.framing.bZModem) << row.kind;
    }
}

TEST(ZModemHeader, AWrongCheckMarksNothingAndIsShown) {
    const std::string rows[] = {Frame('A', "\x01\0\0\0\0ab"s), Frame('C', "\x01\0\0\0\0abcd"s),
                                "**\x18"s + "B00000000000001\r\n"};
    for (const std::string& input : rows) {
        FramingCase test;
        test.Say(input);
        EXPECT_EQ(test.framing.GetHeader(), ReadError);
        EXPECT_FALSE(test.framing.bZModem);
        EXPECT_TRUE(test.Showed("Line noise detected"));
    }
}

TEST(ZModemHeader, HalfALineEndMarksZModemAllTheSame) {
    FramingCase test;
    test.Say(zmodem::Hex(ZRINIT).substr(0, 19));
    test.framing.GetHeader();
    EXPECT_TRUE(test.framing.bZModem);
    EXPECT_EQ(test.framing.Protocol, 5);
}

TEST(ZModemHeader, TheByteAfterTheHeaderStays) {
    FramingCase test;
    test.Say(zmodem::LongBinary(ZRPOS, sixteen) + zmodem::Binary(ZRPOS, 1));
    test.framing.GetHeader();
    EXPECT_EQ(std::string(test.framing.Rxhdr.begin(), test.framing.Rxhdr.end()), sixteen);
    test.framing.GetHeader();
    EXPECT_EQ(std::string(test.framing.Rxhdr.begin(), test.framing.Rxhdr.end()),
              "\1\0\0\0e"s + std::string(11, '\0'));
}

TEST(ZModemHeader, EveryCutEndsInATimeout) {
    for (const std::string& whole :
         {zmodem::Hex(ZRPOS, 0x18).substr(0, 20), zmodem::Binary(ZRPOS, 0x18), zmodem::Binary32(ZRPOS, 0x18),
          zmodem::LongHex(ZRPOS, sixteen).substr(0, 46)})
        for (size_t cut = 0; cut < whole.size(); ++cut) {
            FramingCase test;
            test.Say(whole.substr(0, cut));
            EXPECT_EQ(test.framing.GetHeader(), ReadTimeout) << cut;
            EXPECT_EQ(test.transfer.line.waited, tenthsOfTimeout * 100u);
        }
}

TEST(ZModemHeader, EveryChangedByteIsRefusedOrPassedOver) {
    for (const std::string& whole : {zmodem::Binary(ZRPOS, 77), zmodem::Binary32(ZRPOS, 77)})
        for (size_t at = 3; at < whole.size(); ++at) {
            FramingCase test;
            test.Say(Replaced(whole, at, static_cast<char>(whole[at] ^ 0x21)));
            EXPECT_NE(test.framing.GetHeader(), ZRPOS) << at;
        }
}

TEST(ZModemHeader, AnAbortEndsTheSearch) {
    for (const char* endless : {"*", "\x11", "*\x11", "x"}) {
        FramingCase test;
        for (int i = 0; i < 40000; ++i)
            test.transfer.line.Say(endless, 10);
        test.transfer.line.abortAt = GetTickCount() + 10;
        EXPECT_EQ(test.framing.GetHeader(), ReadTimeout);
        EXPECT_TRUE(test.Logged("Canceled while reading header"));
        EXPECT_FALSE(test.Logged("Read header returned -2"));
        EXPECT_TRUE(*endless == 'x' || test.transfer.line.Unread() > 39000u);
    }
}

TEST(ZModemHeader, AClosedPortEndsTheSearch) {
    for (const char* said : {"", "*", "\x18", "\x18k", "*\x18",
                             "*\x18"
                             "A"}) {
        FramingCase test;
        test.Say(said);
        test.transfer.line.closeAt = GetTickCount() + 100;
        EXPECT_LT(test.framing.GetHeader(), 0);
        EXPECT_LE(test.transfer.line.waited, 200u);
    }
}

} // namespace
