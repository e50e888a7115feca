// tarnline's side of the modem signals of one cable: the shared file and the commands that act on it.
#pragma once

#include "signal_state.h"

#include <array>
#include <filesystem>
#include <string>

enum class Carrier { kFollow = TARN_CARRIER_FOLLOW, kOn = TARN_CARRIER_ON, kOff = TARN_CARRIER_OFF };

class Signals {
  public:
    // Makes or takes over the file `folder`/`name`; it goes with the object. Throws std::system_error.
    Signals(const std::filesystem::path& folder, const std::string& name);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    // The end's pty is there: both lines are up, as after an open. Its requests reach this cable from now on.
    void Attach(int end, unsigned minor);
    // The end's pty goes: its lines drop.
    void Detach(int end);
    // Lines, carrier, ring, break and error counts as at the start.
    void Reset();

    // `set` and `clear` are TIOCM bits; DTR and RTS count.
    void Drive(int end, unsigned set, unsigned clear);
    void SetCarrier(int end, Carrier carrier);
    void SetRing(int end, bool on);
    void Count(int end, tarn_line_count what, unsigned amount);
    // Byte counts wake nobody.
    void CountBytes(int end, tarn_line_count what, std::size_t amount);

    // "a.dtr=1 a.rts=1 ..." of one end.
    std::string Report(int end) const;

  private:
    std::filesystem::path NameFor(unsigned minor) const;

    std::filesystem::path folder_;
    std::string name_;
    tarn_line_state* state_ = nullptr;
    // Counts never go back for the host, which compares them with what it saw last; reports start here.
    std::array<std::array<unsigned, TARN_COUNTS>, 2> reported_{};
};
