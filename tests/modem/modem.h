// A modem between its computer and its telephone line. No I/O: bytes, signals and the time are given to it.
#pragma once

#include "at_commands.h"
#include "command_reader.h"
#include "dialer.h"
#include "escape_watch.h"
#include "result_codes.h"

class Modem final : private CommandTarget {
  public:
    Modem(Exchange& exchange, Line& line) : exchange_(exchange), line_(line) {}

    // The computer's side. What Receive gets beyond Room waits in the line's queue.
    std::size_t Room() const;
    void Receive(Bytes bytes, Nanoseconds now);
    void SetDtr(bool on, Nanoseconds now);
    ByteQueue& ForComputer() { return forComputer_; }
    bool CarrierSignal() const { return profile_.carrierMode == 0 || InCall(); }
    bool RingSignal() const { return ringing_; }

    // Does what is due and returns when the next is.
    Nanoseconds Advance(Nanoseconds now);

    // The lab's side.
    void PowerOn(); // settings of the lab included
    void SetSilent(bool on) { silent_ = on; }
    void SetGarbage(const std::string& bytes) { garbage_ = bytes; }
    void SetRate(const std::string& rate) { rate_ = rate; } // empty: a plain CONNECT
    Line& Wire() { return line_; }
    std::string State() const;

  private:
    enum class Mode { kCommand, kDialing, kCalling, kAnswering, kOnline, kEscaped };

    Profile& Settings() override { return profile_; }
    void Inform(const std::string& text) override;
    Outcome Dial(const std::string& text) override;
    Outcome Answer() override;
    Outcome ReturnOnline() override;
    void Hook(bool off) override;

    bool InCall() const { return mode_ == Mode::kOnline || mode_ == Mode::kEscaped; }
    bool IsRung() const { return mode_ == Mode::kCommand && exchange_.IsRung(line_); }
    const char* ModeName() const;

    void TakeCommandByte(char byte);
    void Execute(const CommandReader::Line& line);
    void Put(const std::string& text);
    void Say(Result result);

    void Step();
    void Wait(Nanoseconds until);
    void FollowDtr();
    void FollowRings();
    void RunDialer();
    void AwaitCarrier();
    void Converse();
    void WatchCarrier();
    void Deliver(bool all);
    void Escape();
    void AwaitCall(Mode mode);
    void EndCall(Result result);

    Exchange& exchange_;
    Line& line_;
    Profile profile_;
    CommandReader reader_;
    EscapeWatch escape_;
    Dialer dialer_;
    ByteQueue forComputer_;

    Mode mode_ = Mode::kCommand;
    Nanoseconds now_ = 0;
    Nanoseconds next_ = kNever;
    Nanoseconds limit_ = kNever;       // of the wait for a carrier
    Nanoseconds carrierLost_ = kNever; // since when
    Nanoseconds dtrLost_ = kNever;     // since when; kNever also after what it does was done
    bool dtr_ = true;
    bool ringing_ = false;
    bool echoing_ = false; // within a line of echo

    bool silent_ = false;
    std::string garbage_;
    std::string rate_ = "14400";
};
