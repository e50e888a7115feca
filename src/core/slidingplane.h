// A plane of cells, flat and row by row, that can let its first rows go without moving the others: it slides
// inside a block of three times its size, and only now and then everything moves back to the block's
// beginning.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

template <class Cell>
class SlidingPlane {
  public:
    explicit operator bool() const { return block_ != nullptr; }
    Cell* Data() { return data_; }
    const Cell* Data() const { return data_; }
    Cell* Row(int row) { return data_ + Offset(row); }
    const Cell* Row(int row) const { return data_ + Offset(row); }

    // A new plane full of one cell, in place of what was there; that stays if memory is out.
    bool Make(int columns, int rows, Cell fill) {
        if (columns < 0 || rows < 0 || static_cast<long long>(columns) * rows > MostCells)
            return false;
        const size_t cells = static_cast<size_t>(columns) * static_cast<size_t>(rows);
        const size_t size = cells + std::max(2 * cells, static_cast<size_t>(columns) * LeastSlack) + 1;
        std::unique_ptr<Cell[]> block(new (std::nothrow) Cell[size]);
        if (!block)
            return false;
        block_ = std::move(block);
        data_ = block_.get();
        end_ = data_ + size;
        columns_ = static_cast<size_t>(columns);
        cells_ = cells;
        std::fill_n(data_, cells + 1, fill);
        return true;
    }

    void Free() { *this = SlidingPlane(); }

    // Every row moves up by so many: the first ones are lost, the last ones hold anything.
    void Slide(int rows) {
        const size_t step = std::min(Offset(rows), cells_);
        Cell* slid = data_ + step;
        if (static_cast<size_t>(end_ - slid) > cells_) {
            data_ = slid;
            return;
        }
        std::memmove(block_.get(), slid, (cells_ - step) * sizeof(Cell));
        data_ = block_.get();
    }

  private:
    static constexpr size_t LeastSlack = 256;       // rows
    static constexpr long long MostCells = 1 << 29; // so that no count of bytes leaves 31 bits

    size_t Offset(int row) const { return static_cast<size_t>(row) * columns_; }

    std::unique_ptr<Cell[]> block_;
    Cell* data_ = nullptr;
    Cell* end_ = nullptr;
    size_t columns_ = 0;
    size_t cells_ = 0;
};
