#include "tarnpage.h"

#include "ansi.h"

#include <comdef.h>

namespace {

HRESULT SetAll(ITarnComm& control, const std::vector<std::function<HRESULT(ITarnComm&)>>& setters) {
    HRESULT result = S_OK;
    for (const auto& set : setters) {
        const HRESULT given = set(control);
        if (SUCCEEDED(result))
            result = given;
    }
    return result;
}

} // namespace

bool TarnPage::IsChecked(int item) const {
    return IsDlgButtonChecked(Dialog(), item) == BST_CHECKED;
}

void TarnPage::Check(int item, bool on) const {
    CheckDlgButton(Dialog(), item, on ? BST_CHECKED : BST_UNCHECKED);
}

void TarnPage::ShowNumber(int item, LONG value) const {
    SetDlgItemInt(Dialog(), item, static_cast<UINT>(value), TRUE);
}

LONG TarnPage::Number(int item, bool isSigned) const {
    return static_cast<LONG>(GetDlgItemInt(Dialog(), item, nullptr, isSigned));
}

void TarnPage::ShowText(int item, const std::string& text) const {
    SetDlgItemTextA(Dialog(), item, text.c_str());
}

std::string TarnPage::GetText(ITarnComm& control, Getter<BSTR> get) {
    _bstr_t text;
    (control.*get)(text.GetAddress());
    return AnsiOf(static_cast<const wchar_t*>(text));
}

TarnPage::Setter TarnPage::SetsFlag(Putter<Flag> put, bool on) {
    return Sets<Flag>(put, on ? VARIANT_TRUE : VARIANT_FALSE);
}

TarnPage::Setter TarnPage::SetsText(Putter<BSTR> put, const std::string& text) {
    return [put, value = _bstr_t(MakeBstr(text), false)](ITarnComm& control) {
        return (control.*put)(value.copy(false)); // no copy: the setter only reads it
    };
}

void TarnPage::OnFill(IUnknown* first) {
    OnPrepare();
    ComPtr<ITarnComm> control;
    if (first && SUCCEEDED(first->QueryInterface(IID_PPV_ARGS(&control))))
        OnControl(*control.Get());
}

// The controls are read before the first object hears anything, since the page may be taken apart then. A
// setter that fails keeps no other from its turn; the first failure is the answer.
HRESULT TarnPage::OnApply(const Objects& objects) {
    OutputDebugStringA(ApplyTrace());
    const Setters setters = Values();
    HRESULT result = S_OK;
    for (const ComPtr<IUnknown>& object : objects) {
        ComPtr<ITarnComm> control;
        HRESULT given = object ? object.As(&control) : E_POINTER;
        if (SUCCEEDED(given))
            given = SetAll(*control.Get(), setters);
        if (SUCCEEDED(result))
            result = given;
    }
    return result;
}
