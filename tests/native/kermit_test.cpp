// Both ends of a Kermit transfer on one cable.
#include "caseprint.h"
#include "kermitfarend.h"
#include "simulatedcable.h"
#include "transfer/kermit.h"

#include <numeric>

namespace {

struct CableCase {
    const char* name;
    std::string contents;
    Noise noise;
};

std::string EveryByte(int times) {
    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    std::string bytes;
    for (int i = 0; i < times; ++i)
        bytes += all;
    return bytes;
}

struct KermitCable {
    explicit KermitCable(const CableCase& row) : cable(row.noise) {
        disk.files["from"].contents = row.contents;
        sender.Queue("from");
        receiver.Queue("to");
        cable.Connect(sender.line, receiver.line);
    }

    void Run() {
        cable.Run([&] { sent = KermitSend(sender.transfer); },
                  [&] { received = KermitReceive(receiver.transfer); });
    }

    MemoryDisk disk;
    TransferDouble sender{XferUpload, Protocol_Kermit};
    TransferDouble receiver{XferDownload, Protocol_Kermit};
    SimulatedCable cable;
    int sent = -1;
    int received = -1;
};

class KermitOnACable : public testing::TestWithParam<CableCase> {};

TEST_P(KermitOnACable, FileArrivesWhole) {
    KermitCable both(GetParam());
    both.Run();
    EXPECT_EQ(both.sent, 0);
    EXPECT_EQ(both.received, 0);
    EXPECT_EQ(both.disk.files["to"].contents, GetParam().contents);
}

const CableCase cableCases[] = {
    {"Empty", "", {}},
    {"OneByte", "x", {}},
    {"JustOnePacket", std::string(86, 'x'), {}},
    {"EveryByte", EveryByte(10), {}},
    {"TwiceNowAndThen", EveryByte(10), {3, 0, 0, 0.0005}},
};

RUN_TABLE(KermitOnACable, cableCases);

// The check is six bits only, so that noise may pass it; a transfer ends all the same, well or badly, and one
// with lost bytes is whole when both sides say so.
TEST(KermitNoise, EndsAndIsWholeWhenBytesAreLost) {
    int whole = 0;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        KermitCable both({"", EveryByte(4), {seed, 0, 0.002, 0}});
        both.Run();
        if (both.sent || both.received)
            continue;
        ++whole;
        EXPECT_EQ(both.disk.files["to"].contents, EveryByte(4)) << "seed " << seed;
    }
    EXPECT_GT(whole, 5);
}

} // namespace
