// The direct write, beside the ring.
#include "support/device/devicetest.h"

#include "core/portdirect.h"
#include "core/writer.h"
#include "diagnostics/runtimeerror.h"

#include <thread>

namespace {

using host::Answer;
using host::PendingKind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD watched = 200; // ms

// What the write's event tells to every program of the session.
void SignalAnothersWrite() {
    const EventHandle event(OpenEventA(EVENT_MODIFY_STATE, FALSE, "OverlappedWrite"));
    ASSERT_TRUE(event);
    SetEvent(event.get());
}

class DirectOutput : public host::DeviceTest {
  protected:
    void SetUp() override { OpenWithTimer(); }

    // The first write ends after a while; until then no second one may begin.
    void ExpectSecondWriteToWait() {
        std::thread line([this] {
            Sleep(watched);
            EXPECT_EQ(device.WriteAttempts().size(), 1u) << "the second waits for the first";
            device.CompleteWrite();
        });
        EXPECT_EQ(ComOutput(object, "second", 6), 6u);
        line.join();
        EXPECT_EQ(device.Written(), "firstsecond");
    }

    // The code of the RuntimeError that a direct write raises, 0 for none.
    DWORD ErrorOfWrite() {
        try {
            DirectWrite(Record(), "bytes", 5);
        } catch (const RuntimeError& error) {
            EXPECT_STREQ(error.what(), "CComm runtime error");
            return error.Code();
        }
        return 0;
    }
};

TEST_F(DirectOutput, ReturnsWhatTheCallItselfReported) {
    EXPECT_EQ(ComOutput(object, "straight", 8), 8u);
    EXPECT_EQ(device.Written(), "straight");
    device.TakeOnly(3);
    EXPECT_EQ(ComOutput(object, "partial", 7), 3u);
    EXPECT_EQ(Record().lpOverlappedWrite->Held(), 0) << "the ring has no part in it";
}

TEST_F(DirectOutput, TakesTheFreshCountAfterwards) {
    device.Forget();
    ComOutput(object, "x", 1);
    EXPECT_THAT(device.Calls(), ElementsAre("WriteFile 1", "ClearCommError"));
}

TEST_F(DirectOutput, PendingWriteGivesZeroAndTheNextCallWaitsForIt) {
    device.OnWrite(Answer::Pending);
    char bytes[] = "first";
    EXPECT_EQ(ComOutput(object, bytes, 5), 0u);
    memset(bytes, '#', 5); // the caller's buffer is his again
    device.OnWrite(Answer::AtOnce);
    ExpectSecondWriteToWait();
}

TEST_F(DirectOutput, SignalOfAnotherProgramsWriteEndsNoWait) {
    device.OnWrite(Answer::Pending);
    EXPECT_EQ(ComOutput(object, "first", 5), 0u);
    device.OnWrite(Answer::AtOnce);
    SignalAnothersWrite();
    ExpectSecondWriteToWait();
}

TEST_F(DirectOutput, SignalOfAnotherProgramsWriteFreesNoneThatTheDeviceKeeps) {
    device.OnWrite(Answer::Pending);
    EXPECT_EQ(ComOutput(object, "stuck", 5), 0u);
    device.LetGo(false);
    SignalAnothersWrite();
    object.Close();
    EXPECT_TRUE(DirectWriteIsStuck(Record())) << "its memory is the device's";
    device.LetGo(true);
    EXPECT_TRUE(device.CompleteWrite());
    EXPECT_FALSE(DirectWriteIsStuck(Record()));
}

TEST_F(DirectOutput, LastEventStaysOpenUntilTheNextCall) {
    EXPECT_EQ(Record().osWrite.hEvent, nullptr);
    ComOutput(object, "x", 1);
    const HANDLE first = Record().osWrite.hEvent;
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(first, &flags));
    ComOutput(object, "x", 1);
    EXPECT_TRUE(GetHandleInformation(Record().osWrite.hEvent, &flags));
    object.Close();
    EXPECT_EQ(Record().osWrite.hEvent, nullptr);
}

TEST_F(DirectOutput, EventThatIsGoneAlreadyIsNoFailure) {
    ComOutput(object, "x", 1);
    CloseHandle(Record().osWrite.hEvent);
    EXPECT_EQ(ComOutput(object, "y", 1), 1u);
}

TEST_F(DirectOutput, MissingEventIsRaisedInsideAndZeroOutside) {
    host::ScriptedDevice::FailNamedEvents(true);
    EXPECT_EQ(ErrorOfWrite(), static_cast<DWORD>(ERROR_NO_SYSTEM_RESOURCES));
    EXPECT_EQ(ComOutput(object, "x", 1), 0u);
    EXPECT_THAT(device.WriteAttempts(), IsEmpty());
    host::ScriptedDevice::FailNamedEvents(false);
    EXPECT_EQ(ComOutput(object, "x", 1), 1u);
}

TEST_F(DirectOutput, FailingWriteIsRaisedAfterAStatusRead) {
    device.FailWrites(2, ERROR_CRC);
    device.RaiseErrors(CE_FRAME);
    device.Forget();
    EXPECT_EQ(ErrorOfWrite(), static_cast<DWORD>(ERROR_CRC));
    EXPECT_THAT(device.Calls(), ElementsAre("WriteFile 5", "ClearCommError"));
    EXPECT_THAT(object.Events(), ElementsAre(TARN_ERROR_FRAME));
    EXPECT_NE(Record().osWrite.hEvent, nullptr) << "with its new event";
    EXPECT_EQ(ComOutput(object, "x", 1), 0u);
    EXPECT_EQ(ComOutput(object, "x", 1), 1u) << "and on it goes";
}

TEST_F(DirectOutput, NothingToDoIsNothingDone) {
    device.Forget();
    EXPECT_EQ(ComOutput(object, "x", 0), 0u);
    EXPECT_EQ(ComOutput(object, nullptr, 1), 0u);
    const HANDLE handle = Record().hComm;
    for (const HANDLE none : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        Record().hComm = none;
        EXPECT_EQ(ComOutput(object, "x", 1), 0u);
    }
    Record().hComm = handle;
    Record().bPortOpen = 0;
    EXPECT_EQ(ComOutput(object, "x", 1), 0u);
    Record().bPortOpen = 1;
    EXPECT_THAT(device.Calls(), IsEmpty());
    object.Close();
    EXPECT_EQ(ComOutput(object, "x", 1), 0u);
}

TEST_F(DirectOutput, CloseEndsAPendingWrite) {
    device.OnWrite(Answer::Pending);
    EXPECT_EQ(ComOutput(object, "never", 5), 0u);
    const host::Stopwatch stopwatch;
    object.Close();
    EXPECT_LT(stopwatch.Milliseconds(), 500u);
    EXPECT_EQ(device.PendingCount(PendingKind::Write), 0);
}

} // namespace
