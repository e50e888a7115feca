// The byte ring: whole blocks in, pieces out.
#include "caseprint.h"
#include "core/ring.h"
#include "platform.h"

#include <array>
#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>

namespace {

struct StopEvent {
    EventHandle handle = ManualResetEvent();
    operator HANDLE() const { return handle.get(); }
};

bool Put(CRingBuffer& ring, const std::string& bytes) {
    return ring.Write(bytes.data(), static_cast<int>(bytes.size()));
}

std::string Get(CRingBuffer& ring, int most) {
    std::string bytes(static_cast<size_t>(most), '\0');
    bytes.resize(static_cast<size_t>(ring.Take(bytes.data(), most)));
    return bytes;
}

bool IsSignalled(HANDLE event) {
    return WaitForMultipleObjects(1, &event, FALSE, 0) == WAIT_OBJECT_0;
}

// Runs until the ring's user on the other thread has finished.
template <class Condition>
bool Eventually(Condition condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition())
        if (std::chrono::steady_clock::now() > limit)
            return false;
        else
            std::this_thread::yield();
    return true;
}

class Ring : public testing::Test {
  protected:
    StopEvent stop;
    CRingBuffer ring{8, stop};
};

// One step: bytes to write, or (empty) how many to take and what then comes.
struct Step {
    std::string write;
    bool accepted = true;
    int take = 0;
    std::string taken = {};
    int countAfter = 0;
};

struct RingCase {
    const char* name;
    std::vector<Step> steps;
};

Step Writes(const char* bytes, bool accepted, int countAfter) {
    return {bytes, accepted, 0, "", countAfter};
}

Step Takes(int most, const char* bytes, int countAfter) {
    return {"", true, most, bytes, countAfter};
}

class RingSteps : public testing::TestWithParam<RingCase> {};

TEST_P(RingSteps, FollowTheTable) {
    StopEvent stop;
    CRingBuffer ring(8, stop);
    for (const Step& step : GetParam().steps) {
        if (!step.write.empty())
            EXPECT_EQ(Put(ring, step.write), step.accepted) << step.write;
        else
            EXPECT_EQ(Get(ring, step.take), step.taken);
        EXPECT_EQ(ring.Count(), step.countAfter);
        EXPECT_EQ(ring.Free(), 8 - step.countAfter);
    }
}

const RingCase ringCases[] = {
    {"EmptyGivesNothing", {Takes(4, "", 0)}},
    {"FirstInFirstOut", {Writes("ab", true, 2), Writes("cd", true, 4), Takes(8, "abcd", 0)}},
    {"ExactlyFull", {Writes("abcdefgh", true, 8), Takes(8, "abcdefgh", 0)}},
    {"OneMoreThanTheRing", {Writes("abcdefghi", false, 0), Takes(8, "", 0)}},
    {"OneMoreThanTheRoom", {Writes("abcde", true, 5), Writes("fghi", false, 5), Takes(8, "abcde", 0)}},
    {"FullRefusesOneByte", {Writes("abcdefgh", true, 8), Writes("i", false, 8)}},
    {"TakesInPieces", {Writes("abcdef", true, 6), Takes(4, "abcd", 2), Takes(4, "ef", 0)}},
    {"TakeStopsAtTheEndOfTheStore",
     {Writes("abcdef", true, 6), Takes(5, "abcde", 1), Writes("ghijk", true, 6), Takes(8, "fgh", 3),
      Takes(8, "ijk", 0)}},
    {"WriteInTwoPieces",
     {Writes("abcdefgh", true, 8), Takes(6, "abcdef", 2), Writes("ijklmn", true, 8), Takes(8, "gh", 6),
      Takes(8, "ijklmn", 0)}},
    {"WriteEndsAtTheEndOfTheStore",
     {Writes("abcd", true, 4), Takes(4, "abcd", 0), Writes("efgh", true, 4), Writes("ij", true, 6),
      Takes(8, "efgh", 2), Takes(8, "ij", 0)}},
    {"TakeNothing", {Writes("ab", true, 2), Takes(0, "", 2)}},
};

RUN_TABLE(RingSteps, ringCases);

TEST_F(Ring, NegativeAndEmptyBlocks) {
    EXPECT_TRUE(ring.Write("", 0));
    EXPECT_FALSE(ring.Write("x", -1));
    EXPECT_FALSE(ring.WriteWaiting("x", -1));
    char byte;
    EXPECT_EQ(ring.Take(&byte, -1), 0);
    EXPECT_EQ(ring.Count(), 0);
}

TEST_F(Ring, DataEventIsSetByAWriteAndAgainWhileBytesRemain) {
    EXPECT_FALSE(IsSignalled(ring.DataEvent()));
    Put(ring, "abc");
    EXPECT_TRUE(IsSignalled(ring.DataEvent()));
    EXPECT_FALSE(IsSignalled(ring.DataEvent())) << "one signal a write";
    Get(ring, 2);
    EXPECT_TRUE(IsSignalled(ring.DataEvent()));
    Get(ring, 2);
    EXPECT_FALSE(IsSignalled(ring.DataEvent()));
}

TEST_F(Ring, DataEventStaysSilentForARefusedOrEmptyBlock) {
    Put(ring, "abcdefghi");
    ring.Write("", 0);
    EXPECT_FALSE(IsSignalled(ring.DataEvent()));
}

TEST_F(Ring, TakerThatGoesOnSignalsWhatItLeaves) {
    Put(ring, "abc");
    EXPECT_TRUE(IsSignalled(ring.DataEvent()));
    char bytes[2];
    EXPECT_EQ(ring.TakeOn(bytes, 2), 2);
    EXPECT_EQ(std::string(bytes, 2), "ab");
    EXPECT_FALSE(IsSignalled(ring.DataEvent()));
    ring.SignalHeld();
    EXPECT_TRUE(IsSignalled(ring.DataEvent()));
    EXPECT_EQ(ring.TakeOn(bytes, 2), 1);
    ring.SignalHeld();
    EXPECT_FALSE(IsSignalled(ring.DataEvent())) << "nothing is left";
    EXPECT_EQ(ring.TakeOn(bytes, 2), 0);
    Put(ring, "d");
    EXPECT_TRUE(IsSignalled(ring.DataEvent())) << "the first block in an empty ring";
}

TEST_F(Ring, PurgeEmpties) {
    Put(ring, "abcde");
    Get(ring, 2);
    ring.Purge();
    EXPECT_EQ(ring.Count(), 0);
    EXPECT_EQ(ring.Free(), 8);
    EXPECT_TRUE(Put(ring, "12345678"));
    EXPECT_EQ(Get(ring, 8), "12345678");
}

struct SizeCase {
    const char* name;
    int size;
    int room;
};

class RingSize : public testing::TestWithParam<SizeCase> {};

TEST_P(RingSize, ResizeEmptiesAndGivesTheRoom) {
    StopEvent stop;
    CRingBuffer ring(8, stop);
    Put(ring, "abc");
    ring.Resize(GetParam().size);
    EXPECT_EQ(ring.Count(), 0);
    EXPECT_EQ(ring.Free(), GetParam().room);
    EXPECT_FALSE(Put(ring, std::string(static_cast<size_t>(GetParam().room) + 1, 'x')));
    const std::string full(static_cast<size_t>(GetParam().room), 'x');
    EXPECT_TRUE(Put(ring, full));
    EXPECT_EQ(Get(ring, GetParam().room + 1), full);
}

const SizeCase sizeCases[] = {
    {"Larger", 20, 20}, {"Smaller", 2, 2}, {"OneByte", 1, 1}, {"Nothing", 0, 0}, {"NegativeIsNothing", -5, 0},
};

RUN_TABLE(RingSize, sizeCases);

TEST_F(Ring, WithoutMemoryEveryWriteIsRefused) {
    {
        const platform::MemoryLimit none(0);
        ring.Resize(100);
    }
    EXPECT_EQ(ring.Free(), 0);
    EXPECT_FALSE(Put(ring, "a"));
    EXPECT_FALSE(ring.WriteWaiting("a", 1)) << "there never will be room";
    EXPECT_EQ(Get(ring, 1), "");
    ring.Resize(4);
    EXPECT_TRUE(Put(ring, "abcd")) << "works again";
}

TEST(RingMemory, WithoutMemoryAtItsMakingTheRingHasNoRoom) {
    StopEvent stop;
    const platform::MemoryLimit none(0);
    CRingBuffer ring(16, stop);
    EXPECT_EQ(ring.Free(), 0);
    EXPECT_FALSE(Put(ring, "a"));
}

TEST(RingMemory, ClosesItsEventsAndNotTheBorrowedOne) {
    StopEvent stop;
    const int before = platform::OpenHandles();
    { CRingBuffer ring(16, stop); }
    EXPECT_EQ(platform::OpenHandles(), before);
    EXPECT_TRUE(SetEvent(stop));
}

TEST_F(Ring, WaitingWriteThatFitsDoesNotWait) {
    SetEvent(stop);
    EXPECT_TRUE(ring.WriteWaiting("abc", 3)) << "the stop event counts only for a wait";
    EXPECT_EQ(Get(ring, 8), "abc");
}

TEST_F(Ring, WaitingWriteOfMoreThanTheRingIsRefusedAtOnce) {
    EXPECT_FALSE(ring.WriteWaiting("abcdefghi", 9));
}

TEST_F(Ring, WaitingWriteIsWokenByRoom) {
    Put(ring, "abcdefg");
    std::atomic<bool> written = false;
    std::thread writer([&] { written = ring.WriteWaiting("1234", 4); });
    std::string taken;
    EXPECT_TRUE(Eventually([&] {
        taken += Get(ring, 1);
        return taken.size() == 11;
    }));
    writer.join();
    EXPECT_TRUE(written);
    EXPECT_EQ(taken, "abcdefg1234");
}

struct WakeCase {
    const char* name;
    void (*wake)(CRingBuffer& ring, HANDLE stop);
    bool written;
};

class RingWait : public testing::TestWithParam<WakeCase> {};

TEST_P(RingWait, EndsByTheTable) {
    StopEvent stop;
    CRingBuffer ring(8, stop);
    Put(ring, "abcdefgh");
    std::atomic<int> result = -1;
    std::thread writer([&] { result = ring.WriteWaiting("1234", 4); });
    GetParam().wake(ring, stop);
    writer.join();
    EXPECT_EQ(result == 1, GetParam().written);
    EXPECT_EQ(ring.Count(), GetParam().written ? 4 : ring.Count());
}

const WakeCase wakeCases[] = {
    {"Stop", [](CRingBuffer&, HANDLE stop) { SetEvent(stop); }, false},
    {"Purge", [](CRingBuffer& ring, HANDLE) { ring.Purge(); }, true},
    {"ResizeToMore", [](CRingBuffer& ring, HANDLE) { ring.Resize(100); }, true},
    {"ResizeToTooLittle", [](CRingBuffer& ring, HANDLE) { ring.Resize(3); }, false},
};

RUN_TABLE(RingWait, wakeCases);

TEST(RingEvents, WithoutEventsAWaitingWriteGivesUp) {
    StopEvent stop;
    const platform::NoEvents none;
    CRingBuffer ring(2, stop);
    EXPECT_TRUE(Put(ring, "ab"));
    EXPECT_FALSE(ring.WriteWaiting("c", 1));
}

// Both ends at full speed: nothing is lost, doubled or out of order.
TEST(RingThreads, BytesArriveInOrder) {
    StopEvent stop;
    CRingBuffer ring(777, stop);
    constexpr int total = 1 << 20;
    std::thread writer([&] {
        std::mt19937 random(1);
        std::array<char, 777> block;
        for (int sent = 0; sent < total;) {
            const int size = std::min<int>(static_cast<int>(random() % block.size()) + 1, total - sent);
            for (int i = 0; i < size; ++i)
                block[static_cast<size_t>(i)] = static_cast<char>((sent + i) % 251);
            if (!ring.WriteWaiting(block.data(), size))
                return;
            sent += size;
        }
    });
    int received = 0;
    bool inOrder = true;
    std::array<char, 300> piece;
    const HANDLE data = ring.DataEvent();
    while (received < total && WaitForMultipleObjects(1, &data, FALSE, 10000) == WAIT_OBJECT_0) {
        const int count = ring.Take(piece.data(), static_cast<int>(piece.size()));
        for (int i = 0; i < count; ++i)
            inOrder &= piece[static_cast<size_t>(i)] == static_cast<char>((received + i) % 251);
        received += count;
    }
    SetEvent(stop);
    writer.join();
    EXPECT_EQ(received, total);
    EXPECT_TRUE(inOrder);
}

// Any order of operations does what a plain text does.
TEST(RingModel, RandomOperations) {
    std::mt19937 random(7);
    StopEvent stop;
    for (int size = 0; size < 20; ++size) {
        CRingBuffer ring(size, stop);
        std::string model;
        for (int i = 0; i < 5000; ++i) {
            const size_t length = random() % 24;
            if (random() % 2) {
                const std::string block(length, static_cast<char>('a' + i % 26));
                const bool fits = model.size() + length <= static_cast<size_t>(size);
                ASSERT_EQ(Put(ring, block), fits);
                model += fits ? block : "";
            } else {
                const std::string taken = Get(ring, static_cast<int>(length));
                ASSERT_EQ(taken, model.substr(0, taken.size()));
                ASSERT_EQ(taken.empty(), model.empty() || !length);
                model.erase(0, taken.size());
            }
            ASSERT_EQ(ring.Count(), static_cast<int>(model.size()));
        }
    }
}

} // namespace
