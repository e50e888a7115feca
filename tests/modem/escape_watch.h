// Finds the escape in what the computer sends while online: silence, three escape characters, silence.
#pragma once

#include "byte_queue.h"
#include "profile.h"

class EscapeWatch {
  public:
    void Start(Nanoseconds now) {
        last_ = now;
        count_ = 0;
    }
    void Feed(Bytes bytes, const Profile& profile, Nanoseconds now);
    // When the second silence is over; kNever if no escape is under way.
    Nanoseconds Due(const Profile& profile) const;

  private:
    static constexpr unsigned kCharacters = 3;

    Nanoseconds last_ = 0; // the computer's last byte
    unsigned count_ = 0;   // escape characters after a silence
};
