// Pixels and HIMETRIC, hundredths of a millimetre, at the screen's resolution.
#pragma once

#include <windows.h>

SIZE PixelsToHimetric(SIZE pixels) noexcept;
SIZE HimetricToPixels(SIZE himetric) noexcept;
