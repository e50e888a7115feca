// How long a person at the far end may think: by a clock that the test sets forward.
#include "support/line.h"

#include "loggedcontrol.h"
#include "support/importdouble.h"

using namespace controltest;

namespace {

DWORD skipped = 0; // ms that this program's clock is ahead

DWORD WINAPI DoubleGetTickCount() {
    static const auto platform = host::Platform<decltype(&::GetTickCount)>("kernel32.dll", "GetTickCount");
    return platform() + skipped;
}

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(GetTickCount, 0)
}

namespace {

struct WaitRow {
    const char* name;
    void (*wait)(CTarnCommCtl& control);
};

constexpr WaitRow personWaits[] = {
    {"HostInputKey",
     [](CTarnCommCtl& control) {
         short key = 1;
         EXPECT_EQ(control.HostInputKey(&key), S_OK);
         EXPECT_EQ(key, 0);
     }},
    {"HostInput",
     [](CTarnCommCtl& control) {
         BSTR text = nullptr;
         EXPECT_EQ(control.HostInput(5, &text), S_OK);
         EXPECT_EQ(Taken(text), "");
     }},
    {"HostInputPassword",
     [](CTarnCommCtl& control) {
         BSTR text = nullptr;
         EXPECT_EQ(control.HostInputPassword(5, &text), S_OK);
         EXPECT_EQ(Taken(text), "");
     }},
};

class HostTimeOut : public host::LineTest {
  protected:
    ~HostTimeOut() override { skipped = 0; }
    Control control;
};

} // namespace

TEST_F(HostTimeOut, IsThirtySeconds) {
    ASSERT_EQ(control.Open(host::nearPort), "");
    SetAutoProcess(control.Object(), TARN_PROCESS_NONE);
    for (const WaitRow& row : personWaits) {
        SCOPED_TRACE(row.name);
        bool waitedLonger = false;
        bool waitedTooLong = false;
        const auto early = host::After(20, [] { skipped += 25000; });
        const auto late = host::After(300, [&] {
            waitedLonger = true;
            skipped += 5000;
        });
        const auto tooLate = host::After(10000, [&] {
            waitedTooLong = true;
            SetShutDown(control.Object(), 1);
        });
        row.wait(*control.Pointer().Get());
        EXPECT_TRUE(waitedLonger);
        EXPECT_FALSE(waitedTooLong);
    }
}
