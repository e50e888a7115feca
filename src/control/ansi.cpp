#include "ansi.h"

#include <new>

namespace {

BSTR MakeString(const wchar_t* text, size_t length) {
    const BSTR made = SysAllocStringLen(text, static_cast<UINT>(length));
    if (!made)
        throw std::bad_alloc();
    return made;
}

std::string Narrow(const wchar_t* text, int length) {
    if (!length)
        return {};
    const int size = WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

} // namespace

std::string AnsiOf(const wchar_t* text) {
    return text ? Narrow(text, static_cast<int>(wcslen(text))) : std::string();
}

std::string AnsiOf(const std::wstring& text) {
    return Narrow(text.data(), static_cast<int>(text.size()));
}

std::wstring WideOf(std::string_view text) {
    if (text.empty())
        return {};
    const auto length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), size);
    return wide;
}

BSTR MakeBstr(std::string_view text) {
    return MakeBstr(WideOf(text));
}

BSTR MakeBstr(const std::wstring& text) {
    return MakeString(text.data(), text.size());
}

std::wstring TextOf(BSTR text) {
    return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

BSTR NullOrBstr(const std::wstring& text) {
    return text.empty() ? nullptr : MakeBstr(text);
}
