#include "scriptextension.h"

#include "ansi.h"
#include "lookuplist.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <comdef.h>

namespace {

// The control is held while the work runs, and so is its extension. Without one nothing is done.
template <class Work>
HRESULT With(CTarnCommCtl* control, Work&& work) noexcept {
    const ComPtr<CTarnCommCtl> held(control);
    return control ? AsResult([&] { return work(*control); }) : S_OK;
}

constexpr char separator = '|';      // inside a text, too
constexpr size_t longestList = 1022; // characters of one WaitFor; more is cut

// A script's variables come by reference.
_variant_t ValueOf(const VARIANT& argument) {
    _variant_t value;
    _com_util::CheckError(VariantCopyInd(&value, const_cast<VARIANT*>(&argument)));
    return value;
}

// A script says nothing, or its engine the error that stands for it.
bool IsGiven(const _variant_t& value) {
    return value.vt != VT_EMPTY && !(value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND);
}

std::string TextOf(_variant_t value) {
    value.ChangeType(VT_BSTR);
    return AnsiOf(value.bstrVal);
}

// The two properties that shape what Input gives; put back at the end.
class PlainInput {
  public:
    explicit PlainInput(CTarnCommCtl& control) : control_(control) {
        control_.get_InputLen(&length_);
        control_.put_InputLen(0);
        control_.get_InputMode(&mode_);
        control_.put_InputMode(InputMode_Text);
    }
    ~PlainInput() {
        control_.put_InputMode(mode_);
        control_.put_InputLen(length_);
    }
    PlainInput(const PlainInput&) = delete;
    PlainInput& operator=(const PlainInput&) = delete;

    void Limit(_variant_t count) {
        if (IsGiven(count) && SUCCEEDED(VariantChangeType(&count, &count, 0, VT_I4)))
            control_.put_InputLen(count.lVal);
    }

  private:
    CTarnCommCtl& control_;
    LONG length_ = 0;
    CommInputMode mode_ = InputMode_Text;
};

} // namespace

STDMETHODIMP CScriptExtension::Dial(BSTR PhoneNumber, VARIANT_BOOL* Result) {
    if (!Result)
        return E_POINTER;
    *Result = VARIANT_FALSE;
    return With(control_, [&](CTarnCommCtl& control) {
        control.put_PhoneNumber(PhoneNumber);
        control.put_PortOpen(VARIANT_TRUE);
        return control.get_PortOpen(Result);
    });
}

STDMETHODIMP CScriptExtension::HangUp(VARIANT_BOOL* Result) {
    if (!Result)
        return E_POINTER;
    *Result = VARIANT_TRUE;
    return With(control_, [](CTarnCommCtl& control) {
        control.put_PortOpen(VARIANT_FALSE);
        return S_OK;
    });
}

STDMETHODIMP CScriptExtension::WaitFor(VARIANT Text1, VARIANT Text2, VARIANT Text3, VARIANT Text4,
                                       VARIANT Text5, VARIANT Text6, VARIANT Text7, VARIANT Text8,
                                       VARIANT Text9, VARIANT Text10, BSTR* Result) {
    if (!Result)
        return E_POINTER;
    *Result = nullptr;
    return With(control_, [&](CTarnCommCtl& control) {
        std::string texts = TextOf(ValueOf(Text1));
        for (const VARIANT* more :
             {&Text2, &Text3, &Text4, &Text5, &Text6, &Text7, &Text8, &Text9, &Text10}) {
            const _variant_t value = ValueOf(*more);
            if (IsGiven(value))
                texts += separator + TextOf(value);
        }
        const std::string list = LookUpListOf(texts.substr(0, longestList), separator);
        const HWND object = control.CommObject();
        if (ControlOf(object) != &control)
            return S_OK; // the look-up of a dead object would give the first text
        SetLookUpTimeOut(object, waitForTimeOut_);
        const int match = DiscardUntilLookUp(object, list.c_str());
        if (match >= 0 && ControlOf(object) == &control)
            *Result = MakeBstr(LookUpEntry(list, match));
        return S_OK;
    });
}

STDMETHODIMP CScriptExtension::get_WaitForTimeOut(LONG* value) {
    if (!value)
        return E_POINTER;
    *value = waitForTimeOut_;
    return S_OK;
}

STDMETHODIMP CScriptExtension::put_WaitForTimeOut(LONG value) {
    waitForTimeOut_ = value;
    return S_OK;
}

STDMETHODIMP CScriptExtension::Send(BSTR Data) {
    return With(control_, [&](CTarnCommCtl& control) {
        VARIANT data = {};
        data.vt = VT_BSTR;
        data.bstrVal = Data; // the caller's
        return control.put_Output(data);
    });
}

// A refusal by the input's own guards leaves the result empty and is no error here.
STDMETHODIMP CScriptExtension::Receive(VARIANT ByteCount, BSTR* Result) {
    if (!Result)
        return E_POINTER;
    *Result = nullptr;
    return With(control_, [&](CTarnCommCtl& control) {
        PlainInput plain(control);
        plain.Limit(ValueOf(ByteCount));
        _variant_t input;
        if (SUCCEEDED(control.get_Input(&input)) && IsGiven(input)) {
            input.ChangeType(VT_BSTR);
            *Result = input.Detach().bstrVal;
        }
        return S_OK;
    });
}

STDMETHODIMP CScriptExtension::ReceiveLine(BSTR* Result) {
    if (!Result)
        return E_POINTER;
    *Result = nullptr;
    return With(control_, [&](CTarnCommCtl& control) { return control.get_LineInput(Result); });
}
