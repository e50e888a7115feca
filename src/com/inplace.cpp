// Activation in place: the protocol between the container's site and the control's window.
#include "olecontrol.h"

#include "controlwindow.h"
#include "wall.h"

#include <olectl.h>

using Microsoft::WRL::ComPtr;

namespace {

// Where the container puts the control.
struct Place {
    HWND parent = nullptr;
    ComPtr<IOleInPlaceFrame> frame;
    ComPtr<IOleInPlaceUIWindow> document;
    RECT position = {};
    RECT clip = {};
};

// The host closed the control inside of a call that was to activate it.
constexpr HRESULT closedMeanwhile = E_ABORT;

HRESULT AskPlace(IOleInPlaceSite& site, Place& place) {
    HRESULT result = site.GetWindow(&place.parent);
    if (FAILED(result))
        return result;
    OLEINPLACEFRAMEINFO info = {};
    info.cb = sizeof info;
    return site.GetWindowContext(&place.frame, &place.document, &place.position, &place.clip, &info);
}

// Keys that go with an accelerator, in the container's site's own bits.
constexpr DWORD shiftModifier = 1;
constexpr DWORD controlModifier = 2;
constexpr DWORD altModifier = 4;

DWORD Modifiers() {
    static constexpr struct {
        int key;
        DWORD flag;
    } rows[] = {{VK_SHIFT, shiftModifier}, {VK_CONTROL, controlModifier}, {VK_MENU, altModifier}};
    DWORD modifiers = 0;
    for (const auto& row : rows)
        modifiers |= GetKeyState(row.key) < 0 ? row.flag : 0;
    return modifiers;
}

// The part of the window that the clip leaves, or nothing for all of it. The window owns what it is given.
HRGN ClipRegion(const RECT& position, const RECT& clip) {
    RECT visible = {};
    IntersectRect(&visible, &position, &clip);
    if (EqualRect(&visible, &position))
        return nullptr;
    OffsetRect(&visible, -position.left, -position.top);
    return CreateRectRgnIndirect(&visible);
}

} // namespace

// Each step may run host code that closes the control; the next one looks whether it did.
HRESULT OleControl::Activate(bool withUI, HWND parent) {
    if (!clientSite_)
        return OLE_E_NOT_INPLACEACTIVE;
    HRESULT result = EnterPlace();
    if (SUCCEEDED(result))
        result = FillPlace(parent);
    if (SUCCEEDED(result) && withUI)
        result = EnterUI();
    if (const ComPtr<IOleClientSite> client = clientSite_; client && SUCCEEDED(result))
        client->ShowObject();
    return result;
}

HRESULT OleControl::EnterPlace() {
    if (inPlaceActive_)
        return S_OK;
    const ComPtr<IOleClientSite> client = clientSite_;
    ComPtr<IOleInPlaceSite> site;
    HRESULT result = client.As(&site);
    if (FAILED(result))
        return result;
    result = site->CanInPlaceActivate();
    if (result != S_OK)
        return FAILED(result) ? result : E_FAIL;
    if (client != clientSite_)
        return closedMeanwhile;
    inPlaceSite_ = site;
    inPlaceActive_ = true;
    result = TakePlace();
    if (FAILED(result)) {
        inPlaceActive_ = false;
        inPlaceSite_.Reset();
    }
    return FAILED(result) || inPlaceActive_ ? result : closedMeanwhile;
}

HRESULT OleControl::TakePlace() {
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    ComPtr<IOleInPlaceSiteEx> newer;
    BOOL noRedraw = FALSE;
    return SUCCEEDED(site.As(&newer)) ? newer->OnInPlaceActivateEx(&noRedraw, 0) : site->OnInPlaceActivate();
}

void OleControl::LeavePlace() {
    if (!inPlaceActive_)
        return;
    inPlaceActive_ = false;
    DestroyControlWindow();
    const ComPtr<IOleInPlaceSite> site = std::move(inPlaceSite_);
    if (site)
        site->OnInPlaceDeactivate();
}

HRESULT OleControl::FillPlace(HWND parent) {
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    Place place;
    HRESULT result = AskPlace(*site.Get(), place);
    if (!inPlaceActive_)
        return closedMeanwhile;
    if (SUCCEEDED(result))
        result = EnsureWindow(place.parent ? place.parent : parent, place.position, place.clip);
    if (FAILED(result))
        LeavePlace();
    return FAILED(result) || inPlaceActive_ ? result : closedMeanwhile;
}

HRESULT OleControl::EnsureWindow(HWND parent, const RECT& position, const RECT& clip) {
    position_ = position;
    if (!window_ && !ControlWindow::Create(*this, parent))
        return E_FAIL;
    ShowWindow(window_, SW_SHOWNA);
    return SetObjectRects(&position, &clip);
}

void OleControl::DestroyControlWindow() {
    if (window_)
        DestroyWindow(window_);
}

HRESULT OleControl::EnterUI() {
    if (!uiActive_) {
        uiActive_ = true;
        const HRESULT result = TakeUI();
        if (FAILED(result))
            uiActive_ = false;
        if (FAILED(result) || !uiActive_)
            return FAILED(result) ? result : closedMeanwhile;
    }
    if (window_ && !FocusIsInside())
        SetFocus(window_);
    return S_OK;
}

HRESULT OleControl::TakeUI() {
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    const HRESULT result = site->OnUIActivate();
    if (FAILED(result) || !uiActive_)
        return result;
    Place place;
    AskPlace(*site.Get(), place);
    if (!uiActive_)
        return S_OK;
    frame_ = place.frame;
    document_ = place.document;
    TellActiveObject(this);
    if (const ComPtr<IOleInPlaceFrame> frame = frame_)
        frame->SetBorderSpace(nullptr); // the frame keeps its own tools
    if (const ComPtr<IOleInPlaceUIWindow> document = document_)
        document->SetBorderSpace(nullptr);
    return S_OK;
}

void OleControl::TellActiveObject(IOleInPlaceActiveObject* active) {
    const ComPtr<IOleInPlaceFrame> frame = frame_;
    const ComPtr<IOleInPlaceUIWindow> document = document_;
    const wchar_t* name = active ? Facts().name : nullptr;
    if (frame)
        frame->SetActiveObject(active, name);
    if (document && (!active || uiActive_))
        document->SetActiveObject(active, name);
}

HRESULT OleControl::Hide() {
    const HRESULT result = UIDeactivate();
    if (window_)
        ShowWindow(window_, SW_HIDE);
    return result;
}

HRESULT OleControl::GetWindow(HWND* window) {
    if (!window)
        return E_POINTER;
    *window = window_;
    return window_ ? S_OK : E_FAIL;
}

HRESULT OleControl::ContextSensitiveHelp(BOOL) {
    return E_NOTIMPL;
}

HRESULT OleControl::InPlaceDeactivate() {
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([this] {
        UIDeactivate();
        LeavePlace();
        return S_OK;
    });
}

HRESULT OleControl::UIDeactivate() {
    if (!uiActive_)
        return S_OK;
    const ComPtr<IUnknown> keep(Identity());
    uiActive_ = false;
    const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
    TellActiveObject(nullptr);
    const auto frame = std::move(frame_);
    const auto document = std::move(document_);
    if (site)
        site->OnUIDeactivate(FALSE);
    return S_OK;
}

HRESULT OleControl::SetObjectRects(LPCRECT position, LPCRECT clip) {
    if (!position || !clip)
        return E_POINTER;
    const ComPtr<IUnknown> keep(Identity());
    position_ = *position;
    if (!window_)
        return S_OK;
    SetWindowRgn(window_, ClipRegion(*position, *clip), TRUE);
    SetWindowPos(window_, nullptr, position->left, position->top, position->right - position->left,
                 position->bottom - position->top, SWP_NOZORDER | SWP_NOACTIVATE);
    return S_OK;
}

HRESULT OleControl::ReactivateAndUndo() {
    return INPLACE_E_NOTUNDOABLE;
}

// A control that always has its window gets its messages there.
HRESULT OleControl::OnWindowMessage(UINT, WPARAM, LPARAM, LRESULT*) {
    return S_FALSE;
}

HRESULT OleControl::GetDropTarget(IDropTarget** target) {
    if (!target)
        return E_POINTER;
    *target = nullptr;
    return E_NOTIMPL;
}

HRESULT OleControl::TranslateAccelerator(LPMSG message) {
    if (!message)
        return E_POINTER;
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&] {
        if (OnTranslateAccelerator(*message))
            return S_OK;
        ComPtr<IOleControlSite> site;
        if (!clientSite_ || FAILED(clientSite_.As(&site)))
            return S_FALSE;
        return site->TranslateAccelerator(message, Modifiers()) == S_OK ? S_OK : S_FALSE;
    });
}

HRESULT OleControl::OnFrameWindowActivate(BOOL) {
    return S_OK;
}

HRESULT OleControl::OnDocWindowActivate(BOOL) {
    return S_OK;
}

HRESULT OleControl::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) {
    return S_OK;
}

HRESULT OleControl::EnableModeless(BOOL) {
    return S_OK;
}
