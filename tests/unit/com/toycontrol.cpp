#include "toycontrol.h"

#include "com/enumvariant.h"

int ToyControl::alive = 0;
int ToyControl::windowsMade = 0;
int ToyControl::windowsGone = 0;
HRESULT ToyControl::constructResult = S_OK;

namespace {

HRESULT Give(const std::wstring& text, BSTR* value) {
    *value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *value ? S_OK : E_OUTOFMEMORY;
}

std::wstring Taken(BSTR text) {
    return {text, text + SysStringLen(text)};
}

} // namespace

HRESULT ToyControl::FinalConstruct() {
    const ComPtr<IUnknown> passing(static_cast<IToy*>(this)); // must not be the last reference
    return constructResult;
}

void ToyControl::FinalRelease() {
    const ComPtr<IUnknown> passing(static_cast<IToy*>(this));
    if (onRelease)
        onRelease();
}

HRESULT ToyControl::get_Text(BSTR* value) {
    return Give(text_, value);
}

HRESULT ToyControl::put_Text(BSTR value) {
    if (FireOnRequestEdit(1) != S_OK)
        return S_FALSE;
    text_ = Taken(value);
    FireOnChanged(1);
    return S_OK;
}

HRESULT ToyControl::get_Flag(VARIANT_BOOL* value) {
    *value = flag_;
    return S_OK;
}

HRESULT ToyControl::put_Flag(VARIANT_BOOL value) {
    flag_ = value;
    return S_OK;
}

HRESULT ToyControl::get_Any(VARIANT* value) {
    VariantInit(value);
    return VariantCopy(value, &any_);
}

HRESULT ToyControl::put_Any(VARIANT value) {
    return VariantCopy(&any_, &value);
}

HRESULT ToyControl::get_Color(ToyColor* value) {
    *value = color_;
    return S_OK;
}

HRESULT ToyControl::put_Color(ToyColor value) {
    color_ = value;
    return S_OK;
}

HRESULT ToyControl::get_Item(long index, BSTR* value) {
    return Give(items_[index], value);
}

HRESULT ToyControl::put_Item(long index, BSTR value) {
    items_[index] = Taken(value);
    return S_OK;
}

HRESULT ToyControl::get_Helper(IDispatch** value) {
    return helper_.CopyTo(value);
}

HRESULT ToyControl::putref_Helper(IDispatch* value) {
    helper_ = value;
    return S_OK;
}

HRESULT ToyControl::Bump(short* key, float* x) {
    ++*key;
    *x *= 2;
    return S_OK;
}

HRESULT ToyControl::KindOf(VARIANT what, long* kind) {
    *kind = V_VT(&what);
    return S_OK;
}

HRESULT ToyControl::Fail(BSTR why) {
    return ReportFailure(static_cast<HRESULT>(0x800A0005), toyProgId, why);
}

HRESULT ToyControl::Add(long left, long right, long* sum) {
    *sum = left + right;
    return S_OK;
}

HRESULT ToyControl::IsSelf(IDispatch* of, VARIANT_BOOL* same) {
    *same = of == static_cast<IToy*>(this) ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT ToyControl::get__NewEnum(IUnknown** enumerator) {
    return MakeStringEnumerator({L"one", L"", L"three"}, enumerator);
}

void ToyControl::FireHappened(const wchar_t* text, short& key, VARIANT_BOOL& cancel) {
    const _bstr_t words(text);
    VARIANT arguments[3] = {};
    V_VT(&arguments[0]) = VT_BSTR;
    V_BSTR(&arguments[0]) = words;
    V_VT(&arguments[1]) = VT_BYREF | VT_I2;
    V_I2REF(&arguments[1]) = &key;
    V_VT(&arguments[2]) = VT_BYREF | VT_BOOL;
    V_BOOLREF(&arguments[2]) = &cancel;
    FireEvent(__uuidof(_IToyEvents), 1, arguments);
}

std::vector<CLSID> ToyControl::Pages() const {
    return {__uuidof(Toy), __uuidof(IToy)};
}

const ControlFacts& ToyControl::Facts() const {
    static const ControlFacts facts = {&__uuidof(Toy), L"Toy", &__uuidof(_IToyEvents), toyWindowClass,
                                       131473};
    return facts;
}

bool ToyControl::OnWindowCreated() {
    ++windowsMade;
    return !refuseWindow;
}

bool ToyControl::OnMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
    messages.push_back(message);
    result = 4711;
    return message == WM_USER;
}

void ToyControl::OnWindowDestroyed() {
    ++windowsGone;
}

void ToyControl::OnDraw(HDC context, const RECT& bounds) {
    drawn.push_back(bounds);
    FillRect(context, &bounds, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    SelectObject(context, GetStockObject(WHITE_PEN)); // left behind on purpose
}

void ToyControl::OnAmbientChanged(DISPID id) {
    ambientsChanged.push_back(id);
}

bool ToyControl::OnTranslateAccelerator(MSG& message) {
    return onKey && onKey(message);
}
