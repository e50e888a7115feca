// The moves of the picture that wait for the next repaint: numbers only, nothing is drawn here.
#include "picture.h"

#include <algorithm>
#include <climits>

void ScrollPictureUp(COMCTL& record) {
    if (record.nPictureScroll < INT_MAX)
        ++record.nPictureScroll;
    // A dirty row can be one of the scrollback by now, and yet be shown.
    const int firstShown = std::min(record.nTopRow, 0);
    const bool isClean = record.nDirtyFirst == record.nDirtyLast;
    record.nDirtyFirst = isClean ? record.nRows - 1 : std::max(record.nDirtyFirst - 1, firstShown);
    record.nDirtyLast = record.nRows;
    PostRepaint(record);
}

void DropPictureScroll(COMCTL& record) {
    record.nPictureScroll = 0;
}
