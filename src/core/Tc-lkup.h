// The passive look-up: strings of the object that automatic processing looks for in the input, byte by byte.
// Window's thread only. The flat functions of both look-ups are declared in TarnComm.h.
#pragma once

#include "comctl.h"

#include <string_view>

// One look-up string.
class CLookUpItem {
  public:
    explicit CLookUpItem(std::string_view text);

    int Length() const { return cbText_; }

    // Whether the text before lpEnd ends with this string, case aside. An empty string never matches.
    bool Matches(const char* lpEnd, int cbAvailable) const;

  private:
    std::unique_ptr<char[]> lpszText_; // folded to lower case
    int cbText_;
};

// Feeds one byte; a NUL only gives the engine a turn. False: the object is gone.
bool FeedLookUp(COMCTL& record, char c);

// Whether the time limit has been reached, so that the engine wants a turn.
bool LookUpTurnIsDue(const COMCTL& record);

// The index of the string that was found, for the host's handler; -1 outside of it or for none.
int GetLookUpMatch(const COMCTL& record);
