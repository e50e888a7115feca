// Text at the border: UTF-16 outside, the system's 8-bit code page inside.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

std::string AnsiOf(const wchar_t* text); // null is empty, a NUL ends it
std::string AnsiOf(const std::wstring& text);
std::wstring WideOf(std::string_view text);

// All of it, NULs too; null is empty.
std::wstring TextOf(BSTR text);

// A new string with all bytes, NULs too. Throws std::bad_alloc.
BSTR MakeBstr(std::string_view text);
BSTR MakeBstr(const std::wstring& text);

// No text is null, not an empty string.
BSTR NullOrBstr(const std::wstring& text);
