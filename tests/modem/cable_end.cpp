#include "cable_end.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/mman.h>
#include <system_error>
#include <termios.h>

namespace {

namespace fs = std::filesystem;

constexpr int kComputer = 0; // end a
constexpr int kModem = 1;    // end b
constexpr std::uint32_t kLines = TIOCM_DTR | TIOCM_RTS;

constexpr std::size_t kPiece = 16 * 1024;

// A lone cable's ends have no number.
fs::path EndPath(const fs::path& folder, std::size_t number) {
    const fs::path numbered = folder / ("b" + std::to_string(number));
    return number > 0 || fs::is_symlink(numbered) ? numbered : folder / "b";
}

const tarn_line_state* Map(const fs::path& path) {
    const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        throw std::system_error(errno, std::generic_category(), path.string());
    void* memory = mmap(nullptr, sizeof(tarn_line_state), PROT_READ, MAP_SHARED, file.Get(), 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "mmap");
    return static_cast<const tarn_line_state*>(memory);
}

void MakeRaw(int tty) {
    termios settings{};
    if (tcgetattr(tty, &settings) != 0)
        throw std::system_error(errno, std::generic_category(), "tcgetattr");
    cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    if (tcsetattr(tty, TCSANOW, &settings) != 0)
        throw std::system_error(errno, std::generic_category(), "tcsetattr");
}

} // namespace

void CableEnd::Unmap::operator()(const tarn_line_state* state) const {
    munmap(const_cast<tarn_line_state*>(state), sizeof *state);
}

CableEnd::CableEnd(EventLoop& loop, const fs::path& folder, std::size_t number)
    : loop_(loop), control_(folder / "control"), path_(EndPath(folder, number)),
      inward_("c" + std::to_string(number) + ">m"), outward_("m>c" + std::to_string(number)),
      cable_(control_.string(), static_cast<int>(number)),
      state_(Map(folder / ("state" + std::to_string(number)))) {
    Open();
    if (!tty_)
        throw std::runtime_error("cannot open " + path_.string());
}

void CableEnd::Open() {
    tty_ = UniqueFd(open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!tty_)
        return;
    MakeRaw(tty_.Get());
    readable_ = true;
    loop_.Add(tty_.Get(), EPOLLIN | EPOLLOUT | EPOLLET, [this](std::uint32_t) { readable_ = true; });
}

// An end that is hung up has no tty for a while; without its tarnline it never gets one.
void CableEnd::Reopen() {
    if (!fs::exists(control_))
        throw std::runtime_error("tarnline has gone");
    Open();
}

void CableEnd::Close() {
    if (tty_)
        loop_.Remove(tty_.Get());
    tty_.Reset();
}

bool CableEnd::Read(Modem& modem, Transcript& transcript, Nanoseconds now) {
    modem.SetDtr((tarn_line_load(&state_->end[kComputer].driven) & TIOCM_DTR) != 0, now);
    if (!tty_)
        Reopen();
    const std::size_t room = modem.Room();
    if (!tty_ || !readable_ || room == 0)
        return false;
    std::array<std::uint8_t, kPiece> piece;
    const ssize_t count = read(tty_.Get(), piece.data(), std::min(piece.size(), room));
    if (count > 0) {
        const Bytes bytes(piece.data(), static_cast<std::size_t>(count));
        transcript.Data(inward_.c_str(), bytes, now);
        modem.Receive(bytes, now);
        return true;
    }
    readable_ = false;
    if (count == 0 || (errno != EAGAIN && errno != EINTR))
        Close();
    return false;
}

// Compared with what the cable has, so that signals are right again after the cable's reset.
void CableEnd::ShowSignals(const Modem& modem) {
    const bool carrier = modem.CarrierSignal();
    const bool ring = modem.RingSignal();
    if (tarn_line_load(&state_->end[kComputer].carrier) != (carrier ? TARN_CARRIER_ON : TARN_CARRIER_OFF))
        cable_.Carrier('a', carrier ? "on" : "off");
    if ((tarn_line_load(&state_->end[kComputer].ring) != 0) != ring)
        cable_.Ring('a', ring);
    if (tty_ && (tarn_line_load(&state_->end[kModem].driven) & kLines) != kLines)
        cable_.Do("lines b dtr=on rts=on");
}

void CableEnd::Write(Modem& modem, Transcript& transcript, Nanoseconds now) {
    ShowSignals(modem);
    ByteQueue& queue = modem.ForComputer();
    while (tty_ && !queue.Empty()) {
        const Bytes bytes = queue.Front(std::min(queue.Size(), kPiece));
        const ssize_t count = write(tty_.Get(), bytes.data(), bytes.size());
        if (count <= 0)
            return;
        transcript.Data(outward_.c_str(), bytes.first(static_cast<std::size_t>(count)), now);
        queue.Pop(static_cast<std::size_t>(count));
    }
}
