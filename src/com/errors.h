// Automation errors: what went wrong in words, beside the result code.
#pragma once

#include "interfaces.h"

#include <oaidl.h>

// Sets the thread's error record, without a help file, and gives the code back. The source is the coclass's
// ProgID.
HRESULT ReportFailure(HRESULT code, const wchar_t* source, const wchar_t* description) noexcept;
HRESULT ReportFailure(HRESULT code, const wchar_t* source, const char* description) noexcept;

// The base that says which interfaces report in this way.
template <class... Reporting>
class ErrorSupport : public ISupportErrorInfo {
  public:
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
        return (IsEqualIID(iid, __uuidof(Reporting)) || ...) ? S_OK : S_FALSE;
    }

  protected:
    virtual ~ErrorSupport() = default;
};
