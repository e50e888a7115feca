// ControlHost: all that a window needs to hold the control: the way to the object without the registry, the
// site and the frame that the control asks for its place, a sink for its events.
//
// It is made, used and ended on the window's thread.
#pragma once

#include "TarnLink.h"

#include <ocidl.h>
#include <oleidl.h>
#include <wrl/client.h>

#include <functional>
#include <string>

// The platform's interfaces have no virtual destructor, and nobody deletes by them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Counts nothing: these objects live in the host, which ends what holds them before itself.
template <class... Faces>
class Lasting : public Faces... {
  public:
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    Lasting(const Lasting&) = delete;
    Lasting& operator=(const Lasting&) = delete;

  protected:
    Lasting() = default;
    virtual ~Lasting() = default;
};

#pragma GCC diagnostic pop

// Where the control's keys and tools would go besides its own window. This one has no menus and no tools.
class Frame final : public Lasting<IOleInPlaceFrame> {
  public:
    explicit Frame(const HWND& window) : window_(window) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** face) override;
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBorder(RECT*) override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override;
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, OLEMENUGROUPWIDTHS*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, WORD) override { return S_FALSE; }

    // What has the keys, or nothing.
    Microsoft::WRL::ComPtr<IOleInPlaceActiveObject> active;

  private:
    const HWND& window_;
};

// The control's place: the whole of the window. Also its ambient properties.
class Site final : public Lasting<IOleClientSite, IOleInPlaceSite, IDispatch> {
  public:
    Site(const HWND& window, Frame& frame) : window_(window), frame_(frame) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** face) override;

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override;
    HRESULT STDMETHODCALLTYPE ShowObject() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnUIActivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                               RECT* position, RECT* clip,
                                               OLEINPLACEFRAMEINFO* info) override;
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(const RECT*) override { return S_OK; }

    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override;

  private:
    const HWND& window_;
    Frame& frame_;
};

// Hands each event on by its number in the type library.
class Events final : public Lasting<IDispatch> {
  public:
    using Handler = std::function<void(DISPID event, const DISPPARAMS& arguments)>;

    explicit Events(Handler handler) : handler_(std::move(handler)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** face) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                                     EXCEPINFO*, UINT*) override;

  private:
    Handler handler_;
};

class ControlHost {
  public:
    explicit ControlHost(Events::Handler onEvent) : events_(std::move(onEvent)) {}
    ~ControlHost() { Leave(); }
    ControlHost(const ControlHost&) = delete;
    ControlHost& operator=(const ControlHost&) = delete;

    // Makes the control and shows it in the window. The module lies beside the program and stays loaded.
    HRESULT Enter(HWND window);
    // Ends the control; its port is closed.
    void Leave();

    // Null before Enter and after Leave.
    ITarnComm* Control() const { return control_.Get(); }

    void FillWindow(); // after its size has changed
    void TakeFocus();
    void TellActive(bool active); // whether the program's window is the active one
    // True: the control has used the key.
    bool Translate(MSG& message);

  private:
    HRESULT Make();
    HRESULT Connect();

    HWND window_ = nullptr;
    Frame frame_{window_};
    Site site_{window_, frame_};
    Events events_;
    DWORD connection_ = 0;
    Microsoft::WRL::ComPtr<ITarnComm> control_;
    Microsoft::WRL::ComPtr<IOleObject> object_;
};
