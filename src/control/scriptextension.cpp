#include "scriptextension.h"

#include "ansi.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <comdef.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// The control is held while the work runs, and so is its extension. Without one nothing is done.
template <class Work>
HRESULT With(CTarnCommCtl* control, Work&& work) noexcept {
    const ComPtr<CTarnCommCtl> held(control);
    return control ? AsResult([&] { return work(*control); }) : S_OK;
}

// The texts of one WaitFor, behind each other as the look-up wants them: each ends with a zero byte, the last
// with two.
class LookUpList {
  public:
    // What does not fit is cut.
    void Add(std::string_view text) {
        const size_t count = std::min(text.size(), longest - used_);
        std::copy_n(text.data(), count, bytes_.data() + used_);
        used_ += count;
    }
    // A bar inside a text separates, too.
    void Separate() { std::replace(bytes_.begin(), bytes_.end(), separator, '\0'); }
    const char* Texts() const { return bytes_.data(); }
    std::string_view At(int index) const {
        const char* text = bytes_.data();
        for (int left = index; left > 0 && *text; --left)
            text += std::strlen(text) + 1;
        return text;
    }

    static constexpr char separator = '|';

  private:
    static constexpr size_t size = 1024;
    static constexpr size_t longest = size - 2; // two zero bytes end the list

    std::array<char, size> bytes_ = {};
    size_t used_ = 0;
};

// A script's variables come by reference.
_variant_t ValueOf(const VARIANT& argument) {
    _variant_t value;
    _com_util::CheckError(VariantCopyInd(&value, const_cast<VARIANT*>(&argument)));
    return value;
}

bool IsGiven(const _variant_t& value) {
    return value.vt != VT_EMPTY && value.vt != VT_ERROR;
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
        LookUpList list;
        list.Add(TextOf(ValueOf(Text1)));
        for (const VARIANT* more :
             {&Text2, &Text3, &Text4, &Text5, &Text6, &Text7, &Text8, &Text9, &Text10}) {
            const _variant_t value = ValueOf(*more);
            if (IsGiven(value))
                list.Add(LookUpList::separator + TextOf(value));
        }
        list.Separate();
        const HWND object = control.CommObject();
        if (ControlOf(object) != &control)
            return S_OK; // the look-up of a dead object would give the first text
        SetLookUpTimeOut(object, waitForTimeOut_);
        const int match = DiscardUntilLookUp(object, list.Texts());
        if (match >= 0 && ControlOf(object) == &control)
            *Result = MakeBstr(list.At(match));
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
