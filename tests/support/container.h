// A container for one control: its window, site, frame and ambient properties. What the control calls is
// recorded by name, in order; onCall runs inside of each call and may do what hosts do there.
#pragma once

#include "support/counted.h"

#include <comdef.h>
#include <ocidl.h>
#include <oleidl.h>
#include <wrl/client.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace host {

class CallRecord {
  public:
    HRESULT Note(const std::string& call) {
        calls.push_back(call);
        if (const auto handler = onCall)
            handler(call);
        const auto answer = answers.find(call);
        return answer == answers.end() ? S_OK : answer->second;
    }
    bool Saw(const std::string& call) const { return std::ranges::find(calls, call) != calls.end(); }
    int Count(const std::string& call) const { return static_cast<int>(std::ranges::count(calls, call)); }

    std::vector<std::string> calls;
    std::map<std::string, HRESULT> answers; // what a call answers in place of S_OK
    std::function<void(const std::string& call)> onCall;
};

class Frame : public Counted<Frame, IOleInPlaceFrame> {
  public:
    using Faces = FaceTable<FaceRow<IOleInPlaceFrame>, FaceRow<IOleInPlaceUIWindow, IOleInPlaceFrame>,
                            FaceRow<IOleWindow, IOleInPlaceFrame>>;

    Frame(CallRecord& record, const HWND& window) : record_(record), window_(window) {}

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = window_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override {
        active = object;
        return record_.Note(object ? "SetActiveObject" : "SetActiveObject none");
    }
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }

    Microsoft::WRL::ComPtr<IOleInPlaceActiveObject> active;

  private:
    CallRecord& record_;
    const HWND& window_;
};

// Also offers to do without a window, as the newer containers do.
class Site : public Counted<Site, IOleClientSite, IOleInPlaceSiteWindowless, IOleControlSite, IDispatch> {
  public:
    using Faces = FaceTable<FaceRow<IOleClientSite>, FaceRow<IOleInPlaceSiteWindowless>,
                            FaceRow<IOleInPlaceSiteEx, IOleInPlaceSiteWindowless>,
                            FaceRow<IOleInPlaceSite, IOleInPlaceSiteWindowless>,
                            FaceRow<IOleWindow, IOleInPlaceSiteWindowless>, FaceRow<IOleControlSite>,
                            FaceRow<IDispatch>>;

    Site(CallRecord& record, const HWND& window, Frame& frame)
        : record_(record), window_(window), frame_(frame) {}

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override { return record_.Note("SaveObject"); }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override {
        *container = nullptr;
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE ShowObject() override { return record_.Note("ShowObject"); }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleInPlaceSiteEx
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        *window = window_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return record_.Note("CanInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return record_.Note("OnInPlaceActivate"); }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return record_.Note("OnUIActivate"); }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                               LPRECT position, LPRECT clip,
                                               LPOLEINPLACEFRAMEINFO info) override {
        *frame = nullptr;
        *document = nullptr;
        const HRESULT result = record_.Note("GetWindowContext");
        if (FAILED(result))
            return result;
        frame_.AddRef();
        *frame = &frame_;
        *position = at;
        *clip = visible;
        *info = {sizeof *info, FALSE, window_, nullptr, 0};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return record_.Note("OnUIDeactivate"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return record_.Note("OnInPlaceDeactivate"); }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT) override { return record_.Note("OnPosRectChange"); }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivateEx(BOOL*, DWORD flags) override {
        return record_.Note(flags & ACTIVATE_WINDOWLESS ? "OnInPlaceActivate windowless"
                                                        : "OnInPlaceActivate");
    }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivateEx(BOOL) override {
        return record_.Note("OnInPlaceDeactivate");
    }
    HRESULT STDMETHODCALLTYPE RequestUIActivate() override { return S_OK; }

    // IOleInPlaceSiteWindowless: an offer; what serves a control without a window is not there.
    HRESULT STDMETHODCALLTYPE CanWindowlessActivate() override {
        return record_.Note("CanWindowlessActivate");
    }
    HRESULT STDMETHODCALLTYPE GetCapture() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetCapture(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetFocus() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetFocus(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDC(LPCRECT, DWORD, HDC*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReleaseDC(HDC) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InvalidateRect(LPCRECT, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InvalidateRgn(HRGN, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ScrollRect(INT, INT, LPCRECT, LPCRECT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AdjustRect(LPRECT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnDefWindowMessage(UINT, WPARAM, LPARAM, LRESULT*) override {
        return E_NOTIMPL;
    }

    // IOleControlSite
    HRESULT STDMETHODCALLTYPE OnControlInfoChanged() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockInPlaceActive(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, DWORD) override {
        return record_.Note("TranslateAccelerator");
    }
    HRESULT STDMETHODCALLTYPE OnFocus(BOOL got) override {
        return record_.Note(got ? "OnFocus" : "OnFocus lost");
    }
    HRESULT STDMETHODCALLTYPE ShowPropertyFrame() override { return record_.Note("ShowPropertyFrame"); }

    // IDispatch: the ambient properties
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override {
        const auto found = ambients.find(id);
        return found == ambients.end() ? DISP_E_MEMBERNOTFOUND : VariantCopy(result, &found->second);
    }

    std::map<DISPID, _variant_t> ambients;
    RECT at = {10, 20, 210, 120};
    RECT visible = {0, 0, 400, 300};

  private:
    CallRecord& record_;
    const HWND& window_;
    Frame& frame_;
};

class Container : public CallRecord {
  public:
    Container()
        : window(CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                                 nullptr, nullptr)) {}
    ~Container() {
        Drop();
        DestroyWindow(window);
    }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    HRESULT Hold(IUnknown* control) {
        const HRESULT result = control->QueryInterface(IID_PPV_ARGS(&object));
        return SUCCEEDED(result) ? object->SetClientSite(&site) : result;
    }
    HRESULT Do(LONG verb) { return object->DoVerb(verb, nullptr, &site, 0, window, &site.at); }

    // As containers take leave: close, no site, no reference.
    void Drop() {
        if (!object)
            return;
        object->Close(OLECLOSE_NOSAVE);
        object->SetClientSite(nullptr);
        object.Reset();
    }

    // Another interface of the control; empty, if it has none.
    template <class Interface>
    Microsoft::WRL::ComPtr<Interface> As() const {
        Microsoft::WRL::ComPtr<Interface> asked;
        if (object)
            object.As(&asked);
        return asked;
    }

    HWND window;
    Frame frame{*this, window};
    Site site{*this, window, frame};
    Microsoft::WRL::ComPtr<IOleObject> object;
};

} // namespace host
