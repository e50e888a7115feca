#include "capture.h"

#include "screen.h"

#include <algorithm>

namespace {

constexpr int openToAppend = OF_WRITE | OF_SHARE_DENY_WRITE;

HFILE OpenForAppending(const char* szPath) {
    const HFILE file = _lopen(szPath, openToAppend);
    if (file != HFILE_ERROR)
        _llseek(file, 0, FILE_END);
    return file;
}

HFILE CreateThenOpen(const char* szPath) {
    const HFILE file = _lcreat(szPath, 0);
    if (file == HFILE_ERROR)
        return HFILE_ERROR;
    _lclose(file);
    return OpenForAppending(szPath);
}

} // namespace

void WriteCapture(const COMCTL& record, const char* bytes, int count) {
    if (count > 0)
        static_cast<void>(_hwrite(record.hCaptureFile, bytes, count));
}

void FlushVisibleRows(const COMCTL& record, int count) {
    if (!Captures(record, Capture_Visible) || !record.lpText)
        return;
    const int rows = count == -1 ? record.nRows : std::min(count, record.nRows);
    for (int row = 0; row < rows; ++row) {
        Capture(record, Capture_Visible, TextRow(record, row), RowLength(record, row));
        Capture(record, Capture_Visible, "\r\n", 2);
    }
}

bool StartCapture(COMCTL& record, const char* szPath) {
    EndCapture(record);
    if (!szPath || !*szPath)
        return true;
    record.hCaptureFile = OpenForAppending(szPath);
    if (record.hCaptureFile == HFILE_ERROR)
        record.hCaptureFile = CreateThenOpen(szPath);
    return record.hCaptureFile != HFILE_ERROR;
}

void EndCapture(COMCTL& record) {
    if (record.hCaptureFile == HFILE_ERROR)
        return;
    FlushVisibleRows(record, record.nRows);
    _lclose(record.hCaptureFile);
    record.hCaptureFile = HFILE_ERROR;
}
