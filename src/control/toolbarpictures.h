// The bitmap of the toolbar's pictures. A macro, as the resource compiler reads this too.
#pragma once

#define ToolbarPictures 102
