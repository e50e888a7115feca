// The AT commands: a table of them, and a line of them carried out.
#pragma once

#include "profile.h"

#include <string>

// What a command says about the rest of its line.
enum class Outcome {
    kOk,        // go on; OK at the end
    kError,     // ERROR, the rest is not done
    kNoCarrier, // NO CARRIER, the rest is not done
    kOwnResult, // the modem answers later; the rest is not done
};

// What the commands act on.
class CommandTarget {
  public:
    virtual Profile& Settings() = 0;
    virtual void Inform(const std::string& text) = 0;
    virtual Outcome Dial(const std::string& text) = 0;
    virtual Outcome Answer() = 0;
    virtual Outcome ReturnOnline() = 0;
    virtual void Hook(bool off) = 0;

  protected:
    ~CommandTarget() = default;
};

// `text` is what stands behind AT.
Outcome ExecuteLine(CommandTarget& target, const std::string& text);
