// Keys on a device whose errors raise events while a key goes out.
#include "support/device/devicetest.h"

#include "terminal/terminal.h"

namespace {

class KeyOnDevice : public host::DeviceTest {
  protected:
    void SetUp() override {
        OpenWithTimer();
        SetEmulation(object, Emulation_Ansi);
        SetEcho(object, 1);
        Record().nAutoProcess = 2;
    }
};

TEST_F(KeyOnDevice, RaisesWhatTheDeviceTells) {
    device.RaiseErrors(CE_FRAME);
    SendMessageA(object, WM_KEYDOWN, VK_F1, 0);
    EXPECT_THAT(object.Events(), testing::ElementsAre(TARN_ERROR_FRAME));
    device.RaiseErrors(CE_FRAME);
    SendMessageA(object, WM_CHAR, 'x', 0);
    EXPECT_EQ(object.Count(TARN_ERROR_FRAME), 2);
}

struct KeyRow {
    const char* name;
    UINT message;
    WPARAM key;
};

TEST_F(KeyOnDevice, ObjectMayGoInsideItsEvent) {
    for (const KeyRow& row : {KeyRow{"key", WM_KEYDOWN, VK_F1}, KeyRow{"character", WM_CHAR, 'x'}}) {
        host::CommObject victim;
        const HWND handle = victim;
        object.Close();
        SetInterval(handle, host::neverTicks);
        ASSERT_EQ(victim.Open(host::ScriptedDevice::Name, "9600,n,8,1"), "");
        SetEmulation(handle, Emulation_Ansi);
        SetEcho(handle, 1);
        RecordOf(handle)->nAutoProcess = 2;
        victim.OnEventDo([&](int) { DestroyWindow(handle); });
        device.RaiseErrors(CE_FRAME);
        SendMessageA(handle, row.message, row.key, 0);
        EXPECT_TRUE(victim.Saw(TARN_ERROR_FRAME)) << row.name;
        EXPECT_EQ(RecordOf(handle), nullptr) << row.name;
    }
}

} // namespace
