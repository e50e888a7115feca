/* A small terminal: what is typed goes to the port line by line, what comes back is printed.
 *
 *     c-terminal PORT
 */
#include "TarnComm.h"

#include <stdio.h>
#include <string.h>

int main(int count, char** words) {
    char text[256], error[TARN_ERROR_TEXT_SIZE];
    const HWND line = CreateCommObject(NULL);
    SetCommPort(line, count > 1 ? words[1] : "COM1");
    SetSettings(line, "9600,n,8,1");
    if (!SetPortOpen(line, 1, error))
        return printf("The port does not open: %s\n", error), 1;
    while (fgets(text, sizeof text, stdin)) {
        char* const end = strchr(text, '\n'); /* which a piece of a long line lacks */
        if (end)
            *end = '\r'; /* what Enter sends */
        Output(line, text, (int)strlen(text));
        while (WaitForInput(line, 500)) /* ms of silence end an answer */
            fwrite(text, 1, (size_t)GetInput(line, text, sizeof text), stdout);
    }
    return !DestroyCommObject(line);
}
