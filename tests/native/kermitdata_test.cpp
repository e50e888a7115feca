// A file's bytes into Kermit's packets and out of them.
#include "caseprint.h"
#include "kermitfarend.h"
#include "transfer/kermitdata.h"

#include <numeric>
#include <stdexcept>

namespace {

struct KermitDataBench {
    KermitTest test{XferUpload};
    KermitState state{test.transfer.transfer};

    KermitDataBench() {
        state.spsiz = 94;
        test.transfer.keepBlocks = true;
    }

    void Read(const std::string& contents) {
        test.disk.files["in"].contents = contents;
        state.hFile = FopenRead("in");
    }

    std::string Fill() {
        const int length = FillBuffer(state);
        return length < 0 ? std::to_string(length)
                          : std::string(state.packet.data(), static_cast<size_t>(length));
    }

    bool Empty(const std::string& data) {
        state.packet.fill('?');
        std::copy(data.begin(), data.end(), state.packet.begin());
        state.packet[data.size()] = 0;
        if (!state.hFile)
            state.hFile = FCreate("out");
        return EmptyBuffer(state, static_cast<int>(data.size()));
    }

    std::string Written() { return test.disk.files["out"].contents; }
};

struct CodeCase {
    const char* name;
    std::string plain;
    std::string coded;
};

class KermitCoding : public testing::TestWithParam<CodeCase> {};

TEST_P(KermitCoding, QuotesWhatItMust) {
    KermitDataBench bench;
    bench.Read(GetParam().plain);
    EXPECT_EQ(bench.Fill(), GetParam().coded);
}

TEST_P(KermitCoding, ComesBackRight) {
    KermitDataBench bench;
    EXPECT_TRUE(bench.Empty(GetParam().coded));
    EXPECT_EQ(bench.Written(), GetParam().plain);
}

const CodeCase codeCases[] = {
    {"Text", "plain text ~", "plain text ~"},
    {"Nul", std::string(1, '\0'), "#@"},
    {"LineEnd", "\r\n", "#M#J"},
    {"LastControl", "\x1F", "#_"},
    {"Blank", " ", " "},
    {"Delete", "\x7F", "#?"},
    {"Quote", "#", "##"},
    {"ControlWithItsHighBit", "\x85", "#\xC5"},
    {"DeleteWithItsHighBit", "\xFF", "#\xBF"},
    {"QuoteWithItsHighBit", "\xA3", "#\xA3"},
    {"HighBit", "\xC1", "\xC1"},
};

RUN_TABLE(KermitCoding, codeCases);

TEST(KermitData, EveryByteComesBack) {
    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    KermitDataBench from;
    from.Read(all + all);
    std::vector<std::string> packets;
    for (std::string data = from.Fill(); data != "-1"; data = from.Fill())
        packets.push_back(data);
    KermitDataBench into;
    for (const std::string& data : packets)
        into.Empty(data);
    EXPECT_EQ(into.Written(), all + all);
}

TEST(KermitData, AnotherQuoteIsUsedInSendingOnly) {
    KermitDataBench bench;
    bench.state.ctlq = '&';
    bench.Read("a\x01&#");
    EXPECT_EQ(bench.Fill(), "a&A&&#");
    bench.state.hFile.reset();
    bench.Empty("&A#M");
    EXPECT_EQ(bench.Written(), "&A\r") << "the quote is # here, whatever was agreed upon";
}

TEST(KermitData, SevenBitsGoOutWithoutTheImageMode) {
    KermitDataBench bench;
    bench.state.bImage = 0;
    bench.Read("\xC1\x85");
    EXPECT_EQ(bench.Fill(), "A#E");
}

struct SizeCase {
    const char* name;
    int spsiz;
    std::string contents;
    std::vector<size_t> lengths;
};

class KermitFillSize : public testing::TestWithParam<SizeCase> {};

TEST_P(KermitFillSize, FollowsTheOtherSidesSize) {
    KermitDataBench bench;
    bench.state.spsiz = GetParam().spsiz;
    bench.Read(GetParam().contents);
    std::vector<size_t> lengths;
    for (int length = FillBuffer(bench.state); length != -1; length = FillBuffer(bench.state))
        lengths.push_back(static_cast<size_t>(length));
    EXPECT_EQ(lengths, GetParam().lengths);
}

const SizeCase sizeCases[] = {
    {"Largest", 94, std::string(100, 'x'), {86, 14}},
    {"LargestWithAQuotedByteLast", 94, std::string(85, 'x') + "\r!", {87, 1}},
    {"AllQuoted", 94, std::string(44, '\r'), {86, 2}},
    {"JustFull", 94, std::string(86, 'x'), {86}},
    {"Small", 20, std::string(13, 'x'), {12, 1}},
    {"SmallerThanTheMargin", 3, "ab\r", {1, 1, 2}},
    {"Zero", 0, "ab", {1, 1}},
    {"EmptyFile", 94, "", {}},
};

RUN_TABLE(KermitFillSize, sizeCases);

TEST(KermitData, CountGrowsByThePacketSize) {
    KermitDataBench bench;
    bench.Read(std::string(100, 'x'));
    bench.Fill();
    EXPECT_EQ(bench.test.transfer.transfer.lBytesDone, 94);
    bench.Fill();
    EXPECT_EQ(bench.test.transfer.transfer.lBytesDone, 94) << "a short buffer adds nothing";
    EXPECT_EQ(bench.test.transfer.journal, std::vector<std::string>{"block 94"});
}

TEST(KermitData, ReceivedCountGrowsByTheCodedLength) {
    KermitDataBench bench;
    CountReceived(bench.state, 4);
    CountReceived(bench.state, 2);
    EXPECT_EQ(bench.test.transfer.journal, (std::vector<std::string>{"block 4", "block 6"}));
}

TEST(KermitData, ClosedFileIsAtItsEnd) {
    KermitDataBench bench;
    EXPECT_EQ(bench.Fill(), "-1");
}

TEST(KermitData, QuoteAtTheEndTakesTheClosingNul) {
    KermitDataBench bench;
    EXPECT_TRUE(bench.Empty("ab#"));
    EXPECT_EQ(bench.Written(), "ab@");
    EXPECT_TRUE(bench.Empty(std::string(93, '#')));
    EXPECT_EQ(bench.Written(), "ab@" + std::string(46, '#') + "@");
}

TEST(KermitData, PartlyWrittenIsAFailure) {
    KermitDataBench bench;
    bench.test.disk.halfWrites = true;
    EXPECT_FALSE(bench.Empty("abcd"));
}

TEST(KermitData, CountWraps) {
    KermitDataBench bench;
    bench.test.transfer.transfer.lBytesDone = MAXLONG;
    CountReceived(bench.state, 1);
    EXPECT_EQ(bench.test.transfer.transfer.lBytesDone, MINLONG);
}

TEST(KermitData, ExceptionIsNoEndOfTheFile) {
    KermitDataBench bench;
    bench.test.transfer.onEvent = [](int) { throw std::runtime_error("in the event"); };
    bench.Read(std::string(100, 'x'));
    EXPECT_EQ(FillBuffer(bench.state), kermit::fillFailed);
}

} // namespace
