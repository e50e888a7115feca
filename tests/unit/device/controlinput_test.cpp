// The control's Input with more bytes waiting than any cable of the lab holds.
#include "support/device/devicetest.h"

#include "control/ansi.h"
#include "control/TarnCommCtl.h"

#include <comdef.h>

namespace {

class ControlInput : public testing::Test {
  protected:
    ControlInput() { CoInitialize(nullptr); }
    ~ControlInput() override {
        control.Reset();
        CoUninitialize();
    }
    void SetUp() override {
        ASSERT_EQ(NewObject(control), S_OK);
        control->put_AutoProcess(0);
        control->put_CommPort(_variant_t(WideOf(host::ScriptedDevice::Name).c_str()));
        control->put_PortOpen(VARIANT_TRUE);
        ASSERT_TRUE(GetPortOpen(control->CommObject()));
    }
    _variant_t Input() {
        _variant_t value;
        EXPECT_EQ(control->get_Input(&value), S_OK);
        return value;
    }
    LONG Waiting() { return GetInBufferCount(control->CommObject()); }

    host::ScriptedDevice device;
    ComPtr<CTarnCommCtl> control;
};

TEST_F(ControlInput, MoreThanAMegabyteIsNotGivenAtOnce) {
    constexpr LONG limit = 0x100000;
    device.Arrive(std::string(limit + 1, 'x'));
    ASSERT_EQ(Waiting(), limit + 1);
    EXPECT_EQ(Input().vt, VT_EMPTY);
    EXPECT_EQ(Waiting(), limit + 1) << "nothing is lost";
    control->put_InputLen(limit);
    const _variant_t most = Input();
    ASSERT_EQ(most.vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(most.bstrVal), static_cast<UINT>(limit));
    EXPECT_EQ(Waiting(), 1);
}

TEST_F(ControlInput, OnlyAZeroEmptiesAQueue) {
    device.Forget();
    EXPECT_EQ(control->put_InBufferCount(5), S_OK);
    EXPECT_EQ(control->put_OutBufferCount(5), S_OK);
    EXPECT_EQ(control->put_OutBufferCount(-1), S_OK);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), testing::IsEmpty());
    EXPECT_EQ(control->put_OutBufferCount(0), S_OK);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), testing::ElementsAre("PurgeComm 4"));
    EXPECT_EQ(control->put_InBufferCount(0), S_OK);
    EXPECT_THAT(device.CallsOf({"PurgeComm"}), testing::ElementsAre("PurgeComm 4", "PurgeComm 8"));
}

// Reads whether the device reports breaks, not whether one is being sent; kept so.
TEST_F(ControlInput, BreakIsSentAndSomethingElseIsRead) {
    const auto read = [this] {
        VARIANT_BOOL value = 1;
        EXPECT_EQ(control->get_Break(&value), S_OK);
        return value;
    };
    device.Forget();
    EXPECT_EQ(control->put_Break(VARIANT_TRUE), S_OK);
    const VARIANT_BOOL whileSending = read();
    EXPECT_EQ(control->put_Break(VARIANT_FALSE), S_OK);
    EXPECT_EQ(read(), whileSending);
    EXPECT_THAT(device.CallsOf({"SetCommBreak", "ClearCommBreak"}),
                testing::ElementsAre("SetCommBreak", "ClearCommBreak"));
    SetCommMask(GetCommID(control->CommObject()), EV_RXCHAR | EV_BREAK);
    EXPECT_EQ(read(), VARIANT_TRUE);
    SetCommMask(GetCommID(control->CommObject()), EV_RXCHAR);
    EXPECT_EQ(read(), VARIANT_FALSE);
}

} // namespace
