// The base of a windowed control: all that a container wants of one, but its own interface and persistence.
// The control overrides the hooks below; everything runs on the thread that made it. Inside a hook the object
// is held, so that host code which runs there may release it.
#pragma once

#include "ambients.h"
#include "faces.h"

#include <ocidl.h>
#include <oleidl.h>
#include <wrl/client.h>

struct ControlFacts {
    const CLSID* id;
    const wchar_t* name;     // what users read: caption of the pages, name of the object
    const IID* events;       // the default source interface
    const char* windowClass; // of the control's window; unregistered by UnregisterControlWindow
    DWORD miscStatus;        // OLEMISC_ bits, as in the registry
};

class OleControl : public IOleObject,
                   public IOleControl,
                   public IOleInPlaceObjectWindowless,
                   public IOleInPlaceActiveObject,
                   public IViewObjectEx,
                   public IDataObject,
                   public IQuickActivate {
  public:
    using Faces =
        FaceTable<FaceRow<IOleObject>, FaceRow<IOleControl>, FaceRow<IOleInPlaceObjectWindowless>,
                  FaceRow<IOleInPlaceObject, IOleInPlaceObjectWindowless>,
                  FaceRow<IOleWindow, IOleInPlaceObjectWindowless>, FaceRow<IOleInPlaceActiveObject>,
                  FaceRow<IViewObjectEx>, FaceRow<IViewObject2, IViewObjectEx>,
                  FaceRow<IViewObject, IViewObjectEx>, FaceRow<IDataObject>, FaceRow<IQuickActivate>>;

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR application, LPCOLESTR document) override;
    HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD which, IMoniker* moniker) override;
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject* data, BOOL creation, DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD reserved, IDataObject** data) override;
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                                     LPCRECT position) override;
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) override;
    HRESULT STDMETHODCALLTYPE Update() override;
    HRESULT STDMETHODCALLTYPE IsUpToDate() override;
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* id) override;
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* type) override;
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* himetric) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* himetric) override;
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) override;
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** advises) override;
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE* palette) override;

    // IOleControl
    HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnMnemonic(MSG* message) override;
    HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID id) override;
    HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL freeze) override;

    // IOleWindow, IOleInPlaceObject, IOleInPlaceObjectWindowless
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE UIDeactivate() override;
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) override;
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override;
    HRESULT STDMETHODCALLTYPE OnWindowMessage(UINT message, WPARAM wParam, LPARAM lParam,
                                              LRESULT* result) override;
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget** target) override;

    // IOleInPlaceActiveObject
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window, BOOL frame) override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;

    // IViewObject, IViewObject2, IViewObjectEx
    HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG index, void* details, DVTARGETDEVICE* target,
                                   HDC targetContext, HDC context, LPCRECTL bounds, LPCRECTL metafileBounds,
                                   BOOL(STDMETHODCALLTYPE* goOn)(ULONG_PTR), ULONG_PTR goOnArgument) override;
    HRESULT STDMETHODCALLTYPE GetColorSet(DWORD aspect, LONG index, void* details, DVTARGETDEVICE* target,
                                          HDC targetContext, LOGPALETTE** colors) override;
    HRESULT STDMETHODCALLTYPE Freeze(DWORD aspect, LONG index, void* details, DWORD* freeze) override;
    HRESULT STDMETHODCALLTYPE Unfreeze(DWORD freeze) override;
    HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
    HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* target,
                                        LPSIZEL himetric) override;
    HRESULT STDMETHODCALLTYPE GetRect(DWORD aspect, LPRECTL rect) override;
    HRESULT STDMETHODCALLTYPE GetViewStatus(DWORD* status) override;
    HRESULT STDMETHODCALLTYPE QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG closeHint,
                                            DWORD* result) override;
    HRESULT STDMETHODCALLTYPE QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG closeHint,
                                           DWORD* result) override;
    HRESULT STDMETHODCALLTYPE GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* target, HDC context,
                                               DVEXTENTINFO* info, LPSIZEL himetric) override;

    // IDataObject: the picture as a metafile
    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC* format, STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) override;
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC* in, FORMATETC* out) override;
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC* format, STGMEDIUM* medium, BOOL release) override;
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) override;
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink,
                                      DWORD* connection) override;
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD connection) override;
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA** advises) override;

    // IQuickActivate
    HRESULT STDMETHODCALLTYPE QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    HRESULT STDMETHODCALLTYPE SetContentExtent(LPSIZEL himetric) override;
    HRESULT STDMETHODCALLTYPE GetContentExtent(LPSIZEL himetric) override;

    // The control's window, or nothing
    HWND Window() const { return window_; }
    bool IsInPlaceActive() const { return inPlaceActive_; }
    bool IsUIActive() const { return uiActive_; }
    bool EventsAreFrozen() const { return freezes_ > 0; }
    const Ambients& Ambient() const { return ambients_; }

    // For persistence: what is stored, and whether it needs storing
    SIZEL Extent() const { return extent_; }
    void RestoreExtent(SIZEL himetric) { extent_ = himetric; }
    bool IsDirty() const { return dirty_; }
    void SetDirty(bool dirty) { dirty_ = dirty; }

    // While it sizes itself, the container's wishes for another extent are refused.
    void SetSizesItself(bool sizes) { sizesItself_ = sizes; }

    // Paints the window again, or tells the container's view that its picture is old.
    void ViewChanged();
    void TellSaved(); // to the holders of advises, after storing

    void LetGo(); // before the end of the object

  protected:
    OleControl();
    virtual ~OleControl() = default;
    OleControl(const OleControl&) = delete;
    OleControl& operator=(const OleControl&) = delete;

    virtual const ControlFacts& Facts() const = 0;

    // The window is there and is being created. False: it shall not be.
    virtual bool OnWindowCreated() { return true; }
    // A message of the window, before the base's own answer; for WM_SETFOCUS, WM_KILLFOCUS and
    // WM_MOUSEACTIVATE the container has been told before. True: answered by result.
    virtual bool OnMessage(UINT, WPARAM, LPARAM, LRESULT&) { return false; }
    // The children of the window are still there.
    virtual void OnWindowDestroyed() {}

    // Paints into bounds, in the context's units: for the window as for a picture outside of it.
    virtual void OnDraw(HDC, const RECT&) {}
    // DISPID_UNKNOWN: any of them.
    virtual void OnAmbientChanged(DISPID) {}
    // A key message of the container's loop. True: it is dealt with.
    virtual bool OnTranslateAccelerator(MSG&) { return false; }
    // The site is new, or (null) gone.
    virtual void OnClientSite(IOleClientSite*) {}

    IOleClientSite* ClientSite() const { return clientSite_.Get(); }

    // To the container. The window's own focus is told by the base, that of its children by the control.
    void TellFocus(bool got);

  private:
    friend class ControlWindow;
    template <class Interface>
    using Owned = Microsoft::WRL::ComPtr<Interface>;

    IUnknown* Identity() { return static_cast<IOleObject*>(this); }

    HRESULT Activate(bool withUI, HWND parent);
    HRESULT EnterPlace();
    HRESULT TakePlace();
    HRESULT FillPlace(HWND parent);
    void LeavePlace();
    HRESULT EnsureWindow(HWND parent, const RECT& position, const RECT& clip);
    void DestroyControlWindow();
    HRESULT EnterUI();
    HRESULT TakeUI();
    void TellActiveObject(IOleInPlaceActiveObject* active);
    HRESULT Hide();
    HRESULT ShowProperties(HWND parent, LPCRECT position);
    HRESULT ShowOwnFrame(HWND parent, LPCRECT position);
    HRESULT Connect(REFIID iid, IUnknown* sink, DWORD& cookie);
    bool FocusIsInside() const;
    LRESULT AnswerWindow(UINT message, WPARAM wParam, LPARAM lParam);
    void TellContainer(UINT message, WPARAM wParam);
    void PaintWindow();

    struct ViewAdvise {
        DWORD aspects = 0;
        DWORD flags = 0;
        Owned<IAdviseSink> sink;
    };

    Owned<IOleClientSite> clientSite_;
    Ambients ambients_;
    Owned<IOleInPlaceSite> inPlaceSite_; // while in-place active
    Owned<IOleInPlaceFrame> frame_;      // while UI-active, as is the document's window
    Owned<IOleInPlaceUIWindow> document_;
    Owned<IOleAdviseHolder> advises_;
    Owned<IDataAdviseHolder> dataAdvises_;
    ViewAdvise view_;
    SIZEL extent_;
    RECT position_ = {};
    HWND window_ = nullptr;
    int freezes_ = 0;
    bool dirty_ = false;
    bool inPlaceActive_ = false;
    bool uiActive_ = false;
    bool sizesItself_ = false;
};

// When the module goes: the window class has its procedure there.
void UnregisterControlWindow(const char* windowClass) noexcept;
