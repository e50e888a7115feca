// Own sender against own receiver over a cable that damages bytes: each transfer ends right or fails cleanly.
#include "caseprint.h"
#include "memorydisk.h"
#include "platform.h"
#include "simulatedcable.h"
#include "transfer/kermit.h"
#include "transfer/modemprotocol.h"
#include "transferdouble.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace {

constexpr DWORD patience = 2 * 60 * 60 * 1000; // ms
constexpr unsigned seeds = 500;
constexpr char pad = 0x1A;
constexpr size_t shortBlock = 128;

struct Protocol {
    const char* name;
    XferProtocol number;
    bool batch;
    bool tellsName;
    bool pads;          // to whole blocks
    bool endsByOneByte; // noise may be taken for the end of the file, or for an acknowledgement of it
    int wrongAtMost;    // of all seeds, where the check is weak
};

void PrintTo(const Protocol& row, std::ostream* out) {
    *out << row.name;
}

// Kermit sends no batches: all files but the first arrive empty.
const Protocol protocols[] = {
    {"XModemChecksum", Protocol_XModemChecksum, false, false, true, true, 10},
    {"XModemCRC", Protocol_XModemCRC, false, false, true, true, 0},
    {"XModem1K", Protocol_XModem1K, false, false, true, true, 0},
    {"YModem", Protocol_YModem, true, true, false, true, 0},
    {"YModemG", Protocol_YModemG, true, true, false, true, 0},
    {"ZModem", Protocol_ZModem, true, true, false, false, 0},
    {"Kermit", Protocol_Kermit, false, true, false, false, 40},
};

struct SourceFile {
    std::string name;
    std::string contents;
};

using Files = std::vector<SourceFile>;

struct Received {
    std::string name;
    std::string contents;
};

struct Outcome {
    int sent = -1;
    int received = -1;
    bool hung = false;
    std::vector<Received> files;    // that the receiver reported as finished
    std::vector<std::string> given; // that the sender reported so
};

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

const SourceFile* SourceOf(const Protocol& protocol, const Files& files, const Received& file) {
    if (!protocol.tellsName)
        return &files.front();
    const auto found = std::ranges::find_if(
        files, [&](const SourceFile& source) { return Lower(file.name) == Lower("in\\" + source.name); });
    return found == files.end() ? nullptr : &*found;
}

// The way through the protocols of one transfer.
class Transfer {
  public:
    Transfer(const Protocol& protocol, const Files& files, const Noise& noise)
        : protocol_(protocol), sender_(XferUpload, protocol.number), receiver_(XferDownload, protocol.number),
          cable_(noise) {
        disk_.folders.insert("in");
        std::snprintf(receiver_.object.Record().szXferPath, XferPathSize, "in");
        for (const SourceFile& file : files) {
            disk_.files[file.name].contents = file.contents;
            sender_.Queue(file.name);
        }
        for (TransferDouble* side : {&sender_, &receiver_}) {
            side->keepBlocks = false;
            side->transfer.bWireTap = 0;
            side->line.patience = patience;
        }
        Watch();
        cable_.Connect(sender_.line, receiver_.line);
    }

    Outcome Run() {
        try {
            cable_.Run([&] { outcome_.sent = Send(); }, [&] { outcome_.received = Receive(); });
        } catch (const WaitedTooLong&) {
            outcome_.hung = true;
        }
        return outcome_;
    }

    std::string Words(const Files& files) const {
        std::string words;
        for (const Received& file : outcome_.files)
            words += Difference(file, files);
        for (const TransferDouble* side : {&sender_, &receiver_}) {
            words += side == &sender_ ? "sender:\n" : "receiver:\n";
            for (const std::string& entry : side->journal)
                words += "  " + entry + "\n";
        }
        return words;
    }

  private:
    std::string Difference(const Received& file, const Files& files) const {
        std::string words = file.name + ": " + std::to_string(file.contents.size()) + " bytes";
        if (const SourceFile* source = SourceOf(protocol_, files, file)) {
            const auto place =
                std::ranges::mismatch(source->contents, file.contents).in1 - source->contents.begin();
            words += " of " + std::to_string(source->contents.size()) + ", equal to " + std::to_string(place);
        }
        return words + "\n";
    }

    void Watch() {
        sender_.onEvent = [this](int status) {
            if (status == TransferStatus_EndOfFile)
                outcome_.given.push_back(sender_.object.Record().szSourceFilename);
        };
        receiver_.onEvent = [this](int status) {
            if (status != TransferStatus_EndOfFile)
                return;
            const std::string name = receiver_.object.Record().szDestFilename;
            outcome_.files.push_back({name, disk_.files[name].contents});
        };
    }

    int Send() {
        return protocol_.number == Protocol_Kermit
                   ? KermitSend(sender_.transfer)
                   : CModemProtocol(sender_.transfer, false).StartModemSend(protocol_.number);
    }

    int Receive() {
        return protocol_.number == Protocol_Kermit
                   ? KermitReceive(receiver_.transfer)
                   : CModemProtocol(receiver_.transfer, false).StartModemReceive(protocol_.number);
    }

    const Protocol& protocol_;
    MemoryDisk disk_;
    TransferDouble sender_;
    TransferDouble receiver_;
    SimulatedCable cable_;
    Outcome outcome_;
};

enum class Verdict { Right, EndedEarly, BlindSpot, Wrong };

// CRC-16 starts at 0, so it doesn't see a NUL that came or went in front of a sub-packet. The receiver is a
// byte ahead or behind then, until an error makes the sender go where the receiver says that it is. From
// there on all is right, and the length too.
bool IsMoved(const std::string& source, const std::string& got, size_t from, size_t to, int events) {
    while (from < source.size() && to < got.size() && source[from] == got[to]) {
        ++from;
        ++to;
    }
    if (to == got.size())
        return from == source.size();
    if (--events < 0)
        return false;
    const bool sentAgain = from != to && IsMoved(source, got, to, to, events);
    if (sentAgain)
        return true;
    const bool lostNul = from < source.size() && source[from] == 0;
    if (lostNul && IsMoved(source, got, from + 1, to, events))
        return true;
    return got[to] == 0 && IsMoved(source, got, from, to + 1, events);
}

bool IsBlindSpot(const std::string& source, const std::string& got) {
    constexpr int events = 12; // two for each
    return source.size() == got.size() && IsMoved(source, got, 0, 0, events);
}

Verdict Judge(const Protocol& protocol, const Files& files, const Received& file) {
    const SourceFile* source = SourceOf(protocol, files, file);
    if (!source)
        return Verdict::Wrong;
    std::string expected = source->contents;
    if (protocol.pads)
        expected.resize((expected.size() + shortBlock - 1) / shortBlock * shortBlock, pad);
    if (file.contents == expected)
        return Verdict::Right;
    if (protocol.number == Protocol_ZModem && IsBlindSpot(expected, file.contents))
        return Verdict::BlindSpot;
    const bool isBeginning = file.contents.size() < expected.size() && expected.starts_with(file.contents);
    const bool atBlock = file.contents.size() % shortBlock == 0;
    return protocol.endsByOneByte && isBeginning && atBlock ? Verdict::EndedEarly : Verdict::Wrong;
}

struct Counts {
    int right = 0;
    int failed = 0;
    int early = 0;
    int wrong = 0;
    int blind = 0;
    int hung = 0;
    int believed = 0; // the sender reported a file as finished that the receiver did not
};

bool HasFinished(const Protocol& protocol, const Files& files, const Outcome& outcome,
                 const std::string& name) {
    return std::ranges::any_of(outcome.files, [&](const Received& file) {
        const SourceFile* source = SourceOf(protocol, files, file);
        return source && source->name == name;
    });
}

void Count(const Protocol& protocol, const Files& files, const Outcome& outcome, Counts& counts) {
    bool wrong = false;
    bool early = false;
    bool blind = false;
    for (const Received& file : outcome.files) {
        const Verdict verdict = Judge(protocol, files, file);
        wrong |= verdict == Verdict::Wrong;
        early |= verdict == Verdict::EndedEarly;
        blind |= verdict == Verdict::BlindSpot;
    }
    const bool whole = outcome.sent == 0 && outcome.received == 0 && outcome.files.size() == files.size();
    ++(outcome.hung ? counts.hung
       : wrong      ? counts.wrong
       : blind      ? counts.blind
       : early      ? counts.early
       : whole      ? counts.right
                    : counts.failed);
    for (const std::string& name : outcome.given)
        counts.believed += !HasFinished(protocol, files, outcome, name);
}

std::string RandomBytes(std::mt19937& random, size_t count) {
    std::string bytes(count, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
    return bytes;
}

Files RandomFiles(const Protocol& protocol, std::mt19937& random) {
    const size_t most = random() % 25 == 0 ? 20000 : 1500;
    Files files(protocol.batch ? 1 + random() % 3 : 1);
    for (size_t i = 0; i < files.size(); ++i)
        files[i] = {"file" + std::to_string(i) + ".bin", RandomBytes(random, 1 + random() % most)};
    return files;
}

Noise RandomNoise(unsigned seed, std::mt19937& random) {
    constexpr double levels[] = {0, 1e-5, 1e-4, 1e-3, 1e-2};
    const auto level = [&] { return levels[random() % std::size(levels)]; };
    Noise noise;
    noise.seed = seed;
    noise.corrupt = level();
    noise.drop = level();
    noise.twice = level();
    return noise;
}

// Noise

class NoisyTransfer : public testing::TestWithParam<Protocol> {};

TEST_P(NoisyTransfer, EndsRightOrFailsCleanly) {
    const Protocol& protocol = GetParam();
    Counts counts;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        std::mt19937 random(seed);
        const Files files = RandomFiles(protocol, random);
        Transfer transfer(protocol, files, RandomNoise(seed, random));
        const Counts before = counts;
        Count(protocol, files, transfer.Run(), counts);
        const bool toldWrong = protocol.wrongAtMost == 0 && counts.wrong != before.wrong;
        if (toldWrong || counts.hung != before.hung)
            ADD_FAILURE() << "seed " << seed << (toldWrong ? " wrong\n" : " hangs\n")
                          << transfer.Words(files);
    }
    std::printf(
        "%s: %u seeds, %d right, %d failed cleanly, %d wrong, %d ended early by noise, %d in the blind "
        "spot of CRC-16, %d hung, %d files taken for sent\n",
        protocol.name, seeds, counts.right, counts.failed, counts.wrong, counts.early, counts.blind,
        counts.hung, counts.believed);
    EXPECT_LE(counts.blind, static_cast<int>(seeds) / 100);
    EXPECT_TRUE(protocol.number != Protocol_ZModem || counts.believed == 0);
    EXPECT_LE(counts.wrong, protocol.wrongAtMost);
    EXPECT_EQ(counts.hung, 0);
    EXPECT_GT(counts.right, static_cast<int>(seeds) / 10);
}

RUN_TABLE(NoisyTransfer, protocols);

// No noise

class CleanTransfer : public testing::TestWithParam<Protocol> {
  protected:
    void ExpectRight(const Files& files) {
        Transfer transfer(GetParam(), files, Noise{});
        const Outcome outcome = transfer.Run();
        EXPECT_EQ(outcome.sent, 0);
        EXPECT_EQ(outcome.received, 0);
        EXPECT_EQ(outcome.given.size(), files.size());
        ASSERT_EQ(outcome.files.size(), files.size()) << transfer.Words(files);
        for (const Received& file : outcome.files)
            EXPECT_EQ(Judge(GetParam(), files, file), Verdict::Right) << file.name << "\n"
                                                                      << transfer.Words(files);
    }

    std::mt19937 random_{1};
};

TEST_P(CleanTransfer, OfEverySizeIsRight) {
    for (const size_t size : {0, 1, 127, 128, 129, 896, 897, 1023, 1024, 1025, 5000}) {
        SCOPED_TRACE(size);
        ExpectRight({{"file.bin", RandomBytes(random_, size)}});
    }
}

TEST_P(CleanTransfer, OfABatchIsRight) {
    if (GetParam().batch)
        ExpectRight({{"one.bin", RandomBytes(random_, 3000)},
                     {"two.bin", RandomBytes(random_, 1)},
                     {"three.bin", RandomBytes(random_, 1024)}});
    else
        ExpectRight({{"one.bin", RandomBytes(random_, 3000)}});
}

TEST_P(CleanTransfer, OfControlCharactersIsRight) {
    std::string bytes;
    for (int round = 0; round < 12; ++round)
        for (int c = 0; c < 256; ++c)
            bytes += std::string(1 + static_cast<size_t>(round) % 3, static_cast<char>(c));
    ExpectRight({{"file.bin", bytes}});
}

RUN_TABLE(CleanTransfer, protocols);

} // namespace
