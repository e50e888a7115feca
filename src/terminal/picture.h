// What the window shows of the planes: requests to paint, merged where they can be. Window's thread only.
#pragma once

#include "core/comctl.h"

// A private message of the window, beside that of core/comobject.h: paint the dirty rows now.
inline constexpr UINT RepaintMessage = WM_USER + 2;

enum class Erase { No, Yes };

// The timer that serves a request which came too soon after the last one.
inline constexpr UINT_PTR RepaintTimer = 0x5450;

// Asks for the dirty rows to be painted; one request stands in the queue, however often this is called.
void PostRepaint(COMCTL& record);

// The same, at once; unless a frame was painted a moment ago, which leaves it to the request.
void FlushFrame(COMCTL& record);

// Paints everything anew.
void RepaintAll(COMCTL& record, Erase erase);

// The rows of the planes have moved up by one, and the last one is new. The picture follows with the next
// repaint, together with other such moves.
void ScrollPictureUp(COMCTL& record);

// Moves the picture and paints the dirty rows, now.
void ServeRepaint(COMCTL& record);

// The request has come: serves it, or has a timer do so when the frame is due.
void OnRepaintRequest(COMCTL& record);
void OnRepaintTimer(COMCTL& record);

// Forgets the moves that still wait, since everything is painted anyway.
void DropPictureScroll(COMCTL& record);

// Moves what the window shows, to the right and down for positive numbers; what comes into view is painted
// when the window is updated.
void MovePicture(COMCTL& record, int columns, int rows);
