// Kermit's packets and the parameters of a send-init.
#include "caseprint.h"
#include "kermitfarend.h"
#include "platform.h"
#include "transfer/kermitmessage.h"
#include "transfer/kermitpacket.h"
#include "transfer/kermitsend.h"

#include <stdexcept>

namespace {

using kermit::PacketData;

struct KermitPacketBench {
    KermitTest test{XferUpload};
    KermitState state{test.transfer.transfer};
    WorkerLine& line = test.transfer.line;

    KermitPacketBench() { line.onWrite = nullptr; }
};

struct SendCase {
    const char* name;
    char type;
    int number;
    std::string data;
    std::string bytes;
};

class KermitSendPacket : public testing::TestWithParam<SendCase> {};

TEST_P(KermitSendPacket, PutsItsFieldsOnTheLine) {
    const SendCase& row = GetParam();
    KermitPacketBench bench;
    const int length = static_cast<int>(row.data.size());
    EXPECT_TRUE(SendPacket(bench.state, row.type, row.number, length, row.data.data()));
    EXPECT_EQ(bench.line.sent, row.bytes);
}

const SendCase sendCases[] = {
    {"NoData", 'Z', 0, "", "\x01# Z?\r"},
    {"Break", 'B', 3, "", "\x01##B*\r"},
    {"SendInit", 'S', 0, "~* @-#", "\x01) S~* @-#W\r"},
    {"HighestNumber", 'Y', 63, "", "\x01#_Y>\r"},
    {"HighBytesCountAsBytes", 'D', 0, "\xFF\x80", "\x01% D\xFF\x80(\r"},
};

RUN_TABLE(KermitSendPacket, sendCases);

TEST(KermitPackets, CarryTheOtherSidesPaddingAndEndOfLine) {
    KermitPacketBench bench;
    bench.state.npad = 3;
    bench.state.padchar = '\x7F';
    bench.state.eol = '\n';
    SendPacket(bench.state, 'B', 3, 0, nullptr);
    EXPECT_EQ(bench.line.sent, "\x7F\x7F\x7F\x01##B*\n");
}

TEST(KermitPackets, GoOutInOneWrite) {
    KermitPacketBench bench;
    int writes = 0;
    bench.line.onWrite = [&](const std::string&) { ++writes; };
    bench.state.npad = 5;
    SendPacket(bench.state, 'D', 0, 4, "data");
    EXPECT_EQ(writes, 1);
}

TEST(KermitPackets, LengthOfAnEmptyFileIsMinusOne) {
    KermitPacketBench bench;
    EXPECT_TRUE(SendPacket(bench.state, 'D', 2, -1, "unused"));
    EXPECT_EQ(bench.line.sent, RawPacket(34, 34, 'D', "") + "\r");
}

TEST(KermitPackets, ClosedPortTakesNone) {
    KermitPacketBench bench;
    bench.line.closeAt = GetTickCount() ? GetTickCount() : 1;
    platform::AdvanceTick(1);
    EXPECT_FALSE(SendPacket(bench.state, 'B', 0, 0, nullptr));
}

struct ReceiveCase {
    const char* name;
    std::string bytes;
    int type; // 0 for none
    int number;
    std::string data;
};

class KermitReceivePacket : public testing::TestWithParam<ReceiveCase> {};

TEST_P(KermitReceivePacket, IsFoundInWhatTheLineBrings) {
    const ReceiveCase& row = GetParam();
    KermitPacketBench bench;
    bench.line.Say(row.bytes);
    PacketData data;
    data.fill('?');
    const kermit::Packet packet = ReceivePacket(bench.state, data);
    EXPECT_EQ(packet.type, row.type);
    if (!row.type)
        return;
    EXPECT_EQ(packet.number, row.number);
    EXPECT_EQ(packet.length, static_cast<int>(row.data.size()));
    EXPECT_EQ(std::string(data.data(), row.data.size()), row.data);
    EXPECT_EQ(data[row.data.size()], 0) << "closed by a NUL";
}

const std::string soh = "\x01";
const std::string tenBytes = "0123456789";
const std::string goodPacket = Packet('Y', 5, "data");

// As the sender of a packet with a SOH on its way in: the byte is neither stored nor summed.
std::string PacketWithSohInData() {
    std::string bytes = RawPacket(35 + 3, 32, 'D', "ab");
    bytes.insert(5, soh);
    return bytes + "\r";
}

const ReceiveCase receiveCases[] = {
    {"Good", goodPacket, 'Y', 5, "data"},
    {"NoData", Packet('N', 63), 'N', 63, ""},
    {"HighBytes", Packet('D', 0, "\xC1\xFF"), 'D', 0, "\xC1\xFF"},
    {"AnyType", Packet('\xA5', 0), 0xA5, 0, ""},
    {"WithoutItsEndOfLine", RawPacket(35, 32, 'Y', ""), 'Y', 0, ""},
    {"BehindNineBytesOfJunk", tenBytes.substr(1) + goodPacket, 'Y', 5, "data"},
    {"BehindTenBytesOfJunk", tenBytes + goodPacket, 0, 0, ""},
    {"StartWithItsHighBit", "\x81" + goodPacket.substr(1), 'Y', 5, "data"},
    {"WrongCheck", "\x01%%Yab!\r", 0, 0, ""},
    {"CheckOutOfRange", RawPacket(35, 32, 'Y', "").substr(0, 4) + "\xF0\r", 0, 0, ""},
    {"SohForLength", soh + goodPacket, 'Y', 5, "data"},
    {"SohForNumber", soh + "#" + goodPacket, 'Y', 5, "data"},
    {"SohForType", soh + "# " + goodPacket, 'Y', 5, "data"},
    {"SohForEndOfLine", Packet('N', 1).substr(0, 5) + goodPacket, 'Y', 5, "data"},
    {"SohForCheckIsItsValue", soh + "# Y" + soh + "\r" + goodPacket, 0, 0, ""},
    {"NineStartsAgain", std::string(10, '\x01') + goodPacket.substr(1), 'Y', 5, "data"},
    {"TenStartsAgain", std::string(11, '\x01') + goodPacket.substr(1), 0, 0, ""},
    {"SohInDataLeavesItsPlace", PacketWithSohInData(), 'D', 0, "a?b"},
    {"LengthBelowZero", RawPacket(34, 32, 'D', "") + "\r", 'D', 0, ""},
    {"LengthFarBelowZero", RawPacket(2, 32, 'D', "") + "\r", 'D', 0, ""},
    {"NumberBelowZero", RawPacket(35, 2, 'Y', "") + "\r", 'Y', -30, ""},
    {"NumberFarAbove", RawPacket(35, 0xFF, 'Y', "") + "\r", 'Y', 223, ""},
    {"LongestThatFits", RawPacket(35 + 93, 32, 'D', std::string(93, 'x')) + "\r", 'D', 0,
     std::string(93, 'x')},
    {"OneTooMany", RawPacket(35 + 94, 32, 'D', std::string(94, 'x')) + "\r", 0, 0, ""},
    {"LongestThatCanBeTold", RawPacket(255, 32, 'D', std::string(220, 'x')) + "\r", 0, 0, ""},
    {"CutInTheData", goodPacket.substr(0, 6), 0, 0, ""},
    {"CutBehindTheStart", soh, 0, 0, ""},
    {"Nothing", "", 0, 0, ""},
};

RUN_TABLE(KermitReceivePacket, receiveCases);

TEST(KermitPackets, SevenBitsAreKeptWithoutTheImageMode) {
    KermitPacketBench bench;
    bench.state.bImage = 0;
    std::string bytes = goodPacket;
    for (size_t i = 1; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(bytes[i] | 0x80);
    bench.line.Say(bytes);
    PacketData data = {};
    EXPECT_EQ(ReceivePacket(bench.state, data).type, 'Y');
    EXPECT_STREQ(data.data(), "data");
}

TEST(KermitPackets, LogTellsWhatCame) {
    KermitPacketBench bench;
    PacketData data = {};
    bench.line.Say(goodPacket + "\x01%%Yab!\r");
    ReceivePacket(bench.state, data);
    ReceivePacket(bench.state, data);
    EXPECT_EQ(bench.test.LogCount("ReceivePacket returns 'Y'."), 1u);
    EXPECT_EQ(bench.test.LogCount("ReceivePacket returns invalid checksum"), 1u);
}

struct WaitCase {
    const char* name;
    std::string bytes;
    DWORD seconds;
};

class KermitPacketWait : public testing::TestWithParam<WaitCase> {};

TEST_P(KermitPacketWait, HasItsLimit) {
    KermitPacketBench bench;
    bench.line.Say(GetParam().bytes);
    PacketData data = {};
    ReceivePacket(bench.state, data);
    EXPECT_EQ(bench.line.waited, GetParam().seconds * 1000);
}

const WaitCase waitCases[] = {
    {"Silence", "", 10},
    {"StartThenSilence", soh, 1},
    {"HalfAPacket", goodPacket.substr(0, 6), 1},
    {"NoEndOfLine", goodPacket.substr(0, goodPacket.size() - 1), 1},
    {"JunkThenSilence", "01234", 5},
    {"WholePacket", goodPacket, 0},
};

RUN_TABLE(KermitPacketWait, waitCases);

TEST(KermitPackets, AbortEndsTheSearch) {
    KermitPacketBench bench;
    bench.test.transfer.object.Record().bAbortTransfer = 1;
    bench.line.Say(goodPacket);
    PacketData data = {};
    EXPECT_EQ(ReceivePacket(bench.state, data).type, 0);
    EXPECT_EQ(bench.line.Unread(), goodPacket.size());
}

TEST(KermitPackets, ExceptionIsAFaultOfTheStep) {
    KermitPacketBench bench;
    bench.line.onWait = [] { throw std::runtime_error("in the wait"); };
    bench.line.onWrite = [](const std::string&) { throw std::runtime_error("in the write"); };
    PacketData data = {};
    EXPECT_EQ(ReceivePacket(bench.state, data).type, kermit::PacketFault);
    EXPECT_FALSE(SendPacket(bench.state, 'B', 0, 0, nullptr));
}

TEST(KermitPackets, WorkerLeavesThroughThem) {
    KermitPacketBench bench;
    bench.line.onWait = [] { throw WorkerLeaves(); };
    bench.line.onWrite = [](const std::string&) { throw WorkerLeaves(); };
    PacketData data = {};
    EXPECT_THROW(ReceivePacket(bench.state, data), WorkerLeaves);
    EXPECT_THROW(SendPacket(bench.state, 'B', 0, 0, nullptr), WorkerLeaves);
}

TEST(KermitParameters, OursAreFixed) {
    PacketData data = {};
    FillParameters(data);
    EXPECT_STREQ(data.data(), "~* @-#");
}

struct ParameterCase {
    const char* name;
    std::string data;
    int spsiz;
    int npad;
    int padchar;
    int eol;
    int ctlq;
};

class KermitTheirParameters : public testing::TestWithParam<ParameterCase> {};

TEST_P(KermitTheirParameters, AreTaken) {
    const ParameterCase& row = GetParam();
    KermitPacketBench bench;
    PacketData data = {};
    std::copy(row.data.begin(), row.data.end(), data.begin());
    ReadParameters(bench.state, data, static_cast<int>(row.data.size()));
    EXPECT_EQ(bench.state.spsiz, row.spsiz);
    EXPECT_EQ(bench.state.npad, row.npad);
    EXPECT_EQ(bench.state.padchar, row.padchar);
    EXPECT_EQ(bench.state.eol, row.eol);
    EXPECT_EQ(bench.state.ctlq, row.ctlq);
}

const ParameterCase parameterCases[] = {
    {"Ours", "~* @-#", 94, 0, 0, 13, '#'},
    {"Others", "H*#?*&", 40, 3, 0x7F, 10, '&'},
    {"MoreThanSix", "~* @-#Y1~*", 94, 0, 0, 13, '#'},
    {"FieldsLeftOutKeepTheirValues", "H*", 40, 0, 0, 13, '#'},
    {"SizeAlone", "H", 40, 0, 0, 13, '#'},
    {"UpToThePadding", "H*#", 40, 3, 0, 13, '#'},
    {"UpToThePaddingCharacter", "H*#?", 40, 3, 0x7F, 13, '#'},
    {"UpToTheEndOfLine", "H*#?*", 40, 3, 0x7F, 10, '#'},
    {"None", "", 0, 0, 0, 13, '#'},
    {"SizeAboveThePacket", "\xFF* @-#", 94, 0, 0, 13, '#'},
    {"SizeBelowZero", "\x02* @-#", 0, 0, 0, 13, '#'},
    {"PaddingBelowZero", "~*\x02@-#", 94, 0, 0, 13, '#'},
    {"PaddingAboveThePacket", "~*\xFF@-#", 94, 94, 0, 13, '#'},
    {"EndOfLineOfZero", "~* @ #", 94, 0, 0, 0, '#'},
};

RUN_TABLE(KermitTheirParameters, parameterCases);

TEST(KermitMessages, GoToTheStatusLine) {
    KermitPacketBench bench;
    ShowMessage(bench.state, "50% of %s%n");
    EXPECT_EQ(bench.test.transfer.lastStatus, "50% of %s%n");
    ShowErrorPacket(bench.state, "%s gone");
    EXPECT_EQ(bench.test.transfer.lastStatus, "Aborting:\n%s gone\n");
    Error(bench.state, "Cannot %d");
    EXPECT_EQ(bench.test.transfer.lastStatus, "Cannot %d");
    EXPECT_EQ(bench.line.sent, "");
}

TEST(KermitMessages, AreCut) {
    KermitPacketBench bench;
    ShowMessage(bench.state, std::string(300, 'x'));
    EXPECT_EQ(bench.test.transfer.lastStatus, std::string(255, 'x'));
}

TEST(KermitMessages, ErrorsGoOnTheLineWhenThatIsOn) {
    KermitPacketBench bench;
    bench.state.bSendErrors = 1;
    bench.state.nSequence = 7;
    Error(bench.state, "Cannot create x");
    EXPECT_EQ(PacketText(bench.line.sent), "E7 Cannot create x");
    EXPECT_EQ(bench.test.transfer.lastStatus, "");
    bench.line.sent.clear();
    Error(bench.state, std::string(300, 'x'));
    EXPECT_EQ(PacketText(bench.line.sent), "E7 " + std::string(91, 'x'));
}

} // namespace
