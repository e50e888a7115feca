// Properties of the modem and of the telephony service, which is out of use here.
#include "controltest.h"

namespace {

using host::Failure;
using host::FailureOf;

constexpr HRESULT generalFailure = static_cast<HRESULT>(0x800A0000);

class ModemProperties : public host::ControlTest {
  protected:
    std::string Options() {
        char options[TARN_MODEM_OPTIONS_SIZE];
        const int length = GetModemOptions(control->CommObject(), options);
        return {options, static_cast<size_t>(length)};
    }
};

const host::PlainRow plainRows[] = {
    OWN_ROW(UseTAPI, 0),
    OWN_ROW(UseTAPI, -1),
    FLAT_ROW(DialMode, 1, GetDialMode),
    FLAT_ROW(DialTimeOut, 1234, GetDialTimeOut),
    OWN_ROW(DialStatusDialog, 1),
};

TEST_F(ModemProperties, PlainRows) {
    ExpectPlain(plainRows);
}

TEST_F(ModemProperties, Defaults) {
    EXPECT_EQ(Get(&ITarnComm::get_UseTAPI), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_DialTimeOut), 60000);
    EXPECT_EQ(Get(&ITarnComm::get_DialStatusDialog), Dialog_Modeless);
    EXPECT_EQ(Get(&ITarnComm::get_AnswerCalls), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_ModemIndex), 0);
    EXPECT_EQ(GetText(&ITarnComm::get_PhoneNumber), "(null)");
    EXPECT_EQ(GetText(&ITarnComm::get_Config), "(null)");
}

TEST_F(ModemProperties, NullPointersAreRefused) {
    EXPECT_EQ(control->get_PhoneNumber(nullptr), E_POINTER);
    EXPECT_EQ(control->get_HangUp(nullptr), E_POINTER);
    EXPECT_EQ(control->get_InitModem(nullptr), E_POINTER);
    EXPECT_EQ(control->get_ModemTitle(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Locations(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Location(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Config(nullptr), E_POINTER);
    EXPECT_EQ(control->get_CommPorts(nullptr), E_POINTER);
}

// The log's name for it; kept so.
TEST_F(ModemProperties, PhoneNumberIsLoggedUnderAnotherName) {
    LogProperties();
    EXPECT_EQ(control->put_PhoneNumber(_bstr_t(L"555 1234")), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_PhoneNumber), "555 1234");
    EXPECT_EQ(Logged("TarnComm.ProjectPhoneNumber = \"555 1234\""), 1);
    EXPECT_EQ(Logged("TarnComm.ProjectPhoneNumber returns \"555 1234\""), 1);
    EXPECT_EQ(control->put_PhoneNumber(nullptr), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_PhoneNumber), "(null)");
}

struct ModemRow {
    const char* name;
    HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(BSTR*);
    HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(BSTR);
    const char* preset;
    const char* options; // after a put of "new"
};

#define MODEM_ROW(name, preset, options)                                                                     \
    { #name, &ITarnComm::get_##name, &ITarnComm::put_##name, preset, options }

const ModemRow modemRows[] = {
    MODEM_ROW(ModemTitle, "Hayes Compatible",
              "new\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t"),
    MODEM_ROW(ModemInitCommand, "ATX4E1V1S7=60&C1^M",
              "Hayes Compatible\tnew\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t"),
    MODEM_ROW(ModemDialToneCommand, "ATDT",
              "Hayes Compatible\tATX4E1V1S7=60&C1^M\tnew\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t"),
    MODEM_ROW(ModemDialPulseCommand, "ATDP",
              "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tnew\tATS0=2^M\t~~+++~~ATH0^M\t"),
    MODEM_ROW(ModemAnswerCommand, "ATS0=2^M",
              "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tnew\t~~+++~~ATH0^M\t"),
    MODEM_ROW(ModemHangUpCommand, "~~+++~~ATH0^M",
              "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\tnew\t"),
};

TEST_F(ModemProperties, FieldsOfTheModemOptions) {
    for (const ModemRow& row : modemRows) {
        SCOPED_TRACE(row.name);
        SetUp();
        LogProperties();
        EXPECT_EQ(GetText(row.get), row.preset);
        EXPECT_EQ((control.Get()->*row.put)(_bstr_t(L"new")), S_OK);
        EXPECT_EQ(GetText(row.get), "new");
        EXPECT_EQ(Options(), row.options);
        EXPECT_EQ(std::string(control->Properties().m_szModemOptions) + '\t', row.options);
        EXPECT_EQ(Logged(std::string("TarnComm.") + row.name + " = \"new\""), 1);
        EXPECT_EQ(Logged(std::string("TarnComm.") + row.name + " returns \"new\""), 1);
    }
}

// Kept as it is: whoever looks at one field rewrites them all, and the speed is none of them.
TEST_F(ModemProperties, AReadLosesTheSeventhField) {
    EXPECT_EQ(Options(),
              "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t14400\t");
    GetText(&ITarnComm::get_ModemTitle);
    EXPECT_EQ(Options(), "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M\t");
    EXPECT_STREQ(control->Properties().m_szModemOptions,
                 "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M");
}

TEST_F(ModemProperties, LongModemTextsAreCut) {
    EXPECT_EQ(control->put_ModemTitle(_bstr_t(std::wstring(3000, L'x').c_str())), S_OK);
    EXPECT_EQ(std::string(control->Properties().m_szModemOptions), std::string(1023, 'x'));
    EXPECT_EQ(GetText(&ITarnComm::get_ModemTitle), std::string(198, 'x')); // what a comm object takes
}

TEST_F(ModemProperties, ANullTextEmptiesItsField) {
    EXPECT_EQ(control->put_ModemTitle(nullptr), S_OK);
    EXPECT_STREQ(control->Properties().m_szModemOptions,
                 "\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M");
}

TEST_F(ModemProperties, NoLineHasAnIndex) {
    LogProperties();
    const Failure notFound = {generalFailure, "Modem not found."};
    for (const LONG index : {0, 3, -1}) {
        EXPECT_EQ(FailureOf(control->put_ModemIndex(index)), notFound);
        EXPECT_EQ(Get(&ITarnComm::get_ModemIndex), index); // stays although it failed
    }
    EXPECT_EQ(GetText(&ITarnComm::get_ModemTitle), "Hayes Compatible");
    EXPECT_EQ(Logged("TarnComm.ModemIndex = 3"), 0);
    EXPECT_EQ(Logged("TarnComm.ModemIndex returns 3"), 1);
}

struct FillCase {
    const char* windowClass;
    UINT count;
    UINT text;
    HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(LONG);
    const char* name;
};

TEST_F(ModemProperties, FillsBoxesFromTheModemList) {
    const FillCase rows[] = {
        {"COMBOBOX", CB_GETCOUNT, CB_GETLBTEXT, &ITarnComm::put_FillModemCombo, "FillModemCombo"},
        {"LISTBOX", LB_GETCOUNT, LB_GETTEXT, &ITarnComm::put_FillModemList, "FillModemList"}};
    LogProperties();
    for (const FillCase& row : rows) {
        SCOPED_TRACE(row.name);
        const HWND box =
            CreateWindowA(row.windowClass, "", WS_POPUP, 0, 0, 50, 50, nullptr, nullptr, nullptr, nullptr);
        const LONG handle = HandleToLong(box);
        control->put_UseTAPI(VARIANT_TRUE); // of which there are no lines
        EXPECT_EQ((control.Get()->*row.put)(handle), S_OK);
        EXPECT_EQ(SendMessageA(box, row.count, 0, 0), 0);
        control->put_UseTAPI(VARIANT_FALSE);
        EXPECT_EQ((control.Get()->*row.put)(handle), S_OK);
        EXPECT_GE(SendMessageA(box, row.count, 0, 0), 1);
        char first[256] = {};
        SendMessageA(box, row.text, 0, reinterpret_cast<LPARAM>(first));
        EXPECT_STREQ(first, "Hayes Compatible");
        EXPECT_EQ(Logged(std::string("TarnComm.") + row.name + " = " + std::to_string(handle)), 2);
        DestroyWindow(box);
        EXPECT_EQ((control.Get()->*row.put)(handle), S_OK);
        EXPECT_EQ((control.Get()->*row.put)(0), S_OK);
    }
}

// The service's answer; the port goes, its events tell so.
TEST_F(ModemProperties, HangUpClosesThePort) {
    LogProperties();
    Open();
    EXPECT_EQ(Get(&ITarnComm::get_HangUp), VARIANT_FALSE);
    EXPECT_EQ(Get(&ITarnComm::get_PortOpen), VARIANT_FALSE);
    EXPECT_FALSE(control->IsConnected());
    EXPECT_EQ(GetText(&ITarnComm::get_PortStatus), "Disconnected");
    EXPECT_EQ(static_cast<int>(Get(&ITarnComm::get_CommEvent)), TARN_EVENT_CARRIER);
    EXPECT_EQ(Logged("TarnComm.HangUp returns False"), 1);
}

TEST_F(ModemProperties, TheModemIsNotAskedWhileInputIsProcessed) {
    Open();
    VARIANT_BOOL value = VARIANT_TRUE;
    EXPECT_EQ(FailureOf(control->get_InitModem(&value)),
              (Failure{InvalidCall, "Cannot access the InitModem property while AutoReceive is True."}));
    EXPECT_EQ(value, VARIANT_FALSE);
    EXPECT_EQ(
        FailureOf(control->get_InitModemForAnswer(&value)),
        (Failure{InvalidCall, "Cannot access the InitModemForAnswer property while AutoReceive is True."}));
    EXPECT_EQ(Get(&ITarnComm::get_Busy), VARIANT_FALSE); // the guard is free again
}

TEST_F(ModemProperties, SetsTheModemUp) {
    LogProperties();
    control->put_AutoProcess(TARN_PROCESS_NONE);
    cable.Carrier('a', "off");
    Open();
    host::FarEnd modem;
    std::string heard;
    const host::Every answer(5, [&] {
        heard += modem.Read();
        if (heard.ends_with('\r')) {
            heard.clear();
            modem.Send("OK\r\n");
        }
    });
    EXPECT_EQ(Get(&ITarnComm::get_InitModem), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_InitModemForAnswer), VARIANT_TRUE);
    EXPECT_EQ(Logged("TarnComm.InitModem returns True"), 1);
    EXPECT_EQ(Logged("TarnComm.InitModemForAnswer returns True"), 1);
}

TEST_F(ModemProperties, AnswerCallsTellsTheLogWhatBecameOfIt) {
    LogProperties();
    EXPECT_EQ(control->put_AnswerCalls(VARIANT_FALSE), S_OK);
    EXPECT_EQ(Logged("TarnComm.AnswerCalls (no change)  = False"), 1);
    EXPECT_EQ(control->put_AnswerCalls(VARIANT_TRUE), S_OK);
    EXPECT_EQ(Logged("TarnComm.AnswerCalls (modem not found)  = True"), 1);
    EXPECT_EQ(Get(&ITarnComm::get_AnswerCalls), VARIANT_FALSE);
    EXPECT_EQ(Logged("TarnComm.AnswerCalls returns False"), 1);
}

template <class Collection>
LONG CountOf(Collection* collection) {
    LONG count = -1;
    EXPECT_EQ(collection ? collection->get_Count(&count) : E_POINTER, S_OK);
    return count;
}

// How many ports there are is the machine's affair.
TEST_F(ModemProperties, CollectionsOutliveTheControl) {
    LogProperties();
    Microsoft::WRL::ComPtr<ITapiLocation> locations;
    EXPECT_EQ(control->get_Locations(&locations), S_OK);
    EXPECT_EQ(CountOf(locations.Get()), 0);
    Microsoft::WRL::ComPtr<ICommPort> ports;
    EXPECT_EQ(control->get_CommPorts(&ports), S_OK);
    const LONG count = CountOf(ports.Get());
    EXPECT_GE(count, 0);
    EXPECT_EQ(Logged("TarnComm.Locations returns Collection"), 1);
    EXPECT_EQ(Logged("TarnComm.CommPorts returns Collection"), 1);
    control.Reset();
    EXPECT_EQ(CountOf(locations.Get()), 0);
    EXPECT_EQ(CountOf(ports.Get()), count);
}

TEST_F(ModemProperties, LocationNeedsTelephony) {
    LogProperties();
    const Failure unable = {generalFailure, "Unable to access the Windows Telephony API: Operation failed."};
    BSTR text = nullptr;
    EXPECT_EQ(FailureOf(control->get_Location(&text)), unable);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(FailureOf(control->put_Location(_bstr_t(L"Home"))), unable);
    EXPECT_EQ(LogText().find("Location"), std::string::npos);
}

TEST_F(ModemProperties, ConfigWithoutALineIsLoggedOnly) {
    LogProperties();
    EXPECT_EQ(control->put_Config(_bstr_t(L"abc")), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_Config), "(null)");
    EXPECT_EQ(Logged("TarnComm.Config = \"abc\""), 1);
    EXPECT_EQ(Logged("TarnComm.Config returns \"\""), 1);
}

} // namespace
