// The terminal's screen in its plainest form: rows in a list, a history that is one more list, every
// character by itself. The engine is held against it.
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace model {

struct Row {
    std::string text;
    std::string color;
    bool operator==(const Row&) const = default;
};

class Screen {
  public:
    Screen(int columns, int rows, int historyRows) : columns_(columns), color_(0x1F) {
        for (int i = 0; i < rows; ++i)
            rows_.push_back(Blank());
        NewHistory(historyRows);
    }

    std::vector<Row> Everything() const {
        std::vector<Row> all(history_.begin(), history_.end());
        all.insert(all.end(), rows_.begin(), rows_.end());
        return all;
    }
    int CursorRow() const { return row_; }
    int CursorColumn() const { return column_; }
    bool WrapPending() const { return wrap_; }

    int Columns() const { return columns_; }
    int Rows() const { return static_cast<int>(rows_.size()); }
    int LastRow() const { return Rows() - 1; }

    // Settings
    int mode = 0;
    bool destructive = false;
    bool reverse = false;

    void SetColor(int color) { color_ = static_cast<char>(color); }

    void Print(unsigned char byte) {
        switch (byte) {
        case 0x00:
        case 0x07:
        case 0x0E:
        case 0x0F:
            return;
        case 0x08:
            if (column_ > 0) {
                --column_;
                if (destructive && column_ < columns_)
                    rows_[At(row_)].text[At(column_)] = ' ';
            }
            break;
        case 0x09:
            do
                ++column_;
            while (column_ % 8);
            column_ = std::min(column_, columns_ - 1);
            break;
        case 0x0A:
            if (row_ + 1 < (bottom_ ? std::min(bottom_, Rows()) : Rows()))
                ++row_;
            else
                Scroll();
            break;
        case 0x0C:
            Clear();
            break;
        case 0x0D:
            column_ = 0;
            break;
        default:
            Glyph(static_cast<char>(byte));
            return;
        }
        wrap_ = false;
    }

    // Movements
    void Up(int count) { MoveTo(std::max(row_ - count, 0), column_); }
    void Down(int count) { MoveTo(std::min(row_ + count, LastRow()), column_); }
    void Right(int count) { MoveTo(row_, std::min(column_ + count, columns_ - 1)); }
    void Left(int count) { MoveTo(row_, std::max(column_ - count, 0)); }
    void Place(int row, int column) {
        wrap_ = false;
        if (row < Rows() && column < columns_)
            MoveTo(row, column);
    }

    void EraseDisplay(int mode) {
        wrap_ = false;
        if (mode == 2)
            return Clear();
        for (int row = 0; row < Rows(); ++row)
            for (int column = 0; column < columns_; ++column)
                if ((mode == 1) == IsBeforeCursor(row, column))
                    Erase(row, column);
    }

    void EraseLine(int mode) {
        wrap_ = false;
        for (int column = 0; column < columns_; ++column)
            if (mode == 2 || (mode == 1) == (column < column_))
                Erase(row_, column);
        if (mode == 2)
            column_ = 0;
    }

    void Region(int top, int bottom) {
        wrap_ = false;
        if (!top || !bottom) {
            top_ = bottom_ = 0;
        } else if (bottom < Rows()) {
            top_ = top - 1;
            bottom_ = bottom - 1;
            if (row_ < top_ || row_ >= bottom_)
                MoveTo(std::min(top_, LastRow()), 0);
        }
    }

    void ReverseScroll() {
        Remember(rows_.front());
        if (top_ || bottom_)
            return ScrollRegion();
        rows_.insert(rows_.begin(), rows_.front());
        rows_.pop_back();
        rows_.back() = Blank();
    }

    void Resize(int columns, int rows) {
        columns_ = columns;
        rows_.resize(At(rows), Blank());
        for (Row& row : rows_)
            Fit(row, ' ', color_);
        for (Row& row : history_)
            Fit(row, ' ', '\0');
        row_ = std::min(row_, LastRow());
        column_ = std::min(column_, columns_ - 1);
        wrap_ = false;
    }

    void NewHistory(int rows) {
        if (rows == historyRows_)
            return;
        historyRows_ = rows;
        history_.assign(At(rows), {std::string(At(columns_), ' '), std::string(At(columns_), '\0')});
    }

  private:
    static size_t At(int index) { return static_cast<size_t>(index); }
    Row Blank() const { return {std::string(At(columns_), ' '), std::string(At(columns_), color_)}; }

    void Fit(Row& row, char fill, char color) const {
        row.text.resize(At(columns_), fill);
        row.color.resize(At(columns_), color);
    }

    void MoveTo(int row, int column) {
        row_ = row;
        column_ = column;
        wrap_ = false;
    }

    bool IsBeforeCursor(int row, int column) const { return row < row_ || (row == row_ && column < column_); }

    void Erase(int row, int column) {
        rows_[At(row)].text[At(column)] = ' ';
        rows_[At(row)].color[At(column)] = color_;
    }

    void Remember(const Row& row) {
        history_.push_back(row);
        history_.pop_front();
    }

    void Clear() {
        // When the history is too short for the screen, its upper rows are what is kept.
        const int kept = std::min(historyRows_, Rows());
        for (int row = 0; row < kept; ++row)
            Remember(rows_[At(row)]);
        rows_.assign(rows_.size(), Blank());
        MoveTo(0, 0);
    }

    void ScrollRegion() {
        const int bottom = std::min(bottom_, LastRow());
        if (top_ < bottom)
            rows_.erase(rows_.begin() + top_);
        else
            rows_.erase(rows_.begin() + bottom);
        rows_.insert(rows_.begin() + bottom, Blank());
    }

    void Scroll() {
        Remember(rows_.front());
        if (top_ || bottom_)
            return ScrollRegion();
        rows_.erase(rows_.begin());
        rows_.push_back(Blank());
    }

    void Glyph(char glyph) {
        if (wrap_) {
            wrap_ = false;
            column_ = 0;
            if (row_ < LastRow())
                ++row_;
            else
                Scroll();
        }
        if (column_ < columns_) {
            rows_[At(row_)].text[At(column_)] = glyph;
            const auto color = static_cast<unsigned char>(color_);
            rows_[At(row_)].color[At(column_)] =
                reverse ? static_cast<char>(color % 16 * 16 + color / 16) : color_;
            ++column_;
        }
        if (column_ == columns_)
            AtTheEnd();
    }

    void AtTheEnd() {
        const bool isLast = row_ == LastRow();
        if (mode == 0 || mode == 1)
            --column_;
        if (mode == 0)
            wrap_ = true;
        if (mode == 2 || mode == 3)
            column_ = 0;
        if (isLast && (mode == 2 || mode == 3))
            row_ = 0;
        else if (mode == 3)
            ++row_;
    }

    int columns_;
    char color_;
    std::vector<Row> rows_;
    std::deque<Row> history_;
    int historyRows_ = -1;
    int row_ = 0;
    int column_ = 0;
    bool wrap_ = false;
    int top_ = 0;
    int bottom_ = 0;
};

} // namespace model
