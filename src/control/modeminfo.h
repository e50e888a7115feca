// An editor of the modem options: splits them into their fields and writes them back at its end, read or
// changed. There are six fields, so a seventh, the line's speed, goes missing; hosts see it gone.
#pragma once

#include "TarnCommCtl.h"

#include <array>
#include <string>

// In the order of the options.
enum class ModemText { Title, Init, DialTone, DialPulse, Answer, HangUp };

class CModemInfo {
  public:
    explicit CModemInfo(CTarnCommCtl& control);
    ~CModemInfo();
    CModemInfo(const CModemInfo&) = delete;
    CModemInfo& operator=(const CModemInfo&) = delete;

    std::string& operator[](ModemText field) { return fields_[static_cast<size_t>(field)]; }

  private:
    static constexpr size_t fieldCount = 6;

    CTarnCommCtl& control_;
    std::array<std::string, fieldCount> fields_;
};
