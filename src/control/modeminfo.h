// An editor of the modem options: splits them into their fields and writes them back at its end, read or
// changed. There are six fields, so a seventh, the line's speed, goes missing; hosts see it gone.
#pragma once

#include "modem/modemoptions.h"
#include "TarnCommCtl.h"

#include <array>
#include <string>

class CModemInfo {
  public:
    explicit CModemInfo(CTarnCommCtl& control);
    ~CModemInfo();
    CModemInfo(const CModemInfo&) = delete;
    CModemInfo& operator=(const CModemInfo&) = delete;

    std::string& operator[](ModemField field) { return fields_[static_cast<size_t>(field)]; }

  private:
    static constexpr size_t fieldCount = 6; // up to ModemField::HangUp

    CTarnCommCtl& control_;
    std::array<std::string, fieldCount> fields_;
};
