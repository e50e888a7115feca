// Far ends that answer for ever and never come to the point: each exchange has an end of its own.
#include "caseprint.h"
#include "zmodemreceivecase.h"
#include "zmodemsendcase.h"

#include <gtest/gtest.h>

using namespace zmodem;

namespace {

constexpr int mostHeaders = 2000; // that an exchange may take until it ends

// Says the same whenever this side has said something.
void Repeat(WorkerLine& line, std::function<std::string(int round)> answer, int& rounds) {
    line.onWrite = [&line, &rounds, answer](const std::string&) {
        if (++rounds <= mostHeaders)
            line.Say(answer(rounds));
    };
}

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

struct ReceiverCase {
    const char* name;
    std::string first; // gets the receiver to the place
    std::string again;
};

const std::string offer = Offer("a", "100 0 0");

const ReceiverCase receiverCases[] = {
    {"FreeSpaceAskedForEver", "", Hex(ZFREECNT)},
    {"CompletionToldForEver", "", Times(50, Hex(ZCOMPL))},
    {"OptionsToldForEver", "", Hex(ZSINIT) + Data("", 'k')},
    {"OfferForEverBroken", "", Binary(ZFILE) + Data("a", 'h')},
    {"OfferRepeatedInTheData", offer, offer},
    {"StaleEndForEver", offer, End(50)},
    {"SubpacketOfNoKindForEver", offer, Binary(ZDATA) + "x\x18\x18\x18\x18\x18\x18"},
};

class ZModemEndlessSender : public testing::TestWithParam<ReceiverCase> {};

TEST_P(ZModemEndlessSender, IsGivenUp) {
    ReceiveCase test({});
    int rounds = 0;
    Repeat(
        test.transfer.line,
        [&](int round) {
            return round == 1 && !GetParam().first.empty() ? GetParam().first : GetParam().again;
        },
        rounds);
    test.Run();
    EXPECT_LT(rounds, mostHeaders);
}

INSTANTIATE_TEST_SUITE_P(All, ZModemEndlessSender, testing::ValuesIn(receiverCases),
                         [](const auto& info) { return std::string(info.param.name); });

struct EndlessReceiverCase {
    const char* name;
    std::function<std::string(int round)> again;
};

const EndlessReceiverCase senderCases[] = {
    {"TwoPlacesInTurn", [](int round) { return Hex(ZRPOS, round % 2 ? 1024 : 2048); }},
    {"SamePlace", [](int) { return Hex(ZRPOS, 1024); }},
    {"PlaceBeyondTheFile", [](int) { return Hex(ZRPOS, 1000000); }},
    {"OldAcknowledgement", [](int) { return Hex(ZACK, 0); }},
    {"Refusal", [](int) { return Hex(ZNAK); }},
    {"ChecksumRequest", [](int) { return Hex(ZCRC, 100); }},
};

class ZModemEndlessReceiver : public testing::TestWithParam<EndlessReceiverCase> {};

TEST_P(ZModemEndlessReceiver, IsGivenUp) {
    for (const bool fromTheOffer : {false, true}) {
        SenderCase test(20000, {});
        int rounds = 0;
        Repeat(
            test.transfer.line,
            [&](int round) { return round == 1 && !fromTheOffer ? Hex(ZRPOS) : GetParam().again(round); },
            rounds);
        EXPECT_EQ(test.Send(), -1);
        EXPECT_LT(rounds, mostHeaders);
    }
}

INSTANTIATE_TEST_SUITE_P(All, ZModemEndlessReceiver, testing::ValuesIn(senderCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace

TEST(ZModemRefused, OfferMadeAgainIsSkippedAndTheNextFileComes) {
    ReceiveCase test({});
    test.disk.folders.insert("a");
    int offers = 0;
    int next = 0;
    test.transfer.line.onWrite = [&](const std::string& said) {
        const std::vector<std::string> heard = Decoder().Feed(said);
        for (const std::string& piece : heard) {
            if (piece.starts_with("hex ZRINIT") || piece.starts_with("hex ZFERR"))
                test.transfer.line.Say((next ? Hex(ZFIN) : (++offers, offer)));
            else if (piece.starts_with("hex ZSKIP"))
                test.transfer.line.Say((next = 1, Offer("b", "2 0 0")));
            else if (piece.starts_with("hex ZRPOS"))
                test.transfer.line.Say(DataFrame(0, "ok") + End(2));
            else if (piece.starts_with("hex ZFIN"))
                test.transfer.line.Say("OO");
        }
    };
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(offers, 2);
    EXPECT_EQ(test.Contents("b"), "ok");
    EXPECT_EQ(std::ranges::count(test.transfer.journal, "abort"), 1) << "the host hears of it once";
    EXPECT_EQ(test.transfer.transfer.bFileFailed, 1);
}

TEST(ZModemRefused, ResumeWithoutAToldLengthReplacesTheFile) {
    ReceiveCase test({}, true);
    test.disk.files["a"].contents = std::string(1000, 'x');
    test.transfer.line.onWrite = [&](const std::string& said) {
        for (const std::string& piece : Decoder().Feed(said)) {
            if (piece.starts_with("hex ZRINIT"))
                test.transfer.line.Say(test.Contents("a") == "new" ? Hex(ZFIN) : Offer("a", ""));
            else if (piece.starts_with("hex ZRPOS 0"))
                test.transfer.line.Say(DataFrame(0, "new") + End(3));
            else if (piece.starts_with("hex ZFIN"))
                test.transfer.line.Say("OO");
        }
    };
    EXPECT_EQ(test.Run(), 0);
    EXPECT_EQ(test.Contents("a"), "new");
}
