/* A file drop: answers calls, and keeps the files that callers send by ZModem.
 *
 *     c-filedrop PORT FOLDER [COUNT]
 *
 * A modem is at PORT. FOLDER ends with "\". Ends after COUNT files; without COUNT it doesn't end.
 */
#include "TarnComm.h"

#include <ctype.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char modem[] =
    "Hayes Compatible\tATX4E1V1S7=60&C1^M\tATDT\tATDP\tATS0=1^M\t~~+++~~ATH0^M\t14400";

static const char* folder;
static char name[80];      /* of the file under way */
static int left = INT_MAX; /* files until the end; so many never come */

/* The caller chooses the name that it offers, and a hostile one may point anywhere: "..\start.bat",
 * "C:\autoexec.bat", "nul". Of the offered name only the last part is used, of that only plain characters,
 * and behind a number: no device has such a name, and no file that is there already is written over. */
static void MakePlainName(const char* offered) {
    const char* last = offered;
    static int number = 0;
    char path[MAX_PATH];
    for (const char* at = offered; *at; ++at)
        if (strchr("/\\:", *at))
            last = at + 1;
    do {
        snprintf(name, sizeof name, "%04d-%.60s", ++number, last);
        for (char* at = name; *at; ++at)
            if (!isalnum((unsigned char)*at) && !strchr(".-_", *at))
                *at = '_';
        snprintf(path, sizeof path, "%s%s", folder, name);
    } while (GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES);
}

/* The last moment in which the name can be changed; the file isn't made yet. */
static void NameFile(HWND line) {
    char offered[1024];
    GetSourceFilename(line, offered, sizeof offered);
    MakePlainName(offered);
    SetDestFilename(line, name);
}

static void ShowFile(HWND line) {
    printf("%s: %ld bytes.\n", name, GetTransferBytesTransferred(line));
    fflush(stdout);
    --left;
}

static void ShowLostFile(void) {
    printf("%s is not whole.\n", name);
    fflush(stdout);
}

static void CALLBACK OnEvent(HWND line, int id, int code) {
    (void)id;
    if (code != TARN_EVENT_TRANSFER)
        return;
    switch (GetTransferStatus(line)) {
    case TARN_TRANSFER_PREPARE:
        NameFile(line);
        break;
    case TARN_TRANSFER_END_OF_FILE:
        ShowFile(line);
        break;
    case TARN_TRANSFER_FILE_ABORT:
        ShowLostFile();
        break;
    case TARN_TRANSFER_SUCCESS:
    case TARN_TRANSFER_FAILURE: /* behind files that are whole */
        if (left <= 0)
            PostQuitMessage(0);
        break;
    }
}

static int Listen(HWND line, const char* port) {
    char error[TARN_ERROR_TEXT_SIZE];
    SetCommPort(line, port);
    SetSettings(line, "115200,n,8,1");
    if (!SetPortOpen(line, 1, error)) {
        printf("%s does not open: %s\n", port, error);
        return 0;
    }
    SetModemOptions(line, modem);
    if (!InitModemForAnswer(line)) {
        printf("The modem at %s did not answer.\n", port);
        return 0;
    }
    SetXferPath(line, folder);
    SetEventHandler(line, OnEvent);
    SetProtocol(line, TARN_PROTOCOL_ZMODEM);
    SetAutoZModem(line, 1); /* a transfer that the caller starts is received by itself */
    SetAutoProcess(line, TARN_PROCESS_SERIAL);
    printf("%s waits for calls.\n", port);
    fflush(stdout);
    return 1;
}

int main(int count, char** words) {
    MSG message;
    HWND line;
    if (count < 3) {
        printf("c-filedrop PORT FOLDER [COUNT]\n");
        return 1;
    }
    folder = words[2];
    if (count > 3)
        left = atoi(words[3]);
    line = CreateCommObject(NULL);
    if (!Listen(line, words[1]))
        return 1;
    while (GetMessage(&message, NULL, 0, 0) > 0)
        DispatchMessage(&message);
    HangUp(line);
    DestroyCommObject(line);
    return 0;
}
