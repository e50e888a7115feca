// Kermit's receiver against a far end by script.
#include "caseprint.h"
#include "kermitfarend.h"
#include "platform.h"
#include "transfer/kermit.h"

#include <stdexcept>

namespace {

using Lines = std::vector<std::string>;

const std::string init = Packet('S', 0, OurParameters);
const std::string file = Packet('F', 1, "a.txt");
const std::string errorPacket = Packet('E', 2, "disk full");

std::string Data(int number, const std::string& data = "hello#M") {
    return Packet('D', number, data);
}

struct KermitReceiver : KermitTest {
    KermitReceiver() : KermitTest(XferDownload) {}

    int Run(const Lines& packetsOfTheFarEnd) {
        script = packetsOfTheFarEnd;
        const int handles = platform::OpenHandles();
        Next();
        const int result = KermitReceive(transfer.transfer);
        EXPECT_EQ(platform::OpenHandles(), handles) << "files stay open";
        return result;
    }

    std::string Contents(const std::string& name = "a.txt") {
        return disk.files.contains(name) ? disk.files[name].contents : "no such file";
    }
};

const Lines wholeFile = {init, file, Data(2), Packet('Z', 3), Packet('B', 4)};
const Lines wholeAnswer = {"Y0 ~* @-#", "Y1", "Y2", "Y3", "Y4"};

TEST(KermitReceive, TakesAFile) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run(wholeFile), 0);
    EXPECT_EQ(receiver.packets, wholeAnswer);
    EXPECT_EQ(receiver.Contents(), "hello\r");
    EXPECT_EQ(receiver.transfer.journal,
              (Lines{"prepare a.txt a.txt", "start", "title Receiving a.txt (Kermit)",
                     "status Receiving a.txt", "finish"}));
    EXPECT_EQ(receiver.disk.journal, (Lines{"create a.txt", "close a.txt"}));
    EXPECT_TRUE(receiver.Logged("Kermit Receive File"));
}

TEST(KermitReceive, EachDataPacketIsAnsweredAndThenTold) {
    KermitReceiver receiver;
    Lines told;
    receiver.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_Transfering)
            told.push_back(std::to_string(receiver.transfer.object.Record().lBytesTransferred) + " after " +
                           receiver.packets.back());
    };
    receiver.Run({init, file, Data(2, "abc"), Data(3, "#M#J"), Packet('Z', 4), Packet('B', 5)});
    EXPECT_EQ(told, (Lines{"3 after Y2", "7 after Y3"}));
}

TEST(KermitReceive, FileIsCompleteWhenItsEndIsTold) {
    KermitReceiver receiver;
    std::string contents;
    receiver.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_EndOfFile)
            contents = receiver.Contents() + " " + receiver.disk.journal.back();
    };
    receiver.Run(wholeFile);
    EXPECT_EQ(contents, "hello\r close a.txt");
}

struct CourseCase {
    const char* name;
    Lines packets;
    int result;
    Lines answers;
    std::string contents;
};

class KermitReceiveCourse : public testing::TestWithParam<CourseCase> {};

TEST_P(KermitReceiveCourse, FollowsTheTable) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run(GetParam().packets), GetParam().result);
    EXPECT_EQ(receiver.packets, GetParam().answers);
    EXPECT_EQ(receiver.Contents(), GetParam().contents);
}

const std::string none = "no such file";
const std::string noNumber = RawPacket(35, 0xFF, 'Z', "") + "\r";

const CourseCase courseCases[] = {
    // The opening
    {"InitOfAnyNumber", {Packet('S', 5, OurParameters), errorPacket}, 1, {"Y0 ~* @-#"}, none},
    {"InitFileAtOnce", {Packet('F', 0, "a.txt")}, 1, {}, none},
    {"InitError", {errorPacket}, 1, {}, none},
    {"InitUnknown", {Packet('Q', 0)}, 1, {}, none},
    {"InitJunkGetsANak", {"0123456789", init, errorPacket}, 1, {"N0", "Y0 ~* @-#"}, none},
    // Between files
    {"FileWrongNumber", {init, Packet('F', 2, "a.txt")}, 1, {"Y0 ~* @-#"}, none},
    {"FileJunkGetsANak", {init, "0123456789", errorPacket}, 1, {"Y0 ~* @-#", "N1"}, none},
    {"FileInitAgain", {init, init, file, errorPacket}, 1, {"Y0 ~* @-#", "Y0 ~* @-#", "Y1"}, ""},
    {"FileInitOfAnotherNumber", {init, Packet('S', 1, OurParameters)}, 1, {"Y0 ~* @-#"}, none},
    {"FileEndOfNumber0", {init, Packet('Z', 0), errorPacket}, 1, {"Y0 ~* @-#", "Y0"}, none},
    {"FileEndOfAnotherNumber", {init, Packet('Z', 1)}, 1, {"Y0 ~* @-#"}, none},
    {"FileEndOfNoNumber", {init, noNumber}, 1, {"Y0 ~* @-#"}, none},
    {"FileBreakAtOnce", {init, Packet('B', 1)}, 0, {"Y0 ~* @-#", "Y1"}, none},
    {"FileBreakWrongNumber", {init, Packet('B', 2)}, 1, {"Y0 ~* @-#"}, none},
    {"FileData", {init, Data(1)}, 1, {"Y0 ~* @-#"}, none},
    {"FileUnknown", {init, Packet('A', 1)}, 1, {"Y0 ~* @-#"}, none},
    {"FileError", {init, errorPacket}, 1, {"Y0 ~* @-#"}, none},
    // In a file
    {"DataTwice",
     {init, file, Data(2), Data(2), Data(3, "more"), Packet('Z', 4), Packet('B', 5)},
     0,
     {"Y0 ~* @-#", "Y1", "Y2", "Y2 hello#", "Y3", "Y4", "Y5"},
     "hello\rmore"},
    {"DataOfAnotherNumber", {init, file, Data(3)}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataOfNoNumber", {init, file, RawPacket(35, 2, 'D', "") + "\r"}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataNameAgain",
     {init, file, file, Data(2), Packet('Z', 3), Packet('B', 4)},
     0,
     {"Y0 ~* @-#", "Y1", "Y1", "Y2", "Y3", "Y4"},
     "hello\r"},
    {"DataNameOfAnotherNumber", {init, file, Packet('F', 2, "b.txt")}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataJunkGetsANak",
     {init, file, "0123456789", Data(2), Packet('Z', 3), Packet('B', 4)},
     0,
     {"Y0 ~* @-#", "Y1", "N2", "Y2", "Y3", "Y4"},
     "hello\r"},
    {"DataEndOfAnotherNumber", {init, file, Packet('Z', 3)}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataBreak", {init, file, Packet('B', 2)}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataUnknown", {init, file, Packet('S', 2)}, 1, {"Y0 ~* @-#", "Y1"}, ""},
    {"DataError", {init, file, Data(2), errorPacket}, 1, {"Y0 ~* @-#", "Y1", "Y2"}, "hello\r"},
    {"DataWithoutAny", {init, file, Packet('Z', 2), Packet('B', 3)}, 0, {"Y0 ~* @-#", "Y1", "Y2", "Y3"}, ""},
    {"DataOfLengthMinusOne",
     {init, file, RawPacket(34, 34, 'D', "") + "\r", Packet('Z', 3), Packet('B', 4)},
     0,
     wholeAnswer,
     ""},
    {"DataTooLongIsJunk",
     {init, file, RawPacket(255, 34, 'D', std::string(220, 'x')) + "\r", errorPacket},
     1,
     {"Y0 ~* @-#", "Y1", "N2"},
     ""},
    {"EndAgainTouchesNoFile",
     {init, file, Data(2), Packet('Z', 3), Packet('Z', 3), Packet('B', 4)},
     0,
     {"Y0 ~* @-#", "Y1", "Y2", "Y3", "Y3", "Y4"},
     "hello\r"},
};

RUN_TABLE(KermitReceiveCourse, courseCases);

struct LimitCase {
    const char* name;
    Lines packets; // then silence
    std::string nak;
};

class KermitReceiveLimit : public testing::TestWithParam<LimitCase> {};

TEST_P(KermitReceiveLimit, IsTheTwelfthEntry) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run(GetParam().packets), 1);
    const size_t answers = GetParam().packets.size();
    ASSERT_EQ(receiver.packets.size(), answers + 11);
    for (size_t i = answers; i < receiver.packets.size(); ++i)
        EXPECT_EQ(receiver.packets[i], GetParam().nak);
    EXPECT_EQ(receiver.transfer.line.waited, 110000u);
}

const LimitCase limitCases[] = {
    {"Init", {}, "N0"},
    {"File", {init}, "N1"},
    {"Data", {init, file}, "N2"},
    {"Later", {init, file, Data(2)}, "N3"},
};

RUN_TABLE(KermitReceiveLimit, limitCases);

struct AgainCase {
    const char* name;
    Lines packets;
    std::string again;
};

class KermitReceiveAgain : public testing::TestWithParam<AgainCase> {};

// The packet before was taken on its first try, so that ten more are left.
TEST_P(KermitReceiveAgain, HasALimit) {
    KermitReceiver receiver;
    Lines packets = GetParam().packets;
    packets.insert(packets.end(), 100, GetParam().again);
    EXPECT_EQ(receiver.Run(packets), 1);
    EXPECT_EQ(receiver.packets.size(), GetParam().packets.size() + 10);
}

const AgainCase againCases[] = {
    {"Init", {init}, init},
    {"Name", {init, file}, file},
    {"Data", {init, file, Data(2)}, Data(2)},
};

RUN_TABLE(KermitReceiveAgain, againCases);

TEST(KermitReceive, EndAgainHasALimit) {
    KermitReceiver receiver;
    Lines packets = {init, file, Data(2), Packet('Z', 3)};
    packets.insert(packets.end(), 100, Packet('Z', 3));
    EXPECT_EQ(receiver.Run(packets), 1);
    EXPECT_EQ(receiver.packets.size(), 4u + 10u);
}

TEST(KermitReceive, TakesABatch) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run({init, file, Data(2), Packet('Z', 3), Packet('F', 4, "b.txt"), Data(5, "second"),
                            Packet('Z', 6), Packet('B', 7)}),
              0);
    EXPECT_EQ(receiver.Contents("a.txt"), "hello\r");
    EXPECT_EQ(receiver.Contents("b.txt"), "second");
    EXPECT_EQ(std::count(receiver.transfer.journal.begin(), receiver.transfer.journal.end(), "finish"), 2);
    EXPECT_EQ(receiver.LogCount("Beginning to transfer a new file"), 1u);
}

// Their words are in the packet; shown is the buffer that no packet of a receive goes to.
TEST(KermitReceive, TheirErrorIsShownWithoutItsWords) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run({init, file, errorPacket}), 1);
    EXPECT_EQ(receiver.transfer.lastStatus, "Aborting:\n\n");
}

TEST(KermitReceive, FileThatCantBeMadeEndsIt) {
    KermitReceiver receiver;
    receiver.disk.readOnly = true;
    EXPECT_EQ(receiver.Run({init, Packet('F', 1, "%s.txt"), Data(2)}), 1);
    EXPECT_EQ(receiver.packets, Lines{"Y0 ~* @-#"});
    EXPECT_EQ(receiver.transfer.lastStatus, "Cannot create %s.txt");
}

TEST(KermitReceive, FullDiskIsNoSuccess) {
    KermitReceiver receiver;
    receiver.disk.full = true;
    EXPECT_EQ(receiver.Run(wholeFile), 1);
    EXPECT_EQ(receiver.packets, (Lines{"Y0 ~* @-#", "Y1", "Y2"}));
    EXPECT_EQ(std::count(receiver.transfer.journal.begin(), receiver.transfer.journal.end(), "finish"), 0);
}

TEST(KermitReceive, PartlyWrittenIsNoSuccess) {
    KermitReceiver receiver;
    receiver.disk.halfWrites = true;
    EXPECT_EQ(receiver.Run(wholeFile), 1);
    EXPECT_EQ(receiver.packets, (Lines{"Y0 ~* @-#", "Y1"}));
}

struct NameCase {
    const char* name;
    std::string told;
    std::string made;
};

class KermitReceiveName : public testing::TestWithParam<NameCase> {};

TEST_P(KermitReceiveName, IsTheSenders) {
    KermitReceiver receiver;
    receiver.Run({init, Packet('F', 1, GetParam().told), Data(2), Packet('Z', 3), Packet('B', 4)});
    EXPECT_EQ(receiver.Contents(GetParam().made), "hello\r");
}

const NameCase nameCases[] = {
    {"Plain", "A.TXT", "A.TXT"},
    {"PercentSigns", "%s%n%d", "%s%n%d"},
    {"UpToItsNul", std::string("a\0b", 3), "a"},
    {"None", "", "UNTITLED.000"},
    {"AsLongAsAPacket", std::string(93, 'n'), std::string(93, 'n')},
};

RUN_TABLE(KermitReceiveName, nameCases);

TEST(KermitReceive, HostMayGiveAnotherName) {
    KermitReceiver receiver;
    receiver.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_Prepare)
            strcpy(receiver.transfer.object.Record().szDestFilename, "mine.txt");
    };
    EXPECT_EQ(receiver.Run(wholeFile), 0);
    EXPECT_EQ(receiver.Contents("mine.txt"), "hello\r");
    EXPECT_EQ(receiver.Contents(), none);
}

TEST(KermitReceive, QueuedNameIsTheDestination) {
    KermitReceiver receiver;
    receiver.transfer.Queue("queued.txt");
    EXPECT_EQ(receiver.Run(wholeFile), 0);
    EXPECT_EQ(receiver.Contents("queued.txt"), "hello\r");
}

TEST(KermitReceive, NegotiatedQuoteIsNotUsed) {
    KermitReceiver receiver;
    EXPECT_EQ(receiver.Run({Packet('S', 0, "~* @-&"), file, Data(2, "&A#M"), Packet('Z', 3), Packet('B', 4)}),
              0);
    EXPECT_EQ(receiver.Contents(), "&A\r");
}

TEST(KermitReceive, AnswersCarryTheSendersTerms) {
    KermitReceiver receiver;
    receiver.Run({Packet('S', 0, "~*\"?*#")});
    EXPECT_EQ(receiver.transfer.line.sent.substr(0, 14),
              "\x7F\x7F" + RawPacket(41, 32, 'Y', "~* @-#") + "\n");
}

TEST(KermitReceive, NumbersRunModulo64) {
    KermitReceiver receiver;
    Lines packets = {init, file};
    for (int i = 2; i < 70; ++i)
        packets.push_back(Data(i % 64, "x"));
    packets.push_back(Data(69 % 64, "x"));
    packets.push_back(Packet('Z', 70 % 64));
    packets.push_back(Packet('B', 71 % 64));
    EXPECT_EQ(receiver.Run(packets), 0);
    EXPECT_EQ(receiver.Contents(), std::string(68, 'x'));
    EXPECT_EQ(receiver.packets[63], "Y63");
    EXPECT_EQ(receiver.packets[64], "Y0");
}

TEST(KermitReceive, Number63ComesBeforeNumber0) {
    KermitReceiver receiver;
    Lines packets = {init, file};
    for (int i = 2; i < 64; ++i)
        packets.push_back(Data(i, "x"));
    packets.insert(packets.end(), {Data(63, "x"), Packet('Z', 0), Packet('B', 1)});
    EXPECT_EQ(receiver.Run(packets), 0);
    EXPECT_EQ(receiver.Contents(), std::string(62, 'x'));
}

TEST(KermitReceive, AbortClosesTheFile) {
    KermitReceiver receiver;
    receiver.transfer.line.abortAt = GetTickCount() + 5000;
    EXPECT_EQ(receiver.Run({init, file, Data(2)}), 1);
    EXPECT_EQ(receiver.disk.journal, (Lines{"create a.txt", "close a.txt"}));
    EXPECT_EQ(receiver.Contents(), "hello\r") << "nothing is deleted";
    EXPECT_LE(receiver.transfer.line.waited, 6000u);
}

TEST(KermitReceive, AbortAtTheOfferKeepsTheFileThatIsThere) {
    KermitReceiver receiver;
    receiver.disk.files["a.txt"].contents = "mine";
    receiver.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_Prepare)
            receiver.transfer.object.Record().bAbortTransfer = 1;
    };
    EXPECT_EQ(receiver.Run(wholeFile), 1);
    EXPECT_EQ(receiver.Contents(), "mine");
    EXPECT_EQ(receiver.disk.journal, Lines{});
}

TEST(KermitReceive, ClosedPortEndsIt) {
    KermitReceiver receiver;
    receiver.transfer.line.closeAt = GetTickCount() + 500;
    EXPECT_EQ(receiver.Run({init, file}), 1);
    EXPECT_LE(receiver.transfer.line.waited, 600u);
}

TEST(KermitReceive, ExceptionInAStepEndsIt) {
    KermitReceiver receiver;
    receiver.transfer.onEvent = [](int status) {
        if (status == TransferStatus_Transfering)
            throw std::runtime_error("in the event");
    };
    EXPECT_EQ(receiver.Run(wholeFile), 1);
    EXPECT_EQ(receiver.packets, (Lines{"Y0 ~* @-#", "Y1", "Y2"}));
}

TEST(KermitReceive, WorkerLeavesFromAnyStep) {
    for (const int status : {TransferStatus_Prepare, TransferStatus_Transfering, TransferStatus_EndOfFile}) {
        KermitReceiver receiver;
        receiver.transfer.onEvent = [&](int now) {
            if (now == status)
                throw WorkerLeaves();
        };
        EXPECT_THROW(receiver.Run(wholeFile), WorkerLeaves);
    }
}

} // namespace
