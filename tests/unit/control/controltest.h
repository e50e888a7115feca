// A control without a container at the near end of the cable, with its log of properties.
#pragma once

#include "support/line.h" // sockets come before the platform's header

#include "../diagnostics/logtest.h"
#include "control/ansi.h"
#include "control/TarnCommCtl.h"
#include "support/every.h"

#include <comdef.h>

#include <functional>
#include <span>
#include <string>
#include <type_traits>

namespace host {

struct Failure {
    HRESULT code;
    std::string message;
    bool operator==(const Failure&) const = default;
};

inline void PrintTo(const Failure& failure, std::ostream* out) {
    *out << std::hex << static_cast<ULONG>(failure.code) << ' ' << failure.message;
}

// What a call gave, with the thread's error record, which is used up.
inline Failure FailureOf(HRESULT code) {
    Microsoft::WRL::ComPtr<IErrorInfo> record;
    if (GetErrorInfo(0, &record) != S_OK)
        return {code, ""};
    _bstr_t description;
    record->GetDescription(description.GetAddress());
    return {code, AnsiOf(static_cast<const wchar_t*>(description))};
}

// A plain row of the property table.
struct PlainRow {
    const char* name;
    LONG value;
    LONG reads;       // what the getter then gives
    std::string word; // in the log
    std::function<HRESULT(ITarnComm&, LONG)> put;
    std::function<HRESULT(ITarnComm&, LONG&)> get;
    std::function<LONG(HWND)> flat; // none: the control alone has it
};

template <class Value>
PlainRow MakeRow(const char* name, HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(Value*),
                 HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(Value), LONG value,
                 std::function<LONG(HWND)> flat) {
    constexpr bool isBool = std::is_same_v<Value, VARIANT_BOOL>;
    const LONG reads = isBool && value ? VARIANT_TRUE : value;
    return {name,
            value,
            reads,
            isBool ? (value ? "True" : "False") : std::to_string(value),
            [put](ITarnComm& control, LONG given) { return (control.*put)(static_cast<Value>(given)); },
            [get](ITarnComm& control, LONG& read) {
                Value answer = {};
                const HRESULT result = (control.*get)(&answer);
                read = static_cast<LONG>(answer);
                return result;
            },
            std::move(flat)};
}

class ControlTest : public LineTest {
  protected:
    ControlTest() { CoInitialize(nullptr); }
    ~ControlTest() override {
        control.Reset();
        StartLogAnew();
        CoUninitialize();
    }

    void SetUp() override {
        LineTest::SetUp();
        StartLogAnew();
        SetErrorInfo(0, nullptr);
        control.Reset();
        ASSERT_EQ(NewObject(control), S_OK);
    }

    void Open() {
        ASSERT_EQ(control->put_CommPort(_variant_t(L"COM5")), S_OK);
        ASSERT_EQ(control->put_Settings(_bstr_t(L"115200,n,8,1")), S_OK);
        ASSERT_EQ(control->put_PortOpen(VARIANT_TRUE), S_OK);
        ASSERT_TRUE(GetPortOpen(control->CommObject()));
    }

    bool HasInput(int count) {
        return PumpUntil([&] { return GetInBufferCount(control->CommObject()) >= count; });
    }

    void LogProperties() {
        control->Properties().m_bWireTap = trueFlag;
        control->Properties().m_bWireTapProperties = trueFlag;
    }

    static void StartLogAnew() {
        ResetWireTap();
        logfiles::RemoveLog();
    }

    // How often a line of this text stands in the log.
    static int Logged(const std::string& line) {
        const std::string log = logfiles::Untimed(logfiles::ReadWholeFile(logfiles::WireTapPath()));
        const std::string wanted = "<time> " + line + "\r\n";
        int count = 0;
        for (size_t at = log.find(wanted); at != log.npos; at = log.find(wanted, at + 1))
            ++count;
        return count;
    }

    static std::string LogText() {
        return logfiles::Untimed(logfiles::ReadWholeFile(logfiles::WireTapPath()));
    }

    void ExpectPlain(std::span<const PlainRow> rows) {
        LogProperties();
        for (const PlainRow& row : rows) {
            SCOPED_TRACE(row.name);
            StartLogAnew();
            LONG read = 0;
            EXPECT_EQ(row.put(*control.Get(), row.value), S_OK);
            EXPECT_EQ(row.get(*control.Get(), read), S_OK);
            EXPECT_EQ(read, row.reads);
            EXPECT_EQ(row.flat ? row.flat(control->CommObject()) : row.value, row.value);
            EXPECT_EQ(Logged(std::string("TarnComm.") + row.name + " = " + row.word), 1);
            EXPECT_EQ(Logged(std::string("TarnComm.") + row.name + " returns " + row.word), 1);
        }
    }

    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(Value*)) {
        Value value = {};
        EXPECT_EQ((control.Get()->*get)(&value), S_OK);
        return value;
    }

    std::string GetText(HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(BSTR*)) {
        BSTR value = nullptr;
        EXPECT_EQ((control.Get()->*get)(&value), S_OK);
        const _bstr_t owned(value, false);
        return value ? AnsiOf(static_cast<const wchar_t*>(owned)) : "(null)";
    }

    Microsoft::WRL::ComPtr<CTarnCommCtl> control;
};

#define FLAT_ROW(name, value, Flat)                                                                          \
    host::MakeRow(#name, &ITarnComm::get_##name, &ITarnComm::put_##name, value,                              \
                  [](HWND object) { return static_cast<LONG>(Flat(object)); })
#define OWN_ROW(name, value)                                                                                 \
    host::MakeRow(#name, &ITarnComm::get_##name, &ITarnComm::put_##name, value, nullptr)

} // namespace host
