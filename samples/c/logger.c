/* Writes the lines that an instrument sends to a file, each behind its date and time.
 *
 *     c-logger PORT FILE COUNT
 *
 * Ends when COUNT lines have come.
 */
#include "TarnComm.h"

#include <stdio.h>
#include <stdlib.h>

/* A line may take its time: the limit only says how often GetLineInput comes back without one. */
static const LONG limit = 60000; /* ms */

static void Write(FILE* file, const char* reading) {
    SYSTEMTIME now;
    GetLocalTime(&now);
    fprintf(file, "%04d-%02d-%02d %02d:%02d:%02d,%s\n", now.wYear, now.wMonth, now.wDay, now.wHour,
            now.wMinute, now.wSecond, reading);
    fflush(file); /* a reading that was taken is not lost with the program */
}

static void Log(HWND line, FILE* file, int count) {
    char reading[128];
    SetInputTimeOut(line, limit);
    while (count > 0) {
        const int length = GetLineInput(line, reading, (int)sizeof reading - 1);
        reading[length] = '\0'; /* which a line as long as the buffer lacks */
        if (length == 0)
            continue;
        Write(file, reading);
        --count;
    }
}

int main(int count, char** words) {
    char error[TARN_ERROR_TEXT_SIZE];
    FILE* file;
    HWND line;
    int opened;
    if (count != 4) {
        printf("c-logger PORT FILE COUNT\n");
        return 1;
    }
    file = fopen(words[2], "a");
    if (!file) {
        printf("%s can't be written.\n", words[2]);
        return 1;
    }
    line = CreateCommObject(NULL);
    SetCommPort(line, words[1]);
    SetSettings(line, "9600,n,8,1");
    opened = SetPortOpen(line, 1, error);
    if (opened)
        Log(line, file, atoi(words[3]));
    else
        printf("%s does not open: %s\n", words[1], error);
    DestroyCommObject(line);
    fclose(file);
    return opened ? 0 : 1;
}
