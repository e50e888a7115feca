// A terminal without a window, of ours or of others, as the benchmark drives it.
#pragma once

#include <memory>
#include <string>
#include <vector>

class TerminalSide {
  public:
    virtual ~TerminalSide() = default;
    virtual void Write(const char* bytes, int count) = 0;

    // The text of the screen, each row without its trailing spaces.
    virtual std::vector<std::string> Rows() const = 0;
};

inline std::string WithoutTrailingSpaces(std::string row) {
    row.resize(row.find_last_not_of(' ') + 1);
    return row;
}

enum class OurEmulation { Ansi, Vt100 };

std::unique_ptr<TerminalSide> OurSide(OurEmulation emulation, int scrollRows);
std::unique_ptr<TerminalSide> VtermSide(int scrollRows); // keeps no scrollback: that is its host's work
std::unique_ptr<TerminalSide> TsmSide(int scrollRows);
