/* Preload library: answers the modem signal requests that a pty refuses, for the ptys of a tarnline.
 *
 * The folder of the cables comes from TARN_LINE_STATE. Requests of other kinds, and all requests on other
 * files, go to the C library untouched. Maps are made once per cable and never undone, so that a thread may
 * use one without a lock. */
#define _GNU_SOURCE
#include "signal_state.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/serial.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

enum { PTS_MAJOR = 136, CABLE_LIMIT = 256 };

typedef int (*ioctl_function)(int, unsigned long, ...);
typedef int (*sendbreak_function)(int, int);

/* One end of one cable. A slot is filled before `used` grows, and is never changed afterwards. */
struct known_end {
    struct tarn_line_state* state;
    int self;
    uint32_t minor;
};

static struct known_end known[CABLE_LIMIT];
static uint32_t used;
static pthread_mutex_t filling = PTHREAD_MUTEX_INITIALIZER; /* guards the growth of `known` */

static int is_current(const struct known_end* end) {
    const struct tarn_line_end* own = &end->state->end[end->self];
    return tarn_line_load(&own->minor) == end->minor && tarn_line_load(&own->alive);
}

static const struct known_end* find_known(uint32_t minor_number) {
    const uint32_t count = tarn_line_load(&used);
    for (uint32_t i = count; i-- > 0;)
        if (known[i].minor == minor_number && is_current(&known[i]))
            return &known[i];
    return NULL;
}

static struct tarn_line_state* map_state(uint32_t minor_number) {
    const char* folder = getenv(TARN_LINE_STATE_VARIABLE);
    char path[PATH_MAX];
    if (!folder || snprintf(path, sizeof path, "%s/" TARN_LINE_STATE_NAME, folder, minor_number) >= PATH_MAX)
        return NULL;
    const int file = open(path, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return NULL;
    struct stat about;
    void* memory = MAP_FAILED;
    if (fstat(file, &about) == 0 && about.st_size >= (off_t)sizeof(struct tarn_line_state))
        memory = mmap(NULL, sizeof(struct tarn_line_state), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? NULL : memory;
}

static const struct known_end* learn(uint32_t minor_number) {
    struct tarn_line_state* state = map_state(minor_number);
    if (!state)
        return NULL;
    for (int self = 0; self < 2; self++) {
        const struct known_end end = {state, self, minor_number};
        if (tarn_line_load(&state->magic) != TARN_LINE_MAGIC || !is_current(&end) || used == CABLE_LIMIT)
            continue;
        known[used] = end;
        tarn_line_store(&used, used + 1);
        return &known[used - 1];
    }
    munmap(state, sizeof *state);
    return NULL;
}

static const struct known_end* end_of(int fd) {
    const int error = errno;
    struct stat about;
    const struct known_end* end = NULL;
    if (fstat(fd, &about) == 0 && S_ISCHR(about.st_mode) && major(about.st_rdev) == PTS_MAJOR) {
        end = find_known(minor(about.st_rdev));
        if (!end) {
            pthread_mutex_lock(&filling);
            end = find_known(minor(about.st_rdev));
            if (!end)
                end = learn(minor(about.st_rdev));
            pthread_mutex_unlock(&filling);
        }
    }
    errno = error;
    return end;
}

/* Bit by bit what TIOCMIWAIT may wait for, with the count that moves when it changes. */
static const struct {
    uint32_t line;
    enum tarn_line_count count;
} wait_rows[] = {
    {TIOCM_CTS, TARN_COUNT_CTS},
    {TIOCM_DSR, TARN_COUNT_DSR},
    {TIOCM_RNG, TARN_COUNT_RING},
    {TIOCM_CAR, TARN_COUNT_DCD},
};

static uint32_t sum_of_changes(const struct tarn_line_end* own, uint32_t lines) {
    uint32_t sum = 0;
    for (size_t i = 0; i < sizeof wait_rows / sizeof *wait_rows; i++)
        if (lines & wait_rows[i].line)
            sum += tarn_line_load(&own->counts[wait_rows[i].count]);
    return sum;
}

static int wait_for_change(const struct known_end* end, uint32_t lines) {
    struct tarn_line_end* own = &end->state->end[end->self];
    const uint32_t before = sum_of_changes(own, lines);
    while (is_current(end)) {
        const uint32_t seen = tarn_line_load(&own->changes);
        if (sum_of_changes(own, lines) != before)
            return 0;
        if (syscall(SYS_futex, &own->changes, FUTEX_WAIT, seen, NULL, NULL, 0) != 0 && errno == EINTR)
            return -1;
    }
    errno = EIO;
    return -1;
}

static int read_counts(const struct known_end* end, void* out) {
    struct serial_icounter_struct counts;
    memset(&counts, 0, sizeof counts);
    int* fields = &counts.cts;
    for (int i = 0; i < TARN_COUNTS; i++)
        fields[i] = (int)tarn_line_load(&end->state->end[end->self].counts[i]);
    memcpy(out, &counts, sizeof counts);
    return 0;
}

static int is_ours(unsigned long request) {
    switch (request) {
    case TIOCMGET:
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
    case TIOCMIWAIT:
    case TIOCGICOUNT:
    case TIOCSBRK:
    case TIOCCBRK:
    case TCSBRK:
    case TCSBRKP:
        return 1;
    default:
        return 0;
    }
}

static void send_break(const struct known_end* end) {
    tarn_line_break(end->state, end->self, 1);
    tarn_line_break(end->state, end->self, 0);
}

static int answer(const struct known_end* end, unsigned long request, void* argument) {
    uint32_t lines = 0;
    if (request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC)
        memcpy(&lines, argument, sizeof lines);
    switch (request) {
    case TIOCMGET:
        lines = tarn_line_bits(end->state, end->self);
        memcpy(argument, &lines, sizeof lines);
        return 0;
    case TIOCMSET:
        tarn_line_drive(end->state, end->self, lines, ~lines);
        return 0;
    case TIOCMBIS:
        tarn_line_drive(end->state, end->self, lines, 0);
        return 0;
    case TIOCMBIC:
        tarn_line_drive(end->state, end->self, 0, lines);
        return 0;
    case TIOCMIWAIT:
        return wait_for_change(end, (uint32_t)(uintptr_t)argument);
    case TIOCGICOUNT:
        return read_counts(end, argument);
    case TIOCSBRK:
    case TIOCCBRK:
        tarn_line_break(end->state, end->self, request == TIOCSBRK);
        return 0;
    default: /* TCSBRK and TCSBRKP */
        send_break(end);
        return 0;
    }
}

static int handle(ioctl_function next, int fd, unsigned long request, void* argument) {
    /* TCSBRK with an argument is a drain, no break. */
    const int is_drain = request == TCSBRK && argument;
    if (is_ours(request) && !is_drain) {
        const struct known_end* end = end_of(fd);
        if (end)
            return answer(end, request, argument);
    }
    if (!next) {
        errno = ENOSYS;
        return -1;
    }
    return next(fd, request, argument);
}

#define NEXT(type, name)                                                                                     \
    static type next;                                                                                        \
    if (!__atomic_load_n(&next, __ATOMIC_RELAXED))                                                           \
        __atomic_store_n(&next, (type)dlsym(RTLD_NEXT, name), __ATOMIC_RELAXED);

#define EXPORT __attribute__((visibility("default")))

EXPORT int ioctl(int fd, unsigned long request, ...) {
    va_list rest;
    va_start(rest, request);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    NEXT(ioctl_function, "ioctl")
    return handle(next, fd, request, argument);
}

/* What 32-bit programs that were built for 64-bit times call. */
EXPORT int __ioctl_time64(int fd, unsigned long request, ...) {
    va_list rest;
    va_start(rest, request);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    NEXT(ioctl_function, "__ioctl_time64")
    return handle(next ? next : (ioctl_function)ioctl, fd, request, argument);
}

/* The C library's own makes its request inside, where no preload sees it. */
EXPORT int tcsendbreak(int fd, int duration) {
    const struct known_end* end = end_of(fd);
    if (end) {
        send_break(end);
        return 0;
    }
    NEXT(sendbreak_function, "tcsendbreak")
    return next(fd, duration);
}
