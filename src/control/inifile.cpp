#include "inifile.h"

#include <cstdio>

void CIniFile::Open(const char* szName) {
    std::snprintf(szSection.data(), szSection.size(), "Comm");
    std::snprintf(szFileName.data(), szFileName.size(), "%s", szName);
    bFailed = false;
}

const char* CIniFile::GetString(const char* szKey, const char* szDefault) {
    GetPrivateProfileStringA(szSection.data(), szKey, szDefault, szBuffer.data(),
                             static_cast<DWORD>(szBuffer.size()), szFileName.data());
    return szBuffer.data();
}

int CIniFile::GetInt(const char* szKey, int nDefault) const {
    return static_cast<int>(GetPrivateProfileIntA(szSection.data(), szKey, nDefault, szFileName.data()));
}

void CIniFile::WriteString(const char* szKey, const char* szValue) {
    if (!WritePrivateProfileStringA(szSection.data(), szKey, szValue, szFileName.data()))
        bFailed = true;
}

void CIniFile::WriteInt(const char* szKey, int nValue) {
    char szValue[16];
    std::snprintf(szValue, sizeof szValue, "%d", nValue);
    WriteString(szKey, szValue);
}
