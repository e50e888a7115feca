#include "typelibraryrows.h"

#include <comdef.h>
#include <oaidl.h>
#include <wrl/client.h>

using Microsoft::WRL::ComPtr;

namespace {

// The system's own, which marshal by the type library.
constexpr wchar_t automationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t dispatchMarshaler[] = L"{00020420-0000-0000-C000-000000000046}";

constexpr const wchar_t* width = sizeof(void*) == 8 ? L"win64" : L"win32";

void Check(HRESULT result) {
    if (FAILED(result))
        throw _com_error(result);
}

class Attributes {
  public:
    explicit Attributes(ITypeInfo& info) : info_(info) { Check(info_.GetTypeAttr(&value_)); }
    ~Attributes() { info_.ReleaseTypeAttr(value_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    const TYPEATTR* operator->() const { return value_; }

  private:
    ITypeInfo& info_;
    TYPEATTR* value_ = nullptr;
};

std::wstring NameOf(ITypeLib& library, int index, bool description) {
    _bstr_t text;
    Check(library.GetDocumentation(index, description ? nullptr : text.GetAddress(),
                                   description ? text.GetAddress() : nullptr, nullptr, nullptr));
    return text.length() ? std::wstring(text) : std::wstring();
}

// Interfaces that another process may ask for: those of automation.
const wchar_t* MarshalerOf(const Attributes& attributes) {
    if (attributes->typekind != TKIND_DISPATCH)
        return nullptr;
    return attributes->wTypeFlags & TYPEFLAG_FDUAL ? automationMarshaler : dispatchMarshaler;
}

void AddInterface(RegistryRows& rows, const ModuleRegistration& module, ITypeLib& library, UINT index) {
    ComPtr<ITypeInfo> info;
    Check(library.GetTypeInfo(index, &info));
    const Attributes attributes(*info.Get());
    const wchar_t* marshaler = MarshalerOf(attributes);
    if (!marshaler)
        return;
    const std::wstring key = L"Interface\\" + GuidText(attributes->guid);
    rows.trees.push_back(key);
    rows.values.push_back({key, L"", NameOf(library, static_cast<int>(index), false)});
    rows.values.push_back({key + L"\\ProxyStubClsid32", L"", marshaler});
    rows.values.push_back({key + L"\\TypeLib", L"", GuidText(*module.library)});
    rows.values.push_back({key + L"\\TypeLib", L"Version", module.libraryVersion});
}

std::wstring FolderOf(const std::wstring& path) {
    const size_t end = path.find_last_of(L"\\/");
    return end == std::wstring::npos ? std::wstring() : path.substr(0, end);
}

} // namespace

std::wstring GuidText(const GUID& id) {
    constexpr int longest = 39; // with its braces and the zero
    wchar_t text[longest] = {};
    StringFromGUID2(id, text, longest);
    return text;
}

void AddTypeLibrary(RegistryRows& rows, const ModuleRegistration& module) {
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(module.path.c_str(), REGKIND_NONE, &library));
    const std::wstring root = L"TypeLib\\" + GuidText(*module.library);
    const std::wstring version = root + L"\\" + module.libraryVersion;
    const std::wstring language = version + L"\\0";
    const std::wstring file = language + L"\\" + width;
    rows.values.push_back({version, L"", NameOf(*library.Get(), -1, true)});
    rows.values.push_back({version + L"\\FLAGS", L"", L"0"});
    rows.values.push_back({version + L"\\HELPDIR", L"", FolderOf(module.path)});
    rows.values.push_back({file, L"", module.path});
    const UINT count = library->GetTypeInfoCount();
    for (UINT index = 0; index < count; ++index)
        AddInterface(rows, module, *library.Get(), index);
    rows.trees.push_back(file);
    rows.shared = {{language, version}, {root, root}};
}
