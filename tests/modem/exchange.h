// The telephone exchange: who rings whom, what is heard in a line, and the bytes between two modems in a
// call.
#pragma once

#include "byte_queue.h"
#include "clock.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

enum class Manner { kBusy, kNoAnswer, kVoice, kDead };
enum class Heard { kSilence, kDialTone, kRingback, kBusy, kAnswer };

using Outside = std::map<std::string, Manner>;
Outside DefaultOutside();

struct Cadence {
    Nanoseconds on = 2000 * kMillisecond;
    Nanoseconds off = 4000 * kMillisecond;
};

// What the lab sets about a line.
struct LineSettings {
    bool dialTone = true;
    Nanoseconds setup = 500 * kMillisecond; // from the answer to the carrier
    Cadence cadence;                        // of the rings that it gets
    Outside outside = DefaultOutside();     // as this line reaches them
};

struct PhoneCall;

// A subscriber's line; `settings` belong to the lab, the rest to the exchange.
struct Line {
    std::string number;
    LineSettings settings;

    bool offHook = false;
    bool released = false; // the other party has gone: silence until it is put on hook
    std::string digits;
    std::optional<Nanoseconds> listeningSince; // for the other modem's carrier
    std::shared_ptr<PhoneCall> call;
    ByteQueue arrived;
};

class Exchange {
  public:
    // Lines stay where they are.
    Line& AddLine(const std::string& number);

    void OffHook(Line& line); // answers when it is rung
    void OnHook(Line& line);
    void Digit(Line& line, char digit);
    // The digits so far are a number to be called; with `maybeMore` only if they are one.
    void Connect(Line& line, Nanoseconds now, bool maybeMore);
    // The modem listens for a carrier and sends its own.
    void Listen(Line& line, Nanoseconds now);

    // Somebody outside calls; false if the line is in use.
    bool CallFromOutside(Line& line, unsigned rings, Nanoseconds now);
    // The other party's line drops; false if there is no other party.
    bool Drop(Line& line);

    Heard Hears(const Line& line) const;
    bool IsRung(const Line& line) const;
    bool RingsNow(const Line& line) const; // in the cadence's on part
    bool HasCarrier(const Line& line) const;

    // How many bytes the other end takes now. In a call with nobody there they vanish.
    std::size_t Room(const Line& line) const;
    void Send(Line& line, Bytes bytes);

    // Does what is due and returns when the next is.
    Nanoseconds Advance(Nanoseconds now);
    // Moves with every change that a modem can notice.
    unsigned Changes() const { return changes_; }

  private:
    Line* FindFree(const std::string& number, bool& known) const;
    void Place(Line& line, Nanoseconds now, bool maybeMore);
    void End(const std::shared_ptr<PhoneCall>& call);
    Nanoseconds AdvanceCall(const std::shared_ptr<PhoneCall>& call, Nanoseconds now);
    Nanoseconds AdvanceRinging(const std::shared_ptr<PhoneCall>& call, Nanoseconds now);

    std::vector<std::unique_ptr<Line>> lines_;
    unsigned changes_ = 0;
};
