/* The modem signals of one cable, as memory that tarnline and the preload library share.
 *
 * Plain C for both. Every word is 32 bits, so that 32-bit and 64-bit processes see one layout, and is read
 * and written by atomic operations only: no lock, because a process may be killed at any point. tarnline owns
 * minor, alive, ring and carrier; whoever holds the port drives its lines and its break. */
#ifndef TARN_LINE_SIGNAL_STATE_H
#define TARN_LINE_SIGNAL_STATE_H

#include <limits.h>
#include <linux/futex.h>
#include <stdint.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#define TARN_LINE_MAGIC 0x4c6e7254u
#define TARN_LINE_STATE_VARIABLE "TARN_LINE_STATE"
#define TARN_LINE_STATE_NAME "pts-%u" /* in the cable's folder; the number is the pts minor */

/* In the order of the kernel's struct serial_icounter_struct. */
enum tarn_line_count {
    TARN_COUNT_CTS,
    TARN_COUNT_DSR,
    TARN_COUNT_RING,
    TARN_COUNT_DCD,
    TARN_COUNT_RX,
    TARN_COUNT_TX,
    TARN_COUNT_FRAME,
    TARN_COUNT_OVERRUN,
    TARN_COUNT_PARITY,
    TARN_COUNT_BREAK,
    TARN_COUNT_BUFFER_OVERRUN,
    TARN_COUNTS
};

enum tarn_line_carrier { TARN_CARRIER_FOLLOW, TARN_CARRIER_ON, TARN_CARRIER_OFF };

struct tarn_line_end {
    uint32_t minor;
    uint32_t alive;    /* 0 while the end is hung up and after tarnline has gone */
    uint32_t driven;   /* TIOCM_DTR and TIOCM_RTS of this end's host */
    uint32_t ring;     /* the ring indicator of this end */
    uint32_t carrier;  /* enum tarn_line_carrier: what this end's DCD shows */
    uint32_t breaking; /* this end's host holds its break */
    uint32_t changes;  /* futex word, moves with every change that this end can see */
    uint32_t counts[TARN_COUNTS];
};

struct tarn_line_state {
    uint32_t magic;
    struct tarn_line_end end[2];
};

static inline uint32_t tarn_line_load(const uint32_t* word) {
    return __atomic_load_n(word, __ATOMIC_SEQ_CST);
}

static inline void tarn_line_store(uint32_t* word, uint32_t value) {
    __atomic_store_n(word, value, __ATOMIC_SEQ_CST);
}

static inline void tarn_line_add(uint32_t* word, uint32_t amount) {
    __atomic_fetch_add(word, amount, __ATOMIC_SEQ_CST);
}

/* Called after a change that this end can see: wakes those that wait in TIOCMIWAIT. */
static inline void tarn_line_tell(struct tarn_line_end* end) {
    tarn_line_add(&end->changes, 1);
    syscall(SYS_futex, &end->changes, FUTEX_WAKE, INT_MAX, NULL, NULL, 0);
}

/* The TIOCM bits that an end's host reads: the lines it drives and those that it sees. */
static inline uint32_t tarn_line_bits(const struct tarn_line_state* state, int self) {
    const struct tarn_line_end* own = &state->end[self];
    const uint32_t far_lines = tarn_line_load(&state->end[!self].driven);
    const uint32_t carrier = tarn_line_load(&own->carrier);
    uint32_t bits = tarn_line_load(&own->driven);
    if (far_lines & TIOCM_DTR)
        bits |= TIOCM_DSR;
    if (far_lines & TIOCM_RTS)
        bits |= TIOCM_CTS;
    if (carrier == TARN_CARRIER_ON || (carrier == TARN_CARRIER_FOLLOW && (far_lines & TIOCM_DTR)))
        bits |= TIOCM_CAR;
    if (tarn_line_load(&own->ring))
        bits |= TIOCM_RNG;
    return bits;
}

/* Sets and clears lines that an end drives, and counts what the other end sees of it. */
static inline void tarn_line_drive(struct tarn_line_state* state, int self, uint32_t set, uint32_t clear) {
    struct tarn_line_end* own = &state->end[self];
    struct tarn_line_end* far_end = &state->end[!self];
    const uint32_t lines = TIOCM_DTR | TIOCM_RTS;
    uint32_t before = tarn_line_load(&own->driven);
    uint32_t after;
    do
        after = (before & ~(clear & lines)) | (set & lines);
    while (!__atomic_compare_exchange_n(&own->driven, &before, after, 0, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST));
    const uint32_t changed = before ^ after;
    if (!changed)
        return;
    if (changed & TIOCM_RTS)
        tarn_line_add(&far_end->counts[TARN_COUNT_CTS], 1);
    if (changed & TIOCM_DTR) {
        tarn_line_add(&far_end->counts[TARN_COUNT_DSR], 1);
        if (tarn_line_load(&far_end->carrier) == TARN_CARRIER_FOLLOW)
            tarn_line_add(&far_end->counts[TARN_COUNT_DCD], 1);
    }
    tarn_line_tell(far_end);
}

/* Counts an error or a break at the end that receives it. */
static inline void tarn_line_raise(struct tarn_line_end* end, enum tarn_line_count what, uint32_t amount) {
    tarn_line_add(&end->counts[what], amount);
    tarn_line_tell(end);
}

/* Holds or ends the break of an end; the other end counts it once, when it begins. */
static inline void tarn_line_break(struct tarn_line_state* state, int self, uint32_t on) {
    const uint32_t before = __atomic_exchange_n(&state->end[self].breaking, on, __ATOMIC_SEQ_CST);
    if (on && !before)
        tarn_line_raise(&state->end[!self], TARN_COUNT_BREAK, 1);
}

#endif
