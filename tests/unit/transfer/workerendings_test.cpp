// How a transfer begins and ends where nothing goes well: statuses, queue, log, and the last bytes on the
// line.
#include "transferpair.h"

#include "diagnostics/wiretap.h"
#include "support/every.h"
#include "unit/diagnostics/logfiles.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

using Statuses = std::vector<int>;

const std::string cancel = std::string(10, '\x18') + std::string(10, '\x08');

class TransferEndings : public TransferTest {
  protected:
    void SetUp() override {
        ResetWireTap();
        logfiles::RemoveLog();
        TransferTest::SetUp();
    }
    void TearDown() override {
        ResetWireTap();
        logfiles::RemoveLog();
    }

    bool Logged(const std::string& text) const {
        return logfiles::Messages().find("<time> " + text + "\r\n") != std::string::npos;
    }
};

} // namespace

TEST_F(TransferEndings, StatusWaitsForAFileUntilTheWorkerTells) {
    sender.Close();
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    EXPECT_EQ(GetTransferStatus(sender), TransferStatus_WaitForFile);
    EXPECT_EQ(GetTransferType(sender), XferUpload);
    EXPECT_EQ(sender.Count(TARN_EVENT_TRANSFER), 0) << "never told";
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    EXPECT_EQ(GetTransferStatus(sender), TransferStatus_Failure);
    EXPECT_EQ(GetTransferType(sender), XferNone);
}

TEST_F(TransferEndings, NamesThatRemainAreNotTheNextTransfers) {
    Use(Protocol_ZModem);
    sender.Close();
    for (const char* name : {"a", "b", "c"})
        ASSERT_EQ(Upload(sender, out.Write(name, name).c_str()), 1);
    EXPECT_EQ(Record(sender).cFiles, 3);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    EXPECT_EQ(Record(sender).cFiles, 0);
    EXPECT_TRUE(Record(sender).lpFileList.empty());
    ASSERT_EQ(sender.Open("COM5"), "");
    sent.statuses.clear();
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("d", "d").c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return sent.Last() == TransferStatus_Success && received.Ended(); }, limit));
    EXPECT_EQ(in.Read("d"), "d");
    for (const char* name : {"a", "b", "c"})
        EXPECT_FALSE(in.Has(name)) << name;
}

TEST_F(TransferEndings, BareNameIsTakenFromTheFolder) {
    sender.Close();
    out.Write("a", "a");
    EXPECT_EQ(Upload(sender, "a"), 0) << "not in the program's folder";
    SetXferPath(sender, out.Path().c_str());
    EXPECT_EQ(Upload(sender, "a"), 1);
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
}

TEST_F(TransferEndings, FolderThatDoesNotFitIsCut) {
    SetXferPath(sender, std::string(255, 'p').c_str());
    EXPECT_EQ(Record(sender).szXferPath, std::string(255, 'p'));
    SetXferPath(sender, std::string(300, 'q').c_str());
    EXPECT_EQ(Record(sender).szXferPath, std::string(255, 'q'));
    EXPECT_FALSE(Record(sender).lpWindowRequest) << "the field behind";
}

TEST_F(TransferEndings, LogTellsTheProtocolAsItWasAtTheStart) {
    const char* names[] = {"XModem",   "XModem CRC", "XModem 1K", "YModem",
                           "YModem-G", "ZModem",     "Kermit",    "Compuserve B+"};
    sender.Close();
    SetWireTapTransfer(sender, 1);
    const std::string path = out.Write("a", "a");
    for (int protocol = 0; protocol <= 7; ++protocol) {
        Use(protocol);
        sent.statuses.clear();
        ASSERT_EQ(Upload(sender, path.c_str()), 1);
        ASSERT_TRUE(PumpUntil([&] { return sent.Last() == TransferStatus_Failure; }));
        EXPECT_TRUE(Logged(std::string("Transfer protocol is ") + names[protocol])) << logfiles::Messages();
    }
}

TEST_F(TransferEndings, AbortedTransferCancelsTheLine) {
    receiver.Close();
    FarEnd farEnd;
    for (const int protocol : {Protocol_XModemCRC, Protocol_ZModem, Protocol_Kermit}) {
        SCOPED_TRACE(protocol);
        Use(protocol);
        sent.statuses.clear();
        std::string heard;
        ASSERT_EQ(Download(sender, out.In("x").c_str()), 1);
        if (protocol == Protocol_ZModem) {
            ASSERT_TRUE(PumpUntil([&] { return (heard += farEnd.Read()).ends_with('\x11'); }, limit));
        }
        AbortTransfer(sender);
        ASSERT_TRUE(PumpUntil(
            [&] {
                heard += farEnd.Read();
                return sent.Last() == TransferStatus_Failure;
            },
            limit));
        EXPECT_TRUE(PumpUntil([&] { return (heard += farEnd.Read()).ends_with(cancel); }));
    }
}

// A file that can't be made is skipped; the transfer is a success, and the line is cancelled all the same.
TEST_F(TransferEndings, FileThatCantBeMadeCancelsTheLineOfASuccess) {
    Use(Protocol_ZModem);
    SetWireTapTransfer(receiver, 1);
    SetXferPath(receiver, in.In("no such folder").c_str());
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", "a").c_str()), 1);
    ASSERT_TRUE(BothEnd());
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    EXPECT_EQ(std::ranges::count(received.statuses, TransferStatus_FileAbort), 1);
    EXPECT_EQ(std::ranges::count(sent.statuses, TransferStatus_FileAbort), 1);
    EXPECT_TRUE(Logged("Clear output buffer")) << "the first step of the cancel";
}

// Kept so: the sequence starts what the host has chosen.
TEST_F(TransferEndings, ZModemStartInTheInputRunsTheProtocolThatIsSet) {
    receiver.Close();
    FarEnd farEnd;
    Use(7);
    SetAutoZModem(sender, 1);
    SetAutoProcess(sender, TARN_PROCESS_SERIAL);
    ASSERT_TRUE(farEnd.Send("**\x18"
                            "B00"));
    ASSERT_TRUE(PumpUntil([&] { return sent.Ended(); }));
    EXPECT_EQ(sent.statuses, Statuses({TransferStatus_Failure}));
    EXPECT_EQ(GetProtocol(sender), 7);
    EXPECT_EQ(farEnd.Read(), "");
}

TEST_F(TransferEndings, WaitForTheEndIsOverWhenTheObjectGoes) {
    Use(Protocol_XModemCRC);
    ASSERT_EQ(Download(receiver, ""), 1);
    const auto destroy = After(200, [&] { DestroyWindow(receiver); });
    const Clock clock;
    WaitUntilTransferIsFinished(receiver);
    EXPECT_FALSE(IsWindow(receiver));
    EXPECT_LT(clock.Gone(), 5000u);
}

namespace {

struct DestroyCase {
    const char* name;
    bool ofSender;
    int status;
    int nProtocol;
};

const DestroyCase destroyCases[] = {
    {"SenderSkips", true, TransferStatus_FileAbort, Protocol_ZModem},
    {"SenderFails", true, TransferStatus_Failure, Protocol_XModem1K},
    {"SenderHasNoEngine", true, TransferStatus_Failure, 7},
    {"ReceiverSkips", false, TransferStatus_FileAbort, Protocol_ZModem},
    {"ReceiverFails", false, TransferStatus_Failure, Protocol_XModem1K},
    {"ReceiverHasNoEngine", false, TransferStatus_Failure, 7},
};

class TransferEndedDestroyed : public TransferEndings, public testing::WithParamInterface<DestroyCase> {};

} // namespace

// The receiver can't make its file.
TEST_P(TransferEndedDestroyed, InsideAnEventThatTellsNoSuccess) {
    constexpr DWORD promptly = 1500; // ms: a worker that has to be terminated takes longer
    Use(GetParam().nProtocol);
    SetXferPath(receiver, in.In("no such folder").c_str());
    const bool ofSender = GetParam().ofSender;
    CommObject& victim = ofSender ? sender : receiver;
    CommObject& other = ofSender ? receiver : sender;
    int destroyed = -1;
    DWORD took = 0;
    (ofSender ? sent : received).onStatus = [&](int status) {
        if (status != GetParam().status || destroyed >= 0)
            return;
        const Clock clock;
        destroyed = DestroyCommObject(victim);
        took = clock.Gone();
    };
    ASSERT_EQ(Download(receiver, ""), 1);
    ASSERT_EQ(Upload(sender, out.Write("a", Contents(5000)).c_str()), 1);
    ASSERT_TRUE(PumpUntil([&] { return destroyed >= 0; }, limit));
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(IsWindow(victim));
    EXPECT_LT(took, promptly);
    AbortTransfer(other);
    EXPECT_TRUE(PumpUntil([&] { return GetTransferType(other) == XferNone; }, limit));
}

INSTANTIATE_TEST_SUITE_P(Rows, TransferEndedDestroyed, testing::ValuesIn(destroyCases),
                         [](const auto& info) { return std::string(info.param.name); });
