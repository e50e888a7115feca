/* A stranger's first program, from the package's header and import library alone. */
#include "TarnComm.h"

#include <stdio.h>

int main(void) {
    char settings[TARN_SETTINGS_TEXT_SIZE] = "";
    HWND line = CreateCommObject(NULL);
    if (!line)
        return 1;
    SetSettings(line, "19200,e,7,1");
    GetSettings(line, settings);
    printf("%s\n", settings);
    DestroyCommObject(line);
    return 0;
}
