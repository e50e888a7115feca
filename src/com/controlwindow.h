// The control's own window: its class, its procedure, its making.
#pragma once

#include "olecontrol.h"

class ControlWindow {
  public:
    // A child of the container's window, at the place that the control holds. False: there is none.
    static bool Create(OleControl& control, HWND parent);

  private:
    static bool RegisterWindowClass(const char* name);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
};
