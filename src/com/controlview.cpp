// The control's picture: the window's paint and drawing outside of it.
#include "olecontrol.h"

#include "wall.h"

using Microsoft::WRL::ComPtr;

namespace {

class Painting {
  public:
    explicit Painting(HWND window) : window_(window), context_(BeginPaint(window, &paint_)) {}
    ~Painting() { EndPaint(window_, &paint_); }
    Painting(const Painting&) = delete;
    Painting& operator=(const Painting&) = delete;
    HDC Context() const { return context_; }

  private:
    HWND window_;
    PAINTSTRUCT paint_ = {};
    HDC context_;
};

// The context leaves as it came.
class SavedContext {
  public:
    explicit SavedContext(HDC context) : context_(context), state_(SaveDC(context)) {}
    ~SavedContext() { RestoreDC(context_, state_); }
    SavedContext(const SavedContext&) = delete;
    SavedContext& operator=(const SavedContext&) = delete;

  private:
    HDC context_;
    int state_;
};

} // namespace

void OleControl::PaintWindow() {
    const Painting painting(window_);
    RECT bounds = {};
    GetClientRect(window_, &bounds);
    if (painting.Context())
        OnDraw(painting.Context(), bounds);
}

void OleControl::ViewChanged() {
    const ComPtr<IUnknown> keep(Identity());
    if (window_) {
        InvalidateRect(window_, nullptr, TRUE);
        return;
    }
    if (const ComPtr<IDataAdviseHolder> holder = dataAdvises_)
        holder->SendOnDataChange(this, 0, 0);
    if (const ComPtr<IAdviseSink> sink = view_.sink) {
        if (view_.flags & ADVF_ONLYONCE)
            view_ = {};
        sink->OnViewChange(DVASPECT_CONTENT, -1);
    }
}

HRESULT OleControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC context, LPCRECTL bounds,
                         LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR) {
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    if (!context || !bounds)
        return E_INVALIDARG;
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&] {
        const SavedContext saved(context);
        OnDraw(context, {bounds->left, bounds->top, bounds->right, bounds->bottom});
        return S_OK;
    });
}

HRESULT OleControl::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** colors) {
    if (!colors)
        return E_POINTER;
    *colors = nullptr;
    return S_FALSE; // any colours will do
}

HRESULT OleControl::Freeze(DWORD, LONG, void*, DWORD*) {
    return E_NOTIMPL;
}

HRESULT OleControl::Unfreeze(DWORD) {
    return E_NOTIMPL;
}

HRESULT OleControl::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
    const ComPtr<IUnknown> keep(Identity());
    const ComPtr<IAdviseSink> before = view_.sink;
    view_ = {aspects, flags, sink};
    if (sink && (flags & ADVF_PRIMEFIRST))
        ViewChanged();
    return S_OK;
}

HRESULT OleControl::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
    if (aspects)
        *aspects = view_.aspects;
    if (flags)
        *flags = view_.flags;
    return sink ? view_.sink.CopyTo(sink) : S_OK;
}

HRESULT OleControl::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL himetric) {
    return GetExtent(aspect, himetric);
}

HRESULT OleControl::GetRect(DWORD aspect, LPRECTL rect) {
    if (!rect)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    *rect = {0, 0, extent_.cx, extent_.cy};
    return S_OK;
}

HRESULT OleControl::GetViewStatus(DWORD* status) {
    if (!status)
        return E_POINTER;
    *status = VIEWSTATUS_OPAQUE;
    return S_OK;
}

HRESULT OleControl::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG, DWORD* result) {
    if (!bounds || !result)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    *result = PtInRect(bounds, point) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

HRESULT OleControl::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG, DWORD* result) {
    if (!bounds || !rect || !result)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    RECT common = {};
    *result = IntersectRect(&common, bounds, rect) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

HRESULT OleControl::GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO*, LPSIZEL) {
    return E_NOTIMPL; // any size is as good
}
