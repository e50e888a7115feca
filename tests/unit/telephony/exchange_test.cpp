// The tests' own exchange, through the functions of the service that it stands in for.
#include "exchangefixture.h"
#include "modem/tapiblock.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <utility>
#include <vector>

namespace {

using namespace telephony;

// Applications, versions, devices

TEST_F(Exchange, StartGivesDevicesVersionAndAnEvent) {
    const App app;
    EXPECT_EQ(app.result, 0);
    EXPECT_NE(app.handle, 0u);
    EXPECT_EQ(app.devices, 3u);
    EXPECT_EQ(app.apiVersion, version);
    ASSERT_NE(app.event, nullptr);
    EXPECT_FALSE(app.HasMessage());
}

TEST_F(Exchange, StartRefusesWhatItDoesNotServe) {
    struct Row {
        const char* name;
        DWORD options, size, wanted;
        LONG result;
    };
    constexpr DWORD whole = sizeof(LINEINITIALIZEEXPARAMS);
    const Row rows[] = {
        {"event", LINEINITIALIZEEXOPTION_USEEVENT, whole, version, 0},
        {"newer", LINEINITIALIZEEXOPTION_USEEVENT, whole, 0x30001, 0},
        {"small", LINEINITIALIZEEXOPTION_USEEVENT, whole - 1, version, Error(LINEERR_STRUCTURETOOSMALL)},
        {"window", LINEINITIALIZEEXOPTION_USEHIDDENWINDOW, whole, version, Error(LINEERR_INVALPARAM)},
        {"old", LINEINITIALIZEEXOPTION_USEEVENT, whole, 0x10002, Error(LINEERR_INCOMPATIBLEAPIVERSION)},
    };
    for (const Row& row : rows) {
        LINEINITIALIZEEXPARAMS parameters = {};
        parameters.dwTotalSize = row.size;
        parameters.dwOptions = row.options;
        HLINEAPP handle = 0;
        DWORD devices = 0, answer = row.wanted;
        EXPECT_EQ(
            Service().lineInitializeExA(&handle, nullptr, nullptr, nullptr, &devices, &answer, &parameters),
            row.result)
            << row.name;
        EXPECT_EQ(handle != 0, row.result == 0) << row.name;
        if (handle) {
            EXPECT_EQ(answer, version) << row.name;
            EXPECT_EQ(Service().lineShutdown(handle), 0);
        }
    }
}

TEST_F(Exchange, HandlesOfAnotherKindAreRefused) {
    App app;
    const HLINE line = app.Own(0);
    LINEMESSAGE message = {};
    DWORD answer = 0;
    HLINE opened = 0;
    HCALL call = 0;
    TapiBlock<LINEDEVCAPS> caps;
    const std::pair<LONG, DWORD> rows[] = {
        {Service().lineShutdown(line), LINEERR_INVALAPPHANDLE},
        {Service().lineGetMessage(line, &message, 0), LINEERR_INVALAPPHANDLE},
        {Service().lineNegotiateAPIVersion(line, 0, version, version, &answer, nullptr),
         LINEERR_INVALAPPHANDLE},
        {Service().lineGetDevCapsA(line, 0, version, 0, caps.Get()), LINEERR_INVALAPPHANDLE},
        {Service().lineOpenA(line, 0, &opened, version, 0, 0, LINECALLPRIVILEGE_NONE, 0, nullptr),
         LINEERR_INVALAPPHANDLE},
        {Service().lineClose(app.handle), LINEERR_INVALLINEHANDLE},
        {Service().lineSetNumRings(app.handle, 0, 5), LINEERR_INVALLINEHANDLE},
        {Service().lineMakeCallA(app.handle, &call, "1", 0, nullptr), LINEERR_INVALLINEHANDLE},
        {Service().lineAnswer(line, nullptr, 0), LINEERR_INVALCALLHANDLE},
        {Service().lineDrop(line, nullptr, 0), LINEERR_INVALCALLHANDLE},
        {Service().lineDeallocateCall(line), LINEERR_INVALCALLHANDLE},
        {Service().lineDeallocateCall(0), LINEERR_INVALCALLHANDLE},
    };
    for (const auto& [result, error] : rows)
        EXPECT_EQ(result, Error(error)) << "row " << &result - &rows[0].first;
}

TEST_F(Exchange, VersionIsTheHighestOfBoth) {
    struct Row {
        DWORD low, high, answer;
    };
    const Row rows[] = {{0x10004, 0x20000, 0x20000}, {0x10003, 0x10004, 0x10004}, {0x20000, 0x30001, 0x20000},
                        {0x20001, 0x30001, 0},       {0x10000, 0x10002, 0},       {0x20000, 0x10004, 0}};
    const App app;
    for (const Row& row : rows) {
        DWORD answer = 0;
        const LONG result =
            Service().lineNegotiateAPIVersion(app.handle, 0, row.low, row.high, &answer, nullptr);
        EXPECT_EQ(result, row.answer ? 0 : Error(LINEERR_INCOMPATIBLEAPIVERSION)) << std::hex << row.low;
        EXPECT_EQ(answer, row.answer) << std::hex << row.low << " to " << row.high;
    }
    DWORD answer = 0;
    EXPECT_EQ(Service().lineNegotiateAPIVersion(app.handle, 3, version, version, &answer, nullptr),
              Error(LINEERR_BADDEVICEID));
}

TEST_F(Exchange, CapabilitiesNameTheLine) {
    const App app;
    TapiBlock<LINEDEVCAPS> caps(1000);
    ASSERT_EQ(Service().lineGetDevCapsA(app.handle, 2, version, 0, caps.Get()), 0);
    EXPECT_EQ(caps.TextAt(caps->dwLineNameOffset, caps->dwLineNameSize), "Voice");
    EXPECT_EQ(caps.TextAt(caps->dwProviderInfoOffset, caps->dwProviderInfoSize), "Other");
    EXPECT_EQ(caps->dwMediaModes, DWORD{LINEMEDIAMODE_INTERACTIVEVOICE});
    const DWORD permanentId = caps->dwPermanentLineID;
    ASSERT_EQ(Service().lineGetDevCapsA(app.handle, 1, version, 0, caps.Get()), 0);
    EXPECT_EQ(caps.TextAt(caps->dwLineNameOffset, caps->dwLineNameSize), "Modem Two");
    EXPECT_EQ(caps->dwMediaModes, DWORD{LINEMEDIAMODE_DATAMODEM});
    EXPECT_NE(caps->dwPermanentLineID, permanentId);
    EXPECT_EQ(Service().lineGetDevCapsA(app.handle, 3, version, 0, caps.Get()), Error(LINEERR_BADDEVICEID));
}

// "Tarn" and "Modem One", each with its NUL, behind the part that is always there.
constexpr DWORD capsFixed = 252;
constexpr DWORD capsWhole = capsFixed + 5 + 10;

TEST_F(Exchange, CapabilitiesAreGivenWholeOrWithoutTheirTexts) {
    struct Row {
        DWORD total, used;
        LONG result;
    };
    const Row rows[] = {{capsFixed - 1, 0, Error(LINEERR_STRUCTURETOOSMALL)},
                        {capsFixed, capsFixed, 0},
                        {capsWhole - 1, capsFixed, 0},
                        {capsWhole, capsWhole, 0},
                        {capsWhole + 1, capsWhole, 0}};
    const App app;
    for (const Row& row : rows) {
        std::array<std::byte, 400> bytes;
        bytes.fill(std::byte{0xEE});
        auto* caps = reinterpret_cast<LINEDEVCAPS*>(bytes.data());
        caps->dwTotalSize = row.total;
        EXPECT_EQ(Service().lineGetDevCapsA(app.handle, 0, version, 0, caps), row.result) << row.total;
        EXPECT_EQ(caps->dwTotalSize, row.total);
        EXPECT_EQ(caps->dwNeededSize, capsWhole) << row.total;
        EXPECT_EQ(bytes[row.total], std::byte{0xEE}) << "beyond " << row.total;
        if (row.result)
            continue;
        EXPECT_EQ(caps->dwUsedSize, row.used) << row.total;
        EXPECT_EQ(caps->dwLineNameSize, row.used == capsWhole ? 10u : 0u) << row.total;
        EXPECT_EQ(caps->dwMediaModes, DWORD{LINEMEDIAMODE_DATAMODEM}) << row.total;
    }
}

TEST_F(Exchange, DemandForMoreMakesTheCallerAskAgain) {
    const App app;
    ExchangeDemandMore(50);
    TapiBlock<LINEDEVCAPS> caps(capsWhole);
    ASSERT_EQ(Service().lineGetDevCapsA(app.handle, 0, version, 0, caps.Get()), 0);
    EXPECT_EQ(caps->dwNeededSize, capsWhole + 50);
    EXPECT_EQ(caps->dwLineNameSize, 0u);
    EXPECT_EQ(caps.Fill([&](LINEDEVCAPS* block) {
        return Service().lineGetDevCapsA(app.handle, 0, version, 0, block);
    }),
              0);
    EXPECT_EQ(caps.TextAt(caps->dwLineNameOffset, caps->dwLineNameSize), "Modem One");
}

// Lines

TEST_F(Exchange, OpeningLooksAtEveryArgument) {
    struct Row {
        const char* name;
        DWORD device, apiVersion, privileges, media;
        LONG result;
    };
    constexpr DWORD none = LINECALLPRIVILEGE_NONE, owner = LINECALLPRIVILEGE_OWNER,
                    data = LINEMEDIAMODE_DATAMODEM;
    const Row rows[] = {
        {"dial", 0, version, none, data, 0},
        {"own", 0, version, owner, data, 0},
        {"device", 3, version, none, data, Error(LINEERR_BADDEVICEID)},
        {"version", 0, 0x30000, none, data, Error(LINEERR_INCOMPATIBLEAPIVERSION)},
        {"privilege", 0, version, 8, data, Error(LINEERR_INVALPRIVSELECT)},
        {"media of an owner", 2, version, owner, data, Error(LINEERR_INVALMEDIAMODE)},
        {"media of a dialler", 2, version, none, data, 0},
    };
    const App app;
    for (const Row& row : rows) {
        HLINE line = 0;
        EXPECT_EQ(Service().lineOpenA(app.handle, row.device, &line, row.apiVersion, 0, 0, row.privileges,
                                      row.media, nullptr),
                  row.result)
            << row.name;
        EXPECT_EQ(line != 0, row.result == 0) << row.name;
    }
    EXPECT_EQ(Holdings().lines, 3u);
}

TEST_F(Exchange, ShutdownClosesWhatIsOpen) {
    {
        App app;
        app.Own(0);
        app.Open(1);
        ExchangeRing(0);
        EXPECT_EQ(Holdings().applications, 1u);
        EXPECT_EQ(Holdings().lines, 2u);
        EXPECT_EQ(Holdings().calls, 1u);
    }
    EXPECT_EQ(Holdings().applications, 0u);
    EXPECT_EQ(Holdings().lines, 0u);
    EXPECT_EQ(Holdings().calls, 0u);
}

TEST_F(Exchange, ResetLeavesApplicationsAlive) {
    App app;
    app.Own(0);
    ExchangeSendMessage(0, LINE_CLOSE, 0, 0, 0);
    EXPECT_TRUE(app.HasMessage());
    ExchangeReset();
    EXPECT_EQ(Holdings().applications, 1u);
    EXPECT_EQ(Holdings().lines, 0u);
    EXPECT_FALSE(app.HasMessage());
    EXPECT_EQ(app.Open(0), 0u) << "there is no line";
    ExchangeAddLine("New", "", LINEMEDIAMODE_DATAMODEM, nullptr, nullptr);
    EXPECT_NE(app.Open(0), 0u);
}

TEST_F(Exchange, EventIsSignalledWhileAMessageWaits) {
    App app;
    const HLINE line = app.Own(0);
    LINEMESSAGE message = {};
    EXPECT_EQ(Service().lineGetMessage(app.handle, &message, 0), Error(LINEERR_OPERATIONFAILED));
    ExchangeSendMessage(0, LINE_ADDRESSSTATE, 1, 2, 3);
    ExchangeSendMessage(0, LINE_CLOSE, 0, 0, 0);
    ExchangeSendMessage(1, LINE_CLOSE, 0, 0, 0); // nobody has it open
    ASSERT_TRUE(app.Next(message, 0));
    EXPECT_EQ(message.hDevice, line);
    EXPECT_EQ(message.dwMessageID, DWORD{LINE_ADDRESSSTATE});
    EXPECT_EQ(message.dwCallbackInstance, 1000u);
    EXPECT_EQ(message.dwParam1, 1u);
    EXPECT_EQ(message.dwParam2, 2u);
    EXPECT_EQ(message.dwParam3, 3u);
    ASSERT_TRUE(app.HasMessage());
    EXPECT_EQ(app.Take(1), (Messages{{LINE_CLOSE, 0}}));
    EXPECT_FALSE(app.HasMessage());
}

// Calls

TEST_F(Exchange, CallToASubscriberOutsideConnects) {
    ExchangeAddRule("5551234", ExchangeConnects, 0);
    App app;
    const HLINE line = app.Open(0);
    HCALL call = 0;
    const LONG request = Call(line, "5551234", call);
    ASSERT_GT(request, 0);
    EXPECT_EQ(app.Take(1), (Messages{{LINE_REPLY, 0}}));
    EXPECT_EQ(app.last.dwParam1, static_cast<DWORD_PTR>(request));
    EXPECT_NE(call, 0u) << "written before the reply";
    EXPECT_EQ(app.Take(1), (Messages{{LINE_CALLSTATE, LINECALLSTATE_DIALTONE}}));
    EXPECT_EQ(app.last.hDevice, call);
    EXPECT_EQ(app.last.dwParam2, DWORD{LINEDIALTONEMODE_NORMAL});
    EXPECT_EQ(app.last.dwParam3, DWORD{LINECALLPRIVILEGE_OWNER});
    EXPECT_EQ(app.Take(4), (Messages{{LINE_CALLSTATE, LINECALLSTATE_DIALING},
                                     {LINE_CALLSTATE, LINECALLSTATE_PROCEEDING},
                                     {LINE_CALLSTATE, LINECALLSTATE_RINGBACK},
                                     {LINE_CALLSTATE, LINECALLSTATE_CONNECTED}}));
    EXPECT_EQ(app.last.dwParam3, 0u);
}

// How each outcome ends: the last state with its mode, after a good reply.
TEST_F(Exchange, OutcomesEndAsTheirRuleSays) {
    struct Row {
        int outcome;
        DWORD argument, state, mode;
    };
    const Row rows[] = {
        {ExchangeBusy, 0, LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_BUSY},
        {ExchangeBusyStateOnly, 0, LINECALLSTATE_BUSY, LINEBUSYMODE_STATION},
        {ExchangeNoAnswer, 0, LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_NOANSWER},
        {ExchangeDisconnects, LINEDISCONNECTMODE_REJECT, LINECALLSTATE_DISCONNECTED,
         LINEDISCONNECTMODE_REJECT},
        {ExchangeIdle, 0, LINECALLSTATE_IDLE, 0},
        {ExchangeRings, 0, LINECALLSTATE_RINGBACK, 0},
    };
    for (const Row& row : rows) {
        App app;
        const HLINE line = app.Open(0);
        ExchangeAddRule("5551234", row.outcome, row.argument);
        HCALL call = 0;
        ASSERT_GT(Call(line, "5551234", call), 0);
        ASSERT_TRUE(app.Reach(row.state)) << "outcome " << row.outcome;
        EXPECT_EQ(app.last.dwParam2, row.mode) << "outcome " << row.outcome;
        LINEMESSAGE message = {};
        EXPECT_FALSE(app.Next(message, 30)) << "outcome " << row.outcome << " goes on";
    }
}

TEST_F(Exchange, FailingReplyLeavesNoCall) {
    ExchangeAddRule("1", ExchangeReplyFails, LINEERR_CALLUNAVAIL);
    App app;
    HCALL call = 0;
    ASSERT_GT(Call(app.Open(0), "1", call), 0);
    EXPECT_EQ(app.Take(1), (Messages{{LINE_REPLY, LINEERR_CALLUNAVAIL}}));
    EXPECT_LT(static_cast<LONG_PTR>(app.last.dwParam2), 0);
    EXPECT_EQ(call, 0u);
    EXPECT_EQ(Holdings().calls, 0u);
}

TEST_F(Exchange, FailingRequestSaysSoAtOnce) {
    ExchangeAddRule("1", ExchangeRequestFails, LINEERR_INUSE);
    App app;
    HCALL call = 0;
    EXPECT_EQ(Call(app.Open(0), "1", call), Error(LINEERR_INUSE));
    LINEMESSAGE message = {};
    EXPECT_FALSE(app.Next(message, 30));
}

TEST_F(Exchange, SilentServiceAcceptsAndSaysNothing) {
    ExchangeAddRule("1", ExchangeNeverReplies, 0);
    App app;
    HCALL call = 0;
    EXPECT_GT(Call(app.Open(0), "1", call), 0);
    LINEMESSAGE message = {};
    EXPECT_FALSE(app.Next(message, 30));
    EXPECT_EQ(call, 0u);
}

TEST_F(Exchange, DyingServiceSignalsButHasNoMessage) {
    ExchangeAddRule("1", ExchangeMessagesFail, 0);
    App app;
    const App other;
    HCALL call = 0;
    ASSERT_GT(Call(app.Open(0), "1", call), 0);
    EXPECT_EQ(app.Take(1), (Messages{{LINE_REPLY, 0}}));
    LINEMESSAGE message = {};
    EXPECT_FALSE(app.Next(message));
    EXPECT_TRUE(app.HasMessage());
    ASSERT_TRUE(other.HasMessage());
    EXPECT_EQ(Service().lineGetMessage(other.handle, &message, 0), Error(LINEERR_OPERATIONFAILED));
}

TEST_F(Exchange, UnknownNumberIsABadAddress) {
    App app;
    HCALL call = 0;
    ASSERT_GT(Call(app.Open(0), "999", call), 0);
    ASSERT_TRUE(app.Reach(LINECALLSTATE_DISCONNECTED));
    EXPECT_EQ(app.last.dwParam2, DWORD{LINEDISCONNECTMODE_BADADDRESS});
}

TEST_F(Exchange, LineTakesOneCall) {
    ExchangeAddRule("1", ExchangeRings, 0);
    App app;
    const HLINE line = app.Open(0);
    HCALL call = 0, second = 0;
    ASSERT_GT(Call(line, "1", call), 0);
    ASSERT_TRUE(app.Reach(LINECALLSTATE_RINGBACK));
    EXPECT_EQ(Call(line, "1", second), Error(LINEERR_CALLUNAVAIL));
}

TEST_F(Exchange, RingGivesTheCallOfTheFirstOwner) {
    App app;
    EXPECT_EQ(ExchangeRing(0), 0u) << "no one has it open";
    app.Own(0);
    const DWORD call = ExchangeRing(0);
    ASSERT_TRUE(app.Reach(LINECALLSTATE_OFFERING));
    EXPECT_EQ(app.last.hDevice, call);
    ASSERT_GT(Service().lineAnswer(call, nullptr, 0), 0);
    EXPECT_TRUE(app.Reach(LINECALLSTATE_CONNECTED));
}

TEST_F(Exchange, ReplyIsNotWrittenToAClosedLine) {
    ExchangeAddRule("1", ExchangeConnects, 0);
    App app;
    for (int turn = 0; turn < 200; ++turn) {
        const HLINE line = app.Open(0);
        auto call = std::make_unique<HCALL>(0);
        ASSERT_GT(Call(line, "1", *call), 0);
        EXPECT_EQ(Service().lineClose(line), 0);
        call.reset();
        EXPECT_EQ(Holdings().calls, 0u);
    }
}

// Locations, countries, numbers, configurations

TEST_F(Exchange, LocationsComeWithTheirTexts) {
    const App app;
    ExchangeAddCountry("Germany", 49, 49);
    ExchangeAddCountry("Canada", 107, 1);
    ExchangeAddLocation("Home", "30", 49, 5);
    ExchangeAddLocation("Office", "416", 107, 9);
    ExchangeSetCurrentLocation(9);
    TapiBlock<LINETRANSLATECAPS> caps;
    const auto ask = [&](LINETRANSLATECAPS* block) {
        return Service().lineGetTranslateCapsA(app.handle, version, block);
    };
    ASSERT_EQ(ask(caps.Get()), 0);
    EXPECT_EQ(caps->dwNumLocations, 0u) << "cut";
    EXPECT_EQ(caps->dwCurrentLocationID, 9u);
    ASSERT_EQ(caps.Fill(ask), 0);
    ASSERT_EQ(caps->dwNumLocations, 2u);
    const auto* entry = reinterpret_cast<const LINELOCATIONENTRY*>(
        caps.At(caps->dwLocationListOffset, 2 * sizeof(LINELOCATIONENTRY)));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry[0].dwPermanentLocationID, 5u);
    EXPECT_EQ(caps.TextAt(entry[0].dwLocationNameOffset, entry[0].dwLocationNameSize), "Home");
    EXPECT_EQ(caps.TextAt(entry[1].dwLocationNameOffset, entry[1].dwLocationNameSize), "Office");
    EXPECT_EQ(caps.TextAt(entry[1].dwCityCodeOffset, entry[1].dwCityCodeSize), "416");
    EXPECT_EQ(entry[1].dwCountryID, 107u);
    EXPECT_EQ(entry[1].dwCountryCode, 1u);
    EXPECT_EQ(Service().lineSetCurrentLocation(app.handle, 6), Error(LINEERR_INVALLOCATION));
    EXPECT_EQ(Service().lineSetCurrentLocation(app.handle, 5), 0);
    ASSERT_EQ(ask(caps.Get()), 0);
    EXPECT_EQ(caps->dwCurrentLocationID, 5u);
}

TEST_F(Exchange, CountryZeroIsAllOfThem) {
    ExchangeAddCountry("Germany", 49, 49);
    ExchangeAddCountry("Canada", 107, 1);
    TapiBlock<LINECOUNTRYLIST> list;
    const auto ask = [](DWORD country) {
        return
            [country](LINECOUNTRYLIST* block) { return Service().lineGetCountryA(country, version, block); };
    };
    ASSERT_EQ(list.Fill(ask(0)), 0);
    ASSERT_EQ(list->dwNumCountries, 2u);
    const auto* entry = reinterpret_cast<const LINECOUNTRYENTRY*>(
        list.At(list->dwCountryListOffset, 2 * sizeof(LINECOUNTRYENTRY)));
    EXPECT_EQ(list.TextAt(entry[0].dwCountryNameOffset, entry[0].dwCountryNameSize), "Germany");
    EXPECT_EQ(entry[0].dwNextCountryID, 107u);
    EXPECT_EQ(list.TextAt(entry[1].dwCountryNameOffset, entry[1].dwCountryNameSize), "Canada");
    EXPECT_EQ(entry[1].dwCountryCode, 1u);
    ASSERT_EQ(list.Fill(ask(107)), 0);
    EXPECT_EQ(list->dwNumCountries, 1u);
    EXPECT_EQ(list.Fill(ask(50)), Error(LINEERR_INVALCOUNTRYCODE));
}

TEST_F(Exchange, NumbersAreTranslatedByRuleOrToTheirDigits) {
    const App app;
    ExchangeAddTranslation("+1 (416) 555-1234", "5551234");
    const auto translate = [&](const char* number) {
        TapiBlock<LINETRANSLATEOUTPUT> output;
        EXPECT_EQ(output.Fill([&](LINETRANSLATEOUTPUT* block) {
            return Service().lineTranslateAddressA(app.handle, 0, version, number, 0, 0, block);
        }),
                  0);
        return output.TextAt(output->dwDialableStringOffset, output->dwDialableStringSize);
    };
    EXPECT_EQ(translate("+1 (416) 555-1234"), "5551234");
    EXPECT_EQ(translate("+49 (30) 12-34"), "49301234");
    EXPECT_EQ(translate(""), "");
}

TEST_F(Exchange, ConfigurationIsKept) {
    const std::array<unsigned char, 4> bytes = {1, 0, 0x75, 0xFF};
    ExchangeSetDeviceConfig(1, bytes.data(), 3);
    TapiBlock<VARSTRING> config;
    const auto ask = [](VARSTRING* block) { return Service().lineGetDevConfigA(1, block, "comm"); };
    ASSERT_EQ(config.Fill(ask), 0);
    EXPECT_EQ(config->dwStringSize, 3u);
    ASSERT_EQ(Service().lineSetDevConfigA(1, const_cast<unsigned char*>(bytes.data()), 4, "COMM"), 0);
    ASSERT_EQ(config.Fill(ask), 0);
    ASSERT_EQ(config->dwStringSize, 4u);
    EXPECT_EQ(std::memcmp(config.At(config->dwStringOffset, 4), bytes.data(), 4), 0);
    EXPECT_EQ(Service().lineGetDevConfigA(9, config.Get(), "COMM"), Error(LINEERR_BADDEVICEID));
    EXPECT_EQ(Service().lineGetDevConfigA(1, config.Get(), "tapi/line"), Error(LINEERR_INVALDEVICECLASS));
}

// Record, faults, file

TEST_F(Exchange, RecordShowsWhatWasAsked) {
    ExchangeAddRule("5551234", ExchangeNeverReplies, 0);
    App app;
    ExchangeClearRecord();
    const HLINE line = app.Own(0);
    Service().lineSetNumRings(line, 0, 5);
    LINECALLPARAMS parameters = {};
    parameters.dwTotalSize = 176;
    parameters.dwBearerMode = LINEBEARERMODE_VOICE;
    parameters.dwMaxRate = 9600;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    parameters.dwCallParamFlags = LINECALLPARAMFLAGS_IDLE;
    parameters.dwAddressMode = LINEADDRESSMODE_ADDRESSID;
    parameters.DialParams.dwWaitForDialtone = 4000;
    HCALL call = 0;
    Call(line, "5551234", call, &parameters);
    Service().lineConfigDialogA(0, nullptr, "COMM");
    Service().lineConfigDialogA(0, GetDesktopWindow(), "COMM");
    Service().lineClose(line);
    EXPECT_EQ(RecordText(), "lineOpen device=0 privileges=owner media=10\n"
                            "lineSetNumRings address=0 rings=5\n"
                            "lineMakeCall number=5551234 country=0 size=176 bearer=1 maxrate=9600 media=10 "
                            "flags=2 addressmode=1 dialtone=4000\n"
                            "lineConfigDialog device=0 class=COMM owner=0\n"
                            "lineConfigDialog device=0 class=COMM owner=1\n"
                            "lineClose\n");
    std::array<char, 5> text = {};
    EXPECT_EQ(ExchangeRecord(text.data(), text.size()), RecordText().size());
    EXPECT_STREQ(text.data(), "line");
}

TEST_F(Exchange, FaultLastsForItsTimes) {
    App app;
    ExchangeFail("lineOpenA", Error(LINEERR_RESOURCEUNAVAIL), 2);
    for (const LONG result : {Error(LINEERR_RESOURCEUNAVAIL), Error(LINEERR_RESOURCEUNAVAIL), LONG{0}}) {
        app.Open(0);
        EXPECT_EQ(app.openResult, result);
    }
    ExchangeFail("lineOpenA", Error(LINEERR_INUSE), INFINITE);
    for (int turn = 0; turn < 3; ++turn)
        EXPECT_EQ(app.Open(0), 0u);
    ExchangeFail("lineOpenA", 0, 0);
    EXPECT_NE(app.Open(0), 0u);
}

TEST_F(Exchange, EveryFunctionCanFail) {
    const App app;
    LINEMESSAGE message = {};
    ExchangeFail("lineGetMessage", Error(LINEERR_NOMEM), 1);
    EXPECT_EQ(Service().lineGetMessage(app.handle, &message, 0), Error(LINEERR_NOMEM));
    ExchangeFail("lineClose", Error(LINEERR_NOMEM), 1);
    EXPECT_EQ(Service().lineClose(nowhere), Error(LINEERR_NOMEM));
    ExchangeFail("lineGetIDA", Error(LINEERR_NOMEM), 1);
    EXPECT_EQ(Service().lineGetIDA(0, 0, 0, 0, nullptr, nullptr), Error(LINEERR_NOMEM));
}

TEST_F(Exchange, SuccessThatDoesNothing) {
    ExchangeFail("lineInitializeExA", 0, 1);
    const App app;
    EXPECT_EQ(app.result, 0);
    EXPECT_EQ(app.handle, 0u);
    EXPECT_EQ(app.event, nullptr);
    EXPECT_EQ(app.devices, nowhere) << "untouched";
    EXPECT_EQ(Holdings().applications, 0u);
}

TEST_F(Exchange, DelayHoldsAFunctionUp) {
    App app;
    const HLINE line = app.Open(0);
    ExchangeDelay("lineClose", 300);
    const DWORD start = GetTickCount();
    EXPECT_EQ(Service().lineClose(line), 0);
    EXPECT_GE(GetTickCount() - start, 250u) << "ticks are coarse";
}

// A file that the environment names, for as long as this lives.
class NamedFile {
  public:
    explicit NamedFile(const char* text) {
        std::array<char, MAX_PATH> folder = {};
        GetTempPathA(static_cast<DWORD>(folder.size()), folder.data());
        path_ = std::string(folder.data()) + "tarn-exchange.txt";
        std::ofstream(path_) << text;
        SetEnvironmentVariableA("TARN_EXCHANGE", path_.c_str());
    }
    ~NamedFile() {
        SetEnvironmentVariableA("TARN_EXCHANGE", nullptr);
        DeleteFileA(path_.c_str());
    }
    NamedFile(const NamedFile&) = delete;
    NamedFile& operator=(const NamedFile&) = delete;

  private:
    std::string path_;
};

TEST_F(Exchange, FileSetsUpAProgramThatAsksForNothing) {
    ExchangeReset();
    const NamedFile file("# a comment\n"
                         "\n"
                         "country Canada|107|1\n"
                         "location Home Office|416|107|3\n"
                         "current 3\n"
                         "line Modem A|Tarn Works|5550001|COM5\n"
                         "line Modem B||5550002\n"
                         "rule 5551234|replyfails|0x80000005\n"
                         "translation +1 (416) 2|777\n"
                         "nonsense\n"
                         "pace 1\n");
    App app;
    ASSERT_EQ(app.devices, 2u);
    TapiBlock<LINEDEVCAPS> device(1000);
    ASSERT_EQ(Service().lineGetDevCapsA(app.handle, 0, version, 0, device.Get()), 0);
    EXPECT_EQ(device.TextAt(device->dwLineNameOffset, device->dwLineNameSize), "Modem A");
    EXPECT_EQ(device.TextAt(device->dwProviderInfoOffset, device->dwProviderInfoSize), "Tarn Works");
    EXPECT_EQ(device->dwMediaModes, DWORD{LINEMEDIAMODE_DATAMODEM});
    TapiBlock<LINETRANSLATECAPS> places(1000);
    ASSERT_EQ(Service().lineGetTranslateCapsA(app.handle, version, places.Get()), 0);
    EXPECT_EQ(places->dwNumLocations, 1u);
    EXPECT_EQ(places->dwCurrentLocationID, 3u);
    HCALL call = 0;
    const HLINE line = app.Open(0);
    ASSERT_GT(Call(line, "5551234", call), 0);
    EXPECT_EQ(app.Take(1), (Messages{{LINE_REPLY, LINEERR_CALLUNAVAIL}}));
    const App again;
    EXPECT_EQ(again.devices, 2u) << "the file is read once";
}

} // namespace
