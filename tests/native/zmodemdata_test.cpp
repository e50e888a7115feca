// ZModem's escapes and data sub-packets, out and in.
#include "caseprint.h"
#include "zmodemcase.h"

#include <array>

namespace {

using namespace std::string_literals;

constexpr int bufferSize = 16;

std::string AllValues() {
    std::string bytes(256, '\0');
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i);
    return bytes;
}

// Out

struct EscapeCase {
    const char* name;
    int escapeControls;
    std::string mask; // characters
    std::string byte;
    std::string sent;
};

class ZModemEscape : public testing::TestWithParam<EscapeCase> {};

// What of a sub-packet of one byte stands in front of its end.
TEST_P(ZModemEscape, GoesOut) {
    const EscapeCase& row = GetParam();
    FramingCase test;
    test.framing.Zctlesc = row.escapeControls;
    for (const char c : row.mask)
        test.framing.Zsendmask[c == '\xFF' ? 32u : static_cast<size_t>(c)] = true;
    test.framing.SendData(row.byte.data(), 1, ZCRCE);
    EXPECT_EQ(test.Sent().substr(0, row.sent.size() + 2), row.sent + "\x18h");
}

const EscapeCase escapeRows[] = {
    {"Letter", 1, "", "A", "A"},
    {"Xon", 0, "", "\x11", "\x18Q"},
    {"Xoff", 0, "", "\x13", "\x18S"},
    {"XonWithParity", 0, "", "\x91", "\x18\xD1"},
    {"XoffWithParity", 0, "", "\x93", "\x18\xD3"},
    {"Zdle", 0, "", "\x18", "\x18X"},
    {"ZdleWithParityIsPlain", 0, "", "\x98", "\x98"},
    {"DlePlain", 0, "", "\x10", "\x10"},
    {"NulPlain", 0, "", "\0"s, "\0"s},
    {"NulUnderEscaping", 1, "", "\0"s, "\x18@"},
    {"CrPlainAfterAt", 0, "", "\r", "\r"},
    {"HighControlUnderEscaping", 1, "", "\x80", "\x18\xC0"},
    {"LastControlUnderEscaping", 1, "", "\x9F", "\x18\xDF"},
    {"ControlOfTheMask", 0, "\x03", "\x03",
     "\x18"
     "C"},
    {"HighControlOfTheMask", 0, "\x03", "\x83", "\x18\xC3"},
    {"ControlBesideTheMask", 0, "\x03", "\x04", "\x04"},
    {"DelIsPlain", 1, "", "\x7F", "\x7F"},
    {"FFPlain", 0, "\x1F", "\xFF", "\xFF"},
    {"FFUnderEscaping", 1, "", "\xFF", "\x18m"},
    {"FFOfTheMask", 0, "\xFF", "\xFF", "\x18m"},
};
RUN_TABLE(ZModemEscape, escapeRows);

TEST(ZModemEscape, AtAndReturnStayAsTheyAre) {
    FramingCase test;
    test.framing.SendData("@\r", 2, ZCRCE);
    EXPECT_EQ(test.Sent(), zmodem::Data("@\r", 'h'));
}

TEST(ZModemEscape, MaskBitsAreLowFirst) {
    FramingCase test;
    const unsigned char mask[] = {0x01, 0x80, 0x00, 0x10, 0xFF};
    test.framing.SetEscapes(mask);
    for (size_t i = 0; i < test.framing.Zsendmask.size(); ++i)
        EXPECT_EQ(test.framing.Zsendmask[i], i == 0 || i == 15 || i == 28 || i == 32) << i;
    const unsigned char none[] = {0, 0, 0, 0, 0xFE};
    test.framing.SetEscapes(none);
    EXPECT_EQ(std::ranges::count(test.framing.Zsendmask, true), 0);
}

TEST(ZModemSubpacket, GoesOut) {
    struct Row {
        ZSubpacketEnd end;
        const char* name;
        const char* trailer;
        int flushes;
    };
    const Row rows[] = {{ZCRCE, "ZCRCE", "", 1},
                        {ZCRCG, "ZCRCG", "", 0},
                        {ZCRCQ, "ZCRCQ", "", 1},
                        {ZCRCW, "ZCRCW", "\x11", 1}};
    for (const Row& row : rows) {
        FramingCase test;
        test.framing.SendData(AllValues().data(), 256, row.end);
        EXPECT_EQ(test.transfer.line.flushes, row.flushes);
        EXPECT_EQ(test.Sent(), zmodem::Data(AllValues(), row.end) + row.trailer);
        EXPECT_TRUE(test.Logged("Sending data: length=256 Type="s + row.name));
    }
}

TEST(ZModemSubpacket, GoesOutWithCrc32WhereThatIsInUse) {
    FramingCase test;
    test.framing.Crc32t = 1;
    test.framing.SendData(AllValues().data(), 256, ZCRCW);
    EXPECT_EQ(test.Sent(), zmodem::Data32(AllValues(), 'k') + "\x11");
    EXPECT_TRUE(test.Logged("Sending data (32-bit): length=256 type=ZCRCW"));
}

TEST(ZModemSubpacket, UnflushedSubpacketsLeaveInFullBuffers) {
    FramingCase test;
    std::vector<size_t> writes;
    test.transfer.line.onWrite = [&](const std::string& bytes) { writes.push_back(bytes.size()); };
    const std::string block(1024, 'x');
    for (int i = 0; i < 3; ++i)
        test.framing.SendData(block.data(), 1024, ZCRCG);
    EXPECT_EQ(writes, (std::vector<size_t>{1024, 1024, 1024}));
}

// In

struct DataCase {
    const char* name;
    std::string input;
    int result;
    std::string data = {};
    std::string shown = {};
    int escapeControls = 0;
    int crc32 = 0;
};

class ZModemSubpacket : public testing::TestWithParam<DataCase> {};

TEST_P(ZModemSubpacket, ComesIn) {
    const DataCase& row = GetParam();
    FramingCase test;
    test.framing.Zctlesc = row.escapeControls;
    test.framing.Crc32 = row.crc32;
    test.framing.Rxcount = 99;
    test.Say(row.input);
    std::array<char, bufferSize> buffer = {};
    EXPECT_EQ(test.framing.ReceiveData(buffer.data(), bufferSize), row.result);
    EXPECT_EQ(test.framing.Rxcount, static_cast<int>(row.data.size()));
    EXPECT_EQ(std::string(buffer.data(), row.data.size()), row.data);
    EXPECT_EQ(test.transfer.journal,
              row.shown.empty() ? std::vector<std::string>() : std::vector{"status " + row.shown});
}

const std::string full(bufferSize, 'f');
const std::string invalid = "Line noise detected: Invalid sector type";

const DataCase dataRows[] = {
    {"EndE", zmodem::Data("abc", 'h'), 360, "abc"},
    {"EndG", zmodem::Data("abc", 'i'), 361, "abc"},
    {"EndQ", zmodem::Data("abc", 'j'), 362, "abc"},
    {"EndW", zmodem::Data("abc", 'k'), 363, "abc"},
    {"Empty", zmodem::Data("", 'h'), 360},
    {"EscapedInside", zmodem::Data("\x18\x11\x13\x91\x93\0\xFF"s, 'h'), 360, "\x18\x11\x13\x91\x93\0\xFF"s},
    {"EscapedDelAndFF", "\x18l\x18m\x18h" + zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("\x7F\xFFh"))),
     360, "\x7F\xFF"},
    {"FlowControlIsDropped",
     "a\x11\x13\x91\x93" + zmodem::Data("bc", 'h').substr(0, 2) + "\x18h" +
         zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("abch"))),
     360, "abc"},
    {"FlowControlAfterZdleIsDropped",
     "abc\x18\x11\x13\x91\x93h" + zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("abch"))), 360, "abc"},
    {"ControlsStay", zmodem::Data("a\x01\x9Fz", 'h'), 360, "a\x01\x9Fz"},
    {"ControlsAreDroppedUnderEscaping",
     "a\x01\x9Fz\x18\x02h" + zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("azh"))), 360, "az", "", 1},
    {"ControlAfterZdleIsWrong", "a\x18\x02", ReadError, "", invalid},
    {"FourCancelsThenALetter",
     "\x18\x18\x18\x18" + "A\x18h"s + zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("\x01h"))), 360,
     "\x01"},
    {"FiveCancels", "abc\x18\x18\x18\x18\x18", ZCAN, "", "Sender canceled"},
    {"UnknownEscape", "abc\x18!", ReadError, "", invalid},
    {"EscapeOfTheHighSixties", "abc\x18n", ReadError, "", invalid},
    {"Filled", zmodem::Data(full, 'h'), 360, full},
    {"OneTooMany", zmodem::Data(full + "x", 'h'), ReadError, "", "Line noise detected: Sector too long"},
    {"WrongCheck", "abc\x18hab", ReadError, "", "Line noise detected"},
    {"WrongEndForTheCheck", zmodem::Data("abc", 'h').substr(0, 4) + "i" + zmodem::Data("abc", 'h').substr(5),
     ReadError, "", "Line noise detected"},
    {"Silence", "", ReadTimeout, "", "Time out waiting for data"},
    {"SilenceAfterData", "abc", ReadTimeout, "", "Time out waiting for data"},
    {"SilenceAfterTheEnd", "abc\x18h", ReadTimeout, "", "Time out waiting for data"},
    {"CancelInTheCheck", "abc\x18h\x18\x18\x18\x18\x18", ZCAN, "", "Sender canceled"},
    {"WrongEscapeInTheCheck", "abc\x18ha\x18!", ReadError, "", invalid},
    {"EndInTheCheckStartsItAgain",
     "abc\x18h\x18k" + zmodem::Escape(zmodem::HighFirst16(zmodem::Crc16("abchk"))), 363, "abc"},

    {"Crc32", zmodem::Data32("abc", 'j'), 362, "abc", "", 0, 1},
    {"Crc32OfRunLength", zmodem::Data32("abc", 'k'), 363, "abc", "", 0, 2},
    {"Crc32Empty", zmodem::Data32("", 'h'), 360, "", "", 0, 1},
    {"Crc32WrongCheck", "abc\x18habcd", ReadError, "", "Line noise detected", 0, 1},
    {"Crc32TooLong", zmodem::Data32(full + "x", 'h'), ReadError, "", "Line noise detected: sector too long",
     0, 1},
    {"Crc32Silence", "abc\x18habc", ReadTimeout, "", "Timeout waiting for data", 0, 1},
    {"Crc32Cancel", "\x18\x18\x18\x18\x18", ZCAN, "", "Sender canceled", 0, 1},
    {"Crc32Wrong", "\x18!", ReadError, "", invalid, 0, 1},
    {"Crc16FrameWithCrc32", zmodem::Data("abc", 'h') + "zz", ReadError, "", "Line noise detected", 0, 1},
};
RUN_TABLE(ZModemSubpacket, dataRows);

TEST(ZModemSubpacket, LogsWhatCameIn) {
    std::array<char, bufferSize> buffer = {};
    FramingCase test;
    test.Say(zmodem::Data("abc", 'i') + zmodem::Data32("abcd", 'k'));
    test.framing.ReceiveData(buffer.data(), bufferSize);
    EXPECT_TRUE(test.Logged("Receiving data (2): length=3  type=ZCRCG"));
    test.framing.Crc32 = 1;
    test.framing.ReceiveData(buffer.data(), bufferSize);
    EXPECT_TRUE(test.Logged("Receiving data: length=4 type=ZCRCW"));
}

TEST(ZModemSubpacket, NeverWritesBeyondTheBuffer) {
    for (const int crc32 : {0, 1}) {
        FramingCase test;
        test.framing.Crc32 = crc32;
        test.Say(std::string(1000, 'x'));
        std::array<char, bufferSize + 1> buffer = {};
        buffer.back() = '!';
        test.framing.ReceiveData(buffer.data(), bufferSize);
        EXPECT_EQ(buffer.back(), '!');
        EXPECT_EQ(test.transfer.line.Unread(), 1000u - bufferSize - 1);
    }
}

TEST(ZModemSubpacket, AllValuesGoRound) {
    for (const int escapeControls : {0, 1})
        for (const int crc32 : {0, 1}) {
            FramingCase test;
            test.framing.Zctlesc = escapeControls;
            test.framing.Crc32t = test.framing.Crc32 = crc32;
            const std::string bytes = AllValues();
            test.framing.SendData(bytes.data(), 256, ZCRCQ);
            test.Say(test.Sent());
            std::array<char, 256> buffer = {};
            EXPECT_EQ(test.framing.ReceiveData(buffer.data(), 256), GotZCRCQ);
            EXPECT_EQ(std::string(buffer.data(), 256), bytes);
        }
}

TEST(ZModemSubpacket, EveryCutEndsInATimeout) {
    const std::string whole = zmodem::Data("a\x18z", 'h');
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        FramingCase test;
        test.Say(whole.substr(0, cut));
        std::array<char, bufferSize> buffer = {};
        EXPECT_EQ(test.framing.ReceiveData(buffer.data(), bufferSize), ReadTimeout) << cut;
        EXPECT_EQ(test.transfer.line.waited, 10000u);
    }
}

TEST(ZModemSubpacket, AnAbortEndsIt) {
    for (const std::string endless : {"", "\x11", "\x18\x11", "\x18h"}) {
        FramingCase test;
        for (int i = 0; i < 1000; ++i)
            test.transfer.line.Say(endless, 10);
        test.transfer.line.abortAt = GetTickCount() + 10;
        std::array<char, bufferSize> buffer = {};
        EXPECT_EQ(test.framing.ReceiveData(buffer.data(), bufferSize), ReadTimeout);
        EXPECT_TRUE(test.Showed("User canceled"));
        EXPECT_GE(test.transfer.line.Unread() + 8, 1000 * endless.size());
    }
}

TEST(ZModemSubpacket, AnAbortBeforeItReadsNothing) {
    FramingCase test;
    test.Say(zmodem::Data("abc", 'h'));
    test.transfer.object.Record().bAbortTransfer = 1;
    std::array<char, bufferSize> buffer = {};
    EXPECT_EQ(test.framing.ReceiveData(buffer.data(), bufferSize), ReadTimeout);
    EXPECT_EQ(test.transfer.line.Unread(), zmodem::Data("abc", 'h').size());
}

TEST(ZModemSubpacket, AClosedPortEndsIt) {
    FramingCase test;
    test.Say("abc");
    test.transfer.line.closeAt = GetTickCount() + 100;
    std::array<char, bufferSize> buffer = {};
    EXPECT_EQ(test.framing.ReceiveData(buffer.data(), bufferSize), NoCarrier);
    EXPECT_TRUE(test.Showed(invalid));
}

} // namespace
