// A control whose telephony service is the tests' exchange: two data lines, one at each end of the cable.
#pragma once

#include "../control/eventhost.h" // sockets come before the platform's header

#include "../control/controltest.h"
#include "core/thread.h"
#include "service.h"

#include <algorithm>
#include <memory>

namespace telephony {

using host::Lines;

inline constexpr const char* alpha = "Alpha Modem"; // the data line at COM5
inline constexpr const char* beta = "Beta Modem";   // the data line at COM6
inline constexpr DWORD alphaLine = 0, deskLine = 1, betaLine = 2;
inline constexpr const char* alphaNumber = "100";
inline constexpr const char* betaNumber = "102";

inline int Times(const std::string& text, const std::string& part) {
    int times = 0;
    for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++times;
    return times;
}

inline int Asked(const std::string& part) {
    return Times(RecordText(), part);
}

inline int Logged(const std::string& part) {
    return Times(logfiles::Messages(), part);
}

// The control in a container, its data for the program alone, without a box while it dials.
class PhoneHost {
  public:
    PhoneHost() {
        EXPECT_EQ(NewObject(control), S_OK);
        EXPECT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
        ear.Connect(*control.Get());
        control->put_DialStatusDialog(Dialog_Hidden);
        control->put_AutoProcess(0);
        control->put_Settings(_bstr_t(L"115200,n,8,1"));
    }
    ~PhoneHost() {
        ear.onEvent = nullptr;
        ear.Disconnect();
        control.Reset();
        container.Drop();
    }
    PhoneHost(const PhoneHost&) = delete;
    PhoneHost& operator=(const PhoneHost&) = delete;

    CTarnCommCtl* operator->() { return control.Get(); }
    HWND Object() const { return control->CommObject(); }

    void Show() {
        ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
        host::Pump(50); // what comes by itself: its first paint
        ear.heard.clear();
    }
    void LogProperties() {
        control->Properties().m_bWireTap = trueFlag;
        control->Properties().m_bWireTapProperties = trueFlag;
    }
    void UseLine(const char* name) {
        ASSERT_EQ(control->put_CommPort(_variant_t(WideOf(name).c_str())), S_OK);
    }
    HRESULT Dial(const char* number) {
        control->put_PhoneNumber(_bstr_t(WideOf(number).c_str()));
        return control->put_PortOpen(VARIANT_TRUE);
    }
    HRESULT Answer(bool on) { return control->put_AnswerCalls(on ? VARIANT_TRUE : VARIANT_FALSE); }

    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(Value*)) {
        Value value = {};
        EXPECT_EQ((control.Get()->*get)(&value), S_OK);
        return value;
    }
    std::string Text(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(BSTR*)) {
        const _bstr_t owned(Get(get), false);
        return owned.length() ? AnsiOf(static_cast<const wchar_t*>(owned)) : "";
    }
    bool Is(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(VARIANT_BOOL*)) { return Get(get) != VARIANT_FALSE; }
    bool IsOpen() { return Is(&ITarnComm::get_PortOpen); }
    std::string Status() { return Text(&ITarnComm::get_PortStatus); }
    std::string Input() {
        _variant_t input;
        EXPECT_EQ(control->get_Input(&input), S_OK);
        return AnsiOf(static_cast<const wchar_t*>(_bstr_t(input)));
    }
    void Send(const char* text) { EXPECT_EQ(control->put_Output(_variant_t(WideOf(text).c_str())), S_OK); }
    bool HasInput(int count) {
        return host::PumpUntil([&] { return GetInBufferCount(Object()) >= count; });
    }
    bool Hears(const std::string& event, int times = 1) {
        return host::PumpUntil([&] { return ear.Count(event) >= times; });
    }

    host::Container container;
    ComPtr<CTarnCommCtl> control;
    host::Ear ear;
};

// Bytes go both ways between a control's call and the other end of its cable.
inline void ExpectDataFlow(PhoneHost& phone, host::FarEnd& peer) {
    ASSERT_TRUE(peer.IsOpen());
    EXPECT_TRUE(peer.Send("hello"));
    EXPECT_TRUE(phone.HasInput(5));
    EXPECT_EQ(phone.Input(), "hello");
    phone.Send("world");
    EXPECT_EQ(peer.Read(5), "world");
}

// What a host does to its control, out of which it is called.
struct Deed {
    const char* name;
    void (*act)(PhoneHost& phone);
};

inline void PrintTo(const Deed& deed, std::ostream* out) {
    *out << deed.name;
}

// In and out of windows: those of a control that was never shown are not there.
inline constexpr Deed deeds[] = {
    {"disconnects its sink", [](PhoneHost& phone) { phone.ear.Disconnect(); }},
    {"releases the control",
     [](PhoneHost& phone) {
         phone.ear.LoseControl();
         phone.container.Drop();
         phone.control.Reset();
     }},
    {"destroys the control's window", [](PhoneHost& phone) { DestroyWindow(phone->Window()); }},
    {"destroys the terminal's window", [](PhoneHost& phone) { DestroyWindow(phone.Object()); }},
    {"closes the container", [](PhoneHost& phone) { phone.container.Drop(); }},
    {"shows the control", [](PhoneHost& phone) { phone.container.Do(OLEIVERB_SHOW); }},
    {"closes the port", [](PhoneHost& phone) { phone->put_PortOpen(VARIANT_FALSE); }},
    {"hangs up",
     [](PhoneHost& phone) {
         VARIANT_BOOL done = VARIANT_FALSE;
         phone->get_HangUp(&done);
     }},
    {"stops answering", [](PhoneHost& phone) { phone.Answer(false); }},
};

// Handles of serial devices that this process has. The system lets a port be opened twice here, so that it
// tells of none that was forgotten.
inline int OpenDevices() {
    constexpr ULONG_PTR step = 4, end = 0x1000; // handles are small multiples of it
    int count = 0;
    for (ULONG_PTR value = step; value < end; value += step) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        DCB block = {};
        block.DCBlength = sizeof block;
        count += GetFileType(handle) == FILE_TYPE_CHAR && GetCommState(handle, &block);
    }
    return count;
}

// Afterwards nothing of the service is held, no thread had to be terminated, and no port is open.
class TelephonyTest : public host::LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        StartLogAnew();
        SetErrorInfo(0, nullptr);
        ExchangeReset();
        ExchangeAddLine(alpha, "Provider A", LINEMEDIAMODE_DATAMODEM, alphaNumber, "COM5");
        ExchangeAddLine("Desk Set", "Provider V", LINEMEDIAMODE_INTERACTIVEVOICE, "101", nullptr);
        ExchangeAddLine(beta, "Provider B", LINEMEDIAMODE_DATAMODEM | LINEMEDIAMODE_G3FAX, betaNumber,
                        "COM6");
        ExchangeAddRule("5550100", ExchangeConnects, 0);
        ExchangeAddRule("5550101", ExchangeRings, 0);
        ExchangeSetPace(2);
        terminated_ = TerminatedThreadCount();
    }
    void TearDown() override {
        phone.reset();
        const ExchangeHoldings held = Holdings();
        EXPECT_EQ(held.applications, 0U);
        EXPECT_EQ(held.lines, 0U);
        EXPECT_EQ(held.calls, 0U);
        EXPECT_EQ(TerminatedThreadCount(), terminated_);
        EXPECT_EQ(OpenDevices(), 0) << "ports of calls are still open";
        ExchangeReset();
        StartLogAnew();
    }

    static void StartLogAnew() {
        ResetWireTap();
        logfiles::RemoveLog();
    }

    PhoneHost& Start() {
        phone = std::make_unique<PhoneHost>();
        return *phone;
    }
    PhoneHost& StartAtAlpha() {
        Start().UseLine(alpha);
        return *phone;
    }
    // Released requests end on the service's threads.
    static bool HasNoLine() {
        return host::PumpUntil([] { return Holdings().lines == 0 && Holdings().calls == 0; });
    }

    host::Apartment apartment;
    std::unique_ptr<PhoneHost> phone;

  private:
    int terminated_ = 0;
};

} // namespace telephony
