// Dials: the steps of a dial string, one after the other, on a line that is off hook.
#pragma once

#include "dial_string.h"
#include "exchange.h"

class Dialer {
  public:
    enum class Outcome { kRunning, kDone, kNoDialTone, kBusy, kNoAnswer };

    Dialer() = default;
    Dialer(DialString dial, bool hearsBusy, Nanoseconds now);

    // Does what is due; `next` is when to come again.
    Outcome Advance(Exchange& exchange, Line& line, Nanoseconds now, Nanoseconds& next);
    bool StaysInCommandState() const { return dial_.staysInCommandState; }

  private:
    using Kind = DialStep::Kind;

    Outcome Judge(const DialStep& step, Heard heard, bool late) const;

    DialString dial_;
    bool hearsBusy_ = false;
    std::size_t at_ = 0;
    Nanoseconds began_ = 0; // the step that is under way
};
