// Kermit's sender against a far end by script.
#include "caseprint.h"
#include "kermitfarend.h"
#include "platform.h"
#include "transfer/kermit.h"

#include <stdexcept>

namespace {

using Lines = std::vector<std::string>;

// What a far end answers when all goes well.
std::string Ack(int number, const std::string& data = "") {
    return Packet('Y', number, data);
}
std::string Nak(int number) {
    return Packet('N', number);
}
const std::string ackInit = Ack(0, "~* @-#");
const std::string errorPacket = Packet('E', 0, "disk full");

struct KermitSender : KermitTest {
    explicit KermitSender(const Lines& names = {"a.txt"}) : KermitTest(XferUpload) {
        disk.files["a.txt"].contents = "hello\r";
        disk.files["b.txt"].contents = "second";
        for (const std::string& name : names)
            transfer.Queue(name);
    }

    int Run(const Lines& answers) {
        script = answers;
        const int handles = platform::OpenHandles();
        const int result = KermitSend(transfer.transfer);
        EXPECT_EQ(platform::OpenHandles(), handles) << "files stay open";
        return result;
    }
};

const Lines wholeSession = {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3", "B4"};

TEST(KermitSend, SendsAFile) {
    KermitSender sender;
    EXPECT_EQ(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)}), 0);
    EXPECT_EQ(sender.packets, wholeSession);
    EXPECT_EQ(sender.transfer.journal, (Lines{"prepare a.txt a.txt", "start", "title Sending a.txt (Kermit)",
                                              "status Sending a.txt", "finish"}));
    EXPECT_EQ(sender.disk.journal, (Lines{"read a.txt", "close a.txt"}));
    EXPECT_TRUE(sender.Logged("Kermit Send File"));
    EXPECT_TRUE(sender.Logged("Filename: a.txt"));
    EXPECT_TRUE(sender.Logged("Total bytes: 6"));
    EXPECT_EQ(sender.transfer.line.purges, 1) << "of the input, ahead of the send-init";
}

struct AnswerCase {
    const char* name;
    Lines answers;
    int result;
    Lines packets;
};

class KermitSendAnswers : public testing::TestWithParam<AnswerCase> {};

TEST_P(KermitSendAnswers, LeadToTheNextPacket) {
    KermitSender sender;
    EXPECT_EQ(sender.Run(GetParam().answers), GetParam().result);
    EXPECT_EQ(sender.packets, GetParam().packets);
}

const AnswerCase answerCases[] = {
    {"InitSilence", {Silence, ackInit, Packet('E', 1)}, 1, {"S0 ~* @-#", "S0 ~* @-#", "F1 a.txt"}},
    {"InitNak", {Nak(0), ackInit, Packet('E', 1)}, 1, {"S0 ~* @-#", "S0 ~* @-#", "F1 a.txt"}},
    {"InitNakOfTheNextIsARetryToo",
     {Nak(1), ackInit, Packet('E', 1)},
     1,
     {"S0 ~* @-#", "S0 ~* @-#", "F1 a.txt"}},
    {"InitAckOfAnother", {Ack(1), ackInit, Packet('E', 1)}, 1, {"S0 ~* @-#", "S0 ~* @-#", "F1 a.txt"}},
    {"InitError", {errorPacket}, 1, {"S0 ~* @-#"}},
    {"InitUnknown", {Packet('Q', 0)}, 1, {"S0 ~* @-#"}},
    {"InitEcho", {Packet('S', 0, OurParameters)}, 1, {"S0 ~* @-#"}},
    {"FileNakOfTheNextIsAnAck", {ackInit, Nak(2), errorPacket}, 1, {"S0 ~* @-#", "F1 a.txt", "D2 hello#M"}},
    {"FileError", {ackInit, errorPacket}, 1, {"S0 ~* @-#", "F1 a.txt"}},
    {"FileUnknown", {ackInit, Packet('Q', 1)}, 1, {"S0 ~* @-#", "F1 a.txt"}},
    {"DataSilence",
     {ackInit, Ack(1), Silence, Ack(2), errorPacket},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "D2 hello#M", "Z3"}},
    {"DataNak",
     {ackInit, Ack(1), Nak(2), Ack(2), errorPacket},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "D2 hello#M", "Z3"}},
    {"DataNakOfTheNextIsAnAck",
     {ackInit, Ack(1), Nak(3), errorPacket},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3"}},
    {"DataAckOfTheOneBefore",
     {ackInit, Ack(1), Ack(1), Ack(2), errorPacket},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "D2 hello#M", "Z3"}},
    {"DataAckOfNoNumber",
     {ackInit, Ack(1), RawPacket(35, 2, 'Y', "") + "\r", Ack(2), errorPacket},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "D2 hello#M", "Z3"}},
    {"DataError", {ackInit, Ack(1), errorPacket}, 1, {"S0 ~* @-#", "F1 a.txt", "D2 hello#M"}},
    {"DataUnknown", {ackInit, Ack(1), Packet('D', 2)}, 1, {"S0 ~* @-#", "F1 a.txt", "D2 hello#M"}},
    {"EndSilence",
     {ackInit, Ack(1), Ack(2), Silence, Ack(3), Ack(4)},
     0,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3", "Z3", "B4"}},
    {"EndNakOfTheNextIsAnAck", {ackInit, Ack(1), Ack(2), Nak(4), Ack(4)}, 0, wholeSession},
    {"EndError", {ackInit, Ack(1), Ack(2), errorPacket}, 1, {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3"}},
    {"EndUnknown",
     {ackInit, Ack(1), Ack(2), Packet('Z', 3)},
     1,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3"}},
    {"BreakSilence",
     {ackInit, Ack(1), Ack(2), Ack(3), Silence, Ack(4)},
     0,
     {"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3", "B4", "B4"}},
    {"BreakNakOfTheNextIsAnAck", {ackInit, Ack(1), Ack(2), Ack(3), Nak(5)}, 0, wholeSession},
    {"BreakError", {ackInit, Ack(1), Ack(2), Ack(3), errorPacket}, 1, wholeSession},
    {"BreakUnknown", {ackInit, Ack(1), Ack(2), Ack(3), Packet('B', 4)}, 1, wholeSession},
};

RUN_TABLE(KermitSendAnswers, answerCases);

struct LimitCase {
    const char* name;
    Lines answers; // then silence
    std::string packet;
};

class KermitSendLimit : public testing::TestWithParam<LimitCase> {};

TEST_P(KermitSendLimit, IsTheTwelfthEntry) {
    KermitSender sender;
    EXPECT_EQ(sender.Run(GetParam().answers), 1);
    ASSERT_EQ(sender.packets.size(), GetParam().answers.size() + 11);
    for (size_t i = GetParam().answers.size(); i < sender.packets.size(); ++i)
        EXPECT_EQ(sender.packets[i], GetParam().packet);
}

const LimitCase limitCases[] = {
    {"Init", {}, "S0 ~* @-#"},
    {"Data", {ackInit, Ack(1)}, "D2 hello#M"},
    {"End", {ackInit, Ack(1), Ack(2)}, "Z3"},
    {"Break", {ackInit, Ack(1), Ack(2), Ack(3)}, "B4"},
};

RUN_TABLE(KermitSendLimit, limitCases);

TEST(KermitSend, EachPacketHasElevenTriesOfItsOwn) {
    KermitSender sender;
    Lines answers(10, Silence);
    answers.push_back(ackInit);
    answers.push_back(Ack(1));
    answers.insert(answers.end(), 10, Silence);
    answers.insert(answers.end(), {Ack(2), Ack(3), Ack(4)});
    EXPECT_EQ(sender.Run(answers), 0);
    EXPECT_EQ(sender.packets.size(), 25u);
}

TEST(KermitSend, SilenceCostsTenSecondsAPacket) {
    KermitSender sender;
    EXPECT_EQ(sender.Run({}), 1);
    EXPECT_EQ(sender.transfer.line.waited, 110000u);
}

TEST(KermitSend, EmptyQueueSkips) {
    KermitSender sender(Lines{});
    EXPECT_EQ(sender.Run({ackInit}), 1);
    EXPECT_EQ(sender.packets, Lines{"S0 ~* @-#"});
    EXPECT_EQ(sender.transfer.journal.back(), "abort");
}

TEST(KermitSend, RetryOfALoneFileFindsNoName) {
    KermitSender sender;
    EXPECT_EQ(sender.Run({ackInit, Nak(1)}), 1);
    EXPECT_EQ(sender.packets, (Lines{"S0 ~* @-#", "F1 a.txt"}));
    EXPECT_EQ(sender.transfer.journal.back(), "abort");
    EXPECT_EQ(sender.disk.journal, (Lines{"read a.txt", "close a.txt"}));
}

TEST(KermitSend, RetryTakesTheNextNameForTheSameFile) {
    KermitSender sender({"a.txt", "b.txt"});
    EXPECT_EQ(sender.Run({ackInit, Silence, Ack(1), Ack(2), Ack(3), Ack(4)}), 0);
    EXPECT_EQ(sender.packets, (Lines{"S0 ~* @-#", "F1 a.txt", "F1 b.txt", "D2 hello#M", "Z3", "B4"}));
    EXPECT_EQ(sender.disk.journal, (Lines{"read a.txt", "close a.txt"}));
}

TEST(KermitSend, TwelfthNameIsTakenAndSkipped) {
    KermitSender sender(Lines(13, "a.txt"));
    EXPECT_EQ(sender.Run({ackInit}), 1);
    EXPECT_EQ(sender.packets.size(), 12u);
    EXPECT_EQ(sender.transfer.object.Record().cFiles, 1);
    EXPECT_EQ(sender.transfer.journal.back(), "abort");
}

// The second file is offered and never opened.
TEST(KermitSend, LaterFilesOfABatchAreEmpty) {
    KermitSender sender({"a.txt", "b.txt"});
    EXPECT_EQ(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4), Ack(5), Ack(6), Ack(7)}), 0);
    const Lines first(sender.packets.begin(), sender.packets.begin() + 5);
    EXPECT_EQ(first, (Lines{"S0 ~* @-#", "F1 a.txt", "D2 hello#M", "Z3", "F4 b.txt"}));
    EXPECT_EQ(sender.packets[5], "?" + RawPacket(34, 37, 'D', "") + "\r") << "a length of -1";
    EXPECT_EQ(sender.packets[6], "Z6");
    EXPECT_EQ(sender.packets[7], "B7");
    EXPECT_EQ(sender.disk.journal, (Lines{"read a.txt", "close a.txt"}));
    EXPECT_TRUE(sender.Logged("Total bytes: -1"));
    EXPECT_EQ(std::count(sender.transfer.journal.begin(), sender.transfer.journal.end(), "finish"), 2);
    EXPECT_EQ(sender.LogCount("Beginning to transfer a new file"), 1u);
}

TEST(KermitSend, EmptyFileTakesOneDataPacket) {
    KermitSender sender;
    sender.disk.files["a.txt"].contents = "";
    EXPECT_EQ(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)}), 0);
    EXPECT_EQ(sender.packets[2], "?" + RawPacket(34, 34, 'D', "") + "\r");
    EXPECT_EQ(sender.packets[3], "Z3");
}

TEST(KermitSend, FileThatCantBeOpenedEndsIt) {
    KermitSender sender({"none.txt"});
    EXPECT_EQ(sender.Run({ackInit}), 1);
    EXPECT_EQ(sender.packets, Lines{"S0 ~* @-#"});
    const Lines& journal = sender.transfer.journal;
    EXPECT_EQ(Lines(journal.end() - 2, journal.end()),
              (Lines{"status Cannot open file, skipping...", "status Cannot open file none.txt"}));
    EXPECT_TRUE(sender.Logged("Cannot open none.txt - skipping."));
}

struct NameCase {
    const char* name;
    std::string path;
    std::string sent;
};

class KermitSendName : public testing::TestWithParam<NameCase> {};

TEST_P(KermitSendName, IsTheLastPart) {
    KermitSender sender({GetParam().path});
    sender.disk.files[GetParam().path].contents = "x";
    sender.Run({ackInit});
    ASSERT_GE(sender.packets.size(), 2u);
    EXPECT_EQ(sender.packets[1], "F1 " + GetParam().sent);
    EXPECT_EQ(sender.disk.journal[0], "read " + GetParam().path);
}

const NameCase nameCases[] = {
    {"Plain", "plain", "plain"},
    {"Backslash", "C:\\dir\\a.txt", "a.txt"},
    {"Slash", "dir/a.txt", "a.txt"},
    {"Mixed", "C:\\dir/sub\\x/a.txt", "a.txt"},
    {"PercentSigns", "%s%n.txt", "%s%n.txt"},
    {"LongestThatFits", "C:\\" + std::string(91, 'n'), std::string(91, 'n')},
    {"TooLongIsCut", "C:\\" + std::string(200, 'n'), std::string(91, 'n')},
};

RUN_TABLE(KermitSendName, nameCases);

TEST(KermitSend, TheirErrorIsShown) {
    KermitSender sender;
    EXPECT_EQ(sender.Run({ackInit, Ack(1), errorPacket}), 1);
    EXPECT_EQ(sender.transfer.lastStatus, "Aborting:\ndisk full\n");
    EXPECT_EQ(std::count(sender.transfer.journal.begin(), sender.transfer.journal.end(), "abort"), 0);
}

TEST(KermitSend, TheirErrorToANameSkipsTheFile) {
    KermitSender sender;
    EXPECT_EQ(sender.Run({ackInit, Packet('E', 1, "no")}), 1);
    EXPECT_EQ(sender.transfer.journal.back(), "abort");
    EXPECT_EQ(sender.transfer.lastStatus, "Aborting:\nno\n");
}

TEST(KermitSend, StatusIsEmptyBehindEachBlock) {
    KermitSender sender;
    sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)});
    EXPECT_EQ(sender.transfer.lastStatus, "");
}

TEST(KermitSend, NumbersRunModulo64) {
    KermitSender sender;
    sender.disk.files["a.txt"].contents = std::string(86 * 70, 'x');
    Lines answers = {ackInit};
    for (int i = 1; i <= 73; ++i)
        answers.push_back(Ack(i % 64));
    EXPECT_EQ(sender.Run(answers), 0);
    EXPECT_EQ(sender.packets[63].substr(0, 4), "D63 ");
    EXPECT_EQ(sender.packets[64].substr(0, 3), "D0 ");
    EXPECT_EQ(sender.packets.back(), "B9");
}

TEST(KermitSend, NakOfNumber0AcknowledgesNumber63) {
    KermitSender sender;
    sender.disk.files["a.txt"].contents = std::string(86 * 62, 'x');
    Lines answers = {ackInit};
    for (int i = 1; i <= 62; ++i)
        answers.push_back(Ack(i));
    answers.insert(answers.end(), {Nak(0), Ack(0), Ack(1)});
    EXPECT_EQ(sender.Run(answers), 0);
    EXPECT_EQ(sender.packets.size(), 66u);
}

struct TermsCase {
    const char* name;
    std::string parameters;
    std::string data; // as it goes out, from the padding on
};

class KermitSendTerms : public testing::TestWithParam<TermsCase> {};

TEST_P(KermitSendTerms, AreTheOtherSides) {
    KermitSender sender;
    std::string last;
    const auto next = sender.transfer.line.onWrite;
    sender.transfer.line.onWrite = [&](const std::string& bytes) {
        next(bytes);
        last = bytes;
    };
    sender.Run({Ack(0, GetParam().parameters), Ack(1)});
    EXPECT_EQ(last, GetParam().data);
}

const TermsCase termsCases[] = {
    {"Padding", "~*\"?-#", "\x7F\x7F" + Packet('D', 2, "hello#M")},
    {"AnotherEndOfLine", "~* @*#", RawPacket(42, 34, 'D', "hello#M") + "\n"},
    {"NoEndOfLineIsALineFeed", "~* @ #", RawPacket(42, 34, 'D', "hello#M") + "\n"},
    {"AnotherQuote", "~* @-&", Packet('D', 2, "hello&M")},
    {"NulQuoteIsTheUsualOne", std::string("~* @-") + '\0', Packet('D', 2, "hello#M")},
    {"ShortAnswer", "~", Packet('D', 2, "hello#M")},
    {"EmptyAnswer", "", Packet('D', 2, "h")},
    {"AbsurdSize", "\xFF* @-#", Packet('D', 2, "hello#M")},
    {"SizeBelowZero", "\x02* @-#", Packet('D', 2, "h")},
};

RUN_TABLE(KermitSendTerms, termsCases);

TEST(KermitSend, AbortClosesTheFile) {
    KermitSender sender;
    const auto next = sender.transfer.line.onWrite;
    sender.transfer.line.onWrite = [&](const std::string& bytes) {
        next(bytes);
        if (sender.packets.size() == 3)
            sender.transfer.object.Record().bAbortTransfer = 1;
    };
    EXPECT_EQ(sender.Run({ackInit, Ack(1), Ack(2)}), 1);
    EXPECT_EQ(sender.packets.size(), 3u);
    EXPECT_EQ(sender.disk.journal, (Lines{"read a.txt", "close a.txt"}));
    EXPECT_EQ(sender.transfer.line.waited, 0u);
}

TEST(KermitSend, ClosedPortEndsIt) {
    KermitSender sender;
    sender.transfer.line.closeAt = GetTickCount() + 500;
    EXPECT_EQ(sender.Run({}), 1);
    EXPECT_EQ(sender.packets, Lines{"S0 ~* @-#"});
    EXPECT_LE(sender.transfer.line.waited, 600u);
}

TEST(KermitSend, ExceptionInAStepEndsIt) {
    KermitSender sender;
    sender.transfer.onEvent = [](int status) {
        if (status == TransferStatus_EndOfFile)
            throw std::runtime_error("in the event");
    };
    EXPECT_EQ(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)}), 1);
    EXPECT_EQ(sender.packets.back(), "Z3");
}

TEST(KermitSend, ExceptionInAWaitEndsIt) {
    KermitSender sender;
    sender.transfer.line.onWait = [] { throw std::runtime_error("in the wait"); };
    EXPECT_EQ(sender.Run({ackInit, Ack(1)}), 1);
    EXPECT_EQ(sender.packets.size(), 3u) << "no retry";
}

TEST(KermitSend, WorkerLeavesFromAnyStep) {
    for (const int status : {TransferStatus_Prepare, TransferStatus_EndOfFile}) {
        KermitSender sender;
        sender.transfer.onEvent = [&](int now) {
            if (now == status)
                throw WorkerLeaves();
        };
        EXPECT_THROW(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)}), WorkerLeaves);
    }
}

TEST(KermitSend, DestroyedObjectEndsIt) {
    const int handles = platform::OpenHandles();
    KermitSender sender;
    sender.transfer.onEvent = [&](int status) {
        if (status == TransferStatus_EndOfFile)
            sender.transfer.object.Destroy();
    };
    EXPECT_THROW(sender.Run({ackInit, Ack(1), Ack(2), Ack(3), Ack(4)}), WorkerLeaves);
    EXPECT_EQ(platform::OpenHandles(), handles);
}

} // namespace
