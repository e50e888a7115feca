/* Sends a file by ZModem, or receives the one that the far end sends.
 *
 *     c-transfer PORT send FILE
 *     c-transfer PORT receive FILE
 *
 * FILE is a whole path. The file that is received gets that name, whatever the far end calls it. A second one
 * would bring a name of its own, and ends the transfer.
 */
#include "TarnComm.h"

#include <stdio.h>
#include <string.h>

static int files = 0;
static LONG bytes = -1; /* of the file, once it is whole: a lost file alone makes no failure */

/* Called while WaitUntilTransferIsFinished waits. The counts are those of the file under way. */
static void CALLBACK OnEvent(HWND line, int id, int code) {
    const int status = code == TARN_EVENT_TRANSFER ? GetTransferStatus(line) : 0;
    (void)id;
    if (status == TARN_TRANSFER_PREPARE && ++files > 1)
        AbortTransfer(line);
    if (status == TARN_TRANSFER_END_OF_FILE)
        bytes = GetTransferBytesTransferred(line);
}

static int Transfer(HWND line, const char* action, const char* file) {
    const int started = strcmp(action, "send") == 0 ? Upload(line, file) : Download(line, file);
    if (!started) {
        printf("%s can't be used.\n", file);
        return 0;
    }
    WaitUntilTransferIsFinished(line);
    if (GetTransferStatus(line) != TARN_TRANSFER_SUCCESS) {
        printf("The transfer failed.\n");
        return 0;
    }
    if (bytes < 0) {
        printf("No file went over.\n");
        return 0;
    }
    printf("%s: %ld bytes.\n", file, bytes);
    return 1;
}

int main(int count, char** words) {
    char error[TARN_ERROR_TEXT_SIZE];
    HWND line;
    int done;
    if (count != 4) {
        printf("c-transfer PORT send|receive FILE\n");
        return 1;
    }
    line = CreateCommObject(NULL);
    SetCommPort(line, words[1]);
    SetSettings(line, "115200,n,8,1");
    SetProtocol(line, TARN_PROTOCOL_ZMODEM);
    SetEventHandler(line, OnEvent);
    done = SetPortOpen(line, 1, error);
    if (done)
        done = Transfer(line, words[2], words[3]);
    else
        printf("%s does not open: %s\n", words[1], error);
    DestroyCommObject(line); /* closes the port */
    return done ? 0 : 1;
}
