// IOleObject: verbs, extent, advises, names.
#include "olecontrol.h"

#include "wall.h"

#include <olectl.h>

#include <cstring>

using Microsoft::WRL::ComPtr;

namespace {

// Memory for a string that the caller frees.
HRESULT GiveString(const wchar_t* text, LPOLESTR* given) {
    const size_t size = (std::wcslen(text) + 1) * sizeof *text;
    *given = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
    if (!*given)
        return E_OUTOFMEMORY;
    std::memcpy(*given, text, size);
    return S_OK;
}

// The pages as their owner allocated them.
class PageList {
  public:
    PageList() = default;
    ~PageList() { CoTaskMemFree(pages_.pElems); }
    PageList(const PageList&) = delete;
    PageList& operator=(const PageList&) = delete;
    CAUUID* operator&() { return &pages_; }
    const CAUUID* operator->() const { return &pages_; }

  private:
    CAUUID pages_ = {};
};

} // namespace

HRESULT OleControl::SetHostNames(LPCOLESTR, LPCOLESTR) {
    return S_OK; // a control lives inside of its host and shows no names
}

HRESULT OleControl::Close(DWORD saveOption) {
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&] {
        if (saveOption != OLECLOSE_NOSAVE && dirty_ && clientSite_)
            ComPtr<IOleClientSite>(clientSite_)->SaveObject();
        const HRESULT result = InPlaceDeactivate();
        DestroyControlWindow();
        if (const ComPtr<IOleAdviseHolder> advises = advises_)
            advises->SendOnClose();
        return result;
    });
}

HRESULT OleControl::SetMoniker(DWORD, IMoniker*) {
    return E_NOTIMPL;
}

HRESULT OleControl::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
    if (!moniker)
        return E_POINTER;
    *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT OleControl::InitFromData(IDataObject*, BOOL, DWORD) {
    return E_NOTIMPL;
}

HRESULT OleControl::GetClipboardData(DWORD, IDataObject** data) {
    if (!data)
        return E_POINTER;
    *data = nullptr;
    return E_NOTIMPL;
}

HRESULT OleControl::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT position) {
    const ComPtr<IUnknown> keep(Identity());
    return AsResult([&]() -> HRESULT {
        switch (verb) {
        case OLEIVERB_SHOW:
        case OLEIVERB_OPEN: // there is no window to open apart from the one in place
        case OLEIVERB_UIACTIVATE:
            return Activate(true, parent);
        case OLEIVERB_INPLACEACTIVATE:
            return Activate(false, parent);
        case OLEIVERB_HIDE:
            return Hide();
        case OLEIVERB_PRIMARY: // "Properties..." is the one that the registry lists
        case OLEIVERB_PROPERTIES:
            return ShowProperties(parent, position);
        case OLEIVERB_DISCARDUNDOSTATE:
            return S_OK;
        default:
            return verb < 0 ? E_NOTIMPL : OLEOBJ_S_INVALIDVERB;
        }
    });
}

HRESULT OleControl::ShowProperties(HWND parent, LPCRECT position) {
    ComPtr<IOleControlSite> site;
    if (clientSite_ && SUCCEEDED(clientSite_.As(&site)) && site->ShowPropertyFrame() == S_OK)
        return S_OK;
    return ShowOwnFrame(parent, position);
}

HRESULT OleControl::ShowOwnFrame(HWND parent, LPCRECT position) {
    ComPtr<ISpecifyPropertyPages> owner;
    PageList pages;
    HRESULT result = Identity()->QueryInterface(IID_PPV_ARGS(&owner));
    if (SUCCEEDED(result))
        result = owner->GetPages(&pages);
    if (FAILED(result))
        return result;
    const POINT corner = position ? POINT{position->left, position->top} : POINT{};
    const std::wstring shown = ambients_.DisplayName();
    IUnknown* self = Identity();
    return OleCreatePropertyFrame(parent, static_cast<UINT>(corner.x), static_cast<UINT>(corner.y),
                                  shown.empty() ? Facts().name : shown.c_str(), 1, &self, pages->cElems,
                                  pages->pElems, LOCALE_USER_DEFAULT, 0, nullptr);
}

HRESULT OleControl::EnumVerbs(IEnumOLEVERB** verbs) {
    if (!verbs)
        return E_POINTER;
    *verbs = nullptr;
    return OLE_S_USEREG;
}

HRESULT OleControl::Update() {
    return S_OK;
}

HRESULT OleControl::IsUpToDate() {
    return S_OK;
}

HRESULT OleControl::GetUserClassID(CLSID* id) {
    if (!id)
        return E_POINTER;
    *id = *Facts().id;
    return S_OK;
}

HRESULT OleControl::GetUserType(DWORD, LPOLESTR* type) {
    return type ? GiveString(Facts().name, type) : E_POINTER;
}

HRESULT OleControl::SetExtent(DWORD aspect, SIZEL* himetric) {
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    if (!himetric)
        return E_POINTER;
    const bool same = himetric->cx == extent_.cx && himetric->cy == extent_.cy;
    if (sizesItself_ || same)
        return same ? S_OK : E_FAIL;
    extent_ = *himetric;
    dirty_ = true;
    ViewChanged();
    return S_OK;
}

HRESULT OleControl::GetExtent(DWORD aspect, SIZEL* himetric) {
    if (!himetric)
        return E_POINTER;
    if (aspect != DVASPECT_CONTENT)
        return DV_E_DVASPECT;
    *himetric = extent_;
    return S_OK;
}

HRESULT OleControl::Advise(IAdviseSink* sink, DWORD* connection) {
    if (!connection)
        return E_POINTER;
    const ComPtr<IUnknown> keep(Identity());
    const HRESULT result = advises_ ? S_OK : CreateOleAdviseHolder(&advises_);
    return SUCCEEDED(result) ? advises_->Advise(sink, connection) : result;
}

HRESULT OleControl::Unadvise(DWORD connection) {
    const ComPtr<IUnknown> keep(Identity());
    return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT OleControl::EnumAdvise(IEnumSTATDATA** advises) {
    if (!advises)
        return E_POINTER;
    *advises = nullptr;
    return advises_ ? advises_->EnumAdvise(advises) : S_OK;
}

void OleControl::TellSaved() {
    const ComPtr<IUnknown> keep(Identity());
    if (const ComPtr<IOleAdviseHolder> advises = advises_)
        advises->SendOnSave();
}

// Aspects other than the content have no bits, as the registry says too.
HRESULT OleControl::GetMiscStatus(DWORD aspect, DWORD* status) {
    if (!status)
        return E_POINTER;
    *status = aspect == DVASPECT_CONTENT ? Facts().miscStatus : 0;
    return S_OK;
}

HRESULT OleControl::SetColorScheme(LOGPALETTE*) {
    return E_NOTIMPL;
}
