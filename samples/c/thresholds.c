/* A protocol that runs in events alone: the threshold says how many bytes the next step needs.
 *
 *     c-thresholds PORT
 *
 * The far end sends packets: ":", the body's length in two digits, the body, in plain ASCII, and the low byte
 * of the sum of the body's bytes in two hexadecimal digits. Each is answered by "+" if its sum is right and
 * by "-" if it isn't. An empty body ends the program.
 */
#include "TarnComm.h"

#include <stdio.h>
#include <string.h>

enum { headerSize = 3, sumSize = 2, largestBody = 99 };

static int wanted = headerSize;
static int inBody = 0;

/* The event is raised once so many bytes wait, and not for every byte. */
static void Expect(HWND line, int count) {
    wanted = count;
    SetRThreshold(line, count);
}

static int IsWhole(const char* body, int length) {
    unsigned sum = 0;
    char digits[sumSize + 1];
    for (int i = 0; i < length; ++i)
        sum += (unsigned char)body[i];
    snprintf(digits, sizeof digits, "%02X", sum & 0xFF);
    return _stricmp(body + length, digits) == 0;
}

static void TakeHeader(HWND line, const char* header) {
    int length = -1;
    sscanf(header, ":%2d", &length);
    if (length <= 0) /* the end, or a far end that speaks another language */
        PostQuitMessage(length < 0);
    inBody = length > 0;
    Expect(line, inBody ? length + sumSize : headerSize);
}

static void TakeBody(HWND line, const char* body) {
    const int length = wanted - sumSize;
    const int whole = IsWhole(body, length);
    printf("%s %.*s\n", whole ? "good" : "bad ", length, body);
    Output(line, whole ? "+" : "-", 1);
    inBody = 0;
    Expect(line, headerSize);
}

/* What comes next may be there already: it is taken at once, and needs no event. */
static void CALLBACK OnEvent(HWND line, int id, int code) {
    char bytes[largestBody + sumSize + 1];
    (void)id;
    if (code != TARN_EVENT_RECEIVE)
        return;
    while (GetInBufferCount(line) >= wanted) {
        bytes[GetInput(line, bytes, wanted)] = '\0';
        if (inBody)
            TakeBody(line, bytes);
        else
            TakeHeader(line, bytes);
    }
}

int main(int count, char** words) {
    char error[TARN_ERROR_TEXT_SIZE];
    const char* const port = count > 1 ? words[1] : "COM1";
    const HWND line = CreateCommObject(NULL);
    MSG message = {0};
    SetCommPort(line, port);
    SetSettings(line, "9600,n,8,1");
    SetEventHandler(line, OnEvent);
    Expect(line, headerSize);
    if (!SetPortOpen(line, 1, error)) {
        printf("%s does not open: %s\n", port, error);
        return 1;
    }
    printf("%s is open.\n", port);
    fflush(stdout);
    while (GetMessage(&message, NULL, 0, 0) > 0)
        DispatchMessage(&message);
    FlushOutputBuffer(line, 1000); /* ms */
    DestroyCommObject(line);
    return (int)message.wParam;
}
