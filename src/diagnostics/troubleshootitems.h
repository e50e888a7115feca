// The troubleshooter's templates and their controls. Macros, as the resource compiler reads this too.
#pragma once

#define TroubleShootTemplate 129
#define TroubleShootLoggingTemplate 130
#define TroubleShootListTemplate 131

// TroubleShootTemplate: the panel, which the frame makes itself
#define TroubleShoot_Panel 280

// TroubleShootLoggingTemplate
#define Logging_WireTap 282
#define Logging_ViewWireTap 283
#define Logging_ResetWireTap 284
#define Logging_Terminal 285
#define Logging_ViewTerminal 286
#define Logging_ResetTerminal 287

// TroubleShootListTemplate
#define List_Rows 286

// The frame, and the area of a page in it; dialog units
#define TroubleShootWidth 297
#define TroubleShootHeight 183
#define TroubleShootPageLeft 82
#define TroubleShootPageTop 30
#define TroubleShootPageWidth 211
#define TroubleShootPageHeight 149
