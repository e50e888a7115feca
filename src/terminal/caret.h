// The caret, which stands at the cursor while the window has the focus.
#pragma once

#include "core/comctl.h"

void OnSetFocus(COMCTL& record);
void OnKillFocus(COMCTL& record);
void PositionCaret(COMCTL& record);

// Hides the caret for as long as something is painted.
class HiddenCaret {
  public:
    explicit HiddenCaret(const COMCTL& record);
    ~HiddenCaret();
    HiddenCaret(const HiddenCaret&) = delete;
    HiddenCaret& operator=(const HiddenCaret&) = delete;

  private:
    HWND hWnd_; // null: there is none to hide
};
