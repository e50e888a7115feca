// Any order of text, sequences and sizes does to the screen what it does to the plain model.
#include "screenmodel.h"
#include "terminalscreen.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr int steps = 4000;
constexpr int seeds = 12;
constexpr std::string_view textBytes("abcdefghijklmnopqrstuvwxyz   \xC4\xFF\x01\x1A\n\n\r\t\b\b\a\0\x0E\x0F",
                                     43);

class Walk {
  public:
    explicit Walk(unsigned seed)
        : random_(seed), screen_({Emulation_VT100, 1 + Any(12), 1 + Any(9), Any(8)}),
          model_(screen_.Record().nColumns, screen_.Record().nRows, screen_.Record().nScrollRows) {}

    std::string Step() {
        static const Operation operations[] = {
            &Walk::Text,   &Walk::Text,     &Walk::Text,    &Walk::Text,     &Walk::LongText, &Walk::Move,
            &Walk::Move,   &Walk::Place,    &Walk::Display, &Walk::Line,     &Walk::Region,   &Walk::Reverse,
            &Walk::Resize, &Walk::Settings, &Walk::History, &Walk::FormFeed,
        };
        return (this->*operations[Any(std::size(operations))])();
    }

    // What the terminal holds other than the model, empty for nothing.
    std::string Difference() {
        const COMCTL& record = screen_.Record();
        std::vector<model::Row> rows;
        for (int row = -record.nScrollRows; row < record.nRows; ++row)
            rows.push_back({screen_.Cells(row), screen_.Colors(row)});
        std::string difference;
        if (rows != model_.Everything())
            difference += "cells\n";
        Compare("row", record.nCursorRow, model_.CursorRow(), difference);
        Compare("column", record.nCursorColumn, model_.CursorColumn(), difference);
        Compare("wrap", record.bWrapPending != 0, model_.WrapPending(), difference);
        return difference;
    }

    // Not after every step, so that repaints are merged.
    bool PictureIsRight() { return Any(4) || reversed_ || screen_.PictureIsRight(); }

  private:
    using Operation = std::string (Walk::*)();

    static void Compare(const char* name, int terminal, int plain, std::string& difference) {
        if (terminal != plain)
            difference += name + (" " + std::to_string(terminal) + " for " + std::to_string(plain) + "\n");
    }

    int Any(size_t count) { return static_cast<int>(random_() % count); }

    std::string Send(const std::string& bytes) {
        screen_.Feed(bytes);
        return bytes;
    }

    std::string Csi(const std::string& parameters, char final) { return Send("\033[" + parameters + final); }

    // With its cursor off the screen the terminal runs no sequence.
    bool Runs() const { return model_.CursorColumn() < model_.Columns(); }

    std::string Text() { return Write(1 + Any(9)); }
    std::string LongText() { return Write(Any(300)); }

    std::string Write(int length) {
        std::string bytes;
        for (int i = 0; i < length; ++i) {
            char byte = textBytes[static_cast<size_t>(Any(textBytes.size()))];
            byte = byte == '\x0E' ? 'x' : byte; // shifts are tested by themselves
            bytes += byte;
            model_.Print(static_cast<unsigned char>(byte));
        }
        return Send(bytes);
    }

    std::string FormFeed() {
        model_.Print('\f');
        reversed_ = false;
        return Send("\f");
    }

    std::string Move() {
        static constexpr struct {
            char final;
            void (model::Screen::*move)(int count);
        } moves[] = {{'A', &model::Screen::Up},
                     {'B', &model::Screen::Down},
                     {'C', &model::Screen::Right},
                     {'D', &model::Screen::Left}};
        const auto& move = moves[Any(std::size(moves))];
        const int count = Any(15);
        if (Runs())
            (model_.*move.move)(count);
        return Csi(std::to_string(count), move.final);
    }

    std::string Place() {
        const int row = Any(12);
        const int column = Any(15);
        if (Runs())
            model_.Place(std::max(row - 1, 0), std::max(column - 1, 0));
        return Csi(std::to_string(row) + ";" + std::to_string(column), Any(2) ? 'H' : 'f');
    }

    std::string Display() {
        const int mode = Any(4);
        if (Runs())
            model_.EraseDisplay(mode);
        reversed_ &= !Runs();
        return Csi(std::to_string(mode), 'J');
    }

    std::string Line() {
        const int mode = Any(4);
        if (Runs())
            model_.EraseLine(mode);
        return Csi(std::to_string(mode), 'K');
    }

    std::string Region() {
        const int top = Any(10);
        const int bottom = Any(10);
        if (Runs())
            model_.Region(top, bottom);
        return Csi(std::to_string(top) + ";" + std::to_string(bottom), 'r');
    }

    std::string Reverse() {
        model_.ReverseScroll();
        reversed_ = true;
        return Send("\033M");
    }

    std::string Resize() {
        const int columns = 1 + Any(14);
        const int rows = 1 + Any(10);
        model_.Resize(columns, rows);
        ResizeTerminal(screen_.Record(), columns, rows);
        reversed_ = false;
        return "resize " + std::to_string(columns) + " " + std::to_string(rows);
    }

    std::string Settings() {
        COMCTL& record = screen_.Record();
        record.nEndOfLineMode = model_.mode = Any(5);
        record.nBackspace = Any(2);
        model_.destructive = !record.nBackspace;
        record.bReverse = model_.reverse = Any(2);
        record.nColor = Any(256);
        model_.SetColor(record.nColor);
        return "settings, end of line " + std::to_string(record.nEndOfLineMode);
    }

    std::string History() {
        const int rows = Any(8);
        model_.NewHistory(rows);
        SetScrollRows(screen_.Handle(), rows);
        return "history " + std::to_string(rows);
    }

    std::mt19937 random_;
    TerminalScreen screen_;
    model::Screen model_;
    bool reversed_ = false; // the picture has moved the wrong way, and not all of it has been painted since
};

TEST(ScreenModel, RandomOperations) {
    for (unsigned seed = 0; seed < seeds; ++seed) {
        Walk walk(seed);
        std::deque<std::string> last;
        for (int step = 0; step < steps; ++step) {
            last.push_back(walk.Step());
            if (last.size() > 4)
                last.pop_front();
            ASSERT_EQ(walk.Difference(), "")
                << "seed " << seed << " step " << step << " " << testing::PrintToString(last);
            ASSERT_TRUE(walk.PictureIsRight())
                << "seed " << seed << " step " << step << " " << testing::PrintToString(last);
        }
    }
}

} // namespace
