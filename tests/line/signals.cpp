#include "signals.h"

#include "unique_fd.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/mman.h>
#include <system_error>

namespace {

constexpr unsigned kLinesAtStart = TIOCM_DTR | TIOCM_RTS;

struct BitRow {
    unsigned bit;
    const char* name;
};
constexpr BitRow kBitRows[] = {{TIOCM_DTR, "dtr"}, {TIOCM_RTS, "rts"}, {TIOCM_CTS, "cts"},
                               {TIOCM_DSR, "dsr"}, {TIOCM_CAR, "dcd"}, {TIOCM_RNG, "ri"}};

struct CountRow {
    tarn_line_count count;
    const char* name;
};
constexpr CountRow kCountRows[] = {{TARN_COUNT_FRAME, "frame"},
                                   {TARN_COUNT_OVERRUN, "overrun"},
                                   {TARN_COUNT_PARITY, "parity"},
                                   {TARN_COUNT_BUFFER_OVERRUN, "buffer"},
                                   {TARN_COUNT_BREAK, "break"}};

tarn_line_state* Map(const std::filesystem::path& path) {
    const UniqueFd file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!file || ftruncate(file.Get(), sizeof(tarn_line_state)) != 0)
        throw std::system_error(errno, std::generic_category(), path.string());
    void* memory = mmap(nullptr, sizeof(tarn_line_state), PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "mmap");
    return static_cast<tarn_line_state*>(memory);
}

} // namespace

Signals::Signals(const std::filesystem::path& folder, const std::string& name)
    : folder_(folder), name_(name), state_(Map(folder / name)) {
    *state_ = {};
    state_->magic = TARN_LINE_MAGIC;
}

Signals::~Signals() {
    for (const int end : {0, 1})
        Detach(end);
    munmap(state_, sizeof *state_);
    std::error_code ignored;
    std::filesystem::remove(folder_ / name_, ignored);
}

std::filesystem::path Signals::NameFor(unsigned minor) const {
    char name[32];
    std::snprintf(name, sizeof name, TARN_LINE_STATE_NAME, minor);
    return folder_ / name;
}

void Signals::Attach(int end, unsigned minor) {
    std::error_code ignored;
    std::filesystem::remove(NameFor(minor), ignored);
    tarn_line_store(&state_->end[end].minor, minor);
    tarn_line_store(&state_->end[end].alive, 1);
    std::filesystem::create_symlink(name_, NameFor(minor));
    tarn_line_drive(state_, end, kLinesAtStart, 0);
}

void Signals::Detach(int end) {
    if (!tarn_line_load(&state_->end[end].alive))
        return;
    tarn_line_store(&state_->end[end].alive, 0);
    tarn_line_store(&state_->end[end].breaking, 0);
    tarn_line_drive(state_, end, 0, kLinesAtStart);
    std::error_code ignored;
    std::filesystem::remove(NameFor(state_->end[end].minor), ignored);
    tarn_line_tell(&state_->end[end]);
}

void Signals::Reset() {
    for (const int end : {0, 1}) {
        tarn_line_store(&state_->end[end].breaking, 0);
        SetCarrier(end, Carrier::kFollow);
        SetRing(end, false);
        if (tarn_line_load(&state_->end[end].alive))
            tarn_line_drive(state_, end, kLinesAtStart, 0);
    }
    for (const int end : {0, 1})
        for (std::size_t i = 0; i < TARN_COUNTS; i++)
            reported_[static_cast<std::size_t>(end)][i] = tarn_line_load(&state_->end[end].counts[i]);
}

void Signals::Drive(int end, unsigned set, unsigned clear) {
    tarn_line_drive(state_, end, set, clear);
}

void Signals::SetCarrier(int end, Carrier carrier) {
    const unsigned before = tarn_line_bits(state_, end);
    tarn_line_store(&state_->end[end].carrier, static_cast<unsigned>(carrier));
    if ((before ^ tarn_line_bits(state_, end)) & TIOCM_CAR)
        tarn_line_raise(&state_->end[end], TARN_COUNT_DCD, 1);
}

void Signals::SetRing(int end, bool on) {
    if (tarn_line_load(&state_->end[end].ring) == static_cast<unsigned>(on))
        return;
    tarn_line_store(&state_->end[end].ring, on);
    tarn_line_raise(&state_->end[end], TARN_COUNT_RING, 1);
}

void Signals::Count(int end, tarn_line_count what, unsigned amount) {
    tarn_line_raise(&state_->end[end], what, amount);
}

void Signals::CountBytes(int end, tarn_line_count what, std::size_t amount) {
    tarn_line_add(&state_->end[end].counts[what], static_cast<unsigned>(amount));
}

std::string Signals::Report(int end) const {
    const std::string prefix = end == 0 ? " a." : " b.";
    const unsigned bits = tarn_line_bits(state_, end);
    std::string text;
    for (const BitRow& row : kBitRows)
        text += prefix + row.name + ((bits & row.bit) ? "=1" : "=0");
    text += prefix + "breaking=" + std::to_string(tarn_line_load(&state_->end[end].breaking));
    for (const CountRow& row : kCountRows) {
        const unsigned start = reported_[static_cast<std::size_t>(end)][row.count];
        const unsigned count = tarn_line_load(&state_->end[end].counts[row.count]) - start;
        text += prefix + row.name + "=" + std::to_string(count);
    }
    return text.substr(1);
}
