/* A program for the tests of the preload library: makes terminal requests on a port, one per word.
 *
 *     signal_helper PORT WORD...
 *
 * get              prints the TIOCM bits as "dtr rts cts dsr dcd ri", each 0 or 1
 * +dtr -rts ...    raises or lowers a line
 * counts           prints "frame overrun parity buffer break cts dsr dcd ring"
 * break            holds the break and ends it
 * sendbreak        the C library's tcsendbreak
 * wait             waits in TIOCMIWAIT for CTS; prints "waiting" before and "changed" after
 * flush            the C library's tcflush of what has been received; prints what is unread after it */
#include <fcntl.h>
#include <linux/serial.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <termios.h>

static int fail(const char* word) {
    perror(word);
    return 1;
}

static int print_lines(int port) {
    static const int bits[] = {TIOCM_DTR, TIOCM_RTS, TIOCM_CTS, TIOCM_DSR, TIOCM_CAR, TIOCM_RNG};
    int lines = 0;
    if (ioctl(port, TIOCMGET, &lines) != 0)
        return fail("get");
    for (size_t i = 0; i < sizeof bits / sizeof *bits; i++)
        printf("%d%c", (lines & bits[i]) != 0, i + 1 == sizeof bits / sizeof *bits ? '\n' : ' ');
    return 0;
}

static int print_counts(int port) {
    struct serial_icounter_struct c;
    if (ioctl(port, TIOCGICOUNT, &c) != 0)
        return fail("counts");
    printf("%d %d %d %d %d %d %d %d %d\n", c.frame, c.overrun, c.parity, c.buf_overrun, c.brk, c.cts, c.dsr,
           c.dcd, c.rng);
    return 0;
}

static int change_line(int port, const char* word) {
    const int line = strcmp(word + 1, "dtr") == 0 ? TIOCM_DTR : TIOCM_RTS;
    return ioctl(port, *word == '+' ? TIOCMBIS : TIOCMBIC, &line) == 0 ? 0 : fail(word);
}

static int hold_break(int port) {
    return ioctl(port, TIOCSBRK) == 0 && ioctl(port, TIOCCBRK) == 0 ? 0 : fail("break");
}

static int wait_for_cts(int port) {
    puts("waiting");
    fflush(stdout);
    if (ioctl(port, TIOCMIWAIT, TIOCM_CTS) != 0)
        return fail("wait");
    puts("changed");
    return 0;
}

static int flush_input(int port) {
    int unread = 0;
    if (tcflush(port, TCIFLUSH) != 0 || ioctl(port, FIONREAD, &unread) != 0)
        return fail("flush");
    printf("%d\n", unread);
    return 0;
}

static int act(int port, const char* word) {
    if (strcmp(word, "get") == 0)
        return print_lines(port);
    if (strcmp(word, "counts") == 0)
        return print_counts(port);
    if (strcmp(word, "break") == 0)
        return hold_break(port);
    if (strcmp(word, "sendbreak") == 0)
        return tcsendbreak(port, 0) == 0 ? 0 : fail(word);
    if (strcmp(word, "wait") == 0)
        return wait_for_cts(port);
    if (strcmp(word, "flush") == 0)
        return flush_input(port);
    if (*word == '+' || *word == '-')
        return change_line(port, word);
    fprintf(stderr, "no such word: %s\n", word);
    return 2;
}

int main(int count, char** words) {
    const int port = count > 1 ? open(words[1], O_RDWR | O_NOCTTY | O_NONBLOCK) : -1;
    if (port < 0)
        return fail("open");
    for (int i = 2; i < count; i++) {
        const int failed = act(port, words[i]);
        if (failed)
            return failed;
    }
    return 0;
}
