// The control's site and what it tells: construction, ambients, events' brake, quick activation, the end.
#include "olecontrol.h"

#include "controlwindow.h"
#include "himetric.h"
#include "wall.h"

#include <olectl.h>

using Microsoft::WRL::ComPtr;

namespace {

constexpr SIZE firstExtent = {320, 200}; // pixels

} // namespace

OleControl::OleControl() : extent_(PixelsToHimetric(firstExtent)) {}

// What is released here may ask the object, so that each member is empty before its pointer goes.
void OleControl::LetGo() {
    AsResult([this] { return InPlaceDeactivate(); });
    DestroyControlWindow();
    ambients_.Attach(nullptr);
    const auto advises = std::move(advises_);
    const auto dataAdvises = std::move(dataAdvises_);
    const auto view = std::move(view_.sink);
    const auto site = std::move(clientSite_);
}

HRESULT OleControl::SetClientSite(IOleClientSite* site) {
    const ComPtr<IUnknown> keep(Identity());
    const ComPtr<IOleClientSite> before = clientSite_;
    clientSite_ = site;
    ambients_.Attach(site);
    return AsResult([&] {
        OnClientSite(site);
        return S_OK;
    });
}

HRESULT OleControl::GetClientSite(IOleClientSite** site) {
    return site ? clientSite_.CopyTo(site) : E_POINTER;
}

HRESULT OleControl::GetControlInfo(CONTROLINFO* info) {
    if (!info)
        return E_POINTER;
    *info = {sizeof *info, nullptr, 0, 0}; // no mnemonics
    return S_OK;
}

HRESULT OleControl::OnMnemonic(MSG*) {
    return S_OK;
}

HRESULT OleControl::OnAmbientPropertyChange(DISPID id) {
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&] {
        OnAmbientChanged(id);
        return S_OK;
    });
}

HRESULT OleControl::FreezeEvents(BOOL freeze) {
    if (freeze)
        ++freezes_;
    else if (freezes_ > 0)
        --freezes_;
    return S_OK;
}

HRESULT OleControl::Connect(REFIID iid, IUnknown* sink, DWORD& cookie) {
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    HRESULT result = Identity()->QueryInterface(IID_PPV_ARGS(&points));
    if (SUCCEEDED(result))
        result = points->FindConnectionPoint(iid, &point);
    return SUCCEEDED(result) ? point->Advise(sink, &cookie) : result;
}

HRESULT OleControl::QuickActivate(QACONTAINER* container, QACONTROL* control) {
    if (!container || !control)
        return E_POINTER;
    if (container->cbSize < sizeof *container || control->cbSize < sizeof *control)
        return E_UNEXPECTED;
    const ComPtr<IUnknown> keep(Identity());
    const ULONG size = control->cbSize;
    *control = {};
    control->cbSize = size;
    SetClientSite(container->pClientSite);
    if (container->pAdviseSink)
        SetAdvise(DVASPECT_CONTENT, 0, container->pAdviseSink);
    if (container->pPropertyNotifySink)
        Connect(IID_IPropertyNotifySink, container->pPropertyNotifySink, control->dwPropNotifyCookie);
    if (container->pUnkEventSink)
        Connect(*Facts().events, container->pUnkEventSink, control->dwEventCookie);
    GetMiscStatus(DVASPECT_CONTENT, &control->dwMiscStatus);
    GetViewStatus(&control->dwViewStatus);
    return S_OK;
}

HRESULT OleControl::SetContentExtent(LPSIZEL himetric) {
    return SetExtent(DVASPECT_CONTENT, himetric);
}

HRESULT OleControl::GetContentExtent(LPSIZEL himetric) {
    return GetExtent(DVASPECT_CONTENT, himetric);
}
