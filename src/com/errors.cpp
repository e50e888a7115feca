#include "errors.h"

#include "wall.h"

#include <comdef.h>
#include <wrl/client.h>

#include <algorithm>
#include <string>

using Microsoft::WRL::ComPtr;

namespace {

std::wstring Wide(const char* text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0); // with its zero
    std::wstring wide(static_cast<size_t>(std::max(length, 1)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    wide.pop_back();
    return wide;
}

HRESULT SetRecord(const wchar_t* source, const wchar_t* description) {
    ComPtr<ICreateErrorInfo> maker;
    HRESULT result = CreateErrorInfo(&maker);
    if (FAILED(result))
        return result;
    maker->SetGUID(GUID_NULL);
    maker->SetSource(_bstr_t(source));
    maker->SetDescription(_bstr_t(description));
    ComPtr<IErrorInfo> record;
    result = maker.As(&record);
    return SUCCEEDED(result) ? SetErrorInfo(0, record.Get()) : result;
}

} // namespace

HRESULT ReportFailure(HRESULT code, const wchar_t* source, const wchar_t* description) noexcept {
    AsResult([&] { return SetRecord(source, description); });
    return code;
}

HRESULT ReportFailure(HRESULT code, const wchar_t* source, const char* description) noexcept {
    AsResult([&] { return SetRecord(source, Wide(description).c_str()); });
    return code;
}
