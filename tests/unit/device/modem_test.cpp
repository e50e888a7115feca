// What dialling does to the device's queues.
#include "support/device/devicetest.h"

namespace {

using testing::ElementsAre;

class ModemQueues : public host::DeviceTest {};

TEST_F(ModemQueues, DialEmptiesBothBeforeItSpeaks) {
    OpenWithMonitor();
    SetDialTimeOut(object, 50);
    device.Forget();
    EXPECT_EQ(Dial(object, "12"), TARN_DIAL_TIMED_OUT);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), ElementsAre("PurgeComm 8", "PurgeComm 4"));
}

TEST_F(ModemQueues, FullOneLosesBytesAndIsNoFailure) {
    OpenWithMonitor();
    device.OnWrite(host::Answer::Pending);
    ASSERT_EQ(Output(object, "x", 1), 1);
    ASSERT_TRUE(host::PumpUntil([&] { return device.PendingCount(host::PendingKind::Write) == 1; }));
    while (Output(object, "x", 1))
        ;
    const int full = GetOutBufferCount(object);
    EXPECT_EQ(OutputModem(object, "ABC^M"), 1);
    EXPECT_EQ(GetOutBufferCount(object), full);
}

} // namespace
