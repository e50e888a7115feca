// CIniFile: the section "Comm" of a profile file. It lives on the stack of a command.
#pragma once

#include <windows.h>

#include <array>

class CIniFile {
  public:
    // Touches no file. A name that doesn't fit is cut.
    void Open(const char* szName);

    // Valid until the next call. A value that doesn't fit is cut.
    const char* GetString(const char* szKey, const char* szDefault);
    int GetInt(const char* szKey, int nDefault) const;

    void WriteString(const char* szKey, const char* szValue);
    void WriteInt(const char* szKey, int nValue);

    // A write since Open has failed. Nobody is told of it, see the tests.
    bool HasFailed() const { return bFailed; }

  private:
    std::array<char, MAX_PATH> szFileName = {};
    std::array<char, 256> szBuffer = {};
    std::array<char, 256> szSection = {};
    bool bFailed = false;
};
