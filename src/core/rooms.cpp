#include "rooms.h"

UpperRooms upperRooms;

void TerminalWrite(HWND hWnd, const void* lpBytes, int cbBytes) {
    if (upperRooms.terminalWrite)
        upperRooms.terminalWrite(hWnd, lpBytes, cbBytes);
}
