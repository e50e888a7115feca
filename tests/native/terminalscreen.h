// A terminal as hosts see it: an object without a window, with planes, and what an emulation makes of bytes.
#pragma once

#include "core/live.h"
#include "TarnComm.h"
#include "terminal/picture.h"
#include "terminal/screen.h"
#include "terminal/terminal.h"
#include "terminaldouble.h"

#include <cstdio>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct TerminalShape {
    int emulation = Emulation_Ansi;
    int columns = 80;
    int rows = 25;
    int scrollRows = 0;
};

struct CursorPlace {
    int row = 0;
    int column = 0;
    bool operator==(const CursorPlace&) const = default;
};

inline void PrintTo(const CursorPlace& place, std::ostream* out) {
    *out << "row " << place.row << " column " << place.column;
}

// Cells without their trailing spaces.
inline std::string Trimmed(std::string cells) {
    cells.resize(cells.find_last_not_of(' ') + 1);
    return cells;
}

class TerminalScreen {
  public:
    explicit TerminalScreen(const TerminalShape& shape = {}) : record_(std::make_unique<COMCTL>()) {
        static UINT_PTR handles = 0x20000;
        hWnd_ = reinterpret_cast<HWND>(handles += 4);
        record_->hWnd = hWnd_;
        record_->bPortOpen = 1;
        record_->cxChar = 8;
        record_->cyChar = 16;
        std::iota(std::begin(record_->abCharMap), std::end(record_->abCharMap), BYTE{0});
        AddLiveObject(hWnd_, *record_);
        RebuildScrollback(*record_, shape.scrollRows);
        SwitchEmulation(*record_, shape.emulation);
        ResizeTerminal(*record_, shape.columns, shape.rows);
        ServeRepaint(*record_);
        world.Forget();
    }
    ~TerminalScreen() { Destroy(); }
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    TerminalDouble world;

    COMCTL& Record() { return *record_; }
    const COMCTL& Record() const { return *record_; }
    HWND Handle() const { return hWnd_; }
    bool Exists() const { return record_ != nullptr; }

    void Destroy() {
        RemoveLiveObject(hWnd_);
        record_.reset();
    }

    void Feed(std::string_view bytes) {
        // On the heap and of the very size, so that a byte read too many is seen.
        const std::vector<char> exact(bytes.begin(), bytes.end());
        WriteTerminal(*record_, exact.data(), static_cast<int>(exact.size()));
    }

    void FeedByteByByte(std::string_view bytes) {
        for (const char& byte : bytes)
            Feed({&byte, 1});
    }

    // Rows of a's, b's, ... from the top; the cursor is in the corner then.
    void Fill() {
        const auto columns = static_cast<size_t>(record_->nColumns);
        const int mode = std::exchange(record_->nEndOfLineMode, 0);
        for (int row = 0; row < record_->nRows; ++row) {
            Place(row, 0);
            Feed(std::string(columns, static_cast<char>('a' + row % 26)));
        }
        Place(0, 0);
        record_->bWrapPending = 0;
        record_->nEndOfLineMode = mode;
        world.Forget();
    }

    void Place(int row, int column) {
        record_->nCursorRow = row;
        record_->nCursorColumn = column;
        record_->bWrapPending = 0;
    }

    CursorPlace Cursor() const { return {record_->nCursorRow, record_->nCursorColumn}; }

    std::string Cells(int row) const {
        return {TextRow(*record_, row), static_cast<size_t>(record_->nColumns)};
    }
    std::string Row(int row) const { return Trimmed(Cells(row)); }
    int ColorAt(int row, int column) const { return ColorRow(*record_, row)[column]; }

    std::string Colors(int row) const {
        return {reinterpret_cast<const char*>(ColorRow(*record_, row)),
                static_cast<size_t>(record_->nColumns)};
    }

    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        for (int row = 0; row < record_->nRows; ++row)
            rows.push_back(Row(row));
        return rows;
    }

    // The scrollback, its oldest row first.
    std::vector<std::string> History() const {
        std::vector<std::string> rows;
        for (int row = -record_->nScrollRows; row < 0; ++row)
            rows.push_back(Row(row));
        return rows;
    }

    // The window's next repaint.
    void Repaint() {
        if (record_->bRepaintPosted)
            ServeRepaint(*record_);
    }

    bool PictureIsRight() {
        Repaint();
        return world.picture == PlanesOf(*record_);
    }

    // All that bytes may change, in lines; to be compared.
    std::vector<std::string> Portrait() const;

  private:
    HWND hWnd_;
    std::unique_ptr<COMCTL> record_;
};

inline std::vector<std::string> TerminalScreen::Portrait() const {
    static constexpr struct {
        const char* name;
        int COMCTL::*field;
    } numbers[] = {
        {"columns", &COMCTL::nColumns},
        {"rows", &COMCTL::nRows},
        {"cursor row", &COMCTL::nCursorRow},
        {"cursor column", &COMCTL::nCursorColumn},
        {"saved row", &COMCTL::nSavedRow},
        {"saved column", &COMCTL::nSavedColumn},
        {"saved color", &COMCTL::nSavedColor},
        {"color", &COMCTL::nColor},
        {"reverse", &COMCTL::bReverse},
        {"blink", &COMCTL::bBlink},
        {"wrap pending", &COMCTL::bWrapPending},
        {"emulation", &COMCTL::nEmulation},
        {"echo", &COMCTL::bEcho},
        {"origin mode", &COMCTL::bOriginMode},
        {"line drawing", &COMCTL::bLineDraw},
        {"keypad numeric", &COMCTL::bKeypadNumeric},
        {"region top", &COMCTL::nScrollTop},
        {"region bottom", &COMCTL::nScrollBottom},
        {"selection row", &COMCTL::nSelStartRow},
    };
    std::vector<std::string> lines;
    for (const auto& number : numbers)
        lines.push_back(number.name + (" " + std::to_string((*record_).*number.field)));
    lines.push_back("open sequence " + std::string(record_->szEscape, static_cast<size_t>(record_->nEscape)));
    lines.push_back("sent " + world.sent);
    for (const std::string& message : world.messages)
        lines.push_back("message " + message);
    for (int row = record_->lpScrollText ? -record_->nScrollRows : 0; row < record_->nRows; ++row) {
        if (row >= 0 && !record_->lpText)
            break;
        lines.push_back("row " + std::to_string(row) + " " + Cells(row));
        lines.push_back("colors " + std::to_string(row) + " " + Colors(row));
    }
    return lines;
}
