// The local echo of what goes out: what comes first, and what ends it.
#include "support/device/devicetest.h"

#include "core/rooms.h"
#include "core/writer.h"

namespace {

using host::Answer;
using testing::ElementsAre;

class LocalEcho : public host::DeviceTest {
  protected:
    LocalEcho() {
        current = this;
        upperRooms.terminalWrite = [](HWND, const void* bytes, int count) {
            const std::string text(static_cast<const char*>(bytes), static_cast<size_t>(count));
            current->shown.push_back(text + " with " + std::to_string(current->Queued()) + " queued");
            if (current->inTerminal)
                current->inTerminal();
        };
    }
    ~LocalEcho() override { upperRooms.terminalWrite = nullptr; }

    void SetUp() override {
        device.OnWrite(Answer::Pending);
        OpenWithTimer();
        // A first write that stays pending keeps the writer busy, so that all that follows stays in the ring.
        ASSERT_EQ(Output(object, "x", 1), 1);
        ASSERT_TRUE(host::PumpUntil([this] { return device.PendingCount(host::PendingKind::Write) == 1; }));
        SetEcho(object, 1);
    }
    int Queued() { return Record().lpOverlappedWrite->Held(); }

    static LocalEcho* current;
    std::vector<std::string> shown;
    std::function<void()> inTerminal;
};

LocalEcho* LocalEcho::current;

TEST_F(LocalEcho, OutputShowsBeforeItQueues) {
    EXPECT_EQ(Output(object, "abc", 3), 1);
    EXPECT_THAT(shown, ElementsAre("abc with 0 queued"));
    EXPECT_EQ(Queued(), 3);
}

TEST_F(LocalEcho, OutputShowsABlockThatDoesNotFit) {
    const std::string block(WriterRingSize + 1, 'x');
    EXPECT_EQ(Output(object, block.data(), WriterRingSize + 1), 0);
    EXPECT_EQ(shown.size(), 1u);
    EXPECT_EQ(Queued(), 0);
}

TEST_F(LocalEcho, ModemCommandsAreQueuedBeforeTheyShow) {
    EXPECT_EQ(OutputModem(object, "AT"), 1);
    EXPECT_THAT(shown, ElementsAre("A with 1 queued", "T with 2 queued"));
}

TEST_F(LocalEcho, ObjectMayEndInTheTerminal) {
    struct Row {
        const char* name;
        int (*send)(HWND);
    };
    for (const Row& row : {Row{"Output", [](HWND h) { return Output(h, "ab", 2); }},
                           Row{"OutputModem", [](HWND h) { return OutputModem(h, "AT"); }}}) {
        host::CommObject other;
        SetInterval(other, host::neverTicks);
        ASSERT_EQ(other.Open(host::ScriptedDevice::Name), "");
        SetEcho(other, 1);
        shown.clear();
        inTerminal = [&] { DestroyWindow(other); };
        EXPECT_EQ(row.send(other), 0) << row.name;
        EXPECT_EQ(RecordOf(other), nullptr) << row.name;
        EXPECT_EQ(shown.size(), 1u) << row.name;
    }
}

} // namespace
