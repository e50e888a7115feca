// A window on the display with a comm object inside, as a user would see it, but with no focus: nothing
// blinks.
#pragma once

#include "bitmap.h"
#include "lettering.h"
#include "support/host.h"

#include <string>

enum class Lettering {
    Fixed,        // as a terminal should have it
    Proportional, // the font of an object that was given none
};

struct StageSetting {
    int emulation = TARN_EMULATION_ANSI;
    int columns = 60;
    int rows = 16;
    int scrollRows = 0;
    int shownColumns = 0; // of the client area, 0: as many as the screen has
    int shownRows = 0;
    Lettering lettering = Lettering::Fixed;
};

class Stage {
  public:
    explicit Stage(const StageSetting& setting);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    HWND Terminal() const { return terminal_; }

    void Print(const std::string& text) { TerminalPrintString(terminal_, text.c_str()); }
    void PrintIn(int color, const std::string& text);
    void MoveTo(int row, int column);
    void Select(int row, int column, int cells);

    // Where a cell of the window begins, in pixels; half a cell is half way into it.
    POINT At(double row, double column) const;

    // Puts a message of the mouse into the queue.
    void Mouse(UINT message, POINT at, WPARAM keys) const;

    // Runs the message loop until the queue is empty, nothing is left to paint and the picture stays the
    // same. False: that didn't happen.
    bool Settle();

    // What the window shows.
    Bitmap Picture() const;

    // What it shows once everything was painted anew.
    Bitmap Repainted();

  private:
    void ShowCells(int columns, int rows);

    HWND window_;
    Font font_; // outlives the object that shows it
    host::CommObject terminal_;
    SIZE cell_ = {};
};
