// A small control on the layer, with a member of every kind that a dual interface may have.
#pragma once

#include <toy.h>

#include "com/classinfo.h"
#include "com/connectionpoint.h"
#include "com/dispatch.h"
#include "com/errors.h"
#include "com/olecontrol.h"
#include "com/propertypages.h"
#include "com/safety.h"
#include "com/unknown.h"

#include <comdef.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

inline constexpr wchar_t toyProgId[] = L"Tests.Toy";
inline constexpr char toyWindowClass[] = "TestsToy";

class ToyControl
    : public Unknown<ToyControl, OleControl, Dual<IToy>, EventSource<IPropertyNotifySink, _IToyEvents>,
                     ClassInfo<Toy, _IToyEvents>, PropertyPages, NotSafe, ErrorSupport<IToy>> {
  public:
    using Faces = FaceTable<FaceRow<IToy>, FaceRow<IDispatch, IToy>, OleControl::Faces,
                            FaceRow<IConnectionPointContainer>, FaceRow<IProvideClassInfo2>,
                            FaceRow<IProvideClassInfo, IProvideClassInfo2>, FaceRow<ISpecifyPropertyPages>,
                            FaceRow<IObjectSafety>, FaceRow<ISupportErrorInfo>>;

    ToyControl() { ++alive; }
    ~ToyControl() override { --alive; }

    HRESULT FinalConstruct() override;
    void FinalRelease() override;

    HRESULT STDMETHODCALLTYPE get_Text(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE put_Text(BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Flag(VARIANT_BOOL* value) override;
    HRESULT STDMETHODCALLTYPE put_Flag(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_Any(VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE put_Any(VARIANT value) override;
    HRESULT STDMETHODCALLTYPE get_Color(ToyColor* value) override;
    HRESULT STDMETHODCALLTYPE put_Color(ToyColor value) override;
    HRESULT STDMETHODCALLTYPE get_Item(long index, BSTR* value) override;
    HRESULT STDMETHODCALLTYPE put_Item(long index, BSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Helper(IDispatch** value) override;
    HRESULT STDMETHODCALLTYPE putref_Helper(IDispatch* value) override;
    HRESULT STDMETHODCALLTYPE Bump(short* key, float* x) override;
    HRESULT STDMETHODCALLTYPE KindOf(VARIANT what, long* kind) override;
    HRESULT STDMETHODCALLTYPE Fail(BSTR why) override;
    HRESULT STDMETHODCALLTYPE Add(long left, long right, long* sum) override;
    HRESULT STDMETHODCALLTYPE IsSelf(IDispatch* of, VARIANT_BOOL* same) override;
    HRESULT STDMETHODCALLTYPE get__NewEnum(IUnknown** enumerator) override;

    void FireHappened(const wchar_t* text, short& key, VARIANT_BOOL& cancel);

    static int alive;
    static int windowsMade;
    static int windowsGone;
    static HRESULT constructResult;

    std::vector<DISPID> ambientsChanged;
    std::vector<UINT> messages;
    std::vector<RECT> drawn;
    std::function<bool(MSG&)> onKey;
    std::function<void()> onRelease;
    bool refuseWindow = false;

  private:
    std::vector<CLSID> Pages() const override;
    const ControlFacts& Facts() const override;
    bool OnWindowCreated() override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void OnWindowDestroyed() override;
    void OnDraw(HDC context, const RECT& bounds) override;
    void OnAmbientChanged(DISPID id) override;
    bool OnTranslateAccelerator(MSG& message) override;

    std::wstring text_;
    VARIANT_BOOL flag_ = VARIANT_FALSE;
    _variant_t any_;
    ToyColor color_ = ToyColor_Red;
    std::map<long, std::wstring> items_;
    ComPtr<IDispatch> helper_;
};
