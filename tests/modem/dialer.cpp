#include "dialer.h"

Dialer::Dialer(DialString dial, bool hearsBusy, Nanoseconds now)
    : dial_(std::move(dial)), hearsBusy_(hearsBusy), began_(now) {}

// kDone: the step is over.
Dialer::Outcome Dialer::Judge(const DialStep& step, Heard heard, bool late) const {
    switch (step.kind) {
    case Kind::kDigit:
    case Kind::kPause:
        return late ? Outcome::kDone : Outcome::kRunning;
    case Kind::kToneWait:
        if (heard == Heard::kDialTone)
            return Outcome::kDone;
        return late ? Outcome::kNoDialTone : Outcome::kRunning;
    case Kind::kAnswerWait:
        if (heard == Heard::kAnswer)
            return Outcome::kDone;
        if (heard == Heard::kBusy && hearsBusy_)
            return Outcome::kBusy;
        return late ? Outcome::kNoAnswer : Outcome::kRunning;
    }
    return Outcome::kDone;
}

Dialer::Outcome Dialer::Advance(Exchange& exchange, Line& line, Nanoseconds now, Nanoseconds& next) {
    for (; at_ < dial_.steps.size(); at_++) {
        const DialStep& step = dial_.steps[at_];
        if (step.kind == Kind::kAnswerWait)
            exchange.Connect(line, now, false);
        const Nanoseconds end = began_ + step.time;
        const Outcome outcome = Judge(step, exchange.Hears(line), now >= end);
        next = end;
        if (outcome != Outcome::kDone)
            return outcome;
        if (step.kind == Kind::kDigit)
            exchange.Digit(line, step.digit);
        began_ = now;
    }
    exchange.Connect(line, now, dial_.staysInCommandState);
    return Outcome::kDone;
}
