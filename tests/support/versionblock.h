// A version for a program's file that is not in use.
#pragma once

#include <windows.h>

#include <string>

// The root block of a version resource, without the texts that usually follow it.
struct VersionBlock {
    WORD length = sizeof(VersionBlock);
    WORD valueLength = sizeof(VS_FIXEDFILEINFO);
    WORD type = 0; // binary
    wchar_t key[16] = L"VS_VERSION_INFO";
    WORD padding = 0;
    VS_FIXEDFILEINFO value = {};
};

// 12.2.3.65535, also in place of another.
inline void AddVersion(const std::string& path) {
    VersionBlock block;
    block.value.dwSignature = 0xFEEF04BD;
    block.value.dwStrucVersion = 0x10000;
    block.value.dwFileVersionMS = MAKELONG(2, 12);
    block.value.dwFileVersionLS = MAKELONG(65535, 3);
    const HANDLE update = BeginUpdateResourceA(path.c_str(), FALSE);
    UpdateResourceA(update, MAKEINTRESOURCEA(16), MAKEINTRESOURCEA(VS_VERSION_INFO), 0x409, &block,
                    sizeof block);
    EndUpdateResourceA(update, FALSE);
}
