#include "selection.h"

#include "measure.h"
#include "paint.h"
#include "screen.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

struct Range {
    Cell first;
    Cell end;
};

// The corners may lie outside: the second one is never held, and the planes can change.
Range Selection(const COMCTL& record) {
    return {{record.nSelStartRow, record.nSelStartColumn}, {record.nSelEndRow, record.nSelEndColumn}};
}

// The rows of the selection that the planes hold, an empty range if there is none.
std::pair<int, int> SelectedRows(const COMCTL& record) {
    const int oldest = record.lpScrollText ? -std::max(record.nScrollRows, 0) : 0;
    const int first = std::max(record.nSelStartRow, oldest);
    const int end = record.lpText ? std::min(record.nSelEndRow, record.nRows - 1) + 1 : 0;
    return {first, std::max(first, end)};
}

// A buffer that takes what it has room for.
class TextSink {
  public:
    TextSink(char* buffer, size_t size) : buffer_(buffer), room_(size - 1) {}
    void Append(const char* text, size_t count) {
        const size_t fits = std::min(count, room_ - length_);
        std::memcpy(buffer_ + length_, text, fits);
        length_ += fits;
    }
    int Finish() {
        buffer_[length_] = '\0';
        return static_cast<int>(length_);
    }

  private:
    char* buffer_;
    size_t room_;
    size_t length_ = 0;
};

} // namespace

ColumnRange SelectedColumns(const COMCTL& record, int row) {
    const Range selection = Selection(record);
    if (row < selection.first.row || row > selection.end.row)
        return {};
    return {row == selection.first.row ? selection.first.column : 0,
            row == selection.end.row ? selection.end.column : record.nColumns};
}

bool IsSelected(const COMCTL& record, const Cell& cell) {
    return SelectedColumns(record, cell.row).Holds(cell.column);
}

void SetSelection(COMCTL& record, Cell anchor, Cell other) {
    anchor.column = std::max(std::min(anchor.column, record.nColumns - 1), 0);
    anchor.row = std::max(std::min(anchor.row, record.nRows - 1), -record.nScrollRows);
    record.nSelAnchorRow = anchor.row;
    record.nSelAnchorColumn = anchor.column;
    // A row is compared with a column: kept so, hosts know it. Pinned by Selection.ARowIsComparedWithAColumn.
    if (anchor.row == record.nSelStartRow && other.row == record.nSelEndColumn)
        return;
    const Range before = Selection(record);
    const Range now = {std::min(anchor, other), std::max(anchor, other)};
    record.nSelStartRow = now.first.row;
    record.nSelStartColumn = now.first.column;
    record.nSelEndRow = now.end.row;
    record.nSelEndColumn = now.end.column;
    PaintRowsNow(record, std::min(before.first.row, now.first.row), std::max(before.end.row, now.end.row));
}

void ExtendSelection(COMCTL& record, Cell other) {
    SetSelection(record, {record.nSelAnchorRow, record.nSelAnchorColumn}, other);
}

void ClearSelection(COMCTL& record) {
    record.nSelStartRow = record.nSelStartColumn = 0;
    record.nSelEndRow = record.nSelEndColumn = 0;
    record.nSelAnchorRow = record.nSelAnchorColumn = 0;
}

int SelectionLength(const COMCTL& record) {
    const long long rows = static_cast<long long>(record.nSelEndRow) - record.nSelStartRow;
    const long long columns = static_cast<long long>(record.nSelEndColumn) - record.nSelStartColumn;
    const long long length = rows ? (rows + 1) * record.nColumns + columns : columns;
    return static_cast<int>(length);
}

int SelectionText(const COMCTL& record, char* buffer, size_t size) {
    if (!buffer || !size)
        return 0;
    TextSink sink(buffer, size);
    const auto [first, end] = SelectedRows(record);
    for (int row = first; row < end; ++row) {
        const int length = RowLength(record, row);
        const ColumnRange columns = SelectedColumns(record, row);
        const int from = std::clamp(columns.first, 0, length);
        const int to = std::clamp(columns.end, from, length);
        sink.Append(TextRow(record, row) + from, static_cast<size_t>(to - from));
        if (row + 1 < end)
            sink.Append("\r\n", 2);
    }
    return sink.Finish();
}

size_t SelectionTextRoom(const COMCTL& record) {
    constexpr size_t lineEnd = 2; // of the last row, the NUL needs one
    const auto [first, end] = SelectedRows(record);
    const auto rows = static_cast<size_t>(std::max(end - first, 1));
    return (static_cast<size_t>(std::max(record.nColumns, 0)) + lineEnd) * rows;
}
