// Where the list of known modems lies: beside this module, beside the program, in the Windows folder, in the
// system folder. The first that can be opened wins.
#pragma once

#include "core/handle.h"

#include <array>

class ModemListFile {
  public:
    // Opens the first one there is.
    ModemListFile();

    bool IsOpen() const { return static_cast<bool>(file_); }

    // The next byte, or endOfModemList.
    int NextByte();

  private:
    FileHandle file_;
    std::array<BYTE, 4096> bytes_;
    DWORD count_ = 0;
    DWORD next_ = 0;
};
