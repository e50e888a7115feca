// What hosts do inside of events: each of these in an event of every kind. Afterwards everything is given
// back.
#include "eventhost.h"

#include "control/objectaccess.h"
#include "coreobject.h"

namespace {

using Trigger = std::function<void(HWND object)>;

struct EventKind {
    std::string event; // what is to be heard
    Trigger trigger;
    bool needsWindow;
};

EventKind OfCode(const char* event, int code) {
    return {event, [=](HWND object) { NotifyObject(object, code); }, false};
}

EventKind OfStatus(const char* event, int status) {
    constexpr int transferCode = 100;
    return {event,
            [=](HWND object) {
                host::SetTransferStatusOf(object, status);
                NotifyObject(object, transferCode);
            },
            false};
}

EventKind OfMessage(const char* event, UINT message, WPARAM wParam = 0) {
    return {event, [=](HWND object) { SendMessageA(object, message, wParam, 0); }, true};
}

std::vector<EventKind> AllKinds() {
    std::vector<EventKind> kinds = {
        OfCode("OnComm", 2),
        OfCode("OnComm", 1004),
        OfCode("Send", 1),
        OfCode("Receive", 2),
        OfCode("CTSChanged", 3),
        OfCode("DSRChanged", 4),
        OfCode("CarrierChanged", 5),
        OfCode("Ring", 6),
        OfCode("LookUp", 8),
        OfCode("NewConnection", 9),
        OfStatus("FinishFileTransfer", 0),
        OfStatus("WaitForFile", 1),
        OfStatus("PrepareFile", 2),
        OfStatus("StartFile", 3),
        OfStatus("TransferBlock", 4),
        OfStatus("AbortFile", 5),
        OfStatus("AbortFileTransfer", -1),
        OfStatus("FinishFile", 7),
        OfMessage("KeyDown", WM_KEYDOWN, VK_UP),
        OfMessage("KeyDown", WM_SYSKEYDOWN, VK_F10),
        OfMessage("KeyUp", WM_KEYUP, 'A'),
        OfMessage("KeyPress", WM_CHAR, 'a'),
        OfMessage("MouseMove", WM_MOUSEMOVE),
        OfMessage("MouseDown", WM_LBUTTONDOWN, MK_LBUTTON),
        OfMessage("MouseUp", WM_LBUTTONUP),
        OfMessage("Click", WM_LBUTTONUP),
        OfMessage("DblClick", WM_LBUTTONDBLCLK),
        OfMessage("Paint", WM_PAINT),
        OfMessage("Show", WM_SHOWWINDOW, TRUE),
        OfMessage("Hide", WM_SHOWWINDOW, FALSE),
    };
    kinds.push_back({"LookUp", [](HWND object) { ControlOf(object)->FireLookUp("text"); }, false});
    return kinds;
}

// One control in its container, for one event.
struct Hosted {
    explicit Hosted(bool withWindow) {
        EXPECT_EQ(NewObject(control), S_OK);
        EXPECT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
        ear.Connect(*control.Get());
        if (withWindow) {
            EXPECT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
            host::Pump(5);
        }
        control->Properties().m_bWireTap = trueFlag;
        control->Properties().m_bWireTapEvents = trueFlag;
        ear.heard.clear();
    }

    host::Container container;
    ComPtr<CTarnCommCtl> control;
    host::Ear ear;
};

using Deed = void (*)(Hosted& host);

struct DeedRow {
    const char* name;
    Deed deed;
};

constexpr DeedRow deeds[] = {
    {"disconnects its sink", [](Hosted& host) { host.ear.Disconnect(); }},
    {"releases the control",
     [](Hosted& host) {
         host.ear.LoseControl();
         host.container.Drop();
         host.control.Reset();
     }},
    {"destroys the control's window", [](Hosted& host) { DestroyWindow(host.control->Window()); }},
    {"destroys the terminal's window", [](Hosted& host) { DestroyWindow(host.control->CommObject()); }},
    {"closes the container", [](Hosted& host) { host.container.Drop(); }},
    {"shows the control", [](Hosted& host) { host.container.Do(OLEIVERB_SHOW); }},
};

class EventHosts : public testing::TestWithParam<DeedRow> {
  public:
    void SetUp() override {
        host::StartLogAnew();
        logfiles::RemoveLog();
    }
    void TearDown() override { SetUp(); }

    void Run(const EventKind& kind, bool withWindow) {
        SCOPED_TRACE(kind.event + (withWindow ? " with a window" : " without a window"));
        const LONG locks = ModuleLockCount();
        {
            Hosted host(withWindow);
            bool isDone = false;
            host.ear.onEvent = [&](DISPID id, DISPPARAMS&) {
                if (isDone || host::NameOf(id) != kind.event)
                    return;
                isDone = true;
                GetParam().deed(host);
            };
            kind.trigger(host.control->CommObject());
            EXPECT_TRUE(isDone);
            EXPECT_TRUE(host.ear.alwaysOnThread);
            EXPECT_TRUE(host.control || ModuleLockCount() == locks) << "gone with the event";
            host.ear.onEvent = nullptr;
            host.ear.Disconnect();
            host.control.Reset();
            host.container.Drop();
            EXPECT_EQ(host.ear.References(), 0u);
        }
        EXPECT_EQ(ModuleLockCount(), locks);
    }

  private:
    host::Apartment apartment_;
};

TEST_P(EventHosts, LeaveNothingBehind) {
    const int windows = host::ThreadWindows();
    for (const EventKind& kind : AllKinds()) {
        if (!kind.needsWindow)
            Run(kind, false);
        Run(kind, true);
    }
    EXPECT_EQ(host::ThreadWindows(), windows);
}

std::string NameOfDeed(const testing::TestParamInfo<DeedRow>& info) {
    std::string name;
    bool capital = true;
    for (const char* c = info.param.name; *c; ++c) {
        const bool isLetter = (*c >= 'a' && *c <= 'z');
        if (isLetter)
            name += capital ? static_cast<char>(*c - 'a' + 'A') : *c;
        capital = *c == ' ';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, EventHosts, testing::ValuesIn(deeds), NameOfDeed);

// A host that closes the form in OnComm hears no more of that event.
TEST(EventHost, WhoClosesInOnCommHearsNoMoreOfIt) {
    const host::Apartment apartment;
    Hosted closing(true);
    closing.ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::OnComm)
            closing.container.Drop();
    };
    NotifyObject(closing.control->CommObject(), 2);
    EXPECT_EQ(closing.ear.heard, host::Lines{"OnComm"});
}

// The line of CTSChanged comes after its handlers; without an object to write it for, there is none.
TEST(EventHost, TheLogOutlivesAnObjectThatWentInItsEvent) {
    const host::Apartment apartment;
    host::StartLogAnew();
    logfiles::RemoveLog();
    Hosted closing(true);
    Hosted other(true);
    closing.ear.onEvent = [&](DISPID id, DISPPARAMS&) {
        if (id == events::CTSChanged)
            closing.container.Drop();
    };
    NotifyObject(closing.control->CommObject(), 3);
    EXPECT_EQ(closing.ear.heard, (host::Lines{"OnComm", "CTSChanged"}));
    EXPECT_EQ(logfiles::Messages().find("CTSChanged"), std::string::npos);
    NotifyObject(other.control->CommObject(), 4);
    EXPECT_NE(logfiles::Messages().find("TarnComm_DSRChanged() Event"), std::string::npos);
    host::StartLogAnew();
    logfiles::RemoveLog();
}

// The same on a line with data: the handler runs inside the object's own step, which has to end well.
class LineHost : public host::LineTest {
  public:
    static void Open(HWND object) {
        SetCommPort(object, host::nearPort);
        SetSettings(object, "115200,n,8,1");
        ASSERT_TRUE(SetPortOpen(object, 1, nullptr));
    }

  private:
    host::Apartment apartment_;
};

TEST_F(LineHost, TheFormMayGoInReceive) {
    const LONG locks = ModuleLockCount();
    for (const bool withWindow : {false, true}) {
        host::FarEnd peer;
        Hosted host(withWindow);
        const HWND object = host.control->CommObject();
        SetAutoProcess(object, 0);
        SetRThreshold(object, 1);
        Open(object);
        host.ear.onEvent = [&](DISPID id, DISPPARAMS&) {
            if (id != events::Receive)
                return;
            host.ear.LoseControl();
            host.container.Drop();
            host.control.Reset();
        };
        peer.Send("data");
        EXPECT_TRUE(host::PumpUntil([&] { return !host.control; }));
        EXPECT_EQ(ModuleLockCount(), locks);
        EXPECT_FALSE(IsWindow(object));
        EXPECT_EQ(host.ear.Count("Receive"), 1);
        EXPECT_TRUE(host.ear.alwaysOnThread);
    }
}

TEST_F(LineHost, TheFormMayGoInALookUp) {
    const LONG locks = ModuleLockCount();
    for (const bool withWindow : {false, true}) {
        host::FarEnd peer;
        Hosted host(withWindow);
        const HWND object = host.control->CommObject();
        SetLookUpText(object, "password:|login:", '|');
        Open(object);
        host.ear.onEvent = [&](DISPID id, DISPPARAMS&) {
            if (id != events::LookUp)
                return;
            host.ear.LoseControl();
            host.container.Drop();
            host.control.Reset();
        };
        peer.Send("welcome\r\nlogin: more");
        EXPECT_TRUE(host::PumpUntil([&] { return !host.control; }));
        EXPECT_EQ(ModuleLockCount(), locks);
        EXPECT_EQ(host.ear.Count("LookUp"), 1);
    }
}

} // namespace
