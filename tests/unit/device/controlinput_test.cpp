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

} // namespace
