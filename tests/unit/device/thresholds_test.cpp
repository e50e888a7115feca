// The order of a tick's events, the two thresholds, and what an event may do to the tick that raised it.
#include "support/device/devicetest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Thresholds : public host::DeviceTest {
  protected:
    // All that a tick can tell, so that the next one does.
    void LayEverything() {
        device.RaiseErrors(CE_BREAK | CE_TXFULL);
        device.SetModemStatus(MS_CTS_ON | MS_DSR_ON | MS_RING_ON | MS_RLSD_ON);
        device.Lay("x");
        SetRThreshold(object, 1);
        SetSThreshold(object, 1);
    }
};

const std::vector<int> everything = {
    TARN_ERROR_BREAK, TARN_ERROR_TRANSMIT_FULL, TARN_EVENT_RECEIVE, TARN_EVENT_SEND,
    TARN_EVENT_CTS,   TARN_EVENT_DSR,           TARN_EVENT_RING,    TARN_EVENT_CARRIER,
};

TEST_F(Thresholds, ErrorsThenReceiveThenSendThenSignals) {
    OpenWithTimer();
    LayEverything();
    Tick();
    EXPECT_EQ(object.Events(), everything);
}

class LastEvent : public Thresholds, public testing::WithParamInterface<size_t> {};

TEST_P(LastEvent, ObjectMayEndInIt) {
    OpenWithTimer();
    LayEverything();
    object.OnEventDo([&](int code) {
        if (code == everything[GetParam()])
            DestroyWindow(object);
    });
    Tick();
    const std::vector<int> heard(everything.begin(), everything.begin() + static_cast<int>(GetParam()) + 1);
    EXPECT_EQ(object.Events(), heard);
    EXPECT_EQ(RecordOf(object), nullptr);
    EXPECT_FALSE(device.IsOpen());
}

INSTANTIATE_TEST_SUITE_P(Events, LastEvent, testing::Range(size_t{0}, everything.size()));

TEST_F(Thresholds, SignalsOfAPortThatAnEventClosedAreNoEvents) {
    device.SetModemStatus(MS_CTS_ON | MS_DSR_ON | MS_RLSD_ON);
    OpenWithTimer();
    LayEverything();
    object.OnEventDo([&](int code) {
        if (code == TARN_EVENT_SEND)
            object.Close();
    });
    Tick();
    EXPECT_EQ(object.Events().back(), TARN_EVENT_SEND);
}

struct LimitRow {
    int threshold;
    int count;
    bool fires;
};

TEST_F(Thresholds, ReceiveFiresFromItsCountOn) {
    OpenWithTimer();
    for (const LimitRow& row :
         {LimitRow{0, 9, false}, LimitRow{3, 2, false}, LimitRow{3, 3, true}, LimitRow{3, 4, true}}) {
        ClearInputBuffer(object);
        device.Lay(std::string(static_cast<size_t>(row.count), 'x'));
        SetRThreshold(object, row.threshold);
        object.ForgetEvents();
        Tick();
        Tick();
        EXPECT_EQ(object.Count(TARN_EVENT_RECEIVE), row.fires ? 2 : 0)
            << row.count << " of " << row.threshold;
    }
}

TEST_F(Thresholds, SendFiresUpToItsCount) {
    OpenWithTimer();
    for (const LimitRow& row :
         {LimitRow{0, 0, false}, LimitRow{3, 4, false}, LimitRow{3, 3, true}, LimitRow{3, 0, true}}) {
        device.SetOutputQueue(static_cast<DWORD>(row.count));
        SetSThreshold(object, row.threshold);
        object.ForgetEvents();
        Tick();
        Tick();
        EXPECT_EQ(object.Count(TARN_EVENT_SEND), row.fires ? 2 : 0) << row.count << " of " << row.threshold;
    }
}

// The tick took its counts before the first event, and tells by them.
TEST_F(Thresholds, SendTellsTheCountThatTheTickBeganWith) {
    OpenWithTimer();
    SetRThreshold(object, 1);
    SetSThreshold(object, 3);
    device.Lay("x");
    object.OnEventDo([&](int code) {
        if (code == TARN_EVENT_RECEIVE)
            device.SetOutputQueue(9);
    });
    Tick();
    EXPECT_THAT(object.Events(), ElementsAre(TARN_EVENT_RECEIVE, TARN_EVENT_SEND));
    object.ForgetEvents();
    ClearInputBuffer(object);
    Tick();
    EXPECT_THAT(object.Events(), IsEmpty());
}

TEST_F(Thresholds, FlagsAreClearedByACountOnTheOtherSide) {
    OpenWithTimer();
    SetRThreshold(object, 2);
    SetSThreshold(object, 3);
    Record().bSendFlag = 0;
    device.Lay("xy");
    device.SetOutputQueue(3);
    Tick();
    EXPECT_EQ(Record().bReceiveFlag, 1);
    EXPECT_EQ(Record().bSendFlag, 1);
    char byte;
    GetInput(object, &byte, 1);
    EXPECT_EQ(Record().bReceiveFlag, 0) << "one byte is under the threshold";
    EXPECT_EQ(Record().bSendFlag, 1) << "three are not over it";
    device.SetOutputQueue(4);
    Output(object, "z", 1);
    EXPECT_EQ(Record().bSendFlag, 0);
}

} // namespace
