// Sinks: their order, what they may do inside of an event, change notification.
#include "toycontrol.h"

#include "support/sinks.h"

#include <gtest/gtest.h>

namespace {

class ComEvents : public testing::Test {
  public:
    ComEvents() {
        EXPECT_EQ(NewObject(toy), S_OK);
        EXPECT_EQ(toy->FindConnectionPoint(__uuidof(_IToyEvents), &point), S_OK);
    }
    DWORD Connect(IUnknown& sink) {
        DWORD cookie = 0;
        EXPECT_EQ(point->Advise(&sink, &cookie), S_OK);
        return cookie;
    }
    void Fire() { toy->FireHappened(L"text", key, cancel); }

    ComPtr<ToyControl> toy;
    ComPtr<IConnectionPoint> point;
    short key = 1;
    VARIANT_BOOL cancel = VARIANT_FALSE;
};

using host::EventSink;
const IID& events = __uuidof(_IToyEvents);

TEST_F(ComEvents, SinksAreToldInOrderAndSeeWhatEarlierOnesWrote) {
    std::vector<std::wstring> seen;
    const auto doubling = [&](DISPID, DISPPARAMS& arguments) {
        ASSERT_EQ(arguments.cArgs, 3u);
        EXPECT_EQ(V_VT(&arguments.rgvarg[0]), VT_BYREF | VT_BOOL) << "the last one first";
        short& shared = *V_I2REF(&arguments.rgvarg[1]);
        seen.push_back(std::wstring(V_BSTR(&arguments.rgvarg[2])) + std::to_wstring(shared));
        shared = static_cast<short>(shared * 2);
    };
    EventSink first(events, doubling), second(events, doubling);
    Connect(first);
    Connect(second);
    Fire();
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"text1", L"text2"}));
    EXPECT_EQ(key, 4);
    EXPECT_EQ(first.events, std::vector<DISPID>{1});
    toy->ConnectionPoints::LetGo();
}

TEST_F(ComEvents, CookiesAreNotUsedTwice) {
    EventSink sink(events);
    const DWORD first = Connect(sink);
    EXPECT_NE(first, 0u);
    EXPECT_EQ(point->Unadvise(first), S_OK);
    EXPECT_EQ(point->Unadvise(first), CONNECT_E_NOCONNECTION);
    const DWORD second = Connect(sink);
    EXPECT_NE(first, second);
    EXPECT_EQ(point->Unadvise(second), S_OK);
    EXPECT_EQ(sink.References(), 0u);
}

TEST_F(ComEvents, SinkWithoutTheInterfaceIsRefused) {
    host::PropertySink stranger;
    DWORD cookie = 9;
    EXPECT_EQ(point->Advise(&stranger, &cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(stranger.References(), 0u);
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
}

TEST_F(ComEvents, SinkThatLeavesInsideGetsNoMoreAndItsFollowerStillGetsIt) {
    DWORD cookie = 0;
    EventSink leaving(events, [&](DISPID, DISPPARAMS&) { point->Unadvise(cookie); });
    EventSink follower(events);
    cookie = Connect(leaving);
    const DWORD second = Connect(follower);
    Fire();
    Fire();
    EXPECT_EQ(leaving.events.size(), 1u);
    EXPECT_EQ(follower.events.size(), 2u);
    point->Unadvise(second);
    EXPECT_EQ(leaving.References() + follower.References(), 0u);
}

TEST_F(ComEvents, SinkThatIsDisconnectedByAnEarlierOneIsNotTold) {
    DWORD victimCookie = 0;
    EventSink cruel(events, [&](DISPID, DISPPARAMS&) { point->Unadvise(victimCookie); });
    EventSink victim(events);
    const DWORD cookie = Connect(cruel);
    victimCookie = Connect(victim);
    Fire();
    EXPECT_TRUE(victim.events.empty());
    EXPECT_EQ(victim.References(), 0u);
    point->Unadvise(cookie);
}

TEST_F(ComEvents, SinkThatComesInsideGetsTheNextEvent) {
    EventSink late(events);
    EventSink inviting(events, [&](DISPID, DISPPARAMS&) {
        if (late.References() == 0)
            Connect(late);
    });
    Connect(inviting);
    Fire();
    EXPECT_TRUE(late.events.empty());
    Fire();
    EXPECT_EQ(late.events.size(), 1u);
    toy->ConnectionPoints::LetGo();
}

TEST_F(ComEvents, ObjectMayBeReleasedInsideOfItsEvent) {
    const int alive = ToyControl::alive;
    EventSink last(events);
    EventSink killer(events, [&](DISPID, DISPPARAMS&) {
        point.Reset();
        toy.Reset();
    });
    Connect(killer);
    Connect(last);
    toy->FireHappened(L"the last", key, cancel);
    EXPECT_EQ(last.events.size(), 1u) << "held until all have been told";
    EXPECT_EQ(ToyControl::alive, alive - 1);
    EXPECT_EQ(killer.References() + last.References(), 0u);
}

TEST_F(ComEvents, PropertyChangesAreAskedForAndTold) {
    host::PropertySink sink;
    ComPtr<IConnectionPoint> properties;
    ASSERT_EQ(toy->FindConnectionPoint(IID_IPropertyNotifySink, &properties), S_OK);
    DWORD cookie = 0;
    ASSERT_EQ(properties->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(toy->put_Text(_bstr_t(L"yes")), S_OK);
    EXPECT_EQ(sink.asked, std::vector<DISPID>{1});
    EXPECT_EQ(sink.changed, std::vector<DISPID>{1});
    sink.allow = false;
    EXPECT_EQ(toy->put_Text(_bstr_t(L"no")), S_FALSE);
    EXPECT_EQ(sink.changed.size(), 1u);
    _bstr_t text;
    toy->get_Text(text.GetAddress());
    EXPECT_STREQ(text, L"yes");
    properties->Unadvise(cookie);
}

TEST_F(ComEvents, PointsAndConnectionsAreEnumerated) {
    ComPtr<IEnumConnectionPoints> points;
    ASSERT_EQ(toy->EnumConnectionPoints(&points), S_OK);
    ComPtr<IConnectionPoint> each;
    std::vector<IID> found;
    while (points->Next(1, each.ReleaseAndGetAddressOf(), nullptr) == S_OK) {
        IID iid = {};
        each->GetConnectionInterface(&iid);
        found.push_back(iid);
    }
    ASSERT_EQ(found.size(), 2u);
    EXPECT_TRUE(IsEqualIID(found[0], IID_IPropertyNotifySink));
    EXPECT_TRUE(IsEqualIID(found[1], events));
    EventSink sink(events);
    const DWORD cookie = Connect(sink);
    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(&connections), S_OK);
    CONNECTDATA data = {};
    ASSERT_EQ(connections->Next(1, &data, nullptr), S_OK);
    EXPECT_EQ(data.dwCookie, cookie);
    data.pUnk->Release();
    connections.Reset();
    ComPtr<IConnectionPoint> none;
    EXPECT_EQ(toy->FindConnectionPoint(IID_IStream, &none), CONNECT_E_NOCONNECTION);
    ComPtr<IConnectionPointContainer> container;
    EXPECT_EQ(point->GetConnectionPointContainer(&container), S_OK);
    EXPECT_EQ(container.Get(), static_cast<IConnectionPointContainer*>(toy.Get()));
    EXPECT_TRUE(toy->HasSinks(events));
    point->Unadvise(cookie);
    EXPECT_FALSE(toy->HasSinks(events));
}

TEST_F(ComEvents, SinksAreReleasedWithTheObject) {
    EventSink sink(events);
    Connect(sink);
    EXPECT_EQ(sink.References(), 1u);
    point.Reset();
    toy.Reset();
    EXPECT_EQ(sink.References(), 0u);
}

} // namespace
