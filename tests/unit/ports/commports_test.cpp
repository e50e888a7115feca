// The collection of ports, alone and as the control gives it.
#include "control/collections.h"
#include "control/TarnCommCtl.h"
#include "portstest.h"
#include "support/every.h"
#include "support/host.h"

#include <comdef.h>

namespace {

using host::ScriptedPorts;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Ansi(const _bstr_t& text) {
    return AnsiOf(static_cast<const wchar_t*>(text));
}

LONG CountOf(ICommPort* ports) {
    LONG count = -1;
    EXPECT_EQ(ports->get_Count(&count), S_OK);
    return count;
}

std::string ItemOf(ICommPort* ports, LONG index) {
    _bstr_t text;
    EXPECT_EQ(ports->get_Item(index, text.GetAddress()), S_OK);
    return Ansi(text);
}

std::vector<std::string> Walk(ICommPort* ports) {
    std::vector<std::string> texts;
    ComPtr<IUnknown> unknown;
    ComPtr<IEnumVARIANT> enumerator;
    EXPECT_EQ(ports->get__NewEnum(&unknown), S_OK);
    EXPECT_EQ(unknown.As(&enumerator), S_OK);
    _variant_t item;
    while (enumerator->Next(1, &item, nullptr) == S_OK) {
        texts.push_back(Ansi(_bstr_t(item)));
        item.Clear();
    }
    return texts;
}

class CommPorts : public host::PortsTest {
  protected:
    CommPorts() {
        EXPECT_EQ(NewObject(ports), S_OK);
        ports->Contents().Attach(telephony);
    }

    host::NoCalls owner;
    const CTapiApp telephony{owner};
    ComPtr<CCommPort> ports;
};

TEST_F(CommPorts, EachUseReadsTheMachine) {
    ScriptedPorts::Plug("COM3");
    ScriptedPorts::Plug("COM1");
    EXPECT_EQ(CountOf(ports.Get()), 2);
    EXPECT_EQ(ItemOf(ports.Get(), 1), "COM3");
    EXPECT_EQ(ItemOf(ports.Get(), 2), "COM1");
    EXPECT_THAT(Walk(ports.Get()), ElementsAre("COM3", "COM1"));
}

struct FirstUse {
    const char* name;
    HRESULT (*use)(ICommPort* ports);
};

const FirstUse firstUses[] = {
    {"Count", [](ICommPort* ports) { return CountOf(ports) == 1 ? S_OK : S_FALSE; }},
    {"Item", [](ICommPort* ports) { return ItemOf(ports, 1) == "COM1" ? S_OK : S_FALSE; }},
    {"NewEnum", [](ICommPort* ports) { return Walk(ports).size() == 1 ? S_OK : S_FALSE; }},
};

TEST_F(CommPorts, AnyMemberMayBeTheFirst) {
    ScriptedPorts::Plug("COM1");
    for (const FirstUse& row : firstUses) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(NewObject(ports), S_OK);
        ports->Contents().Attach(telephony);
        EXPECT_EQ(row.use(ports.Get()), S_OK);
    }
}

TEST_F(CommPorts, AnIndexBelowOneIsInvalidAndOneBehindTheEndFails) {
    ScriptedPorts::Plug("COM1");
    const LONG count = CountOf(ports.Get());
    for (const LONG index : {0L, -1L, LONG_MIN}) {
        BSTR text = nullptr;
        EXPECT_EQ(ports->get_Item(index, &text), E_INVALIDARG) << index;
        EXPECT_EQ(text, nullptr);
    }
    for (const LONG index : {count + 1, LONG_MAX}) {
        BSTR text = nullptr;
        EXPECT_EQ(ports->get_Item(index, &text), E_FAIL) << index;
        EXPECT_EQ(text, nullptr);
    }
}

TEST_F(CommPorts, NullPointersAreRefused) {
    EXPECT_EQ(ports->get_Item(1, nullptr), E_POINTER);
    EXPECT_EQ(ports->get_Count(nullptr), E_POINTER);
    EXPECT_EQ(ports->get__NewEnum(nullptr), E_POINTER);
}

// Where the machine is too slow for two walks within the limit, they are taken again.
TEST_F(CommPorts, TwoWalksWithin2SecondsSeeOneFill) {
    ScriptedPorts::Plug("COM2");
    bool wereSoon = false;
    size_t asked = 0;
    for (int turn = 0; turn < 10 && !wereSoon; ++turn) {
        ForgetHighestPort();
        EXPECT_EQ(NewObject(ports), S_OK);
        ports->Contents().Attach(telephony);
        ScriptedPorts::TakeAsked();
        const host::Clock clock;
        for (int walk = 0; walk < 2; ++walk) {
            const LONG count = CountOf(ports.Get());
            for (LONG index = 1; index <= count; ++index)
                EXPECT_EQ(ItemOf(ports.Get(), index), "COM2");
            EXPECT_THAT(Walk(ports.Get()), ElementsAre("COM2"));
        }
        asked = ScriptedPorts::AskedCount();
        wereSoon = clock.Gone() < rest;
    }
    ASSERT_TRUE(wereSoon);
    EXPECT_EQ(asked, 128u);
}

TEST_F(CommPorts, AreReadAnewLater) {
    ScriptedPorts::Plug("COM2");
    EXPECT_EQ(CountOf(ports.Get()), 1);
    ScriptedPorts::Plug("COM1");
    EXPECT_TRUE(host::PumpUntil([&] { return CountOf(ports.Get()) == 2; }, 30000));
}

TEST_F(CommPorts, AWalkUnderWayKeepsItsList) {
    ScriptedPorts::Plug("COM2");
    ComPtr<IUnknown> unknown;
    ASSERT_EQ(ports->get__NewEnum(&unknown), S_OK);
    ScriptedPorts::Unplug("COM2");
    EXPECT_TRUE(host::PumpUntil([&] { return CountOf(ports.Get()) == 0; }, 30000));
    ComPtr<IEnumVARIANT> enumerator;
    ASSERT_EQ(unknown.As(&enumerator), S_OK);
    _variant_t item;
    EXPECT_EQ(enumerator->Next(1, &item, nullptr), S_OK);
    EXPECT_EQ(Ansi(_bstr_t(item)), "COM2");
}

TEST_F(CommPorts, DetachedKeepsItsList) {
    ScriptedPorts::Plug("COM2");
    EXPECT_EQ(CountOf(ports.Get()), 1);
    ports->Contents().Detach();
    ScriptedPorts::TakeAsked();
    EXPECT_THAT(Walk(ports.Get()), ElementsAre("COM2"));
    EXPECT_EQ(ItemOf(ports.Get(), 1), "COM2");
    EXPECT_EQ(ScriptedPorts::AskedCount(), 0u);
}

class ControlsCommPorts : public host::PortsTest {
  protected:
    ControlsCommPorts() { CoInitialize(nullptr); }
    ~ControlsCommPorts() override {
        ports.Reset();
        control.Reset();
        CoUninitialize();
    }
    void Make() {
        ASSERT_EQ(NewObject(control), S_OK);
        ASSERT_EQ(control->get_CommPorts(&ports), S_OK);
        ASSERT_TRUE(ports);
    }

    ComPtr<CTarnCommCtl> control;
    ComPtr<ICommPort> ports;
};

TEST_F(ControlsCommPorts, NamePortsAndModems) {
    ScriptedPorts::Plug("COM2");
    host::AddModem("Alpha");
    Make();
    EXPECT_THAT(Walk(ports.Get()), ElementsAre("COM2", "Alpha"));
    EXPECT_EQ(control->get_CommPorts(nullptr), E_POINTER);
}

TEST_F(ControlsCommPorts, AreReadByThePropertyItself) {
    ASSERT_EQ(NewObject(control), S_OK);
    EXPECT_EQ(ScriptedPorts::AskedCount(), 0u);
    EXPECT_EQ(control->get_CommPorts(&ports), S_OK);
    EXPECT_EQ(ScriptedPorts::AskedCount(), 128u);
}

TEST_F(ControlsCommPorts, AreOneCollection) {
    Make();
    ComPtr<ICommPort> again;
    EXPECT_EQ(control->get_CommPorts(&again), S_OK);
    EXPECT_EQ(again.Get(), ports.Get());
}

TEST_F(ControlsCommPorts, OutliveTheControl) {
    ScriptedPorts::Plug("COM2");
    host::AddModem("Alpha");
    Make();
    control.Reset();
    ExchangeClearRecord();
    ScriptedPorts::TakeAsked();
    const host::Clock clock;
    EXPECT_TRUE(host::PumpUntil([&] { return clock.Gone() > rest; }, 30000)) << "a list may be read anew";
    EXPECT_THAT(Walk(ports.Get()), ElementsAre("COM2", "Alpha"));
    EXPECT_EQ(ScriptedPorts::AskedCount(), 0u);
}

} // namespace
