#include "controlhost.h"

#include <olectl.h>

using Microsoft::WRL::ComPtr;

namespace {

// A row of a QueryInterface: the interface, and the object as that.
struct Face {
    const IID& id;
    IUnknown* object;
};

HRESULT FindFace(std::initializer_list<Face> faces, REFIID id, void** found) {
    *found = nullptr;
    for (const Face& face : faces) {
        if (!IsEqualIID(face.id, id))
            continue;
        *found = face.object;
        return S_OK;
    }
    return E_NOINTERFACE;
}

RECT AreaOf(HWND window) {
    RECT area = {};
    GetClientRect(window, &area);
    return area;
}

constexpr int himetricPerInch = 2540;

SIZEL HimetricOf(const RECT& area) {
    const HDC dc = GetDC(nullptr);
    const SIZEL size = {MulDiv(area.right, himetricPerInch, GetDeviceCaps(dc, LOGPIXELSX)),
                        MulDiv(area.bottom, himetricPerInch, GetDeviceCaps(dc, LOGPIXELSY))};
    ReleaseDC(nullptr, dc);
    return size;
}

std::wstring PathOfModule() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program(path, length);
    return program.substr(0, program.rfind(L'\\') + 1) + L"Lantry.ocx";
}

HRESULT LastFailure() {
    return HRESULT_FROM_WIN32(GetLastError());
}

// By its identifier, from the module's own door: nothing is registered.
HRESULT MakeControl(ComPtr<ITarnComm>& control) {
    const HMODULE module = LoadLibraryExW(PathOfModule().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module)
        return LastFailure();
    using Door = decltype(&DllGetClassObject);
    const auto door =
        reinterpret_cast<Door>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    if (!door)
        return LastFailure();
    ComPtr<IClassFactory> factory;
    const HRESULT result = door(CLSID_TarnComm, IID_PPV_ARGS(&factory));
    return SUCCEEDED(result) ? factory->CreateInstance(nullptr, IID_PPV_ARGS(&control)) : result;
}

} // namespace

HRESULT Frame::QueryInterface(REFIID id, void** face) {
    return FindFace({{IID_IUnknown, this},
                     {IID_IOleWindow, this},
                     {IID_IOleInPlaceUIWindow, this},
                     {IID_IOleInPlaceFrame, this}},
                    id, face);
}

HRESULT Frame::GetWindow(HWND* window) {
    *window = window_;
    return S_OK;
}

HRESULT Frame::SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) {
    active = object;
    return S_OK;
}

HRESULT Site::QueryInterface(REFIID id, void** face) {
    IOleClientSite* const client = this;
    IOleInPlaceSite* const inPlace = this;
    IDispatch* const ambients = this;
    return FindFace({{IID_IUnknown, client},
                     {IID_IOleClientSite, client},
                     {IID_IOleWindow, inPlace},
                     {IID_IOleInPlaceSite, inPlace},
                     {IID_IDispatch, ambients}},
                    id, face);
}

HRESULT Site::GetContainer(IOleContainer** container) {
    *container = nullptr;
    return E_NOINTERFACE;
}

HRESULT Site::GetWindow(HWND* window) {
    *window = window_;
    return S_OK;
}

HRESULT Site::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position,
                               RECT* clip, OLEINPLACEFRAMEINFO* info) {
    *frame = &frame_;
    *document = nullptr; // the window is its frame
    *position = AreaOf(window_);
    *clip = *position;
    info->fMDIApp = FALSE;
    info->hwndFrame = window_;
    info->haccel = nullptr;
    info->cAccelEntries = 0;
    return S_OK;
}

HRESULT Site::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return DISP_E_UNKNOWNNAME;
}

HRESULT Site::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) {
    if (!result)
        return E_POINTER;
    switch (id) {
    case DISPID_AMBIENT_USERMODE: // it is used, not designed
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = VARIANT_TRUE;
        return S_OK;
    case DISPID_AMBIENT_DISPLAYNAME: // its name in its log
        V_VT(result) = VT_BSTR;
        V_BSTR(result) = SysAllocString(L"Terminal");
        return S_OK;
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT Events::QueryInterface(REFIID id, void** face) {
    return FindFace({{IID_IUnknown, this}, {IID_IDispatch, this}, {DIID__ITarnCommEvents, this}}, id, face);
}

HRESULT Events::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return DISP_E_UNKNOWNNAME;
}

HRESULT Events::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*, UINT*) {
    try {
        handler_(id, *arguments);
        return S_OK;
    } catch (...) { // COM knows no exceptions
        return E_FAIL;
    }
}

HRESULT ControlHost::Enter(HWND window) {
    window_ = window;
    HRESULT result = Make();
    if (SUCCEEDED(result))
        result = Connect();
    const RECT area = AreaOf(window);
    if (SUCCEEDED(result))
        result = object_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site_, 0, window, &area);
    if (FAILED(result))
        Leave();
    return result;
}

HRESULT ControlHost::Make() {
    HRESULT result = MakeControl(control_);
    if (SUCCEEDED(result))
        result = control_.As(&object_);
    if (SUCCEEDED(result))
        result = object_->SetClientSite(&site_);
    ComPtr<IPersistStreamInit> state;
    if (SUCCEEDED(result) && SUCCEEDED(control_.As(&state)))
        result = state->InitNew();
    return result;
}

HRESULT ControlHost::Connect() {
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    HRESULT result = control_.As(&points);
    if (SUCCEEDED(result))
        result = points->FindConnectionPoint(DIID__ITarnCommEvents, &point);
    return SUCCEEDED(result) ? point->Advise(&events_, &connection_) : result;
}

// In the order of containers: no more events, no window, no site, no reference.
void ControlHost::Leave() {
    const ComPtr<ITarnComm> control = std::move(control_);
    const ComPtr<IOleObject> object = std::move(object_);
    if (!control)
        return;
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    control.As(&points);
    if (connection_ && SUCCEEDED(points->FindConnectionPoint(DIID__ITarnCommEvents, &point)))
        point->Unadvise(connection_);
    connection_ = 0;
    control->put_PortOpen(VARIANT_FALSE);
    if (!object)
        return;
    object->Close(OLECLOSE_NOSAVE);
    object->SetClientSite(nullptr);
}

void ControlHost::FillWindow() {
    ComPtr<IOleInPlaceObject> inPlace;
    if (!object_ || FAILED(object_.As(&inPlace)))
        return;
    const RECT area = AreaOf(window_);
    SIZEL size = HimetricOf(area);
    object_->SetExtent(DVASPECT_CONTENT, &size);
    inPlace->SetObjectRects(&area, &area);
}

void ControlHost::TakeFocus() {
    const RECT area = AreaOf(window_);
    if (object_)
        object_->DoVerb(OLEIVERB_UIACTIVATE, nullptr, &site_, 0, window_, &area);
}

void ControlHost::TellActive(bool active) {
    if (const auto object = frame_.active)
        object->OnFrameWindowActivate(active);
}

bool ControlHost::Translate(MSG& message) {
    const auto object = frame_.active;
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    return isKey && object && object->TranslateAccelerator(&message) == S_OK;
}
