#include "connectionpoint.h"

#include "listenumerator.h"

#include <olectl.h>

#include <algorithm>

namespace {

struct CopyPoint {
    static HRESULT Copy(const ComPtr<IConnectionPoint>& point, IConnectionPoint*& given) {
        return point.CopyTo(&given);
    }
    static void Drop(IConnectionPoint*& given) { given->Release(); }
};

struct CopyConnection {
    static HRESULT Copy(const ConnectionPoint::Connection& connection, CONNECTDATA& given) {
        given.dwCookie = connection.cookie;
        return connection.sink.CopyTo(&given.pUnk);
    }
    static void Drop(CONNECTDATA& given) { given.pUnk->Release(); }
};

using PointEnumerator =
    ListEnumerator<IEnumConnectionPoints, IConnectionPoint*, ComPtr<IConnectionPoint>, CopyPoint>;
using ConnectionEnumerator =
    ListEnumerator<IEnumConnections, CONNECTDATA, ConnectionPoint::Connection, CopyConnection>;

// Arguments as Invoke takes them: the last one first. The copy is shallow.
std::vector<VARIANT> Reversed(std::span<VARIANT> arguments) {
    return {arguments.rbegin(), arguments.rend()};
}

class InvokeResult {
  public:
    InvokeResult() { VariantInit(&value_); }
    ~InvokeResult() { VariantClear(&value_); }
    InvokeResult(const InvokeResult&) = delete;
    InvokeResult& operator=(const InvokeResult&) = delete;
    VARIANT* operator&() { return &value_; }

  private:
    VARIANT value_;
};

} // namespace

HRESULT ConnectionPoint::QueryInterface(REFIID iid, void** object) {
    if (!object)
        return E_POINTER;
    *object = FaceTable<FaceRow<IConnectionPoint>, FaceRow<IUnknown>>::Find(*this, iid);
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG ConnectionPoint::AddRef() {
    return container_.AddRef();
}

ULONG ConnectionPoint::Release() {
    return container_.Release();
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* iid) {
    if (!iid)
        return E_POINTER;
    *iid = iid_;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (!container)
        return E_POINTER;
    return ComPtr<IConnectionPointContainer>(&container_).CopyTo(container);
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (cookie)
        *cookie = 0;
    if (!sink || !cookie)
        return E_POINTER;
    return AsResult([&] {
        ComPtr<IUnknown> answering;
        if (FAILED(sink->QueryInterface(iid_, reinterpret_cast<void**>(answering.GetAddressOf()))))
            return CONNECT_E_CANNOTCONNECT;
        connections_.push_back({std::move(answering), lastCookie_ + 1});
        *cookie = ++lastCookie_;
        return S_OK;
    });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    const auto found = std::ranges::find(connections_, cookie, &Connection::cookie);
    if (found == connections_.end())
        return CONNECT_E_NOCONNECTION;
    const ComPtr<IUnknown> leaving = std::move(found->sink); // released when the list is in order again
    connections_.erase(found);
    return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) {
    return AsResult([&] { return GiveEnumerator<ConnectionEnumerator>(connections_, connections); });
}

bool ConnectionPoint::IsConnected(DWORD cookie) const {
    return std::ranges::find(connections_, cookie, &Connection::cookie) != connections_.end();
}

void ConnectionPoint::DisconnectAll() {
    const std::vector<Connection> leaving = std::exchange(connections_, {});
}

ConnectionPoints::ConnectionPoints(std::initializer_list<const IID*> interfaces) {
    for (const IID* iid : interfaces)
        points_.push_back(std::make_unique<ConnectionPoint>(*this, *iid));
}

HRESULT ConnectionPoints::EnumConnectionPoints(IEnumConnectionPoints** points) {
    return AsResult([&] {
        std::vector<ComPtr<IConnectionPoint>> list;
        for (const auto& point : points_)
            list.emplace_back(point.get());
        return GiveEnumerator<PointEnumerator>(std::move(list), points);
    });
}

HRESULT ConnectionPoints::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    if (!point)
        return E_POINTER;
    *point = Find(iid);
    if (!*point)
        return CONNECT_E_NOCONNECTION;
    (*point)->AddRef();
    return S_OK;
}

// Call answers whether to go on.
template <class Call>
void ConnectionPoints::ForEachSink(REFIID iid, Call&& call) {
    const ConnectionPoint* point = Find(iid);
    if (!point || point->Connections().empty())
        return;
    const ComPtr<IUnknown> keep(this);
    const auto connections = point->Connections();
    for (const ConnectionPoint::Connection& each : connections) {
        if (point->IsConnected(each.cookie) && !call(each.sink.Get()))
            return;
    }
}

void ConnectionPoints::FireEvent(REFIID events, DISPID id, std::span<VARIANT> arguments) {
    std::vector<VARIANT> reversed = Reversed(arguments);
    DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    ForEachSink(events, [&](IUnknown* sink) {
        InvokeResult ignored;
        static_cast<IDispatch*>(sink)->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                              &ignored, nullptr, nullptr);
        return true;
    });
}

void ConnectionPoints::FireOnChanged(DISPID id) {
    ForEachSink(IID_IPropertyNotifySink, [&](IUnknown* sink) {
        static_cast<IPropertyNotifySink*>(sink)->OnChanged(id);
        return true;
    });
}

HRESULT ConnectionPoints::FireOnRequestEdit(DISPID id) {
    HRESULT answer = S_OK;
    ForEachSink(IID_IPropertyNotifySink, [&](IUnknown* sink) {
        answer = static_cast<IPropertyNotifySink*>(sink)->OnRequestEdit(id) == S_FALSE ? S_FALSE : S_OK;
        return answer == S_OK;
    });
    return answer;
}

bool ConnectionPoints::HasSinks(REFIID events) const {
    const ConnectionPoint* point = Find(events);
    return point && !point->Connections().empty();
}

void ConnectionPoints::LetGo() {
    for (const auto& point : points_)
        point->DisconnectAll();
}

ConnectionPoint* ConnectionPoints::Find(REFIID iid) const {
    const auto found =
        std::ranges::find_if(points_, [&](const auto& point) { return IsEqualIID(point->Interface(), iid); });
    return found == points_.end() ? nullptr : found->get();
}
