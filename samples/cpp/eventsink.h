// The control with its events, in plain C++: no window, no framework. An object, a sink, a connection between
// them.
#pragma once

#include "TarnLink.h"

#include <comdef.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <functional>
#include <string>

// The platform's interfaces have no virtual destructor, and nobody deletes by them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Hands each event on by its number in the type library. It counts nothing, since it outlives its connection.
class EventSink final : public IDispatch {
  public:
    using Handler = std::function<void(DISPID event)>;
    explicit EventSink(Handler handler) : handler_(std::move(handler)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** face) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == DIID__ITarnCommEvents;
        *face = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        try {
            handler_(event);
            return S_OK;
        } catch (...) { // COM knows no exceptions
            return E_FAIL;
        }
    }

  private:
    Handler handler_;
};

#pragma GCC diagnostic pop

// Numbers of the events that the samples know, as in the type library.
enum EventNumber : DISPID {
    Receive = 1,
    AbortFileTransfer = 11,
    FinishFileTransfer = 12,
    PrepareFile = 14,
    AbortFile = 16,
    FinishFile = 17,
};

// The control, made by its registered class, with its events connected while this object lives.
class ConnectedControl {
  public:
    explicit ConnectedControl(EventSink::Handler handler) : sink_(std::move(handler)) {
        Microsoft::WRL::ComPtr<IConnectionPointContainer> points;
        result_ = CoCreateInstance(CLSID_TarnComm, nullptr, CLSCTX_INPROC_SERVER, IID_ITarnComm,
                                   reinterpret_cast<void**>(control_.GetAddressOf()));
        if (SUCCEEDED(result_))
            result_ = control_.As(&points);
        if (SUCCEEDED(result_))
            result_ = points->FindConnectionPoint(DIID__ITarnCommEvents, &point_);
        if (SUCCEEDED(result_))
            result_ = point_->Advise(&sink_, &cookie_);
    }
    ~ConnectedControl() {
        if (cookie_)
            point_->Unadvise(cookie_);
    }
    ConnectedControl(const ConnectedControl&) = delete;
    ConnectedControl& operator=(const ConnectedControl&) = delete;

    bool IsConnected() const { return SUCCEEDED(result_); }
    ITarnComm* operator->() const { return control_.Get(); }

    // Empty, or why the port doesn't open, which putting PortOpen doesn't tell.
    std::wstring OpenPort(const std::wstring& port) const {
        VARIANT_BOOL open = VARIANT_FALSE;
        _bstr_t reason;
        control_->put_CommPort(_variant_t(port.c_str()));
        control_->put_PortOpen(VARIANT_TRUE);
        control_->get_PortOpen(&open);
        control_->get_PortStatus(reason.GetAddress());
        return open ? L"" : port + static_cast<const wchar_t*>(L" does not open: " + reason);
    }

  private:
    EventSink sink_;
    HRESULT result_ = E_FAIL;
    DWORD cookie_ = 0;
    Microsoft::WRL::ComPtr<ITarnComm> control_;
    Microsoft::WRL::ComPtr<IConnectionPoint> point_;
};

// Serves the thread's messages, in which the events come, until PostQuitMessage.
inline int ServeMessages() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    return static_cast<int>(message.wParam);
}
