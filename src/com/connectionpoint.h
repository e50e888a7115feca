// Connection points: the sinks of one outgoing interface, and the container with its fixed list of points.
// Everything runs on the object's thread. Sinks may connect, disconnect and release the object inside a call.
#pragma once

#include "interfaces.h"

#include <oaidl.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

// A point lives in its container and shares the container's references.
class ConnectionPoint final : public IConnectionPoint {
  public:
    ConnectionPoint(IConnectionPointContainer& container, REFIID iid) : container_(container), iid_(iid) {}
    virtual ~ConnectionPoint() = default;
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

    struct Connection {
        Microsoft::WRL::ComPtr<IUnknown> sink; // the pointer of the point's interface
        DWORD cookie;
    };

    const IID& Interface() const { return iid_; }
    const std::vector<Connection>& Connections() const { return connections_; }
    bool IsConnected(DWORD cookie) const;
    void DisconnectAll();

  private:
    IConnectionPointContainer& container_;
    const IID iid_;
    std::vector<Connection> connections_;
    DWORD lastCookie_ = 0;
};

class ConnectionPoints : public IConnectionPointContainer {
  public:
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

    // Fires to each sink in the order of connecting. Arguments stand in the order of their declaration and
    // stay the caller's; what a sink writes to one by reference, the later sinks see. A sink that connects
    // meanwhile gets the next event; one that disconnects meanwhile gets this one no more.
    void FireEvent(REFIID events, DISPID id, std::span<VARIANT> arguments = {});

    // To the sinks of IPropertyNotifySink. The edit is refused, S_FALSE, by the first sink that refuses.
    void FireOnChanged(DISPID id);
    HRESULT FireOnRequestEdit(DISPID id);

    bool HasSinks(REFIID events) const;
    void LetGo(); // before the end of the object

  protected:
    explicit ConnectionPoints(std::initializer_list<const IID*> interfaces);
    virtual ~ConnectionPoints() = default;

  private:
    ConnectionPoint* Find(REFIID iid) const;
    template <class Call>
    void ForEachSink(REFIID iid, Call&& call);

    std::vector<std::unique_ptr<ConnectionPoint>> points_;
};

// The base for a class, with a point for each of these interfaces.
template <class... Outgoing>
class EventSource : public ConnectionPoints {
  protected:
    EventSource() : ConnectionPoints({&__uuidof(Outgoing)...}) {}
};
