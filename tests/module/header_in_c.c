/* The public header is plain C, and its functions link from C; it stands beside everything that the
   platform's own header brings. */
#undef WIN32_LEAN_AND_MEAN
#include "TarnComm.h"

int UseFromC(void);

int UseFromC(void) {
    HWND line = CreateCommObject(NULL);
    char settings[TARN_SETTINGS_TEXT_SIZE];
    int length = GetSettings(line, settings);
    DestroyCommObject(line);
    return length;
}
